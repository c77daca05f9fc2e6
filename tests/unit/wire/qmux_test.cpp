/* QMUX framing: frames split across reads, several in one read, and the
 * resynchronisation over bytes that start no frame. */
#include <gtest/gtest.h>

#include "qmux.h"

namespace {

std::vector<uint8_t> frame(uint8_t service, uint8_t cid, const std::vector<uint8_t> &qmi)
{
    std::vector<uint8_t> f;
    EXPECT_TRUE(qmux_encode(0, service, cid, qmi.data(), qmi.size(), &f));
    return f;
}

TEST(QmuxFraming, EncodesTheLengthOfEverythingAfterTheInterfaceByte)
{
    std::vector<uint8_t> qmi = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 3, QMI_CTL_MSG_GET_VERSION_INFO, {});
    EXPECT_EQ(frame(0, 0, qmi), (std::vector<uint8_t>{0x01, 0x0b, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x21, 0x00,
                                                      0x00, 0x00}));
    std::vector<uint8_t> out;
    std::vector<uint8_t> huge(0xFFFF - QMUX_LENGTH_OVERHEAD + 1);
    EXPECT_FALSE(qmux_encode(0, 1, 1, huge.data(), huge.size(), &out)) << "does not fit the length field";
}

TEST(QmuxFraming, ReaderReassemblesSplitAndJoinedFrames)
{
    std::vector<uint8_t> a = frame(0x0b, 1, {0, 1, 0, 0x2f, 0, 0, 0});
    std::vector<uint8_t> b = frame(0x24, 7, {0, 2, 0, 0x24, 0, 3, 0, 0x10, 0, 0});
    std::vector<uint8_t> both = a;
    both.insert(both.end(), b.begin(), b.end());
    for (size_t cut = 0; cut <= both.size(); cut++) {
        qmux_reader r;
        qmux_frame f;
        r.feed(both.data(), cut);
        std::vector<qmux_frame> got;
        while (r.next(&f)) got.push_back(f);
        r.feed(both.data() + cut, both.size() - cut);
        while (r.next(&f)) got.push_back(f);
        ASSERT_EQ(got.size(), 2u) << "cut at " << cut;
        EXPECT_EQ(got[0].service, 0x0b);
        EXPECT_EQ(got[0].client, 1);
        EXPECT_EQ(got[0].qmi, std::vector<uint8_t>(a.begin() + 6, a.end()));
        EXPECT_EQ(got[1].service, 0x24);
        EXPECT_EQ(got[1].client, 7);
        EXPECT_FALSE(r.partial());
        EXPECT_EQ(r.skipped_bytes(), 0u);
    }
}

TEST(QmuxFraming, ReaderSkipsBytesThatStartNoFrame)
{
    struct noise_case {
        const char *what;
        std::vector<uint8_t> noise;
    } cases[] = {
        {"wrong interface type", {0x02, 0x7e, 0x00}},
        {"length shorter than any header", {0x01, 0x05, 0x00, 0x00, 0x00, 0x00}},
        {"zero length", {0x01, 0x00, 0x00}},
    };
    std::vector<uint8_t> good = frame(0x02, 3, {0, 9, 0, 0x23, 0, 0, 0});
    for (const noise_case &c : cases) {
        qmux_reader r;
        std::vector<uint8_t> in = c.noise;
        in.insert(in.end(), good.begin(), good.end());
        r.feed(in.data(), in.size());
        qmux_frame f;
        ASSERT_TRUE(r.next(&f)) << c.what;
        EXPECT_EQ(f.service, 0x02) << c.what;
        EXPECT_EQ(r.skipped_bytes(), c.noise.size()) << c.what;
        EXPECT_FALSE(r.next(&f));
    }
}

TEST(QmuxFraming, ResetDropsAnAbandonedFrame)
{
    std::vector<uint8_t> good = frame(0x02, 3, {0, 9, 0, 0x23, 0, 0, 0});
    qmux_reader r;
    r.feed(good.data(), 5);
    qmux_frame f;
    EXPECT_FALSE(r.next(&f));
    EXPECT_TRUE(r.partial());
    r.reset();
    r.feed(good.data(), good.size());
    EXPECT_TRUE(r.next(&f));
}

TEST(QmuxTlvs, FindAndResultReadRefuseMalformedAreas)
{
    std::vector<uint8_t> area = qmi_result_tlv(0);
    qmi_tlv_append(&area, 0x01, {0x0b, 0x05});
    std::vector<uint8_t> v;
    ASSERT_TRUE(qmi_tlv_find(area.data(), area.size(), 0x01, &v));
    EXPECT_EQ(v, (std::vector<uint8_t>{0x0b, 0x05}));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size(), 0x10, &v));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size() - 1, 0x01, &v)) << "last TLV runs past the area";
    uint16_t err = 1;
    EXPECT_TRUE(qmi_result_read(area.data(), area.size(), &err));
    EXPECT_EQ(err, 0);
    std::vector<uint8_t> failed = qmi_result_tlv(QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED);
    EXPECT_TRUE(qmi_result_read(failed.data(), failed.size(), &err));
    EXPECT_EQ(err, QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED);
    std::vector<uint8_t> no_reason = {QMI_TLV_RESULT, 4, 0, 1, 0, 0, 0};
    EXPECT_TRUE(qmi_result_read(no_reason.data(), no_reason.size(), &err));
    EXPECT_NE(err, 0) << "a failure without an error number is still a failure";
    std::vector<uint8_t> short_result = {QMI_TLV_RESULT, 2, 0, 0, 0};
    EXPECT_FALSE(qmi_result_read(short_result.data(), short_result.size(), &err));
}

}  // namespace
