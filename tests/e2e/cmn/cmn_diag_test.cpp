/* Option 5's raw diag commands end to end: the real rlk against a private
 * simulator in every mode, the commands an engineer types, replies that
 * come late, never, or in pieces, refused commands, and many rlk processes
 * at once. */
#include <thread>

#include <gtest/gtest.h>

#include "../../unit/diag/diag_test_util.h"
#include "../extension/ext_test_util.h"

namespace {

using diag_test::expect_all;

const char k_nothing_left[] = "remote_mask=0x0 dci_piece=4096 connections=0 dci_clients=0";
const char k_with[] = "\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n";
const char k_without[] = "\ndone without rsp data\n";

class CmnDiagTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    sim_instance sim;
};

/* `rlk 5 0 mode type time_out bytes...` */
std::vector<std::string> diag_args(int mode, int type, int time_out, std::vector<std::string> bytes)
{
    std::vector<std::string> args = {"5", "0", std::to_string(mode), std::to_string(type), std::to_string(time_out)};
    args.insert(args.end(), bytes.begin(), bytes.end());
    return args;
}

TEST_F(CmnDiagTest, EveryModeTimeOutsPiecesAndRefusedCommands)
{
    std::vector<std::string> longest(4096, "0x1C"), too_long(4097, "0x1C");
    const std::string fail = "tolvek_diag_cmd_send fail\n" + error_note(1);
    const struct {
        const char *setup; /* after "diag clear" */
        std::vector<std::string> args, texts, absent;
        long long max_ms; /* 0: not timed */
    } runs[] = {
        /* Two bytes are too short for a subsystem command: BAD_LEN echoes them. */
        {"", diag_args(0, 0, 0, {"0x4B", "0x0B"}),
         {"diag cmd:0x4B 0x0B \ncallback mode with result\n", "Time out is invalid, set default",
          "Command time = 30 * 100ms", "\nrsp data len(3)\nrsp data: 0x15 0x4B 0x0B\n"}, {"note:"}, 0},
        {"", diag_args(0, 0, 1000, {"0x1C"}), {"\ncallback mode with result\n", k_with}, {"note:"}, 0},
        {"", diag_args(1, 0, 1000, {"0x1C"}), {"\ndci mode with result\n", k_with}, {"note:"}, 0},
        /* The sender thread printed what arrived before the process ended. */
        {"", diag_args(0, 1, 1000, {"0x1C"}), {"\ncallback mode without result\n", k_without, "_no_handle:",
                                              "]: len = 3\n"}, {"note:"}, 0},
        {"", diag_args(1, 1, 1000, {"0x1C"}), {"\ndci mode without result\n", k_without, "_no_handle:",
                                              "]: len = 3\n"}, {"note:"}, 0},
        /* A reply that never comes ends by the run's own 300 ms. */
        {"diag drop 0x1c", diag_args(0, 0, 300, {"0x1C"}),
         {"cnt_of_100ms = 3\n", "]: stop waiting\n", fail}, {"cnt_of_100ms = 4\n"}, 3000},
        {"diag drop 0x1c", diag_args(1, 0, 300, {"0x1C"}),
         {"cnt_of_100ms = 3\n", "]: stop waiting\n", fail}, {"cnt_of_100ms = 4\n"}, 3000},
        {"diag drop 0x1c", diag_args(0, 1, 0, {"0x1C"}), {k_without}, {"_no_handle:"}, 0},
        {"diag drop 0x1c", diag_args(1, 1, 0, {"0x1C"}), {k_without}, {"_no_handle:"}, 0},
        /* Long DCI replies come in pieces and are joined; beyond what a reply
         * may be, the response check refuses it and the command times out. */
        {"diag next-size 4196", diag_args(1, 0, 3000, {"0x1C"}),
         {"response, cmd_code = 0x1c, data_size = 4096\n", "response, cmd_code = 0xfd, data_size = 100\n",
          "req end, data_size = 4196, g_qcril_diag_rsp_buf.length = 4196, reply_len = 10240",
          "\nrsp data len(4196)\nrsp data: 0x1C 0x08 0x00 0x00 0x01"}, {}, 0},
        {"diag next-size 8192", diag_args(1, 0, 300, {"0x1C"}),
         {"stop waiting, receive success, length is times of 4096", "\nrsp data len(8192)\n"}, {"note:"}, 0},
        {"diag next-size 10241", diag_args(0, 0, 300, {"0x1C"}),
         {"Invalid parameter, len = 10241", error_note(1)}, {}, 0},
        /* 4096 bytes of 0x1C: too long for DIAG_VER, echoed behind BAD_LEN. */
        {"", diag_args(0, 0, 1000, longest),
         {"diag_comand, data_len = 4096", "\nrsp data len(4097)\nrsp data: 0x15 0x1C 0x1C"}, {}, 0},
        {"", diag_args(0, 0, 1000, too_long),
         {"Invalid input parameter, data_len = 4097", "tolvek_diag_comand_param_check fail", fail}, {}, 0},
        {"", diag_args(1, 1, 0, too_long), {"tolvek_diag_comand_input_check fail", error_note(1)}, {}, 0},
    };
    for (const auto &run : runs) {
        SCOPED_TRACE(run.setup + (" rlk 5 0 " + run.args[2] + " " + run.args[3] + " " + run.args[4] + " " +
                                  run.args[5]));
        sim.ctl_ok("diag clear");
        if (*run.setup) sim.ctl_ok(run.setup);
        long long t0 = monotonic_ms();
        rlk_run r = sim.run_rlk(run.args);
        long long ms = monotonic_ms() - t0;
        EXPECT_TRUE(exited_cleanly(r.status));
        expect_all(r.out, run.texts);
        for (const std::string &a : run.absent) EXPECT_FALSE(has_text(r.out, a)) << a << "\n" << r.out;
        EXPECT_TRUE(!run.max_ms || ms < run.max_ms) << ms << " ms";
        EXPECT_EQ(sim.ctl_ok("diag status"), k_nothing_left);
        EXPECT_TRUE(run.args[5] != "0x4B" || has_syslog(r, "callback, cmd_code = 0x15, data_size = 3"));
        if (run.setup == std::string("diag drop 0x1c") && run.args[3] == "1") {
            EXPECT_EQ(sim.ctl_ok("diag last 1"), run.args[2] == "0" ? "cmd 0 1c" : "dci 0 1c") << "it went out";
        }
    }
    /* Six words carry no command byte: nothing is sent, so the next command
     * still gets the one-byte answer. */
    sim.ctl_ok("diag next-size 1");
    EXPECT_EQ(sim.run_rlk({"5", "0", "0", "0", "0"}).out, "\nnote: Too few inputs, Pls refer to the following cmd:\n");
    expect_all(sim.run_rlk(diag_args(0, 0, 1000, {"0x1C"})).out, {"\nrsp data len(1)\nrsp data: 0x1C\n"});
}

