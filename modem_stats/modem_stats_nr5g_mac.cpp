/* NR5G MAC logs of the records-of-entries family: DCI info (0xB885), PDSCH
 * status (0xB887), PDSCH stats (0xB888), CSF report (0xB8A7) and UL
 * physical channel power control (0xB884).
 *
 * All start with a 32-bit version and an 8-bit number of records; each
 * record has a small header with its entry count, and its entries are
 * bit-packed and of a fixed size per version (0xB888 excepted: fixed
 * records of whole-byte counters).  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>
#include <stdlib.h>

#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

/* u32 version, u8 number of records, three reserved bytes. */
constexpr int32_t NR_MAC_HEADER_RESERVED = 3;
constexpr uint32_t NR_MAC_RECORDS_AT = 8;
constexpr uint32_t TX_POWER_BITS = 8;

/* Reads the version (refusing the others) and the number of records
 * (refusing none); `index` is the version's place in `versions`. */
template <size_t N>
bool nr_mac_header(const uint32_t (&versions)[N], const char *parser, uint32_t *version, size_t *index,
                   uint8_t *num_records)
{
    if (!modem_stats_data_unpk("version", version)) return false;
    if (!modem_stats_log_version_check(*version, versions, parser)) return false;
    *index = modem_stats_log_version_index(*version, versions, N);
    if (!modem_stats_data_unpk("num_records", num_records)) return false;
    modem_stats_data_skip(NR_MAC_HEADER_RESERVED);
    if (*num_records == 0) {
        /* Nothing to record. */
        modem_stats_data_not_valid(0, parser);
        return false;
    }
    return true;
}

/* Reads a record's entry count (one row) at byte `at`. */
bool read_count(uint32_t at, const modem_stats_bit_field_row &row, uint32_t *count)
{
    if (!modem_stats_log_seek(at)) return false;
    return modem_stats_unpk_at(row.name, row.offset, row.width, count);
}

/* ---- 0xB885 DCI info ---------------------------------------------------- */

constexpr uint32_t B885_VERSIONS[] = {0x20007, 0x2000A, 0x2000C};
enum { B885_FORMAT, B885_RAW_INCLUDED, B885_MCS_UL, B885_RB, B885_MCS_DL, B885_ROWS };
constexpr modem_stats_bit_field_row B885_DCI_ROWS[] = {
    {"dci_format", 0, 4, 8},    {"raw_dci_included", 4, 1, 8}, {"mcs_ul", 8, 5, 8},
    {"rb_assi_num", 16, 9, 16}, {"mcs_dl", 32, 5, 8},
};
static_assert(modem_stats_log_rows_fit(B885_DCI_ROWS) && modem_stats_log_rows_within(B885_DCI_ROWS, 12 * 8),
              "0xB885 DCI rows fit and end inside the smallest entry");
/* DCI formats 0_0 and 0_1 grant the uplink, 1_0 and 1_1 the downlink. */
constexpr uint8_t DCI_FORMAT_LAST_UL = 1;
constexpr uint8_t DCI_FORMAT_LAST_DL = 3;
constexpr uint32_t B885_RAW_DCI_BYTES = 8;

typedef struct {
    uint32_t record_header_bytes;
    modem_stats_bit_field_row num_dci;
    uint32_t dci_bytes;
} b885_layout;

constexpr b885_layout B885_LAYOUTS[] = {
    {4, {"num_dci", 8, 4, 8}, 12},
    {8, {"num_dci", 32, 4, 8}, 12},
    {8, {"num_dci", 32, 4, 8}, 16},
};

/* ---- 0xB887 PDSCH status ------------------------------------------------ */

constexpr uint32_t B887_VERSIONS[] = {0x20004, 0x20005, 0x30002};
enum { B887_MOD_TYPE, B887_MCS, B887_RNTI_TYPE, B887_NUM_LAYERS, B887_NUM_MIMO, B887_ROWS };
constexpr uint32_t MIMO_2X2 = 2;

typedef struct {
    uint32_t record_header_bytes;
    modem_stats_bit_field_row num_pdsch_status;
    uint32_t status_bytes;
    modem_stats_bit_field_row status[B887_ROWS];
} b887_layout;

