/* Registered diag log parsers, one row per log code in ascending order.
 *
 * To register a parser: include its family header below and add one row
 * before the end marker, e.g.
 *   modem_stats_parser_row_of(0xB16D, modem_stats_parse_b16d_diag_log_lte_tx_power),
 * A parser taking the subscription first is registered the same way; the
 * two parsers that keep their records (0xB887, 0xB97F) are wrapped in
 * modem_stats_parser_row_keep() or, for a parser of the subscription alone,
 * keep them by their signature.  The static_asserts below check order,
 * uniqueness and the release rule at compile time. */
#include "modem_stats_dispatch.h"
#include "modem_stats_log_parsers.h"

namespace {

/* Logs whose parsers keep or release their records themselves. */
constexpr uint16_t LOG_CODE_NR5G_MAC_PDSCH_STATUS = 0xB887;
constexpr uint16_t LOG_CODE_NR5G_ML1_MEAS_DATABASE_UPDATE = 0xB97F;

/* Terminates the table so that it may be empty; not a row. */
constexpr modem_stats_parser_row LOG_TABLE_END = {0, MODEM_STATS_PARSER_NONE, nullptr, nullptr, nullptr, false};

constexpr modem_stats_parser_row k_log_parsers[] = {
    modem_stats_parser_row_of(0x1568, modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload),
    modem_stats_parser_row_of(0x156E, modem_stats_parse_156e_diag_log_ims_sip_message),
    modem_stats_parser_row_of(0x1830, modem_stats_parse_1830_diag_log_ims_volte_session_setup),
    modem_stats_parser_row_of(0x1831, modem_stats_parse_1831_diag_log_ims_volte_session_end),
    modem_stats_parser_row_of(0x4179, modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2),
    modem_stats_parser_row_of(0x5096, modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics),
    modem_stats_parser_row_of(0xB062, modem_stats_parse_b062_diag_log_lte_mac_rach_attempt),
    modem_stats_parser_row_of(0xB064, modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block),
    modem_stats_parser_row_of(0xB0C2, modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info),
    modem_stats_parser_row_of(0xB111, modem_stats_parse_b111_diag_log_lte_ll1_rx_agc),
    modem_stats_parser_row_of(0xB14E, modem_stats_parse_b14e_diag_log_lte_pusch_csf),
    modem_stats_parser_row_of(0xB16D, modem_stats_parse_b16d_diag_log_lte_tx_power),
    modem_stats_parser_row_of(0xB16E, modem_stats_parse_b16e_diag_log_lte_pusch_power_control),
    modem_stats_parser_row_of(0xB16F, modem_stats_parse_b16f_diag_log_lte_pucch_power_control),
    modem_stats_parser_row_of(0xB173, modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication),
    modem_stats_parser_row_of(0xB193, modem_stats_parse_b193_diag_log_lte_srv_meas),
    modem_stats_parser_row_of(0xB823, modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info),
    modem_stats_parser_row_of(0xB825, modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info),
    modem_stats_parser_row_of(0xB872, modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb),
    modem_stats_parser_row_of(0xB883, modem_stats_parse_b883_diag_log_nr5g_mac_ul_physical_channel_schedule_report),
    modem_stats_parser_row_of(0xB884, modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl),
    modem_stats_parser_row_of(0xB885, modem_stats_parse_b885_diag_log_nr5g_mac_dci_info),
    modem_stats_parser_row_keep(
        modem_stats_parser_row_of(0xB887, modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status)),
    modem_stats_parser_row_of(0xB888, modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats),
    modem_stats_parser_row_of(0xB88A, modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt),
    modem_stats_parser_row_of(0xB8A7, modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report),
    modem_stats_parser_row_of(0xB8C9, modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc),
    modem_stats_parser_row_of(0xB8D2, modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power),
    modem_stats_parser_row_of(0xB8D8, modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr),
    modem_stats_parser_row_of(0xB8DD, modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl),
    modem_stats_parser_row_of(0xB975, modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam),
    modem_stats_parser_row_of(0xB97F, modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext),
    modem_stats_parser_row_of(0xB981, modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information),
    modem_stats_parser_row_of(0xB98F, modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity),
    LOG_TABLE_END,
};
constexpr size_t k_log_parser_count = sizeof(k_log_parsers) / sizeof(k_log_parsers[0]) - 1;

/* Every log but the two above has its record released by the dispatcher. */
constexpr bool release_rule_holds(const modem_stats_parser_row *rows, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        bool keeps = rows[i].code == LOG_CODE_NR5G_MAC_PDSCH_STATUS ||
                     rows[i].code == LOG_CODE_NR5G_ML1_MEAS_DATABASE_UPDATE;
        if (rows[i].release == keeps) return false;
    }
    return true;
}

static_assert(k_log_parsers[k_log_parser_count].kind == MODEM_STATS_PARSER_NONE, "the end marker closes the table");
static_assert(modem_stats_parser_rows_valid(k_log_parsers, k_log_parser_count),
              "log rows ascend by code, unique, one parser each");
static_assert(release_rule_holds(k_log_parsers, k_log_parser_count),
              "only 0xB887 and 0xB97F keep their records");

}  // namespace

modem_stats_parser_table modem_stats_log_parser_table(void)
{
    return {k_log_parsers, k_log_parser_count};
}
