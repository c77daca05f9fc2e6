#include "tolvek_log.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "golden.h"

namespace {

/* Each helper below logs one statement between begin_capture() and
 * end_capture(), so the function name in the lines is the helper's own. */
std::optional<syslog_capture> g_log;

void begin_capture()
{
    g_log.emplace();
    testing::internal::CaptureStdout();
}

/* The console output and the system-log lines, the statement's own line
 * number written as @LINE (any other number stays and fails the test). */
std::string end_capture(int line)
{
    std::string text = "console: " + testing::internal::GetCapturedStdout();
    for (const std::string &l : g_log->lines()) text += "syslog: " + l + "\n";
    g_log.reset();
    const std::string number = ":" + std::to_string(line) + "]";
    for (size_t at; (at = text.find(number)) != std::string::npos;) text.replace(at, number.size(), ":@LINE]");
    return text + "--\n";
}

std::string debug_with_args(int *counter)
{
    begin_capture();
    TOLVEK_LOGD("count %d, %s%%", ++*counter, "pct");
    return end_capture(__LINE__ - 1);
}

std::string error_ending_in_newline()
{
    begin_capture();
    TOLVEK_LOGE("invalid input\n");
    return end_capture(__LINE__ - 1);
}

std::string quiet_entry_marker()
{
    console_quiet_scope quiet(true);
    begin_capture();
    TOLVEK_FUNC_ENTRY();
    return end_capture(__LINE__ - 1);
}

/* Console and debug system log get the same line, with the level; a
 * message's own newline adds an empty console line; a quiet console keeps
 * the system log. */
TEST(TolvekLog, PairedLinesWithLevelAndArgumentsEvaluatedOnce)
{
    int counter = 0;
    std::string out = debug_with_args(&counter);
    out += error_ending_in_newline();
    out += quiet_entry_marker();
    EXPECT_EQ(counter, 1);
    expect_golden(out, __FILE__, "tolvek_log.golden");
}

}  // namespace
