/* Real captures: the packets of the public sample captures whose codes and
 * versions the parsers accept decode to the physical values the public
 * decoders list for them.  The captures are read from ../shared/captures;
 * without that folder the tests skip. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log_test_util.h"
#include "capture_files.h"

using log_test::fmt;
using log_test::run_log;

namespace {

class CaptureTest : public testing::Test {
protected:
    /* The log packets of one capture file; skips when it is absent. */
    std::vector<capture_log_packet> logs_of(const std::string &file, uint16_t code)
    {
        std::string path = log_test::capture_path(file);
        if (path.empty()) return {};
        std::vector<capture_log_packet> all;
        EXPECT_TRUE(capture_read_logs(path, &all)) << path;
        return capture_logs_of(all, code);
    }
    void SetUp() override
    {
        if (log_test::capture_path("").empty())
            GTEST_SKIP() << "captures folder " RLK_CAPTURES_DIR " is absent: real-capture checks skipped";
    }
};

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

/* Sub-packet version 19, one cell each: the carrier and the per-chain
 * measurements of the first two packets (RSRP = raw/16 - 180 dBm, RSRQ =
 * raw/16 - 30 dB, RSSI = raw/16 - 110 dBm, SNR = raw/10 - 20 dB). */
TEST_F(CaptureTest, AttServingCellMeasurementVersion19)
{
    std::vector<capture_log_packet> b193 = logs_of("att.mi2log", 0xB193);
    ASSERT_EQ(b193.size(), 1091u);

    log_test::run_result pcell = run_log(0xB193, b193[0].payload);
    EXPECT_TRUE(contains(pcell.out, "subpacket_id = 25, version_ssmr = 19\n")) << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0"))
        << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "rsrp_rx0 = -112.94, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00")) << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "rsrq_rx0 = -8.88, rsrq_rx1 = -9.25, ")) << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "rssi_rx0 = -87.06, rssi_rx1 = -83.25, ")) << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "snr_rx0 = 4.90, snr_rx1 = 5.30, ")) << pcell.out;
    EXPECT_TRUE(contains(pcell.out, "max_rssi = -83.25\n")) << pcell.out;
    ASSERT_EQ(pcell.records.size(), 1u);
    EXPECT_EQ(pcell.records[0].id, MODEM_STATS_DATA_ID_LTE_SRV_MEAS);

    /* The second packet is the secondary cell of the carrier at EARFCN 700. */
    log_test::run_result scell = run_log(0xB193, b193[1].payload);
    EXPECT_TRUE(contains(scell.out, "earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1"))
        << scell.out;
    EXPECT_TRUE(contains(scell.out, "rsrp_rx0 = -107.00, rsrp_rx1 = -109.88, ")) << scell.out;
    EXPECT_TRUE(contains(scell.out, "snr_rx0 = 9.10, snr_rx1 = 7.60, ")) << scell.out;
    ASSERT_EQ(scell.records.size(), 1u);
    EXPECT_EQ(scell.records[0].id, MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT);
    log_test::record expected;
    expected.u32(19).u32(700).u16(185).u8(3);
    const float chains[4][4] = {{-107.0f, -7.19f, -82.81f, 9.1f},
                                {-109.88f, -8.44f, -84.44f, 7.6f},
                                {65535.0f, 65535.0f, 65535.0f, 65535.0f},
                                {65535.0f, 65535.0f, 65535.0f, 65535.0f}};
    for (const auto &c : chains) expected.f32(c[0]).f32(c[1]).f32(c[2]).f32(c[3]);
    EXPECT_EQ(scell.records[0].bytes, expected.bytes());
}

TEST_F(CaptureTest, EveryAttServingCellPacketMakesOneRecord)
{
    std::vector<capture_log_packet> b193 = logs_of("att.mi2log", 0xB193);
    ASSERT_FALSE(b193.empty());
    for (size_t i = 0; i < b193.size(); i++) {
        log_test::run_result r = run_log(0xB193, b193[i].payload);
        ASSERT_EQ(r.records.size(), 1u) << "packet " << i << "\n" << r.out;
        EXPECT_TRUE(r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS ||
                    r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT);
        EXPECT_FALSE(contains(r.out, "not enough")) << r.out;
    }
}

/* Sub-packet version 18 (offsets at odd bytes, 11-bit RSRP). */
TEST_F(CaptureTest, OfflineServingCellMeasurementVersion18)
{
    std::vector<capture_log_packet> b193 = logs_of("offline_log_example.mi2log", 0xB193);
    ASSERT_EQ(b193.size(), 46u);
    log_test::run_result r = run_log(0xB193, b193[0].payload);
    EXPECT_TRUE(contains(r.out, "subpacket_id = 25, version_ssmr = 18\n")) << r.out;
    EXPECT_TRUE(contains(r.out, "earfcn = 5780, rx_valid = 3, pci = 405, is_srv_cell = 1, srv_cell_idx = 0")) << r.out;
    EXPECT_TRUE(contains(r.out, "rsrp_rx0 = -96.50, rsrp_rx1 = -100.63, ")) << r.out;
    EXPECT_TRUE(contains(r.out, "rsrq_rx0 = -11.38, rsrq_rx1 = -10.94, ")) << r.out;
    EXPECT_TRUE(contains(r.out, "rssi_rx0 = -68.19, rssi_rx1 = -72.69, ")) << r.out;
    /* 8.9 dB prints as 8.99: the required digit-by-digit rounding takes the
     * tenths from the single-precision 8.9f * 10 (89.0) and the hundredths
     * from 8.9f * 100 (889.99994). */
    EXPECT_TRUE(contains(r.out, "snr_rx0 = 11.60, snr_rx1 = 8.99, ")) << r.out;
    ASSERT_EQ(r.records.size(), 1u);
    EXPECT_EQ(r.records[0].id, MODEM_STATS_DATA_ID_LTE_SRV_MEAS);
}

