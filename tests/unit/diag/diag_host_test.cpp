/* The host diag library against a private simulator: callback mode on the
 * local and remote processors, DCI registration codes, asynchronous
 * responses and their pieces, stream records and the data signal. */
#include <signal.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "sim_fixture.h"

namespace {

using bytes = std::vector<uint8_t>;

constexpr int k_wait_ms = 3000;
constexpr size_t k_dci_buf = 16384;

/* What the callbacks saw, in order. */
struct call_box {
    struct call {
        bytes data;
        void *ctx;
        std::thread::id thread;
    };
    std::mutex mu;
    std::condition_variable cv;
    std::vector<call> calls;

    void add(const unsigned char *p, int len, void *ctx)
    {
        std::lock_guard<std::mutex> lk(mu);
        calls.push_back({bytes(p, p + len), ctx, std::this_thread::get_id()});
        cv.notify_all();
    }
    bool wait_count(size_t n, int ms = k_wait_ms)
    {
        std::unique_lock<std::mutex> lk(mu);
        return cv.wait_for(lk, std::chrono::milliseconds(ms), [&] { return calls.size() >= n; });
    }
    size_t count()
    {
        std::lock_guard<std::mutex> lk(mu);
        return calls.size();
    }
};

call_box *g_box = nullptr;

int on_response(unsigned char *ptr, int len, void *ctx)
{
    g_box->add(ptr, len, ctx);
    return 0;
}

void on_dci_response(unsigned char *ptr, int len, void *data) { g_box->add(ptr, len, data); }

call_box *g_logs = nullptr;
call_box *g_events = nullptr;
void on_log(unsigned char *ptr, int len) { g_logs->add(ptr, len, nullptr); }
void on_event(unsigned char *ptr, int len) { g_events->add(ptr, len, nullptr); }

std::string hex_of(const bytes &b)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (uint8_t v : b) {
        s += d[v >> 4];
        s += d[v & 15];
    }
    return s;
}

bytes pattern(size_t n)
{
    bytes b(n);
    for (size_t i = 0; i < n; i++) b[i] = uint8_t(i * 7 + 3);
    b[0] = 0x4b;
    return b;
}

class DiagHostTest : public testing::Test {
protected:
    void SetUp() override
    {
        g_box = &box;
        g_logs = &logs;
        g_events = &events;
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

    /* Sends `cmd` as a DCI request and waits for `pieces` callbacks. */
    void dci_exchange(const bytes &cmd, size_t pieces)
    {
        bytes req = cmd;
        ASSERT_EQ(diag_send_dci_async_req(client_id, req.data(), int(req.size()), rsp, int(sizeof(rsp)),
                                          on_dci_response, &marker),
                  DIAG_DCI_NO_ERROR);
        ASSERT_TRUE(box.wait_count(pieces));
    }

    sim_instance sim;
    call_box box, logs, events;
    int client_id = 0;
    int os_signal = 18;
    int marker = 0;
    unsigned char rsp[k_dci_buf];
};

TEST_F(DiagHostTest, CallbackModeResponseReachesTheLocalCallbackOnALibraryThread)
{
    int context = 0;
    diag_register_callback(on_response, &context);
    diag_switch_logging(CALLBACK_MODE, nullptr);
    unsigned char cmd[] = {0x1c};
    ASSERT_EQ(diag_callback_send_data(MSM, cmd, sizeof(cmd)), 0);
    ASSERT_TRUE(box.wait_count(1));
    EXPECT_EQ(box.calls[0].data, (bytes{0x1c, 0x08, 0x00}));
    EXPECT_EQ(box.calls[0].ctx, &context);
    EXPECT_NE(box.calls[0].thread, std::this_thread::get_id());
    EXPECT_EQ(sim.ctl_ok("diag last 1"), "cmd 0 1c");

    unsigned char unknown[] = {0xf0, 0x7e, 0x7d};
    ASSERT_EQ(diag_callback_send_data(MSM, unknown, sizeof(unknown)), 0);
    ASSERT_TRUE(box.wait_count(2));
    EXPECT_EQ(box.calls[1].data, (bytes{0x13, 0xf0, 0x7e, 0x7d})) << "BAD_CMD echoes the request";
}

TEST_F(DiagHostTest, CallbackSendRefusesBadArgumentsOtherModesAndALostLink)
{
    diag_register_callback(on_response, nullptr);
    unsigned char cmd[] = {0x00};
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1) << "not in callback mode yet";
    diag_switch_logging(CALLBACK_MODE, nullptr);
    EXPECT_EQ(diag_callback_send_data(-1, cmd, 1), -1);
    EXPECT_EQ(diag_callback_send_data(NUM_PROC, cmd, 1), -1);
    EXPECT_EQ(diag_callback_send_data(MDM, cmd, 1), -1) << "no remote processor present";
    EXPECT_EQ(diag_callback_send_data(MSM, nullptr, 1), -1);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 0), -1);
    bytes huge(k_dci_buf + 1, 0);
    EXPECT_EQ(diag_callback_send_data(MSM, huge.data(), int(huge.size())), -1);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), 0);

    sim.stop();
    long long deadline = monotonic_ms() + k_wait_ms;
    while (diag_callback_send_data(MSM, cmd, 1) == 0 && monotonic_ms() < deadline) std::this_thread::yield();
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1);
    EXPECT_EQ(Diag_LSM_DeInit(), FALSE) << "the lost link already ended the session";
}

