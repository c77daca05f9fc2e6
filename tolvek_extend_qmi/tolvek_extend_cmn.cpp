#include "tolvek_extend_cmn.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <mutex>

#include "tolvek_log.h"

namespace {

/* Room for the service records of one lookup; the modem lists one server
 * of the extension service. */
constexpr unsigned int k_max_service_entries = 8;
/* Message codes below this one are known to the service (none of them is
 * handled as an indication). */
constexpr uint32_t k_known_indication_limit = 7;

/* The process-wide connection and its shared message buffers.  Everything
 * here is guarded by g_extend_mutex. */
struct extend_connection {
    qmi_idl_service_object_type service = nullptr;
    qmi_client_type client = nullptr;
    qmi_client_type notifier = nullptr;
    qmi_client_os_params os_params;
    struct {
        tolvek_extend_msg req;
        tolvek_extend_msg rsp;
    } msgs;
    bool bound = false;
    bool connected = false;
};

static_assert(sizeof(extend_connection::msgs) == 2 * sizeof(tolvek_extend_msg), "request and response buffers");

extend_connection g_extend;
std::mutex g_extend_mutex;

/* A plain console line of the send routine: no prefix, no system-log copy,
 * nothing while the console is quiet. */
__attribute__((format(printf, 1, 2))) void console_print(const char *format, ...)
{
    if (g_tolvek_console_quiet) {
        return;
    }
    va_list ap;
    va_start(ap, format);
    vprintf(format, ap);
    va_end(ap);
}

/* First call of the process: clear the buffers and bind the service. */
void bind_service_once()
{
    std::lock_guard<std::mutex> guard(g_extend_mutex);
    if (g_extend.bound) {
        return;
    }
    memset(&g_extend.msgs, 0, sizeof(g_extend.msgs));
    g_extend.service = tolvek_extend_get_service_object_v01();
    g_extend.bound = true;
}

/* Waits, without limit, until the service is listed; then opens the client.
 * Called with the mutex held.  A failure leaves the client handle null so
 * that the next request tries again. */
void connect_locked()
{
    if (g_extend.notifier == nullptr) {
        qmi_client_notifier_init(g_extend.service, &g_extend.os_params, &g_extend.notifier);
    }
    unsigned int num_services = 0;
    for (;;) {
        int rc = qmi_client_get_service_list(g_extend.service, nullptr, nullptr, &num_services);
        console_print("TOLVEK_QMI_NV: qmi_client_get_service_list() returned %d num_services = %d\n", rc,
                      int(num_services));
        if (rc == QMI_NO_ERR) {
            break;
        }
        qmi_cci_os_signal_wait(&g_extend.os_params, 0);
        /* The signal stays set until cleared; clearing it after each wake-up
         * keeps a vanished service from turning the wait into a spin. */
        QMI_CCI_OS_SIGNAL_CLEAR(&g_extend.os_params);
    }

    qmi_service_info infos[k_max_service_entries];
    memset(infos, 0, sizeof(infos));
    unsigned int num_entries = num_services < k_max_service_entries ? num_services : k_max_service_entries;
    int rc = qmi_client_get_service_list(g_extend.service, infos, &num_entries, &num_services);
    console_print("TOLVEK_QMI_NV: qmi_client_get_service_list() returned %d num_entries = %d num_services = %d\n",
                  rc, int(num_entries), int(num_services));

    rc = qmi_client_init(&infos[0], g_extend.service, tolvek_extend_qmi_ind_cb, nullptr, &g_extend.os_params,
                         &g_extend.client);
    if (rc != QMI_NO_ERR) {
        /* Printed even on a quiet console. */
        printf("%d QMI client init failed\n", rc);
        g_extend.client = nullptr;
        return;
    }
    if (!g_tolvek_console_quiet) {
        puts("QMI client inited");
    }
    g_extend.connected = true;
}

/* One exchange over the open client.  Called with the mutex held. */
int exchange_locked(uint32_t msg_code, const uint8_t *req_data, int req_len, void *rsp_data, uint32_t *rsp_len)
{
    tolvek_extend_msg &req = g_extend.msgs.req;
    tolvek_extend_msg &rsp = g_extend.msgs.rsp;
    memset(&g_extend.msgs, 0, sizeof(g_extend.msgs));
    req.msg_code = msg_code;
    req.data_len = uint32_t(req_len);
    req.data_valid = 1;
    memcpy(req.data, req_data, size_t(req_len));

    int rc = qmi_client_send_msg_sync(g_extend.client, TOLVEK_EXTEND_REQ_MSG_ID_V01, &req, sizeof(req), &rsp,
                                      sizeof(rsp), TOLVEK_EXTEND_TIMEOUT_MS);
    if (rc != QMI_NO_ERR) {
        console_print("send msg sync failed:%d\n", rc);
        return TOLVEK_EXTEND_SEND_FAILED;
    }
    if (rsp.msg_code != 0) {
        console_print("%d QMI service framework error. Check client\n", int(rsp.msg_code));
        return TOLVEK_EXTEND_SEND_FAILED;
    }
    if (rsp.data_len <= *rsp_len) {
        *rsp_len = rsp.data_len;
    }
    if (rsp.data_valid) {
        memcpy(rsp_data, rsp.data, *rsp_len);
    } else {
        *rsp_len = 0;
    }
    console_print("tolvek_extend_qmi_send_sync resp_len:%d\n", int(*rsp_len));
    return TOLVEK_EXTEND_SEND_OK;
}

}  // namespace

