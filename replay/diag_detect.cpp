#include "diag_detect.h"

#include "diag_packet.h"

namespace {

/* Seconds after the 1980 epoch beyond which a DLF timestamp is taken for
 * noise (2^32 s: the year 2116). */
constexpr uint64_t DLF_TS_MAX = (uint64_t(1) << 32) * DIAG_TS_UNITS_PER_SECOND;
/* Bytes a valid frame stands for beyond its payload: CRC and flag. */
constexpr uint64_t HDLC_FRAME_OVERHEAD = HDLC_CRC_LEN + 1;

}  // namespace

bool diag_log_code_plausible(uint16_t code)
{
    return (DIAG_LOG_GROUPS >> (code >> DIAG_LOG_GROUP_SHIFT)) & 1u;
}

void diag_format_detector::on_frame(void *ctx, hdlc_status status, const uint8_t *, size_t len)
{
    auto *self = static_cast<diag_format_detector *>(ctx);
    if (status != HDLC_OK) return;
    self->hdlc_valid_++;
    self->hdlc_covered_ += len + HDLC_FRAME_OVERHEAD;
}

void diag_format_detector::chain_dlf(const uint8_t *held, size_t held_len)
{
    while (!dlf_broken_ && held_len - dlf_at_ >= DIAG_DLF_HEADER_LEN) {
        const uint8_t *rec = held + dlf_at_;
        size_t n = diag_le16(rec);
        if (n < DIAG_LOG_LENGTH_SELF || !diag_log_code_plausible(diag_le16(rec + DIAG_DLF_LENGTH_LEN)) ||
            diag_le64(rec + DIAG_DLF_HEADER_CHECK) >= DLF_TS_MAX) {
            dlf_broken_ = true;
            break;
        }
        if (n > held_len - dlf_at_) break; /* the rest has not come yet */
        dlf_records_++;
        dlf_at_ += n;
    }
}

void diag_format_detector::feed(const uint8_t *held, size_t held_len, size_t len)
{
    hdlc_.feed(held + held_len - len, len, on_frame, this);
    chain_dlf(held, held_len);
}

diag_capture_format diag_format_detector::decide(bool complete) const
{
    uint64_t dlf_covered = dlf_at_;
    if (!complete) {
        if (hdlc_valid_ == 0 && !dlf_broken_ && dlf_records_ >= DIAG_DETECT_DLF_RECORDS) return DIAG_FORMAT_DLF;
        /* A live port must not wait for a long first "record" to arrive:
         * two valid frames before any whole record decide as well. */
        bool dlf_out = dlf_broken_ || dlf_records_ == 0;
        if (hdlc_valid_ >= DIAG_DETECT_HDLC_FRAMES && dlf_out && hdlc_covered_ > dlf_covered) {
            return DIAG_FORMAT_HDLC;
        }
        return DIAG_FORMAT_AUTO;
    }
    return dlf_covered > hdlc_covered_ ? DIAG_FORMAT_DLF : DIAG_FORMAT_HDLC;
}

diag_capture_format diag_capture_detect(const uint8_t *data, size_t len, bool complete)
{
    diag_format_detector det;
    det.feed(data, len, len);
    return det.decide(complete);
}
