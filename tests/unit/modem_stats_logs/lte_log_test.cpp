/* LTE log parsers other than 0xB193: per code, a packet built to each
 * accepted version with known values (every printed line and the record
 * bytes), the same packet cut short, and an unsupported version. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log_test_util.h"

using namespace log_test;

namespace {

/* Three records: PUCCH, PUSCH, and a second PUSCH whose values must not
 * replace the first one's.  Field offsets count from b, the bit after
 * chan_type; `rb_width` differs by version. */
packet b16d(int version, uint32_t record_bits, const uint32_t at[5], uint32_t rb_width)
{
    packet p = packet().u8(0, version).u8(3, 3);
    const uint32_t pusch_tx[3] = {0, 20, 99};
    for (uint32_t r = 0; r < 3; r++) {
        uint32_t rec = 32 + r * record_bits, b = rec + 33;
        p.bits(rec + 32, 1, r != 0);
        if (version == 49) p.bits(b + 7, 1, 1);
        if (r == 0) {
            p.bits(b + at[0], 8, 23);
        } else {
            p.bits(b + at[1], 8, pusch_tx[r]).bits(b + at[2], rb_width, r == 1 ? 273 % (1u << rb_width) : 1);
            p.bits(b + at[3], 5, 17).bits(b + at[4], 3, 2);
        }
    }
    return p.size(4 + 3 * record_bits / 8);
}

TEST(LteLogTest, TransmitPower)
{
    const uint32_t v48[5] = {14, 223, 243, 292, 311};
    const uint32_t v49[5] = {15, 223, 247, 295, 319};
    const char *line =
        "version = %d, num = 3, pucch_tx_power 23, pusch_num_res_blocks = %d, pusch_modulation_type = 2, "
        "pusch_tx_power = 20, pusch_mcs = 17\n";
    /* 273 needs 9 bits: version 48's 7-bit field keeps 273 mod 128. */
    expect_log(0xB16D, b16d(48, 416, v48, 7), fmt(line, 48, 17),
               {{MODEM_STATS_DATA_ID_LTE_TX_POWER, packet().u8(48).u32(23).u32(20).u8(2).u16(17).u16(17)}},
               {3, "num", 0});
    expect_log(0xB16D, b16d(49, 448, v49, 9), fmt(line, 49, 273),
               {{MODEM_STATS_DATA_ID_LTE_TX_POWER, packet().u8(49).u32(23).u32(20).u8(2).u16(273).u16(17)}},
               {0, "version", 0});
    expect_log(0xB16D, packet().u8(0, 48).size(8),
               "version = 48, num = 0, pucch_tx_power 255, pusch_num_res_blocks = 65535, "
               "pusch_modulation_type = 255, pusch_tx_power = 255, pusch_mcs = 65535\n",
               {});
    expect_refused(0xB16D, packet().u8(0, 50).size(8), 50);
}

TEST(LteLogTest, PuschCsfAndReceiveAgc)
{
    packet csf = packet().u8(0, 163).bits(36, 2, 1).bits(47, 4, 12).bits(51, 4, 9).size(40);
    expect_log(0xB14E, csf, "version = 163, rank_idx = 1, wideband_cqi_cw0 = 12\n",
               {{MODEM_STATS_DATA_ID_LTE_PUSCH_CSF, packet().u8(163).u8(1).u8(12).u8(9)}}, {0, "version", 0});
    expect_refused(0xB14E, packet(csf).u8(0, 42), 42);

    packet agc = packet().u8(0, 162).u8(1, 2).bits_at(4, 0, 4, 1).bits_at(4, 16, 12, 1000);
    agc.bits_at(12, 0, 4, 2).bits_at(12, 16, 12, 784).bits_at(12, 28, 12, 800).bits_at(12, 40, 12, 1024);
    agc.bits_at(12, 52, 12, 1026);
    expect_log(0xB111, agc,
               "version = 162, num_records = 2, rssi0_i = 784, rssi1_i = 800, rssi2_i = 1024, rssi3_i = 1026\n"
               "rssi0 = -60.00, rssi1 = -56.00, rssi2 = 0.00, rssi3 = 0.50\n",
               {{MODEM_STATS_DATA_ID_LTE_LL1_RX_AGC, packet().u8(162).u8(2).f32(-60).f32(-56).f32(0).f32(0.5f)}},
               {1, "num_records", 0});
    expect_refused(0xB111, packet(agc).u8(0, 21), 21);
}

