/* NR5G ML1 logs: serving beam (0xB975), measurement database update
 * (0xB97F), flow-control information (0xB981) and antenna switch diversity
 * (0xB98F).  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

/* ---- 0xB975 serving beam ------------------------------------------------- */

constexpr uint32_t B975_VERSIONS[] = {0x10002};
/* rsrp_i at bit 160 and rsrq_i right after it, read on from the version. */
constexpr uint32_t B975_RSRP_SKIP_BITS = 128;
constexpr uint32_t Q7_FIELD_BITS = 32;

/* ---- 0xB97F measurement database update ------------------------------------ */

/* Carrier fields, in reading order: cc_id, num_cells, srv_pci, rsrp_i2,
 * rsrp_i3.  Up to 2.10 the carrier is 32 bytes with the serving cell index
 * byte (@5) as cc_id and the serving RSRP of the two receive paths @12 and
 * @16.  3.0 has 40 bytes: cc_id @4 ahead of num_cells @5, the serving cell
 * index moved to @8, and four serving RSRP values @12..@24 (Rx 0..3), of
 * which rsrp_i2/rsrp_i3 take Rx 2 and Rx 3. */
constexpr size_t B97F_CARRIER_FIELDS = 5;
typedef modem_stats_bit_field_row b97f_carrier_rows[B97F_CARRIER_FIELDS];
constexpr b97f_carrier_rows B97F_CARRIER_ROWS_V2 = {{"cc_id", 40, 8, 8},
                                                    {"num_cells", 32, 8, 8},
                                                    {"srv_pci", 48, 16, 16},
                                                    {"rsrp_i2", 96, 32, 32},
                                                    {"rsrp_i3", 128, 32, 32}};
constexpr b97f_carrier_rows B97F_CARRIER_ROWS_V3 = {{"cc_id", 32, 8, 8},
                                                    {"num_cells", 40, 8, 8},
                                                    {"srv_pci", 48, 16, 16},
                                                    {"rsrp_i2", 160, 32, 32},
                                                    {"rsrp_i3", 192, 32, 32}};
constexpr uint32_t B97F_CARRIER_BYTES_V2 = 32;
constexpr uint32_t B97F_CARRIER_BYTES_V3 = 40;

typedef struct {
    uint32_t version;
    uint32_t num_layers_at; /* byte of the number of layers */
    uint32_t carriers_at;   /* first carrier */
    uint32_t carrier_bytes;
    uint32_t beam_bytes;
    const b97f_carrier_rows *carrier_rows;
} b97f_layout;

constexpr b97f_layout B97F_LAYOUTS[] = {
    {0x20003, 4, 8, B97F_CARRIER_BYTES_V2, 60, &B97F_CARRIER_ROWS_V2},
    {0x20006, 4, 8, B97F_CARRIER_BYTES_V2, 44, &B97F_CARRIER_ROWS_V2},
    {0x20007, 4, 16, B97F_CARRIER_BYTES_V2, 44, &B97F_CARRIER_ROWS_V2},
    {0x20008, 4, 16, B97F_CARRIER_BYTES_V2, 44, &B97F_CARRIER_ROWS_V2},
    {0x20009, 8, 20, B97F_CARRIER_BYTES_V2, 44, &B97F_CARRIER_ROWS_V2},
    {0x2000A, 8, 20, B97F_CARRIER_BYTES_V2, 84, &B97F_CARRIER_ROWS_V2},
    {0x30000, 8, 20, B97F_CARRIER_BYTES_V3, 84, &B97F_CARRIER_ROWS_V3},
};
constexpr size_t B97F_LAYOUT_COUNT = sizeof(B97F_LAYOUTS) / sizeof(B97F_LAYOUTS[0]);
constexpr uint32_t B97F_CELL_BYTES = 16;
constexpr uint8_t B97F_MAX_LAYERS = 8;
constexpr uint8_t B97F_MAX_CELLS = 32;
constexpr uint8_t B97F_MAX_BEAMS = 8;
constexpr uint8_t B97F_MAX_CC_ID = 15;
constexpr size_t B97F_RECORD_CARRIERS = sizeof(MODEM_STATS_B97F_RECORD_IDS) / sizeof(MODEM_STATS_B97F_RECORD_IDS[0]);

constexpr modem_stats_bit_field_row B97F_CELL_ROWS[] = {
    {"pci_1", 0, 16, 16}, {"num_beams", 32, 4, 8}, {"rsrq_i", 96, 32, 32}};
