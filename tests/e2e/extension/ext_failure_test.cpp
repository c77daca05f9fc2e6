/* The extension client's failure paths and concurrent clients, through the
 * real rlk against a private simulator: a reply later than the 3000 ms
 * time-out, a service that appears late, framework errors, and several
 * processes writing and reading at once. */
#include <thread>

#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

class ExtFailureTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    sim_instance sim;
};

TEST_F(ExtFailureTest, ReplyLaterThanTheTimeoutFailsTheRequest)
{
    /* The reply comes long after the 3 s time-out: the request ends at the
     * time-out, well before the reply (the margin absorbs a slow start). */
    sim.ctl_ok("delay ext 2 9000 1");
    long long start = monotonic_ms();
    rlk_run r = sim.run_rlk({"4", "1", "0", "550"});
    long long spent = monotonic_ms() - start;
    EXPECT_GE(spent, 3000);
    EXPECT_LT(spent, 8000);
    EXPECT_TRUE(has_text(r.out, "send msg sync failed:-3\ntolvek_extend_qmi_handle_req_cb result:-3\n")) << r.out;
    EXPECT_TRUE(has_syslog(r, "] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result -3, new_result -103"));
    EXPECT_TRUE(has_syslog(r, "] tolvek_nv_read: tolvek_extend_qmi_send_sync fail"));
    EXPECT_TRUE(has_text(r.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-103)));
}

TEST_F(ExtFailureTest, ServiceAppearingLateEndsTheWait)
{
    sim.ctl_ok("down ext");
    sim.ctl_ok("up ext 300");
    long long start = monotonic_ms();
    rlk_run r = sim.run_rlk({"4", "1", "0", "550"});
    EXPECT_GE(monotonic_ms() - start, 300);
    EXPECT_TRUE(has_text(r.out, "TOLVEK_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                                "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 "
                                "num_services = 1\nQMI client inited\n"))
        << r.out;
    EXPECT_TRUE(has_text(r.out, "\ndata len(9)\n"));
}

TEST_F(ExtFailureTest, FrameworkErrorIsMappedOnlyForNvAndEfs)
{
    sim.ctl_ok("error ext 2 9 1");
    rlk_run nv = sim.run_rlk({"4", "1", "0", "550"});
    EXPECT_TRUE(has_text(nv.out, "9 QMI service framework error. Check client\n")) << nv.out;
    EXPECT_TRUE(has_text(nv.out, error_note(-103)));

    sim.ctl_ok("error ext 2 9 1");
    rlk_run set = sim.run_rlk({"3", "0", "1"});
    EXPECT_TRUE(has_text(set.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_COMMON\n" + error_note(-3))) << set.out;
}

/* rlk processes write and read small files while driver processes move
 * multi-chunk files, all at once; every file holds what its writer wrote. */
TEST_F(ExtFailureTest, ConcurrentWritersAndReaders)
{
    constexpr int k_rlk_clients = 4;
    constexpr int k_chunked_clients = 3;
    std::vector<std::string> rlk_out(k_rlk_clients);
    std::vector<probe_run> wrote(k_chunked_clients), back(k_chunked_clients);
    std::vector<std::thread> threads;
    for (int i = 0; i < k_rlk_clients; i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/small" + std::to_string(i);
            std::vector<std::string> w = {RLK_BINARY, "4", "5", "0", path};
            for (int b = 0; b < 365; b++) w.push_back(std::to_string((b + i) % 256));
            run_process(w, sim.env());
            rlk_out[size_t(i)] = run_process({RLK_BINARY, "4", "4", "0", path}, sim.env()).out;
        });
    }
    for (int i = 0; i < k_chunked_clients; i++) {
        threads.emplace_back([&, i] {
            std::string path = "/conc/large" + std::to_string(i);
            wrote[size_t(i)] = run_probe(sim, {"efs_write", "0", path, "5000", std::to_string(i + 1)});
            back[size_t(i)] = run_probe(sim, {"efs_read", "0", path, "5000"});
        });
    }
    for (std::thread &t : threads) t.join();

    for (int i = 0; i < k_rlk_clients; i++) {
        std::string dump;
        for (int b = 0; b < 365; b++) {
            char hex[4];
            snprintf(hex, sizeof(hex), " %02X", (b + i) % 256);
            dump += hex;
        }
        EXPECT_TRUE(has_text(rlk_out[size_t(i)], "\ndata len(365)\ndata: " + dump + "\n")) << "client " << i;
    }
    for (int i = 0; i < k_chunked_clients; i++) {
        EXPECT_EQ(wrote[size_t(i)].result, 0) << "client " << i;
        EXPECT_EQ(back[size_t(i)].result, 0) << "client " << i;
        EXPECT_EQ(back[size_t(i)].len, 5000u);
        EXPECT_EQ(back[size_t(i)].fnv, wrote[size_t(i)].fnv) << "client " << i;
    }
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
}

}  // namespace
