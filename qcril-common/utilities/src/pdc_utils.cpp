/* The PDC client: the process-wide outcome record, opening and releasing
 * the QMI client, and the indication callback that decodes each
 * indication and hands it to its handler. */
#include "pdc_utils.h"

#include <string.h>
#include <unistd.h>

#include <mutex>

#include "pdc_log.h"
#include "qcril_memory_management.h"

pdc_global_info g_pdc_info;

pdc_global_info::pdc_global_info() : slots(), cancelled(false), service_lost(false), client_handle(nullptr) {}

namespace {

/* Where the indication callback's allocation says it was made. */
constexpr int k_ind_alloc_line = 800;

typedef void (*pdc_ind_handler)(void *ind_data_ptr, uint32_t ind_data_len);

struct pdc_ind_entry {
    unsigned int msg_id;
    pdc_ind_handler handler;
};

const pdc_ind_entry k_ind_handlers[] = {
    {QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, qmi_pdc_get_selected_config_ind_hdlr},
    {QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, qmi_pdc_select_config_ind_hdlr},
    {QMI_PDC_LIST_CONFIGS_REQ_V01, qmi_pdc_list_configs_ind_hdlr},
    {QMI_PDC_DELETE_CONFIG_REQ_V01, qmi_pdc_delete_config_ind_hdlr},
    {QMI_PDC_LOAD_CONFIG_REQ_V01, qmi_pdc_load_config_ind_hdlr},
    {QMI_PDC_ACTIVATE_CONFIG_REQ_V01, qmi_pdc_activate_config_ind_hdlr},
    {QMI_PDC_GET_CONFIG_INFO_REQ_V01, qmi_pdc_get_config_info_ind_hdlr},
    {QMI_PDC_DEACTIVATE_CONFIG_REQ_V01, qmi_pdc_deactivate_config_ind_hdlr},
    {QMI_PDC_SET_FEATURE_REQ_V01, qmi_pdc_set_feature_ind_hdlr},
};

void default_retry_sleep(unsigned int seconds) { sleep(seconds); }

pdc_retry_sleep_fn g_retry_sleep = default_retry_sleep;

pdc_slot_view view_of(pdc_outcome_slot &s)
{
    return {&s.in_progress, &s.waiting, &s.done, &s.result, &s.qmi_error, &s.ind_token};
}

void set_handle(qmi_client_type handle)
{
    std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
    g_pdc_info.client_handle = handle;
}

/* Every waiter: the outcome slots and the response waits. */
void wake_all_waiters()
{
    for (auto &c : g_pdc_info.cond) c.notify_all();
    g_pdc_info.response_cond.notify_all();
}

/* The connection of the installed client ended (on the QMI library's
 * callback thread). */
void on_client_error(qmi_client_type, qmi_client_error_type error, void *)
{
    PDC_LOGE("PDC service connection lost, code = %d", error);
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.service_lost = true;
    }
    wake_all_waiters();
}

}  // namespace

pdc_slot_view pdc_slot_of(pdc_op op)
{
    pdc_slots &s = g_pdc_info.slots;
    switch (op) {
    case PDC_OP_GET_SELECTED:
        return view_of(s.get_selected.outcome);
    case PDC_OP_SELECT:
        return view_of(s.select);
    case PDC_OP_LIST:
        return {&s.list.is_pdc_list_handling, &s.list.waiting, &s.list.done, &s.list.result, &s.list.qmi_error,
                &s.list.ind_token};
    case PDC_OP_DELETE:
        return view_of(s.del);
    case PDC_OP_LOAD:
        return view_of(s.load.outcome);
    case PDC_OP_ACTIVATE:
        return view_of(s.activate);
    case PDC_OP_GET_CONFIG_INFO:
        return view_of(s.get_config_info.outcome);
    case PDC_OP_DEACTIVATE:
        return view_of(s.deactivate);
    case PDC_OP_SET_FEATURE:
    default:
        return view_of(s.set_feature);
    }
}

void qmi_pdc_init_pdc_info()
{
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        memset(&g_pdc_info.slots, 0, sizeof(g_pdc_info.slots));
    }
    PDC_LOGE("pdc_info init done");
}

void pdc_set_retry_sleep(pdc_retry_sleep_fn fn) { g_retry_sleep = fn ? fn : default_retry_sleep; }

int pdc_init()
{
    qmi_pdc_init_pdc_info();
    for (int attempt = 0; attempt < PDC_INIT_ATTEMPTS; attempt++) {
        qmi_client_type handle = nullptr;
        if (pdc_open_attempt(PDC_INIT_TIMEOUT_MS, attempt, &handle) == 0) {
            set_handle(handle);
            return 0;
        }
        g_retry_sleep(PDC_INIT_RETRY_SECONDS);
    }
    set_handle(nullptr);
    return -1;
}

int pdc_open_attempt(unsigned int timeout_ms, int attempt, qmi_client_type *handle)
{
    qmi_client_os_params os_params;
    memset(&os_params, 0, sizeof(os_params));
    *handle = nullptr;
    int rc = qmi_client_init_instance(pdc_get_service_object_v01(), PDC_INIT_INSTANCE, qmi_pdc_unsol_ind_cb, nullptr,
                                      &os_params, timeout_ms, handle);
    if (rc == QMI_NO_ERR) {
        PDC_LOGI("qmi_client_init succeeds for PDC");
        return 0;
    }
    *handle = nullptr;
    PDC_LOGE("qmi_client_init returned failure (%d) for PDC, retry times %d", rc, attempt);
    return rc;
}

void pdc_install_client(qmi_client_type handle)
{
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.service_lost = false;
        g_pdc_info.client_handle = handle;
    }
    /* A connection that ended already is reported at once, through the
     * callback. */
    qmi_client_register_error_cb(handle, on_client_error, nullptr);
}

void pdc_clean()
{
    qmi_client_type handle;
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        handle = g_pdc_info.client_handle;
    }
    /* Released without the mutex: the release waits for indication
     * callbacks that may be taking it. */
    if (handle) {
        PDC_LOGI("Release client connection to PDC");
        qmi_client_release(handle);
    }
    set_handle(nullptr);
}

void qmi_pdc_unsol_ind_cb(qmi_client_type client, unsigned int msg_id, void *ind_buf, unsigned int ind_buf_len,
                          void *)
{
    uint32_t len = 0;
    qmi_idl_service_object_type svc = pdc_get_service_object_v01();
    if (qmi_idl_get_message_c_struct_len(svc, QMI_IDL_INDICATION, uint16_t(msg_id & 0xFFFF), &len) != 0) {
        PDC_LOGE("failed to get message c_struct len");
        return;
    }
    void *payload = qcril_malloc_adv(len, "qmi_pdc_unsol_ind_cb", k_ind_alloc_line);
    if (!payload) {
        PDC_LOGE("failed to allocate memory for payload");
        return;
    }
    if (qmi_client_message_decode(client, QMI_IDL_INDICATION, msg_id, ind_buf, ind_buf_len, payload, len) != 0) {
        PDC_LOGE("failed to decode qmi message, msg_id: 0x%02x", msg_id);
    } else {
        for (const pdc_ind_entry &e : k_ind_handlers) {
            if (e.msg_id == msg_id) {
                e.handler(payload, len);
                break;
            }
        }
    }
    qcril_free_adv(payload, "qmi_pdc_unsol_ind_cb", k_ind_alloc_line);
}

void pdc_cancel_waits()
{
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.cancelled = true;
    }
    wake_all_waiters();
}

void pdc_reset_cancel()
{
    std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
    g_pdc_info.cancelled = false;
    g_pdc_info.service_lost = false;
}
