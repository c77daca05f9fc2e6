/* rlk-modemd as a process: one daemon per state directory, clean exit,
 * crash-safe state, damaged state files refused, many clients at once,
 * shared properties; `rlk-modemd ctl` and the control interface with
 * answers and requests larger than one packet, a simulator that does not
 * answer, and the exit status scripts rely on. */
#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>

#include "../../unit/sim/sim_test_util.h"
#include "cutils/properties.h"
#include "ext_request.h"
#include "golden.h"
#include "raw_modemd.h"

namespace {

/* A second daemon on the same state directory is refused and SIGTERM ends
 * the first cleanly; files written while the daemon is killed are either
 * wholly old or wholly new, never torn, and no temporary file is visible. */
TEST(Modemd, SecondDaemonIsRefusedSigtermEndsCleanlyAndStateSurvivesSigkillDuringWrites)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    run_result r = run_process({RLK_MODEMD_BINARY, "--socket", sim.dir() + "/other.sock", "--state", sim.state_dir()},
                               {}, "", 5000);
    EXPECT_EQ(exit_code(r.status), 1);
    EXPECT_EQ(r.err, "rlk-modemd: state directory " + sim.state_dir() + " is in use by another rlk-modemd (pid " +
                         std::to_string(sim.pid()) + ")\n");
    EXPECT_EQ(sim.ctl("ping"), "ok") << "the first daemon keeps serving";
    EXPECT_EQ(exit_code(sim.stop()), 0);
    EXPECT_NE(access(sim.socket_path().c_str(), F_OK), 0) << "socket removed";
    ASSERT_TRUE(sim.restart()) << "the lock was released";

    constexpr int k_files = 6;
    constexpr size_t k_size = 16384;
    auto put = [](int f, int v) { return "efs put /burst/f" + std::to_string(f) + " " + hex_fill(uint8_t(v), k_size); };
    for (int f = 0; f < k_files; f++) sim.ctl_ok(put(f, 0));
    for (int round = 1; round <= 4; round++) {
        std::atomic<bool> stop{false};
        std::thread writer([&] {
            for (int v = 1; !stop; v++) {
                for (int f = 0; f < k_files && !stop; f++) sim.ctl(put(f, v));
            }
        });
        usleep(20000 + 7000 * round);
        sim.kill_hard();
        stop = true;
        writer.join();
        ASSERT_TRUE(sim.restart());
        for (int f = 0; f < k_files; f++) {
            std::string hex = sim.ctl_ok("efs get /burst/f" + std::to_string(f));
            ASSERT_EQ(hex, hex_fill(uint8_t(strtoul(hex.substr(0, 2).c_str(), nullptr, 16)), k_size))
                << "file " << f << " torn in round " << round;
        }
        EXPECT_EQ(sim.ctl_ok("efs ls").find("/."), std::string::npos) << "temporary files are never listed";
    }
}

/* A state file cut short or damaged is refused whole, with a line in the
 * log naming it, and the seed is used: never a half-read state. */
TEST(Modemd, DamagedStateFilesAreRefusedForTheSeed)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    const std::string seed_uim = sim.ctl_ok("uim state"), seed_pdc = sim.ctl_ok("pdc show");
    sim.ctl_ok("uim profile-add 89445000000000000033 0 third");
    sim.ctl_ok("pdc add sw extra_cfg");
    const std::string uim = sim.state_dir() + "/uim_state", pdc = sim.state_dir() + "/pdc/configs";
    const std::string uim_good = file_text(uim), pdc_good = file_text(pdc);
    expect_golden(seed_uim + "\n" + seed_pdc + "\n", __FILE__, "seed_state.golden");
    ASSERT_NE(uim_good.find("third"), std::string::npos);
    ASSERT_NE(pdc_good.find("capacity"), std::string::npos);
    const std::pair<std::string, std::string> cases[] = {
        {uim, ""},
        {uim, uim_good.substr(0, 20)},                     /* cut inside the EID */
        {uim, uim_good.substr(0, uim_good.size() - 3)},    /* cut inside the last profile */
        {uim, uim_good.substr(0, uim_good.find("active"))}, /* cut between lines */
        {uim, "eid 89049032000001000000000000000074\npower 1 x\nactive 0\n"},
        {pdc, pdc_good.substr(0, pdc_good.size() / 2)},
        {pdc, pdc_good.substr(0, pdc_good.find("capacity"))},
    };
    for (const auto &[path, text] : cases) {
        SCOPED_TRACE(path + ": " + text);
        sim.stop();
        unlink(sim.log_path().c_str());
        write_file(path, text);
        ASSERT_TRUE(sim.restart());
        EXPECT_EQ(sim.ctl_ok(path == uim ? "uim state" : "pdc show"), path == uim ? seed_uim : seed_pdc);
        EXPECT_NE(file_text(sim.log_path()).find("state file " + path + " refused ("), std::string::npos);
        EXPECT_EQ(file_text(path + ".bad"), text) << "the refused file is kept beside";
    }
}

