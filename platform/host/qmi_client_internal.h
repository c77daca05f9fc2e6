/* Internals of the host QMI client library.  A handle is either a notifier
 * (a name-service connection that follows the servers of one service) or a
 * connected client (a connection to one server).  Each owns a reader thread
 * that takes packets off its socket and a callback thread that runs the
 * user's indication, error and notify callbacks in order, so that a slow
 * callback never holds up the responses a synchronous send waits for. */
#ifndef RLK_HOST_QMI_CLIENT_INTERNAL_H
#define RLK_HOST_QMI_CLIENT_INTERNAL_H

#include <stdint.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "qmi_client.h"

namespace rlk_host {

/* One server as the name service reports it. */
struct qmi_server {
    uint32_t service;
    uint32_t instance; /* instance << 8 | IDL major version */
    uint32_t node;
    uint32_t port;
};

/* Runs queued callbacks on a thread of its own. */
class callback_queue {
public:
    void start();
    void push(std::function<void()> fn);
    /* Stops after the queued callbacks ran; detaches when called from the
     * callback thread itself. */
    void stop();

private:
    /* Shared with the thread, so that a queue released from one of its own
     * callbacks (the thread then detaches) outlives its owner safely. */
    struct inner {
        std::mutex mu;
        std::condition_variable cv;
        std::deque<std::function<void()>> q;
        bool stopping = false;
    };
    static void run(std::shared_ptr<inner> in);
    std::shared_ptr<inner> in_ = std::make_shared<inner>();
    std::thread thread_;
};

struct pending_txn {
    bool done = false;
    int error = QMI_NO_ERR;
    std::vector<uint8_t> response; /* TLV area of the response */
    /* Asynchronous sends. */
    qmi_client_recv_msg_async_cb async_cb = nullptr;
    void *async_data = nullptr;
    void *async_resp = nullptr;
    unsigned int async_resp_len = 0;
    unsigned int msg_id = 0;
};

struct client_state {
    qmi_idl_service_object_type svc = nullptr;
    int fd = -1;
    bool notifier = false;
    bool qmux = false; /* carried over the QMUX device (qmux_transport.h) */
    qmi_client_type handle = nullptr;

    std::mutex mu;
    std::condition_variable cv;
    bool closing = false;
    bool dead = false;

    /* Connected clients. */
    qmi_server server = {};
    qmi_client_ind_cb ind_cb = nullptr;
    void *ind_cb_data = nullptr;
    qmi_client_error_cb err_cb = nullptr;
    void *err_cb_data = nullptr;
    bool err_reported = false;
    uint16_t next_txn = 1;
    std::map<uint16_t, std::shared_ptr<pending_txn>> pending;

    /* Notifiers. */
    qmi_client_os_params *os_params = nullptr;
    qmi_client_notify_cb notify_cb = nullptr;
    void *notify_cb_data = nullptr;
    std::vector<qmi_server> servers;
    bool list_complete = false;

    callback_queue callbacks;
    std::thread reader;
};

}  // namespace rlk_host

struct qmi_client_struct {
    std::shared_ptr<rlk_host::client_state> state;
};

namespace rlk_host {

/* Name service: fills `out` with the servers of `svc` whose IDL major
 * version matches.  Uses a live notifier of this process when there is one,
 * else asks the simulator.  False when the simulator cannot be reached. */
bool lookup_servers(qmi_idl_service_object_type svc, std::vector<qmi_server> *out);

/* The notifier handles of this process (for lookup_servers). */
void register_notifier(const std::shared_ptr<client_state> &st);
void unregister_notifier(const client_state *st);

/* Stops the threads of a handle and frees it. */
void release_handle(qmi_client_type handle);

bool server_matches(const qmi_idl_service_object_type svc, const qmi_server &s);
void server_to_info(const qmi_server &s, qmi_service_info *info);
qmi_server info_to_server(const qmi_service_info *info);

}  // namespace rlk_host

#endif
