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

std::string run_log_or_event(int type, uint16_t code)
{
    char hex[16];
    snprintf(hex, sizeof(hex), "0x%x", code);
    std::string type_word = std::to_string(type);
    char prog[] = "rlk", option[] = "7";
    char *argv[] = {prog, option, &type_word[0], hex, nullptr};
    int result = 0;
    std::string out = captured_stdout([&] { result = tolvek_test_modem_stats_log_or_event(4, argv); });
    EXPECT_EQ(result, 1);
    return out;
}

TEST(ModemStatsGroupTest, SamplePayloadThroughEveryRegisteredParser)
{
    const struct {
        int type;
        modem_stats_parser_table table;
        const char *header;
    } kinds[] = {
        {0, modem_stats_log_parser_table(), "modem_stats_diag_process_log_ex: log_id 0x%x, length 68, sub_id = 0\n"},
        {1, modem_stats_event_parser_table(), "modem_stats_diag_process_event_ex: event_id %d, length 68, sub_id = 0\n"},
    };
    for (const auto &kind : kinds) {
        for (size_t i = 0; i < kind.table.count; i++) {
            uint16_t code = kind.table.rows[i].code;
            SCOPED_TRACE(testing::Message() << "type " << kind.type << " code " << code);
            char expected[160];
            int n = snprintf(expected, sizeof(expected), "length = 68, type = %d, id = %d(0x%x)\n", kind.type, code,
                             code);
            snprintf(expected + n, sizeof(expected) - n, kind.header, code);
            std::string out = run_log_or_event(kind.type, code);
            EXPECT_EQ(out.compare(0, strlen(expected), expected), 0) << out;
        }
    }
}

TEST(ModemStatsGroupTest, MissingIdFails)
{
    char prog[] = "rlk", option[] = "7", type[] = "1";
    char *argv[] = {prog, option, type, nullptr};
    int result = -1;
    std::string out = captured_stdout([&] { result = tolvek_test_modem_stats_log_or_event(3, argv); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(out, "\nnote: Too few parameters, Pls refer to the following cmd:\n");
}

}  // namespace