/* QMI clients and property writers at once: every request is answered,
 * and another process sees each writer's last value. */
TEST(Modemd, ServesManyClientsAndConcurrentPropertyWritersAtOnce)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    std::string expect = sim.ctl_ok(std::string("efs get ") + k_seeded_efs_file);
    constexpr int k_clients = 24, k_requests = 40, k_writers = 8, k_rounds = 25;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < k_clients; t++) {
        threads.emplace_back([&] {
            qmi_conn client;
            if (!client.open(tolvek_extend_get_service_object_v01())) return;
            for (int i = 0; i < k_requests; i++) {
                tolvek_extend_msg req = make_efs_read_request(), resp;
                good += client.call(TOLVEK_EXTEND_REQ_MSG_ID_V01, &req, &resp) && resp.data[8] * 2 == expect.size();
            }
        });
    }
    for (int w = 0; w < k_writers; w++) {
        threads.emplace_back([w] {
            std::string key = "persist.test.writer" + std::to_string(w);
            for (int r = 0; r < k_rounds; r++) property_set(key.c_str(), std::to_string(r).c_str());
        });
    }
    for (auto &t : threads) t.join();
    EXPECT_EQ(good.load(), k_clients * k_requests);
    for (int w = 0; w < k_writers; w++) {
        EXPECT_EQ(sim.run_program(PLATFORM_PROBE_BINARY, {"getprop", "persist.test.writer" + std::to_string(w)}).out,
                  "2 24\n");
    }
    /* A value keeps its spaces; an unset key gives the default; 91
     * characters fit and 92 do not. */
    EXPECT_EQ(property_set("persist.test.text", "a b  c"), 0);
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(property_get("persist.test.text", value, nullptr), 6);
    EXPECT_STREQ(value, "a b  c");
    EXPECT_EQ(property_get("persist.test.none", value, "dflt"), 4);
    EXPECT_STREQ(value, "dflt");
    EXPECT_EQ(property_get("persist.test.none", value, nullptr), 0);
    EXPECT_EQ(property_set("persist.test.long", std::string(91, 'x').c_str()), 0);
    EXPECT_LT(property_set("persist.test.long", std::string(92, 'x').c_str()), 0);
    ASSERT_TRUE(sim.restart());
    EXPECT_EQ(property_get("persist.test.writer3", value, nullptr), 2) << "restarting keeps them";
}

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

    /* `ctl` times out and exits non-zero without a whole answer, within
     * its bound; bad time-outs, a socket nobody serves, an unknown request. */
    int mute_fd = seqpacket_at(sim.dir() + "/mute.sock", true); /* takes connections, never answers */
    ASSERT_EQ(listen(mute_fd, 8), 0);
    /* Each run of ctl_runs.golden, its output and its exit status. */
    std::string session;
    for (const std::string &line : data_lines(__FILE__, "ctl_runs.golden")) {
        if (line.compare(0, 2, "$ ") != 0) continue;
        std::istringstream words(line.substr(2));
        std::vector<std::string> env, args;
        for (std::string w; words >> w;) {
            if (w.compare(0, 4, "$DIR") == 0) w.replace(0, 4, sim.dir());
            (args.empty() && w.find('=') != std::string::npos ? env : args).push_back(w);
        }
        long long t0 = monotonic_ms();
        r = sim.run_program(RLK_MODEMD_BINARY, args, env, 20000);
        EXPECT_LT(monotonic_ms() - t0, 5000) << line;
        session += line + "\n" + r.out + r.err + "? " + std::to_string(exit_code(r.status)) + "\n";
    }
    for (size_t at; (at = session.find(sim.dir())) != std::string::npos;) session.replace(at, sim.dir().size(), "$DIR");
    expect_golden(session, __FILE__, "ctl_runs.golden");
    close(mute_fd);
}

}  // namespace
