/* rlk-replay on made-up streams: --pcap of a damaged capture is a whole
 * pcap with unknown versions counted; inputs without an end are read until
 * a signal and summarised: the pcap of a pipe on standard output stays
 * whole after SIGINT, a character device (a pseudo terminal standing in
 * for a diag serial port) ends with status 0 on SIGINT, a pipe interrupted
 * by SIGTERM reports the interruption; progress on a terminal.  Whole
 * outputs are in the golden files here. */
#include <gtest/gtest.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../../unit/replay/replay_test_util.h"
#include "golden.h"
#include "replay_e2e_util.h"
#include "sim_fixture.h"

using namespace replay_e2e;
using replay_test::concat;
using replay_test::event_record;
using replay_test::frame;
using replay_test::log_packet;

namespace {

constexpr uint64_t k_2016 = 0x0000D50C43E9A000ull; /* the time stamp of 2016-01-17 */

/* LTE RRC OTA version `v` (the version 9 layout), UL-DCCH, two bytes. */
bytes rrc_frame(uint8_t v)
{
    return frame(
        log_packet(0xB0C0, k_2016, {v, 0x0B, 0x70, 1, 0xB9, 0, 0x94, 0x16, 0, 0, 0, 0, 15, 0, 0, 0, 0, 2, 0, 0x14, 0}));
}

/* A NAS EMM uplink message (an attach complete). */
const bytes k_nas = frame(log_packet(0xB0ED, k_2016, {1, 9, 5, 0, 0x07, 0x43, 0x00, 0x03, 0x52, 0x00, 0xC2}));

/* Two log packets (the second inside a multi-SIM wrapper for the second
 * subscription) and an event report with two records. */
const bytes k_live = concat({
    frame(log_packet(0x1234, 1, {0x7E, 0x7D, 0x01})),
    frame(replay_test::wrapped(2, log_packet(0x1235, 2, {0xAA, 0xBB}))),
    frame(replay_test::event_report({event_record(1606, 1, false, {2}), event_record(1648, 0x1234, true, {})})),
});

/* The text and JSON runs print the same counts: messages written per
 * kind, and version 30 refused. */
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
    run_result r = replay({"--pcap", pcap, in}), j = replay({"--json", "--pcap", pcap, in});
    ASSERT_EQ(exit_code(r.status), 0) << r.err;
    /* The JSON names the input, in a folder of its own each time. */
    std::string all = r.out + j.out;
    for (size_t at; (at = all.find(tmp)) != std::string::npos;) all.replace(at, strlen(tmp), "TMP");
    expect_golden(all, __FILE__, "damaged_pcap.golden");
    std::vector<std::string> records;
    ASSERT_TRUE(pcap_records(read_file(pcap), &records));
    ASSERT_EQ(records.size(), 3u);
    /* IPv4 and UDP headers, then GSMTAP: LTE RRC UL-DCCH on EARFCN 5780
     * (uplink), the message. */
    EXPECT_EQ(records[0].substr(28), std::string("\x02\x04\x0d\x00\x56\x94\0\0\0\0\0\0\x03\0\0\0\x14\0", 18));
    if (access("/usr/bin/tshark", X_OK) == 0) {
        run_result ts = run_process({"/usr/bin/tshark", "-n", "-r", pcap}, {});
        EXPECT_EQ(std::count(ts.out.begin(), ts.out.end(), '\n'), 3) << ts.out << ts.err;
    }
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
    EXPECT_TRUE(pcap_records(bytes(r.out.begin(), r.out.end()), &records));
    EXPECT_EQ(records.size(), 2u);
    expect_golden(r.err, __FILE__, "pipe_pcap_sigint.golden");
}

/* The output of a live input comes as it is read; SIGINT ends the run
 * with status 0. */
TEST(ReplayLive, SerialDeviceIsReadUntilInterruptedAndSummarised)
{
    pty tty;
    ASSERT_TRUE(tty.open());
    run_result r = replay_interrupted({tty.slave_path}, tty.master, k_live, "#4 ", SIGINT);
    EXPECT_EQ(exit_code(r.status), 0) << r.err;
    expect_golden(r.out, __FILE__, "serial_sigint.golden");
    EXPECT_EQ(r.err, "");
}

TEST(ReplayLive, InterruptedPipeIsSummarisedWithTheSignalStatus)
{
    run_result r = replay_interrupted({"--json", "-"}, -1, k_live, "\"n\":4,", SIGTERM);
    EXPECT_EQ(exit_code(r.status), 128 + SIGTERM);
    expect_golden(r.out, __FILE__, "pipe_json_sigterm.golden");
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
    /* The pause counts from when the program has read the first chunk (it
     * starts slowly in a sanitizer build). */
    int unread = 1;
    EXPECT_TRUE(poll_until([&] { return ioctl(fds[1], FIONREAD, &unread) == 0 && unread == 0; }, k_wait_ms));
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
    expect_golden(out, __FILE__, "progress_summary.golden");
}

}  // namespace
