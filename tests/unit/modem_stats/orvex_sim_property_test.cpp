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

constexpr const char *k_child_env = "ORVEX_SIM_PROPERTY_CHILD";

/* Child: one allocation, then exit 0 when tracing is as expected. */
void decide_and_exit(bool expect_traced)
{
    void *block = orvex_malloc_adv(32, "decide_and_exit");
    bool ok = block && orvex_mem_trace_enabled() == expect_traced &&
              orvex_mem_trace_count() == (expect_traced ? 1u : 0u);
    orvex_free_adv(block);
    ok = ok && orvex_mem_trace_count() == 0;
    _exit(ok ? 0 : 1);
}

class OrvexSimPropertyTest : public testing::Test {
protected:
    /* In the parent: a simulator with `value` set (null: unset), and the
     * Android-log file.  In the re-executed child: nothing to set up. */
    void prepare(const char *value)
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        if (getenv(k_child_env)) return;
        ASSERT_TRUE(sim_.start());
        if (value) sim_.ctl_ok(std::string("setprop ") + ORVEX_MEM_TRACE_PROP + " " + value);
        logcat_ = sim_.dir() + "/orvex_logcat.log";
        setenv("RLK_LOGCAT_FILE", logcat_.c_str(), 1);
        setenv(k_child_env, "1", 1);
    }
    void TearDown() override
    {
        unsetenv(k_child_env);
        unsetenv("RLK_LOGCAT_FILE");
        if (!logcat_.empty()) unlink(logcat_.c_str());
    }
    std::vector<log_line> logcat() const { return read_log_file(logcat_, true); }

    sim_instance sim_;
    std::string logcat_;
};

TEST_F(OrvexSimPropertyTest, TrueTurnsTracingOnSilently)
{
    prepare("true");
    EXPECT_EXIT(decide_and_exit(true), testing::ExitedWithCode(0), "");
    EXPECT_TRUE(logcat().empty());
}

TEST_F(OrvexSimPropertyTest, FalseLeavesTracingOffSilently)
{
    prepare("false");
    EXPECT_EXIT(decide_and_exit(false), testing::ExitedWithCode(0), "");
    EXPECT_TRUE(logcat().empty());
}

TEST_F(OrvexSimPropertyTest, AbsentPropertyIsLoggedOnce)
{
    prepare(nullptr);
    EXPECT_EXIT(decide_and_exit(false), testing::ExitedWithCode(0), "");
    std::vector<log_line> lines = logcat();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].priority, 3);
    EXPECT_EQ(lines[0].tag, "ORVEX");
    EXPECT_EQ(lines[0].text, "orvex_mem_init: ORVEX_MEM_TRACE_PROP not exist");
}

}  // namespace
