/* The capture reader: HDLC deframing with escapes and resynchronisation,
 * log packets, event reports of every length code and timestamp form, the
 * multi-SIM wrapper, DLF records and format detection. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "replay_test_util.h"

using namespace replay_test;

namespace {

struct read_result {
    std::vector<seen_packet> packets;
    diag_capture_counters counters;
    diag_capture_format format;
    uint64_t other[DIAG_COMMAND_VALUES];
};

/* Reads `stream` as one input, fed in pieces of `piece` bytes (0: whole). */
read_result read_stream(const bytes &stream, diag_capture_format format = DIAG_FORMAT_AUTO, size_t piece = 0)
{
    read_result r;
    diag_capture_reader reader(format, collect, &r.packets);
    size_t step = piece ? piece : stream.size();
    for (size_t at = 0; at < stream.size(); at += step) {
        reader.feed(stream.data() + at, std::min(step, stream.size() - at));
    }
    r.format = reader.format();
    reader.finish();
    r.counters = reader.counters();
    for (size_t i = 0; i < DIAG_COMMAND_VALUES; i++) r.other[i] = reader.other_frames()[i];
    return r;
}

uint64_t skipped_total(const read_result &r)
{
    uint64_t n = 0;
    for (uint64_t s : r.counters.skipped) n += s;
    return n;
}

/* A payload byte that makes the frame's CRC hold `value` in its low (or
 * high) byte, so that the CRC itself needs escaping. */
bytes packet_with_crc_byte(uint8_t value, bool high)
{
    for (unsigned v = 0; v < 0x10000; v++) {
        bytes p = log_packet(0xB193, 1, {uint8_t(v), uint8_t(v >> 8)});
        uint16_t crc = hdlc_crc16(p.data(), p.size());
        if ((high ? crc >> 8 : crc & 0xFF) == value) return p;
    }
    ADD_FAILURE() << "no payload found";
    return {};
}

TEST(CaptureHdlc, EscapedBytesInPayloadAndCrcSurviveAnySplit)
{
    std::vector<bytes> packets = {
        log_packet(0xB193, 0x1122334455667788ull, {0x7E, 0x7D, 0x5E, 0x5D, 0x7E, 0x7E, 0x00, 0x7D}),
        packet_with_crc_byte(HDLC_FLAG, false),
        packet_with_crc_byte(HDLC_FLAG, true),
        packet_with_crc_byte(HDLC_ESCAPE, false),
        packet_with_crc_byte(HDLC_ESCAPE, true),
    };
    bytes stream;
    for (const bytes &p : packets) {
        bytes f = frame(p);
        stream.insert(stream.end(), f.begin(), f.end());
    }
    for (size_t piece : {size_t(0), size_t(1), size_t(2), size_t(3), size_t(7)}) {
        read_result r = read_stream(stream, DIAG_FORMAT_HDLC, piece);
        ASSERT_EQ(r.packets.size(), packets.size()) << "piece " << piece;
        for (size_t i = 0; i < packets.size(); i++) {
            bytes want(packets[i].begin() + DIAG_LOG_HEADER_LEN, packets[i].end());
            EXPECT_EQ(r.packets[i].payload, want) << "packet " << i << " piece " << piece;
            EXPECT_EQ(r.packets[i].code, 0xB193);
        }
        EXPECT_EQ(r.packets[0].timestamp, 0x1122334455667788ull);
        EXPECT_EQ(skipped_total(r), 0u);
    }
}

