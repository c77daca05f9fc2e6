/* rlk-replay on inputs without an end: a character device (a pseudo
 * terminal standing in for a diag serial port) is read until SIGINT and
 * then summarised with status 0; a pipe interrupted by SIGTERM is
 * summarised too but reports the interruption. */
#include <gtest/gtest.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "hdlc.h"
#include "replay_e2e_util.h"

using namespace replay_e2e;

namespace {

constexpr int k_wait_ms = 10000;

/* Frames of two log packets (the second inside a multi-SIM wrapper for the
 * second subscription) and an event report with two records. */
bytes live_frames()
{
    bytes log1 = {0x10, 0, 15, 0, 15, 0, 0x34, 0x12, 1, 0, 0, 0, 0, 0, 0, 0, 0x7E, 0x7D, 0x01};
    bytes log2 = {0x98, 1, 0, 0, 2, 0, 0, 0, 0x10, 0, 14, 0, 14, 0, 0x35, 0x12, 2, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB};
    bytes events = {0x60, 15, 0, 0x46, 0x26, 1, 0, 0, 0, 0, 0, 0, 0, 2, 0x70, 0x86, 0x34, 0x12};
    bytes out;
    for (const bytes *p : {&log1, &log2, &events}) hdlc_encode(p->data(), p->size(), &out);
    return out;
}

bool write_all(int fd, const bytes &data)
{
    size_t at = 0;
    while (at < data.size()) {
        ssize_t n = write(fd, data.data() + at, data.size() - at);
        if (n <= 0) return false;
        at += size_t(n);
    }
    return true;
}

/* A pseudo terminal in raw mode.  The test holds the slave side open, so
 * that bytes written before the program opens it wait there unchanged. */
struct pty {
    int master = -1;
    int slave = -1;
    std::string slave_path;
    ~pty()
    {
        if (slave >= 0) close(slave);
        if (master >= 0) close(master);
    }
};

bool open_pty(pty *p)
{
    p->master = posix_openpt(O_RDWR | O_NOCTTY);
    if (p->master < 0 || grantpt(p->master) != 0 || unlockpt(p->master) != 0) return false;
    p->slave_path = ptsname(p->master);
    p->slave = open(p->slave_path.c_str(), O_RDWR | O_NOCTTY);
    struct termios raw;
    if (p->slave < 0 || tcgetattr(p->slave, &raw) != 0) return false;
    cfmakeraw(&raw);
    return tcsetattr(p->slave, TCSANOW, &raw) == 0;
}

/* What the master side has to read now. */
std::string read_master(int master)
{
    std::string text;
    char buf[4096];
    struct pollfd p = {master, POLLIN, 0};
    while (poll(&p, 1, 0) > 0 && (p.revents & POLLIN)) {
        ssize_t n = read(master, buf, sizeof(buf));
        if (n <= 0) break;
        text.append(buf, size_t(n));
    }
    return text;
}

TEST(ReplayLive, SerialDeviceIsReadUntilInterruptedAndSummarised)
{
    pty tty;
    ASSERT_TRUE(open_pty(&tty));
    int master = tty.master;
    std::string slave_path = tty.slave_path;

    child c = spawn({RLK_REPLAY_BINARY, slave_path}, -1);
    ASSERT_GT(c.pid, 0);
    ASSERT_TRUE(write_all(master, live_frames()));
    std::string out, err;
    /* The output of a live input comes as it is read. */
    EXPECT_TRUE(read_until(c, "#4 ", k_wait_ms, &out)) << out;
    kill(c.pid, SIGINT);
    int status = finish(&c, k_wait_ms, &out, &err);

    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0) << err;
    EXPECT_NE(out.find(" UTC log 0x1234 length 3 sub 0\nmodem_stats_diag_process_log_ex: log_id 0x1234, length 3, "
                       "sub_id = 0\n"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find(" UTC log 0x1235 length 2 sub 1\n"), std::string::npos) << out;
    EXPECT_NE(out.find(" UTC event 1606 length 1 sub 0\n"), std::string::npos) << out;
    EXPECT_NE(out.find(" UTC event 1648 length 0 sub 0 ts16 0x1234\n"), std::string::npos) << out;
    summary_tables t = parse_summary(out);
    ASSERT_TRUE(t.found) << out;
    EXPECT_EQ(t.first_line.substr(0, 36), "summary: 1 input (1 read to the end)") << t.first_line;
    EXPECT_EQ(t.logs, (std::map<uint32_t, uint64_t>{{0x1234, 1}, {0x1235, 1}}));
    EXPECT_EQ(t.events, (std::map<uint32_t, uint64_t>{{1606, 1}, {1648, 1}}));
    EXPECT_TRUE(err.empty()) << err;
}

TEST(ReplayLive, InterruptedPipeIsSummarisedWithTheSignalStatus)
{
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    child c = spawn({RLK_REPLAY_BINARY, "--json", "-"}, fds[0]);
    close(fds[0]);
    ASSERT_GT(c.pid, 0);
    ASSERT_TRUE(write_all(fds[1], live_frames()));
    std::string out, err;
    EXPECT_TRUE(read_until(c, "\"n\":4,", k_wait_ms, &out)) << out;
    kill(c.pid, SIGTERM);
    int status = finish(&c, k_wait_ms, &out, &err);
    close(fds[1]);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM);
    EXPECT_NE(out.find("{\"type\":\"summary\",\"inputs\":1,\"inputs_read\":0,"), std::string::npos) << out;
    EXPECT_EQ(err, "rlk-replay: -: interrupted before its end\n");
}

/* Progress goes to a standard error that is a terminal: a line after a
 * chunk that comes more than 250 ms after the last one, cleared at the
 * end. */
TEST(ReplayLive, ProgressLineOnATerminal)
{
    pty tty;
    ASSERT_TRUE(open_pty(&tty));
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    child c = spawn({RLK_REPLAY_BINARY, "-s", "-"}, fds[0], tty.slave);
    close(fds[0]);
    ASSERT_GT(c.pid, 0);
    bytes frames = live_frames();
    ASSERT_TRUE(write_all(fds[1], frames));
    usleep(300 * 1000); /* just past the interval between progress lines */
    ASSERT_TRUE(write_all(fds[1], frames));
    close(fds[1]);
    std::string out, err;
    int status = finish(&c, k_wait_ms, &out, &err);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
    std::string shown = read_master(tty.master);
    EXPECT_NE(shown.find("\rrlk-replay: -: 0.0 MB, 8 packets\033[K"), std::string::npos) << shown;
    EXPECT_EQ(shown.substr(shown.size() - 4), "\r\033[K") << shown;
    EXPECT_NE(parse_summary(out).first_line.find(", 8 packets"), std::string::npos) << out;
}

}  // namespace
