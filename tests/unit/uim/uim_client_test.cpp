/* The UIM client against a private simulator: failure counting and
 * recovery, the subsystem-restart flag, the EID answer, indication 0x61,
 * and the ISD-R's answers to well- and badly-formed APDUs. */
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "euicc_es10.h"
#include "sim_fixture.h"
#include "tolvek_log.h"
#include "tolvek_uim_client.h"
#include "user_identity_module_v01.h"

namespace {

/* Upper bound of every wait: failures end quickly, success never waits. */
constexpr int k_wait_ms = 3000;
/* A dropped request times out after this long (instead of 3 s). */
constexpr unsigned k_short_timeout_ms = 150;
constexpr uint8_t k_slot1 = 1, k_slot2 = 2;
const uint8_t k_seed_eid[TOLVEK_UIM_EID_LEN] = {0x89, 0x04, 0x90, 0x32, 0x00, 0x00, 0x01, 0x00,
                                                0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x74};

bool wait_until(const std::function<bool()> &cond)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_wait_ms);
    while (!cond()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

class UimClientTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        syslog_path = sim.dir() + "/syslog";
        setenv("RLK_SYSLOG_FILE", syslog_path.c_str(), 1);
        g_tolvek_console_quiet = true;
        g_tolvek_uim_sync_timeout_ms = k_short_timeout_ms;
    }
    void TearDown() override
    {
        uim_qmi_client_recovery();
        g_tolvek_uim_sync_timeout_ms = TOLVEK_UIM_SYNC_TIMEOUT_MS;
        g_tolvek_console_quiet = false;
        unsetenv("RLK_SYSLOG_FILE");
    }

    int power(int up, int slot = k_slot2)
    {
        tolvek_uim_power_params p = {up, slot, 1};
        return tolvek_uim_request_uicc_power_ex(&p);
    }
    bool logged(const std::string &text) const
    {
        auto lines = texts(read_log_file(syslog_path, false));
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string &l) { return l.find(text) != std::string::npos; });
    }

    sim_instance sim;
    std::string syslog_path;
};

TEST_F(UimClientTest, ThreeTimedOutRequestsDropTheHandleAndTheFourthReconnects)
{
    ASSERT_EQ(power(1), 0);
    qmi_client_type first = uim_qmi_client.load();
    ASSERT_NE(first, nullptr);
    sim.ctl_ok("drop uim 0x30 3");
    for (uint32_t i = 1; i <= 3; i++) {
        EXPECT_EQ(power(0), QMI_TIMEOUT_ERR);
        EXPECT_EQ(failed_cnt.load(), i);
        EXPECT_EQ(uim_qmi_client.load() == nullptr, i == 3) << "after failure " << i;
    }
    EXPECT_TRUE(logged("QMI error, try recovery"));
    EXPECT_EQ(power(0), 0);
    EXPECT_NE(uim_qmi_client.load(), nullptr);
    EXPECT_EQ(failed_cnt.load(), 0u);
    EXPECT_TRUE(logged("tolvek_uim_request_uicc_power_ex try init_uim_qmi_client"));
}

TEST_F(UimClientTest, ServiceGoneInTheMiddleOfARequestRecoversAtOnce)
{
    ASSERT_EQ(power(1), 0);
    sim.ctl_ok("uim crash-on 0x31 50");
    EXPECT_EQ(power(1), QMI_SERVICE_ERR);
    EXPECT_EQ(uim_qmi_client.load(), nullptr);
    EXPECT_EQ(failed_cnt.load(), 1u);
    /* The next request waits for the service to come back. */
    EXPECT_EQ(power(1), 0);
    EXPECT_EQ(failed_cnt.load(), 0u);
}

TEST_F(UimClientTest, SubsystemRestartSetsTheFlagAndTheNextRequestReconnects)
{
    uint8_t eid[TOLVEK_UIM_EID_LEN] = {0};
    ASSERT_EQ(tolvek_uim_request_eid(&k_slot2, eid), 0);
    sim.ctl_ok("ssr uim 100");
    ASSERT_TRUE(wait_until([] { return SSR_Detected.load() == 1; }));
    EXPECT_TRUE(logged("QMI error callback -2"));
    EXPECT_TRUE(logged("SSR Detected, set SSR_Detected 1"));
    memset(eid, 0, sizeof(eid));
    EXPECT_EQ(tolvek_uim_request_eid(&k_slot2, eid), 0);
    EXPECT_TRUE(logged("SSR_Detected, try recovery"));
    EXPECT_EQ(SSR_Detected.load(), 0);
    EXPECT_EQ(memcmp(eid, k_seed_eid, sizeof(eid)), 0);
}

TEST_F(UimClientTest, EidIsCopiedOnlyWhenTheAnswerIsValid)
{
    struct {
        uint8_t slot;
        const char *fault;
        bool copied;
    } cases[] = {
        {k_slot2, nullptr, true},          /* the eUICC's EID */
        {k_slot1, nullptr, false},         /* success, but no EID: validity 0 */
        {k_slot2, "error uim 0x65 0x5A 1", false}, /* the modem refuses */
    };
    for (const auto &c : cases) {
        if (c.fault) sim.ctl_ok(c.fault);
        uint8_t eid[TOLVEK_UIM_EID_LEN];
        memset(eid, 0xAA, sizeof(eid));
        EXPECT_EQ(tolvek_uim_request_eid(&c.slot, eid), 0);
        uint8_t untouched[TOLVEK_UIM_EID_LEN];
        memset(untouched, 0xAA, sizeof(untouched));
        EXPECT_EQ(memcmp(eid, c.copied ? k_seed_eid : untouched, sizeof(eid)), 0) << "slot " << int(c.slot);
    }
}

