/* Option 7 run as a user runs it: the sample payload under every event id
 * and every log code the parsers understand, unknown codes, ids above
 * 0xFFFF, and the type and argument errors. */
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "process_runner.h"

namespace {

const char kHelp7[] =
    "\n=========== blew: radio_lab_kit(rlk) cmd help =======================================================\n"
    "7: tolvek modem stats test\n"
    "   rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */\n"
    "                                    id: id of log or event \n"
    "   rlk 7 2 mask                  /* get the debug info of modem stats */\n"
    "                                    mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all \n"
    "=========== above: radio_lab_kit(rlk) cmd help =======================================================\n\n";

const char kTooFew[] = "\nnote: Too few parameters, Pls refer to the following cmd:\n";

class RlkModemStats : public testing::Test {
protected:
    void SetUp() override
    {
        char dir_template[] = "/tmp/rlk_stats_XXXXXX";
        ASSERT_NE(mkdtemp(dir_template), nullptr);
        dir_ = dir_template;
    }
    void TearDown() override
    {
        for (const char *name : {"syslog.log", "logcat.log"}) unlink((dir_ + "/" + name).c_str());
        rmdir(dir_.c_str());
    }
    run_result rlk(const std::vector<std::string> &args)
    {
        std::vector<std::string> argv = {RLK_BINARY, "7"};
        argv.insert(argv.end(), args.begin(), args.end());
        return run_process(argv, {"RLK_MODEMD_SOCKET=" + dir_ + "/modemd.sock",
                                  "RLK_SYSLOG_FILE=" + dir_ + "/syslog.log",
                                  "RLK_LOGCAT_FILE=" + dir_ + "/logcat.log"});
    }
    std::string dir_;
};

std::string length_line(int type, unsigned id)
{
    char line[96];
    snprintf(line, sizeof(line), "length = 68, type = %d, id = %u(0x%x)\n", type, id, id);
    return line;
}

std::string event_header(unsigned id)
{
    return length_line(1, id) + "modem_stats_diag_process_event_ex: event_id " + std::to_string(id) +
           ", length 68, sub_id = 0\n";
}

std::string log_header(unsigned code)
{
    char line[96];
    snprintf(line, sizeof(line), "modem_stats_diag_process_log_ex: log_id 0x%x, length 68, sub_id = 0\n", code);
    return length_line(0, code) + line;
}

/* What each event parser makes of the sample bytes
 * 0f 00 03 00 00 00 00 01 13 01 ... (bytes 32, 33: 01 02). */
TEST_F(RlkModemStats, SamplePayloadUnderEveryEventId)
{
    const std::string sip = "sip_call_id = 196623\n";
    const struct {
        unsigned id;
        std::string lines;
    } cases[] = {
        {629, "call_id = 15, call_type = 0, srv_type = 3\n"},
        {631, "num_calls = 15, call_id = 0\n"},
        {1428, sip},
        {1429, sip},
        {1430, sip},
        {1431, sip},
        {1432, sip},
        {1433, sip},
        {1606,
         "sub_id = 0, rrc_state_current_in = 15\n"
         "1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 0, "
         "rrc_state_current = 15, rrc_state_current_in = 15, old rrc_active_time = 0, old rrc_setup_count = 0\n"
         "1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0\n"},
        {1632, "lte_emm_timer_expiry, sub_id = 0, timer_id = 15\n"},
        {1995, "sub_id = 0, rlf_count_rrc_connected = 15, rlf_count_lte_active = 3, rlf_cause = 0\n"},
        {2568,
         "cause = 15, freq = 768, pci = 0\n"
         "DATA_IS_NOT_VALID(15), name(modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn), "
         "id(0xa08)\n"},
        {2622,
         "version = 0, ant_number = 0, ant_switch_path = 256, sig_path = 275, old_config = 0, new_config = 3\n"},
        {3184, "ssb_freq = 196623, pci = 0, bw = 0\n"},
        {3215, "nr5g_emm_timer_expiry, sub_id = 0, timer_id = 15\n"},
        {3243, "sub_id = 0, scg_failure_cause = 513\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.id);
        run_result r = rlk({"1", std::to_string(c.id)});
        EXPECT_TRUE(exited_cleanly(r.status));
        EXPECT_EQ(r.out, event_header(c.id) + c.lines);
        EXPECT_EQ(r.err, "");
    }
}

TEST_F(RlkModemStats, SamplePayloadUnderEveryLogCode)
{
    /* Codes the log dispatcher understands.  A code whose parser is not
     * registered prints the two header lines only; a registered parser
     * prints its own lines after them.  Either way the run ends cleanly. */
    const unsigned codes[] = {0x1568, 0x156E, 0x1830, 0x1831, 0x4179, 0x5096, 0xB062, 0xB064, 0xB0C2,
                              0xB111, 0xB14E, 0xB16D, 0xB16E, 0xB16F, 0xB173, 0xB193, 0xB823, 0xB825,
                              0xB872, 0xB883, 0xB884, 0xB885, 0xB887, 0xB888, 0xB88A, 0xB8A7, 0xB8C9,
                              0xB8D2, 0xB8D8, 0xB8DD, 0xB975, 0xB97F, 0xB981, 0xB98F};
    for (unsigned code : codes) {
        SCOPED_TRACE(testing::Message() << std::hex << code);
        char hex[16];
        snprintf(hex, sizeof(hex), "0x%x", code);
        run_result r = rlk({"0", hex});
        EXPECT_TRUE(exited_cleanly(r.status));
        EXPECT_EQ(r.out.compare(0, log_header(code).size(), log_header(code)), 0) << r.out;
        EXPECT_EQ(r.err, "");
    }
}

TEST_F(RlkModemStats, UnknownCodesPrintOnlyTheHeaders)
{
    run_result r = rlk({"0", "0x1234"});
    EXPECT_TRUE(exited_cleanly(r.status));
    EXPECT_EQ(r.out, log_header(0x1234));
    r = rlk({"1", "630"});
    EXPECT_EQ(r.out, event_header(630));
}

TEST_F(RlkModemStats, IdsAboveFFFFKeepTheirLow16Bits)
{
    /* 0x10c70 and 68720 are 3184 plus 0x10000; 70003 is 0x11173. */
    for (const char *id : {"0x10c70", "68720"}) {
        SCOPED_TRACE(id);
        run_result r = rlk({"1", id});
        EXPECT_EQ(r.out, event_header(3184) + "ssb_freq = 196623, pci = 0, bw = 0\n");
    }
    run_result r = rlk({"0", "70003"});
    EXPECT_EQ(r.out, log_header(0x1173));
}

TEST_F(RlkModemStats, TypeAndArgumentErrors)
{
    const struct {
        std::vector<std::string> args;
        std::string out;
    } cases[] = {
        {{}, std::string(kTooFew) + kHelp7},
        {{"1"}, std::string(kTooFew) + "tolvek_test_modem_stats_log_or_event FAIL\n" + kHelp7},
        {{"0"}, std::string(kTooFew) + "tolvek_test_modem_stats_log_or_event FAIL\n" + kHelp7},
        {{"5", "3184"}, std::string("invalid type = 5\n") + kHelp7},
        {{"-1", "3184"}, std::string("invalid type = -1\n") + kHelp7},
        /* A non-number type is 0: the log dispatcher, where 3184 is unknown. */
        {{"abc", "3184"}, log_header(3184)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        run_result r = rlk(c.args);
        EXPECT_TRUE(exited_cleanly(r.status));
        EXPECT_EQ(r.out, c.out);
    }
}

}  // namespace
