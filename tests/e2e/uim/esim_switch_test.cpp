/* The eSIM switch end to end against a private simulator: to the eSIM and
 * back with the EFS file, the power cycles and the profiles checked; a bad
 * EID refused with nothing changed; the quiet console; a restart of the
 * UIM service in the middle of a switch, finished by a second run; a
 * killed switch leaves no logical channel open. */
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

constexpr char k_eid_path[] = "/nv/item_files/modem/uim/uimdrv/esim_eid";
constexpr char k_pending_path[] = "/nv/item_files/modem/tolvek/esim_delete_pending";
constexpr char k_seed_eid[] = "89049032000001000000000000000074";
constexpr char k_enabled_iccid[] = "89445000000000000017";
constexpr char k_spare_iccid[] = "89445000000000000025";

class EsimSwitchTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* `rlk 5 10 <esim_on> <debug_on>`. */
    rlk_run esim(const std::vector<std::string> &args)
    {
        std::string syslog = sim.dir() + "/esim" + std::to_string(++runs) + "-syslog.log";
        std::vector<std::string> argv = {RLK_BINARY, "5", "10"};
        argv.insert(argv.end(), args.begin(), args.end());
        std::vector<std::string> env = sim.env();
        env.push_back("RLK_SYSLOG_FILE=" + syslog);
        run_result r = run_process(argv, env, "", k_run_timeout_ms);
        rlk_run out;
        out.status = r.status;
        out.out = r.out;
        out.err = r.err;
        out.syslog = read_log_file(syslog, false);
        return out;
    }
    /* `rlk 5 10 <args>` in the background, output dropped; its pid. */
    pid_t esim_background(const std::vector<std::string> &args)
    {
        std::vector<std::string> argv = {RLK_BINARY, "5", "10"};
        argv.insert(argv.end(), args.begin(), args.end());
        std::vector<std::string> env = sim.env();
        env.push_back("RLK_SYSLOG_FILE=" + sim.dir() + "/background-syslog.log");
        pid_t pid = fork();
        if (pid == 0) {
            for (const std::string &e : env) putenv(strdup(e.c_str()));
            int devnull = open("/dev/null", O_WRONLY);
            dup2(devnull, 1);
            dup2(devnull, 2);
            std::vector<char *> cargv;
            for (const std::string &a : argv) cargv.push_back(const_cast<char *>(a.c_str()));
            cargv.push_back(nullptr);
            execv(cargv[0], cargv.data());
            _exit(127);
        }
        return pid;
    }
    /* Polls `uim state` until it holds `part` (bounded); the last answer. */
    std::string wait_state(const std::string &part)
    {
        std::string st = state();
        for (long long end = monotonic_ms() + k_wait_ms; st.find(part) == std::string::npos && monotonic_ms() < end;) {
            usleep(5000);
            st = state();
        }
        return st;
    }
    std::string state() { return sim.ctl_ok("uim state"); }
    long counter(const std::string &name) { return std::stol(sim.ctl_ok("counter get " + name)); }
    std::string efs_get(const std::string &path) { return sim.ctl("efs get " + std::string(path)); }

    static constexpr int k_run_timeout_ms = 20000;
    static constexpr int k_wait_ms = 3000;
    sim_instance sim;
    int runs = 0;
};

