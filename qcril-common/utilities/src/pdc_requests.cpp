/* Sending PDC requests and waiting for their indications. */
#include "pdc_requests.h"

#include <string.h>

#include <atomic>
#include <chrono>
#include <mutex>

#include "pdc_log.h"
#include "qcril_memory_management.h"

namespace {

typedef std::unique_lock<qtimutex::QtiSharedMutex> pdc_lock;

std::atomic<uint32_t> g_next_token{1};

typedef std::chrono::steady_clock steady;
std::atomic<steady::rep> g_deadline{steady::time_point::max().time_since_epoch().count()};

/* One request's response, shared by the sender and the QMI library's
 * callback: whichever lets go of it last frees it, so a sender that stops
 * waiting (deadline, signal) leaves nothing for a late response to write
 * into. */
struct response_wait {
    std::atomic<int> owners{2};
    bool done = false; /* under the PDC mutex */
    int transport_error = QMI_NO_ERR;
    pdc_load_config_resp_msg_v01 resp = {};
};

void let_go(response_wait *w)
{
    if (--w->owners == 0) delete w;
}

/* On the QMI library's callback thread: the response (decoded into
 * w->resp) or the transport error that ended the transaction. */
void on_response(qmi_client_type, unsigned int, void *, unsigned int, void *data, qmi_client_error_type error)
{
    response_wait *w = static_cast<response_wait *>(data);
    {
        pdc_lock lock(g_pdc_info.pdc_mutex);
        w->done = true;
        w->transport_error = error;
    }
    g_pdc_info.response_cond.notify_all();
    let_go(w);
}

steady::time_point response_deadline()
{
    steady::time_point set{steady::duration(g_deadline.load())};
    if (set != steady::time_point::max()) return set;
    return steady::now() + std::chrono::milliseconds(PDC_RESPONSE_TIMEOUT_MS);
}

bool interrupted_locked() { return g_pdc_info.cancelled || g_pdc_info.service_lost; }

void set_id(uint32_t *len, uint8_t *dst, const pdc_config_id &id)
{
    *len = id.len <= PDC_CONFIG_ID_SIZE_MAX_V01 ? id.len : PDC_CONFIG_ID_SIZE_MAX_V01;
    memcpy(dst, id.bytes, *len);
}

/* The requester is gone: late indications find nothing to fill. */
void end_locked(pdc_op op)
{
    *pdc_slot_of(op).in_progress = 0;
    if (op == PDC_OP_LIST) {
        g_pdc_info.slots.list.num_of_configs = nullptr;
        g_pdc_info.slots.list.config_list_holder = nullptr;
    }
}

}  // namespace

void pdc_end(pdc_op op)
{
    pdc_lock lock(g_pdc_info.pdc_mutex);
    end_locked(op);
}

uint32_t pdc_next_token()
{
    uint32_t token = g_next_token++;
    return token ? token : g_next_token++; /* 0 means "no token" */
}

void pdc_set_deadline(std::chrono::steady_clock::time_point deadline)
{
    g_deadline = deadline.time_since_epoch().count();
}

