/* The vs client: opening with retries, the indication path and its clamps,
 * and the restart path, against a private simulator where a service is
 * needed. */
#include <string.h>

#include <thread>

#include <gtest/gtest.h>

#include "data_file.h"
#include "modem_api.h"
#include "modem_api_test_util.h"
#include "vs_client.h"

namespace {

int g_sleeps = 0;
sim_instance *g_open_sim = nullptr;

/* The pause between attempts; the third brings the service back when
 * g_open_sim is set. */
void count_sleep(unsigned int seconds)
{
    EXPECT_EQ(seconds, 1u);
    if (++g_sleeps == 3 && g_open_sim) g_open_sim->ctl_ok("up vs");
}

TEST(VsClientOpen, AbsentServiceGivesTenAttemptsAndAReturningOneIsTaken)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("down vs");
    std::string logcat = fresh_logcat(sim.dir(), "open-logcat.log");
    g_vs_client.service_object = orvex_vs_get_service_object_v01();
    vs_client_set_sleep(count_sleep);
    g_sleeps = 0;
    const int first = vs_client_init_client_handles();
    std::string t = facts(first, g_sleeps, g_vs_client.client_handle != nullptr, g_vs_client.initialised);
    /* The service coming up during the retries is taken. */
    g_open_sim = &sim;
    g_sleeps = 0;
    const int second = vs_client_init_client_handles();
    t += facts(second, g_sleeps, g_vs_client.initialised);
    vs_client_set_sleep(nullptr);
    g_open_sim = nullptr;
    EXPECT_EQ(t, "0 9 0 0\n1 3 1\n") << "result, sleeps, handle, initialised";
    std::string logged;
    for (const std::string &l : orvex_lines(logcat)) logged += l + "\n";
    expect_golden(logged, __FILE__, "vs_open.golden");
    qmi_client_release(g_vs_client.client_handle);
    g_vs_client.client_handle = nullptr;
    g_vs_client.initialised = 0;
}

/* ---- Indications ------------------------------------------------------ */

/* The payload of an indication as a T (on the heap: a report is 10 kB). */
template <typename T>
std::unique_ptr<T> payload_as(const void *payload, int size)
{
    EXPECT_EQ(size_t(size), sizeof(T));
    auto out = std::make_unique<T>();
    memcpy(out.get(), payload, std::min(sizeof(T), size_t(size)));
    return out;
}

/* Each indication the handler receives, as one line of its fields (of a
 * report's last primary item also the last byte stated and the byte after
 * it). */
recorder<std::string> *g_inds = nullptr;

void record_ind(int type, void *payload, int size)
{
    std::ostringstream s;
    if (type == VS_CLIENT_EVENT_ANT_STATE) {
        auto a = payload_as<vs_client_ant_state_payload>(payload, size);
        s << "ant " << a->value << " count " << a->count << " last " << a->entries[VS_CLIENT_ANT_ENTRIES_MAX - 1]
          << " paths " << a->value_a << " " << a->value_b;
    } else if (type == VS_CLIENT_EVENT_STATS_REPORT) {
        auto r = payload_as<vs_client_stats_report_payload>(payload, size);
        const auto &last = r->primary[std::min(r->primary_count, VS_CLIENT_REPORT_PRIMARY_MAX) - 1];
        const uint32_t len = std::min(last.data_len, VS_CLIENT_ITEM_DATA_MAX);
        s << "report " << r->value << " counts " << r->primary_count << " " << r->secondary_count << " items "
          << r->primary[0].data_id << "/" << r->primary[0].data_len << " " << last.data_id << "/" << last.data_len
          << " bytes " << int(last.data[len - 1]) << " " << (len < VS_CLIENT_ITEM_DATA_MAX ? int(last.data[len]) : -1)
          << " value " << r->last_value;
    } else if (type == VS_CLIENT_EVENT_FEATURE_STATUS) {
        auto f = payload_as<vs_client_feature_status_payload>(payload, size);
        s << "feature " << f->value << " flags " << int(f->flag0) << " " << int(f->flag1);
    } else {
        s << "type " << type << " bytes";
        for (int i = 0; i < size; i++) s << " " << int(static_cast<uint8_t *>(payload)[i]);
    }
    g_inds->add(s.str());
}