TEST_F(UimClientTest, IndicationNinetySevenIsDecodedAndABadOneReported)
{
    uint8_t eid[TOLVEK_UIM_EID_LEN];
    ASSERT_EQ(tolvek_uim_request_eid(&k_slot2, eid), 0);
    sim.ctl_ok("uim ind97 1 5");
    ASSERT_TRUE(wait_until([&] { return logged("qmi_client_message_decode result = 0"); }));
    EXPECT_TRUE(logged("msg_id 97"));
    /* A result TLV two bytes short does not decode. */
    sim.ctl_ok("ind uim 0x61 02020001");
    ASSERT_TRUE(wait_until([&] { return logged("purge guti failed. resp.result = 0 ,resp.result = 0"); }));
    /* Other indications are only reported. */
    sim.ctl_ok("uim slot-ind");
    EXPECT_TRUE(wait_until([&] { return logged("msg_id 72"); }));
}

/* A STORE DATA command on `channel` carrying `data`. */
std::vector<uint8_t> store_data(uint8_t channel, const std::vector<uint8_t> &data)
{
    std::vector<uint8_t> apdu = {es10_store_data_cla(channel), k_es10_ins_store_data, k_es10_p1_last_block, 0,
                                 uint8_t(data.size())};
    apdu.insert(apdu.end(), data.begin(), data.end());
    apdu.push_back(0);
    return apdu;
}

TEST_F(UimClientTest, IsdrAnswersWithRealStatusWords)
{
    uint8_t channel = 0;
    uint16_t sw = 0;
    ASSERT_EQ(tolvek_uim_open_logical_channel(k_slot2, k_es10_isdr_aid, k_es10_isdr_aid_len, &channel, &sw), 0);
    EXPECT_EQ(sw, k_sw_ok);
    const std::vector<uint8_t> enabled_iccid = {0x98, 0x44, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x71};
    std::vector<uint8_t> delete_enabled = {0xBF, 0x33, 0x0C, 0x5A, 0x0A};
    delete_enabled.insert(delete_enabled.end(), enabled_iccid.begin(), enabled_iccid.end());
    std::vector<uint8_t> bad_cla = store_data(channel, {0xBF, 0x2D, 0x00});
    bad_cla[0] = 0x00;
    std::vector<uint8_t> bad_ins = store_data(channel, {0xBF, 0x2D, 0x00});
    bad_ins[1] = 0xCA;
    std::vector<uint8_t> bad_lc = store_data(channel, {0xBF, 0x2D, 0x00});
    bad_lc[4] = 9;
    struct {
        const char *what;
        std::vector<uint8_t> apdu;
        uint8_t on_channel;
        std::vector<uint8_t> tail; /* last bytes of the answer */
    } cases[] = {
        {"list", store_data(channel, {0xBF, 0x2D, 0x00}), channel, {0x90, 0x00}},
        {"unknown ES10 tag", store_data(channel, {0xBF, 0x3E, 0x00}), channel, {0x6A, 0x88}},
        {"delete of the enabled profile", store_data(channel, delete_enabled), channel, {0x80, 0x01, 0x02, 0x90, 0x00}},
        {"class byte of another channel", bad_cla, channel, {0x6E, 0x00}},
        {"not STORE DATA", bad_ins, channel, {0x6D, 0x00}},
        {"Lc beyond the data", bad_lc, channel, {0x67, 0x00}},
        {"truncated TLV", store_data(channel, {0xBF, 0x2D, 0x05}), channel, {0x6A, 0x80}},
        {"channel not open", store_data(3, {0xBF, 0x2D, 0x00}), 3, {0x68, 0x81}},
    };
    for (const auto &c : cases) {
        uint8_t rsp[QMI_UIM_APDU_DATA_MAX_V01];
        uint32_t len = sizeof(rsp);
        ASSERT_EQ(tolvek_uim_send_apdu(k_slot2, c.on_channel, c.apdu.data(), uint32_t(c.apdu.size()), rsp, &len), 0)
            << c.what;
        ASSERT_GE(len, c.tail.size()) << c.what;
        EXPECT_EQ(std::vector<uint8_t>(rsp + len - c.tail.size(), rsp + len), c.tail) << c.what;
    }
    EXPECT_EQ(tolvek_uim_close_logical_channel(k_slot2, channel), 0);
    /* Closing twice and opening an unknown application are refused. */
    EXPECT_EQ(tolvek_uim_close_logical_channel(k_slot2, channel), 0x30);
    const uint8_t other_aid[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02};
    EXPECT_EQ(tolvek_uim_open_logical_channel(k_slot2, other_aid, sizeof(other_aid), &channel, &sw), 0x30);
    EXPECT_EQ(sw, k_sw_not_found);
    EXPECT_EQ(failed_cnt.load(), 0u) << "refusals by the modem are not transport failures";
}

}  // namespace
