/* The default simulator directory is used only when it is this user's own
 * private directory (for the simulator's socket and for the tool's own log
 * lines), no file is opened through a link planted at its name, and the
 * tool talks only to a simulator of its own user.  "Another user" is played
 * by a wrong mode, a link, a file, and (when the tests run as root) a
 * directory given to another uid. */
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <fstream>
#include <optional>

#include "../sim/sim_test_util.h"
#include "data_file.h"
#include "modemd_paths.h"
#include "platform_syslog.h"

namespace {

void syslog_line(const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    platform_vsyslog(LOG_INFO, fmt, ap);
    va_end(ap);
}

/* A fresh directory for each test; the variables that choose the default
 * directory are put back afterwards. */
class ModemdPathsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char *name : {"RLK_SYSLOG_FILE", "RLK_MODEMD_SOCKET", "XDG_RUNTIME_DIR"}) {
            saved.emplace_back(name, getenv(name) ? std::optional<std::string>(getenv(name)) : std::nullopt);
        }
    }
    void TearDown() override
    {
        for (const auto &[name, value] : saved) {
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        }
    }
    temp_dir tmp;
    std::string root = tmp.path;
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
};

/* Each case makes an entry (nothing, a directory of a mode, a link, a
 * file) and asks for it as a private directory; a refused one is not
 * repaired behind the owner's back. */
TEST_F(ModemdPathsTest, OnlyAPrivateDirectoryOfThisUserIsAccepted)
{
    ASSERT_EQ(mkdir((root + "/real").c_str(), 0700), 0);
    auto asked = [&](const std::string &dir) {
        std::string error;
        struct stat st;
        if (modemd_private_dir_ensure(dir, &error) && lstat(dir.c_str(), &st) == 0) {
            char mode[32];
            snprintf(mode, sizeof(mode), "accepted, mode %o", st.st_mode & (S_IFMT | 07777));
            return std::string(mode);
        }
        EXPECT_FALSE(modemd_private_dir_check(dir, &error)) << dir;
        return error.replace(error.find(root), root.size(), "<root>");
    };
    expect_cases(__FILE__, "private_dir.cases", [&](const words &w) {
        std::string dir = root + "/" + w[0], to = w.size() > 2 ? w[2] : "";
        if (to.compare(0, 6, "<root>") == 0) to.replace(0, 6, root);
        int rc = 0;
        if (w[1] == "dir") rc = mkdir(dir.c_str(), 0700) || chmod(dir.c_str(), mode_t(std::stoul(to, nullptr, 8)));
        if (w[1] == "link") rc = symlink(to.c_str(), dir.c_str());
        if (w[1] == "file") rc = close(open(dir.c_str(), O_CREAT | O_WRONLY, 0600));
        EXPECT_EQ(rc, 0) << w[0];
        return asked(dir);
    });
    if (geteuid() != 0) {
        printf("skipping the directory of another user: needs root to give it away\n");
        return;
    }
    std::string other = root + "/other-owner";
    ASSERT_TRUE(mkdir(other.c_str(), 0700) == 0 && chown(other.c_str(), 65534, 65534) == 0);
    EXPECT_EQ(asked(other), "refusing directory <root>/other-owner: it is owned by uid 65534, not by uid 0");
}

/* The default directory is checked wherever a simulator is about to bind;
 * a directory the user named is only made. */
TEST_F(ModemdPathsTest, SocketDirectoryPreparation)
{
    std::string runtime = root + "/runtime", error;
    ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
    ASSERT_EQ(setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1), 0);
    std::string def = modemd_default_socket_path();
    EXPECT_EQ(def, runtime + "/rlk-modemd/modemd.sock");
    EXPECT_TRUE(modemd_prepare_socket_dir(def, &error)) << error;
    ASSERT_EQ(chmod((runtime + "/rlk-modemd").c_str(), 0755), 0);
    EXPECT_FALSE(modemd_prepare_socket_dir(def, &error));
    EXPECT_EQ(error, "refusing directory " + runtime +
                         "/rlk-modemd: it is open to group or others (mode 0755, expected 0700)");
    ASSERT_EQ(mkdir((root + "/shared").c_str(), 0777), 0);
    EXPECT_TRUE(modemd_prepare_socket_dir(root + "/shared/s.sock", &error));
    EXPECT_TRUE(modemd_prepare_socket_dir(root + "/fresh/s.sock", &error));
    EXPECT_EQ(access((root + "/fresh").c_str(), F_OK), 0);
    EXPECT_EQ(modemd_dir_of("/a/b.sock"), "/a");
    EXPECT_EQ(modemd_dir_of("/b.sock"), "/");
    EXPECT_EQ(modemd_dir_of("b.sock"), ".");
}

/* The simulator's log file, and the tool's system-log lines in the default
 * directory: another user's directory (open to all) with a link to the
 * victim's file, then the user's own directory with that link, get
 * nothing; the refusal is said once, naming the directory. */
TEST_F(ModemdPathsTest, LogFilesAreNotWrittenThroughAPlantedDirectoryOrLink)
{
    std::string victim = root + "/victim", dir = root + "/rlk-modemd";
    ASSERT_EQ(symlink(victim.c_str(), (root + "/log").c_str()), 0);
    EXPECT_LT(modemd_open_log_file(root + "/log"), 0);
    EXPECT_EQ(errno, ELOOP);
    EXPECT_NE(access(victim.c_str(), F_OK), 0) << "the link's target was created";
    int fd = modemd_open_log_file(root + "/real.log");
    struct stat st;
    ASSERT_GE(fd, 0);
    ASSERT_EQ(fstat(fd, &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    close(fd);

    std::ofstream(victim) << "private\n";
    unsetenv("RLK_SYSLOG_FILE");
    unsetenv("RLK_MODEMD_SOCKET");
    setenv("XDG_RUNTIME_DIR", root.c_str(), 1);
    ASSERT_TRUE(mkdir(dir.c_str(), 0777) == 0 && chmod(dir.c_str(), 0777) == 0);
    ASSERT_EQ(symlink(victim.c_str(), (dir + "/syslog.log").c_str()), 0);
    testing::internal::CaptureStderr();
    syslog_line("first %d", 1);
    syslog_line("second %d", 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "rlk: refusing directory " + dir + ": it is open to group or others (mode 0777, expected 0700)\n")
        << "said once per process, naming the directory";
    ASSERT_EQ(chmod(dir.c_str(), 0700), 0);
    syslog_line("third %d", 3);
    EXPECT_EQ(file_text(victim), "private\n");
    ASSERT_EQ(unlink((dir + "/syslog.log").c_str()), 0);
    syslog_line("fourth %d", 4);
    EXPECT_EQ(file_text(dir + "/syslog.log"), "6\tfourth 4\n") << "without the link the line arrives";
}

/* A peer of this user is trusted (another user's simulator is played end
 * to end in tests/e2e/sim/default_endpoint_test.cpp); a descriptor that is
 * no socket gives a reason, not a pass. */
TEST_F(ModemdPathsTest, PeerCredentials)
{
    int sv[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv), 0);
    std::string error;
    EXPECT_TRUE(modemd_peer_is_trusted(sv[0], &error)) << error;
    close(sv[0]);
    close(sv[1]);
    int fd = open("/dev/null", O_RDONLY);
    EXPECT_FALSE(modemd_peer_is_trusted(fd, &error));
    EXPECT_FALSE(error.empty());
    close(fd);
}

}  // namespace
