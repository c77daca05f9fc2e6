/* The simulator's extension service answered request by request, below the
 * tool's client, from case files of requests and answers; restart, full
 * dump and hot-swap runs; and the SAR messages a public client such as
 * qmicli sends. */
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "data_file.h"
#include "sar_service_v01.h"
#include "sim_test_util.h"

namespace {

class ExtServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        sim.ctl_ok("ext restart-delay 200");
        ASSERT_TRUE(ext.open(tolvek_extend_get_service_object_v01()));
    }
    /* An extension-service request; the answer (zeros without one). */
    tolvek_extend_msg ask_ext(const tolvek_extend_msg &req)
    {
        tolvek_extend_msg resp;
        EXPECT_TRUE(ext.call(TOLVEK_EXTEND_REQ_MSG_ID_V01, &req, &resp));
        return resp;
    }
    /* A typed common request of `type` carrying `values` (`len`: their
     * size unless given); the response record. */
    tolvek_common_rsp typed(uint32_t type, const std::vector<uint32_t> &values, int64_t len = -1)
    {
        tolvek_common_req c = tolvek_common_req();
        c.cmd_code = TOLVEK_COMMON_CMD_TYPED;
        c.type = type;
        c.len = len < 0 ? uint32_t(values.size() * 4) : uint32_t(len);
        if (!values.empty()) memcpy(c.value, values.data(), values.size() * 4);
        tolvek_common_rsp r;
        memcpy(&r, ask_ext(ext_msg(REQUEST_ID_COMMON, c)).data, sizeof(r));
        return r;
    }
    bool services_down_within(bool down, int ms)
    {
        return wait_until([&] { return (sim.ctl_ok("services").find("down") != std::string::npos) == down; }, ms);
    }
    std::string run(const words &w);

    sim_instance sim;
    qmi_conn ext;
    uint8_t open_instance = 0;
};

uint32_t num(const std::string &s)
{
    static const std::map<std::string, uint32_t> names = {
        {"nv-read", TOLVEK_EFS_OP_NV_READ}, {"nv-write", TOLVEK_EFS_OP_NV_WRITE},
        {"nv-delete", TOLVEK_EFS_OP_NV_DELETE}, {"read", TOLVEK_EFS_OP_READ},
        {"write", TOLVEK_EFS_OP_WRITE}, {"delete", TOLVEK_EFS_OP_DELETE}, {"new", TOLVEK_EFS_NEW_INSTANCE}};
    return names.count(s) ? names.at(s) : uint32_t(strtoll(s.c_str(), nullptr, 0));
}

/* One case: a control request, or an extension request made of the words
 * (see the case files); its answer as text. */
std::string ExtServiceTest::run(const words &w)
{
    std::vector<uint32_t> v;
    for (size_t i = 1; i < w.size(); i++) v.push_back(w[i] == "open" ? open_instance : num(w[i]));
    if (w[0] == "ctl") return escaped(sim.ctl(joined(w, 1)));
    if (w[0] == "typed") {
        tolvek_common_rsp r = typed(v[0], {v.begin() + 2, v.end()}, w[2] == "-" ? -1 : int64_t(v[1]));
        std::string out = std::to_string(r.result);
        return r.len ? out + " " + hex(r.value, std::min<size_t>(r.len, 16)) : out;
    }
    if (w[0] == "raw") {
        std::vector<uint8_t> payload = unhex(w.size() > 3 ? w[3] : "");
        tolvek_extend_msg m = ext_msg(v[0], uint8_t(0), v[1]);
        std::copy_n(payload.begin(), std::min(payload.size(), sizeof(m.data)), m.data);
        tolvek_extend_msg r = ask_ext(m);
        std::string out = std::to_string(r.msg_code) + " " + std::to_string(r.data_len) + " " + std::to_string(r.data_valid);
        return v[0] == 5 || !r.data_len ? out : out + " " + hex(r.data, std::min<size_t>(r.data_len, 32));
    }
    tolvek_extend_msg m;
    if (w[0] == "nv") {
        tolvek_nv_req nv = tolvek_nv_req();
        nv.op = uint8_t(v[0]);
        nv.sub_id = uint8_t(v[1]);
        nv.nv_id = uint16_t(v[2]);
        nv.data_len = v[3];
        memset(nv.data, 0x33, sizeof(nv.data));
        m = ext_msg(REQUEST_ID_EFS, nv);
    } else {
        tolvek_efs_req r = tolvek_efs_req();
        std::string path = w[2] == "''" ? "" : w[2];
        r.op = uint8_t(v[0]);
        r.path_len = uint8_t(path.size());
        memcpy(r.path, path.data(), std::min(path.size(), sizeof(r.path)));
        r.instance = uint8_t(v[2]);
        r.data_len_all = v[3];
        r.data_len_send = v[4];
        r.data_len_cur = v[5];
        r.sub_id = uint8_t(v.size() > 6 ? v[6] : 0);
        memset(r.data, 0x5A, std::min<size_t>(r.data_len_send, sizeof(r.data)));
        m = ext_msg(REQUEST_ID_EFS, r);
    }
    tolvek_efs_rsp a;
    memcpy(&a, ask_ext(m).data, sizeof(a));
    if (w[1] == "write" && a.result >= 0) open_instance = uint8_t(a.result);
    std::string out = std::to_string(a.result) + " " + std::to_string(a.data_len_all) + " " + std::to_string(a.data_len_send);
    return a.data_len_send ? out + " " + hex(a.data, std::min<size_t>(a.data_len_send, 4)) : out;
}

