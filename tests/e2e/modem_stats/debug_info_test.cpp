/* `rlk 7 2 3` while a DCI client of this process receives two log records
 * and one event: the framework's listener counters count them (the other
 * masks are a transcript here). */
#include <string>

#include <gtest/gtest.h>

#include "diag_lsm_dci.h"

#include "sim_fixture.h"

namespace {

TEST(DebugInfo, ListenerCountersFollowTheDiagStream)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE);
    int client_id = 0, signal_no = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    ASSERT_EQ(diag_register_dci_client(&client_id, &list, DIAG_PROC_MSM, &signal_no), DIAG_DCI_NO_ERROR);
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag event 0102");
    rlk_run r = sim.run_rlk({"7", "2", "3"});
    EXPECT_TRUE(exited_cleanly(r.status));
    EXPECT_NE(r.out.find("UNPK[size:4], listener_event_call_num = 1\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("UNPK[size:8], listener_log_call_num = 2\n"), std::string::npos) << r.out;
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    Diag_LSM_DeInit();
}

}  // namespace
