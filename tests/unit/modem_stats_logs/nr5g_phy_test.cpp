/* NR5G LL1, ML1 and RRC log parsers: per code, a packet built to each
 * accepted version with known values (every printed line and the record
 * bytes), the same packet cut short, and an unsupported version. */
#include <gtest/gtest.h>

#include <string>

#include "log_test_util.h"

using namespace log_test;

namespace {

/* ---- LL1 -------------------------------------------------------------------- */

TEST(Nr5gPhyTest, ReceiveAgc)
{
    packet p = packet().u32(0, 0x20000).u8(4, 1).u8(5, 4).bits_at(12, 0, 13, 3616).bits_at(12, 16, 13, 3600);
    p.bits_at(16, 0, 13, 4096).bits_at(16, 16, 13, 4100).size(24);
    const std::string head = "version = 131072, version_agc_sub = 1, ";
    expect_log(0xB8C9, p,
               head +
                   "rssi0_i = 3616, rssi1_i = 3600, rssi2_i = 4096, rssi3_i = 4100\n"
                   "rssi0 = -60.00, rssi1 = -62.00, rssi2 = 0.00, rssi3 = 0.50\n",
               {{MODEM_STATS_DATA_ID_NR5G_LL1_RX_AGC, packet().u32(0x20000).f32(-60).f32(-62).f32(0).f32(0.5f)}},
               {5, "code", 0});
    EXPECT_EQ(run_log(0xB8C9, packet(p).u8(5, 3)).out, head + "code = 3, only support code - 4\n");
    expect_log(0xB8C9, packet().u32(0, 0x20000).u8(4, 1).u8(5, 4).size(24),
               head + "rssi0_i = 0, rssi1_i = 0, rssi2_i = 0, rssi3_i = 0\nrssi is invalid, do nothing\n", {});
    expect_refused(0xB8C9, packet(p).u8(4, 2), 2, "ControlAgcSubPacket");
    expect_refused(0xB8C9, packet(p).u32(0, 0x10000), 0x10000);
}

TEST(Nr5gPhyTest, MacTransmitPower)
{
    struct entry {
        uint32_t type, tx, path_loss, mtpl;
    };
    /* The second PUSCH entry replaces the first. */
    const entry entries[] = {{0, 23, 100, 23}, {1, 0xFC, 101, 20}, {2, 5, 90, 22}, {3, 10, 80, 23}, {0, 12, 99, 21}};
    struct {
        uint32_t version, entry_bytes, type_width, tx_at;
    } layouts[] = {{0x10000, 4, 2, 8}, {0x10001, 8, 3, 32}};
    for (const auto &l : layouts) {
        packet p = packet().u32(0, l.version).u16(4, 1).u8(6, 2).u8(7, 5);
        for (uint32_t i = 0; i < 5; i++) {
            uint32_t at = 8 + i * l.entry_bytes;
            p.bits_at(at, 0, l.type_width, entries[i].type).bits_at(at, l.tx_at, 8, entries[i].tx);
            p.bits_at(at, l.tx_at + 8, 8, entries[i].path_loss).bits_at(at, l.tx_at + 16, 8, entries[i].mtpl);
        }
        packet r;
        r.u32(l.version).u8(2).u8(5).u16(12).u16(99).u16(21).u16(0xFFFC).u16(101).u16(20).u16(5).u16(90).u16(22);
        r.u16(10).u16(80).u16(23);
        expect_log(0xB8D2, p,
                   fmt("version = %u, version_power = 2, loop_num = 5, pusch_tx = 12, pusch_path_loss = 99, "
                       "pusch_mtpl = 21\npucch_tx = -4, pucch_path_loss = 101, pucch_mtpl = 20, srs_tx = 5, "
                       "srs_path_loss = 90, srs_mtpl = 22\nprach_tx = 10, prach_path_loss = 80, prach_mtpl = 23\n",
                       l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_LL1_MAC_TX_POWER, r}}, {6, "POWER INFO version_power", 0});
    }
    EXPECT_EQ(run_log(0xB8D2, packet().u32(0, 0x10000).u16(4, 2).size(8)).out,
              "version = 65536, tx info not required, do nothing\n");
    expect_refused(0xB8D2, packet().u32(0, 0x10002).size(8), 0x10002);
}

