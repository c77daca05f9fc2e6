/* Option 8 through the real rlk, writing to the simulator's AT channel:
 * what reaches the channel up to the length limit, a channel that cannot
 * be written, and the channel answering like a modem (the argument notes
 * are a transcript). */
#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim_fixture.h"

namespace {

class AtCmdTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        device = sim.ctl_ok("at path");
        ASSERT_EQ(device, sim.state_dir() + "/at_channel");
    }
    sim_instance sim;
    std::string device;
};

/* A run's output without the receiver thread's two lines, which may come
 * anywhere after the thread is announced (each must come then). */
std::string without_thread_lines(std::string out)
{
    size_t after = out.find("Will create a thread to receive data from serial\n");
    for (const char *line : {"The thread to receive data from serial is started\n",
                             "The at channel is not opened, g_at_serial_fd 0\n"}) {
        size_t at = after == std::string::npos ? after : out.find(line, after);
        if (after != std::string::npos && at == std::string::npos) return out + "(missing) " + line;
        if (at != std::string::npos) out.erase(at, strlen(line));
    }
    return out;
}

TEST_F(AtCmdTest, RlkWritesTheFirstWordWithinItsLimits)
{
    const std::string hundred = "AT+" + std::string(97, 'A');
    const std::string bad_dev = sim.dir() + "/no/such/dir/smd8";
    auto sent = [](const std::string &word, size_t len, const std::string &dev, const std::string &end) {
        return "At cmd you input: sscanf(1), len (" + std::to_string(len) + "), " + word +
               "\nWill create a thread to receive data from serial\nat shell cmd: echo \"" + word + "\r\" > " + dev +
               "\necho, ret_sys: " + end + " to send at shell cmd\n";
    };
    const struct {
        std::vector<std::string> args;
        std::string dev, out, received;
    } cases[] = {
        {{"8", "AT+CSQ"}, device, sent("AT+CSQ", 6, device, "0\nSuccess"), "AT+CSQ\\r\\n"},
        {{"8", "AT+CFUN=1 extra"}, device, sent("AT+CFUN=1", 15, device, "0\nSuccess"), "AT+CFUN=1\\r\\n"},
        {{"8", hundred}, device, sent(hundred, 100, device, "0\nSuccess"), hundred + "\\r\\n"},
        /* The shell (dash) exits with 2 when it cannot create the file. */
        {{"8", "AT"}, bad_dev, sent("AT", 2, bad_dev, "512\nFail"), ""},
    };
    for (const auto &c : cases) {
        sim.ctl_ok("at clear");
        rlk_run r = sim.run_rlk(c.args, {"RLK_AT_DEVICE=" + c.dev});
        EXPECT_EQ(without_thread_lines(r.out), c.out) << c.args.back();
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(sim.ctl_ok("at received"), c.received) << c.args.back();
    }
}

/* Writes `bytes` to the channel as a terminal program does, then reads
 * until the last four bytes of `answer` have arrived or two seconds have
 * passed. */
std::string ask(int fd, const std::string &bytes, const std::string &answer)
{
    EXPECT_EQ(write(fd, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    const std::string until = answer.substr(answer.size() < 4 ? 0 : answer.size() - 4);
    std::string got;
    for (long long end = monotonic_ms() + 2000; !until.empty() && got.find(until) == std::string::npos;) {
        struct pollfd p = {fd, POLLIN, 0};
        char buf[256];
        ssize_t n = poll(&p, 1, int(std::max(0LL, end - monotonic_ms()))) > 0 ? read(fd, buf, sizeof(buf)) : 0;
        if (n <= 0) break;
        got.append(buf, size_t(n));
    }
    return got;
}

TEST_F(AtCmdTest, ChannelAnswersLikeAModem)
{
    int fd = open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    /* An overlong line is refused and the channel recovers. */
    EXPECT_EQ(ask(fd, "AT" + std::string(1500, '1') + "\r", "\r\nERROR\r\n"), "\r\nERROR\r\n");
    EXPECT_EQ(ask(fd, "AT\r", "\r\nOK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(sim.ctl_ok("at received 1"), "AT\\r");
    sim.ctl_ok("at clear");
    const struct {
        std::string command, answer;
    } cases[] = {
        {"AT+CGSN\r", "\r\n355343101234560\r\n\r\nOK\r\n"},
        {"AT+NOPE\r", "\r\nERROR\r\n"},
        {"ATE1\r", "\r\nOK\r\n"},
        {"AT\r", "AT\r\r\nOK\r\n"}, /* echo on */
        {"ATE0\r", "ATE0\r\r\nOK\r\n"},
        /* Bytes split across writes, and a bare newline ending a line. */
        {"AT+C", ""},
        {"GMI\r\n", "\r\nRLK\r\n\r\nOK\r\n"},
        {"AT\n", "\r\nOK\r\n"},
    };
    for (const auto &c : cases) EXPECT_EQ(ask(fd, c.command, c.answer), c.answer) << c.command;
    close(fd);
    EXPECT_EQ(sim.ctl_ok("at received"), "AT+CGSN\\r\nAT+NOPE\\r\nATE1\\r\nAT\\r\nATE0\\r\nAT+CGMI\\r\\n\nAT\\n");
}

}  // namespace
