/* Connected QMI clients: one connection to one server of the simulator,
 * synchronous and asynchronous sends, indications and the error callback
 * when the server goes away. */
#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <chrono>

#include "endpoint.h"
#include "qmi_client_internal.h"
#include "qmi_codec.h"
#include "qmux_transport.h"

namespace rlk_host {
namespace {

/* How long qmi_client_init waits for the simulator to attach the server. */
constexpr int k_attach_timeout_ms = 5000;


void deliver_error(const std::shared_ptr<client_state> &st)
{
    std::weak_ptr<client_state> weak = st;
    st->callbacks.push([weak] {
        auto s = weak.lock();
        if (!s) return;
        qmi_client_error_cb cb;
        void *data;
        {
            std::lock_guard<std::mutex> g(s->mu);
            if (s->closing || s->err_reported) return;
            s->err_reported = true;
            cb = s->err_cb;
            data = s->err_cb_data;
        }
        if (cb) cb(s->handle, QMI_SERVICE_ERR, data);
    });
}

void deliver_indication(const std::shared_ptr<client_state> &st, uint16_t msg_id, std::vector<uint8_t> body)
{
    std::weak_ptr<client_state> weak = st;
    st->callbacks.push([weak, msg_id, body]() mutable {
        auto s = weak.lock();
        if (!s) return;
        qmi_client_ind_cb cb;
        void *data;
        {
            std::lock_guard<std::mutex> g(s->mu);
            if (s->closing) return;
            cb = s->ind_cb;
            data = s->ind_cb_data;
        }
        if (cb) cb(s->handle, msg_id, body.empty() ? nullptr : body.data(), unsigned(body.size()), data);
    });
}

void deliver_async(const std::shared_ptr<client_state> &st, std::shared_ptr<pending_txn> p)
{
    std::weak_ptr<client_state> weak = st;
    st->callbacks.push([weak, p] {
        auto s = weak.lock();
        if (!s) return;
        int err = p->error;
        if (err == QMI_NO_ERR) {
            err = qmi_idl_message_decode(s->svc, QMI_IDL_RESPONSE, uint16_t(p->msg_id), p->response.data(),
                                         uint32_t(p->response.size()), p->async_resp, p->async_resp_len);
        }
        p->async_cb(s->handle, p->msg_id, p->async_resp, p->async_resp_len, p->async_data, err);
    });
}

void on_response(const std::shared_ptr<client_state> &st, const qmi_header &h, const uint8_t *body)
{
    std::shared_ptr<pending_txn> p;
    {
        std::lock_guard<std::mutex> g(st->mu);
        auto it = st->pending.find(h.txn);
        if (it == st->pending.end() || it->second->msg_id != h.msg_id) return; /* late or stray */
        p = it->second;
        st->pending.erase(it);
        p->response.assign(body, body + h.len);
        p->done = true;
    }
    if (p->async_cb) {
        deliver_async(st, p);
    } else {
        st->cv.notify_all();
    }
}

/* The server went away (or the simulator did): fail what is in flight and
 * report the loss once. */
void on_lost(const std::shared_ptr<client_state> &st)
{
    std::map<uint16_t, std::shared_ptr<pending_txn>> failed;
    bool report;
    {
        std::lock_guard<std::mutex> g(st->mu);
        st->dead = true;
        failed.swap(st->pending);
        for (auto &kv : failed) {
            kv.second->done = true;
            kv.second->error = QMI_SERVICE_ERR;
        }
        report = !st->closing;
    }
    st->cv.notify_all();
    for (auto &kv : failed) {
        if (kv.second->async_cb) deliver_async(st, kv.second);
    }
    if (report) deliver_error(st);
}

void client_reader(std::shared_ptr<client_state> st)
{
    std::vector<uint8_t> buf(MODEMD_MAX_PACKET);
    for (;;) {
        long n = modemd_recv(st->fd, buf.data(), buf.size(), -1);
        if (n <= 0) break;
        qmi_header h;
        if (!qmi_header_read(buf.data(), size_t(n), &h)) continue; /* malformed: ignore */
        const uint8_t *body = buf.data() + QMI_HEADER_LEN;
        if (h.type == QMI_TYPE_RESPONSE) {
            on_response(st, h, body);
        } else if (h.type == QMI_TYPE_INDICATION) {
            deliver_indication(st, h.msg_id, std::vector<uint8_t>(body, body + h.len));
        }
    }
    on_lost(st);
    /* The link is gone for good.  Unless the handle is being released (and
     * its releaser joins this thread), the thread lets go of itself: a tool
     * keeps its handle until exit and must not leave a finished thread
     * nobody joins. */
    std::lock_guard<std::mutex> g(st->mu);
    if (!st->closing && st->reader.get_id() == std::this_thread::get_id()) st->reader.detach();
}

/* Connects to one server; returns the socket or a negative QMI error. */
int attach(const qmi_server &s)
{
    int fd = modemd_connect(MODEMD_CONN_CLIENT, s.service, s.instance);
    if (fd < 0) return QMI_SERVICE_ERR;
    modemd_ctrl_pkt ack;
    long n = modemd_recv(fd, &ack, sizeof(ack), k_attach_timeout_ms);
    if (n != long(sizeof(ack)) || ack.cmd != MODEMD_CTRL_NEW_SERVER) {
        close(fd);
        return QMI_SERVICE_ERR;
    }
    return fd;
}

/* Sends a request and registers its transaction; returns the transaction
 * or a negative QMI error. */
int send_request(const std::shared_ptr<client_state> &st, unsigned int msg_id, const uint8_t *tlvs, size_t tlv_len,
                 const std::shared_ptr<pending_txn> &p)
{
    if (tlv_len > 0xFFFF) return QMI_CLIENT_PARAM_ERR;
    std::vector<uint8_t> pkt(QMI_HEADER_LEN + tlv_len);
    if (tlv_len) memcpy(pkt.data() + QMI_HEADER_LEN, tlvs, tlv_len);
    std::lock_guard<std::mutex> g(st->mu);
    if (st->dead) return QMI_SERVICE_ERR;
    uint16_t txn = st->next_txn++;
    if (st->next_txn == 0) st->next_txn = 1; /* transaction 0 is never used */
    p->msg_id = msg_id;
    qmi_header h = {QMI_TYPE_REQUEST, txn, uint16_t(msg_id), uint16_t(tlv_len)};
    qmi_header_write(pkt.data(), h);
    st->pending[txn] = p;
    if (!modemd_send(st->fd, pkt.data(), pkt.size())) {
        st->pending.erase(txn);
        return QMI_SERVICE_ERR;
    }
    return txn;
}

/* Waits for a synchronous transaction; 0 waits without limit. */
int wait_txn(const std::shared_ptr<client_state> &st, uint16_t txn, const std::shared_ptr<pending_txn> &p,
             unsigned int timeout_ms)
{
    std::unique_lock<std::mutex> lk(st->mu);
    auto ready = [&p] { return p->done; };
    if (timeout_ms == 0) {
        st->cv.wait(lk, ready);
    } else if (!st->cv.wait_for(lk, std::chrono::milliseconds(timeout_ms), ready)) {
        st->pending.erase(txn);
        return QMI_TIMEOUT_ERR;
    }
    return p->error;
}

/* Encodes a request structure into its TLV area. */
int encode_request(const std::shared_ptr<client_state> &st, unsigned int msg_id, const void *req,
                   unsigned int req_len, std::vector<uint8_t> *tlvs)
{
    uint32_t max_len = 0;
    if (qmi_idl_get_max_message_len(st->svc, QMI_IDL_REQUEST, uint16_t(msg_id), &max_len) != 0) {
        return QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
    }
    tlvs->resize(max_len ? max_len : 1);
    uint32_t enc = 0;
    int rc = qmi_idl_message_encode(st->svc, QMI_IDL_REQUEST, uint16_t(msg_id), req, req_len, tlvs->data(),
                                    uint32_t(tlvs->size()), &enc);
    tlvs->resize(enc);
    return rc;
}

std::shared_ptr<client_state> state_of(qmi_client_type h)
{
    return h && h->state && !h->state->notifier ? h->state : nullptr;
}

}  // namespace

void callback_queue::start() { thread_ = std::thread(&callback_queue::run, in_); }

void callback_queue::push(std::function<void()> fn)
{
    {
        std::lock_guard<std::mutex> g(in_->mu);
        in_->q.push_back(std::move(fn));
    }
    in_->cv.notify_one();
}

void callback_queue::run(std::shared_ptr<inner> in)
{
    std::unique_lock<std::mutex> lk(in->mu);
    for (;;) {
        in->cv.wait(lk, [&in] { return in->stopping || !in->q.empty(); });
        if (in->q.empty()) return;
        auto fn = std::move(in->q.front());
        in->q.pop_front();
        lk.unlock();
        fn();
        fn = nullptr;
        lk.lock();
    }
}

void callback_queue::stop()
{
    {
        std::lock_guard<std::mutex> g(in_->mu);
        in_->stopping = true;
    }
    in_->cv.notify_one();
    if (!thread_.joinable()) return;
    if (thread_.get_id() == std::this_thread::get_id()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

void release_handle(qmi_client_type handle)
{
    auto st = handle->state;
    {
        std::lock_guard<std::mutex> g(st->mu);
        st->closing = true;
    }
    /* The client id goes back before the handle; the pair's end closing
     * under it is then no loss to report. */
    if (st->qmux && st->fd >= 0) qmux_detach(st->fd);
    {
        std::lock_guard<std::mutex> g(st->mu);
        if (st->fd >= 0) shutdown(st->fd, SHUT_RDWR);
    }
    st->cv.notify_all();
    if (st->notifier) unregister_notifier(st.get());
    if (st->reader.joinable()) {
        if (st->reader.get_id() == std::this_thread::get_id()) {
            st->reader.detach();
        } else {
            st->reader.join();
        }
    }
    st->callbacks.stop();
    {
        std::lock_guard<std::mutex> g(st->mu);
        if (st->fd >= 0) close(st->fd);
        st->fd = -1;
    }
    delete handle;
}

}  // namespace rlk_host

using namespace rlk_host;

extern "C" qmi_client_error_type qmi_client_init(qmi_service_info *service_info,
                                                 qmi_idl_service_object_type service_obj, qmi_client_ind_cb ind_cb,
                                                 void *ind_cb_data, qmi_client_os_params *os_params,
                                                 qmi_client_type *user_handle)
{
    (void)os_params;
    if (!service_info || !service_obj || !user_handle) return QMI_CLIENT_PARAM_ERR;
    qmi_server s = info_to_server(service_info);
    if (!server_matches(service_obj, s)) return QMI_CLIENT_PARAM_ERR;
    bool qmux = qmux_carries(s.service);
    int fd = qmux ? qmux_attach(s.service) : attach(s);
    if (fd < 0) return qmux ? QMI_SERVICE_ERR : fd;
    auto st = std::make_shared<client_state>();
    st->svc = service_obj;
    st->fd = fd;
    st->qmux = qmux;
    st->server = s;
    st->ind_cb = ind_cb;
    st->ind_cb_data = ind_cb_data;
    auto *h = new qmi_client_struct{st};
    st->handle = h;
    st->callbacks.start();
    {
        /* Under the lock: the reader may end (and look at its own thread
         * object) before this assignment would otherwise be complete. */
        std::lock_guard<std::mutex> g(st->mu);
        st->reader = std::thread(client_reader, st);
    }
    *user_handle = h;
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_init_instance(qmi_idl_service_object_type service_obj,
                                                          qmi_service_instance instance_id, qmi_client_ind_cb ind_cb,
                                                          void *ind_cb_data, qmi_client_os_params *os_params,
                                                          uint32_t timeout, qmi_client_type *user_handle)
{
    if (!service_obj || !user_handle) return QMI_CLIENT_PARAM_ERR;
    /* The time-out bounds the whole call, the exchanges with a QMUX device
     * included (qmux_call_bound). */
    qmux_call_bound bound(timeout);
    bool qmux = qmux_carries(service_obj->service_id);
    qmi_client_type notifier = nullptr;
    qmi_client_os_params signal;
    memset(&signal, 0, sizeof(signal));
    int rc = qmi_client_notifier_init(service_obj, &signal, &notifier);
    if (rc != QMI_NO_ERR) return rc;
    auto start = std::chrono::steady_clock::now();
    rc = QMI_TIMEOUT_ERR;
    for (;;) {
        QMI_CCI_OS_SIGNAL_CLEAR(&signal);
        qmi_service_info info;
        if (qmi_client_get_service_instance(service_obj, instance_id, &info) == QMI_NO_ERR) {
            rc = qmi_client_init(&info, service_obj, ind_cb, ind_cb_data, os_params, user_handle);
            if (rc == QMI_NO_ERR) break;
        }
        int error = 0;
        if (qmux && qmux_unusable(&error)) {
            /* No service will come from a device that cannot serve. */
            rc = QMI_SERVICE_ERR;
            errno = error;
            break;
        }
        unsigned int wait_ms = 0;
        if (timeout) {
            auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                                start).count();
            if (spent >= long(timeout)) {
                rc = QMI_TIMEOUT_ERR;
                break;
            }
            wait_ms = unsigned(long(timeout) - spent);
        }
        qmi_cci_os_signal_wait(&signal, wait_ms);
    }
    int saved = errno;
    release_handle(notifier);
    qmi_cci_os_signal_deinit(&signal);
    errno = saved;
    return rc;
}

extern "C" qmi_client_error_type qmi_client_send_raw_msg_sync(qmi_client_type user_handle, unsigned int msg_id,
                                                              void *req_buf, unsigned int req_buf_len,
                                                              void *resp_buf, unsigned int resp_buf_len,
                                                              unsigned int *resp_buf_recv_len,
                                                              unsigned int timeout_msecs)
{
    auto st = state_of(user_handle);
    if (!st) return QMI_CLIENT_INVALID_CLNT;
    if ((!req_buf && req_buf_len) || !resp_buf || !resp_buf_recv_len) return QMI_CLIENT_PARAM_ERR;
    auto p = std::make_shared<pending_txn>();
    int txn = send_request(st, msg_id, static_cast<const uint8_t *>(req_buf), req_buf_len, p);
    if (txn < 0) return txn;
    int rc = wait_txn(st, uint16_t(txn), p, timeout_msecs);
    if (rc != QMI_NO_ERR) return rc;
    if (p->response.size() > resp_buf_len) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
    memcpy(resp_buf, p->response.data(), p->response.size());
    *resp_buf_recv_len = unsigned(p->response.size());
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_send_msg_sync(qmi_client_type user_handle, unsigned int msg_id,
                                                          void *req_c_struct, unsigned int req_c_struct_len,
                                                          void *resp_c_struct, unsigned int resp_c_struct_len,
                                                          unsigned int timeout_msecs)
{
    auto st = state_of(user_handle);
    if (!st) return QMI_CLIENT_INVALID_CLNT;
    std::vector<uint8_t> tlvs;
    int rc = encode_request(st, msg_id, req_c_struct, req_c_struct_len, &tlvs);
    if (rc != 0) return rc;
    auto p = std::make_shared<pending_txn>();
    int txn = send_request(st, msg_id, tlvs.data(), tlvs.size(), p);
    if (txn < 0) return txn;
    rc = wait_txn(st, uint16_t(txn), p, timeout_msecs);
    if (rc != QMI_NO_ERR) return rc;
    return qmi_idl_message_decode(st->svc, QMI_IDL_RESPONSE, uint16_t(msg_id), p->response.data(),
                                  uint32_t(p->response.size()), resp_c_struct, resp_c_struct_len);
}

extern "C" qmi_client_error_type qmi_client_send_msg_async(qmi_client_type user_handle, unsigned int msg_id,
                                                           void *req_c_struct, unsigned int req_c_struct_len,
                                                           void *resp_c_struct, unsigned int resp_c_struct_len,
                                                           qmi_client_recv_msg_async_cb resp_cb, void *resp_cb_data,
                                                           qmi_txn_handle *txn_handle)
{
    auto st = state_of(user_handle);
    if (!st) return QMI_CLIENT_INVALID_CLNT;
    if (!resp_cb) return QMI_CLIENT_PARAM_ERR;
    std::vector<uint8_t> tlvs;
    int rc = encode_request(st, msg_id, req_c_struct, req_c_struct_len, &tlvs);
    if (rc != 0) return rc;
    auto p = std::make_shared<pending_txn>();
    p->async_cb = resp_cb;
    p->async_data = resp_cb_data;
    p->async_resp = resp_c_struct;
    p->async_resp_len = resp_c_struct_len;
    int txn = send_request(st, msg_id, tlvs.data(), tlvs.size(), p);
    if (txn < 0) return txn;
    if (txn_handle) *txn_handle = reinterpret_cast<qmi_txn_handle>(uintptr_t(txn));
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_delete_async_txn(qmi_client_type user_handle,
                                                             qmi_txn_handle async_txn_handle)
{
    auto st = state_of(user_handle);
    if (!st) return QMI_CLIENT_INVALID_CLNT;
    std::lock_guard<std::mutex> g(st->mu);
    return st->pending.erase(uint16_t(reinterpret_cast<uintptr_t>(async_txn_handle))) ? QMI_NO_ERR
                                                                                         : QMI_INVALID_TXN;
}

extern "C" qmi_client_error_type qmi_client_register_error_cb(qmi_client_type user_handle,
                                                              qmi_client_error_cb err_cb, void *err_cb_data)
{
    auto st = state_of(user_handle);
    if (!st) return QMI_CLIENT_INVALID_CLNT;
    bool dead;
    {
        std::lock_guard<std::mutex> g(st->mu);
        st->err_cb = err_cb;
        st->err_cb_data = err_cb_data;
        dead = st->dead;
        if (dead) st->err_reported = true;
    }
    if (dead) {
        if (err_cb) err_cb(user_handle, QMI_SERVICE_ERR, err_cb_data);
        return QMI_SERVICE_ERR;
    }
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_release(qmi_client_type user_handle)
{
    if (!user_handle || !user_handle->state) return QMI_CLIENT_INVALID_CLNT;
    release_handle(user_handle);
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_release_async(qmi_client_type user_handle,
                                                          qmi_client_release_cb release_cb, void *release_cb_data)
{
    if (!user_handle || !user_handle->state) return QMI_CLIENT_INVALID_CLNT;
    std::thread([user_handle, release_cb, release_cb_data] {
        release_handle(user_handle);
        if (release_cb) release_cb(release_cb_data);
    }).detach();
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_message_encode(qmi_client_type user_handle,
                                                           qmi_idl_type_of_message_type req_resp_ind,
                                                           unsigned int message_id, const void *p_src,
                                                           unsigned int src_len, void *p_dst, unsigned int dst_len,
                                                           unsigned int *dst_encoded_len)
{
    if (!user_handle || !user_handle->state) return QMI_CLIENT_INVALID_CLNT;
    uint32_t enc = 0;
    int rc = qmi_idl_message_encode(user_handle->state->svc, req_resp_ind, uint16_t(message_id), p_src, src_len,
                                    p_dst, dst_len, &enc);
    if (rc == 0 && dst_encoded_len) *dst_encoded_len = enc;
    return rc;
}

extern "C" qmi_client_error_type qmi_client_message_decode(qmi_client_type user_handle,
                                                           qmi_idl_type_of_message_type req_resp_ind,
                                                           unsigned int message_id, const void *p_src,
                                                           unsigned int src_len, void *p_dst, unsigned int dst_len)
{
    if (!user_handle || !user_handle->state) return QMI_CLIENT_INVALID_CLNT;
    return qmi_idl_message_decode(user_handle->state->svc, req_resp_ind, uint16_t(message_id), p_src, src_len,
                                  p_dst, dst_len);
}
