#include "hdlc.h"

namespace {

constexpr uint16_t k_crc_init = 0xFFFF;
constexpr uint16_t k_crc_poly_reflected = 0x8408;
constexpr uint16_t k_crc_final_xor = 0xFFFF;

void put_escaped(uint8_t b, std::vector<uint8_t> *out)
{
    if (b == HDLC_FLAG || b == HDLC_ESCAPE) {
        out->push_back(HDLC_ESCAPE);
        out->push_back(uint8_t(b ^ HDLC_ESCAPE_XOR));
    } else {
        out->push_back(b);
    }
}

}  // namespace

uint16_t hdlc_crc16(const uint8_t *data, size_t len)
{
    uint16_t crc = k_crc_init;
    for (size_t i = 0; i < len; i++) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; bit++) {
            crc = (crc & 1) ? uint16_t((crc >> 1) ^ k_crc_poly_reflected) : uint16_t(crc >> 1);
        }
    }
    return uint16_t(crc ^ k_crc_final_xor);
}

void hdlc_encode(const uint8_t *payload, size_t len, std::vector<uint8_t> *out)
{
    out->reserve(out->size() + hdlc_encoded_max(len));
    for (size_t i = 0; i < len; i++) put_escaped(payload[i], out);
    uint16_t crc = hdlc_crc16(payload, len);
    put_escaped(uint8_t(crc & 0xFF), out);
    put_escaped(uint8_t(crc >> 8), out);
    out->push_back(HDLC_FLAG);
}

void hdlc_decoder::reset()
{
    buf_.clear();
    escaped_ = false;
    too_long_ = false;
    started_ = false;
}

void hdlc_decoder::end_frame(std::vector<hdlc_frame> *out)
{
    if (!started_) return; /* a run of flags, or the optional leading flag */
    hdlc_frame f = {HDLC_OK, {}};
    if (too_long_) {
        f.status = HDLC_TOO_LONG;
    } else if (escaped_) {
        f.status = HDLC_BAD_ESCAPE;
    } else if (buf_.size() < HDLC_CRC_LEN) {
        f.status = HDLC_TOO_SHORT;
    } else {
        size_t n = buf_.size() - HDLC_CRC_LEN;
        uint16_t got = uint16_t(buf_[n] | buf_[n + 1] << 8);
        if (got != hdlc_crc16(buf_.data(), n)) {
            f.status = HDLC_BAD_CRC;
        } else {
            f.payload.assign(buf_.begin(), buf_.begin() + long(n));
        }
    }
    out->push_back(std::move(f));
    reset();
}

void hdlc_decoder::feed(const uint8_t *data, size_t len, std::vector<hdlc_frame> *out)
{
    for (size_t i = 0; i < len; i++) {
        uint8_t b = data[i];
        if (b == HDLC_FLAG) {
            end_frame(out);
            continue;
        }
        started_ = true;
        if (too_long_) continue;
        if (escaped_) {
            b ^= HDLC_ESCAPE_XOR;
            escaped_ = false;
        } else if (b == HDLC_ESCAPE) {
            escaped_ = true;
            continue;
        }
        if (buf_.size() >= HDLC_MAX_FRAME) {
            too_long_ = true;
            buf_.clear();
            continue;
        }
        buf_.push_back(b);
    }
}

void hdlc_decoder::finish(std::vector<hdlc_frame> *out)
{
    if (started_) out->push_back({HDLC_UNTERMINATED, {}});
    reset();
}

hdlc_status hdlc_decode_one(const uint8_t *data, size_t len, std::vector<uint8_t> *payload)
{
    hdlc_decoder dec;
    std::vector<hdlc_frame> frames;
    dec.feed(data, len, &frames);
    dec.finish(&frames);
    if (frames.size() != 1) return frames.empty() ? HDLC_TOO_SHORT : HDLC_UNTERMINATED;
    if (frames[0].status == HDLC_OK) *payload = std::move(frames[0].payload);
    return frames[0].status;
}