TEST_F(DiagHostTest, RemoteProcessorsAnswerThroughTheirOwnCallbacks)
{
    uint16 mask = 0xFFFF;
    EXPECT_EQ(diag_has_remote_device(&mask), 1);
    EXPECT_EQ(mask, 0);

    sim.ctl_ok("diag remote-mask 0x22");
    EXPECT_EQ(diag_has_remote_device(&mask), 1);
    EXPECT_EQ(mask, 0x22);
    int local = 0, mdm = 1, fifth = 5;
    diag_register_callback(on_response, &local);
    diag_register_remote_callback(on_response, MDM, &mdm);
    diag_register_remote_callback(on_response, 5, &fifth);
    diag_switch_logging(CALLBACK_MODE, nullptr);

    unsigned char cmd[] = {0x01};
    ASSERT_EQ(diag_callback_send_data(5, cmd, 1), 0);
    ASSERT_TRUE(box.wait_count(1));
    ASSERT_EQ(diag_callback_send_data(MDM, cmd, 1), 0);
    ASSERT_TRUE(box.wait_count(2));
    EXPECT_EQ(box.calls[0].ctx, &fifth);
    EXPECT_EQ(box.calls[1].ctx, &mdm);
    EXPECT_EQ(box.calls[1].data.at(0), 0x01);
    EXPECT_EQ(diag_callback_send_data(MDM_2, cmd, 1), -1) << "bit 2 is not in 0x22";
    EXPECT_EQ(sim.ctl_ok("diag last 2"), "cmd 5 01\ncmd 1 01");
}

TEST_F(DiagHostTest, CallbackMayCloseTheSessionFromTheLibraryThread)
{
    static std::atomic<int> closed{-1};
    diag_register_callback(
        [](unsigned char *p, int len, void *ctx) {
            closed = Diag_LSM_DeInit();
            return on_response(p, len, ctx);
        },
        nullptr);
    diag_switch_logging(CALLBACK_MODE, nullptr);
    unsigned char cmd[] = {0x0c};
    ASSERT_EQ(diag_callback_send_data(MSM, cmd, 1), 0);
    ASSERT_TRUE(box.wait_count(1));
    EXPECT_EQ(closed.load(), TRUE);
    EXPECT_EQ(diag_callback_send_data(MSM, cmd, 1), -1);
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE) << "a new session opens after it";
}

