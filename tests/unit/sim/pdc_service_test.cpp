/* The simulator's PDC service answered message by message through a plain
 * QMI client: each request's response, then its indication; list paging by
 * token; load frames reassembled, one transfer per client; the limits of
 * the store. */
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

#include "persistent_device_configuration_v01.h"
#include "sim_test_util.h"

namespace {

struct ind_queue {
    std::mutex mu;
    std::condition_variable cv;
    std::deque<std::pair<unsigned int, std::vector<uint8_t>>> q;
};

void on_ind(qmi_client_type, unsigned int msg_id, void *buf, unsigned int len, void *data)
{
    ind_queue *iq = static_cast<ind_queue *>(data);
    const uint8_t *b = static_cast<const uint8_t *>(buf);
    {
        std::lock_guard<std::mutex> g(iq->mu);
        iq->q.emplace_back(msg_id, std::vector<uint8_t>(b, b + len));
    }
    iq->cv.notify_all();
}

class PdcServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        ASSERT_TRUE(client.open(pdc_get_service_object_v01(), on_ind, &inds));
    }
    /* The stored content of a loaded software configuration. */
    std::string content(const std::string &id)
    {
        return file_text(sim.state_dir() + "/pdc/mbn/1-" + hex_of(id.size(), [&](size_t i) { return id[i]; }) +
                         ".mbn");
    }
    /* Sends a request; returns the response's error (0: taken). */
    template <typename Req>
    int send(unsigned int msg_id, const Req &req, qmi_conn *c = nullptr)
    {
        pdc_load_config_resp_msg_v01 resp;
        size_t len = msg_id == QMI_PDC_LOAD_CONFIG_REQ_V01 ? sizeof(resp) : sizeof(pdc_generic_resp_msg_v01);
        memset(&resp, 0, sizeof(resp));
        EXPECT_EQ(qmi_client_send_msg_sync((c ? c : &client)->c, msg_id, const_cast<Req *>(&req), sizeof(req), &resp,
                                           unsigned(len), k_wait_ms),
                  QMI_NO_ERR);
        return resp.resp.result ? resp.resp.error : 0;
    }
    /* The next indication, decoded into `out`; false when none came in
     * `ms` (or it had another id). */
    template <typename Ind>
    bool next_ind(unsigned int msg_id, Ind *out, int ms = k_wait_ms, ind_queue *q = nullptr)
    {
        ind_queue &iq = q ? *q : inds;
        std::unique_lock<std::mutex> lk(iq.mu);
        if (!iq.cv.wait_for(lk, std::chrono::milliseconds(ms), [&iq] { return !iq.q.empty(); })) return false;
        auto ind = iq.q.front();
        iq.q.pop_front();
        return ind.first == msg_id && qmi_client_message_decode(client.c, QMI_IDL_INDICATION, msg_id, ind.second.data(),
                                                                unsigned(ind.second.size()), out, sizeof(*out)) == 0;
    }
    std::unique_ptr<pdc_list_configs_ind_msg_v01> list(uint32_t type, uint32_t token)
    {
        pdc_list_configs_req_msg_v01 req = {1, token, 1, pdc_config_type_enum_v01(type)};
        EXPECT_EQ(send(QMI_PDC_LIST_CONFIGS_REQ_V01, req), 0);
        auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
        EXPECT_TRUE(next_ind(QMI_PDC_LIST_CONFIGS_REQ_V01, ind.get()));
        return ind;
    }
    /* One load frame of `frame_len` bytes `fill` (from the second client
     * with `from_second`); returns its indication. */
    pdc_load_config_ind_msg_v01 load(const std::string &id, uint32_t total, size_t frame_len, uint8_t fill = 0,
                                     bool from_second = false)
    {
        auto req = std::make_unique<pdc_load_config_req_msg_v01>();
        memset(req.get(), 0, sizeof(*req));
        req->load_config_info.config_type = PDC_CONFIG_TYPE_MODEM_SW_V01;
        req->load_config_info.config_id_len = uint32_t(id.size());
        memcpy(req->load_config_info.config_id, id.data(), id.size());
        req->load_config_info.total_config_size = total;
        req->load_config_info.config_frame_len = uint32_t(frame_len);
        memset(req->load_config_info.config_frame, fill, frame_len);
        req->ind_token_valid = 1;
        req->ind_token = 9;
        EXPECT_EQ(send(QMI_PDC_LOAD_CONFIG_REQ_V01, *req, from_second ? &second : nullptr), 0);
        pdc_load_config_ind_msg_v01 ind;
        memset(&ind, 0, sizeof(ind));
        EXPECT_TRUE(next_ind(QMI_PDC_LOAD_CONFIG_REQ_V01, &ind, k_wait_ms, from_second ? &second_inds : nullptr));
        return ind;
    }

    sim_instance sim;
    ind_queue inds, second_inds;
    qmi_conn client, second;
};

