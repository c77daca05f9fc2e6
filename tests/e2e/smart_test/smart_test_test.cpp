/* Option 11's runs that restart the modem, against a private simulator:
 * SSR around the restart level, full dump with the saved level and the
 * update count, the modem print switches, and the subsystem restart seen
 * from both sides (notes, the AP switch and NV sync are a transcript). */
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

/* Each of `texts` in `out`, in this order, and none of `absent`. */
void expect_texts(const std::string &out, const std::vector<std::string> &texts,
                  const std::vector<std::string> &absent = {})
{
    size_t at = 0;
    for (const std::string &t : texts) {
        size_t found = out.find(t, at);
        EXPECT_NE(found, std::string::npos) << t << "\n---\n" << out;
        at = found == std::string::npos ? at : found + 1;
    }
    for (const std::string &t : absent) EXPECT_FALSE(has_text(out, t)) << t << "\n---\n" << out;
}

using typed = std::vector<std::pair<uint32_t, long long>>;

class SmartTestTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        /* A restart delay short enough for tests, long enough to be seen. */
        sim.ctl_ok("ext restart-delay 300");
        setprop(k_wait, "0");
    }
    rlk_run rlk(std::vector<std::string> args) { return sim.run_rlk(args); }
    std::string prop(const char *key) { return sim.ctl_ok(std::string("getprop ") + key); }
    void setprop(const char *key, const std::string &v) { sim.ctl_ok(std::string("setprop ") + key + " " + v); }
    long long counter(const std::string &name) { return atoll(sim.ctl_ok("counter get " + name).c_str()); }

    /* Waits (bounded) until the modem has come back from its `ups`-th
     * restart and every service is up. */
    bool all_up_within(int ms, long long ups)
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
    typed typed_requests()
    {
        typed out;
        for (const ext_wire_request &r : ext_last_requests(sim, 64)) {
            if (r.msg_code != REQUEST_ID_COMMON || r.u32(0) != TOLVEK_COMMON_CMD_TYPED) continue;
            out.push_back({r.u32(8), r.u32(12) == 4 ? (long long)r.u32(16) : -1});
        }
        return out;
    }

    sim_instance sim;
};

TEST_F(SmartTestTest, SsrAroundTheLevelWithAndWithoutWaits)
{
    /* The level already open: one request, no property changed. */
    setprop(k_level, "ALL_ENABLE");
    rlk_run r = rlk({"11", "0", "1"});
    expect_texts(r.out, {"]: Will trigger SSR of modem, the current state: ALL_ENABLE\n\n"},
                 {"need to open ssr", "ssr wait_s", "back to old ssr state"});
    EXPECT_TRUE(has_syslog(r, "] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: "
                              "ALL_ENABLE\n"));
    EXPECT_EQ(typed_requests(), (typed{{31, 4096}}));
    EXPECT_EQ(prop(k_level), "ALL_ENABLE");
    EXPECT_EQ(prop(k_level_bak), "");
    ASSERT_TRUE(all_up_within(2000, 1));

    /* A closed level is opened around the request and restored; no wait. */
    setprop(k_level, "ALL_DISABLE");
    expect_texts(rlk({"11", "0", "0"}).out,
                 {"]: Will trigger SSR of modem, the current state: ALL_DISABLE\n", "]: need to open ssr\n",
                  "]: ssr wait_s = 0\n", "]: modem ssr will not wait\n", "]: t 31", "]: ssr wait_s = 0\n",
                  "]: modem ssr will not wait\n", "]: back to old ssr state\n"},
                 {"start to wait"});
    EXPECT_EQ(typed_requests(), (typed{{31, 4096}, {31, 4096}}));
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    ASSERT_TRUE(all_up_within(2000, 2));
    /* An unset level reads as disabled and is restored as such. */
    sim.ctl_ok(std::string("setprop ") + k_level);
    expect_texts(rlk({"11", "0", "1"}).out, {"the current state: ALL_DISABLE\n"});
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    ASSERT_TRUE(all_up_within(2000, 3));

    /* The seconds set are waited twice, and the modem restarts. */
    setprop(k_wait, "1");
    long long start = monotonic_ms();
    r = rlk({"11", "0", "1"});
    EXPECT_GE(monotonic_ms() - start, 2000) << "two waits of one second";
    expect_texts(r.out, {"]: modem ssr start to wait 1s to init\n\n", "]: modem ssr end to wait 1s to init\n\n"});
    EXPECT_EQ(prop(k_level), "ALL_DISABLE");
    EXPECT_EQ(counter("ext.restart.down"), 4);
    EXPECT_TRUE(all_up_within(2000, 4));
    /* The modem answers again after its restart. */
    expect_texts(rlk({"4", "1", "0", "550"}).out, {"data:  08 3A 55 43 13 10 32 54 06\n"});
}

