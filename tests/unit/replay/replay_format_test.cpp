/* Output texts of the replay: UTC times of diag timestamps, header lines,
 * JSON strings and hex; and the command line. */
#include <gtest/gtest.h>

#include <string>

#include "replay_format.h"
#include "replay_options.h"
#include "table_file.h"

namespace {

/* A timestamp `seconds` after 1980-01-06 00:00:00 plus `ms` milliseconds. */
uint64_t ts_of(uint64_t seconds, uint64_t ms)
{
    return seconds * DIAG_TS_UNITS_PER_SECOND + (ms * DIAG_TS_UNITS_PER_SECOND + 999) / 1000;
}

TEST(ReplayTime, CalendarAndMilliseconds)
{
    for (const words &c : data_rows(__FILE__, "replay_times.txt")) {
        uint64_t ts = c[0] == "units" ? stoull(c[1], nullptr, 0) : ts_of(stoull(c[0]), stoull(c[1]));
        std::string s;
        replay_append_time(&s, ts, c[2] == "iso");
        EXPECT_EQ(s, c[3]) << ts;
    }
}

TEST(ReplayHeader, LogEventAndTruncatedTimestamp)
{
    const uint8_t byte = 0;
    std::string s;
    replay_append_header(&s, 7, {DIAG_PACKET_LOG, 0xB193, 1, false, 0, ts_of(60, 250), &byte, 528});
    replay_append_header(&s, 8, {DIAG_PACKET_EVENT, 1606, 0, false, 0, ts_of(61, 0), &byte, 1});
    replay_append_header(&s, 9, {DIAG_PACKET_EVENT, 1606, 0, true, 0x0abc, ts_of(61, 0), &byte, 0});
    EXPECT_EQ(s,
              "#7 1980-01-06 00:01:00.250 UTC log 0xB193 length 528 sub 1\n"
              "#8 1980-01-06 00:01:01.000 UTC event 1606 length 1 sub 0\n"
              "#9 1980-01-06 00:01:01.000 UTC event 1606 length 0 sub 0 ts16 0x0abc\n");
}

/* One JSON string a line, then the hex of four bytes. */
TEST(ReplayJson, StringsEscapeWhatJsonRequires)
{
    const std::string inputs[] = {
        "plain text = 1, x(2)",
        "q\"b\\s/",
        std::string("nl\n cr\r tab\t nul") + '\0' + "\x01\x1f",
        "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xb6",
        /* Not UTF-8: a lone continuation byte, a cut sequence, an overlong
         * form and an encoded surrogate keep their byte values. */
        "\x80", "a\xc3", "\xc0\xaf", "\xed\xa0\x80", "",
    };
    std::string out;
    for (const std::string &in : inputs) {
        replay_append_json_string(&out, in.data(), in.size());
        out += "\n";
    }
    const uint8_t data[] = {0x00, 0x7e, 0xff, 0x10};
    replay_append_hex(&out, data, sizeof(data));
    expect_golden(out + "\n", __FILE__, "replay_json.golden");
}

/* Each command line of replay_command_lines.txt and every option it
 * gives, compared with a golden file. */
TEST(ReplayOptions, FormsThatParse)
{
    std::string out;
    for (const words &words : data_rows(__FILE__, "replay_command_lines.txt")) {
        std::vector<const char *> args;
        for (const std::string &w : words) args.push_back(w.c_str());
        replay_options o;
        std::string error;
        EXPECT_TRUE(replay_parse_options(int(args.size()), args.data(), &o, &error)) << error;
        out += "$ " + joined(words) + "\n  format " + std::to_string(o.format) + ", mode " + std::to_string(o.mode) +
               ", filter " + std::to_string(o.filter) + ", progress " + std::to_string(o.progress) + ", help " +
               std::to_string(o.help) + ", pcap '" + o.pcap + "'\n  logs";
        for (size_t i = 0; i < o.logs.size(); i++) out += o.logs[i] ? " " + std::to_string(i) : "";
        out += "\n  events";
        for (size_t i = 0; i < o.events.size(); i++) out += o.events[i] ? " " + std::to_string(i) : "";
        out += "\n  inputs";
        for (const std::string &in : o.inputs) out += " '" + in + "'";
        out += "\n";
    }
    expect_golden(out, __FILE__, "replay_options.golden");
}

}  // namespace
