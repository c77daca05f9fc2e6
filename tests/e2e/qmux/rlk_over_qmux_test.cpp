/* rlk with RLK_QMI_DEVICE pointed at rlk-modemd's QMUX device: the same
 * answers as over the socket, no client id left allocated however the run
 * ends (release, exit, time-out, SIGINT, SIGTERM, SIGKILL and the next run,
 * an allocation answered too late), and bounded opens on a device that
 * never answers or never runs dry. */
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "process_runner.h"
#include "sim_fixture.h"

namespace {

constexpr int k_poll_step_ms = 10;
constexpr int k_client_wait_ms = 5000;

/* Handle addresses differ from run to run, and indication callbacks print
 * from their own thread, where their lines fall (even inside a line of the
 * main thread, from their "RIL[" on) depending on timing. */
std::string comparable(const std::string &text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); i++) {
        size_t end = i + 2;
        while (text.compare(i, 2, "0x") == 0 && end < text.size() && isxdigit((unsigned char)text[end])) end++;
        if (end - i - 2 >= 6) {
            out += "0x?";
            i = end - 1;
        } else {
            out += text[i];
        }
    }
    for (size_t at = out.find("unsol_ind_cb"); at != std::string::npos; at = out.find("unsol_ind_cb", at)) {
        size_t line = out.rfind('\n', at);
        line = line == std::string::npos ? 0 : line + 1;
        size_t ril = out.rfind("RIL[", at);
        size_t from = ril != std::string::npos && ril >= line ? ril : at;
        size_t to = out.find('\n', at);
        out.erase(from, to == std::string::npos ? std::string::npos : to + 1 - from);
        at = from;
    }
    return out;
}

/* Polls `qmux clients` until it answers `want`; the last answer. */
std::string wait_clients(const sim_instance &sim, const std::string &want = "ok")
{
    std::string got;
    for (int waited = 0; waited < k_client_wait_ms && (got = sim.ctl("qmux clients")) != want;
         waited += k_poll_step_ms) {
        usleep(k_poll_step_ms * 1000);
    }
    return got;
}

class RlkOverQmux : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
        device_ = {"RLK_QMI_DEVICE=" + sim_.qmux_path()};
        beside_ = sim_.env();
        beside_.push_back(device_[0]);
    }
    sim_instance sim_;
    std::vector<std::string> device_; /* the device alone */
    std::vector<std::string> beside_; /* the device, the simulator's socket beside it */
};

/* The SAR query, the eSIM switch and back (against a second simulator
 * from the same seed reached over its socket), the MBN list, and a load of
 * frames of tens of kilobytes (crossing the pseudo-terminal in pieces). */
TEST_F(RlkOverQmux, RunsMatchTheSocketAndLeaveNoClientId)
{
    sim_.ctl_ok("sar state 4");
    rlk_run socket = sim_.run_rlk({"5", "5"});
    rlk_run device = sim_.run_rlk({"5", "5"}, device_);
    EXPECT_EQ(device.status, socket.status);
    EXPECT_NE(device.out.find("SAR DSI: 4"), std::string::npos) << device.out << device.err;
    EXPECT_EQ(device.out, socket.out);
    EXPECT_EQ(sim_.ctl_ok("qmux counters").find("frames-in 0\n"), std::string::npos) << "went over the device";
    EXPECT_EQ(wait_clients(sim_), "ok");

    sim_instance plain;
    ASSERT_TRUE(plain.start());
    for (const char *slot : {"1", "2"}) {
        rlk_run socket_run = plain.run_rlk({"5", "10", slot, "1"});
        rlk_run device_run = sim_.run_rlk({"5", "10", slot, "1"}, device_);
        EXPECT_EQ(device_run.status, socket_run.status) << slot;
        EXPECT_EQ(comparable(device_run.out), comparable(socket_run.out)) << slot;
        EXPECT_EQ(sim_.ctl_ok("uim state"), plain.ctl_ok("uim state")) << slot;
    }
    EXPECT_NE(sim_.ctl_ok("uim state").find("psim"), std::string::npos);
    EXPECT_EQ(wait_clients(sim_), "ok");

    run_result listed = run_process({RLK_MBN_BINARY, "list"}, sim_.env());
    run_result r = run_process({RLK_MBN_BINARY, "list"}, beside_);
    EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
    EXPECT_EQ(r.out, listed.out);
    EXPECT_NE(r.out.find("ROW_Generic_3GPP  [active]"), std::string::npos) << r.out;
    EXPECT_EQ(wait_clients(sim_), "ok");

    std::string path = sim_.dir() + "/large.mbn";
    {
        std::ofstream f(path, std::ios::binary);
        for (int i = 0; i < 150000; i++) f.put(char(i * 13 + 1));
    }
    r = run_process({RLK_MBN_BINARY, "load", path, "--id", "LARGE"}, beside_);
    EXPECT_TRUE(exited_cleanly(r.status)) << r.out << r.err;
    EXPECT_EQ(r.out, "loaded LARGE (150000 bytes)\n");
    listed = run_process({RLK_MBN_BINARY, "list"}, sim_.env());
    EXPECT_NE(listed.out.find("  LARGE\n"), std::string::npos) << "seen over the socket too:\n" << listed.out;
    std::string counters = sim_.ctl_ok("qmux counters");
    EXPECT_NE(counters.find("skipped-bytes 0\ndropped-malformed 0\n"), std::string::npos) << counters;
    EXPECT_EQ(wait_clients(sim_), "ok");
}

