/* NR5G LL1, ML1 and RRC log parsers: per code, a packet built to each
 * accepted version with known values, the same packet cut short, and an
 * unsupported version; nr5g_phy.golden holds every printed line and record. */
#include <gtest/gtest.h>

#include <string>

#include "golden.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

/* ---- LL1 -------------------------------------------------------------------- */

void ll1_cases(std::vector<log_case> &cases)
{
    packet agc = packet().u32(0, 0x20000).u8(4, 1).u8(5, 4).bits_at(12, 0, 13, 3616).bits_at(12, 16, 13, 3600);
    agc.bits_at(16, 0, 13, 4096).bits_at(16, 16, 13, 4100).size(24);
    cases.insert(cases.end(), {{0xB8C9, agc, 5}, {0xB8C9, packet(agc).u8(5, 3)},
                               {0xB8C9, packet().u32(0, 0x20000).u8(4, 1).u8(5, 4).size(24)},
                               {0xB8C9, packet(agc).u8(4, 2)}, {0xB8C9, packet(agc).u32(0, 0x10000)}});

    /* The second PUSCH entry replaces the first. */
    struct entry {
        uint32_t type, tx, path_loss, mtpl;
    };
    const entry entries[] = {{0, 23, 100, 23}, {1, 0xFC, 101, 20}, {2, 5, 90, 22}, {3, 10, 80, 23}, {0, 12, 99, 21}};
    struct {
        uint32_t version, entry_bytes, type_width, tx_at;
    } power_layouts[] = {{0x10000, 4, 2, 8}, {0x10001, 8, 3, 32}};
    for (const auto &l : power_layouts) {
        packet p = packet().u32(0, l.version).u16(4, 1).u8(6, 2).u8(7, 5);
        for (uint32_t i = 0; i < 5; i++) {
            uint32_t at = 8 + i * l.entry_bytes;
            p.bits_at(at, 0, l.type_width, entries[i].type).bits_at(at, l.tx_at, 8, entries[i].tx);
            p.bits_at(at, l.tx_at + 8, 8, entries[i].path_loss).bits_at(at, l.tx_at + 16, 8, entries[i].mtpl);
        }
        cases.push_back({0xB8D2, p, 6});
    }
    cases.insert(cases.end(), {{0xB8D2, packet().u32(0, 0x10000).u16(4, 2).size(8)},
                               {0xB8D2, packet().u32(0, 0x10002).size(8)}});

    /* 10*log10(raw/1024): 0 dB, 3.01 dB, absent, 10 dB. */
    const uint32_t raw[4] = {1024, 2048, 0, 10240};
    packet snr = packet().u32(0, 0x20001), ftl = packet().u32(0, 7);
    for (uint32_t i = 0; i < 4; i++) {
        snr.u32(8 + 4 * i, raw[i]);
        ftl.u32(76 + 4 * i, raw[i]);
    }
    cases.insert(cases.end(), {{0xB8D8, snr, 9}, {0xB8DD, ftl, 77}, {0xB8D8, packet(snr).u32(0, 0x20000)},
                               {0xB8DD, packet(ftl).u32(0, 6)}});
}

/* ---- ML1 -------------------------------------------------------------------- */

struct b97f_layout {
    uint32_t version, layers_at, carriers_at, carrier_bytes, beam_bytes;
};

