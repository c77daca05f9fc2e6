/* rlk-mbn end to end against a private simulator: paged lists, a load
 * followed by select and activate across the modem's restart, delete,
 * every PDC failure by name with its exit status (and as JSON), what is
 * checked before the modem is touched, a time-out that bounds the whole
 * run, every wait (opening, response, indication) ended at once by a
 * signal or a restart of the service, and an interrupted load that leaves
 * nothing behind. */
#include <signal.h>
#include <stdio.h>

#include <gtest/gtest.h>

#include "mbn_test_util.h"

namespace {

const std::string k_released = "Release client connection to PDC";

std::string json_error(const std::string &text, int exit_code)
{
    return "{\"error\":\"" + text + "\",\"exit_status\":" + std::to_string(exit_code) + "}\n";
}

/* One run: control requests first, then rlk-mbn with `args` (words);
 * `err` is the message after "rlk-mbn: ", or none. */
struct mbn_case {
    std::vector<std::string> setup;
    std::string args;
    int exit_code;
    std::string out, err = "";
    std::vector<std::string> env = {};
};

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

    /* Runs `c` and checks its exit status and output; a usage error is
     * followed by the usage text. */
    mbn_run check(const mbn_case &c)
    {
        SCOPED_TRACE(c.args);
        for (const std::string &s : c.setup) sim.ctl_ok(s);
        mbn_run r = run_mbn(sim, words(c.args), c.env);
        std::string err = c.err.empty() ? "" : "rlk-mbn: " + c.err + "\n";
        if (c.exit_code == 2) err += "usage: rlk-mbn [options] <command>\n";
        EXPECT_EQ(r.exit_code, c.exit_code);
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(c.exit_code == 2 ? r.err.substr(0, err.size()) : r.err, err);
        return r;
    }

    /* Polls the journal until rlk-mbn has sent one more request `msg`. */
    bool sent(const std::string &msg, size_t before)
    {
        return eventually([&] { return pdc_requests(sim, msg).size() > before; });
    }

    sim_instance sim;
};

TEST_F(RlkMbnTest, ListOfSixtyComesInThreePagesWithOneToken)
{
    sim.ctl_ok("pdc clear sw");
    sim.ctl_ok("pdc fill sw 60");
    std::string configs;
    for (int i = 0; i < 60; i++) {
        char id[16];
        snprintf(id, sizeof(id), "sw_cfg_%03d", i);
        configs += std::string(i ? "," : "") + "{\"id\":\"" + id + "\",\"active\":false,\"pending\":false}";
    }
    mbn_run r = check({{}, "list --json", 0,
                       "{\"type\":\"sw\",\"sub\":0,\"count\":60,\"configs\":[" + configs + "]}\n"});
    /* Three pages, every one asked for with the same token (TLV 0x10). */
    std::vector<std::string> pages = pdc_requests(sim, "0x0024");
    ASSERT_EQ(pages.size(), 3u);
    for (const std::string &l : pages) {
        size_t at = l.rfind(' ') + 1 + 14; /* after the header: "10 04 00" and the token */
        EXPECT_EQ(l.substr(at, 6), "100400");
        EXPECT_EQ(l.substr(at + 6, 8), pages[0].substr(pages[0].rfind(' ') + 21, 8));
    }
    const std::string more = "PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available ";
    std::vector<std::string> done;
    for (const std::string &line : r.logcat) {
        if (line.compare(0, 11, "PDC_SUCCESS") == 0) done.push_back(line);
    }
    EXPECT_EQ(done, (std::vector<std::string>{more + "1, get_list_complete 0", more + "1, get_list_complete 0",
                                              more + "0, get_list_complete 1"}));
    EXPECT_EQ(r.logcat.back(), k_released);
}

/* Runs in order on one simulator, each answered by the modem (its client
 * released on every path), and every failure by name with its exit
 * status: as JSON, the same message and one object on standard output. */
