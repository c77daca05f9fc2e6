/* LTE physical-layer logs: transmit power (0xB16D), PUSCH CSF (0xB14E),
 * PDSCH stat indication (0xB173), PUSCH and PUCCH power control (0xB16E,
 * 0xB16F) and receive AGC (0xB111).  Each is a version byte, a short header
 * and bit-packed records of a fixed size per version; the field rows below
 * give each field's bit offset from its record's first bit.  Layouts:
 * docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

/* ---- 0xB16D transmit power ------------------------------------------------ */

constexpr uint8_t B16D_VERSION_48 = 48;
constexpr uint8_t B16D_VERSION_49 = 49;
constexpr uint32_t B16D_HEADER_RESERVED = 2;
constexpr uint32_t B16D_V49_NUM_SKIP_BITS = 16;
constexpr uint32_t B16D_CHAN_TYPE_AT = 32;
constexpr uint32_t B16D_CHAN_PUCCH = 0;
constexpr uint32_t B16D_CHAN_PUSCH = 1;

/* Field offsets counted from b, the bit after chan_type. */
typedef struct {
    uint32_t record_bits;
    uint32_t ca_mode_enable_at; /* 0: the layout has no such bit */
    modem_stats_bit_field_row pucch_tx_power;
    modem_stats_bit_field_row pusch[4]; /* tx power, resource blocks, MCS, modulation */
} b16d_layout;

constexpr b16d_layout B16D_V48 = {416,
                                  0,
                                  {"pucch_tx_power", 14, 8, 8},
                                  {{"pusch_tx_power", 223, 8, 8},
                                   {"pusch_num_res_blocks", 243, 7, 16},
                                   {"pusch_mcs", 292, 5, 16},
                                   {"pusch_modulation_type", 311, 3, 8}}};
constexpr b16d_layout B16D_V49 = {448,
                                  7,
                                  {"pucch_tx_power", 15, 8, 8},
                                  {{"pusch_tx_power", 223, 8, 8},
                                   {"pusch_num_res_blocks", 247, 9, 16},
                                   {"pusch_mcs", 295, 5, 16},
                                   {"pusch_modulation_type", 319, 3, 8}}};
static_assert(modem_stats_log_rows_fit(B16D_V48.pusch) && modem_stats_log_rows_fit(B16D_V49.pusch),
              "0xB16D rows fit their destinations");
static_assert(modem_stats_log_rows_within(B16D_V48.pusch, B16D_V48.record_bits - B16D_CHAN_TYPE_AT - 1) &&
                  modem_stats_log_rows_within(B16D_V49.pusch, B16D_V49.record_bits - B16D_CHAN_TYPE_AT - 1),
              "0xB16D fields end inside their record");

typedef struct {
    uint32_t pucch_tx_power;
    uint32_t pusch_tx_power;
    uint32_t pusch_num_res_blocks;
    uint32_t pusch_mcs;
    uint32_t pusch_modulation_type;
} b16d_values;

bool b16d_read_records(const b16d_layout &layout, uint8_t num, b16d_values *v)
{
    for (uint32_t r = 0; r < num; r++) {
        uint8_t chan_type = 0;
        if (!modem_stats_unpk_mid("chan_type", B16D_CHAN_TYPE_AT, 1, &chan_type)) return false;
        if (layout.ca_mode_enable_at) {
            uint8_t ca_mode_enable = 0;
            if (!modem_stats_unpk_at("ca_mode_enable", layout.ca_mode_enable_at, 1, &ca_mode_enable)) return false;
        }
        /* Only the first record of each channel kind fills its values. */
        if (chan_type == B16D_CHAN_PUCCH && v->pucch_tx_power == MODEM_STATS_ABSENT_U8) {
            uint64_t value = 0;
            if (!modem_stats_unpk_bit_rows(&layout.pucch_tx_power, 1, &value)) return false;
            v->pucch_tx_power = static_cast<uint32_t>(value);
        } else if (chan_type == B16D_CHAN_PUSCH && v->pusch_tx_power == MODEM_STATS_ABSENT_U8) {
            uint64_t values[4];
            if (!modem_stats_log_read_rows(layout.pusch, values)) return false;
            v->pusch_tx_power = static_cast<uint32_t>(values[0]);
            v->pusch_num_res_blocks = static_cast<uint32_t>(values[1]);
            v->pusch_mcs = static_cast<uint32_t>(values[2]);
            v->pusch_modulation_type = static_cast<uint32_t>(values[3]);
        }
        modem_stats_bit_advance(layout.record_bits - B16D_CHAN_TYPE_AT - 1);
    }
    return true;
}

