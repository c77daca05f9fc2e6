/* Parsers of the diag log packets understood by the statistics framework:
 * LTE, NR5G, WCDMA, GSM and IMS.
 *
 * Each parser reads its payload through the unpack state (started by the
 * log dispatcher), refuses versions it does not know, prints its decoded
 * lines and makes one record, reported through `data_id` and `record`.
 * The payload layouts per log code and version, and the layout of every
 * record, are written down in docs/diag-log-layouts.md. */
#ifndef MODEM_STATS_LOG_PARSERS_H
#define MODEM_STATS_LOG_PARSERS_H

#include <stdint.h>

#include "modem_stats_data_id.h"
#include "modem_stats_record.h"

/* ---- LTE ----------------------------------------------------------------- */

void modem_stats_parse_b062_diag_log_lte_mac_rach_attempt(modem_stats_sub_id_e_type sub,
                                                          modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record);
void modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record);
void modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record);
void modem_stats_parse_b111_diag_log_lte_ll1_rx_agc(modem_stats_data_id_e_type *data_id,
                                                    modem_stats_single_data_common_type **record);
void modem_stats_parse_b14e_diag_log_lte_pusch_csf(modem_stats_data_id_e_type *data_id,
                                                   modem_stats_single_data_common_type **record);
void modem_stats_parse_b16d_diag_log_lte_tx_power(modem_stats_data_id_e_type *data_id,
                                                  modem_stats_single_data_common_type **record);
void modem_stats_parse_b16e_diag_log_lte_pusch_power_control(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_b16f_diag_log_lte_pucch_power_control(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record);
void modem_stats_parse_b193_diag_log_lte_srv_meas(modem_stats_data_id_e_type *data_id,
                                                  modem_stats_single_data_common_type **record);

/* ---- NR5G ---------------------------------------------------------------- */

void modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record);
void modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record);
void modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb(modem_stats_data_id_e_type *data_id,
                                                   modem_stats_single_data_common_type **record);
void modem_stats_parse_b883_diag_log_nr5g_mac_ul_physical_channel_schedule_report(
    modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record);
void modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record);
void modem_stats_parse_b885_diag_log_nr5g_mac_dci_info(modem_stats_data_id_e_type *data_id,
                                                       modem_stats_single_data_common_type **record);
void modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status(modem_stats_sub_id_e_type sub,
                                                           modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record);
void modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats(modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record);
void modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt(modem_stats_sub_id_e_type sub,
                                                           modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record);
void modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report(modem_stats_data_id_e_type *data_id,
                                                         modem_stats_single_data_common_type **record);
void modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record);
void modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record);
void modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record);
void modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam(modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record);
/* Makes one record per measured carrier and hands each over itself. */
void modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext(modem_stats_sub_id_e_type sub);
void modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information(modem_stats_sub_id_e_type sub,
                                                             modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity(modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record);

/* The record 0xB887 made last: the dispatcher does not release it, the
 * parser keeps it here and releases it when it makes the next one.  Null
 * before the first. */
const modem_stats_single_data_common_type *modem_stats_b887_kept_record(void);

/* Data ids of the 0xB97F records, by carrier (cc_id) 0, 1 and 2; carriers
 * beyond them make no record. */
constexpr modem_stats_data_id_e_type MODEM_STATS_B97F_RECORD_IDS[] = {
    MODEM_STATS_DATA_ID_NR5G_MEAS_PCC, MODEM_STATS_DATA_ID_NR5G_MEAS_SCC1, MODEM_STATS_DATA_ID_NR5G_MEAS_SCC2};

/* ---- WCDMA, GSM and IMS ---------------------------------------------------- */

void modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload(modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record);
void modem_stats_parse_156e_diag_log_ims_sip_message(modem_stats_data_id_e_type *data_id,
                                                     modem_stats_single_data_common_type **record);
void modem_stats_parse_1830_diag_log_ims_volte_session_setup(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_1831_diag_log_ims_volte_session_end(modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record);
void modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record);
void modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record);

#endif
