/* The simulator's extension service answered request by request, below the
 * tool's client: the rules of EFS transfers the tool never breaks, NV item
 * ranges, common commands and the other request codes. */
#include <string.h>

#include <gtest/gtest.h>

#include "qmi_client.h"
#include "sim_fixture.h"
#include "tolvek_extend_payload.h"

namespace {

constexpr int k_wait_ms = 3000;

class ExtServiceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr,
                                           nullptr, &os, k_wait_ms, &client),
                  QMI_NO_ERR);
    }
    void TearDown() override
    {
        if (client) qmi_client_release(client);
    }

    /* Sends `payload` with `code`; returns the response message. */
    template <typename T>
    tolvek_extend_msg send(uint32_t code, const T &payload, uint32_t data_len = TOLVEK_EXTEND_DATA_MAX)
    {
        tolvek_extend_msg req, resp;
        memset(&req, 0, sizeof(req));
        memset(&resp, 0, sizeof(resp));
        req.msg_code = code;
        req.data_len = data_len;
        req.data_valid = 1;
        memcpy(req.data, &payload, sizeof(payload));
        EXPECT_EQ(qmi_client_send_msg_sync(client, TOLVEK_EXTEND_REQ_MSG_ID_V01, &req, sizeof(req), &resp,
                                           sizeof(resp), k_wait_ms),
                  QMI_NO_ERR);
        return resp;
    }

    tolvek_efs_rsp efs(const tolvek_efs_req &req)
    {
        tolvek_extend_msg resp = send(REQUEST_ID_EFS, req);
        tolvek_efs_rsp rsp;
        memcpy(&rsp, resp.data, sizeof(rsp));
        return rsp;
    }

    sim_instance sim;
    qmi_client_type client = nullptr;
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
    int32_t id = efs(efs_req(TOLVEK_EFS_OP_WRITE, "/t/open", 255, 1000, 414, 0)).result;
    ASSERT_GE(id, 0);
    ASSERT_LE(id, 254);
    uint8_t open = uint8_t(id);
    const struct {
        const char *what;
        tolvek_efs_req req;
        int32_t result;
    } cases[] = {
        {"unknown instance", efs_req(TOLVEK_EFS_OP_WRITE, "/t/open", 200, 1000, 10, 414), -9},
        {"another file's instance", efs_req(TOLVEK_EFS_OP_WRITE, "/t/other", open, 1000, 10, 414), -9},
        {"another total", efs_req(TOLVEK_EFS_OP_WRITE, "/t/open", open, 999, 10, 414), -9},
        {"new transfer not at 0", efs_req(TOLVEK_EFS_OP_WRITE, "/t/x", 255, 10, 5, 5), -22},
        {"chunk above 414", efs_req(TOLVEK_EFS_OP_WRITE, "/t/x", 255, 1000, 415, 0), -22},
        {"total above 102410", efs_req(TOLVEK_EFS_OP_WRITE, "/t/x", 255, 102411, 10, 0), -27},
        {"overrun", efs_req(TOLVEK_EFS_OP_WRITE, "/t/x", 255, 10, 11, 0), -27},
        {"path of 71", efs_req(TOLVEK_EFS_OP_WRITE, "/" + std::string(70, 'a'), 255, 1, 1, 0), -36},
        {"empty path", efs_req(TOLVEK_EFS_OP_WRITE, "", 255, 1, 1, 0), -22},
        {"relative path", efs_req(TOLVEK_EFS_OP_WRITE, "t/x", 255, 1, 1, 0), -22},
        {"dot component", efs_req(TOLVEK_EFS_OP_WRITE, "/t/../x", 255, 1, 1, 0), -22},
        {"unknown operation", efs_req(9, "/t/x"), -22},
        /* A gap drops the transfer: its id is unknown afterwards. */
        {"gap", efs_req(TOLVEK_EFS_OP_WRITE, "/t/open", open, 1000, 10, 500), -22},
        {"after the gap", efs_req(TOLVEK_EFS_OP_WRITE, "/t/open", open, 1000, 10, 414), -9},
    };
    for (const auto &c : cases) EXPECT_EQ(efs(c.req).result, c.result) << c.what;
    tolvek_efs_req bad_sub = efs_req(TOLVEK_EFS_OP_READ, "/t/x");
    bad_sub.sub_id = 2;
    EXPECT_EQ(efs(bad_sub).result, -22);
    EXPECT_EQ(sim.ctl("efs get /t/open"), "error -2") << "nothing of a broken transfer is committed";
}

TEST_F(ExtServiceTest, ReadAnswersFromTheRequestedOffset)
{
    sim.ctl_ok("efs put /t/r " + std::string(2 * 500, '1'));
    tolvek_efs_rsp first = efs(efs_req(TOLVEK_EFS_OP_READ, "/t/r"));
    EXPECT_EQ(first.result, 0);
    EXPECT_EQ(first.data_len_all, 500u);
    EXPECT_EQ(first.data_len_send, 424u);
    tolvek_efs_req at = efs_req(TOLVEK_EFS_OP_READ, "/t/r");
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
        {efs_req(TOLVEK_EFS_OP_READ, "/t/none"), -2},
        {efs_req(TOLVEK_EFS_OP_DELETE, "/t/none"), -2},
        {efs_req(TOLVEK_EFS_OP_READ, "/t"), -21},
        {efs_req(TOLVEK_EFS_OP_DELETE, "/t"), -21},
        {efs_req(TOLVEK_EFS_OP_WRITE, "/t", 255, 1, 1, 0), -21},
        {efs_req(TOLVEK_EFS_OP_READ, "/" + std::string(71, 'a')), -36},
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
        tolvek_extend_msg resp = send(REQUEST_ID_EFS, r);
        tolvek_efs_rsp rsp;
        memcpy(&rsp, resp.data, sizeof(rsp));
        return rsp;
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

TEST_F(ExtServiceTest, CommonCommandsAndOtherRequestCodes)
{
    uint32_t unknown_cmd[4] = {7, 0, 0, 0};
    tolvek_common_rsp rsp;
    tolvek_extend_msg resp = send(REQUEST_ID_COMMON, unknown_cmd);
    memcpy(&rsp, resp.data, sizeof(rsp));
    EXPECT_EQ(rsp.word, 7u);
    EXPECT_EQ(rsp.result, -95);

    uint8_t bytes[3] = {1, 2, 3};
    resp = send(0, bytes, 3);
    EXPECT_EQ(resp.msg_code, 0u);
    EXPECT_EQ(resp.data_len, 3u);
    EXPECT_EQ(resp.data[2], 3) << "echo";
    resp = send(1, bytes, 0);
    EXPECT_STREQ(reinterpret_cast<const char *>(resp.data + 12), "RLKSIM-EXT 1.1");
    resp = send(3, bytes, 0);
    EXPECT_EQ(resp.data_len, 16u);
    EXPECT_EQ(resp.data[0], 4) << "four requests served, this one included";
    EXPECT_EQ(send(5, bytes, 0).data_len, 8u);
    resp = send(6, bytes, 0);
    EXPECT_EQ(resp.msg_code, 0x5Eu);
    EXPECT_EQ(resp.data_valid, 0);
}

}  // namespace
