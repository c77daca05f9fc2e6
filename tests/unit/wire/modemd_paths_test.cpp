/* The default simulator directory is used only when it is this user's own
 * private directory, and the tool talks only to a simulator of its own
 * user.  "Another user" is played by a wrong mode, a link, a file, and
 * (when the tests run as root) a directory given to another uid. */
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "modemd_paths.h"

namespace {

/* An unprivileged uid for the cases that need another user. */
constexpr uid_t k_other_uid = 65534;

class ModemdPathsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-paths-test-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        root = tmpl;
    }
    void TearDown() override
    {
        std::string cmd = "rm -rf '" + root + "'";
        ASSERT_EQ(system(cmd.c_str()), 0);
    }
    std::string root;
};

TEST_F(ModemdPathsTest, OnlyAPrivateDirectoryOfThisUserIsAccepted)
{
    struct dir_case {
        const char *name;
        std::function<void(const std::string &)> plant;
        bool accepted;
        const char *why;
        bool needs_root;
    } cases[] = {
        {"missing", [](const std::string &) {}, true, "", false},
        {"private", [](const std::string &d) { mkdir(d.c_str(), 0700); }, true, "", false},
        {"world-writable",
         [](const std::string &d) {
             mkdir(d.c_str(), 0700);
             chmod(d.c_str(), 0777);
         },
         false, "open to group or others (mode 0777", false},
        {"group-readable",
         [](const std::string &d) {
             mkdir(d.c_str(), 0700);
             chmod(d.c_str(), 0740);
         },
         false, "mode 0740", false},
        {"sticky-only-for-others",
         [](const std::string &d) {
             mkdir(d.c_str(), 0700);
             chmod(d.c_str(), 01701);
         },
         false, "mode 1701", false},
        {"link-to-own-private-dir",
         [this](const std::string &d) {
             mkdir((root + "/real").c_str(), 0700);
             symlink((root + "/real").c_str(), d.c_str());
         },
         false, "symbolic link", false},
        {"dangling-link", [](const std::string &d) { symlink("/nonexistent/rlk", d.c_str()); }, false,
         "symbolic link", false},
        {"file",
         [](const std::string &d) {
             int fd = open(d.c_str(), O_CREAT | O_WRONLY, 0600);
             close(fd);
         },
         false, "not a directory", false},
        {"other-owner",
         [](const std::string &d) {
             mkdir(d.c_str(), 0700);
             if (chown(d.c_str(), k_other_uid, k_other_uid) != 0) abort();
         },
         false, "owned by uid 65534", true},
    };
    for (const dir_case &c : cases) {
        SCOPED_TRACE(c.name);
        if (c.needs_root && geteuid() != 0) {
            printf("skipping \"%s\": needs root to give a directory to another user\n", c.name);
            continue;
        }
        std::string dir = root + "/" + c.name;
        c.plant(dir);
        std::string error;
        EXPECT_EQ(modemd_private_dir_ensure(dir, &error), c.accepted) << error;
        if (c.accepted) {
            struct stat st;
            ASSERT_EQ(lstat(dir.c_str(), &st), 0);
            EXPECT_TRUE(S_ISDIR(st.st_mode));
            EXPECT_EQ(st.st_mode & 0777, 0700u);
        } else {
            EXPECT_NE(error.find(dir), std::string::npos) << error;
            EXPECT_NE(error.find(c.why), std::string::npos) << error;
            /* Nothing is repaired behind the owner's back either. */
            EXPECT_FALSE(modemd_private_dir_check(dir, &error));
        }
    }
}

/* The default directory is checked wherever a simulator is about to bind;
 * a directory the user named is only made. */
TEST_F(ModemdPathsTest, SocketDirectoryPreparation)
{
    std::string runtime = root + "/runtime";
    ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
    const char *old_runtime = getenv("XDG_RUNTIME_DIR");
    std::string saved_runtime = old_runtime ? old_runtime : "";
    ASSERT_EQ(setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1), 0);
    std::string def = modemd_default_socket_path();
    EXPECT_EQ(def, runtime + "/rlk-modemd/modemd.sock");
    std::string error;
    EXPECT_TRUE(modemd_prepare_socket_dir(def, &error)) << error;
    ASSERT_EQ(chmod((runtime + "/rlk-modemd").c_str(), 0755), 0);
    EXPECT_FALSE(modemd_prepare_socket_dir(def, &error));
    EXPECT_NE(error.find(runtime + "/rlk-modemd"), std::string::npos) << error;
    /* A socket of the user's own choosing: made, not judged. */
    std::string named = root + "/shared";
    ASSERT_EQ(mkdir(named.c_str(), 0777), 0);
    EXPECT_TRUE(modemd_prepare_socket_dir(named + "/s.sock", &error));
    EXPECT_TRUE(modemd_prepare_socket_dir(root + "/fresh/s.sock", &error));
    struct stat st;
    EXPECT_EQ(stat((root + "/fresh").c_str(), &st), 0);
    if (old_runtime) {
        setenv("XDG_RUNTIME_DIR", saved_runtime.c_str(), 1);
    } else {
        unsetenv("XDG_RUNTIME_DIR");
    }
    EXPECT_EQ(modemd_dir_of("/a/b.sock"), "/a");
    EXPECT_EQ(modemd_dir_of("/b.sock"), "/");
    EXPECT_EQ(modemd_dir_of("b.sock"), ".");
}

TEST_F(ModemdPathsTest, LogFilesAreNotOpenedThroughALink)
{
    std::string victim = root + "/victim";
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
    ASSERT_GE(fd, 0);
    EXPECT_FALSE(modemd_peer_is_trusted(fd, &error));
    EXPECT_FALSE(error.empty());
    close(fd);
}

}  // namespace
