/* Option 5's raw diag commands end to end: the real rlk against a private
 * simulator in every mode, the commands an engineer types, replies that
 * come late, never, or in pieces, refused commands, and many rlk processes
 * at once. */
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "../extension/ext_test_util.h"

namespace {

class CmnDiagTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* `rlk 5 0 mode type time_out bytes...` */
    rlk_run diag(int mode, int type, int time_out, const std::vector<std::string> &bytes)
    {
        std::vector<std::string> args = {"5", "0", std::to_string(mode), std::to_string(type),
                                         std::to_string(time_out)};
        args.insert(args.end(), bytes.begin(), bytes.end());
        return sim.run_rlk(args);
    }
    void expect_nothing_left()
    {
        EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=0 dci_clients=0");
    }
    sim_instance sim;
};

TEST_F(CmnDiagTest, SubsystemCommandWithTheDefaultTimeOutPrintsTheReplyBytes)
{
    rlk_run r = sim.run_rlk({"5", "0", "0", "0", "0", "0x4B", "0x0B"});
    EXPECT_TRUE(exited_cleanly(r.status));
    EXPECT_TRUE(has_text(r.out, "diag cmd:0x4B 0x0B \ncallback mode with result\n"));
    EXPECT_TRUE(has_text(r.out, "Time out is invalid, set default"));
    EXPECT_TRUE(has_text(r.out, "Command time = 30 * 100ms"));
    /* Two bytes are too short for a subsystem command: the modem's BAD_LEN
     * answer echoes them. */
    EXPECT_TRUE(has_text(r.out, "\nrsp data len(3)\nrsp data: 0x15 0x4B 0x0B\n"));
    EXPECT_FALSE(has_text(r.out, "note:"));
    EXPECT_TRUE(has_syslog(r, "callback, cmd_code = 0x15, data_size = 3"));
}

TEST_F(CmnDiagTest, EveryModeWithAndWithoutResult)
{
    const struct {
        int mode, type;
        const char *banner;
        const char *tail;
    } modes[] = {
        {0, 0, "callback mode with result", "\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n"},
        {1, 0, "dci mode with result", "\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n"},
        {0, 1, "callback mode without result", "\ndone without rsp data\n"},
        {1, 1, "dci mode without result", "\ndone without rsp data\n"},
    };
    for (const auto &m : modes) {
        rlk_run r = diag(m.mode, m.type, 1000, {"0x1C"});
        EXPECT_TRUE(exited_cleanly(r.status)) << m.banner;
        EXPECT_TRUE(has_text(r.out, std::string("\n") + m.banner + "\n")) << m.banner;
        EXPECT_TRUE(has_text(r.out, m.tail)) << m.banner << "\n" << r.out;
        if (m.type == 1) {
            /* The sender thread printed what arrived before the process ended. */
            EXPECT_TRUE(has_text(r.out, "_no_handle:")) << r.out;
            EXPECT_TRUE(has_text(r.out, "]: len = 3\n")) << r.out;
        }
        EXPECT_FALSE(has_text(r.out, "note:")) << m.banner;
        expect_nothing_left();
    }
}

TEST_F(CmnDiagTest, CommandsAnEngineerTypesAnswerAlikeInCallbackAndDciModes)
{
    const struct {
        std::vector<std::string> cmd;
        const char *reply_head; /* start of the "rsp data:" bytes */
        int reply_len;
    } cmds[] = {
        {{"0x00"}, "rsp data: 0x00 0x4A 0x61 0x6E", 55},                /* version info */
        {{"0x0C"}, "rsp data: 0x0C 0x00 0x00 0x00 0xC3 0xB2 0xA1 0x80", 48}, /* status with the ESN */
        {{"0x1C"}, "rsp data: 0x1C 0x08 0x00", 3},                       /* diag version */
        {{"0x7C"}, "rsp data: 0x7C 0x02 0x00 0x00", 46},                 /* extended build id */
        {{"0x29", "0x01", "0x00"}, "rsp data: 0x29 0x01 0x00", 3},       /* offline */
        {{"0x4B", "0x0F", "0x00", "0x00"}, "rsp data: 0x4B 0x0F 0x00 0x00 0x00 0x00 0x00 0x00 0x05", 44},
        {{"0xFE", "0x01"}, "rsp data: 0x13 0xFE 0x01", 3},               /* unknown: BAD_CMD */
        {{"0x1C", "0x00"}, "rsp data: 0x15 0x1C 0x00", 3},               /* bad length */
    };
    for (int mode : {0, 1}) {
        for (const auto &c : cmds) {
            rlk_run r = diag(mode, 0, 2000, c.cmd);
            std::string what = "mode " + std::to_string(mode) + " " + c.cmd[0];
            EXPECT_TRUE(has_text(r.out, "\nrsp data len(" + std::to_string(c.reply_len) + ")\n")) << what << r.out;
            EXPECT_TRUE(has_text(r.out, c.reply_head)) << what;
        }
    }
}

TEST_F(CmnDiagTest, AReplyThatNeverComesEndsByTheTimeOut)
{
    sim.ctl_ok("diag drop 0x1c");
    for (int mode : {0, 1}) {
        long long t0 = monotonic_ms();
        rlk_run r = diag(mode, 0, 300, {"0x1C"});
        long long ms = monotonic_ms() - t0;
        EXPECT_TRUE(exited_cleanly(r.status));
        EXPECT_TRUE(has_text(r.out, "cnt_of_100ms = 3\n")) << r.out;
        EXPECT_FALSE(has_text(r.out, "cnt_of_100ms = 4\n"));
        EXPECT_TRUE(has_text(r.out, "]: stop waiting\n"));
        EXPECT_TRUE(has_text(r.out, "tolvek_diag_cmd_send fail\n"));
        EXPECT_TRUE(has_text(r.out, error_note(1)));
        EXPECT_LT(ms, 3000) << "ended by its own 300 ms, not the default";
        expect_nothing_left();
    }
}

