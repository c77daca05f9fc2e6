/* The SSR wait and the SSR sequence around negative waits, with the sleep
 * replaced so that no test sleeps a modem's seconds (a negative wait is an
 * unsigned sleep of about 136 years). */
#include <gtest/gtest.h>

#include <cctype>
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

/* ":123]" becomes ":N]": the texts do not depend on source line numbers. */
std::string without_line_numbers(const std::string &text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); i++) {
        size_t j = i + 1;
        while (text[i] == ':' && j < text.size() && isdigit((unsigned char)text[j])) j++;
        if (j > i + 1 && j < text.size() && text[j] == ']') {
            out += ":N";
            i = j - 1;
        } else {
            out += text[i];
        }
    }
    return out;
}

TEST(SmartTestWait, WaitValuesAndNegativeWaitsBeforeAndAfterTheRequest)
{
    /* One simulator for the process: the extension client this process
     * opens stays bound to it. */
    static sim_instance sim;
    ASSERT_TRUE(sim.running() || sim.start());
    tolvek_smart_test_set_sleep(fake_sleep);
    const struct {
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
        sim.ctl_ok(std::string("setprop " TOLVEK_PROP_SSR_WAIT_S " ") + c.value);
        g_sleeps.clear();
        int result = 0;
        std::string out = capture_stdout([&] { result = tolvek_smart_test_ssr_wait_s(); });
        EXPECT_EQ(result, c.result) << c.value;
        EXPECT_EQ(g_sleeps, c.sleeps) << c.value;
        /* Each message ends in its own newline, and the console adds one;
         * line numbers are not compared. */
        std::string expected;
        for (const std::string &text : c.texts) expected += "RIL[tolvek_smart_test_ssr_wait_s:N]: " + text + "\n\n";
        EXPECT_EQ(without_line_numbers(out), expected) << c.value;
    }

    /* A negative first wait stops before the request, the level left open. */
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_LEVEL " ALL_DISABLE");
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " -5");
    g_sleeps.clear();
    int result = 0;
    std::string out = capture_stdout([&] { result = tolvek_smart_test_modem_ssr(); });
    EXPECT_EQ(result, TOLVEK_SMART_TEST_STOPPED);
    EXPECT_NE(out.find("]: wait_s < 0, ssr is stoped\n\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("t 31"), std::string::npos) << "nothing sent";
    EXPECT_EQ(g_sleeps, std::vector<unsigned int>{4294967291u});
    EXPECT_EQ(sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL), "ALL_ENABLE");
    EXPECT_EQ(sim.ctl_ok("counter get ext.ssr"), "0");

    /* A negative second wait, after the request, leaves the level open.  A
     * canned success: the modem does not really restart under this
     * process's long-lived client. */
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_LEVEL " ALL_DISABLE");
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " 1");
    sim.ctl_ok("respond ext 2 0104000000000002040000000000 1");
    g_during_sleep = [] { sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " -1"); };
    out = capture_stdout([] { tolvek_smart_test_modem_ssr(); });
    g_during_sleep = nullptr;
    tolvek_smart_test_set_sleep(nullptr);
    size_t sent = out.find("]: t 31\n");
    ASSERT_NE(sent, std::string::npos) << out;
    EXPECT_NE(out.find("]: wait_s < 0, ssr is stoped\n\n", sent), std::string::npos) << out;
    EXPECT_EQ(out.find("back to old ssr state"), std::string::npos);
    EXPECT_EQ(sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL), "ALL_ENABLE");
    EXPECT_NE(sim.ctl_ok("last 1 ext"), "") << "the request was sent";
}

}  // namespace