TEST_F(DiagHostTest, DciCallbackMayReleaseItsOwnClientWithoutWaitingForItself)
{
    register_dci();
    static int *s_client = nullptr;
    static std::atomic<int> s_released{0};
    static std::atomic<int> s_mask_rc{0};
    s_client = &client_id;
    unsigned char cmd[] = {0x1c};
    long long start = monotonic_ms();
    ASSERT_EQ(diag_send_dci_async_req(
                  client_id, cmd, 1, rsp, int(sizeof(rsp)),
                  [](unsigned char *p, int len, void *data) {
                      uint16 mask = 0;
                      s_mask_rc = diag_has_remote_device(&mask);
                      s_released = diag_release_dci_client(s_client);
                      on_dci_response(p, len, data);
                  },
                  &marker),
              DIAG_DCI_NO_ERROR);
    ASSERT_TRUE(box.wait_count(1));
    EXPECT_EQ(s_released.load(), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(s_mask_rc.load(), 1) << "the mask last learnt";
    EXPECT_EQ(client_id, 0);
    EXPECT_LT(monotonic_ms() - start, 1000) << "no session op waited for its own thread";
    long long deadline = monotonic_ms() + k_wait_ms;
    while (sim.ctl_ok("diag status").find("dci_clients=0") == std::string::npos && monotonic_ms() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=0");
}

TEST(DiagHostNoSimulator, InitFailsAndDciCannotRegister)
{
    const char *before = getenv("RLK_MODEMD_SOCKET");
    std::string saved = before ? before : "";
    setenv("RLK_MODEMD_SOCKET", "/nonexistent/rlk-test/modemd.sock", 1);
    EXPECT_EQ(Diag_LSM_Init(nullptr), FALSE);
    EXPECT_EQ(Diag_LSM_DeInit(), FALSE);
    int id = 0, sig = 18;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MSM, &sig), DIAG_DCI_SEND_DATA_FAIL);
    EXPECT_EQ(id, 0);
    uint16 mask = 7;
    EXPECT_EQ(diag_has_remote_device(&mask), 0);
    EXPECT_EQ(mask, 0);
    if (before) {
        setenv("RLK_MODEMD_SOCKET", saved.c_str(), 1);
    } else {
        unsetenv("RLK_MODEMD_SOCKET");
    }
}

TEST_F(DiagHostTest, DciRegistrationCodes)
{
    int id = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    EXPECT_EQ(diag_register_dci_client(nullptr, &list, DIAG_PROC_MSM, &os_signal), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MSM, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, 2, &os_signal), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MDM, &os_signal), DIAG_DCI_NOT_SUPPORTED)
        << "no MDM present";
    register_dci();
    EXPECT_EQ(diag_register_dci_client(&id, &list, DIAG_PROC_MSM, &os_signal), DIAG_DCI_DUP_CLIENT);
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=1");

    EXPECT_EQ(diag_register_dci_signal_data(client_id, SIGRTMIN + 30), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(diag_register_dci_stream_proc(client_id, on_log, on_event), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(diag_get_dci_support_list_proc(DIAG_PROC_MSM, &list), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(list & DIAG_CON_MPSS, DIAG_CON_MPSS) << "MPSS up";
    sim.ctl_ok("diag dci-support 0x1");
    EXPECT_EQ(diag_get_dci_support_list_proc(DIAG_PROC_MSM, &list), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(list, DIAG_CON_APSS) << "MPSS down";
    EXPECT_EQ(diag_get_dci_support_list_proc(DIAG_PROC_MSM, nullptr), DIAG_DCI_PARAM_FAIL);

    int released = client_id;
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(client_id, 0);
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_REG);
    EXPECT_EQ(diag_register_dci_signal_data(released, SIGRTMIN + 30), DIAG_DCI_NO_REG);
    EXPECT_EQ(diag_register_dci_stream_proc(released, on_log, on_event), DIAG_DCI_NO_REG);
    unsigned char cmd[] = {0x1c};
    EXPECT_EQ(diag_send_dci_async_req(released, cmd, 1, rsp, int(sizeof(rsp)), on_dci_response, nullptr),
              DIAG_DCI_NO_REG);
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=0");
}

TEST_F(DiagHostTest, DciClientOpensTheLinkItselfAndIsReleasedAfterTheSessionCloses)
{
    ASSERT_EQ(Diag_LSM_DeInit(), TRUE);
    register_dci();
    dci_exchange({0x1c}, 1);
    EXPECT_EQ(box.calls[0].data, (bytes{0x1c, 0x08, 0x00}));
    ASSERT_EQ(Diag_LSM_DeInit(), TRUE);
    unsigned char cmd[] = {0x1c};
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 1, rsp, int(sizeof(rsp)), on_dci_response, nullptr),
              DIAG_DCI_SEND_DATA_FAIL);
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(client_id, 0);
}

