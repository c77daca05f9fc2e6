/* The eSIM switch where timing decides what a run prints: a restart of the
 * UIM service in the middle of a switch, finished by a second run, and a
 * killed switch, which leaves no logical channel open (the other runs are
 * step journals here). */
#include <signal.h>
#include <sys/wait.h>

#include <string>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

/* The UIM service restarts while a request is in flight; the run fails at
 * that step, and a second run finishes the switch.  The restart came
 * between disable and delete: the second run deleted the profile the first
 * one noted, and only that one.  With debug on, the console shows the
 * steps. */
TEST(EsimSwitch, RestartHalfWayIsFinishedByASecondRun)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    const struct {
        const char *esim_on, *crash_on, *failure, *resumed, *step;
    } cases[] = {
        {"1", "0x31", "esim step \"power up SIM2\" failed, code -2", "EFS already holds this EID",
         "]: esim step: power up SIM2"},
        {"2", "apdu:BF33", "esim step \"delete profile\" failed, code -2",
         "profile 89445000000000000017 was left disabled by an earlier run", "]: esim step: close logical channel 1"},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(std::string("uim crash-on ") + c.crash_on + " 100");
        std::string out = sim.run_rlk({"5", "10", c.esim_on, "1"}).out;
        EXPECT_NE(out.find(c.failure), std::string::npos) << out;
        EXPECT_NE(out.find("failed ("), std::string::npos) << out;
        out = sim.run_rlk({"5", "10", c.esim_on, "1"}).out;
        EXPECT_NE(out.find(": ok (0)"), std::string::npos) << out;
        EXPECT_NE(out.find(c.resumed), std::string::npos) << out;
        EXPECT_NE(out.find(c.step), std::string::npos) << "the console shows the steps\n" << out;
    }
    std::string state = sim.ctl_ok("uim state");
    EXPECT_EQ(state.find("89445000000000000017"), std::string::npos) << state;
    EXPECT_NE(state.find("profile 89445000000000000025 disabled"), std::string::npos) << state;
    EXPECT_NE(state.find("slot2 on psim"), std::string::npos) << state;
    EXPECT_EQ(sim.ctl_ok("efs get /nv/item_files/modem/uim/uimdrv/esim_eid"), "89049032000001000000000000000074");
    EXPECT_EQ(sim.ctl("efs get /nv/item_files/modem/tolvek/esim_delete_pending").rfind("error", 0), 0u);
}

TEST(EsimSwitch, KilledSwitchLeavesNoChannelOpen)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    auto open_channels = [&] { return sim.ctl_ok("uim state").find("channels 0") == std::string::npos; };
    for (int kill_no = 0; kill_no < 3; kill_no++) {
        SCOPED_TRACE(kill_no);
        const std::string apdus = sim.ctl_ok("counter get uim.apdus");
        sim.ctl_ok("delay uim 0x3B 10000 1");
        pid_t pid = sim.start_rlk({"5", "10", "2", "1"});
        ASSERT_GT(pid, 0);
        EXPECT_TRUE(poll_until([&] { return sim.ctl_ok("counter get uim.apdus") != apdus; }, 3000));
        /* The APDU is on its way on an open channel. */
        EXPECT_NE(sim.ctl_ok("uim state").find("channels 1"), std::string::npos);
        kill(pid, SIGKILL);
        ASSERT_EQ(waitpid(pid, nullptr, 0), pid);
        EXPECT_TRUE(poll_until([&] { return !open_channels(); }, 3000));
        sim.ctl_ok("clear-faults");
    }
    EXPECT_NE(sim.run_rlk({"5", "10", "2", "1"}).out.find("esim switch to PSIM2: ok (0)"), std::string::npos);
    EXPECT_FALSE(open_channels());
}

}  // namespace
