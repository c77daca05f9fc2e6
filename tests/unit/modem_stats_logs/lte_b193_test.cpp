/* 0xB193: a packet built to every accepted sub-packet layout, with the
 * field positions written as the public decoders describe them (byte and
 * bit of each word), decodes to the values it holds (lte_b193.golden). */
#include <gtest/gtest.h>
#include <stdio.h>

#include <string>
#include <vector>

#include "golden.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

constexpr uint16_t CODE = 0xB193;

/* A field: word at `byte`, bits from `bit`, `width` bits (0: absent). */
struct pos {
    unsigned byte, bit, width;
};

/* Measurement fields in the order rsrp rx0..3, measured rsrp, rsrq rx0..3,
 * measured rsrq, rssi rx0..3, max rssi, snr rx0..3. */
constexpr int FIELDS = 19;

/* A sub-packet layout, as lte_b193.layouts describes it. */
struct layout {
    int version, earfcn_bytes;
    bool num_cells, rx_valid;
    int cells_at, cell_bytes;
    uint16_t pci_word;
    bool has_srv_flag;
    pos f[FIELDS];
};

std::vector<layout> read_layouts()
{
    std::vector<layout> layouts;
    for (const std::string &line : data_lines(__FILE__, "lte_b193.layouts")) {
        std::istringstream row(line);
        layout l{};
        row >> l.version >> l.earfcn_bytes >> l.num_cells >> l.rx_valid >> l.cells_at >> l.cell_bytes;
        row >> l.pci_word >> l.has_srv_flag;
        for (pos &f : l.f) {
            std::string text;
            row >> text;
            if (text != "-") {
                EXPECT_EQ(sscanf(text.c_str(), "%u.%u.%u", &f.byte, &f.bit, &f.width), 3) << text;
            }
        }
        EXPECT_FALSE(row.fail()) << l.version;
        layouts.push_back(l);
    }
    EXPECT_EQ(layouts.size(), 11u);
    return layouts;
}

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
    return l.f[2].width != 0;
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
    const pos *f = l.f;
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
    const std::vector<layout> layouts = read_layouts();
    for (const layout &l : layouts) cases.push_back({CODE, build(l), 7});
    const packet v19 = build(layouts[3]);
    /* An unknown 12-byte sub-packet first, then the measurement. */
    packet skipped = packet().u8(0, 1).u8(1, 2).u8(4, 7).u8(5, 1).u16(6, 12);
    cases.push_back({CODE, skipped.raw(16, std::vector<uint8_t>(v19.bytes().begin() + 4, v19.bytes().end()))});
    cases.push_back({CODE, packet(v19).u8(0, 2)});
    /* A sub-packet layout nobody describes. */
    cases.push_back({CODE, packet(v19).u8(5, 60)});
    cases.push_back({CODE, build(layouts[6]).u16(PAYLOAD_AT + 4, 0)});
    expect_golden(describe(cases), __FILE__, "lte_b193.golden");
}

}  // namespace
