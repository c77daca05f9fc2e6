/* The four exchange modes of the tool's diag channel in this process,
 * against a private simulator: session counting, callback registration over
 * remote processors, time-out steps, early and late answers, DCI answers
 * in pieces, sender threads that leave nothing behind, and with-result
 * commands from several threads at once. */
#include <dirent.h>
#include <stdio.h>
#include <string.h>

#include <chrono>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "sim_fixture.h"
#include "tolvek_diag_internal.h"

namespace {

using bytes = std::vector<uint8_t>;

std::string captured()
{
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

bool has(const std::string &out, const std::string &line) { return out.find(line) != std::string::npos; }

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
    if (!d) return -1;
    while (struct dirent *e = readdir(d)) {
        if (e->d_name[0] == '.') continue;
        std::ifstream comm(std::string("/proc/self/task/") + e->d_name + "/comm");
        std::string name;
        std::getline(comm, name);
        if (name == TOLVEK_DIAG_THREAD_NAME) n++;
    }
    closedir(d);
    return n;
}

struct reply {
    int result = -1;
    bytes data;
    long long ms = 0;
};

class DiagSendModesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    reply send(int mode, bytes cmd, int time_out)
    {
        reply r;
        std::vector<unsigned char> buf(TOLVEK_DIAG_RSP_MAX_LEN);
        int len = int(buf.size());
        long long t0 = monotonic_ms();
        r.result = mode == TOLVEK_DIAG_MODE_CALLBACK
                       ? tolvek_diag_cmd_send_with_result_by_callback_mode(cmd.data(), int(cmd.size()), buf.data(),
                                                                           &len, time_out)
                       : tolvek_diag_cmd_send_with_result_by_dci_mode(cmd.data(), int(cmd.size()), buf.data(), &len,
                                                                      time_out);
        r.ms = monotonic_ms() - t0;
        if (r.result == 0) r.data.assign(buf.begin(), buf.begin() + len);
        return r;
    }
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
        const char *mask;
        const char *line;
        std::vector<int> remotes;
    } cases[] = {
        {"0", "remote_mask = [0]\n", {}},
        {"0x22", "remote_mask = [34] MPSS\n", {2, 6}},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(std::string("diag remote-mask ") + c.mask);
        testing::internal::CaptureStdout();
        tolvek_diag_init_with_result();
        tolvek_diag_register_callback(tolvek_diag_cmd_response_by_callback_no_handle);
        tolvek_diag_deinit_with_result();
        std::string out = captured();
        EXPECT_TRUE(has(out, std::string("register call back, g_diag_channel = [0]MSM, data_primary = 0, ") + c.line))
            << out;
        size_t registered = 0;
        for (size_t at = out.find("register remote call back"); at != std::string::npos;
             at = out.find("register remote call back", at + 1)) {
            registered++;
        }
        EXPECT_EQ(registered, c.remotes.size());
        for (int r : c.remotes) {
            EXPECT_TRUE(has(out, "register remote call back, data_remote = " + std::to_string(r) + "\n"));
        }
    }
}

TEST_F(DiagSendModesTest, CallbackTimeOutsOutsideTheRangeBecomeThirtySteps)
{
    const struct {
        int time_out;
        const char *line;
        bool invalid;
    } cases[] = {
        {0, "Command time = 30 * 100ms", true},
        {60001, "Command time = 30 * 100ms", true},
        {60000, "Command time = 600 * 100ms", false},
        {250, "Command time = 2 * 100ms", false},
    };
    for (const auto &c : cases) {
        testing::internal::CaptureStdout();
        reply r = send(TOLVEK_DIAG_MODE_CALLBACK, {0x1C}, c.time_out);
        std::string out = captured();
        EXPECT_EQ(r.result, 0);
        EXPECT_EQ(r.data, (bytes{0x1C, 0x08, 0x00}));
        EXPECT_TRUE(has(out, c.line)) << c.time_out;
        EXPECT_EQ(has(out, "Time out is invalid, set default"), c.invalid) << c.time_out;
    }
}

TEST_F(DiagSendModesTest, AnEarlyReplyEndsTheWaitAtOnceAndAMissingOneAtTheLimit)
{
    for (int mode : {TOLVEK_DIAG_MODE_CALLBACK, TOLVEK_DIAG_MODE_DCI}) {
        sim.ctl_ok("diag delay 0x1c 150");
        testing::internal::CaptureStdout();
        reply early = send(mode, {0x1C}, 3000);
        captured();
        EXPECT_EQ(early.result, 0);
        EXPECT_GE(early.ms, 150);
        EXPECT_LT(early.ms, 1500) << "the reply, not the 3000 ms limit, ended the wait";

        sim.ctl_ok("diag drop 0x1c");
        testing::internal::CaptureStdout();
        reply late = send(mode, {0x1C}, 300);
        std::string out = captured();
        EXPECT_EQ(late.result, 1);
        EXPECT_GE(late.ms, 300);
        EXPECT_LT(late.ms, 2000);
        EXPECT_TRUE(has(out, "stop waiting\n"));
        sim.ctl_ok("diag clear");
    }
}

