/* `rlk 9 <opt> <sub>` against the simulator: the argument notes, the
 * restart of the service between runs and the counters option 7's debug
 * info reports, every opt printing the values of the radio scene, and the
 * real ten attempts against an absent service. */
#include <string>

#include <gtest/gtest.h>

#include "sim_fixture.h"

namespace {

std::string head(int opt, int sub, int client = 0)
{
    return "opt = " + std::to_string(opt) + ", sub = " + std::to_string(sub) +
           ", g_orvex_client_id = " + std::to_string(client) + "\n";
}

std::string success(int sub, int id, int len)
{
    return "Success to get data, number = 1, sub = " + std::to_string(sub) + ", ret id_num = 1, id = " +
           std::to_string(id) + ", data_len = " + std::to_string(len) + "\n";
}

TEST(Option9, NotesRestartEveryOptAndAbsentServiceTenRealAttempts)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    rlk_run few = sim.run_rlk({"9", "7"});
    EXPECT_EQ(few.out.find("\nnote: Too few parameters, Pls refer to the following cmd:\n"), 0u) << few.out;
    EXPECT_NE(few.out.find("9: tolvek modem stats qmi test\n"), std::string::npos);
    EXPECT_NE(few.out.find("   rlk 9 30 0                    /* Ant info */\n"), std::string::npos);
    EXPECT_EQ(few.out.find("opt = "), std::string::npos);
    EXPECT_TRUE(few.logcat.empty()); /* nothing was opened */
    rlk_run unknown = sim.run_rlk({"9", "13", "0"});
    EXPECT_EQ(unknown.out, head(13, 0) + "tolvek_test_qmi_modem_stats_hdl: Unknown opt(13), sub(0)\n");
    ASSERT_FALSE(unknown.logcat.empty());
    EXPECT_EQ(unknown.logcat.back().text, "modem_api_release: function exit");
    EXPECT_EQ(sim.run_rlk({"9", "0", "2"}).out, head(0, 2) + "modem_api_get_stats_parameter, sub(2) is invalid\n");
    EXPECT_EQ(sim.ctl_ok("last 256 vs").find("0x0207"), std::string::npos);

    /* The restarted service forgets the started collection until the next
     * run starts it again. */
    sim.ctl_ok("counter set stats.main.cmd_ok_count 0");
    EXPECT_NE(sim.run_rlk({"9", "20", "0"}).out.find("ASDIV DATA: rx_agc_0: -72.50"), std::string::npos);
    EXPECT_EQ(sim.ctl_ok("vs feature"), "1");
    sim.ctl_ok("ssr vs 50");
    sim.ctl_ok("ssr ext 50");
    rlk_run again;
    for (int i = 0; i < 50 && again.out.find("ASDIV DATA") == std::string::npos; i++) {
        again = sim.run_rlk({"9", "20", "0"});
    }
    EXPECT_NE(again.out.find("ASDIV DATA: rx_agc_0: -72.50, rx_agc_1: -75.25\n"), std::string::npos) << again.out;
    /* Option 7's debug info counts the answers of the framework. */
    EXPECT_NE(sim.ctl_ok("counters").find("stats.main.cmd_ok_count 4"), std::string::npos);
    rlk_run debug = sim.run_rlk({"7", "2", "1"});
    EXPECT_NE(debug.out.find("UNPK[size:1], g_modem_stats_feature_enable_status = 1\n"), std::string::npos) << debug.out;
    EXPECT_NE(debug.out.find("UNPK[size:8], g_modem_stats_cmd_ok_count = 4\n"), std::string::npos) << debug.out;

    /* The scene of subscription 1: LTE carrier c gets earfcn 1000 + c, pci
     * 10 + c and levels c.xx so that a wrong carrier shows. */
    auto set = [&](int sub, const std::string &key, const std::string &value) {
        sim.ctl_ok("vs set " + std::to_string(sub) + " " + key + " " + value);
    };
    for (int c = 0; c < 7; c++) {
        const std::string lte = "lte." + std::to_string(c) + ".", cs = std::to_string(c);
        set(1, lte + "present", "1");
        set(1, lte + "earfcn", std::to_string(1000 + c));
        set(1, lte + "pci", std::to_string(10 + c));
        set(1, lte + "rx_valid", "3");
        for (const std::string r : {"0", "1", "2", "3"}) {
            set(1, lte + "rsrp" + r, "-9" + cs + "." + r + "5");
            set(1, lte + "rsrq" + r, "-1" + cs + "." + r + "5");
            set(1, lte + "rssi" + r, "-6" + cs + "." + r + "5");
            set(1, lte + "snr" + r, cs + "." + r + "5");
        }
    }
    const char *const scene[][2] = {
        {"nr.present", "1"},    {"nr.rssi0", "-50.25"}, {"nr.rssi1", "-51.5"},   {"nr.rssi2", "-52"},
        {"nr.rssi3", "-53.75"}, {"nr.snr0", "30"},      {"nr.snr1", "29.5"},     {"nr.snr2", "-1.25"},
        {"nr.snr3", "0"},       {"wcdma.present", "1"}, {"wcdma.agc0", "-80.5"}, {"wcdma.agc1", "-81.25"},
        {"gsm.present", "1"},   {"gsm.prx", "-90"},     {"gsm.drx", "-91.75"},
    };
    for (const auto &kv : scene) set(1, kv[0], kv[1]);
    const char *const ant[][2] = {{"num", "2"}, {"path", "300"}, {"sig", "7"}, {"old", "1"}, {"new", "2"}};
    for (const auto &kv : ant) set(0, std::string("ant.") + kv[0], kv[1]);
    for (int c = 0; c < 3; c++) {
        const std::string nr = "nr." + std::to_string(c) + ".", cs = std::to_string(c);
        set(1, nr + "present", "1");
        for (int rx = 0; rx < 4; rx++) set(1, nr + "rsrp" + std::to_string(rx), "-" + std::to_string(7 + rx) + cs);
        set(1, nr + "rsrq", "-1" + cs);
    }
    for (int i = 0; i < 12; i++) set(1, "asdiv." + std::to_string(i), std::to_string(20 + i));