/* ---- 0xB14E PUSCH CSF ------------------------------------------------------ */

constexpr uint8_t B14E_VERSION = 163;
constexpr modem_stats_bit_field_row B14E_ROWS[] = {
    {"rank_idx", 28, 2, 8},
    {"wideband_cqi_cw0", 39, 4, 8},
    {"wideband_cqi_cw1", 43, 4, 8},
};
static_assert(modem_stats_log_rows_fit(B14E_ROWS), "0xB14E rows fit their destinations");

/* ---- 0xB173 PDSCH stat indication ------------------------------------------- */

constexpr uint32_t B173_MAX_TRANSPORTS = 2;
constexpr uint8_t B173_RNTI_C = 0;
constexpr uint8_t B173_CRC_PASS = 1;

enum { B173_SRV_CELL_IDX, B173_NUM_TRANSPORTS, B173_NUM_LAYERS, B173_HEAD_ROWS };
enum { B173_TB_BYTES, B173_MCS, B173_RB, B173_MOD_TYPE, B173_RNTI_TYPE, B173_CRC_RESULT, B173_TB_ROWS };

typedef struct {
    uint8_t version;
    uint32_t record_bits;
    uint32_t tb_at_bits;   /* first transport block slot */
    uint32_t tb_slot_bits; /* each of the two slots */
    modem_stats_bit_field_row head[B173_HEAD_ROWS];
    modem_stats_bit_field_row tb[B173_TB_ROWS];
} b173_layout;

constexpr b173_layout B173_LAYOUTS[] = {
    {48,
     320,
     96,
     96,
     {{"srv_cell_idx", 40, 3, 8}, {"num_transports", 32, 8, 8}, {"num_layers", 24, 8, 8}},
     {{"tb_bytes", 32, 16, 16},
      {"pdsch_mcs", 48, 8, 8},
      {"pdsch_rb", 56, 8, 8},
      {"pdsch_mod_type", 64, 8, 8},
      {"pdsch_rnti_type", 8, 4, 8},
      {"crc_result", 7, 1, 8}}},
    {49,
     384,
     96,
     128,
     {{"srv_cell_idx", 40, 3, 8}, {"num_transports", 32, 8, 8}, {"num_layers", 24, 8, 8}},
     {{"tb_bytes", 48, 16, 16},
      {"pdsch_mcs", 64, 8, 8},
      {"pdsch_rb", 72, 8, 8},
      {"pdsch_mod_type", 80, 8, 8},
      {"pdsch_rnti_type", 8, 4, 8},
      {"crc_result", 7, 1, 8}}},
};
constexpr uint32_t B173_VERSIONS[] = {48, 49};
static_assert(modem_stats_log_rows_fit(B173_LAYOUTS[0].tb) && modem_stats_log_rows_fit(B173_LAYOUTS[1].tb) &&
                  modem_stats_log_rows_within(B173_LAYOUTS[0].tb, B173_LAYOUTS[0].tb_slot_bits) &&
                  modem_stats_log_rows_within(B173_LAYOUTS[1].tb, B173_LAYOUTS[1].tb_slot_bits),
              "0xB173 transport block rows fit and end inside their slot");
static_assert(B173_LAYOUTS[0].tb_at_bits + B173_MAX_TRANSPORTS * B173_LAYOUTS[0].tb_slot_bits <=
                      B173_LAYOUTS[0].record_bits &&
                  B173_LAYOUTS[1].tb_at_bits + B173_MAX_TRANSPORTS * B173_LAYOUTS[1].tb_slot_bits <=
                      B173_LAYOUTS[1].record_bits,
              "0xB173 slots end inside their record");

typedef struct {
    uint32_t tb_bytes;
    uint32_t pdsch_mcs, pdsch_rb, pdsch_mod_type, pdsch_rnti_type, crc_result, num_layers;
    uint32_t num_layers_crnti;
    uint64_t tb_bytes_crnti;
} b173_values;

