/* Option 7's sample payload through every log code, run as a user runs
 * rlk: what each parser really does with the 68 sample bytes (most refuse
 * the version byte 15, or 0x3000F read as a 32-bit version; 0xB883 accepts
 * it and finds no record).  The expected output of every run is in
 * option7_logs.golden, each run under its "== rlk 7 0 <code>" line. */
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "process_runner.h"

namespace {

/* The golden runs by command line. */
std::map<std::string, std::string> golden_runs(std::vector<std::string> *order)
{
    std::string file = __FILE__;
    std::ifstream in(file.substr(0, file.rfind('/')) + "/option7_logs.golden");
    std::map<std::string, std::string> runs;
    std::string line, current;
    while (std::getline(in, line)) {
        if (line.rfind("== ", 0) == 0) {
            current = line.substr(3);
            order->push_back(current);
            runs[current];
            continue;
        }
        runs[current] += line + "\n";
    }
    return runs;
}

class Option7Logs : public testing::Test {
protected:
    void SetUp() override
    {
        char dir_template[] = "/tmp/rlk_opt7_logs_XXXXXX";
        ASSERT_NE(mkdtemp(dir_template), nullptr);
        dir_ = dir_template;
    }
    void TearDown() override
    {
        for (const char *name : {"syslog.log", "logcat.log"}) unlink((dir_ + "/" + name).c_str());
        rmdir(dir_.c_str());
    }
    run_result rlk(const std::string &code)
    {
        return run_process({RLK_BINARY, "7", "0", code},
                           {"RLK_SYSLOG_FILE=" + dir_ + "/syslog.log", "RLK_LOGCAT_FILE=" + dir_ + "/logcat.log"});
    }
    std::string dir_;
};

TEST_F(Option7Logs, SamplePayloadThroughEveryLogCode)
{
    std::vector<std::string> order;
    std::map<std::string, std::string> runs = golden_runs(&order);
    ASSERT_EQ(order.size(), 34u) << "one run per registered log code";
    for (const std::string &command : order) {
        std::string code = command.substr(command.rfind(' ') + 1);
        run_result r = rlk(code);
        EXPECT_TRUE(exited_cleanly(r.status)) << command << "\n" << r.err;
        EXPECT_EQ(r.out, runs[command]) << command;
    }
}

}  // namespace
