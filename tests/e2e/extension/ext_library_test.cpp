/* The extension client and the chunked EFS calls where time, a kill or
 * concurrency matters: an interrupted transfer, a reply later than the
 * 3000 ms time-out, a service that appears late, and several processes
 * writing and reading at once (single calls are a transcript here). */
#include <thread>

#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

using ExtLibraryTest = ext_sim_test;

/* An abandoned transfer (its writer killed between chunks) leaves the old
 * file as it was and does not get in the way of later transfers, whose
 * second chunk quotes instance 0, the id the modem gave. */
TEST_F(ExtLibraryTest, KilledWriterChangesNothing)
{
    sim.ctl_ok("efs put /lib/victim aabbcc");
    sim.ctl_ok("delay ext 2 5000");
    probe_run killed = run_probe(sim, {"efs_write", "0", "/lib/victim", "1000", "7"}, 300);
    EXPECT_TRUE(ended_abnormally(killed.run.status));
    sim.ctl_ok("clear-faults");
    EXPECT_EQ(sim.ctl_ok("efs get /lib/victim"), "aabbcc");
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0") << "the killed writer's transfer went with its connection";
    EXPECT_EQ(run_probe(sim, {"efs_write", "0", "/lib/b", "415", "1"}).result, 0);
    EXPECT_EQ(ext_last_data(sim).at(2), 0);
    EXPECT_EQ(sim.ctl_ok("efs get /lib/b").size(), 2u * 415);
}

TEST_F(ExtLibraryTest, ReplyLaterThanTheTimeoutFailsTheRequest)
{
    /* The reply comes long after the 3 s time-out: the request ends at the
     * time-out, well before the reply (the margin absorbs a slow start). */
    sim.ctl_ok("delay ext 2 9000 1");
    long long start = monotonic_ms();
    rlk_run r = rlk("4 1 0 550");
    long long spent = monotonic_ms() - start;
    EXPECT_GE(spent, 3000);
    EXPECT_LT(spent, 8000);
    EXPECT_TRUE(has_text(r.out, "send msg sync failed:-3\ntolvek_extend_qmi_handle_req_cb result:-3\n")) << r.out;
    EXPECT_TRUE(has_syslog(r, "] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result -3, new_result -103"));
    EXPECT_TRUE(has_syslog(r, "] tolvek_nv_read: tolvek_extend_qmi_send_sync fail"));
    EXPECT_TRUE(has_text(r.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-103)));
}

TEST_F(ExtLibraryTest, ServiceAppearingLateEndsTheWait)
{
    sim.ctl_ok("down ext");
    sim.ctl_ok("up ext 300");
    long long start = monotonic_ms();
    rlk_run r = rlk("4 1 0 550");
    EXPECT_GE(monotonic_ms() - start, 300);
    EXPECT_TRUE(has_text(r.out, "TOLVEK_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 "
                                "num_services = 1\nQMI client inited\n"))
        << r.out;
    EXPECT_TRUE(has_text(r.out, "\ndata len(9)\n"));
}

/* rlk processes write and read small files while driver processes move
 * multi-chunk files, all at once; every file holds what its writer wrote. */
TEST_F(ExtLibraryTest, ConcurrentWritersAndReaders)
{
    std::vector<std::string> rlk_out(4);
    std::vector<probe_run> wrote(3), back(3);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < rlk_out.size(); i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/small" + std::to_string(i);
            std::vector<std::string> w = {RLK_BINARY, "4", "5", "0", path};
            for (size_t b = 0; b < 365; b++) w.push_back(std::to_string((b + i) % 256));
            run_process(w, sim.env());
            rlk_out[i] = run_process({RLK_BINARY, "4", "4", "0", path}, sim.env()).out;
        });
    }
    for (size_t i = 0; i < wrote.size(); i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/large" + std::to_string(i);
            wrote[i] = run_probe(sim, {"efs_write", "0", path, "5000", std::to_string(i + 1)});
            back[i] = run_probe(sim, {"efs_read", "0", path, "5000"});
        });
    }
    for (std::thread &t : threads) t.join();

    for (size_t i = 0; i < rlk_out.size(); i++) {
        std::string dump;
        for (size_t b = 0; b < 365; b++) {
            char hex[4];
            snprintf(hex, sizeof(hex), " %02X", unsigned((b + i) % 256));
            dump += hex;
        }
        EXPECT_TRUE(has_text(rlk_out[i], "\ndata len(365)\ndata: " + dump + "\n")) << "client " << i;
    }
    for (size_t i = 0; i < wrote.size(); i++) {
        SCOPED_TRACE(i);
        EXPECT_EQ(wrote[i].result, 0);
        EXPECT_EQ(back[i].result, 0);
        EXPECT_EQ(back[i].len, 5000u);
        EXPECT_EQ(back[i].fnv, wrote[i].fnv);
    }
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
}

}  // namespace
