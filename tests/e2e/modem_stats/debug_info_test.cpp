/* `rlk 7 2 <mask>` against the simulator: the blocks a mask selects, the
 * cursor that moves only over printed blocks, the status verdicts, the two
 * failure lines and the listener counters that follow the diag stream. */
#include <cctype>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "diag_lsm_dci.h"

#include "sim_fixture.h"

namespace {

std::string field(int size, const std::string &name, unsigned long value)
{
    return "UNPK[size:" + std::to_string(size) + "], " + name + " = " + std::to_string(value) + "\n";
}

/* "name=count " for every "-------- stats <name> info end, cnt(<count>) --------" line. */
std::string block_ends(const std::string &out)
{
    std::istringstream lines(out);
    std::string line, seen;
    while (std::getline(lines, line)) {
        char name[64], tail[16];
        unsigned long count = 0;
        if (sscanf(line.c_str(), "-------- stats %63s info end, cnt(%lu%15s", name, &count, tail) == 3 &&
            std::string(tail) == ")") {
            seen += std::string(name) + "=" + std::to_string(count) + " ";
        }
    }
    return seen;
}

/* "RIL[name:123]" becomes "RIL[name:N]": source line numbers are not compared. */
std::string without_line_numbers(std::string text)
{
    for (size_t at = text.find("RIL["); at != std::string::npos; at = text.find("RIL[", at + 1)) {
        size_t colon = at + 4;
        while (colon < text.size() && (isalnum((unsigned char)text[colon]) || text[colon] == '_')) colon++;
        size_t end = colon + 1;
        while (end < text.size() && isdigit((unsigned char)text[end])) end++;
        if (colon < text.size() && text[colon] == ':' && end > colon + 1 && end < text.size() && text[end] == ']') {
            text.replace(colon + 1, end - colon - 1, "N");
        }
    }
    return text;
}

TEST(DebugInfo, MasksCursorVerdictsFailuresAndListenerCounters)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    auto run = [&](const std::string &mask) {
        rlk_run r = sim.run_rlk({"7", "2", mask});
        EXPECT_TRUE(exited_cleanly(r.status)) << mask;
        /* Line numbers of the paired trace lines are not compared. */
        return without_line_numbers(r.out);
    };

    /* A DCI client of this process receives two log records and one event;
     * the framework's listener counters count them (mask 3: main and diag,
     * diag read at its true place). */
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE);
    int client_id = 0, signal_no = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    ASSERT_EQ(diag_register_dci_client(&client_id, &list, DIAG_PROC_MSM, &signal_no), DIAG_DCI_NO_ERROR);
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag event 0102");
    std::string out = run("3");
    EXPECT_NE(out.find(field(4, "listener_event_call_num", 1)), std::string::npos) << out;
    EXPECT_NE(out.find(field(8, "listener_log_call_num", 2)), std::string::npos) << out;
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    Diag_LSM_DeInit();

    /* Mask 1: the main block, 8 bytes of head and 137 of counters. */
    const std::string enter = "RIL[tolvek_common_qmi_req:N]: function entry ------------->\n"
                              "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                              "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 "
                              "num_services = 1\n"
                              "QMI client inited\n";
    const std::string leave = "RIL[tolvek_common_qmi_req:N]: function exit <-------------\n";
    sim.ctl_ok("counter set stats.main.cmd_ok_count 7");
    EXPECT_EQ(run("1"), "Get the debug info of modem_stats, mask = 0x1\n" + enter +
                            "tolvek_extend_qmi_send_sync resp_len:145\n"
                            "tolvek_extend_qmi_handle_req_cb result:0\n" +
                            leave + field(1, "version", 1) + "-------- stats main info start --------\n" +
                            field(1, "g_modem_stats_feature_enable_status", 1) +
                            field(8, "g_pk_version_not_support_num", 0) + field(8, "g_modem_stats_cmd_ok_count", 7) +
                            field(8, "g_modem_stats_cmd_fail_count", 0) +
                            "-------- stats main info end, cnt(26) --------\n");
    /* Every block ends at its true place. */
    for (const char *mask : {"15", "255"}) {
        out = run(mask);
        EXPECT_EQ(block_ends(out), "main=26 diag=69 cm=127 uim=137 ") << mask;
        EXPECT_NE(out.find(field(4, "listener_log_num", 34)), std::string::npos);
        EXPECT_NE(out.find(field(4, "poll_update_nr5g_parse_num", 0)), std::string::npos);
    }
    /* Mask 4 prints the call-manager block from where the main block
     * stands: its first field is the feature status byte (1), its second
     * the low byte of the not-supported count. */
    sim.ctl_ok("counter set stats.main.version_not_support_num 3");
    out = run("4");
    EXPECT_NE(out.find("-------- stats cm info start --------\n" + field(1, "init_state", 1) +
                       field(1, "listener_state", 3)),
              std::string::npos)
        << out;
    EXPECT_EQ(block_ends(out), "cm=59 ");

    /* Mask 0: the status check, and its verdicts; the ok count grows as
     * the framework serves commands. */
    sim.ctl_ok("counter set stats.main.version_not_support_num 0");
    sim.ctl_ok("counter set stats.main.cmd_ok_count 0");
    out = run("0");
    EXPECT_NE(out.find(field(1, "version", 1) + field(1, "modem_stats_feature_enable_status", 1) +
                       field(8, "version_not_support_num", 0) + field(8, "modem_stats_cmd_ok_count", 0) +
                       field(8, "modem_stats_cmd_fail_count", 0) +
                       "===========================================\n"
                       "================ SUCCES ===================\n"),
              std::string::npos)
        << out;
    EXPECT_NE(run("0").find(field(8, "modem_stats_cmd_ok_count", 1)), std::string::npos);
    const std::string fail = "================= FAIL ====================\n";
    sim.ctl_ok("counter set stats.main.version_not_support_num 2");
    EXPECT_NE(run("0").find(fail), std::string::npos);
    sim.ctl_ok("counter set stats.main.version_not_support_num 0");
    sim.ctl_ok("counter set stats.main.feature_enable_status 0");
    EXPECT_NE(run("0").find(fail), std::string::npos);

    /* Failed requests end after their line: the service answers with a
     * non-zero result (the send fails), or the modem's own result word is
     * non-zero. */
    sim.ctl_ok("error ext 2 5 1");
    EXPECT_EQ(run("255"), "Get the debug info of modem_stats, mask = 0xff\n" + enter +
                              "5 QMI service framework error. Check client\n"
                              "tolvek_extend_qmi_handle_req_cb result:-3\n" +
                              leave + "tolvek_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0\n");
    sim.ctl_ok("respond ext 2 01040000000000" "02040008000000" "100002" "1400000009000000" +
               std::string(2 * 504, '0') + " 1");
    out = run("1");
    EXPECT_NE(out.find("qmi response fail, result = 9, rsp.result = 9\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("UNPK"), std::string::npos);

    rlk_run missing = sim.run_rlk({"7", "2"});
    const std::string head = "\nnote: Too few parameters, Pls refer to the following cmd:\n"
                             "tolvek_test_modem_stats_get_debug_info FAIL\n";
    EXPECT_EQ(missing.out.substr(0, head.size()), head);
}

}  // namespace
