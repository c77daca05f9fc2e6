/* Service lookup: the notifier handle, which follows the servers of one
 * service and signals the caller's OS parameters whenever one appears or
 * goes, and the one-shot lookup behind qmi_client_get_service_list. */
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "endpoint.h"
#include "qmi_client_internal.h"
#include "qmux_transport.h"

namespace rlk_host {
namespace {

/* How long a notifier waits before trying a vanished simulator again. */
constexpr int k_reconnect_ms = 50;
/* How long a lookup waits for the simulator's end-of-list marker. */
constexpr int k_lookup_timeout_ms = 5000;

std::mutex g_notifiers_mu;
std::vector<std::weak_ptr<client_state>> g_notifiers;

bool is_end_marker(const modemd_ctrl_pkt &p)
{
    return p.cmd == MODEMD_CTRL_NEW_SERVER && p.service == 0 && p.instance == 0 && p.node == 0 && p.port == 0;
}

uint32_t service_id_of(qmi_idl_service_object_type svc) { return svc->service_id; }

/* Reads the initial list of a fresh lookup connection. */
bool read_initial_list(int fd, qmi_idl_service_object_type svc, std::vector<qmi_server> *out)
{
    for (;;) {
        modemd_ctrl_pkt p;
        long n = modemd_recv(fd, &p, sizeof(p), k_lookup_timeout_ms);
        if (n != long(sizeof(p))) return false;
        if (is_end_marker(p)) return true;
        qmi_server s = {p.service, p.instance, p.node, p.port};
        if (p.cmd == MODEMD_CTRL_NEW_SERVER && server_matches(svc, s)) out->push_back(s);
    }
}

/* Runs the notify callback on the handle's callback thread. */
void queue_notify(const std::shared_ptr<client_state> &st, qmi_client_notify_event_type ev)
{
    std::weak_ptr<client_state> weak = st;
    st->callbacks.push([weak, ev] {
        auto s = weak.lock();
        if (!s) return;
        qmi_client_notify_cb cb;
        void *data;
        {
            std::lock_guard<std::mutex> g(s->mu);
            if (s->closing) return;
            cb = s->notify_cb;
            data = s->notify_cb_data;
        }
        if (cb) cb(s->handle, s->svc, ev, data);
    });
}

void signal_and_notify(const std::shared_ptr<client_state> &st, qmi_client_notify_event_type ev)
{
    if (st->os_params) qmi_cci_os_signal_set(st->os_params);
    queue_notify(st, ev);
}

/* Applies one name-service packet to the notifier's list. */
void apply_ctrl(const std::shared_ptr<client_state> &st, const modemd_ctrl_pkt &p)
{
    qmi_server s = {p.service, p.instance, p.node, p.port};
    if (!server_matches(st->svc, s)) return;
    bool changed = false;
    {
        std::lock_guard<std::mutex> g(st->mu);
        auto same = [&s](const qmi_server &o) { return o.instance == s.instance && o.port == s.port; };
        auto it = std::find_if(st->servers.begin(), st->servers.end(), same);
        if (p.cmd == MODEMD_CTRL_NEW_SERVER && it == st->servers.end()) {
            st->servers.push_back(s);
            changed = true;
        } else if (p.cmd == MODEMD_CTRL_DEL_SERVER && it != st->servers.end()) {
            st->servers.erase(it);
            changed = true;
        }
    }
    if (changed) {
        signal_and_notify(st, p.cmd == MODEMD_CTRL_NEW_SERVER ? QMI_CLIENT_SERVICE_COUNT_INC
                                                              : QMI_CLIENT_SERVICE_COUNT_DEC);
    }
}

/* The simulator went away: every server it had is gone. */
void drop_all_servers(const std::shared_ptr<client_state> &st)
{
    size_t gone;
    {
        std::lock_guard<std::mutex> g(st->mu);
        gone = st->servers.size();
        st->servers.clear();
    }
    for (size_t i = 0; i < gone; i++) signal_and_notify(st, QMI_CLIENT_SERVICE_COUNT_DEC);
}

bool closing(const std::shared_ptr<client_state> &st)
{
    std::lock_guard<std::mutex> g(st->mu);
    return st->closing;
}

void notifier_reader(std::shared_ptr<client_state> st)
{
    int fd;
    {
        std::lock_guard<std::mutex> g(st->mu);
        fd = st->fd;
    }
    while (!closing(st)) {
        if (fd >= 0) {
            modemd_ctrl_pkt p;
            long n = modemd_recv(fd, &p, sizeof(p), -1);
            if (n == long(sizeof(p))) {
                if (!is_end_marker(p)) apply_ctrl(st, p);
                continue;
            }
            drop_all_servers(st);
            std::lock_guard<std::mutex> g(st->mu);
            close(fd);
            fd = st->fd = -1;
            continue;
        }
        /* Reconnect: the simulator restarted or is not up yet. */
        {
            std::unique_lock<std::mutex> lk(st->mu);
            st->cv.wait_for(lk, std::chrono::milliseconds(k_reconnect_ms), [&st] { return st->closing; });
            if (st->closing) break;
        }
        int nfd = modemd_connect(MODEMD_CONN_LOOKUP, service_id_of(st->svc), 0xFFFFFFFFu);
        if (nfd < 0) continue;
        std::lock_guard<std::mutex> g(st->mu);
        if (st->closing) {
            close(nfd);
            break;
        }
        fd = st->fd = nfd;
    }
}

}  // namespace

bool server_matches(const qmi_idl_service_object_type svc, const qmi_server &s)
{
    return s.service == svc->service_id && (s.instance & 0xFFu) == (svc->idl_version & 0xFFu);
}

void server_to_info(const qmi_server &s, qmi_service_info *info)
{
    memset(info, 0, sizeof(*info));
    info->info[0] = ((s.instance & 0xFFu) << 8) | (((s.instance >> 8) & 0xFFu) << 16);
    info->info[1] = s.service;
    info->info[2] = s.instance;
    info->info[3] = s.node;
    info->info[4] = s.port;
}

qmi_server info_to_server(const qmi_service_info *info)
{
    return qmi_server{info->info[1], info->info[2], info->info[3], info->info[4]};
}

void register_notifier(const std::shared_ptr<client_state> &st)
{
    std::lock_guard<std::mutex> g(g_notifiers_mu);
    g_notifiers.push_back(st);
}

void unregister_notifier(const client_state *st)
{
    std::lock_guard<std::mutex> g(g_notifiers_mu);
    g_notifiers.erase(std::remove_if(g_notifiers.begin(), g_notifiers.end(),
                                     [st](const std::weak_ptr<client_state> &w) {
                                         auto s = w.lock();
                                         return !s || s.get() == st;
                                     }),
                      g_notifiers.end());
}

/* On a QMUX device: the one server of a service the version info lists
 * (instance 0; the service id stands in for the port). */
void qmux_servers(qmi_idl_service_object_type svc, std::vector<qmi_server> *out)
{
    uint32_t major = 0;
    if (!qmux_lookup(svc->service_id, &major)) return;
    qmi_server s = {svc->service_id, major & 0xFFu, MODEMD_MODEM_NODE, svc->service_id};
    if (server_matches(svc, s)) out->push_back(s);
}

bool lookup_servers(qmi_idl_service_object_type svc, std::vector<qmi_server> *out)
{
    if (qmux_carries(svc->service_id)) {
        qmux_servers(svc, out);
        return true;
    }
    {
        std::lock_guard<std::mutex> g(g_notifiers_mu);
        for (auto &w : g_notifiers) {
            auto st = w.lock();
            if (!st || st->svc->service_id != svc->service_id || st->svc->idl_version != svc->idl_version) continue;
            std::lock_guard<std::mutex> g2(st->mu);
            if (st->fd < 0) continue; /* not connected: ask the simulator */
            *out = st->servers;
            return true;
        }
    }
    int fd = modemd_connect(MODEMD_CONN_LOOKUP, svc->service_id, 0xFFFFFFFFu);
    if (fd < 0) return false;
    bool ok = read_initial_list(fd, svc, out);
    close(fd);
    return ok;
}

}  // namespace rlk_host