constexpr b887_layout B887_LAYOUTS[] = {
    {4,
     {"num_pdsch_status", 16, 4, 8},
     8,
     {{"mod_type", 4, 3, 8},
      {"mcs", 8, 5, 8},
      {"pdsch_rnti_type", 13, 3, 8},
      {"num_layers", 16, 3, 8},
      {"num_mimo", 19, 3, 8}}},
    {4,
     {"num_pdsch_status", 16, 4, 8},
     12,
     {{"mod_type", 4, 3, 8},
      {"mcs", 8, 5, 8},
      {"pdsch_rnti_type", 13, 3, 8},
      {"num_layers", 16, 3, 8},
      {"num_mimo", 19, 3, 8}}},
    {8,
     {"num_pdsch_status", 32, 4, 8},
     12,
     {{"mod_type", 4, 4, 8},
      {"mcs", 8, 5, 8},
      {"pdsch_rnti_type", 13, 3, 8},
      {"num_layers", 16, 4, 8},
      {"num_mimo", 20, 4, 8}}},
};

/* The record 0xB887 made last, kept until the next one. */
modem_stats_single_data_common_type *g_b887_kept = nullptr;

/* Keeps `made` and frees the record it replaces (which was never handed
 * over). */
void b887_keep(modem_stats_single_data_common_type *made)
{
    if (g_b887_kept) {
        free(g_b887_kept->data);
        free(g_b887_kept);
    }
    g_b887_kept = made;
}

/* ---- 0xB888 PDSCH stats --------------------------------------------------- */

constexpr uint32_t B888_VERSIONS[] = {0x20002, 0x30000};

typedef struct {
    uint32_t num_records_at;
    uint32_t records_at;
    uint32_t record_bytes;
    uint32_t pdcp_decode_at, crc_fail_at, tb_bytes_at;
} b888_layout;

constexpr b888_layout B888_LAYOUTS[] = {
    {15, 28, 72, 8, 16, 48},
    {16, 32, 80, 8, 16, 56},
};

/* ---- 0xB8A7 CSF report ------------------------------------------------------ */

constexpr uint32_t B8A7_VERSIONS[] = {0x20002};
constexpr uint32_t B8A7_RECORD_HEADER_BYTES = 4;
constexpr uint32_t B8A7_REPORT_BYTES = 8;
constexpr modem_stats_bit_field_row B8A7_NUM_CSF = {"num_csf_report", 24, 4, 8};
constexpr modem_stats_bit_field_row B8A7_ROWS[] = {
    {"metrics_ri", 3, 3, 8}, {"metrics_cqi", 12, 4, 8}, {"bitwidth_ri", 0, 3, 8}, {"bitwidth_cqi", 8, 4, 8}};

/* ---- 0xB884 UL physical channel power control ---------------------------------- */

constexpr uint32_t B884_VERSIONS[] = {0x10003, 0x10005, 0x30003};
constexpr uint32_t B884_RECORD_HEADER_BYTES = 4;
constexpr modem_stats_bit_field_row B884_NUM_CARRIERS = {"num_carriers", 24, 4, 8};
constexpr modem_stats_bit_field_row B884_BITMASK = {"bitmask_phychan", 8, 8, 8};
constexpr modem_stats_bit_field_row B884_NUM_CHANNELS = {"num_channels", 16, 4, 8};
constexpr modem_stats_bit_field_row B884_CHANNEL_TYPE = {"channel_type", 0, 3, 8};
enum { B884_PUSCH, B884_PUCCH, B884_SRS, B884_PRACH, B884_KINDS };
constexpr modem_stats_bit_field_row B884_POWER[B884_KINDS] = {
    {"tx_power_pusch", 8, 8, 8}, {"tx_power_pucch", 16, 8, 8}, {"tx_power_srs", 8, 8, 8}, {"tx_power_prach", 8, 8, 8}};
constexpr modem_stats_bit_field_row B884_NUM_PUCCHS = {"num_pucchs", 8, 4, 8};