constexpr modem_stats_bit_field_row B97F_BEAM_ROWS[] = {{"rsrp_i0", 160, 32, 32}, {"rsrp_i1", 192, 32, 32}};
static_assert(modem_stats_log_rows_within(B97F_CARRIER_ROWS_V2, B97F_CARRIER_BYTES_V2 * 8) &&
                  modem_stats_log_rows_within(B97F_CARRIER_ROWS_V3, B97F_CARRIER_BYTES_V3 * 8) &&
                  modem_stats_log_rows_within(B97F_CELL_ROWS, B97F_CELL_BYTES * 8) &&
                  modem_stats_log_rows_within(B97F_BEAM_ROWS, 44 * 8),
              "0xB97F fields end inside their carrier, cell and smallest beam");

/* What one carrier reports: the serving RSRP of Rx 2/3 and, from the
 * serving cell (its PCI is srv_pci), the cell RSRQ and the first beam's
 * RSRP of Rx 0/1; 0 where absent (no value). */
typedef struct {
    uint8_t cc_id;
    int32_t rsrp_i[4];
    int32_t rsrq_i;
} b97f_carrier;

const b97f_layout *b97f_find_layout(uint32_t version)
{
    for (size_t i = 0; i < B97F_LAYOUT_COUNT; i++) {
        if (B97F_LAYOUTS[i].version == version) return &B97F_LAYOUTS[i];
    }
    return nullptr;
}

bool b97f_within(uint32_t value, uint32_t limit, const char *name)
{
    if (value <= limit) return true;
    modem_stats_data_not_valid(static_cast<int32_t>(value), name);
    return false;
}

/* Reads the cells of carrier `l` starting at byte `at`; leaves `*at` after
 * them. */
bool b97f_read_cells(const b97f_layout &layout, uint32_t l, uint32_t num_cells, uint16_t srv_pci, uint32_t *at,
                     b97f_carrier *carrier)
{
    bool serving_seen = false;
    for (uint32_t c = 0; c < num_cells; c++) {
        if (!modem_stats_log_seek(*at)) return false;
        uint64_t cell[3];
        if (!modem_stats_log_read_rows(B97F_CELL_ROWS, cell)) return false;
        if (!b97f_within(static_cast<uint32_t>(cell[1]), B97F_MAX_BEAMS, "b97f num_beams")) return false;
        int32_t rsrq_i = static_cast<int32_t>(cell[2]);
        modem_stats_log_printf("cell[%d][%d]: pci_1 = %d, num_beams = %d, rsrq_i = %d\n", static_cast<int>(l),
                               static_cast<int>(c), static_cast<int>(cell[0]), static_cast<int>(cell[1]), rsrq_i);
        bool serving = !serving_seen && cell[0] == srv_pci;
        if (serving) {
            serving_seen = true;
            carrier->rsrq_i = rsrq_i;
        }
        *at += B97F_CELL_BYTES;
        for (uint32_t b = 0; b < cell[1]; b++) {
            if (!modem_stats_log_seek(*at)) return false;
            uint64_t beam[2];
            if (!modem_stats_log_read_rows(B97F_BEAM_ROWS, beam)) return false;
            modem_stats_log_printf("beam[%d][%d][%d]: rsrp_i0 = %d, rsrp_i1 = %d\n", static_cast<int>(l),
                                   static_cast<int>(c), static_cast<int>(b), static_cast<int32_t>(beam[0]),
                                   static_cast<int32_t>(beam[1]));
            if (serving && b == 0) {
                carrier->rsrp_i[0] = static_cast<int32_t>(beam[0]);
                carrier->rsrp_i[1] = static_cast<int32_t>(beam[1]);
            }
            *at += layout.beam_bytes;
        }
    }
    return true;
}

/* ---- 0xB981 flow-control information ------------------------------------------ */

constexpr uint32_t B981_VERSIONS[] = {0x10001};
constexpr int32_t B981_ACTION_RESERVED = 1;

/* ---- 0xB98F antenna switch diversity --------------------------------------------- */

constexpr uint32_t B98F_VERSIONS[] = {0x20000};
constexpr int32_t B98F_HEADER_RESERVED = 3;
constexpr modem_stats_bit_field_row B98F_ROWS[] = {
    {"ant_rx_0_old", 0, 4, 8},  {"ant_rx_0_new", 4, 4, 8},  {"ant_rx_1_old", 8, 4, 8},  {"ant_rx_1_new", 12, 4, 8},
    {"ant_rx_2_old", 16, 4, 8}, {"ant_rx_2_new", 20, 4, 8}, {"ant_rx_3_old", 24, 4, 8}, {"ant_rx_3_new", 28, 4, 8},
    {"ant_tx_0_old", 32, 4, 8}, {"ant_tx_0_new", 36, 4, 8}, {"ant_tx_1_old", 40, 4, 8}, {"ant_tx_1_new", 44, 4, 8},
};
constexpr size_t B98F_FIELDS = sizeof(B98F_ROWS) / sizeof(B98F_ROWS[0]);

}  // namespace

void modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam(modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B975_VERSIONS, __func__)) return;
    if (!modem_stats_base_with_bit()) return;
    uint32_t rsrp_raw = 0, rsrq_raw = 0;
    if (!modem_stats_unpk_mid("rsrp_i", B975_RSRP_SKIP_BITS, Q7_FIELD_BITS, &rsrp_raw)) return;
    if (!modem_stats_unpk_mid("rsrq_i", 0, Q7_FIELD_BITS, &rsrq_raw)) return;
    int32_t rsrp_i = static_cast<int32_t>(rsrp_raw);
    int32_t rsrq_i = static_cast<int32_t>(rsrq_raw);
    float rsrp = modem_stats_nr5g_rsrp(rsrp_i);
    float rsrq = modem_stats_nr5g_rsrq(rsrq_i);
    modem_stats_log_print_buf("version = %d, rsrp_i = %d, rsrq_i = %d, rsrp = %.2f, rsrq = %.2f",
                              static_cast<int>(version), rsrp_i, rsrq_i, rsrp, rsrq);

    modem_stats_data_pk_begin();
    modem_stats_data_pk_direct(version, sizeof(uint32_t));
    modem_stats_data_pk_direct(modem_stats_log_float_bits(rsrp), sizeof(float));
    modem_stats_data_pk_direct(modem_stats_log_float_bits(rsrq), sizeof(float));
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_ML1_SRV_BEAM, data_id, record);
}

void modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext(modem_stats_sub_id_e_type sub)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    const b97f_layout *layout = b97f_find_layout(version);
    if (!layout) {
        modem_stats_version_not_support(static_cast<int32_t>(version), __func__);
        return;
    }
    modem_stats_data_skip(static_cast<int32_t>(layout->num_layers_at - sizeof(version)));
    uint8_t num_layers = 0;
    if (!modem_stats_data_unpk("num_layers", &num_layers)) return;
    modem_stats_log_printf("version = %d, num_layers = %d\n", static_cast<int>(version), num_layers);
    if (!b97f_within(num_layers, B97F_MAX_LAYERS, "b97f num_layers")) return;

    b97f_carrier carriers[B97F_MAX_LAYERS];
    uint32_t at = layout->carriers_at;
    for (uint32_t l = 0; l < num_layers; l++) {
        if (!modem_stats_log_seek(at)) return;
        uint64_t v[B97F_CARRIER_FIELDS];
        if (!modem_stats_log_read_rows(*layout->carrier_rows, v)) return;
        modem_stats_log_printf("layer[%d]: cc_id = %d, num_cells = %d, srv_pci = %d, rsrp_i2 = %d, rsrp_i3 = %d\n",
                               static_cast<int>(l), static_cast<int>(v[0]), static_cast<int>(v[1]),
                               static_cast<int>(v[2]), static_cast<int32_t>(v[3]), static_cast<int32_t>(v[4]));
        if (!b97f_within(static_cast<uint32_t>(v[0]), B97F_MAX_CC_ID, "b97f cc_id")) return;
        if (!b97f_within(static_cast<uint32_t>(v[1]), B97F_MAX_CELLS, "b97f num_cells")) return;
        b97f_carrier &carrier = carriers[l];
        carrier = {static_cast<uint8_t>(v[0]), {0, 0, static_cast<int32_t>(v[3]), static_cast<int32_t>(v[4])}, 0};
        at += layout->carrier_bytes;
        if (!b97f_read_cells(*layout, l, static_cast<uint32_t>(v[1]), static_cast<uint16_t>(v[2]), &at, &carrier))
            return;
    }

    /* All reading is done: one record per carrier that has a data id. */
    uint32_t pk = 0;
    for (uint32_t l = 0; l < num_layers; l++) {
        const b97f_carrier &carrier = carriers[l];
        if (carrier.cc_id >= B97F_RECORD_CARRIERS) continue;
        float rsrp[4];
        for (uint32_t i = 0; i < 4; i++) rsrp[i] = modem_stats_nr5g_rsrp_ex(carrier.rsrp_i[i]);
        float rsrq = modem_stats_nr5g_rsrp_ex(carrier.rsrq_i);
        modem_stats_log_print_buf("pk[%d]: rsrp0 = %.2f, rsrp1 = %.2f, rsrp2 = %.2f, rsrp3 = %.2f, rsrq = %.2f",
                                  static_cast<int>(pk), rsrp[0], rsrp[1], rsrp[2], rsrp[3], rsrq);
        pk++;
        modem_stats_data_pk_begin();
        if (!modem_stats_data_pk("version", version, sizeof(uint32_t))) return;
        for (uint32_t i = 0; i < 4; i++) {
            if (!modem_stats_data_pk("rsrp", modem_stats_log_float_bits(rsrp[i]), sizeof(float))) return;
        }
        if (!modem_stats_data_pk("rsrq", modem_stats_log_float_bits(rsrq), sizeof(float))) return;
        modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
        modem_stats_single_data_common_type *made = nullptr;
        if (!modem_stats_data_pk_finish(MODEM_STATS_B97F_RECORD_IDS[carrier.cc_id], &id, &made)) return;
        modem_stats_data_check_and_update_for_diag(sub, id, made);
    }
}

void modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information(modem_stats_sub_id_e_type sub,
                                                             modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    (void)sub;
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B981_VERSIONS, __func__)) return;
    uint8_t state_last = 0, state_current = 0, num_action = 0;
    if (!modem_stats_data_unpk("state_last", &state_last)) return;
    if (!modem_stats_data_unpk("state_current", &state_current)) return;
    if (!modem_stats_data_unpk("num_action", &num_action)) return;
    modem_stats_data_skip(1);
    /* The last action is reported; none leaves the absent markers. */
    uint8_t action_type = MODEM_STATS_ABSENT_U8, level_last = MODEM_STATS_ABSENT_U8,
            level_current = MODEM_STATS_ABSENT_U8;
    for (uint32_t a = 0; a < num_action; a++) {
        if (!modem_stats_data_unpk("action_type", &action_type)) return;
        if (!modem_stats_data_unpk("level_last", &level_last)) return;
        if (!modem_stats_data_unpk("level_current", &level_current)) return;
        modem_stats_data_skip(B981_ACTION_RESERVED);
    }
    modem_stats_log_printf(
        "version = %d, state_last = %d, state_current = %d, num_action = %d, action_type = %d, level_last = %d, "
        "level_current = %d\n",
        static_cast<int>(version), state_last, state_current, num_action, action_type, level_last, level_current);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 4},
        {"state_last", state_last, 1},
        {"state_current", state_current, 1},
        {"num_action", num_action, 1},
        {"action_type", action_type, 1},
        {"level_last", level_last, 1},
        {"level_current", level_current, 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_ML1_FC_INFO, data_id, record);
}

void modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity(modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B98F_VERSIONS, __func__)) return;
    uint8_t num_cc = 0;
    if (!modem_stats_data_unpk("num_cc", &num_cc)) return;
    modem_stats_data_skip(B98F_HEADER_RESERVED);
    if (!modem_stats_base_with_bit()) return;
    uint64_t a[B98F_FIELDS];
    if (!modem_stats_log_read_rows(B98F_ROWS, a)) return;
    modem_stats_log_printf(
        "version = %d, ant_rx_0_old = %d, ant_rx_0_new = %d, ant_rx_1_old = %d, ant_rx_1_new = %d, ant_rx_2_old = "
        "%d, ant_rx_2_new = %d\n",
        static_cast<int>(version), static_cast<int>(a[0]), static_cast<int>(a[1]), static_cast<int>(a[2]),
        static_cast<int>(a[3]), static_cast<int>(a[4]), static_cast<int>(a[5]));
    modem_stats_log_printf(
        "ant_rx_3_old = %d, ant_rx_3_new = %d, ant_tx_0_old = %d, ant_tx_0_new = %d, ant_tx_1_old = %d, "
        "ant_tx_1_new = %d\n",
        static_cast<int>(a[6]), static_cast<int>(a[7]), static_cast<int>(a[8]), static_cast<int>(a[9]),
        static_cast<int>(a[10]), static_cast<int>(a[11]));

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("version", version, sizeof(uint32_t))) return;
    for (size_t i = 0; i < B98F_FIELDS; i++) {
        if (!modem_stats_data_pk(B98F_ROWS[i].name, a[i], sizeof(uint8_t))) return;
    }
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_ML1_ASDIV, data_id, record);
}
