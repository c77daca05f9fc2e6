/* Option 5's card-slot commands, hot-swap test and SAR query end to end:
 * what goes on the wire, the notes and error codes of wrong argument
 * counts, the dumps of the simulator's answers, a hot-swap run watched
 * through repeated status queries, and the SAR state set through the
 * control interface. */
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../extension/ext_test_util.h"
#include "tolvek_card_payload.h"

namespace {

/* The value words of a typed common request as it reached the modem. */
struct typed_request {
    uint32_t cmd_code, type, len;
    std::vector<uint32_t> values;
};

typed_request last_typed(const sim_instance &sim)
{
    std::vector<ext_wire_request> reqs = ext_last_requests(sim, 1);
    typed_request t = {};
    if (reqs.size() != 1 || reqs[0].data.size() < 16) return t;
    const ext_wire_request &r = reqs[0];
    t = {r.u32(0), r.u32(8), r.u32(12), {}};
    for (uint32_t off = 0; off + 4 <= t.len; off += 4) t.values.push_back(r.u32(16 + off));
    return t;
}

class CmnCardTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    sim_instance sim;
};

const char k_invalid_second[] = "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";

TEST_F(CmnCardTest, StatusGetSendsType55WithTheSubReducedToOne)
{
    rlk_run r = sim.run_rlk({"5", "2", "7"});
    typed_request t = last_typed(sim);
    EXPECT_EQ(t.cmd_code, uint32_t(TOLVEK_COMMON_CMD_TYPED));
    EXPECT_EQ(t.type, 55u);
    EXPECT_EQ(t.values, (std::vector<uint32_t>{1}));
    EXPECT_TRUE(has_text(r.out, "param(cnt: 1):\n 1tolvek_cmn_cmd_send, t: 55, l: 4\n"));
    EXPECT_TRUE(has_syslog(r, "tolvek_cmn_card_status_get"));
    /* Slot 1 of a fresh modem: present, powered, SIM line high. */
    EXPECT_TRUE(has_text(r.out, "result = 0, rsp.result = 0\n\ndata len(24)\ndata: 37 00 00 00 10 00 00 00 01 00 00 "
                                "00 01 00 00 00 01 00 00 00 01 00 00 00\n"));
    EXPECT_FALSE(has_text(r.out, "note:"));
}

TEST_F(CmnCardTest, WrongArgumentCountsGiveTheirNoteAndErrorCode)
{
    long long before = ext_request_count(sim);
    const struct {
        std::vector<std::string> args;
        const char *note;
    } cases[] = {
        {{"5", "3", "0", "1"}, "\nnote: need 6 inputs, Pls refer to the following cmd:\n"},
        {{"5", "2"}, "\nnote: need 4 inputs, Pls refer to the following cmd:\n"},
        {{"5", "1", "0"}, "\nnote: need 3 inputs, Pls refer to the following cmd:\n"},
        {{"5", "6"}, "\nnote: need 4 inputs at least, Pls refer to the following cmd:\n"},
        {{"5", "6", "1", "5", "2"}, "opt: 1\n\nnote: need 7 inputs, Pls refer to the following cmd:\n"},
    };
    for (const auto &c : cases) {
        rlk_run r = sim.run_rlk(c.args);
        EXPECT_TRUE(has_text(r.out, c.note)) << c.args[1] << "\n" << r.out;
        EXPECT_TRUE(has_text(r.out, error_note(268431370))) << c.args[1];
        EXPECT_TRUE(has_text(r.out, "5: cmn option cmd: \n")) << "the group's help follows";
    }
    EXPECT_EQ(ext_request_count(sim), before) << "nothing was sent";

    for (const char *n : {"7", "8", "9", "11"}) {
        rlk_run r = sim.run_rlk({"5", n});
        EXPECT_TRUE(has_text(r.out, k_invalid_second)) << n;
        EXPECT_TRUE(has_text(r.out, "5: cmn option cmd: \n")) << n;
    }
}

TEST_F(CmnCardTest, HotSwapStopSendsOneZeroAndStartSendsFourValuesAsGiven)
{
    rlk_run stop = sim.run_rlk({"5", "6", "0"});
    typed_request t = last_typed(sim);
    EXPECT_EQ(t.type, 80u);
    EXPECT_EQ(t.values, (std::vector<uint32_t>{0}));
    EXPECT_TRUE(has_text(stop.out, "tolvek_cmn_card_hotswap_test\nopt: 0\ntolvek_cmn_cmd_send, t: 80, l: 4\n"));

    rlk_run start = sim.run_rlk({"5", "6", "2", "3", "0", "1"});
    t = last_typed(sim);
    EXPECT_EQ(t.type, 80u);
    EXPECT_EQ(t.values, (std::vector<uint32_t>{2, 3, 0, 1})) << "not reduced to 0 or 1";
    EXPECT_TRUE(has_text(start.out, "param(cnt: 4):\n 2 3 0 1tolvek_cmn_cmd_send, t: 80, l: 16\n"));
    /* Answer: running, no cycle done yet, three asked. */
    EXPECT_TRUE(has_text(start.out, "data len(20)\ndata: 50 00 00 00 0C 00 00 00 01 00 00 00 00 00 00 00 03 00 00 00\n"));

    /* A second start while the run goes on is refused by the modem: the
     * group reports the refusal but no error. */
    rlk_run again = sim.run_rlk({"5", "6", "1", "1", "1", "1"});
    EXPECT_TRUE(has_text(again.out, "rsp.result = -16\nrsp.result fail\n"));
    EXPECT_FALSE(has_text(again.out, "note:"));
}

