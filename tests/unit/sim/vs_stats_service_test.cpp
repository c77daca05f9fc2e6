/* The simulator's vendor statistics service answered message by message,
 * below the tool's client: feature status, item lists, errors, counters,
 * the control's refusals and the demo scene's indications. */
#include <atomic>
#include <memory>

#include <gtest/gtest.h>

#include "data_file.h"
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
    std::string run(const words &w);
    sim_instance sim;
    qmi_conn client;
};

/* One case: a control request, the feature status set, an item list got,
 * or the client closed or opened again. */
std::string VsStatsService::run(const words &w)
{
    if (w[0] == "ctl") return escaped(sim.ctl(joined(w, 1)));
    if (w[0] == "close") client.release();
    if (w[0] == "open") return client.open(orvex_vs_get_service_object_v01()) ? "ok" : "failed";
    if (w[0] == "feature") {
        auto resp = set_feature(uint8_t(std::stoul(w[1])));
        return std::to_string(resp.result) + " " + std::to_string(resp.error);
    }
    if (w[0] != "get") return "";
    orvex_vs_get_stats_req_msg_v01 req = {};
    req.sub = uint8_t(std::stoul(w[1]));
    for (size_t i = 2; i < w.size(); i++) req.data_id_list[req.data_id_list_len++] = uint16_t(std::stoul(w[i]));
    auto resp = std::make_unique<orvex_vs_get_stats_resp_msg_v01>();
    EXPECT_TRUE(client.call(ORVEX_VS_GET_STATS_MSG_ID_V01, &req, resp.get()));
    std::string out = std::to_string(resp->result) + " " + std::to_string(resp->error) + ":";
    for (uint32_t i = 0; i < resp->data_list_len; i++) {
        out += " " + std::to_string(resp->data_list[i].data_id);
        EXPECT_EQ(resp->data_list[i].sub, req.sub);
        EXPECT_GT(resp->data_list[i].update_count, i ? resp->data_list[i - 1].update_count : 0u);
    }
    return out;
}

/* The feature status gates the items until a restart of the service
 * forgets it; lists keep their order and leave out what the modem lacks;
 * the control refuses what it cannot do. */
TEST_F(VsStatsService, FeatureStatusGatesListedItemsAndTheControlRefusesWhatItCannotDo)
{
    expect_cases(__FILE__, "vs_requests.cases", [&](const words &w) { return run(w); });
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
