/* The simulator's PDC service answered message by message through a plain
 * QMI client: each request's response, then its indication; list paging by
 * token; load frames reassembled, one transfer per client; the limits of
 * the store. */
#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

#include "data_file.h"
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
        ASSERT_TRUE(second.open(pdc_get_service_object_v01(), on_ind, &second_inds));
    }
    /* Sends a request; returns the response's error (0: taken). */
    template <typename Req>
    int send(unsigned int msg_id, const Req &req, qmi_conn *c = nullptr)
    {
        pdc_load_config_resp_msg_v01 resp = {};
        size_t len = msg_id == QMI_PDC_LOAD_CONFIG_REQ_V01 ? sizeof(resp) : sizeof(pdc_generic_resp_msg_v01);
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
    std::string run(const words &w);

    sim_instance sim;
    ind_queue inds, second_inds;
    qmi_conn client, second;
};

/* One case: a control request, a listing, a load frame from client 1 or
 * 2, a new second client, or the stored content of a configuration. */
std::string PdcServiceTest::run(const words &w)
{
    std::vector<uint32_t> v;
    for (size_t i = 1; i < w.size(); i++) v.push_back(uint32_t(strtoul(w[i].c_str(), nullptr, 0)));
    std::string out;
    if (w[0] == "ctl") return escaped(sim.ctl(joined(w, 1)));
    if (w[0] == "reopen") return second.open(pdc_get_service_object_v01(), on_ind, &second_inds) ? "ok" : "failed";
    if (w[0] == "shown") {
        std::istringstream show(sim.ctl_ok("pdc show"));
        for (std::string line; std::getline(show, line);) {
            if (line.find(" " + w[1] + " ") != std::string::npos) out += line;
        }
        return out.empty() ? "none" : out;
    }
    if (w[0] == "content") {
        /* The stored content of a loaded software configuration. */
        const std::string id = hex_of(w[1].size(), [&](size_t i) { return w[1][i]; });
        std::string c = file_text(sim.state_dir() + "/pdc/mbn/1-" + id + ".mbn");
        return std::to_string(c.size()) + " bytes, " + std::to_string(std::count(c.begin(), c.end(), c[0])) + " of " +
               hex_of(1, [&](size_t) { return c[0]; });
    }
    if (w[0] == "list") {
        pdc_list_configs_req_msg_v01 req = {1, v[1], 1, pdc_config_type_enum_v01(v[0])};
        EXPECT_EQ(send(QMI_PDC_LIST_CONFIGS_REQ_V01, req), 0);
        auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
        EXPECT_TRUE(next_ind(QMI_PDC_LIST_CONFIGS_REQ_V01, ind.get()));
        out = std::to_string(ind->ind_token) + " " + std::to_string(ind->config_list_valid) + " " +
              std::to_string(ind->config_list_len) + " " + std::to_string(ind->more_available);
        const auto &first = ind->config_list[0];
        if (!ind->config_list_len) return out;
        return out + " " + std::string(reinterpret_cast<const char *>(first.config_id), first.config_id_len);
    }
    bool from_second = v[0] == 2;
    const std::string &id = w[2];
    auto req = std::make_unique<pdc_load_config_req_msg_v01>();
    req->load_config_info.config_type = PDC_CONFIG_TYPE_MODEM_SW_V01;
    req->load_config_info.config_id_len = uint32_t(id.size());
    memcpy(req->load_config_info.config_id, id.data(), id.size());
    req->load_config_info.total_config_size = v[2];
    req->load_config_info.config_frame_len = v[3];
    memset(req->load_config_info.config_frame, int(v[4]), v[3]);
    req->ind_token_valid = 1;
    req->ind_token = 9;
    EXPECT_EQ(send(QMI_PDC_LOAD_CONFIG_REQ_V01, *req, from_second ? &second : nullptr), 0);
    pdc_load_config_ind_msg_v01 ind = {};
    EXPECT_TRUE(next_ind(QMI_PDC_LOAD_CONFIG_REQ_V01, &ind, k_wait_ms, from_second ? &second_inds : nullptr));
    out = std::to_string(ind.error) + " " + std::to_string(ind.received_config_size) + " " +
          std::to_string(ind.remaining_config_size);
    return ind.frame_data_reset_valid ? out + " reset" : out;
}

/* Pages follow the token and a new token starts over. */
TEST_F(PdcServiceTest, PagesFollowTheTokenAndANewTokenStartsOver)
{
    expect_cases(__FILE__, "pdc_list.cases", [&](const words &w) { return run(w); });
}

/* Frames are reassembled and stored once, and what is stored survives a
 * restart of the simulator. */
TEST_F(PdcServiceTest, FramesAreReassembledStoredOnceAndKeptOverARestart)
{
    expect_cases(__FILE__, "pdc_load.cases", [&](const words &w) { return run(w); });
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
    expect_cases(__FILE__, "pdc_two_clients.cases", [&](const words &w) { return run(w); });
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
    EXPECT_EQ(facts(ind.ind_token, ind.error), "4 0\n");
}

}  // namespace
