/* NR5G MAC and L2 log parsers: per code, a packet built to each accepted
 * version with known values (every printed line and the record bytes), the
 * same packet cut short, and an unsupported version. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log_test_util.h"
#include "modem_stats_log_parsers.h"

using namespace log_test;

namespace {

/* u32 version, u8 number of records, records from byte 8. */
packet nr_header(uint32_t version, uint32_t num_records)
{
    return packet().u32(0, version).u8(4, num_records);
}

/* Record 0: an uplink DCI 0_1 with its raw bytes (MCS 20, 273 RBs, and a
 * downlink MCS field that must be ignored), a downlink DCI 1_1 (MCS 27).
 * Record 1: an uplink DCI 0_0 (MCS 9, 12 RBs). */
packet b885(uint32_t version, uint32_t header_bytes, uint32_t count_bit, uint32_t dci_bytes)
{
    packet p = nr_header(version, 2);
    uint32_t at = 8;
    p.bits_at(at, count_bit, 4, 2);
    at += header_bytes;
    p.bits_at(at, 0, 4, 1).bits_at(at, 4, 1, 1).bits_at(at, 8, 5, 20).bits_at(at, 16, 9, 273).bits_at(at, 32, 5, 31);
    at += dci_bytes + 8;
    p.bits_at(at, 0, 4, 3).bits_at(at, 8, 5, 3).bits_at(at, 32, 5, 27);
    at += dci_bytes;
    p.bits_at(at, count_bit, 4, 1);
    at += header_bytes;
    p.bits_at(at, 0, 4, 0).bits_at(at, 8, 5, 9).bits_at(at, 16, 9, 12);
    return p.size(at + dci_bytes);
}

TEST(Nr5gMacTest, DciInfo)
{
    struct {
        uint32_t version, header, count_bit, dci;
    } layouts[] = {{0x20007, 4, 8, 12}, {0x2000A, 8, 32, 12}, {0x2000C, 8, 32, 16}};
    for (const auto &l : layouts) {
        expect_log(0xB885, b885(l.version, l.header, l.count_bit, l.dci),
                   fmt("version = %u, num_records = 2, mcs_dl = 27, mcs_ul = 9, rb_assi_num = 12\n", l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_MAC_DCI_INFO, packet().u32(l.version).u8(2).u8(27).u8(9).u16(12)}},
                   {4, "num_records", 0});
    }
    expect_refused(0xB885, nr_header(0x20008, 0), 0x20008);
}

struct b887_layout {
    uint32_t version, header, count_bit, status;
    uint32_t mod_width, layers_at, mimo_at;
};

/* Two records of 2 and 1 statuses; the last: 256QAM, MCS 27, RNTI type 1,
 * 2 layers, 2 receive paths. */
packet b887(const b887_layout &l)
{
    packet p = nr_header(l.version, 2);
    uint32_t at = 8;
    for (uint32_t r = 0; r < 2; r++) {
        p.bits_at(at, l.count_bit, 4, 2 - r);
        at += l.header;
        for (uint32_t s = 0; s < 2 - r; s++, at += l.status) {
            p.bits_at(at, 4, l.mod_width, r ? 3 : 1).bits_at(at, 8, 5, r ? 27 : 4).bits_at(at, 13, 3, r);
            p.bits_at(at, l.layers_at, 3, r ? 2 : 4).bits_at(at, l.mimo_at, 3, r ? 2 : 4);
        }
    }
    return p.size(at);
}

TEST(Nr5gMacTest, PdschStatusKeepsItsRecord)
{
    const b887_layout layouts[] = {
        {0x20004, 4, 16, 8, 3, 16, 19}, {0x20005, 4, 16, 12, 3, 16, 19}, {0x30002, 8, 32, 12, 4, 16, 20}};
    for (const b887_layout &l : layouts) {
        expect_log(0xB887, b887(l),
                   fmt("version = %u, num_records = 2, num_pdsch_status = 3, mod_type = 3, mcs = 27, "
                       "pdsch_rnti_type = 1, num_layers = 2\nsub_id = 0, num_layers = 2, num_mimo = 2, "
                       "mimo22_flag = 1\n",
                       l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATUS,
                     packet().u32(l.version).u8(3).u8(3).u8(27).u8(1).u8(2).u8(2).u8(1)}},
                   {4, "num_records", 0});
        /* The record stays with the parser until the next one replaces it. */
        const modem_stats_single_data_common_type *kept = modem_stats_b887_kept_record();
        ASSERT_NE(kept, nullptr);
        EXPECT_EQ(kept->data_id, MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATUS);
        EXPECT_EQ(kept->data_len, 11u);
    }
    expect_refused(0xB887, nr_header(0x20003, 0), 0x20003);
}

