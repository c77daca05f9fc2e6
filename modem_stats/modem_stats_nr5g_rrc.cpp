/* NR5G RRC logs: serving cell info (0xB823) and configuration info
 * (0xB825).  Whole-byte layouts after a 32-bit version.  Layouts:
 * docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

/* ---- 0xB823 serving cell info ------------------------------------------- */

typedef struct {
    uint32_t version;
    int32_t block_at; /* byte of the PCI */
    bool has_nr_cgi;  /* a 64-bit NR-CGI follows the PCI */
} b823_layout;

constexpr b823_layout B823_LAYOUTS[] = {{0x4, 4, false}, {0x30000, 4, true}, {0x30002, 7, true}, {0x30003, 7, true}};
constexpr uint32_t B823_VERSIONS[] = {0x4, 0x30000, 0x30002, 0x30003};
static_assert(sizeof(B823_LAYOUTS) / sizeof(B823_LAYOUTS[0]) == sizeof(B823_VERSIONS) / sizeof(B823_VERSIONS[0]),
              "one 0xB823 layout per accepted version");
constexpr int32_t NR_CGI_BYTES = 8;

/* ---- 0xB825 configuration info ------------------------------------------- */

typedef struct {
    int32_t state_at;     /* RRC state; configured flag and mode follow */
    int32_t counts_at;    /* the list counts */
    bool has_nrdc_counts; /* NR-DC SCG counts among them */
    uint32_t lists_at;    /* first contiguous CC group */
    uint32_t cc_bytes;    /* active carrier record */
    uint32_t cc_band_at;  /* band, then band type, DL and UL bandwidth */
} b825_layout;

constexpr uint32_t B825_VERSIONS[] = {0x8, 0xA, 0x20000, 0x30001, 0x30003};
constexpr b825_layout B825_LAYOUTS[] = {
    {4, 58, false, 61, 18, 11}, {4, 58, false, 61, 22, 15}, {4, 58, false, 61, 22, 15},
    {12, 66, true, 71, 22, 15}, {12, 66, true, 71, 23, 15},
};
static_assert(sizeof(B825_LAYOUTS) / sizeof(B825_LAYOUTS[0]) == sizeof(B825_VERSIONS) / sizeof(B825_VERSIONS[0]),
              "one 0xB825 layout per accepted version");
constexpr uint32_t B825_CC_GROUP_BYTES = 4;
constexpr uint32_t B825_RB_BYTES = 18;
constexpr int32_t B825_CC_PCI_AT = 1;

typedef struct {
    uint16_t pci;
    uint32_t arfcn_dl, arfcn_ul;
    uint16_t band;
    uint8_t band_type, bw_dl, bw_ul;
} b825_carrier;

bool b825_read_carrier(const b825_layout &layout, uint32_t at, b825_carrier *c)
{
    if (!modem_stats_log_seek(at + B825_CC_PCI_AT)) return false;
    if (!modem_stats_data_unpk("pci", &c->pci)) return false;
    if (!modem_stats_data_unpk("arfcn_dl", &c->arfcn_dl)) return false;
    if (!modem_stats_data_unpk("arfcn_ul", &c->arfcn_ul)) return false;
    if (!modem_stats_log_seek(at + layout.cc_band_at)) return false;
    if (!modem_stats_data_unpk("band", &c->band)) return false;
    if (!modem_stats_data_unpk("band_type", &c->band_type)) return false;
    if (!modem_stats_data_unpk("bw_dl", &c->bw_dl)) return false;
    if (!modem_stats_data_unpk("bw_ul", &c->bw_ul)) return false;
    modem_stats_log_printf(
        "pci = %d, arfcn_dl = %d, arfcn_ul = %d, band = %d, band_type = %d, bw_dl = %d, bw_ul = %d\n", c->pci,
        static_cast<int>(c->arfcn_dl), static_cast<int>(c->arfcn_ul), c->band, c->band_type, c->bw_dl, c->bw_ul);
    return true;
}

bool b825_read_rb(uint32_t at)
{
    static const char *const names[] = {"dl_rb_type", "dl_rb_path", "dl_rohc_enable",
                                        "ul_rb_type", "ul_rb_path", "ul_rohc_enable"};
    uint8_t v[6];
    /* The radio bearer id comes first. */
    if (!modem_stats_log_seek(at + 1)) return false;
    for (size_t i = 0; i < 6; i++) {
        if (!modem_stats_data_unpk(names[i], &v[i])) return false;
    }
    modem_stats_log_printf(
        "dl_rb_type = %d, dl_rb_path = %d, dl_rohc_enable = %d, ul_rb_type = %d, ul_rb_path = %d, "
        "ul_rohc_enable = %d\n",
        v[0], v[1], v[2], v[3], v[4], v[5]);
    return true;
}

}  // namespace

void modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B823_VERSIONS, __func__)) return;
    const b823_layout &layout = B823_LAYOUTS[modem_stats_log_version_index(version, B823_VERSIONS, 4)];
    modem_stats_data_skip(layout.block_at - static_cast<int32_t>(sizeof(version)));
    uint16_t pci = 0, dl_bw = 0, ul_bw = 0, mcc = 0, mnc = 0, band = 0;
    uint32_t dl_arfcn = 0, ul_arfcn = 0, tac = 0;
    uint64_t cell_id = 0;
    uint8_t mnc_digits = 0, allowed_access = 0;
    if (!modem_stats_data_unpk("pci", &pci)) return;
    if (layout.has_nr_cgi) modem_stats_data_skip(NR_CGI_BYTES);
    if (!modem_stats_data_unpk("dl_arfcn", &dl_arfcn)) return;
    if (!modem_stats_data_unpk("ul_arfcn", &ul_arfcn)) return;
    if (!modem_stats_data_unpk("dl_bw", &dl_bw)) return;
    if (!modem_stats_data_unpk("ul_bw", &ul_bw)) return;
    if (!modem_stats_data_unpk("cell_id", &cell_id)) return;
    if (!modem_stats_data_unpk("mcc", &mcc)) return;
    if (!modem_stats_data_unpk("mnc_digits", &mnc_digits)) return;
    if (!modem_stats_data_unpk("mnc", &mnc)) return;
    if (!modem_stats_data_unpk("allowed_access", &allowed_access)) return;
    if (!modem_stats_data_unpk("tac", &tac)) return;
    if (!modem_stats_data_unpk("band", &band)) return;
    modem_stats_log_printf("version = %d, pci = %d, dl_arfcn = %d, ul_arfcn = %d, dl_bw = %d, ul_bw = %d\n",
                           static_cast<int>(version), pci, static_cast<int>(dl_arfcn), static_cast<int>(ul_arfcn),
                           dl_bw, ul_bw);
    modem_stats_log_printf(
        "cell_id = %lu, mcc = %d, mnc_digits = %d, mnc = %d, allowed_access = %d, tac = %d, band = %d\n",
        static_cast<unsigned long>(cell_id), mcc, mnc_digits, mnc, allowed_access, static_cast<int>(tac), band);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 4},
        {"pci", pci, 2},
        {"dl_arfcn", dl_arfcn, 4},
        {"ul_arfcn", ul_arfcn, 4},
        {"dl_bw", dl_bw, 2},
        {"ul_bw", ul_bw, 2},
        {"cell_id", cell_id, 8},
        {"mcc", mcc, 2},
        {"mnc_digits", mnc_digits, 1},
        {"mnc", mnc, 2},
        {"allowed_access", allowed_access, 1},
        {"tac", tac, 4},
        {"band", band, 2},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_RRC_SERVING_CELL_INFO, data_id, record);
}

void modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B825_VERSIONS, __func__)) return;
    const b825_layout &layout = B825_LAYOUTS[modem_stats_log_version_index(version, B825_VERSIONS, 5)];
    modem_stats_data_skip(layout.state_at - static_cast<int32_t>(sizeof(version)));
    uint8_t rrc_state = 0, conn_mode = 0;
    if (!modem_stats_data_unpk("rrc_state", &rrc_state)) return;
    modem_stats_data_skip(1); /* configured flag */
    if (!modem_stats_data_unpk("conn_mode", &conn_mode)) return;
    modem_stats_log_printf("rrc_state = %d, conn_mode = %d\n", rrc_state, conn_mode);

    if (!modem_stats_log_seek(static_cast<uint32_t>(layout.counts_at))) return;
    uint8_t groups = 0, nrdc_groups = 0, active_cc = 0, nrdc_active_cc = 0, active_rb = 0;
    if (!modem_stats_data_unpk("num_contiguous_cc_groups", &groups)) return;
    if (layout.has_nrdc_counts && !modem_stats_data_unpk("num_nrdc_scg_contiguous_cc_groups", &nrdc_groups)) return;
    if (!modem_stats_data_unpk("num_active_cc", &active_cc)) return;
    if (layout.has_nrdc_counts && !modem_stats_data_unpk("num_nrdc_scg_active_cc", &nrdc_active_cc)) return;
    if (!modem_stats_data_unpk("num_active_rb", &active_rb)) return;
    modem_stats_log_printf(
        "version = %d, num_contiguous_cc_groups = %d, num_nrdc_scg_contiguous_cc_groups = %d, num_active_cc = %d, "
        "num_nrdc_scg_active_cc = %d, num_active_rb = %d\n",
        static_cast<int>(version), groups, nrdc_groups, active_cc, nrdc_active_cc, active_rb);

    uint32_t at = layout.lists_at + (groups + nrdc_groups) * B825_CC_GROUP_BYTES;
    b825_carrier first = {};
    uint32_t carriers = static_cast<uint32_t>(active_cc) + nrdc_active_cc;
    for (uint32_t c = 0; c < carriers; c++, at += layout.cc_bytes) {
        b825_carrier carrier;
        if (!b825_read_carrier(layout, at, &carrier)) return;
        if (c == 0) first = carrier;
    }
    for (uint32_t r = 0; r < active_rb; r++, at += B825_RB_BYTES) {
        if (!b825_read_rb(at)) return;
    }

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 4},           {"rrc_state", rrc_state, 1},     {"conn_mode", conn_mode, 1},
        {"num_active_cc", active_cc, 1},   {"num_active_rb", active_rb, 1}, {"pci", first.pci, 2},
        {"arfcn_dl", first.arfcn_dl, 4},   {"arfcn_ul", first.arfcn_ul, 4}, {"band", first.band, 2},
        {"band_type", first.band_type, 1}, {"bw_dl", first.bw_dl, 1},       {"bw_ul", first.bw_ul, 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_RRC_CONFIG_INFO, data_id, record);
}
