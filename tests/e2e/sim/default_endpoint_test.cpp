/* The per-user default endpoint: with no RLK_MODEMD_SOCKET the first
 * client starts a simulator there, detached from the client's standard
 * streams, which leaves once idle; the tool and the simulator refuse a
 * default directory another user planted, naming it, and the tool does
 * not talk to a simulator of another user at the default socket. */
#include <sys/stat.h>

#include "../../unit/sim/sim_test_util.h"

namespace {

constexpr uid_t k_other_uid = 65534;
constexpr int k_run_ms = 10000;

class DefaultEndpointTest : public ::testing::Test {
protected:
    temp_dir runtime;
    std::string dir = runtime.path + "/rlk-modemd";
    std::vector<std::string> env = {"RLK_MODEMD_SOCKET=", "RLK_SYSLOG_FILE=", "RLK_LOGCAT_FILE=",
                                    "XDG_RUNTIME_DIR=" + runtime.path, std::string("RLK_MODEMD=") + RLK_MODEMD_BINARY,
                                    "RLK_MODEMD_IDLE_EXIT=1"};
};

TEST_F(DefaultEndpointTest, PlantedDirectoryIsRefusedAndTheUsersOwnStartsOnDemand)
{
    const std::string elsewhere = runtime.path + "/elsewhere";
    for (const std::string plant : {"open to others", "link to another directory", "another user's"}) {
        SCOPED_TRACE(plant);
        if (plant == "another user's" && geteuid() != 0) continue; /* needs root to give a directory away */
        if (plant == "open to others") {
            ASSERT_TRUE(mkdir(dir.c_str(), 0777) == 0 && chmod(dir.c_str(), 0777) == 0);
        } else if (plant == "link to another directory") {
            ASSERT_TRUE(mkdir(elsewhere.c_str(), 0700) == 0 && symlink(elsewhere.c_str(), dir.c_str()) == 0);
        } else {
            ASSERT_TRUE(mkdir(dir.c_str(), 0700) == 0 && chown(dir.c_str(), k_other_uid, k_other_uid) == 0);
        }
        /* The tool, the simulator, and the simulator as rlk starts it, with
         * the default socket named. */
        for (const std::vector<std::string> &argv : {std::vector<std::string>{PLATFORM_PROBE_BINARY},
                                                     {RLK_MODEMD_BINARY, "--idle-exit", "1"},
                                                     {RLK_MODEMD_BINARY, "--socket", dir + "/modemd.sock"}}) {
            run_result r = run_process(argv, env, "", k_run_ms);
            EXPECT_NE(r.out, "0 1\n");
            EXPECT_NE(r.err.find("refusing directory " + dir), std::string::npos) << argv.back() << ": " << r.err;
            EXPECT_TRUE(argv.size() == 1 || exit_code(r.status) == 1) << argv.back();
        }
        for (const char *inside : {"/modemd.sock", "/state", "/syslog.log"}) {
            EXPECT_NE(access((dir + inside).c_str(), F_OK), 0) << inside;
        }
        ASSERT_EQ(system(("rm -rf '" + dir + "' '" + elsewhere + "'").c_str()), 0);
    }
    long long start = monotonic_ms();
    run_result ok = run_process({PLATFORM_PROBE_BINARY}, env, "", k_run_ms);
    EXPECT_EQ(ok.out, "0 1\n") << ok.err;
    EXPECT_LT(monotonic_ms() - start, 2000) << "the probe returned without waiting for the simulator to exit";
    pid_t pid = atoi(file_text(dir + "/state/lock").c_str());
    ASSERT_GT(pid, 0);
    for (int fd = 0; fd <= 2; fd++) {
        char link[256] = {0};
        EXPECT_GT(readlink(("/proc/" + std::to_string(pid) + "/fd/" + std::to_string(fd)).c_str(), link, 255), 0);
        EXPECT_STREQ(link, "/dev/null") << "fd " << fd;
    }
    EXPECT_EQ(access((dir + "/state/modemd.log").c_str(), F_OK), 0) << "logs to its state dir";
    /* Idle for a second, it leaves on its own: gone, not even a zombie of
     * whoever adopted it, before the directory is removed under it. */
    EXPECT_TRUE(wait_until(
        [pid] {
            std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
            std::string pid_text, name, state;
            return !(stat >> pid_text >> name >> state) || state == "Z";
        },
        5000));
}

/* Another user's simulator listens at the default socket of a private
 * directory (root plays that user): the tool hangs up without sending a
 * byte, and starts no simulator of its own beside it. */
TEST_F(DefaultEndpointTest, SimulatorOfAnotherUserIsNotUsed)
{
    if (geteuid() != 0) GTEST_SKIP() << "needs root to run a listener as another user";
    ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
    /* Connections wait in the backlog, and are read here afterwards. */
    int listener = seqpacket_at(dir + "/modemd.sock", true, SOCK_NONBLOCK);
    ASSERT_GE(listener, 0);
    /* The listening socket takes the credentials of the process that
     * starts listening: a child that has become the other user. */
    pid_t child = fork();
    if (child == 0) _exit(setgid(k_other_uid) == 0 && setuid(k_other_uid) == 0 && listen(listener, 16) == 0 ? 0 : 1);
    int status = -1;
    ASSERT_TRUE(child > 0 && waitpid(child, &status, 0) == child && exit_code(status) == 0) << "no listener";
    for (const std::vector<std::string> &argv :
         {std::vector<std::string>{PLATFORM_PROBE_BINARY}, {RLK_MODEMD_BINARY, "ctl", "ping"}}) {
        run_result r = run_process(argv, env, "", k_run_ms);
        EXPECT_NE(r.out, "0 1\n");
        EXPECT_TRUE(argv.size() == 1 || r.status != 0);
        EXPECT_NE(r.err.find("runs as uid 65534"), std::string::npos) << r.err;
    }
    long connections = 0, bytes = 0;
    for (int conn; (conn = accept(listener, nullptr, nullptr)) >= 0; close(conn)) {
        connections++;
        char buf[4096];
        for (ssize_t n; (n = recv(conn, buf, sizeof(buf), MSG_DONTWAIT)) > 0;) bytes += n;
    }
    EXPECT_GE(connections, 1) << "the tool never connected";
    EXPECT_EQ(bytes, 0) << "the tool sent its packets anyway";
    EXPECT_NE(access((dir + "/state").c_str(), F_OK), 0);
    close(listener);
}

}  // namespace
