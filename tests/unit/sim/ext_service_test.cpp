/* The simulator's extension service answered request by request, below the
 * tool's client: the rules of EFS transfers the tool never breaks, NV item
 * ranges, common and card-slot requests, restart, full dump and NV sync;
 * and the SAR messages a public client such as qmicli sends. */
#include <gtest/gtest.h>

#include "sar_service_v01.h"
#include "sim_test_util.h"
#include "tolvek_card_payload.h"

namespace {

constexpr uint8_t k_write = TOLVEK_EFS_OP_WRITE, k_read = TOLVEK_EFS_OP_READ;

class ExtServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        sim.ctl_ok("ext restart-delay 200");
        ASSERT_TRUE(ext.open(tolvek_extend_get_service_object_v01()));
    }
    tolvek_efs_rsp efs(const tolvek_efs_req &req)
    {
        return record_of<tolvek_efs_rsp>(ext.ext(ext_msg(REQUEST_ID_EFS, req)));
    }
    tolvek_common_rsp typed(uint32_t type, const std::vector<uint32_t> &values, int64_t len = -1)
    {
        return record_of<tolvek_common_rsp>(ext.ext(typed_msg(type, values, len)));
    }
    bool services_down_within(bool down, int ms)
    {
        return wait_until([&] { return (sim.ctl_ok("services").find("down") != std::string::npos) == down; }, ms);
    }

    sim_instance sim;
    qmi_conn ext;
};

tolvek_efs_req efs_req(uint8_t op, const std::string &path, uint8_t instance = TOLVEK_EFS_NEW_INSTANCE,
                       uint32_t total = 0, uint32_t len = 0, uint32_t off = 0)
{
    tolvek_efs_req r;
    memset(&r, 0, sizeof(r));
    r.op = op;
    r.instance = instance;
    r.path_len = uint8_t(path.size());
    memcpy(r.path, path.data(), path.size() < sizeof(r.path) ? path.size() : sizeof(r.path));
    r.data_len_all = total;
    r.data_len_send = len;
    r.data_len_cur = off;
    memset(r.data, 0x5A, len < sizeof(r.data) ? len : sizeof(r.data));
    return r;
}

TEST_F(ExtServiceTest, WriteTransferRules)
{
    /* An open transfer of 1000 bytes: its first chunk is answered with its
     * instance id. */
    int32_t id = efs(efs_req(k_write, "/t/open", 255, 1000, 414, 0)).result;
    ASSERT_GE(id, 0);
    ASSERT_LE(id, 254);
    uint8_t open = uint8_t(id);
    tolvek_efs_req bad_sub = efs_req(k_read, "/t/x");
    bad_sub.sub_id = 2;
    const struct {
        const char *what;
        tolvek_efs_req req;
        int32_t result;
    } cases[] = {
        {"unknown instance", efs_req(k_write, "/t/open", 200, 1000, 10, 414), -9},
        {"another file's instance", efs_req(k_write, "/t/other", open, 1000, 10, 414), -9},
        {"another total", efs_req(k_write, "/t/open", open, 999, 10, 414), -9},
        {"new transfer not at 0", efs_req(k_write, "/t/x", 255, 10, 5, 5), -22},
        {"chunk above 414", efs_req(k_write, "/t/x", 255, 1000, 415, 0), -22},
        {"total above 102410", efs_req(k_write, "/t/x", 255, 102411, 10, 0), -27},
        {"overrun", efs_req(k_write, "/t/x", 255, 10, 11, 0), -27},
        {"path of 71", efs_req(k_write, "/" + std::string(70, 'a'), 255, 1, 1, 0), -36},
        {"empty path", efs_req(k_write, "", 255, 1, 1, 0), -22},
        {"relative path", efs_req(k_write, "t/x", 255, 1, 1, 0), -22},
        {"dot component", efs_req(k_write, "/t/../x", 255, 1, 1, 0), -22},
        {"unknown operation", efs_req(9, "/t/x"), -22},
        {"subscription 2", bad_sub, -22},
        /* A gap drops the transfer: its id is unknown afterwards. */
        {"gap", efs_req(k_write, "/t/open", open, 1000, 10, 500), -22},
        {"after the gap", efs_req(k_write, "/t/open", open, 1000, 10, 414), -9},
    };
    for (const auto &c : cases) EXPECT_EQ(efs(c.req).result, c.result) << c.what;
    EXPECT_EQ(sim.ctl("efs get /t/open"), "error -2") << "nothing of a broken transfer is committed";
}