TEST_F(PdcServiceTest, PagesFollowTheTokenAndANewTokenStartsOver)
{
    sim.ctl_ok("pdc fill sw 60");
    std::vector<uint32_t> sizes;
    for (int page = 0; page < 3; page++) {
        auto ind = list(PDC_CONFIG_TYPE_MODEM_SW_V01, 77);
        EXPECT_EQ(ind->ind_token, 77u);
        sizes.push_back(ind->config_list_len);
        EXPECT_EQ(ind->more_available, page < 2);
    }
    EXPECT_EQ(sizes, (std::vector<uint32_t>{25, 25, 10}));
    /* Half-way through another listing, a new token begins at the start. */
    list(PDC_CONFIG_TYPE_MODEM_SW_V01, 5);
    auto fresh = list(PDC_CONFIG_TYPE_MODEM_SW_V01, 6);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(fresh->config_list[0].config_id),
                          fresh->config_list[0].config_id_len),
              "ROW_Generic_3GPP");
    /* Exactly 25 ids: one page, nothing more. */
    sim.ctl_ok("pdc clear hw");
    sim.ctl_ok("pdc fill hw 25");
    auto hw = list(PDC_CONFIG_TYPE_MODEM_PLATFORM_V01, 1);
    EXPECT_EQ(hw->config_list_len, 25u);
    EXPECT_EQ(hw->more_available, 0);
    sim.ctl_ok("pdc clear hw");
    EXPECT_EQ(list(PDC_CONFIG_TYPE_MODEM_PLATFORM_V01, 2)->config_list_valid, 0) << "no MBN: no list at all";
}

/* Frames are reassembled and stored once, and what is stored survives a
 * restart of the simulator. */
TEST_F(PdcServiceTest, FramesAreReassembledStoredOnceAndKeptOverARestart)
{
    pdc_load_config_ind_msg_v01 first = load("two_frames", 4000, 3000, 0xA5);
    EXPECT_EQ(first.error, 0);
    EXPECT_EQ(first.received_config_size, 3000u);
    EXPECT_EQ(first.remaining_config_size, 1000u);
    EXPECT_EQ(sim.ctl_ok("pdc show").find("two_frames"), std::string::npos) << "not stored before the last frame";
    EXPECT_EQ(load("two_frames", 4000, 1000, 0x5A).remaining_config_size, 0u);
    EXPECT_NE(sim.ctl_ok("pdc show").find("config sw two_frames size 4000"), std::string::npos);
    EXPECT_EQ(load("two_frames", 4000, 3000).error, PDC_QMI_ERR_INVALID_ID) << "a duplicate id";
    /* More data than announced drops the transfer. */
    EXPECT_EQ(load("too_long", 10, 11).error, PDC_QMI_ERR_INVALID_ARG);
    sim.ctl_ok("pdc fail 0x26 reset 1");
    pdc_load_config_ind_msg_v01 reset = load("partial", 20, 10);
    EXPECT_EQ(reset.error, 0);
    EXPECT_EQ(reset.frame_data_reset_valid, 1);
    /* After the reset the transfer starts again from the first byte. */
    EXPECT_EQ(load("partial", 20, 10).received_config_size, 10u);

    client.release();
    sim.kill_hard();
    ASSERT_TRUE(sim.restart());
    EXPECT_NE(sim.ctl_ok("pdc show").find("config sw two_frames size 4000"), std::string::npos);
}