TEST(Nr5gPhyTest, ServingSnrAndFtl)
{
    /* 10*log10(raw/1024): 0 dB, 3.01 dB, absent, 10 dB. */
    const uint32_t raw[4] = {1024, 2048, 0, 10240};
    auto rec = [](uint32_t version) { return packet().u32(version).f32(0).f32(3.01f).f32(65535.0f).f32(10); };
    packet snr, ftl;
    snr.u32(0, 0x20001);
    ftl.u32(0, 7);
    for (uint32_t i = 0; i < 4; i++) {
        snr.u32(8 + 4 * i, raw[i]);
        ftl.u32(76 + 4 * i, raw[i]);
    }
    expect_log(0xB8D8, snr,
               "version = 131073, snr0 = 1024, snr1 = 2048, snr2 = 0, snr3 = 10240\n"
               "snr0_f = 0.00, snr1_f = 3.01, snr2_f = 65535.00, snr3_f = 10.00\n",
               {{MODEM_STATS_DATA_ID_NR5G_LL1_SRV_SNR, rec(0x20001)}}, {9, "snr0", 1});
    expect_log(0xB8DD, ftl, "version = 7, snr0 = 0.00, snr1 = 3.01, snr2 = 65535.00, snr3 = 10.00\n",
               {{MODEM_STATS_DATA_ID_NR5G_LL1_SRV_FTL, rec(7)}}, {77, "snr0", 1});
    expect_refused(0xB8D8, packet(snr).u32(0, 0x20000), 0x20000);
    expect_refused(0xB8DD, packet(ftl).u32(0, 6), 6);
}

/* ---- ML1 -------------------------------------------------------------------- */

TEST(Nr5gPhyTest, ServingBeam)
{
    packet p;
    p.u32(0, 0x10002).u32(20, static_cast<uint32_t>(-12800)).u32(24, static_cast<uint32_t>(-1280)).size(40);
    expect_log(0xB975, p, "version = 65538, rsrp_i = -12800, rsrq_i = -1280, rsrp = -100.00, rsrq = -10.00\n",
               {{MODEM_STATS_DATA_ID_NR5G_ML1_SRV_BEAM, packet().u32(0x10002).f32(-100).f32(-10)}}, {2, "version", 2});
    /* The public 2.1 layout puts the values elsewhere: refused. */
    expect_refused(0xB975, packet(p).u32(0, 0x20001), 0x20001);
}

struct b97f_layout {
    uint32_t version, layers_at, carriers_at, carrier_bytes, beam_bytes;
};

/* Three carriers: cc 0 with a neighbour cell and the serving cell (two
 * beams), cc 3 (no record) and cc 1 without cells.  Carrier offsets: up to
 * 2.10 num_cells @4, cc_id @5 (the serving cell index) and the serving
 * RSRP @12/@16; 3.0 (40 bytes) cc_id @4, num_cells @5, serving cell index
 * @8 and Rx 0..3 serving RSRP @12..@24, of which Rx 2/3 are read: the
 * fields the parser must not read hold other values. */
