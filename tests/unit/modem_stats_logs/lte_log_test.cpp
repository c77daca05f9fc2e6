/* LTE log parsers other than 0xB193: per code, a packet built to each
 * accepted version with known values, the same packet cut short, and an
 * unsupported version; lte_log.golden holds every printed line and record. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "golden.h"
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

TEST(LteLogTest, EveryCodeAndVersion)
{
    const uint32_t v48[5] = {14, 223, 243, 292, 311};
    const uint32_t v49[5] = {15, 223, 247, 295, 319};
    packet csf = packet().u8(0, 163).bits(36, 2, 1).bits(47, 4, 12).bits(51, 4, 9).size(40);
    packet agc = packet().u8(0, 162).u8(1, 2).bits_at(4, 0, 4, 1).bits_at(4, 16, 12, 1000);
    agc.bits_at(12, 0, 4, 2).bits_at(12, 16, 12, 784).bits_at(12, 28, 12, 800).bits_at(12, 40, 12, 1024);
    agc.bits_at(12, 52, 12, 1026);
    /* Two 12-byte records; the second, with a negative power, is reported. */
    packet pusch = packet().u8(0, 48).u8(3, 2).bits_at(4, 17, 8, 10).bits_at(4, 54, 8, 90);
    pusch.bits_at(16, 17, 8, 0xFB).bits_at(16, 54, 8, 120);
    packet pucch = packet().u8(0, 49).u8(3, 1).bits_at(4, 14, 8, 7).bits_at(4, 43, 8, 101);
    /* Three transport blocks cannot fit the two slots. */
    packet three = b173(48, 40, 12, 4).u8(8, 3);
    packet cell;
    cell.u8(0, 3).u16(1, 405).u32(3, 66486).u32(7, 132022).u8(11, 100).u8(12, 75).u32(13, 0x88a4d0f).u16(17, 34624);
    cell.u32(19, 66).u16(23, 310).u8(25, 3).u16(26, 260).u8(28, 1);
    packet rach = packet().u8(0, 1).u8(1, 1).u8(4, 6).u8(5, 49).u16(6, 48).u8(11, 0xFF);
    packet tb = b064(2, {B064_HDR0});
    std::vector<log_case> cases = {
        /* 273 needs 9 bits: version 48's 7-bit field keeps 273 mod 128. */
        {0xB16D, b16d(48, 416, v48, 7), 3}, {0xB16D, b16d(49, 448, v49, 9), 0},
        {0xB16D, packet().u8(0, 48).size(8)}, {0xB16D, packet().u8(0, 50).size(8)},
        {0xB14E, csf, 0}, {0xB14E, packet(csf).u8(0, 42)}, {0xB111, agc, 1}, {0xB111, packet(agc).u8(0, 21)},
        {0xB16E, pusch, 3}, {0xB16F, pucch, 3}, {0xB16E, packet(pusch).u8(0, 25)}, {0xB16F, packet(pucch).u8(0, 24)},
        {0xB16E, packet().u8(0, 48).size(8)},
        {0xB173, b173(48, 40, 12, 4), 1}, {0xB173, b173(49, 48, 16, 6), 1},
        {0xB173, three}, {0xB173, packet(three).u8(0, 16)},
        {0xB0C2, cell, 27}, {0xB0C2, packet(cell).u8(0, 2)},
        /* A failed attempt, a successful one, another sub-packet id, an
         * unsupported sub-packet version and packet version. */
        {0xB062, rach, 11}, {0xB062, packet(rach).u8(11, 0)}, {0xB062, packet(rach).u8(4, 7)},
        {0xB062, packet(rach).u8(5, 50)}, {0xB062, packet(rach).u8(0, 2)},
        /* A sub-header says another follows, but the header ends; the short
         * BSR's octet is missing; LCID 11 is reserved in the uplink. */
        {0xB064, b064(2, {{0x3D}})}, {0xB064, b064(2, {{0x1D}})}, {0xB064, b064(2, {{0x0B}})},
        /* Another sub-packet id, an unsupported sub-packet and packet
         * version. */
        {0xB064, packet(tb).u8(4, 9)}, {0xB064, packet(tb).u8(5, 4)}, {0xB064, packet(tb).u8(0, 2)}};
    for (int v : {1, 2, 3, 5, 8}) cases.push_back({0xB064, b064(v, {B064_HDR0, B064_HDR1}), 8});
    expect_golden(describe(cases), __FILE__, "lte_log.golden");
}

}  // namespace
