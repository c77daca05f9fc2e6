/* The simulator's diag command table driven directly: every answer of a
 * sequence of requests (diag_commands.golden), the clock, and the state
 * the sequence leaves (event reports, LOG_CONFIG masks). */
#include <stdlib.h>
#include <string.h>

#include <gtest/gtest.h>

#include "diag_commands.h"
#include "diag_test_util.h"

namespace {

using namespace diag_test;
using namespace modemd;

TEST(DiagCommands, AnswersToASequenceOfRequestsAndTheStateItLeaves)
{
    char dir[] = "/tmp/rlk-test-diagcmd-XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    state_store store;
    ASSERT_TRUE(store.open(std::string(dir) + "/state"));
    diag_modem_state modem;
    modem.store = &store;
    auto ask = [&](const bytes &req) {
        bytes rsp;
        diag_answer_command(modem, req.data(), req.size(), &rsp);
        return rsp;
    };
    expect_transcript(__FILE__, "diag_commands.golden", [&](const bytes &req) { return bytes_text(ask(req)); });

    bytes ts = ask({k_diag_cmd_timestamp});
    ASSERT_EQ(ts.size(), 9u);
    uint64_t t = 0;
    memcpy(&t, ts.data() + 1, 8);
    EXPECT_GT(t >> 16, 0u) << "1.25 ms units since 1980";

    EXPECT_TRUE(diag_log_enabled(modem, 0xB009));
    EXPECT_FALSE(diag_log_enabled(modem, 0xB008) || diag_log_enabled(modem, 0x1009));
    EXPECT_TRUE(modem.event_report_on);
    EXPECT_EQ(ask({0x60, 0x00}), (bytes{0x60, 0x00, 0x00}));
    EXPECT_FALSE(modem.event_report_on);
    EXPECT_EQ(system((std::string("rm -rf '") + dir + "'").c_str()), 0);
}

}  // namespace
