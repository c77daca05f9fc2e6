/* rlk with RLK_QMI_DEVICE pointed at rlk-modemd's QMUX device: the same
 * answers as over the socket, no client id left allocated however the run
 * ends (release, exit, time-out, SIGINT, SIGTERM, SIGKILL and the next run,
 * an allocation answered too late), and bounded opens on a device that
 * never answers or never runs dry. */
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctype.h>
#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "process_runner.h"
#include "sim_fixture.h"

namespace {

constexpr int k_poll_step_ms = 10;
constexpr int k_client_wait_ms = 5000;
constexpr const char k_qmi_timeout[] = "-3";
constexpr const char k_qmi_service_err[] = "-2";

/* Handle addresses differ from run to run. */
constexpr size_t k_address_min_digits = 6;

std::string without_addresses(const std::string &text)
{
    std::string out;
    size_t i = 0;
    while (i < text.size()) {
        size_t digits = 0;
        if (text.compare(i, 2, "0x") == 0) {
            while (i + 2 + digits < text.size() && isxdigit(static_cast<unsigned char>(text[i + 2 + digits]))) digits++;
        }
        if (digits >= k_address_min_digits) {
            out += "0x?";
            i += 2 + digits;
        } else {
            out += text[i++];
        }
    }
    return out;
}

/* Indication callbacks print from their own thread: where their lines fall
 * among the main thread's, and whether a late one prints before the
 * process ends, depends on timing, over the socket as over the device.
 * They are left out of the comparison (rlk-mbn list below waits for its
 * answers in indications, so their delivery is checked there). */
const char k_ind_line[] = "unsol_ind_cb";

std::string without_indications(const std::string &text)
{
    /* A line of the callback thread may even land inside a line of the
     * main thread: each is cut from its "RIL[" to its newline. */
    std::string out = text;
    size_t at;
    while ((at = out.find(k_ind_line)) != std::string::npos) {
        size_t from = out.rfind("RIL[", at);
        size_t to = out.find('\n', at);
        if (from == std::string::npos) from = at;
        out.erase(from, to == std::string::npos ? std::string::npos : to + 1 - from);
    }
    return out;
}


std::vector<std::string> device_env(const sim_instance &sim) { return {"RLK_QMI_DEVICE=" + sim.qmux_path()}; }

/* Polls `qmux clients` until it answers `want`; the last answer. */
std::string wait_clients(const sim_instance &sim, const std::string &want)
{
    std::string got;
    for (int waited = 0; waited < k_client_wait_ms; waited += k_poll_step_ms) {
        got = sim.ctl("qmux clients");
        if (got == want) break;
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
    }
    sim_instance sim_;
};

TEST_F(RlkOverQmux, SarQueryMatchesTheSocket)
{
    sim_.ctl_ok("sar state 4");
    rlk_run socket = sim_.run_rlk({"5", "5"});
    rlk_run device = sim_.run_rlk({"5", "5"}, device_env(sim_));
    EXPECT_EQ(device.status, socket.status);
    EXPECT_NE(device.out.find("SAR DSI: 4"), std::string::npos) << device.out << device.err;
    EXPECT_EQ(device.out, socket.out);
    EXPECT_EQ(wait_clients(sim_, "ok"), "ok");
    std::string counters = sim_.ctl_ok("qmux counters");
    EXPECT_EQ(counters.find("frames-in 0\n"), std::string::npos) << "the run went over the device";
}

/* Two simulators from the same seed: one reached over its socket, one over
 * its QMUX device (the extension service's EFS steps still go to the
 * socket, which RLK_MODEMD_SOCKET names). */
TEST_F(RlkOverQmux, EsimSwitchAndBackMatchTheSocket)
{
    sim_instance plain;
    ASSERT_TRUE(plain.start());
    for (const std::vector<std::string> &args : {std::vector<std::string>{"5", "10", "1", "1"},
                                                 std::vector<std::string>{"5", "10", "2", "1"}}) {
        rlk_run socket = plain.run_rlk(args);
        rlk_run device = sim_.run_rlk(args, device_env(sim_));
        EXPECT_EQ(device.status, socket.status) << args[2];
        EXPECT_EQ(without_indications(without_addresses(device.out)),
                  without_indications(without_addresses(socket.out)))
            << args[2];
        EXPECT_EQ(sim_.ctl_ok("uim state"), plain.ctl_ok("uim state")) << args[2];
    }
    EXPECT_NE(sim_.ctl_ok("uim state").find("psim"), std::string::npos);
    EXPECT_EQ(wait_clients(sim_, "ok"), "ok");
}

TEST_F(RlkOverQmux, MbnListMatchesTheSocket)
{
    run_result socket = run_process({RLK_MBN_BINARY, "list"}, sim_.env());
    std::vector<std::string> env = sim_.env();
    env.push_back("RLK_QMI_DEVICE=" + sim_.qmux_path());
    run_result device = run_process({RLK_MBN_BINARY, "list"}, env);
    EXPECT_TRUE(exited_cleanly(device.status)) << device.err;
    EXPECT_EQ(device.out, socket.out);
    EXPECT_NE(device.out.find("ROW_Generic_3GPP  [active]"), std::string::npos) << device.out;
    EXPECT_EQ(wait_clients(sim_, "ok"), "ok");
}

/* Load chunks are QMUX frames of tens of kilobytes: they cross the
 * pseudo-terminal in pieces and are put together again. */
TEST_F(RlkOverQmux, MbnLoadOfLargeFramesReachesTheModem)
{
    std::string path = sim_.dir() + "/large.mbn";
    {
        std::ofstream f(path, std::ios::binary);
        for (int i = 0; i < 150000; i++) f.put(char(i * 13 + 1));
    }
    std::vector<std::string> env = sim_.env();
    env.push_back("RLK_QMI_DEVICE=" + sim_.qmux_path());
    run_result r = run_process({RLK_MBN_BINARY, "load", path, "--id", "LARGE"}, env);
    EXPECT_TRUE(exited_cleanly(r.status)) << r.out << r.err;
    EXPECT_EQ(r.out, "loaded LARGE (150000 bytes)\n");
    run_result listed = run_process({RLK_MBN_BINARY, "list"}, sim_.env());
    EXPECT_NE(listed.out.find("  LARGE\n"), std::string::npos) << "seen over the socket too:\n" << listed.out;
    std::string counters = sim_.ctl_ok("qmux counters");
    EXPECT_NE(counters.find("dropped-malformed 0\n"), std::string::npos) << counters;
    EXPECT_NE(counters.find("skipped-bytes 0\n"), std::string::npos) << counters;
    EXPECT_EQ(wait_clients(sim_, "ok"), "ok");
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
        std::vector<std::string> env = device_env(sim_);
        env.push_back(sim_.env()[0]);
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            for (const std::string &e : env) putenv(strdup(e.c_str()));
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
            EXPECT_TRUE(exited_cleanly(sim_.run_rlk({"5", "5"}, device_env(sim_)).status));
        }
        EXPECT_EQ(wait_clients(sim_, "ok"), "ok") << "signal " << sig;
    }
}

