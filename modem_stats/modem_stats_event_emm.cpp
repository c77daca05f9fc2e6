/* EMM timer expiry events of LTE (1632) and NR5G (3215): the same payload
 * and record, under their own data ids and line labels. */
#include <stdio.h>

#include "modem_stats_event_parsers.h"
#include "modem_stats_unpack.h"

namespace {

/* Constant second byte of an EMM timer expiry record. */
constexpr uint8_t EMM_TIMER_EXPIRY_RECORD_TAG = 4;

void emm_timer_expiry(const char *label, modem_stats_data_id_e_type id, modem_stats_sub_id_e_type sub,
                      modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record)
{
    uint8_t timer_id = 0;
    if (!modem_stats_data_unpk("timer_id", &timer_id)) return;
    printf("%s, sub_id = %d, timer_id = %d\n", label, sub, timer_id);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("timer_id", timer_id, sizeof(timer_id))) return;
    if (!modem_stats_data_pk("timer_tag", EMM_TIMER_EXPIRY_RECORD_TAG, sizeof(uint8_t))) return;
    modem_stats_data_pk_finish(id, data_id, record);
}

}  // namespace

void modem_stats_parse_1632_diag_event_lte_emm_timer_expiry(modem_stats_sub_id_e_type sub,
                                                            modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record)
{
    emm_timer_expiry("lte_emm_timer_expiry", MODEM_STATS_DATA_ID_LTE_EMM_TIMER_EXPIRY, sub, data_id, record);
}

void modem_stats_parse_3215_diag_event_nr5g_emm_timer_expiry(modem_stats_sub_id_e_type sub,
                                                             modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    emm_timer_expiry("nr5g_emm_timer_expiry", MODEM_STATS_DATA_ID_NR5G_EMM_TIMER_EXPIRY, sub, data_id, record);
}
