/* LTE ML1 serving cell measurement (log 0xB193).
 *
 * The packet holds sub-packets; sub-packet 25 carries the measured cells of
 * one carrier in one of eleven layouts (by sub-packet version).  Every cell
 * is decoded and printed; the record describes the first serving cell of
 * the packet (or its first cell when none is serving): data id 82 for the
 * primary serving cell, 108 otherwise.  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

constexpr uint8_t B193_VERSION = 1;
constexpr uint8_t B193_SUBPACKET_SERVING_MEAS = 25;
/* A sub-packet's size counts its own 4-byte header. */
constexpr uint32_t B193_SUBPACKET_HEADER_LEN = 4;
constexpr uint32_t B193_RX_CHAINS = 4;
/* Layouts of two receive chains report Rx0 and Rx1. */
constexpr uint16_t B193_RX_VALID_TWO_CHAINS = 0x3;
/* Cells decoded from one sub-packet at most. */
constexpr uint16_t B193_MAX_CELLS = 32;
/* Combined RSRP of the four-chain layouts is 40 dB (640 raw) above the
 * per-chain scale. */
constexpr int32_t B193_COMBINED_RSRP_RAW_OFFSET = 640;

/* Fields of one cell, in reading order. */
enum b193_field {
    B193_PCI,
    B193_IS_SRV_CELL,
    B193_SRV_CELL_IDX,
    B193_RSRP_RX0,
    B193_RSRP_RX1,
    B193_RSRP_RX2,
    B193_RSRP_RX3,
    B193_MEASURED_RSRP,
    B193_RSRQ_RX0,
    B193_RSRQ_RX1,
    B193_RSRQ_RX2,
    B193_RSRQ_RX3,
    B193_MEASURED_RSRQ,
    B193_RSSI_RX0,
    B193_RSSI_RX1,
    B193_RSSI_RX2,
    B193_RSSI_RX3,
    B193_MAX_RSSI,
    B193_SNR_RX0,
    B193_SNR_RX1,
    B193_SNR_RX2,
    B193_SNR_RX3,
    B193_FIELD_COUNT,
};

const char *const B193_FIELD_NAMES[B193_FIELD_COUNT] = {
    "pci",      "is_srv_cell", "srv_cell_idx", "rsrp_rx0", "rsrp_rx1",      "rsrp_rx2", "rsrp_rx3", "measured_rsrp",
    "rsrq_rx0", "rsrq_rx1",    "rsrq_rx2",     "rsrq_rx3", "measured_rsrq", "rssi_rx0", "rssi_rx1", "rssi_rx2",
    "rssi_rx3", "max_rssi",    "snr_rx0",      "snr_rx1",  "snr_rx2",       "snr_rx3",
};

/* A field's first bit from the cell's start and its width; width 0: the
 * layout does not carry it. */
typedef struct {
    uint16_t offset;
    uint8_t width;
} b193_pos;

/* One sub-packet layout. */
typedef struct {
    uint8_t version;
    uint8_t earfcn_bytes;         /* 2 or 4 */
    bool has_num_cells;           /* u16 number of cells after the EARFCN, then two bytes */
    bool has_rx_valid;            /* those two bytes are the valid-Rx bitmap */
    uint16_t cells_at;            /* first cell, bytes from the sub-packet payload */
    uint16_t cell_bytes;          /* cell stride; 0: the layout holds one cell */
    int32_t measured_rsrp_offset; /* raw offset of the combined RSRP */
    b193_pos pos[B193_FIELD_COUNT];
} b193_layout;

constexpr b193_pos NONE = {0, 0};