/* The modem hands out a client id after the host gave up waiting: the id
 * goes back when the late answer arrives.  The PDC client of option 10
 * waits its usual 4 ms (stretched to a second for a device that answered
 * so far); its next attempt, 2 s later, opens the client. */
TEST_F(RlkOverQmux, ClientIdAnsweredTooLateIsReleased)
{
    sim_.ctl_ok("qmux delay-ctl 0x22 2500");
    std::vector<std::string> env = device_env(sim_);
    env.insert(env.end(), {sim_.env()[0], "RLK_TEST_PDC_RETRY_MS=400"});
    run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"}, env);
    EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
    EXPECT_EQ(r.out.find("pdc init failed"), std::string::npos) << r.out;
    EXPECT_EQ(wait_clients(sim_, "ok"), "ok");
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
        long long took = monotonic_ms() - start;
        EXPECT_LT(took, 5000) << c.path;
        EXPECT_NE(r.out.find("pdc init failed, do nothing"), std::string::npos) << c.path << r.out;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }
    close(silent);
}

TEST_F(RlkOverQmux, TimedOutRequestThenExitLeavesNoClientId)
{
    for (const char *release : {"1", "0"}) {
        sim_.ctl_ok("drop sar 2 1");
        std::vector<std::string> env = sim_.env();
        env.push_back("RLK_QMI_DEVICE=" + sim_.qmux_path());
        run_result r = run_process({PLATFORM_PROBE_BINARY, "sar-get", "200", release}, env);
        EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
        EXPECT_EQ(r.out, std::string(k_qmi_timeout) + " 0\n") << "release " << release;
        EXPECT_EQ(wait_clients(sim_, "ok"), "ok") << "release " << release;
    }
}

/* A 16-bit vendor service has no place in the service byte: with no
 * simulator named beside the device, it is simply not there. */
TEST_F(RlkOverQmux, VendorServiceIsNotFoundOnTheDeviceAlone)
{
    /* Nothing named beside the device: the default endpoint, kept in a
     * private runtime directory of this test (an on-demand simulator there
     * leaves soon after). */
    std::string runtime = sim_.dir() + "/runtime";
    ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
    std::vector<std::string> env = {"RLK_QMI_DEVICE=" + sim_.qmux_path(), "RLK_MODEMD_SOCKET=",
                                    "XDG_RUNTIME_DIR=" + runtime, "RLK_MODEMD_IDLE_EXIT=1"};
    run_result r = run_process({PLATFORM_PROBE_BINARY}, env);
    EXPECT_EQ(r.out, std::string(k_qmi_service_err) + " 0\n") << r.err;
    std::vector<std::string> beside = sim_.env();
    beside.push_back("RLK_QMI_DEVICE=" + sim_.qmux_path());
    r = run_process({PLATFORM_PROBE_BINARY}, beside);
    EXPECT_EQ(r.out, "0 1\n") << "the simulator named beside the device stands in";
}

}  // namespace