/* A damaged frame costs itself only: the next flag starts afresh. */
TEST(CaptureHdlc, DamagedFramesAreCountedAndReadingResynchronises)
{
    bytes a = frame(log_packet(0x1001, 1, {1}));
    bytes bad_crc = frame(log_packet(0x1002, 2, {2}));
    bad_crc[bad_crc.size() - 2] ^= 0x01;
    bytes bad_escape = {0x10, 0x00, HDLC_ESCAPE, HDLC_FLAG};
    bytes too_short = {0x33, HDLC_FLAG};
    bytes b = frame(log_packet(0x1003, 3, {3}));
    bytes truncated = frame(log_packet(0x1004, 4, {4}));
    truncated.resize(truncated.size() - 3);

    struct {
        const char *name;
        bytes stream;
        std::vector<uint16_t> codes;
        diag_skip_reason reason;
    } cases[] = {
        {"bad CRC", concat({a, bad_crc, b}), {0x1001, 0x1003}, DIAG_SKIP_BAD_CRC},
        {"bad escape", concat({a, bad_escape, b}), {0x1001, 0x1003}, DIAG_SKIP_BAD_ESCAPE},
        {"too short", concat({a, too_short, b}), {0x1001, 0x1003}, DIAG_SKIP_TOO_SHORT},
        {"leading flags", concat({{HDLC_FLAG, HDLC_FLAG}, a, {HDLC_FLAG}, b}), {0x1001, 0x1003},
         DIAG_SKIP_REASON_COUNT},
        {"truncated last frame", concat({a, b, truncated}), {0x1001, 0x1003}, DIAG_SKIP_TRUNCATED},
        {"garbage before the first flag", concat({{0x01, 0x02, 0x03, HDLC_FLAG}, a, b}), {0x1001, 0x1003}, DIAG_SKIP_BAD_CRC},
    };
    for (const auto &c : cases) {
        for (size_t piece : {size_t(0), size_t(1)}) {
            read_result r = read_stream(c.stream, DIAG_FORMAT_HDLC, piece);
            std::vector<uint16_t> codes;
            for (const seen_packet &p : r.packets) codes.push_back(p.code);
            EXPECT_EQ(codes, c.codes) << c.name;
            EXPECT_EQ(r.counters.frames, 2u) << c.name;
            uint64_t want = c.reason == DIAG_SKIP_REASON_COUNT ? 0 : 1;
            EXPECT_EQ(skipped_total(r), want) << c.name;
            if (want) {
                EXPECT_EQ(r.counters.skipped[c.reason], 1u) << c.name;
            }
        }
    }
}

TEST(CaptureHdlc, OversizedFrameIsSkippedWithoutHoldingIt)
{
    bytes huge(HDLC_MAX_FRAME + 100, 0x11);
    huge.push_back(HDLC_FLAG);
    read_result r = read_stream(concat({huge, frame(log_packet(0x1001, 1, {}))}), DIAG_FORMAT_HDLC, 4096);
    ASSERT_EQ(r.packets.size(), 1u);
    EXPECT_EQ(r.packets[0].payload.size(), 0u);
    EXPECT_EQ(r.counters.skipped[DIAG_SKIP_TOO_LONG], 1u);
}

TEST(CapturePackets, MalformedLogPacketsAndOtherCommands)
{
    bytes good = log_packet(0xB0C2, 5, {9, 8, 7});
    bytes short_len = good;
    short_len[4] = 11; /* log length below its own header */
    bytes long_len = good;
    long_len[4] = static_cast<uint8_t>(long_len[4] + 1); /* one byte past the frame */
    bytes header_only(good.begin(), good.begin() + 10);
    bytes message = {0x79, 0x01, 0x02};
    read_result r = read_stream(concat({frame(short_len), frame(long_len), frame(header_only), frame(message),
                                        frame({0x92}), frame(good)}),
                                DIAG_FORMAT_HDLC);
    ASSERT_EQ(r.packets.size(), 1u);
    EXPECT_EQ(r.packets[0].payload, (bytes{9, 8, 7}));
    EXPECT_EQ(r.counters.skipped[DIAG_SKIP_BAD_LOG], 3u);
    EXPECT_EQ(r.other[0x79], 1u);
    EXPECT_EQ(r.other[0x92], 1u);
    EXPECT_EQ(r.counters.frames, 3u);
}