/* ---- Against the simulator: indications, commands and restart --------- */

/* Each reply as "<result>" or "<result>:<payload>". */
void record_reply(int result, void *data, uint32_t len, void *user)
{
    std::string r = std::to_string(result);
    if (data) r += ":" + std::string(static_cast<char *>(data), len);
    static_cast<recorder<std::string> *>(user)->add(r);
    orvex_free_adv(data);
}

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

class VsClientLive : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        logcat = fresh_logcat(sim.dir(), "live-logcat.log");
        g_inds = &inds;
        modem_api_init();
        modem_api_set_indication_handler(record_ind);
        ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_VS, record_event, record_status, this, &id), 0);
    }
    void TearDown() override
    {
        modem_api_release();
        EXPECT_EQ(facts(g_vs_client.client_handle != nullptr, g_vs_client.notifier_handle != nullptr), "0 0\n");
        g_inds = nullptr;
    }
    static void record_status(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status, void *self)
    {
        EXPECT_EQ(kind, MODEM_API_QMI_CLIENT_VS);
        static_cast<VsClientLive *>(self)->statuses.add(int(status));
    }
    static void record_event(uint32_t event, modem_api_qmi_client_e_type, void *self)
    {
        static_cast<VsClientLive *>(self)->events.add(event);
    }
    sim_instance sim;
    std::string logcat;
    recorder<std::string> inds;
    recorder<int> statuses;
    recorder<uint32_t> events;
    recorder<std::string> replies;
    int32_t id = -1;
};

