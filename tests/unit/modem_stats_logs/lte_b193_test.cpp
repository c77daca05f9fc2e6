/* 0xB193: a packet built to every accepted sub-packet layout, with the
 * field positions written as the public decoders describe them (byte and
 * bit of each word), decodes to the values it holds (lte_b193.golden). */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "golden.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

constexpr uint16_t CODE = 0xB193;

/* A field: word at `byte`, bits from `bit`, `width` bits (0: absent). */
struct pos {
    uint16_t byte;
    uint8_t bit;
    uint8_t width;
};
constexpr pos NO = {0, 0, 0};

/* Measurement fields in the order rsrp rx0..3, measured rsrp, rsrq rx0..3,
 * measured rsrq, rssi rx0..3, max rssi, snr rx0..3. */
constexpr int FIELDS = 19;
struct fields {
    pos f[FIELDS];
};

// clang-format off
constexpr fields MULTI_CELL_A = {{{16, 10, 12}, {20, 12, 12}, {24, 12, 12}, {28, 0, 12}, {28, 12, 12}, {36, 0, 10},
    {36, 20, 10}, {40, 10, 10}, {40, 20, 10}, {44, 0, 10}, {48, 0, 11}, {48, 11, 11}, {52, 0, 11}, {52, 11, 11},
    {56, 0, 11}, {80, 0, 9}, {80, 9, 9}, {84, 0, 9}, {84, 9, 9}}};
constexpr fields MULTI_CELL_B = {{{16, 10, 12}, {20, 12, 12}, {24, 12, 12}, {28, 0, 12}, {28, 12, 12}, {36, 0, 10},
    {36, 20, 10}, {40, 10, 10}, {40, 20, 10}, {44, 0, 10}, {48, 0, 11}, {48, 11, 11}, {52, 0, 11}, {52, 11, 11},
    {56, 0, 11}, {92, 0, 9}, {92, 9, 9}, {96, 0, 9}, {96, 9, 9}}};

struct layout {
    int version;
    int earfcn_bytes;
    bool num_cells; /* u16 @4 */
    bool rx_valid;  /* u16 @6 */
    int cells_at;   /* 0: one cell at the payload */
    int cell_bytes;
    uint16_t pci_word; /* pci 0-8, serving index 9-11, serving flag 12 */
    bool has_srv_flag;
    fields f;
};

const layout LAYOUTS[] = {
    {4, 2, false, false, 0, 0, 2, false,
     {{{12, 10, 12}, {16, 12, 12}, NO, NO, {20, 12, 12}, {24, 12, 10}, {28, 0, 10}, NO, NO, {28, 20, 10},
       {32, 10, 11}, {32, 21, 11}, NO, NO, {36, 0, 11}, {60, 0, 9}, {60, 9, 9}, NO, NO}}},
    {7, 4, false, false, 0, 0, 4, false,
     {{{16, 10, 12}, {20, 12, 12}, NO, NO, {24, 12, 12}, {28, 12, 10}, {32, 0, 10}, NO, NO, {32, 20, 10},
       {36, 10, 11}, {36, 21, 11}, NO, NO, {40, 0, 11}, {64, 0, 9}, {64, 9, 9}, NO, NO}}},
    /* Rx1 RSSI and the combined RSSI share their bits in this layout. */
    {18, 4, false, false, 0, 0, 4, false,
     {{{21, 2, 11}, {25, 4, 11}, NO, NO, {29, 4, 11}, {33, 4, 9}, {37, 2, 10}, NO, NO, {37, 12, 10},
       {41, 2, 11}, {41, 13, 11}, NO, NO, {41, 13, 11}, {68, 0, 9}, {68, 9, 9}, NO, NO}}},
    {19, 4, true, false, 0, 0, 8, true,
     {{{24, 10, 12}, {28, 12, 12}, NO, NO, {32, 12, 12}, {36, 12, 10}, {40, 0, 10}, NO, NO, {40, 20, 10},
       {44, 10, 11}, {44, 21, 11}, NO, NO, {48, 0, 11}, {72, 0, 9}, {72, 9, 9}, NO, NO}}},
    {22, 4, true, false, 0, 0, 8, true,
     {{{24, 10, 12}, {28, 12, 12}, NO, NO, {36, 12, 12}, {40, 12, 10}, {44, 0, 10}, NO, NO, {48, 10, 10},
       {52, 10, 11}, {52, 21, 11}, NO, NO, {60, 0, 11}, {84, 0, 9}, {84, 9, 9}, NO, NO}}},
    {24, 4, true, false, 0, 0, 8, true,
     {{{25, 3, 12}, {29, 4, 12}, NO, NO, {33, 4, 12}, {37, 4, 10}, {40, 0, 10}, NO, NO, {42, 4, 10},
       {44, 10, 11}, {44, 21, 11}, NO, NO, {48, 0, 11}, {72, 0, 9}, {72, 9, 9}, NO, NO}}},
    {35, 4, true, true, 8, 128, 0, true, MULTI_CELL_A},
    {36, 4, true, true, 8, 128, 0, true, MULTI_CELL_A},
    {40, 4, true, true, 8, 132, 0, true,
     {{{16, 10, 12}, {20, 12, 12}, {24, 12, 12}, {32, 0, 12}, {32, 12, 12}, {40, 0, 10}, {40, 20, 10},
       {44, 10, 10}, {44, 20, 10}, {48, 0, 10}, {52, 0, 11}, {52, 11, 11}, {56, 0, 11}, {56, 11, 11}, {60, 0, 11},
       {84, 0, 9}, {84, 9, 9}, {88, 0, 9}, {88, 9, 9}}}},
    {48, 4, true, true, 12, 140, 0, true, MULTI_CELL_B},
    {50, 4, true, true, 12, 140, 0, true, MULTI_CELL_B},
};
// clang-format on

