/* The option-7 sample path in process, for every registered parser: under
 * the sanitizer build this is where a parser's memory faults on the sample
 * bytes show up first. */
#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "modem_stats_dispatch.h"
#include "stats_test_util.h"
#include "tolvek_modem_stats_group.h"

using stats_test::captured_stdout;

namespace {

/* Runs option 7 with `args` after "rlk 7"; returns its result and output. */
std::string run_option(std::vector<std::string> args, int expected_result)
{
    args.insert(args.begin(), {"rlk", "7"});
    std::vector<char *> argv;
    for (std::string &a : args) argv.push_back(&a[0]);
    argv.push_back(nullptr);
    int result = -1;
    std::string out = captured_stdout(
        [&] { result = tolvek_test_modem_stats_log_or_event(static_cast<int>(args.size()), argv.data()); });
    EXPECT_EQ(result, expected_result);
    return out;
}

TEST(ModemStatsGroupTest, SamplePayloadThroughEveryRegisteredParser)
{
    for (int type : {0, 1}) {
        modem_stats_parser_table table = type ? modem_stats_event_parser_table() : modem_stats_log_parser_table();
        const char *header = type ? "modem_stats_diag_process_event_ex: event_id %d, length 68, sub_id = 0\n"
                                  : "modem_stats_diag_process_log_ex: log_id 0x%x, length 68, sub_id = 0\n";
        for (size_t i = 0; i < table.count; i++) {
            uint16_t code = table.rows[i].code;
            char hex[8], expected[160];
            snprintf(hex, sizeof(hex), "0x%x", code);
            int n = snprintf(expected, sizeof(expected), "length = 68, type = %d, id = %d(%s)\n", type, code, hex);
            snprintf(expected + n, sizeof(expected) - n, header, code);
            std::string out = run_option({std::to_string(type), hex}, 1);
            EXPECT_EQ(out.substr(0, strlen(expected)), expected);
        }
    }
}

TEST(ModemStatsGroupTest, MissingIdFails)
{
    EXPECT_EQ(run_option({"1"}, 0), "\nnote: Too few parameters, Pls refer to the following cmd:\n");
}

}  // namespace