TEST(CapturePackets, MultiSimWrapperGivesTheSubscription)
{
    bytes log = log_packet(0xB193, 7, {1, 2});
    bytes events = event_report({event_record(1606, 9, false, {2})});
    struct {
        uint32_t id;
        uint8_t version;
        int sub; /* -1: skipped */
        diag_skip_reason reason;
    } cases[] = {
        {1, 1, 0, DIAG_SKIP_REASON_COUNT},   {2, 1, 1, DIAG_SKIP_REASON_COUNT},
        {0, 1, 0, DIAG_SKIP_REASON_COUNT},   {0xFFFFFFFF, 1, 0, DIAG_SKIP_REASON_COUNT},
        {3, 1, -1, DIAG_SKIP_BAD_SUB},       {1, 2, -1, DIAG_SKIP_BAD_WRAPPER},
    };
    for (const auto &c : cases) {
        read_result r = read_stream(concat({frame(wrapped(c.id, log, c.version)), frame(wrapped(c.id, events, c.version))}),
                                    DIAG_FORMAT_HDLC);
        if (c.sub < 0) {
            EXPECT_TRUE(r.packets.empty()) << c.id;
            EXPECT_EQ(r.counters.skipped[c.reason], 2u) << c.id;
            continue;
        }
        ASSERT_EQ(r.packets.size(), 2u) << c.id;
        EXPECT_EQ(r.packets[0].sub, c.sub);
        EXPECT_EQ(r.packets[0].kind, DIAG_PACKET_LOG);
        EXPECT_EQ(r.packets[0].payload, (bytes{1, 2}));
        EXPECT_EQ(r.packets[1].sub, c.sub);
        EXPECT_EQ(r.packets[1].code, 1606);
    }
    bytes nested = wrapped(1, wrapped(2, log));
    bytes whole = wrapped(2, log);
    bytes cut(whole.begin(), whole.begin() + 6);
    read_result r = read_stream(concat({frame(nested), frame(cut)}), DIAG_FORMAT_HDLC);
    EXPECT_TRUE(r.packets.empty());
    EXPECT_EQ(r.counters.skipped[DIAG_SKIP_BAD_WRAPPER], 2u);
}

/* Records of every length code, with full and truncated timestamps; a
 * truncated one (bits 8-23) is completed from the last full timestamp. */
TEST(CapturePackets, EventReportSplitsEveryLengthCode)
{
    bytes long_payload(200, 0x7E);
    std::vector<bytes> records = {
        event_record(629, 0x1000, false, {}),
        event_record(1606, 0x12345678, false, {4}),
        event_record(1632, 0x3457, true, {5, 6}),
        event_record(3184, 0x12FFFF00, false, {1, 2, 3, 4, 5, 6, 7}),
        event_record(3243, 0x0001, true, {}), /* just past a wrap of the 24 bits */
        event_record(1995, 0x4000, false, long_payload),
        event_record(2568, 0x5555, true, {9}, true), /* counted form of one byte */
        event_record(4095, 0x6000, false, {}, true), /* counted form, length 0 */
    };
    read_result r = read_stream(frame(event_report(records)), DIAG_FORMAT_HDLC, 5);
    ASSERT_EQ(r.packets.size(), records.size());
    struct {
        uint16_t id;
        uint64_t ts;
        bool truncated;
        uint16_t ts_short;
        bytes payload;
    } want[] = {
        {629, 0x1000, false, 0, {}},
        {1606, 0x12345678, false, 0, {4}},
        {1632, 0x12345700, true, 0x3457, {5, 6}},
        {3184, 0x12FFFF00, false, 0, {1, 2, 3, 4, 5, 6, 7}},
        {3243, 0x13000100, true, 0x0001, {}},
        {1995, 0x4000, false, 0, long_payload},
        {2568, 0x555500, true, 0x5555, {9}},
        {4095, 0x6000, false, 0, {}},
    };
    for (size_t i = 0; i < records.size(); i++) {
        const seen_packet &p = r.packets[i];
        EXPECT_EQ(p.kind, DIAG_PACKET_EVENT) << i;
        EXPECT_EQ(p.code, want[i].id) << i;
        EXPECT_EQ(p.timestamp, want[i].ts) << i;
        EXPECT_EQ(p.ts_truncated, want[i].truncated) << i;
        EXPECT_EQ(p.ts_short, want[i].ts_short) << i;
        EXPECT_EQ(p.payload, want[i].payload) << i;
    }
    /* A log packet's timestamp is a full one too. */
    r = read_stream(concat({frame(log_packet(0xB193, 0xABCDEF12345678ull, {})),
                            frame(event_report({event_record(1606, 0x3500, true, {1})}))}),
                    DIAG_FORMAT_HDLC);
    ASSERT_EQ(r.packets.size(), 2u);
    EXPECT_EQ(r.packets[1].timestamp, 0xABCDEF12350000ull);
}