TEST_F(RlkMbnTest, EveryOutcomeByNameWithItsExitStatus)
{
    const std::string file = write_file("f.mbn", 100), bin = write_file("bin.mbn", 10);
    const std::string hw_listed = "2 hw configurations (sub 0)\n  mcfg_hw_ssss\n  mcfg_hw_dsds\n";
    const std::string hw_json = "{\"type\":\"hw\",\"sub\":0,\"count\":2,\"configs\":["
                                "{\"id\":\"mcfg_hw_ssss\",\"active\":false,\"pending\":false},"
                                "{\"id\":\"mcfg_hw_dsds\",\"active\":false,\"pending\":false}],";
    const std::string refused = "list (active and pending): refused by the modem: internal (QMI error 3)";
    const std::string no_memory = "load: no memory (the modem has no room for the configuration)";
    const std::string exists = "load: config exists (a configuration with this id is stored)";
    const std::string no_mbn = "list: no MBN (no configuration of this type is stored)";
    const std::string not_provisioned = "deactivate: not provisioned (QMI error 16)";
    const std::string late = "selected: no answer from the modem within 1 s";
    const mbn_case cases[] = {
        {{}, "list --type hw --sub 1", 0, "2 hw configurations (sub 1)\n  mcfg_hw_ssss\n  mcfg_hw_dsds  [active]\n"},
        /* The selection query after the list fails: what was listed is
         * still printed, unmarked, beside the error. */
        {{"error pdc 0x22 3 2"}, "list --type hw", 1, hw_listed, refused},
        {{}, "list --type hw --json", 1, hw_json + "\"error\":\"" + refused + "\",\"exit_status\":1}\n", refused},
        {{}, "delete Commercial_TMO_VoLTE", 0, "deleted Commercial_TMO_VoLTE\n"},
        {{}, "delete Commercial_TMO_VoLTE", 1, "", "delete: invalid id (QMI error 41)"},
        {{}, "delete ROW_Generic_3GPP", 1, "", "delete: incompatible state (QMI error 90)"}, /* the active one */
        {{}, "deactivate", 0, "deactivated\n"},
        {{}, "selected", 0, "active: none\npending: none\n"},
        {{}, "deactivate --json", 1, json_error(not_provisioned, 1), not_provisioned},
        /* Binary ids round trip as hex. */
        {{}, "load " + bin + " --id hex:00ff10", 0, "loaded hex:00ff10 (10 bytes)\n"},
        {{}, "info hex:00ff10 --json", 0,
         "{\"id\":\"hex:00ff10\",\"size\":10,\"version\":0,\"description\":\"Loaded configuration\"}\n"},
        {{"pdc reset", "pdc capacity 1000"}, "load " + file, 4, "", no_memory},
        {{"pdc reset"}, "load " + file + " --id ROW_Generic_3GPP --json", 5, json_error(exists, 5), exists},
        {{"pdc fail 0x26 reset 1"}, "load " + file, 6, "",
         "load: frame reset (the modem dropped the partial transfer)"},
        {{"pdc clear hw"}, "list --type hw --json", 7, json_error(no_mbn, 7), no_mbn},
        {{"pdc reset", "pdc fail 0x26 nomem 1"}, "load " + file + " --json", 4, json_error(no_memory, 4), no_memory},
        {{"pdc fail 0x26 exists 1"}, "load " + file, 5, "", exists},
        {{"pdc fail 0x24 nombn 1"}, "list", 7, "", no_mbn},
        {{"pdc fail 0x22 noind 1"}, "selected --timeout 1 --json", 3, json_error(late, 3), late},
        {{}, "activate --type hw", 1, "", "activate: not provisioned (QMI error 16)"},
        {{"pdc fail 0x25 error 1234 1"}, "delete Commercial_VZW_VoLTE --json", 1,
         json_error("delete: failed (QMI error 1234)", 1), "delete: failed (QMI error 1234)"},
        {{"error pdc 0x23 48 1"}, "select x", 1, "", "select: refused by the modem: invalid argument (QMI error 48)"},
    };
    for (const mbn_case &c : cases) {
        mbn_run r = check(c);
        ASSERT_FALSE(r.logcat.empty());
        EXPECT_EQ(r.logcat.back(), k_released);
    }
}

/* With the service down, anything that reached for the modem would wait:
 * what is refused before is reported at once; without a client by the
 * deadline (service away, or a device that does not answer) the time-out
 * bounds the opening. */
