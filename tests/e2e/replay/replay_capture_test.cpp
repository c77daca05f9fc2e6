/* rlk-replay on the public sample captures (../shared/captures; the tests
 * skip when the folder is absent): packet counts against an independent
 * scan, signalling messages that tshark (when installed) decodes, the
 * serving-cell values of the first packets against the public layout, the
 * same capture as DLF, JSON lines that parse, damaged inputs, several
 * inputs, the filter; and the usage errors. */
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "../../unit/replay/replay_test_util.h"
#include "capture_files.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;
using replay_test::inner_log;

namespace {

const char *const k_captures[] = {"att.mi2log", "offline_log_example.mi2log"};
constexpr const char *k_tshark = "/usr/bin/tshark";

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

/* Splits the default output into packet blocks (header line and lines). */
std::vector<std::string> packet_blocks(const std::string &out)
{
    std::vector<std::string> blocks;
    std::string text = "\n" + out.substr(0, out.rfind("\nsummary: ") + 1);
    for (size_t at = text.find("\n#"), next; at != std::string::npos; at = next) {
        next = text.find("\n#", at + 1);
        blocks.push_back(text.substr(at + 1, next == std::string::npos ? std::string::npos : next - at));
    }
    return blocks;
}

/* The summary counts every packet the independent scan finds; the pcap
 * holds the signalling messages in the documented numbers per kind, and
 * tshark decodes each without a malformed packet or an error. */
TEST_F(ReplayCaptureTest, CountsMatchAnIndependentScanAndThePcapDecodesInTshark)
{
    const std::map<std::string, std::map<std::string, uint64_t>> want = {
        {"att.mi2log",
         {{"LTE RRC DL-CCCH", 2}, {"LTE RRC DL-DCCH", 9}, {"LTE RRC PCCH", 9}, {"LTE RRC UL-CCCH", 2},
          {"LTE RRC UL-DCCH", 9}, {"LTE NAS EMM uplink", 2}}},
        {"offline_log_example.mi2log",
         {{"LTE RRC BCCH-DL-SCH", 5}, {"LTE RRC DL-CCCH", 1}, {"LTE RRC DL-DCCH", 4}, {"LTE RRC UL-CCCH", 1},
          {"LTE RRC UL-DCCH", 6}, {"LTE NAS EMM downlink", 1}, {"LTE NAS EMM uplink", 2},
          {"LTE NAS ESM downlink", 2}, {"LTE NAS ESM uplink", 1}}},
    };
    for (const auto &w : want) {
        capture_scan scan = scan_capture(read_file(capture(w.first.c_str())));
        ASSERT_FALSE(scan.logs.empty()) << w.first;
        std::string pcap = tmp_ + "/" + w.first + ".pcap";
        run_result r = replay({"--pcap", pcap, "--summary-only", capture(w.first.c_str())});
        EXPECT_EQ(exit_code(r.status), 0) << w.first << "\n" << r.err;
        summary_tables t = parse_summary(r.out);
        EXPECT_EQ(t.logs, scan.logs) << w.first;
        EXPECT_EQ(t.events, scan.events) << w.first;
        EXPECT_NE(t.first_line.find("1 input (1 read to the end)"), std::string::npos) << t.first_line;
        EXPECT_NE(t.first_line.find(" 0 skipped,"), std::string::npos) << t.first_line;
        EXPECT_EQ(written_per_kind(r.out), w.second) << w.first << "\n" << r.out;
        uint64_t total = 0;
        for (const auto &k : w.second) total += k.second;
        std::vector<std::string> records;
        bytes file = read_file(pcap);
        ASSERT_TRUE(pcap_records(std::string(file.begin(), file.end()), &records)) << w.first;
        EXPECT_EQ(records.size(), total) << w.first;
        if (access(k_tshark, X_OK) != 0) continue;
        /* One line per frame: its protocol column, whether it is malformed
         * and the severity of its expert infos. */
        run_result ts = run_process({k_tshark, "-n", "-r", pcap, "-T", "fields", "-e", "_ws.col.Protocol", "-e",
                                     "_ws.malformed", "-e", "_ws.expert.severity"},
                                    {});
        EXPECT_EQ(exit_code(ts.status), 0) << ts.err;
        std::istringstream lines(ts.out);
        uint64_t frames = 0;
        for (std::string line; std::getline(lines, line); frames++) {
            bool known = line.compare(0, 8, "LTE RRC ") == 0 || line.compare(0, 15, "GSMTAP/NAS-EPS\t") == 0;
            EXPECT_TRUE(known) << w.first << ": " << line;
            /* Malformed frames and errors (severity 8388608 and above). */
            EXPECT_EQ(line.find("\t1"), std::string::npos) << w.first << ": " << line;
            EXPECT_EQ(line.find("\t8388608"), std::string::npos) << w.first << ": " << line;
        }
        EXPECT_EQ(frames, total) << w.first;
    }
}

/* The serving-cell values of the first packets follow the public layout;
 * the log records of the capture written as DLF decode to the same text. */
TEST_F(ReplayCaptureTest, ServingCellValuesFollowThePublicLayoutAndDlfDecodesTheSame)
{
    capture_scan scan = scan_capture(read_file(capture("att.mi2log")));
    run_result hdlc = replay({capture("att.mi2log")});
    ASSERT_EQ(exit_code(hdlc.status), 0) << hdlc.err;
    std::vector<std::string> b193;
    for (const std::string &b : packet_blocks(hdlc.out)) {
        if (b.find(" UTC log 0xB193 ") != std::string::npos) b193.push_back(b);
    }
    ASSERT_EQ(b193.size(), scan.logs[0xB193]);
    ASSERT_GE(b193.size(), 8u);
    /* The first packet's values as the public decoders list them. */
    EXPECT_NE(b193[0].find("earfcn = 5780, rx_valid = 3, pci = 185,"), std::string::npos) << b193[0];
    EXPECT_EQ(b193[0].substr(0, 60), "#1 2016-01-17 03:40:41.642 UTC log 0xB193 length 368 sub 0\nm");
    /* Sub-packet 25 version 19 (one cell), offsets after the 4-byte packet
     * header and the 4-byte sub-packet header: bits lo-hi of the u32 at
     * `at`, divided by `div`, plus `base`. */
    const struct {
        const char *key;
        size_t at;
        int lo, hi;
        double div, base;
    } fields[] = {
        {"earfcn", 0, 0, 31, 1, 0},         {"pci", 8, 0, 8, 1, 0},
        {"rsrp_rx0", 24, 10, 21, 16, -180}, {"rsrp_rx1", 28, 12, 23, 16, -180},
        {"rsrq_rx0", 36, 12, 21, 16, -30},  {"rsrq_rx1", 40, 0, 9, 16, -30},
        {"rssi_rx0", 44, 10, 20, 16, -110}, {"rssi_rx1", 44, 21, 31, 16, -110},
    };
    size_t n = 0;
    for (const scanned_log &l : scan.log_packets) {
        if (l.code != 0xB193 || n >= 8) continue;
        const std::string &got = b193[n++];
        EXPECT_NE(got.find("subpacket_id = 25, version_ssmr = 19\n"), std::string::npos) << got;
        for (const auto &f : fields) {
            const uint8_t *p = &l.payload[8 + f.at];
            uint64_t u32 = p[0] | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
            double want = double((u32 >> f.lo) & ((uint64_t(1) << (f.hi - f.lo + 1)) - 1)) / f.div + f.base;
            size_t at = got.find(std::string(f.key) + " = ");
            double value = at == std::string::npos ? NAN : strtod(got.c_str() + at + strlen(f.key) + 3, nullptr);
            /* Two decimals of a multiple of 1/16 (ties at the third decimal). */
            EXPECT_NEAR(value, want, 0.0051) << f.key << "\n" << got;
        }
    }
    bytes dlf;
    for (const scanned_log &l : scan.log_packets) {
        bytes record = inner_log(l.code, l.timestamp, l.payload);
        dlf.insert(dlf.end(), record.begin(), record.end());
    }
    std::string path = tmp_ + "/att.dlf";
    ASSERT_TRUE(write_file(path, dlf));
    for (const char *format : {"auto", "dlf"}) {
        run_result r = replay({"--format", format, path});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        EXPECT_EQ(parse_summary(r.out).logs, scan.logs) << format;
        /* The packet text is the same; only the summary's frame line differs. */
        EXPECT_EQ(r.out.substr(0, r.out.rfind("summary: ")), hdlc.out.substr(0, hdlc.out.rfind("summary: ")));
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
            if (std::string(format) != "auto" || std::string(mode) != "--summary-only") continue;
            EXPECT_NE(r.out.find("bad CRC: "), std::string::npos) << r.out;
            EXPECT_NE(r.out.find("truncated at end of input: 1\n"), std::string::npos) << r.out;
            EXPECT_GT(parse_summary(r.out).logs[0xB193], 30u);
        }
    }
}

