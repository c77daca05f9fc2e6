#include "tolvek_help.h"

#include <gtest/gtest.h>

#include <string>

#include "frontend_test_util.h"

namespace {

const std::string k_head =
    "\n=========== blew: radio_lab_kit(rlk) cmd help "
    "=======================================================\n";
const std::string k_foot =
    "=========== above: radio_lab_kit(rlk) cmd help "
    "=======================================================\n\n";

std::string help_of(int option)
{
    return capture_stdout([&] { show_help(option); });
}

TEST(ShowHelp, HeaderOnlyBlockPrintsItsNumber)
{
    EXPECT_EQ(help_of(10), k_head + "10: tolvek mbn test\n" + k_foot);
}

TEST(ShowHelp, OptionWithoutBlockPrintsOnlyHeadAndFoot)
{
    for (int option : {12, 13, -1, 1000}) {
        EXPECT_EQ(help_of(option), k_head + k_foot) << "option " << option;
    }
}

TEST(ShowHelp, SubCommandRowsCarryOptionAndNumber)
{
    EXPECT_EQ(help_of(2), k_head +
                              "2: imei option cmd\n"
                              "   rlk 2 0       /* imei_protect disable */\n"
                              "   rlk 2 1       /* imei_protect start */\n" +
                              k_foot);
    std::string smart = help_of(11);
    EXPECT_NE(smart.find("   rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */\n"),
              std::string::npos);
}

TEST(ShowHelp, FullHelpIsEveryBlockInOrder)
{
    std::string expected = k_head;
    for (int option = 1; option <= 11; ++option) {
        std::string one = help_of(option);
        expected += one.substr(k_head.size(), one.size() - k_head.size() - k_foot.size());
    }
    EXPECT_EQ(help_of(TOLVEK_HELP_ALL), expected + k_foot);
}

}  // namespace