packet b97f(const b97f_layout &l)
{
    const bool v3 = l.carrier_bytes == 40;
    const uint32_t num_cells_at = v3 ? 5 : 4, cc_id_at = v3 ? 4 : 5, rsrp_at = v3 ? 20 : 12;
    packet p = packet().u32(0, l.version).u8(l.layers_at, 3);
    uint32_t at = l.carriers_at;
    auto s32 = [](int32_t v) { return static_cast<uint32_t>(v); };
    auto carrier = [&](uint32_t num_cells, uint32_t cc_id, uint32_t pci, int32_t rsrp2, int32_t rsrp3) {
        p.u8(at + num_cells_at, num_cells).u8(at + cc_id_at, cc_id).u16(at + 6, pci);
        p.u32(at + rsrp_at, s32(rsrp2)).u32(at + rsrp_at + 4, s32(rsrp3));
        if (v3) p.u8(at + 8, 7).u32(at + 12, s32(-5000)).u32(at + 16, s32(-5100)).u16(at + 28, 0xFFFF);
        at += l.carrier_bytes;
    };
    carrier(2, 0, 200, -12544, -12416);
    struct cell {
        uint32_t pci, beams;
        int32_t rsrq, rsrp[2][2];
    };
    const cell cells[2] = {{100, 1, -1500, {{-14000, -14100}, {0, 0}}},
                           {200, 2, -1280, {{-12800, -12672}, {-13000, -13100}}}};
    for (const cell &c : cells) {
        p.u16(at, c.pci).bits_at(at + 4, 0, 4, c.beams).u32(at + 12, s32(c.rsrq));
        at += 16;
        for (uint32_t b = 0; b < c.beams; b++, at += l.beam_bytes)
            p.u32(at + 20, s32(c.rsrp[b][0])).u32(at + 24, s32(c.rsrp[b][1]));
    }
    carrier(0, 3, 0, 0, 0);
    carrier(0, 1, 5, -11520, -11648);
    return p.size(at);
}

TEST(Nr5gPhyTest, MeasurementDatabaseUpdate)
{
    const b97f_layout layouts[] = {{0x20003, 4, 8, 32, 60},  {0x20006, 4, 8, 32, 44},  {0x20007, 4, 16, 32, 44},
                                   {0x20008, 4, 16, 32, 44}, {0x20009, 8, 20, 32, 44}, {0x2000A, 8, 20, 32, 84},
                                   {0x30000, 8, 20, 40, 84}};
    const std::string lines =
        "layer[0]: cc_id = 0, num_cells = 2, srv_pci = 200, rsrp_i2 = -12544, rsrp_i3 = -12416\n"
        "cell[0][0]: pci_1 = 100, num_beams = 1, rsrq_i = -1500\n"
        "beam[0][0][0]: rsrp_i0 = -14000, rsrp_i1 = -14100\n"
        "cell[0][1]: pci_1 = 200, num_beams = 2, rsrq_i = -1280\n"
        "beam[0][1][0]: rsrp_i0 = -12800, rsrp_i1 = -12672\n"
        "beam[0][1][1]: rsrp_i0 = -13000, rsrp_i1 = -13100\n"
        "layer[1]: cc_id = 3, num_cells = 0, srv_pci = 0, rsrp_i2 = 0, rsrp_i3 = 0\n"
        "layer[2]: cc_id = 1, num_cells = 0, srv_pci = 5, rsrp_i2 = -11520, rsrp_i3 = -11648\n"
        "pk[0]: rsrp0 = -100.00, rsrp1 = -99.00, rsrp2 = -98.00, rsrp3 = -97.00, rsrq = -10.00\n"
        "pk[1]: rsrp0 = 65535.00, rsrp1 = 65535.00, rsrp2 = -90.00, rsrp3 = -91.00, rsrq = 65535.00\n";
    for (const b97f_layout &l : layouts) {
        expect_log(
            0xB97F, b97f(l), fmt("version = %u, num_layers = 3\n", l.version) + lines,
            {{MODEM_STATS_DATA_ID_NR5G_MEAS_PCC, packet().u32(l.version).f32(-100).f32(-99).f32(-98).f32(-97).f32(-10)},
             {MODEM_STATS_DATA_ID_NR5G_MEAS_SCC1,
              packet().u32(l.version).f32(65535).f32(65535).f32(-90).f32(-91).f32(65535)}},
            {static_cast<int32_t>(l.layers_at), "num_layers", 0});
    }
    expect_refused(0xB97F, packet().u32(0, 0x20005).size(8), 0x20005);
    /* Counts past their bounds stop the packet. */
    const b97f_layout l = layouts[2], l3 = layouts[6];
    expect_stop(run_log(0xB97F, b97f(l).u8(4, 9)), not_valid(9, 0xB97F, "b97f num_layers"));
    expect_stop(run_log(0xB97F, b97f(l).u8(16 + 5, 16)), not_valid(16, 0xB97F, "b97f cc_id"));
    expect_stop(run_log(0xB97F, b97f(l).u8(16 + 4, 33)), not_valid(33, 0xB97F, "b97f num_cells"));
    expect_stop(run_log(0xB97F, b97f(l).bits_at(48 + 4, 0, 4, 9)), not_valid(9, 0xB97F, "b97f num_beams"));
    expect_stop(run_log(0xB97F, b97f(l3).u8(20 + 4, 16)), not_valid(16, 0xB97F, "b97f cc_id"));
    expect_stop(run_log(0xB97F, b97f(l3).u8(20 + 5, 33)), not_valid(33, 0xB97F, "b97f num_cells"));
}

