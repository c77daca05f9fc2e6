/* rlk-mbn runs that the test ends or races while they wait: time-outs that
 * bound the opening of the client and every response wait, a load cut by
 * a signal that leaves nothing behind, and every wait (opening, response,
 * indication) ended at once by a signal or a restart of the service, with
 * the client released.  Runs to their end are in the transcripts here. */
#include <ctype.h>
#include <signal.h>
#include <stdlib.h>

#include <sstream>

#include <gtest/gtest.h>

#include "../replay/replay_e2e_util.h"
#include "data_file.h"
#include "sim_fixture.h"

using namespace replay_e2e;

namespace {

class RlkMbnTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* Starts rlk-mbn with `args` (words); its Android log goes to the
     * simulator folder's test-logcat.log. */
    child start(const std::string &args, const std::vector<std::string> &env = {})
    {
        std::vector<std::string> argv = words_of(args);
        argv.insert(argv.begin(), RLK_MBN_BINARY);
        return spawn(argv, -1, -1, env);
    }
    /* The environment of a run that opens its client on a device that does
     * not answer: a ThreadSanitizer build would otherwise sleep a second at
     * exit because the thread blocked in the opening still runs. */
    std::vector<std::string> on_dead_device()
    {
        const char *tsan = getenv("TSAN_OPTIONS");
        return {"RLK_QMI_DEVICE=" + dead.slave_path, "TSAN_OPTIONS=" + std::string(tsan ? tsan : "") +
                                                         " atexit_sleep_ms=0"};
    }
    /* How many requests of PDC message `msg` ("0x0023") the journal holds. */
    size_t sent(const std::string &msg)
    {
        std::istringstream in(sim.ctl_ok("last 200 pdc"));
        size_t n = 0;
        for (std::string line; std::getline(in, line);) n += line.compare(0, 13, "0x0024 " + msg) == 0;
        return n;
    }
    std::vector<std::string> logcat() { return texts(read_log_file(sim.dir() + "/test-logcat.log", true)); }

    sim_instance sim;
    pty dead;
};

/* Sixty configurations come in three pages, each asked for with the same
 * token (TLV 0x10) for the software type (TLV 0x11); the selection query
 * follows with the next token.  The transcript shows the output. */
TEST_F(RlkMbnTest, AListInPagesAsksWithOneToken)
{
    sim.ctl_ok("pdc clear sw");
    sim.ctl_ok("pdc fill sw 60");
    ASSERT_EQ(sim.run_program(RLK_MBN_BINARY, {"list"}).status, 0);
    EXPECT_EQ(sim.ctl_ok("last 4 pdc"), "0x0024 0x0024 1 00010024000e001004000100000011040001000000\n"
                                        "0x0024 0x0024 2 00020024000e001004000100000011040001000000\n"
                                        "0x0024 0x0024 3 00030024000e001004000100000011040001000000\n"
                                        "0x0024 0x0022 4 00040022001500010400010000001004000200000011040000000000");
}

/* A PDC service that never comes: the init and twenty attempts are logged,
 * then the failure as an error. */
TEST_F(RlkMbnTest, AbsentServiceFailsAfterTwentyAttempts)
{
    sim.ctl_ok("down pdc");
    rlk_run r = sim.run_program(MBN_RETRY_PROBE_BINARY, {"10", "0", "1"}, {"RLK_TEST_PDC_RETRY_MS=1"});
    ASSERT_EQ(r.logcat.size(), 21u);
    EXPECT_EQ(r.logcat.back().text, "qmi_client_init returned failure (-3) for PDC, retry times 19");
    ASSERT_FALSE(r.syslog.empty());
    EXPECT_EQ(r.syslog.back().priority, 3);
}

/* Activation waits for its indication, then the modem restarts: every
 * service goes down and comes back, the extension service on a new port
 * ("ext 0xffe4 instance 0 up port N").  The transcript shows the
 * selections before and after. */
