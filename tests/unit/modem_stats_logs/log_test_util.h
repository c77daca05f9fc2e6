/* Helpers of the statistics tests: captured standard output, payloads of
 * the readable size, the records handed over for release, a runner that
 * feeds a packet to the parser registered for a log code the way the
 * dispatcher does, and the text of such runs that the golden files next to
 * the tests hold. */
#ifndef LOG_TEST_UTIL_H
#define LOG_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "data_file.h"
#include "log_packet.h"
#include "modem_stats_dispatch.h"
#include "modem_stats_record.h"
#include "modem_stats_unpack.h"

namespace log_test {

/* Runs `fn` and returns what it printed on standard output. */
template <typename F>
std::string captured_stdout(F fn)
{
    fflush(stdout);
    testing::internal::CaptureStdout();
    fn();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

/* A payload of the unpacker's readable size, zero-filled, starting with
 * `head`. */
std::vector<uint8_t> payload(std::vector<uint8_t> head);

/* A record: its id and data. */
struct record {
    modem_stats_data_id_e_type id;
    std::vector<uint8_t> bytes;
    bool operator==(const record &o) const { return id == o.id && bytes == o.bytes; }
};

/* Collects every record released while it is alive (one at a time). */
class record_log {
public:
    record_log();
    ~record_log();
    /* The records seen so far, and forget them. */
    std::vector<record> take();
};

/* What one packet made a parser do. */
struct run_result {
    std::string out;             /* its standard output */
    std::vector<record> records; /* records it made, in order */
};

/* Readable bytes of a cut packet: the whole-byte reads see the packet end
 * at `cut` instead of the unpacker's 2000-byte limit. */
constexpr int32_t NO_CUT = -1;

/* Feeds `bytes` under `code` to the parser registered in `table`, with
 * subscription 0, as the dispatcher does (payload zero-filled up to the
 * readable size), from a not-supported count of 0.  Records handed over
 * are collected and released. */
run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut = NO_CUT,
                   modem_stats_parser_table table = modem_stats_log_parser_table());

/* printf into a string. */
std::string fmt(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* The printed lines of `r`, then a "record <id>: <bytes in hex>" line per
 * record. */
std::string describe(const run_result &r);

/* A packet under a log code, and the readable bytes of a second, cut run
 * (NO_CUT: none). */
struct log_case {
    uint16_t code;
    std::vector<uint8_t> bytes;
    int32_t cut = NO_CUT;
};

/* Per case an "== <index> <code>" line and its run described, and for a
 * cut a "-- cut at <n>" line and the cut run described. */
std::string describe(const std::vector<log_case> &cases);

}  // namespace log_test

#endif