TEST_F(ExtServiceTest, ReadAnswersFromTheRequestedOffset)
{
    sim.ctl_ok("efs put /t/r " + std::string(2 * 500, '1'));
    tolvek_efs_rsp first = efs(efs_req(k_read, "/t/r"));
    EXPECT_EQ(first.result, 0);
    EXPECT_EQ(first.data_len_all, 500u);
    EXPECT_EQ(first.data_len_send, 424u);
    tolvek_efs_req at = efs_req(k_read, "/t/r");
    at.data_len_cur = 424;
    EXPECT_EQ(efs(at).data_len_send, 76u);
    at.data_len_cur = 500;
    EXPECT_EQ(efs(at).data_len_send, 0u);
    /* A file replaced between two chunks is read anew. */
    sim.ctl_ok("efs put /t/r 22");
    at.data_len_cur = 0;
    tolvek_efs_rsp again = efs(at);
    EXPECT_EQ(again.data_len_all, 1u);
    EXPECT_EQ(again.data[0], 0x22);
    /* A missing file is ENOENT; a directory (/t) is EISDIR to every
     * operation, and stays. */
    const struct {
        tolvek_efs_req req;
        int32_t result;
    } errors[] = {
        {efs_req(k_read, "/t/none"), -2},          {efs_req(TOLVEK_EFS_OP_DELETE, "/t/none"), -2},
        {efs_req(k_read, "/t"), -21},              {efs_req(TOLVEK_EFS_OP_DELETE, "/t"), -21},
        {efs_req(k_write, "/t", 255, 1, 1, 0), -21}, {efs_req(k_read, "/" + std::string(71, 'a')), -36},
    };
    for (const auto &e : errors) EXPECT_EQ(efs(e.req).result, e.result) << int(e.req.op) << " " << e.req.path;
    EXPECT_EQ(sim.ctl_ok("efs get /t/r"), "22");
}

TEST_F(ExtServiceTest, NvItemRanges)
{
    auto nv = [&](uint8_t op, uint8_t sub, uint16_t id, uint32_t len) {
        tolvek_nv_req r;
        memset(&r, 0, sizeof(r));
        r.op = op;
        r.sub_id = sub;
        r.nv_id = id;
        r.data_len = len;
        memset(r.data, 0x33, sizeof(r.data));
        return record_of<tolvek_efs_rsp>(ext.ext(ext_msg(REQUEST_ID_EFS, r)));
    };
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_WRITE, 1, 7232, 424).result, 0);
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/context1/7232").size(), 2u * 424);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_READ, 1, 7232, 0).data_len_all, 424u);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_READ, 0, 7232, 0).result, 5) << "subscription 0 has its own items";
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_WRITE, 0, 7233, 1).result, 6);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_WRITE, 0, 1, 0).result, 6);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_WRITE, 0, 1, 425).result, 6);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_READ, 2, 1, 0).result, 6);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_DELETE, 1, 7232, 0).result, 0);
    EXPECT_EQ(nv(TOLVEK_EFS_OP_NV_DELETE, 1, 7232, 0).result, 5);
}

/* Other request codes and the typed requests that are refused: NV sync
 * is served on the same connection afterwards and nothing restarts. */
TEST_F(ExtServiceTest, OtherCodesAndMalformedRequestsAreRefusedWithoutRestart)
{
    uint32_t unknown_cmd[4] = {7, 0, 0, 0};
    tolvek_common_rsp rsp = record_of<tolvek_common_rsp>(ext.ext(ext_msg(REQUEST_ID_COMMON, unknown_cmd)));
    EXPECT_EQ(rsp.word, 7u);
    EXPECT_EQ(rsp.result, -95);
    uint8_t bytes[3] = {1, 2, 3};
    tolvek_extend_msg resp = ext.ext(ext_msg(0, bytes, 3));
    EXPECT_EQ(resp.msg_code, 0u);
    EXPECT_EQ(resp.data_len, 3u);
    EXPECT_EQ(resp.data[2], 3) << "echo";
    EXPECT_STREQ(reinterpret_cast<const char *>(ext.ext(ext_msg(1, bytes, 0)).data + 12), "RLKSIM-EXT 1.1");
    resp = ext.ext(ext_msg(3, bytes, 0));
    EXPECT_EQ(resp.data_len, 16u);
    EXPECT_EQ(resp.data[0], 4) << "four requests served, this one included";
    EXPECT_EQ(ext.ext(ext_msg(5, bytes, 0)).data_len, 8u);
    resp = ext.ext(ext_msg(6, bytes, 0));
    EXPECT_EQ(resp.msg_code, 0x5Eu);
    EXPECT_EQ(resp.data_valid, 0);

    const struct {
        uint32_t len, value;
        int32_t result;
    } restarts[] = {{0, 4096, -22}, {8, 4096, -22}, {4, 4095, -95}, {4, 0, -95}, {4, 4096 | 8192, -95}};
    for (const auto &c : restarts) EXPECT_EQ(typed(31, {c.value}, c.len).result, c.result) << c.len << " " << c.value;
    EXPECT_EQ(typed(35, {}).result, 0);
    EXPECT_EQ(typed(35, {}).result, 0);
    EXPECT_EQ(counters(sim, {"ext.nv_sync", "ext.restart.down"}), "2 0");
    EXPECT_EQ(sim.ctl_ok("services").find("down"), std::string::npos);
}