TEST(Nr5gMacTest, PdschStats)
{
    struct {
        uint32_t version, num_at, records_at, record_bytes, tb_at;
    } layouts[] = {{0x20002, 15, 28, 72, 48}, {0x30000, 16, 32, 80, 56}};
    for (const auto &l : layouts) {
        packet p = packet().u32(0, l.version).u8(l.num_at, 2);
        uint32_t r1 = l.records_at + l.record_bytes;
        p.u32(l.records_at + 8, 100).u32(l.records_at + 16, 3).u64(l.records_at + l.tb_at, 5000000000ull);
        p.u32(r1 + 8, 50).u32(r1 + 16, 1).u64(r1 + l.tb_at, 1000).size(r1 + l.record_bytes);
        expect_log(0xB888, p,
                   fmt("version = %u, num_records = 2, num_pdcp_decode = 150, num_crc_fail = 4, "
                       "tb_bytes = 5000001000\n",
                       l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATS,
                     packet().u32(l.version).u8(2).u32(150).u32(4).u64(5000001000ull)}},
                   {static_cast<int32_t>(l.num_at), "num_records", 0});
    }
    expect_refused(0xB888, packet().u32(0, 0x20001).size(8), 0x20001);
}

TEST(Nr5gMacTest, CsfReport)
{
    packet p = nr_header(0x20002, 1);
    p.bits_at(8, 24, 4, 2).bits_at(12, 0, 3, 1).bits_at(12, 3, 3, 0).bits_at(12, 8, 4, 4).bits_at(12, 12, 4, 7);
    p.bits_at(20, 0, 3, 2).bits_at(20, 3, 3, 1).bits_at(20, 8, 4, 4).bits_at(20, 12, 4, 11).size(28);
    expect_log(0xB8A7, p,
               "version = 131074, num_records = 1, metrics_ri = 1, metrics_cqi = 11, bitwidth_ri = 2, "
               "bitwidth_cqi = 4\n",
               {{MODEM_STATS_DATA_ID_NR5G_MAC_CSF_REPORT, packet().u32(0x20002).u8(1).u8(11).u8(2).u8(4)}},
               {4, "num_records", 0});
    expect_refused(0xB8A7, nr_header(0x20001, 1), 0x20001);
}

/* One record, two carriers: PUSCH -3 dBm and PUCCH (2 of them) 10 dBm; SRS
 * 5 dBm, PRACH 23 dBm and an unknown channel type 6. */
packet b884(uint32_t version, uint32_t carrier_header, uint32_t channel_bytes)
{
    packet p = nr_header(version, 1);
    p.bits_at(8, 24, 4, 2);
    uint32_t at = 12;
    const uint32_t channels[2][3][2] = {{{0, 0xFD}, {1, 10}, {9, 0}}, {{2, 5}, {3, 23}, {6, 99}}};
    for (uint32_t c = 0; c < 2; c++) {
        p.u8(at + 1, c ? 0x18 : 0x06).bits_at(at, 16, 4, c + 2);
        at += carrier_header;
        for (uint32_t i = 0; i < c + 2; i++, at += channel_bytes) {
            const uint32_t type = channels[c][i][0], power = channels[c][i][1];
            p.bits_at(at, 0, 3, type);
            if (type == 1)
                p.bits_at(at, 8, 4, 2).bits_at(at, 16, 8, power);
            else
                p.bits_at(at, 8, 8, power);
        }
    }
    return p.size(at);
}

TEST(Nr5gMacTest, UlPhysicalChannelPowerControl)
{
    struct {
        uint32_t version, carrier_header, channel;
    } layouts[] = {{0x10003, 4, 8}, {0x10005, 4, 12}, {0x30003, 8, 12}};
    for (const auto &l : layouts) {
        expect_log(0xB884, b884(l.version, l.carrier_header, l.channel),
                   fmt("version = %u, num_records = 1, num_carriers = 2, tx_power_pusch = -3, tx_power_pucch = 10, "
                       "tx_power_srs = 5, tx_power_prach = 23\n",
                       l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_POWER_CTRL,
                     packet().u32(l.version).u8(1).u8(2).u16(0xFFFD).u16(10).u16(5).u16(23)}},
                   {4, "num_records", 0});
    }
    expect_refused(0xB884, nr_header(0x10004, 0), 0x10004);
}