int pdc_send_request(unsigned int msg_id, void *req, unsigned int req_len)
{
    qmi_client_type handle;
    {
        pdc_lock lock(g_pdc_info.pdc_mutex);
        handle = g_pdc_info.client_handle;
    }
    if (!handle) return QMI_CLIENT_INVALID_CLNT;
    /* Every response is the result TLV (the load response may add the
     * frame reset flag), so the larger structure takes any of them. */
    unsigned int resp_len = msg_id == QMI_PDC_LOAD_CONFIG_REQ_V01 ? sizeof(pdc_load_config_resp_msg_v01)
                                                                   : sizeof(pdc_generic_resp_msg_v01);
    steady::time_point deadline = response_deadline();
    response_wait *w = new response_wait();
    qmi_txn_handle txn = nullptr;
    int rc = qmi_client_send_msg_async(handle, msg_id, req, req_len, &w->resp, resp_len, on_response, w, &txn);
    if (rc != QMI_NO_ERR) {
        delete w; /* not sent: no callback comes */
        return rc < 0 ? rc : -rc;
    }
    bool done;
    {
        pdc_lock lock(g_pdc_info.pdc_mutex);
        g_pdc_info.response_cond.wait_until(lock, deadline, [w] { return w->done || interrupted_locked(); });
        done = w->done;
        if (done) {
            rc = w->transport_error;
        } else {
            rc = g_pdc_info.cancelled      ? PDC_SEND_CANCELLED
                 : g_pdc_info.service_lost ? QMI_SERVICE_ERR
                                           : QMI_TIMEOUT_ERR;
        }
    }
    if (!done) {
        /* Withdrawn: its callback never runs and its share is ours to drop.
         * Otherwise the response is on its way to the callback, which
         * drops it. */
        if (qmi_client_delete_async_txn(handle, txn) == QMI_NO_ERR) let_go(w);
        let_go(w);
        return rc;
    }
    /* The callback wrote the response before it set done under the mutex. */
    qmi_response_type_v01 result = w->resp.resp;
    let_go(w);
    if (rc != QMI_NO_ERR) return rc < 0 ? rc : -rc;
    if (result.result != QMI_RESULT_SUCCESS_V01) return result.error ? result.error : PDC_QMI_ERR_INTERNAL;
    return 0;
}

void pdc_begin(pdc_op op)
{
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_slot_view v = pdc_slot_of(op);
    *v.in_progress = 1;
    *v.done = 0;
    *v.result = PDC_RESULT_SUCCESS;
    *v.qmi_error = 0;
    *v.ind_token = 0;
}

pdc_wait_status pdc_wait_outcome(pdc_op op, unsigned int timeout_ms, uint32_t token)
{
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_slot_view v = pdc_slot_of(op);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    *v.waiting = 1;
    for (;;) {
        bool woken = g_pdc_info.cond[op].wait_until(lock, deadline, [&v] {
            return *v.done || interrupted_locked();
        });
        /* An indication that answered another request (its token is not
         * ours) does not end the wait. */
        if (!woken || interrupted_locked() || !token || !*v.ind_token || *v.ind_token == token) break;
        *v.done = 0;
        *v.ind_token = 0;
    }
    *v.waiting = 0;
    end_locked(op);
    if (*v.done) return PDC_WAIT_DONE;
    if (g_pdc_info.cancelled) return PDC_WAIT_CANCELLED;
    return g_pdc_info.service_lost ? PDC_WAIT_LOST : PDC_WAIT_TIMEOUT;
}

int pdc_request_list(uint32_t config_type, uint32_t token)
{
    pdc_list_configs_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.config_type_valid = 1;
    req.config_type = pdc_config_type_enum_v01(config_type);
    return pdc_send_request(QMI_PDC_LIST_CONFIGS_REQ_V01, &req, sizeof(req));
}

int pdc_request_get_selected(uint32_t config_type, uint32_t sub, uint32_t token)
{
    pdc_get_selected_config_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.config_type = pdc_config_type_enum_v01(config_type);
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.subscription_id_valid = 1;
    req.subscription_id = sub;
    return pdc_send_request(QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, &req, sizeof(req));
}

int pdc_request_select(uint32_t config_type, const pdc_config_id &id, uint32_t sub, uint32_t token)
{
    pdc_set_selected_config_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.new_config_info.config_type = pdc_config_type_enum_v01(config_type);
    set_id(&req.new_config_info.config_id_len, req.new_config_info.config_id, id);
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.subscription_id_valid = 1;
    req.subscription_id = sub;
    return pdc_send_request(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, &req, sizeof(req));
}

int pdc_request_activate(uint32_t config_type, uint32_t sub, uint32_t token)
{
    pdc_activate_config_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.config_type = pdc_config_type_enum_v01(config_type);
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.subscription_id_valid = 1;
    req.subscription_id = sub;
    return pdc_send_request(QMI_PDC_ACTIVATE_CONFIG_REQ_V01, &req, sizeof(req));
}

int pdc_request_deactivate(uint32_t config_type, uint32_t sub, uint32_t token)
{
    pdc_deactivate_config_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.config_type = pdc_config_type_enum_v01(config_type);
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.subscription_id_valid = 1;
    req.subscription_id = sub;
    return pdc_send_request(QMI_PDC_DEACTIVATE_CONFIG_REQ_V01, &req, sizeof(req));
}

