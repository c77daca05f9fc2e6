/* HDLC framing: the CRC, exact frames on the wire, frame splitting, the
 * frames the decoder must refuse, and the diag packet envelope. */
#include <gtest/gtest.h>

#include "diag_channel.h"
#include "diag_test_util.h"

namespace {

using diag_test::bytes;
using diag_test::frame;

std::vector<hdlc_frame> decode_all(const bytes &stream)
{
    hdlc_decoder dec;
    std::vector<hdlc_frame> frames;
    dec.feed(stream.data(), stream.size(), &frames);
    dec.finish(&frames);
    return frames;
}

uint16_t bitwise_crc(const bytes &d)
{
    uint16_t crc = 0xFFFF;
    for (uint8_t b : d) {
        crc ^= b;
        for (int i = 0; i < 8; i++) crc = (crc & 1) ? uint16_t((crc >> 1) ^ 0x8408) : uint16_t(crc >> 1);
    }
    return uint16_t(crc ^ 0xFFFF);
}

/* The CRC works on eight bytes at a time: every length around and across
 * those blocks, and every byte value in every slot of a block, agree with
 * the bit-by-bit definition. */
TEST(HdlcCrc, KnownAnswersAndBlocksAgreeWithBitwiseDefinition)
{
    EXPECT_EQ(hdlc_crc16(reinterpret_cast<const uint8_t *>("123456789"), 9), 0x906E);
    EXPECT_EQ(hdlc_crc16(nullptr, 0), 0x0000);
    bytes d;
    uint32_t seed = 12345;
    for (size_t len = 0; len <= 40; len++) {
        EXPECT_EQ(hdlc_crc16(d.data(), d.size()), bitwise_crc(d)) << "length " << len;
        seed = seed * 1103515245u + 12345u;
        d.push_back(uint8_t(seed >> 16));
    }
    for (size_t slot = 0; slot < 8; slot++) {
        for (unsigned v = 0; v < 256; v++) {
            bytes block(9, 0x5A);
            block[slot] = uint8_t(v);
            ASSERT_EQ(hdlc_crc16(block.data(), block.size()), bitwise_crc(block)) << slot << " " << v;
        }
    }
}

/* Encodes `payload` and checks that the frame decodes back, alone and as
 * the only frame of a stream. */
bytes round_trip(const bytes &payload)
{
    bytes f = frame(payload);
    EXPECT_LE(f.size(), hdlc_encoded_max(payload.size()));
    std::vector<hdlc_frame> frames = decode_all(f);
    EXPECT_EQ(frames.size(), 1u);
    for (const hdlc_frame &d : frames) {
        EXPECT_EQ(d.status, HDLC_OK);
        EXPECT_EQ(d.payload, payload);
    }
    bytes back;
    EXPECT_EQ(hdlc_decode_one(f.data(), f.size(), &back), HDLC_OK);
    EXPECT_EQ(back, payload);
    return f;
}

TEST(HdlcFrames, ExactWireBytesAndRoundTrip)
{
    diag_test::expect_transcript(__FILE__, "hdlc_frames.golden",
                                 [](const bytes &p) { return diag_test::bytes_text(round_trip(p)); });
    bytes all;
    for (int i = 0; i < 256; i++) all.push_back(uint8_t(i));
    round_trip(all);
}

/* Leading flags (an empty frame among them) are skipped, and a stream of
 * frames split anywhere into two reads gives the same frames. */
TEST(HdlcDecode, LeadingFlagsAndFramesSplitAnywhere)
{
    std::vector<bytes> payloads = {{0x00}, {0x7E, 0x7D}, {0x4b, 0x13, 0x00, 0x00}, {0x0c}};
    bytes stream = {HDLC_FLAG, HDLC_FLAG};
    for (const bytes &p : payloads) {
        bytes f = frame(p);
        stream.insert(stream.end(), f.begin(), f.end());
    }
    for (size_t split = 0; split <= stream.size(); split++) {
        hdlc_decoder dec;
        std::vector<hdlc_frame> frames;
        dec.feed(stream.data(), split, &frames);
        dec.feed(stream.data() + split, stream.size() - split, &frames);
        dec.finish(&frames);
        ASSERT_EQ(frames.size(), payloads.size()) << "split " << split;
        for (size_t i = 0; i < payloads.size(); i++) {
            EXPECT_EQ(frames[i].status, HDLC_OK);
            EXPECT_EQ(frames[i].payload, payloads[i]);
        }
    }
}

/* The statuses and good payloads of the frames of `stream`, and what
 * hdlc_decode_one makes of it. */
std::string decoded(const bytes &stream)
{
    static const char *const names[] = {"ok", "bad-crc", "too-short", "bad-escape", "too-long", "unterminated"};
    std::string out;
    for (const hdlc_frame &f : decode_all(stream)) {
        out += std::string(out.empty() ? "" : ", ") + names[f.status];
        if (f.status == HDLC_OK) out += " " + diag_test::bytes_text(f.payload);
    }
    bytes one;
    hdlc_status status = hdlc_decode_one(stream.data(), stream.size(), &one);
    out = (out.empty() ? "-" : out) + " | one " + names[status];
    return status == HDLC_OK ? out + " " + diag_test::bytes_text(one) : out;
}

TEST(HdlcDecode, BadFramesAreReportedAndDecodingGoesOnAndDecodeOneTakesOneFrame)
{
    diag_test::expect_transcript(__FILE__, "hdlc_streams.golden", decoded);
}

TEST(DiagPacket, EnvelopeAndFrameRoundTrip)
{
    bytes cmd = {0x4b, 0x7e, 0x00, 0x7d};
    bytes pkt;
    diag_packet_build(DCI_PKT_TYPE, 1, 77 | DIAG_TAG_FINAL, cmd.data(), cmd.size(), &pkt);
    /* Envelope words are little-endian. */
    EXPECT_EQ(bytes(pkt.begin(), pkt.begin() + DIAG_ENVELOPE_LEN),
              (bytes{0x00, 0x04, 0, 0, 0x01, 0, 0, 0, 77, 0, 0, 0x80}));
    diag_packet parsed;
    ASSERT_TRUE(diag_packet_parse(pkt.data(), pkt.size(), &parsed));
    EXPECT_EQ(parsed.env.data_type, uint32_t(DCI_PKT_TYPE));
    EXPECT_EQ(parsed.env.proc, 1);
    EXPECT_EQ(parsed.env.tag, 77 | DIAG_TAG_FINAL);
    ASSERT_EQ(parsed.frames.size(), 1u);
    EXPECT_EQ(parsed.frames[0].payload, cmd);
    EXPECT_FALSE(diag_packet_parse(pkt.data(), DIAG_ENVELOPE_LEN - 1, &parsed));
}

}  // namespace
