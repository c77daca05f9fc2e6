/* Call-manager and IMS SIP session events: the payload fields are printed
 * and packed back in the same order. */
#include <stdio.h>

#include "modem_stats_event_parsers.h"
#include "modem_stats_unpack.h"

namespace {

/* One SIP session event: sip_call_id, 32-bit, into record `id`. */
void sip_session_event(modem_stats_data_id_e_type id, modem_stats_data_id_e_type *data_id,
                       modem_stats_single_data_common_type **record)
{
    uint32_t sip_call_id = 0;
    if (!modem_stats_data_unpk("sip_call_id", &sip_call_id)) return;
    printf("sip_call_id = %d\n", static_cast<int>(sip_call_id));
    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("sip_call_id", sip_call_id, sizeof(sip_call_id))) return;
    modem_stats_data_pk_finish(id, data_id, record);
}

}  // namespace

void modem_stats_parse_0629_diag_event_cm_call_event_orig(modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record)
{
    uint8_t call_id = 0;
    uint8_t call_type = 0;
    uint8_t srv_type = 0;
    if (!modem_stats_data_unpk("call_id", &call_id)) return;
    if (!modem_stats_data_unpk("call_type", &call_type)) return;
    if (!modem_stats_data_unpk("srv_type", &srv_type)) return;
    printf("call_id = %d, call_type = %d, srv_type = %d\n", call_id, call_type, srv_type);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("call_id", call_id, sizeof(call_id))) return;
    if (!modem_stats_data_pk("call_type", call_type, sizeof(call_type))) return;
    if (!modem_stats_data_pk("srv_type", srv_type, sizeof(srv_type))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_CALL_ORIG, data_id, record);
}

void modem_stats_parse_0631_diag_event_cm_call_event_end(modem_stats_data_id_e_type *data_id,
                                                         modem_stats_single_data_common_type **record)
{
    uint8_t num_calls = 0;
    uint8_t call_id = 0;
    if (!modem_stats_data_unpk("num_calls", &num_calls)) return;
    if (!modem_stats_data_unpk("call_id", &call_id)) return;
    printf("num_calls = %d, call_id = %d\n", num_calls, call_id);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("num_calls", num_calls, sizeof(num_calls))) return;
    if (!modem_stats_data_pk("call_id", call_id, sizeof(call_id))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_CALL_END, data_id, record);
}

void modem_stats_parse_1428_diag_event_ims_sip_session_start(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_START, data_id, record);
}

void modem_stats_parse_1429_diag_event_ims_sip_session_ringing(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_RINGING, data_id, record);
}

void modem_stats_parse_1430_diag_event_ims_sip_session_established(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_ESTABLISHED, data_id, record);
}

void modem_stats_parse_1431_diag_event_ims_sip_session_terminated(modem_stats_data_id_e_type *data_id,
                                                                  modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_TERMINATED, data_id, record);
}

void modem_stats_parse_1432_diag_event_ims_sip_session_cancel(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_CANCEL, data_id, record);
}

void modem_stats_parse_1433_diag_event_ims_sip_session_failure(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record)
{
    sip_session_event(MODEM_STATS_DATA_ID_IMS_SIP_SESSION_FAILURE, data_id, record);
}
