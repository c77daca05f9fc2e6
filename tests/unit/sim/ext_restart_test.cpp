/* The simulator's restart, full dump and NV sync requests on the wire: the
 * answer leaves before the services go down, malformed requests change
 * nothing, the restart delay control. */
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "qmi_client.h"
#include "sim_fixture.h"
#include "state_store.h"
#include "tolvek_extend_payload.h"

namespace {

constexpr int k_wait_ms = 3000;

class ExtRestartTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        sim.ctl_ok("ext restart-delay 200");
        qmi_client_os_params os = {};
        ASSERT_EQ(qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr,
                                           nullptr, &os, k_wait_ms, &client),
                  QMI_NO_ERR);
    }
    void TearDown() override
    {
        if (client) qmi_client_release(client);
    }

    /* Sends typed request `type` with `len` value bytes; returns the
     * common result, or 1 when the exchange itself failed. */
    int32_t typed(uint32_t type, uint32_t len, uint32_t value)
    {
        tolvek_common_req req;
        memset(&req, 0, sizeof(req));
        req.cmd_code = TOLVEK_COMMON_CMD_TYPED;
        req.type = type;
        req.len = len;
        memcpy(req.value, &value, sizeof(value));
        tolvek_extend_msg msg, resp;
        memset(&msg, 0, sizeof(msg));
        memset(&resp, 0, sizeof(resp));
        msg.msg_code = REQUEST_ID_COMMON;
        msg.data_len = TOLVEK_EXTEND_DATA_MAX;
        msg.data_valid = 1;
        memcpy(msg.data, &req, sizeof(req));
        if (qmi_client_send_msg_sync(client, TOLVEK_EXTEND_REQ_MSG_ID_V01, &msg, sizeof(msg), &resp, sizeof(resp),
                                     k_wait_ms) != QMI_NO_ERR) {
            return 1;
        }
        tolvek_common_rsp rsp;
        memcpy(&rsp, resp.data, sizeof(rsp));
        return rsp.result;
    }

    long long counter(const std::string &name) { return atoll(sim.ctl_ok("counter get " + name).c_str()); }

    /* Polls (bounded) until the services list does or does not show a
     * service down. */
    bool services_down_within(bool down, int ms)
    {
        long long end = monotonic_ms() + ms;
        do {
            if ((sim.ctl_ok("services").find("down") != std::string::npos) == down) return true;
            usleep(5 * 1000);
        } while (monotonic_ms() < end);
        return false;
    }

    sim_instance sim;
    qmi_client_type client = nullptr;
};

TEST_F(ExtRestartTest, RestartAnswersFirstThenGoesDownAndComesBack)
{
    long long start = monotonic_ms();
    EXPECT_EQ(typed(31, 4, 4096), 0);
    EXPECT_TRUE(services_down_within(true, 1000));
    EXPECT_TRUE(services_down_within(false, 2000));
    EXPECT_GE(monotonic_ms() - start, 200);
    EXPECT_EQ(counter("ext.ssr"), 1);
    EXPECT_EQ(counter("ext.restart.down"), 1);
    EXPECT_EQ(counter("ext.restart.up"), 1);
    /* The old connection went with the restart. */
    EXPECT_EQ(typed(35, 0, 0), 1);
}

TEST_F(ExtRestartTest, FullDumpWritesADumpFileThenRestarts)
{
    EXPECT_EQ(typed(31, 4, 8192), 0);
    std::vector<uint8_t> dump;
    ASSERT_TRUE(modemd::read_whole_file(sim.state_dir() + "/dumps/modem_full_dump_1.txt", &dump));
    std::string text(dump.begin(), dump.end());
    EXPECT_EQ(text.compare(0, 29, "rlk-modemd modem full dump 1\n"), 0) << text;
    EXPECT_NE(text.find("\n  /nvm/num/550 9\n"), std::string::npos) << text;
    EXPECT_TRUE(services_down_within(true, 1000));
    EXPECT_EQ(counter("ext.full_dump"), 1);
    EXPECT_EQ(counter("ext.ssr"), 0);
}

TEST_F(ExtRestartTest, MalformedRequestsAreRefusedWithoutRestart)
{
    struct {
        uint32_t len;
        uint32_t value;
        int32_t result;
    } cases[] = {{0, 4096, -22}, {8, 4096, -22}, {4, 4095, -95}, {4, 0, -95}, {4, 4096 | 8192, -95}};
    for (const auto &c : cases) EXPECT_EQ(typed(31, c.len, c.value), c.result) << c.len << " " << c.value;
    /* Still served on the same connection, and the sync counts. */
    EXPECT_EQ(typed(35, 0, 0), 0);
    EXPECT_EQ(typed(35, 0, 0), 0);
    EXPECT_EQ(counter("ext.nv_sync"), 2);
    EXPECT_EQ(counter("ext.restart.down"), 0);
    EXPECT_EQ(sim.ctl_ok("services").find("down"), std::string::npos);
}

}  // namespace
