/* The option-7 sample path in process, for every registered parser: under
 * the sanitizer build this is where a parser's memory faults on the sample
 * bytes show up first. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../modem_stats_logs/log_test_util.h"
#include "golden.h"
#include "modem_stats_dispatch.h"
#include "modem_stats_event_parsers.h"
#include "tolvek_modem_stats_group.h"

using log_test::captured_stdout;

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

/* modem_stats_group.golden: what each registered parser, found by its
 * code, prints for the sample bytes, from a not-supported count and a kept
 * LTE RRC state of 0. */
TEST(ModemStatsGroupTest, SamplePayloadThroughEveryRegisteredParser)
{
    std::string text;
    for (int type : {0, 1}) {
        modem_stats_parser_table table = type ? modem_stats_event_parser_table() : modem_stats_log_parser_table();
        for (size_t i = 0; i < table.count; i++) {
            g_pk_version_not_support_num = 0;
            g_lte_rrc_state_last = 0;
            text += run_option({std::to_string(type), log_test::fmt("0x%x", table.rows[i].code)}, 1);
        }
    }
    expect_golden(text, __FILE__, "modem_stats_group.golden");
}

TEST(ModemStatsGroupTest, MissingIdFails)
{
    EXPECT_EQ(run_option({"1"}, 0), "\nnote: Too few parameters, Pls refer to the following cmd:\n");
}

}  // namespace