TEST(Nr5gMacTest, RachAttempt)
{
    /* 2.7: Msg1 and Msg2, the TC-RNTI and timing advance after 28 bytes of
     * Msg1.  3.5: Msg2 alone. */
    packet v27 = packet().u32(0, 0x20007).u8(21, 0).u8(23, 3).u16(28 + 28 + 6, 17921).u16(28 + 28 + 8, 12).size(80);
    packet v35 = packet().u32(0, 0x30005).u8(14, 1).u8(16, 2).u16(24 + 6, 300).u16(24 + 8, 31).size(80);
    expect_log(0xB88A, v27,
               "sub_id = 0, version = 131079, rach_msg_bitmask = 3, t_rnti = 17921, ta = 12, rach_result = 0\n",
               {{MODEM_STATS_DATA_ID_NR5G_MAC_RACH_ATTEMPT, packet().u32(0x20007).u8(3).u16(17921).u16(12).u8(0)}},
               {4, "rach_msg_bitmask", 0});
    expect_log(0xB88A, v35,
               "sub_id = 0, version = 196613, rach_msg_bitmask = 2, t_rnti = 300, ta = 31, rach_result = 1\n",
               {{MODEM_STATS_DATA_ID_NR5G_MAC_RACH_ATTEMPT, packet().u32(0x30005).u8(2).u16(300).u16(31).u8(1)}});
    EXPECT_EQ(run_log(0xB88A, packet(v27).u8(23, 1)).out,
              "sub_id = 0, version = 131079, rach_msg_bitmask = 1, t_rnti = 65535, ta = 65535, rach_result = 0\n");
    expect_refused(0xB88A, packet(v27).u32(0, 0x20006), 0x20006);
}

/* One record of two carriers: PUSCH (transmission mode 1) and two PUCCHs,
 * then SRS and PRACH. */
packet b883(uint32_t version, uint32_t pusch_bytes)
{
    packet p = packet().u32(0, version).u8(15, 1).u8(16 + 4, 2).bits_at(24, 6, 6, 0x06).bits_at(28 + 8, 0, 2, 1);
    uint32_t at = 28 + pusch_bytes;
    p.u8(at, 2).bits_at(at + 36, 6, 6, 0x18);
    return p.size(at + 36 + 4 + 20 + 8);
}

TEST(Nr5gMacTest, UlPhysicalChannelScheduleReport)
{
    for (uint32_t version : {0x2000Bu, 0x3000Fu}) {
        expect_log(
            0xB883, b883(version, version == 0x2000B ? 40 : 44),
            fmt("version = %u, num_records = 1, num_carrier = 2, phychan_bit_mask = 24, tx_mode = 1\n", version),
            {{MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_SCHED_REPORT, packet().u32(version).u8(1).u8(2).u8(24).u8(1)}},
            {4, "num_records", 0});
    }
    /* A channel bit whose data size nobody documents. */
    EXPECT_EQ(run_log(0xB883, b883(0x2000B, 40).bits_at(24, 6, 6, 0x01)).out, not_valid(1, 0xB883));
    expect_refused(0xB883, packet().u32(0, 0x20008).size(16), 0x20008);
}

TEST(Nr5gMacTest, NoRecordsCarryNothing)
{
    struct {
        uint16_t code;
        uint32_t version;
    } cases[] = {{0xB885, 0x20007}, {0xB887, 0x20004}, {0xB888, 0x20002},
                 {0xB8A7, 0x20002}, {0xB884, 0x10003}, {0xB883, 0x2000B}};
    for (const auto &c : cases) expect_log(c.code, packet().u32(0, c.version).size(32), not_valid(0, c.code), {});
}

/* TTI 0: a block with a short BSR, a long BSR (two indexes), a one-octet
 * multiple-entry PHR (type 2 of the other cell configured, two SCells) and
 * a C-RNTI, filling its grant; a block with a single PHR, 150 of 200 bytes
 * built.  TTI 1: a block whose long BSR overruns its two bytes, a block
 * with an unknown element. */
