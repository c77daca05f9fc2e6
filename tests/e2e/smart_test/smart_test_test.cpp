/* Option 11 through the real rlk against a private simulator: argument
 * notes, SSR around the restart level, full dump with the saved level and
 * the update count, NV sync, the print switches, and the subsystem restart
 * seen from both sides. */
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../extension/ext_test_util.h"
#include "state_store.h"

namespace {

const char k_level[] = "persist.vendor.ssr.restart_level";
const char k_level_bak[] = "persist.vendor.ssr.restart_level_bak";
const char k_wait[] = "persist.radio.ssr_wait_s";
const char k_update_count[] = "/nv/item_files/modem/tolvek/ssr_update_count";

const std::string k_help_11 =
    "\n=========== blew: radio_lab_kit(rlk) cmd help =======================================================\n"
    "11: smart test\n"
    "   rlk 11 0                      /* trigger SSR of modem */\n"
    "   rlk 11 1                      /* trigger Full Dump */\n"
    "   rlk 11 2                      /* trigger NV SYNC */\n"
    "   rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */\n"
    "   rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */\n"
    "   rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */\n"
    "   rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */\n"
    "=========== above: radio_lab_kit(rlk) cmd help =======================================================\n\n";

/* Restart delay short enough for tests, long enough to be seen. */
const int k_test_restart_ms = 300;

class SmartTestTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        sim.ctl_ok("ext restart-delay " + std::to_string(k_test_restart_ms));
        sim.ctl_ok(std::string("setprop ") + k_wait + " 0");
    }

    rlk_run rlk(std::vector<std::string> args) { return sim.run_rlk(args); }
    std::string prop(const char *key) { return sim.ctl_ok(std::string("getprop ") + key); }
    void setprop(const char *key, const std::string &v) { sim.ctl_ok(std::string("setprop ") + key + " " + v); }
    long long counter(const std::string &name) { return atoll(sim.ctl_ok("counter get " + name).c_str()); }

    /* Waits (bounded) until the modem has come back from its `ups`-th
     * restart and every service is up. */
    bool all_up_within(int ms, long long ups = 1)
    {
        long long end = monotonic_ms() + ms;
        do {
            if (counter("ext.restart.up") >= ups && sim.ctl_ok("services").find("down") == std::string::npos) {
                return true;
            }
            usleep(20 * 1000);
        } while (monotonic_ms() < end);
        return false;
    }

    /* The typed requests the extension service received, oldest first:
     * (type, value or -1 for none). */
    std::vector<std::pair<uint32_t, long long>> typed_requests()
    {
        std::vector<std::pair<uint32_t, long long>> out;
        for (const ext_wire_request &r : ext_last_requests(sim, 64)) {
            if (r.msg_code != REQUEST_ID_COMMON || r.u32(0) != TOLVEK_COMMON_CMD_TYPED) continue;
            out.push_back({r.u32(8), r.u32(12) == 4 ? (long long)r.u32(16) : -1});
        }
        return out;
    }

    sim_instance sim;
};

using typed = std::vector<std::pair<uint32_t, long long>>;

