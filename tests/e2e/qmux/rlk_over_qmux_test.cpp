/* rlk with RLK_QMI_DEVICE pointed at rlk-modemd's QMUX device: the same
 * answers as over the socket, no client id left allocated however the run
 * ends (release, exit, time-out, SIGINT, SIGTERM, SIGKILL and the next run,
 * an allocation answered too late), and bounded opens on a device that
 * never answers or never runs dry. */
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <sstream>

#include "../../unit/sim/sim_test_util.h"
#include "golden.h"

namespace {

constexpr int k_client_wait_ms = 5000;

/* Handle addresses differ from run to run, and indication callbacks print
 * from their own thread, where their lines fall (even inside a line of the
 * main thread, from their last "RIL[" on) depending on timing. */
std::string comparable(const std::string &text)
{
    std::string out;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        for (size_t at = 0; (at = line.find("0x", at)) != std::string::npos; at += 3) {
            size_t end = line.find_first_not_of("0123456789abcdefABCDEF", at + 2);
            if ((end == std::string::npos ? line.size() : end) - at - 2 >= 6) line.replace(at + 2, end - at - 2, "?");
        }
        size_t cb = line.find("unsol_ind_cb");
        if (cb == std::string::npos) {
            out += line + "\n";
        } else {
            /* The rest of the main thread's line comes after the callback's. */
            out += line.substr(0, std::min(cb, line.rfind("RIL[", cb)));
        }
    }
    return out;
}

/* Polls `qmux clients` until it answers `want`; the last answer. */
std::string wait_clients(const sim_instance &sim, const std::string &want = "ok")
{
    std::string got;
    poll_until([&] { return (got = sim.ctl("qmux clients")) == want; }, k_client_wait_ms);
    return got;
}

class RlkOverQmux : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
        device_ = "RLK_QMI_DEVICE=" + sim_.qmux_path();
    }
    sim_instance sim_;
    std::string device_; /* the device; runs of the fixture have the simulator's socket beside it */
};

/* The SAR query, the eSIM switch and back, the MBN list and a load of
 * frames of tens of kilobytes (crossing the pseudo-terminal in pieces):
 * each run prints and leaves what the same run over the socket of a second
 * simulator from the same seed does; the device's session is
 * rlk_over_qmux.golden. */
TEST_F(RlkOverQmux, RunsMatchTheSocketAndLeaveNoClientId)
{
    sim_instance plain;
    ASSERT_TRUE(plain.start());
    const std::string mbn = sim_.dir() + "/large.mbn";
    std::string data(150000, 0);
    for (size_t i = 0; i < data.size(); i++) data[i] = char(i * 13 + 1);
    write_file(mbn, data);
    const std::vector<std::vector<std::string>> runs = {
        {RLK_BINARY, "5", "5"},       {RLK_BINARY, "5", "10", "1", "1"}, {RLK_BINARY, "5", "10", "2", "1"},
        {RLK_MBN_BINARY, "list"},     {RLK_MBN_BINARY, "load", mbn, "--id", "LARGE"},
        {RLK_MBN_BINARY, "list"}};
    plain.ctl_ok("sar state 4");
    sim_.ctl_ok("sar state 4");
    std::string session;
    for (const auto &run : runs) {
        const std::vector<std::string> args(run.begin() + 1, run.end());
        rlk_run socket = plain.run_program(run[0], args);
        rlk_run device = sim_.run_program(run[0], args, {device_});
        EXPECT_EQ(device.status, socket.status) << args[0] << device.err;
        EXPECT_EQ(comparable(device.out), comparable(socket.out)) << args[0];
        EXPECT_EQ(sim_.ctl_ok("uim state"), plain.ctl_ok("uim state")) << args[0];
        EXPECT_EQ(wait_clients(sim_), "ok") << args[0];
        session += "$ " + run[0].substr(run[0].rfind('/') + 1);
        for (const std::string &a : args) session += " " + a;
        /* The trace lines, compared above, are left out. */
        session += "\n";
        std::istringstream lines(comparable(device.out));
        for (std::string line; std::getline(lines, line);) {
            size_t ril = line.find("RIL[");
            session += ril == std::string::npos ? line + "\n" : line.substr(0, ril);
        }
    }
    session += "> uim state\n" + sim_.ctl_ok("uim state") + "\n";
    for (size_t at; (at = session.find(sim_.dir())) != std::string::npos;) session.replace(at, sim_.dir().size(), "$DIR");
    expect_golden(session, __FILE__, "rlk_over_qmux.golden");
    std::string counters = sim_.ctl_ok("qmux counters");
    EXPECT_EQ(counters.find("frames-in 0\n"), std::string::npos) << "went over the device";
    EXPECT_NE(counters.find("skipped-bytes 0\ndropped-malformed 0\n"), std::string::npos) << counters;
}

