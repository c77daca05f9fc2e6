/* Real captures: the packets of the public sample captures whose codes and
 * versions the parsers accept decode to the physical values the public
 * decoders list for them.  The captures are read from ../shared/captures;
 * without that folder the tests skip. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "capture_files.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

class CaptureTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (capture_files_dir().empty())
            GTEST_SKIP() << "captures folder " RLK_CAPTURES_DIR " is absent: real-capture checks skipped";
    }
    /* The packets of `code` in a capture file, of which there are `count`. */
    static std::vector<capture_log_packet> logs_of(const std::string &file, uint16_t code, size_t count)
    {
        std::vector<capture_log_packet> all;
        EXPECT_TRUE(capture_read_logs(capture_files_dir() + "/" + file, &all)) << file;
        std::vector<capture_log_packet> logs = capture_logs_of(all, code);
        EXPECT_EQ(logs.size(), count) << file;
        return logs;
    }
    /* Packet `index` of them prints every one of `parts` and makes one
     * record of `id` (none for NONE) and `len` bytes, `bytes` when given. */
    static void expect_packet(const std::string &file, uint16_t code, size_t count, size_t index,
                              const std::vector<std::string> &parts, modem_stats_data_id_e_type id, size_t len,
                              const std::vector<uint8_t> &bytes = {})
    {
        SCOPED_TRACE(fmt("%s 0x%x [%zu]", file.c_str(), code, index));
        std::vector<capture_log_packet> logs = logs_of(file, code, count);
        ASSERT_GT(logs.size(), index);
        run_result r = run_log(code, logs[index].payload);
        for (const std::string &part : parts) EXPECT_NE(r.out.find(part), std::string::npos) << part << "\n" << r.out;
        ASSERT_EQ(r.records.size(), id == MODEM_STATS_DATA_ID_NONE ? 0u : 1u) << r.out;
        if (r.records.empty()) return;
        EXPECT_EQ(r.records[0].id, id);
        EXPECT_EQ(r.records[0].bytes.size(), len);
        if (!bytes.empty()) {
            EXPECT_EQ(r.records[0].bytes, bytes);
        }
    }
};

/* RSRP = raw/16 - 180 dBm, RSRQ = raw/16 - 30 dB, RSSI = raw/16 - 110 dBm,
 * SNR = raw/10 - 20 dB. */
