/* LTE RRC events: state change (with the kept state and connection
 * set-ups), radio link failure statistics, new cell indication. */
#include <stdio.h>

#include "modem_stats_event_parsers.h"
#include "modem_stats_unpack.h"

uint8_t g_lte_rrc_state_last = 0;

namespace {

/* Values reported for a new connection: no clock is read, so the active
 * time is 0 and each change into Connected counts as one set-up. */
constexpr uint32_t RRC_ACTIVE_TIME_UNMEASURED = 0;
constexpr uint32_t RRC_SETUP_COUNT_PER_CHANGE = 1;
constexpr uint8_t RRC_SETUP_VALID = 1;

/* The only new-cell cause that carries a handover to record. */
constexpr uint8_t NEW_CELL_CAUSE_HANDOVER = 2;
constexpr uint64_t HANDOVER_TIME_UNMEASURED = 0;
constexpr uint8_t HANDOVER_TYPE = 1;

/* Packs and reports record 127 for a change into Connected. */
void rrc_setup_record(modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("rrc_active_time", RRC_ACTIVE_TIME_UNMEASURED, sizeof(uint32_t))) return;
    if (!modem_stats_data_pk("rrc_setup_count", RRC_SETUP_COUNT_PER_CHANGE, sizeof(uint32_t))) return;
    if (!modem_stats_data_pk("rrc_setup_valid", RRC_SETUP_VALID, sizeof(uint8_t))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_RRC_STATE_STATS, data_id, record);
}

}  // namespace

void modem_stats_update_1606_diag_event_lte_rrc_state_change(uint8_t rrc_state_current)
{
    printf("sub_id = %d, rrc_state_current_in = %d\n", MODEM_STATS_SUB_ID_0, rrc_state_current);
    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("rrc_state_current", rrc_state_current, sizeof(rrc_state_current))) return;
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *state_record = nullptr;
    if (!modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_RRC_STATE, &id, &state_record)) return;
    modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, state_record);
}

void modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(modem_stats_sub_id_e_type sub,
                                                                   uint8_t rrc_state_current,
                                                                   modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record)
{
    uint8_t state_new = rrc_state_current;
    uint8_t state_old = g_lte_rrc_state_last;
    printf("1606_diag_event_lte_rrc_state_change, time_last = %d, time_current = %d, rrc_state_last = %d, "
           "rrc_state_current = %d, rrc_state_current_in = %d, old rrc_active_time = %d, "
           "old rrc_setup_count = %d\n",
           0, 0, state_old, state_new, rrc_state_current, 0, 0);
    /* The kept state follows every event, whatever happens below. */
    g_lte_rrc_state_last = state_new;

    if (state_new == LTE_RRC_STATE_CLOSING) {
        if (state_old == LTE_RRC_STATE_CONNECTED) {
            printf("1606_diag_event_lte_rrc_state_change, New Closing and Old Connected, time not inited, do "
                   "nothing, sub_id %d\n",
                   sub);
        } else {
            printf("1606_diag_event_lte_rrc_state_change, New Closing and Old other state, do nothing, sub_id %d\n",
                   sub);
        }
    } else if (state_new == LTE_RRC_STATE_CONNECTED) {
        if (state_old != LTE_RRC_STATE_CONNECTED) {
            printf("----1606_diag_event_lte_rrc_state_change, New Connected and Old other state, rrc_setup_count = "
                   "%d, sub_id %d\n",
                   static_cast<int>(RRC_SETUP_COUNT_PER_CHANGE), sub);
            if (data_id && record) rrc_setup_record(data_id, record);
        } else {
            printf("1606_diag_event_lte_rrc_state_change, New Connected and Old Connected, time not inited, do "
                   "nothing, sub_id %d\n",
                   sub);
        }
    } else {
        printf("1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id %d\n",
               sub);
    }
}

void modem_stats_parse_1606_diag_event_lte_rrc_state_change(modem_stats_sub_id_e_type sub,
                                                            modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record)
{
    uint8_t rrc_state_current = 0;
    if (!modem_stats_data_unpk("rrc_state_current", &rrc_state_current)) return;
    modem_stats_update_1606_diag_event_lte_rrc_state_change(rrc_state_current);
    modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(sub, rrc_state_current, data_id, record);
}

void modem_stats_parse_1995_diag_event_lte_rrc_radio_link_failure_stat(modem_stats_sub_id_e_type sub,
                                                                       modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record)
{
    uint16_t rlf_count_rrc_connected = 0;
    uint16_t rlf_count_lte_active = 0;
    uint16_t rlf_cause = 0;
    if (!modem_stats_data_unpk("rlf_count_rrc_connected", &rlf_count_rrc_connected)) return;
    if (!modem_stats_data_unpk("rlf_count_lte_active", &rlf_count_lte_active)) return;
    if (!modem_stats_data_unpk("rlf_cause", &rlf_cause)) return;
    printf("sub_id = %d, rlf_count_rrc_connected = %d, rlf_count_lte_active = %d, rlf_cause = %d\n", sub,
           rlf_count_rrc_connected, rlf_count_lte_active, rlf_cause);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("rlf_count_rrc_connected", rlf_count_rrc_connected, sizeof(uint16_t))) return;
    if (!modem_stats_data_pk("rlf_count_lte_active", rlf_count_lte_active, sizeof(uint16_t))) return;
    if (!modem_stats_data_pk("rlf_cause", rlf_cause, sizeof(uint16_t))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_RRC_RLF_STATS, data_id, record);
}

void modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn(modem_stats_data_id_e_type *data_id,
                                                                       modem_stats_single_data_common_type **record)
{
    uint8_t cause = 0;
    uint32_t freq = 0;
    uint16_t pci = 0;
    if (!modem_stats_data_unpk("cause", &cause)) return;
    if (!modem_stats_data_unpk("freq", &freq)) return;
    if (!modem_stats_data_unpk("pci", &pci)) return;
    printf("cause = %d, freq = %d, pci = %d\n", cause, static_cast<int>(freq), pci);
    if (cause != NEW_CELL_CAUSE_HANDOVER) {
        modem_stats_data_not_valid(cause, __func__);
        return;
    }
    printf("ho_time = %ld, ho_type = %d, pci = %d\n", static_cast<long>(HANDOVER_TIME_UNMEASURED), HANDOVER_TYPE,
           pci);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("ho_time", HANDOVER_TIME_UNMEASURED, sizeof(uint64_t))) return;
    if (!modem_stats_data_pk("ho_type", HANDOVER_TYPE, sizeof(uint8_t))) return;
    if (!modem_stats_data_pk("freq", freq, sizeof(freq))) return;
    if (!modem_stats_data_pk("pci", pci, sizeof(pci))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_RRC_NEW_CELL_IND_EARFCN, data_id, record);
}
