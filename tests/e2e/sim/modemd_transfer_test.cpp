/* EFS write transfers of the extension service against writers that die
 * or give up half-way: a live transfer survives them all, and what they
 * leave behind goes with their connections. */
#include <algorithm>

#include "../../unit/sim/sim_test_util.h"
#include "raw_modemd.h"

namespace {

constexpr uint32_t k_live_size = 102400;
constexpr uint32_t k_chunk = TOLVEK_EFS_WRITE_CHUNK_MAX;
constexpr uint32_t k_live_chunks = (k_live_size + k_chunk - 1) / k_chunk;
/* The whole live file as the control shows it. */
const std::string live_hex = hex_of(k_live_size, [](size_t i) { return i / k_chunk; });

class TransferTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start() && live.attach()); }
    /* Chunk `n` of the live transfer (the first opens it); its result. */
    int32_t live_chunk(uint32_t n)
    {
        uint32_t off = n * k_chunk;
        uint8_t instance = n == 0 ? uint8_t(TOLVEK_EFS_NEW_INSTANCE) : live_id;
        int32_t rc = live.efs_write("/live/file", instance, k_live_size, off, std::min(k_chunk, k_live_size - off),
                                    uint8_t(n));
        if (n == 0 && rc >= 0) live_id = uint8_t(rc);
        return rc;
    }
    sim_instance sim;
    raw_ext_client live;
    uint8_t live_id = 0;
};

TEST_F(TransferTest, ALiveTransferSurvivesHundredsOfKilledWriters)
{
    constexpr int k_writers = 300; /* more than there are instance ids */
    int killed = 0;
    for (uint32_t n = 0; n < k_live_chunks; n++) {
        ASSERT_EQ(live_chunk(n), int32_t(live_id)) << "chunk " << n;
        for (int i = 0; i < 2 && killed < k_writers; i++, killed++) {
            /* Opens a transfer, then is killed: its connection closes
             * without another word. */
            raw_ext_client w;
            ASSERT_TRUE(w.attach());
            ASSERT_GE(w.efs_write("/dead/" + std::to_string(killed), TOLVEK_EFS_NEW_INSTANCE, 1000, 0, k_chunk, 1), 0)
                << "writer " << killed;
        }
        if (n == k_live_chunks / 2) {
            EXPECT_EQ(sim.ctl_ok("ext transfers"), "1") << "only the live one is open";
        }
    }
    EXPECT_EQ(sim.ctl_ok("efs get /live/file"), live_hex);
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
    EXPECT_EQ(sim.ctl("efs get /dead/0"), "error -2") << "no abandoned file was committed";
}

TEST_F(TransferTest, EvictionNeverTakesATransferThatMovedRecently)
{
    ASSERT_EQ(live_chunk(0), 0);
    /* A client that stays connected and opens transfers it never
     * finishes: it gets the other ids, then is refused. */
    raw_ext_client hoarder;
    ASSERT_TRUE(hoarder.attach());
    for (int i = 1; i <= TOLVEK_EFS_INSTANCE_MAX; i++) {
        ASSERT_EQ(hoarder.efs_write("/hoard/" + std::to_string(i), TOLVEK_EFS_NEW_INSTANCE, 1000, 0, 10, 1), i);
    }
    EXPECT_EQ(hoarder.efs_write("/hoard/more", TOLVEK_EFS_NEW_INSTANCE, 1000, 0, 10, 1), -24);
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "255");
    /* Another connection cannot write into the live transfer by quoting
     * its id. */
    EXPECT_EQ(hoarder.efs_write("/live/file", live_id, k_live_size, k_chunk, k_chunk, 1), -9);
    for (uint32_t n = 1; n < k_live_chunks; n++) ASSERT_EQ(live_chunk(n), int32_t(live_id)) << "chunk " << n;
    EXPECT_EQ(sim.ctl_ok("efs get /live/file"), live_hex);
    hoarder.close_now();
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0") << "the hoarder's transfers went with it";
}

TEST_F(TransferTest, AnIdleTransferExpiresWhileItsClientStaysConnected)
{
    sim.ctl_ok("ext transfer-idle 200");
    ASSERT_EQ(live_chunk(0), 0);
    ASSERT_EQ(live_chunk(1), 0);
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "1");
    EXPECT_TRUE(wait_until([&] { return sim.ctl_ok("ext transfers") == "0"; })) << "dropped without a request";
    EXPECT_EQ(live_chunk(2), -9) << "the expired id is no longer open";
    EXPECT_EQ(sim.ctl("efs get /live/file"), "error -2");
}

}  // namespace
