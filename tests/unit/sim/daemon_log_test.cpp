/* The simulator's log: complaints held to a rate per kind with a summary
 * of what was held back, and rotation at the size limit. */
#include <gtest/gtest.h>

#include "daemon_log.h"
#include "golden.h"
#include "sim_test_util.h"

namespace {

using modemd::daemon_log;

__attribute__((format(printf, 3, 4))) daemon_log::outcome say(daemon_log &log, uint64_t now, const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    daemon_log::outcome o = log.vlog(now, fmt, ap);
    va_end(ap);
    return o;
}

std::vector<std::string> lines_of(const std::string &path)
{
    std::vector<std::string> out;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) out.push_back(line.substr(line.find("]: ") + 3));
    return out;
}

class DaemonLogTest : public ::testing::Test {
protected:
    temp_dir dir;
    std::string path = dir.path + "/modemd.log";
};

/* One kind of complaint beyond its rate in a window, another kind, then
 * the next window: what each call did (w: written, F: first held back,
 * s: held back) and the lines the log holds after the destructor reported
 * what was still held back. */
TEST_F(DaemonLogTest, EachKindOfComplaintIsHeldToItsRateAndSummarised)
{
    std::string error, outcomes;
    {
        daemon_log log;
        ASSERT_TRUE(log.open(path, 1 << 20, &error)) << error;
        auto bad = [&](uint64_t now, int i) { outcomes += "wFs"[int(say(log, now, "bad frame %d", i))]; };
        const uint64_t t = 5000, next = t + modemd::k_log_window_ms;
        for (int i = 0; i < 25; i++) bad(t + uint64_t(i), i);
        outcomes += "wFs"[int(say(log, t + 30, "other %s", "kind"))];
        log.flush_summaries(next - 1, false); /* window not over: nothing yet */
        log.flush_summaries(next, false);
        bad(next + 1, 99);
        for (int i = 0; i < 12; i++) bad(next + 2, 100 + i);
    }
    std::string all = outcomes + "\n";
    for (const std::string &line : lines_of(path)) all += line + "\n";
    expect_golden(all, __FILE__, "daemon_log_rate.golden");
}

TEST_F(DaemonLogTest, RotatesAtTheLimitKeepingOnePreviousFile)
{
    std::string error;
    daemon_log log;
    constexpr uint64_t k_max = 2048;
    ASSERT_TRUE(log.open(path, k_max, &error)) << error;
    static const char fmt[] = "line %04d ........................................................";
    for (int i = 0; i < 200; i++) say(log, uint64_t(i) * modemd::k_log_window_ms, fmt, i);
    EXPECT_LE(file_text(path).size(), k_max);
    const size_t old = file_text(path + ".1").size();
    EXPECT_LE(old, k_max);
    EXPECT_GT(old, k_max / 2);
    std::vector<std::string> lines = lines_of(path);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().compare(0, 9, "line 0199"), 0) << "the newest line is in the current file";
    std::vector<std::string> previous = lines_of(path + ".1");
    ASSERT_FALSE(previous.empty());
    EXPECT_EQ(std::stoi(previous.back().substr(5, 4)) + 1, std::stoi(lines.front().substr(5, 4)))
        << "nothing lost between the two files";
}

TEST_F(DaemonLogTest, RefusesASymbolicLinkAndLimitsBelowOneLine)
{
    std::string target = dir.path + "/elsewhere";
    ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
    std::string error;
    daemon_log log;
    EXPECT_FALSE(log.open(path, 1 << 20, &error));
    EXPECT_NE(error.find(path), std::string::npos) << error;
    EXPECT_NE(access(target.c_str(), F_OK), 0) << "nothing created through the link";
    unlink(path.c_str());

    daemon_log tiny;
    ASSERT_TRUE(tiny.open(path, 1, &error)) << error;
    for (int i = 0; i < 5; i++) say(tiny, uint64_t(i) * modemd::k_log_window_ms, "message %d", i);
    EXPECT_EQ(lines_of(path).size(), 5u) << "the limit is raised to k_log_min_max_bytes";
}

}  // namespace
