/* The simulator's log: complaints held to a rate per kind with a summary
 * of what was held back, and rotation at the size limit. */
#include <gtest/gtest.h>

#include "daemon_log.h"
#include "sim_test_util.h"

namespace {

using modemd::daemon_log;

daemon_log::outcome say(daemon_log &log, uint64_t now, const char *fmt, ...) __attribute__((format(printf, 3, 4)));
daemon_log::outcome say(daemon_log &log, uint64_t now, const char *fmt, ...)
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
    std::string line;
    while (std::getline(in, line)) out.push_back(line.substr(line.find("]: ") + 3));
    return out;
}

class DaemonLogTest : public ::testing::Test {
protected:
    temp_dir dir;
    std::string path = dir.path + "/modemd.log";
};

TEST_F(DaemonLogTest, EachKindOfComplaintIsHeldToItsRateAndSummarised)
{
    std::string error;
    {
        daemon_log log;
        ASSERT_TRUE(log.open(path, 1 << 20, &error)) << error;
        static const char bad[] = "bad frame %d";
        static const char other[] = "other %s";
        uint64_t t = 5000;
        std::vector<daemon_log::outcome> got;
        for (int i = 0; i < 25; i++) got.push_back(say(log, t + uint64_t(i), bad, i));
        EXPECT_EQ(got[9], daemon_log::outcome::written);
        EXPECT_EQ(got[10], daemon_log::outcome::suppressed_first);
        EXPECT_EQ(got[24], daemon_log::outcome::suppressed);
        EXPECT_EQ(say(log, t + 30, other, "kind"), daemon_log::outcome::written) << "another kind has its own rate";

        log.flush_summaries(t + modemd::k_log_window_ms - 1, false); /* window not over: nothing yet */
        log.flush_summaries(t + modemd::k_log_window_ms, false);
        /* A new window writes again. */
        EXPECT_EQ(say(log, t + modemd::k_log_window_ms + 1, bad, 99), daemon_log::outcome::written);
        for (int i = 0; i < 12; i++) say(log, t + modemd::k_log_window_ms + 2, bad, 100 + i);
    } /* the destructor reports what is still held back */
    std::vector<std::string> expect;
    for (int i = 0; i < 10; i++) expect.push_back("bad frame " + std::to_string(i));
    expect.insert(expect.end(), {"other kind", "(15 more like \"bad frame %d\" in 1000 ms not shown)", "bad frame 99"});
    for (int i = 100; i < 109; i++) expect.push_back("bad frame " + std::to_string(i));
    expect.push_back("(3 more like \"bad frame %d\" in 1000 ms not shown)");
    EXPECT_EQ(lines_of(path), expect);
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
    static const char fmt[] = "message %d";
    for (int i = 0; i < 5; i++) say(tiny, uint64_t(i) * modemd::k_log_window_ms, fmt, i);
    EXPECT_EQ(lines_of(path).size(), 5u) << "the limit is raised to k_log_min_max_bytes";
}

}  // namespace
