/* Option 5's hot-swap test seen through repeated status queries while it
 * runs (the rest of the card and SAR commands are transcripts here). */
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../extension/ext_test_util.h"

namespace {

/* The presence of slot 0 as `rlk 5 1` prints it: 0, 1, or -1 when the
 * answer was not understood. */
int slot0_presence(sim_instance &sim)
{
    std::string out = sim.run_rlk({"5", "1"}).out;
    const std::string head = "data: 27 00 00 00 08 00 00 00 ";
    size_t at = out.find(head);
    std::string v = at == std::string::npos ? "" : out.substr(at + head.size(), 2);
    return v == "01" ? 1 : v == "00" ? 0 : -1;
}

TEST(CmnCard, HotSwapRunSeenThroughRepeatedStatusQueries)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    EXPECT_EQ(sim.ctl("sar state 21").rfind("error", 0), 0u);
    /* Two cycles of pull, 1 s, push, 1 s, with a hot-swap second four rlk
     * runs long (at least 150 ms), so that every step is seen however slow
     * the build makes a run. */
    long long t0 = monotonic_ms();
    sim.run_rlk({"5", "6", "0"});
    ASSERT_EQ(slot0_presence(sim), 1);
    long long second_ms = std::min(5000LL, std::max(150LL, 2 * (monotonic_ms() - t0)));
    sim.ctl_ok("ext card second-ms " + std::to_string(second_ms));
    sim.run_rlk({"5", "6", "1", "2", "1", "1"});
    std::vector<int> seen;
    for (long long deadline = monotonic_ms() + 10 * second_ms; monotonic_ms() < deadline;) {
        int p = slot0_presence(sim);
        if (seen.empty() || seen.back() != p) seen.push_back(p);
        if (has_text(sim.ctl_ok("ext card"), "hotswap=idle")) break;
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 0, 1})) << "pulled, pushed, pulled, pushed";
    EXPECT_TRUE(has_text(sim.ctl_ok("ext card"), "hotswap=idle cycles=2/2"));
}

}  // namespace
