/* The checks every option group makes before its sub-command runs: the
 * runs of group_entry_runs.txt as one transcript (the command line, what
 * it printed, its result and the handler calls), compared with a golden
 * file. */
#include "tolvek_group_entry.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "../replay/table_file.h"
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

TEST(TolvekGroupEntry, OptionCountAndSubCommandAreCheckedBeforeTheHandlerRuns)
{
    const tolvek_subcmd_entry table[] = {{1, handler<0>}, {7, handler<-1>}};
    const std::map<std::string, tolvek_subcmd_handler> direct = {
        {"direct-ok", handler<0>}, {"direct-fails", handler<-1>}, {"direct-none", nullptr}};
    const std::map<int, std::function<int(int, char **)>> groups = {
        {TOLVEK_OPTION_RF, tolvek_test_rf_do},
        {TOLVEK_OPTION_NVEFS, tolvek_test_nvefs_do},
        {TOLVEK_OPTION_CMN, tolvek_test_cmn_do},
        {TOLVEK_OPTION_QMI_SEND, tolvek_test_qmi_send_data_do},
        {TOLVEK_OPTION_MODEM_STATS, [](int argc, char **argv) { return int(tolvek_test_modem_stats_do(argc, argv)); }},
        {TOLVEK_OPTION_AT_CMD, tolvek_test_at_cmd_do},
        {TOLVEK_OPTION_QMI_MODEM_STATS, tolvek_test_qmi_modem_stats_do},
        {TOLVEK_OPTION_MBN, tolvek_test_mbn_do},
        {TOLVEK_OPTION_SMART_TEST, tolvek_smart_test_do},
    };
    std::string out;
    for (words row : data_rows(__FILE__, "group_entry_runs.txt")) {
        const std::string what = row[0];
        row.erase(row.begin());
        if (what == "help") {
            out += "help " + row[0] + ":" + capture_stdout([&] { show_help(stoi(row[0])); });
            continue;
        }
        const int option = what == "group" ? stoi(row[0]) : 0;
        if (what == "group") row.erase(row.begin());
        out += what + " " + transcript(row, [&](int argc, char **argv) {
                   if (what == "group") return groups.at(option)(argc, argv);
                   if (what == "run" || what == "run-empty") {
                       bool empty = what == "run-empty";
                       return tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, argc, argv, empty ? nullptr : table,
                                                     empty ? 0 : 2);
                   }
                   return tolvek_group_entry_run_direct(TOLVEK_OPTION_QMI_SEND, argc, argv, direct.at(what));
               });
    }
    expect_golden(out, __FILE__, "group_entry_runs.golden");
}

}  // namespace
