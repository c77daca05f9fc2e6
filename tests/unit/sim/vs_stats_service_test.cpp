/* The simulator's vendor statistics service answered message by message,
 * below the tool's client: feature status, item lists, errors, counters,
 * the control's refusals and the demo scene's indications. */
#include <string.h>

#include <atomic>

#include <gtest/gtest.h>

#include "orvex_vs_service_v01.h"
#include "qmi_client.h"
#include "sim_fixture.h"

namespace {

constexpr int k_wait_ms = 3000;

std::atomic<int> g_ind_count{0};
void count_ind(qmi_client_type, unsigned int, void *, unsigned int, void *) { g_ind_count++; }

class VsStatsService : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(orvex_vs_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, count_ind,
                                           nullptr, &os, k_wait_ms, &client),
                  QMI_NO_ERR);
    }
    void TearDown() override
    {
        if (client) qmi_client_release(client);
    }
    orvex_vs_set_feature_status_resp_msg_v01 set_feature(uint8_t status)
    {
        orvex_vs_set_feature_status_req_msg_v01 req = {status};
        orvex_vs_set_feature_status_resp_msg_v01 resp = {};
        EXPECT_EQ(qmi_client_send_msg_sync(client, ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, &req, sizeof(req), &resp,
                                           sizeof(resp), k_wait_ms),
                  QMI_NO_ERR);
        return resp;
    }
    std::unique_ptr<orvex_vs_get_stats_resp_msg_v01> get(uint8_t sub, const std::vector<uint16_t> &ids)
    {
        orvex_vs_get_stats_req_msg_v01 req = {};
        req.sub = sub;
        req.data_id_list_len = uint8_t(ids.size());
        for (size_t i = 0; i < ids.size(); i++) req.data_id_list[i] = ids[i];
        auto resp = std::make_unique<orvex_vs_get_stats_resp_msg_v01>();
        EXPECT_EQ(qmi_client_send_msg_sync(client, ORVEX_VS_GET_STATS_MSG_ID_V01, &req, sizeof(req), resp.get(),
                                           sizeof(*resp), k_wait_ms),
                  QMI_NO_ERR);
        return resp;
    }
    sim_instance sim;
    qmi_client_type client = nullptr;
};

TEST_F(VsStatsService, FeatureStatusGatesTheItems)
{
    auto resp = get(0, {82});
    EXPECT_EQ(resp->result, 1u);
    EXPECT_EQ(resp->error, 52u); /* not started: device not ready */
    EXPECT_EQ(set_feature(2).error, 48u);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "0");
    EXPECT_EQ(set_feature(ORVEX_VS_FEATURE_START).result, 0u);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "1");
    EXPECT_EQ(sim.ctl_ok("counter get stats.main.feature_enable_status"), "1");
    EXPECT_EQ(get(0, {82})->result, 0u);
    EXPECT_EQ(set_feature(ORVEX_VS_FEATURE_STOP).result, 0u);
    EXPECT_EQ(get(0, {82})->error, 52u);
    EXPECT_EQ(sim.ctl_ok("counter get stats.main.cmd_ok_count"), "3");
    EXPECT_EQ(sim.ctl_ok("counter get stats.main.cmd_fail_count"), "3");
    EXPECT_EQ(sim.ctl_ok("counter get vs.requests"), "6");
}

TEST_F(VsStatsService, ListsKeepOrderAndLeaveOutWhatTheModemLacks)
{
    set_feature(ORVEX_VS_FEATURE_START);
    auto resp = get(0, {111, 83, 82, 100, 0, 6, 7, 94, 112, 113});
    ASSERT_EQ(resp->result, 0u);
    ASSERT_EQ(resp->data_list_len, 8u);
    const uint16_t ids[] = {111, 82, 100, 6, 7, 94, 112, 113};
    uint32_t last_count = 0;
    for (int i = 0; i < 8; i++) {
        EXPECT_EQ(resp->data_list[i].data_id, ids[i]);
        EXPECT_EQ(resp->data_list[i].sub, 0);
        EXPECT_GT(resp->data_list[i].update_count, last_count);
        last_count = resp->data_list[i].update_count;
    }
    EXPECT_EQ(get(1, {94})->data_list_len, 0u);
    EXPECT_EQ(get(2, {82})->error, 48u);
    EXPECT_EQ(get(0, {})->error, 48u);
    sim.ctl_ok("vs set 0 served 0");
    EXPECT_EQ(get(0, {82})->error, 48u);
}

TEST_F(VsStatsService, RestartForgetsTheFeatureStatus)
{
    set_feature(ORVEX_VS_FEATURE_START);
    qmi_client_release(client);
    client = nullptr;
    sim.ctl_ok("ssr vs 10");
    qmi_client_os_params os = {};
    ASSERT_EQ(qmi_client_init_instance(orvex_vs_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr,
                                       &os, k_wait_ms, &client),
              QMI_NO_ERR);
    EXPECT_EQ(get(0, {82})->error, 52u);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "0");
}

TEST_F(VsStatsService, ControlRefusesWhatItCannotDo)
{
    const char *bad[] = {
        "vs",  "vs set 2 served 1", "vs set 0 lte.9.pci 1", "vs scene 0 wobble", "vs item 0 83",
        "vs fault data-len", "vs fault wrong-id 0", "vs fault odd", "vs ind report 17 0", "vs ind ant 256",
        "vs ind feature 1 2", "vs demo on 5", "vs demo maybe",
    };
    for (const char *req : bad) EXPECT_EQ(sim.ctl(req).rfind("error", 0), 0u) << req;
    EXPECT_EQ(sim.ctl_ok("vs item 0 111").size(), 24u);
}

TEST_F(VsStatsService, DemoSceneDriftsAndSendsIndications)
{
    set_feature(ORVEX_VS_FEATURE_START);
    g_ind_count = 0;
    sim.ctl_ok("vs demo on 100");
    long long end = monotonic_ms() + k_wait_ms;
    while (g_ind_count < 6 && monotonic_ms() < end) usleep(10000);
    EXPECT_GE(g_ind_count, 6); /* feature status, then report and antenna state per tick */
    sim.ctl_ok("vs demo off");
    int after = g_ind_count;
    usleep(300000);
    EXPECT_LE(g_ind_count, after + 3); /* at most what was already in flight */
    EXPECT_EQ(sim.ctl_ok("vs item 0 94"), sim.ctl_ok("vs item 0 94"));
}

}  // namespace
