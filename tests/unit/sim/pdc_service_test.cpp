/* The simulator's PDC service answered message by message through a plain
 * QMI client: each request's response, then its indication; list paging by
 * token; load frames reassembled, one transfer per client; the limits of
 * the store. */
#include <string.h>

#include <condition_variable>
#include <deque>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

#include "persistent_device_configuration_v01.h"
#include "qmi_client.h"
#include "sim_fixture.h"

namespace {

constexpr int k_wait_ms = 3000;

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
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(pdc_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, on_ind, &inds, &os,
                                           k_wait_ms, &client),
                  QMI_NO_ERR);
    }
    void TearDown() override
    {
        if (client) qmi_client_release(client);
        if (second) qmi_client_release(second);
    }
    /* Opens (again) the second client, with indications of its own. */
    void open_second()
    {
        if (second) qmi_client_release(second);
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(pdc_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, on_ind,
                                           &second_inds, &os, k_wait_ms, &second),
                  QMI_NO_ERR);
    }
    /* The stored content of a loaded software configuration. */
    std::vector<uint8_t> content(const std::string &id)
    {
        static const char digits[] = "0123456789abcdef";
        std::string path = sim.state_dir() + "/pdc/mbn/1-";
        for (unsigned char c : id) path += std::string{digits[c >> 4], digits[c & 15]};
        std::ifstream in(path + ".mbn", std::ios::binary);
        return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    /* Sends a request; returns the response's error (0: taken). */
    template <typename Req>
    int send(unsigned int msg_id, Req &req, qmi_client_type c = nullptr)
    {
        pdc_load_config_resp_msg_v01 resp;
        memset(&resp, 0, sizeof(resp));
        unsigned int len = msg_id == QMI_PDC_LOAD_CONFIG_REQ_V01 ? sizeof(resp) : sizeof(pdc_generic_resp_msg_v01);
        EXPECT_EQ(qmi_client_send_msg_sync(c ? c : client, msg_id, &req, sizeof(req), &resp, len, k_wait_ms),
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
        if (ind.first != msg_id) return false;
        return qmi_client_message_decode(client, QMI_IDL_INDICATION, msg_id, ind.second.data(),
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

    /* One load frame (of the second client with `from_second`); returns
     * its indication. */
    pdc_load_config_ind_msg_v01 load(const std::string &id, uint32_t total, const std::vector<uint8_t> &frame,
                                     bool from_second = false)
    {
        auto req = std::make_unique<pdc_load_config_req_msg_v01>();
        memset(req.get(), 0, sizeof(*req));
        req->load_config_info.config_type = PDC_CONFIG_TYPE_MODEM_SW_V01;
        req->load_config_info.config_id_len = uint32_t(id.size());
        memcpy(req->load_config_info.config_id, id.data(), id.size());
        req->load_config_info.total_config_size = total;
        req->load_config_info.config_frame_len = uint32_t(frame.size());
        memcpy(req->load_config_info.config_frame, frame.data(), frame.size());
        req->ind_token_valid = 1;
        req->ind_token = 9;
        EXPECT_EQ(send(QMI_PDC_LOAD_CONFIG_REQ_V01, *req, from_second ? second : nullptr), 0);
        pdc_load_config_ind_msg_v01 ind;
        memset(&ind, 0, sizeof(ind));
        EXPECT_TRUE(next_ind(QMI_PDC_LOAD_CONFIG_REQ_V01, &ind, k_wait_ms, from_second ? &second_inds : nullptr));
        return ind;
    }

    sim_instance sim;
    ind_queue inds, second_inds;
    qmi_client_type client = nullptr, second = nullptr;
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

TEST_F(PdcServiceTest, FramesAreReassembledAndStoredOnce)
{
    std::vector<uint8_t> a(3000, 0xA5), b(1000, 0x5A);
    pdc_load_config_ind_msg_v01 first = load("two_frames", 4000, a);
    EXPECT_EQ(first.error, 0);
    EXPECT_EQ(first.received_config_size, 3000u);
    EXPECT_EQ(first.remaining_config_size, 1000u);
    EXPECT_EQ(sim.ctl_ok("pdc show").find("two_frames"), std::string::npos) << "not stored before the last frame";
    pdc_load_config_ind_msg_v01 last = load("two_frames", 4000, b);
    EXPECT_EQ(last.remaining_config_size, 0u);
    EXPECT_NE(sim.ctl_ok("pdc show").find("config sw two_frames size 4000"), std::string::npos);
    EXPECT_EQ(load("two_frames", 4000, a).error, PDC_QMI_ERR_INVALID_ID) << "a duplicate id";

    /* More data than announced drops the transfer. */
    EXPECT_EQ(load("too_long", 10, std::vector<uint8_t>(11)).error, PDC_QMI_ERR_INVALID_ARG);
    pdc_load_config_ind_msg_v01 reset;
    sim.ctl_ok("pdc fail 0x26 reset 1");
    reset = load("partial", 20, std::vector<uint8_t>(10));
    EXPECT_EQ(reset.error, 0);
    EXPECT_EQ(reset.frame_data_reset_valid, 1);
    /* After the reset the transfer starts again from the first byte. */
    EXPECT_EQ(load("partial", 20, std::vector<uint8_t>(10)).received_config_size, 10u);
}

/* Frames of two clients never mix: each has a transfer of its own, a
 * configuration is stored from one client's bytes only, and a client that
 * goes away takes its partial transfer with it. */
TEST_F(PdcServiceTest, TransfersOfTwoClientsNeverMix)
{
    open_second();
    EXPECT_EQ(load("mixed", 4000, std::vector<uint8_t>(3000, 0xA5)).received_config_size, 3000u);
    EXPECT_EQ(load("mixed", 4000, std::vector<uint8_t>(1000, 0x5A), true).received_config_size, 1000u)
        << "the second client's frame starts a transfer of its own";
    EXPECT_EQ(sim.ctl_ok("pdc show").find("mixed"), std::string::npos) << "nothing partial is stored";
    EXPECT_EQ(load("mixed", 4000, std::vector<uint8_t>(1000, 0xA5)).remaining_config_size, 0u);
    EXPECT_EQ(load("mixed", 4000, std::vector<uint8_t>(3000, 0x5A), true).error, PDC_QMI_ERR_INVALID_ID)
        << "stored by the other client meanwhile";
    EXPECT_EQ(content("mixed"), std::vector<uint8_t>(4000, 0xA5));
    /* Transfers in progress hold room for their whole size. */
    sim.ctl_ok("pdc capacity 1000000");
    EXPECT_EQ(load("held", 100000, std::vector<uint8_t>(10)).error, 0);
    EXPECT_EQ(load("other", 100000, std::vector<uint8_t>(10), true).error, PDC_QMI_ERR_NO_MEMORY);
    sim.ctl_ok("pdc capacity 100000000");

    EXPECT_EQ(load("left", 20, std::vector<uint8_t>(10, 1), true).received_config_size, 10u);
    open_second(); /* the first second client left half-way */
    EXPECT_EQ(load("left", 20, std::vector<uint8_t>(10, 2), true).received_config_size, 10u) << "afresh";
    EXPECT_EQ(load("left", 20, std::vector<uint8_t>(10, 2), true).remaining_config_size, 0u);
    EXPECT_EQ(content("left"), std::vector<uint8_t>(20, 2));
}

TEST_F(PdcServiceTest, AFullStoreRefusesWithNoMemory)
{
    sim.ctl_ok("pdc capacity 1000000");
    EXPECT_EQ(load("big", 200000, std::vector<uint8_t>(10)).error, PDC_QMI_ERR_NO_MEMORY)
        << "seed uses 880 KB of 1 MB";
    sim.ctl_ok("pdc capacity 100000000");
    sim.ctl_ok("pdc fill sw 100");
    EXPECT_EQ(load("one_more", 10, std::vector<uint8_t>(10)).error, PDC_QMI_ERR_NO_MEMORY) << "100 per type";
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

TEST_F(PdcServiceTest, StateSurvivesARestartOfTheSimulator)
{
    EXPECT_EQ(load("kept", 4, std::vector<uint8_t>{1, 2, 3, 4}).remaining_config_size, 0u);
    qmi_client_release(client);
    client = nullptr;
    sim.kill_hard();
    ASSERT_TRUE(sim.restart());
    EXPECT_NE(sim.ctl_ok("pdc show").find("config sw kept size 4"), std::string::npos);
}

}  // namespace