/* EFS transfers break no rule the tool keeps (a broken transfer commits
 * nothing), reads answer from the requested offset, NV items keep their
 * ranges. */
TEST_F(ExtServiceTest, EfsTransferRulesAndNvItemRanges)
{
    expect_cases(__FILE__, "ext_efs.cases", [&](const words &w) { return run(w); });
}

/* Other request codes and the malformed requests the tool never sends are
 * refused, and nothing restarts. */
TEST_F(ExtServiceTest, OtherCodesAndMalformedRequestsAreRefusedWithoutRestart)
{
    expect_cases(__FILE__, "ext_requests.cases", [&](const words &w) { return run(w); });
}

TEST_F(ExtServiceTest, RestartAnswersFirstThenGoesDownAndComesBack)
{
    long long start = monotonic_ms();
    EXPECT_EQ(typed(31, {4096}).result, 0);
    EXPECT_TRUE(services_down_within(true, 1000));
    EXPECT_TRUE(services_down_within(false, 2000));
    EXPECT_GE(monotonic_ms() - start, 200);
    EXPECT_EQ(counters(sim, {"ext.ssr", "ext.restart.down", "ext.restart.up"}), "1 1 1");
    tolvek_extend_msg echo = ext_msg(0, uint8_t(0), 1), resp;
    EXPECT_FALSE(ext.call(TOLVEK_EXTEND_REQ_MSG_ID_V01, &echo, &resp)) << "the old connection went with the restart";
}

TEST_F(ExtServiceTest, FullDumpWritesADumpFileThenRestarts)
{
    EXPECT_EQ(typed(31, {8192}).result, 0);
    std::string text = file_text(sim.state_dir() + "/dumps/modem_full_dump_1.txt");
    EXPECT_EQ(text.compare(0, 29, "rlk-modemd modem full dump 1\n"), 0) << text;
    EXPECT_NE(text.find("\n  /nvm/num/550 9\n"), std::string::npos) << text;
    EXPECT_TRUE(services_down_within(true, 1000));
    EXPECT_EQ(counters(sim, {"ext.full_dump", "ext.ssr"}), "1 0");
}

/* The SAR messages a public client such as qmicli sends; a failing
 * service answers with the result TLV alone. */
TEST_F(ExtServiceTest, SarSetAndGetOverThePublicMessages)
{
    qmi_conn sar;
    ASSERT_TRUE(sar.open(sar_get_service_object_v01()));
    expect_cases(__FILE__, "sar.cases", [&](const words &w) {
        if (w[0] == "ctl") return escaped(sim.ctl(joined(w, 1)));
        sar_rf_set_sar_state_req_msg_v01 set = {uint32_t(w.size() > 1 ? std::stoul(w[1]) : 0)};
        sar_rf_get_sar_state_resp_msg_v01 r;
        bool answered = w[0] == "get" ? sar.call(QMI_SAR_RF_GET_STATE_REQ_MSG_V01, &set, &r, 0)
                                      : sar.call(QMI_SAR_RF_SET_STATE_REQ_MSG_V01, &set, &r);
        std::string state = r.sar_rf_state_valid ? " state " + std::to_string(r.sar_rf_state) : "";
        return answered ? std::to_string(r.resp.result) + " " + std::to_string(r.resp.error) + state : "no answer";
    });
}

}  // namespace
