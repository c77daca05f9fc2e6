/* Helpers of the log parser tests: a runner that feeds a packet to the
 * parser registered for a log code the way the dispatcher does and collects
 * what it printed and the records it made, and the checks built on it. */
#ifndef LOG_TEST_UTIL_H
#define LOG_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "../modem_stats/stats_test_util.h"
#include "log_packet.h"

namespace log_test {

using record = stats_test::seen_record;

/* What one packet made a parser do. */
struct run_result {
    std::string out;             /* its standard output */
    std::vector<record> records; /* records it made, in order */
};

/* Readable bytes of a cut packet: the whole-byte reads see the packet end
 * at `cut` instead of the unpacker's 2000-byte limit. */
constexpr int32_t NO_CUT = -1;

/* Feeds `bytes` under `code` to the registered parser, with subscription
 * 0, as the dispatcher does (payload zero-filled up to the readable size).
 * Records handed over are collected and released. */
run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut = NO_CUT);

/* printf into a string. */
std::string fmt(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* The name a parser gives itself in its messages. */
std::string parser_name(uint16_t code);

/* "DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)" and a newline; `name` ""
 * stands for the parser's own. */
std::string not_valid(int value, uint16_t code, const std::string &name = "");

/* A cut of a packet: readable bytes, and the field that then finds only
 * `left` bytes. */
struct cut {
    int32_t at;
    const char *field;
    int32_t left;
};

/* `p` under `code` prints `out` and makes `records`; cut at `c` (unless
 * c.at is NO_CUT) it prints the lines the full packet printed before the
 * cut field, then the "not enough" line, and makes no record. */
void expect_log(uint16_t code, const std::vector<uint8_t> &p, const std::string &out,
                const std::vector<record> &records, const cut &c = {NO_CUT, "", 0});

/* `r` ends with `line`, made no record and, when `full` is given, printed
 * before that line what `full` begins with. */
void expect_stop(const run_result &r, const std::string &line, const std::string &full = "");

/* `p` (holding the unsupported `version`) is counted and refused under
 * `name` ("": the parser's own), printing nothing but `before` first. */
void expect_refused(uint16_t code, const std::vector<uint8_t> &p, int64_t version, std::string name = "",
                    const std::string &before = "");

}  // namespace log_test

#endif
