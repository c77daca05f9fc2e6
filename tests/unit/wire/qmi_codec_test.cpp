/* The element-table codec: the extension message's exact TLVs, and the
 * malformed inputs a decoder must refuse. */
#include <string.h>

#include <tuple>

#include <gtest/gtest.h>

#include "data_file.h"
#include "qmi_codec.h"
#include "tolvek_extend_service_v01.h"

namespace {

using bytes = std::vector<uint8_t>;

TEST(ExtensionWire, MessagesEncodeToTheirTlvsAndBack)
{
    qmi_idl_service_object_type svc = tolvek_extend_get_service_object_v01();
    tolvek_extend_msg full = {REQUEST_ID_COMMON, 3, 1, {0xAA, 0x7E, 0x01}}, back;
    tolvek_extend_msg bare = {7, 12, 0, {}}; /* no payload TLV: only code and length */
    bytes want_full = unhex("01040004000000 02040003000000 100002aa7e01");
    bytes want_bare = unhex("01040007000000 0204000c000000");
    want_full.resize(529);
    for (const auto &c : {std::make_pair(&full, &want_full), std::make_pair(&bare, &want_bare)}) {
        bytes w(600);
        uint32_t n = 0;
        ASSERT_EQ(qmi_idl_message_encode(svc, QMI_IDL_REQUEST, 0x0002, c.first, sizeof(*c.first), w.data(),
                                         uint32_t(w.size()), &n),
                  0);
        w.resize(n);
        EXPECT_EQ(w, *c.second);
        memset(&back, 0xFF, sizeof(back));
        ASSERT_EQ(qmi_idl_message_decode(svc, QMI_IDL_RESPONSE, 0x0002, w.data(), n, &back, sizeof(back)), 0);
        EXPECT_EQ(0, memcmp(&back, c.first, sizeof(back))) << "the destination is zeroed before decoding";
    }

    uint32_t v = 0;
    EXPECT_EQ(qmi_idl_get_service_id(svc, &v), 0);
    EXPECT_EQ(v, 0xFFE4u);
    EXPECT_EQ(qmi_idl_get_message_c_struct_len(svc, QMI_IDL_INDICATION, 0x0003, &v), 0);
    EXPECT_EQ(v, 524u);
    EXPECT_EQ(qmi_idl_get_message_c_struct_len(svc, QMI_IDL_INDICATION, 0x0002, &v), QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND);
    EXPECT_EQ(qmi_idl_get_idl_minor_version(svc, &v), 0);
    EXPECT_EQ(v, svc->idl_minor_version);
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

TEST(QmiCodec, EncodesWithinItsBoundsAndRoundTrips)
{
    sample_msg m = {{1, 0x30}, 1, 5, {0x1234, 0xBEEF}}, back;
    uint8_t buf[64];
    size_t n = 0;
    EXPECT_EQ(qmi_codec_encode(sample_ei, &m, buf, sizeof(buf), &n), QMI_IDL_LIB_ARRAY_TOO_BIG) << "count 5 of 4";
    m.list_len = 4;
    EXPECT_EQ(qmi_codec_encode(sample_ei, &m, buf, 19, &n), QMI_IDL_LIB_BUFFER_TOO_SMALL) << "one byte short";
    ASSERT_EQ(qmi_codec_encode(sample_ei, &m, buf, 20, &n), 0) << "the last array element fits";
    EXPECT_EQ(n, 20u);
    m.list_len = 2;
    ASSERT_EQ(qmi_codec_encode(sample_ei, &m, buf, sizeof(buf), &n), 0);
    EXPECT_EQ(bytes(buf, buf + n), (bytes{0x02, 4, 0, 1, 0, 0x30, 0, 0x10, 6, 0, 2, 0, 0x34, 0x12, 0xEF, 0xBE}));
    ASSERT_EQ(qmi_codec_decode(sample_ei, buf, n, &back, sizeof(back)), 0);
    EXPECT_EQ(std::make_tuple(back.resp.result, back.resp.error, back.list_valid, back.list_len, back.list[1]),
              std::make_tuple(1, 0x30, 1, 2u, 0xBEEF));
}

TEST(QmiCodec, DecoderRefusesMalformedMessages)
{
    expect_cases(__FILE__, "qmi_decode.cases", [](const words &w) {
        bytes in = unhex(joined(w));
        sample_msg m;
        int rc = qmi_codec_decode(sample_ei, in.data(), in.size(), &m, sizeof(m));
        return std::to_string(rc) + (rc ? "" : " list " + std::to_string(m.list_valid));
    });
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