TEST(Nr5gPhyTest, FlowControlAndAntennaSwitch)
{
    packet fc;
    fc.u32(0, 0x10001).u8(4, 1).u8(5, 2).u8(6, 2).u8(8, 1).u8(9, 3).u8(10, 4).u8(12, 2).u8(13, 5).u8(14, 6).size(16);
    expect_log(0xB981, fc,
               "version = 65537, state_last = 1, state_current = 2, num_action = 2, action_type = 2, "
               "level_last = 5, level_current = 6\n",
               {{MODEM_STATS_DATA_ID_NR5G_ML1_FC_INFO, packet().u32(0x10001).u8(1).u8(2).u8(2).u8(2).u8(5).u8(6)}},
               {12, "action_type", 0});
    expect_refused(0xB981, packet(fc).u32(0, 0x10000), 0x10000);

    packet asdiv, r;
    asdiv.u32(0, 0x20000).u8(4, 2).size(18);
    r.u32(0x20000);
    for (uint32_t i = 0; i < 12; i++) {
        asdiv.bits_at(8, 4 * i, 4, i + 1);
        r.u8(i + 1);
    }
    expect_log(0xB98F, asdiv,
               "version = 131072, ant_rx_0_old = 1, ant_rx_0_new = 2, ant_rx_1_old = 3, ant_rx_1_new = 4, "
               "ant_rx_2_old = 5, ant_rx_2_new = 6\nant_rx_3_old = 7, ant_rx_3_new = 8, ant_tx_0_old = 9, "
               "ant_tx_0_new = 10, ant_tx_1_old = 11, ant_tx_1_new = 12\n",
               {{MODEM_STATS_DATA_ID_NR5G_ML1_ASDIV, r}}, {4, "num_cc", 0});
    expect_refused(0xB98F, packet(asdiv).u32(0, 0x10000), 0x10000);
}

/* ---- RRC -------------------------------------------------------------------- */

TEST(Nr5gPhyTest, RrcServingCellInfo)
{
    struct {
        uint32_t version, block_at;
        bool cgi;
    } layouts[] = {{0x4, 4, false}, {0x30000, 4, true}, {0x30002, 7, true}, {0x30003, 7, true}};
    for (const auto &l : layouts) {
        packet p = packet().u32(0, l.version).u16(l.block_at, 500);
        uint32_t at = l.block_at + 2 + (l.cgi ? 8 : 0);
        p.u32(at, 632448).u32(at + 4, 632449).u16(at + 8, 100).u16(at + 10, 90).u64(at + 12, 0x123456789ull);
        p.u16(at + 20, 310).u8(at + 22, 3).u16(at + 23, 260).u8(at + 25, 1).u32(at + 26, 43981).u16(at + 30, 77);
        packet r;
        r.u32(l.version).u16(500).u32(632448).u32(632449).u16(100).u16(90).u64(0x123456789ull).u16(310).u8(3);
        r.u16(260).u8(1).u32(43981).u16(77);
        expect_log(0xB823, p,
                   fmt("version = %u, pci = 500, dl_arfcn = 632448, ul_arfcn = 632449, dl_bw = 100, ul_bw = 90\n"
                       "cell_id = 4886718345, mcc = 310, mnc_digits = 3, mnc = 260, allowed_access = 1, "
                       "tac = 43981, band = 77\n",
                       l.version),
                   {{MODEM_STATS_DATA_ID_NR5G_RRC_SERVING_CELL_INFO, r}},
                   {static_cast<int32_t>(l.block_at + 1), "pci", 1});
    }
    expect_refused(0xB823, packet().u32(0, 0x30001).size(8), 0x30001);
}