TEST_F(CmnDiagTest, CommandsAnEngineerTypesAnswerAlikeInCallbackAndDciModes)
{
    const struct {
        std::vector<std::string> cmd;
        int reply_len;
        const char *reply_head; /* start of the "rsp data:" bytes */
    } cmds[] = {
        {{"0x00"}, 55, "0x00 0x4A 0x61 0x6E"},                                /* version info */
        {{"0x0C"}, 48, "0x0C 0x00 0x00 0x00 0xC3 0xB2 0xA1 0x80"},            /* status with the ESN */
        {{"0x1C"}, 3, "0x1C 0x08 0x00"},                                      /* diag version */
        {{"0x7C"}, 46, "0x7C 0x02 0x00 0x00"},                                /* extended build id */
        {{"0x29", "0x01", "0x00"}, 3, "0x29 0x01 0x00"},                      /* offline */
        {{"0x4B", "0x0F", "0x00", "0x00"}, 44, "0x4B 0x0F 0x00 0x00 0x00 0x00 0x00 0x00 0x05"},
        {{"0xFE", "0x01"}, 3, "0x13 0xFE 0x01"},                              /* unknown: BAD_CMD */
        {{"0x1C", "0x00"}, 3, "0x15 0x1C 0x00"},                              /* bad length */
    };
    for (int mode : {0, 1}) {
        for (const auto &c : cmds) {
            SCOPED_TRACE("mode " + std::to_string(mode) + " " + c.cmd[0]);
            expect_all(sim.run_rlk(diag_args(mode, 0, 2000, c.cmd)).out,
                       {"\nrsp data len(" + std::to_string(c.reply_len) + ")\nrsp data: " + c.reply_head});
        }
    }
}

TEST_F(CmnDiagTest, ParallelRlkProcessesEachReceiveTheirOwnReply)
{
    constexpr int k_processes = 8;
    std::vector<run_result> runs(k_processes);
    std::vector<std::thread> threads;
    for (int i = 0; i < k_processes; i++) {
        /* CONTROL echoes its mode: modes 0..6, and DIAG_VER for the eighth;
         * callback and DCI modes alternate. */
        std::vector<std::string> argv = {RLK_BINARY, "5", "0", std::to_string(i % 2), "0", "5000",
                                         i < 7 ? "0x29" : "0x1C"};
        if (i < 7) argv.insert(argv.end(), {std::to_string(i), "0x00"});
        threads.emplace_back([this, i, argv, &runs] { runs[size_t(i)] = run_process(argv, sim.env()); });
    }
    for (std::thread &t : threads) t.join();
    for (int i = 0; i < k_processes; i++) {
        std::string want = i < 7 ? "\nrsp data len(3)\nrsp data: 0x29 0x0" + std::to_string(i) + " 0x00\n" : k_with;
        EXPECT_TRUE(exited_cleanly(runs[size_t(i)].status)) << "process " << i << "\n" << runs[size_t(i)].err;
        expect_all(runs[size_t(i)].out, {want});
    }
    EXPECT_EQ(sim.ctl_ok("diag status"), k_nothing_left);
}

}  // namespace