/* Raw values: RSRP -100, -99.5, -99, -98.5 dBm (combined -99.5); RSRQ -10,
 * -10.5, -11, -11.5 dB (combined -10.25); RSSI -70, -70.5, -71, -71.5 dBm
 * (combined -69.5 except where it shares Rx1's bits); SNR 10, 10.5, 11,
 * 11.5 dB.  The four-chain combined RSRP is 640 raw above the others. */
const uint32_t RAW[FIELDS] = {1280, 1288, 1296, 1304, 1288, 320, 312, 304, 296, 316,
                              640,  632,  624,  616,  648,  300, 305, 310, 315};
constexpr uint32_t PAYLOAD_AT = 8;
constexpr uint32_t PCI = 301;
constexpr uint32_t NEIGHBOUR_PCI = 11;

bool four_chains(const layout &l)
{
    return l.f.f[2].width != 0;
}

uint32_t earfcn(const layout &l)
{
    return l.earfcn_bytes == 2 ? 1850 : 66486;
}

/* Writes one cell at byte `cell`: PCI, serving index and flag, fields. */
void put_cell(packet &p, const layout &l, uint32_t cell, uint32_t pci, uint32_t idx, bool serving, uint32_t scale)
{
    p.bits_at(cell + l.pci_word, 0, 9, pci).bits_at(cell + l.pci_word, 9, 3, idx);
    if (l.has_srv_flag) p.bits_at(cell + l.pci_word, 12, 1, serving ? 1 : 0);
    const pos *f = l.f.f;
    for (int i = 0; i < FIELDS; i++) {
        /* A combined RSSI that shares Rx1's bits holds Rx1's value. */
        if (!f[i].width || (i == 14 && f[14].byte == f[11].byte && f[14].bit == f[11].bit)) continue;
        uint32_t raw = (i == 4 && four_chains(l) ? RAW[i] - 640 : RAW[i]) / scale;
        p.bits_at(cell + f[i].byte, f[i].bit, f[i].width, raw);
    }
}

/* A packet with one sub-packet: one serving cell (primary), or for the
 * multi-cell layouts a neighbour cell first and then a secondary serving
 * cell. */
packet build(const layout &l)
{
    packet p;
    uint32_t size = 4 + (l.cell_bytes ? l.cells_at + 2 * l.cell_bytes : 100);
    p.u8(0, 1).u8(1, 1).u8(4, 25).u8(5, l.version).u16(6, size).bits(PAYLOAD_AT * 8, l.earfcn_bytes * 8, earfcn(l));
    if (l.num_cells) p.u16(PAYLOAD_AT + 4, l.cell_bytes ? 2 : 1);
    if (l.rx_valid) p.u16(PAYLOAD_AT + 6, 0xF);
    if (!l.cell_bytes) {
        put_cell(p, l, PAYLOAD_AT, PCI, 0, true, 1);
    } else {
        put_cell(p, l, PAYLOAD_AT + l.cells_at, NEIGHBOUR_PCI, 0, false, 2);
        put_cell(p, l, PAYLOAD_AT + l.cells_at + l.cell_bytes, PCI, 1, true, 1);
    }
    return p.size(PAYLOAD_AT + size);
}

TEST(LteB193Test, EveryLayoutSkippedSubPacketsRefusedVersionsAndNoCell)
{
    std::vector<log_case> cases;
    /* Cut inside the sub-packet size: two bytes needed, one left. */
    for (const layout &l : LAYOUTS) cases.push_back({CODE, build(l), 7});
    const packet v19 = build(LAYOUTS[3]);
    /* An unknown 12-byte sub-packet first, then the measurement. */
    packet skipped = packet().u8(0, 1).u8(1, 2).u8(4, 7).u8(5, 1).u16(6, 12);
    cases.push_back({CODE, skipped.raw(16, std::vector<uint8_t>(v19.bytes().begin() + 4, v19.bytes().end()))});
    cases.push_back({CODE, packet(v19).u8(0, 2)});
    /* A sub-packet layout nobody describes. */
    cases.push_back({CODE, packet(v19).u8(5, 60)});
    cases.push_back({CODE, build(LAYOUTS[6]).u16(PAYLOAD_AT + 4, 0)});
    expect_golden(describe(cases), __FILE__, "lte_b193.golden");
}

}  // namespace
