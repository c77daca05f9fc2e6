/* The vendor statistics service's element tables through the shared codec:
 * the 0x0207 answer round trip at its full size, the result words that are
 * 32-bit in C and 16-bit on the wire, and malformed lists refused. */
#include <string.h>

#include <gtest/gtest.h>

#include "data_file.h"
#include "orvex_vs_service_v01.h"

namespace {

const qmi_idl_service_object_type g_svc = orvex_vs_get_service_object_v01();

int decode_stats_answer(const std::vector<uint8_t> &wire, orvex_vs_get_stats_resp_msg_v01 *out)
{
    return qmi_idl_message_decode(g_svc, QMI_IDL_RESPONSE, ORVEX_VS_GET_STATS_MSG_ID_V01, wire.data(),
                                  uint32_t(wire.size()), out, ORVEX_VS_GET_STATS_RESP_BUF_LEN);
}

TEST(OrvexVsIdl, FullAnswerRoundTripsWithinItsLimits)
{
    auto resp = std::make_unique<orvex_vs_get_stats_resp_msg_v01>();
    resp->data_list_valid = 1;
    resp->data_list_len = ORVEX_VS_GET_STATS_LIST_MAX;
    for (uint32_t i = 0; i < ORVEX_VS_GET_STATS_LIST_MAX; i++) {
        resp->data_list[i].data_id = uint16_t(82 + i);
        resp->data_list[i].sub = 1;
        resp->data_list[i].update_count = 1000 + i;
        resp->data_list[i].data_len = 701; /* any value travels: the tool judges it */
        memset(resp->data_list[i].data, int(i + 1), ORVEX_VS_DATA_MAX);
    }
    uint32_t max = 0, n = 0;
    ASSERT_EQ(qmi_idl_get_max_message_len(g_svc, QMI_IDL_RESPONSE, ORVEX_VS_GET_STATS_MSG_ID_V01, &max), 0);
    std::vector<uint8_t> wire(max);
    ASSERT_EQ(qmi_idl_message_encode(g_svc, QMI_IDL_RESPONSE, ORVEX_VS_GET_STATS_MSG_ID_V01, resp.get(), sizeof(*resp),
                                     wire.data(), max, &n),
              0);
    wire.resize(n);
    EXPECT_EQ(wire.size(), 7u + 3u + 2u + 712u * ORVEX_VS_GET_STATS_LIST_MAX);
    auto back = std::make_unique<orvex_vs_get_stats_resp_msg_v01>();
    ASSERT_EQ(decode_stats_answer(wire, back.get()), 0);
    EXPECT_EQ(memcmp(back.get(), resp.get(), sizeof(*resp)), 0);
}

TEST(OrvexVsIdl, ResultWordsAndMalformedLists)
{
    /* A bare failure answer (result TLV 0x02 only: u16 1, u16 48). */
    orvex_vs_get_stats_resp_msg_v01 resp;
    ASSERT_EQ(decode_stats_answer({0x02, 0x04, 0x00, 0x01, 0x00, 0x30, 0x00}, &resp), 0);
    EXPECT_EQ(facts(resp.result, resp.error, int(resp.data_list_valid)), "1 48 0\n");
    /* Eleven items announced: refused, never written past the list. */
    const uint16_t tlv_len = uint16_t(2 + 712 * 11);
    std::vector<uint8_t> eleven = {0x02, 0x04, 0, 0, 0, 0, 0, 0x10, uint8_t(tlv_len), uint8_t(tlv_len >> 8), 11, 0};
    eleven.resize(eleven.size() + 712 * 11, 0);
    EXPECT_EQ(decode_stats_answer(eleven, &resp), QMI_IDL_LIB_ARRAY_TOO_BIG);
    /* A request for eleven ids cannot even be encoded. */
    orvex_vs_get_stats_req_msg_v01 req = {};
    req.data_id_list_len = 11;
    uint8_t buf[64];
    uint32_t n = 0;
    EXPECT_EQ(qmi_idl_message_encode(g_svc, QMI_IDL_REQUEST, ORVEX_VS_GET_STATS_MSG_ID_V01, &req, sizeof(req), buf,
                                     sizeof(buf), &n),
              QMI_IDL_LIB_ARRAY_TOO_BIG);
    /* The largest indication fits one simulator packet. */
    uint32_t max = 0;
    ASSERT_EQ(qmi_idl_get_max_service_len(g_svc, &max), 0);
    EXPECT_LT(max + 7, 65536u);
    EXPECT_EQ(orvex_vs_get_service_object_internal_v01(2, 1, 6), nullptr);
}

}  // namespace
