/* Event parsers through the event dispatcher: printed lines and the bytes of
 * every record released, for crafted payloads of each event id
 * (event_parsers.golden). */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../modem_stats_logs/log_test_util.h"
#include "golden.h"
#include "modem_stats_dispatch.h"
#include "modem_stats_event_parsers.h"

using log_test::captured_stdout;

namespace {

/* Dispatches `payload` as event `id` (the first `length` bytes, all when
 * -1) and describes what it printed and the records it released. */
std::string event(uint16_t id, const std::vector<uint8_t> &payload, int32_t length = -1, uint8_t sub = 1)
{
    log_test::record_log released;
    if (length < 0) length = static_cast<int32_t>(payload.size());
    log_test::run_result r;
    r.out = captured_stdout([&] { modem_stats_diag_process_event_ex(length, id, sub, payload.data()); });
    r.records = released.take();
    return log_test::describe(r);
}

TEST(EventParsersTest, DecodesPrintsAndRecordsEachEvent)
{
    std::vector<uint8_t> scg(34, 0xee);
    scg[32] = 0x05;
    scg[33] = 0x01;
    std::string text = event(629, {1, 2, 3});
    /* The length says one byte: the rest of the fields read as zero, not
     * the caller's memory. */
    text += event(629, {7, 8, 9}, 1, 0);
    text += event(631, {2, 9});
    for (uint16_t id = 1428; id <= 1432; id++) text += event(id, {0x78, 0x56, 0x34, 0x12});
    text += event(1433, {0xff, 0xff, 0xff, 0xff});
    text += event(1632, {9});
    text += event(3215, {3});
    text += event(1995, {1, 0, 2, 0, 0x34, 0x12});
    text += event(3243, scg);
    text += event(3184, {0x80, 0x96, 0x98, 0x00, 0xf4, 0x01, 5});
    /* Reserved bytes (0xaa, 0xbb) are skipped; the record starts with
     * version 0 and ends with the two configurations. */
    text += event(2622, {0xaa, 1, 2, 0xbb, 0xbb, 4, 0x34, 0x12, 0x78, 0x56});
    /* Handover causes 2 and 1 (not valid). */
    text += event(2568, {2, 0x10, 0x27, 0, 0, 0x2c, 0x01});
    text += event(2568, {1, 0x10, 0x27, 0, 0, 0x2c, 0x01});
    /* LTE RRC states from a kept state of 0: connected twice counts one
     * set-up; closing between connections counts again; other states do
     * nothing but are kept. */
    for (const std::vector<uint8_t> &states : {std::vector<uint8_t>{4, 4}, {4, 7, 4}, {2, 7, 7, 3, 4, 0}}) {
        g_lte_rrc_state_last = 0;
        for (uint8_t state : states) {
            text += event(1606, {state});
            text += log_test::fmt("kept state %d\n", g_lte_rrc_state_last);
        }
    }
    /* The SCG failure cause sits after 32 reserved bytes: 34 readable
     * bytes are needed. */
    for (int32_t cut : {33, 34}) {
        text += log_test::fmt("-- 3243 cut at %d\n", cut);
        text += log_test::describe(log_test::run_log(3243, {}, cut, modem_stats_event_parser_table()));
    }
    expect_golden(text, __FILE__, "event_parsers.golden");
}

TEST(EventParsersTest, NullPointer)
{
    std::vector<uint8_t> buf = log_test::payload({});
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *rec = nullptr;
    /* TRM ASDIV skips its leading reserved byte before the first check,
     * which names the field in the null pointer message. */
    ASSERT_TRUE(modem_stats_data_unpk_start(2622, buf.data()));
    g_pk_data_ptr = nullptr;
    EXPECT_EQ(captured_stdout([&] { modem_stats_parse_2622_diag_event_mcs_trm_asdiv(&id, &rec); }),
              "MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: old_config, id(0xa3e)\n");
    EXPECT_EQ(g_pk_data_cnt, 1u);
    EXPECT_EQ(rec, nullptr);
}

TEST(LteRrcStateTest, StatsWithoutRecordPointersStillKeepTheState)
{
    /* Either pointer missing: no record, and the state is still kept. */
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *rec = nullptr;
    const std::pair<modem_stats_data_id_e_type *, modem_stats_single_data_common_type **> forms[] = {
        {nullptr, nullptr}, {&id, nullptr}, {nullptr, &rec}};
    for (const auto &f : forms) {
        g_lte_rrc_state_last = 0;
        log_test::record_log records;
        std::string out = captured_stdout([&] {
            modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(MODEM_STATS_SUB_ID_1, 4, f.first, f.second);
        });
        EXPECT_NE(out.find("New Connected and Old other state, rrc_setup_count = 1, sub_id 1\n"), std::string::npos);
        EXPECT_TRUE(records.take().empty());
        EXPECT_EQ(g_lte_rrc_state_last, 4);
        EXPECT_EQ(id, MODEM_STATS_DATA_ID_NONE);
        EXPECT_EQ(rec, nullptr);
    }
}

}  // namespace
