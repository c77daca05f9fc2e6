#include "tolvek_group_entry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "tolvek_help.h"
#include "tolvek_test_groups.h"

namespace {

struct handler_call {
    int count;
    int argc;
    char **argv;
};
handler_call g_call;

/* A sub-command handler that notes its call and returns `result`. */
template <int result>
int handler(int argc, char **argv)
{
    g_call = {g_call.count + 1, argc, argv};
    return result;
}
const tolvek_subcmd_handler handler_ok = handler<0>, handler_fails = handler<-1>;

std::string help_of(int option)
{
    return capture_stdout([&] { show_help(option); });
}

const std::string k_too_few_note = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
const std::string k_second_note = "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";
const std::string k_error_note = "\nnote: Error happen! error_code(-1)\n";
const int k_rejected = TOLVEK_GROUP_ENTRY_REJECTED;

std::string first_note(int option)
{
    return "\nnote: the first parameters should be " + std::to_string(option) +
           ", Pls refer to the following cmd:\n";
}

TEST(ShowHelp, HeadFootAndTheOptionsBlock)
{
    const std::string head =
        "\n=========== blew: radio_lab_kit(rlk) cmd help "
        "=======================================================\n";
    const std::string foot =
        "=========== above: radio_lab_kit(rlk) cmd help "
        "=======================================================\n\n";
    EXPECT_EQ(help_of(10), head + "10: tolvek mbn test\n" + foot);
    for (int option : {12, 13, -1, 1000}) EXPECT_EQ(help_of(option), head + foot) << "option " << option;
}

TEST(TolvekGroupEntryRun, ChecksInOrderThenRunsTheHandler)
{
    const tolvek_subcmd_entry table[] = {{1, handler_ok}, {7, handler_fails}};
    const struct {
        std::vector<std::string> words;
        std::string note; /* empty: no note and no help */
        int result;
        size_t table_len;
    } cases[] = {
        {{"rlk", "4", "1"}, "", 0, 2},
        {{"rlk", "4", "1abc", "x"}, "", 0, 2},
        {{"rlk", "4", "7"}, k_error_note, -1, 2},
        {{"rlk", "5", "1"}, first_note(4), k_rejected, 2},
        {{"rlk", "5"}, first_note(4), k_rejected, 2}, /* option checked before count */
        {{"rlk", "x4", "1"}, first_note(4), k_rejected, 2},
        {{"rlk", "4"}, k_too_few_note, k_rejected, 2},
        {{"rlk", "4", "2"}, k_second_note, k_rejected, 2},
        {{"rlk", "4", "abc"}, k_second_note, k_rejected, 2},
        {{"rlk", "4", "-1"}, k_second_note, k_rejected, 2},
        {{"rlk", "4", "0"}, k_second_note, k_rejected, 0}, /* an empty table rejects every sub-command */
    };
    const std::string help = help_of(TOLVEK_OPTION_NVEFS);
    for (const auto &c : cases) {
        arg_vector args(c.words);
        g_call = {0, 0, nullptr};
        int result = 0;
        std::string out = capture_stdout([&] {
            result = tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, args.argc(), args.argv(),
                                            c.table_len ? table : nullptr, c.table_len);
        });
        std::string label = testing::PrintToString(c.words);
        EXPECT_EQ(out, c.note.empty() ? "" : c.note + help) << label;
        EXPECT_EQ(result, c.result) << label;
        bool called = c.note.empty() || c.note == k_error_note;
        EXPECT_EQ(g_call.count, called ? 1 : 0) << label;
        EXPECT_EQ(g_call.argc, called ? args.argc() : 0) << label;
        EXPECT_EQ(g_call.argv, called ? args.argv() : nullptr) << label;
    }
}

TEST(TolvekGroupEntryRunDirect, SkipsTheSubCommandCheck)
{
    const int option = TOLVEK_OPTION_QMI_SEND;
    const std::string help = help_of(option);
    const struct {
        std::vector<std::string> words;
        tolvek_subcmd_handler handler;
        std::string out;
        int result;
    } cases[] = {
        {{"rlk", "6", "99", "1"}, handler_ok, "", 0},
        {{"rlk", "6", "x"}, handler_fails, k_error_note + help, -1},
        {{"rlk", "6", "x"}, nullptr, "", 0},
        {{"rlk", "6"}, handler_ok, k_too_few_note + help, k_rejected},
        {{"rlk", "4", "x"}, handler_ok, first_note(6) + help, k_rejected},
    };
    for (const auto &c : cases) {
        arg_vector args(c.words);
        int result = 0;
        std::string out = capture_stdout(
            [&] { result = tolvek_group_entry_run_direct(option, args.argc(), args.argv(), c.handler); });
        EXPECT_EQ(out, c.out) << testing::PrintToString(c.words);
        EXPECT_EQ(result, c.result) << testing::PrintToString(c.words);
    }
}

/* Each group entry answers a foreign option number with its own. */
TEST(TolvekTestGroups, EachEntryChecksItsOwnOption)
{
    const struct {
        int option;
        int (*run)(int, char **);
    } groups[] = {
        {TOLVEK_OPTION_RF, tolvek_test_rf_do},
        {TOLVEK_OPTION_NVEFS, tolvek_test_nvefs_do},
        {TOLVEK_OPTION_CMN, tolvek_test_cmn_do},
        {TOLVEK_OPTION_QMI_SEND, tolvek_test_qmi_send_data_do},
        {TOLVEK_OPTION_MODEM_STATS,
         [](int argc, char **argv) { return static_cast<int>(tolvek_test_modem_stats_do(argc, argv)); }},
        {TOLVEK_OPTION_AT_CMD, tolvek_test_at_cmd_do},
        {TOLVEK_OPTION_QMI_MODEM_STATS, tolvek_test_qmi_modem_stats_do},
        {TOLVEK_OPTION_MBN, tolvek_test_mbn_do},
        {TOLVEK_OPTION_SMART_TEST, tolvek_smart_test_do},
    };
    for (const auto &g : groups) {
        /* The AT group takes exactly one word after the option. */
        arg_vector args(g.option == TOLVEK_OPTION_AT_CMD ? std::vector<std::string>{"rlk", "0", "AT"}
                                                          : std::vector<std::string>{"rlk", "0", "0", "0"});
        std::string out = capture_stdout([&] { g.run(args.argc(), args.argv()); });
        EXPECT_EQ(out, first_note(g.option) + help_of(g.option)) << "option " << g.option;
    }
}

}  // namespace
