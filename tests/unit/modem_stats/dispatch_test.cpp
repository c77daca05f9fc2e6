/* Dispatch steps: header lines, null payloads, unknown codes, the scratch
 * copy (dispatch.golden) and the release rule. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../modem_stats_logs/log_test_util.h"
#include "golden.h"
#include "modem_stats_dispatch.h"

using log_test::captured_stdout;
using log_test::record_log;

namespace {

TEST(DispatchTest, HeadersNullPayloadsUnknownCodesAndTheCopy)
{
    const uint8_t one[4] = {1}, negative_len_payload[] = {9, 9, 9};
    /* A payload longer than the readable size: the byte at 2000 is not
     * part of the copy, so a field there is out of reach. */
    std::vector<uint8_t> big(MODEM_STATS_UNPK_MAX_LEN + 8, 0x5a);
    record_log records;
    std::string out = captured_stdout([&] {
        modem_stats_diag_process_event_ex(1, 631, 0, one);
        /* A null payload: the start message names the previous id. */
        modem_stats_diag_process_log_ex(68, 0xB193, 0, nullptr);
        modem_stats_diag_process_event_ex(3, 629, 1, nullptr);
        modem_stats_diag_process_log_ex(4, 0x1234, 0, one);
        modem_stats_diag_process_event_ex(4, 630, 0, one);
        modem_stats_diag_process_event_ex(static_cast<int32_t>(big.size()), 631, 0, big.data());
        modem_stats_diag_process_event_ex(-5, 631, 0, negative_len_payload);
    });
    expect_golden(log_test::describe(log_test::run_result{out, records.take()}), __FILE__, "dispatch.golden");
}

/* Test parsers: each records one byte, the subscription's value. */
void parse_plain(modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    modem_stats_data_pk("plain", 0xa1, 1);
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_CALL_ORIG, data_id, record);
}

void parse_with_sub(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id,
                    modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    modem_stats_data_pk("sub", sub, 1);
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_CALL_END, data_id, record);
}

modem_stats_single_data_common_type *g_kept = nullptr;

void parse_keep(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id,
                modem_stats_single_data_common_type **record)
{
    parse_with_sub(sub, data_id, record);
    g_kept = *record;
}

int g_sub_only_calls = 0;
void parse_sub_only(modem_stats_sub_id_e_type sub)
{
    g_sub_only_calls += sub;
}

constexpr modem_stats_parser_row kRows[] = {
    modem_stats_parser_row_of(0x0010, parse_plain),
    modem_stats_parser_row_of(0x0020, parse_with_sub),
    modem_stats_parser_row_keep(modem_stats_parser_row_of(0x0030, parse_keep)),
    modem_stats_parser_row_of(0x0040, parse_sub_only),
};
static_assert(modem_stats_parser_rows_valid(kRows, 4), "test rows are valid");
static_assert(!kRows[2].release && !kRows[3].release && kRows[0].release, "keep rows");
constexpr modem_stats_parser_row kUnsorted[] = {modem_stats_parser_row_of(0x0020, parse_plain),
                                                modem_stats_parser_row_of(0x0010, parse_plain)};
static_assert(!modem_stats_parser_rows_valid(kUnsorted, 2), "order is checked");
constexpr modem_stats_parser_row kDuplicate[] = {modem_stats_parser_row_of(0x0010, parse_plain),
                                                 modem_stats_parser_row_of(0x0010, parse_with_sub)};
static_assert(!modem_stats_parser_rows_valid(kDuplicate, 2), "uniqueness is checked");

TEST(DispatchTest, CallingFormsAndReleaseRule)
{
    const modem_stats_parser_table table = {kRows, 4};
    const uint8_t payload[] = {0};
    record_log records;
    g_kept = nullptr;
    g_sub_only_calls = 0;
    captured_stdout([&] {
        for (uint16_t code : {0x0010, 0x0020, 0x0030, 0x0040, 0x0015})
            modem_stats_diag_dispatch(table, code, 1, 1, payload);
    });
    EXPECT_EQ(log_test::describe(log_test::run_result{"", records.take()}), "record 117: a1\nrecord 118: 01\n");
    ASSERT_NE(g_kept, nullptr);
    EXPECT_EQ(g_kept->data[0], 1);
    modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_1, g_kept->data_id, g_kept);
    EXPECT_EQ(g_sub_only_calls, 1);
}

}  // namespace
