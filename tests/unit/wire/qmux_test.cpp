/* QMUX framing: frames split across reads, several in one read, and the
 * resynchronisation over bytes that start no frame; the TLV area reads. */
#include <map>
#include <tuple>

#include <gtest/gtest.h>

#include "qmux.h"
#include "qmux_link.h"

namespace {

using bytes = std::vector<uint8_t>;

bytes frame(uint8_t service, uint8_t cid, const bytes &qmi)
{
    bytes f;
    EXPECT_TRUE(qmux_encode(0, service, cid, qmi.data(), qmi.size(), &f));
    return f;
}

TEST(QmuxFraming, EncodesTheLengthOfEverythingAfterTheInterfaceByte)
{
    bytes qmi = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 3, QMI_CTL_MSG_GET_VERSION_INFO, {});
    EXPECT_EQ(frame(0, 0, qmi), (bytes{0x01, 0x0b, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x21, 0x00, 0x00, 0x00}));
    bytes out, huge(0xFFFF - QMUX_LENGTH_OVERHEAD + 1);
    EXPECT_FALSE(qmux_encode(0, 1, 1, huge.data(), huge.size(), &out)) << "does not fit the length field";
    EXPECT_TRUE(qmux_encode(0, 1, 1, huge.data(), huge.size() - 1, &out)) << "the longest that fits";
    EXPECT_EQ(out.size(), 0x10000u);
}

TEST(QmuxFraming, ReaderReassemblesSplitAndJoinedFrames)
{
    bytes a = frame(0x0b, 1, {0, 1, 0, 0x2f, 0, 0, 0});
    bytes b = frame(0x24, 7, {0, 2, 0, 0x24, 0, 3, 0, 0x10, 0, 0});
    bytes both = a;
    both.insert(both.end(), b.begin(), b.end());
    for (size_t cut = 0; cut <= both.size(); cut++) {
        qmux_reader r;
        qmux_frame f;
        std::vector<qmux_frame> got;
        r.feed(both.data(), cut);
        while (r.next(&f)) got.push_back(f);
        r.feed(both.data() + cut, both.size() - cut);
        while (r.next(&f)) got.push_back(f);
        ASSERT_EQ(got.size(), 2u) << "cut at " << cut;
        EXPECT_EQ(std::tie(got[0].service, got[0].client, got[0].qmi),
                  std::make_tuple(0x0b, 1, bytes(a.begin() + 6, a.end())));
        EXPECT_EQ(std::tie(got[1].service, got[1].client, got[1].qmi),
                  std::make_tuple(0x24, 7, bytes(b.begin() + 6, b.end())));
        EXPECT_FALSE(r.partial());
        EXPECT_EQ(r.skipped_bytes(), 0u);
    }
}

TEST(QmuxFraming, ReaderSkipsBytesThatStartNoFrameAndResetDropsAHalfFrame)
{
    const bytes good = frame(0x02, 3, {0, 9, 0, 0x23, 0, 0, 0});
    const bytes noises[] = {
        {0x02, 0x7e, 0x00},                     /* wrong interface type */
        {0x01, 0x05, 0x00, 0x00, 0x00, 0x00}, /* length shorter than any header */
        {0x01, 0x00, 0x00},                     /* zero length */
    };
    for (const bytes &noise : noises) {
        qmux_reader r;
        bytes in = noise;
        in.insert(in.end(), good.begin(), good.end());
        r.feed(in.data(), in.size());
        qmux_frame f;
        ASSERT_TRUE(r.next(&f)) << noise.size();
        EXPECT_EQ(f.service, 0x02);
        EXPECT_EQ(r.skipped_bytes(), noise.size());
        EXPECT_FALSE(r.next(&f));
    }
    qmux_reader r;
    qmux_frame f;
    r.feed(good.data(), 5);
    EXPECT_FALSE(r.next(&f));
    EXPECT_TRUE(r.partial());
    r.reset();
    r.feed(good.data(), good.size());
    EXPECT_TRUE(r.next(&f));
}

TEST(QmuxTlvs, FindAndResultReadRefuseMalformedAreas)
{
    bytes area = qmi_result_tlv(0), v;
    qmi_tlv_append(&area, 0x01, {0x0b, 0x05});
    ASSERT_TRUE(qmi_tlv_find(area.data(), area.size(), 0x01, &v));
    EXPECT_EQ(v, (bytes{0x0b, 0x05}));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size(), 0x10, &v));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size() - 1, 0x01, &v)) << "last TLV runs past the area";
    const struct {
        bytes area;
        bool ok;
        uint16_t err;
    } results[] = {
        {area, true, 0},
        {qmi_result_tlv(QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED), true, QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED},
        {{QMI_TLV_RESULT, 4, 0, 1, 0, 0, 0}, true, QMI_PROTOCOL_ERR_INTERNAL}, /* failure without a number */
        {{QMI_TLV_RESULT, 4, 0, 0, 0, 9, 0}, true, 0},                          /* success with one */
        {{QMI_TLV_RESULT, 2, 0, 0, 0}, false, 0x5555},
    };
    for (const auto &c : results) {
        uint16_t err = 0x5555;
        EXPECT_EQ(qmi_result_read(c.area.data(), c.area.size(), &err), c.ok);
        EXPECT_EQ(err, c.err);
    }
}

/* The control service's version list: its count and its length both bound
 * the entries taken, and an error answer leaves the versions unknown. */
TEST(QmuxLinkVersions, CountAndLengthBothBoundTheEntries)
{
    const bytes ok = {0x02, 0x04, 0x00, 0, 0, 0, 0};
    const bytes failed = {0x02, 0x04, 0x00, 1, 0, 0x1a, 0};
    const bytes entries = {0x0b, 0x01, 0x00, 0x02, 0x00, 0x03, 0x03, 0x00, 0x01, 0x00};
    const struct {
        bytes result;
        uint8_t count;
        size_t entry_bytes;
        std::map<uint8_t, uint16_t> majors;
    } cases[] = {
        {ok, 2, 10, {{0x0b, 1}, {0x03, 3}}},
        {ok, 1, 10, {{0x0b, 1}}},
        {ok, 3, 10, {{0x0b, 1}, {0x03, 3}}},
        {ok, 2, 9, {{0x0b, 1}}},
        {failed, 2, 10, {}},
    };
    for (const auto &c : cases) {
        bytes list = {c.count};
        list.insert(list.end(), entries.begin(), entries.begin() + long(c.entry_bytes));
        bytes answer = c.result;
        qmi_tlv_append(&answer, QMI_CTL_TLV_INFO, list);
        rlk_host::qmux_link::device d;
        rlk_host::qmux_link::take_versions(d, answer);
        EXPECT_EQ(d.majors, c.majors) << int(c.count) << " " << c.entry_bytes;
        EXPECT_EQ(d.have_versions, !c.majors.empty());
    }
}

}  // namespace
