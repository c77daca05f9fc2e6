/* Option 9 in this process: the bounded cursor readers on short items (the
 * end-to-end test prints every full item),
 * and the group's steps against a private simulator (checks of an answer in
 * their order, refusals before any request, release on every path). */
#include "../frontend/frontend_test_util.h"
#include "data_file.h"
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
    } cases[] = {
        /* 12-byte 5G RSSI: version, rssi0, rssi1 read; rssi2 finds 0 left. */
        {tolvek_qmi_stats_read_5g_rssi, 94, 12},      {tolvek_qmi_stats_read_5g_rssi, 94, 14},
        {tolvek_qmi_stats_read_5g_snr, 112, 3},       {tolvek_qmi_stats_read_5g_rsrp, 135, 20},
        {tolvek_qmi_stats_read_4g_rssi, 82, 74},      {tolvek_qmi_stats_read_4g_rssi, 103, 10},
        {tolvek_qmi_stats_read_5g_asdiv, 113, 15},    {tolvek_qmi_stats_read_wcdma_rssi, 110, 8},
        {tolvek_qmi_stats_read_gsm_rssi, 111, 4},     {tolvek_qmi_stats_read_ant_info, 100, 6},
        {tolvek_qmi_stats_read_ant_info, 100, 0},
    };
    std::string out;
    for (const auto &c : cases) {
        std::vector<uint8_t> item(c.len, 0x11);
        tolvek_qmi_stats_data_set(c.id, item.data(), int32_t(item.size()));
        out += std::to_string(c.id) + " len " + std::to_string(c.len) + ": " + capture_stdout(c.reader);
    }
    expect_golden(out, __FILE__, "stats_short_items.golden");
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
    arg_vector args({"rlk", "9", std::to_string(opt), std::to_string(sub)});
    return capture_stdout([&] { tolvek_test_qmi_modem_stats_do(args.argc(), args.argv()); });
}

/* Each run's output and the number of requests 0x0207 it sent, compared
 * whole with the golden transcript. */
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
    std::string out;
    for (const auto &c : data_rows(__FILE__, "stats_group_cases.data", '\t')) {
        sim.ctl_ok(c[2]);
        size_t before = get_requests();
        out += "$ " + c[2] + "\n" + run_group(std::stoi(c[0]), std::stoi(c[1]));
        out += "requests: " + std::to_string(get_requests() - before) + "\n";
        /* Every path frees the client and stops the collection. */
        const bool open = g_vs_client.client_handle != nullptr;
        EXPECT_EQ(facts(g_orvex_client_id, modem_api_client_count(), open, sim.ctl_ok("vs feature")), "-1 0 0 1\n")
            << c[2];
        sim.ctl_ok("clear-faults");
    }
    /* A collection that cannot start is reported; the request still goes. */
    sim.ctl_ok("error vs 0x0201 4");
    out += "$ error vs 0x0201 4\n" + run_group(21, 0);
    expect_golden(out, __FILE__, "stats_group_runs.golden");
    tolvek_qmi_modem_stats_api_deinit();
    EXPECT_EQ(facts(modem_api_client_count(), g_vs_client.client_handle != nullptr), "0 0\n");
}

}  // namespace
