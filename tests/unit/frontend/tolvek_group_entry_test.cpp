/* The checks every option group makes before its sub-command runs, as
 * transcripts of runs compared with golden files: the command line, what
 * it printed (notes and help), its result and the handler calls. */
#include "tolvek_group_entry.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "golden.h"
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

/* "$ words", the output, "=> result, calls n" (and "with other arguments"
 * when the handler did not get main's own). */
std::string transcript(const std::vector<std::string> &words, const std::function<int(int, char **)> &run)
{
    arg_vector args(words);
    g_call = {0, 0, nullptr};
    int result = 0;
    std::string out = capture_stdout([&] { result = run(args.argc(), args.argv()); });
    std::string text = "$";
    for (const std::string &w : words) text += " " + w;
    text += "\n" + out + "=> " + std::to_string(result) + ", calls " + std::to_string(g_call.count);
    if (g_call.count && (g_call.argc != args.argc() || g_call.argv != args.argv())) text += " with other arguments";
    return text + "\n";
}

TEST(ShowHelp, HeadFootAndTheOptionsBlock)
{
    std::string out;
    for (int option : {10, 12, 13, -1, 1000}) {
        out += "option " + std::to_string(option) + ":" + capture_stdout([&] { show_help(option); });
    }
    expect_golden(out, __FILE__, "show_help.golden");
}

/* Option, count, sub-command in that order; then the handler runs. */
TEST(TolvekGroupEntryRun, ChecksInOrderThenRunsTheHandler)
{
    const tolvek_subcmd_entry table[] = {{1, handler_ok}, {7, handler_fails}};
    std::string out;
    for (const std::vector<std::string> &words : std::vector<std::vector<std::string>>{
             {"rlk", "4", "1"},
             {"rlk", "4", "1abc", "x"},
             {"rlk", "4", "7"},
             {"rlk", "5", "1"},
             {"rlk", "5"},
             {"rlk", "x4", "1"},
             {"rlk", "4"},
             {"rlk", "4", "2"},
             {"rlk", "4", "abc"},
             {"rlk", "4", "-1"},
         }) {
        out += transcript(words, [&](int argc, char **argv) {
            return tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, argc, argv, table, 2);
        });
    }
    /* An empty table rejects every sub-command. */
    out += transcript({"rlk", "4", "0"}, [&](int argc, char **argv) {
        return tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, argc, argv, nullptr, 0);
    });
    expect_golden(out, __FILE__, "group_entry_run.golden");
}

TEST(TolvekGroupEntryRunDirect, SkipsTheSubCommandCheck)
{
    const struct {
        std::vector<std::string> words;
        tolvek_subcmd_handler handler;
    } cases[] = {
        {{"rlk", "6", "99", "1"}, handler_ok}, {{"rlk", "6", "x"}, handler_fails}, {{"rlk", "6", "x"}, nullptr},
        {{"rlk", "6"}, handler_ok},           {{"rlk", "4", "x"}, handler_ok},
    };
    std::string out;
    for (const auto &c : cases) {
        out += transcript(c.words, [&](int argc, char **argv) {
            return tolvek_group_entry_run_direct(TOLVEK_OPTION_QMI_SEND, argc, argv, c.handler);
        });
    }
    expect_golden(out, __FILE__, "group_entry_run_direct.golden");
}

/* Each group entry answers a foreign option number with its own. */
TEST(TolvekTestGroups, EachEntryChecksItsOwnOption)
{
    const std::function<int(int, char **)> groups[] = {
        tolvek_test_rf_do,
        tolvek_test_nvefs_do,
        tolvek_test_cmn_do,
        tolvek_test_qmi_send_data_do,
        [](int argc, char **argv) { return static_cast<int>(tolvek_test_modem_stats_do(argc, argv)); },
        tolvek_test_at_cmd_do,
        tolvek_test_qmi_modem_stats_do,
        tolvek_test_mbn_do,
        tolvek_smart_test_do,
    };
    std::string out;
    for (const auto &run : groups) {
        /* The AT group takes exactly one word after the option. */
        out += transcript(&run == &groups[5] ? std::vector<std::string>{"rlk", "0", "AT"}
                                             : std::vector<std::string>{"rlk", "0", "0", "0"},
                          run);
    }
    expect_golden(out, __FILE__, "test_groups.golden");
}

}  // namespace
