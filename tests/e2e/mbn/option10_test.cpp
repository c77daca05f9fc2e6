/* Option 10 through the real rlk against a private simulator: argument
 * checks, the PDC client brought up, the intended asymmetry of mbn_i 1,
 * and a PDC service that never comes (with the test build's short wait). */
#include <gtest/gtest.h>

#include "mbn_test_util.h"

namespace {

const std::string k_help10 = "\n" + std::string(11, '=') + " blew: radio_lab_kit(rlk) cmd help " +
                             std::string(55, '=') + "\n10: tolvek mbn test\n" + std::string(11, '=') +
                             " above: radio_lab_kit(rlk) cmd help " + std::string(55, '=') + "\n\n";
const std::string k_init = "RIL[tolvek_test_mbn_pdc_init:N]: ";
const std::string k_init_entry = k_init + "function entry ------------->\n" + k_init +
                                 "start tolvek pdc init, g_pdc_init_status = -1, force_init = 0\n";
const std::string k_init_exit = k_init + "function exit <-------------\n";

/* The group's own init function logs at lines of its source that may move;
 * only the two lines the factory logs know (199, 67) are fixed. */
std::string without_init_lines(std::string out)
{
    const std::string mark = "RIL[tolvek_test_mbn_pdc_init:";
    for (size_t at = out.find(mark); at != std::string::npos; at = out.find(mark, at + 1)) {
        size_t digits = at + mark.size();
        out.replace(digits, out.find(']', digits) - digits, "N");
    }
    return out;
}

TEST(Option10Test, ArgumentChecksComeBeforePdcAndTheClientOpensSilently)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    const std::string few = "\nnote: Too few parameters, Pls refer to the following cmd:\n" + k_help10;
    const std::string opened = k_init_entry + k_init_exit;
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"10", "0", "4"}, "\nnote: sub_mask(4) is invalid:\n" + k_help10},
        {{"10", "0", "0"}, "\nnote: sub_mask(0) is invalid:\n" + k_help10},
        {{"10", "0", "x"}, "\nnote: sub_mask(0) is invalid:\n" + k_help10},
        {{"10", "0"}, few},
        {{"10"}, few},
        {{"10", "0", "1"}, opened},
        /* 1 is refused without the help, other indexes with it. */
        {{"10", "1", "1"}, opened + "invalid mbn_i = 1\n"},
        {{"10", "2", "3"}, opened + "invalid mbn_i = 2\n" + k_help10},
        {{"10", "-1", "2"}, opened + "invalid mbn_i = -1\n" + k_help10},
    };
    for (const auto &c : cases) {
        rlk_run r = sim.run_rlk(c.first);
        EXPECT_EQ(without_init_lines(r.out), c.second) << c.first.size();
        EXPECT_TRUE(exited_cleanly(r.status));
        std::vector<std::string> pdc;
        for (const log_line &l : r.logcat) {
            if (l.tag == "PDC_UTIL") pdc.push_back(std::to_string(l.priority) + " " + l.text);
        }
        bool opens = c.second.compare(0, opened.size(), opened) == 0;
        const std::vector<std::string> init = {"6 pdc_info init done", "4 qmi_client_init succeeds for PDC"};
        EXPECT_EQ(pdc, opens ? init : std::vector<std::string>());
        if (!opens) {
            EXPECT_EQ(sim.ctl_ok("last 5 pdc"), "") << "PDC untouched";
        }
    }
}

TEST(Option10Test, AbsentServiceFailsAfterTwentyAttempts)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    sim.ctl_ok("down pdc");
    std::string logcat = sim.dir() + "/probe-logcat.log", syslog = sim.dir() + "/probe-syslog.log";
    std::vector<std::string> env = sim.env();
    env.insert(env.end(), {"RLK_LOGCAT_FILE=" + logcat, "RLK_SYSLOG_FILE=" + syslog, "RLK_TEST_PDC_RETRY_MS=1"});
    long long start = monotonic_ms();
    run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"}, env);
    EXPECT_LT(monotonic_ms() - start, 10000);
    EXPECT_EQ(without_init_lines(r.out), k_init_entry + k_init + "pdc init failed\n" + k_init_exit +
                                             "RIL[tolvek_test_mbn_do:199]: pdc init failed, do nothing\n" + k_help10);
    std::vector<std::string> pdc = pdc_lines(logcat);
    ASSERT_EQ(pdc.size(), 21u);
    EXPECT_EQ(pdc[20], "qmi_client_init returned failure (-3) for PDC, retry times 19");
    std::vector<log_line> sys = read_log_file(syslog, false);
    ASSERT_FALSE(sys.empty());
    EXPECT_EQ(sys.back().text, "SUB[shell][tolvek_test_mbn.cpp:199] tolvek_test_mbn_do: pdc init failed, do nothing");
    EXPECT_EQ(sys.back().priority, 3);
}

}  // namespace
