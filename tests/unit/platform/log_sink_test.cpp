/* The tool's own log files in the default simulator directory: written
 * there only when the directory is the user's private one, and never
 * through a link planted at the file's name. */
#include <stdarg.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "platform_syslog.h"

namespace {

void syslog_line(const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    platform_vsyslog(LOG_INFO, fmt, ap);
    va_end(ap);
}

std::string slurp(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

/* Points the process at a default directory under a fresh runtime
 * directory, and puts the variables back afterwards. */
class DefaultLogDirTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-logsink-test-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        root = tmpl;
        dir = root + "/rlk-modemd";
        victim = root + "/victim";
        std::ofstream(victim) << "private\n";
        for (const char *name : {"RLK_SYSLOG_FILE", "RLK_MODEMD_SOCKET", "XDG_RUNTIME_DIR"}) {
            const char *v = getenv(name);
            saved.emplace_back(name, v ? std::string(v) : std::string("\x01"));
        }
        unsetenv("RLK_SYSLOG_FILE");
        unsetenv("RLK_MODEMD_SOCKET");
        setenv("XDG_RUNTIME_DIR", root.c_str(), 1);
    }
    void TearDown() override
    {
        for (const auto &kv : saved) {
            if (kv.second == "\x01") {
                unsetenv(kv.first.c_str());
            } else {
                setenv(kv.first.c_str(), kv.second.c_str(), 1);
            }
        }
        std::string cmd = "rm -rf '" + root + "'";
        ASSERT_EQ(system(cmd.c_str()), 0);
    }
    std::string root, dir, victim;
    std::vector<std::pair<std::string, std::string>> saved;
};

TEST_F(DefaultLogDirTest, PlantedDirectoryOrLinkGetsNoLines)
{
    /* Another user's directory (open to all) with a link to the victim's
     * file: nothing is written anywhere. */
    ASSERT_EQ(mkdir(dir.c_str(), 0777), 0);
    ASSERT_EQ(chmod(dir.c_str(), 0777), 0);
    ASSERT_EQ(symlink(victim.c_str(), (dir + "/syslog.log").c_str()), 0);
    testing::internal::CaptureStderr();
    syslog_line("first %d", 1);
    syslog_line("second %d", 2);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(slurp(victim), "private\n");
    /* Said once, naming the directory. */
    EXPECT_NE(err.find(dir), std::string::npos) << err;
    EXPECT_EQ(err.find(dir), err.rfind(dir)) << err;

    /* The user's own private directory, with a link at the file's name. */
    ASSERT_EQ(chmod(dir.c_str(), 0700), 0);
    syslog_line("third %d", 3);
    EXPECT_EQ(slurp(victim), "private\n");

    /* Without the link the line arrives. */
    ASSERT_EQ(unlink((dir + "/syslog.log").c_str()), 0);
    syslog_line("fourth %d", 4);
    EXPECT_EQ(slurp(dir + "/syslog.log"), "6\tfourth 4\n");
}

}  // namespace
