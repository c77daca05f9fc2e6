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

logged entry_marker()
{
    begin_capture();
    TOLVEK_FUNC_ENTRY();
    return end_capture(__LINE__ - 1);
}

std::string sys_prefix(int priority, const std::string &func, int line)
{
    return std::to_string(priority) + "\tSUB[shell][tolvek_log_test.cpp:" + std::to_string(line) +
           "] " + func + ": ";
}

std::string console_prefix(const std::string &func, int line)
{
    return "RIL[" + func + ":" + std::to_string(line) + "]: ";
}

TEST(TolvekLog, PairedLineFormatsAndEvaluatesArgumentsOnce)
{
    int counter = 0;
    logged l = debug_with_args(&counter);
    EXPECT_EQ(counter, 1);
    EXPECT_EQ(l.console, console_prefix("debug_with_args", l.line) + "count 1, pct%\n");
    ASSERT_EQ(l.syslog.size(), 1u);
    EXPECT_EQ(l.syslog[0], sys_prefix(7, "debug_with_args", l.line) + "count 1, pct%");
}

TEST(TolvekLog, ErrorLevelAndTrailingNewlineKept)
{
    logged l = error_ending_in_newline();
    /* The message's own newline and the line's newline: an empty line. */
    EXPECT_EQ(l.console, console_prefix("error_ending_in_newline", l.line) + "invalid input\n\n");
    ASSERT_EQ(l.syslog.size(), 1u);
    EXPECT_EQ(l.syslog[0], sys_prefix(3, "error_ending_in_newline", l.line) + "invalid input\\n");
}

TEST(TolvekLog, QuietConsoleKeepsSystemLog)
{
    console_quiet_scope quiet(true);
    logged l = entry_marker();
    EXPECT_EQ(l.console, "");
    ASSERT_EQ(l.syslog.size(), 1u);
    EXPECT_EQ(l.syslog[0], sys_prefix(7, "entry_marker", l.line) + "function entry ------------->");
}

}  // namespace