typedef struct {
    uint32_t carrier_header_bytes;
    uint32_t channel_bytes;
} b884_layout;

constexpr b884_layout B884_LAYOUTS[] = {{4, 8}, {4, 12}, {8, 12}};

/* Reads the channels of one carrier from byte `at`; leaves `*at` after them. */
bool b884_read_carrier(const b884_layout &layout, uint32_t *at, int32_t power[B884_KINDS])
{
    uint32_t num_channels = 0;
    uint8_t bitmask_phychan = 0;
    if (!modem_stats_log_seek(*at)) return false;
    if (!modem_stats_unpk_at(B884_BITMASK.name, B884_BITMASK.offset, B884_BITMASK.width, &bitmask_phychan))
        return false;
    if (!modem_stats_unpk_at(B884_NUM_CHANNELS.name, B884_NUM_CHANNELS.offset, B884_NUM_CHANNELS.width, &num_channels))
        return false;
    *at += layout.carrier_header_bytes;
    for (uint32_t ch = 0; ch < num_channels; ch++, *at += layout.channel_bytes) {
        uint8_t channel_type = 0;
        if (!modem_stats_log_seek(*at)) return false;
        if (!modem_stats_unpk_at(B884_CHANNEL_TYPE.name, B884_CHANNEL_TYPE.offset, B884_CHANNEL_TYPE.width,
                                 &channel_type))
            return false;
        if (channel_type >= B884_KINDS) continue;
        if (channel_type == B884_PUCCH) {
            uint8_t num_pucchs = 0;
            if (!modem_stats_unpk_at(B884_NUM_PUCCHS.name, B884_NUM_PUCCHS.offset, B884_NUM_PUCCHS.width, &num_pucchs))
                return false;
        }
        const modem_stats_bit_field_row &row = B884_POWER[channel_type];
        uint8_t raw = 0;
        if (!modem_stats_unpk_at(row.name, row.offset, row.width, &raw)) return false;
        power[channel_type] = modem_stats_log_sign_extend(raw, TX_POWER_BITS);
    }
    return true;
}

}  // namespace

const modem_stats_single_data_common_type *modem_stats_b887_kept_record(void)
{
    return g_b887_kept;
}

void modem_stats_parse_b885_diag_log_nr5g_mac_dci_info(modem_stats_data_id_e_type *data_id,
                                                       modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    size_t index = 0;
    uint8_t num_records = 0;
    if (!nr_mac_header(B885_VERSIONS, __func__, &version, &index, &num_records)) return;
    const b885_layout &layout = B885_LAYOUTS[index];
    uint32_t mcs_dl = MODEM_STATS_ABSENT_U8, mcs_ul = MODEM_STATS_ABSENT_U8, rb_assi_num = MODEM_STATS_ABSENT_U16;
    uint32_t at = NR_MAC_RECORDS_AT;
    for (uint32_t r = 0; r < num_records; r++) {
        uint32_t num_dci = 0;
        if (!read_count(at, layout.num_dci, &num_dci)) return;
        at += layout.record_header_bytes;
        for (uint32_t d = 0; d < num_dci; d++) {
            if (!modem_stats_log_seek(at)) return;
            uint64_t v[B885_ROWS];
            if (!modem_stats_log_read_rows(B885_DCI_ROWS, v)) return;
            if (v[B885_FORMAT] <= DCI_FORMAT_LAST_UL) {
                mcs_ul = static_cast<uint32_t>(v[B885_MCS_UL]);
                rb_assi_num = static_cast<uint32_t>(v[B885_RB]);
            } else if (v[B885_FORMAT] <= DCI_FORMAT_LAST_DL) {
                mcs_dl = static_cast<uint32_t>(v[B885_MCS_DL]);
            }
            at += layout.dci_bytes + (v[B885_RAW_INCLUDED] ? B885_RAW_DCI_BYTES : 0);
        }
    }
    modem_stats_log_printf("version = %d, num_records = %d, mcs_dl = %d, mcs_ul = %d, rb_assi_num = %d\n",
                           static_cast<int>(version), num_records, static_cast<int>(mcs_dl), static_cast<int>(mcs_ul),
                           static_cast<int>(rb_assi_num));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"num_records", num_records, 1},
                                               {"mcs_dl", mcs_dl, 1},
                                               {"mcs_ul", mcs_ul, 1},
                                               {"rb_assi_num", rb_assi_num, 2}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_DCI_INFO, data_id, record);
}

void modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status(modem_stats_sub_id_e_type sub,
                                                           modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    size_t index = 0;
    uint8_t num_records = 0;
    if (!nr_mac_header(B887_VERSIONS, __func__, &version, &index, &num_records)) return;
    const b887_layout &layout = B887_LAYOUTS[index];
    uint32_t total = 0;
    uint64_t v[B887_ROWS] = {};
    uint32_t at = NR_MAC_RECORDS_AT;
    for (uint32_t r = 0; r < num_records; r++) {
        uint32_t num_pdsch_status = 0;
        if (!read_count(at, layout.num_pdsch_status, &num_pdsch_status)) return;
        at += layout.record_header_bytes;
        for (uint32_t s = 0; s < num_pdsch_status; s++, at += layout.status_bytes) {
            if (!modem_stats_log_seek(at)) return;
            if (!modem_stats_log_read_rows(layout.status, v)) return;
        }
        total += num_pdsch_status;
    }
    if (total == 0) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    uint32_t mimo22_flag = v[B887_NUM_LAYERS] == MIMO_2X2 && v[B887_NUM_MIMO] == MIMO_2X2;
    modem_stats_log_printf(
        "version = %d, num_records = %d, num_pdsch_status = %d, mod_type = %d, mcs = %d, pdsch_rnti_type = %d, "
        "num_layers = %d\n",
        static_cast<int>(version), num_records, static_cast<int>(total), static_cast<int>(v[B887_MOD_TYPE]),
        static_cast<int>(v[B887_MCS]), static_cast<int>(v[B887_RNTI_TYPE]), static_cast<int>(v[B887_NUM_LAYERS]));
    modem_stats_log_printf("sub_id = %d, num_layers = %d, num_mimo = %d, mimo22_flag = %d\n", sub,
                           static_cast<int>(v[B887_NUM_LAYERS]), static_cast<int>(v[B887_NUM_MIMO]),
                           static_cast<int>(mimo22_flag));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 4},
        {"num_pdsch_status", total, 1},
        {"mod_type", v[B887_MOD_TYPE], 1},
        {"mcs", v[B887_MCS], 1},
        {"pdsch_rnti_type", v[B887_RNTI_TYPE], 1},
        {"num_layers", v[B887_NUM_LAYERS], 1},
        {"num_mimo", v[B887_NUM_MIMO], 1},
        {"mimo22_flag", mimo22_flag, 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_single_data_common_type *made = nullptr;
    if (!modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATUS, data_id, &made)) return;
    /* The dispatcher does not release this record: it stays here. */
    b887_keep(made);
    if (record) *record = made;
}

void modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats(modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B888_VERSIONS, __func__)) return;
    const b888_layout &layout = B888_LAYOUTS[modem_stats_log_version_index(version, B888_VERSIONS, 2)];
    modem_stats_data_skip(static_cast<int32_t>(layout.num_records_at - sizeof(version)));
    uint8_t num_records = 0;
    if (!modem_stats_data_unpk("num_records", &num_records)) return;
    if (num_records == 0) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    uint32_t num_pdcp_decode = 0, num_crc_fail = 0;
    uint64_t tb_bytes = 0;
    for (uint32_t r = 0; r < num_records; r++) {
        uint32_t at = layout.records_at + r * layout.record_bytes;
        uint32_t decode = 0, crc_fail = 0;
        uint64_t bytes = 0;
        if (!modem_stats_log_seek(at + layout.pdcp_decode_at) || !modem_stats_data_unpk("num_pdcp_decode", &decode))
            return;
        if (!modem_stats_log_seek(at + layout.crc_fail_at) || !modem_stats_data_unpk("num_crc_fail", &crc_fail)) return;
        if (!modem_stats_log_seek(at + layout.tb_bytes_at) || !modem_stats_data_unpk("tb_bytes", &bytes)) return;
        num_pdcp_decode += decode;
        num_crc_fail += crc_fail;
        tb_bytes += bytes;
    }
    modem_stats_log_printf("version = %d, num_records = %d, num_pdcp_decode = %d, num_crc_fail = %d, tb_bytes = %lu\n",
                           static_cast<int>(version), num_records, static_cast<int>(num_pdcp_decode),
                           static_cast<int>(num_crc_fail), static_cast<unsigned long>(tb_bytes));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"num_records", num_records, 1},
                                               {"num_pdcp_decode", num_pdcp_decode, 4},
                                               {"num_crc_fail", num_crc_fail, 4},
                                               {"tb_bytes", tb_bytes, 8}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATS, data_id, record);
}

void modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report(modem_stats_data_id_e_type *data_id,
                                                         modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    size_t index = 0;
    uint8_t num_records = 0;
    if (!nr_mac_header(B8A7_VERSIONS, __func__, &version, &index, &num_records)) return;
    uint64_t v[4] = {MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8};
    uint32_t at = NR_MAC_RECORDS_AT;
    for (uint32_t r = 0; r < num_records; r++) {
        uint32_t num_csf_report = 0;
        if (!read_count(at, B8A7_NUM_CSF, &num_csf_report)) return;
        at += B8A7_RECORD_HEADER_BYTES;
        for (uint32_t c = 0; c < num_csf_report; c++, at += B8A7_REPORT_BYTES) {
            if (!modem_stats_log_seek(at)) return;
            if (!modem_stats_log_read_rows(B8A7_ROWS, v)) return;
        }
    }
    modem_stats_log_printf(
        "version = %d, num_records = %d, metrics_ri = %d, metrics_cqi = %d, bitwidth_ri = %d, bitwidth_cqi = %d\n",
        static_cast<int>(version), num_records, static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<int>(v[2]),
        static_cast<int>(v[3]));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"metrics_ri", v[0], 1},
                                               {"metrics_cqi", v[1], 1},
                                               {"bitwidth_ri", v[2], 1},
                                               {"bitwidth_cqi", v[3], 1}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_CSF_REPORT, data_id, record);
}

void modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    size_t index = 0;
    uint8_t num_records = 0;
    if (!nr_mac_header(B884_VERSIONS, __func__, &version, &index, &num_records)) return;
    const b884_layout &layout = B884_LAYOUTS[index];
    int32_t power[B884_KINDS] = {MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8, MODEM_STATS_ABSENT_U8,
                                 MODEM_STATS_ABSENT_U8};
    uint32_t num_carriers = 0;
    uint32_t at = NR_MAC_RECORDS_AT;
    for (uint32_t r = 0; r < num_records; r++) {
        if (!read_count(at, B884_NUM_CARRIERS, &num_carriers)) return;
        at += B884_RECORD_HEADER_BYTES;
        for (uint32_t c = 0; c < num_carriers; c++) {
            if (!b884_read_carrier(layout, &at, power)) return;
        }
    }
    modem_stats_log_printf(
        "version = %d, num_records = %d, num_carriers = %d, tx_power_pusch = %d, tx_power_pucch = %d, "
        "tx_power_srs = %d, tx_power_prach = %d\n",
        static_cast<int>(version), num_records, static_cast<int>(num_carriers), power[B884_PUSCH], power[B884_PUCCH],
        power[B884_SRS], power[B884_PRACH]);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 4},
        {"num_records", num_records, 1},
        {"num_carriers", num_carriers, 1},
        {"tx_power_pusch", static_cast<uint16_t>(power[B884_PUSCH]), 2},
        {"tx_power_pucch", static_cast<uint16_t>(power[B884_PUCCH]), 2},
        {"tx_power_srs", static_cast<uint16_t>(power[B884_SRS]), 2},
        {"tx_power_prach", static_cast<uint16_t>(power[B884_PRACH]), 2},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_POWER_CTRL, data_id, record);
}
