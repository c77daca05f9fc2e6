/* HDLC framing: CRC known answer, escaping, frame splitting and the frames
 * the decoder must refuse. */
#include <gtest/gtest.h>

#include <string.h>

#include "diag_channel.h"
#include "hdlc.h"

namespace {

using bytes = std::vector<uint8_t>;

bytes encode(const bytes &payload)
{
    bytes out;
    hdlc_encode(payload.data(), payload.size(), &out);
    return out;
}

std::vector<hdlc_frame> decode_all(const bytes &stream)
{
    hdlc_decoder dec;
    std::vector<hdlc_frame> frames;
    dec.feed(stream.data(), stream.size(), &frames);
    dec.finish(&frames);
    return frames;
}

/* Finds a payload whose CRC has `byte` as its low or high byte, so that the
 * CRC itself needs escaping. */
bytes payload_with_crc_byte(uint8_t byte)
{
    for (uint32_t v = 0; v < 0x10000; v++) {
        bytes p = {0x4b, uint8_t(v), uint8_t(v >> 8)};
        uint16_t crc = hdlc_crc16(p.data(), p.size());
        if ((crc & 0xFF) == byte || (crc >> 8) == byte) return p;
    }
    return {};
}

TEST(HdlcCrc, KnownAnswers)
{
    const char *check = "123456789";
    EXPECT_EQ(hdlc_crc16(reinterpret_cast<const uint8_t *>(check), strlen(check)), 0x906E);
    EXPECT_EQ(hdlc_crc16(nullptr, 0), 0x0000);
}

/* The CRC works on eight bytes at a time: every length around and across
 * those blocks, and every byte value in every slot of a block, agree with
 * the bit-by-bit definition. */
TEST(HdlcCrc, BlocksAgreeWithBitwiseDefinition)
{
    auto bitwise = [](const bytes &d) {
        uint16_t crc = 0xFFFF;
        for (uint8_t b : d) {
            crc ^= b;
            for (int i = 0; i < 8; i++) crc = (crc & 1) ? uint16_t((crc >> 1) ^ 0x8408) : uint16_t(crc >> 1);
        }
        return uint16_t(crc ^ 0xFFFF);
    };
    bytes d;
    uint32_t seed = 12345;
    for (size_t len = 0; len <= 40; len++) {
        EXPECT_EQ(hdlc_crc16(d.data(), d.size()), bitwise(d)) << "length " << len;
        seed = seed * 1103515245u + 12345u;
        d.push_back(uint8_t(seed >> 16));
    }
    for (size_t slot = 0; slot < 8; slot++) {
        for (unsigned v = 0; v < 256; v++) {
            bytes block(9, 0x5A);
            block[slot] = uint8_t(v);
            ASSERT_EQ(hdlc_crc16(block.data(), block.size()), bitwise(block)) << slot << " " << v;
        }
    }
}

TEST(HdlcEncode, PlainPayloadIsPayloadCrcLowFirstAndFlag)
{
    bytes p = {0x00, 0x01, 0x02};
    uint16_t crc = hdlc_crc16(p.data(), p.size());
    bytes expect = {0x00, 0x01, 0x02, uint8_t(crc), uint8_t(crc >> 8), HDLC_FLAG};
    ASSERT_NE(uint8_t(crc), HDLC_FLAG);
    ASSERT_NE(uint8_t(crc >> 8), HDLC_FLAG);
    EXPECT_EQ(encode(p), expect);
}

TEST(HdlcEncode, FlagAndEscapeInDataAreEscaped)
{
    bytes p = {0x7E, 0x41, 0x7D};
    bytes f = encode(p);
    ASSERT_GE(f.size(), 6u);
    EXPECT_EQ(bytes(f.begin(), f.begin() + 5), (bytes{0x7D, 0x5E, 0x41, 0x7D, 0x5D}));
    /* The only flag is the last byte. */
    for (size_t i = 0; i + 1 < f.size(); i++) EXPECT_NE(f[i], HDLC_FLAG) << i;
    EXPECT_EQ(f.back(), HDLC_FLAG);
}

TEST(HdlcRoundTrip, EscapesInDataAndInCrc)
{
    std::vector<bytes> cases = {
        {0x7E},
        {0x7D},
        {0x7D, 0x7E, 0x7D, 0x7E},
        {0x00, 0x20, 0x5E, 0x5D},
        payload_with_crc_byte(0x7E),
        payload_with_crc_byte(0x7D),
    };
    bytes all;
    for (int i = 0; i < 256; i++) all.push_back(uint8_t(i));
    cases.push_back(all);
    for (const bytes &p : cases) {
        ASSERT_FALSE(p.empty());
        bytes f = encode(p);
        ASSERT_LE(f.size(), hdlc_encoded_max(p.size()));
        std::vector<hdlc_frame> frames = decode_all(f);
        ASSERT_EQ(frames.size(), 1u);
        EXPECT_EQ(frames[0].status, HDLC_OK);
        EXPECT_EQ(frames[0].payload, p);
    }
}

TEST(HdlcRoundTrip, CrcNeedingEscapeIsEscapedOnTheWire)
{
    bytes p = payload_with_crc_byte(0x7E);
    ASSERT_FALSE(p.empty());
    bytes f = encode(p);
    EXPECT_EQ(f.size(), p.size() + 4); /* one escaped CRC byte, one plain, the flag */
    bytes back;
    EXPECT_EQ(hdlc_decode_one(f.data(), f.size(), &back), HDLC_OK);
    EXPECT_EQ(back, p);
}

TEST(HdlcDecode, LeadingFlagAndEmptyFramesAreSkipped)
{
    bytes p = {0x1c};
    bytes stream = {HDLC_FLAG, HDLC_FLAG};
    bytes f = encode(p);
    stream.insert(stream.end(), f.begin(), f.end());
    std::vector<hdlc_frame> frames = decode_all(stream);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].status, HDLC_OK);
    EXPECT_EQ(frames[0].payload, p);
}

