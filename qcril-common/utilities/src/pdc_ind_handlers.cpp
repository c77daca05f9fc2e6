/* The PDC indication handlers: each stores its operation's outcome in
 * g_pdc_info under the PDC mutex, sets done and wakes a waiting requester.
 * The list handler also collects the configuration ids of each page and
 * asks for the next page while the modem has more. */
#include <string.h>

#include <mutex>

#include "pdc_log.h"
#include "pdc_utils.h"
#include "qcril_memory_management.h"

namespace {


typedef std::unique_lock<qtimutex::QtiSharedMutex> pdc_lock;

/* With the mutex held: wakes the waiter of `op` (when one waits) and
 * marks the outcome as arrived. */
void finish_locked(pdc_op op)
{
    pdc_slot_view v = pdc_slot_of(op);
    if (*v.waiting) g_pdc_info.cond[op].notify_one();
    *v.done = 1;
}

void store_locked(pdc_op op, int8_t result, uint16_t qmi_error, const pdc_generic_ind_msg_v01 *ind)
{
    pdc_slot_view v = pdc_slot_of(op);
    *v.result = result;
    *v.qmi_error = qmi_error;
    if (ind && ind->ind_token_valid) *v.ind_token = ind->ind_token;
}

/* The outcome of a handler of the simple form: -1 for a missing structure
 * or a QMI error, else 0. */
int8_t simple_result(const void *ind_data_ptr, int32_t error)
{
    if (!ind_data_ptr) {
        PDC_LOGE("NULL pointer for ind_data_ptr");
        return PDC_RESULT_GENERAL_ERROR;
    }
    if (error != 0) {
        PDC_LOGE("QMI error, error code: %d", error);
        return PDC_RESULT_GENERAL_ERROR;
    }
    return PDC_RESULT_SUCCESS;
}

/* Select, delete, activate, deactivate and set feature share one
 * indication layout and one form. */
void simple_outcome(pdc_op op, void *ind_data_ptr)
{
    const pdc_generic_ind_msg_v01 *ind = static_cast<const pdc_generic_ind_msg_v01 *>(ind_data_ptr);
    int8_t result = simple_result(ind, ind ? ind->error : 0);
    pdc_lock lock(g_pdc_info.pdc_mutex);
    store_locked(op, result, ind ? uint16_t(ind->error) : 0, ind);
    finish_locked(op);
}

void copy_id(uint32_t *dst_len, uint8_t *dst, uint8_t valid, uint32_t len, const uint8_t *src)
{
    *dst_len = valid && len <= PDC_CONFIG_ID_SIZE_MAX_V01 ? len : 0;
    if (*dst_len) memcpy(dst, src, *dst_len);
}

}  // namespace

void qmi_pdc_select_config_ind_hdlr(void *ind_data_ptr, uint32_t) { simple_outcome(PDC_OP_SELECT, ind_data_ptr); }
void qmi_pdc_delete_config_ind_hdlr(void *ind_data_ptr, uint32_t) { simple_outcome(PDC_OP_DELETE, ind_data_ptr); }
void qmi_pdc_activate_config_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    simple_outcome(PDC_OP_ACTIVATE, ind_data_ptr);
}
void qmi_pdc_deactivate_config_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    simple_outcome(PDC_OP_DEACTIVATE, ind_data_ptr);
}
void qmi_pdc_set_feature_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    simple_outcome(PDC_OP_SET_FEATURE, ind_data_ptr);
}

void qmi_pdc_get_selected_config_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    const pdc_get_selected_config_ind_msg_v01 *ind = static_cast<const pdc_get_selected_config_ind_msg_v01 *>(ind_data_ptr);
    int8_t result = simple_result(ind, ind ? ind->error : 0);
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_selected_slot &s = g_pdc_info.slots.get_selected;
    s.outcome.result = result;
    s.outcome.qmi_error = ind ? uint16_t(ind->error) : 0;
    s.active_config_id_len = s.pending_config_id_len = 0;
    if (ind && result == PDC_RESULT_SUCCESS) {
        if (ind->ind_token_valid) s.outcome.ind_token = ind->ind_token;
        copy_id(&s.active_config_id_len, s.active_config_id, ind->active_config_id_valid, ind->active_config_id_len,
                ind->active_config_id);
        copy_id(&s.pending_config_id_len, s.pending_config_id, ind->pending_config_id_valid,
                ind->pending_config_id_len, ind->pending_config_id);
    }
    finish_locked(PDC_OP_GET_SELECTED);
}

void qmi_pdc_get_config_info_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    const pdc_get_config_info_ind_msg_v01 *ind = static_cast<const pdc_get_config_info_ind_msg_v01 *>(ind_data_ptr);
    int8_t result = simple_result(ind, ind ? ind->error : 0);
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_config_info_slot &s = g_pdc_info.slots.get_config_info;
    s.outcome.result = result;
    s.outcome.qmi_error = ind ? uint16_t(ind->error) : 0;
    s.config_size_valid = s.config_version_valid = 0;
    s.config_desc_len = 0;
    if (ind && result == PDC_RESULT_SUCCESS) {
        if (ind->ind_token_valid) s.outcome.ind_token = ind->ind_token;
        s.config_size_valid = ind->config_size_valid;
        s.config_size = ind->config_size;
        s.config_version_valid = ind->config_version_valid;
        s.config_version = ind->config_version;
        if (ind->config_desc_valid && ind->config_desc_len <= PDC_CONFIG_DESC_SIZE_MAX_V01) {
            s.config_desc_len = ind->config_desc_len;
            memcpy(s.config_desc, ind->config_desc, s.config_desc_len);
        }
    }
    finish_locked(PDC_OP_GET_CONFIG_INFO);
}

void qmi_pdc_load_config_ind_hdlr(void *ind_data_ptr, uint32_t)
{
    pdc_load_config_ind_msg_v01 *ind = static_cast<pdc_load_config_ind_msg_v01 *>(ind_data_ptr);
    int8_t result = PDC_RESULT_SUCCESS;
    if (!ind) {
        PDC_LOGE("NULL pointer for ind_dat_ptr");
        result = PDC_RESULT_GENERAL_ERROR;
    } else if (ind->error == PDC_QMI_ERR_NO_MEMORY) {
        PDC_LOGE("no memory in modem EFS");
        result = PDC_RESULT_NO_MEMORY;
    } else if (ind->error == PDC_QMI_ERR_INVALID_ID) {
        PDC_LOGE("Invalid config id, maybe already exists");
        result = PDC_RESULT_CONFIG_EXISTS;
    } else if (ind->error != 0) {
        PDC_LOGE("load configuration error, code = %d", ind->error);
        result = PDC_RESULT_GENERAL_ERROR;
    } else if (ind->frame_data_reset_valid) {
        ind->frame_data_reset = 1;
        PDC_LOGE("PDC frame data is reset");
        result = PDC_RESULT_FRAME_RESET;
    }
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_load_slot &s = g_pdc_info.slots.load;
    s.outcome.result = result;
    s.outcome.qmi_error = ind ? uint16_t(ind->error) : 0;
    if (ind && ind->ind_token_valid) s.outcome.ind_token = ind->ind_token;
    if (result == PDC_RESULT_SUCCESS) {
        if (ind->received_config_size_valid) s.received_config_size = ind->received_config_size;
        if (ind->remaining_config_size_valid) s.remaining_config_size = ind->remaining_config_size;
    }
    finish_locked(PDC_OP_LOAD);
}
