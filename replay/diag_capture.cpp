#include "diag_capture.h"

#include <string.h>

#include <algorithm>

namespace {

diag_skip_reason hdlc_skip_reason(hdlc_status status)
{
    switch (status) {
    case HDLC_BAD_CRC: return DIAG_SKIP_BAD_CRC;
    case HDLC_BAD_ESCAPE: return DIAG_SKIP_BAD_ESCAPE;
    case HDLC_TOO_SHORT: return DIAG_SKIP_TOO_SHORT;
    case HDLC_TOO_LONG: return DIAG_SKIP_TOO_LONG;
    case HDLC_UNTERMINATED: return DIAG_SKIP_TRUNCATED;
    case HDLC_OK: break;
    }
    return DIAG_SKIP_REASON_COUNT;
}

}  // namespace

const char *diag_capture_format_name(diag_capture_format format)
{
    switch (format) {
    case DIAG_FORMAT_HDLC: return "hdlc";
    case DIAG_FORMAT_DLF: return "dlf";
    case DIAG_FORMAT_AUTO: break;
    }
    return "auto";
}

diag_capture_reader::diag_capture_reader(diag_capture_format format, diag_packet_fn fn, void *ctx)
    : wanted_(format), current_(format), fn_(fn), ctx_(ctx)
{
}

void diag_capture_reader::on_hdlc_frame(void *ctx, hdlc_status status, const uint8_t *payload, size_t len)
{
    auto *self = static_cast<diag_capture_reader *>(ctx);
    if (status != HDLC_OK) {
        self->skip(hdlc_skip_reason(status));
        return;
    }
    self->take_frame(payload, len);
}

void diag_capture_reader::take_frame(const uint8_t *payload, size_t len)
{
    diag_skip_reason reason = diag_parse_frame(payload, len, &state_, fn_, ctx_);
    if (reason == DIAG_SKIP_REASON_COUNT) {
        counters_.frames++;
    } else {
        skip(reason);
    }
}

void diag_capture_reader::take_dlf_record(const uint8_t *record, size_t len)
{
    if (diag_parse_inner_log(record, len, 0, &state_, fn_, ctx_)) {
        counters_.frames++;
    } else {
        skip(DIAG_SKIP_BAD_RECORD);
    }
}

bool diag_capture_reader::dlf_plausible(const uint8_t *record) const
{
    if (diag_le16(record) < DIAG_LOG_LENGTH_SELF) return false;
    if (!dlf_resyncing_) return true;
    /* Looking for the next record after a bad one: its code must also
     * belong to one of the log equipment groups. */
    return diag_log_code_plausible(diag_le16(record + DIAG_DLF_LENGTH_LEN));
}

void diag_capture_reader::dlf_bad_start()
{
    if (!dlf_resyncing_) skip(DIAG_SKIP_BAD_RECORD);
    dlf_resyncing_ = true;
}

void diag_capture_reader::feed_dlf(const uint8_t *data, size_t len)
{
    const uint8_t *p = data;
    const uint8_t *end = data + len;
    while (p < end) {
        if (partial_.empty() && size_t(end - p) >= DIAG_DLF_HEADER_CHECK) {
            if (!dlf_plausible(p)) {
                /* Not a record: counted once, then look one byte further. */
                dlf_bad_start();
                p++;
                continue;
            }
            size_t n = diag_le16(p);
            if (n <= size_t(end - p)) {
                dlf_resyncing_ = false;
                take_dlf_record(p, n);
                p += n;
                continue;
            }
        }
        /* A record split across feeds: its header first, then the rest. */
        size_t need = DIAG_DLF_HEADER_CHECK;
        if (partial_.size() >= DIAG_DLF_HEADER_CHECK) need = diag_le16(partial_.data());
        size_t take = std::min(need - partial_.size(), size_t(end - p));
        partial_.insert(partial_.end(), p, p + take);
        p += take;
        if (partial_.size() < DIAG_DLF_HEADER_CHECK) continue;
        if (partial_.size() == DIAG_DLF_HEADER_CHECK && !dlf_plausible(partial_.data())) {
            dlf_bad_start();
            partial_.erase(partial_.begin());
            continue;
        }
        if (partial_.size() == diag_le16(partial_.data())) {
            dlf_resyncing_ = false;
            take_dlf_record(partial_.data(), partial_.size());
            partial_.clear();
        }
    }
}

void diag_capture_reader::feed_format(const uint8_t *data, size_t len)
{
    if (current_ == DIAG_FORMAT_DLF) {
        feed_dlf(data, len);
    } else {
        hdlc_.feed(data, len, on_hdlc_frame, this);
    }
}

void diag_capture_reader::detect(bool at_end)
{
    bool complete = at_end || window_.size() >= DIAG_DETECT_WINDOW;
    diag_capture_format f = detector_.decide(complete);
    if (f == DIAG_FORMAT_AUTO) return;
    current_ = f;
    detector_ = diag_format_detector();
    std::vector<uint8_t> held;
    held.swap(window_);
    feed_format(held.data(), held.size());
}

void diag_capture_reader::feed(const uint8_t *data, size_t len)
{
    counters_.bytes += len;
    if (current_ == DIAG_FORMAT_AUTO) {
        size_t take = std::min(len, DIAG_DETECT_WINDOW - window_.size());
        window_.insert(window_.end(), data, data + take);
        detector_.feed(window_.data(), window_.size(), take);
        data += take;
        len -= take;
        detect(false);
        if (current_ == DIAG_FORMAT_AUTO) return; /* the window still has room: len is 0 */
    }
    feed_format(data, len);
}

void diag_capture_reader::finish()
{
    if (current_ == DIAG_FORMAT_AUTO && !window_.empty()) detect(true);
    if (current_ == DIAG_FORMAT_DLF) {
        if (!partial_.empty() && !dlf_resyncing_) skip(DIAG_SKIP_TRUNCATED);
    } else {
        hdlc_.finish(on_hdlc_frame, this);
    }
    partial_.clear();
    window_.clear();
    detector_ = diag_format_detector();
    dlf_resyncing_ = false;
    state_.last_full_ts = 0;
    current_ = wanted_;
}