TEST_F(RlkMbnTest, ActivationRestartsTheModem)
{
    sim.ctl_ok("pdc timing 100 300");
    sim.ctl_ok("pdc add sw pending_one");
    ASSERT_EQ(sim.run_program(RLK_MBN_BINARY, {"select", "pending_one"}).status, 0);
    auto ext_line = [this] {
        std::string all = sim.ctl_ok("services");
        size_t at = all.find("ext 0xffe4 ");
        return at == std::string::npos ? std::string() : all.substr(at, all.find('\n', at) - at);
    };
    std::string ext_before = ext_line();
    long long start_ms = monotonic_ms();
    EXPECT_EQ(sim.run_program(RLK_MBN_BINARY, {"activate"}).out, "activated; the modem restarts\n");
    EXPECT_GE(monotonic_ms() - start_ms, 100);
    EXPECT_TRUE(poll_until([&] {
        return sim.ctl_ok("counter get pdc.restarts") == "1" &&
               sim.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
    }, k_wait_ms));
    std::string ext_after = ext_line();
    EXPECT_NE(ext_after.find(" up port "), std::string::npos) << ext_after;
    EXPECT_NE(ext_after, ext_before);
}

/* A response later than the time-out ends the run at the time-out, one
 * later than the library's own 5 s still arrives within a longer one, a
 * device that does not answer ends the opening at the time-out, and one
 * that is not there ends the run at once; the runs wait side by side. */
TEST_F(RlkMbnTest, TheTimeOutBoundsTheOpeningAndEveryResponseWait)
{
    ASSERT_TRUE(dead.open());
    sim.ctl_ok("delay pdc 0x22 5100 2");
    long long start_ms = monotonic_ms();
    const std::string no_device = sim.dir() + "/no-such-device";
    child runs[] = {start("list --timeout=1", on_dead_device()), start("selected --timeout 1"),
                    start("list --timeout 5", {"RLK_QMI_DEVICE=" + no_device}), start("selected --timeout 10")};
    const struct {
        int exit_code;
        std::string out, err;
        long long max_ms;
    } ends[] = {
        {3, "", "rlk-mbn: the PDC service did not answer within 1 s\n", 2500},
        {3, "", "rlk-mbn: selected: no answer from the modem within 1 s\n", 2500},
        {8, "", "rlk-mbn: cannot open the QMI device " + no_device + " (RLK_QMI_DEVICE): No such file or directory\n",
         2500},
        {0, "active: ROW_Generic_3GPP\npending: none\n", "", k_wait_ms},
    };
    for (size_t i = 0; i < 4; i++) {
        std::string out, err;
        EXPECT_EQ(exit_code(finish(&runs[i], k_wait_ms, &out, &err)), ends[i].exit_code) << i;
        EXPECT_LT(monotonic_ms() - start_ms, ends[i].max_ms) << i;
        EXPECT_EQ(out, ends[i].out);
        EXPECT_EQ(err, ends[i].err);
    }
}

/* A load stopped half-way (SIGINT, SIGKILL) while the modem takes each
 * frame slowly leaves nothing behind: the same file loads again, in its 7
 * frames, and the modem stores exactly its bytes. */
TEST_F(RlkMbnTest, InterruptedLoadLeavesNothingBehind)
{
    const std::string file = sim.dir() + "/cut.mbn";
    bytes data(200000);
    for (size_t i = 0; i < data.size(); i++) data[i] = uint8_t(i * 7 + 3);
    ASSERT_TRUE(write_file(file, data));
    auto frames = [this] { return std::stol(sim.ctl_ok("counter get pdc.load_frames")); };
    for (int sig : {SIGINT, SIGKILL}) {
        SCOPED_TRACE(sig);
        sim.ctl_ok("pdc load-delay 200");
        long before = frames();
        child c = start("load " + file);
        EXPECT_TRUE(poll_until([&] { return frames() >= before + 3; }, k_wait_ms));
        kill(c.pid, sig);
        std::string out, err;
        long long start_ms = monotonic_ms();
        finish(&c, k_wait_ms, &out, &err);
        EXPECT_LT(monotonic_ms() - start_ms, 5000);
        sim.ctl_ok("pdc load-delay 0");
        EXPECT_EQ(sim.ctl_ok("pdc show").find("cut.mbn"), std::string::npos) << "nothing partial is stored";
    }
    long before = frames();
    EXPECT_EQ(sim.run_program(RLK_MBN_BINARY, {"load", file}).out, "loaded cut.mbn (200000 bytes)\n");
    EXPECT_EQ(frames() - before, 7);
    EXPECT_EQ(read_file(sim.state_dir() + "/pdc/mbn/1-6375742e6d626e.mbn"), data)
        << "the stored configuration is the file, byte for byte";
}

