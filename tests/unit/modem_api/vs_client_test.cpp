/* The vs client: opening with retries, the indication path and its clamps,
 * and the restart path, against a private simulator where a service is
 * needed. */
#include <string.h>

#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "modem_api.h"
#include "modem_api_test_util.h"
#include "orvex_mem.h"
#include "vs_client.h"

namespace {

/* ---- Opening ---------------------------------------------------------- */

std::atomic<int> g_sleeps{0};
void count_sleep(unsigned int seconds)
{
    EXPECT_EQ(seconds, 1u);
    g_sleeps++;
}

TEST(VsClientOpen, AbsentServiceGivesTenAttempts)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("down vs");
    std::string logcat = fresh_logcat(sim.dir(), "open-logcat.log");
    g_vs_client.service_object = orvex_vs_get_service_object_v01();
    g_sleeps = 0;
    vs_client_set_sleep(count_sleep);
    EXPECT_EQ(vs_client_init_client_handles(), 0);
    vs_client_set_sleep(nullptr);
    EXPECT_EQ(g_sleeps, 9);
    EXPECT_EQ(g_vs_client.client_handle, nullptr);
    EXPECT_EQ(g_vs_client.initialised, 0u);

    std::vector<std::string> lines = orvex_lines(logcat);
    std::vector<std::string> expected = {"4 vs_client_init_client_handles: function entry",
                                         "4 vs_client_get_master_port: using port 65535"};
    for (int n = 1; n <= 9; n++) {
        expected.push_back("4 vs_client_init_client_handles: Trying qmi_client_init_instance() try # " +
                           std::to_string(n) + " port[65535]");
    }
    expected.push_back("4 vs_client_init_client_handles: qmi_client_init_instance returned (-3)");
    expected.push_back("4 vs_client_init_client_handles: qmi_client_init_instance returned failure(-3)");
    expected.push_back("4 vs_client_init_client_handles: function exit with ret 0");
    EXPECT_EQ(lines, expected);
}

TEST(VsClientOpen, ServiceComingUpDuringTheRetriesIsTaken)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("down vs");
    fresh_logcat(sim.dir(), "retry-logcat.log");
    g_vs_client.service_object = orvex_vs_get_service_object_v01();
    g_sleeps = 0;
    /* The third pause brings the service back. */
    static sim_instance *s_sim;
    s_sim = &sim;
    vs_client_set_sleep([](unsigned int) {
        if (++g_sleeps == 3) s_sim->ctl_ok("up vs");
    });
    EXPECT_EQ(vs_client_init_client_handles(), 1);
    vs_client_set_sleep(nullptr);
    EXPECT_EQ(g_sleeps, 3);
    EXPECT_EQ(g_vs_client.initialised, 1u);
    qmi_client_release(g_vs_client.client_handle);
    g_vs_client.client_handle = nullptr;
    g_vs_client.initialised = 0;
}

/* ---- Indications ------------------------------------------------------ */

struct ind_event {
    int type;
    std::vector<uint8_t> payload;
};

recorder<ind_event> *g_inds = nullptr;

void record_ind(int type, void *payload, int size)
{
    const uint8_t *p = static_cast<const uint8_t *>(payload);
    g_inds->add({type, std::vector<uint8_t>(p, p + size)});
}

template <typename T>
T payload_as(const ind_event &e)
{
    T out;
    EXPECT_EQ(e.payload.size(), sizeof(T));
    memcpy(&out, e.payload.data(), sizeof(out));
    return out;
}

class VsClientIndication : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-vs-ind-XXXXXX";
        ASSERT_TRUE(mkdtemp(tmpl));
        dir = tmpl;
        logcat = fresh_logcat(dir, "logcat.log");
        g_inds = &inds;
        g_vs_client.ind_handler = record_ind;
    }
    void TearDown() override
    {
        g_vs_client.ind_handler = nullptr;
        g_inds = nullptr;
        std::string cmd = "rm -rf " + dir;
        EXPECT_EQ(system(cmd.c_str()), 0);
    }
    recorder<ind_event> inds;
    std::string dir, logcat;
};

