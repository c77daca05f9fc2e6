/* rlk-replay on the public sample captures (../shared/captures; the tests
 * skip when the folder is absent): packet counts against an independent
 * scan, the serving-cell values of the first packets against the public
 * layout, JSON lines that parse, damaged and DLF inputs, several inputs. */
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "capture_files.h"
#include "process_runner.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;

namespace {

const char *const k_captures[] = {"att.mi2log", "offline_log_example.mi2log"};

class ReplayCaptureTest : public testing::Test {
protected:
    void SetUp() override
    {
        dir_ = capture_files_dir();
        if (dir_.empty()) GTEST_SKIP() << "captures folder " RLK_CAPTURES_DIR " is absent: capture replay skipped";
        char tmp[] = "/tmp/rlk_replay_e2e.XXXXXX";
        ASSERT_NE(mkdtemp(tmp), nullptr);
        tmp_ = tmp;
    }
    void TearDown() override
    {
        if (!tmp_.empty()) run_process({"/bin/rm", "-rf", tmp_}, {});
    }
    std::string capture(const char *name) const { return dir_ + "/" + name; }

    std::string dir_;
    std::string tmp_;
};

run_result replay(const std::vector<std::string> &args, const std::string &stdin_text = "")
{
    std::vector<std::string> argv = {RLK_REPLAY_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    return run_process(argv, {}, stdin_text);
}

int exit_code(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(ReplayCaptureTest, PacketCountsMatchAnIndependentScan)
{
    for (const char *name : k_captures) {
        capture_scan scan = scan_capture(read_file(capture(name)));
        ASSERT_FALSE(scan.logs.empty()) << name;
        run_result r = replay({"--summary-only", capture(name)});
        EXPECT_EQ(exit_code(r.status), 0) << name << "\n" << r.err;
        summary_tables t = parse_summary(r.out);
        ASSERT_TRUE(t.found) << r.out;
        EXPECT_EQ(t.logs, scan.logs) << name;
        EXPECT_EQ(t.events, scan.events) << name;
        EXPECT_NE(t.first_line.find("1 input (1 read to the end)"), std::string::npos) << t.first_line;
        EXPECT_NE(t.first_line.find(" 0 skipped,"), std::string::npos) << t.first_line;
    }
}

/* Sub-packet 25 version 19 (one cell): EARFCN u32 @0, PCI bits 0-8 @8,
 * RSRP rx0/rx1 bits 10-21 @24 / 12-23 @28 (raw/16 - 180 dBm), RSRQ rx0/rx1
 * bits 12-21 @36 / 0-9 @40 (raw/16 - 30 dB), RSSI rx0/rx1 bits 10-20 /
 * 21-31 @44 (raw/16 - 110 dBm), offsets after the 4-byte packet header and
 * the 4-byte sub-packet header. */
struct serving_cell {
    uint32_t earfcn, pci;
    double rsrp[2], rsrq[2], rssi[2];
};

serving_cell decode_v19(const bytes &p)
{
    auto u32 = [&](size_t at) {
        return uint32_t(p[8 + at]) | uint32_t(p[9 + at]) << 8 | uint32_t(p[10 + at]) << 16 | uint32_t(p[11 + at]) << 24;
    };
    auto bits = [&](size_t at, int lo, int hi) { return (u32(at) >> lo) & ((1u << (hi - lo + 1)) - 1); };
    serving_cell c;
    c.earfcn = u32(0);
    c.pci = bits(8, 0, 8);
    c.rsrp[0] = bits(24, 10, 21) / 16.0 - 180;
    c.rsrp[1] = bits(28, 12, 23) / 16.0 - 180;
    c.rsrq[0] = bits(36, 12, 21) / 16.0 - 30;
    c.rsrq[1] = bits(40, 0, 9) / 16.0 - 30;
    c.rssi[0] = bits(44, 10, 20) / 16.0 - 110;
    c.rssi[1] = bits(44, 21, 31) / 16.0 - 110;
    return c;
}

double value_after(const std::string &text, const std::string &key)
{
    size_t at = text.find(key + " = ");
    if (at == std::string::npos) return NAN;
    return strtod(text.c_str() + at + key.size() + 3, nullptr);
}

/* Splits the default output into packet blocks (header line and lines). */
std::vector<std::string> packet_blocks(const std::string &out)
{
    std::vector<std::string> blocks;
    size_t at = 0;
    while ((at = out.find('#', at)) != std::string::npos && (at == 0 || out[at - 1] == '\n')) {
        size_t next = out.find("\n#", at);
        size_t end = next == std::string::npos ? out.find("\nsummary: ", at) : next;
        blocks.push_back(out.substr(at, end == std::string::npos ? std::string::npos : end + 1 - at));
        if (next == std::string::npos) break;
        at = next + 1;
    }
    return blocks;
}

TEST_F(ReplayCaptureTest, ServingCellValuesOfTheFirstPacketsFollowThePublicLayout)
{
    capture_scan scan = scan_capture(read_file(capture("att.mi2log")));
    std::vector<const scanned_log *> b193;
    for (const scanned_log &l : scan.log_packets) {
        if (l.code == 0xB193) b193.push_back(&l);
    }
    ASSERT_GE(b193.size(), 8u);
    run_result r = replay({"--log", "0xB193", capture("att.mi2log")});
    ASSERT_EQ(exit_code(r.status), 0) << r.err;
    std::vector<std::string> blocks = packet_blocks(r.out);
    ASSERT_EQ(blocks.size(), b193.size());
    /* The first packet's values as the public decoders list them. */
    EXPECT_NE(blocks[0].find("earfcn = 5780, rx_valid = 3, pci = 185,"), std::string::npos) << blocks[0];
    EXPECT_EQ(blocks[0].substr(0, 60), "#1 2016-01-17 03:40:41.642 UTC log 0xB193 length 368 sub 0\nm");
    for (size_t i = 0; i < 8; i++) {
        serving_cell want = decode_v19(b193[i]->payload);
        const std::string &got = blocks[i];
        EXPECT_NE(got.find("subpacket_id = 25, version_ssmr = 19\n"), std::string::npos) << got;
        EXPECT_EQ(value_after(got, "earfcn"), want.earfcn) << got;
        EXPECT_EQ(value_after(got, "pci"), want.pci) << got;
        const char *keys[3][2] = {{"rsrp_rx0", "rsrp_rx1"}, {"rsrq_rx0", "rsrq_rx1"}, {"rssi_rx0", "rssi_rx1"}};
        const double *values[3] = {want.rsrp, want.rsrq, want.rssi};
        for (int k = 0; k < 3; k++) {
            for (int rx = 0; rx < 2; rx++) {
                /* Two decimals of a multiple of 1/16 (ties at the third decimal). */
                EXPECT_NEAR(value_after(got, keys[k][rx]), values[k][rx], 0.0051) << keys[k][rx] << "\n" << got;
            }
        }
    }
}

/* Every line is one JSON object; python3 checks the keys and types and that
 * the packet objects add up to the summary object that ends the output. */
TEST_F(ReplayCaptureTest, JsonLinesParse)
{
    if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "python3 is absent";
    static const char k_check[] =
        "import json, sys\n"
        "lines = sys.stdin.read().splitlines()\n"
        "objs = [json.loads(l) for l in lines]\n"
        "assert objs[-1]['type'] == 'summary', objs[-1]\n"
        "packets = objs[:-1]\n"
        "assert len(packets) == objs[-1]['packets'], (len(packets), objs[-1]['packets'])\n"
        "records = 0\n"
        "for i, o in enumerate(packets):\n"
        "    assert o['type'] in ('log', 'event') and o['n'] == i + 1, o\n"
        "    assert isinstance(o['code'], int) and o['subscription'] in (0, 1), o\n"
        "    assert o['timestamp'].endswith('Z') and len(o['timestamp']) == 24, o\n"
        "    assert o['lines'][0].startswith('modem_stats_diag_process_'), o\n"
        "    for r in o['records']:\n"
        "        bytes.fromhex(r['bytes']); assert isinstance(r['data_id'], int); records += 1\n"
        "assert records == sum(objs[-1]['records'].values()), records\n"
        "print('ok', len(packets), records)\n";
    for (const char *name : k_captures) {
        run_result r = replay({"--json", capture(name)});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        run_result check = run_process({"/usr/bin/python3", "-c", k_check}, {}, r.out);
        EXPECT_EQ(exit_code(check.status), 0) << name << "\n" << check.err;
        EXPECT_EQ(check.out.compare(0, 3, "ok "), 0) << check.out;
    }
}

/* Flipped bytes, cut frames and garbage: every frame that survives is
 * decoded, the rest counted, and the run ends normally whatever the format
 * it is read as. */
TEST_F(ReplayCaptureTest, DamagedCapturesNeverStopTheRun)
{
    bytes data = read_file(capture("offline_log_example.mi2log"));
    for (size_t i = 100; i < data.size(); i += 997) data[i] ^= 0x5A;
    data.insert(data.begin() + 5000, 300, 0x7D);
    data.resize(data.size() - 7);
    std::string damaged = tmp_ + "/damaged.qmdl";
    ASSERT_TRUE(write_file(damaged, data));
    for (const char *format : {"auto", "hdlc", "dlf"}) {
        for (const char *mode : {"--summary-only", "--json", "--no-progress"}) {
            run_result r = replay({"--format", format, mode, damaged});
            EXPECT_EQ(exit_code(r.status), 0) << format << " " << mode << "\n" << r.err;
            EXPECT_TRUE(r.out.find("\"type\":\"summary\"") != std::string::npos || parse_summary(r.out).found)
                << format << " " << mode;
        }
    }
    run_result r = replay({"-s", damaged});
    summary_tables t = parse_summary(r.out);
    EXPECT_NE(r.out.find("bad CRC: "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("truncated at end of input: 1\n"), std::string::npos) << r.out;
    EXPECT_GT(t.logs[0xB193], 30u);
}

/* The log records of a capture written as DLF decode to the same packets. */
TEST_F(ReplayCaptureTest, DlfOfACaptureDecodesLikeTheCapture)
{
    capture_scan scan = scan_capture(read_file(capture("att.mi2log")));
    bytes dlf;
    for (const scanned_log &l : scan.log_packets) {
        size_t len = 12 + l.payload.size();
        bytes head = {uint8_t(len), uint8_t(len >> 8), uint8_t(l.code), uint8_t(l.code >> 8)};
        for (int i = 0; i < 8; i++) head.push_back(uint8_t(l.timestamp >> (8 * i)));
        dlf.insert(dlf.end(), head.begin(), head.end());
        dlf.insert(dlf.end(), l.payload.begin(), l.payload.end());
    }
    std::string path = tmp_ + "/att.dlf";
    ASSERT_TRUE(write_file(path, dlf));
    run_result hdlc = replay({capture("att.mi2log")});
    for (const char *format : {"auto", "dlf"}) {
        run_result r = replay({"--format", format, path});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        EXPECT_EQ(parse_summary(r.out).logs, scan.logs) << format;
        /* The packet text is the same; only the summary's frame line differs. */
        EXPECT_EQ(r.out.substr(0, r.out.rfind("summary: ")), hdlc.out.substr(0, hdlc.out.rfind("summary: ")));
    }
}

TEST_F(ReplayCaptureTest, SeveralInputsStandardInputAndAnUnreadableOne)
{
    bytes att = read_file(capture("att.mi2log"));
    run_result r = replay({"-s", "-", capture("att.mi2log"), tmp_ + "/missing.qmdl", tmp_},
                          std::string(att.begin(), att.end()));
    EXPECT_EQ(exit_code(r.status), 1);
    EXPECT_NE(r.err.find("rlk-replay: cannot open " + tmp_ + "/missing.qmdl: No such file or directory\n"),
              std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("rlk-replay: cannot read " + tmp_ + ": Is a directory\n"), std::string::npos) << r.err;
    summary_tables t = parse_summary(r.out);
    EXPECT_NE(t.first_line.find("4 inputs (2 read to the end), " + std::to_string(2 * att.size()) + " bytes"),
              std::string::npos)
        << t.first_line;
    EXPECT_EQ(t.logs[0xB193], 2 * 1091u);
}

TEST_F(ReplayCaptureTest, FilterDecodesOnlyTheChosenCodes)
{
    run_result r = replay({"--log", "0xB0C2,0xB062", "--event", "1606", capture("offline_log_example.mi2log")});
    ASSERT_EQ(exit_code(r.status), 0) << r.err;
    std::vector<std::string> blocks = packet_blocks(r.out);
    ASSERT_EQ(blocks.size(), 1u + 1u + 5u);
    size_t events = 0;
    for (const std::string &b : blocks) {
        bool log = b.find(" UTC log 0xB0C2 ") != std::string::npos || b.find(" UTC log 0xB062 ") != std::string::npos;
        bool event = b.find(" UTC event 1606 ") != std::string::npos;
        EXPECT_TRUE(log || event) << b;
        if (event) {
            events++;
            EXPECT_NE(b.find("modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0\n"),
                      std::string::npos)
                << b;
        }
    }
    EXPECT_EQ(events, 5u);
    EXPECT_NE(r.out.find("versions refused per code and version:\n  0xB062 version 2: 1\n"), std::string::npos);
    EXPECT_NE(r.out.find("packets not selected by the filter: "), std::string::npos);
}

TEST(ReplayUsage, HelpAndUsageErrors)
{
    run_result help = run_process({RLK_REPLAY_BINARY, "--help"}, {});
    EXPECT_EQ(exit_code(help.status), 0);
    EXPECT_EQ(help.out.compare(0, 40, "usage: rlk-replay [options] <capture>..."), 0) << help.out;
    for (const std::vector<std::string> &args :
         {std::vector<std::string>{}, {"--bogus", "x"}, {"--log", "0x1FFFF", "x"}, {"-s", "-j", "x"}}) {
        std::vector<std::string> argv = {RLK_REPLAY_BINARY};
        argv.insert(argv.end(), args.begin(), args.end());
        run_result r = run_process(argv, {});
        EXPECT_EQ(exit_code(r.status), 2) << r.err;
        EXPECT_EQ(r.err.compare(0, 12, "rlk-replay: "), 0) << r.err;
        EXPECT_NE(r.err.find("Try 'rlk-replay --help'."), std::string::npos) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
}

}  // namespace