TEST(CapturePackets, TruncatedTimestampTakesTheNearestFullValue)
{
    struct {
        uint64_t last;
        uint16_t ts16;
        uint64_t want;
    } cases[] = {
        {0x12345678, 0x3457, 0x12345700},
        {0x12FFFF00, 0x0001, 0x13000100},          /* forward across the wrap */
        {0x13000100, 0xFFFF, 0x12FFFF00},          /* backward across it */
        {0, 0xFFFF, 0xFFFF00},                     /* nothing below zero */
        {UINT64_MAX, 0, 0xFFFFFFFFFF000000ull},    /* nothing above the top */
    };
    for (const auto &c : cases) EXPECT_EQ(diag_expand_truncated_ts(c.last, c.ts16), c.want) << std::hex << c.last;
}

TEST(CapturePackets, EventReportThatDoesNotFitHandsOverNothing)
{
    bytes good = event_report({event_record(1606, 1, false, {1}), event_record(1632, 2, false, {2})});
    bytes overrun = good;
    overrun.pop_back(); /* the last record's payload byte is missing */
    overrun[1] = static_cast<uint8_t>(overrun[1] - 1);
    bytes counted = event_report({event_record(1606, 1, false, {1, 2, 3}, true)});
    counted[counted.size() - 4] = 4; /* count says 4, 3 follow */
    bytes length_past_frame = good;
    length_past_frame[1] = static_cast<uint8_t>(length_past_frame[1] + 1);
    read_result r = read_stream(concat({frame(overrun), frame(counted), frame(length_past_frame), frame({0x60, 0x00})}),
                                DIAG_FORMAT_HDLC);
    EXPECT_TRUE(r.packets.empty());
    EXPECT_EQ(r.counters.skipped[DIAG_SKIP_BAD_EVENT], 4u);
}

TEST(CaptureDlf, RecordsAnySplitResyncAndTruncatedEnd)
{
    bytes a = inner_log(0xB193, 10, {1, 2, 3});
    bytes b = inner_log(0xB0C2, 11, {});
    bytes c = inner_log(0xB064, 12, bytes(300, 0x7E));
    bytes stream = concat({a, b, c});
    for (size_t piece : {size_t(0), size_t(1), size_t(2), size_t(5), size_t(64)}) {
        read_result r = read_stream(stream, DIAG_FORMAT_DLF, piece);
        ASSERT_EQ(r.packets.size(), 3u) << piece;
        EXPECT_EQ(r.packets[0].payload, (bytes{1, 2, 3}));
        EXPECT_EQ(r.packets[1].code, 0xB0C2);
        EXPECT_TRUE(r.packets[1].payload.empty());
        EXPECT_EQ(r.packets[2].payload, bytes(300, 0x7E));
        EXPECT_EQ(r.packets[2].timestamp, 12u);
        EXPECT_EQ(skipped_total(r), 0u);
    }
    /* Three zero bytes (lengths 0) before b: one skip, then b is found. */
    bytes truncated_c(c.begin(), c.begin() + 40);
    for (size_t piece : {size_t(0), size_t(1)}) {
        read_result r = read_stream(concat({a, {0, 0, 0}, b, truncated_c}), DIAG_FORMAT_DLF, piece);
        ASSERT_EQ(r.packets.size(), 2u) << piece;
        EXPECT_EQ(r.packets[1].code, 0xB0C2);
        EXPECT_EQ(r.counters.skipped[DIAG_SKIP_BAD_RECORD], 1u) << piece;
        EXPECT_EQ(r.counters.skipped[DIAG_SKIP_TRUNCATED], 1u) << piece;
    }
}

