/* The simulated AT port's answers and the IMEI it reads from NV 550. */
#include <gtest/gtest.h>

#include <algorithm>

#include "data_file.h"
#include "at_commands.h"
#include "sim_test_util.h"
#include "state_store.h"

namespace {

TEST(AtCommandsTest, ImeiFromNvItem)
{
    expect_cases(__FILE__, "imei.cases", [](const words &w) { return modemd::at_imei_from_nv(unhex(joined(w))); });
}

/* Answers in order, and without the IMEI item the serial number is an
 * error. */
TEST(AtCommandsTest, AnswersInOrder)
{
    temp_dir dir;
    modemd::state_store store;
    ASSERT_TRUE(store.open(dir.path));
    modemd::at_modem_state state;
    expect_cases(__FILE__, "at_answers.cases", [&](const words &w) {
        std::string line = joined(w);
        std::replace(line.begin(), line.end(), '_', ' ');
        return escaped(modemd::at_answer(line, &state, store));
    });
    EXPECT_FALSE(state.echo);
    ASSERT_EQ(store.efs_delete(modemd::k_at_imei_item), modemd::k_efs_ok);
    EXPECT_EQ(modemd::at_answer("AT+CGSN", &state, store), "\r\nERROR\r\n");
}

}  // namespace
