/* `rlk 7 2 <mask>` against the simulator: the blocks a mask selects, the
 * cursor that moves only over printed blocks, the status verdicts and the
 * two failure lines. */
#include <string>

#include <gtest/gtest.h>

#include "diag_lsm_dci.h"

#include "sim_fixture.h"

namespace {

/* Console lines of the extension client around one request. */
const char k_connect_lines[] =
    "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
    "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1\n"
    "QMI client inited\n";

/* Line numbers of the paired log lines are matched as numbers. */
std::string normalise(const std::string &out)
{
    std::string res;
    size_t pos = 0;
    while (pos < out.size()) {
        size_t tag = out.find("RIL[", pos);
        if (tag == std::string::npos) {
            break;
        }
        size_t colon = out.find_first_not_of(
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_", tag + 4);
        size_t close = colon == std::string::npos ? colon : out.find_first_not_of("0123456789", colon + 1);
        if (colon == std::string::npos || out[colon] != ':' || close == std::string::npos || close == colon + 1 ||
            out[close] != ']') {
            res.append(out, pos, tag + 4 - pos);
            pos = tag + 4;
            continue;
        }
        res.append(out, pos, colon + 1 - pos);
        res += "N]";
        pos = close + 1;
    }
    res.append(out, pos, std::string::npos);
    return res;
}

/* "name=count " for every "-------- stats <name> info end, cnt(<count>) --------" line. */
std::string block_ends(const std::string &out)
{
    static const std::string head = "-------- stats ";
    static const std::string mid = " info end, cnt(";
    std::string seen;
    for (size_t pos = out.find(head); pos != std::string::npos; pos = out.find(head, pos + 1)) {
        size_t eol = out.find('\n', pos);
        std::string line = out.substr(pos, eol == std::string::npos ? std::string::npos : eol - pos);
        size_t m = line.find(mid);
        size_t close = line.find(") --------", m == std::string::npos ? 0 : m);
        if (m == std::string::npos || close == std::string::npos) {
            continue;
        }
        seen += line.substr(head.size(), m - head.size()) + "=" +
                line.substr(m + mid.size(), close - m - mid.size()) + " ";
    }
    return seen;
}

std::string request_lines(int resp_len, int result)
{
    return "RIL[tolvek_common_qmi_req:N]: function entry ------------->\n" + std::string(k_connect_lines) +
           "tolvek_extend_qmi_send_sync resp_len:" + std::to_string(resp_len) + "\n" +
           "tolvek_extend_qmi_handle_req_cb result:" + std::to_string(result) + "\n" +
           "RIL[tolvek_common_qmi_req:N]: function exit <-------------\n";
}

std::string field(int size, const std::string &name, unsigned long value)
{
    return "UNPK[size:" + std::to_string(size) + "], " + name + " = " + std::to_string(value) + "\n";
}

std::string main_block(unsigned long ok)
{
    return field(1, "g_modem_stats_feature_enable_status", 1) + field(8, "g_pk_version_not_support_num", 0) +
           field(8, "g_modem_stats_cmd_ok_count", ok) + field(8, "g_modem_stats_cmd_fail_count", 0);
}

class DebugInfoTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }
    std::string run(const std::string &mask)
    {
        rlk_run r = sim.run_rlk({"7", "2", mask});
        EXPECT_TRUE(exited_cleanly(r.status));
        return normalise(r.out);
    }
    sim_instance sim;
};

/* 8 bytes of head and 137 of counters. */
constexpr int k_resp_len = 145;

TEST_F(DebugInfoTest, MaskOnePrintsTheMainBlock)
{
    sim.ctl_ok("counter set stats.main.cmd_ok_count 7");
    EXPECT_EQ(run("1"), "Get the debug info of modem_stats, mask = 0x1\n" + request_lines(k_resp_len, 0) +
                            field(1, "version", 1) + "-------- stats main info start --------\n" + main_block(7) +
                            "-------- stats main info end, cnt(26) --------\n");
}

TEST_F(DebugInfoTest, AllBlocksEndAtTheirTruePlaces)
{
    for (const char *mask : {"15", "255"}) {
        std::string out = run(mask);
        EXPECT_EQ(block_ends(out), "main=26 diag=69 cm=127 uim=137 ") << mask;
        EXPECT_NE(out.find(field(4, "listener_log_num", 34)), std::string::npos);
        EXPECT_NE(out.find(field(4, "poll_update_nr5g_parse_num", 0)), std::string::npos);
    }
}

