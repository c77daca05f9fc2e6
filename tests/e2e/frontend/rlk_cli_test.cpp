/* The rlk binary's option dispatch and help, run as a user runs it. */
#include <gtest/gtest.h>
#include <ctype.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "process_runner.h"

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

/* The full help cut into head line, blocks by option and foot line.  Only
 * the header line of a block starts with a digit. */
struct help_parts {
    std::string head;
    std::map<int, std::string> blocks;
    std::string foot;
};

help_parts split_help(const std::string &help)
{
    help_parts parts;
    std::istringstream in(help);
    std::string line;
    int block = 0;
    std::getline(in, line); /* the empty line before the head */
    parts.head = line + "\n";
    std::getline(in, line);
    parts.head += line + "\n";
    while (std::getline(in, line)) {
        if (line.rfind("===========", 0) == 0) {
            parts.foot = line + "\n";
            break;
        }
        if (!line.empty() && isdigit(static_cast<unsigned char>(line[0]))) {
            block = atoi(line.c_str());
        }
        parts.blocks[block] += line + "\n";
    }
    std::string rest((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    parts.foot += rest;
    return parts;
}

class RlkCli : public testing::Test {
protected:
    void SetUp() override
    {
        char dir_template[] = "/tmp/rlk_cli_XXXXXX";
        ASSERT_NE(mkdtemp(dir_template), nullptr);
        dir_ = dir_template;
        help_ = golden_help();
        ASSERT_FALSE(help_.empty());
        parts_ = split_help(help_);
    }

    void TearDown() override
    {
        for (const char *name : {"syslog.log", "logcat.log"}) {
            unlink((dir_ + "/" + name).c_str());
        }
        rmdir(dir_.c_str());
    }

    run_result rlk(const std::vector<std::string> &args)
    {
        std::vector<std::string> argv = {RLK_BINARY};
        argv.insert(argv.end(), args.begin(), args.end());
        return run_process(argv, {"RLK_MODEMD_SOCKET=" + dir_ + "/modemd.sock",
                                  "RLK_SYSLOG_FILE=" + dir_ + "/syslog.log",
                                  "RLK_LOGCAT_FILE=" + dir_ + "/logcat.log"});
    }

    std::string block_help(int option) const
    {
        return parts_.head + parts_.blocks.at(option) + parts_.foot;
    }

    std::string dir_;
    std::string help_;
    help_parts parts_;
};

TEST_F(RlkCli, UnknownOrMissingOptionPrintsCompleteHelp)
{
    const std::vector<std::vector<std::string>> cases = {{}, {"0"}, {"12"}, {"abc"}, {"-1"}, {"99", "1"}};
    for (const auto &args : cases) {
        run_result r = rlk(args);
        std::string label = testing::PrintToString(args);
        EXPECT_TRUE(exited_cleanly(r.status)) << label;
        EXPECT_EQ(r.out, help_) << label;
        EXPECT_EQ(r.err, "") << label;
    }
}

TEST_F(RlkCli, OptionsOneAndTwoAreNotSupported)
{
    for (const char *option : {"1", "2"}) {
        run_result r = rlk({option, "0"});
        EXPECT_TRUE(exited_cleanly(r.status)) << option;
        EXPECT_EQ(r.out, "Not support\n") << option;
    }
}

TEST_F(RlkCli, GroupWithoutSubCommandNotesTooFewAndShowsItsBlock)
{
    /* The AT group counts its words its own way. */
    for (int option : {3, 4, 5, 6, 7, 9, 10, 11}) {
        run_result r = rlk({std::to_string(option)});
        EXPECT_TRUE(exited_cleanly(r.status)) << option;
        EXPECT_EQ(r.out, "\nnote: Too few parameters, Pls refer to the following cmd:\n" +
                             block_help(option))
            << option;
    }
}

TEST_F(RlkCli, OptionIsReadLikeAtoi)
{
    run_result r = rlk({"4abc"});
    EXPECT_EQ(r.out, "\nnote: Too few parameters, Pls refer to the following cmd:\n" + block_help(4));
}

TEST_F(RlkCli, InvalidSubCommandNotesItAndShowsTheBlock)
{
    for (const char *sub : {"9", "0", "7", "x"}) {
        run_result r = rlk({"4", sub});
        EXPECT_TRUE(exited_cleanly(r.status)) << sub;
        EXPECT_EQ(r.out, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n" +
                             block_help(4))
            << sub;
    }
}

}  // namespace
