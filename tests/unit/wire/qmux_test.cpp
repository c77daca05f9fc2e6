/* QMUX framing: frames split across reads, several in one read, and the
 * resynchronisation over bytes that start no frame; the TLV area reads. */

#include <gtest/gtest.h>

#include "data_file.h"
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

/* The frames a reader finds in `in` fed in two parts cut at `cut`, what it
 * skipped, and whether a frame is left half-read. */
std::string read_frames(const bytes &in, size_t cut)
{
    qmux_reader r;
    qmux_frame f;
    std::string out;
    r.feed(in.data(), cut);
    while (r.next(&f)) out += hex(&f.service, 1) + "/" + hex(&f.client, 1) + ":" + hex(f.qmi) + " ";
    r.feed(in.data() + cut, in.size() - cut);
    while (r.next(&f)) out += hex(&f.service, 1) + "/" + hex(&f.client, 1) + ":" + hex(f.qmi) + " ";
    return out + "skipped " + std::to_string(r.skipped_bytes()) + (r.partial() ? " partial" : "");
}

/* Every case read whole and cut anywhere in two: the same frames. */
TEST(QmuxFraming, ReaderReassemblesSplitAndJoinedFramesAndSkipsBytesThatStartNoFrame)
{
    expect_cases(__FILE__, "qmux_reader.cases", [](const words &w) {
        bytes in = unhex(joined(w));
        for (size_t cut = 0; cut < in.size(); cut++) EXPECT_EQ(read_frames(in, cut), read_frames(in, in.size())) << cut;
        return read_frames(in, in.size());
    });
    const bytes good = frame(0x02, 3, {0, 9, 0, 0x23, 0, 0, 0});
    qmux_reader r;
    qmux_frame f;
    r.feed(good.data(), 5);
    r.reset();
    r.feed(good.data(), good.size());
    EXPECT_TRUE(r.next(&f)) << "a reset drops the half frame";
}

TEST(QmuxTlvs, FindAndResultReadRefuseMalformedAreas)
{
    bytes area = qmi_result_tlv(0), v;
    qmi_tlv_append(&area, 0x01, {0x0b, 0x05});
    ASSERT_TRUE(qmi_tlv_find(area.data(), area.size(), 0x01, &v));
    EXPECT_EQ(v, (bytes{0x0b, 0x05}));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size(), 0x10, &v));
    EXPECT_FALSE(qmi_tlv_find(area.data(), area.size() - 1, 0x01, &v)) << "last TLV runs past the area";
    EXPECT_EQ(hex(qmi_result_tlv(QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED)), "02040001000500");
    expect_cases(__FILE__, "qmi_result.cases", [](const words &w) {
        bytes tlvs = unhex(joined(w));
        uint16_t err = 0x5555;
        bool ok = qmi_result_read(tlvs.data(), tlvs.size(), &err);
        return std::string(ok ? "ok " : "refused ") + std::to_string(err);
    });
}

/* The control service's version list: its count and its length both bound
 * the entries taken, and an error answer leaves the versions unknown. */
TEST(QmuxLinkVersions, CountAndLengthBothBoundTheEntries)
{
    expect_cases(__FILE__, "qmux_versions.cases", [](const words &w) {
        bytes answer = unhex(w[0]);
        qmi_tlv_append(&answer, QMI_CTL_TLV_INFO, unhex(w[1]));
        rlk_host::qmux_link::device d;
        rlk_host::qmux_link::take_versions(d, answer);
        std::string out = d.have_versions ? "known" : "unknown";
        for (const auto &[service, major] : d.majors) {
            out += " " + std::to_string(service) + ":" + std::to_string(major);
        }
        return out;
    });
}

}  // namespace