using namespace rlk_host;

extern "C" qmi_client_error_type qmi_client_notifier_init(qmi_idl_service_object_type service_obj,
                                                          qmi_client_os_params *os_params,
                                                          qmi_client_type *user_handle)
{
    if (!service_obj || !user_handle) return QMI_CLIENT_PARAM_ERR;
    auto st = std::make_shared<client_state>();
    st->svc = service_obj;
    st->notifier = true;
    st->os_params = os_params;
    if (os_params) QMI_CCI_OS_SIGNAL_INIT(os_params, nullptr);
    auto *h = new qmi_client_struct{st};
    st->handle = h;
    if (qmux_carries(service_obj->service_id)) {
        /* A QMUX device's services are fixed: the list is taken once, and
         * a service it lacks is never announced. */
        qmux_servers(service_obj, &st->servers);
        st->callbacks.start();
        if (!st->servers.empty() && os_params) qmi_cci_os_signal_set(os_params);
        *user_handle = h;
        return QMI_NO_ERR;
    }
    /* Take the current list before returning, so that a lookup right after
     * this call sees what the simulator has. */
    st->fd = modemd_connect(MODEMD_CONN_LOOKUP, service_obj->service_id, 0xFFFFFFFFu);
    if (st->fd >= 0 && !read_initial_list(st->fd, service_obj, &st->servers)) {
        close(st->fd);
        st->fd = -1;
        st->servers.clear();
    }
    st->callbacks.start();
    if (!st->servers.empty() && os_params) qmi_cci_os_signal_set(os_params);
    register_notifier(st);
    st->reader = std::thread(notifier_reader, st);
    *user_handle = h;
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_register_notify_cb(qmi_client_type user_handle,
                                                               qmi_client_notify_cb notify_cb,
                                                               void *notify_cb_data)
{
    if (!user_handle || !user_handle->state->notifier) return QMI_CLIENT_INVALID_CLNT;
    auto st = user_handle->state;
    size_t present;
    {
        std::lock_guard<std::mutex> g(st->mu);
        st->notify_cb = notify_cb;
        st->notify_cb_data = notify_cb_data;
        present = st->servers.size();
    }
    /* A server that already exists is reported at once. */
    if (present && notify_cb) queue_notify(st, QMI_CLIENT_SERVICE_COUNT_INC);
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service_obj,
                                                             qmi_service_info *service_info_array,
                                                             unsigned int *num_entries, unsigned int *num_services)
{
    if (!service_obj || !num_services) return QMI_CLIENT_PARAM_ERR;
    std::vector<qmi_server> servers;
    lookup_servers(service_obj, &servers);
    *num_services = unsigned(servers.size());
    if (num_entries) {
        unsigned int filled = 0;
        if (service_info_array) {
            filled = std::min<unsigned int>(*num_entries, unsigned(servers.size()));
            for (unsigned int i = 0; i < filled; i++) server_to_info(servers[i], &service_info_array[i]);
        }
        *num_entries = filled;
    }
    return servers.empty() ? QMI_SERVICE_ERR : QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_get_service_instance(qmi_idl_service_object_type service_obj,
                                                                 qmi_service_instance instance_id,
                                                                 qmi_service_info *service_info)
{
    if (!service_obj || !service_info) return QMI_CLIENT_PARAM_ERR;
    std::vector<qmi_server> servers;
    lookup_servers(service_obj, &servers);
    for (const qmi_server &s : servers) {
        if (instance_id == QMI_CLIENT_INSTANCE_ANY || (s.instance >> 8) == instance_id) {
            server_to_info(s, service_info);
            return QMI_NO_ERR;
        }
    }
    return QMI_SERVICE_ERR;
}

extern "C" qmi_client_error_type qmi_client_get_any_service(qmi_idl_service_object_type service_obj,
                                                            qmi_service_info *service_info)
{
    return qmi_client_get_service_instance(service_obj, QMI_CLIENT_INSTANCE_ANY, service_info);
}

extern "C" qmi_client_error_type qmi_client_get_instance_id(qmi_service_info *service_info,
                                                            qmi_service_instance *instance_id)
{
    if (!service_info || !instance_id) return QMI_CLIENT_PARAM_ERR;
    *instance_id = info_to_server(service_info).instance >> 8;
    return QMI_NO_ERR;
}
