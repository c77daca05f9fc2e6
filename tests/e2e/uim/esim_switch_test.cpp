/* The eSIM switch end to end against a private simulator: to the eSIM and
 * back with the EFS file, the power cycles and the profiles checked; bad
 * arguments and a bad EID refused with nothing changed; the quiet console;
 * a restart of the UIM service in the middle of a switch, finished by a
 * second run; a killed switch leaves no logical channel open. */
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

constexpr char k_eid_path[] = "/nv/item_files/modem/uim/uimdrv/esim_eid";
constexpr char k_pending_path[] = "/nv/item_files/modem/tolvek/esim_delete_pending";
constexpr char k_seed_eid[] = "89049032000001000000000000000074";

/* Each part must occur in `text` (`absent`: must not). */
void expect_parts(const std::string &text, const std::vector<std::string> &parts, bool absent = false)
{
    for (const std::string &p : parts) {
        EXPECT_EQ(text.find(p) == std::string::npos, absent) << "\"" << p << "\" in:\n" << text;
    }
}

class EsimSwitchTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* `rlk 5 10 <esim_on> <debug_on>`. */
    rlk_run esim(const std::vector<std::string> &args)
    {
        std::vector<std::string> argv = {"5", "10"};
        argv.insert(argv.end(), args.begin(), args.end());
        return sim.run_rlk(argv);
    }
    std::string state() { return sim.ctl_ok("uim state"); }
    long counter(const std::string &name) { return std::stol(sim.ctl_ok("counter get " + name)); }
    void expect_power_cycles(long n)
    {
        EXPECT_EQ(counter("uim.slot2.power_down"), n);
        EXPECT_EQ(counter("uim.slot2.power_up"), n);
    }

    sim_instance sim;
};

TEST_F(EsimSwitchTest, RefusalsChangeNothingThenToTheEsimAndBack)
{
    const std::string count_note = "note: need 5 inputs, Pls refer to the following cmd:";
    const std::string range_note = "note: esim_on should be 1 or 2 and debug_on 0 or 1";
    const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> refusals = {
        {{"1"}, {count_note, "error_code(268431370)"}},
        {{"1", "1", "1"}, {count_note, "error_code(268431370)"}},
        {{"3", "1"}, {range_note, "error_code(-200)"}},
        {{"1", "2"}, {range_note, "error_code(-200)"}},
    };
    for (const auto &c : refusals) expect_parts(esim(c.first).out, c.second);
    for (const char *eid : {"89049032000001000000000000000075", "8904903200000100000000000000007A"}) {
        sim.ctl_ok(std::string("uim eid ") + eid);
        expect_parts(esim({"1", "1"}).out, {"is not 32 decimal digits whose value modulo 97 is 1",
                                            "esim step \"check EID\" failed, code -202",
                                            "note: Error happen! error_code(-202)"});
        EXPECT_EQ(counter("ext.requests.2"), 0) << "no EFS request at all";
    }
    expect_power_cycles(0);
    sim.ctl_ok(std::string("uim eid ") + k_seed_eid);
    expect_parts(state(), {"slot2 on psim"});
    expect_parts(sim.ctl("efs get " + std::string(k_eid_path)), {"error"});

    rlk_run on = esim({"1", "1"});
    ASSERT_TRUE(exited_cleanly(on.status)) << on.err;
    expect_parts(on.out, {"esim switch to eSIM: ok (0)", "]: esim step: read EID of slot 2",
                          "]: esim step: check EID 89049032000001000000000000000074",
                          "]: esim step: store EID in /nv/item_files/modem/uim/uimdrv/esim_eid",
                          "]: esim step: power down SIM2", "]: esim step: power up SIM2"});
    EXPECT_EQ(sim.ctl("efs get " + std::string(k_eid_path)), std::string("ok ") + k_seed_eid)
        << "the file holds the 16 EID bytes";
    expect_power_cycles(1);
    expect_parts(state(), {"slot2 on euicc"});

    rlk_run back = esim({"2", "1"});
    ASSERT_TRUE(exited_cleanly(back.status)) << back.err;
    expect_parts(back.out, {"esim switch to PSIM2: ok (0)", "]: esim step: open logical channel to the ISD-R",
                            "]: esim step: list profiles", "]: esim step: disable profile 89445000000000000017",
                            "]: esim step: delete profile 89445000000000000017",
                            "]: esim step: close logical channel 1"});
    /* The enabled profile is deleted, the other stays. */
    expect_parts(state(), {"slot2 on psim", "profile 89445000000000000025 disabled", "channels 0"});
    expect_parts(state(), {"89445000000000000017"}, true);
    expect_parts(sim.ctl("efs get " + std::string(k_pending_path)), {"error"}); /* no removal left pending */
    expect_power_cycles(2);

    /* Nothing enabled any more: a further switch back only power-cycles. */
    expect_parts(esim({"2", "1"}).out, {"no enabled profile, nothing to delete", "esim switch to PSIM2: ok (0)"});
}

