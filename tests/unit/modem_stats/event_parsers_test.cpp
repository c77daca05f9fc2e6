/* Event parsers through the event dispatcher: printed lines and the bytes of
 * every record released, for crafted payloads of each event id. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modem_stats_dispatch.h"
#include "modem_stats_event_parsers.h"
#include "stats_test_util.h"

using stats_test::captured_stdout;
using stats_test::record_log;
using stats_test::seen_record;

namespace {

constexpr uint8_t kSub = 1;

std::string header(uint16_t id, size_t length, int sub)
{
    return "modem_stats_diag_process_event_ex: event_id " + std::to_string(id) + ", length " + std::to_string(length) +
           ", sub_id = " + std::to_string(sub) + "\n";
}

/* Dispatches `payload` as event `id` (the first `length` bytes, all when
 * -1): it prints the header and `lines` and releases `records`. */
void expect_event(uint16_t id, const std::vector<uint8_t> &payload, const std::string &lines,
                  const std::vector<seen_record> &records, int32_t length = -1, uint8_t sub = kSub)
{
    SCOPED_TRACE(id);
    record_log released;
    if (length < 0) length = static_cast<int32_t>(payload.size());
    std::string out = captured_stdout([&] { modem_stats_diag_process_event_ex(length, id, sub, payload.data()); });
    EXPECT_EQ(out, header(id, length, sub) + lines);
    EXPECT_EQ(released.take(), records);
}

TEST(EventParsersTest, DecodesPrintsAndRecordsEachEvent)
{
    expect_event(629, {1, 2, 3}, "call_id = 1, call_type = 2, srv_type = 3\n",
                 {{MODEM_STATS_DATA_ID_CALL_ORIG, {1, 2, 3}}});
    /* The length says one byte: the rest of the fields read as zero, not
     * the caller's memory. */
    expect_event(629, {7, 8, 9}, "call_id = 7, call_type = 0, srv_type = 0\n",
                 {{MODEM_STATS_DATA_ID_CALL_ORIG, {7, 0, 0}}}, 1, 0);
    expect_event(631, {2, 9}, "num_calls = 2, call_id = 9\n", {{MODEM_STATS_DATA_ID_CALL_END, {2, 9}}});
    const modem_stats_data_id_e_type sip_ids[] = {
        MODEM_STATS_DATA_ID_IMS_SIP_SESSION_START, MODEM_STATS_DATA_ID_IMS_SIP_SESSION_RINGING,
        MODEM_STATS_DATA_ID_IMS_SIP_SESSION_ESTABLISHED, MODEM_STATS_DATA_ID_IMS_SIP_SESSION_TERMINATED,
        MODEM_STATS_DATA_ID_IMS_SIP_SESSION_CANCEL};
    const std::vector<uint8_t> sip = {0x78, 0x56, 0x34, 0x12};
    for (uint16_t i = 0; i < 5; i++) expect_event(1428 + i, sip, "sip_call_id = 305419896\n", {{sip_ids[i], sip}});
    expect_event(1433, {0xff, 0xff, 0xff, 0xff}, "sip_call_id = -1\n",
                 {{MODEM_STATS_DATA_ID_IMS_SIP_SESSION_FAILURE, {0xff, 0xff, 0xff, 0xff}}});
    expect_event(1632, {9}, "lte_emm_timer_expiry, sub_id = 1, timer_id = 9\n",
                 {{MODEM_STATS_DATA_ID_LTE_EMM_TIMER_EXPIRY, {9, 4}}});
    expect_event(3215, {3}, "nr5g_emm_timer_expiry, sub_id = 1, timer_id = 3\n",
                 {{MODEM_STATS_DATA_ID_NR5G_EMM_TIMER_EXPIRY, {3, 4}}});
    expect_event(1995, {1, 0, 2, 0, 0x34, 0x12},
                 "sub_id = 1, rlf_count_rrc_connected = 1, rlf_count_lte_active = 2, rlf_cause = 4660\n",
                 {{MODEM_STATS_DATA_ID_LTE_RRC_RLF_STATS, {1, 0, 2, 0, 0x34, 0x12}}});
    std::vector<uint8_t> scg(34, 0xee);
    scg[32] = 0x05;
    scg[33] = 0x01;
    expect_event(3243, scg, "sub_id = 1, scg_failure_cause = 261\n",
                 {{MODEM_STATS_DATA_ID_NR5G_RRC_SCG_FAILURE, {0x05, 0x01}}});
    expect_event(3184, {0x80, 0x96, 0x98, 0x00, 0xf4, 0x01, 5}, "ssb_freq = 10000000, pci = 500, bw = 5\n",
                 {{MODEM_STATS_DATA_ID_NR5G_RRC_NEW_CELL_IND_SSB, {0x80, 0x96, 0x98, 0x00, 0xf4, 0x01, 5}}});
    /* Reserved bytes (0xaa, 0xbb) are skipped; the record starts with
     * version 0 and ends with the two configurations. */
    expect_event(2622, {0xaa, 1, 2, 0xbb, 0xbb, 4, 0x34, 0x12, 0x78, 0x56},
                 "version = 0, ant_number = 4, ant_switch_path = 4660, sig_path = 22136, old_config = 1, "
                 "new_config = 2\n",
                 {{MODEM_STATS_DATA_ID_TRM_ASDIV, {0, 4, 0x34, 0x12, 0x78, 0x56, 1, 2}}});
    expect_event(
        2568, {2, 0x10, 0x27, 0, 0, 0x2c, 0x01},
        "cause = 2, freq = 10000, pci = 300\nho_time = 0, ho_type = 1, pci = 300\n",
        {{MODEM_STATS_DATA_ID_LTE_RRC_NEW_CELL_IND_EARFCN, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0x10, 0x27, 0, 0, 0x2c, 0x01}}});
    expect_event(2568, {1, 0x10, 0x27, 0, 0, 0x2c, 0x01},
                 "cause = 1, freq = 10000, pci = 300\nDATA_IS_NOT_VALID(1), "
                 "name(modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn), id(0xa08)\n",
                 {});
}

