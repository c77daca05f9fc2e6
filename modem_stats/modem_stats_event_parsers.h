/* Parsers of the diag events understood by the statistics framework.  Each
 * reads its payload through the unpack state (started by the event
 * dispatcher), prints its decoded values and makes one record, reported
 * through `data_id` and `record`. */
#ifndef MODEM_STATS_EVENT_PARSERS_H
#define MODEM_STATS_EVENT_PARSERS_H

#include <stdint.h>

#include "modem_stats_data_id.h"
#include "modem_stats_record.h"

/* Call manager. */
void modem_stats_parse_0629_diag_event_cm_call_event_orig(modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record);
void modem_stats_parse_0631_diag_event_cm_call_event_end(modem_stats_data_id_e_type *data_id,
                                                         modem_stats_single_data_common_type **record);

/* IMS SIP session events. */
void modem_stats_parse_1428_diag_event_ims_sip_session_start(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_1429_diag_event_ims_sip_session_ringing(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record);
void modem_stats_parse_1430_diag_event_ims_sip_session_established(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record);
void modem_stats_parse_1431_diag_event_ims_sip_session_terminated(modem_stats_data_id_e_type *data_id,
                                                                  modem_stats_single_data_common_type **record);
void modem_stats_parse_1432_diag_event_ims_sip_session_cancel(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record);
void modem_stats_parse_1433_diag_event_ims_sip_session_failure(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record);

/* LTE. */
void modem_stats_parse_1606_diag_event_lte_rrc_state_change(modem_stats_sub_id_e_type sub,
                                                            modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record);
void modem_stats_parse_1632_diag_event_lte_emm_timer_expiry(modem_stats_sub_id_e_type sub,
                                                            modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record);
void modem_stats_parse_1995_diag_event_lte_rrc_radio_link_failure_stat(modem_stats_sub_id_e_type sub,
                                                                       modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record);
void modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn(modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record);

/* Antenna switch diversity (TRM). */
void modem_stats_parse_2622_diag_event_mcs_trm_asdiv(modem_stats_data_id_e_type *data_id,
                                                     modem_stats_single_data_common_type **record);

/* NR5G. */
void modem_stats_parse_3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record);
void modem_stats_parse_3215_diag_event_nr5g_emm_timer_expiry(modem_stats_sub_id_e_type sub,
                                                             modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record);
void modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure(modem_stats_sub_id_e_type sub,
                                                                  modem_stats_data_id_e_type *data_id,
                                                                  modem_stats_single_data_common_type **record);

/* ---- LTE RRC state change (event 1606) -------------------------------- */

/* RRC states the state machine tells apart; every other value is "other". */
constexpr uint8_t LTE_RRC_STATE_CONNECTED = 4;
constexpr uint8_t LTE_RRC_STATE_CLOSING = 7;

/* Last RRC state seen by event 1606 in this process; 0 at start. */
extern uint8_t g_lte_rrc_state_last;

/* Prints the state and hands a one-byte record 5 over at once. */
void modem_stats_update_1606_diag_event_lte_rrc_state_change(uint8_t rrc_state_current);

/* Advances the kept state; a change into Connected from any other state
 * makes record 127 (when both `data_id` and `record` are given). */
void modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(modem_stats_sub_id_e_type sub,
                                                                   uint8_t rrc_state_current,
                                                                   modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record);

#endif
