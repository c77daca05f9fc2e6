/* The allocator's trace decision read through the real property service of
 * a private simulator.  The decision is once per process, so each case
 * runs in a re-executed child that inherits the simulator's socket. */
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "orvex_mem.h"
#include "sim_fixture.h"

namespace {

/* Child: one allocation, then exit 0 when tracing is as expected. */
void decide_and_exit(bool expect_traced)
{
    void *block = orvex_malloc_adv(32, "decide_and_exit");
    bool ok =
        block && orvex_mem_trace_enabled() == expect_traced && orvex_mem_trace_count() == (expect_traced ? 1u : 0u);
    orvex_free_adv(block);
    _exit(ok && orvex_mem_trace_count() == 0 ? 0 : 1);
}

/* Absent, then "true", then "false": only "true" traces, and only the
 * absent property is logged, once. */
TEST(OrvexSimPropertyTest, TraceDecisionFromTheSimulator)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    /* In the re-executed child there is nothing to set up. */
    const bool child = getenv("ORVEX_SIM_PROPERTY_CHILD") != nullptr;
    sim_instance sim;
    if (!child) {
        ASSERT_TRUE(sim.start());
        setenv("RLK_LOGCAT_FILE", (sim.dir() + "/orvex_logcat.log").c_str(), 1);
        setenv("ORVEX_SIM_PROPERTY_CHILD", "1", 1);
    }
    EXPECT_EXIT(decide_and_exit(false), testing::ExitedWithCode(0), "");
    for (const char *value : {"true", "false"}) {
        if (!child) sim.ctl_ok(std::string("setprop ") + ORVEX_MEM_TRACE_PROP + " " + value);
        EXPECT_EXIT(decide_and_exit(value[0] == 't'), testing::ExitedWithCode(0), "") << value;
    }
    std::vector<log_line> lines = read_log_file(sim.dir() + "/orvex_logcat.log", true);
    unsetenv("ORVEX_SIM_PROPERTY_CHILD");
    unsetenv("RLK_LOGCAT_FILE");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].priority, 3);
    EXPECT_EQ(lines[0].tag, "ORVEX");
    EXPECT_EQ(lines[0].text, "orvex_mem_init: ORVEX_MEM_TRACE_PROP not exist");
}

}  // namespace
