/* The host diag library against a private simulator: callback mode on the
 * local and remote processors, DCI registration codes, asynchronous
 * responses and their pieces, stream records and the data signal. */
#include <signal.h>

#include <atomic>

#include <gtest/gtest.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "diag_test_util.h"
#include "sim_fixture.h"

namespace {

using namespace diag_test;

constexpr size_t k_dci_buf = 16384;
const char k_status_idle[] = "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=0";

/* What the stream callbacks got; emptied before each test, like g_answers. */
call_box logs, events;

void on_log(unsigned char *ptr, int len) { logs.add(ptr, len, nullptr); }
void on_event(unsigned char *ptr, int len) { events.add(ptr, len, nullptr); }

class DiagHostTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (call_box *b : {&g_answers, &logs, &events}) b->take(0, 0);
        ASSERT_TRUE(sim.start());
        ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE);
    }
    void TearDown() override
    {
        if (client_id) diag_release_dci_client(&client_id);
        Diag_LSM_DeInit();
    }
    void register_dci()
    {
        diag_dci_peripherals list = DIAG_CON_MPSS;
        ASSERT_EQ(diag_register_dci_client(&client_id, &list, DIAG_PROC_MSM, &os_signal), DIAG_DCI_NO_ERROR);
        ASSERT_GT(client_id, 0);
    }
    int send_dci(bytes cmd, void *data = nullptr, int rsp_len = int(k_dci_buf))
    {
        return diag_send_dci_async_req(client_id, cmd.data(), int(cmd.size()), rsp, rsp_len, on_dci_answer, data);
    }
    sim_instance sim;
    int client_id = 0;
    int os_signal = 18;
    int marker = 0;
    unsigned char rsp[k_dci_buf];
};

/* Callback mode: argument and mode checks, the local and remote processors
 * answering through their own callbacks on a library thread, and a lost
 * link that ends the session. */
TEST_F(DiagHostTest, CallbackModeOnTheLocalAndRemoteProcessorsUntilALostLinkEndsTheSession)
{
    uint16 mask = 0xFFFF;
    EXPECT_EQ(diag_has_remote_device(&mask), 1);
    EXPECT_EQ(mask, 0);
    int local = 0, mdm = 1, fifth = 5;
    diag_register_callback(on_answer, &local);
    unsigned char cmd[] = {0x1c}, unknown[] = {0xf0, 0x7e, 0x7d}, esn[] = {0x01};
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1) << "not in callback mode yet";
    diag_switch_logging(CALLBACK_MODE, nullptr);
    bytes huge(k_dci_buf + 1, 0);
    /* MDM: no remote processor yet. */
    for (int proc : {-1, int(NUM_PROC), int(MDM)}) EXPECT_EQ(diag_callback_send_data(proc, cmd, 1), -1) << proc;
    EXPECT_EQ(diag_callback_send_data(MSM, nullptr, 1), -1);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 0), -1);
    EXPECT_EQ(diag_callback_send_data(MSM, huge.data(), int(huge.size())), -1);

    ASSERT_EQ(diag_callback_send_data(MSM, cmd, 1), 0);
    ASSERT_EQ(diag_callback_send_data(MSM, unknown, 3), 0);
    sim.ctl_ok("diag remote-mask 0x22");
    EXPECT_EQ(diag_has_remote_device(&mask), 1);
    EXPECT_EQ(mask, 0x22);
    diag_register_remote_callback(on_answer, MDM, &mdm);
    diag_register_remote_callback(on_answer, 5, &fifth);
    ASSERT_EQ(diag_callback_send_data(5, esn, 1), 0);
    ASSERT_EQ(diag_callback_send_data(MDM, esn, 1), 0);
    EXPECT_EQ(diag_callback_send_data(MDM_2, esn, 1), -1) << "bit 2 is not in 0x22";
    std::vector<bytes> answers;
    std::vector<void *> contexts;
    for (const call_box::call &c : g_answers.wait(4)) {
        answers.push_back(c.data);
        contexts.push_back(c.ctx);
        EXPECT_NE(c.thread, std::this_thread::get_id());
    }
    /* BAD_CMD echoes the request; every processor has the simulator's ESN. */
    const bytes esn_answer = {0x01, 0xc3, 0xb2, 0xa1, 0x80};
    EXPECT_EQ(answers, (std::vector<bytes>{{0x1c, 0x08, 0x00}, {0x13, 0xf0, 0x7e, 0x7d}, esn_answer, esn_answer}));
    EXPECT_EQ(contexts, (std::vector<void *>{&local, &local, &fifth, &mdm}));
    EXPECT_EQ(sim.ctl_ok("diag last 4"), "cmd 0 1c\ncmd 0 f07e7d\ncmd 5 01\ncmd 1 01");

    /* A lost link ends the session. */
    sim.stop();
    EXPECT_TRUE(poll_until([&] { return diag_callback_send_data(MSM, cmd, 1) == -1; }, 3000));
    EXPECT_EQ(Diag_LSM_DeInit(), FALSE) << "the lost link already ended the session";
    ASSERT_TRUE(sim.restart());
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1) << "the next session starts out of callback mode";
}

