/* `rlk-modemd ctl` and the control interface with answers and requests
 * larger than one packet, a simulator that does not answer, and the exit
 * status scripts rely on. */
#include <algorithm>

#include "../../unit/sim/sim_test_util.h"
#include "raw_modemd.h"

namespace {

/* Answers and requests larger than a packet arrive whole through the
 * tool's client; a client that cannot take pieces gets an error rather
 * than a cut answer; the exit status of `ctl` when no whole answer comes
 * in time. */
TEST(ModemdCtl, LargeAnswersArriveWholeAndTimeOutsExitNonZero)
{
    sim_instance sim;
    raw_conn old_client;
    raw_ext_client ext;
    ASSERT_TRUE(sim.start() && old_client.open(MODEMD_CONN_CONTROL) && ext.attach());
    std::string hex = hex_of(TOLVEK_EFS_FILE_MAX, [](size_t i) { return i * 7 + i / 256; });
    ASSERT_EQ(sim.ctl("efs put /big/file " + hex), "ok") << "a request of " << hex.size() << " bytes";
    rlk_run r = sim.run_program(RLK_MODEMD_BINARY, {"ctl", "efs", "get", "/big/file"});
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    EXPECT_TRUE(r.out == "ok " + hex + "\n") << "the answer differs";
    EXPECT_EQ(ask(old_client, "efs get /big/file").compare(0, 16, "error answer of "), 0);
    EXPECT_EQ(ask(old_client, "getprop ro.none"), "ok ") << "small answers stay one packet";

    /* 200 journal lines of full requests: more than the socket holds. */
    uint8_t fill[TOLVEK_EXTEND_DATA_MAX];
    memset(fill, 0xA5, sizeof(fill));
    tolvek_extend_msg echo = ext_msg(0, fill), resp;
    for (int i = 0; i < 200; i++) ASSERT_TRUE(ext.call(echo, &resp)) << i;
    r = sim.run_program(RLK_MODEMD_BINARY, {"ctl", "last", "200"});
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
    const struct {
        std::vector<std::string> args;
        std::vector<std::string> env;
        int status;
        const char *err;
    } cases[] = {
        {{"ctl", "--socket", mute, "--timeout", "300", "ping"}, {}, 2, "no answer in time"},
        {{"ctl", "--socket", mute, "ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=300"}, 2, "no answer in time"},
        {{"ctl", "--timeout", "0", "ping"}, {}, 2, "bad time-out"},
        {{"ctl", "ping"}, {"RLK_MODEMD_CTL_TIMEOUT_MS=soon"}, 2, "bad RLK_MODEMD_CTL_TIMEOUT_MS"},
        {{"ctl", "--socket", sim.dir() + "/nobody.sock", "ping"}, {}, 2, "nobody.sock"},
        {{"ctl", "no-such-request"}, {}, 1, ""},
        {{"ctl", "--timeout", "5000", "ping"}, {}, 0, ""},
    };
    for (const auto &c : cases) {
        long long t0 = monotonic_ms();
        r = sim.run_program(RLK_MODEMD_BINARY, c.args, c.env, 20000);
        std::string what = c.args.back() + " " + (c.env.empty() ? "" : c.env[0]) + ": " + r.err;
        EXPECT_EQ(exit_code(r.status), c.status) << what;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << what;
        EXPECT_LT(monotonic_ms() - t0, 5000) << what;
    }
    close(mute_fd);
}

}  // namespace
