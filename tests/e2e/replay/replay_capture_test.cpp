/* rlk-replay on the public sample captures (../shared/captures; the tests
 * skip when the folder is absent) beyond what the transcript here shows:
 * the pcap whole and decoded by tshark (when installed), the same log
 * records as DLF, JSON lines that parse, and damaged inputs. */
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "../../unit/replay/replay_test_util.h"
#include "capture_files.h"
#include "golden.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;

namespace {

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
    void TearDown() override { if (!tmp_.empty()) run_process({"/bin/rm", "-rf", tmp_}, {}); }
    std::string capture(const std::string &name) const { return dir_ + "/" + name; }

    std::string dir_;
    std::string tmp_;
};

/* The pcap holds every signalling message the summary counts (the
 * transcript names them per kind), and tshark decodes each without a
 * malformed packet or an error. */
TEST_F(ReplayCaptureTest, ThePcapIsWholeAndDecodesInTshark)
{
    for (const auto &c : {std::make_pair("att.mi2log", 33u), std::make_pair("offline_log_example.mi2log", 23u)}) {
        std::string pcap = tmp_ + "/" + c.first + ".pcap";
        run_result r = replay({"--pcap", pcap, "--summary-only", capture(c.first)});
        EXPECT_EQ(exit_code(r.status), 0) << c.first << "\n" << r.err;
        std::vector<std::string> records;
        ASSERT_TRUE(pcap_records(read_file(pcap), &records)) << c.first;
        EXPECT_EQ(records.size(), c.second) << c.first;
        if (access(k_tshark, X_OK) != 0) continue;
        /* One line per frame: its protocol column, whether it is malformed
         * and the severity of its expert infos. */
        run_result ts = run_process({k_tshark, "-n", "-r", pcap, "-T", "fields", "-e", "_ws.col.Protocol", "-e",
                                     "_ws.malformed", "-e", "_ws.expert.severity"},
                                    {});
        EXPECT_EQ(exit_code(ts.status), 0) << ts.err;
        std::istringstream lines(ts.out);
        size_t frames = 0;
        for (std::string line; std::getline(lines, line); frames++) {
            bool known = line.compare(0, 8, "LTE RRC ") == 0 || line.compare(0, 15, "GSMTAP/NAS-EPS\t") == 0;
            EXPECT_TRUE(known) << c.first << ": " << line;
            /* Malformed frames and errors (severity 8388608 and above). */
            EXPECT_EQ(line.find("\t1"), std::string::npos) << c.first << ": " << line;
            EXPECT_EQ(line.find("\t8388608"), std::string::npos) << c.first << ": " << line;
        }
        EXPECT_EQ(frames, c.second) << c.first;
    }
}

/* The log records of the capture written as DLF decode to the same text;
 * only the summary's frame line differs. */
TEST_F(ReplayCaptureTest, TheLogRecordsAsDlfDecodeTheSame)
{
    std::vector<capture_log_packet> logs;
    ASSERT_TRUE(capture_read_logs(capture("att.mi2log"), &logs));
    bytes dlf;
    for (const capture_log_packet &l : logs) {
        bytes record = replay_test::inner_log(l.code, l.timestamp, l.payload);
        dlf.insert(dlf.end(), record.begin(), record.end());
    }
    ASSERT_TRUE(write_file(tmp_ + "/att.dlf", dlf));
    /* All but the summary's first line, which counts frames. */
    auto text = [](std::string out) {
        size_t at = out.rfind("summary: ");
        return out.erase(at, out.find('\n', at) - at);
    };
    std::string hdlc = text(replay({capture("att.mi2log")}).out);
    for (const char *format : {"auto", "dlf"}) {
        run_result r = replay({"--format", format, tmp_ + "/att.dlf"});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        EXPECT_EQ(text(r.out), hdlc) << format;
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
    for (const char *name : {"att.mi2log", "offline_log_example.mi2log"}) {
        run_result r = replay({"--json", capture(name)});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        run_result check = run_process({"/usr/bin/python3", "-c", k_check}, {}, r.out);
        EXPECT_EQ(exit_code(check.status), 0) << name << "\n" << check.err;
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
            bool json = std::string(mode) == "--json";
            EXPECT_NE(r.out.find(json ? "{\"type\":\"summary\"" : "summary: "), std::string::npos) << format << mode;
        }
    }
    expect_golden(replay({"-s", damaged}).out, __FILE__, "damaged_capture.golden");
}

}  // namespace