TEST_F(CaptureTest, PacketsDecodeToThePublicValues)
{
    /* Sub-packet version 19, one cell: the primary cell, then the
     * secondary cell of the carrier at EARFCN 700. */
    expect_packet(
        "att.mi2log", 0xB193, 1091, 0,
        {"subpacket_id = 25, version_ssmr = 19\n",
         "earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0",
         "rsrp_rx0 = -112.94, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00", "rsrq_rx0 = -8.88, rsrq_rx1 = -9.25, ",
         "rssi_rx0 = -87.06, rssi_rx1 = -83.25, ", "snr_rx0 = 4.90, snr_rx1 = 5.30, ", "max_rssi = -83.25\n"},
        MODEM_STATS_DATA_ID_LTE_SRV_MEAS, 75);
    packet scell = packet().u32(19).u32(700).u16(185).u8(3);
    for (float f : {-107.0f, -7.19f, -82.81f, 9.1f, -109.88f, -8.44f, -84.44f, 7.6f}) scell.f32(f);
    for (int i = 0; i < 8; i++) scell.f32(65535.0f);
    expect_packet("att.mi2log", 0xB193, 1091, 1,
                  {"earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1",
                   "rsrp_rx0 = -107.00, rsrp_rx1 = -109.88, ", "snr_rx0 = 9.10, snr_rx1 = 7.60, "},
                  MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT, 75, scell);
    /* Sub-packet version 18 (offsets at odd bytes, 11-bit RSRP).  8.9 dB
     * prints as 8.99: the required digit-by-digit rounding takes the tenths
     * from the single-precision 8.9f * 10 (89.0) and the hundredths from
     * 8.9f * 100 (889.99994). */
    expect_packet("offline_log_example.mi2log", 0xB193, 46, 0,
                  {"subpacket_id = 25, version_ssmr = 18\n",
                   "earfcn = 5780, rx_valid = 3, pci = 405, is_srv_cell = 1, srv_cell_idx = 0",
                   "rsrp_rx0 = -96.50, rsrp_rx1 = -100.63, ", "rsrq_rx0 = -11.38, rsrq_rx1 = -10.94, ",
                   "rssi_rx0 = -68.19, rssi_rx1 = -72.69, ", "snr_rx0 = 11.60, snr_rx1 = 8.99, "},
                  MODEM_STATS_DATA_ID_LTE_SRV_MEAS, 75);
    /* Version 3: PCI 185, EARFCN 5780/23780, 50 RBs, band 17, PLMN 310-410. */
    expect_packet("att.mi2log", 0xB0C2, 2, 0,
                  {"version = 3, mcc = 310, mnc_num 3, mnc 410, ", ", pci 185\n",
                   "freq_band_ind = 17, dl_earfcn = 5780, dl_bw 50, ul_earfcn 23780, ul_bw 50, "},
                  MODEM_STATS_DATA_ID_LTE_RRC_SERVING_CELL_INFO, 29);
    /* Five samples: 26-byte grants, padding 21 and 19 bytes, a long BSR with
     * empty buffers in each, a power headroom of level 18 in two of them. */
    expect_packet("att.mi2log", 0xB064, 86, 0,
                  {"LTE FSSR: [0][0], pad = 21, grant = 26, sfn_grant = 19.23, sfn_full = 0.00\n",
                   "version = 1, phr_ind = 18, bsr_lcg3_avg = 0, bsr_lcg3_num = 20, bsr_lcg3_bytes = 0\n"},
                  MODEM_STATS_DATA_ID_LTE_MAC_UL_TB, 17, packet().u8(1).u8(18).u8(0).u16(20).u32(0).u32(130).u32(101));
    /* Sample 3 of the third packet: a 142-byte SDU (15-bit length). */
    expect_packet("offline_log_example.mi2log", 0xB064, 3, 2,
                  {"------ count_tb[3], subheaders = 3, hdr_bits_cnt = 40, hdr_bits_sum = 64\n"},
                  MODEM_STATS_DATA_ID_LTE_MAC_UL_TB, 17);
    /* The one RACH attempt is sub-packet version 2, which is refused. */
    expect_packet("offline_log_example.mi2log", 0xB062, 1, 0,
                  {"VERSION_NOT_SUPPORT, version(2), not_support_num(", "name(lte_mac_rach_attempt), id(0xb062)\n"},
                  MODEM_STATS_DATA_ID_NONE, 0);
}

/* Every packet of a code makes one record without a fault message. */
TEST_F(CaptureTest, EveryPacketMakesOneRecord)
{
    const struct {
        const char *file;
        uint16_t code;
        size_t count;
    } cases[] = {{"att.mi2log", 0xB193, 1091}, {"att.mi2log", 0xB064, 86}, {"offline_log_example.mi2log", 0xB064, 3}};
    for (const auto &c : cases) {
        std::vector<capture_log_packet> logs = logs_of(c.file, c.code, c.count);
        for (size_t i = 0; i < logs.size(); i++) {
            run_result r = run_log(c.code, logs[i].payload);
            ASSERT_EQ(r.records.size(), 1u) << c.file << " packet " << i << "\n" << r.out;
            EXPECT_TRUE(c.code == 0xB064 || r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS ||
                        r.records[0].id == MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT);
            for (const char *fault : {"not enough", "error", "not support"})
                EXPECT_EQ(r.out.find(fault), std::string::npos) << c.file << " packet " << i << "\n" << r.out;
        }
    }
}

}  // namespace