TEST_F(RlkMbnTest, WhatIsCheckedBeforeTheModemAndTheOpeningTimeOut)
{
    sim.ctl_ok("down pdc");
    const std::string missing = sim.dir() + "/no-such-file.mbn", no_device = sim.dir() + "/no-such-device";
    dead_device dead;
    ASSERT_FALSE(dead.path().empty());
    const std::string not_open = "the PDC service did not answer within 1 s";
    const mbn_case cases[] = {
        {{}, "", 2, "", "no command"},
        {{}, "list --sub=2 --json", 2, json_error("--sub takes 0 or 1", 2), "--sub takes 0 or 1"},
        {{}, "info hex:zz", 2, "", "an id has 1 to 124 bytes"},
        {{}, "list --json=1", 2, "", "--json takes no value"}, /* refused, so not JSON */
        /* The load checks its file first. */
        {{}, "load " + missing + " --timeout=5", 1, "", "load: cannot open " + missing + ": No such file or directory"},
        {{}, "load " + sim.dir() + " --id x --timeout 5", 1, "", "load: cannot read " + sim.dir() + ": Is a directory"},
        {{}, "list --timeout 5", 8, "",
         "cannot open the QMI device " + no_device + " (RLK_QMI_DEVICE): No such file or directory",
         {"RLK_QMI_DEVICE=" + no_device}},
        {{}, "list --timeout=1", 3, "", not_open, {tsan_no_exit_sleep()}},
        {{}, "list --timeout=1", 3, "", not_open, {"RLK_QMI_DEVICE=" + dead.path(), tsan_no_exit_sleep()}},
    };
    for (const mbn_case &c : cases) {
        long long start = monotonic_ms();
        mbn_run r = check(c);
        EXPECT_LT(monotonic_ms() - start, 2500) << "well before the time-out";
        EXPECT_TRUE(c.exit_code == 3 || r.logcat.empty()) << "PDC untouched";
    }
    EXPECT_EQ(run_mbn(sim, {"--help"}).out.compare(0, 35, "usage: rlk-mbn [options] <command>\n"), 0);
}

TEST_F(RlkMbnTest, LoadSelectActivateSurvivesTheRestart)
{
    sim.ctl_ok("pdc timing 100 300");
    /* Three frames: 32768 + 32768 + 4464 bytes. */
    check({{}, "load " + write_file("carrier_x.mbn", 70000), 0, "loaded carrier_x.mbn (70000 bytes)\n"});
    EXPECT_EQ(sim.ctl_ok("counter get pdc.load_frames"), "3");
    check({{}, "info carrier_x.mbn", 0,
           "id: carrier_x.mbn\nsize: 70000\nversion: 0x00000000\ndescription: carrier_x.mbn\n"});
    check({{}, "select carrier_x.mbn --sub 1", 0, "selected carrier_x.mbn (pending until activated)\n"});
    check({{}, "selected --sub 1", 0, "active: ROW_Generic_3GPP\npending: carrier_x.mbn\n"});
    /* The extension service's line of `services` ("ext 0xffe4 instance 0 up port N"). */
    auto ext_line = [this] {
        std::string all = sim.ctl_ok("services");
        size_t at = all.find("ext 0xffe4");
        return at == std::string::npos ? std::string() : all.substr(at, all.find('\n', at) - at);
    };
    std::string ext_before = ext_line();
    long long start = monotonic_ms();
    check({{}, "activate --sub 1", 0, "activated; the modem restarts\n"});
    EXPECT_GE(monotonic_ms() - start, 100) << "activation takes its time";
    /* The restart takes every service down and brings them back. */
    ASSERT_TRUE(eventually([&] {
        return sim.ctl_ok("counter get pdc.restarts") == "1" &&
               sim.ctl_ok("services").find("pdc 0x0024 instance 0 up") != std::string::npos;
    }));
    std::string ext_after = ext_line();
    EXPECT_NE(ext_after.find(" up port "), std::string::npos) << ext_after;
    EXPECT_NE(ext_after, ext_before) << "a new port after the restart";
    check({{}, "selected --sub 1 --json", 0,
           "{\"type\":\"sw\",\"sub\":1,\"active\":\"carrier_x.mbn\",\"pending\":null}\n"});
    check({{}, "selected", 0, "active: ROW_Generic_3GPP\npending: none\n"}); /* sub 0 unchanged */

    /* The state is on disk: a restarted simulator still has it. */
    sim.stop();
    ASSERT_TRUE(sim.restart());
    check({{}, "selected --sub 1", 0, "active: carrier_x.mbn\npending: none\n"});
}

/* An indication of the same message for another request (its token is
 * not this run's) does not end the wait. */
TEST_F(RlkMbnTest, AnIndicationWithAnotherTokenIsNotTheOutcome)
{
    sim.ctl_ok("pdc fail 0x23 noind 1");
    mbn_proc p(sim, words("select Commercial_VZW_VoLTE --timeout 1"));
    ASSERT_TRUE(sent("0x0023", 0));
    EXPECT_EQ(sim.ctl("ind pdc 0x23 010200000010040000ffffff"), "ok");
    mbn_run r = p.result(p.wait(5000));
    EXPECT_EQ(r.exit_code, 3);
    EXPECT_EQ(r.err, "rlk-mbn: select: no answer from the modem within 1 s\n");
}

/* A load stopped half-way (SIGINT, SIGKILL) while the modem takes each
 * frame slowly leaves nothing behind: the same file loads again, and the
 * modem stores exactly its bytes. */
