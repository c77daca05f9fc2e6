/* `rlk-modemd ctl` and the control interface with answers and requests
 * larger than one packet, a simulator that does not answer, and the exit
 * status scripts rely on. */
#include <sys/socket.h>
#include <sys/wait.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include <gtest/gtest.h>

#include "raw_modemd.h"
#include "sim_fixture.h"

namespace {

constexpr size_t k_big_file = TOLVEK_EFS_FILE_MAX; /* 102410 bytes */

std::string pattern_hex(size_t n)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (size_t i = 0; i < n; i++) {
        uint8_t b = uint8_t(i * 7 + i / 256);
        s += d[b >> 4];
        s += d[b & 15];
    }
    return s;
}

run_result ctl_binary(const sim_instance &sim, const std::vector<std::string> &args,
                      const std::vector<std::string> &env = {})
{
    std::vector<std::string> argv = {RLK_MODEMD_BINARY, "ctl"};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<std::string> e = sim.env();
    e.insert(e.end(), env.begin(), env.end());
    return run_process(argv, e, "", 20000);
}

int exit_code(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

TEST(ModemdCtl, AnswersAndRequestsLargerThanAPacketArriveWhole)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    std::string hex = pattern_hex(k_big_file);
    ASSERT_EQ(sim.ctl("efs put /big/file " + hex), "ok") << "a request of " << hex.size() << " bytes";

    run_result r = ctl_binary(sim, {"efs", "get", "/big/file"});
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    EXPECT_EQ(r.out.size(), 3 + 2 * k_big_file + 1);
    EXPECT_TRUE(r.out == "ok " + hex + "\n") << "the answer differs";

    /* 200 journal lines of full requests: more than the socket holds. */
    raw_ext_client ext;
    ASSERT_TRUE(ext.attach());
    tolvek_extend_msg req, resp;
    memset(&req, 0, sizeof(req));
    req.msg_code = 0; /* echo */
    req.data_len = TOLVEK_EXTEND_DATA_MAX;
    req.data_valid = 1;
    memset(req.data, 0xA5, sizeof(req.data));
    for (int i = 0; i < 200; i++) ASSERT_TRUE(ext.call(req, &resp)) << i;
    r = ctl_binary(sim, {"last", "200"});
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    EXPECT_GT(r.out.size(), size_t(3 * MODEMD_MAX_PACKET));
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 201);
    EXPECT_EQ(r.out.compare(0, 3, "ok\n"), 0);

    /* A request past the daemon's limit is refused, and the connection
     * state does not leak into the next request. */
    EXPECT_EQ(sim.ctl("efs put /big/huge " + std::string(5u << 20, '0')).compare(0, 30, "error request larger than 4194"),
              0);
    EXPECT_EQ(sim.ctl("ping"), "ok");
}

TEST(ModemdCtl, AClientWithoutPiecesGetsAnErrorNotACutAnswer)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    ASSERT_EQ(sim.ctl("efs put /big/file " + pattern_hex(k_big_file)), "ok");
    raw_conn old_client;
    ASSERT_TRUE(old_client.open(MODEMD_CONN_CONTROL));
    std::string req = "efs get /big/file";
    ASSERT_TRUE(old_client.send(std::vector<uint8_t>(req.begin(), req.end())));
    std::vector<uint8_t> a = old_client.recv(3000);
    std::string answer(a.begin(), a.end());
    EXPECT_EQ(answer.compare(0, 16, "error answer of "), 0) << answer.substr(0, 80);
    req = "getprop ro.none";
    ASSERT_TRUE(old_client.send(std::vector<uint8_t>(req.begin(), req.end())));
    a = old_client.recv(3000);
    EXPECT_EQ(std::string(a.begin(), a.end()), "ok ") << "small answers stay one packet";
}

/* A socket that takes connections and never answers. */
struct mute_server {
    int fd = -1;
    std::string path;
    explicit mute_server(const std::string &p) : path(p)
    {
        fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        sockaddr_un addr = {};
        addr.sun_family = AF_UNIX;
        snprintf(addr.sun_path, sizeof(addr.sun_path), "%s", path.c_str());
        if (bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)) != 0 || listen(fd, 8) != 0) {
            close(fd);
            fd = -1;
        }
    }
    ~mute_server()
    {
        if (fd >= 0) close(fd);
        unlink(path.c_str());
    }
};

TEST(ModemdCtl, TimesOutAndExitsNonZeroWithoutAWholeAnswer)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    mute_server mute(sim.dir() + "/mute.sock");
    ASSERT_GE(mute.fd, 0);

    struct {
        std::vector<std::string> args;
        std::vector<std::string> env;
        int status;
        const char *err;
    } cases[] = {
        {{"--socket", mute.path, "--timeout", "300", "ping"}, {}, 2, "no answer in time"},
        {{"--socket", mute.path, "ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=300"}, 2, "no answer in time"},
        {{"--timeout", "0", "ping"}, {}, 2, "bad time-out"},
        {{"ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=soon"}, 2, "bad RLK_MODEMD_CTL_TIMEOUT_MS"},
        {{"--socket", sim.dir() + "/nobody.sock", "ping"}, {}, 2, "nobody.sock"},
        {{"no-such-request"}, {}, 1, ""},
        {{"--timeout", "5000", "ping"}, {}, 0, ""},
    };
    for (const auto &c : cases) {
        long long t0 = monotonic_ms();
        run_result r = ctl_binary(sim, c.args, c.env);
        long long took = monotonic_ms() - t0;
        std::string what = c.args.back() + " " + (c.env.empty() ? "" : c.env[0]);
        EXPECT_EQ(exit_code(r.status), c.status) << what << ": " << r.err;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << what << ": " << r.err;
        EXPECT_LT(took, 5000) << what;
    }
}

}  // namespace
