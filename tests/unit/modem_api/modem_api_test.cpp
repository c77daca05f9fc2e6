/* The modem API layer without a modem: error translation, response
 * delivery and copying, the client table and the status fan-out. */
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <tuple>

#include <gtest/gtest.h>

#include "modem_api.h"
#include "modem_api_test_util.h"
#include "orvex_mem.h"

namespace {

/* Response words as the service's responses start. */
void *make_resp(uint32_t result, uint32_t error, const std::string &payload = "")
{
    auto *r = static_cast<orvex_vs_command_resp_msg_v01 *>(orvex_malloc_adv(sizeof(orvex_vs_command_resp_msg_v01), "t"));
    r->result = result;
    r->error = error;
    r->data_len = uint32_t(payload.size());
    memcpy(r->data, payload.data(), payload.size());
    return r;
}

struct delivery {
    int result;
    std::string data; /* copied payload; "<null>" for a null buffer with a length */
    bool had_buffer;
};

void record_delivery(int result, void *data, uint32_t len, void *user)
{
    auto *out = static_cast<std::vector<delivery> *>(user);
    out->push_back({result, data ? std::string(static_cast<char *>(data), len) : std::string(), data != nullptr});
    orvex_free_adv(data);
}

modem_api_cb_struct_type *make_cb(std::vector<delivery> *out)
{
    auto *cb = static_cast<modem_api_cb_struct_type *>(orvex_malloc_adv(sizeof(modem_api_cb_struct_type), "t"));
    cb->resp_fn = record_delivery;
    cb->user_data = out;
    return cb;
}

TEST(ModemApiErrorMap, EveryRowOfTheTable)
{
    const struct {
        int transp;
        uint32_t result, error;
        int expected;
    } rows[] = {
        {-5, 0, 0, MODEM_API_TRANSPORT_ERROR}, {-1, 1, 4, MODEM_API_TRANSPORT_ERROR}, {-3, 0, 0, MODEM_API_TIMEOUT},
        {-4, 0, 0, MODEM_API_FAILURE},         {-6, 0, 0, MODEM_API_FAILURE},         {-46, 0, 0, MODEM_API_FAILURE},
        {1, 0, 0, MODEM_API_FAILURE},          {0, 0, 0, MODEM_API_SUCCESS},          {-2, 0, 94, MODEM_API_SUCCESS},
        {0, 2, 0, MODEM_API_FAILURE},          {-2, 7, 0, MODEM_API_FAILURE},         {0, 1, 0, MODEM_API_SUCCESS},
        {-2, 1, 26, MODEM_API_SUCCESS},        {0, 1, 4, MODEM_API_ABORTED},          {0, 1, 17, MODEM_API_INVALID_ARG},
        {0, 1, 19, MODEM_API_INVALID_ARG},     {0, 1, 48, MODEM_API_INVALID_ARG},     {-2, 1, 49, MODEM_API_INVALID_ARG},
        {0, 1, 24, MODEM_API_NOT_SUPPORTED},   {0, 1, 42, MODEM_API_NOT_SUPPORTED},   {0, 1, 77, MODEM_API_NOT_SUPPORTED},
        {0, 1, 94, MODEM_API_NOT_SUPPORTED},   {0, 1, 52, MODEM_API_DEVICE_NOT_READY}, {0, 1, 1, MODEM_API_FAILURE},
        {0, 1, 51, MODEM_API_FAILURE},         {0, 1, 95, MODEM_API_FAILURE},         {0, 1, 0xFFFF, MODEM_API_FAILURE},
    };
    for (const auto &r : rows) {
        uint32_t resp[2] = {r.result, r.error};
        EXPECT_EQ(modem_api_map_qmi_error_to_modem_api(r.transp, resp), r.expected)
            << "transp " << r.transp << " result " << r.result << " error " << r.error;
    }
}

TEST(ModemApiResponse, DeliveryByCase)
{
    std::vector<delivery> got;
    /* A successful command: payload copy first, then result 2. */
    modem_api_process_response(ORVEX_VS_COMMAND_MSG_ID_V01, make_resp(0, 0, "abc"),
                               sizeof(orvex_vs_command_resp_msg_v01), make_cb(&got), QMI_NO_ERR);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].result, MODEM_API_SUCCESS);
    EXPECT_EQ(got[0].data, "abc");
    EXPECT_EQ(got[1].result, MODEM_API_RESPONSE_DONE);
    EXPECT_FALSE(got[1].had_buffer);

    /* Service error, result 1, error 26: success, payload delivered. */
    got.clear();
    modem_api_process_response(ORVEX_VS_COMMAND_MSG_ID_V01, make_resp(1, 26, "xy"),
                               sizeof(orvex_vs_command_resp_msg_v01), make_cb(&got), QMI_SERVICE_ERR);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].data, "xy");
    EXPECT_EQ(got[1].result, MODEM_API_RESPONSE_DONE);

    /* Another message id is not copied. */
    got.clear();
    modem_api_process_response(ORVEX_VS_GET_STATS_MSG_ID_V01, make_resp(0, 0, "zz"),
                               sizeof(orvex_vs_command_resp_msg_v01), make_cb(&got), QMI_NO_ERR);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].result, MODEM_API_RESPONSE_DONE);

    /* Error 95 yields 1, delivered as is. */
    got.clear();
    modem_api_process_response(ORVEX_VS_COMMAND_MSG_ID_V01, make_resp(1, 95), sizeof(orvex_vs_command_resp_msg_v01),
                               make_cb(&got), QMI_NO_ERR);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].result, MODEM_API_FAILURE);

    /* Missing or empty response: 3. */
    got.clear();
    modem_api_process_response(0, nullptr, 10, make_cb(&got), QMI_NO_ERR);
    modem_api_process_response(0, make_resp(0, 0), 0, make_cb(&got), QMI_NO_ERR);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].result, MODEM_API_NO_RESPONSE);
    EXPECT_EQ(got[1].result, MODEM_API_NO_RESPONSE);

    /* No callback data: nothing delivered, nothing leaked (ASan). */
    modem_api_process_response(0, make_resp(0, 0), sizeof(orvex_vs_command_resp_msg_v01), nullptr, QMI_NO_ERR);
    auto *empty = make_cb(&got);
    empty->resp_fn = nullptr;
    modem_api_process_response(0, make_resp(0, 0), sizeof(orvex_vs_command_resp_msg_v01), empty, QMI_NO_ERR);
    EXPECT_EQ(got.size(), 2u);
}

