/* The UIM client against a private simulator: failure counting and
 * recovery, the subsystem-restart flag, the EID answer, indication 0x61,
 * and the ISD-R's answers to well- and badly-formed APDUs. */
#include <gtest/gtest.h>

#include "data_file.h"
#include "euicc_es10.h"
#include "sim_fixture.h"
#include "tolvek_log.h"
#include "tolvek_uim_client.h"
#include "user_identity_module_v01.h"

extern "C" qmi_client_error_type __real_qmi_client_send_msg_sync(qmi_client_type, unsigned int, void *, unsigned int,
                                                                void *, unsigned int, unsigned int);

namespace {

/* Upper bound of every wait: failures end quickly, success never waits. */
constexpr int k_wait_ms = 3000;
constexpr uint8_t k_slot1 = 1, k_slot2 = 2;
const std::string k_seed_eid = "89049032000001000000000000000074";

/* The unit-test binary links with --wrap=qmi_client_send_msg_sync: the next
 * g_forced_sends calls give g_forced_send_result without sending. */
std::atomic<int> g_forced_send_result{0};
std::atomic<int> g_forced_sends{0};

class UimClientTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        syslog_path = sim.dir() + "/test-syslog.log";
        g_tolvek_console_quiet = true;
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
    /* The EID the client gives for `slot`, over a buffer of 0xAA, in hex. */
    std::string eid_of(uint8_t slot)
    {
        std::vector<uint8_t> eid(TOLVEK_UIM_EID_LEN, 0xAA);
        EXPECT_EQ(tolvek_uim_request_eid(&slot, eid.data()), 0);
        return hex(eid.data(), eid.size());
    }
    /* Whether every one of `parts` is in some line of the system log. */
    bool logged(const std::vector<std::string> &parts) const
    {
        std::string log;
        for (const std::string &l : texts(read_log_file(syslog_path, false))) log += l + "\n";
        return std::all_of(parts.begin(), parts.end(), [&](const std::string &p) { return log.find(p) != log.npos; });
    }

    sim_instance sim;
    std::string syslog_path;
};

/* Three failed requests drop the handle and the fourth reconnects; a
 * service gone in the middle of a request drops it at once. */
TEST_F(UimClientTest, ThreeFailedRequestsDropTheHandleAndServiceGoneMidRequestAtOnce)
{
    /* A time-out and the library's own -1 are counted alike. */
    for (int rc : {int(QMI_TIMEOUT_ERR), int(QMI_INTERNAL_ERR)}) {
        ASSERT_EQ(power(1), 0);
        ASSERT_NE(uim_qmi_client.load(), nullptr);
        if (rc == QMI_TIMEOUT_ERR) {
            g_tolvek_uim_sync_timeout_ms = 300; /* a dropped request times out at once, not after 3 s */
            sim.ctl_ok("drop uim 0x30 3");
        } else {
            g_forced_send_result = rc;
            g_forced_sends = 3;
        }
        for (uint32_t i = 1; i <= 3; i++) {
            const int result = power(0);
            EXPECT_EQ(facts(result, failed_cnt.load(), uim_qmi_client.load() == nullptr), facts(rc, i, i == 3));
        }
        EXPECT_TRUE(logged({"send msg sync client error = " + std::to_string(rc) + ", failed_cnt = 3",
                            "uicc_power_ex res = " + std::to_string(rc) + ", failed_cnt = 3", "QMI error, try recovery"}));
        g_tolvek_uim_sync_timeout_ms = TOLVEK_UIM_SYNC_TIMEOUT_MS;
        const int result = power(0);
        EXPECT_EQ(facts(result, uim_qmi_client.load() != nullptr, failed_cnt.load()), "0 1 0\n");
        EXPECT_TRUE(logged({"tolvek_uim_request_uicc_power_ex try init_uim_qmi_client"}));
    }
    sim.ctl_ok("uim crash-on 0x31 50");
    const int result = power(1);
    EXPECT_EQ(facts(result, uim_qmi_client.load() == nullptr, failed_cnt.load()), facts(QMI_SERVICE_ERR, 1, 1));
    /* The next request waits for the service to come back. */
    EXPECT_EQ(power(1), 0);
    EXPECT_EQ(failed_cnt.load(), 0u);
}

/* A subsystem restart sets the flag and the next request reconnects. */
TEST_F(UimClientTest, SubsystemRestartEidOnlyFromAValidAnswerAndIndicationsDecoded)
{
    const std::string untouched(2 * TOLVEK_UIM_EID_LEN, 'a');
    ASSERT_EQ(eid_of(k_slot2), k_seed_eid); /* the eUICC's EID */
    sim.ctl_ok("ssr uim 100");
    ASSERT_TRUE(poll_until([] { return SSR_Detected.load() == 1; }, k_wait_ms));
    EXPECT_TRUE(logged({"QMI error callback -2", "SSR Detected, set SSR_Detected 1"}));
    EXPECT_EQ(eid_of(k_slot2), k_seed_eid);
    EXPECT_TRUE(logged({"SSR_Detected, try recovery"}));
    EXPECT_EQ(SSR_Detected.load(), 0);
    EXPECT_EQ(eid_of(k_slot1), untouched);  /* success, but no EID: validity 0 */
    sim.ctl_ok("error uim 0x65 0x5A 1");
    EXPECT_EQ(eid_of(k_slot2), untouched); /* the modem refuses */

    sim.ctl_ok("uim ind97 1 5");
    ASSERT_TRUE(poll_until([&] { return logged({"qmi_client_message_decode result = 0", "msg_id 97"}); }, k_wait_ms));
    /* A result TLV two bytes short does not decode. */
    sim.ctl_ok("ind uim 0x61 02020001");
    EXPECT_TRUE(poll_until([&] { return logged({"purge guti failed. resp.result = 0 ,resp.result = 0"}); }, k_wait_ms));
    /* Other indications are only reported. */
    sim.ctl_ok("uim slot-ind");
    EXPECT_TRUE(poll_until([&] { return logged({"msg_id 72"}); }, k_wait_ms));
}