TEST_F(RlkMbnTest, InterruptedLoadLeavesNothingBehind)
{
    std::string file = write_file("cut.mbn", 200000); /* 7 frames */
    auto frames = [this] { return std::stol(sim.ctl_ok("counter get pdc.load_frames")); };
    for (int sig : {SIGINT, SIGKILL}) {
        SCOPED_TRACE(sig);
        sim.ctl_ok("pdc load-delay 200");
        long before = frames();
        mbn_proc p(sim, {"load", file});
        eventually([&] { return frames() >= before + 3; });
        p.signal(sig);
        EXPECT_NE(p.wait(5000), -1);
        sim.ctl_ok("pdc load-delay 0");
        EXPECT_EQ(sim.ctl_ok("pdc show").find("cut.mbn"), std::string::npos) << "nothing partial is stored";
    }
    check({{}, "load " + file, 0, "loaded cut.mbn (200000 bytes)\n"});
    EXPECT_EQ(read_text(sim.state_dir() + "/pdc/mbn/1-6375742e6d626e.mbn"), read_text(file))
        << "the stored configuration is the file, byte for byte";
}

/* The time-out bounds every wait for a response, not a fixed one: a
 * response later than the time-out ends the run at the time-out, one later
 * than the library's own 5 s still arrives within a longer time-out.  The
 * two runs wait side by side. */
TEST_F(RlkMbnTest, TheTimeOutBoundsEveryResponseWait)
{
    sim.ctl_ok("delay pdc 0x22 5100 2");
    long long start = monotonic_ms();
    mbn_proc short_run(sim, words("selected --timeout 1")), long_run(sim, words("selected --timeout 10"));
    mbn_run r = short_run.result(short_run.wait(5000));
    EXPECT_LT(monotonic_ms() - start, 2000);
    EXPECT_EQ(r.exit_code, 3);
    EXPECT_EQ(r.err, "rlk-mbn: selected: no answer from the modem within 1 s\n");
    r = long_run.result(long_run.wait(10000));
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
    const struct {
        std::string fault, args, sent; /* sent: the request waited on, or "": wait for a first log line */
        int sig;                        /* or 0: restart the service */
        int exit_code;
        std::string err;
    } cases[] = {
        {"pdc fail 0x27 noind 1", "activate", "0x0027", SIGTERM, 128 + SIGTERM, "interrupted"},
        {"pdc fail 0x27 noind 1", "activate", "0x0027", SIGINT, 128 + SIGINT, "interrupted"},
        {"delay pdc 0x22 60000 1", "selected", "0x0022", SIGINT, 128 + SIGINT, "interrupted"},
        {"pdc fail 0x22 noind 1", "selected", "0x0022", 0, 9, "selected: the PDC service restarted before answering"},
        {"clear-faults", "list", "", SIGINT, 128 + SIGINT, "interrupted"}, /* opening on the dead device */
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args + " " + std::to_string(c.sig));
        sim.ctl_ok("pdc reset");
        sim.ctl_ok("clear-faults");
        sim.ctl_ok("pdc add sw pending_one");
        ASSERT_EQ(run_mbn(sim, {"select", "pending_one"}).exit_code, 0);
        sim.ctl_ok(c.fault);
        size_t before = c.sent.empty() ? 0 : pdc_requests(sim, c.sent).size();
        std::vector<std::string> env;
        if (c.sent.empty()) env = {"RLK_QMI_DEVICE=" + dead.path(), tsan_no_exit_sleep()};
        mbn_proc p(sim, words(c.args + " --timeout 30"), env);
        ASSERT_TRUE(c.sent.empty() ? eventually([&] { return !p.logcat().empty(); }) : sent(c.sent, before));
        usleep(100000); /* well inside the wait */
        long long start = monotonic_ms();
        if (c.sig) {
            p.signal(c.sig);
        } else {
            sim.ctl_ok("ssr pdc 200");
        }
        mbn_run r = p.result(p.wait(5000));
        long long took = monotonic_ms() - start;
        printf("[ measured ] %s: %lld ms to the exit\n", c.args.c_str(), took);
        EXPECT_LT(took, 1000);
        EXPECT_EQ(r.exit_code, c.exit_code);
        EXPECT_EQ(r.err, "rlk-mbn: " + c.err + "\n");
        if (!c.sent.empty()) {
            ASSERT_FALSE(r.logcat.empty());
            EXPECT_EQ(r.logcat.back(), k_released);
        }
        /* No client is left to receive a configuration-change indication
         * (the restarted service had none to begin with). */
        if (c.sig) {
            EXPECT_EQ(sim.ctl("ind pdc 0x21 010600010000000161"), "error no client");
        }
    }
}

}  // namespace
