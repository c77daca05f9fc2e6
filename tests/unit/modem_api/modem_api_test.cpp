/* The modem API layer without a modem: error translation, response
 * delivery and copying, the client table and the status fan-out. */
#include <string.h>

#include <gtest/gtest.h>

#include "data_file.h"
#include "modem_api.h"
#include "modem_api_test_util.h"

namespace {

TEST(ModemApiErrorMap, EveryRowOfTheTable)
{
    for (const auto &r : data_rows(__FILE__, "error_map.data", '\t')) {
        uint32_t resp[2] = {uint32_t(std::stoul(r[1])), uint32_t(std::stoul(r[2]))};
        EXPECT_EQ(modem_api_map_qmi_error_to_modem_api(std::stoi(r[0]), resp), std::stoi(r[3]))
            << r[0] << " " << r[1] << " " << r[2];
    }
}

/* Each delivery as " <result>" or " <result>:<copied payload>". */
void record_delivery(int result, void *data, uint32_t len, void *user)
{
    std::string &d = *static_cast<std::string *>(user);
    d += " " + std::to_string(result);
    if (data) d += ":" + std::string(static_cast<char *>(data), len);
    orvex_free_adv(data);
}

TEST(ModemApiResponse, DeliveryByCaseAndCopyBounds)
{
    temp_logcat log;
    const uint32_t full = sizeof(orvex_vs_command_resp_msg_v01);
    for (const auto &r : data_rows(__FILE__, "responses.data", '\t')) {
        std::string got;
        auto *cb = static_cast<modem_api_cb_struct_type *>(orvex_malloc_adv(sizeof(modem_api_cb_struct_type), "t"));
        *cb = {record_delivery, &got};
        orvex_vs_command_resp_msg_v01 *resp = nullptr;
        if (r[3] != "-") {
            resp = static_cast<orvex_vs_command_resp_msg_v01 *>(orvex_malloc_adv(full, "t"));
            *resp = {uint32_t(std::stoul(r[1])), uint32_t(std::stoul(r[2])), uint32_t(r[3].size()), {}};
            memcpy(resp->data, r[3].data(), r[3].size());
        }
        const uint32_t len = r[4] == "full" ? full : uint32_t(std::stoul(r[4]));
        modem_api_process_response(unsigned(std::stoul(r[0], nullptr, 0)), resp, len, cb, std::stoi(r[5]));
        EXPECT_EQ(got.erase(0, 1), r[6]) << r[0] << " " << r[2];
    }
    /* No callback data or no function: nothing delivered, nothing leaked
     * (ASan). */
    modem_api_process_response(0, orvex_malloc_adv(full, "t"), full, nullptr, QMI_NO_ERR);
    auto *empty = static_cast<modem_api_cb_struct_type *>(orvex_malloc_adv(sizeof(modem_api_cb_struct_type), "t"));
    *empty = {nullptr, nullptr};
    modem_api_process_response(0, orvex_malloc_adv(full, "t"), full, empty, QMI_NO_ERR);

    /* The copy never reads past the response: a payload length far above
     * what the buffer holds is cut to it; a response shorter than its head
     * is refused. */
    std::string got;
    modem_api_cb_struct_type cb = {record_delivery, &got};
    uint8_t resp[12 + 5] = {0, 0, 0, 0, 0, 0, 0, 0, 0xE8, 0x03, 0, 0, 'h', 'e', 'l', 'l', 'o'};
    modem_api_common_command_cb_handler(resp, sizeof(resp), &cb);
    modem_api_common_command_cb_handler(resp, 8, &cb);
    modem_api_common_command_cb_handler(nullptr, 8, &cb);
    EXPECT_EQ(got, " 0:hello");
}

/* Status fan-out calls: "<slot> event <event>" or "<slot> status <status>". */
std::string g_fan;

void fan_event_cb(uint32_t event, modem_api_qmi_client_e_type kind, void *user)
{
    EXPECT_EQ(kind, MODEM_API_QMI_CLIENT_SAR);
    g_fan += std::to_string(reinterpret_cast<intptr_t>(user)) + " event " + std::to_string(event) + "\n";
}

void fan_status_cb(modem_api_qmi_client_e_type, modem_api_operational_status_type status, void *user)
{
    g_fan += std::to_string(reinterpret_cast<intptr_t>(user)) + " status " + std::to_string(status) + "\n";
}

/* The table's log and the fan-out calls are compared whole: the eleventh
 * registration refused, frees of free slots, every client of the kind
 * logged for every status, 5 included, the NAS client never. */
TEST(ModemApiTable, EleventhRegistrationFailsSlotsAreReusedAndStatusFansOut)
{
    temp_logcat log;
    modem_api_init();
    int32_t ids[MODEM_API_MAX_CLIENTS];
    for (int i = 0; i < MODEM_API_MAX_CLIENTS; i++) { /* ids 0 to 9: in the log */
        ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, nullptr, nullptr, nullptr, &ids[i]), 0);
    }
    int32_t extra = 99;
    EXPECT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_0, nullptr, nullptr, nullptr, &extra), MODEM_API_FAILURE);
    EXPECT_EQ(extra, MODEM_API_NO_CLIENT);
    EXPECT_EQ(modem_api_client_count(), MODEM_API_MAX_CLIENTS);
    /* The lowest free slot is taken again. */
    for (int32_t slot : {3, 7}) modem_api_free_client(slot);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_1, nullptr, nullptr, nullptr, &extra), 0);
    EXPECT_EQ(facts(extra, modem_api_client_at(3)->kind), facts(3, uint32_t(MODEM_API_QMI_CLIENT_NAS_1)));
    /* Freeing a free slot only logs. */
    for (int32_t slot : {7, -1, MODEM_API_MAX_CLIENTS}) modem_api_free_client(slot);
    EXPECT_EQ(modem_api_init_client(modem_api_qmi_client_e_type(4), nullptr, nullptr, nullptr, &extra),
              MODEM_API_INVALID_ARG);
    /* After a release the table is empty and usable again. */
    modem_api_release();
    EXPECT_EQ(modem_api_client_count(), 0);
    modem_api_init();

    int32_t a = -1, b = -1, other = -1, silent = -1;
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, fan_event_cb, fan_status_cb, (void *)0, &a), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_0, fan_event_cb, fan_status_cb, (void *)1, &other), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, nullptr, nullptr, (void *)2, &silent), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, fan_event_cb, nullptr, (void *)3, &b), 0);
    g_fan.clear();
    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_SUSPEND);
    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_RELEASED);
    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_READY);
    modem_api_release();
    EXPECT_EQ(modem_api_client_count(), 0);
    std::string logged;
    for (const std::string &l : orvex_lines(log.path)) {
        /* The allocator's first use in a process logs its own line (its own test checks it). */
        if (l.find("orvex_mem_init:") == std::string::npos) logged += l + "\n";
    }
    expect_golden(g_fan + "--- log\n" + logged, __FILE__, "modem_api_table.golden");
}

}  // namespace