int pdc_request_delete(uint32_t config_type, const pdc_config_id &id, uint32_t token)
{
    pdc_delete_config_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.config_type = pdc_config_type_enum_v01(config_type);
    req.ind_token_valid = 1;
    req.ind_token = token;
    req.config_id_valid = 1;
    set_id(&req.config_id_len, req.config_id, id);
    return pdc_send_request(QMI_PDC_DELETE_CONFIG_REQ_V01, &req, sizeof(req));
}

int pdc_request_config_info(uint32_t config_type, const pdc_config_id &id, uint32_t token)
{
    pdc_get_config_info_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.new_config_info.config_type = pdc_config_type_enum_v01(config_type);
    set_id(&req.new_config_info.config_id_len, req.new_config_info.config_id, id);
    req.ind_token_valid = 1;
    req.ind_token = token;
    return pdc_send_request(QMI_PDC_GET_CONFIG_INFO_REQ_V01, &req, sizeof(req));
}

int pdc_request_load_frame(uint32_t config_type, const pdc_config_id &id, uint32_t total_size, const uint8_t *frame,
                           uint32_t frame_len, uint32_t token)
{
    if (frame_len > PDC_CONFIG_FRAME_SIZE_MAX_V01) return QMI_CLIENT_PARAM_ERR;
    /* 33 KiB: from the heap rather than the stack. */
    pdc_load_config_req_msg_v01 *req = static_cast<pdc_load_config_req_msg_v01 *>(
        qcril_malloc_adv(sizeof(pdc_load_config_req_msg_v01), "pdc_request_load_frame", __LINE__));
    if (!req) return QMI_CLIENT_ALLOC_FAILURE;
    pdc_load_config_info_type_v01 &info = req->load_config_info;
    info.config_type = pdc_config_type_enum_v01(config_type);
    set_id(&info.config_id_len, info.config_id, id);
    info.total_config_size = total_size;
    info.config_frame_len = frame_len;
    if (frame_len) memcpy(info.config_frame, frame, frame_len);
    req->ind_token_valid = 1;
    req->ind_token = token;
    int rc = pdc_send_request(QMI_PDC_LOAD_CONFIG_REQ_V01, req, sizeof(*req));
    qcril_free_adv(req, "pdc_request_load_frame", __LINE__);
    return rc;
}

int pdc_list_start(uint32_t config_type, uint32_t token, uint32_t *num_of_configs, pdc_config_list_element **holder)
{
    {
        pdc_lock lock(g_pdc_info.pdc_mutex);
        pdc_list_slot &s = g_pdc_info.slots.list;
        s.is_pdc_list_handling = 1;
        s.done = 0;
        s.result = PDC_RESULT_SUCCESS;
        s.qmi_error = 0;
        s.config_type = config_type;
        s.ind_token = token;
        s.num_of_configs = num_of_configs;
        s.config_list_holder = holder;
    }
    return pdc_request_list(config_type, token);
}

void qmi_pdc_list_configs_next_page(void *)
{
    uint32_t type, token;
    {
        pdc_lock lock(g_pdc_info.pdc_mutex);
        if (!g_pdc_info.slots.list.is_pdc_list_handling) return; /* the requester gave up */
        type = g_pdc_info.slots.list.config_type;
        token = g_pdc_info.slots.list.ind_token;
    }
    int rc = pdc_request_list(type, token);
    if (rc == 0) return;
    PDC_LOGE("next page of the configuration list not sent, code = %d", rc);
    pdc_lock lock(g_pdc_info.pdc_mutex);
    pdc_list_slot &s = g_pdc_info.slots.list;
    s.result = PDC_RESULT_GENERAL_ERROR;
    if (s.waiting) g_pdc_info.cond[PDC_OP_LIST].notify_one();
    s.done = 1;
}

void pdc_free_config_list(pdc_config_list_element *head)
{
    while (head) {
        pdc_config_list_element *next = head->next;
        qcril_free_adv(head, "pdc_free_config_list", __LINE__);
        head = next;
    }
}
