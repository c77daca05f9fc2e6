/* The UIM messages on the wire (one-byte slots and counts under 32-bit C
 * fields), the BER-TLV reader of the ES10 exchange, and the EID check of
 * the eSIM switch. */
#include <stdio.h>
#include <string.h>

#include <tuple>

#include <gtest/gtest.h>

#include "ber_tlv.h"
#include "data_file.h"
#include "tolvek_cmn_esim.h"
#include "user_identity_module_v01.h"

namespace {

using bytes = std::vector<uint8_t>;

template <typename T>
bytes encode(uint16_t id, const T &msg)
{
    bytes out(2048);
    uint32_t n = 0;
    EXPECT_EQ(qmi_idl_message_encode(uim_get_service_object_v01(), QMI_IDL_REQUEST, id, &msg, sizeof(msg),
                                     out.data(), uint32_t(out.size()), &n),
              0);
    out.resize(n);
    return out;
}

/* Decodes into a destination filled with 0x55 first. */
template <typename T>
int decode(qmi_idl_type_of_message_type type, uint16_t id, const bytes &tlvs, T *msg)
{
    memset(msg, 0x55, sizeof(*msg));
    return qmi_idl_message_decode(uim_get_service_object_v01(), type, id, tlvs.data(), uint32_t(tlvs.size()), msg,
                                  sizeof(*msg));
}

TEST(UimWire, SlotsCountsAndLengthsTravelAsPublicTlvs)
{
    uim_power_up_req_msg_v01 up = {UIM_SLOT_2_V01, 1, 1, 1, UIM_CARD_MODE_TELECOM_CARD_V01}, up_back;
    bytes want = unhex("01010002 10010001 11010000");
    EXPECT_EQ(encode(QMI_UIM_POWER_UP_REQ_V01, up), want);
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_POWER_UP_REQ_V01, want, &up_back), 0);
    EXPECT_EQ(std::make_tuple(up_back.slot, up_back.ignore_hotswap_switch_valid, up_back.ignore_hotswap_switch,
                              up_back.mode_valid, up_back.mode),
              std::make_tuple(up.slot, 1, 1, 1, up.mode))
        << "the upper bytes of the 32-bit fields are cleared";
    uim_power_down_req_msg_v01 down; /* qmicli's power-off form: the slot alone */
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_POWER_DOWN_REQ_V01, unhex("01010002"), &down), 0);
    EXPECT_EQ(down.slot, UIM_SLOT_2_V01);

    uim_send_apdu_req_msg_v01 apdu = {UIM_SLOT_2_V01, 300, {}, 1, 2}, apdu_back;
    memset(apdu.apdu, 0xE2, apdu.apdu_len);
    bytes tlvs = encode(QMI_UIM_SEND_APDU_REQ_V01, apdu);
    ASSERT_EQ(tlvs.size(), 4u + 3u + 2u + 300u + 4u);
    EXPECT_EQ(hex(bytes(tlvs.begin() + 4, tlvs.begin() + 10)), "022e012c01e2");
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_SEND_APDU_REQ_V01, tlvs, &apdu_back), 0);
    EXPECT_EQ(std::make_tuple(apdu_back.slot, apdu_back.apdu_len, apdu_back.channel_id_valid, apdu_back.channel_id),
              std::make_tuple(apdu.slot, 300u, 1, 2));
    EXPECT_EQ(0, memcmp(apdu_back.apdu, apdu.apdu, sizeof(apdu.apdu)));

    bytes eid = unhex("02040001005a00 100300 02 8904");
    uim_get_eid_resp_msg_v01 resp;
    ASSERT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, eid, &resp), 0);
    EXPECT_EQ(std::make_tuple(resp.resp.result, resp.resp.error, resp.eid_value_valid, resp.eid_value_len),
              std::make_tuple(1, 0x5A, 1, 2u));
    EXPECT_EQ(hex(resp.eid_value, 3), "890400") << "zeroed past the count";
    eid = unhex("02040000000000 101200 11");
    eid.resize(eid.size() + 17, 0x11);
    EXPECT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, eid, &resp), QMI_IDL_LIB_ARRAY_TOO_BIG);
    eid[8] = 17;
    eid[10] = 16;
    eid.pop_back();
    EXPECT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, eid, &resp), 0) << "16 bytes fit";
    EXPECT_EQ(resp.eid_value_len, 16u);
    EXPECT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, unhex("10010000"), &resp), QMI_IDL_LIB_MISSING_TLV);
}

TEST(BerTlv, TagsLengthsAndTruncation)
{
    ber_tlv t;
    expect_cases(__FILE__, "ber_tlv.cases", [&](const words &w) {
        bytes in = unhex(w[0]);
        size_t taken = ber_tlv_parse(in.data(), in.size(), &t);
        char tag[16];
        snprintf(tag, sizeof(tag), " %x ", t.tag);
        return std::to_string(taken) + (taken ? tag + std::to_string(t.len) : "");
    });
    bytes big(200, 0x33), out;
    ASSERT_TRUE(ber_tlv_append(&out, 0xA0, big));
    EXPECT_EQ(bytes(out.begin(), out.begin() + 3), (bytes{0xA0, 0x81, 200}));
    EXPECT_EQ(ber_tlv_parse(out.data(), out.size(), &t), out.size());
    EXPECT_EQ(t.len, 200u);
    bytes list = {0x5A, 0x01, 0x01, 0x80, 0x01, 0x02};
    ASSERT_TRUE(ber_tlv_find(list.data(), list.size(), 0x80, &t));
    EXPECT_EQ(t.value[0], 0x02);
    EXPECT_FALSE(ber_tlv_find(list.data(), list.size(), 0x81, &t));
}

TEST(EsimEid, DigitsAndCheckValue)
{
    expect_cases(__FILE__, "eid.cases", [](const words &w) {
        return tolvek_esim_eid_valid(unhex(w[0]).data()) ? "valid" : "invalid";
    });
}

}  // namespace
