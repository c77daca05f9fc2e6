#include "tolvek_log.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "frontend_test_util.h"

namespace {

/* What one log statement wrote, and the line it sits on. */
struct logged {
    std::string console;
    std::vector<std::string> syslog;
    int line;
};

/* Each helper below logs one statement between begin_capture() and
 * end_capture(), so the function name in the lines is the helper's own. */
std::optional<syslog_capture> g_log;

void begin_capture()
{
    g_log.emplace();
    testing::internal::CaptureStdout();
}

logged end_capture(int line)
{
    logged out{testing::internal::GetCapturedStdout(), g_log->lines(), line};
    g_log.reset();
    return out;
}

logged debug_with_args(int *counter)
{
    begin_capture();
    TOLVEK_LOGD("count %d, %s%%", ++*counter, "pct");
    return end_capture(__LINE__ - 1);
}

logged error_ending_in_newline()
{
    begin_capture();
    TOLVEK_LOGE("invalid input\n");
    return end_capture(__LINE__ - 1);
}

logged quiet_entry_marker()
{
    console_quiet_scope quiet(true);
    begin_capture();
    TOLVEK_FUNC_ENTRY();
    return end_capture(__LINE__ - 1);
}

TEST(TolvekLog, PairedLinesWithLevelAndArgumentsEvaluatedOnce)
{
    int counter = 0;
    const struct {
        logged l;
        const char *func;
        int priority;
        std::string console; /* after the prefix; empty: nothing at all */
        std::string syslog;
    } cases[] = {
        {debug_with_args(&counter), "debug_with_args", 7, "count 1, pct%\n", "count 1, pct%"},
        /* The message's own newline and the line's newline: an empty line. */
        {error_ending_in_newline(), "error_ending_in_newline", 3, "invalid input\n\n", "invalid input\\n"},
        /* A quiet console keeps the system log. */
        {quiet_entry_marker(), "quiet_entry_marker", 7, "", "function entry ------------->"},
    };
    EXPECT_EQ(counter, 1);
    for (const auto &c : cases) {
        const std::string func = c.func, line = std::to_string(c.l.line);
        EXPECT_EQ(c.l.console, c.console.empty() ? "" : "RIL[" + func + ":" + line + "]: " + c.console);
        const std::string sys = "\tSUB[shell][tolvek_log_test.cpp:" + line + "] " + func + ": " + c.syslog;
        EXPECT_EQ(c.l.syslog, std::vector<std::string>{std::to_string(c.priority) + sys});
    }
}

}  // namespace