TEST_F(DiagSendModesTest, DciRepliesInPiecesWakeOnTheShortPieceOrThroughTheWaitThread)
{
    sim.ctl_ok("diag next-size 4196");
    testing::internal::CaptureStdout();
    reply joined = send(TOLVEK_DIAG_MODE_DCI, {0x1C}, 3000);
    std::string out = captured();
    ASSERT_EQ(joined.result, 0);
    ASSERT_EQ(joined.data.size(), 4196u);
    EXPECT_EQ(joined.data[0], 0x1C);
    EXPECT_EQ(joined.data[4196 - 1], uint8_t(4196 - 3 - 1)) << "filler follows the real answer";
    EXPECT_LT(joined.ms, 1500);
    EXPECT_TRUE(has(out, "data_size = 4096\n"));
    EXPECT_TRUE(has(out, "data_size = 100\n"));
    EXPECT_TRUE(has(out, "Sending Asynchronous Command for ch:0"));
    EXPECT_EQ(dci_sequence_printed_by(out), std::set<std::string>{"tolvek_diag_cmd_send_with_result_by_dci_mode"});

    sim.ctl_ok("diag next-size 8192");
    testing::internal::CaptureStdout();
    reply full = send(TOLVEK_DIAG_MODE_DCI, {0x1C}, 300);
    out = captured();
    EXPECT_EQ(full.result, 0);
    EXPECT_EQ(full.data.size(), 8192u);
    EXPECT_GE(full.ms, 300) << "only the wait thread ends a wait on a 4096 multiple";
    EXPECT_TRUE(has(out, "stop waiting, receive success, length is times of 4096"));

    /* Callback mode takes the whole reply in one piece. */
    sim.ctl_ok("diag next-size 10240");
    testing::internal::CaptureStdout();
    reply whole = send(TOLVEK_DIAG_MODE_CALLBACK, {0x00}, 3000);
    captured();
    EXPECT_EQ(whole.result, 0);
    EXPECT_EQ(whole.data.size(), 10240u);
}

TEST_F(DiagSendModesTest, SenderThreadsLeaveNoThreadClientOrConnectionBehind)
{
    sim.ctl_ok("diag drop 0x1c");
    bytes cmd = {0x1C};
    for (int mode : {TOLVEK_DIAG_MODE_CALLBACK, TOLVEK_DIAG_MODE_DCI}) {
        testing::internal::CaptureStdout();
        int started = tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 1, mode);
        /* The sender names itself first thing. */
        int named = 0;
        for (int i = 0; i < 100 && (named = diag_threads()) == 0; i++) usleep(1000);
        int finished = tolvek_diag_cmd_send_without_result_wait_done(5000);
        std::string out = captured();
        ASSERT_EQ(started, 0);
        /* The library thread the sender starts inherits its name. */
        EXPECT_GE(named, 1) << "the sender is running, named";
        EXPECT_EQ(finished, 0);
        EXPECT_TRUE(has(out, "tolvek daig is created, conf = 0, diag_work_mode = " + std::to_string(mode)));
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
    int refused = tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 0, 0);
    EXPECT_TRUE(has(captured(), "tolvek_diag_comand_input_check fail"));
    EXPECT_EQ(refused, 1);
}

TEST_F(DiagSendModesTest, WithResultCommandsFromSeveralThreadsEachGetTheirOwnReply)
{
    constexpr int k_threads = 4;
    constexpr int k_rounds = 3;
    std::vector<int> failures(k_threads, 0);
    testing::internal::CaptureStdout();
    std::vector<std::thread> threads;
    for (int t = 0; t < k_threads; t++) {
        threads.emplace_back([this, t, &failures] {
            for (int i = 0; i < k_rounds; i++) {
                /* CONTROL echoes its mode, so each reply names its command. */
                uint8_t mode_byte = uint8_t((t + i) % 7);
                reply r = send((t + i) % 2, {0x29, mode_byte, 0x00}, 3000);
                if (r.result != 0 || r.data != bytes({0x29, mode_byte, 0x00})) failures[size_t(t)]++;
            }
        });
    }
    for (std::thread &th : threads) th.join();
    captured();
    for (int t = 0; t < k_threads; t++) EXPECT_EQ(failures[size_t(t)], 0) << "thread " << t;
}

}  // namespace

namespace {

TEST(DiagSendNoSimulator, BothWithResultModesFailAtOnceAndReleaseWhatTheyOpened)
{
    const char *before = getenv("RLK_MODEMD_SOCKET");
    std::string saved = before ? before : "";
    setenv("RLK_MODEMD_SOCKET", "/nonexistent/rlk-test/modemd.sock", 1);
    unsigned char cmd[1] = {0x1C};
    unsigned char reply[16];
    int len = sizeof(reply);

    testing::internal::CaptureStdout();
    long long t0 = monotonic_ms();
    int callback = tolvek_diag_cmd_send_with_result_by_callback_mode(cmd, 1, reply, &len, 3000);
    int dci = tolvek_diag_cmd_send_with_result_by_dci_mode(cmd, 1, reply, &len, 3000);
    long long ms = monotonic_ms() - t0;
    std::string out = captured();

    EXPECT_EQ(callback, 1);
    EXPECT_EQ(dci, 1);
    EXPECT_LT(ms, 1000) << "no wait without a request in flight";
    EXPECT_TRUE(has(out, "LSM init failed"));
    EXPECT_TRUE(has(out, "ret_send = -1, will wait callback"));
    EXPECT_TRUE(has(out, "Fail to send diag cmd"));
    EXPECT_TRUE(has(out, "Could not register with DCI, err: 1006, errno: "));
    EXPECT_FALSE(has(out, "Releasing DCI connection")) << "no client to release";
    EXPECT_EQ(dci_sequence_printed_by(out), std::set<std::string>{"tolvek_diag_cmd_send_with_result_by_dci_mode"});
    EXPECT_EQ(g_diag_init_status, 0);
    if (before) {
        setenv("RLK_MODEMD_SOCKET", saved.c_str(), 1);
    } else {
        unsetenv("RLK_MODEMD_SOCKET");
    }
}

}  // namespace