bool has(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

bool syslog_has(const rlk_run &r, const std::string &part)
{
    return std::any_of(r.syslog.begin(), r.syslog.end(), [&](const log_line &l) { return has(l.text, part); });
}

TEST_F(EsimSwitchTest, ToTheEsimAndBack)
{
    ASSERT_TRUE(has(state(), "slot2 on psim"));
    ASSERT_TRUE(has(efs_get(k_eid_path), "error"));

    rlk_run on = esim({"1", "1"});
    ASSERT_TRUE(exited_cleanly(on.status)) << on.err;
    EXPECT_TRUE(has(on.out, "esim switch to eSIM: ok (0)")) << on.out;
    for (const char *step : {"esim step: read EID of slot 2", "esim step: check EID " "89049032000001000000000000000074",
                             "esim step: store EID in /nv/item_files/modem/uim/uimdrv/esim_eid",
                             "esim step: power down SIM2", "esim step: power up SIM2"}) {
        EXPECT_TRUE(has(on.out, std::string("]: ") + step)) << step;
    }
    EXPECT_EQ(sim.ctl("efs get " + std::string(k_eid_path)), std::string("ok ") + "89049032000001000000000000000074")
        << "the file holds the 16 EID bytes";
    EXPECT_EQ(counter("uim.slot2.power_down"), 1);
    EXPECT_EQ(counter("uim.slot2.power_up"), 1);
    EXPECT_TRUE(has(state(), "slot2 on euicc"));

    rlk_run back = esim({"2", "1"});
    ASSERT_TRUE(exited_cleanly(back.status)) << back.err;
    EXPECT_TRUE(has(back.out, "esim switch to PSIM2: ok (0)")) << back.out;
    for (const char *step : {"esim step: open logical channel to the ISD-R", "esim step: list profiles",
                             "esim step: disable profile 89445000000000000017",
                             "esim step: delete profile 89445000000000000017", "esim step: close logical channel 1"}) {
        EXPECT_TRUE(has(back.out, std::string("]: ") + step)) << step;
    }
    std::string st = state();
    EXPECT_TRUE(has(st, "slot2 on psim")) << st;
    EXPECT_FALSE(has(st, k_enabled_iccid)) << "the enabled profile is deleted";
    EXPECT_TRUE(has(st, std::string("profile ") + k_spare_iccid + " disabled")) << "other profiles stay";
    EXPECT_TRUE(has(st, "channels 0"));
    EXPECT_TRUE(has(efs_get(k_pending_path), "error")) << "no removal left pending";
    EXPECT_EQ(counter("uim.slot2.power_down"), 2);
    EXPECT_EQ(counter("uim.slot2.power_up"), 2);

    /* Nothing enabled any more: a further switch back only power-cycles. */
    rlk_run again = esim({"2", "1"});
    EXPECT_TRUE(has(again.out, "no enabled profile, nothing to delete"));
    EXPECT_TRUE(has(again.out, "esim switch to PSIM2: ok (0)"));
}

TEST_F(EsimSwitchTest, BadEidIsRefusedAndNothingChanges)
{
    for (const char *eid : {"89049032000001000000000000000075", "8904903200000100000000000000007A"}) {
        sim.ctl_ok(std::string("uim eid ") + eid);
        rlk_run r = esim({"1", "1"});
        EXPECT_TRUE(has(r.out, std::string("is not 32 decimal digits whose value modulo 97 is 1"))) << r.out;
        EXPECT_TRUE(has(r.out, "esim step \"check EID\" failed, code -202"));
        EXPECT_TRUE(has(r.out, "note: Error happen! error_code(-202)"));
        EXPECT_TRUE(has(efs_get(k_eid_path), "error")) << eid;
        EXPECT_EQ(counter("uim.slot2.power_down"), 0);
        EXPECT_EQ(counter("uim.slot2.power_up"), 0);
        EXPECT_EQ(counter("ext.requests.2"), 0) << "no EFS request at all";
    }
}

TEST_F(EsimSwitchTest, ArgumentsOutOfRangeGetANote)
{
    struct {
        std::vector<std::string> args;
        const char *note;
        const char *code;
    } cases[] = {
        {{"1"}, "note: need 5 inputs, Pls refer to the following cmd:", "error_code(268431370)"},
        {{"1", "1", "1"}, "note: need 5 inputs, Pls refer to the following cmd:", "error_code(268431370)"},
        {{"3", "1"}, "note: esim_on should be 1 or 2 and debug_on 0 or 1", "error_code(-200)"},
        {{"1", "2"}, "note: esim_on should be 1 or 2 and debug_on 0 or 1", "error_code(-200)"},
    };
    for (const auto &c : cases) {
        rlk_run r = esim(c.args);
        EXPECT_TRUE(has(r.out, c.note)) << r.out;
        EXPECT_TRUE(has(r.out, c.code)) << r.out;
    }
    EXPECT_EQ(counter("uim.slot2.power_down"), 0);
}

TEST_F(EsimSwitchTest, QuietConsoleKeepsTheSystemLog)
{
    rlk_run r = esim({"1", "0"});
    EXPECT_FALSE(has(r.out, "RIL[")) << r.out;
    EXPECT_EQ(r.out, "esim switch to eSIM: ok (0)\n");
    EXPECT_TRUE(syslog_has(r, "SUB[shell][tolvek_cmn_esim.cpp:"));
    EXPECT_TRUE(syslog_has(r, "esim step: power up SIM2"));
    EXPECT_TRUE(syslog_has(r, "SUB[shell][tolvek_uim_client.cpp:"));
    EXPECT_TRUE(syslog_has(r, "init_uim_qmi_client"));
    EXPECT_TRUE(has(state(), "slot2 on euicc"));

    /* A failure on a quiet console prints the help without the note. */
    sim.ctl_ok("error uim 0x65 0x5A 1");
    r = esim({"2", "0"});
    EXPECT_FALSE(has(r.out, "RIL[")) << r.out;
    EXPECT_FALSE(has(r.out, "Error happen")) << r.out;
    EXPECT_TRUE(has(r.out, "rlk 5 10")) << "the help follows: " << r.out;
}

/* The UIM service restarts while a request is in flight; the run fails at
 * that step, and a second run finishes the switch. */
TEST_F(EsimSwitchTest, RestartHalfWayIsFinishedByASecondRun)
{
    struct {
        const char *esim_on;
        const char *crash_on;
        const char *failure;
        const char *resumed; /* what the second run finds */
    } cases[] = {
        {"1", "0x31", "esim step \"power up SIM2\" failed, code -2", "EFS already holds this EID"},
        {"2", "apdu:BF33", "esim step \"delete profile\" failed, code -2",
         "profile 89445000000000000017 was left disabled by an earlier run"},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(std::string("uim crash-on ") + c.crash_on + " 100");
        rlk_run first = esim({c.esim_on, "1"});
        EXPECT_TRUE(has(first.out, c.failure)) << first.out;
        EXPECT_TRUE(has(first.out, "failed (")) << first.out;
        rlk_run second = esim({c.esim_on, "1"});
        EXPECT_TRUE(has(second.out, ": ok (0)")) << second.out;
        EXPECT_TRUE(has(second.out, c.resumed)) << second.out;
    }
    /* The restart came between disable and delete: the second run deleted
     * the profile the first one noted, and only that one. */
    std::string st = state();
    EXPECT_FALSE(has(st, k_enabled_iccid)) << st;
    EXPECT_TRUE(has(st, std::string("profile ") + k_spare_iccid + " disabled")) << st;
    EXPECT_TRUE(has(st, "slot2 on psim")) << st;
    EXPECT_TRUE(has(efs_get(k_eid_path), k_seed_eid));
    EXPECT_TRUE(has(efs_get(k_pending_path), "error"));
}

/* A switch killed while the card's answer is on its way leaves no logical
 * channel open (the card has three): after three kills a switch still runs
 * to its end. */
TEST_F(EsimSwitchTest, KilledSwitchLeavesNoChannelOpen)
{
    for (int kill_no = 0; kill_no < 3; kill_no++) {
        SCOPED_TRACE(kill_no);
        long apdus = counter("uim.apdus");
        sim.ctl_ok("delay uim 0x3B 10000 1");
        pid_t pid = esim_background({"2", "1"});
        ASSERT_GT(pid, 0);
        for (long long end = monotonic_ms() + k_wait_ms; counter("uim.apdus") == apdus && monotonic_ms() < end;) {
            usleep(5000);
        }
        EXPECT_TRUE(has(state(), "channels 1")) << "the APDU is on its way on an open channel";
        kill(pid, SIGKILL);
        ASSERT_EQ(waitpid(pid, nullptr, 0), pid);
        EXPECT_TRUE(has(wait_state("channels 0"), "channels 0"));
        sim.ctl_ok("clear-faults");
    }
    rlk_run r = esim({"2", "1"});
    EXPECT_TRUE(has(r.out, "esim switch to PSIM2: ok (0)")) << r.out;
    EXPECT_TRUE(has(state(), "channels 0"));
}

/* The modem accepts a power-up but leaves the slot off: the run fails at
 * its check, and the next run of either switch powers the slot up first. */
TEST_F(EsimSwitchTest, SlotLeftPoweredDownIsPoweredUpByTheNextRun)
{
    for (const char *esim_on : {"1", "2"}) {
        sim.ctl_ok("error uim 0x31 0x5A 1");
        rlk_run first = esim({esim_on, "1"});
        EXPECT_TRUE(has(first.out, "SIM2 does not answer after power up")) << first.out;
        EXPECT_TRUE(has(first.out, "error_code(-205)")) << first.out;
        EXPECT_TRUE(has(state(), "slot2 off"));
        rlk_run second = esim({esim_on, "1"});
        EXPECT_TRUE(has(second.out, esim_on[0] == '1' ? "the modem gave no EID for slot 2, power it up"
                                                      : "slot 2 refuses a channel, power it up"))
            << second.out;
        EXPECT_TRUE(has(second.out, ": ok (0)")) << second.out;
        EXPECT_TRUE(has(state(), "slot2 on"));
    }
    EXPECT_TRUE(has(state(), "slot2 on psim"));
}

}  // namespace