TEST_F(DiagHostTest, AsyncResponseArrivesWithTheCallersDataPointer)
{
    register_dci();
    unsigned char cmd[] = {0x7c};
    EXPECT_EQ(diag_send_dci_async_req(client_id, nullptr, 1, rsp, 10, on_dci_response, nullptr),
              DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 0, rsp, 10, on_dci_response, nullptr), DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 1, nullptr, 10, on_dci_response, nullptr),
              DIAG_DCI_PARAM_FAIL);
    EXPECT_EQ(diag_send_dci_async_req(client_id, cmd, 1, rsp, 10, nullptr, nullptr), DIAG_DCI_PARAM_FAIL);
    bytes huge(k_dci_buf + 1, 0x4b);
    EXPECT_EQ(diag_send_dci_async_req(client_id, huge.data(), int(huge.size()), rsp, 10, on_dci_response, nullptr),
              DIAG_DCI_HUGE_PACKET);

    dci_exchange({0x7c}, 1);
    EXPECT_EQ(box.calls[0].ctx, &marker);
    EXPECT_NE(box.calls[0].thread, std::this_thread::get_id());
    ASSERT_GT(box.calls[0].data.size(), 12u);
    EXPECT_EQ(box.calls[0].data[0], 0x7c);
    EXPECT_EQ(bytes(rsp, rsp + box.calls[0].data.size()), box.calls[0].data) << "copied into the caller's buffer";
    EXPECT_EQ(sim.ctl_ok("diag last 1"), "dci 0 7c");
}

TEST_F(DiagHostTest, LongResponsesArriveInPiecesOfAtMost4096Bytes)
{
    register_dci();
    struct piece_case {
        size_t total;
        const char *piece_ctl;
        std::vector<size_t> pieces;
    };
    const piece_case cases[] = {
        {4196, nullptr, {4096, 100}},
        {8192, nullptr, {4096, 4096}},
        {100, nullptr, {100}},
        {8192, "diag dci-piece 16384", {4096, 4096}},
        {2500, "diag dci-piece 1000", {1000, 1000, 500}},
    };
    for (const piece_case &c : cases) {
        SCOPED_TRACE(c.total);
        box.calls.clear();
        if (c.piece_ctl) sim.ctl_ok(c.piece_ctl);
        bytes reply = pattern(c.total);
        sim.ctl_ok("diag reply 0x4b " + hex_of(reply));
        dci_exchange({0x4b, 0x12, 0x00, 0x00}, c.pieces.size());
        ASSERT_EQ(box.calls.size(), c.pieces.size());
        bytes joined;
        for (size_t i = 0; i < c.pieces.size(); i++) {
            EXPECT_EQ(box.calls[i].data.size(), c.pieces[i]);
            EXPECT_EQ(box.calls[i].ctx, &marker);
            joined.insert(joined.end(), box.calls[i].data.begin(), box.calls[i].data.end());
        }
        EXPECT_EQ(joined, reply);
    }
}

std::atomic<int> g_signals{0};
void count_signal(int) { g_signals++; }

TEST_F(DiagHostTest, StreamRecordsReachTheirCallbacksAndRaiseOnlyAHandledSignal)
{
    register_dci();
    ASSERT_EQ(diag_register_dci_stream_proc(client_id, on_log, on_event), DIAG_DCI_NO_ERROR);
    /* No handler: the signal must not be raised (its default kills). */
    ASSERT_EQ(diag_register_dci_signal_data(client_id, SIGRTMIN + 30), DIAG_DCI_NO_ERROR);
    const bytes log = {0x14, 0x00, 0x6d, 0xb1, 1, 2, 3, 4, 5, 6, 7, 8, 0x7e, 0x7d, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(sim.ctl("diag log " + hex_of(log)), "ok 1");
    ASSERT_TRUE(logs.wait_count(1));
    EXPECT_EQ(logs.calls[0].data, log);
    EXPECT_NE(logs.calls[0].thread, std::this_thread::get_id());

    g_signals = 0;
    struct sigaction sa = {}, old = {};
    sa.sa_handler = count_signal;
    ASSERT_EQ(sigaction(SIGRTMIN + 30, &sa, &old), 0);
    const bytes event = {0x01, 0x00, 0x12, 0x34};
    EXPECT_EQ(sim.ctl("diag event " + hex_of(event)), "ok 1");
    ASSERT_TRUE(events.wait_count(1));
    EXPECT_EQ(events.calls[0].data, event);
    EXPECT_EQ(g_signals.load(), 1) << "raised once, before the callback, on the library thread";
    sigaction(SIGRTMIN + 30, &old, nullptr);
    EXPECT_EQ(logs.count(), 1u);

    ASSERT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(sim.ctl("diag log " + hex_of(log)), "error no DCI client");
}

}  // namespace
