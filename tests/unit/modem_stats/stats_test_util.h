/* Helpers shared by the statistics tests: captured standard output, payload
 * buffers of the readable size and the records handed over for release. */
#ifndef STATS_TEST_UTIL_H
#define STATS_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdio.h>

#include <string>
#include <utility>
#include <vector>

#include "modem_stats_record.h"
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
inline std::vector<uint8_t> payload(std::vector<uint8_t> head)
{
    head.resize(MODEM_STATS_UNPK_MAX_LEN, 0);
    return head;
}

/* A record: its id and data. */
struct seen_record {
    modem_stats_data_id_e_type id;
    std::vector<uint8_t> bytes;
    bool operator==(const seen_record &o) const { return id == o.id && bytes == o.bytes; }
};

inline seen_record seen(const modem_stats_single_data_common_type *r)
{
    return {r->data_id, std::vector<uint8_t>(r->data, r->data + r->data_len)};
}

/* Collects every record released while it is alive (one at a time). */
class record_log {
public:
    record_log()
    {
        list().clear();
        modem_stats_set_record_observer(
            [](modem_stats_sub_id_e_type, modem_stats_data_id_e_type id, const modem_stats_single_data_common_type *r) {
                list().push_back({id, seen(r).bytes});
            });
    }
    ~record_log() { modem_stats_set_record_observer(nullptr); }

    /* The records seen so far, and forget them. */
    std::vector<seen_record> take() { return std::exchange(list(), {}); }

private:
    static std::vector<seen_record> &list()
    {
        static std::vector<seen_record> records;
        return records;
    }
};

}  // namespace stats_test

#endif