/* A DCI callback may release its own client and a callback may close the
 * session, both from the library thread, without waiting for it. */
TEST_F(DiagHostTest, CallbacksMayReleaseTheirClientAndCloseTheSessionFromTheLibraryThread)
{
    register_dci();
    static int *s_client = nullptr;
    static std::atomic<int> s_released{0}, s_mask_rc{0}, s_closed{-1};
    s_client = &client_id;
    unsigned char cmd[] = {0x1c};
    long long start = monotonic_ms();
    auto release = [](unsigned char *p, int len, void *data) {
        uint16 mask = 0;
        s_mask_rc = diag_has_remote_device(&mask);
        s_released = diag_release_dci_client(s_client);
        on_dci_answer(p, len, data);
    };
    ASSERT_EQ(diag_send_dci_async_req(client_id, cmd, 1, rsp, int(sizeof(rsp)), release, &marker), DIAG_DCI_NO_ERROR);
    ASSERT_EQ(g_answers.take(1, 3000).size(), 1u);
    EXPECT_EQ(s_released.load(), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(s_mask_rc.load(), 1) << "the mask last learnt";
    EXPECT_EQ(client_id, 0);
    EXPECT_LT(monotonic_ms() - start, 1000) << "no session op waited for its own thread";
    poll_until([&] { return sim.ctl_ok("diag status") == k_status_idle; }, 3000);
    EXPECT_EQ(sim.ctl_ok("diag status"), k_status_idle);

    diag_register_callback(
        [](unsigned char *p, int len, void *ctx) {
            s_closed = Diag_LSM_DeInit();
            return on_answer(p, len, ctx);
        },
        nullptr);
    diag_switch_logging(CALLBACK_MODE, nullptr);
    ASSERT_EQ(diag_callback_send_data(MSM, cmd, 1), 0);
    ASSERT_EQ(g_answers.wait(1).size(), 1u);
    EXPECT_EQ(s_closed.load(), TRUE);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1);
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE) << "a new session opens after it";
}

TEST_F(DiagHostTest, DciRegistrationCodesAndAClientThatOpensTheLinkItself)
{
    int id = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    EXPECT_EQ(diag_register_dci_client(nullptr, &list, DIAG_PROC_MSM, &os_signal), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MSM, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, 2, &os_signal), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MDM, &os_signal), DIAG_DCI_NOT_SUPPORTED) << "no MDM";
    register_dci();
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MSM, &os_signal), DIAG_DCI_DUP_CLIENT);
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=1");

    sim.ctl_ok("diag dci-support 0x1");
    EXPECT_EQ(diag_get_dci_support_list_proc(DIAG_PROC_MSM, &list), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(list, DIAG_CON_APSS) << "MPSS down";
    EXPECT_EQ(diag_get_dci_support_list_proc(DIAG_PROC_MSM, nullptr), DIAG_DCI_PARAM_FAIL);

    int released = client_id;
    unsigned char cmd[] = {0x1c};
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(client_id, 0);
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_REG);
    EXPECT_EQ(diag_register_dci_signal_data(released, SIGRTMIN + 30), DIAG_DCI_NO_REG);
    EXPECT_EQ(diag_register_dci_stream_proc(released, on_log, on_event), DIAG_DCI_NO_REG);
    EXPECT_EQ(diag_send_dci_async_req(released, cmd, 1, rsp, 10, on_dci_answer, nullptr), DIAG_DCI_NO_REG);
    EXPECT_EQ(sim.ctl_ok("diag status"), k_status_idle);

    /* A client opens the link itself, and is released after the session
     * closes. */
    ASSERT_EQ(Diag_LSM_DeInit(), TRUE);
    register_dci();
    ASSERT_EQ(send_dci({0x1c}), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(g_answers.take(1, 3000), (std::vector<bytes>{{0x1c, 0x08, 0x00}}));
    ASSERT_EQ(Diag_LSM_DeInit(), TRUE);
    EXPECT_EQ(send_dci({0x1c}), DIAG_DCI_SEND_DATA_FAIL);
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(client_id, 0);
}