TEST_F(SmartTestTest, FullDumpsSavedLevelAndUpdateCount)
{
    /* An existing saved level is kept; the update count goes 7 -> 8. */
    setprop(k_level, "ALL_ENABLE");
    setprop(k_level_bak, "ALL_DISABLE");
    sim.ctl_ok(std::string("efs put ") + k_update_count + " 07000000");
    rlk_run r = rlk({"11", "1", "0"});
    EXPECT_EQ(r.out.rfind("Will trigger Full Dump, the current state: ALL_ENABLE, the default state: "
                          "ALL_DISABLE\nRIL[tolvek_smart_test_full_dump:", 0),
              0u)
        << r.out;
    expect_texts(r.out,
                 {"]: need to close ssr\n\n", "]: PROP_MODEM_SSR_UPDATE_COUNT read ret: 0, old update_cnt: 7, len: 4\n",
                  "]: PROP_MODEM_SSR_UPDATE_COUNT write ret: 0, new update_cnt: 8\n"},
                 {"need to save ssr state"});
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
    ASSERT_TRUE(all_up_within(2000, 1));

    /* A disabled level is saved once and left alone. */
    sim.ctl_ok(std::string("setprop ") + k_level_bak);
    r = rlk({"11", "1", "1"});
    expect_texts(r.out,
                 {"]: need to save ssr state\n\n",
                  "Will trigger Full Dump, the current state: ALL_DISABLE, the default state: ALL_DISABLE\n"},
                 {"need to close ssr", "PROP_MODEM_SSR_UPDATE_COUNT"});
    EXPECT_EQ(prop(k_level_bak), "ALL_DISABLE");
    ASSERT_TRUE(all_up_within(2000, 2));

    /* An unreadable update count counts from zero, and a further dump
     * neither saves the level again nor overwrites an earlier file. */
    setprop(k_level, "ALL_ENABLE");
    sim.ctl_ok(std::string("efs rm ") + k_update_count);
    r = rlk({"11", "1", "0"});
    expect_texts(r.out,
                 {"]: PROP_MODEM_SSR_UPDATE_COUNT read ret: -2, old update_cnt: 0, len: 4\n",
                  "]: tolvek_efs_read failed, maybe empty\n"},
                 {"need to save ssr state"});
    int priority = -1;
    for (const log_line &l : r.syslog) {
        if (has_text(l.text, "tolvek_efs_read failed, maybe empty")) priority = l.priority;
    }
    EXPECT_EQ(priority, 3);
    EXPECT_EQ(sim.ctl_ok(std::string("efs get ") + k_update_count), "01000000");
    EXPECT_EQ(prop(k_level_bak), "ALL_DISABLE");
    struct stat st;
    for (const char *n : {"1", "2", "3"}) {
        EXPECT_EQ(stat((sim.state_dir() + "/dumps/modem_full_dump_" + n + ".txt").c_str(), &st), 0) << n;
    }
}

TEST_F(SmartTestTest, ModemPrintSwitchesWriteOrDeleteTheirFlagThenSyncAndRestart)
{
    setprop(k_level, "ALL_ENABLE");
    const struct {
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
            expect_texts(rlk({"11", c.par, opt}).out,
                         {std::string("]: ") + c.name + ", opt = " + opt + "\n\n", "]: success, pls wait 10 seconds \n"});
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
    expect_texts(rlk({"11", "4", "0"}).out, {"]: tolvek_efs_delete failed\n"}, {"success"});
    EXPECT_EQ(counter("ext.nv_sync"), restarts);
    EXPECT_EQ(counter("ext.ssr"), restarts);
}

}  // namespace