/* Two-chain layouts: the cell starts with the sub-packet payload. */
// clang-format off
constexpr b193_layout B193_LAYOUTS[] = {
    {4, 2, false, false, 0, 0, 0,
     {{16, 9}, NONE, {25, 3}, {106, 12}, {140, 12}, NONE, NONE, {172, 12}, {204, 10}, {224, 10}, NONE, NONE,
      {244, 10}, {266, 11}, {277, 11}, NONE, NONE, {288, 11}, {480, 9}, {489, 9}, NONE, NONE}},
    {7, 4, false, false, 0, 0, 0,
     {{32, 9}, NONE, {41, 3}, {138, 12}, {172, 12}, NONE, NONE, {204, 12}, {236, 10}, {256, 10}, NONE, NONE,
      {276, 10}, {298, 11}, {309, 11}, NONE, NONE, {320, 11}, {512, 9}, {521, 9}, NONE, NONE}},
    {18, 4, false, false, 0, 0, 0,
     {{32, 9}, NONE, {41, 3}, {170, 11}, {204, 11}, NONE, NONE, {236, 11}, {268, 9}, {298, 10}, NONE, NONE,
      {308, 10}, {330, 11}, {341, 11}, NONE, NONE, {341, 11}, {544, 9}, {553, 9}, NONE, NONE}},
    {19, 4, true, false, 0, 0, 0,
     {{64, 9}, {76, 1}, {73, 3}, {202, 12}, {236, 12}, NONE, NONE, {268, 12}, {300, 10}, {320, 10}, NONE, NONE,
      {340, 10}, {362, 11}, {373, 11}, NONE, NONE, {384, 11}, {576, 9}, {585, 9}, NONE, NONE}},
    {22, 4, true, false, 0, 0, 0,
     {{64, 9}, {76, 1}, {73, 3}, {202, 12}, {236, 12}, NONE, NONE, {300, 12}, {332, 10}, {352, 10}, NONE, NONE,
      {394, 10}, {426, 11}, {437, 11}, NONE, NONE, {480, 11}, {672, 9}, {681, 9}, NONE, NONE}},
    {24, 4, true, false, 0, 0, 0,
     {{64, 9}, {76, 1}, {73, 3}, {203, 12}, {236, 12}, NONE, NONE, {268, 12}, {300, 10}, {320, 10}, NONE, NONE,
      {340, 10}, {362, 11}, {373, 11}, NONE, NONE, {384, 11}, {576, 9}, {585, 9}, NONE, NONE}},
    /* Four-chain layouts: cells of a fixed size after the header. */
    {35, 4, true, true, 8, 128, B193_COMBINED_RSRP_RAW_OFFSET,
     {{0, 9}, {12, 1}, {9, 3}, {138, 12}, {172, 12}, {204, 12}, {224, 12}, {236, 12}, {288, 10}, {308, 10},
      {330, 10}, {340, 10}, {352, 10}, {384, 11}, {395, 11}, {416, 11}, {427, 11}, {448, 11}, {640, 9}, {649, 9},
      {672, 9}, {681, 9}}},
    {36, 4, true, true, 8, 128, B193_COMBINED_RSRP_RAW_OFFSET,
     {{0, 9}, {12, 1}, {9, 3}, {138, 12}, {172, 12}, {204, 12}, {224, 12}, {236, 12}, {288, 10}, {308, 10},
      {330, 10}, {340, 10}, {352, 10}, {384, 11}, {395, 11}, {416, 11}, {427, 11}, {448, 11}, {640, 9}, {649, 9},
      {672, 9}, {681, 9}}},
    {40, 4, true, true, 8, 132, B193_COMBINED_RSRP_RAW_OFFSET,
     {{0, 9}, {12, 1}, {9, 3}, {138, 12}, {172, 12}, {204, 12}, {256, 12}, {268, 12}, {320, 10}, {340, 10},
      {362, 10}, {372, 10}, {384, 10}, {416, 11}, {427, 11}, {448, 11}, {459, 11}, {480, 11}, {672, 9}, {681, 9},
      {704, 9}, {713, 9}}},
    {48, 4, true, true, 12, 140, B193_COMBINED_RSRP_RAW_OFFSET,
     {{0, 9}, {12, 1}, {9, 3}, {138, 12}, {172, 12}, {204, 12}, {224, 12}, {236, 12}, {288, 10}, {308, 10},
      {330, 10}, {340, 10}, {352, 10}, {384, 11}, {395, 11}, {416, 11}, {427, 11}, {448, 11}, {736, 9}, {745, 9},
      {768, 9}, {777, 9}}},
    {50, 4, true, true, 12, 140, B193_COMBINED_RSRP_RAW_OFFSET,
     {{0, 9}, {12, 1}, {9, 3}, {138, 12}, {172, 12}, {204, 12}, {224, 12}, {236, 12}, {288, 10}, {308, 10},
      {330, 10}, {340, 10}, {352, 10}, {384, 11}, {395, 11}, {416, 11}, {427, 11}, {448, 11}, {736, 9}, {745, 9},
      {768, 9}, {777, 9}}},
};
// clang-format on
constexpr size_t B193_LAYOUT_COUNT = sizeof(B193_LAYOUTS) / sizeof(B193_LAYOUTS[0]);

