/* The exchange modes of the tool's diag channel in this process, against a
 * private simulator: session counting, callback registration over remote
 * processors, time-out steps, early, late and missing answers, DCI answers
 * in pieces, sender threads that leave nothing behind, and with-result
 * commands from several threads at once. */
#include <dirent.h>

#include <fstream>

#include <gtest/gtest.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "diag_test_util.h"
#include "golden.h"
#include "sim_fixture.h"
#include "tolvek_diag_internal.h"

namespace {

using namespace diag_test;

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
    auto with_result = mode == TOLVEK_DIAG_MODE_CALLBACK ? tolvek_diag_cmd_send_with_result_by_callback_mode
                                                         : tolvek_diag_cmd_send_with_result_by_dci_mode;
    r.result = with_result(cmd.data(), int(cmd.size()), buf.data(), &len, time_out);
    r.ms = monotonic_ms() - t0;
    if (r.result == 0) r.data.assign(buf.begin(), buf.begin() + len);
    return r;
}

class DiagSendModesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    sim_instance sim;
};

/* Opening twice counts and one close ends the session; a callback is
 * registered for each bit of the remote mask.  Then the rows of
 * send_timeouts.data: the answer is the simulator's 1C 08 00, or that
 * followed by filler up to the size asked for; a console text must end a
 * line. */
TEST_F(DiagSendModesTest, SessionCountThenTimeOutStepsEarlyLateAndPiecedAnswers)
{
    testing::internal::CaptureStdout();
    for (const char *mask : {"0x22", "0"}) {
        sim.ctl_ok(std::string("diag remote-mask ") + mask);
        for (int i = 0; i < 2; i++) {
            tolvek_diag_init_with_result();
            printf("sessions %d\n", g_diag_init_status);
        }
        tolvek_diag_register_callback(tolvek_diag_cmd_response_by_callback_no_handle);
        tolvek_diag_deinit_with_result();
        printf("sessions %d\n", g_diag_init_status);
    }
    expect_golden(captured(), __FILE__, "send_sessions.golden");

    for (const std::vector<std::string> &col : data_rows(__FILE__, "send_timeouts.data", '|')) {
        SCOPED_TRACE(col[0] + " | " + col[1] + " | " + col[2]);
        ASSERT_EQ(col.size(), 8u);
        if (col[1] != "-") sim.ctl_ok(col[1]);
        testing::internal::CaptureStdout();
        reply r = send(std::stoi(col[0]), {0x1C}, std::stoi(col[2]));
        std::string out = captured();
        sim.ctl_ok("diag clear");
        EXPECT_EQ(r.result, std::stoi(col[3]));
        ASSERT_EQ(r.data.size(), std::stoul(col[4]));
        if (!r.data.empty()) {
            EXPECT_EQ(bytes(r.data.begin(), r.data.begin() + 3), (bytes{0x1C, 0x08, 0x00}));
            EXPECT_EQ(r.data.back(), r.data.size() > 3 ? uint8_t(r.data.size() - 4) : 0) << "filler after the answer";
        }
        EXPECT_GE(r.ms, std::stoll(col[5]));
        EXPECT_LT(r.ms, std::stoll(col[6]) ? std::stoll(col[6]) : 60000);
        for (const std::string &t : fields(col[7], ';')) {
            bool absent = t[0] == '!';
            EXPECT_TRUE(t.empty() || has(out, absent ? t.substr(1) : t + "\n") != absent) << t;
        }
    }
}

TEST_F(DiagSendModesTest, SenderThreadsLeaveNothingBehindAndWithResultThreadsEachGetTheirOwnReply)
{
    sim.ctl_ok("diag drop 0x1c");
    bytes cmd = {0x1C};
    for (int mode : {TOLVEK_DIAG_MODE_CALLBACK, TOLVEK_DIAG_MODE_DCI}) {
        testing::internal::CaptureStdout();
        int started = tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 1, mode);
        /* The sender names itself first thing; the library thread it
         * starts inherits the name. */
        bool named = poll_until([] { return diag_threads() > 0; }, 100);
        int finished = tolvek_diag_cmd_send_without_result_wait_done(5000);
        std::string out = captured();
        ASSERT_EQ(started, 0);
        EXPECT_TRUE(named) << "the sender is running, named";
        EXPECT_EQ(finished, 0);
        expect_all(out, {"tolvek daig is created, conf = 0, diag_work_mode = " + std::to_string(mode)});
        EXPECT_FALSE(has(out, "_no_handle]")) << "the dropped reply printed nothing";
        if (mode == TOLVEK_DIAG_MODE_DCI) {
            const std::string proc = "RIL[tolvek_diag_cmd_send_without_result_by_dci_mode_thread_proc]: ";
            expect_all(out, {proc + "DCI Status on Processors for ch0:\n",
                             proc + "Sending Asynchronous Command for ch:0\n"});
        }
        /* The thread may still be returning from its procedure. */
        EXPECT_TRUE(poll_until([] { return diag_threads() == 0; }, 100));
        EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=0 dci_clients=0");
    }
    /* A command the input check refuses starts nothing. */
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_cmd_send_without_result_start_thread(cmd.data(), 0, 0), 1);
    expect_all(captured(), {"tolvek_diag_comand_input_check fail"});

    /* With-result commands from several threads at once each get their
     * own reply. */
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

/* Without a simulator the library has no session to close and no remote
 * processor, and both with-result modes fail at once, print why (the
 * library's LSM init and DCI registration codes), and release what they
 * opened (no DCI client to release). */
TEST(DiagSendNoSimulator, BothWithResultModesFailAtOnceAndReleaseWhatTheyOpened)
{
    setenv("RLK_MODEMD_SOCKET", "/nonexistent/rlk-test/modemd.sock", 1); /* no simulator */
    EXPECT_EQ(Diag_LSM_DeInit(), FALSE);
    uint16 mask = 7;
    EXPECT_EQ(diag_has_remote_device(&mask), 0);
    EXPECT_EQ(mask, 0);

    testing::internal::CaptureStdout();
    reply callback = send(TOLVEK_DIAG_MODE_CALLBACK, {0x1C}, 3000);
    reply dci = send(TOLVEK_DIAG_MODE_DCI, {0x1C}, 3000);
    expect_golden(captured(), __FILE__, "send_no_simulator.golden");
    EXPECT_EQ(std::make_pair(callback.result, dci.result), std::make_pair(1, 1));
    EXPECT_LT(callback.ms + dci.ms, 1000) << "no wait without a request in flight";
    EXPECT_EQ(g_diag_init_status, 0);
}

}  // namespace
