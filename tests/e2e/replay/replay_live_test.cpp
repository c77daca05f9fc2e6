/* rlk-replay on made-up streams: --pcap of a damaged capture is a whole
 * pcap with unknown versions counted; inputs without an end are read until
 * a signal and summarised: the pcap of a pipe on standard output stays
 * whole after SIGINT, a character device (a pseudo terminal standing in
 * for a diag serial port) ends with status 0 on SIGINT, a pipe interrupted
 * by SIGTERM reports the interruption; progress on a terminal. */
#include <gtest/gtest.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "../../unit/replay/replay_test_util.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;
using replay_test::concat;
using replay_test::event_record;
using replay_test::frame;
using replay_test::log_packet;

namespace {

/* A log packet frame of 2016-01-17. */
bytes log_frame(uint16_t code, const bytes &payload)
{
    return frame(log_packet(code, 0x0000D50C43E9A000ull, payload));
}

/* LTE RRC OTA version `v` (the version 9 layout), UL-DCCH, two bytes. */
bytes rrc_frame(uint8_t v)
{
    return log_frame(0xB0C0, {v, 0x0B, 0x70, 1, 0xB9, 0, 0x94, 0x16, 0, 0, 0, 0, 15, 0, 0, 0, 0, 2, 0, 0x14, 0});
}

/* A NAS EMM uplink message (an attach complete). */
const bytes k_nas = log_frame(0xB0ED, {1, 9, 5, 0, 0x07, 0x43, 0x00, 0x03, 0x52, 0x00, 0xC2});

/* Two log packets (the second inside a multi-SIM wrapper for the second
 * subscription) and an event report with two records. */
const bytes k_live = concat({
    frame(log_packet(0x1234, 1, {0x7E, 0x7D, 0x01})),
    frame(replay_test::wrapped(2, log_packet(0x1235, 2, {0xAA, 0xBB}))),
    frame(replay_test::event_report({event_record(1606, 1, false, {2}), event_record(1648, 0x1234, true, {})})),
});

TEST(ReplayPcap, DamagedCaptureGivesAWholePcapAndCountsUnknownVersions)
{
    char tmp[] = "/tmp/rlk_replay_pcap.XXXXXX";
    ASSERT_NE(mkdtemp(tmp), nullptr);
    std::string in = std::string(tmp) + "/damaged.qmdl", pcap = std::string(tmp) + "/damaged.pcap";
    bytes bad_crc = rrc_frame(9);
    bad_crc[bad_crc.size() - 3] ^= 0x01;
    bytes cut = rrc_frame(9);
    cut.resize(cut.size() / 2);
    ASSERT_TRUE(write_file(in, concat({rrc_frame(9), bad_crc, rrc_frame(30), k_nas, {0x7D, 0x7E}, rrc_frame(9), cut})));
    run_result r = replay({"--pcap", pcap, in});
    ASSERT_EQ(exit_code(r.status), 0) << r.err;
    std::map<std::string, uint64_t> want = {{"LTE RRC UL-DCCH", 2}, {"LTE NAS EMM uplink", 1}};
    EXPECT_EQ(written_per_kind(r.out), want) << r.out;
    EXPECT_NE(r.out.find("pcap versions refused per code and version:\n  0xB0C0 version 30: 1\n"), std::string::npos)
        << r.out;
    bytes file = read_file(pcap);
    std::vector<std::string> records;
    ASSERT_TRUE(pcap_records(std::string(file.begin(), file.end()), &records));
    ASSERT_EQ(records.size(), 3u);
    /* IPv4 and UDP headers, then GSMTAP: LTE RRC UL-DCCH on EARFCN 5780
     * (uplink), the message. */
    EXPECT_EQ(records[0].substr(28), std::string("\x02\x04\x0d\x00\x56\x94\0\0\0\0\0\0\x03\0\0\0\x14\0", 18));
    if (access("/usr/bin/tshark", X_OK) == 0) {
        run_result ts = run_process({"/usr/bin/tshark", "-n", "-r", pcap}, {});
        EXPECT_EQ(std::count(ts.out.begin(), ts.out.end(), '\n'), 3) << ts.out << ts.err;
    }
    /* The JSON summary carries the same counts. */
    run_result j = replay({"--json", "--pcap", pcap, in});
    EXPECT_NE(j.out.find(",\"pcap\":{\"written\":{\"LTE NAS EMM uplink\":1,\"LTE RRC UL-DCCH\":2},"
                         "\"refused\":[{\"code\":45248,\"version\":30,\"count\":1}],"
                         "\"not_written\":{\"malformed\":0,\"channel not written\":0,"
                         "\"NR RRC, no GSMTAP type\":0}}}\n"),
              std::string::npos)
        << j.out;
    run_process({"/bin/rm", "-rf", tmp}, {});
}

/* A stream on standard input, the pcap on standard output and the summary
 * on standard error; SIGINT leaves every record whole. */
TEST(ReplayLive, PcapOfAPipeOnStandardOutputIsWholeAfterSigint)
{
    /* The NAS message is the last bytes of the second record. */
    run_result r = replay_interrupted({"--pcap", "-", "-"}, -1, concat({rrc_frame(9), k_nas}),
                                      std::string("\x07\x43\x00\x03\x52\x00\xC2", 7), SIGINT);
    EXPECT_EQ(exit_code(r.status), 128 + SIGINT);
    std::vector<std::string> records;
    EXPECT_TRUE(pcap_records(r.out, &records));
    EXPECT_EQ(records.size(), 2u);
    EXPECT_NE(r.err.find("pcap messages written per kind:\n  LTE NAS EMM uplink 1\n  LTE RRC UL-DCCH 1\n"),
              std::string::npos)
        << r.err;
}

/* A pseudo terminal in raw mode.  The test holds the slave side open, so
 * that bytes written before the program opens it wait there unchanged. */
struct pty {
    int master = posix_openpt(O_RDWR | O_NOCTTY);
    int slave = -1;
    std::string slave_path;
    bool open()
    {
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return false;
        slave_path = ptsname(master);
        slave = ::open(slave_path.c_str(), O_RDWR | O_NOCTTY);
        struct termios raw;
        if (slave < 0 || tcgetattr(slave, &raw) != 0) return false;
        cfmakeraw(&raw);
        return tcsetattr(slave, TCSANOW, &raw) == 0;
    }
    ~pty()
    {
        if (slave >= 0) close(slave);
        if (master >= 0) close(master);
    }
};

TEST(ReplayLive, SerialDeviceIsReadUntilInterruptedAndSummarised)
{
    pty tty;
    ASSERT_TRUE(tty.open());
    /* The output of a live input comes as it is read. */
    run_result r = replay_interrupted({tty.slave_path}, tty.master, k_live, "#4 ", SIGINT);
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    EXPECT_NE(r.out.find(" UTC log 0x1234 length 3 sub 0\nmodem_stats_diag_process_log_ex: log_id 0x1234, length 3, "
                         "sub_id = 0\n"),
              std::string::npos)
        << r.out;
    EXPECT_NE(r.out.find(" UTC log 0x1235 length 2 sub 1\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(" UTC event 1606 length 1 sub 0\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(" UTC event 1648 length 0 sub 0 ts16 0x1234\n"), std::string::npos) << r.out;
    summary_tables t = parse_summary(r.out);
    EXPECT_EQ(t.first_line.substr(0, 36), "summary: 1 input (1 read to the end)") << t.first_line;
    EXPECT_EQ(t.logs, (std::map<uint32_t, uint64_t>{{0x1234, 1}, {0x1235, 1}}));
    EXPECT_EQ(t.events, (std::map<uint32_t, uint64_t>{{1606, 1}, {1648, 1}}));
    EXPECT_EQ(r.err, "");
}

TEST(ReplayLive, InterruptedPipeIsSummarisedWithTheSignalStatus)
{
    run_result r = replay_interrupted({"--json", "-"}, -1, k_live, "\"n\":4,", SIGTERM);
    EXPECT_EQ(exit_code(r.status), 128 + SIGTERM);
    EXPECT_NE(r.out.find("{\"type\":\"summary\",\"inputs\":1,\"inputs_read\":0,"), std::string::npos) << r.out;
    EXPECT_EQ(r.err, "rlk-replay: -: interrupted before its end\n");
}

/* Progress goes to a standard error that is a terminal: a line after a
 * chunk that comes more than 250 ms after the last one, cleared at the
 * end. */
TEST(ReplayLive, ProgressLineOnATerminal)
{
    pty tty;
    ASSERT_TRUE(tty.open());
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    child c = spawn({RLK_REPLAY_BINARY, "-s", "-"}, fds[0], tty.slave);
    close(fds[0]);
    ASSERT_GT(c.pid, 0);
    EXPECT_EQ(write(fds[1], k_live.data(), k_live.size()), ssize_t(k_live.size()));
    usleep(300 * 1000); /* just past the interval between progress lines */
    EXPECT_EQ(write(fds[1], k_live.data(), k_live.size()), ssize_t(k_live.size()));
    close(fds[1]);
    std::string out, err, shown;
    EXPECT_EQ(exit_code(finish(&c, k_wait_ms, &out, &err)), 0);
    char buf[4096];
    struct pollfd p = {tty.master, POLLIN, 0};
    for (ssize_t n; poll(&p, 1, 0) > 0 && (n = read(tty.master, buf, sizeof(buf))) > 0;) shown.append(buf, size_t(n));
    EXPECT_NE(shown.find("\rrlk-replay: -: 0.0 MB, 8 packets\033[K"), std::string::npos) << shown;
    EXPECT_EQ(shown.substr(shown.size() - 4), "\r\033[K") << shown;
    EXPECT_NE(parse_summary(out).first_line.find(", 8 packets"), std::string::npos) << out;
}

}  // namespace
