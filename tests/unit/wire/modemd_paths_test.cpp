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
#include <sstream>
#include <string>

#include "modemd_paths.h"
#include "platform_syslog.h"

namespace {

std::string slurp(const std::string &path)
{
    std::stringstream ss;
    ss << std::ifstream(path, std::ios::binary).rdbuf();
    return ss.str();
}

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
        char tmpl[] = "/tmp/rlk-paths-test-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        root = tmpl;
        for (const char *name : {"RLK_SYSLOG_FILE", "RLK_MODEMD_SOCKET", "XDG_RUNTIME_DIR"}) {
            saved.emplace_back(name, getenv(name) ? std::optional<std::string>(getenv(name)) : std::nullopt);
        }
    }
    void TearDown() override
    {
        for (const auto &[name, value] : saved) {
            if (value) {
                setenv(name.c_str(), value->c_str(), 1);
            } else {
                unsetenv(name.c_str());
            }
        }
        ASSERT_EQ(system(("rm -rf '" + root + "'").c_str()), 0);
    }
    std::string root;
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
};

TEST_F(ModemdPathsTest, OnlyAPrivateDirectoryOfThisUserIsAccepted)
{
    ASSERT_EQ(mkdir((root + "/real").c_str(), 0700), 0);
    const struct {
        const char *name;
        char kind; /* '-' nothing, 'd' a directory of `mode`, 'l' a link to `link`, 'f' a file, 'o' another's */
        mode_t mode;
        std::string link;
        const char *why; /* nullptr: accepted */
    } cases[] = {
        {"missing", '-', 0, "", nullptr},
        {"private", 'd', 0700, "", nullptr},
        {"world-writable", 'd', 0777, "", "it is open to group or others (mode 0777, expected 0700)"},
        {"group-readable", 'd', 0740, "", "it is open to group or others (mode 0740, expected 0700)"},
        {"sticky-only-for-others", 'd', 01701, "", "it is open to group or others (mode 1701, expected 0700)"},
        {"link-to-own-private-dir", 'l', 0, root + "/real", "it is a symbolic link, not a directory"},
        {"dangling-link", 'l', 0, "/nonexistent/rlk", "it is a symbolic link, not a directory"},
        {"file", 'f', 0, "", "it is not a directory"},
        {"other-owner", 'o', 0700, "", "it is owned by uid 65534, not by uid 0"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        std::string dir = root + "/" + c.name, error;
        if (c.kind == 'o' && geteuid() != 0) {
            printf("skipping \"%s\": needs root to give a directory to another user\n", c.name);
            continue;
        }
        int rc = 0;
        if (c.kind == 'd' || c.kind == 'o') rc = mkdir(dir.c_str(), 0700) || chmod(dir.c_str(), c.mode);
        if (c.kind == 'o') rc |= chown(dir.c_str(), 65534, 65534);
        if (c.kind == 'l') rc = symlink(c.link.c_str(), dir.c_str());
        if (c.kind == 'f') rc = close(open(dir.c_str(), O_CREAT | O_WRONLY, 0600));
        ASSERT_EQ(rc, 0);
        EXPECT_EQ(modemd_private_dir_ensure(dir, &error), !c.why) << error;
        struct stat st;
        if (!c.why) {
            ASSERT_EQ(lstat(dir.c_str(), &st), 0);
            EXPECT_EQ(st.st_mode & (S_IFMT | 07777), S_IFDIR | 0700u);
        } else {
            EXPECT_EQ(error, "refusing directory " + dir + ": " + c.why);
            EXPECT_FALSE(modemd_private_dir_check(dir, &error)) << "nothing is repaired behind the owner's back";
        }
    }
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
    struct stat st;
    EXPECT_EQ(stat((root + "/fresh").c_str(), &st), 0);
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
    struct stat st;
    EXPECT_NE(lstat(victim.c_str(), &st), 0) << "the link's target was created";
    int fd = modemd_open_log_file(root + "/real.log");
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
    EXPECT_EQ(slurp(victim), "private\n");
    ASSERT_EQ(unlink((dir + "/syslog.log").c_str()), 0);
    syslog_line("fourth %d", 4);
    EXPECT_EQ(slurp(dir + "/syslog.log"), "6\tfourth 4\n") << "without the link the line arrives";
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