constexpr bool b193_layouts_fit()
{
    for (size_t i = 0; i < B193_LAYOUT_COUNT; i++) {
        const b193_layout &l = B193_LAYOUTS[i];
        if (l.earfcn_bytes != 2 && l.earfcn_bytes != 4) return false;
        for (size_t f = 0; f < B193_FIELD_COUNT; f++) {
            if (l.pos[f].width > 16) return false;
            /* A multi-cell layout keeps every field inside its cell. */
            if (l.cell_bytes && l.pos[f].offset + l.pos[f].width > l.cell_bytes * 8u) return false;
        }
        /* Every layout reads chains 0 and 1 and the cell identity. */
        if (!l.pos[B193_PCI].width || !l.pos[B193_RSRP_RX0].width || !l.pos[B193_SNR_RX1].width) return false;
    }
    return true;
}
static_assert(b193_layouts_fit(), "0xB193 fields are at most 16 bits, inside their cell");

/* One decoded cell, in physical units. */
typedef struct {
    uint32_t version_ssmr;
    uint32_t earfcn;
    uint16_t pci;
    uint8_t rx_valid;
    uint8_t is_srv_cell;
    uint8_t srv_cell_idx;
    float rsrp[B193_RX_CHAINS];
    float rsrq[B193_RX_CHAINS];
    float rssi[B193_RX_CHAINS];
    float snr[B193_RX_CHAINS];
} b193_cell;

const b193_layout *b193_find_layout(uint8_t version)
{
    for (size_t i = 0; i < B193_LAYOUT_COUNT; i++) {
        if (B193_LAYOUTS[i].version == version) return &B193_LAYOUTS[i];
    }
    return nullptr;
}

/* Reads the fields the layout carries from the cell at the current bit
 * position; fields it lacks stay 0. */
bool b193_read_cell(const b193_layout &layout, uint32_t raw[B193_FIELD_COUNT])
{
    for (size_t f = 0; f < B193_FIELD_COUNT; f++) {
        raw[f] = 0;
        if (!layout.pos[f].width) continue;
        if (!modem_stats_unpk_at(B193_FIELD_NAMES[f], layout.pos[f].offset, layout.pos[f].width, &raw[f])) return false;
    }
    return true;
}

float b193_mean(const float *values, uint8_t rx_valid, float fallback)
{
    float sum = 0.0f;
    uint32_t n = 0;
    for (uint32_t i = 0; i < B193_RX_CHAINS; i++) {
        if (rx_valid & (1u << i)) {
            sum += values[i];
            n++;
        }
    }
    return n ? modem_stats_round_2_decimals(sum / static_cast<float>(n)) : fallback;
}