packet b872(uint32_t version, uint32_t tti_bytes, uint32_t tb_bytes)
{
    struct tb {
        uint32_t grant, built;
        std::vector<uint8_t> mce;
    };
    const tb ttis[2][2] = {
        {{100,
          100,
          {0x3D, 0x47, 0x3E, 0x03, 0x03, 100, 50, 0x38, 0x06, 0x00, 0x20, 0x40, 0x40, 0x00, 0x21, 0x3A, 0x12, 0x34}},
         {200, 150, {0x39, 0x10, 0x20}}},
        {{10, 10, {0x3E, 0x05}}, {0, 0, {0x05}}}};
    packet p = packet().u32(0, version).bits_at(4, 0, 4, 2).bits_at(4, 5, 1, 1);
    uint32_t at = 8;
    for (const auto &tti : ttis) {
        p.bits_at(at, 32, 4, 2);
        at += tti_bytes;
        for (const tb &b : tti) {
            p.u32(at + 4, b.grant).u32(at + 8, b.built).bits_at(at + 16, 0, 6, b.mce.size()).raw(at + tb_bytes, b.mce);
            at += tb_bytes + static_cast<uint32_t>(b.mce.size());
        }
    }
    return p.size(at);
}

TEST(Nr5gMacTest, L2UlTransportBlock)
{
    const std::string lines =
        "------ ShortBsr[0][0][0], bsr_idx_tmp = 7, bsr_idx_num = 1, bsr_idx_sum = 7, bit_num_tb = 16\n"
        "------ LongBsr[0][0][1], bsr_length = 3, bsr_idx_num = 3, bsr_idx_sum = 157, bit_num_tb = 56\n"
        "------ Mc1Phr[0][0][2], cxr = 6, bit_num_tb = 72\n"
        "------ Mc1Phr-Type2OtherCell[0][0][2], v_val = 0, bit_num_tb = 88\n"
        "------ Mc1Phr-Type1PCell[0][0][2], v_val = 1, bit_num_tb = 96\n"
        "------ Mc1Phr-Type1SCell[0][0][2], v_val = 1, bit_num_tb = 104\n"
        "------ Mc1Phr-Type1SCell[0][0][2], v_val = 0, bit_num_tb = 120\n"
        "------ CRnti[0][0][3], bit_num_tb = 144\n"
        "------ TB-End[0][0][4], mce_len = 18, mce_type = 58, bit_num_tb = 144, bit_sum_tb = 144\n"
        "NR5G FSSR: [0][0], grant = 100, build = 100, sfn_grant = 100.00, sfn_full = 100.00\n"
        "------ SinglePhr[0][1][0], bit_num_tb = 24\n"
        "------ TB-End[0][1][1], mce_len = 3, mce_type = 57, bit_num_tb = 24, bit_sum_tb = 168\n"
        "NR5G FSSR: [0][1], grant = 200, build = 150, sfn_grant = 75.00, sfn_full = 50.00\n"
        "------ TB-Overrun[1][0][0], bit_num_tb = 24, mce_bits = 16\n"
        "------ TB-End[1][0][0], mce_len = 2, mce_type = 62, bit_num_tb = 16, bit_sum_tb = 16\n"
        "NR5G FSSR: [1][0], grant = 10, build = 10, sfn_grant = 100.00, sfn_full = 66.67\n"
        "------ Unknown[1][1][0], mce_type = 5, bit_num_tb = 8\n"
        "------ TB-End[1][1][0], mce_len = 1, mce_type = 5, bit_num_tb = 8, bit_sum_tb = 24\n"
        "NR5G FSSR: [1][1], grant = 0, build = 0, sfn_grant = 0.00, sfn_full = 75.00\n";
    struct {
        uint32_t version, tti, tb;
    } layouts[] = {{4, 8, 20}, {0x20001, 8, 20}, {0x30003, 12, 24}};
    for (const auto &l : layouts) {
        expect_log(
            0xB872, b872(l.version, l.tti, l.tb),
            lines + fmt("version = %u, bsr_idx = 52, bsr_idx_num = 3, bsr_idx_sum = 157\n", l.version),
            {{MODEM_STATS_DATA_ID_NR5G_L2_UL_TB, packet().u32(l.version).u8(52).u16(3).u32(157).u32(310).u32(260)}},
            {2, "version", 2});
    }
    expect_refused(0xB872, packet().u32(0, 0x30002).size(16), 0x30002);
}

}  // namespace