TEST_F(VsClientIndication, ClampsOfEveryKind)
{
    /* 0x0204 announcing 250 entries: exactly 100, count 100. */
    auto ant = std::make_unique<orvex_vs_ant_state_ind_msg_v01>();
    memset(ant.get(), 0, sizeof(*ant));
    ant->sub = 1;
    ant->ant_state_len = 250;
    for (int i = 0; i < 250; i++) ant->ant_state[i] = uint8_t(i);
    ant->rx_path_mask = 0x0F;
    ant->tx_path_mask = 0x03;
    vs_client_ind_hdlr(ORVEX_VS_ANT_STATE_IND_V01, ant.get());

    /* 0x0203 with 16 and 8 items of 900 bytes, no optional value. */
    auto rep = std::make_unique<orvex_vs_stats_report_ind_msg_v01>();
    memset(rep.get(), 0, sizeof(*rep));
    rep->report_id = 77;
    rep->primary_list_len = ORVEX_VS_REPORT_PRIMARY_MAX;
    rep->secondary_list_len = ORVEX_VS_REPORT_SECONDARY_MAX;
    for (auto &item : rep->primary_list) {
        item.data_id = 82;
        item.data_len = 900;
        memset(item.data, 0xAB, sizeof(item.data));
    }
    vs_client_ind_hdlr(ORVEX_VS_STATS_REPORT_IND_V01, rep.get());
    rep->interval_ms_valid = 1;
    rep->interval_ms = 2000;
    rep->primary_list_len = 2;
    rep->primary_list[1].data_len = 3;
    vs_client_ind_hdlr(ORVEX_VS_STATS_REPORT_IND_V01, rep.get());

    /* 0x0004 flags are normalised to 0 or 1. */
    orvex_vs_feature_status_ind_msg_v01 fs = {0x55, 0x80, 0};
    vs_client_ind_hdlr(ORVEX_VS_FEATURE_STATUS_IND_V01, &fs);
    orvex_vs_modem_event_ind_msg_v01 ev = {9};
    vs_client_ind_hdlr(ORVEX_VS_MODEM_EVENT_IND_V01, &ev);

    ASSERT_TRUE(inds.wait_count(5));
    std::vector<ind_event> got = inds.values();
    ASSERT_EQ(got.size(), 5u);

    EXPECT_EQ(got[0].type, VS_CLIENT_EVENT_ANT_STATE);
    auto a = payload_as<vs_client_ant_state_payload>(got[0]);
    EXPECT_EQ(a.value, 1u);
    EXPECT_EQ(a.count, 100u);
    EXPECT_EQ(a.entries[99], 99u);
    EXPECT_EQ(a.value_a, 0x0F);
    EXPECT_EQ(a.value_b, 0x03);

    EXPECT_EQ(got[1].type, VS_CLIENT_EVENT_STATS_REPORT);
    auto r = std::make_unique<vs_client_stats_report_payload>();
    *r = payload_as<vs_client_stats_report_payload>(got[1]);
    EXPECT_EQ(r->value, 77u);
    EXPECT_EQ(r->primary_count, 10u);
    EXPECT_EQ(r->secondary_count, 5u);
    EXPECT_EQ(r->primary[9].data_len, 700u);
    EXPECT_EQ(r->primary[9].data[699], 0xAB);
    EXPECT_EQ(r->last_value, 0xFFFFFFFFu);

    *r = payload_as<vs_client_stats_report_payload>(got[2]);
    EXPECT_EQ(r->primary_count, 2u);
    EXPECT_EQ(r->primary[1].data_len, 3u);
    EXPECT_EQ(r->primary[1].data[3], 0); /* only the stated bytes are copied */
    EXPECT_EQ(r->last_value, 2000u);

    EXPECT_EQ(got[3].type, VS_CLIENT_EVENT_FEATURE_STATUS);
    auto f = payload_as<vs_client_feature_status_payload>(got[3]);
    EXPECT_EQ(f.value, 0x55u);
    EXPECT_EQ(f.flag0, 1);
    EXPECT_EQ(f.flag1, 0);
    EXPECT_EQ(got[4].type, VS_CLIENT_EVENT_MODEM_EVENT);
    EXPECT_EQ(got[4].payload, std::vector<uint8_t>{9});
}

TEST_F(VsClientIndication, UnknownAndMissingAreDropped)
{
    orvex_vs_cell_change_ind_msg_v01 cell = {0, 1850};
    vs_client_ind_hdlr(ORVEX_VS_CELL_CHANGE_IND_V01, &cell);
    vs_client_ind_hdlr(ORVEX_VS_ANT_STATE_IND_V01, nullptr);
    vs_client_unsol_ind_cb(nullptr, ORVEX_VS_ANT_STATE_IND_V01, nullptr, 0, nullptr);
    EXPECT_TRUE(inds.values().empty());
    std::vector<std::string> lines = orvex_lines(logcat);
    EXPECT_TRUE(has_line(lines, "4 vs_client_ind_hdlr: Handling indication msg 0x205"));
    EXPECT_TRUE(has_line(lines, "4 vs_client_ind_hdlr: Unknown indication msg 205"));
    EXPECT_TRUE(has_line(lines, "6 vs_client_ind_hdlr: Unexpected NULL pointer!"));
    EXPECT_TRUE(has_line(lines, "6 vs_client_unsol_ind_cb: Unexpected NULL pointer!"));
}