/* SIGTERM and SIGINT while the run opens its client on a device that does
 * not answer, waits for a response or for an indication, and a restart of
 * the service during a wait: each ends the run at once, with its client
 * released (the simulator has no PDC client left).  An indication of the
 * same message for another request (its token is not this run's) does not
 * end the wait. */
TEST_F(RlkMbnTest, EveryWaitEndsAtOnceBySignalOrServiceRestart)
{
    ASSERT_TRUE(dead.open());
    const struct {
        std::string fault, args, sent; /* sent: the request waited on, or "": the opening on the dead device */
        std::string action;            /* a signal number, or a control request */
        int exit_code;
        std::string err;
        long long max_ms; /* from the action to the exit */
    } cases[] = {
        {"pdc fail 0x27 noind 1", "activate --timeout 30", "0x0027", "15", 128 + SIGTERM, "interrupted", 1000},
        {"pdc fail 0x27 noind 1", "activate --timeout 30", "0x0027", "2", 128 + SIGINT, "interrupted", 1000},
        {"delay pdc 0x22 60000 1", "selected --timeout 30", "0x0022", "2", 128 + SIGINT, "interrupted", 1000},
        {"pdc fail 0x22 noind 1", "selected --timeout 30", "0x0022", "ssr pdc 200", 9,
         "selected: the PDC service restarted before answering", 1000},
        {"pdc fail 0x23 noind 1", "select Commercial_VZW_VoLTE --timeout 1", "0x0023",
         "ind pdc 0x23 010200000010040000ffffff", 3, "select: no answer from the modem within 1 s", 2000},
        {"clear-faults", "list --timeout 30", "", "2", 128 + SIGINT, "interrupted", 1000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args + " " + c.action);
        sim.ctl_ok("pdc reset");
        sim.ctl_ok("clear-faults");
        sim.ctl_ok("pdc add sw pending_one");
        ASSERT_EQ(sim.run_program(RLK_MBN_BINARY, {"select", "pending_one"}).status, 0);
        sim.ctl_ok(c.fault);
        size_t before = c.sent.empty() ? logcat().size() : sent(c.sent);
        child p = start(c.args, c.sent.empty() ? on_dead_device() : std::vector<std::string>());
        ASSERT_TRUE(poll_until([&] { return (c.sent.empty() ? logcat().size() : sent(c.sent)) > before; },
                               k_wait_ms));
        usleep(100000); /* well inside the wait */
        long long start_ms = monotonic_ms();
        if (isdigit(c.action[0])) {
            kill(p.pid, std::stoi(c.action));
        } else {
            sim.ctl_ok(c.action);
        }
        std::string out, err;
        EXPECT_EQ(exit_code(finish(&p, k_wait_ms, &out, &err)), c.exit_code);
        EXPECT_LT(monotonic_ms() - start_ms, c.max_ms);
        EXPECT_EQ(err, "rlk-mbn: " + c.err + "\n");
        if (!c.sent.empty()) {
            EXPECT_EQ(logcat().back(), "Release client connection to PDC");
        }
        /* No client is left to receive a configuration-change indication
         * (the restarted service had none to begin with). */
        EXPECT_EQ(sim.ctl("ind pdc 0x21 010600010000000161"), "error no client");
    }
}

}  // namespace