/* Frames of two clients never mix: each has a transfer of its own, a
 * configuration is stored from one client's bytes only, and a client that
 * goes away takes its partial transfer with it.  A full store refuses with
 * no memory, counting the room transfers in progress hold. */
TEST_F(PdcServiceTest, TransfersOfTwoClientsNeverMix)
{
    ASSERT_TRUE(second.open(pdc_get_service_object_v01(), on_ind, &second_inds));
    EXPECT_EQ(load("mixed", 4000, 3000, 0xA5).received_config_size, 3000u);
    EXPECT_EQ(load("mixed", 4000, 1000, 0x5A, true).received_config_size, 1000u)
        << "the second client's frame starts a transfer of its own";
    EXPECT_EQ(sim.ctl_ok("pdc show").find("mixed"), std::string::npos) << "nothing partial is stored";
    EXPECT_EQ(load("mixed", 4000, 1000, 0xA5).remaining_config_size, 0u);
    EXPECT_EQ(load("mixed", 4000, 3000, 0x5A, true).error, PDC_QMI_ERR_INVALID_ID) << "stored meanwhile";
    EXPECT_EQ(content("mixed"), std::string(4000, '\xA5'));

    sim.ctl_ok("pdc capacity 1000000");
    EXPECT_EQ(load("big", 200000, 10).error, PDC_QMI_ERR_NO_MEMORY) << "seed uses 880 KB of 1 MB";
    EXPECT_EQ(load("held", 100000, 10).error, 0);
    EXPECT_EQ(load("other", 100000, 10, 0, true).error, PDC_QMI_ERR_NO_MEMORY) << "room held by a transfer";
    sim.ctl_ok("pdc capacity 100000000");

    EXPECT_EQ(load("left", 20, 10, 1, true).received_config_size, 10u);
    ASSERT_TRUE(second.open(pdc_get_service_object_v01(), on_ind, &second_inds)); /* left half-way */
    EXPECT_EQ(load("left", 20, 10, 2, true).received_config_size, 10u) << "afresh";
    EXPECT_EQ(load("left", 20, 10, 2, true).remaining_config_size, 0u);
    EXPECT_EQ(content("left"), std::string(20, '\x02'));
    sim.ctl_ok("pdc fill sw 100");
    EXPECT_EQ(load("one_more", 10, 10, 0, true).error, PDC_QMI_ERR_NO_MEMORY) << "100 per type";
}

TEST_F(PdcServiceTest, RefusedRequestsGetNoIndication)
{
    pdc_get_selected_config_req_msg_v01 sel = {PDC_CONFIG_TYPE_MODEM_SW_V01, 1, 3, 1, 2};
    EXPECT_EQ(send(QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, sel), PDC_QMI_ERR_NOT_SUPPORTED) << "subscription 2";
    pdc_set_feature_req_msg_v01 feature = {5, 1, 4, 1, 1};
    EXPECT_EQ(send(QMI_PDC_SET_FEATURE_REQ_V01, feature), PDC_QMI_ERR_NOT_SUPPORTED) << "slot 5";
    pdc_generic_ind_msg_v01 ind;
    EXPECT_FALSE(next_ind(QMI_PDC_SET_FEATURE_REQ_V01, &ind, 100));
    feature.slot_id = 1;
    EXPECT_EQ(send(QMI_PDC_SET_FEATURE_REQ_V01, feature), 0);
    ASSERT_TRUE(next_ind(QMI_PDC_SET_FEATURE_REQ_V01, &ind));
    EXPECT_EQ(ind.ind_token, 4u);
    EXPECT_EQ(ind.error, 0);
}

}  // namespace
