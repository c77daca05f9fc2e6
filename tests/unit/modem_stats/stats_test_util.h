/* Helpers shared by the statistics tests: captured standard output and
 * payload buffers of the readable size. */
#ifndef STATS_TEST_UTIL_H
#define STATS_TEST_UTIL_H

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdio.h>

#include <initializer_list>
#include <ostream>
#include <string>
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

/* A record as it was handed over for release. */
struct seen_record {
    modem_stats_data_id_e_type id;
    std::vector<uint8_t> bytes;
    bool operator==(const seen_record &o) const { return id == o.id && bytes == o.bytes; }
};

inline std::ostream &operator<<(std::ostream &os, const seen_record &r)
{
    os << "{id " << static_cast<unsigned>(r.id) << ":";
    for (uint8_t b : r.bytes) os << " " << static_cast<unsigned>(b);
    return os << "}";
}

/* Collects every record released while it is alive. */
class record_log {
public:
    record_log()
    {
        seen().clear();
        modem_stats_set_record_observer(observe);
    }
    ~record_log() { modem_stats_set_record_observer(nullptr); }
    record_log(const record_log &) = delete;
    record_log &operator=(const record_log &) = delete;

    /* The records seen so far, and forget them. */
    std::vector<seen_record> take()
    {
        std::vector<seen_record> out;
        out.swap(seen());
        return out;
    }

private:
    static std::vector<seen_record> &seen()
    {
        static std::vector<seen_record> records;
        return records;
    }
    static void observe(modem_stats_sub_id_e_type, modem_stats_data_id_e_type id,
                        const modem_stats_single_data_common_type *r)
    {
        seen().push_back({id, record_bytes(r)});
    }
};

}  // namespace stats_test

#endif