/* Converts one cell and prints its lines. */
void b193_decode_cell(uint8_t version, const b193_layout &layout, uint32_t earfcn, uint16_t num_cells,
                      uint16_t rx_valid, const uint32_t raw[B193_FIELD_COUNT], b193_cell *cell)
{
    cell->version_ssmr = layout.version;
    cell->earfcn = earfcn;
    cell->pci = static_cast<uint16_t>(raw[B193_PCI]);
    cell->rx_valid = static_cast<uint8_t>(rx_valid);
    /* Layouts without the flag hold the serving cell only. */
    cell->is_srv_cell = layout.pos[B193_IS_SRV_CELL].width ? static_cast<uint8_t>(raw[B193_IS_SRV_CELL]) : 1;
    cell->srv_cell_idx = static_cast<uint8_t>(raw[B193_SRV_CELL_IDX]);
    for (uint32_t i = 0; i < B193_RX_CHAINS; i++) {
        bool valid = rx_valid & (1u << i);
        cell->rsrp[i] =
            valid ? modem_stats_i2f_rsrp(static_cast<int32_t>(raw[B193_RSRP_RX0 + i])) : MODEM_STATS_NO_VALUE_F;
        cell->rsrq[i] =
            valid ? modem_stats_i2f_rsrq(static_cast<int32_t>(raw[B193_RSRQ_RX0 + i])) : MODEM_STATS_NO_VALUE_F;
        cell->rssi[i] =
            valid ? modem_stats_i2f_rssi(static_cast<int32_t>(raw[B193_RSSI_RX0 + i])) : MODEM_STATS_NO_VALUE_F;
        cell->snr[i] =
            valid ? modem_stats_i2f_snr(static_cast<int32_t>(raw[B193_SNR_RX0 + i])) : MODEM_STATS_NO_VALUE_F;
    }

    modem_stats_log_printf(
        "version = %d, earfcn = %d, rx_valid = %d, pci = %d, is_srv_cell = %d, srv_cell_idx = %d, num_cells = %d\n",
        version, static_cast<int>(earfcn), rx_valid, cell->pci, cell->is_srv_cell, cell->srv_cell_idx, num_cells);
    if (!cell->is_srv_cell) return;

    float measured_rsrp =
        modem_stats_i2f_rsrp(static_cast<int32_t>(raw[B193_MEASURED_RSRP]) + layout.measured_rsrp_offset);
    float measured_rsrq = modem_stats_i2f_rsrq(static_cast<int32_t>(raw[B193_MEASURED_RSRQ]));
    float max_rssi = modem_stats_i2f_rssi(static_cast<int32_t>(raw[B193_MAX_RSSI]));
    float avg_rsrp = b193_mean(cell->rsrp, cell->rx_valid, measured_rsrp);
    float avg_rsrq = b193_mean(cell->rsrq, cell->rx_valid, measured_rsrq);

    puts("Serving Cell Measurement Result");
    modem_stats_log_print_buf("rsrp_rx0 = %.2f, rsrp_rx1 = %.2f, rsrp_rx2 = %.2f, rsrp_rx3 = %.2f", cell->rsrp[0],
                              cell->rsrp[1], cell->rsrp[2], cell->rsrp[3]);
    modem_stats_log_print_buf("rsrq_rx0 = %.2f, rsrq_rx1 = %.2f, rsrq_rx2 = %.2f, rsrq_rx3 = %.2f", cell->rsrq[0],
                              cell->rsrq[1], cell->rsrq[2], cell->rsrq[3]);
    modem_stats_log_print_buf("rssi_rx0 = %.2f, rssi_rx1 = %.2f, rssi_rx2 = %.2f, rssi_rx3 = %.2f", cell->rssi[0],
                              cell->rssi[1], cell->rssi[2], cell->rssi[3]);
    modem_stats_log_print_buf("snr_rx0 = %.2f, snr_rx1 = %.2f, snr_rx2 = %.2f, snr_rx3 = %.2f", cell->snr[0],
                              cell->snr[1], cell->snr[2], cell->snr[3]);
    modem_stats_log_print_buf("avg_rsrp = %.2f, avg_rsrq = %.2f, max_rssi = %.2f", avg_rsrp, avg_rsrq, max_rssi);
}

/* Packs record 82 or 108 for `cell`. */
void b193_make_record(const b193_cell &cell, modem_stats_data_id_e_type *data_id,
                      modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("version", cell.version_ssmr, sizeof(uint32_t))) return;
    if (!modem_stats_data_pk("earfcn", cell.earfcn, sizeof(uint32_t))) return;
    if (!modem_stats_data_pk("pci", cell.pci, sizeof(uint16_t))) return;
    if (!modem_stats_data_pk("rx_valid", cell.rx_valid, sizeof(uint8_t))) return;
    for (uint32_t i = 0; i < B193_RX_CHAINS; i++) {
        if (!modem_stats_data_pk("rsrp", modem_stats_log_float_bits(cell.rsrp[i]), sizeof(float))) return;
        if (!modem_stats_data_pk("rsrq", modem_stats_log_float_bits(cell.rsrq[i]), sizeof(float))) return;
        if (!modem_stats_data_pk("rssi", modem_stats_log_float_bits(cell.rssi[i]), sizeof(float))) return;
        if (!modem_stats_data_pk("snr", modem_stats_log_float_bits(cell.snr[i]), sizeof(float))) return;
    }
    bool primary = cell.is_srv_cell && cell.srv_cell_idx == 0;
    modem_stats_data_pk_finish(primary ? MODEM_STATS_DATA_ID_LTE_SRV_MEAS : MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT,
                               data_id, record);
}

}  // namespace

