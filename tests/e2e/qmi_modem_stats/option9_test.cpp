/* `rlk 9` where a transcript cannot tell: what the Android log holds, that
 * an invalid sub sends nothing, the service restarted between runs (it
 * forgets the started collection until the next run starts it again) with
 * the counters option 7 reports, and the ten real attempts, a second
 * apart, against an absent service. */
#include <string>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

TEST(Option9, LogRestartCountersAndAbsentServiceTenRealAttempts)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    EXPECT_TRUE(sim.run_rlk({"9", "7"}).logcat.empty()) << "nothing was opened";
    rlk_run unknown = sim.run_rlk({"9", "13", "0"});
    ASSERT_FALSE(unknown.logcat.empty());
    EXPECT_EQ(unknown.logcat.back().text, "modem_api_release: function exit");
    sim.run_rlk({"9", "0", "2"});
    EXPECT_EQ(sim.ctl_ok("last 256 vs").find("0x0207"), std::string::npos) << "an invalid sub sends nothing";

    sim.ctl_ok("counter set stats.main.cmd_ok_count 0");
    EXPECT_NE(sim.run_rlk({"9", "20", "0"}).out.find("ASDIV DATA: rx_agc_0: -72.50"), std::string::npos);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "1");
    sim.ctl_ok("ssr vs 50");
    sim.ctl_ok("ssr ext 50");
    rlk_run again;
    for (int i = 0; i < 50 && again.out.find("ASDIV DATA") == std::string::npos; i++) {
        again = sim.run_rlk({"9", "20", "0"});
    }
    EXPECT_NE(again.out.find("ASDIV DATA: rx_agc_0: -72.50, rx_agc_1: -75.25\n"), std::string::npos) << again.out;
    EXPECT_NE(sim.ctl_ok("counters").find("stats.main.cmd_ok_count 4"), std::string::npos);
    rlk_run debug = sim.run_rlk({"7", "2", "1"});
    EXPECT_NE(debug.out.find("UNPK[size:1], g_modem_stats_feature_enable_status = 1\n"), std::string::npos) << debug.out;
    EXPECT_NE(debug.out.find("UNPK[size:8], g_modem_stats_cmd_ok_count = 4\n"), std::string::npos) << debug.out;

    sim.ctl_ok("down vs");
    long long start = monotonic_ms();
    rlk_run absent = sim.run_rlk({"9", "0", "0"});
    long long spent = monotonic_ms() - start;
    EXPECT_GE(spent, 9000);
    EXPECT_LT(spent, 20000);
    EXPECT_EQ(absent.out, "modem_api_set_orvex_feature_status, start fail, result = 1\n"
                          "opt = 0, sub = 0, g_orvex_client_id = -1\n"
                          "orvex qmi is not yet inited");
}

}  // namespace
