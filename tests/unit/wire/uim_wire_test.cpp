/* The UIM messages on the wire (one-byte slots and counts under 32-bit C
 * fields), the BER-TLV reader of the ES10 exchange, and the EID check of
 * the eSIM switch. */
#include <string.h>

#include <vector>

#include <gtest/gtest.h>

#include "ber_tlv.h"
#include "tolvek_cmn_esim.h"
#include "user_identity_module_v01.h"

namespace {

qmi_idl_service_object_type uim() { return uim_get_service_object_v01(); }

template <typename T>
std::vector<uint8_t> encode(qmi_idl_type_of_message_type type, uint16_t id, const T &msg)
{
    std::vector<uint8_t> out(2048);
    uint32_t n = 0;
    EXPECT_EQ(qmi_idl_message_encode(uim(), type, id, &msg, sizeof(msg), out.data(), uint32_t(out.size()), &n), 0);
    out.resize(n);
    return out;
}

template <typename T>
int decode(qmi_idl_type_of_message_type type, uint16_t id, const std::vector<uint8_t> &tlvs, T *msg)
{
    return qmi_idl_message_decode(uim(), type, id, tlvs.data(), uint32_t(tlvs.size()), msg, sizeof(*msg));
}

TEST(UimWire, PowerUpTravelsAsPublicTlvs)
{
    uim_power_up_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.slot = UIM_SLOT_2_V01;
    req.ignore_hotswap_switch_valid = 1;
    req.ignore_hotswap_switch = 1;
    req.mode_valid = 1;
    req.mode = UIM_CARD_MODE_TELECOM_CARD_V01;
    std::vector<uint8_t> want = {0x01, 0x01, 0x00, 0x02, 0x10, 0x01, 0x00, 0x01, 0x11, 0x01, 0x00, 0x00};
    EXPECT_EQ(encode(QMI_IDL_REQUEST, QMI_UIM_POWER_UP_REQ_V01, req), want);
    uim_power_up_req_msg_v01 back;
    memset(&back, 0x55, sizeof(back));
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_POWER_UP_REQ_V01, want, &back), 0);
    EXPECT_EQ(back.slot, UIM_SLOT_2_V01) << "the upper bytes of the 32-bit slot are cleared";
    EXPECT_EQ(back.mode, UIM_CARD_MODE_TELECOM_CARD_V01);
    /* qmicli's power-off form: the slot alone. */
    uim_power_down_req_msg_v01 down;
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_POWER_DOWN_REQ_V01, {0x01, 0x01, 0x00, 0x02}, &down), 0);
    EXPECT_EQ(down.slot, UIM_SLOT_2_V01);
}

TEST(UimWire, EidResponseLandsAtItsOffsetsAndRefusesAnOversizeCount)
{
    std::vector<uint8_t> tlvs = {0x02, 0x04, 0x00, 0x01, 0x00, 0x5A, 0x00, 0x10, 0x03, 0x00, 0x02, 0x89, 0x04};
    uim_get_eid_resp_msg_v01 resp;
    ASSERT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, tlvs, &resp), 0);
    EXPECT_EQ(resp.resp.result, 1);
    EXPECT_EQ(resp.resp.error, 0x5A);
    EXPECT_EQ(resp.eid_value_valid, 1);
    EXPECT_EQ(resp.eid_value_len, 2u);
    EXPECT_EQ(resp.eid_value[0], 0x89);
    std::vector<uint8_t> too_long = {0x02, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x01, 0x00, 17};
    too_long.resize(too_long.size() + 17, 0x11);
    too_long[8] = 18;
    EXPECT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, too_long, &resp), QMI_IDL_LIB_ARRAY_TOO_BIG);
    EXPECT_EQ(decode(QMI_IDL_RESPONSE, QMI_UIM_GET_EID_REQ_V01, std::vector<uint8_t>{0x10, 0x01, 0x00, 0x00}, &resp),
              QMI_IDL_LIB_MISSING_TLV);
}

