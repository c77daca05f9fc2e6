/* The rlk binary's option dispatch and help, run as a user runs it. */
#include <gtest/gtest.h>
#include <ctype.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "sim_fixture.h"

namespace {

/* The complete help, as the factory scripts see it. */
std::string golden_help()
{
    std::string file = __FILE__;
    std::ifstream in(file.substr(0, file.rfind('/')) + "/help_full.golden", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

/* The help of one option: head line, the option's block, foot line.  Only
 * the header line of a block starts with a digit. */
std::string block_help(const std::string &help, int option)
{
    size_t body = help.find('\n', 1) + 1;
    size_t foot = help.rfind("\n=========== above") + 1;
    size_t from = help.find("\n" + std::to_string(option) + ": ") + 1;
    size_t to = help.find('\n', from) + 1;
    while (to < foot && !isdigit(static_cast<unsigned char>(help[to]))) to = help.find('\n', to) + 1;
    return help.substr(0, body) + help.substr(from, to - from) + help.substr(foot);
}

TEST(RlkCli, OptionDispatchPrintsTheExactHelpAndNotes)
{
    const std::string help = golden_help();
    ASSERT_EQ(help.substr(0, 13), "\n=========== ");
    const std::string too_few = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
    const std::string invalid = "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";
    std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{}, help},         {{"0"}, help},          {{"12"}, help},       {{"abc"}, help},
        {{"-1"}, help},     {{"99", "1"}, help},    {{"1", "0"}, "Not support\n"},
        {{"2", "0"}, "Not support\n"},
        {{"4abc"}, too_few + block_help(help, 4)}, /* the option is read like atoi */
    };
    /* The AT group counts its words its own way. */
    for (int option : {3, 4, 5, 6, 7, 9, 10, 11}) {
        cases.push_back({{std::to_string(option)}, too_few + block_help(help, option)});
    }
    for (const char *sub : {"9", "0", "7", "x"}) cases.push_back({{"4", sub}, invalid + block_help(help, 4)});

    /* The simulator is stopped: none of these may need one. */
    sim_instance none;
    ASSERT_TRUE(none.start());
    none.stop();
    for (const auto &c : cases) {
        rlk_run r = none.run_rlk(c.first);
        std::string label = testing::PrintToString(c.first);
        EXPECT_TRUE(exited_cleanly(r.status)) << label;
        EXPECT_EQ(r.out, c.second) << label;
        EXPECT_EQ(r.err, "") << label;
    }
}

}  // namespace