void modem_stats_parse_b193_diag_log_lte_srv_meas(modem_stats_data_id_e_type *data_id,
                                                  modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != B193_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    uint8_t num_subpackets = 0;
    if (!modem_stats_data_unpk("num_subpackets", &num_subpackets)) return;
    modem_stats_data_skip(2);

    b193_cell chosen = {};
    bool have_cell = false;
    uint32_t subpacket_at = 4; /* absolute byte of the sub-packet header */
    for (uint32_t s = 0; s < num_subpackets; s++) {
        uint8_t subpacket_id = 0;
        uint8_t version_ssmr = 0;
        uint16_t subpacket_size = 0;
        if (!modem_stats_data_unpk("subpacket_id", &subpacket_id)) return;
        if (!modem_stats_data_unpk("version_ssmr", &version_ssmr)) return;
        if (!modem_stats_data_unpk("subpacket_size", &subpacket_size)) return;
        modem_stats_log_printf("subpacket_id = %d, version_ssmr = %d\n", subpacket_id, version_ssmr);
        uint32_t payload_at = subpacket_at + B193_SUBPACKET_HEADER_LEN;
        /* A size below its own header still moves on by the header. */
        uint32_t next_at =
            subpacket_at + (subpacket_size > B193_SUBPACKET_HEADER_LEN ? subpacket_size : B193_SUBPACKET_HEADER_LEN);
        if (subpacket_id == B193_SUBPACKET_SERVING_MEAS) {
            const b193_layout *layout = b193_find_layout(version_ssmr);
            if (!layout) {
                modem_stats_version_not_support(version_ssmr, __func__);
                return;
            }
            uint32_t earfcn = 0;
            if (layout->earfcn_bytes == sizeof(uint16_t)) {
                uint16_t earfcn16 = 0;
                if (!modem_stats_data_unpk("earfcn", &earfcn16)) return;
                earfcn = earfcn16;
            } else if (!modem_stats_data_unpk("earfcn", &earfcn)) {
                return;
            }
            uint16_t num_cells = 1;
            uint16_t rx_valid = B193_RX_VALID_TWO_CHAINS;
            if (layout->has_num_cells && !modem_stats_data_unpk("num_cells", &num_cells)) return;
            if (layout->has_rx_valid && !modem_stats_data_unpk("rx_valid", &rx_valid)) return;
            if (!layout->cell_bytes && num_cells > 1) num_cells = 1;
            if (num_cells > B193_MAX_CELLS) {
                modem_stats_data_not_valid(num_cells, __func__);
                return;
            }
            for (uint32_t c = 0; c < num_cells; c++) {
                uint32_t cell_at = payload_at + layout->cells_at + c * layout->cell_bytes;
                if (!modem_stats_log_seek(cell_at)) return;
                uint32_t raw[B193_FIELD_COUNT];
                if (!b193_read_cell(*layout, raw)) return;
                b193_cell cell;
                b193_decode_cell(version, *layout, earfcn, num_cells, rx_valid, raw, &cell);
                if (!have_cell || (cell.is_srv_cell && !chosen.is_srv_cell)) chosen = cell;
                have_cell = true;
            }
        }
        /* The next sub-packet header is read as whole bytes at its start. */
        if (s + 1 < num_subpackets && !modem_stats_log_seek(next_at)) return;
        subpacket_at = next_at;
    }
    if (!have_cell) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    b193_make_record(chosen, data_id, record);
}