TEST(EventParsersTest, ReadableBytesAndNullPointer)
{
    /* The SCG failure cause sits after 32 reserved bytes: 34 readable
     * bytes are needed. */
    std::vector<uint8_t> buf = stats_test::payload({});
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *rec = nullptr;
    auto scg = [&](int32_t left) {
        EXPECT_TRUE(modem_stats_data_unpk_start(3243, buf.data()));
        g_pk_data_left = left;
        return captured_stdout(
            [&] { modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure(MODEM_STATS_SUB_ID_0, &id, &rec); });
    };
    EXPECT_EQ(scg(33), "g_pk_data_left(1) is not enough for scg_failure_cause, id(0xcab)\n");
    EXPECT_EQ(rec, nullptr);
    EXPECT_EQ(id, MODEM_STATS_DATA_ID_NONE);
    EXPECT_EQ(scg(34), "sub_id = 0, scg_failure_cause = 0\n");
    ASSERT_NE(rec, nullptr);
    EXPECT_EQ(id, MODEM_STATS_DATA_ID_NR5G_RRC_SCG_FAILURE);
    modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, rec);

    /* TRM ASDIV skips its leading reserved byte before the first check,
     * which names the field in the null pointer message. */
    ASSERT_TRUE(modem_stats_data_unpk_start(2622, buf.data()));
    g_pk_data_ptr = nullptr;
    rec = nullptr;
    EXPECT_EQ(captured_stdout([&] { modem_stats_parse_2622_diag_event_mcs_trm_asdiv(&id, &rec); }),
              "MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: old_config, id(0xa3e)\n");
    EXPECT_EQ(g_pk_data_cnt, 1u);
    EXPECT_EQ(rec, nullptr);
}

/* ---- LTE RRC state change ---------------------------------------------- */

const char kNew[] =
    "----1606_diag_event_lte_rrc_state_change, New Connected and Old other state, rrc_setup_count = 1, sub_id 1\n";
const char kConnectedConnected[] =
    "1606_diag_event_lte_rrc_state_change, New Connected and Old Connected, time not inited, do nothing, sub_id 1\n";
const char kClosingConnected[] =
    "1606_diag_event_lte_rrc_state_change, New Closing and Old Connected, time not inited, do nothing, sub_id 1\n";
const char kClosingOther[] =
    "1606_diag_event_lte_rrc_state_change, New Closing and Old other state, do nothing, sub_id 1\n";
const char kOther[] =
    "1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 1\n";

/* Feeds the states in order from a fresh kept state of 0: each prints the
 * transition and its outcome, records the state (and a set-up when a new
 * connection is counted), and is kept. */
void run_rrc_sequence(const std::vector<std::pair<uint8_t, const char *>> &steps)
{
    g_lte_rrc_state_last = 0;
    int last = 0;
    for (const auto &s : steps) {
        SCOPED_TRACE(testing::Message() << "state " << int(s.first) << " after " << last);
        std::vector<seen_record> records = {{MODEM_STATS_DATA_ID_LTE_RRC_STATE, {s.first}}};
        if (s.second == kNew) records.push_back({MODEM_STATS_DATA_ID_LTE_RRC_STATE_STATS, {0, 0, 0, 0, 1, 0, 0, 0, 1}});
        char state_line[400];
        snprintf(
            state_line, sizeof(state_line),
            "1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = %d, "
            "rrc_state_current = %d, rrc_state_current_in = %d, old rrc_active_time = 0, old rrc_setup_count = 0\n",
            last, s.first, s.first);
        expect_event(1606, {s.first},
                     "sub_id = 0, rrc_state_current_in = " + std::to_string(s.first) + "\n" + state_line + s.second,
                     records);
        EXPECT_EQ(g_lte_rrc_state_last, s.first);
        last = s.first;
    }
}

TEST(LteRrcStateTest, SetupsAreCountedOncePerConnection)
{
    /* Connected twice counts one set-up. */
    run_rrc_sequence({{4, kNew}, {4, kConnectedConnected}});
    /* Closing between connections counts again. */
    run_rrc_sequence({{4, kNew}, {7, kClosingConnected}, {4, kNew}});
    /* Other states do nothing but are kept. */
    run_rrc_sequence({{2, kOther}, {7, kClosingOther}, {7, kClosingOther}, {3, kOther}, {4, kNew}, {0, kOther}});
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
        record_log records;
        std::string out = captured_stdout([&] {
            modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(MODEM_STATS_SUB_ID_1, 4, f.first, f.second);
        });
        EXPECT_NE(out.find(kNew), std::string::npos);
        EXPECT_TRUE(records.take().empty());
        EXPECT_EQ(g_lte_rrc_state_last, 4);
        EXPECT_EQ(id, MODEM_STATS_DATA_ID_NONE);
        EXPECT_EQ(rec, nullptr);
    }
}

}  // namespace