int tolvek_extend_qmi_send_sync(uint32_t msg_code, const uint8_t *req_data, int req_len, void *rsp_data,
                                uint32_t *rsp_len)
{
    bind_service_once();

    if (req_data == nullptr || rsp_data == nullptr || rsp_len == nullptr) {
        console_print("%x,  put Invalid param\n", unsigned(uintptr_t(req_data)));
        return TOLVEK_EXTEND_SEND_BAD_PARAM;
    }
    if (req_len < 0 || req_len > TOLVEK_EXTEND_DATA_MAX || *rsp_len > TOLVEK_EXTEND_DATA_MAX) {
        console_print("put data_len %d > max %d\n", req_len, TOLVEK_EXTEND_DATA_MAX);
        return TOLVEK_EXTEND_SEND_BAD_PARAM;
    }

    std::lock_guard<std::mutex> guard(g_extend_mutex);
    if (g_extend.client == nullptr) {
        connect_locked();
    }
    int result = g_extend.client == nullptr
                     ? TOLVEK_EXTEND_SEND_NO_CLIENT
                     : exchange_locked(msg_code, req_data, req_len, rsp_data, rsp_len);
    console_print("tolvek_extend_qmi_handle_req_cb result:%d\n", result);
    return result;
}

void tolvek_send_common_qmi_msg(uint32_t t, uint32_t l, void *data, void *rsp)
{
    TOLVEK_FUNC_ENTRY();
    if (rsp == nullptr) {
        TOLVEK_LOGD("rsp is NULL");
        TOLVEK_FUNC_EXIT();
        return;
    }
    tolvek_common_req req;
    memset(rsp, 0, sizeof(tolvek_common_rsp));
    memset(&req, 0, sizeof(req));
    TOLVEK_LOGD("t %d", int(t));
    TOLVEK_LOGD("l %d", int(l));
    if (l != 0 && data == nullptr) {
        TOLVEK_LOGD("v is null");
    } else {
        if (l > sizeof(req.value)) {
            /* The value area holds 496 bytes; a longer value is a fault of
             * the caller and ends the process. */
            abort();
        }
        req.cmd_code = TOLVEK_COMMON_CMD_TYPED;
        req.type = t;
        req.len = l;
        if (l != 0) {
            memcpy(req.value, data, l);
        }
        uint32_t rsp_len = TOLVEK_COMMON_RSP_LEN;
        tolvek_extend_qmi_send_sync(REQUEST_ID_COMMON, reinterpret_cast<const uint8_t *>(&req), sizeof(req), rsp,
                                    &rsp_len);
    }
    TOLVEK_FUNC_EXIT();
}

int tolvek_qmi_result_map(int result)
{
    int mapped = result;
    switch (result) {
    case TOLVEK_EXTEND_SEND_BAD_PARAM:
        mapped = TOLVEK_QMI_RESULT_BAD_PARAM;
        break;
    case TOLVEK_EXTEND_SEND_NO_CLIENT:
        mapped = TOLVEK_QMI_RESULT_NO_CLIENT;
        break;
    case TOLVEK_EXTEND_SEND_FAILED:
        mapped = TOLVEK_QMI_RESULT_FAILED;
        break;
    default:
        break;
    }
    TOLVEK_LOGD("tolvek_qmi_result_map, old_result %d, new_result %d", result, mapped);
    return mapped;
}

void tolvek_extend_qmi_ind_cb(qmi_client_type user_handle, unsigned int msg_id, void *ind_buf,
                              unsigned int ind_buf_len, void *ind_cb_data)
{
    (void)ind_cb_data;
    console_print("TOLVEK__EXTEND_QMI: Indication msg_id=0x%x buf_len=%d \n", msg_id, int(ind_buf_len));
    tolvek_extend_msg ind;
    memset(&ind, 0, sizeof(ind));
    qmi_client_message_decode(user_handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_buf_len, &ind, sizeof(ind));
    if (ind.msg_code < k_known_indication_limit) {
        TOLVEK_LOGD("No function defined to handle indication: %d", int(ind.msg_code));
    } else {
        TOLVEK_LOGD("Indicaion: %d greater than maximum known indication.", int(ind.msg_code));
    }
}

void tolvek_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type user_handle, unsigned int msg_id,
                                                       void *ind_buf, unsigned int ind_buf_len,
                                                       void *ind_cb_data)
{
    (void)user_handle;
    (void)ind_buf;
    (void)ind_buf_len;
    (void)ind_cb_data;
    TOLVEK_LOGD("msg_id %d", int(msg_id));
}