/* ---- Against the simulator: indications and restart ------------------- */

recorder<int> *g_statuses = nullptr;
recorder<uint32_t> *g_events = nullptr;

void record_status(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status, void *)
{
    EXPECT_EQ(kind, MODEM_API_QMI_CLIENT_VS);
    g_statuses->add(int(status));
}

void record_event(uint32_t event, modem_api_qmi_client_e_type, void *) { g_events->add(event); }

/* The restart path's threads, started joinable so that a test ends only
 * after they did. */
std::mutex g_threads_mu;
std::vector<std::thread> g_threads;

int joinable_thread_start(void *(*body)(void *))
{
    std::lock_guard<std::mutex> g(g_threads_mu);
    g_threads.emplace_back([body] { body(nullptr); });
    return 0;
}

void join_threads()
{
    for (;;) {
        std::thread t;
        {
            std::lock_guard<std::mutex> g(g_threads_mu);
            if (g_threads.empty()) return;
            t = std::move(g_threads.back());
            g_threads.pop_back();
        }
        t.join();
    }
}

class VsClientLive : public ::testing::Test {
protected:
    /* Waits (bounded) until `line` is in the log. */
    bool wait_line(const std::string &line)
    {
        long long end = monotonic_ms() + k_modem_api_wait_ms;
        while (!has_line(orvex_lines(logcat), line)) {
            if (monotonic_ms() > end) return false;
            usleep(10000);
        }
        return true;
    }
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        logcat = fresh_logcat(sim.dir(), "live-logcat.log");
        g_inds = &inds;
        g_statuses = &statuses;
        g_events = &events;
        modem_api_init();
        modem_api_set_indication_handler(record_ind);
        ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_VS, record_event, record_status, nullptr, &id), 0);
    }
    void TearDown() override
    {
        modem_api_release();
        EXPECT_EQ(g_vs_client.client_handle, nullptr);
        EXPECT_EQ(g_vs_client.notifier_handle, nullptr);
        g_inds = nullptr;
        g_statuses = nullptr;
        g_events = nullptr;
    }
    sim_instance sim;
    std::string logcat;
    recorder<ind_event> inds;
    recorder<int> statuses;
    recorder<uint32_t> events;
    int32_t id = -1;
};

TEST_F(VsClientLive, IndicationsFromTheServiceAreDecodedAndClamped)
{
    sim.ctl_ok("vs ind ant 250 1");
    sim.ctl_ok("vs ind report 12 7 none");
    sim.ctl_ok("vs ind cell 0 1850"); /* known to the service, unknown to the client */
    sim.ctl_ok("vs ind event 3");
    ASSERT_TRUE(inds.wait_count(3));
    std::vector<ind_event> got = inds.values();
    ASSERT_EQ(got.size(), 3u);
    auto a = payload_as<vs_client_ant_state_payload>(got[0]);
    EXPECT_EQ(a.count, 100u);
    EXPECT_EQ(a.value, 1u);
    auto r = std::make_unique<vs_client_stats_report_payload>();
    *r = payload_as<vs_client_stats_report_payload>(got[1]);
    EXPECT_EQ(r->primary_count, 10u);
    EXPECT_EQ(r->secondary_count, 5u);
    EXPECT_EQ(r->primary[0].data_id, 82);
    EXPECT_EQ(r->primary[0].data_len, 75u);
    EXPECT_EQ(r->last_value, 0xFFFFFFFFu);
    EXPECT_EQ(got[2].type, VS_CLIENT_EVENT_MODEM_EVENT);
    EXPECT_TRUE(has_line(orvex_lines(logcat), "4 vs_client_ind_hdlr: Unknown indication msg 205"));
    /* A malformed indication (count past its array) drops only itself. */
    sim.ctl_ok("ind vs 0x0204 01040001000000");
    EXPECT_TRUE(wait_line("6 vs_client_unsol_ind_cb: Indication decode failed for msg 0x204 with error -46"));
}

