/* The list handler: one page of configuration ids per indication.  Ids
 * are pushed at the head of the requester's list and counted; while the
 * modem has more, the next page is asked for through the timed callback
 * and the requester keeps waiting. */
#include <stdint.h>
#include <string.h>

#include <mutex>

#include "pdc_log.h"
#include "pdc_utils.h"
#include "qcril_memory_management.h"

namespace {

/* Where an element allocation says it was made. */
constexpr int k_list_alloc_line = 710;

/* Adds the ids of one page; with the mutex held.  False when the list
 * head is missing. */
bool add_page_locked(const pdc_list_configs_ind_msg_v01 *ind)
{
    pdc_list_slot &s = g_pdc_info.slots.list;
    PDC_LOGI("succeed to get config_list %d ", ind->config_list_valid);
    PDC_LOGI("config_list_len %d, old num_of_configs %d", ind->config_list_len, *s.num_of_configs);
    *s.num_of_configs += ind->config_list_len;
    PDC_LOGI("new num_of_configs %d", *s.num_of_configs);
    if (!s.config_list_holder) {
        PDC_LOGE("g_pdc_info.config_list_holder is null, quit");
        return false;
    }
    for (uint32_t i = 0; i < ind->config_list_len; i++) {
        pdc_config_list_element *e = static_cast<pdc_config_list_element *>(
            qcril_malloc_adv(sizeof(pdc_config_list_element), "qmi_pdc_list_configs_ind_hdlr", k_list_alloc_line));
        if (!e) {
            PDC_LOGE("Unable to allocate memory for the list element: %d", i);
            continue;
        }
        /* An index past the fixed array traps (bounds-checked build). */
        const pdc_config_info_resp_type_v01 &entry = ind->config_list[i];
        e->config_id_len = entry.config_id_len;
        memcpy(e->config_id, entry.config_id, entry.config_id_len);
        e->next = *s.config_list_holder;
        *s.config_list_holder = e;
    }
    return true;
}

/* The outcome of one page; sets *complete when no further page follows. */
int8_t handle_page_locked(const pdc_list_configs_ind_msg_v01 *ind, bool *complete)
{
    pdc_list_slot &s = g_pdc_info.slots.list;
    *complete = true;
    if (!s.num_of_configs) {
        PDC_LOGE("g_pdc_info.num_of_configs is null");
        return PDC_RESULT_GENERAL_ERROR;
    }
    if (!s.is_pdc_list_handling) {
        PDC_LOGE("g_pdc_info.is_pdc_list_handling is not running, do nothing");
        return PDC_RESULT_GENERAL_ERROR;
    }
    if (ind->error != 0) {
        PDC_LOGE("QMI error, error code: %d", ind->error);
        return PDC_RESULT_GENERAL_ERROR;
    }
    if (!ind->config_list_valid) {
        PDC_LOGE("None MBN available in modem EFS");
        return PDC_RESULT_NO_MBN;
    }
    if (ind->config_list_len == 0 || ind->config_list_len > PDC_CONFIG_LIST_SIZE_MAX_V01) {
        PDC_LOGE("PDC_ERROR, more_available_valid %d, ind_token_valid %d, more_available %d, config_list_len %d",
                 ind->more_available_valid, ind->ind_token_valid, ind->more_available, ind->config_list_len);
        return PDC_RESULT_GENERAL_ERROR;
    }
    if (!add_page_locked(ind)) return PDC_RESULT_GENERAL_ERROR;
    *complete = !(ind->more_available_valid && ind->ind_token_valid && ind->more_available);
    PDC_LOGI("PDC_SUCCESS, more_available_valid %d, ind_token_valid %d, more_available %d, get_list_complete %d",
             ind->more_available_valid, ind->ind_token_valid, ind->more_available, *complete ? 1 : 0);
    if (ind->ind_token_valid) s.ind_token = ind->ind_token;
    return PDC_RESULT_SUCCESS;
}

}  // namespace

void qmi_pdc_list_configs_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len)
{
    PDC_LOGI("qmi_pdc_list_configs_ind_hdlr, ind_data_ptr = 0x%x, ind_data_len = %d",
             unsigned(uintptr_t(ind_data_ptr)), ind_data_len);
    const pdc_list_configs_ind_msg_v01 *ind = static_cast<const pdc_list_configs_ind_msg_v01 *>(ind_data_ptr);
    bool complete = true;
    {
        std::unique_lock<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        pdc_list_slot &s = g_pdc_info.slots.list;
        int8_t result = PDC_RESULT_GENERAL_ERROR;
        if (ind) {
            result = handle_page_locked(ind, &complete);
        } else {
            PDC_LOGE("NULL pointer for ind_data_ptr");
        }
        s.result = result;
        s.qmi_error = ind ? uint16_t(ind->error) : 0;
        if (result != PDC_RESULT_SUCCESS || complete) {
            complete = true;
            if (s.waiting) g_pdc_info.cond[PDC_OP_LIST].notify_one();
            s.done = 1;
        }
    }
    if (!complete) {
        struct timeval now = {0, 0};
        tolvek_qcril_setup_timed_callback(QCRIL_DEFAULT_INSTANCE_ID, QCRIL_DEFAULT_MODEM_ID,
                                          qmi_pdc_list_configs_next_page, &now);
    }
}