TEST(Nr5gPhyTest, RrcConfigurationInfo)
{
    struct {
        uint32_t version, state_at, counts_at, lists_at, cc_bytes, band_at;
        bool nrdc;
    } layouts[] = {{0x8, 4, 58, 61, 18, 11, false},
                   {0xA, 4, 58, 61, 22, 15, false},
                   {0x20000, 4, 58, 61, 22, 15, false},
                   {0x30001, 12, 66, 71, 22, 15, true},
                   {0x30003, 12, 66, 71, 23, 15, true}};
    struct cc {
        uint32_t pci, arfcn, band, type, bw;
    };
    const cc carriers[2] = {{500, 632448, 78, 1, 12}, {600, 2079165, 257, 2, 13}};
    for (const auto &l : layouts) {
        uint32_t n = l.nrdc ? 2 : 1;
        packet p = packet().u32(0, l.version).u8(l.state_at, 7).u8(l.state_at + 2, 2);
        for (uint32_t i = 0; i < (l.nrdc ? 5u : 3u); i++) p.u8(l.counts_at + i, 1);
        uint32_t at = l.lists_at + 4 * n;
        std::string lines;
        for (uint32_t c = 0; c < n; c++, at += l.cc_bytes) {
            const cc &k = carriers[c];
            p.u16(at + 1, k.pci).u32(at + 3, k.arfcn).u32(at + 7, k.arfcn).u16(at + l.band_at, k.band);
            p.u8(at + l.band_at + 2, k.type).u8(at + l.band_at + 3, k.bw).u8(at + l.band_at + 4, k.bw);
            lines += fmt("pci = %u, arfcn_dl = %u, arfcn_ul = %u, band = %u, band_type = %u, bw_dl = %u, bw_ul = %u\n",
                         k.pci, k.arfcn, k.arfcn, k.band, k.type, k.bw, k.bw);
        }
        p.u8(at + 1, 1).u8(at + 2, 2).u8(at + 3, 0).u8(at + 4, 1).u8(at + 5, 3).u8(at + 6, 1).size(at + 18);
        packet r;
        r.u32(l.version).u8(7).u8(2).u8(1).u8(1).u16(500).u32(632448).u32(632448).u16(78).u8(1).u8(12).u8(12);
        expect_log(0xB825, p,
                   fmt("rrc_state = 7, conn_mode = 2\nversion = %u, num_contiguous_cc_groups = 1, "
                       "num_nrdc_scg_contiguous_cc_groups = %u, num_active_cc = 1, num_nrdc_scg_active_cc = %u, "
                       "num_active_rb = 1\n",
                       l.version, n - 1, n - 1) +
                       lines +
                       "dl_rb_type = 1, dl_rb_path = 2, dl_rohc_enable = 0, ul_rb_type = 1, ul_rb_path = 3, "
                       "ul_rohc_enable = 1\n",
                   {{MODEM_STATS_DATA_ID_NR5G_RRC_CONFIG_INFO, r}},
                   {static_cast<int32_t>(l.state_at + 2), "conn_mode", 0});
    }
    expect_refused(0xB825, packet().u32(0, 0x30000).size(8), 0x30000);
}

}  // namespace