TEST(HdlcDecode, SeveralFramesInOneBufferAndSplitAnywhere)
{
    std::vector<bytes> payloads = {{0x00}, {0x7E, 0x7D}, {0x4b, 0x13, 0x00, 0x00}, {0x0c}};
    bytes stream = {HDLC_FLAG};
    for (const bytes &p : payloads) {
        bytes f = encode(p);
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

TEST(HdlcDecode, BadFramesAreReportedAndDecodingGoesOn)
{
    bytes good = encode({0x01, 0x02});
    bytes corrupt_crc = encode({0x01, 0x02});
    corrupt_crc[corrupt_crc.size() - 2] ^= 0x01;
    bytes corrupt_data = encode({0x01, 0x02});
    corrupt_data[0] ^= 0x40;
    bytes short_frame = {0x33, HDLC_FLAG};
    bytes bad_escape = {0x01, 0x02, HDLC_ESCAPE, HDLC_FLAG};

    bytes stream;
    for (const bytes *b : {&corrupt_crc, &good, &corrupt_data, &short_frame, &bad_escape, &good}) {
        stream.insert(stream.end(), b->begin(), b->end());
    }
    std::vector<hdlc_frame> frames = decode_all(stream);
    ASSERT_EQ(frames.size(), 6u);
    EXPECT_EQ(frames[0].status, HDLC_BAD_CRC);
    EXPECT_EQ(frames[1].status, HDLC_OK);
    EXPECT_EQ(frames[2].status, HDLC_BAD_CRC);
    EXPECT_EQ(frames[3].status, HDLC_TOO_SHORT);
    EXPECT_EQ(frames[4].status, HDLC_BAD_ESCAPE);
    EXPECT_EQ(frames[5].status, HDLC_OK);
    EXPECT_EQ(frames[5].payload, (bytes{0x01, 0x02}));
}

TEST(HdlcDecode, UnterminatedAndOversizedFrames)
{
    bytes f = encode({0x01, 0x02, 0x03});
    f.pop_back();
    std::vector<hdlc_frame> frames = decode_all(f);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].status, HDLC_UNTERMINATED);

    bytes huge(HDLC_MAX_FRAME + 10, 0x11);
    huge.push_back(HDLC_FLAG);
    bytes next = encode({0x42});
    huge.insert(huge.end(), next.begin(), next.end());
    frames = decode_all(huge);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].status, HDLC_TOO_LONG);
    EXPECT_EQ(frames[1].status, HDLC_OK);
    EXPECT_EQ(frames[1].payload, bytes{0x42});
}

TEST(HdlcDecodeOne, RefusesTrailingBytesAndSecondFrames)
{
    bytes f = encode({0x7c});
    bytes back;
    EXPECT_EQ(hdlc_decode_one(f.data(), f.size(), &back), HDLC_OK);
    bytes two = f;
    two.insert(two.end(), f.begin(), f.end());
    EXPECT_NE(hdlc_decode_one(two.data(), two.size(), &back), HDLC_OK);
    bytes trailing = f;
    trailing.push_back(0x01);
    EXPECT_NE(hdlc_decode_one(trailing.data(), trailing.size(), &back), HDLC_OK);
    bytes none = {HDLC_FLAG};
    EXPECT_NE(hdlc_decode_one(none.data(), none.size(), &back), HDLC_OK);
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
