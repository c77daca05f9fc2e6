#include "hdlc.h"

#include <string.h>

#include <array>

namespace {

constexpr uint16_t k_crc_init = 0xFFFF;
constexpr uint16_t k_crc_poly_reflected = 0x8408;
constexpr uint16_t k_crc_final_xor = 0xFFFF;
constexpr size_t k_byte_values = 256;

/* Slices of the CRC table: slice 0 is the CRC of each byte value; slice k
 * the same value pushed through k more zero bytes.  Eight input bytes then
 * take eight independent lookups instead of a chain of eight. */
constexpr size_t k_crc_slices = 8;
using crc_tables = std::array<std::array<uint16_t, k_byte_values>, k_crc_slices>;

constexpr crc_tables make_crc_tables()
{
    crc_tables t{};
    for (size_t v = 0; v < k_byte_values; v++) {
        uint16_t crc = uint16_t(v);
        for (int bit = 0; bit < 8; bit++) {
            crc = (crc & 1) ? uint16_t((crc >> 1) ^ k_crc_poly_reflected) : uint16_t(crc >> 1);
        }
        t[0][v] = crc;
    }
    for (size_t k = 1; k < k_crc_slices; k++) {
        for (size_t v = 0; v < k_byte_values; v++) t[k][v] = uint16_t((t[k - 1][v] >> 8) ^ t[0][t[k - 1][v] & 0xFF]);
    }
    return t;
}

constexpr crc_tables k_crc = make_crc_tables();

void put_escaped(uint8_t b, std::vector<uint8_t> *out)
{
    if (b == HDLC_FLAG || b == HDLC_ESCAPE) {
        out->push_back(HDLC_ESCAPE);
        out->push_back(uint8_t(b ^ HDLC_ESCAPE_XOR));
    } else {
        out->push_back(b);
    }
}

/* Status of the unescaped bytes of one frame (payload and CRC). */
hdlc_status check_frame(const uint8_t *buf, size_t n)
{
    if (n < HDLC_CRC_LEN) return HDLC_TOO_SHORT;
    size_t body = n - HDLC_CRC_LEN;
    uint16_t got = uint16_t(buf[body] | buf[body + 1] << 8);
    return got == hdlc_crc16(buf, body) ? HDLC_OK : HDLC_BAD_CRC;
}

void push_frame(void *ctx, hdlc_status status, const uint8_t *payload, size_t len)
{
    auto *out = static_cast<std::vector<hdlc_frame> *>(ctx);
    hdlc_frame f = {status, {}};
    if (status == HDLC_OK) f.payload.assign(payload, payload + len);
    out->push_back(std::move(f));
}

}  // namespace

uint16_t hdlc_crc16(const uint8_t *data, size_t len)
{
    uint16_t crc = k_crc_init;
    size_t i = 0;
    for (; i + k_crc_slices <= len; i += k_crc_slices) {
        const uint8_t *p = data + i;
        crc = uint16_t(k_crc[7][(p[0] ^ crc) & 0xFF] ^ k_crc[6][(p[1] ^ (crc >> 8)) & 0xFF] ^ k_crc[5][p[2]] ^
                       k_crc[4][p[3]] ^ k_crc[3][p[4]] ^ k_crc[2][p[5]] ^ k_crc[1][p[6]] ^ k_crc[0][p[7]]);
    }
    for (; i < len; i++) crc = uint16_t((crc >> 8) ^ k_crc[0][(crc ^ data[i]) & 0xFF]);
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

void hdlc_decoder::end_frame(hdlc_frame_fn on_frame, void *ctx)
{
    if (!started_) return; /* a run of flags, or the optional leading flag */
    hdlc_status status = HDLC_OK;
    if (too_long_) {
        status = HDLC_TOO_LONG;
    } else if (escaped_) {
        status = HDLC_BAD_ESCAPE;
    } else {
        status = check_frame(buf_.data(), buf_.size());
    }
    on_frame(ctx, status, buf_.data(), status == HDLC_OK ? buf_.size() - HDLC_CRC_LEN : 0);
    reset();
}

/* Appends the unescaped form of [p, end), which holds no flag, to the frame
 * in progress: runs between escape bytes are copied whole. */
void hdlc_decoder::append_unescaped(const uint8_t *p, const uint8_t *end)
{
    if (p == end) return;
    started_ = true;
    while (p < end && !too_long_) {
        if (escaped_) {
            escaped_ = false;
            if (buf_.size() >= HDLC_MAX_FRAME) {
                too_long_ = true;
                break;
            }
            buf_.push_back(uint8_t(*p++ ^ HDLC_ESCAPE_XOR));
            continue;
        }
        const auto *esc = static_cast<const uint8_t *>(memchr(p, HDLC_ESCAPE, size_t(end - p)));
        const uint8_t *run_end = esc ? esc : end;
        size_t run = size_t(run_end - p);
        if (buf_.size() + run > HDLC_MAX_FRAME) {
            too_long_ = true;
            break;
        }
        buf_.insert(buf_.end(), p, run_end);
        p = run_end;
        if (esc) {
            escaped_ = true;
            p++;
        }
    }
    if (too_long_) {
        /* The rest of the frame is dropped up to its flag. */
        buf_.clear();
        escaped_ = false;
    }
}

void hdlc_decoder::feed(const uint8_t *data, size_t len, hdlc_frame_fn on_frame, void *ctx)
{
    const uint8_t *p = data;
    const uint8_t *end = data + len;
    while (p < end) {
        const auto *flag = static_cast<const uint8_t *>(memchr(p, HDLC_FLAG, size_t(end - p)));
        if (!flag) {
            append_unescaped(p, end);
            return;
        }
        size_t n = size_t(flag - p);
        if (!started_ && n > 0 && n <= HDLC_MAX_FRAME && !memchr(p, HDLC_ESCAPE, n)) {
            /* A whole frame without escapes: checked where it lies. */
            hdlc_status status = check_frame(p, n);
            on_frame(ctx, status, p, status == HDLC_OK ? n - HDLC_CRC_LEN : 0);
        } else {
            append_unescaped(p, flag);
            end_frame(on_frame, ctx);
        }
        p = flag + 1;
    }
}

void hdlc_decoder::finish(hdlc_frame_fn on_frame, void *ctx)
{
    if (started_) on_frame(ctx, HDLC_UNTERMINATED, nullptr, 0);
    reset();
}

void hdlc_decoder::feed(const uint8_t *data, size_t len, std::vector<hdlc_frame> *out)
{
    feed(data, len, push_frame, out);
}

void hdlc_decoder::finish(std::vector<hdlc_frame> *out)
{
    finish(push_frame, out);
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