/* Three carriers: cc 0 with a neighbour cell and the serving cell (two
 * beams), cc 15 (the last valid id; no record) and cc 1 without cells.  Carrier offsets: up to
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
    carrier(0, 15, 0, 0, 0);
    carrier(0, 1, 5, -11520, -11648);
    return p.size(at);
}

void ml1_cases(std::vector<log_case> &cases)
{
    packet beam;
    beam.u32(0, 0x10002).u32(20, static_cast<uint32_t>(-12800)).u32(24, static_cast<uint32_t>(-1280)).size(40);
    cases.push_back({0xB975, beam, 2});
    /* The public 2.1 layout puts the values elsewhere: refused. */
    cases.push_back({0xB975, packet(beam).u32(0, 0x20001)});

    const b97f_layout layouts[] = {{0x20003, 4, 8, 32, 60},  {0x20006, 4, 8, 32, 44},  {0x20007, 4, 16, 32, 44},
                                   {0x20008, 4, 16, 32, 44}, {0x20009, 8, 20, 32, 44}, {0x2000A, 8, 20, 32, 84},
                                   {0x30000, 8, 20, 40, 84}};
    for (const b97f_layout &l : layouts) cases.push_back({0xB97F, b97f(l), static_cast<int32_t>(l.layers_at)});
    cases.push_back({0xB97F, packet().u32(0, 0x20005).size(8)});
    /* Counts past their bounds (layers, cc_id, cells, beams) stop the
     * packet. */
    const b97f_layout l = layouts[2], l3 = layouts[6];
    cases.insert(cases.end(), {{0xB97F, b97f(l).u8(4, 9)}, {0xB97F, b97f(l).u8(16 + 5, 16)},
                               {0xB97F, b97f(l).u8(16 + 4, 33)}, {0xB97F, b97f(l).bits_at(48 + 4, 0, 4, 9)},
                               {0xB97F, b97f(l3).u8(20 + 4, 16)}, {0xB97F, b97f(l3).u8(20 + 5, 33)}});

    packet fc;
    fc.u32(0, 0x10001).u8(4, 1).u8(5, 2).u8(6, 2).u8(8, 1).u8(9, 3).u8(10, 4).u8(12, 2).u8(13, 5).u8(14, 6).size(16);
    cases.insert(cases.end(), {{0xB981, fc, 12}, {0xB981, packet(fc).u32(0, 0x10000)}});

    packet asdiv = packet().u32(0, 0x20000).u8(4, 2).size(18);
    for (uint32_t i = 0; i < 12; i++) asdiv.bits_at(8, 4 * i, 4, i + 1);
    cases.insert(cases.end(), {{0xB98F, asdiv, 4}, {0xB98F, packet(asdiv).u32(0, 0x10000)}});
}

/* ---- RRC -------------------------------------------------------------------- */

void rrc_cases(std::vector<log_case> &cases)
{
    struct {
        uint32_t version, block_at;
        bool cgi;
    } cell_layouts[] = {{0x4, 4, false}, {0x30000, 4, true}, {0x30002, 7, true}, {0x30003, 7, true}};
    for (const auto &l : cell_layouts) {
        packet p = packet().u32(0, l.version).u16(l.block_at, 500);
        uint32_t at = l.block_at + 2 + (l.cgi ? 8 : 0);
        p.u32(at, 632448).u32(at + 4, 632449).u16(at + 8, 100).u16(at + 10, 90).u64(at + 12, 0x123456789ull);
        p.u16(at + 20, 310).u8(at + 22, 3).u16(at + 23, 260).u8(at + 25, 1).u32(at + 26, 43981).u16(at + 30, 77);
        cases.push_back({0xB823, p, static_cast<int32_t>(l.block_at + 1)});
    }
    cases.push_back({0xB823, packet().u32(0, 0x30001).size(8)});

    struct {
        uint32_t version, state_at, counts_at, lists_at, cc_bytes, band_at;
        bool nrdc;
    } config_layouts[] = {{0x8, 4, 58, 61, 18, 11, false},
                          {0xA, 4, 58, 61, 22, 15, false},
                          {0x20000, 4, 58, 61, 22, 15, false},
                          {0x30001, 12, 66, 71, 22, 15, true},
                          {0x30003, 12, 66, 71, 23, 15, true}};
    struct cc {
        uint32_t pci, arfcn, band, type, bw;
    };
    const cc carriers[2] = {{500, 632448, 78, 1, 12}, {600, 2079165, 257, 2, 13}};
    for (const auto &l : config_layouts) {
        uint32_t n = l.nrdc ? 2 : 1;
        packet p = packet().u32(0, l.version).u8(l.state_at, 7).u8(l.state_at + 2, 2);
        for (uint32_t i = 0; i < (l.nrdc ? 5u : 3u); i++) p.u8(l.counts_at + i, 1);
        uint32_t at = l.lists_at + 4 * n;
        for (uint32_t c = 0; c < n; c++, at += l.cc_bytes) {
            const cc &k = carriers[c];
            p.u16(at + 1, k.pci).u32(at + 3, k.arfcn).u32(at + 7, k.arfcn).u16(at + l.band_at, k.band);
            p.u8(at + l.band_at + 2, k.type).u8(at + l.band_at + 3, k.bw).u8(at + l.band_at + 4, k.bw);
        }
        p.u8(at + 1, 1).u8(at + 2, 2).u8(at + 3, 0).u8(at + 4, 1).u8(at + 5, 3).u8(at + 6, 1).size(at + 18);
        cases.push_back({0xB825, p, static_cast<int32_t>(l.state_at + 2)});
    }
    cases.push_back({0xB825, packet().u32(0, 0x30000).size(8)});
}

TEST(Nr5gPhyTest, EveryCodeAndVersion)
{
    std::vector<log_case> cases;
    ll1_cases(cases);
    ml1_cases(cases);
    rrc_cases(cases);
    expect_golden(describe(cases), __FILE__, "nr5g_phy.golden");
}

}  // namespace
