/* The per-user default endpoint when another user got there first: the
 * tool and the simulator refuse a planted default directory, naming it,
 * and the tool does not talk to a simulator of another user at the
 * default socket. */
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "process_runner.h"

namespace {

constexpr uid_t k_other_uid = 65534;
constexpr int k_run_ms = 10000;
/* How long the other user's simulator waits for the tool's packets. */
constexpr int k_listen_ms = 3000;

class DefaultEndpointTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-endpoint-test-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        runtime = tmpl;
        dir = runtime + "/rlk-modemd";
        env = {"RLK_MODEMD_SOCKET=", "RLK_SYSLOG_FILE=", "RLK_LOGCAT_FILE=", "XDG_RUNTIME_DIR=" + runtime,
               std::string("RLK_MODEMD=") + RLK_MODEMD_BINARY, "RLK_MODEMD_IDLE_EXIT=1"};
    }
    void TearDown() override
    {
        std::string cmd = "rm -rf '" + runtime + "'";
        ASSERT_EQ(system(cmd.c_str()), 0);
    }
    bool exists(const std::string &path)
    {
        struct stat st;
        return lstat(path.c_str(), &st) == 0;
    }
    std::string runtime, dir;
    std::vector<std::string> env;
};

TEST_F(DefaultEndpointTest, PlantedDefaultDirectoryIsRefused)
{
    struct plant_case {
        const char *name;
        std::function<void()> plant;
        bool needs_root;
    } cases[] = {
        {"open to others",
         [&] {
             mkdir(dir.c_str(), 0777);
             chmod(dir.c_str(), 0777);
         },
         false},
        {"link to another directory",
         [&] {
             mkdir((runtime + "/elsewhere").c_str(), 0700);
             symlink((runtime + "/elsewhere").c_str(), dir.c_str());
         },
         false},
        {"another user's",
         [&] {
             mkdir(dir.c_str(), 0700);
             if (chown(dir.c_str(), k_other_uid, k_other_uid) != 0) abort();
         },
         true},
    };
    for (const plant_case &c : cases) {
        SCOPED_TRACE(c.name);
        if (c.needs_root && geteuid() != 0) {
            printf("skipping \"%s\": needs root to give a directory to another user\n", c.name);
            continue;
        }
        c.plant();
        run_result tool = run_process({PLATFORM_PROBE_BINARY}, env, "", k_run_ms);
        EXPECT_NE(tool.out, "0 1\n");
        EXPECT_NE(tool.err.find("refusing directory " + dir), std::string::npos) << tool.err;
        run_result sim = run_process({RLK_MODEMD_BINARY, "--idle-exit", "1"}, env, "", k_run_ms);
        EXPECT_TRUE(WIFEXITED(sim.status) && WEXITSTATUS(sim.status) == 1);
        EXPECT_NE(sim.err.find("refusing directory " + dir), std::string::npos) << sim.err;
        /* The way rlk starts it, with the default socket named. */
        run_result named = run_process({RLK_MODEMD_BINARY, "--socket", dir + "/modemd.sock"}, env, "", k_run_ms);
        EXPECT_TRUE(WIFEXITED(named.status) && WEXITSTATUS(named.status) == 1);
        for (const char *inside : {"/modemd.sock", "/state", "/syslog.log"})
            EXPECT_FALSE(exists(dir + inside)) << inside;
        std::string cmd = "rm -rf '" + dir + "' '" + runtime + "/elsewhere'";
        ASSERT_EQ(system(cmd.c_str()), 0);
    }
    /* The user's own directory still works. */
    run_result ok = run_process({PLATFORM_PROBE_BINARY}, env, "", k_run_ms);
    EXPECT_EQ(ok.out, "0 1\n") << ok.err;
    std::ifstream lock(dir + "/state/lock");
    pid_t pid = 0;
    lock >> pid;
    if (pid > 0) kill(pid, SIGTERM);
}

/* Another user's simulator listens at the default socket of a private
 * directory (root plays that user): the tool hangs up without sending a
 * byte. */
TEST_F(DefaultEndpointTest, SimulatorOfAnotherUserIsNotUsed)
{
    if (geteuid() != 0) {
        printf("skipping: needs root to run a listener as another user\n");
        return;
    }
    ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
    std::string path = dir + "/modemd.sock";
    int listener = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    ASSERT_GE(listener, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    snprintf(addr.sun_path, sizeof(addr.sun_path), "%s", path.c_str());
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)), 0);
    int report[2];
    ASSERT_EQ(pipe(report), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        /* Reports how many bytes the tool sent (-1: never connected). */
        long received = -1;
        if (setgid(k_other_uid) == 0 && setuid(k_other_uid) == 0 && listen(listener, 4) == 0) {
            pollfd p = {listener, POLLIN, 0};
            if (poll(&p, 1, k_listen_ms) == 1) {
                int conn = accept(listener, nullptr, nullptr);
                received = 0;
                char buf[4096];
                pollfd q = {conn, POLLIN, 0};
                while (poll(&q, 1, k_listen_ms) == 1) {
                    ssize_t n = recv(conn, buf, sizeof(buf), 0);
                    if (n <= 0) break;
                    received += n;
                }
            }
        }
        if (write(report[1], &received, sizeof(received)) != ssize_t(sizeof(received))) _exit(1);
        _exit(0);
    }
    close(listener);
    close(report[1]);
    run_result tool = run_process({PLATFORM_PROBE_BINARY}, env, "", k_run_ms);
    EXPECT_NE(tool.out, "0 1\n");
    EXPECT_NE(tool.err.find("runs as uid 65534"), std::string::npos) << tool.err;
    long received = -2;
    ASSERT_EQ(read(report[0], &received, sizeof(received)), ssize_t(sizeof(received)));
    EXPECT_EQ(received, 0) << "the tool connected and sent its packets anyway";
    close(report[0]);
    int status = 0;
    waitpid(child, &status, 0);
}

}  // namespace
