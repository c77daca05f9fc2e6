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

}  // namespace