TEST_F(CmnDiagTest, ADroppedReplyInTheWithoutResultModesLeavesNothingBehind)
{
    sim.ctl_ok("diag drop 0x1c");
    for (int mode : {0, 1}) {
        rlk_run r = diag(mode, 1, 0, {"0x1C"});
        EXPECT_TRUE(exited_cleanly(r.status));
        EXPECT_TRUE(has_text(r.out, "\ndone without rsp data\n"));
        EXPECT_FALSE(has_text(r.out, "_no_handle:"));
        expect_nothing_left();
    }
    EXPECT_EQ(sim.ctl_ok("diag last 2"), "cmd 0 1c\ndci 0 1c") << "both commands went out";
}

TEST_F(CmnDiagTest, LongDciRepliesArriveInPiecesAndAreJoined)
{
    sim.ctl_ok("diag next-size 4196");
    rlk_run r = diag(1, 0, 3000, {"0x1C"});
    EXPECT_TRUE(has_text(r.out, "response, cmd_code = 0x1c, data_size = 4096\n"));
    EXPECT_TRUE(has_text(r.out, "response, cmd_code = 0xfd, data_size = 100\n"));
    EXPECT_TRUE(has_text(r.out, "req end, data_size = 4196, g_qcril_diag_rsp_buf.length = 4196, reply_len = 10240"));
    EXPECT_TRUE(has_text(r.out, "\nrsp data len(4196)\nrsp data: 0x1C 0x08 0x00 0x00 0x01"));

    sim.ctl_ok("diag next-size 8192");
    r = diag(1, 0, 300, {"0x1C"});
    EXPECT_TRUE(has_text(r.out, "stop waiting, receive success, length is times of 4096"));
    EXPECT_TRUE(has_text(r.out, "\nrsp data len(8192)\n"));
    EXPECT_FALSE(has_text(r.out, "note:"));

    /* Beyond what a reply may be: refused by the response check, so the
     * command times out. */
    sim.ctl_ok("diag next-size 10241");
    r = diag(0, 0, 300, {"0x1C"});
    EXPECT_TRUE(has_text(r.out, "Invalid parameter, len = 10241"));
    EXPECT_TRUE(has_text(r.out, error_note(1)));
}

TEST_F(CmnDiagTest, CommandLengthsAndArgumentCounts)
{
    std::vector<std::string> longest(4096, "0x1C");
    rlk_run ok = diag(0, 0, 1000, longest);
    EXPECT_TRUE(has_text(ok.out, "diag_comand, data_len = 4096"));
    /* 4096 bytes of 0x1C: too long for DIAG_VER, echoed behind BAD_LEN. */
    EXPECT_TRUE(has_text(ok.out, "\nrsp data len(4097)\nrsp data: 0x15 0x1C 0x1C"));

    longest.push_back("0x1C");
    rlk_run refused = diag(0, 0, 1000, longest);
    EXPECT_TRUE(has_text(refused.out, "Invalid input parameter, data_len = 4097"));
    EXPECT_TRUE(has_text(refused.out, "tolvek_diag_comand_param_check fail"));
    EXPECT_TRUE(has_text(refused.out, "tolvek_diag_cmd_send fail\n" + error_note(1)));
    refused = diag(1, 1, 0, longest);
    EXPECT_TRUE(has_text(refused.out, "tolvek_diag_comand_input_check fail"));
    EXPECT_TRUE(has_text(refused.out, error_note(1)));

    /* Six words carry no command byte. */
    sim.ctl_ok("diag next-size 1");
    rlk_run few = sim.run_rlk({"5", "0", "0", "0", "0"});
    EXPECT_EQ(few.out, "\nnote: Too few inputs, Pls refer to the following cmd:\n");
    /* Nothing was sent: the next command still gets the one-byte answer. */
    rlk_run next = diag(0, 0, 1000, {"0x1C"});
    EXPECT_TRUE(has_text(next.out, "\nrsp data len(1)\nrsp data: 0x1C\n"));
}

TEST_F(CmnDiagTest, ParallelRlkProcessesEachReceiveTheirOwnReply)
{
    constexpr int k_processes = 8;
    std::vector<run_result> runs(k_processes);
    std::vector<std::thread> threads;
    for (int i = 0; i < k_processes; i++) {
        /* CONTROL echoes its mode: modes 0..6, and DIAG_VER for the eighth;
         * callback and DCI modes alternate. */
        std::vector<std::string> argv = {RLK_BINARY, "5", "0", std::to_string(i % 2), "0", "5000"};
        if (i < 7) {
            argv.insert(argv.end(), {"0x29", std::to_string(i), "0x00"});
        } else {
            argv.push_back("0x1C");
        }
        threads.emplace_back([this, i, argv, &runs] { runs[size_t(i)] = run_process(argv, sim.env()); });
    }
    for (std::thread &t : threads) t.join();
    for (int i = 0; i < k_processes; i++) {
        std::string want = i < 7 ? "\nrsp data len(3)\nrsp data: 0x29 0x0" + std::to_string(i) + " 0x00\n"
                                 : "\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n";
        EXPECT_TRUE(exited_cleanly(runs[size_t(i)].status)) << "process " << i << "\n" << runs[size_t(i)].err;
        EXPECT_TRUE(has_text(runs[size_t(i)].out, want)) << "process " << i << "\n" << runs[size_t(i)].out;
    }
    expect_nothing_left();
}

}  // namespace
