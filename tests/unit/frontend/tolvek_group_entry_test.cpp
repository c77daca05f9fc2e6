#include "tolvek_group_entry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "tolvek_help.h"
#include "tolvek_test_groups.h"

namespace {

const int k_option = TOLVEK_OPTION_NVEFS;

struct handler_call {
    int count;
    int argc;
    char **argv;
};
handler_call g_call;

int handler_ok(int argc, char **argv)
{
    g_call = {g_call.count + 1, argc, argv};
    return 0;
}

int handler_fails(int argc, char **argv)
{
    g_call = {g_call.count + 1, argc, argv};
    return -1;
}

const tolvek_subcmd_entry k_table[] = {
    {1, handler_ok},
    {7, handler_fails},
};

/* Writable argument vector terminated by a null pointer, as main gets it. */
struct arg_vector {
    explicit arg_vector(std::vector<std::string> words) : words_(std::move(words))
    {
        for (std::string &w : words_) ptrs_.push_back(&w[0]);
        ptrs_.push_back(nullptr);
    }
    int argc() const { return static_cast<int>(words_.size()); }
    char **argv() { return ptrs_.data(); }

private:
    std::vector<std::string> words_;
    std::vector<char *> ptrs_;
};

std::string help_of(int option)
{
    return capture_stdout([&] { show_help(option); });
}

const std::string k_first_note =
    "\nnote: the first parameters should be 4, Pls refer to the following cmd:\n";
const std::string k_too_few_note = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
const std::string k_second_note =
    "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";

struct entry_case {
    std::vector<std::string> words;
    std::string expected_note; /* empty: no note and no help */
    int expected_result;
    int expected_calls;
};

TEST(TolvekGroupEntryRun, ChecksInOrderThenRunsTheHandler)
{
    const int rejected = TOLVEK_GROUP_ENTRY_REJECTED;
    const entry_case cases[] = {
        {{"rlk", "4", "1"}, "", 0, 1},
        {{"rlk", "4", "1abc", "x"}, "", 0, 1},
        {{"rlk", "4", "7"}, "\nnote: Error happen! error_code(-1)\n", -1, 1},
        {{"rlk", "5", "1"}, k_first_note, rejected, 0},
        {{"rlk", "5"}, k_first_note, rejected, 0}, /* option checked before count */
        {{"rlk", "x4", "1"}, k_first_note, rejected, 0},
        {{"rlk", "4"}, k_too_few_note, rejected, 0},
        {{"rlk", "4", "2"}, k_second_note, rejected, 0},
        {{"rlk", "4", "abc"}, k_second_note, rejected, 0},
        {{"rlk", "4", "-1"}, k_second_note, rejected, 0},
    };
    const std::string help = help_of(k_option);
    for (const entry_case &c : cases) {
        arg_vector args(c.words);
        g_call = {0, 0, nullptr};
        int result = 0;
        std::string out = capture_stdout([&] {
            result = tolvek_group_entry_run(k_option, args.argc(), args.argv(), k_table,
                                            sizeof(k_table) / sizeof(k_table[0]));
        });
        std::string expected = c.expected_note.empty() ? "" : c.expected_note + help;
        std::string label = testing::PrintToString(c.words);
        EXPECT_EQ(out, expected) << label;
        EXPECT_EQ(result, c.expected_result) << label;
        ASSERT_EQ(g_call.count, c.expected_calls) << label;
        if (c.expected_calls > 0) {
            EXPECT_EQ(g_call.argc, args.argc()) << label;
            EXPECT_EQ(g_call.argv, args.argv()) << label;
        }
    }
}

TEST(TolvekGroupEntryRun, EmptyTableRejectsEverySubCommand)
{
    arg_vector args({"rlk", "4", "0"});
    std::string out = capture_stdout(
        [&] { tolvek_group_entry_run(k_option, args.argc(), args.argv(), nullptr, 0); });
    EXPECT_EQ(out, k_second_note + help_of(k_option));
}

TEST(TolvekGroupEntryRunDirect, SkipsTheSubCommandCheck)
{
    const int option = TOLVEK_OPTION_QMI_SEND;
    const std::string help = help_of(option);
    const struct {
        std::vector<std::string> words;
        tolvek_subcmd_handler handler;
        std::string expected_out;
        int expected_result;
    } cases[] = {
        {{"rlk", "6", "99", "1"}, handler_ok, "", 0},
        {{"rlk", "6", "x"}, handler_fails, "\nnote: Error happen! error_code(-1)\n" + help, -1},
        {{"rlk", "6", "x"}, nullptr, "", 0},
        {{"rlk", "6"}, handler_ok, k_too_few_note + help, TOLVEK_GROUP_ENTRY_REJECTED},
        {{"rlk", "4", "x"},
         handler_ok,
         "\nnote: the first parameters should be 6, Pls refer to the following cmd:\n" + help,
         TOLVEK_GROUP_ENTRY_REJECTED},
    };
    for (const auto &c : cases) {
        arg_vector args(c.words);
        int result = 0;
        std::string out = capture_stdout([&] {
            result = tolvek_group_entry_run_direct(option, args.argc(), args.argv(), c.handler);
        });
        EXPECT_EQ(out, c.expected_out) << testing::PrintToString(c.words);
        EXPECT_EQ(result, c.expected_result) << testing::PrintToString(c.words);
    }
}

/* Each group entry answers a foreign option number with its own. */
TEST(TolvekTestGroups, EachEntryChecksItsOwnOption)
{
    /* The AT group takes exactly one word after the option. */
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
        arg_vector args(g.option == TOLVEK_OPTION_AT_CMD
                            ? std::vector<std::string>{"rlk", "0", "AT"}
                            : std::vector<std::string>{"rlk", "0", "0", "0"});
        std::string out = capture_stdout([&] { g.run(args.argc(), args.argv()); });
        EXPECT_EQ(out, "\nnote: the first parameters should be " + std::to_string(g.option) +
                           ", Pls refer to the following cmd:\n" + help_of(g.option))
            << "option " << g.option;
    }
}

}  // namespace
