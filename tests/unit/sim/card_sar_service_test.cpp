/* The simulator's card-slot requests and SAR service below the tool: the
 * requests the tool never sends malformed (bad lengths, slots, modes, run
 * parameters) and the SAR messages a public client such as qmicli sends. */
#include <string.h>

#include <vector>

#include <gtest/gtest.h>

#include "qmi_client.h"
#include "sar_service_v01.h"
#include "sim_fixture.h"
#include "tolvek_card_payload.h"
#include "tolvek_extend_payload.h"

namespace {

constexpr int k_wait_ms = 3000;
constexpr int32_t k_einval = -22;
constexpr int32_t k_ebusy = -16;

class CardSarServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr,
                                           nullptr, &os, k_wait_ms, &ext),
                  QMI_NO_ERR);
        ASSERT_EQ(qmi_client_init_instance(sar_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr,
                                           &os, k_wait_ms, &sar),
                  QMI_NO_ERR);
    }
    void TearDown() override
    {
        if (ext) qmi_client_release(ext);
        if (sar) qmi_client_release(sar);
    }

    /* A typed request of `type` carrying `values`, with length `len`
     * (default: the values' size). */
    tolvek_common_rsp typed(uint32_t type, std::vector<uint32_t> values, int64_t len = -1)
    {
        tolvek_extend_msg req, resp;
        memset(&req, 0, sizeof(req));
        memset(&resp, 0, sizeof(resp));
        tolvek_common_req c;
        memset(&c, 0, sizeof(c));
        c.cmd_code = TOLVEK_COMMON_CMD_TYPED;
        c.type = type;
        c.len = len < 0 ? uint32_t(values.size() * 4) : uint32_t(len);
        if (!values.empty()) memcpy(c.value, values.data(), values.size() * 4);
        req.msg_code = REQUEST_ID_COMMON;
        req.data_len = TOLVEK_EXTEND_DATA_MAX;
        req.data_valid = 1;
        memcpy(req.data, &c, sizeof(c));
        EXPECT_EQ(qmi_client_send_msg_sync(ext, TOLVEK_EXTEND_REQ_MSG_ID_V01, &req, sizeof(req), &resp, sizeof(resp),
                                           k_wait_ms),
                  QMI_NO_ERR);
        tolvek_common_rsp rsp;
        memcpy(&rsp, resp.data, sizeof(rsp));
        return rsp;
    }

    sim_instance sim;
    qmi_client_type ext = nullptr, sar = nullptr;
};

TEST_F(CardSarServiceTest, MalformedCardRequestsAreRefusedWithoutChangingTheSlots)
{
    const struct {
        uint32_t type;
        std::vector<uint32_t> values;
        int64_t len;
    } bad[] = {
        {TOLVEK_CARD_TYPE_STATUS_GET, {2}, -1},        /* no slot 2 */
        {TOLVEK_CARD_TYPE_STATUS_GET, {0, 0}, -1},     /* one value only */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 2, 1}, -1},  /* mode 2 */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 1, 2}, -1},  /* level 2 */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 1}, -1},     /* too short */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1}, -1},           /* start without its values */
        {TOLVEK_CARD_TYPE_HOTSWAP, {0, 1, 1, 1}, -1},  /* stop with values */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 0, 1, 1}, -1},  /* no cycle */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 1, 3601, 1}, -1},
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 10001, 1, 1}, -1},
        {TOLVEK_CARD_TYPE_HOTSWAP, {}, 0},
    };
    std::string slots = sim.ctl_ok("ext card");
    for (const auto &b : bad) {
        EXPECT_EQ(typed(b.type, b.values, b.len).result, k_einval) << b.type << " with " << b.values.size();
    }
    EXPECT_EQ(sim.ctl_ok("ext card"), slots);
}

TEST_F(CardSarServiceTest, HotSwapRunIsExclusiveAndItsStopIsIdempotent)
{
    tolvek_common_rsp start = typed(TOLVEK_CARD_TYPE_HOTSWAP, {1, 3, 60, 60});
    EXPECT_EQ(start.result, 0);
    tolvek_card_hotswap_rsp run;
    memcpy(&run, start.value, sizeof(run));
    EXPECT_EQ(run.running, 1u);
    EXPECT_EQ(run.cycles_asked, 3u);
    EXPECT_EQ(typed(TOLVEK_CARD_TYPE_HOTSWAP, {1, 1, 1, 1}).result, k_ebusy);
    for (int i = 0; i < 2; i++) {
        tolvek_common_rsp stop = typed(TOLVEK_CARD_TYPE_HOTSWAP, {0});
        EXPECT_EQ(stop.result, 0);
        memcpy(&run, stop.value, sizeof(run));
        EXPECT_EQ(run.running, 0u);
    }
    EXPECT_NE(sim.ctl_ok("ext card").find("slot0 present=1"), std::string::npos);
}

TEST_F(CardSarServiceTest, SarSetAndGetOverThePublicMessages)
{
    sar_rf_get_sar_state_resp_msg_v01 get;
    memset(&get, 0, sizeof(get));
    ASSERT_EQ(qmi_client_send_msg_sync(sar, QMI_SAR_RF_GET_STATE_REQ_MSG_V01, nullptr, 0, &get, sizeof(get), k_wait_ms),
              QMI_NO_ERR);
    EXPECT_EQ(get.resp.result, 0);
    EXPECT_EQ(get.sar_rf_state_valid, 1);
    EXPECT_EQ(get.sar_rf_state, 0u);

    const struct {
        uint32_t state;
        uint16_t result, error;
    } sets[] = {{20, 0, 0}, {21, 1, 0x30}, {3, 0, 0}};
    for (const auto &s : sets) {
        sar_rf_set_sar_state_req_msg_v01 req = {s.state};
        sar_rf_set_sar_state_resp_msg_v01 resp;
        memset(&resp, 0, sizeof(resp));
        ASSERT_EQ(qmi_client_send_msg_sync(sar, QMI_SAR_RF_SET_STATE_REQ_MSG_V01, &req, sizeof(req), &resp,
                                           sizeof(resp), k_wait_ms),
                  QMI_NO_ERR);
        EXPECT_EQ(resp.resp.result, s.result) << s.state;
        EXPECT_EQ(resp.resp.error, s.error) << s.state;
    }
    EXPECT_EQ(sim.ctl_ok("sar state"), "3");

    /* A failing service answers with the result TLV alone. */
    sim.ctl_ok("error sar 2 3");
    memset(&get, 0, sizeof(get));
    ASSERT_EQ(qmi_client_send_msg_sync(sar, QMI_SAR_RF_GET_STATE_REQ_MSG_V01, nullptr, 0, &get, sizeof(get), k_wait_ms),
              QMI_NO_ERR);
    EXPECT_EQ(get.resp.result, 1);
    EXPECT_EQ(get.sar_rf_state_valid, 0);
}

}  // namespace
