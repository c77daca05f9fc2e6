/* Option 7 run as a user runs it, without a modem: the 68-byte sample
 * payload under every log code the parsers understand (most refuse the
 * version byte 15, or 0x3000F read as a 32-bit version; 0xB883 accepts it
 * and finds no record) and under every event id, unknown codes, ids above
 * 0xFFFF (their low 16 bits count), and the type and argument errors.
 * option7_logs.golden holds the exact output of every run under its
 * "== rlk 7 ..." line. */
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "process_runner.h"

namespace {

struct golden_run {
    std::vector<std::string> argv;
    std::string out;
};

std::vector<golden_run> golden_runs()
{
    std::string file = __FILE__;
    std::ifstream in(file.substr(0, file.rfind('/')) + "/option7_logs.golden");
    std::vector<golden_run> runs;
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("== rlk ", 0) == 0) {
            std::istringstream words(line.substr(7));
            runs.push_back({{RLK_BINARY}, ""});
            for (std::string w; words >> w;) runs.back().argv.push_back(w);
        } else if (!runs.empty()) {
            runs.back().out += line + "\n";
        }
    }
    return runs;
}

TEST(Option7Logs, SamplePayloadEventsUnknownIdsAndArgumentErrors)
{
    char dir_template[] = "/tmp/rlk_opt7_logs_XXXXXX";
    ASSERT_NE(mkdtemp(dir_template), nullptr);
    const std::string dir = dir_template;
    std::vector<golden_run> runs = golden_runs();
    ASSERT_EQ(runs.size(), 61u) << "34 log codes, 17 event ids, 4 odd ids, 6 errors";
    for (const golden_run &g : runs) {
        std::string command = testing::PrintToString(g.argv);
        run_result r = run_process(g.argv, {"RLK_MODEMD_SOCKET=" + dir + "/modemd.sock",
                                            "RLK_SYSLOG_FILE=" + dir + "/syslog.log",
                                            "RLK_LOGCAT_FILE=" + dir + "/logcat.log"});
        EXPECT_TRUE(exited_cleanly(r.status)) << command;
        EXPECT_EQ(r.out, g.out) << command;
        EXPECT_EQ(r.err, "") << command;
    }
    for (const char *name : {"/syslog.log", "/logcat.log"}) unlink((dir + name).c_str());
    rmdir(dir.c_str());
}

}  // namespace