/* Version 3: PCI 185, EARFCN 5780/23780, 50 RBs, band 17, PLMN 310-410. */
TEST_F(CaptureTest, AttRrcServingCellInfoVersion3)
{
    std::vector<capture_log_packet> b0c2 = logs_of("att.mi2log", 0xB0C2);
    ASSERT_EQ(b0c2.size(), 2u);
    log_test::run_result r = run_log(0xB0C2, b0c2[0].payload);
    EXPECT_TRUE(contains(r.out, "version = 3, mcc = 310, mnc_num 3, mnc 410, ")) << r.out;
    EXPECT_TRUE(contains(r.out, ", pci 185\n")) << r.out;
    EXPECT_TRUE(contains(r.out, "freq_band_ind = 17, dl_earfcn = 5780, dl_bw 50, ul_earfcn 23780, ul_bw 50, "))
        << r.out;
    ASSERT_EQ(r.records.size(), 1u);
    EXPECT_EQ(r.records[0].id, MODEM_STATS_DATA_ID_LTE_RRC_SERVING_CELL_INFO);
    EXPECT_EQ(r.records[0].bytes.size(), 29u);
}

/* The first packet's five samples: 26-byte grants, padding 21 and 19
 * bytes, a long BSR with empty buffers in each, a power headroom of level
 * 18 in two of them. */
TEST_F(CaptureTest, AttMacUlTransportBlocks)
{
    std::vector<capture_log_packet> b064 = logs_of("att.mi2log", 0xB064);
    ASSERT_EQ(b064.size(), 86u);
    log_test::run_result r = run_log(0xB064, b064[0].payload);
    EXPECT_TRUE(contains(r.out, "LTE FSSR: [0][0], pad = 21, grant = 26, sfn_grant = 19.23, sfn_full = 0.00\n"))
        << r.out;
    EXPECT_TRUE(contains(r.out, "version = 1, phr_ind = 18, bsr_lcg3_avg = 0, bsr_lcg3_num = 20, bsr_lcg3_bytes = 0\n"))
        << r.out;
    ASSERT_EQ(r.records.size(), 1u);
    EXPECT_EQ(r.records[0].bytes, log_test::record().u8(1).u8(18).u8(0).u16(20).u32(0).u32(130).u32(101).bytes());
    for (size_t i = 0; i < b064.size(); i++) {
        r = run_log(0xB064, b064[i].payload);
        EXPECT_EQ(r.records.size(), 1u) << "packet " << i << "\n" << r.out;
        EXPECT_FALSE(contains(r.out, "error")) << r.out;
        EXPECT_FALSE(contains(r.out, "not support")) << r.out;
    }
}

/* The offline capture: short BSRs (level 27 and others), SDU sub-headers
 * with 7- and 15-bit lengths. */
TEST_F(CaptureTest, OfflineMacUlTransportBlocks)
{
    std::vector<capture_log_packet> b064 = logs_of("offline_log_example.mi2log", 0xB064);
    ASSERT_EQ(b064.size(), 3u);
    for (const capture_log_packet &p : b064) {
        log_test::run_result r = run_log(0xB064, p.payload);
        EXPECT_EQ(r.records.size(), 1u) << r.out;
        EXPECT_FALSE(contains(r.out, "error")) << r.out;
    }
    /* Sample 3 of the third packet: a 142-byte SDU (15-bit length). */
    log_test::run_result r = run_log(0xB064, b064[2].payload);
    EXPECT_TRUE(contains(r.out, "------ count_tb[3], subheaders = 3, hdr_bits_cnt = 40, hdr_bits_sum = 64\n")) << r.out;
}

/* The one RACH attempt of the capture is sub-packet version 2, which the
 * parser does not decode. */
TEST_F(CaptureTest, OfflineRachAttemptOfAnotherVersionIsRefused)
{
    std::vector<capture_log_packet> b062 = logs_of("offline_log_example.mi2log", 0xB062);
    ASSERT_EQ(b062.size(), 1u);
    log_test::run_result r = run_log(0xB062, b062[0].payload);
    EXPECT_TRUE(contains(r.out, "VERSION_NOT_SUPPORT, version(2), not_support_num(")) << r.out;
    EXPECT_TRUE(contains(r.out, "name(lte_mac_rach_attempt), id(0xb062)\n")) << r.out;
    EXPECT_TRUE(r.records.empty());
}

}  // namespace