TEST_F(UimClientTest, IsdrAnswersWithRealStatusWords)
{
    uint8_t ch = 0;
    uint16_t sw = 0;
    ASSERT_EQ(tolvek_uim_open_logical_channel(k_slot2, k_es10_isdr_aid, k_es10_isdr_aid_len, &ch, &sw), 0);
    ASSERT_EQ(facts(sw, int(ch)), facts(k_sw_ok, 1));
    for (const auto &c : data_rows(__FILE__, "isdr_apdus.data", '\t')) {
        std::vector<uint8_t> apdu = unhex(c[2]);
        uint8_t rsp[QMI_UIM_APDU_DATA_MAX_V01];
        uint32_t len = sizeof(rsp);
        uint8_t channel = uint8_t(std::stoi(c[1]));
        ASSERT_EQ(tolvek_uim_send_apdu(k_slot2, channel, apdu.data(), uint32_t(apdu.size()), rsp, &len), 0) << c[0];
        EXPECT_EQ(hex(rsp, len), c[3]) << c[0];
    }
    EXPECT_EQ(tolvek_uim_close_logical_channel(k_slot2, ch), 0);
    /* Closing twice and opening an unknown application are refused. */
    EXPECT_EQ(tolvek_uim_close_logical_channel(k_slot2, ch), 0x30);
    const uint8_t other_aid[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02};
    EXPECT_EQ(tolvek_uim_open_logical_channel(k_slot2, other_aid, sizeof(other_aid), &ch, &sw), 0x30);
    EXPECT_EQ(sw, k_sw_not_found);
    EXPECT_EQ(failed_cnt.load(), 0u) << "refusals by the modem are not transport failures";
}

/* Card and slot status as a generic client (qmicli's --uim-get-card-status
 * and --uim-get-slot-status) reads them, before and after slot 2 is
 * powered down. */
TEST_F(UimClientTest, CardAndSlotStatusFollowThePower)
{
    qmi_client_os_params os = {};
    qmi_client_type client = nullptr;
    ASSERT_EQ(qmi_client_init_instance(uim_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os,
                                       k_wait_ms, &client),
              QMI_NO_ERR);
    auto card = std::make_unique<uim_get_card_status_resp_msg_v01>();
    uim_get_slots_status_resp_msg_v01 slots;
    std::ostringstream t;
    for (bool on : {true, false}) {
        ASSERT_EQ(on ? 0 : power(0), 0);
        ASSERT_EQ(qmi_client_send_msg_sync(client, QMI_UIM_GET_CARD_STATUS_REQ_V01, nullptr, 0, card.get(), sizeof(*card),
                                           k_wait_ms),
                  QMI_NO_ERR);
        ASSERT_EQ(qmi_client_send_msg_sync(client, QMI_UIM_GET_SLOTS_STATUS_REQ_V01, nullptr, 0, &slots,
                                           sizeof(slots), k_wait_ms),
                  QMI_NO_ERR);
        const uim_card_info_type_v01 &c2 = card->card_status.card_info[1];
        const auto &st = slots.status;
        t << "power " << on << ": result " << card->resp.result << " cards " << card->card_status.card_info_len
          << " gw apps " << std::hex << card->card_status.index_gw_pri << " " << card->card_status.index_gw_sec
          << std::dec << "\ncard 2: state " << int(c2.card_state) << " error " << int(c2.error_code) << " apps "
          << c2.app_info_len << " first app state " << (c2.app_info_len ? int(c2.app_info[0].app_state) : -1)
          << "\nslots " << st.physical_slot_status_len << ": slot 2 state " << st.physical_slot_status[1].physical_slot_state
          << ", eids " << st.eid_info_len << ": " << hex(st.eid_info[0].eid, st.eid_info[0].eid_len) << "/"
          << hex(st.eid_info[1].eid, st.eid_info[1].eid_len) << "\n";
    }
    qmi_client_release(client);
    expect_golden(t.str(), __FILE__, "uim_card_slot_status.golden");
}

}  // namespace

extern "C" qmi_client_error_type __wrap_qmi_client_send_msg_sync(qmi_client_type handle, unsigned int msg_id,
                                                                void *req, unsigned int req_len, void *resp,
                                                                unsigned int resp_len, unsigned int timeout_ms)
{
    int left = g_forced_sends.load();
    while (left > 0) {
        if (g_forced_sends.compare_exchange_weak(left, left - 1)) return g_forced_send_result.load();
    }
    return __real_qmi_client_send_msg_sync(handle, msg_id, req, req_len, resp, resp_len, timeout_ms);
}