TEST(ModemApiResponse, CopyNeverReadsPastTheResponse)
{
    std::vector<delivery> got;
    modem_api_cb_struct_type cb = {record_delivery, &got};
    /* A payload length far above what the buffer holds is cut to it. */
    uint8_t resp[12 + 5] = {0};
    uint32_t head[3] = {0, 0, 1000};
    memcpy(resp, head, sizeof(head));
    memcpy(resp + 12, "hello", 5);
    modem_api_common_command_cb_handler(resp, sizeof(resp), &cb);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].data, "hello");
    /* A response shorter than its head is refused. */
    modem_api_common_command_cb_handler(resp, 8, &cb);
    modem_api_common_command_cb_handler(nullptr, 8, &cb);
    EXPECT_EQ(got.size(), 1u);
}

struct fan_event {
    int slot;
    uint32_t event; /* 0 for a status call */
    int status;
};

std::vector<fan_event> *g_fan = nullptr;

void fan_event_cb(uint32_t event, modem_api_qmi_client_e_type kind, void *user)
{
    EXPECT_EQ(kind, MODEM_API_QMI_CLIENT_SAR);
    g_fan->push_back({int(reinterpret_cast<intptr_t>(user)), event, -1});
}

void fan_status_cb(modem_api_qmi_client_e_type, modem_api_operational_status_type status, void *user)
{
    g_fan->push_back({int(reinterpret_cast<intptr_t>(user)), 0, int(status)});
}

class ModemApiTable : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-modem-api-XXXXXX";
        ASSERT_TRUE(mkdtemp(tmpl));
        dir = tmpl;
        logcat = fresh_logcat(dir, "logcat.log");
        modem_api_init();
    }
    void TearDown() override
    {
        modem_api_release();
        EXPECT_EQ(modem_api_client_count(), 0);
        std::string cmd = "rm -rf " + dir;
        EXPECT_EQ(system(cmd.c_str()), 0);
    }
    std::string dir, logcat;
};