TEST_F(VsClientLive, IndicationsAndTheirClampsCommandsAndRestartReportingFourFiveSixThree)
{
    sim.ctl_ok("vs ind ant 250 1");
    sim.ctl_ok("vs ind report 12 7 none");
    sim.ctl_ok("vs ind cell 0 1850"); /* known to the service, unknown to the client */
    sim.ctl_ok("vs ind event 3");
    ASSERT_TRUE(inds.wait_count(3));
    /* The handler's clamps on decoded structures no wire message can
     * carry. */
    /* 0x0204 announcing 250 entries: exactly 100, count 100. */
    auto ant = std::make_unique<orvex_vs_ant_state_ind_msg_v01>();
    ant->sub = 1;
    ant->ant_state_len = 250;
    for (int i = 0; i < 250; i++) ant->ant_state[i] = uint8_t(i);
    ant->rx_path_mask = 0x0F;
    ant->tx_path_mask = 0x03;
    vs_client_ind_hdlr(ORVEX_VS_ANT_STATE_IND_V01, ant.get());
    /* 0x0203 with 16 and 8 items of 900 bytes, no optional value. */
    auto report = std::make_unique<orvex_vs_stats_report_ind_msg_v01>();
    report->report_id = 77;
    report->primary_list_len = ORVEX_VS_REPORT_PRIMARY_MAX;
    report->secondary_list_len = ORVEX_VS_REPORT_SECONDARY_MAX;
    for (auto &item : report->primary_list) {
        item.data_id = 82;
        item.data_len = 900;
        memset(item.data, 0xAB, sizeof(item.data));
    }
    vs_client_ind_hdlr(ORVEX_VS_STATS_REPORT_IND_V01, report.get());
    report->interval_ms_valid = 1;
    report->interval_ms = 2000;
    report->primary_list_len = 2;
    report->primary_list[1].data_len = 3;
    vs_client_ind_hdlr(ORVEX_VS_STATS_REPORT_IND_V01, report.get());
    /* 0x0004 flags are normalised to 0 or 1. */
    orvex_vs_feature_status_ind_msg_v01 fs = {0x55, 0x80, 0};
    vs_client_ind_hdlr(ORVEX_VS_FEATURE_STATUS_IND_V01, &fs);
    orvex_vs_modem_event_ind_msg_v01 ev = {9};
    vs_client_ind_hdlr(ORVEX_VS_MODEM_EVENT_IND_V01, &ev);
    /* Unknown to the client, or missing: dropped. */
    orvex_vs_cell_change_ind_msg_v01 cell = {0, 1850};
    vs_client_ind_hdlr(ORVEX_VS_CELL_CHANGE_IND_V01, &cell);
    vs_client_ind_hdlr(ORVEX_VS_ANT_STATE_IND_V01, nullptr);
    vs_client_unsol_ind_cb(nullptr, ORVEX_VS_ANT_STATE_IND_V01, nullptr, 0, nullptr);

    ASSERT_TRUE(inds.wait_count(8));
    /* A malformed indication (count past its array) drops only itself. */
    sim.ctl_ok("ind vs 0x0204 01040001000000");
    const std::string decode_failed = "6 vs_client_unsol_ind_cb: Indication decode failed for msg 0x204 with error -46";
    EXPECT_TRUE(poll_until([&] { return has_line(orvex_lines(logcat), decode_failed); }, k_modem_api_wait_ms));

    /* Asynchronous commands come back through the command callback. */
    /* The version text comes with its terminating zero; an unknown
     * command is QMI error 94 (4, not supported). */
    for (uint32_t command : {0, 1, 9}) {
        const char *data = command ? nullptr : "ping";
        ASSERT_EQ(modem_api_send_command(id, command, data, command ? 0 : 4, record_reply, &replies), MODEM_API_SUCCESS);
        ASSERT_TRUE(replies.wait_count(command == 9 ? 5 : 2 * command + 2));
    }
    EXPECT_EQ(replies.values(), (std::vector<std::string>{"0:ping", "2", {"0:RLKSIM-VS 1.1", 16}, "2", "4"}));
    /* Requests on no client are refused at once. */
    EXPECT_EQ(modem_api_send_command(5, 0, nullptr, 0, record_reply, &replies), MODEM_API_FAILURE);

    /* A restart reports 4, 5, 6, 3 and indications flow again. */
    sim.ctl_ok("ssr vs 100");
    ASSERT_TRUE(statuses.wait_count(4) && events.wait_count(2));
    EXPECT_EQ(statuses.values(), (std::vector<int>{4, 5, 6, 3}));
    EXPECT_EQ(facts(events.values()[0], events.values()[1], g_vs_client.initialised,
                    g_vs_client.notifier_handle != nullptr),
              facts(MODEM_API_EVENT_SERVICE_DOWN, MODEM_API_EVENT_SERVICE_UP, 1, false));
    sim.ctl_ok("vs ind event 42");
    ASSERT_TRUE(inds.wait_count(9));
    std::string got;
    for (const std::string &ind : inds.values()) got += ind + "\n";
    expect_golden(got, __FILE__, "vs_indications.golden");
    /* Requests work on the new client. */
    EXPECT_EQ(modem_api_set_orvex_feature_status(id, ORVEX_VS_FEATURE_START), MODEM_API_SUCCESS);
    std::vector<std::string> lines = orvex_lines(logcat);
    for (const auto &row : data_rows(__FILE__, "vs_live_log.data", '\t')) EXPECT_TRUE(has_line(lines, row[0])) << row[0];
    /* The cell change from the wire and the direct one. */
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "4 vs_client_ind_hdlr: Unknown indication msg 205"), 2);
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
    std::vector<std::thread> threads;
    {
        std::lock_guard<std::mutex> g(g_threads_mu);
        threads.swap(g_threads);
    }
    for (std::thread &t : threads) t.join();
    vs_client_set_thread_start(nullptr);
    EXPECT_NE(g_vs_client.notifier_handle, nullptr);
    /* TearDown releases the notifier that waits for the service. */
}

TEST_F(VsClientLive, ThreadsThatCannotStartReportZeroAndSeven)
{
    vs_client_set_thread_start([](void *(*)(void *)) { return -1; });
    vs_client_service_down_event(nullptr, QMI_SERVICE_ERR, nullptr);
    vs_client_service_up_event(nullptr, nullptr, QMI_CLIENT_SERVICE_COUNT_DEC, nullptr); /* ignored */
    vs_client_service_up_event(nullptr, nullptr, QMI_CLIENT_SERVICE_COUNT_INC, nullptr);
    vs_client_set_thread_start(nullptr);
    ASSERT_TRUE(statuses.wait_count(4));
    EXPECT_EQ(statuses.values(), (std::vector<int>{4, 0, 6, 7}));
}

}  // namespace