TEST_F(ExtServiceTest, RestartAnswersFirstThenGoesDownAndComesBack)
{
    long long start = monotonic_ms();
    EXPECT_EQ(typed(31, {4096}).result, 0);
    EXPECT_TRUE(services_down_within(true, 1000));
    EXPECT_TRUE(services_down_within(false, 2000));
    EXPECT_GE(monotonic_ms() - start, 200);
    EXPECT_EQ(counters(sim, {"ext.ssr", "ext.restart.down", "ext.restart.up"}), "1 1 1");
    tolvek_extend_msg sync = typed_msg(35, {}), resp;
    EXPECT_FALSE(ext.call(TOLVEK_EXTEND_REQ_MSG_ID_V01, &sync, &resp)) << "the old connection went with the restart";
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

/* Card-slot requests the tool never sends malformed (bad lengths, slots,
 * modes, run parameters) change nothing; a hot-swap run is exclusive and
 * its stop idempotent. */
TEST_F(ExtServiceTest, MalformedCardRequestsAreRefusedAndAHotSwapRunIsExclusive)
{
    const struct {
        uint32_t type;
        std::vector<uint32_t> values;
        int64_t len;
    } bad[] = {
        {TOLVEK_CARD_TYPE_STATUS_GET, {2}, -1},       /* no slot 2 */
        {TOLVEK_CARD_TYPE_STATUS_GET, {0, 0}, -1},    /* one value only */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 2, 1}, -1}, /* mode 2 */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 1, 2}, -1}, /* level 2 */
        {TOLVEK_CARD_TYPE_STATUS_SET, {0, 1}, -1},    /* too short */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1}, -1},          /* start without its values */
        {TOLVEK_CARD_TYPE_HOTSWAP, {0, 1, 1, 1}, -1}, /* stop with values */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 0, 1, 1}, -1}, /* no cycle */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 1, 3601, 1}, -1},  /* a wait above 3600 s */
        {TOLVEK_CARD_TYPE_HOTSWAP, {1, 10001, 1, 1}, -1}, /* more than 10000 cycles */
        {TOLVEK_CARD_TYPE_HOTSWAP, {}, 0},                /* no value at all */
    };
    std::string slots = sim.ctl_ok("ext card");
    for (const auto &b : bad) EXPECT_EQ(typed(b.type, b.values, b.len).result, -22) << b.type << " " << b.values.size();
    EXPECT_EQ(sim.ctl_ok("ext card"), slots);

    tolvek_common_rsp start = typed(TOLVEK_CARD_TYPE_HOTSWAP, {1, 3, 60, 60});
    EXPECT_EQ(start.result, 0);
    tolvek_card_hotswap_rsp run;
    memcpy(&run, start.value, sizeof(run));
    EXPECT_EQ(run.running, 1u);
    EXPECT_EQ(run.cycles_asked, 3u);
    EXPECT_EQ(typed(TOLVEK_CARD_TYPE_HOTSWAP, {1, 1, 1, 1}).result, -16) << "busy";
    for (int i = 0; i < 2; i++) {
        tolvek_common_rsp stop = typed(TOLVEK_CARD_TYPE_HOTSWAP, {0});
        EXPECT_EQ(stop.result, 0);
        memcpy(&run, stop.value, sizeof(run));
        EXPECT_EQ(run.running, 0u);
    }
    EXPECT_NE(sim.ctl_ok("ext card").find("slot0 present=1"), std::string::npos);
}

TEST_F(ExtServiceTest, SarSetAndGetOverThePublicMessages)
{
    qmi_conn sar;
    ASSERT_TRUE(sar.open(sar_get_service_object_v01()));
    const uint8_t none = 0;
    sar_rf_get_sar_state_resp_msg_v01 get;
    ASSERT_TRUE(sar.call(QMI_SAR_RF_GET_STATE_REQ_MSG_V01, &none, &get, 0));
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
        ASSERT_TRUE(sar.call(QMI_SAR_RF_SET_STATE_REQ_MSG_V01, &req, &resp));
        EXPECT_EQ(resp.resp.result, s.result) << s.state;
        EXPECT_EQ(resp.resp.error, s.error) << s.state;
    }
    EXPECT_EQ(sim.ctl_ok("sar state"), "3");
    /* A failing service answers with the result TLV alone. */
    sim.ctl_ok("error sar 2 3");
    ASSERT_TRUE(sar.call(QMI_SAR_RF_GET_STATE_REQ_MSG_V01, &none, &get, 0));
    EXPECT_EQ(get.resp.result, 1);
    EXPECT_EQ(get.sar_rf_state_valid, 0);
}

}  // namespace