TEST_F(EsimSwitchTest, QuietConsoleKeepsTheSystemLog)
{
    rlk_run r = esim({"1", "0"});
    EXPECT_EQ(r.out, "esim switch to eSIM: ok (0)\n");
    std::string syslog;
    for (const std::string &line : texts(r.syslog)) syslog += line + "\n";
    expect_parts(syslog, {"SUB[shell][tolvek_cmn_esim.cpp:", "esim step: power up SIM2",
                          "SUB[shell][tolvek_uim_client.cpp:", "init_uim_qmi_client"});
    expect_parts(state(), {"slot2 on euicc"});

    /* A failure on a quiet console prints the help without the note. */
    sim.ctl_ok("error uim 0x65 0x5A 1");
    r = esim({"2", "0"});
    expect_parts(r.out, {"RIL[", "Error happen"}, true);
    expect_parts(r.out, {"rlk 5 10"});
}

/* The UIM service restarts while a request is in flight; the run fails at
 * that step, and a second run finishes the switch. */
TEST_F(EsimSwitchTest, RestartHalfWayIsFinishedByASecondRun)
{
    const struct {
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
        expect_parts(esim({c.esim_on, "1"}).out, {c.failure, "failed ("});
        expect_parts(esim({c.esim_on, "1"}).out, {": ok (0)", c.resumed});
    }
    /* The restart came between disable and delete: the second run deleted
     * the profile the first one noted, and only that one. */
    expect_parts(state(), {"89445000000000000017"}, true);
    expect_parts(state(), {"profile 89445000000000000025 disabled", "slot2 on psim"});
    expect_parts(sim.ctl("efs get " + std::string(k_eid_path)), {k_seed_eid});
    expect_parts(sim.ctl("efs get " + std::string(k_pending_path)), {"error"});
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
        pid_t pid = sim.start_rlk({"5", "10", "2", "1"});
        ASSERT_GT(pid, 0);
        EXPECT_TRUE(poll_until([&] { return counter("uim.apdus") != apdus; }, 3000));
        expect_parts(state(), {"channels 1"}); /* the APDU is on its way on an open channel */
        kill(pid, SIGKILL);
        ASSERT_EQ(waitpid(pid, nullptr, 0), pid);
        EXPECT_TRUE(poll_until([&] { return state().find("channels 0") != std::string::npos; }, 3000));
        sim.ctl_ok("clear-faults");
    }
    expect_parts(esim({"2", "1"}).out, {"esim switch to PSIM2: ok (0)"});
    expect_parts(state(), {"channels 0"});
}

/* The modem accepts a power-up but leaves the slot off: the run fails at
 * its check, and the next run of either switch powers the slot up first. */
TEST_F(EsimSwitchTest, SlotLeftPoweredDownIsPoweredUpByTheNextRun)
{
    for (const char *esim_on : {"1", "2"}) {
        sim.ctl_ok("error uim 0x31 0x5A 1");
        expect_parts(esim({esim_on, "1"}).out, {"SIM2 does not answer after power up", "error_code(-205)"});
        expect_parts(state(), {"slot2 off"});
        expect_parts(esim({esim_on, "1"}).out,
                     {esim_on[0] == '1' ? "the modem gave no EID for slot 2, power it up"
                                        : "slot 2 refuses a channel, power it up",
                      ": ok (0)"});
        expect_parts(state(), {"slot2 on"});
    }
    expect_parts(state(), {"slot2 on psim"});
}

}  // namespace
