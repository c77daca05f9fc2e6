/* `rlk-modemd ctl` and the control interface with answers and requests
 * larger than one packet, a simulator that does not answer, and the exit
 * status scripts rely on. */
#include <algorithm>

#include <gtest/gtest.h>

#include "../../unit/sim/sim_test_util.h"
#include "raw_modemd.h"

namespace {

run_result ctl_binary(const sim_instance &sim, const std::vector<std::string> &args,
                      const std::vector<std::string> &env = {})
{
    std::vector<std::string> argv = {RLK_MODEMD_BINARY, "ctl"};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<std::string> e = sim.env();
    e.insert(e.end(), env.begin(), env.end());
    return run_process(argv, e, "", 20000);
}

/* Answers and requests larger than a packet arrive whole through the
 * tool's client; a client that cannot take pieces gets an error rather
 * than a cut answer; the exit status of `ctl` when no whole answer comes
 * in time. */
TEST(ModemdCtl, LargeAnswersArriveWholeAndTimeOutsExitNonZero)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    std::string hex = hex_of(TOLVEK_EFS_FILE_MAX, [](size_t i) { return i * 7 + i / 256; });
    ASSERT_EQ(sim.ctl("efs put /big/file " + hex), "ok") << "a request of " << hex.size() << " bytes";
    run_result r = ctl_binary(sim, {"efs", "get", "/big/file"});
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    EXPECT_EQ(r.out.size(), 3 + 2 * TOLVEK_EFS_FILE_MAX + 1);
    EXPECT_TRUE(r.out == "ok " + hex + "\n") << "the answer differs";

    raw_conn old_client;
    ASSERT_TRUE(old_client.open(MODEMD_CONN_CONTROL));
    EXPECT_EQ(ask(old_client, "efs get /big/file").compare(0, 16, "error answer of "), 0);
    EXPECT_EQ(ask(old_client, "getprop ro.none"), "ok ") << "small answers stay one packet";

    /* 200 journal lines of full requests: more than the socket holds. */
    raw_ext_client ext;
    ASSERT_TRUE(ext.attach());
    uint8_t fill[TOLVEK_EXTEND_DATA_MAX];
    memset(fill, 0xA5, sizeof(fill));
    tolvek_extend_msg echo = ext_msg(0, fill), resp;
    for (int i = 0; i < 200; i++) ASSERT_TRUE(ext.call(echo, &resp)) << i;
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

    /* `ctl` times out and exits non-zero without a whole answer. */
    const std::string mute = sim.dir() + "/mute.sock"; /* takes connections, never answers */
    int mute_fd = seqpacket_at(mute, true);
    ASSERT_EQ(listen(mute_fd, 8), 0);
    struct {
        std::vector<std::string> args;
        std::vector<std::string> env;
        int status;
        const char *err;
    } cases[] = {
        {{"--socket", mute, "--timeout", "300", "ping"}, {}, 2, "no answer in time"},
        {{"--socket", mute, "ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=300"}, 2, "no answer in time"},
        {{"--timeout", "0", "ping"}, {}, 2, "bad time-out"},
        {{"ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=soon"}, 2, "bad RLK_MODEMD_CTL_TIMEOUT_MS"},
        {{"--socket", sim.dir() + "/nobody.sock", "ping"}, {}, 2, "nobody.sock"},
        {{"no-such-request"}, {}, 1, ""},
        {{"--timeout", "5000", "ping"}, {}, 0, ""},
    };
    for (const auto &c : cases) {
        long long t0 = monotonic_ms();
        run_result r = ctl_binary(sim, c.args, c.env);
        std::string what = c.args.back() + " " + (c.env.empty() ? "" : c.env[0]) + ": " + r.err;
        EXPECT_EQ(exit_code(r.status), c.status) << what;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << what;
        EXPECT_LT(monotonic_ms() - t0, 5000) << what;
    }
    close(mute_fd);
}

}  // namespace