TEST_F(DebugInfoTest, SkippedBlockShiftsTheCursor)
{
    /* Mask 4 prints the call-manager block from where the main block
     * stands: its first field is the feature status byte (1), its second
     * the low byte of the not-supported count. */
    sim.ctl_ok("counter set stats.main.version_not_support_num 3");
    std::string out = run("4");
    EXPECT_NE(out.find("-------- stats cm info start --------\n" + field(1, "init_state", 1) +
                       field(1, "listener_state", 3)),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("-------- stats cm info end, cnt(59) --------\n"), std::string::npos);
}

TEST_F(DebugInfoTest, StatusCheckVerdicts)
{
    std::string ok = run("0");
    EXPECT_NE(ok.find(field(1, "version", 1) + field(1, "modem_stats_feature_enable_status", 1) +
                      field(8, "version_not_support_num", 0) + field(8, "modem_stats_cmd_ok_count", 0) +
                      field(8, "modem_stats_cmd_fail_count", 0) +
                      "===========================================\n"
                      "================ SUCCES ===================\n"),
              std::string::npos)
        << ok;
    /* The ok count grows as the framework serves commands. */
    EXPECT_NE(run("0").find(field(8, "modem_stats_cmd_ok_count", 1)), std::string::npos);

    sim.ctl_ok("counter set stats.main.version_not_support_num 2");
    EXPECT_NE(run("0").find("================= FAIL ====================\n"), std::string::npos);
    sim.ctl_ok("counter set stats.main.version_not_support_num 0");
    sim.ctl_ok("counter set stats.main.feature_enable_status 0");
    EXPECT_NE(run("0").find("================= FAIL ====================\n"), std::string::npos);
}

TEST_F(DebugInfoTest, FailedRequestsEndAfterTheirLine)
{
    /* The service answers with a non-zero result: the send fails. */
    sim.ctl_ok("error ext 2 5 1");
    std::string out = run("255");
    EXPECT_NE(out.find("5 QMI service framework error. Check client\n"), std::string::npos) << out;
    EXPECT_NE(out.find("tolvek_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0\n"),
              std::string::npos)
        << out;
    EXPECT_EQ(out.find("UNPK"), std::string::npos);

    /* The modem's own result word is non-zero. */
    const std::string msg_code_tlv = "01" "0400" "00000000", data_len_tlv = "02" "0400" "08000000";
    const std::string payload = "14000000" "09000000" + std::string(2 * 504, '0');
    sim.ctl_ok("respond ext 2 " + msg_code_tlv + data_len_tlv + "10" "0002" + payload + " 1");
    out = run("1");
    EXPECT_NE(out.find("qmi response fail, result = 9, rsp.result = 9\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("UNPK"), std::string::npos);
}

TEST_F(DebugInfoTest, ListenerCountersFollowTheDiagStream)
{
    /* A DCI client of this process receives two log records and one event;
     * the framework's listener counters count them. */
    ASSERT_EQ(Diag_LSM_Init(nullptr), TRUE);
    int client_id = 0, signal_no = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    ASSERT_EQ(diag_register_dci_client(&client_id, &list, DIAG_PROC_MSM, &signal_no), DIAG_DCI_NO_ERROR);
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag log 0c00aabb");
    sim.ctl_ok("diag event 0102");
    std::string out = run("3"); /* main and diag: diag read at its true place */
    EXPECT_NE(out.find(field(4, "listener_event_call_num", 1)), std::string::npos) << out;
    EXPECT_NE(out.find(field(8, "listener_log_call_num", 2)), std::string::npos) << out;
    EXPECT_EQ(diag_release_dci_client(&client_id), DIAG_DCI_NO_ERROR);
    Diag_LSM_DeInit();
}

TEST_F(DebugInfoTest, MissingMaskFails)
{
    rlk_run r = sim.run_rlk({"7", "2"});
    const std::string head =
        "\nnote: Too few parameters, Pls refer to the following cmd:\n"
        "tolvek_test_modem_stats_get_debug_info FAIL\n";
    EXPECT_EQ(r.out.substr(0, head.size()), head);
}

}  // namespace
