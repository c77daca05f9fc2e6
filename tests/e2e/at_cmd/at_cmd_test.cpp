/* Option 8 through the real rlk, writing to the simulator's AT channel:
 * what reaches the channel, the length limit, argument notes, a channel
 * that cannot be written, and the channel answering like a modem. */
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim_fixture.h"

namespace {

const std::string k_help_8 =
    "\n=========== blew: radio_lab_kit(rlk) cmd help =======================================================\n"
    "8: tolvek at command test\n"
    "   rlk 8 atcmd_cxt               /* atcmd_cxt: at command context */\n"
    "                                    the len of atcmd can not > 100\n"
    "=========== above: radio_lab_kit(rlk) cmd help =======================================================\n\n";

/* Longest wait for an answer of the channel. */
const int k_answer_wait_ms = 2000;

class AtCmdTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        device = sim.ctl_ok("at path");
        ASSERT_EQ(device, sim.state_dir() + "/at_channel");
        sim.ctl_ok("at clear");
    }

    rlk_run rlk(const std::vector<std::string> &args, const std::string &dev = "")
    {
        return sim.run_rlk(args, {"RLK_AT_DEVICE=" + (dev.empty() ? device : dev)});
    }
    std::string received() { return sim.ctl_ok("at received"); }

    sim_instance sim;
    std::string device;
};

/* The lines of a successful run; the receiver thread's two lines may come
 * anywhere after the thread is announced. */
void expect_sent(const rlk_run &r, const std::string &word, size_t arg_len, const std::string &device)
{
    const std::string head = "At cmd you input: sscanf(1), len (" + std::to_string(arg_len) + "), " + word +
                             "\nWill create a thread to receive data from serial\n";
    ASSERT_EQ(r.out.compare(0, head.size(), head), 0) << r.out;
    const std::string shell = "at shell cmd: echo \"" + word + "\r\" > " + device +
                              "\necho, ret_sys: 0\nSuccess to send at shell cmd\n";
    std::string rest = r.out.substr(head.size());
    const std::string thread_lines[] = {"The thread to receive data from serial is started\n",
                                        "The at channel is not opened, g_at_serial_fd 0\n"};
    for (const std::string &line : thread_lines) {
        size_t at = rest.find(line);
        ASSERT_NE(at, std::string::npos) << r.out;
        rest.erase(at, line.size());
    }
    EXPECT_EQ(rest, shell) << r.out;
    EXPECT_EQ(r.status, 0);
}

TEST_F(AtCmdTest, CommandReachesTheChannelWithCarriageReturn)
{
    rlk_run r = rlk({"8", "AT+CSQ"});
    expect_sent(r, "AT+CSQ", 6, device);
    EXPECT_EQ(received(), "AT+CSQ\\r\\n");
}

TEST_F(AtCmdTest, OnlyTheFirstWordIsSent)
{
    rlk_run r = rlk({"8", "AT+CFUN=1 extra"});
    expect_sent(r, "AT+CFUN=1", 15, device);
    EXPECT_EQ(received(), "AT+CFUN=1\\r\\n");
}

TEST_F(AtCmdTest, LengthLimitIsOneHundredCharacters)
{
    const std::string hundred = "AT+" + std::string(97, 'A');
    expect_sent(rlk({"8", hundred}), hundred, 100, device);
    EXPECT_EQ(received(), hundred + "\\r\\n");

    sim.ctl_ok("at clear");
    rlk_run r = rlk({"8", hundred + "B"});
    EXPECT_EQ(r.out,
              "\nnote: the second parameters length should <= 100, Pls refer to the following cmd:\n" + k_help_8);
    EXPECT_EQ(received(), "");
}

TEST_F(AtCmdTest, WrongArgumentCountsPrintTheNoteAndHelp)
{
    const std::string note = "\nnote: The number of inputs should be 2, Pls refer to the following cmd:\n";
    for (const std::vector<std::string> &args : {std::vector<std::string>{"8"}, {"8", "AT", "AT"}}) {
        rlk_run r = rlk(args);
        EXPECT_EQ(r.out, note + k_help_8) << args.size();
        EXPECT_EQ(r.status, 0);
    }
    EXPECT_EQ(received(), "");
}

TEST_F(AtCmdTest, UnwritableChannelReportsTheShellStatus)
{
    rlk_run r = rlk({"8", "AT"}, sim.dir() + "/no/such/dir/smd8");
    EXPECT_NE(r.out.find("echo, ret_sys: "), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("echo, ret_sys: 0\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\nFail to send at shell cmd\n"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("Success"), std::string::npos);
    EXPECT_EQ(r.status, 0);
}

/* A process talking to the channel directly, as a terminal program does. */
class AtPort {
public:
    explicit AtPort(const std::string &device) : fd_(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~AtPort()
    {
        if (fd_ >= 0) close(fd_);
    }
    bool ok() const { return fd_ >= 0; }
    void send(const std::string &bytes) { ASSERT_EQ(write(fd_, bytes.data(), bytes.size()), ssize_t(bytes.size())); }
    /* Reads until `until` has arrived or the wait ends. */
    std::string read_until(const std::string &until)
    {
        std::string got;
        long long end = monotonic_ms() + k_answer_wait_ms;
        while (got.find(until) == std::string::npos && monotonic_ms() < end) {
            struct pollfd p = {fd_, POLLIN, 0};
            if (poll(&p, 1, int(end - monotonic_ms())) <= 0) break;
            char buf[256];
            ssize_t n = read(fd_, buf, sizeof(buf));
            if (n <= 0) break;
            got.append(buf, size_t(n));
        }
        return got;
    }

private:
    int fd_;
};

TEST_F(AtCmdTest, ChannelAnswersLikeAModem)
{
    AtPort port(device);
    ASSERT_TRUE(port.ok());
    struct {
        std::string command;
        std::string answer;
    } cases[] = {
        {"AT+CGSN\r", "\r\n355343101234560\r\n\r\nOK\r\n"},
        {"AT+NOPE\r", "\r\nERROR\r\n"},
        {"ATE1\r", "\r\nOK\r\n"},
        {"AT\r", "AT\r\r\nOK\r\n"}, /* echo on */
    };
    for (const auto &c : cases) {
        port.send(c.command);
        EXPECT_EQ(port.read_until(c.answer.substr(c.answer.size() - 4)), c.answer) << c.command;
    }
    /* Bytes split across writes, and a bare newline ending a line. */
    sim.ctl_ok("at clear");
    port.send("ATE0\r");
    port.read_until("OK\r\n");
    port.send("AT+C");
    port.send("GMI\r\n");
    EXPECT_EQ(port.read_until("OK\r\n"), "\r\nRLK\r\n\r\nOK\r\n");
    port.send("AT\n");
    EXPECT_EQ(port.read_until("OK\r\n"), "\r\nOK\r\n");
    EXPECT_EQ(received(), "ATE0\\r\nAT+CGMI\\r\\n\nAT\\n");
    EXPECT_EQ(sim.ctl_ok("at received 1"), "AT\\n");
}

TEST_F(AtCmdTest, OverlongLineIsRefusedAndTheChannelRecovers)
{
    AtPort port(device);
    ASSERT_TRUE(port.ok());
    port.send("AT" + std::string(1500, '1') + "\r");
    EXPECT_EQ(port.read_until("ERROR\r\n"), "\r\nERROR\r\n");
    port.send("AT\r");
    EXPECT_EQ(port.read_until("OK\r\n"), "\r\nOK\r\n");
    std::string rec = received();
    EXPECT_EQ(rec.substr(rec.size() - 4), "AT\\r");
}

}  // namespace