TEST_F(ModemApiTable, EleventhRegistrationFailsAndSlotsAreReused)
{
    int32_t ids[MODEM_API_MAX_CLIENTS];
    for (int i = 0; i < MODEM_API_MAX_CLIENTS; i++) {
        ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, nullptr, nullptr, nullptr, &ids[i]), 0);
        EXPECT_EQ(ids[i], i);
    }
    int32_t extra = 99;
    EXPECT_NE(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_0, nullptr, nullptr, nullptr, &extra), 0);
    EXPECT_EQ(extra, MODEM_API_NO_CLIENT);
    EXPECT_TRUE(has_line(orvex_lines(logcat), "6 modem_api_init_client: no more client can be added"));
    EXPECT_EQ(modem_api_client_count(), MODEM_API_MAX_CLIENTS);

    /* The lowest free slot is taken again. */
    modem_api_free_client(3);
    modem_api_free_client(7);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_1, nullptr, nullptr, nullptr, &extra), 0);
    EXPECT_EQ(extra, 3);
    EXPECT_EQ(modem_api_client_at(3)->kind, uint32_t(MODEM_API_QMI_CLIENT_NAS_1));

    /* Freeing a free slot only logs. */
    modem_api_free_client(7);
    modem_api_free_client(-1);
    modem_api_free_client(MODEM_API_MAX_CLIENTS);
    std::vector<std::string> lines = orvex_lines(logcat);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "3 modem_api_free_client: client already freed"), 3);

    /* Invalid kinds are refused. */
    EXPECT_EQ(modem_api_init_client(modem_api_qmi_client_e_type(4), nullptr, nullptr, nullptr, &extra),
              MODEM_API_INVALID_ARG);

    /* After a release the table is empty and usable again. */
    modem_api_release();
    EXPECT_EQ(modem_api_client_count(), 0);
    modem_api_init();
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, nullptr, nullptr, nullptr, &extra), 0);
    EXPECT_EQ(extra, 0);
    EXPECT_TRUE(has_line(orvex_lines(logcat), "3 modem_api_init_client: new client: type 1, id 0"));
}

TEST_F(ModemApiTable, StatusFanOutByKindAndStatus)
{
    std::vector<fan_event> events;
    g_fan = &events;
    int32_t a = -1, b = -1, other = -1, silent = -1;
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, fan_event_cb, fan_status_cb, (void *)0, &a), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_NAS_0, fan_event_cb, fan_status_cb, (void *)1, &other), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, nullptr, nullptr, (void *)2, &silent), 0);
    ASSERT_EQ(modem_api_init_client(MODEM_API_QMI_CLIENT_SAR, fan_event_cb, nullptr, (void *)3, &b), 0);

    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_SUSPEND);
    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_RELEASED);
    modem_api_operational_status_cb(MODEM_API_QMI_CLIENT_SAR, MODEM_API_OPERATIONAL_STATUS_READY);

    /* Status 4 -> event 0x10001, 5 -> status call only, 3 -> event 0x10002;
     * the NAS client and the client without callbacks see nothing. */
    const std::vector<std::tuple<int, uint32_t, int>> expected = {
        {0, 0, 4}, {0, 0x10001, -1}, {3, 0x10001, -1}, {0, 0, 5}, {0, 0, 3}, {0, 0x10002, -1}, {3, 0x10002, -1},
    };
    ASSERT_EQ(events.size(), expected.size());
    for (size_t i = 0; i < expected.size(); i++) {
        EXPECT_EQ(events[i].slot, std::get<0>(expected[i])) << i;
        EXPECT_EQ(events[i].event, std::get<1>(expected[i])) << i;
        EXPECT_EQ(events[i].status, std::get<2>(expected[i])) << i;
    }
    /* Every client of the kind is logged for every status, 5 included. */
    std::vector<std::string> lines = orvex_lines(logcat);
    for (int slot : {a, silent, b}) {
        EXPECT_TRUE(has_line(lines, "3 modem_api_operational_status_cb: client type 1, client id " +
                                        std::to_string(slot) + ", operational_status 5"));
    }
    EXPECT_FALSE(has_line(lines, "3 modem_api_operational_status_cb: client type 1, client id " +
                                     std::to_string(other) + ", operational_status 5"));
    g_fan = nullptr;
}

}  // namespace
