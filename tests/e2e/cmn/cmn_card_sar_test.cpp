/* Option 5's card-slot commands, hot-swap test and SAR query end to end:
 * what goes on the wire, the notes and error codes of wrong argument
 * counts, the dumps of the simulator's answers, a hot-swap run watched
 * through repeated status queries, and the SAR state set through the
 * control interface. */
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../unit/diag/diag_test_util.h"
#include "../extension/ext_test_util.h"
#include "tolvek_card_payload.h"

namespace {

using diag_test::expect_all;

/* A typed common request as "<cmd code> t<type>: <value words>". */
std::string typed(uint32_t cmd_code, uint32_t type, const std::vector<uint32_t> &values)
{
    std::string s = std::to_string(cmd_code) + " t" + std::to_string(type) + ":";
    for (uint32_t v : values) s += " " + std::to_string(v);
    return s;
}

/* The last typed common request as it reached the modem. */
std::string last_typed(const sim_instance &sim)
{
    std::vector<ext_wire_request> reqs = ext_last_requests(sim, 1);
    if (reqs.size() != 1 || reqs[0].data.size() < 16) return "";
    const ext_wire_request &r = reqs[0];
    std::vector<uint32_t> values;
    for (uint32_t off = 0; off + 4 <= r.u32(12); off += 4) values.push_back(r.u32(16 + off));
    return typed(r.u32(0), r.u32(8), values);
}

/* The presence of slot 0 as `rlk 5 1` prints it: 0, 1, or -1 when the
 * answer was not understood. */
int slot0_presence(sim_instance &sim)
{
    std::string out = sim.run_rlk({"5", "1"}).out;
    const std::string head = "data: 27 00 00 00 08 00 00 00 ";
    size_t at = out.find(head);
    if (at == std::string::npos) return -1;
    std::string v = out.substr(at + head.size(), 2);
    return v == "01" ? 1 : v == "00" ? 0 : -1;
}

class CmnCardTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    sim_instance sim;
};