TEST_F(ReplayCaptureTest, SeveralInputsStandardInputAndAnUnreadableOne)
{
    bytes att = read_file(capture("att.mi2log"));
    run_result r = replay({"-s", "-", capture("att.mi2log"), tmp_ + "/missing.qmdl", tmp_},
                          std::string(att.begin(), att.end()));
    EXPECT_EQ(exit_code(r.status), 1);
    EXPECT_EQ(r.err, "rlk-replay: cannot open " + tmp_ + "/missing.qmdl: No such file or directory\n" +
                         "rlk-replay: cannot read " + tmp_ + ": Is a directory\n");
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
        events += event;
        if (event) {
            EXPECT_NE(b.find("modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0\n"),
                      std::string::npos)
                << b;
        }
    }
    EXPECT_EQ(events, 5u);
    EXPECT_NE(r.out.find("versions refused per code and version:\n  0xB062 version 2: 1\n"), std::string::npos);
    EXPECT_NE(r.out.find("packets not selected by the filter: "), std::string::npos);
}

/* --help, and every usage error: its text and the hint on standard error,
 * status 2, nothing on standard output. */
TEST(ReplayUsage, HelpAndUsageErrors)
{
    run_result help = replay({"--help"});
    EXPECT_EQ(exit_code(help.status), 0);
    EXPECT_EQ(help.out.compare(0, 40, "usage: rlk-replay [options] <capture>..."), 0) << help.out;
    const std::string no_capture = "no capture given (use - for standard input)";
    const std::string code_range = "' (0 to 65535, decimal or 0x-prefixed hex)";
    const std::string id_range = "' (0 to 4095, decimal or 0x-prefixed hex)";
    struct {
        std::vector<std::string> args;
        std::string error;
    } cases[] = {
        {{}, no_capture},
        {{"-s"}, no_capture},
        {{"--bogus", "x"}, "unknown option '--bogus'"},
        {{"-x", "x"}, "unknown option '-x'"},
        {{"x", "--log"}, "option '--log' needs a value"},
        {{"--log", "0x10000", "x"}, "invalid log code '0x10000" + code_range},
        {{"--log", "0xB193,", "x"}, "invalid log code '" + code_range},
        {{"--log", "-1", "x"}, "invalid log code '-1" + code_range},
        {{"--log", "0x", "x"}, "invalid log code '0x" + code_range},
        {{"--log", "B193", "x"}, "invalid log code 'B193" + code_range},
        {{"--event", "4096", "x"}, "invalid event id '4096" + id_range},
        {{"--event", "16o6", "x"}, "invalid event id '16o6" + id_range},
        {{"--format", "pcap", "x"}, "unknown format 'pcap' (auto, hdlc or dlf)"},
        {{"-s", "-j", "x"}, "--summary-only and --json exclude each other"},
        {{"--json=1", "x"}, "option '--json' takes no value"},
    };
    for (const auto &c : cases) {
        run_result r = replay(c.args);
        EXPECT_EQ(exit_code(r.status), 2) << c.error;
        EXPECT_EQ(r.err, "rlk-replay: " + c.error + "\nTry 'rlk-replay --help'.\n");
        EXPECT_EQ(r.out, "");
    }
}

}  // namespace
