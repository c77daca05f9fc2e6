/* The exchange modes of the tool's diag channel in this process, against a
 * private simulator: session counting, callback registration over remote
 * processors, time-out steps, early, late and missing answers, DCI answers
 * in pieces, sender threads that leave nothing behind, and with-result
 * commands from several threads at once. */
#include <dirent.h>

#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "diag_test_util.h"
#include "sim_fixture.h"
#include "tolvek_diag_internal.h"

namespace {

using diag_test::bytes;
using diag_test::captured;
using diag_test::expect_all;
using diag_test::has;

/* The function names of the console lines of the DCI registration
 * sequence (every one names channel 0 as "ch:0" or "ch0:"). */
std::set<std::string> dci_sequence_printed_by(const std::string &out)
{
    std::set<std::string> names;
    std::istringstream lines(out);
    for (std::string l; std::getline(lines, l);) {
        if (l.rfind("RIL[", 0) == 0 && (has(l, "ch:0") || has(l, "ch0:"))) names.insert(l.substr(4, l.find(':') - 4));
    }
    return names;
}

/* Threads of this process named "TOLV DIAG". */
int diag_threads()
{
    int n = 0;
    DIR *d = opendir("/proc/self/task");
    while (struct dirent *e = d ? readdir(d) : nullptr) {
        std::ifstream comm(std::string("/proc/self/task/") + e->d_name + "/comm");
        std::string name;
        if (e->d_name[0] != '.' && std::getline(comm, name) && name == TOLVEK_DIAG_THREAD_NAME) n++;
    }
    if (d) closedir(d);
    return n;
}

struct reply {
    int result = -1;
    bytes data;
    long long ms = 0;
};

reply send(int mode, bytes cmd, int time_out)
{
    reply r;
    std::vector<unsigned char> buf(TOLVEK_DIAG_RSP_MAX_LEN);
    int len = int(buf.size());
    long long t0 = monotonic_ms();
    r.result = mode == TOLVEK_DIAG_MODE_CALLBACK
                   ? tolvek_diag_cmd_send_with_result_by_callback_mode(cmd.data(), int(cmd.size()), buf.data(), &len,
                                                                       time_out)
                   : tolvek_diag_cmd_send_with_result_by_dci_mode(cmd.data(), int(cmd.size()), buf.data(), &len,
                                                                  time_out);
    r.ms = monotonic_ms() - t0;
    if (r.result == 0) r.data.assign(buf.begin(), buf.begin() + len);
    return r;
}

class DiagSendModesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    sim_instance sim;
};

TEST_F(DiagSendModesTest, OpeningTwiceCountsAndOneCloseEndsTheSession)
{
    testing::internal::CaptureStdout();
    tolvek_diag_init_with_result();
    EXPECT_EQ(g_diag_init_status, 1);
    tolvek_diag_init_with_result();
    EXPECT_EQ(g_diag_init_status, 2);
    tolvek_diag_deinit_with_result();
    EXPECT_EQ(g_diag_init_status, 0);
    std::string out = captured();
    EXPECT_TRUE(has(out, "diag init done, g_diag_init_status = 1"));
    EXPECT_FALSE(has(out, "g_diag_init_status = 2"));
}

TEST_F(DiagSendModesTest, RemoteMasksRegisterOneCallbackPerSetBit)
{
    const struct {
        const char *mask, *line, *remotes;
    } cases[] = {
        {"0", "remote_mask = [0]\n", ""},
        {"0x22", "remote_mask = [34] MPSS\n",
         "register remote call back, data_remote = 2\nregister remote call back, data_remote = 6\n"},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(std::string("diag remote-mask ") + c.mask);
        testing::internal::CaptureStdout();
        tolvek_diag_init_with_result();
        tolvek_diag_register_callback(tolvek_diag_cmd_response_by_callback_no_handle);
        tolvek_diag_deinit_with_result();
        std::string out = captured();
        expect_all(out, {std::string("register call back, g_diag_channel = [0]MSM, data_primary = 0, ") + c.line});
        std::string registered;
        std::istringstream lines(out);
        for (std::string l; std::getline(lines, l);) {
            if (has(l, "register remote call back")) registered += l.substr(l.find("register remote")) + "\n";
        }
        EXPECT_EQ(registered, c.remotes);
    }
}

/* Time-outs outside 1..60000 ms become thirty 100 ms steps; an early answer
 * ends the wait at once, a missing one at the limit; a DCI answer in
 * pieces wakes the caller on its short piece, or through the wait thread
 * when it is a multiple of 4096; callback mode takes a long answer whole. */
