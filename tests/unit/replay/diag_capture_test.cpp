/* The capture reader: HDLC deframing with escapes and resynchronisation,
 * log packets, event reports of every length code and timestamp form, the
 * multi-SIM wrapper, DLF records and format detection.  Every stream is
 * read whole and in pieces of several sizes, which must all agree. */
#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "golden.h"
#include "replay_test_util.h"
#include "table_file.h"

using namespace replay_test;

namespace {

/* Appends a packet as "0x1001:1=01 " or "ev1606:9~0000=02/s1 ": code,
 * timestamp (hex), a truncated timestamp's two bytes, payload (hex, or
 * "#length+byte sum" past 8 bytes) and a second subscription. */
void describe(void *ctx, const diag_packet &p)
{
    std::string &out = *static_cast<std::string *>(ctx);
    char buf[64];
    const char *form = p.kind == DIAG_PACKET_LOG ? "0x%04x:%llx" : "ev%u:%llx";
    snprintf(buf, sizeof(buf), form, p.code, static_cast<unsigned long long>(p.timestamp));
    out += buf;
    if (p.ts_truncated) out += "~" + hex(bytes{uint8_t(p.ts_short >> 8), uint8_t(p.ts_short)});
    bytes payload(p.payload, p.payload + p.length);
    unsigned sum = std::accumulate(payload.begin(), payload.end(), 0u);
    out += p.length > 8 ? "#" + std::to_string(p.length) + "+" + std::to_string(sum) : "=" + hex(payload);
    out += p.sub ? "/s1 " : " ";
}

const char *const k_reasons[DIAG_SKIP_REASON_COUNT] = {"crc", "escape", "short",   "long", "truncated",
                                                       "log", "event",  "wrapper", "sub",  "record"};

/* The packets of `stream` fed in pieces of `piece` bytes, then the frames
 * and every non-zero skip counter and count of frames of other commands:
 * "0x1001:1=01 ev1606:9=02 | frames 2, crc 1, other 0x79 1". */
std::string read_in_pieces(const bytes &stream, diag_capture_format format, size_t piece)
{
    std::string text;
    diag_capture_reader reader(format, describe, &text);
    for (size_t at = 0; at < stream.size(); at += piece)
        reader.feed(stream.data() + at, std::min(piece, stream.size() - at));
    reader.finish();
    const diag_capture_counters &n = reader.counters();
    EXPECT_EQ(n.bytes, stream.size());
    text += "| frames " + std::to_string(n.frames);
    for (int i = 0; i < DIAG_SKIP_REASON_COUNT; i++)
        if (n.skipped[i]) text += std::string(", ") + k_reasons[i] + " " + std::to_string(n.skipped[i]);
    for (unsigned c = 0; c < DIAG_COMMAND_VALUES; c++)
        if (uint64_t got = reader.other_frames()[c])
            text += ", other 0x" + hex(bytes{uint8_t(c)}) + " " + std::to_string(got);
    return text;
}

/* Reads `stream` whole, then in pieces that split it everywhere: each
 * reading must give the same text. */
std::string read_stream(const bytes &stream, diag_capture_format format)
{
    std::string whole = read_in_pieces(stream, format, stream.size() + 1);
    for (size_t piece : {1, 2, 3, 5, 7, 64, 4096}) EXPECT_EQ(read_in_pieces(stream, format, piece), whole) << piece;
    return whole;
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

/* A name and its stream. */
using stream_case = std::pair<std::string, bytes>;

/* "name: text" of every stream read as `format`, compared with a golden
 * file; for AUTO the line also names the format detected. */
void expect_readings(const std::vector<stream_case> &cases, diag_capture_format format, const char *golden)
{
    const char *const names[] = {"auto", "hdlc", "dlf"};
    std::string out;
    for (const stream_case &c : cases) {
        out += c.first + ":";
        if (format == DIAG_FORMAT_AUTO)
            out += std::string(" ") + names[diag_capture_detect(c.second.data(), c.second.size(), true)];
        out += " " + read_stream(c.second, format) + "\n";
    }
    expect_golden(out, __FILE__, golden);
}

/* Payload bytes 7E and 7D, and CRCs holding them in either byte. */
TEST(CaptureHdlc, EscapedBytesInPayloadAndCrcSurviveAnySplit)
{
    bytes escapes = log_packet(0xB193, 0x1122334455667788ull, {0x7E, 0x7D, 0x5E, 0x5D, 0x7E, 0x7E, 0x00, 0x7D});
    bytes stream = concat(
        {frame(escapes), frame(packet_with_crc_byte(HDLC_FLAG, false)), frame(packet_with_crc_byte(HDLC_FLAG, true)),
         frame(packet_with_crc_byte(HDLC_ESCAPE, false)), frame(packet_with_crc_byte(HDLC_ESCAPE, true))});
    EXPECT_EQ(read_stream(stream, DIAG_FORMAT_HDLC),
              "0xb193:1122334455667788=7e7d5e5d7e7e007d 0xb193:1=6604 0xb193:1=5c01 0xb193:1=3000 0xb193:1=1a00 "
              "| frames 5");
}

/* A damaged or malformed frame costs itself only: the next flag starts
 * afresh, and the reason is counted. */
TEST(CaptureHdlc, DamagedAndMalformedFramesAreCountedAndSkipped)
{
    bytes a = frame(log_packet(0x1001, 1, {1}));
    bytes bad_crc = frame(log_packet(0x1002, 2, {2}));
    bad_crc[bad_crc.size() - 2] ^= 0x01;
    bytes b = frame(log_packet(0x1003, 3, {3}));
    bytes truncated = frame(log_packet(0x1004, 4, {4}));
    truncated.resize(truncated.size() - 3);
    bytes huge(HDLC_MAX_FRAME + 100, 0x11);
    huge.push_back(HDLC_FLAG);

    bytes good = log_packet(0xB0C2, 5, {9, 8, 7});
    bytes short_len = good;
    short_len[4] = 11; /* log length below its own header */
    bytes long_len = good;
    long_len[4]++; /* one byte past the frame */
    bytes header_only(good.begin(), good.begin() + 10);

    bytes log = log_packet(0xB193, 7, {1, 2});
    bytes events = event_report({event_record(1606, 9, false, {2})});
    auto sim = [&](uint32_t id, uint8_t version) {
        return concat({frame(wrapped(id, log, version)), frame(wrapped(id, events, version))});
    };
    bytes cut_wrapper = wrapped(2, log);
    cut_wrapper.resize(6);

    bytes two = event_report({event_record(1606, 1, false, {1}), event_record(1632, 2, false, {2})});
    bytes overrun = two;
    overrun.pop_back(); /* the last record's payload byte is missing */
    overrun[1]--;
    bytes counted = event_report({event_record(1606, 1, false, {1, 2, 3}, true)});
    counted[counted.size() - 4] = 4; /* count says 4, 3 follow */
    bytes past_frame = two;
    past_frame[1]++;

    expect_readings(
        {
            {"bad CRC", concat({a, bad_crc, b})}, {"bad escape", concat({a, {0x10, 0x00, HDLC_ESCAPE, HDLC_FLAG}, b})},
            {"too short", concat({a, {0x33, HDLC_FLAG}, b})},
            {"leading flags", concat({{HDLC_FLAG, HDLC_FLAG}, a, {HDLC_FLAG}, b})},
            {"truncated last frame", concat({a, b, truncated})},
            {"garbage before the first flag", concat({{1, 2, 3, HDLC_FLAG}, a, b})},
            {"oversized frame", concat({huge, a})},
            {"malformed logs, other commands", concat({frame(short_len), frame(long_len), frame(header_only),
                                                       frame({0x79, 1, 2}), frame({0x92}), frame(good)})},
            {"sub 1", sim(1, 1)}, {"sub 2", sim(2, 1)},
            {"sub 0 is the first", sim(0, 1)}, {"sub all ones is the first", sim(0xFFFFFFFF, 1)},
            {"sub 3", sim(3, 1)}, {"wrapper version 2", sim(1, 2)},
            {"nested and cut wrappers", concat({frame(wrapped(1, wrapped(2, log))), frame(cut_wrapper)})},
            {"event reports that do not fit",
             concat({frame(overrun), frame(counted), frame(past_frame), frame({0x60, 0x00})})},
        },
        DIAG_FORMAT_HDLC, "capture_damaged.golden");
}

/* Records of every length code, with full and truncated timestamps; a
 * truncated one (bits 8-23) is completed from the last full timestamp,
 * of an event or of a log packet. */
TEST(CapturePackets, EventReportSplitsEveryLengthCode)
{
    bytes report = event_report({
        event_record(629, 0x1000, false, {}), event_record(1606, 0x12345678, false, {4}),
        event_record(1632, 0x3457, true, {5, 6}), event_record(3184, 0x12FFFF00, false, {1, 2, 3, 4, 5, 6, 7}),
        event_record(3243, 0x0001, true, {}), /* just past a wrap of the 24 bits */
        event_record(1995, 0x4000, false, bytes(200, 0x7E)),
        event_record(2568, 0x5555, true, {9}, true), /* counted form of one byte */
        event_record(4095, 0x6000, false, {}, true), /* counted form, length 0 */
    });
    /* The last full timestamp may be a log packet's. */
    bytes after_log = concat({frame(log_packet(0xB193, 0xABCDEF12345678ull, {})),
                              frame(event_report({event_record(1606, 0x3500, true, {1})}))});
    expect_readings({{"every length code", frame(report)}, {"after a log packet", after_log}}, DIAG_FORMAT_HDLC,
                    "capture_events.golden");
}

TEST(CapturePackets, TruncatedTimestampTakesTheNearestFullValue)
{
    for (const words &c : data_rows(__FILE__, "truncated_timestamps.txt")) {
        uint64_t last = stoull(c[0], nullptr, 0), want = stoull(c[2], nullptr, 0);
        EXPECT_EQ(diag_expand_truncated_ts(last, uint16_t(stoul(c[1], nullptr, 0))), want) << c[0];
    }
}

TEST(CaptureDlf, RecordsResyncAndTruncatedEnd)
{
    bytes a = inner_log(0xB193, 10, {1, 2, 3});
    bytes b = inner_log(0xB0C2, 11, {});
    bytes c = inner_log(0xB064, 12, bytes(300, 0x7E));
    expect_readings({{"three records", concat({a, b, c})},
                     /* Three zero bytes (lengths 0) before b: one skip, then b is found. */
                     {"zeros before b, c cut", concat({a, {0, 0, 0}, b, bytes(c.begin(), c.begin() + 40)})}},
                    DIAG_FORMAT_DLF, "capture_dlf.golden");
}

TEST(CaptureDetect, FormatFollowsTheFirstBytesOfEachInput)
{
    bytes hdlc_stream = concat({frame(log_packet(0xB193, 1, {1})), frame(log_packet(0xB064, 2, {2})),
                                frame(event_report({event_record(1606, 3, false, {2})}))});
    bytes dlf_stream;
    for (int i = 0; i < 40; i++)
        dlf_stream = concat({dlf_stream, inner_log(0xB193, uint64_t(i), bytes(size_t(i), 0x10))});
    bytes one_dlf = inner_log(0xB193, 1, {1, 2});
    /* A first frame beyond the frame limit whose bytes also chain as DLF
     * lengths (0x2020) under codes of no log group. */
    bytes oversized = frame(log_packet(0xB193, 1, bytes(HDLC_MAX_FRAME + 4000, 0x20)));
    expect_readings(
        {
            {"hdlc", hdlc_stream}, {"hdlc with leading flag", concat({{HDLC_FLAG}, hdlc_stream})},
            {"dlf", dlf_stream}, {"dlf cut short", bytes(dlf_stream.begin(), dlf_stream.end() - 5)},
            {"one dlf record", one_dlf}, {"garbage", bytes(100, 0x42)}, {"only flags", bytes(100000, HDLC_FLAG)},
            {"first frame over 64 KiB", concat({oversized, hdlc_stream})},
        },
        DIAG_FORMAT_AUTO, "capture_detect.golden");
    /* One reader, several inputs: each one is detected afresh. */
    std::string seen, each;
    diag_capture_reader reader(DIAG_FORMAT_AUTO, describe, &seen);
    for (const bytes *in : {&dlf_stream, &hdlc_stream, &one_dlf}) {
        reader.feed(in->data(), in->size());
        reader.finish();
        each += read_stream(*in, DIAG_FORMAT_AUTO);
        each.erase(each.find("| frames"));
    }
    EXPECT_EQ(seen, each);
    EXPECT_EQ(reader.counters().bytes, dlf_stream.size() + hdlc_stream.size() + one_dlf.size());
    /* A large input is decided without waiting for its end. */
    bytes f = frame(log_packet(0xB193, 1, bytes(100, 3)));
    seen.clear();
    diag_capture_reader early(DIAG_FORMAT_AUTO, describe, &seen);
    early.feed(f.data(), f.size());
    early.feed(f.data(), f.size());
    EXPECT_EQ(early.format(), DIAG_FORMAT_HDLC);
    EXPECT_EQ(seen, "0xb193:1#100+300 0xb193:1#100+300 ");
    early.finish();
    EXPECT_EQ(early.format(), DIAG_FORMAT_AUTO);
}

}  // namespace
