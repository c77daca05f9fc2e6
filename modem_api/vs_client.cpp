/* The vs client: opening with retries and the restart path. */
#include "vs_client.h"

#include <pthread.h>
#include <unistd.h>

#include "modem_api.h"
#include "orvex_log.h"

vs_client_entry g_vs_client;

namespace {

/* Line priorities of the client. */
constexpr int k_prio_info = ANDROID_LOG_INFO;
constexpr int k_prio_error = ANDROID_LOG_ERROR;

void default_sleep(unsigned int seconds) { sleep(seconds); }

int default_thread_start(void *(*body)(void *))
{
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    pthread_t tid;
    int rc = pthread_create(&tid, &attr, body, nullptr);
    pthread_attr_destroy(&attr);
    return rc;
}

vs_client_sleep_fn g_sleep = default_sleep;
/* Grows whenever the owner closes the client; a release thread that finds
 * it changed gives up the notifier it made, which nobody would release. */
uint32_t g_generation = 0;
vs_client_thread_start_fn g_thread_start = default_thread_start;

void report_status(modem_api_operational_status_type status)
{
    vs_client_status_cb_fn cb = VS_CLIENT_GET(status_cb);
    if (cb) cb(MODEM_API_QMI_CLIENT_VS, status);
}

}  // namespace

void vs_client_closed(void) { __atomic_add_fetch(&g_generation, 1, __ATOMIC_ACQ_REL); }

void vs_client_set_sleep(vs_client_sleep_fn fn) { g_sleep = fn ? fn : default_sleep; }
void vs_client_set_thread_start(vs_client_thread_start_fn fn) { g_thread_start = fn ? fn : default_thread_start; }

int vs_client_init_client_handles(void)
{
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function entry");
    unsigned int port = VS_CLIENT_MASTER_PORT;
    ORVEX_LOG_LABEL(k_prio_info, "vs_client_get_master_port", "using port %d", int(port));
    qmi_client_type handle = nullptr;
    int rc = qmi_client_init_instance(VS_CLIENT_GET(service_object), port, vs_client_unsol_ind_cb, nullptr,
                                      &g_vs_client.os_params, VS_CLIENT_INIT_TIMEOUT, &handle);
    for (int attempt = 1; rc != QMI_NO_ERR && attempt < VS_CLIENT_INIT_ATTEMPTS; attempt++) {
        g_sleep(VS_CLIENT_INIT_RETRY_SLEEP_S);
        ORVEX_LOG_LABEL(k_prio_info, __func__, "Trying qmi_client_init_instance() try # %d port[%d]", attempt,
                        int(port));
        rc = qmi_client_init_instance(VS_CLIENT_GET(service_object), port, vs_client_unsol_ind_cb, nullptr,
                                      &g_vs_client.os_params, VS_CLIENT_INIT_TIMEOUT, &handle);
    }
    ORVEX_LOG_LABEL(k_prio_info, __func__, "qmi_client_init_instance returned (%d)", rc);
    long ret = 0;
    if (rc != QMI_NO_ERR) {
        ORVEX_LOG_LABEL(k_prio_info, __func__, "qmi_client_init_instance returned failure(%d)", rc);
    } else {
        VS_CLIENT_SET(client_handle, handle);
        qmi_client_register_error_cb(handle, vs_client_service_down_event, nullptr);
        VS_CLIENT_SET(initialised, 1u);
        ret = 1;
    }
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function exit with ret %ld", ret);
    return int(ret);
}

void vs_client_service_down_event(qmi_client_type, qmi_client_error_type error, void *)
{
    ORVEX_LOG_LABEL(k_prio_error, __func__, "service down with error %d", error);
    ORVEX_LOG_LABEL(k_prio_info, "vs_client_enter_suspend", "function entry");
    report_status(MODEM_API_OPERATIONAL_STATUS_SUSPEND);
    if (g_thread_start(vs_client_release_qmi_client_thread) != 0) {
        report_status(MODEM_API_OPERATIONAL_STATUS_THREAD_FAIL);
    }
}

void *vs_client_release_qmi_client_thread(void *)
{
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function entry");
    uint32_t generation = __atomic_load_n(&g_generation, __ATOMIC_ACQUIRE);
    VS_CLIENT_SET(initialised, 0u);
    qmi_client_type handle = __atomic_exchange_n(&g_vs_client.client_handle, nullptr, __ATOMIC_ACQ_REL);
    if (handle) qmi_client_release(handle);
    report_status(MODEM_API_OPERATIONAL_STATUS_RELEASED);
    qmi_client_type notifier = VS_CLIENT_GET(notifier_handle);
    if (!notifier) {
        int rc = qmi_client_notifier_init(VS_CLIENT_GET(service_object), &g_vs_client.os_params, &notifier);
        ORVEX_LOG_LABEL(k_prio_info, __func__, "qmi_client_notifier_init return %d", rc);
        VS_CLIENT_SET(notifier_handle, notifier);
    }
    if (__atomic_load_n(&g_generation, __ATOMIC_ACQUIRE) != generation) {
        notifier = __atomic_exchange_n(&g_vs_client.notifier_handle, nullptr, __ATOMIC_ACQ_REL);
        if (notifier) qmi_client_release(notifier);
        return nullptr;
    }
    int rc = qmi_client_register_notify_cb(notifier, vs_client_service_up_event, nullptr);
    if (rc != QMI_NO_ERR) ORVEX_LOG_LABEL(k_prio_error, __func__, "qmi_client_register_notify_cb %d", rc);
    return nullptr;
}

void vs_client_service_up_event(qmi_client_type, qmi_idl_service_object_type,
                                qmi_client_notify_event_type service_event, void *)
{
    if (service_event != QMI_CLIENT_SERVICE_COUNT_INC) return;
    ORVEX_LOG_LABEL(k_prio_info, "vs_client_enter_resume", "function entry");
    report_status(MODEM_API_OPERATIONAL_STATUS_RESUME);
    if (g_thread_start(vs_client_resume_qmi_client_thread) != 0) {
        report_status(MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL);
    }
}

void *vs_client_resume_qmi_client_thread(void *)
{
    ORVEX_LOG_LABEL(k_prio_info, __func__, "function entry");
    qmi_client_type notifier = __atomic_exchange_n(&g_vs_client.notifier_handle, nullptr, __ATOMIC_ACQ_REL);
    if (notifier) qmi_client_release(notifier);
    report_status(vs_client_init_client_handles() == 1 ? MODEM_API_OPERATIONAL_STATUS_READY
                                                       : MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL);
    return nullptr;
}

void vs_client_command_cb(qmi_client_type, unsigned int msg_id, void *resp, unsigned int resp_len,
                          void *resp_cb_data, qmi_client_error_type transp_err)
{
    modem_api_process_response(msg_id, resp, resp_len, resp_cb_data, transp_err);
}

/* The other client kinds answer through the very same function. */
void sar_client_command_cb(qmi_client_type h, unsigned int msg_id, void *resp, unsigned int resp_len,
                           void *resp_cb_data, qmi_client_error_type transp_err)
    __attribute__((alias("vs_client_command_cb")));
void nas_0_client_command_cb(qmi_client_type h, unsigned int msg_id, void *resp, unsigned int resp_len,
                             void *resp_cb_data, qmi_client_error_type transp_err)
    __attribute__((alias("vs_client_command_cb")));
void nas_1_client_command_cb(qmi_client_type h, unsigned int msg_id, void *resp, unsigned int resp_len,
                             void *resp_cb_data, qmi_client_error_type transp_err)
    __attribute__((alias("vs_client_command_cb")));
