/* The simulator's vendor statistics service answered message by message,
 * below the tool's client: feature status, item lists, errors, counters,
 * the control's refusals and the demo scene's indications. */
#include <atomic>
#include <memory>

#include <gtest/gtest.h>

#include "orvex_vs_service_v01.h"
#include "sim_test_util.h"

namespace {

std::atomic<int> g_ind_count{0};
void count_ind(qmi_client_type, unsigned int, void *, unsigned int, void *) { g_ind_count++; }

class VsStatsService : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        ASSERT_TRUE(client.open(orvex_vs_get_service_object_v01(), count_ind));
    }
    orvex_vs_set_feature_status_resp_msg_v01 set_feature(uint8_t status)
    {
        orvex_vs_set_feature_status_req_msg_v01 req = {status};
        orvex_vs_set_feature_status_resp_msg_v01 resp;
        EXPECT_TRUE(client.call(ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, &req, &resp));
        return resp;
    }
    std::unique_ptr<orvex_vs_get_stats_resp_msg_v01> get(uint8_t sub, const std::vector<uint16_t> &ids)
    {
        orvex_vs_get_stats_req_msg_v01 req = {};
        req.sub = sub;
        req.data_id_list_len = uint8_t(ids.size());
        for (size_t i = 0; i < ids.size(); i++) req.data_id_list[i] = ids[i];
        auto resp = std::make_unique<orvex_vs_get_stats_resp_msg_v01>();
        EXPECT_TRUE(client.call(ORVEX_VS_GET_STATS_MSG_ID_V01, &req, resp.get()));
        return resp;
    }
    sim_instance sim;
    qmi_conn client;
};

/* The feature status gates the items, and a restart of the service
 * forgets it. */
TEST_F(VsStatsService, FeatureStatusGatesTheItemsUntilARestart)
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
    EXPECT_EQ(counters(sim, {"stats.main.cmd_ok_count", "stats.main.cmd_fail_count", "vs.requests"}), "3 3 6");

    set_feature(ORVEX_VS_FEATURE_START);
    client.release();
    sim.ctl_ok("ssr vs 10");
    ASSERT_TRUE(client.open(orvex_vs_get_service_object_v01()));
    EXPECT_EQ(get(0, {82})->error, 52u);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "0");
}

/* Lists keep their order and leave out what the modem lacks; the control
 * refuses what it cannot do. */
TEST_F(VsStatsService, ListsKeepOrderAndTheControlRefusesWhatItCannotDo)
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

    const char *bad[] = {
        "vs",  "vs set 2 served 1", "vs set 0 lte.9.pci 1", "vs scene 0 wobble", "vs item 0 83",
        "vs fault data-len", "vs fault wrong-id 0", "vs fault odd", "vs ind report 17 0", "vs ind ant 256",
        "vs ind feature 1 2", "vs demo on 5", "vs demo maybe",
    };
    for (const char *req : bad) EXPECT_EQ(sim.ctl(req).rfind("error", 0), 0u) << req;
    EXPECT_EQ(sim.ctl_ok("vs item 0 111").size(), 24u);
    sim.ctl_ok("vs set 0 served 0");
    EXPECT_EQ(get(0, {82})->error, 48u);
}

TEST_F(VsStatsService, DemoSceneDriftsAndSendsIndications)
{
    set_feature(ORVEX_VS_FEATURE_START);
    g_ind_count = 0;
    sim.ctl_ok("vs demo on 100");
    /* Feature status, then report and antenna state per tick. */
    EXPECT_TRUE(wait_until([] { return g_ind_count >= 6; }));
    sim.ctl_ok("vs demo off");
    int after = g_ind_count;
    usleep(300000);
    EXPECT_LE(g_ind_count, after + 3); /* at most what was already in flight */
    EXPECT_EQ(sim.ctl_ok("vs item 0 94"), sim.ctl_ok("vs item 0 94"));
}

}  // namespace
