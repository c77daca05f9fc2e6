/* Helpers of the log parser tests: a packet builder that places whole-byte
 * and bit fields (bit 0 = least significant bit of byte 0), a record
 * builder, and a runner that feeds a packet to the parser registered for a
 * log code the way the dispatcher does and collects what it printed and
 * the records it made. */
#ifndef LOG_TEST_UTIL_H
#define LOG_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include "modem_stats_data_id.h"
#include "modem_stats_record.h"

namespace log_test {

/* Bytes of a packet; grows as fields are placed. */
class packet {
public:
    packet &u8(uint32_t at, uint64_t v) { return put(at, v, 1); }
    packet &u16(uint32_t at, uint64_t v) { return put(at, v, 2); }
    packet &u32(uint32_t at, uint64_t v) { return put(at, v, 4); }
    packet &u64(uint32_t at, uint64_t v) { return put(at, v, 8); }
    /* `width` bits of `v` from bit `bit` of the packet. */
    packet &bits(uint32_t bit, uint32_t width, uint64_t v)
    {
        grow((bit + width + 7) / 8);
        for (uint32_t i = 0; i < width; i++) {
            uint32_t b = bit + i;
            uint8_t mask = static_cast<uint8_t>(1u << (b % 8));
            if ((v >> i) & 1)
                bytes_[b / 8] |= mask;
            else
                bytes_[b / 8] &= static_cast<uint8_t>(~mask);
        }
        return *this;
    }
    /* Bits relative to byte `at`. */
    packet &bits_at(uint32_t at, uint32_t bit, uint32_t width, uint64_t v) { return bits(at * 8 + bit, width, v); }
    packet &raw(uint32_t at, const std::vector<uint8_t> &v)
    {
        grow(at + v.size());
        memcpy(bytes_.data() + at, v.data(), v.size());
        return *this;
    }
    packet &size(uint32_t n)
    {
        grow(n);
        return *this;
    }
    const std::vector<uint8_t> &bytes() const { return bytes_; }

private:
    packet &put(uint32_t at, uint64_t v, uint32_t n)
    {
        grow(at + n);
        for (uint32_t i = 0; i < n; i++) bytes_[at + i] = static_cast<uint8_t>(v >> (8 * i));
        return *this;
    }
    void grow(size_t n)
    {
        if (bytes_.size() < n) bytes_.resize(n, 0);
    }
    std::vector<uint8_t> bytes_;
};

/* Expected record data, appended field by field. */
class record {
public:
    record &u8(uint64_t v) { return put(v, 1); }
    record &u16(uint64_t v) { return put(v, 2); }
    record &u32(uint64_t v) { return put(v, 4); }
    record &u64(uint64_t v) { return put(v, 8); }
    record &f32(float f)
    {
        uint32_t v = 0;
        memcpy(&v, &f, sizeof(v));
        return put(v, 4);
    }
    const std::vector<uint8_t> &bytes() const { return bytes_; }

private:
    record &put(uint64_t v, uint32_t n)
    {
        for (uint32_t i = 0; i < n; i++) bytes_.push_back(static_cast<uint8_t>(v >> (8 * i)));
        return *this;
    }
    std::vector<uint8_t> bytes_;
};

/* One record a parser made. */
struct made_record {
    modem_stats_data_id_e_type id;
    std::vector<uint8_t> bytes;
};

/* What one packet made a parser do. */
struct run_result {
    std::string out;                  /* its standard output */
    std::vector<made_record> records; /* records it made, in order */
};

/* Readable bytes of a cut packet: the whole-byte reads see the packet end
 * at `cut` instead of the unpacker's 2000-byte limit. */
constexpr int32_t NO_CUT = -1;

/* Feeds `bytes` under `code` to the registered parser, with subscription
 * 0, as the dispatcher does (payload zero-filled up to the readable size).
 * Records handed over are collected and released. */
run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut = NO_CUT);

/* The VERSION_NOT_SUPPORT line the parser prints for `version`, with the
 * count the refusal will reach. */
std::string version_line(int64_t version, uint64_t count, const std::string &name, uint16_t code);

/* "g_pk_data_left(%d) is not enough for %s, id(0x%x)" and a newline. */
std::string not_enough_line(int32_t left, const std::string &name, uint16_t code);

/* printf into a string. */
std::string fmt(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* One table row of a parser test: a packet built to one accepted version,
 * every line it prints and the records it makes; and the same packet cut
 * so that the field `cut_field` finds only `cut_left` bytes. */
struct log_case {
    const char *name;
    uint16_t code;
    std::vector<uint8_t> packet;
    std::string out;
    std::vector<made_record> records;
    int32_t cut;
    std::string cut_field;
    int32_t cut_left;
};

/* Checks a case: the full packet, then the cut one (which prints the
 * lines before the cut field, then the "not enough" line, and makes no
 * record). */
void expect_case(const log_case &c);

/* Checks that `packet` (holding the unsupported `version`) is counted and
 * refused under `name`, printing nothing but `lines_before` first. */
void expect_refused(uint16_t code, const std::vector<uint8_t> &packet, int64_t version, const std::string &name,
                    const std::string &lines_before = "");

/* The name a parser gives itself in its messages. */
std::string parser_name(uint16_t code);

/* Path of a capture file, or "" (with the reason in `why`) when the
 * captures folder is absent. */
std::string capture_path(const std::string &file);

}  // namespace log_test

#endif