    const int lte_ids[7] = {82, 103, 104, 105, 106, 107, 108};
    for (int opt = 0; opt <= 6; opt++) {
        const std::string c = std::to_string(opt);
        std::string line = "ASDIV DATA: earfcn: " + std::to_string(1000 + opt) + ", pci: " + std::to_string(10 + opt) +
                           ", rx_valid: 3";
        for (const std::string r : {"0", "1", "2", "3"}) {
            const std::string v = c + "." + r + "5";
            line += ", rsrp_rx" + r + ": -9" + v + ", rsrq_rx" + r + ": -1" + v + ", rssi_rx" + r + ": -6" + v +
                    ", snr_rx" + r + ": " + v;
        }
        EXPECT_EQ(sim.run_rlk({"9", c, "1"}).out, head(opt, 1) + success(1, lte_ids[opt], 75) + line + "\n");
    }
    const struct {
        int opt, sub, id, len;
        std::string line;
    } rows[] = {
        {7, 1, 94, 20, "ASDIV DATA: rssi_rx0: -50.25, rssi_rx1: -51.50, rssi_rx2: -52.00, rssi_rx3: -53.75"},
        {8, 1, 112, 20, "ASDIV DATA: snr_rx0: 30.00, snr_rx1: 29.50, snr_rx2: -1.25, snr_rx3: 0.00"},
        {9, 1, 113, 16,
         "ASDIV DATA: ant_rx_0_old = 20, ant_rx_0_new = 21, ant_rx_1_old = 22, ant_rx_1_new = 23, ant_rx_2_old = 24, "
         "ant_rx_2_new = 25, ant_rx_3_old = 26, ant_rx_3_new = 27, ant_tx_0_old = 28, ant_tx_0_new = 29, "
         "ant_tx_1_old = 30, ant_tx_1_new = 31"},
        {10, 1, 135, 24, "ASDIV DATA: rsrp_rx0: -70.00, rsrp_rx1: -80.00, rsrp_rx2: -90.00, rsrp_rx3: -100.00, rsrq: -10.00"},
        {11, 1, 6, 24, "ASDIV DATA: rsrp_rx0: -71.00, rsrp_rx1: -81.00, rsrp_rx2: -91.00, rsrp_rx3: -101.00, rsrq: -11.00"},
        {12, 1, 7, 24, "ASDIV DATA: rsrp_rx0: -72.00, rsrp_rx1: -82.00, rsrp_rx2: -92.00, rsrp_rx3: -102.00, rsrq: -12.00"},
        {20, 1, 110, 12, "ASDIV DATA: rx_agc_0: -80.50, rx_agc_1: -81.25"},
        {21, 1, 111, 12, "ASDIV DATA: rx_prx: -90.00, rx_drx: -91.75"},
        {30, 0, 100, 11, "ANT INFO: ant_num: 2, ant_path: 300, sig_path: 7, old_config: 1, new_config: 2"},
    };
    for (const auto &r : rows) {
        rlk_run run = sim.run_rlk({"9", std::to_string(r.opt), std::to_string(r.sub)});
        EXPECT_EQ(run.out, head(r.opt, r.sub) + success(r.sub, r.id, r.len) + r.line + "\n") << "opt " << r.opt;
    }

    /* An absent service: ten real attempts, a second apart. */
    sim.ctl_ok("down vs");
    long long start = monotonic_ms();
    rlk_run absent = sim.run_rlk({"9", "0", "0"});
    long long spent = monotonic_ms() - start;
    EXPECT_GE(spent, 9000);
    EXPECT_LT(spent, 20000);
    EXPECT_EQ(absent.out, "modem_api_set_orvex_feature_status, start fail, result = 1\n" + head(0, 0, -1) +
                              "orvex qmi is not yet inited");
}

}  // namespace