TEST(UimWire, ApduCarriesATwoByteCount)
{
    uim_send_apdu_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.slot = UIM_SLOT_2_V01;
    req.apdu_len = 300;
    memset(req.apdu, 0xE2, req.apdu_len);
    req.channel_id_valid = 1;
    req.channel_id = 2;
    std::vector<uint8_t> tlvs = encode(QMI_IDL_REQUEST, QMI_UIM_SEND_APDU_REQ_V01, req);
    ASSERT_EQ(tlvs.size(), 4u + 3u + 2u + 300u + 4u);
    EXPECT_EQ(tlvs[7], 0x2C);
    EXPECT_EQ(tlvs[8], 0x01);
    uim_send_apdu_req_msg_v01 back;
    ASSERT_EQ(decode(QMI_IDL_REQUEST, QMI_UIM_SEND_APDU_REQ_V01, tlvs, &back), 0);
    EXPECT_EQ(back.apdu_len, 300u);
    EXPECT_EQ(back.channel_id, 2);
}

TEST(BerTlv, TagsLengthsAndTruncation)
{
    struct {
        std::vector<uint8_t> bytes;
        size_t taken;
        uint32_t tag;
        size_t len;
    } cases[] = {
        {{0x5A, 0x01, 0x07}, 3, 0x5A, 1},
        {{0xBF, 0x2D, 0x00}, 3, 0xBF2D, 0},
        {{0x9F, 0x70, 0x01, 0x01, 0xEE}, 4, 0x9F70, 1},
        {std::vector<uint8_t>{0xA0, 0x81, 0x80}, 0, 0, 0}, /* 128 bytes promised, none there */
        {{0xBF, 0x2D}, 0, 0, 0},                            /* no length */
        {{0xBF, 0xFF, 0xFF, 0x7F, 0x00}, 0, 0, 0},          /* a four-byte tag */
        {{0x04, 0x83, 0x00, 0x00, 0x01, 0x00}, 0, 0, 0},    /* three length bytes */
    };
    for (const auto &c : cases) {
        ber_tlv t;
        EXPECT_EQ(ber_tlv_parse(c.bytes.data(), c.bytes.size(), &t), c.taken);
        if (c.taken) {
            EXPECT_EQ(t.tag, c.tag);
            EXPECT_EQ(t.len, c.len);
        }
    }
    std::vector<uint8_t> big(200, 0x33), out;
    ASSERT_TRUE(ber_tlv_append(&out, 0xA0, big));
    EXPECT_EQ(out[1], 0x81);
    ber_tlv t;
    EXPECT_EQ(ber_tlv_parse(out.data(), out.size(), &t), out.size());
    EXPECT_EQ(t.len, 200u);
    std::vector<uint8_t> list = {0x5A, 0x01, 0x01, 0x80, 0x01, 0x02};
    ASSERT_TRUE(ber_tlv_find(list.data(), list.size(), 0x80, &t));
    EXPECT_EQ(t.value[0], 0x02);
    EXPECT_FALSE(ber_tlv_find(list.data(), list.size(), 0x81, &t));
}

TEST(EsimEid, DigitsAndCheckValue)
{
    struct {
        const char *hex;
        bool valid;
    } cases[] = {
        {"89049032000001000000000000000074", true},
        {"89049032000001000000000000000075", false}, /* modulo 97 is 2 */
        {"8904903200000100000000000000007A", false}, /* not a decimal digit */
        {"00000000000000000000000000000000", false},
        {"00000000000000000000000000000001", true}, /* the smallest value that checks */
    };
    for (const auto &c : cases) {
        uint8_t eid[16];
        for (int i = 0; i < 16; i++) {
            unsigned v = 0;
            sscanf(c.hex + 2 * i, "%2x", &v);
            eid[i] = uint8_t(v);
        }
        EXPECT_EQ(tolvek_esim_eid_valid(eid), c.valid) << c.hex;
    }
}

}  // namespace
