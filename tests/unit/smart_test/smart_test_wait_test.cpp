/* The SSR wait and the SSR sequence around negative waits, with the sleep
 * replaced so that no test sleeps a modem's seconds (a negative wait is an
 * unsigned sleep of about 136 years). */
#include <ctype.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../frontend/frontend_test_util.h"
#include "sim_fixture.h"
#include "tolvek_smart_test.h"

namespace {

std::vector<unsigned int> g_sleeps;
/* Run by the fake sleep: lets a test change the world between waits. */
std::function<void()> g_during_sleep;

unsigned int fake_sleep(unsigned int seconds)
{
    g_sleeps.push_back(seconds);
    if (g_during_sleep) g_during_sleep();
    return 0;
}

/* "RIL[f:123]: " becomes "RIL[f:N]: ". */
std::string without_line_numbers(const std::string &out)
{
    std::string result;
    for (size_t i = 0; i < out.size(); i++) {
        result += out[i];
        if (out[i] == ':' && i + 1 < out.size() && isdigit(static_cast<unsigned char>(out[i + 1]))) {
            while (i + 1 < out.size() && isdigit(static_cast<unsigned char>(out[i + 1]))) i++;
            result += 'N';
        }
    }
    return result;
}

class SmartTestWaitTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        g_sleeps.clear();
        g_during_sleep = nullptr;
        tolvek_smart_test_set_sleep(fake_sleep);
    }
    void TearDown() override
    {
        tolvek_smart_test_set_sleep(nullptr);
        g_during_sleep = nullptr;
    }
    void setprop(const std::string &key, const std::string &v) { sim.ctl_ok("setprop " + key + " " + v); }

    sim_instance sim;
};

TEST_F(SmartTestWaitTest, WaitReadsThePropertyAndSleepsItsValue)
{
    struct {
        const char *value; /* "" leaves the property unset */
        int result;
        std::vector<unsigned int> sleeps;
        std::vector<std::string> texts;
    } cases[] = {
        {"", 3, {3}, {"ssr wait_s = 3", "modem ssr start to wait 3s to init", "modem ssr end to wait 3s to init"}},
        {"0", 0, {}, {"ssr wait_s = 0", "modem ssr will not wait"}},
        {"abc", 0, {}, {"ssr wait_s = 0", "modem ssr will not wait"}},
        {"2s", 2, {2}, {"ssr wait_s = 2", "modem ssr start to wait 2s to init", "modem ssr end to wait 2s to init"}},
        {"-1", -1, {4294967295u},
         {"ssr wait_s = -1", "modem ssr start to wait -1s to init", "modem ssr end to wait -1s to init"}},
    };
    for (const auto &c : cases) {
        setprop(TOLVEK_PROP_SSR_WAIT_S, c.value);
        g_sleeps.clear();
        int result = 0;
        std::string out = capture_stdout([&] { result = tolvek_smart_test_ssr_wait_s(); });
        EXPECT_EQ(result, c.result) << c.value;
        EXPECT_EQ(g_sleeps, c.sleeps) << c.value;
        /* Each message ends in its own newline, and the console adds one. */
        std::string expected;
        for (const std::string &text : c.texts) expected += "RIL[tolvek_smart_test_ssr_wait_s:N]: " + text + "\n\n";
        EXPECT_EQ(without_line_numbers(out), expected) << c.value;
    }
}

TEST_F(SmartTestWaitTest, NegativeFirstWaitStopsBeforeTheRequest)
{
    setprop(TOLVEK_PROP_SSR_LEVEL, "ALL_DISABLE");
    setprop(TOLVEK_PROP_SSR_WAIT_S, "-5");
    int result = 0;
    std::string out = capture_stdout([&] { result = tolvek_smart_test_modem_ssr(); });
    EXPECT_EQ(result, TOLVEK_SMART_TEST_STOPPED);
    EXPECT_NE(out.find("]: wait_s < 0, ssr is stoped\n\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("t 31"), std::string::npos) << "nothing sent";
    EXPECT_EQ(g_sleeps, std::vector<unsigned int>{4294967291u});
    EXPECT_EQ(sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL), "ALL_ENABLE");
    EXPECT_EQ(sim.ctl_ok("counter get ext.ssr"), "0");
}

TEST_F(SmartTestWaitTest, NegativeSecondWaitLeavesTheLevelOpen)
{
    setprop(TOLVEK_PROP_SSR_LEVEL, "ALL_DISABLE");
    setprop(TOLVEK_PROP_SSR_WAIT_S, "1");
    /* A canned success: the modem does not really restart under this
     * process's long-lived client. */
    sim.ctl_ok("respond ext 2 0104000000000002040000000000 1");
    g_during_sleep = [this] { setprop(TOLVEK_PROP_SSR_WAIT_S, "-1"); };
    std::string out = capture_stdout([] { tolvek_smart_test_modem_ssr(); });
    size_t sent = out.find("]: t 31\n");
    ASSERT_NE(sent, std::string::npos) << out;
    EXPECT_NE(out.find("]: wait_s < 0, ssr is stoped\n\n", sent), std::string::npos) << out;
    EXPECT_EQ(out.find("back to old ssr state"), std::string::npos);
    EXPECT_EQ(sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL), "ALL_ENABLE");
    EXPECT_NE(sim.ctl_ok("last 1 ext"), "") << "the request was sent";
}

}  // namespace