/* The presence of slot 0 as `rlk 5 1` prints it: 0, 1, or -1 when the
 * answer was not understood. */
int slot0_presence(sim_instance &sim)
{
    rlk_run r = sim.run_rlk({"5", "1"});
    const std::string head = "data: 27 00 00 00 08 00 00 00 ";
    size_t at = r.out.find(head);
    if (at == std::string::npos) return -1;
    return r.out.compare(at + head.size(), 2, "01") == 0 ? 1 : r.out.compare(at + head.size(), 2, "00") == 0 ? 0 : -1;
}

TEST_F(CmnCardTest, HotSwapRunSeenThroughRepeatedStatusQueries)
{
    /* Two cycles of pull, 1 s, push, 1 s, with a hot-swap second four rlk
     * runs long (at least 150 ms), so that every step is seen however slow
     * the build makes a run. */
    long long t0 = monotonic_ms();
    ASSERT_EQ(slot0_presence(sim), 1);
    sim.run_rlk({"5", "6", "0"});
    long long run_ms = (monotonic_ms() - t0) / 2;
    long long second_ms = std::min(5000LL, std::max(150LL, 4 * run_ms));
    sim.ctl_ok("ext card second-ms " + std::to_string(second_ms));
    sim.run_rlk({"5", "6", "1", "2", "1", "1"});
    std::vector<int> seen;
    long long deadline = monotonic_ms() + 10 * second_ms;
    while (monotonic_ms() < deadline) {
        int p = slot0_presence(sim);
        if (seen.empty() || seen.back() != p) seen.push_back(p);
        if (sim.ctl_ok("ext card").find("hotswap=idle") != std::string::npos) break;
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 0, 1})) << "pulled, pushed, pulled, pushed";
    EXPECT_NE(sim.ctl_ok("ext card").find("hotswap=idle cycles=2/2"), std::string::npos);

    /* A stopped run leaves the card in. */
    sim.ctl_ok("ext card second-ms 1000");
    sim.run_rlk({"5", "6", "1", "5", "10", "10"});
    EXPECT_EQ(slot0_presence(sim), 0);
    rlk_run stop = sim.run_rlk({"5", "6", "0"});
    EXPECT_TRUE(has_text(stop.out, "data: 50 00 00 00 0C 00 00 00 00 00 00 00 00 00 00 00 05 00 00 00\n"));
    EXPECT_EQ(slot0_presence(sim), 1);
}

TEST_F(CmnCardTest, StatusSetDrivesPresenceInSimModeAndIsOnlyRecordedInGeneralMode)
{
    rlk_run set = sim.run_rlk({"5", "3", "1", "1", "0"});
    EXPECT_TRUE(has_text(set.out, "param(cnt: 3):\n 1 1 0tolvek_cmn_cmd_send, t: 57, l: 12\n"));
    EXPECT_TRUE(has_text(set.out, "data: 39 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 00 00 00 00\n"));

    rlk_run query = sim.run_rlk({"5", "1"});
    EXPECT_TRUE(has_text(query.out, "tolvek_cmn_card_status_query\nparam(cnt: 0):\ntolvek_cmn_cmd_send, t: 39, l: 0\n"));
    EXPECT_TRUE(has_text(query.out, "data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"));
    rlk_run kinds = sim.run_rlk({"5", "4"});
    EXPECT_TRUE(has_text(kinds.out, "tolvek_cmn_card_type_query\n"));
    EXPECT_TRUE(has_text(kinds.out, "data: 38 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"))
        << "no card in slot 1, so no type";

    /* General mode: the line is recorded, the card stays out. */
    sim.run_rlk({"5", "3", "1", "0", "5"});
    rlk_run get = sim.run_rlk({"5", "2", "1"});
    EXPECT_TRUE(has_text(get.out, "data: 37 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00\n"));
    EXPECT_NE(sim.ctl_ok("ext card").find("slot1 present=0 power=1 type=2 mode=0 level=1"), std::string::npos);

    /* The slots are modem state: a restarted simulator still sees them. */
    ASSERT_TRUE(sim.restart());
    rlk_run after = sim.run_rlk({"5", "1"});
    EXPECT_TRUE(has_text(after.out, "data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00\n"));
}

TEST_F(CmnCardTest, SarStateSetThroughTheControlInterfaceIsReadBack)
{
    rlk_run fresh = sim.run_rlk({"5", "5"});
    EXPECT_TRUE(has_text(fresh.out, "dsi vailid = 1 , dsi value = 0\nSAR DSI: 0\n"));

    sim.ctl_ok("sar state 7");
    rlk_run r = sim.run_rlk({"5", "5"});
    EXPECT_TRUE(has_text(r.out, "RIL[tolvek_get_sar_dsi:"));
    EXPECT_TRUE(has_text(r.out, "dsi vailid = 1 , dsi value = 7\nSAR DSI: 7\n"));
    EXPECT_FALSE(has_text(r.out, "note:"));
    EXPECT_EQ(sim.ctl_ok("sar state"), "7");
    EXPECT_EQ(sim.ctl("sar state 21").rfind("error", 0), 0u);

    /* Without the service the query fails with -1, and the group still
     * reports no error. */
    sim.ctl_ok("down sar");
    rlk_run down = sim.run_rlk({"5", "5"});
    EXPECT_TRUE(has_text(down.out, "qmi_client_init_instance failed, qmi_client_error = "));
    EXPECT_TRUE(has_text(down.out, "SAR DSI: -1\n"));
    EXPECT_FALSE(has_text(down.out, "note:"));
}

}  // namespace
