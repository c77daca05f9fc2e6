/* HDLC framing: the CRC, exact frames on the wire, frame splitting, the
 * frames the decoder must refuse, and the diag packet envelope. */
#include <gtest/gtest.h>

#include "diag_channel.h"
#include "diag_test_util.h"

namespace {

using namespace diag_test;

/* The frames of `stream` fed in two reads, split at `split`. */
std::vector<hdlc_frame> decode_all(const bytes &stream, size_t split)
{
    hdlc_decoder dec;
    std::vector<hdlc_frame> frames;
    dec.feed(stream.data(), split, &frames);
    dec.feed(stream.data() + split, stream.size() - split, &frames);
    dec.finish(&frames);
    return frames;
}

/* The CRC works on eight bytes at a time: lengths around and across those
 * blocks, and every byte value in every slot of a block. */
TEST(HdlcCrc, KnownAnswersAndBlocks)
{
    expect_transcript(__FILE__, "hdlc_crc.golden", [](const bytes &d) {
        uint16_t crc = hdlc_crc16(d.data(), d.size());
        return bytes_text({uint8_t(crc >> 8), uint8_t(crc)});
    });
}

/* The statuses and good payloads of `frames`. */
std::string frames_text(const std::vector<hdlc_frame> &frames)
{
    static const char *const names[] = {"ok", "bad-crc", "too-short", "bad-escape", "too-long", "unterminated"};
    std::string out;
    for (const hdlc_frame &f : frames) {
        out += std::string(out.empty() ? "" : ", ") + names[f.status];
        if (f.status == HDLC_OK) out += " " + bytes_text(f.payload);
    }
    return out.empty() ? "-" : out;
}

/* The frames of `stream` (the same however a short stream is split into
 * two reads), and what hdlc_decode_one makes of it. */
std::string decoded(const bytes &stream)
{
    std::string whole = frames_text(decode_all(stream, stream.size()));
    for (size_t split = 0; stream.size() < 1000 && split < stream.size(); split++) {
        EXPECT_EQ(frames_text(decode_all(stream, split)), whole) << "split at " << split;
    }
    hdlc_frame one;
    one.status = hdlc_decode_one(stream.data(), stream.size(), &one.payload);
    return whole + " | one " + frames_text({one});
}

/* Each frame also decodes back, alone, read whole or in two parts, and as
 * the only frame. */
TEST(HdlcFrames, ExactWireBytesAndRoundTrip)
{
    expect_transcript(__FILE__, "hdlc_frames.golden", [](const bytes &payload) {
        bytes f = frame(payload);
        EXPECT_LE(f.size(), hdlc_encoded_max(payload.size()));
        EXPECT_EQ(decoded(f), "ok " + bytes_text(payload) + " | one ok " + bytes_text(payload));
        return bytes_text(f);
    });
}

TEST(HdlcDecode, LeadingFlagsSplitReadsBadFramesAndDecodeOne)
{
    expect_transcript(__FILE__, "hdlc_streams.golden", decoded);
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
    EXPECT_EQ(frames_text(parsed.frames), "ok 4b 7e 00 7d");
    EXPECT_FALSE(diag_packet_parse(pkt.data(), DIAG_ENVELOPE_LEN - 1, &parsed));
}

}  // namespace