TEST_F(SmartTestTest, ArgumentNotesPrintTheHelpAndSendNothing)
{
    struct {
        std::vector<std::string> args;
        std::string note;
    } cases[] = {
        {{"11"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n"},
        {{"11", "0"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n"},
        {{"11", "0", "2"}, "\nnote: opt(2) is invalid:\n"},
        {{"11", "3", "-1"}, "\nnote: opt(-1) is invalid:\n"},
        {{"11", "3", "on"}, ""}, /* atoi: 0, a valid off */
        {{"11", "7", "0"}, "invalid par_i = 7\n"},
        {{"11", "-1", "1"}, "invalid par_i = -1\n"},
        {{"11", "9", "5"}, "\nnote: opt(5) is invalid:\n"}, /* the opt is judged first */
    };
    for (const auto &c : cases) {
        rlk_run r = rlk(c.args);
        std::string label = c.args.size() > 2 ? c.args[1] + " " + c.args[2] : "short";
        if (c.note.empty()) {
            EXPECT_FALSE(has_text(r.out, "note:")) << label << r.out;
            continue;
        }
        EXPECT_EQ(r.out, c.note + k_help_11) << label;
        EXPECT_EQ(r.status, 0);
    }
    EXPECT_EQ(typed_requests(), typed{});
}

TEST_F(SmartTestTest, SsrWithLevelAlreadyEnabledSendsOnceAndChangesNoProperty)
{
    setprop(k_level, "ALL_ENABLE");
    rlk_run r = rlk({"11", "0", "1"});
    EXPECT_TRUE(has_text(r.out, "]: Will trigger SSR of modem, the current state: ALL_ENABLE\n\n")) << r.out;
    EXPECT_FALSE(has_text(r.out, "need to open ssr"));
    EXPECT_FALSE(has_text(r.out, "ssr wait_s"));
    EXPECT_FALSE(has_text(r.out, "back to old ssr state"));
    EXPECT_EQ(typed_requests(), (typed{{31, 4096}}));
    EXPECT_EQ(prop(k_level), "ALL_ENABLE");
    EXPECT_EQ(prop(k_level_bak), "");
    EXPECT_TRUE(has_syslog(r, "] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: "
                              "ALL_ENABLE\n"));
}

TEST_F(SmartTestTest, SsrWithoutWaitOpensSendsAndRestoresTheOldLevel)
{
    setprop(k_level, "ALL_DISABLE");
    rlk_run r = rlk({"11", "0", "0"});
    const char *in_order[] = {"Will trigger SSR of modem, the current state: ALL_DISABLE\n",
                              "need to open ssr\n",
                              "ssr wait_s = 0\n",
                              "modem ssr will not wait\n",
                              "t 31",
                              "ssr wait_s = 0\n",
                              "modem ssr will not wait\n",
                              "back to old ssr state\n"};
    size_t at = 0;
    for (const char *line : in_order) {
        size_t found = r.out.find(std::string("]: ") + line, at);
        ASSERT_NE(found, std::string::npos) << line << "\n" << r.out;
        at = found + 1;
    }
    EXPECT_FALSE(has_text(r.out, "start to wait"));
    EXPECT_EQ(typed_requests(), (typed{{31, 4096}}));
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    /* An unset level reads as disabled and is restored as such. */
    sim.ctl_ok(std::string("setprop ") + k_level);
    EXPECT_TRUE(has_text(rlk({"11", "0", "1"}).out, "the current state: ALL_DISABLE\n"));
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
}

TEST_F(SmartTestTest, SsrWaitsTheSecondsSetAndTheModemRestarts)
{
    setprop(k_level, "ALL_DISABLE");
    setprop(k_wait, "1");
    long long start = monotonic_ms();
    rlk_run r = rlk({"11", "0", "1"});
    long long took = monotonic_ms() - start;
    EXPECT_GE(took, 2000) << "two waits of one second";
    EXPECT_TRUE(has_text(r.out, "]: modem ssr start to wait 1s to init\n\n")) << r.out;
    EXPECT_TRUE(has_text(r.out, "]: modem ssr end to wait 1s to init\n\n"));
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    EXPECT_EQ(counter("ext.restart.down"), 1);
    EXPECT_TRUE(all_up_within(2000));
    /* The modem answers again after its restart. */
    rlk_run nv = rlk({"4", "1", "0", "550"});
    EXPECT_TRUE(has_text(nv.out, "data:  08 3A 55 43 13 10 32 54 06\n")) << nv.out;
}

TEST_F(SmartTestTest, FullDumpKeepsAnExistingSavedLevelAndCountsTheChange)
{
    setprop(k_level, "ALL_ENABLE");
    setprop(k_level_bak, "ALL_DISABLE");
    sim.ctl_ok(std::string("efs put ") + k_update_count + " 07000000");
    rlk_run r = rlk({"11", "1", "0"});
    EXPECT_FALSE(has_text(r.out, "need to save ssr state"));
    const std::string first = "Will trigger Full Dump, the current state: ALL_ENABLE, the default state: "
                              "ALL_DISABLE\nRIL[tolvek_smart_test_full_dump:";
    EXPECT_EQ(r.out.compare(0, first.size(), first), 0) << r.out;
    EXPECT_TRUE(has_text(r.out, "]: need to close ssr\n\n"));
    EXPECT_TRUE(has_text(r.out, "]: PROP_MODEM_SSR_UPDATE_COUNT read ret: 0, old update_cnt: 7, len: 4\n"));
    EXPECT_TRUE(has_text(r.out, "]: PROP_MODEM_SSR_UPDATE_COUNT write ret: 0, new update_cnt: 8\n"));
    EXPECT_EQ(sim.ctl_ok(std::string("efs get ") + k_update_count), "08000000");
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    EXPECT_EQ(prop(k_level_bak), "ALL_DISABLE");
    EXPECT_EQ(typed_requests(), (typed{{31, 8192}}));
    EXPECT_EQ(counter("ext.full_dump"), 1);
    std::vector<uint8_t> dump;
    EXPECT_TRUE(modemd::read_whole_file(sim.state_dir() + "/dumps/modem_full_dump_1.txt", &dump));
    EXPECT_TRUE(has_text(std::string(dump.begin(), dump.end()), "ext.full_dump 1\n"));
    /* The console line is not in the system log; the traces are. */
    EXPECT_FALSE(has_syslog(r, "the default state: ALL_DISABLE\n"));
    EXPECT_TRUE(has_syslog(r, "] tolvek_smart_test_full_dump: need to close ssr\n"));
}

TEST_F(SmartTestTest, FullDumpSavesTheLevelOnceAndLeavesADisabledLevelAlone)
{
    setprop(k_level, "ALL_DISABLE");
    rlk_run first = rlk({"11", "1", "1"});
    EXPECT_TRUE(has_text(first.out, "]: need to save ssr state\n\n")) << first.out;
    EXPECT_TRUE(has_text(first.out, "Will trigger Full Dump, the current state: ALL_DISABLE, the default state: "
                                    "ALL_DISABLE\n"));
    EXPECT_FALSE(has_text(first.out, "need to close ssr"));
    EXPECT_FALSE(has_text(first.out, "PROP_MODEM_SSR_UPDATE_COUNT"));
    EXPECT_EQ(prop(k_level_bak), "ALL_DISABLE");
    ASSERT_TRUE(all_up_within(2000, 1));

    /* A second dump never overwrites the first one's file. */
    setprop(k_level, "ALL_ENABLE");
    EXPECT_FALSE(has_text(rlk({"11", "1", "0"}).out, "need to save ssr state"));
    EXPECT_EQ(prop(k_level_bak), "ALL_DISABLE");
    struct stat st;
    EXPECT_EQ(stat((sim.state_dir() + "/dumps/modem_full_dump_1.txt").c_str(), &st), 0);
    EXPECT_EQ(stat((sim.state_dir() + "/dumps/modem_full_dump_2.txt").c_str(), &st), 0);
}

TEST_F(SmartTestTest, UnreadableUpdateCountCountsFromZero)
{
    setprop(k_level, "ALL_ENABLE");
    sim.ctl_ok(std::string("efs rm ") + k_update_count);
    rlk_run r = rlk({"11", "1", "0"});
    EXPECT_TRUE(has_text(r.out, "]: PROP_MODEM_SSR_UPDATE_COUNT read ret: -2, old update_cnt: 0, len: 4\n"))
        << r.out;
    EXPECT_TRUE(has_text(r.out, "]: tolvek_efs_read failed, maybe empty\n"));
    bool error_priority = false;
    for (const log_line &l : r.syslog) {
        if (has_text(l.text, "tolvek_efs_read failed, maybe empty")) error_priority = l.priority == 3;
    }
    EXPECT_TRUE(error_priority);
    EXPECT_EQ(sim.ctl_ok(std::string("efs get ") + k_update_count), "01000000");
}

TEST_F(SmartTestTest, NvSyncFlushesTheModemStore)
{
    rlk_run r = rlk({"11", "2", "1"});
    EXPECT_TRUE(has_text(r.out, "Will trigger NV SYNC\nRIL[tolvek_send_common_qmi_msg:")) << r.out;
    EXPECT_TRUE(has_text(r.out, "]: l 0\n"));
    EXPECT_FALSE(has_text(r.out, "note:"));
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.u32(8), 35u);
    EXPECT_EQ(req.u32(12), 0u);
    EXPECT_EQ(counter("ext.nv_sync"), 1);
    EXPECT_EQ(counter("ext.restart.down"), 0);
}

TEST_F(SmartTestTest, ApPrintSwitchSetsTheStatisticsProperty)
{
    struct {
        const char *opt;
        const char *value;
    } cases[] = {{"1", "1"}, {"0", "2"}, {"1", "1"}};
    for (const auto &c : cases) {
        rlk_run r = rlk({"11", "3", c.opt});
        EXPECT_TRUE(has_text(r.out, std::string("]: ap_orvex_print, opt = ") + c.opt + "\n\n")) << r.out;
        EXPECT_TRUE(has_text(r.out, "]: success, need to reboot\n"));
        EXPECT_EQ(prop("persist.vendor.radio.print_stats"), c.value);
    }
    EXPECT_EQ(typed_requests(), typed{});
}

TEST_F(SmartTestTest, ModemPrintSwitchesWriteOrDeleteTheirFlagThenSyncAndRestart)
{
    setprop(k_level, "ALL_ENABLE");
    struct {
        const char *par;
        const char *name;
        const char *path;
        const char *on_hex;
    } cases[] = {
        {"4", "bp_orvex_print", "/orvex/orvex_print_mask", "1f000000"},
        {"5", "bp_qmi_print", "/nv/item_files/modem/tolvek/qmi_print_flag", "01"},
        {"6", "bp_rf_print", "/nv/item_files/modem/tolvek/rf_print_mask", "0f000000"},
    };
    int restarts = 0;
    for (const auto &c : cases) {
        for (const char *opt : {"0", "1"}) {
            rlk_run r = rlk({"11", c.par, opt});
            EXPECT_TRUE(has_text(r.out, std::string("]: ") + c.name + ", opt = " + opt + "\n\n")) << r.out;
            EXPECT_TRUE(has_text(r.out, "]: success, pls wait 10 seconds \n")) << r.out;
            std::string got = sim.ctl(std::string("efs get ") + c.path);
            EXPECT_EQ(got, opt[0] == '1' ? std::string("ok ") + c.on_hex : std::string("error -2")) << c.path;
            restarts++;
            ASSERT_TRUE(all_up_within(2000, restarts));
            EXPECT_EQ(counter("ext.restart.up"), restarts);
        }
    }
    EXPECT_EQ(counter("ext.nv_sync"), restarts);
    /* Switching off what is already off fails at the delete: no sync, no
     * restart. */
    sim.ctl_ok("efs rm /orvex/orvex_print_mask");
    rlk_run again = rlk({"11", "4", "0"});
    EXPECT_TRUE(has_text(again.out, "]: tolvek_efs_delete failed\n")) << again.out;
    EXPECT_FALSE(has_text(again.out, "success"));
    EXPECT_EQ(counter("ext.nv_sync"), restarts);
    EXPECT_EQ(counter("ext.ssr"), restarts);
}

}  // namespace
