/* The AT group in-process: the bound of the shell command, and the
 * receiver thread and done flag over repeated runs (these tests also run
 * under ThreadSanitizer). */
#include <stdlib.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../frontend/frontend_test_util.h"
#include "sim_fixture.h"
#include "state_store.h"
#include "tolvek_test_at_cmd.h"
#include "tolvek_test_groups.h"

namespace {

class AtCmdSendTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-at-test-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        dir = tmpl;
        device = dir + "/smd8";
        setenv("RLK_AT_DEVICE", device.c_str(), 1);
    }
    void TearDown() override
    {
        unsetenv("RLK_AT_DEVICE");
        unlink(device.c_str());
        rmdir(dir.c_str());
    }
    std::string written()
    {
        std::vector<uint8_t> data;
        modemd::read_whole_file(device, &data);
        return std::string(data.begin(), data.end());
    }

    std::string dir, device;
};

TEST_F(AtCmdSendTest, ShellCommandIsCutAtItsBuffer)
{
    const std::string long_device = "/nonexistent/" + std::string(600, 'x');
    setenv("RLK_AT_DEVICE", long_device.c_str(), 1);
    std::string out = capture_stdout([] { tolvek_test_at_cmd_send("AT"); });
    const std::string head = "at shell cmd: ";
    ASSERT_EQ(out.compare(0, head.size(), head), 0) << out;
    size_t end = out.find('\n');
    EXPECT_EQ(end - head.size(), size_t(TOLVEK_AT_SHELL_CMD_BUF_LEN - 1));
    EXPECT_NE(out.find("Fail to send at shell cmd\n"), std::string::npos);
}

/* Each run starts the receiver, waits for its flag and clears it, so a
 * second run in the same process waits for its own receiver again. */
TEST_F(AtCmdSendTest, RepeatedRunsEachWaitForTheirReceiver)
{
    const char *words[] = {"AT", "ATI", "AT+CGSN"};
    for (const char *word : words) {
        char prog[] = "rlk", opt[] = "8";
        std::string arg = word;
        char *argv[] = {prog, opt, &arg[0], nullptr};
        int result = -1;
        std::string out = capture_stdout([&] { result = tolvek_test_at_cmd_do(3, argv); });
        EXPECT_EQ(result, 0) << out;
        EXPECT_NE(out.find("The at channel is not opened, g_at_serial_fd 0\n"), std::string::npos) << out;
        EXPECT_NE(out.find("Success to send at shell cmd\n"), std::string::npos) << out;
    }
    /* Each echo replaces the file: the last command is what it holds. */
    EXPECT_EQ(written(), "AT+CGSN\r\n");
}

}  // namespace
