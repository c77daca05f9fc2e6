/* rlk-mbn end to end against a private simulator: paged lists, a load
 * followed by select and activate across the modem's restart, delete,
 * every PDC failure by name with its exit status (and as JSON), what is
 * checked before the modem is touched, a time-out that bounds the whole
 * run, every wait (opening, response, indication) ended at once by a
 * signal or a restart of the service, and an interrupted load that leaves
 * nothing behind. */
#include <signal.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "mbn_test_util.h"

namespace {

class RlkMbnTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        sim.ctl_ok("pdc reset");
    }

    std::string write_file(const std::string &name, size_t size)
    {
        std::string path = sim.dir() + "/" + name;
        std::ofstream f(path, std::ios::binary);
        for (size_t i = 0; i < size; i++) f.put(char(i * 7 + 3));
        return path;
    }

    sim_instance sim;
};

TEST_F(RlkMbnTest, ListOfSixtyComesInThreePagesWithOneToken)
{
    sim.ctl_ok("pdc clear sw");
    sim.ctl_ok("pdc fill sw 60");
    mbn_run r = run_mbn(sim, {"list", "--json"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_NE(r.out.find("\"count\":60,"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("{\"id\":\"sw_cfg_000\",\"active\":false,\"pending\":false},{\"id\":\"sw_cfg_001\""),
              std::string::npos)
        << "ids in the modem's order";
    EXPECT_NE(r.out.find("{\"id\":\"sw_cfg_059\",\"active\":false,\"pending\":false}]}"), std::string::npos);
    std::vector<std::string> journal = pdc_journal(sim);
    ASSERT_EQ(count_msg(journal, "0x0024"), 3);
    /* Every page was asked for with the same token (TLV 0x10). */
    std::string token;
    for (const std::string &l : journal) {
        if (l.compare(0, 13, "0x0024 0x0024") != 0) continue;
        size_t at = l.rfind(' ') + 1 + 14; /* header, then "10 04 00" */
        ASSERT_EQ(l.substr(at, 6), "100400");
        if (token.empty()) token = l.substr(at + 6, 8);
        EXPECT_EQ(l.substr(at + 6, 8), token);
    }
    std::vector<std::string> pages;
    for (const std::string &line : r.logcat) {
        if (line.compare(0, 11, "PDC_SUCCESS") == 0) pages.push_back(line);
    }
    EXPECT_EQ(pages, (std::vector<std::string>{
                         "PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0",
                         "PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0",
                         "PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 0, get_list_complete 1"}));
    EXPECT_EQ(r.logcat.back(), "Release client connection to PDC");
}

TEST_F(RlkMbnTest, ListMarksTheActiveConfiguration)
{
    mbn_run r = run_mbn(sim, {"list", "--type", "hw", "--sub", "1"});
    ASSERT_EQ(r.exit_code, 0) << r.err;
    EXPECT_EQ(r.out, "2 hw configurations (sub 1)\n  mcfg_hw_ssss\n  mcfg_hw_dsds  [active]\n");

    /* The selection query after the list fails: what was listed is still
     * printed, unmarked, beside the error. */
    sim.ctl_ok("error pdc 0x22 3 2");
    const std::string err = "list (active and pending): refused by the modem: internal (QMI error 3)";
    r = run_mbn(sim, {"list", "--type", "hw"});
    EXPECT_EQ(r.exit_code, 1);
    EXPECT_EQ(r.out, "2 hw configurations (sub 0)\n  mcfg_hw_ssss\n  mcfg_hw_dsds\n");
    EXPECT_EQ(r.err, "rlk-mbn: " + err + "\n");
    r = run_mbn(sim, {"list", "--type", "hw", "--json"});
    EXPECT_NE(r.out.find("{\"id\":\"mcfg_hw_dsds\",\"active\":false,\"pending\":false}],\"error\":\"" + err +
                         "\",\"exit_status\":1}\n"),
              std::string::npos)
        << r.out;
}

TEST_F(RlkMbnTest, LoadSelectActivateSurvivesTheRestart)
{
    sim.ctl_ok("pdc timing 100 300");
    /* Three frames: 32768 + 32768 + 4464 bytes. */
    std::string file = write_file("carrier_x.mbn", 70000);
    mbn_run load = run_mbn(sim, {"load", file});
    ASSERT_EQ(load.exit_code, 0) << load.err;
    EXPECT_EQ(load.out, "loaded carrier_x.mbn (70000 bytes)\n");
    EXPECT_EQ(sim.ctl_ok("counter get pdc.load_frames"), "3");
    mbn_run info = run_mbn(sim, {"info", "carrier_x.mbn"});
    EXPECT_EQ(info.out, "id: carrier_x.mbn\nsize: 70000\nversion: 0x00000000\ndescription: carrier_x.mbn\n");

    EXPECT_EQ(run_mbn(sim, {"select", "carrier_x.mbn", "--sub", "1"}).exit_code, 0);
    EXPECT_EQ(run_mbn(sim, {"selected", "--sub", "1"}).out, "active: ROW_Generic_3GPP\npending: carrier_x.mbn\n");
    /* The extension service's line of `services` ("ext 0xffe4 instance 0 up port N"). */
    auto ext_line = [this] {
        std::string all = sim.ctl_ok("services");
        size_t at = all.find("ext 0xffe4");
        return at == std::string::npos ? std::string() : all.substr(at, all.find('\n', at) - at);
    };
    std::string ext_before = ext_line();
    long long start = monotonic_ms();
    mbn_run act = run_mbn(sim, {"activate", "--sub", "1"});
    ASSERT_EQ(act.exit_code, 0) << act.err;
    EXPECT_GE(monotonic_ms() - start, 100) << "activation takes its time";
    EXPECT_EQ(act.out, "activated; the modem restarts\n");
    /* The restart takes every service down and brings them back. */
    bool restarted = false;
    for (long long end = monotonic_ms() + 5000; !restarted && monotonic_ms() < end; usleep(10000)) {
        restarted = sim.ctl_ok("counter get pdc.restarts") == "1" && sim.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
    }
    ASSERT_TRUE(restarted);
    std::string ext_after = ext_line();
    EXPECT_NE(ext_after.find(" up port "), std::string::npos) << ext_after;
    EXPECT_NE(ext_after, ext_before) << "a new port after the restart";
    mbn_run sel = run_mbn(sim, {"selected", "--sub", "1", "--json"});
    ASSERT_EQ(sel.exit_code, 0) << sel.err;
    EXPECT_EQ(sel.out, "{\"type\":\"sw\",\"sub\":1,\"active\":\"carrier_x.mbn\",\"pending\":null}\n");
    EXPECT_EQ(run_mbn(sim, {"selected"}).out, "active: ROW_Generic_3GPP\npending: none\n") << "sub 0 unchanged";

    /* The state is on disk: a restarted simulator still has it. */
    sim.stop();
    ASSERT_TRUE(sim.restart());
    EXPECT_EQ(run_mbn(sim, {"selected", "--sub", "1"}).out, "active: carrier_x.mbn\npending: none\n");
}

TEST_F(RlkMbnTest, DeleteAndDeactivate)
{
    mbn_run del = run_mbn(sim, {"delete", "Commercial_TMO_VoLTE"});
    ASSERT_EQ(del.exit_code, 0) << del.err;
    EXPECT_EQ(del.out, "deleted Commercial_TMO_VoLTE\n");
    EXPECT_EQ(sim.ctl_ok("pdc show").find("Commercial_TMO_VoLTE"), std::string::npos);
    mbn_run again = run_mbn(sim, {"delete", "Commercial_TMO_VoLTE"});
    EXPECT_EQ(again.exit_code, 1);
    EXPECT_EQ(again.err, "rlk-mbn: delete: invalid id (QMI error 41)\n");
    mbn_run active = run_mbn(sim, {"delete", "ROW_Generic_3GPP"});
    EXPECT_EQ(active.err, "rlk-mbn: delete: incompatible state (QMI error 90)\n") << "the active configuration stays";

    EXPECT_EQ(run_mbn(sim, {"deactivate"}).exit_code, 0);
    EXPECT_EQ(run_mbn(sim, {"selected"}).out, "active: none\npending: none\n");
    EXPECT_EQ(run_mbn(sim, {"deactivate"}).err, "rlk-mbn: deactivate: not provisioned (QMI error 16)\n");
}

TEST_F(RlkMbnTest, EveryFailureByNameWithItsExitStatus)
{
    struct failure_case {
        const char *name;
        std::vector<std::string> setup; /* control requests */
        std::vector<std::string> args;
        int exit_code;
        std::string err;
    };
    std::string file = write_file("f.mbn", 100);
    const failure_case cases[] = {
        {"no memory", {"pdc capacity 1000"}, {"load", file}, 4,
         "rlk-mbn: load: no memory (the modem has no room for the configuration)\n"},
        {"config exists", {}, {"load", file, "--id", "ROW_Generic_3GPP"}, 5,
         "rlk-mbn: load: config exists (a configuration with this id is stored)\n"},
        {"frame reset", {"pdc fail 0x26 reset 1"}, {"load", file}, 6,
         "rlk-mbn: load: frame reset (the modem dropped the partial transfer)\n"},
        {"no MBN", {"pdc clear hw"}, {"list", "--type", "hw"}, 7,
         "rlk-mbn: list: no MBN (no configuration of this type is stored)\n"},
        {"no memory forced", {"pdc fail 0x26 nomem 1"}, {"load", file}, 4,
         "rlk-mbn: load: no memory (the modem has no room for the configuration)\n"},
        {"exists forced", {"pdc fail 0x26 exists 1"}, {"load", file}, 5,
         "rlk-mbn: load: config exists (a configuration with this id is stored)\n"},
        {"no MBN forced", {"pdc fail 0x24 nombn 1"}, {"list"}, 7,
         "rlk-mbn: list: no MBN (no configuration of this type is stored)\n"},
        {"no indication", {"pdc fail 0x22 noind 1"}, {"selected", "--timeout", "1"}, 3,
         "rlk-mbn: selected: no answer from the modem within 1 s\n"},
        {"refused request", {}, {"activate", "--type", "hw"}, 1, "rlk-mbn: activate: not provisioned (QMI error 16)\n"},
        {"unnamed error", {"pdc fail 0x25 error 1234 1"}, {"delete", "Commercial_VZW_VoLTE"}, 1,
         "rlk-mbn: delete: failed (QMI error 1234)\n"},
        {"refused in the response", {"error pdc 0x23 48 1"}, {"select", "x"}, 1,
         "rlk-mbn: select: refused by the modem: invalid argument (QMI error 48)\n"},
    };
    for (size_t i = 0; i < sizeof(cases) / sizeof(cases[0]); i++) {
        const failure_case &c = cases[i];
        SCOPED_TRACE(c.name);
        sim.ctl_ok("pdc reset");
        sim.ctl_ok("clear-faults");
        for (const std::string &s : c.setup) sim.ctl_ok(s);
        /* Every other case as JSON: the same message, and one object with
         * it on standard output. */
        std::vector<std::string> args = c.args;
        if (i % 2) args.push_back("--json");
        mbn_run r = run_mbn(sim, args);
        EXPECT_EQ(r.exit_code, c.exit_code);
        EXPECT_EQ(r.err, c.err);
        std::string text = c.err.substr(9, c.err.size() - 10);
        EXPECT_EQ(r.out, i % 2 ? "{\"error\":\"" + text + "\",\"exit_status\":" + std::to_string(c.exit_code) + "}\n"
                               : "");
        ASSERT_FALSE(r.logcat.empty());
        EXPECT_EQ(r.logcat.back(), "Release client connection to PDC") << "released on the failure path too";
    }
}

TEST_F(RlkMbnTest, UsageErrorsAndWhatIsCheckedBeforeTheModem)
{
    const std::vector<std::string> bad[] = {
        {}, {"frobnicate"}, {"info"}, {"list", "extra"}, {"list", "--sub", "2"}, {"list", "--type", "xx"},
        {"list", "--timeout", "0"}, {"delete", std::string(125, 'x')}, {"info", "hex:zz"}, {"list", "--json=1"},
    };
    for (const auto &args : bad) {
        mbn_run r = run_mbn(sim, args);
        EXPECT_EQ(r.exit_code, 2) << (args.empty() ? "" : args[0]);
        EXPECT_EQ(r.err.compare(0, 9, "rlk-mbn: "), 0);
        EXPECT_TRUE(r.logcat.empty()) << "PDC untouched";
    }
    EXPECT_EQ(run_mbn(sim, {"--help"}).exit_code, 0);
    EXPECT_EQ(run_mbn(sim, {"list", "--sub=2", "--json"}).out,
              "{\"error\":\"--sub takes 0 or 1\",\"exit_status\":2}\n");

    /* With the service down, anything that reached for the modem would
     * wait: each of these is reported at once. */
    sim.ctl_ok("down pdc");
    const std::string missing = sim.dir() + "/no-such-file.mbn";
    const std::string no_device = sim.dir() + "/no-such-device";
    struct early_case {
        std::vector<std::string> args, env;
        int exit_code;
        std::string err;
    };
    const early_case early[] = {
        {{"load", missing, "--timeout=5"}, {}, 1,
         "rlk-mbn: load: cannot open " + missing + ": No such file or directory\n"},
        {{"load", sim.dir(), "--id", "x", "--timeout", "5"}, {}, 1,
         "rlk-mbn: load: cannot read " + sim.dir() + ": Is a directory\n"},
        {{"list", "--timeout", "5"}, {"RLK_QMI_DEVICE=" + no_device}, 8,
         "rlk-mbn: cannot open the QMI device " + no_device + " (RLK_QMI_DEVICE): No such file or directory\n"},
    };
    for (const early_case &c : early) {
        SCOPED_TRACE(c.args[1]);
        long long start = monotonic_ms();
        mbn_run r = run_mbn(sim, c.args, c.env);
        EXPECT_LT(monotonic_ms() - start, 2500) << "well before the time-out";
        EXPECT_EQ(r.exit_code, c.exit_code);
        EXPECT_EQ(r.err, c.err);
        EXPECT_TRUE(r.logcat.empty()) << "PDC untouched";
    }

    /* No client by the deadline, with the service away or on a device
     * that does not answer: the time-out bounds the opening. */
    dead_device dead;
    ASSERT_FALSE(dead.path().empty());
    const std::vector<std::string> envs[] = {{tsan_no_exit_sleep()},
                                             {"RLK_QMI_DEVICE=" + dead.path(), tsan_no_exit_sleep()}};
    for (const std::vector<std::string> &env : envs) {
        SCOPED_TRACE(env.size() > 1 ? "device" : "socket");
        long long start = monotonic_ms();
        mbn_run r = run_mbn(sim, {"list", "--timeout=1"}, env);
        EXPECT_EQ(r.exit_code, 3);
        EXPECT_EQ(r.err, "rlk-mbn: the PDC service did not answer within 1 s\n");
        EXPECT_LT(monotonic_ms() - start, 2500);
    }
}

TEST_F(RlkMbnTest, BinaryIdsRoundTripAsHex)
{
    std::string file = write_file("bin.mbn", 10);
    EXPECT_EQ(run_mbn(sim, {"load", file, "--id", "hex:00ff10"}).out, "loaded hex:00ff10 (10 bytes)\n");
    mbn_run info = run_mbn(sim, {"info", "hex:00ff10", "--json"});
    EXPECT_EQ(info.out, "{\"id\":\"hex:00ff10\",\"size\":10,\"version\":0,\"description\":\"Loaded configuration\"}\n");
}

/* An indication of the same message for another request (its token is
 * not this run's) does not end the wait. */
TEST_F(RlkMbnTest, AnIndicationWithAnotherTokenIsNotTheOutcome)
{
    sim.ctl_ok("pdc fail 0x23 noind 1");
    int before = count_msg(pdc_journal(sim), "0x0023");
    mbn_background bg(sim, {"select", "Commercial_VZW_VoLTE", "--timeout", "1"});
    bool sent = false;
    for (long long end = monotonic_ms() + 5000; !sent && monotonic_ms() < end; usleep(5000)) {
        sent = count_msg(pdc_journal(sim), "0x0023") > before;
    }
    ASSERT_TRUE(sent);
    EXPECT_EQ(sim.ctl("ind pdc 0x23 010200000010040000ffffff"), "ok");
    int status = bg.wait(5000);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(bg.err(), "rlk-mbn: select: no answer from the modem within 1 s\n");
}

/* A load stopped half-way (SIGINT, SIGKILL) while the modem takes each
 * frame slowly leaves nothing behind: the same file loads again, and the
 * modem stores exactly its bytes. */
TEST_F(RlkMbnTest, InterruptedLoadLeavesNothingBehind)
{
    std::string file = write_file("cut.mbn", 200000); /* 7 frames */
    for (int sig : {SIGINT, SIGKILL}) {
        SCOPED_TRACE(sig);
        sim.ctl_ok("pdc load-delay 200");
        long frames = std::stol(sim.ctl_ok("counter get pdc.load_frames"));
        mbn_background bg(sim, {"load", file});
        for (long long end = monotonic_ms() + 5000;
             std::stol(sim.ctl_ok("counter get pdc.load_frames")) < frames + 3 && monotonic_ms() < end;) {
            usleep(5000);
        }
        bg.signal(sig);
        EXPECT_NE(bg.wait(5000), -1);
        sim.ctl_ok("pdc load-delay 0");
        EXPECT_EQ(sim.ctl_ok("pdc show").find("cut.mbn"), std::string::npos) << "nothing partial is stored";
    }
    mbn_run again = run_mbn(sim, {"load", file});
    EXPECT_EQ(again.exit_code, 0) << again.err;
    EXPECT_EQ(again.out, "loaded cut.mbn (200000 bytes)\n");
    std::ifstream stored(sim.state_dir() + "/pdc/mbn/1-6375742e6d626e.mbn", std::ios::binary), loaded(file);
    EXPECT_TRUE(std::equal(std::istreambuf_iterator<char>(stored), std::istreambuf_iterator<char>(),
                           std::istreambuf_iterator<char>(loaded), std::istreambuf_iterator<char>()))
        << "the stored configuration is the file, byte for byte";
}

/* The time-out bounds every wait for the modem, not a fixed one: a
 * response later than the time-out ends the run at the time-out, one
 * later than 5 s still arrives within a longer time-out. */
TEST_F(RlkMbnTest, TheTimeOutBoundsEveryResponseWait)
{
    sim.ctl_ok("delay pdc 0x22 3000 1");
    long long start = monotonic_ms();
    mbn_run r = run_mbn(sim, {"selected", "--timeout", "1"});
    EXPECT_EQ(r.exit_code, 3);
    EXPECT_EQ(r.err, "rlk-mbn: selected: no answer from the modem within 1 s\n");
    EXPECT_LT(monotonic_ms() - start, 2000);

    sim.ctl_ok("delay pdc 0x22 5300 1");
    r = run_mbn(sim, {"selected", "--timeout", "10"});
    EXPECT_EQ(r.exit_code, 0) << r.err;
    EXPECT_EQ(r.out, "active: ROW_Generic_3GPP\npending: none\n");
}

/* SIGTERM and SIGINT while the run opens its client on a device that does
 * not answer, waits for a response or for an indication, and a restart of
 * the service during a wait: each ends the run at once, with its client
 * released (the simulator has no PDC client left). */
TEST_F(RlkMbnTest, EveryWaitEndsAtOnceBySignalOrServiceRestart)
{
    dead_device dead;
    ASSERT_FALSE(dead.path().empty());
    struct wait_case {
        const char *name;
        std::vector<std::string> setup, args, env;
        const char *sent;       /* the request the run waits on, or null: wait for its first log line */
        int sig;                /* or 0: restart the service */
        int exit_code;
        const char *err;
    };
    const wait_case cases[] = {
        {"indication, SIGTERM", {"pdc fail 0x27 noind 1"}, {"activate"}, {}, "0x0027", SIGTERM, 128 + SIGTERM,
         "rlk-mbn: interrupted\n"},
        {"indication, SIGINT", {"pdc fail 0x27 noind 1"}, {"activate"}, {}, "0x0027", SIGINT, 128 + SIGINT,
         "rlk-mbn: interrupted\n"},
        {"response, SIGINT", {"delay pdc 0x22 60000 1"}, {"selected"}, {}, "0x0022", SIGINT, 128 + SIGINT,
         "rlk-mbn: interrupted\n"},
        {"indication, restart", {"pdc fail 0x22 noind 1"}, {"selected"}, {}, "0x0022", 0, 9,
         "rlk-mbn: selected: the PDC service restarted before answering\n"},
        {"opening, SIGINT", {}, {"list"}, {"RLK_QMI_DEVICE=" + dead.path(), tsan_no_exit_sleep()}, nullptr, SIGINT,
         128 + SIGINT, "rlk-mbn: interrupted\n"},
    };
    for (const wait_case &c : cases) {
        SCOPED_TRACE(c.name);
        sim.ctl_ok("pdc reset");
        sim.ctl_ok("clear-faults");
        sim.ctl_ok("pdc add sw pending_one");
        ASSERT_EQ(run_mbn(sim, {"select", "pending_one"}).exit_code, 0);
        for (const std::string &s : c.setup) sim.ctl_ok(s);
        int before = c.sent ? count_msg(pdc_journal(sim), c.sent) : 0;
        std::vector<std::string> args = c.args;
        args.insert(args.end(), {"--timeout", "30"});
        mbn_background bg(sim, args, c.env);
        bool waiting = false;
        for (long long end = monotonic_ms() + 5000; !waiting && monotonic_ms() < end; usleep(5000)) {
            waiting = c.sent ? count_msg(pdc_journal(sim), c.sent) > before : !bg.logcat().empty();
        }
        ASSERT_TRUE(waiting);
        usleep(100000); /* well inside the wait */
        long long start = monotonic_ms();
        if (c.sig) {
            bg.signal(c.sig);
        } else {
            sim.ctl_ok("ssr pdc 200");
        }
        int status = bg.wait(5000);
        long long took = monotonic_ms() - start;
        printf("[ measured ] %s: %lld ms to the exit\n", c.name, took);
        EXPECT_LT(took, 1000);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), c.exit_code);
        EXPECT_EQ(bg.err(), c.err);
        if (c.env.empty()) {
            ASSERT_FALSE(bg.logcat().empty());
            EXPECT_EQ(bg.logcat().back(), "Release client connection to PDC");
        }
        /* No client is left to receive a configuration-change indication
         * (the restarted service had none to begin with). */
        if (c.sig) {
            EXPECT_EQ(sim.ctl("ind pdc 0x21 010600010000000161"), "error no client");
        }
    }
}

}  // namespace
