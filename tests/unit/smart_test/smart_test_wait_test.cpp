/* The SSR wait and the SSR sequence around negative waits, with the sleep
 * replaced so that no test sleeps a modem's seconds (a negative wait is an
 * unsigned sleep of about 136 years).  Results, sleeps and console texts
 * are compared whole with a golden transcript. */
#include "../frontend/frontend_test_util.h"
#include "data_file.h"
#include "sim_fixture.h"
#include "tolvek_smart_test.h"

namespace {

std::string g_sleeps;
/* Run by the fake sleep: lets a test change the world between waits. */
std::function<void()> g_during_sleep;

unsigned int fake_sleep(unsigned int seconds)
{
    g_sleeps += " " + std::to_string(seconds);
    if (g_during_sleep) g_during_sleep();
    return 0;
}

/* The tool's own lines and the blank lines after them, without line
 * numbers: the texts do not depend on source line numbers, nor on whether
 * this process opened its extension client before. */
std::string ril_lines(const std::string &out)
{
    std::string text;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line.compare(0, 4, "RIL[") == 0) text += line + "\n";
    }
    return without_line_numbers(text);
}

/* One run with fresh sleeps: "<label>: <result>, sleeps ..." and the
 * tool's lines. */
std::string run(const std::string &label, int (*fn)())
{
    g_sleeps.clear();
    int result = 0;
    std::string out = capture_stdout([&] { result = fn(); });
    return label + ": " + std::to_string(result) + ", sleeps" + g_sleeps + "\n" + ril_lines(out);
}

TEST(SmartTestWait, WaitValuesAndNegativeWaitsBeforeAndAfterTheRequest)
{
    /* One simulator for the process: the extension client this process
     * opens stays bound to it. */
    static sim_instance sim;
    ASSERT_TRUE(sim.running() || sim.start());
    tolvek_smart_test_set_sleep(fake_sleep);
    std::string t;
    /* "" leaves the property unset. */
    for (const char *value : {"", "0", "abc", "2s", "-1"}) {
        sim.ctl_ok(std::string("setprop " TOLVEK_PROP_SSR_WAIT_S " ") + value);
        t += run("wait_s '" + std::string(value) + "'", tolvek_smart_test_ssr_wait_s);
    }

    /* A negative first wait stops before the request (nothing sent), the
     * level left open. */
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_LEVEL " ALL_DISABLE");
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " -5");
    t += run("ssr -5", tolvek_smart_test_modem_ssr);
    t += facts("level", sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL), "requests", sim.ctl_ok("counter get ext.ssr"));

    /* A negative second wait, after the request, leaves the level open.  A
     * canned success: the modem does not really restart under this
     * process's long-lived client. */
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_LEVEL " ALL_DISABLE");
    sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " 1");
    sim.ctl_ok("respond ext 2 0104000000000002040000000000 1");
    g_during_sleep = [] { sim.ctl_ok("setprop " TOLVEK_PROP_SSR_WAIT_S " -1"); };
    t += run("ssr 1 then -1", tolvek_smart_test_modem_ssr);
    g_during_sleep = nullptr;
    tolvek_smart_test_set_sleep(nullptr);
    t += facts("level", sim.ctl_ok("getprop " TOLVEK_PROP_SSR_LEVEL));
    EXPECT_NE(sim.ctl_ok("last 1 ext"), "") << "the request was sent";
    expect_golden(t, __FILE__, "smart_test_wait.golden");
}

}  // namespace
