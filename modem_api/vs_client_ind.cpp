/* The vs client's indication path: decode the indication with the service's
 * tables, copy the fields the program reads into the event record with
 * every count clamped, and hand the record to the registered handler. */
#include <string.h>

#include "orvex_log.h"
#include "orvex_mem.h"
#include "vs_client.h"

namespace {

constexpr int k_prio_info = ANDROID_LOG_INFO;
constexpr int k_prio_error = ANDROID_LOG_ERROR;

uint32_t clamp(uint32_t value, uint32_t max) { return value > max ? max : value; }

void copy_items(orvex_vs_stats_data_type_v01 *dst, const orvex_vs_stats_data_type_v01 *src, uint32_t count)
{
    for (uint32_t i = 0; i < count; i++) {
        dst[i].data_id = src[i].data_id;
        dst[i].sub = src[i].sub;
        dst[i].update_count = src[i].update_count;
        dst[i].data_len = clamp(src[i].data_len, VS_CLIENT_ITEM_DATA_MAX);
        memcpy(dst[i].data, src[i].data, dst[i].data_len);
    }
}

int fill_feature_status(const void *decoded, vs_client_event_record *rec)
{
    const auto *ind = static_cast<const orvex_vs_feature_status_ind_msg_v01 *>(decoded);
    vs_client_feature_status_payload &p = rec->payload.feature_status;
    p.value = ind->feature_mask;
    p.flag0 = ind->enabled ? 1 : 0;
    p.flag1 = ind->collecting ? 1 : 0;
    rec->event_type = VS_CLIENT_EVENT_FEATURE_STATUS;
    return int(sizeof(p));
}

int fill_stats_report(const void *decoded, vs_client_event_record *rec)
{
    const auto *ind = static_cast<const orvex_vs_stats_report_ind_msg_v01 *>(decoded);
    vs_client_stats_report_payload &p = rec->payload.stats_report;
    p.value = ind->report_id;
    p.primary_count = clamp(ind->primary_list_len, VS_CLIENT_REPORT_PRIMARY_MAX);
    copy_items(p.primary, ind->primary_list, p.primary_count);
    p.secondary_count = clamp(ind->secondary_list_len, VS_CLIENT_REPORT_SECONDARY_MAX);
    copy_items(p.secondary, ind->secondary_list, p.secondary_count);
    p.last_value = ind->interval_ms_valid ? ind->interval_ms : VS_CLIENT_VALUE_ABSENT;
    rec->event_type = VS_CLIENT_EVENT_STATS_REPORT;
    return int(sizeof(p));
}

int fill_ant_state(const void *decoded, vs_client_event_record *rec)
{
    const auto *ind = static_cast<const orvex_vs_ant_state_ind_msg_v01 *>(decoded);
    vs_client_ant_state_payload &p = rec->payload.ant_state;
    p.value = ind->sub;
    p.count = clamp(ind->ant_state_len, VS_CLIENT_ANT_ENTRIES_MAX);
    for (uint32_t i = 0; i < p.count; i++) p.entries[i] = ind->ant_state[i];
    p.value_a = ind->rx_path_mask;
    p.value_b = ind->tx_path_mask;
    rec->event_type = VS_CLIENT_EVENT_ANT_STATE;
    return int(sizeof(p));
}

int fill_modem_event(const void *decoded, vs_client_event_record *rec)
{
    const auto *ind = static_cast<const orvex_vs_modem_event_ind_msg_v01 *>(decoded);
    rec->payload.modem_event.event = ind->event;
    rec->event_type = VS_CLIENT_EVENT_MODEM_EVENT;
    return int(sizeof(rec->payload.modem_event));
}

struct ind_row {
    unsigned int msg_id;
    int (*fill)(const void *decoded, vs_client_event_record *rec);
};

const ind_row k_ind_rows[] = {
    {ORVEX_VS_FEATURE_STATUS_IND_V01, fill_feature_status},
    {ORVEX_VS_STATS_REPORT_IND_V01, fill_stats_report},
    {ORVEX_VS_ANT_STATE_IND_V01, fill_ant_state},
    {ORVEX_VS_MODEM_EVENT_IND_V01, fill_modem_event},
};

}  // namespace

void vs_client_ind_hdlr(unsigned int msg_id, const void *decoded)
{
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function entry");
    if (!decoded) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "Unexpected NULL pointer!");
        return;
    }
    ORVEX_LOG_LABEL(k_prio_info, __func__, "Handling indication msg 0x%x", msg_id);
    vs_client_event_record rec;
    memset(&rec, 0, sizeof(rec));
    const ind_row *row = nullptr;
    for (const ind_row &r : k_ind_rows) {
        if (r.msg_id == msg_id) row = &r;
    }
    if (!row) {
        ORVEX_LOG_LABEL(k_prio_info, __func__, "Unknown indication msg %0x", msg_id);
        return;
    }
    int size = row->fill(decoded, &rec);
    vs_client_ind_handler_fn handler = VS_CLIENT_GET(ind_handler);
    if (handler) handler(rec.event_type, &rec.payload, size);
}

void vs_client_unsol_ind_cb(qmi_client_type user_handle, unsigned int msg_id, void *ind_buf,
                            unsigned int ind_buf_len, void *)
{
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function entry");
    if (!ind_buf) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "Unexpected NULL pointer!");
        return;
    }
    uint32_t len = 0;
    void *decoded = nullptr;
    int rc = qmi_idl_get_message_c_struct_len(VS_CLIENT_GET(service_object), QMI_IDL_INDICATION, uint16_t(msg_id),
                                              &len);
    if (rc == QMI_NO_ERR && len != 0) {
        decoded = orvex_malloc_adv(len, "vs_client_unsol_ind_cb");
        if (!decoded) {
            ORVEX_LOG_LABEL(k_prio_error, __func__, "Unexpected NULL pointer!");
            return;
        }
        /* The library hands the handle the indication came on. */
        rc = qmi_client_message_decode(user_handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_buf_len, decoded,
                                       len);
        if (rc != QMI_NO_ERR) {
            ORVEX_LOG_LABEL(k_prio_error, __func__, "Indication decode failed for msg 0x%x with error %d", msg_id,
                            rc);
            orvex_free_adv(decoded);
            return;
        }
    }
    vs_client_ind_hdlr(msg_id, decoded);
    orvex_free_adv(decoded);
}