TEST_F(CmnCardTest, StatusGetAndWrongArgumentCountsGiveTheirNoteAndErrorCode)
{
    rlk_run r = sim.run_rlk({"5", "2", "7"});
    EXPECT_EQ(last_typed(sim), typed(TOLVEK_COMMON_CMD_TYPED, 55, {1})) << "the sub reduced to one";
    EXPECT_TRUE(has_syslog(r, "tolvek_cmn_card_status_get"));
    /* Slot 1 of a fresh modem: present, powered, SIM line high. */
    expect_all(r.out, {"param(cnt: 1):\n 1tolvek_cmn_cmd_send, t: 55, l: 4\n",
                       "result = 0, rsp.result = 0\n\ndata len(24)\ndata: 37 00 00 00 10 00 00 00 01 00 00 00 01 00 00 "
                       "00 01 00 00 00 01 00 00 00\n"});
    EXPECT_FALSE(has_text(r.out, "note:"));

    long long before = ext_request_count(sim);
    const struct {
        std::vector<std::string> args;
        std::string note;
    } cases[] = {
        {{"5", "3", "0", "1"}, "\nnote: need 6 inputs, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"5", "2"}, "\nnote: need 4 inputs, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"5", "1", "0"}, "\nnote: need 3 inputs, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"5", "6"}, "\nnote: need 4 inputs at least, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"5", "6", "1", "5", "2"},
         "opt: 1\n\nnote: need 7 inputs, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"5", "7"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n"},
        {{"5", "8"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n"},
        {{"5", "9"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n"},
        {{"5", "11"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args[1]);
        /* The group's help follows. */
        expect_all(sim.run_rlk(c.args).out, {c.note, "5: cmn option cmd: \n"});
    }
    EXPECT_EQ(ext_request_count(sim), before) << "nothing was sent";
}

TEST_F(CmnCardTest, HotSwapStartStopAndARunSeenThroughRepeatedStatusQueries)
{
    rlk_run stop = sim.run_rlk({"5", "6", "0"});
    EXPECT_EQ(last_typed(sim), typed(TOLVEK_COMMON_CMD_TYPED, 80, {0}));
    expect_all(stop.out, {"tolvek_cmn_card_hotswap_test\nopt: 0\ntolvek_cmn_cmd_send, t: 80, l: 4\n"});
    ASSERT_EQ(slot0_presence(sim), 1);

    /* Two cycles of pull, 1 s, push, 1 s, with a hot-swap second four rlk
     * runs long (at least 150 ms), so that every step is seen however slow
     * the build makes a run. */
    long long t0 = monotonic_ms();
    sim.run_rlk({"5", "6", "0"});
    slot0_presence(sim);
    long long second_ms = std::min(5000LL, std::max(150LL, 2 * (monotonic_ms() - t0)));
    sim.ctl_ok("ext card second-ms " + std::to_string(second_ms));
    sim.run_rlk({"5", "6", "1", "2", "1", "1"});
    std::vector<int> seen;
    for (long long deadline = monotonic_ms() + 10 * second_ms; monotonic_ms() < deadline;) {
        int p = slot0_presence(sim);
        if (seen.empty() || seen.back() != p) seen.push_back(p);
        if (has_text(sim.ctl_ok("ext card"), "hotswap=idle")) break;
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 0, 1})) << "pulled, pushed, pulled, pushed";
    EXPECT_TRUE(has_text(sim.ctl_ok("ext card"), "hotswap=idle cycles=2/2"));

    /* A stopped run leaves the card in. */
    sim.ctl_ok("ext card second-ms 1000");
    sim.run_rlk({"5", "6", "1", "5", "10", "10"});
    EXPECT_EQ(slot0_presence(sim), 0);
    expect_all(sim.run_rlk({"5", "6", "0"}).out,
               {"data: 50 00 00 00 0C 00 00 00 00 00 00 00 00 00 00 00 05 00 00 00\n"});
    EXPECT_EQ(slot0_presence(sim), 1);

    /* Four values as given, not reduced to 0 or 1.  Answer: running, no
     * cycle done yet, three asked.  A second start while the run goes on is
     * refused by the modem: reported, but no error. */
    rlk_run start = sim.run_rlk({"5", "6", "2", "3", "0", "1"});
    EXPECT_EQ(last_typed(sim), typed(TOLVEK_COMMON_CMD_TYPED, 80, {2, 3, 0, 1}));
    expect_all(start.out, {"param(cnt: 4):\n 2 3 0 1tolvek_cmn_cmd_send, t: 80, l: 16\n",
                           "data len(20)\ndata: 50 00 00 00 0C 00 00 00 01 00 00 00 00 00 00 00 03 00 00 00\n"});
    rlk_run again = sim.run_rlk({"5", "6", "1", "1", "1", "1"});
    expect_all(again.out, {"rsp.result = -16\nrsp.result fail\n"});
    EXPECT_FALSE(has_text(again.out, "note:"));
}

TEST_F(CmnCardTest, StatusSetDrivesPresenceInSimModeAndIsOnlyRecordedInGeneralModeAcrossARestart)
{
    expect_all(sim.run_rlk({"5", "3", "1", "1", "0"}).out,
               {"param(cnt: 3):\n 1 1 0tolvek_cmn_cmd_send, t: 57, l: 12\n",
                "data: 39 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 00 00 00 00\n"});
    expect_all(sim.run_rlk({"5", "1"}).out,
               {"tolvek_cmn_card_status_query\nparam(cnt: 0):\ntolvek_cmn_cmd_send, t: 39, l: 0\n",
                "data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"});
    /* No card in slot 1, so no type. */
    expect_all(sim.run_rlk({"5", "4"}).out,
               {"tolvek_cmn_card_type_query\n", "data: 38 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"});

    /* General mode: the line is recorded, the card stays out. */
    sim.run_rlk({"5", "3", "1", "0", "5"});
    expect_all(sim.run_rlk({"5", "2", "1"}).out,
               {"data: 37 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00\n"});
    EXPECT_TRUE(has_text(sim.ctl_ok("ext card"), "slot1 present=0 power=1 type=2 mode=0 level=1"));

    /* The slots are modem state: a restarted simulator still sees them. */
    ASSERT_TRUE(sim.restart());
    expect_all(sim.run_rlk({"5", "1"}).out, {"data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"});
}

TEST_F(CmnCardTest, SarStateSetThroughTheControlInterfaceIsReadBack)
{
    expect_all(sim.run_rlk({"5", "5"}).out, {"dsi vailid = 1 , dsi value = 0\nSAR DSI: 0\n"});
    sim.ctl_ok("sar state 7");
    rlk_run r = sim.run_rlk({"5", "5"});
    expect_all(r.out, {"RIL[tolvek_get_sar_dsi:", "dsi vailid = 1 , dsi value = 7\nSAR DSI: 7\n"});
    EXPECT_FALSE(has_text(r.out, "note:"));
    EXPECT_EQ(sim.ctl_ok("sar state"), "7");
    EXPECT_EQ(sim.ctl("sar state 21").rfind("error", 0), 0u);

    /* Without the service the query fails with -1, and the group still
     * reports no error. */
    sim.ctl_ok("down sar");
    rlk_run down = sim.run_rlk({"5", "5"});
    expect_all(down.out, {"qmi_client_init_instance failed, qmi_client_error = ", "SAR DSI: -1\n"});
    EXPECT_FALSE(has_text(down.out, "note:"));
}

}  // namespace
