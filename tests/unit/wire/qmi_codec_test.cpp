/* The element-table codec: the extension message's exact TLVs, and the
 * malformed inputs a decoder must refuse. */
#include <string.h>

#include <vector>

#include <gtest/gtest.h>

#include "qmi_codec.h"
#include "tolvek_extend_service_v01.h"

namespace {

std::vector<uint8_t> encode_ext(const tolvek_extend_msg &m)
{
    std::vector<uint8_t> out(600);
    uint32_t n = 0;
    EXPECT_EQ(qmi_idl_message_encode(tolvek_extend_get_service_object_v01(), QMI_IDL_REQUEST, 0x0002, &m,
                                     sizeof(m), out.data(), uint32_t(out.size()), &n),
              0);
    out.resize(n);
    return out;
}

int decode_ext(const std::vector<uint8_t> &tlvs, tolvek_extend_msg *m)
{
    return qmi_idl_message_decode(tolvek_extend_get_service_object_v01(), QMI_IDL_RESPONSE, 0x0002, tlvs.data(),
                                  uint32_t(tlvs.size()), m, sizeof(*m));
}

TEST(ExtensionWire, RequestEncodesToThreeTlvsAndBack)
{
    tolvek_extend_msg m;
    memset(&m, 0, sizeof(m));
    m.msg_code = REQUEST_ID_COMMON;
    m.data_len = 3;
    m.data_valid = 1;
    m.data[0] = 0xAA;
    m.data[1] = 0x7E;
    m.data[2] = 0x01;
    std::vector<uint8_t> w = encode_ext(m);
    ASSERT_EQ(w.size(), 529u);
    const uint8_t head[] = {0x01, 4, 0, 4, 0, 0, 0, 0x02, 4, 0, 3, 0, 0, 0, 0x10, 0x00, 0x02};
    EXPECT_EQ(0, memcmp(w.data(), head, sizeof(head)));
    EXPECT_EQ(w[17], 0xAA);
    EXPECT_EQ(w[18], 0x7E);
    EXPECT_EQ(w[19], 0x01);
    for (size_t i = 20; i < w.size(); i++) ASSERT_EQ(w[i], 0) << "payload byte " << i;

    tolvek_extend_msg back;
    ASSERT_EQ(decode_ext(w, &back), 0);
    EXPECT_EQ(0, memcmp(&back, &m, sizeof(m)));
}

TEST(ExtensionWire, AbsentPayloadTlvLeavesValidFlagClear)
{
    tolvek_extend_msg m;
    memset(&m, 0, sizeof(m));
    m.msg_code = 7;
    m.data_len = 12;
    std::vector<uint8_t> w = encode_ext(m);
    EXPECT_EQ(w.size(), 14u);
    tolvek_extend_msg back;
    memset(&back, 0xFF, sizeof(back));
    ASSERT_EQ(decode_ext(w, &back), 0);
    EXPECT_EQ(back.data_valid, 0);
    EXPECT_EQ(back.msg_code, 7u);
    EXPECT_EQ(back.data[0], 0) << "the destination is zeroed before decoding";
}

TEST(ExtensionWire, ObjectDescribesTheService)
{
    qmi_idl_service_object_type svc = tolvek_extend_get_service_object_v01();
    ASSERT_NE(svc, nullptr);
    uint32_t v = 0;
    EXPECT_EQ(qmi_idl_get_service_id(svc, &v), 0);
    EXPECT_EQ(v, 0xFFE4u);
    EXPECT_EQ(qmi_idl_get_message_c_struct_len(svc, QMI_IDL_INDICATION, 0x0003, &v), 0);
    EXPECT_EQ(v, 524u);
    EXPECT_EQ(qmi_idl_get_message_c_struct_len(svc, QMI_IDL_INDICATION, 0x0002, &v), QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND);
    EXPECT_EQ(tolvek_extend_get_service_object_internal_v01(2, 1, 6), nullptr);
}

/* A small message with an optional variable array and a nested result. */
struct sample_msg {
    qmi_response_type_v01 resp;
    uint8_t list_valid;
    uint32_t list_len;
    uint16_t list[4];
};

qmi_elem_info sample_ei[] = {
    {QMI_STRUCT, 1, sizeof(qmi_response_type_v01), NO_ARRAY, 0x02, offsetof(sample_msg, resp),
     qmi_response_type_v01_ei},
    {QMI_OPT_FLAG, 1, 1, NO_ARRAY, 0x10, offsetof(sample_msg, list_valid), nullptr},
    {QMI_DATA_LEN, 1, 4, NO_ARRAY, 0x10, offsetof(sample_msg, list_len), nullptr},
    {QMI_UNSIGNED_2_BYTE, 4, 2, VAR_LEN_ARRAY, 0x10, offsetof(sample_msg, list), nullptr},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

int decode_sample(const std::vector<uint8_t> &w, sample_msg *m)
{
    return qmi_codec_decode(sample_ei, w.data(), w.size(), m, sizeof(*m));
}

TEST(QmiCodec, VariableArrayAndNestedResultRoundTrip)
{
    sample_msg m = {};
    m.resp.result = 1;
    m.resp.error = 0x30;
    m.list_valid = 1;
    m.list_len = 2;
    m.list[0] = 0x1234;
    m.list[1] = 0xBEEF;
    uint8_t buf[64];
    size_t n = 0;
    ASSERT_EQ(qmi_codec_encode(sample_ei, &m, buf, sizeof(buf), &n), 0);
    const uint8_t expect[] = {0x02, 4, 0, 1, 0, 0x30, 0, 0x10, 6, 0, 2, 0, 0x34, 0x12, 0xEF, 0xBE};
    ASSERT_EQ(n, sizeof(expect));
    EXPECT_EQ(0, memcmp(buf, expect, n));
    sample_msg back;
    ASSERT_EQ(decode_sample(std::vector<uint8_t>(buf, buf + n), &back), 0);
    EXPECT_EQ(back.resp.error, 0x30);
    EXPECT_EQ(back.list_len, 2u);
    EXPECT_EQ(back.list[1], 0xBEEF);
}

TEST(QmiCodec, RefusesMalformedMessages)
{
    struct bad_case {
        const char *what;
        std::vector<uint8_t> bytes;
        int expect;
    };
    const bad_case cases[] = {
        {"TLV header cut short", {0x02, 4, 0, 0, 0, 0, 0, 0x10}, QMI_IDL_LIB_LENGTH_INCONSISTENCY},
        {"TLV length past the message", {0x02, 9, 0, 0, 0, 0, 0}, QMI_IDL_LIB_LENGTH_INCONSISTENCY},
        {"field shorter than its TLV says", {0x02, 3, 0, 0, 0, 0}, QMI_IDL_LIB_LENGTH_INCONSISTENCY},
        {"TLV longer than its fields", {0x02, 5, 0, 0, 0, 0, 0, 0}, QMI_IDL_LIB_LENGTH_INCONSISTENCY},
        {"count above the array size", {0x02, 4, 0, 0, 0, 0, 0, 0x10, 11, 0, 5, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5},
         QMI_IDL_LIB_ARRAY_TOO_BIG},
        {"mandatory TLV missing", {0x10, 2, 0, 0, 0}, QMI_IDL_LIB_MISSING_TLV},
        {"TLV repeated", {0x02, 4, 0, 0, 0, 0, 0, 0x02, 4, 0, 0, 0, 0, 0}, QMI_IDL_LIB_TLV_DUPLICATED},
        {"unknown mandatory TLV", {0x02, 4, 0, 0, 0, 0, 0, 0x05, 1, 0, 9}, QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV},
    };
    for (const bad_case &c : cases) {
        sample_msg m;
        EXPECT_EQ(decode_sample(c.bytes, &m), c.expect) << c.what;
    }
}

TEST(QmiCodec, SkipsUnknownOptionalTlv)
{
    std::vector<uint8_t> w = {0x22, 3, 0, 9, 9, 9, 0x02, 4, 0, 0, 0, 0, 0};
    sample_msg m;
    EXPECT_EQ(decode_sample(w, &m), 0);
    EXPECT_EQ(m.list_valid, 0);
}

TEST(QmiCodec, EncoderRefusesSmallBufferAndOversizedCount)
{
    sample_msg m = {};
    m.list_valid = 1;
    m.list_len = 5;
    uint8_t buf[64];
    size_t n = 0;
    EXPECT_EQ(qmi_codec_encode(sample_ei, &m, buf, sizeof(buf), &n), QMI_IDL_LIB_ARRAY_TOO_BIG);
    m.list_len = 1;
    EXPECT_EQ(qmi_codec_encode(sample_ei, &m, buf, 8, &n), QMI_IDL_LIB_BUFFER_TOO_SMALL);
}

TEST(QmiHeader, LengthMustMatchThePacket)
{
    uint8_t pkt[10];
    qmi_header_write(pkt, {QMI_TYPE_RESPONSE, 0x1234, 0x0002, 3});
    qmi_header h;
    EXPECT_TRUE(qmi_header_read(pkt, 10, &h));
    EXPECT_EQ(h.txn, 0x1234);
    EXPECT_FALSE(qmi_header_read(pkt, 9, &h));
    EXPECT_FALSE(qmi_header_read(pkt, 6, &h));
}

}  // namespace
