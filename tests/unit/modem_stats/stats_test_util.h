/* Helpers shared by the statistics tests: captured standard output and
 * payload buffers of the readable size. */
#ifndef STATS_TEST_UTIL_H
#define STATS_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdio.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "modem_stats_unpack.h"

namespace stats_test {

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
inline std::vector<uint8_t> payload(std::initializer_list<uint8_t> head)
{
    std::vector<uint8_t> p(MODEM_STATS_UNPK_MAX_LEN, 0);
    size_t i = 0;
    for (uint8_t b : head) p[i++] = b;
    return p;
}

/* Bytes of a record's data. */
inline std::vector<uint8_t> record_bytes(const modem_stats_single_data_common_type *r)
{
    return std::vector<uint8_t>(r->data, r->data + r->data_len);
}

}  // namespace stats_test

#endif