/* SIGTERM and SIGINT release the id on the way out, even while its
 * allocation is still being answered; the id SIGKILL leaves behind (once
 * the run knew it: its request reached the modem) is released by the next
 * run. */
TEST_F(RlkOverQmux, SignalMidRequestLeavesNoClientId)
{
    std::vector<std::string> beside = sim_.env();
    beside.push_back(device_);
    int cid = 0;
    for (int sig : {SIGTERM, SIGINT, SIGKILL}) {
        sim_.ctl_ok("delay sar 2 10000 1");
        const std::string journal = sim_.ctl("last 64 sar");
        pid_t pid = spawn_process({RLK_BINARY, "5", "5"}, beside, {-1, -1, -1});
        ASSERT_GT(pid, 0);
        std::string held = wait_clients(sim_, "ok\n0x11 " + std::to_string(++cid));
        EXPECT_EQ(held.compare(0, 8, "ok\n0x11 "), 0) << held;
        if (sig == SIGKILL) poll_until([&] { return sim_.ctl("last 64 sar") != journal; }, k_client_wait_ms);
        kill(pid, sig);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == sig) << status;
        sim_.ctl_ok("clear-faults");
        if (sig == SIGKILL) {
            EXPECT_EQ(sim_.ctl("qmux clients"), held);
            EXPECT_TRUE(exited_cleanly(sim_.run_rlk({"5", "5"}, {device_}).status));
        }
        EXPECT_EQ(wait_clients(sim_), "ok") << "signal " << sig;
    }
}

/* A device that never answers, and one that never runs dry: every open of
 * the PDC client (20 of them, 4 ms each) ends within its bound, and the
 * second device is named for what it does. */
TEST_F(RlkOverQmux, SilentOrStreamingDeviceEndsWithinItsBounds)
{
    int silent = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(silent >= 0 && grantpt(silent) == 0 && unlockpt(silent) == 0);
    const std::pair<std::string, std::string> cases[] = {{ptsname(silent), ""}, {"/dev/zero", "never runs dry"}};
    for (const auto &[path, err] : cases) {
        long long start = monotonic_ms();
        run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"},
                                   {"RLK_QMI_DEVICE=" + path, "RLK_TEST_PDC_RETRY_MS=1"}, "", 20000);
        EXPECT_LT(monotonic_ms() - start, 5000) << path;
        EXPECT_NE(r.out.find("pdc init failed, do nothing"), std::string::npos) << path << r.out;
        EXPECT_NE(r.err.find(err), std::string::npos) << r.err;
    }
    close(silent);
}

/* A request that times out (-3), then an exit with or without releasing
 * the handle.  The modem hands out a client id after the host gave up
 * waiting: the id goes back when the late answer arrives (the PDC client
 * of option 10 waits its usual 4 ms, stretched to a second for a device
 * that answered so far; its next attempt, 2 s later, opens the client).
 * Then a 16-bit vendor service, which has no place in the
 * service byte: with no simulator named beside the device (the default
 * endpoint kept in a private runtime directory, where an on-demand
 * simulator leaves soon after) it is not there (-2); the simulator named
 * beside the device stands in for it. */
TEST_F(RlkOverQmux, TimedOutOrLateAnsweredRequestLeavesNoClientId)
{
    for (const char *release : {"1", "0"}) {
        sim_.ctl_ok("drop sar 2 1");
        rlk_run r = sim_.run_program(PLATFORM_PROBE_BINARY, {"sar-get", "200", release}, {device_});
        EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
        EXPECT_EQ(r.out, "-3 0\n") << "release " << release;
        EXPECT_EQ(wait_clients(sim_), "ok") << "release " << release;
    }
    sim_.ctl_ok("qmux delay-ctl 0x22 2500");
    rlk_run late = sim_.run_program(MBN_RETRY_PROBE_BINARY, {"10", "0", "1"}, {device_, "RLK_TEST_PDC_RETRY_MS=400"});
    EXPECT_TRUE(exited_cleanly(late.status)) << late.err;
    EXPECT_EQ(late.out.find("pdc init failed"), std::string::npos) << late.out;
    EXPECT_EQ(wait_clients(sim_), "ok");
    std::string runtime = sim_.dir() + "/runtime";
    ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
    run_result r = run_process({PLATFORM_PROBE_BINARY},
                               {device_, "RLK_MODEMD_SOCKET=", "XDG_RUNTIME_DIR=" + runtime, "RLK_MODEMD_IDLE_EXIT=1"});
    EXPECT_EQ(r.out, "-2 0\n") << r.err;
    EXPECT_EQ(sim_.run_program(PLATFORM_PROBE_BINARY, {}, {device_}).out, "0 1\n");
}

}  // namespace