/* Reads one record at the current bit position; false stops the parser. */
bool b173_read_record(const b173_layout &layout, b173_values *v, const char *parser)
{
    uint64_t head[B173_HEAD_ROWS];
    if (!modem_stats_unpk_bit_rows(layout.head, B173_NUM_TRANSPORTS + 1, head)) return false;
    if (head[B173_NUM_TRANSPORTS] > B173_MAX_TRANSPORTS) {
        modem_stats_data_not_valid(static_cast<int32_t>(head[B173_NUM_TRANSPORTS]), parser);
        return false;
    }
    bool has_crnti = false;
    for (uint32_t t = 0; t < head[B173_NUM_TRANSPORTS]; t++) {
        modem_stats_bit_field_row rows[B173_TB_ROWS];
        for (uint32_t i = 0; i < B173_TB_ROWS; i++) {
            rows[i] = layout.tb[i];
            rows[i].offset += layout.tb_at_bits + t * layout.tb_slot_bits;
        }
        uint64_t tb[B173_TB_ROWS];
        if (!modem_stats_unpk_bit_rows(rows, B173_TB_ROWS, tb)) return false;
        v->tb_bytes += static_cast<uint32_t>(tb[B173_TB_BYTES]);
        v->pdsch_mcs = static_cast<uint32_t>(tb[B173_MCS]);
        v->pdsch_rb = static_cast<uint32_t>(tb[B173_RB]);
        v->pdsch_mod_type = static_cast<uint32_t>(tb[B173_MOD_TYPE]);
        v->pdsch_rnti_type = static_cast<uint32_t>(tb[B173_RNTI_TYPE]);
        v->crc_result = static_cast<uint32_t>(tb[B173_CRC_RESULT]);
        if (tb[B173_RNTI_TYPE] == B173_RNTI_C) {
            has_crnti = true;
            if (tb[B173_CRC_RESULT] == B173_CRC_PASS) v->tb_bytes_crnti += tb[B173_TB_BYTES];
        }
    }
    if (!modem_stats_unpk_bit_rows(&layout.head[B173_NUM_LAYERS], 1, &head[B173_NUM_LAYERS])) return false;
    v->num_layers = static_cast<uint32_t>(head[B173_NUM_LAYERS]);
    if (has_crnti) v->num_layers_crnti = v->num_layers;
    modem_stats_bit_advance(layout.record_bits);
    return true;
}

/* ---- 0xB16E / 0xB16F power control ------------------------------------------ */

constexpr uint32_t POWER_CONTROL_RECORD_BITS = 96;
constexpr uint32_t POWER_CONTROL_TX_POWER_BITS = 8;
constexpr modem_stats_bit_field_row B16E_ROWS[] = {{"pusch_tx_power", 17, 8, 8}, {"dl_path_loss", 54, 8, 8}};
constexpr modem_stats_bit_field_row B16F_ROWS[] = {{"pucch_tx_power", 14, 8, 8}, {"dl_path_loss", 43, 8, 8}};
static_assert(modem_stats_log_rows_within(B16E_ROWS, POWER_CONTROL_RECORD_BITS) &&
                  modem_stats_log_rows_within(B16F_ROWS, POWER_CONTROL_RECORD_BITS),
              "power control fields end inside their record");

/* Shared shape of 0xB16E and 0xB16F: the last record's transmit power
 * (signed dBm) and path loss. */
void power_control(uint8_t accepted, const modem_stats_bit_field_row (&rows)[2], const char *power_name,
                   modem_stats_data_id_e_type id, const char *parser, modem_stats_data_id_e_type *data_id,
                   modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != accepted) {
        modem_stats_version_not_support(version, parser);
        return;
    }
    modem_stats_data_skip(2);
    uint8_t num_records = 0;
    if (!modem_stats_data_unpk("num_records", &num_records)) return;
    if (!modem_stats_base_with_bit()) return;
    if (num_records == 0) {
        modem_stats_data_not_valid(num_records, parser);
        return;
    }
    uint64_t values[2] = {0, 0};
    for (uint32_t r = 0; r < num_records; r++) {
        if (!modem_stats_log_read_rows(rows, values)) return;
        modem_stats_bit_advance(POWER_CONTROL_RECORD_BITS);
    }
    int32_t tx_power = modem_stats_log_sign_extend(values[0], POWER_CONTROL_TX_POWER_BITS);
    modem_stats_log_printf("version = %d, num_records = %d, %s %d, dl_path_loss %d\n", version, num_records, power_name,
                           tx_power, static_cast<int>(values[1]));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"num_records", num_records, 1},
        {power_name, static_cast<uint8_t>(tx_power), 1},
        {"dl_path_loss", values[1], 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(id, data_id, record);
}

