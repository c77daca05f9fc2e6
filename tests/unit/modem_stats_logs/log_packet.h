/* Bytes of a diag log packet, built field by field: each call places the
 * field at its position (bit 0 = least significant bit of byte 0) and grows
 * the bytes as needed. */
#ifndef LOG_PACKET_H
#define LOG_PACKET_H

#include <stdint.h>

#include <vector>

namespace log_test {

class packet {
public:
    packet &bits(uint32_t bit, uint32_t width, uint64_t v)
    {
        size((bit + width + 7) / 8);
        for (uint32_t i = 0; i < width; i++) {
            uint8_t mask = static_cast<uint8_t>(1u << ((bit + i) % 8));
            uint8_t &b = bytes_[(bit + i) / 8];
            b = static_cast<uint8_t>(((v >> i) & 1) ? b | mask : b & ~mask);
        }
        return *this;
    }
    packet &bits_at(uint32_t at, uint32_t bit, uint32_t width, uint64_t v) { return bits(at * 8 + bit, width, v); }
    packet &u8(uint32_t at, uint64_t v) { return bits(at * 8, 8, v); }
    packet &u16(uint32_t at, uint64_t v) { return bits(at * 8, 16, v); }
    packet &u32(uint32_t at, uint64_t v) { return bits(at * 8, 32, v); }
    packet &u64(uint32_t at, uint64_t v) { return bits(at * 8, 64, v); }
    packet &raw(uint32_t at, const std::vector<uint8_t> &v)
    {
        for (size_t i = 0; i < v.size(); i++) u8(at + static_cast<uint32_t>(i), v[i]);
        return *this;
    }
    packet &size(size_t n)
    {
        if (bytes_.size() < n) bytes_.resize(n, 0);
        return *this;
    }
    const std::vector<uint8_t> &bytes() const { return bytes_; }
    operator const std::vector<uint8_t> &() const { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

}  // namespace log_test

#endif