/* SIGTERM and SIGINT release the id on the way out, even while its
 * allocation is still being answered; the id SIGKILL leaves behind (once
 * the run knew it: its request reached the modem) is released by the next
 * run. */
TEST_F(RlkOverQmux, SignalMidRequestLeavesNoClientId)
{
    auto sar_requests = [this] {
        std::string journal = sim_.ctl("last 64 sar");
        return std::count(journal.begin(), journal.end(), '\n');
    };
    int cid = 0;
    for (int sig : {SIGTERM, SIGINT, SIGKILL}) {
        sim_.ctl_ok("delay sar 2 10000 1");
        long requests = sar_requests();
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (const std::string &e : beside_) putenv(strdup(e.c_str()));
            int devnull = open("/dev/null", O_WRONLY);
            dup2(devnull, 1);
            dup2(devnull, 2);
            execl(RLK_BINARY, RLK_BINARY, "5", "5", (char *)nullptr);
            _exit(127);
        }
        std::string held = wait_clients(sim_, "ok\n0x11 " + std::to_string(++cid));
        EXPECT_EQ(held.compare(0, 8, "ok\n0x11 "), 0) << held;
        for (int waited = 0; sig == SIGKILL && sar_requests() == requests && waited < k_client_wait_ms;
             waited += k_poll_step_ms) {
            usleep(k_poll_step_ms * 1000);
        }
        kill(pid, sig);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == sig) << status;
        sim_.ctl_ok("clear-faults");
        if (sig == SIGKILL) {
            EXPECT_EQ(sim_.ctl("qmux clients"), held);
            EXPECT_TRUE(exited_cleanly(sim_.run_rlk({"5", "5"}, device_).status));
        }
        EXPECT_EQ(wait_clients(sim_), "ok") << "signal " << sig;
    }
}

/* The modem hands out a client id after the host gave up waiting: the id
 * goes back when the late answer arrives.  The PDC client of option 10
 * waits its usual 4 ms (stretched to a second for a device that answered
 * so far); its next attempt, 2 s later, opens the client. */
TEST_F(RlkOverQmux, ClientIdAnsweredTooLateIsReleased)
{
    sim_.ctl_ok("qmux delay-ctl 0x22 2500");
    beside_.push_back("RLK_TEST_PDC_RETRY_MS=400");
    run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"}, beside_);
    EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
    EXPECT_EQ(r.out.find("pdc init failed"), std::string::npos) << r.out;
    EXPECT_EQ(wait_clients(sim_), "ok");
}

/* A device that never answers, and one that never runs dry: every open of
 * the PDC client (20 of them, 4 ms each) ends within its bound, and the
 * second device is named for what it does. */
TEST_F(RlkOverQmux, SilentOrStreamingDeviceEndsWithinItsBounds)
{
    int silent = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(silent >= 0 && grantpt(silent) == 0 && unlockpt(silent) == 0);
    const struct {
        std::string path;
        const char *err;
    } cases[] = {{ptsname(silent), ""}, {"/dev/zero", "never runs dry"}};
    for (const auto &c : cases) {
        long long start = monotonic_ms();
        run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"},
                                   {"RLK_QMI_DEVICE=" + c.path, "RLK_TEST_PDC_RETRY_MS=1"}, "", 20000);
        EXPECT_LT(monotonic_ms() - start, 5000) << c.path;
        EXPECT_NE(r.out.find("pdc init failed, do nothing"), std::string::npos) << c.path << r.out;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }
    close(silent);
}

/* A request that times out (-3), then an exit with or without releasing
 * the handle.  Then a 16-bit vendor service, which has no place in the
 * service byte: with no simulator named beside the device (the default
 * endpoint kept in a private runtime directory, where an on-demand
 * simulator leaves soon after) it is not there (-2); the simulator named
 * beside the device stands in for it. */
TEST_F(RlkOverQmux, TimedOutRequestThenExitLeavesNoClientId)
{
    for (const char *release : {"1", "0"}) {
        sim_.ctl_ok("drop sar 2 1");
        run_result r = run_process({PLATFORM_PROBE_BINARY, "sar-get", "200", release}, beside_);
        EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
        EXPECT_EQ(r.out, "-3 0\n") << "release " << release;
        EXPECT_EQ(wait_clients(sim_), "ok") << "release " << release;
    }
    std::string runtime = sim_.dir() + "/runtime";
    ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
    run_result r = run_process({PLATFORM_PROBE_BINARY}, {device_[0], "RLK_MODEMD_SOCKET=", "XDG_RUNTIME_DIR=" + runtime,
                                                         "RLK_MODEMD_IDLE_EXIT=1"});
    EXPECT_EQ(r.out, "-2 0\n") << r.err;
    EXPECT_EQ(run_process({PLATFORM_PROBE_BINARY}, beside_).out, "0 1\n");
}

}  // namespace
