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
/* Up to 5 s for the simulator this test started to leave. */
constexpr int k_exit_polls = 250;
constexpr useconds_t k_exit_poll_us = 20000;

/* Alive and not a zombie waiting for whoever adopted it. */
bool running(pid_t pid)
{
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string pid_text, name, state;
    return stat >> pid_text >> name >> state && state != "Z";
}

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
    if (pid > 0 && kill(pid, SIGTERM) == 0) {
        /* Gone before the directory is removed under it. */
        for (int i = 0; i < k_exit_polls && running(pid); i++) usleep(k_exit_poll_us);
    }
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
    int report[2], done[2], ready[2];
    ASSERT_EQ(pipe(report), 0);
    ASSERT_EQ(pipe(done), 0);
    ASSERT_EQ(pipe(ready), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        /* Serves every connection until the test is done, then reports how
         * many connections came and how many bytes they sent. */
        close(done[1]);
        long counts[2] = {-1, -1};
        if (setgid(k_other_uid) == 0 && setuid(k_other_uid) == 0 && listen(listener, 4) == 0) {
            counts[0] = counts[1] = 0;
            char c = 1;
            if (write(ready[1], &c, 1) != 1) _exit(1);
            for (;;) {
                pollfd p[2] = {{listener, POLLIN, 0}, {done[0], POLLIN, 0}};
                /* Until the test says it is done; the bound only ends a hung test. */
                if (poll(p, 2, 2 * k_run_ms) <= 0 || p[1].revents) break;
                int conn = accept(listener, nullptr, nullptr);
                if (conn < 0) break;
                counts[0]++;
                char buf[4096];
                pollfd q = {conn, POLLIN, 0};
                while (poll(&q, 1, k_listen_ms) == 1) {
                    ssize_t n = recv(conn, buf, sizeof(buf), 0);
                    if (n <= 0) break;
                    counts[1] += n;
                }
                close(conn);
            }
        }
        if (write(report[1], counts, sizeof(counts)) != ssize_t(sizeof(counts))) _exit(1);
        _exit(0);
    }
    close(listener);
    close(report[1]);
    close(done[0]);
    close(ready[1]);
    char c = 0;
    ASSERT_EQ(read(ready[0], &c, 1), 1) << "the listener did not start";
    close(ready[0]);
    run_result tool = run_process({PLATFORM_PROBE_BINARY}, env, "", k_run_ms);
    EXPECT_NE(tool.out, "0 1\n");
    EXPECT_NE(tool.err.find("runs as uid 65534"), std::string::npos) << tool.err;
    run_result ctl = run_process({RLK_MODEMD_BINARY, "ctl", "ping"}, env, "", k_run_ms);
    EXPECT_NE(ctl.status, 0);
    EXPECT_NE(ctl.err.find("runs as uid 65534"), std::string::npos) << ctl.err;
    close(done[1]);
    long counts[2] = {-2, -2};
    ASSERT_EQ(read(report[0], counts, sizeof(counts)), ssize_t(sizeof(counts)));
    EXPECT_GE(counts[0], 1) << "the tool never connected";
    EXPECT_EQ(counts[1], 0) << "the tool sent its packets anyway";
    close(report[0]);
    /* Nor did it start a simulator of its own beside the other one. */
    EXPECT_FALSE(exists(dir + "/state"));
    int status = 0;
    waitpid(child, &status, 0);
}

}  // namespace
