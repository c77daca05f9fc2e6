/* NR5G MAC and L2 log parsers: per code, a packet built to each accepted
 * version with known values, the same packet cut short, and an unsupported
 * version; nr5g_mac.golden holds every printed line and record. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "golden.h"
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

/* One record of two carriers: PUSCH (transmission mode 1) and two PUCCHs,
 * then SRS and PRACH. */
packet b883(uint32_t version, uint32_t pusch_bytes)
{
    packet p = packet().u32(0, version).u8(15, 1).u8(16 + 4, 2).bits_at(24, 6, 6, 0x06).bits_at(28 + 8, 0, 2, 1);
    uint32_t at = 28 + pusch_bytes;
    p.u8(at, 2).bits_at(at + 36, 6, 6, 0x18);
    return p.size(at + 36 + 4 + 20 + 8);
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

TEST(Nr5gMacTest, EveryCodeAndVersion)
{
    const b887_layout b887_layouts[] = {
        {0x20004, 4, 16, 8, 3, 16, 19}, {0x20005, 4, 16, 12, 3, 16, 19}, {0x30002, 8, 32, 12, 4, 16, 20}};
    std::vector<log_case> cases;
    for (const b887_layout &l : b887_layouts) cases.push_back({0xB887, b887(l), 4});
    cases.push_back({0xB887, nr_header(0x20003, 0)});
    std::string text = describe(cases);
    /* The record stays with the parser until the next one replaces it. */
    const modem_stats_single_data_common_type *kept = modem_stats_b887_kept_record();
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->data_id, MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATUS);
    EXPECT_EQ(kept->data_len, 11u);

    struct {
        uint32_t version, header, count_bit, dci;
    } b885_layouts[] = {{0x20007, 4, 8, 12}, {0x2000A, 8, 32, 12}, {0x2000C, 8, 32, 16}};
    cases = {{0xB885, nr_header(0x20008, 0)}};
    for (const auto &l : b885_layouts) cases.push_back({0xB885, b885(l.version, l.header, l.count_bit, l.dci), 4});

    struct {
        uint32_t version, num_at, records_at, record_bytes, tb_at;
    } b888_layouts[] = {{0x20002, 15, 28, 72, 48}, {0x30000, 16, 32, 80, 56}};
    for (const auto &l : b888_layouts) {
        packet p = packet().u32(0, l.version).u8(l.num_at, 2);
        uint32_t r1 = l.records_at + l.record_bytes;
        p.u32(l.records_at + 8, 100).u32(l.records_at + 16, 3).u64(l.records_at + l.tb_at, 5000000000ull);
        p.u32(r1 + 8, 50).u32(r1 + 16, 1).u64(r1 + l.tb_at, 1000).size(r1 + l.record_bytes);
        cases.push_back({0xB888, p, static_cast<int32_t>(l.num_at)});
    }
    cases.push_back({0xB888, packet().u32(0, 0x20001).size(8)});

    packet csf = nr_header(0x20002, 1);
    csf.bits_at(8, 24, 4, 2).bits_at(12, 0, 3, 1).bits_at(12, 3, 3, 0).bits_at(12, 8, 4, 4).bits_at(12, 12, 4, 7);
    csf.bits_at(20, 0, 3, 2).bits_at(20, 3, 3, 1).bits_at(20, 8, 4, 4).bits_at(20, 12, 4, 11).size(28);
    cases.insert(cases.end(), {{0xB8A7, csf, 4}, {0xB8A7, nr_header(0x20001, 1)}});

    struct {
        uint32_t version, carrier_header, channel;
    } b884_layouts[] = {{0x10003, 4, 8}, {0x10005, 4, 12}, {0x30003, 8, 12}};
    for (const auto &l : b884_layouts) cases.push_back({0xB884, b884(l.version, l.carrier_header, l.channel), 4});
    cases.push_back({0xB884, nr_header(0x10004, 0)});

    /* 2.7: Msg1 and Msg2, the TC-RNTI and timing advance after 28 bytes of
     * Msg1, then Msg1 alone.  3.5: Msg2 alone. */
    packet v27 = packet().u32(0, 0x20007).u8(21, 0).u8(23, 3).u16(28 + 28 + 6, 17921).u16(28 + 28 + 8, 12).size(80);
    packet v35 = packet().u32(0, 0x30005).u8(14, 1).u8(16, 2).u16(24 + 6, 300).u16(24 + 8, 31).size(80);
    cases.insert(cases.end(), {{0xB88A, v27, 4}, {0xB88A, v35}, {0xB88A, packet(v27).u8(23, 1)},
                               {0xB88A, packet(v27).u32(0, 0x20006)}});

    cases.insert(cases.end(), {{0xB883, b883(0x2000B, 40), 4}, {0xB883, b883(0x3000F, 44), 4}});
    /* A channel bit whose data size nobody documents. */
    cases.insert(cases.end(), {{0xB883, b883(0x2000B, 40).bits_at(24, 6, 6, 0x01)},
                               {0xB883, packet().u32(0, 0x20008).size(16)}});

    struct {
        uint32_t version, tti, tb;
    } b872_layouts[] = {{4, 8, 20}, {0x20001, 8, 20}, {0x30003, 12, 24}};
    for (const auto &l : b872_layouts) cases.push_back({0xB872, b872(l.version, l.tti, l.tb), 2});
    cases.push_back({0xB872, packet().u32(0, 0x30002).size(16)});

    /* No records carry nothing. */
    const std::pair<uint16_t, uint32_t> empty[] = {{0xB885, 0x20007}, {0xB887, 0x20004}, {0xB888, 0x20002},
                                                   {0xB8A7, 0x20002}, {0xB884, 0x10003}, {0xB883, 0x2000B}};
    for (const auto &e : empty) cases.push_back({e.first, packet().u32(0, e.second).size(32)});
    expect_golden(text + describe(cases), __FILE__, "nr5g_mac.golden");
}

}  // namespace