/* ---- 0xB111 receive AGC -------------------------------------------------------- */

constexpr uint8_t B111_VERSION = 162;
constexpr uint32_t B111_RECORD_BITS = 64;
constexpr modem_stats_bit_field_row B111_ROWS[] = {
    {"rx_antenna_index", 0, 4, 8}, {"rssi0_i", 16, 12, 16}, {"rssi1_i", 28, 12, 16},
    {"rssi2_i", 40, 12, 16},       {"rssi3_i", 52, 12, 16},
};
static_assert(modem_stats_log_rows_fit(B111_ROWS) && modem_stats_log_rows_within(B111_ROWS, B111_RECORD_BITS),
              "0xB111 rows fit and end inside their record");

}  // namespace

void modem_stats_parse_b16d_diag_log_lte_tx_power(modem_stats_data_id_e_type *data_id,
                                                  modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    uint8_t num = 0;
    if (version == B16D_VERSION_49) {
        if (!modem_stats_base_with_bit()) return;
        if (!modem_stats_unpk_mid("num", B16D_V49_NUM_SKIP_BITS, 8, &num)) return;
    } else if (version == B16D_VERSION_48) {
        modem_stats_data_skip(B16D_HEADER_RESERVED);
        if (!modem_stats_data_unpk("num", &num)) return;
        if (!modem_stats_base_with_bit()) return;
    } else {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    b16d_values v = {MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U16, MODEM_STATS_ABSENT_U16,
                     MODEM_STATS_ABSENT_U8};
    if (!b16d_read_records(version == B16D_VERSION_49 ? B16D_V49 : B16D_V48, num, &v)) return;
    modem_stats_log_printf(
        "version = %d, num = %d, pucch_tx_power %d, pusch_num_res_blocks = %d, pusch_modulation_type = %d, "
        "pusch_tx_power = %d, pusch_mcs = %d\n",
        version, num, static_cast<int>(v.pucch_tx_power), static_cast<int>(v.pusch_num_res_blocks),
        static_cast<int>(v.pusch_modulation_type), static_cast<int>(v.pusch_tx_power), static_cast<int>(v.pusch_mcs));
    if (num == 0) return;

    /* Fixed layout: the first ten bytes go in directly. */
    modem_stats_data_pk_begin();
    modem_stats_data_pk_direct(version, sizeof(uint8_t));
    modem_stats_data_pk_direct(v.pucch_tx_power, sizeof(uint32_t));
    modem_stats_data_pk_direct(v.pusch_tx_power, sizeof(uint32_t));
    modem_stats_data_pk_direct(v.pusch_modulation_type, sizeof(uint8_t));
    if (!modem_stats_data_pk("pusch_num_res_blocks", v.pusch_num_res_blocks, sizeof(uint16_t))) return;
    if (!modem_stats_data_pk("pusch_mcs", v.pusch_mcs, sizeof(uint16_t))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_TX_POWER, data_id, record);
}

void modem_stats_parse_b14e_diag_log_lte_pusch_csf(modem_stats_data_id_e_type *data_id,
                                                   modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != B14E_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    if (!modem_stats_base_with_bit()) return;
    uint64_t v[3];
    if (!modem_stats_log_read_rows(B14E_ROWS, v)) return;
    modem_stats_log_printf("version = %d, rank_idx = %d, wideband_cqi_cw0 = %d\n", version, static_cast<int>(v[0]),
                           static_cast<int>(v[1]));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1}, {"rank_idx", v[0], 1}, {"wideband_cqi_cw0", v[1], 1}, {"wideband_cqi_cw1", v[2], 1}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_PUSCH_CSF, data_id, record);
}

void modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B173_VERSIONS, __func__)) return;
    const b173_layout &layout = B173_LAYOUTS[modem_stats_log_version_index(version, B173_VERSIONS, 2)];
    uint8_t num_records = 0;
    if (!modem_stats_data_unpk("num_records", &num_records)) return;
    modem_stats_data_skip(2);
    if (!modem_stats_base_with_bit()) return;
    if (num_records == 0) {
        modem_stats_data_not_valid(num_records, __func__);
        return;
    }
    b173_values v = {};
    for (uint32_t r = 0; r < num_records; r++) {
        if (!b173_read_record(layout, &v, __func__)) return;
    }
    modem_stats_log_printf(
        "version = %d, num_records = %d, pdsch_mcs = %d, pdsch_rb = %d, pdsch_mod_type = %d, pdsch_rnti_type = %d, "
        "num_layers = %d\n",
        version, num_records, static_cast<int>(v.pdsch_mcs), static_cast<int>(v.pdsch_rb),
        static_cast<int>(v.pdsch_mod_type), static_cast<int>(v.pdsch_rnti_type), static_cast<int>(v.num_layers));
    modem_stats_log_printf("tb_bytes = %d, num_layers_crnti %d, tb_bytes_crnti %lu, crc_result %d\n",
                           static_cast<int>(v.tb_bytes), static_cast<int>(v.num_layers_crnti),
                           static_cast<unsigned long>(v.tb_bytes_crnti), static_cast<int>(v.crc_result));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"num_records", num_records, 1},
        {"pdsch_mcs", v.pdsch_mcs, 1},
        {"pdsch_rb", v.pdsch_rb, 1},
        {"pdsch_mod_type", v.pdsch_mod_type, 1},
        {"pdsch_rnti_type", v.pdsch_rnti_type, 1},
        {"num_layers", v.num_layers, 1},
        {"crc_result", v.crc_result, 1},
        {"tb_bytes", v.tb_bytes, 4},
        {"num_layers_crnti", v.num_layers_crnti, 1},
        {"tb_bytes_crnti", v.tb_bytes_crnti, 8},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_PDSCH_STAT_IND, data_id, record);
}

void modem_stats_parse_b16e_diag_log_lte_pusch_power_control(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    constexpr uint8_t B16E_VERSION = 48;
    power_control(B16E_VERSION, B16E_ROWS, "pusch_tx_power", MODEM_STATS_DATA_ID_LTE_PUSCH_POWER_CTRL, __func__,
                  data_id, record);
}

void modem_stats_parse_b16f_diag_log_lte_pucch_power_control(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    constexpr uint8_t B16F_VERSION = 49;
    power_control(B16F_VERSION, B16F_ROWS, "pucch_tx_power", MODEM_STATS_DATA_ID_LTE_PUCCH_POWER_CTRL, __func__,
                  data_id, record);
}

void modem_stats_parse_b111_diag_log_lte_ll1_rx_agc(modem_stats_data_id_e_type *data_id,
                                                    modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != B111_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    uint8_t num_records = 0;
    if (!modem_stats_data_unpk("num_records", &num_records)) return;
    modem_stats_data_skip(2);
    if (!modem_stats_base_with_bit()) return;
    if (num_records == 0) {
        modem_stats_data_not_valid(num_records, __func__);
        return;
    }
    uint64_t v[5] = {};
    for (uint32_t r = 0; r < num_records; r++) {
        if (!modem_stats_log_read_rows(B111_ROWS, v)) return;
        modem_stats_bit_advance(B111_RECORD_BITS);
    }
    float rssi[4];
    for (uint32_t i = 0; i < 4; i++) rssi[i] = modem_stats_lte_rssi(static_cast<int32_t>(v[1 + i]));
    modem_stats_log_printf("version = %d, num_records = %d, rssi0_i = %d, rssi1_i = %d, rssi2_i = %d, rssi3_i = %d\n",
                           version, num_records, static_cast<int>(v[1]), static_cast<int>(v[2]), static_cast<int>(v[3]),
                           static_cast<int>(v[4]));
    modem_stats_log_print_buf("rssi0 = %.2f, rssi1 = %.2f, rssi2 = %.2f, rssi3 = %.2f", rssi[0], rssi[1], rssi[2],
                              rssi[3]);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"rx_antenna_index", v[0], 1},
        {"rssi0", modem_stats_log_float_bits(rssi[0]), 4},
        {"rssi1", modem_stats_log_float_bits(rssi[1]), 4},
        {"rssi2", modem_stats_log_float_bits(rssi[2]), 4},
        {"rssi3", modem_stats_log_float_bits(rssi[3]), 4},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_LL1_RX_AGC, data_id, record);
}
