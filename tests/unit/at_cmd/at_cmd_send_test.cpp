/* The AT group in-process: the bound of the shell command, and the
 * receiver thread and done flag over repeated runs (these tests also run
 * under ThreadSanitizer). */
#include <unistd.h>

#include "../frontend/frontend_test_util.h"
#include "state_store.h"
#include "tolvek_test_at_cmd.h"
#include "tolvek_test_groups.h"

namespace {

TEST(AtCmdSend, ShellCommandIsCutAtItsBuffer)
{
    setenv("RLK_AT_DEVICE", ("/nonexistent/" + std::string(600, 'x')).c_str(), 1);
    std::string out = capture_stdout([] { tolvek_test_at_cmd_send("AT"); });
    unsetenv("RLK_AT_DEVICE");
    const std::string head = "at shell cmd: ";
    ASSERT_EQ(out.compare(0, head.size(), head), 0) << out;
    EXPECT_EQ(out.find('\n') - head.size(), size_t(TOLVEK_AT_SHELL_CMD_BUF_LEN - 1));
    EXPECT_NE(out.find("Fail to send at shell cmd\n"), std::string::npos);
}

/* Each run starts the receiver, waits for its flag and clears it, so a
 * second run in the same process waits for its own receiver again. */
TEST(AtCmdSend, RepeatedRunsEachWaitForTheirReceiver)
{
    char dir[] = "/tmp/rlk-at-test-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    const std::string device = std::string(dir) + "/smd8";
    setenv("RLK_AT_DEVICE", device.c_str(), 1);
    for (const char *word : {"AT", "ATI", "AT+CGSN"}) {
        arg_vector args({"rlk", "8", word});
        int result = -1;
        std::string out = capture_stdout([&] { result = tolvek_test_at_cmd_do(args.argc(), args.argv()); });
        EXPECT_EQ(result, 0) << out;
        EXPECT_NE(out.find("The at channel is not opened, g_at_serial_fd 0\n"), std::string::npos) << out;
        EXPECT_NE(out.find("Success to send at shell cmd\n"), std::string::npos) << out;
    }
    unsetenv("RLK_AT_DEVICE");
    /* Each echo replaces the file: the last command is what it holds. */
    std::vector<uint8_t> data;
    modemd::read_whole_file(device, &data);
    EXPECT_EQ(std::string(data.begin(), data.end()), "AT+CGSN\r\n");
    unlink(device.c_str());
    rmdir(dir);
}

}  // namespace