TEST(LteLogTest, PowerControl)
{
    /* Two 12-byte records; the second, with a negative power, is reported. */
    packet pusch = packet().u8(0, 48).u8(3, 2).bits_at(4, 17, 8, 10).bits_at(4, 54, 8, 90);
    pusch.bits_at(16, 17, 8, 0xFB).bits_at(16, 54, 8, 120);
    expect_log(0xB16E, pusch, "version = 48, num_records = 2, pusch_tx_power -5, dl_path_loss 120\n",
               {{MODEM_STATS_DATA_ID_LTE_PUSCH_POWER_CTRL, packet().u8(48).u8(2).u8(0xFB).u8(120)}},
               {3, "num_records", 0});
    packet pucch = packet().u8(0, 49).u8(3, 1).bits_at(4, 14, 8, 7).bits_at(4, 43, 8, 101);
    expect_log(0xB16F, pucch, "version = 49, num_records = 1, pucch_tx_power 7, dl_path_loss 101\n",
               {{MODEM_STATS_DATA_ID_LTE_PUCCH_POWER_CTRL, packet().u8(49).u8(1).u8(7).u8(101)}},
               {3, "num_records", 0});
    expect_refused(0xB16E, packet(pusch).u8(0, 25), 25);
    expect_refused(0xB16F, packet(pucch).u8(0, 24), 24);
    EXPECT_EQ(run_log(0xB16E, packet().u8(0, 48).size(8)).out, not_valid(0, 0xB16E));
}

/* Two records: two TBs (C-RNTI pass 1000 bytes, C-RNTI fail 500) with two
 * layers, then one SI-RNTI TB of 300 bytes with one layer. */
packet b173(int version, uint32_t record_bytes, uint32_t slot_bytes, uint32_t size_at)
{
    packet p = packet().u8(0, version).u8(1, 2);
    struct tb {
        uint32_t crc, rnti, bytes, mcs, rb, mod;
    };
    const tb tbs[3] = {{1, 0, 1000, 20, 50, 6}, {0, 0, 500, 21, 40, 4}, {1, 5, 300, 5, 10, 2}};
    for (uint32_t r = 0, t = 0; r < 2; r++) {
        uint32_t rec = 4 + r * record_bytes;
        p.u8(rec + 3, 2 - r).u8(rec + 4, 2 - r).bits_at(rec + 5, 0, 3, r);
        for (uint32_t s = 0; s < 2 - r; s++, t++) {
            uint32_t slot = rec + 12 + s * slot_bytes, at = slot + size_at;
            p.bits_at(slot, 7, 1, tbs[t].crc).bits_at(slot, 8, 4, tbs[t].rnti).u16(at, tbs[t].bytes);
            p.u8(at + 2, tbs[t].mcs).u8(at + 3, tbs[t].rb).u8(at + 4, tbs[t].mod);
        }
    }
    return p.size(4 + 2 * record_bytes);
}

TEST(LteLogTest, PdschStatIndication)
{
    const char *lines =
        "version = %d, num_records = 2, pdsch_mcs = 5, pdsch_rb = 10, pdsch_mod_type = 2, "
        "pdsch_rnti_type = 5, num_layers = 1\n"
        "tb_bytes = 1800, num_layers_crnti 2, tb_bytes_crnti 1000, crc_result 1\n";
    for (int v : {48, 49}) {
        expect_log(0xB173, v == 48 ? b173(48, 40, 12, 4) : b173(49, 48, 16, 6), fmt(lines, v),
                   {{MODEM_STATS_DATA_ID_LTE_PDSCH_STAT_IND,
                     packet().u8(v).u8(2).u8(5).u8(10).u8(2).u8(5).u8(1).u8(1).u32(1800).u8(2).u64(1000)}},
                   {1, "num_records", 0});
    }
    /* Three transport blocks cannot fit the two slots. */
    packet three = b173(48, 40, 12, 4).u8(8, 3);
    EXPECT_EQ(run_log(0xB173, three).out, not_valid(3, 0xB173));
    expect_refused(0xB173, packet(three).u8(0, 16), 16);
}

TEST(LteLogTest, RrcServingCellInfo)
{
    packet p;
    p.u8(0, 3).u16(1, 405).u32(3, 66486).u32(7, 132022).u8(11, 100).u8(12, 75).u32(13, 0x88a4d0f).u16(17, 34624);
    p.u32(19, 66).u16(23, 310).u8(25, 3).u16(26, 260).u8(28, 1);
    packet r;
    r.u8(3).u16(405).u32(66486).u32(132022).u8(100).u8(75).u32(0x88a4d0f).u16(34624).u32(66).u16(310).u8(3);
    r.u16(260).u8(1);
    expect_log(0xB0C2, p,
               "version = 3, mcc = 310, mnc_num 3, mnc 260, tac 34624, cgi 143281423, pci 405\n"
               "freq_band_ind = 66, dl_earfcn = 66486, dl_bw 100, ul_earfcn 132022, ul_bw 75, allow_access 1\n",
               {{MODEM_STATS_DATA_ID_LTE_RRC_SERVING_CELL_INFO, r}}, {27, "mnc", 1});
    expect_refused(0xB0C2, packet(p).u8(0, 2), 2);
}