TEST_F(DiagSendModesTest, TimeOutStepsEarlyLateAndPiecedAnswers)
{
    const int cb = TOLVEK_DIAG_MODE_CALLBACK, dci = TOLVEK_DIAG_MODE_DCI;
    const std::string invalid = "Time out is invalid, set default";
    const struct {
        int mode;
        const char *setup;
        int time_out, result;
        size_t size;
        long long min_ms, max_ms; /* max 0: not timed */
        std::vector<std::string> lines, absent;
    } cases[] = {
        {cb, "", 0, 0, 3, 0, 0, {"Command time = 30 * 100ms", invalid}, {}},
        {cb, "", 60001, 0, 3, 0, 0, {"Command time = 30 * 100ms", invalid}, {}},
        {cb, "", 60000, 0, 3, 0, 0, {"Command time = 600 * 100ms"}, {invalid}},
        {cb, "", 250, 0, 3, 0, 0, {"Command time = 2 * 100ms"}, {invalid}},
        {cb, "diag delay 0x1c 150", 3000, 0, 3, 150, 1500, {}, {}},
        {dci, "diag delay 0x1c 150", 3000, 0, 3, 150, 1500, {}, {}},
        {cb, "diag drop 0x1c", 300, 1, 0, 300, 2000, {"stop waiting\n"}, {}},
        {dci, "diag drop 0x1c", 300, 1, 0, 300, 2000, {"stop waiting\n"}, {}},
        {dci, "diag next-size 4196", 3000, 0, 4196, 0, 1500,
         {"data_size = 4096\n", "data_size = 100\n", "Sending Asynchronous Command for ch:0"}, {"stop waiting"}},
        {dci, "diag next-size 8192", 300, 0, 8192, 300, 0, {"stop waiting, receive success, length is times of 4096"},
         {}},
        {cb, "diag next-size 10240", 3000, 0, 10240, 0, 0, {}, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.mode) + " " + c.setup + " " + std::to_string(c.time_out));
        if (*c.setup) sim.ctl_ok(c.setup);
        testing::internal::CaptureStdout();
        reply r = send(c.mode, {0x1C}, c.time_out);
        std::string out = captured();
        sim.ctl_ok("diag clear");
        EXPECT_EQ(r.result, c.result);
        ASSERT_EQ(r.data.size(), c.size);
        if (c.size == 3) {
            EXPECT_EQ(r.data, (bytes{0x1C, 0x08, 0x00}));
        }
        EXPECT_GE(r.ms, c.min_ms);
        EXPECT_LT(r.ms, c.max_ms ? c.max_ms : 60000);
        expect_all(out, c.lines);
        for (const std::string &a : c.absent) EXPECT_FALSE(has(out, a)) << a;
        if (c.size == 4196) {
            EXPECT_EQ(r.data[0], 0x1C);
            EXPECT_EQ(r.data[4196 - 1], uint8_t(4196 - 3 - 1)) << "filler follows the real answer";
            EXPECT_EQ(dci_sequence_printed_by(out),
                      std::set<std::string>{"tolvek_diag_cmd_send_with_result_by_dci_mode"});
        }
    }
}

TEST_F(DiagSendModesTest, SenderThreadsLeaveNoThreadClientOrConnectionBehind)
{
    sim.ctl_ok("diag drop 0x1c");
    bytes cmd = {0x1C};
    for (int mode : {TOLVEK_DIAG_MODE_CALLBACK, TOLVEK_DIAG_MODE_DCI}) {
        testing::internal::CaptureStdout();
        int started = tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 1, mode);
        /* The sender names itself first thing; the library thread it
         * starts inherits the name. */
        int named = 0;
        for (int i = 0; i < 100 && (named = diag_threads()) == 0; i++) usleep(1000);
        int finished = tolvek_diag_cmd_send_without_result_wait_done(5000);
        std::string out = captured();
        ASSERT_EQ(started, 0);
        EXPECT_GE(named, 1) << "the sender is running, named";
        EXPECT_EQ(finished, 0);
        expect_all(out, {"tolvek daig is created, conf = 0, diag_work_mode = " + std::to_string(mode)});
        EXPECT_FALSE(has(out, "_no_handle:")) << "the dropped reply printed nothing";
        if (mode == TOLVEK_DIAG_MODE_DCI) {
            EXPECT_EQ(dci_sequence_printed_by(out),
                      std::set<std::string>{"tolvek_diag_cmd_send_without_result_by_dci_mode_thread_proc"});
        }
        /* The thread may still be returning from its procedure. */
        for (int i = 0; i < 100 && diag_threads() != 0; i++) usleep(1000);
        EXPECT_EQ(diag_threads(), 0);
        EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=0 dci_clients=0");
    }
    /* A command the input check refuses starts nothing. */
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 0, 0), 1);
    expect_all(captured(), {"tolvek_diag_comand_input_check fail"});
}

TEST_F(DiagSendModesTest, WithResultCommandsFromSeveralThreadsEachGetTheirOwnReply)
{
    constexpr int k_threads = 4;
    std::vector<int> failures(k_threads, 0);
    testing::internal::CaptureStdout();
    std::vector<std::thread> threads;
    for (int t = 0; t < k_threads; t++) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < 3; i++) {
                /* CONTROL echoes its mode, so each reply names its command. */
                bytes cmd = {0x29, uint8_t((t + i) % 7), 0x00};
                reply r = send((t + i) % 2, cmd, 3000);
                if (r.result != 0 || r.data != cmd) failures[size_t(t)]++;
            }
        });
    }
    for (std::thread &th : threads) th.join();
    captured();
    EXPECT_EQ(failures, std::vector<int>(k_threads, 0));
}

TEST(DiagSendNoSimulator, BothWithResultModesFailAtOnceAndReleaseWhatTheyOpened)
{
    setenv("RLK_MODEMD_SOCKET", "/nonexistent/rlk-test/modemd.sock", 1); /* no simulator */
    testing::internal::CaptureStdout();
    long long t0 = monotonic_ms();
    reply callback = send(TOLVEK_DIAG_MODE_CALLBACK, {0x1C}, 3000);
    reply dci = send(TOLVEK_DIAG_MODE_DCI, {0x1C}, 3000);
    long long ms = monotonic_ms() - t0;
    std::string out = captured();
    EXPECT_EQ(callback.result, 1);
    EXPECT_EQ(dci.result, 1);
    EXPECT_LT(ms, 1000) << "no wait without a request in flight";
    expect_all(out, {"LSM init failed", "ret_send = -1, will wait callback", "Fail to send diag cmd",
                     "Could not register with DCI, err: 1006, errno: "});
    EXPECT_FALSE(has(out, "Releasing DCI connection")) << "no client to release";
    EXPECT_EQ(dci_sequence_printed_by(out), std::set<std::string>{"tolvek_diag_cmd_send_with_result_by_dci_mode"});
    EXPECT_EQ(g_diag_init_status, 0);
}

}  // namespace
