/* rlk-replay --pcap: the sample captures' signalling messages decode in
 * tshark (when installed) without a malformed packet or an exception, in
 * the documented numbers per kind; a damaged capture still gives a whole
 * pcap, with unknown versions counted; standard output carries the pcap of
 * a live stream, whole after SIGINT. */
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "capture_files.h"
#include "hdlc.h"
#include "process_runner.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;

namespace {

constexpr int k_wait_ms = 10000;
constexpr const char *k_tshark = "/usr/bin/tshark";

int exit_code(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/* "pcap messages written per kind" of a text summary. */
std::map<std::string, uint64_t> written_per_kind(const std::string &out)
{
    std::map<std::string, uint64_t> kinds;
    size_t at = out.find("pcap messages written per kind:\n");
    if (at == std::string::npos) return kinds;
    at = out.find('\n', at) + 1;
    while (at < out.size() && out.compare(at, 2, "  ") == 0) {
        size_t nl = out.find('\n', at);
        std::string line = out.substr(at + 2, nl - at - 2);
        size_t sp = line.rfind(' ');
        kinds[line.substr(0, sp)] = std::stoull(line.substr(sp + 1));
        at = nl + 1;
    }
    return kinds;
}

/* A log packet frame: command 0x10, lengths, code, timestamp, payload. */
bytes log_frame(uint16_t code, const bytes &payload)
{
    size_t n = 12 + payload.size();
    bytes p = {0x10, 0, uint8_t(n), uint8_t(n >> 8), uint8_t(n), uint8_t(n >> 8), uint8_t(code), uint8_t(code >> 8)};
    uint64_t ts = 0x0000D50C43E9A000ull; /* 2016-01-17 */
    for (int i = 0; i < 8; i++) p.push_back(uint8_t(ts >> (8 * i)));
    p.insert(p.end(), payload.begin(), payload.end());
    bytes out;
    hdlc_encode(p.data(), p.size(), &out);
    return out;
}

/* LTE RRC OTA version `v` (the version 9 layout), UL-DCCH, two bytes. */
bytes rrc_frame(uint8_t v)
{
    return log_frame(0xB0C0, {v, 0x0B, 0x70, 1, 0xB9, 0, 0x94, 0x16, 0, 0, 0, 0, 15, 0, 0, 0, 0, 2, 0, 0x14, 0});
}

/* A NAS EMM uplink message (an attach complete). */
bytes nas_frame()
{
    return log_frame(0xB0ED, {1, 9, 5, 0, 0x07, 0x43, 0x00, 0x03, 0x52, 0x00, 0xC2});
}

class ReplayPcapTest : public testing::Test {
protected:
    void SetUp() override
    {
        char tmp[] = "/tmp/rlk_replay_pcap.XXXXXX";
        ASSERT_NE(mkdtemp(tmp), nullptr);
        tmp_ = tmp;
    }
    void TearDown() override { run_process({"/bin/rm", "-rf", tmp_}, {}); }
    std::string tmp_;
};

run_result replay(const std::vector<std::string> &args)
{
    std::vector<std::string> argv = {RLK_REPLAY_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    return run_process(argv, {});
}

/* tshark's view: one line per frame, its protocol column and whether it is
 * malformed or raised an error. */
std::vector<std::string> tshark_lines(const std::string &pcap)
{
    run_result r = run_process({k_tshark, "-n", "-r", pcap, "-T", "fields", "-e", "_ws.col.Protocol", "-e",
                                "_ws.malformed", "-e", "_ws.expert.severity"},
                               {});
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    std::vector<std::string> lines;
    for (size_t at = 0; at < r.out.size();) {
        size_t nl = r.out.find('\n', at);
        lines.push_back(r.out.substr(at, nl - at));
        at = nl + 1;
    }
    return lines;
}

TEST_F(ReplayPcapTest, SampleCapturesDecodeInTsharkInTheDocumentedNumbers)
{
    std::string dir = capture_files_dir();
    if (dir.empty()) GTEST_SKIP() << "captures folder " RLK_CAPTURES_DIR " is absent";
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
        std::string pcap = tmp_ + "/" + w.first + ".pcap";
        run_result r = replay({"--pcap", pcap, "--summary-only", dir + "/" + w.first});
        ASSERT_EQ(exit_code(r.status), 0) << r.err;
        EXPECT_EQ(written_per_kind(r.out), w.second) << w.first << "\n" << r.out;
        uint64_t total = 0;
        for (const auto &k : w.second) total += k.second;
        std::vector<std::string> records;
        ASSERT_TRUE(pcap_records(run_process({"/bin/cat", pcap}, {}).out, &records)) << w.first;
        EXPECT_EQ(records.size(), total) << w.first;
        if (access(k_tshark, X_OK) != 0) continue;
        std::vector<std::string> lines = tshark_lines(pcap);
        EXPECT_EQ(lines.size(), total) << w.first;
        for (const std::string &line : lines) {
            bool known = line.compare(0, 8, "LTE RRC ") == 0 || line.compare(0, 15, "GSMTAP/NAS-EPS\t") == 0;
            EXPECT_TRUE(known) << w.first << ": " << line;
            /* Malformed frames and errors (severity 8388608 and above). */
            EXPECT_EQ(line.find("\t1"), std::string::npos) << w.first << ": " << line;
            EXPECT_EQ(line.find("\t8388608"), std::string::npos) << w.first << ": " << line;
        }
    }
}

TEST_F(ReplayPcapTest, DamagedCaptureGivesAWholePcapAndCountsUnknownVersions)
{
    bytes bad_crc = rrc_frame(9);
    bad_crc[bad_crc.size() - 3] ^= 0x01;
    bytes cut = rrc_frame(9);
    cut.resize(cut.size() / 2);
    bytes capture;
    for (const bytes &f : {rrc_frame(9), bad_crc, rrc_frame(30), nas_frame(), bytes{0x7D, 0x7E}, rrc_frame(9), cut}) {
        capture.insert(capture.end(), f.begin(), f.end());
    }
    std::string in = tmp_ + "/damaged.qmdl";
    ASSERT_TRUE(write_file(in, capture));
    std::string pcap = tmp_ + "/damaged.pcap";
    run_result r = replay({"--pcap", pcap, in});
    ASSERT_EQ(exit_code(r.status), 0) << r.err;
    std::map<std::string, uint64_t> want = {{"LTE RRC UL-DCCH", 2}, {"LTE NAS EMM uplink", 1}};
    EXPECT_EQ(written_per_kind(r.out), want) << r.out;
    EXPECT_NE(r.out.find("pcap versions refused per code and version:\n  0xB0C0 version 30: 1\n"), std::string::npos)
        << r.out;
    std::vector<std::string> records;
    ASSERT_TRUE(pcap_records(run_process({"/bin/cat", pcap}, {}).out, &records));
    ASSERT_EQ(records.size(), 3u);
    /* IPv4 and UDP headers, then GSMTAP: LTE RRC UL-DCCH on EARFCN 5780
     * (uplink), the message. */
    EXPECT_EQ(records[0].substr(28), std::string("\x02\x04\x0d\x00\x56\x94\0\0\0\0\0\0\x03\0\0\0\x14\0", 18));
    if (access(k_tshark, X_OK) == 0) {
        EXPECT_EQ(tshark_lines(pcap).size(), 3u);
    }
    /* The JSON summary carries the same counts. */
    run_result j = replay({"--json", "--pcap", pcap, in});
    EXPECT_NE(j.out.find(",\"pcap\":{\"written\":{\"LTE NAS EMM uplink\":1,\"LTE RRC UL-DCCH\":2},"
                         "\"refused\":[{\"code\":45248,\"version\":30,\"count\":1}],"
                         "\"not_written\":{\"malformed\":0,\"channel not written\":0,"
                         "\"NR RRC, no GSMTAP type\":0}}}\n"),
              std::string::npos)
        << j.out;
}

/* A stream on standard input, the pcap on standard output and the summary
 * on standard error; SIGINT leaves every record whole. */
TEST_F(ReplayPcapTest, LiveStreamToStandardOutputIsWholeAfterSigint)
{
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    child c = spawn({RLK_REPLAY_BINARY, "--pcap", "-", "-"}, fds[0]);
    close(fds[0]);
    ASSERT_GT(c.pid, 0);
    bytes frames = rrc_frame(9);
    bytes nas = nas_frame();
    frames.insert(frames.end(), nas.begin(), nas.end());
    ASSERT_EQ(write(fds[1], frames.data(), frames.size()), ssize_t(frames.size()));
    std::string out, err;
    /* The NAS message is the last bytes of the second record. */
    EXPECT_TRUE(read_until(c, std::string("\x07\x43\x00\x03\x52\x00\xC2", 7), k_wait_ms, &out));
    kill(c.pid, SIGINT);
    int status = finish(&c, k_wait_ms, &out, &err);
    close(fds[1]);
    EXPECT_EQ(exit_code(status), 128 + SIGINT);
    std::vector<std::string> records;
    EXPECT_TRUE(pcap_records(out, &records));
    EXPECT_EQ(records.size(), 2u);
    EXPECT_NE(err.find("pcap messages written per kind:\n  LTE NAS EMM uplink 1\n  LTE RRC UL-DCCH 1\n"),
              std::string::npos)
        << err;
}

}  // namespace