TEST(LteLogTest, MacRachAttempt)
{
    packet p = packet().u8(0, 1).u8(1, 1).u8(4, 6).u8(5, 49).u16(6, 48).u8(11, 0xFF);
    const std::string head = "sub_id = 0, version = 1, num_records = 1, version_sub = 49, rach_result = ";
    expect_log(0xB062, p, head + "-1\n", {{MODEM_STATS_DATA_ID_LTE_MAC_RACH_ATTEMPT, packet().u8(1).u8(49).u8(0xFF)}},
               {11, "rach_result", 0});
    expect_log(0xB062, packet(p).u8(11, 0), head + "0\nrach is success, do nothing\n", {});
    EXPECT_EQ(run_log(0xB062, packet(p).u8(4, 7)).out, not_valid(7, 0xB062, "sub_packet_id"));
    expect_refused(0xB062, packet(p).u8(5, 50), 50, "lte_mac_rach_attempt");
    expect_refused(0xB062, packet(p).u8(0, 2), 2);
}

/* Sample 0: short BSR (LCG 1, level 10), C-RNTI, extended PHR (C1 and C3,
 * P = 1, V = 0, PH 33) with a one-octet length, an SDU with a 15-bit
 * length (150) and a last SDU; a full 100-byte grant.  Sample 1: long BSR
 * (levels 1, 2, 3 and the unbounded 63), truncated BSR (LCG 3, level 5),
 * padding; 25 of 50 bytes padded. */
const std::vector<uint8_t> B064_HDR0 = {0x3D, 0x3B, 0x39, 0x02, 0x21, 0x80, 0x96, 0x03, 0x4A, 0x12, 0x34, 0x0A, 0xA1};
const std::vector<uint8_t> B064_HDR1 = {0x3E, 0x3C, 0x1F, 0x04, 0x20, 0xFF, 0xC5};

/* Samples of the given headers, grants 100 and 50 with 0 and 25 padded. */
packet b064(int version_sub, const std::vector<std::vector<uint8_t>> &headers)
{
    const uint16_t grant[] = {100, 50}, pad[] = {0, 25};
    uint32_t head = version_sub == 1 ? 12 : 14;
    packet p = packet().u8(0, 1).u8(1, 1).u8(4, 8).u8(5, version_sub).u8(8, headers.size());
    uint32_t at = 9;
    for (size_t i = 0; i < headers.size(); i++) {
        p.u16(at + head - 8, grant[i]).u16(at + head - 5, pad[i]).u8(at + head - 1, headers[i].size());
        p.raw(at + head, headers[i]);
        at += head + static_cast<uint32_t>(headers[i].size());
    }
    return p.u16(6, at - 4);
}

TEST(LteLogTest, MacUlTransportBlockEverySubPacketVersion)
{
    const std::string lines =
        "------ count_tb[0], subheaders = 5, hdr_bits_cnt = 64, hdr_bits_sum = 104\n"
        "------ count_tb_payloads[0], hdr_bits_cnt = 104, hdr_bits_sum = 104\n"
        "------ PHR_IND and BSR_LCG[0], phr_ind = 33, bsr_lcg3_num = 1, bsr_lcg3_sum = 10\n"
        "LTE FSSR: [0][0], pad = 0, grant = 100, sfn_grant = 100.00, sfn_full = 100.00\n"
        "------ count_tb[1], subheaders = 3, hdr_bits_cnt = 24, hdr_bits_sum = 56\n"
        "error, bsr_lcg3[1][3] = 63, bsr_lcg3_num = 4, bsr_lcg3_sum = 16\n"
        "------ count_tb_payloads[1], hdr_bits_cnt = 56, hdr_bits_sum = 56\n"
        "LTE FSSR: [0][1], pad = 25, grant = 50, sfn_grant = 50.00, sfn_full = 50.00\n";
    for (int v : {1, 2, 3, 5, 8}) {
        expect_log(
            0xB064, b064(v, {B064_HDR0, B064_HDR1}),
            lines + fmt("version = %d, phr_ind = 33, bsr_lcg3_avg = 4, bsr_lcg3_num = 5, bsr_lcg3_bytes = 17\n", v),
            {{MODEM_STATS_DATA_ID_LTE_MAC_UL_TB, packet().u8(v).u8(33).u8(4).u16(5).u32(17).u32(150).u32(25)}},
            {8, "num_samples", 0});
    }
}

TEST(LteLogTest, MacUlTransportBlockFaults)
{
    /* A sub-header says another follows, but the header ends. */
    expect_stop(run_log(0xB064, b064(2, {{0x3D}})), "count_tb[0] error, hdr_bits_cnt(16) > hdr_bits_sum(8)\n");
    /* The short BSR's octet is missing. */
    expect_stop(run_log(0xB064, b064(2, {{0x1D}})), "count_tb_payloads[0] error, hdr_bits_cnt(16) > hdr_bits_sum(8)\n");
    /* LCID 11 is reserved in the uplink. */
    expect_stop(run_log(0xB064, b064(2, {{0x0B}})), "not support lcid_data_array[0] = 11\n");
    packet p = b064(2, {B064_HDR0});
    EXPECT_EQ(run_log(0xB064, packet(p).u8(4, 9)).out, "sub_pcaket_id should be 8\n");
    expect_refused(0xB064, packet(p).u8(5, 4), 4, "LTE MAC V1 UL TB SubPkt Version Union");
    expect_refused(0xB064, packet(p).u8(0, 2), 2);
}

}  // namespace