TEST(CaptureDetect, FormatFollowsTheFirstBytesOfEachInput)
{
    bytes hdlc_stream = concat({frame(log_packet(0xB193, 1, {1})), frame(log_packet(0xB064, 2, {2})),
                                frame(event_report({event_record(1606, 3, false, {2})}))});
    bytes dlf_stream;
    for (int i = 0; i < 40; i++) {
        bytes r = inner_log(0xB193, uint64_t(i), bytes(size_t(i), 0x10));
        dlf_stream.insert(dlf_stream.end(), r.begin(), r.end());
    }
    bytes one_dlf = inner_log(0xB193, 1, {1, 2});
    /* A first frame beyond the frame limit whose bytes also chain as DLF
     * lengths (0x2020) under codes of no log group. */
    bytes oversized = frame(log_packet(0xB193, 1, bytes(HDLC_MAX_FRAME + 4000, 0x20)));
    struct {
        const char *name;
        bytes stream;
        diag_capture_format format;
        size_t packets;
    } cases[] = {
        {"hdlc", hdlc_stream, DIAG_FORMAT_HDLC, 3},
        {"hdlc with leading flag", concat({{HDLC_FLAG}, hdlc_stream}), DIAG_FORMAT_HDLC, 3},
        {"dlf", dlf_stream, DIAG_FORMAT_DLF, 40},
        {"dlf cut short", bytes(dlf_stream.begin(), dlf_stream.end() - 5), DIAG_FORMAT_DLF, 39},
        {"one dlf record", one_dlf, DIAG_FORMAT_DLF, 1},
        {"garbage", bytes(100, 0x42), DIAG_FORMAT_HDLC, 0},
        {"only flags", bytes(100000, HDLC_FLAG), DIAG_FORMAT_HDLC, 0},
        {"first frame over 64 KiB", concat({oversized, hdlc_stream}), DIAG_FORMAT_HDLC, 3},
    };
    for (const auto &c : cases) {
        for (size_t piece : {size_t(0), c.stream.size() < 4096 ? size_t(3) : size_t(4096)}) {
            read_result r = read_stream(c.stream, DIAG_FORMAT_AUTO, piece);
            EXPECT_EQ(r.packets.size(), c.packets) << c.name << " piece " << piece;
            EXPECT_EQ(diag_capture_detect(c.stream.data(), c.stream.size(), true), c.format) << c.name;
        }
    }
    /* One reader, several inputs: each one is detected afresh. */
    std::vector<seen_packet> seen;
    diag_capture_reader reader(DIAG_FORMAT_AUTO, collect, &seen);
    for (const bytes *in : {&dlf_stream, &hdlc_stream, &one_dlf}) {
        reader.feed(in->data(), in->size());
        reader.finish();
    }
    EXPECT_EQ(seen.size(), 44u);
    EXPECT_EQ(reader.counters().bytes, dlf_stream.size() + hdlc_stream.size() + one_dlf.size());
}

TEST(CaptureDetect, LargeInputDecidesWithoutWaitingForItsEnd)
{
    bytes f = frame(log_packet(0xB193, 1, bytes(100, 3)));
    std::vector<seen_packet> seen;
    diag_capture_reader reader(DIAG_FORMAT_AUTO, collect, &seen);
    reader.feed(f.data(), f.size());
    reader.feed(f.data(), f.size());
    EXPECT_EQ(reader.format(), DIAG_FORMAT_HDLC);
    EXPECT_EQ(seen.size(), 2u);
    reader.finish();
    EXPECT_EQ(reader.format(), DIAG_FORMAT_AUTO);
}

}  // namespace