TEST_F(VsClientLive, RestartReportsFourFiveSixThreeAndIndicationsFlowAgain)
{
    sim.ctl_ok("ssr vs 100");
    ASSERT_TRUE(statuses.wait_count(4));
    EXPECT_EQ(statuses.values(), (std::vector<int>{4, 5, 6, 3}));
    ASSERT_TRUE(events.wait_count(2));
    EXPECT_EQ(events.values(), (std::vector<uint32_t>{MODEM_API_EVENT_SERVICE_DOWN, MODEM_API_EVENT_SERVICE_UP}));
    EXPECT_EQ(g_vs_client.initialised, 1u);
    EXPECT_EQ(g_vs_client.notifier_handle, nullptr);

    sim.ctl_ok("vs ind event 42");
    ASSERT_TRUE(inds.wait_count(1));
    EXPECT_EQ(inds.values()[0].payload, std::vector<uint8_t>{42});
    /* Requests work on the new client. */
    EXPECT_EQ(modem_api_set_orvex_feature_status(id, ORVEX_VS_FEATURE_START), MODEM_API_SUCCESS);

    std::vector<std::string> lines = orvex_lines(logcat);
    EXPECT_TRUE(has_line(lines, "6 vs_client_service_down_event: service down with error -2"));
    EXPECT_TRUE(has_line(lines, "4 vs_client_enter_suspend: function entry"));
    EXPECT_TRUE(has_line(lines, "4 vs_client_release_qmi_client_thread: qmi_client_notifier_init return 0"));
    EXPECT_TRUE(has_line(lines, "4 vs_client_enter_resume: function entry"));
    EXPECT_TRUE(has_line(lines, "4 vs_client_resume_qmi_client_thread: function entry"));
}

TEST_F(VsClientLive, ReleaseWhileWaitingForTheServiceLeavesNothingOpen)
{
    vs_client_set_thread_start(joinable_thread_start);
    sim.ctl_ok("down vs");
    ASSERT_TRUE(statuses.wait_count(2));
    EXPECT_EQ(statuses.values(), (std::vector<int>{4, 5}));
    /* A second client sees the kind's last status. */
    int32_t second = -1;
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_VS, nullptr, nullptr, nullptr, &second), 0);
    EXPECT_TRUE(has_line(orvex_lines(logcat), "3 vs_client_init: Another client init vs client with operational status 5"));
    join_threads();
    vs_client_set_thread_start(nullptr);
    EXPECT_NE(g_vs_client.notifier_handle, nullptr);
    /* TearDown releases the notifier that waits for the service. */
}

struct command_reply {
    int result;
    std::string data;
};
recorder<command_reply> *g_replies = nullptr;

void record_reply(int result, void *data, uint32_t len, void *)
{
    g_replies->add({result, data ? std::string(static_cast<char *>(data), len) : std::string()});
    orvex_free_adv(data);
}

TEST_F(VsClientLive, AsyncCommandsComeBackThroughTheCommandCallback)
{
    recorder<command_reply> replies;
    g_replies = &replies;
    ASSERT_EQ(modem_api_send_command(id, 0, "ping", 4, record_reply, nullptr), MODEM_API_SUCCESS);
    ASSERT_TRUE(replies.wait_count(2));
    ASSERT_EQ(modem_api_send_command(id, 1, nullptr, 0, record_reply, nullptr), MODEM_API_SUCCESS);
    ASSERT_TRUE(replies.wait_count(4));
    ASSERT_EQ(modem_api_send_command(id, 9, nullptr, 0, record_reply, nullptr), MODEM_API_SUCCESS);
    ASSERT_TRUE(replies.wait_count(5));
    std::vector<command_reply> got = replies.values();
    ASSERT_EQ(got.size(), 5u);
    EXPECT_EQ(got[0].result, MODEM_API_SUCCESS);
    EXPECT_EQ(got[0].data, "ping");
    EXPECT_EQ(got[1].result, MODEM_API_RESPONSE_DONE);
    EXPECT_EQ(got[2].data, std::string("RLKSIM-VS 1.1", 14));
    EXPECT_EQ(got[4].result, MODEM_API_NOT_SUPPORTED); /* unknown command: QMI error 94 */
    /* Requests on no client are refused at once. */
    EXPECT_EQ(modem_api_send_command(5, 0, nullptr, 0, record_reply, nullptr), MODEM_API_FAILURE);
    g_replies = nullptr;
}

int fail_thread_start(void *(*)(void *)) { return -1; }

TEST_F(VsClientLive, ThreadsThatCannotStartReportZeroAndSeven)
{
    vs_client_set_thread_start(fail_thread_start);
    vs_client_service_down_event(nullptr, QMI_SERVICE_ERR, nullptr);
    vs_client_service_up_event(nullptr, nullptr, QMI_CLIENT_SERVICE_COUNT_DEC, nullptr); /* ignored */
    vs_client_service_up_event(nullptr, nullptr, QMI_CLIENT_SERVICE_COUNT_INC, nullptr);
    vs_client_set_thread_start(nullptr);
    ASSERT_TRUE(statuses.wait_count(4));
    EXPECT_EQ(statuses.values(), (std::vector<int>{4, 0, 6, 7}));
}

}  // namespace