std::atomic<int> g_signals{0};
void count_signal(int) { g_signals++; }

/* Argument checks, then answers with the caller's data pointer on a library
 * thread, copied into its buffer, in pieces of at most 4096 bytes (or of
 * the piece size the simulator is set to); then log and event records. */
TEST_F(DiagHostTest, AsyncResponsesInPiecesThenStreamRecordsRaisingOnlyAHandledSignal)
{
    register_dci();
    unsigned char cmd[] = {0x7c};
    EXPECT_EQ(diag_send_dci_async_req(client_id, nullptr, 1, rsp, 10, on_dci_answer, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 0, rsp, 10, on_dci_answer, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 1, nullptr, 10, on_dci_answer, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 1, rsp, 10, nullptr, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(send_dci(bytes(k_dci_buf + 1, 0x4b), nullptr, 10), DIAG_DCI_HUGE_PACKET);

    ASSERT_EQ(send_dci({0x7c}, &marker), DIAG_DCI_NO_ERROR);
    const bytes build_id = parse_bytes("7c 02 00*4 0b 0a 0d f0 00 00 'MPSS.RLK.1.0-00001-SIM' 00 'rlk-modemd' 00");
    EXPECT_EQ(g_answers.take(1, 3000), std::vector<bytes>{build_id});
    EXPECT_EQ(bytes(rsp, rsp + build_id.size()), build_id) << "copied into the caller's buffer";
    EXPECT_EQ(sim.ctl_ok("diag last 1"), "dci 0 7c");

    for (const std::vector<std::string> &row : data_rows(__FILE__, "dci_pieces.data", '|')) {
        SCOPED_TRACE(row[0] + " | " + row[1]);
        if (row[1] != "-") sim.ctl_ok(row[1]);
        bytes reply(std::stoul(row[0]));
        for (size_t i = 0; i < reply.size(); i++) reply[i] = uint8_t(i * 7 + 3);
        reply[0] = 0x4b;
        sim.ctl_ok("diag reply 0x4b " + hex(reply));
        ASSERT_EQ(send_dci({0x4b, 0x12, 0x00, 0x00}, &marker), DIAG_DCI_NO_ERROR);
        std::string sizes;
        bytes joined;
        for (const call_box::call &p : g_answers.wait(words_of(row[2]).size())) {
            sizes += (sizes.empty() ? "" : " ") + std::to_string(p.data.size());
            EXPECT_EQ(p.ctx, &marker);
            EXPECT_NE(p.thread, std::this_thread::get_id());
            joined.insert(joined.end(), p.data.begin(), p.data.end());
        }
        g_answers.take(0, 0);
        EXPECT_EQ(sizes, row[2]);
        EXPECT_EQ(joined, reply);
    }

    /* Stream records reach their callbacks and raise only a handled
     * signal. */
    ASSERT_EQ(diag_register_dci_stream_proc(client_id, on_log, on_event), DIAG_DCI_NO_ERROR);
    /* No handler: the signal must not be raised (its default kills). */
    ASSERT_EQ(diag_register_dci_signal_data(client_id, SIGRTMIN + 30), DIAG_DCI_NO_ERROR);
    const bytes log = {0x14, 0x00, 0x6d, 0xb1, 1, 2, 3, 4, 5, 6, 7, 8, 0x7e, 0x7d, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(sim.ctl("diag log " + hex(log)), "ok 1");
    std::vector<call_box::call> records = logs.wait(1);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].data, log);
    EXPECT_NE(records[0].thread, std::this_thread::get_id());

    g_signals = 0;
    struct sigaction sa = {}, old = {};
    sa.sa_handler = count_signal;
    ASSERT_EQ(sigaction(SIGRTMIN + 30, &sa, &old), 0);
    const bytes event = {0x01, 0x00, 0x12, 0x34};
    EXPECT_EQ(sim.ctl("diag event " + hex(event)), "ok 1");
    EXPECT_EQ(events.take(1, 3000), std::vector<bytes>{event});
    EXPECT_EQ(g_signals.load(), 1) << "raised once, before the callback, on the library thread";
    sigaction(SIGRTMIN + 30, &old, nullptr);
    EXPECT_EQ(logs.take(1, 0).size(), 1u);

    ASSERT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(sim.ctl("diag log " + hex(log)), "error no DCI client");
}

}  // namespace
