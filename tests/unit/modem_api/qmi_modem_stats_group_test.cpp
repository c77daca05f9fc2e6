/* Option 9 in this process: the bounded cursor readers on short items (the
 * end-to-end test prints every full item),
 * and the group's steps against a private simulator (checks of an answer in
 * their order, refusals before any request, release on every path). */
#include <gtest/gtest.h>

#include "../frontend/frontend_test_util.h"
#include "modem_api.h"
#include "modem_api_test_util.h"
#include "tolvek_qmi_modem_stats.h"
#include "tolvek_qmi_modem_stats_reader.h"
#include "tolvek_test_groups.h"
#include "vs_client.h"

namespace {

TEST(QmiStatsReaders, ShortItemsStopAtTheFirstMissingField)
{
    const struct {
        void (*reader)(void);
        uint32_t id;
        size_t len; /* bytes of 0x11 */
        const char *out;
    } cases[] = {
        /* 12-byte 5G RSSI: version, rssi0, rssi1 read; rssi2 finds 0 left. */
        {tolvek_qmi_stats_read_5g_rssi, 94, 12, "g_orvex_data_left(0) is not enough for rssi2, id(0x5e)\n"},
        {tolvek_qmi_stats_read_5g_rssi, 94, 14, "g_orvex_data_left(2) is not enough for rssi2, id(0x5e)\n"},
        {tolvek_qmi_stats_read_5g_snr, 112, 3, "g_orvex_data_left(3) is not enough for version, id(0x70)\n"},
        {tolvek_qmi_stats_read_5g_rsrp, 135, 20, "g_orvex_data_left(0) is not enough for rsrq, id(0x87)\n"},
        {tolvek_qmi_stats_read_4g_rssi, 82, 74, "g_orvex_data_left(3) is not enough for snr_rx3, id(0x52)\n"},
        {tolvek_qmi_stats_read_4g_rssi, 103, 10, "g_orvex_data_left(0) is not enough for rx_valid, id(0x67)\n"},
        {tolvek_qmi_stats_read_5g_asdiv, 113, 15, "g_orvex_data_left(0) is not enough for ant_tx_1_new, id(0x71)\n"},
        {tolvek_qmi_stats_read_wcdma_rssi, 110, 8, "g_orvex_data_left(0) is not enough for rx_agc_1, id(0x6e)\n"},
        {tolvek_qmi_stats_read_gsm_rssi, 111, 4, "g_orvex_data_left(0) is not enough for rx_prx, id(0x6f)\n"},
        {tolvek_qmi_stats_read_ant_info, 100, 6, "g_orvex_data_left(1) is not enough for ant_switch_path, id(0x64)\n"},
        {tolvek_qmi_stats_read_ant_info, 100, 0, "g_orvex_data_left(0) is not enough for version, id(0x64)\n"},
    };
    for (const auto &c : cases) {
        std::vector<uint8_t> item(c.len, 0x11);
        tolvek_qmi_stats_data_set(c.id, item.data(), int32_t(item.size()));
        EXPECT_EQ(capture_stdout(c.reader), c.out) << c.id << " len " << c.len;
    }
}

TEST(QmiStatsReaders, CursorGuards)
{
    const uint8_t rssi[] = {1, 0, 0, 0, 0, 0, 0x80, 0x3F}; /* version 1, 1.0f */
    tolvek_qmi_stats_data_set(94, rssi, int32_t(sizeof(rssi)));
    g_pK_DATA_CNT = -4;
    EXPECT_EQ(capture_stdout(tolvek_qmi_stats_read_5g_rssi), "g_pK_DATA_CNT(-4) is can not < 0 for version, id(0x5e)\n");
    /* Bytes left out of step with the cursor: a read past the buffer ends
     * the process. */
    EXPECT_DEATH(
        {
            g_pK_DATA_CNT = TOLVEK_QMI_STATS_DATA_MAX - 2;
            g_orvex_data_left = 100;
            uint32_t v;
            tolvek_qmi_stats_data_unpk("late", 4, &v);
        },
        "");
    /* An item is cut to the 700-byte buffer. */
    std::vector<uint8_t> big(900, 7);
    tolvek_qmi_stats_data_set(82, big.data(), int32_t(big.size()));
    EXPECT_EQ(g_orvex_data_left, TOLVEK_QMI_STATS_DATA_MAX);
}

/* ---- The group's steps against the simulator -------------------------- */

/* Runs `rlk 9 <opt> <sub>` in this process. */
std::string run_group(int opt, int sub)
{
    std::vector<std::string> words = {"rlk", "9", std::to_string(opt), std::to_string(sub)};
    std::vector<char *> argv;
    for (std::string &w : words) argv.push_back(&w[0]);
    return capture_stdout([&] { tolvek_test_qmi_modem_stats_do(int(argv.size()), argv.data()); });
}

TEST(QmiStatsGroup, RefusalsAnswerChecksInTheirOrderAndReleaseOnEveryPath)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    fresh_logcat(sim.dir(), "group-logcat.log");
    /* Requests 0x0207 the simulator received so far. */
    auto get_requests = [&] {
        std::string last = sim.ctl_ok("last 256 vs");
        size_t n = 0;
        for (size_t pos = 0; (pos = last.find("0xffe5 0x0207", pos)) != std::string::npos; pos++) n++;
        return n;
    };
    const struct {
        const char *fault;
        int opt, sub;
        size_t requests;
        const char *line;
    } cases[] = {
        {"ping", 13, 0, 0, "tolvek_test_qmi_modem_stats_hdl: Unknown opt(13), sub(0)\n"},
        /* Subscriptions out of range are refused before any request. */
        {"ping", 7, 2, 0, "modem_api_get_stats_parameter, sub(2) is invalid\n"},
        {"ping", 0, -1, 0, "modem_api_get_stats_parameter, sub(-1) is invalid\n"},
        /* The antenna information always asks for subscription 0. */
        {"ping", 30, 5, 1, "Success to get data, number = 1, sub = 0, ret id_num = 1, id = 100, data_len = 11\n"
                           "ANT INFO: ant_num: 4, ant_path: 2, sig_path: 1, old_config: 0, new_config: 1\n"},
        {"vs fault wrong-id", 7, 0, 1,
         "Fail to get data, ret_id(95) is invalid, number = 1, sub = 0, ret id_num = 1, id = 94\n"},
        {"vs fault wrong-sub", 7, 0, 1,
         "Fail to get data, ret_sub(1) is invalid, number = 1, sub = 0, ret id_num = 1, id = 94\n"},
        {"vs fault data-len 0", 20, 0, 1,
         "Fail to get data, data_len(0) is invalid, should be in (0, 700], number = 1, sub = 0, ret id_num = 1, "
         "id = 110\n"},
        {"vs fault data-len 701", 20, 0, 1,
         "Fail to get data, data_len(701) is invalid, should be in (0, 700], number = 1, sub = 0, ret id_num = 1, "
         "id = 110\n"},
        {"vs fault empty", 0, 0, 1,
         "Fail to get data, ret_id(0) is invalid, number = 1, sub = 0, ret id_num = 0, id = 82\n"},
        /* Nothing for NR on the LTE-only second subscription. */
        {"ping", 7, 1, 1, "Fail to get data, ret_id(0) is invalid, number = 1, sub = 1, ret id_num = 0, id = 94\n"},
        /* A subscription without a modem stack: QMI error 48 -> 5. */
        {"vs set 1 served 0", 0, 1, 1, "Fail to get data fail, number = 1, ret = 5, sub = 1, id = 82\n"},
        {"error vs 0x0207 52", 8, 0, 1, "Fail to get data fail, number = 1, ret = 8, sub = 0, id = 112\n"},
        {"vs fault data-len 12", 7, 0, 1,
         "Success to get data, number = 1, sub = 0, ret id_num = 1, id = 94, data_len = 12\n"
         "g_orvex_data_left(0) is not enough for rssi2, id(0x5e)\n"},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(c.fault);
        size_t before = get_requests();
        EXPECT_EQ(run_group(c.opt, c.sub), "opt = " + std::to_string(c.opt) + ", sub = " + std::to_string(c.sub) +
                                               ", g_orvex_client_id = 0\n" + c.line)
            << c.fault;
        EXPECT_EQ(get_requests() - before, c.requests) << c.fault;
        /* Every path frees the client and stops the collection. */
        EXPECT_EQ(g_orvex_client_id, -1);
        EXPECT_EQ(modem_api_client_count(), 0);
        EXPECT_EQ(g_vs_client.client_handle, nullptr);
        EXPECT_EQ(sim.ctl_ok("vs feature"), "1");
        sim.ctl_ok("clear-faults");
    }
    /* A collection that cannot start is reported; the request still goes. */
    sim.ctl_ok("error vs 0x0201 4");
    EXPECT_EQ(run_group(21, 0), "modem_api_set_orvex_feature_status, start fail, result = 10\n"
                                "opt = 21, sub = 0, g_orvex_client_id = 0\n"
                                "Success to get data, number = 1, sub = 0, ret id_num = 1, id = 111, data_len = 12\n"
                                "ASDIV DATA: rx_prx: -68.00, rx_drx: -71.50\n");
    tolvek_qmi_modem_stats_api_deinit();
    EXPECT_EQ(modem_api_client_count(), 0);
    EXPECT_EQ(g_vs_client.client_handle, nullptr);
}

}  // namespace
