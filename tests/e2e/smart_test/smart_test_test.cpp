/* Option 11's SSR with the wait property set: the seconds set are waited
 * twice and the modem restarts and answers again (the other runs of the
 * option are transcripts and step journals here). */
#include <string>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

TEST(SmartTest, SsrWaitsTheSetSecondsTwice)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("ext restart-delay 300");
    sim.ctl_ok("setprop persist.radio.ssr_wait_s 1");
    sim.ctl_ok("setprop persist.vendor.ssr.restart_level ALL_DISABLE");
    long long start = monotonic_ms();
    rlk_run r = sim.run_rlk({"11", "0", "1"});
    EXPECT_GE(monotonic_ms() - start, 2000) << "two waits of one second";
    size_t at = r.out.find("]: modem ssr start to wait 1s to init\n\n");
    EXPECT_NE(at, std::string::npos) << r.out;
    EXPECT_NE(r.out.find("]: modem ssr end to wait 1s to init\n\n", at), std::string::npos) << r.out;
    EXPECT_EQ(sim.ctl_ok("getprop persist.vendor.ssr.restart_level"), "ALL_DISABLE");
    EXPECT_EQ(sim.ctl_ok("counter get ext.restart.down"), "1");
    EXPECT_TRUE(poll_until([&] { return sim.ctl_ok("counter get ext.restart.up") == "1"; }, 2000));
    EXPECT_TRUE(poll_until([&] { return sim.ctl_ok("services").find("down") == std::string::npos; }, 2000));
    EXPECT_NE(sim.run_rlk({"4", "1", "0", "550"}).out.find("data:  08 3A 55 43 13 10 32 54 06\n"), std::string::npos);
}

}  // namespace
