/* Option 10 through the real rlk against a private simulator: argument
 * checks, the PDC client brought up, the intended asymmetry of mbn_i 1,
 * and a PDC service that never comes (with the test build's short wait). */
#include <gtest/gtest.h>

#include "mbn_test_util.h"

namespace {

const std::string k_help10 = "\n" + std::string(11, '=') + " blew: radio_lab_kit(rlk) cmd help " +
                             std::string(55, '=') + "\n10: tolvek mbn test\n" + std::string(11, '=') +
                             " above: radio_lab_kit(rlk) cmd help " + std::string(55, '=') + "\n\n";

/* The group's own init function logs at lines of its source that may move;
 * only the two lines the factory logs know (199, 67) are fixed. */
std::string without_init_lines(std::string out)
{
    const std::string mark = "RIL[tolvek_test_mbn_pdc_init:";
    for (size_t at = out.find(mark); at != std::string::npos; at = out.find(mark, at + 1)) {
        size_t digits = at + mark.size();
        size_t end = out.find(']', digits);
        out.replace(digits, end - digits, "N");
    }
    return out;
}

class Option10Test : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    /* The console lines of one successful open of the PDC client. */
    static std::string init_lines()
    {
        return "RIL[tolvek_test_mbn_pdc_init:N]: function entry ------------->\n"
               "RIL[tolvek_test_mbn_pdc_init:N]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0\n"
               "RIL[tolvek_test_mbn_pdc_init:N]: function exit <-------------\n";
    }
    static std::vector<std::string> pdc_texts(const rlk_run &r)
    {
        std::vector<std::string> out;
        for (const log_line &l : r.logcat) {
            if (l.tag == "PDC_UTIL") out.push_back(std::to_string(l.priority) + " " + l.text);
        }
        return out;
    }

    sim_instance sim;
};

TEST_F(Option10Test, ArgumentChecksComeBeforePdc)
{
    struct arg_case {
        std::vector<std::string> args;
        std::string out;
    };
    const arg_case cases[] = {
        {{"10", "0", "4"}, "\nnote: sub_mask(4) is invalid:\n" + k_help10},
        {{"10", "0", "0"}, "\nnote: sub_mask(0) is invalid:\n" + k_help10},
        {{"10", "0", "x"}, "\nnote: sub_mask(0) is invalid:\n" + k_help10},
        {{"10", "0"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n" + k_help10},
        {{"10"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n" + k_help10},
    };
    for (const arg_case &c : cases) {
        rlk_run r = sim.run_rlk(c.args);
        EXPECT_EQ(r.out, c.out) << c.args.size();
        EXPECT_TRUE(pdc_texts(r).empty()) << "PDC untouched";
        EXPECT_TRUE(exited_cleanly(r.status));
    }
    EXPECT_EQ(sim.ctl_ok("last 5 pdc"), "");
}

TEST_F(Option10Test, IndexZeroOpensTheClientSilently)
{
    rlk_run r = sim.run_rlk({"10", "0", "1"});
    EXPECT_EQ(without_init_lines(r.out), init_lines());
    EXPECT_EQ(pdc_texts(r), (std::vector<std::string>{"6 pdc_info init done", "4 qmi_client_init succeeds for PDC"}));
    EXPECT_TRUE(exited_cleanly(r.status));
}

TEST_F(Option10Test, IndexOneIsInvalidWithoutHelpAndTwoWithIt)
{
    rlk_run one = sim.run_rlk({"10", "1", "1"});
    EXPECT_EQ(without_init_lines(one.out), init_lines() + "invalid mbn_i = 1\n");
    rlk_run two = sim.run_rlk({"10", "2", "3"});
    EXPECT_EQ(without_init_lines(two.out), init_lines() + "invalid mbn_i = 2\n" + k_help10);
    rlk_run neg = sim.run_rlk({"10", "-1", "2"});
    EXPECT_EQ(without_init_lines(neg.out), init_lines() + "invalid mbn_i = -1\n" + k_help10);
}

TEST_F(Option10Test, AbsentServiceFailsAfterTwentyAttempts)
{
    sim.ctl_ok("down pdc");
    std::string logcat = sim.dir() + "/probe-logcat.log";
    std::string syslog = sim.dir() + "/probe-syslog.log";
    std::vector<std::string> env = sim.env();
    env.insert(env.end(), {"RLK_LOGCAT_FILE=" + logcat, "RLK_SYSLOG_FILE=" + syslog, "RLK_TEST_PDC_RETRY_MS=1"});
    long long start = monotonic_ms();
    run_result r = run_process({MBN_RETRY_PROBE_BINARY, "10", "0", "1"}, env);
    EXPECT_LT(monotonic_ms() - start, 10000);
    EXPECT_EQ(without_init_lines(r.out), "RIL[tolvek_test_mbn_pdc_init:N]: function entry ------------->\n"
                     "RIL[tolvek_test_mbn_pdc_init:N]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0\n"
                     "RIL[tolvek_test_mbn_pdc_init:N]: pdc init failed\n"
                     "RIL[tolvek_test_mbn_pdc_init:N]: function exit <-------------\n"
                     "RIL[tolvek_test_mbn_do:199]: pdc init failed, do nothing\n" +
                         k_help10);
    std::vector<std::string> pdc = pdc_lines(logcat);
    ASSERT_EQ(pdc.size(), 21u);
    EXPECT_EQ(pdc[20], "qmi_client_init returned failure (-3) for PDC, retry times 19");
    std::vector<log_line> sys = read_log_file(syslog, false);
    ASSERT_FALSE(sys.empty());
    EXPECT_EQ(sys.back().text, "SUB[shell][tolvek_test_mbn.cpp:199] tolvek_test_mbn_do: pdc init failed, do nothing");
    EXPECT_EQ(sys.back().priority, 3);
}

}  // namespace
