/* The diag consumer interface (DCI) over rlk-modemd.
 *
 * Client ids count from 1 in each process; one client per processor (MSM
 * 0, MDM 1).  A DCI call made without an open session opens the link
 * itself.  diag_send_dci_async_req returns at once; the response reaches
 * the caller's function on the library's reader thread, copied into the
 * caller's buffer, in pieces of at most 4096 bytes (and at most rsp_len),
 * each with the caller's data pointer.  A piece of exactly 4096 bytes means
 * more may follow.
 *
 * Signals: the channel signal given at registration (os_params) is only
 * recorded.  The data signal of diag_register_dci_signal_data is raised on
 * the reader thread when DCI data arrives, but only while the process has
 * a handler installed for it: on a handset the signal is harmless to a
 * process that registered it, while here a process that registers a signal
 * without handling it would be killed by the default action. */
#include <signal.h>
#include <string.h>

#include "diag_channel.h"
#include "diag_host_internal.h"

using namespace rlk_host::diag;

namespace rlk_host {
namespace diag {
namespace {

void raise_if_handled(int sig)
{
    if (sig <= 0 || sig >= NSIG) return;
    struct sigaction sa;
    if (sigaction(sig, nullptr, &sa) != 0) return;
    bool handled = (sa.sa_flags & SA_SIGINFO) ? sa.sa_sigaction != nullptr
                                              : sa.sa_handler != SIG_DFL && sa.sa_handler != SIG_IGN;
    if (handled) raise(sig);
}

dci_client *client_by_proc(int32_t proc)
{
    for (auto &kv : g().dci) {
        if (kv.second.proc == proc) return &kv.second;
    }
    return nullptr;
}

/* Marks `id` as being in a callback until the returned guard ends, so that
 * diag_release_dci_client can wait for it. */
struct delivery_guard {
    explicit delivery_guard(int id)
    {
        g().delivering_client = id;
        g().delivering_thread = std::this_thread::get_id();
    }
    ~delivery_guard()
    {
        std::lock_guard<std::mutex> lk(g().mu);
        g().delivering_client = 0;
        g().cv.notify_all();
    }
};

}  // namespace

void dci_on_response(int32_t proc, uint32_t tag, const std::vector<uint8_t> &payload)
{
    std::unique_lock<std::mutex> lk(g().mu);
    dci_client *c = client_by_proc(proc);
    if (!c) return;
    auto it = c->pending.find(tag & DIAG_TAG_MAX);
    if (it == c->pending.end()) return;
    dci_request req = it->second;
    if (tag & DIAG_TAG_FINAL) c->pending.erase(it);
    int sig = c->data_signal;
    delivery_guard guard(c->id);
    lk.unlock();

    raise_if_handled(sig);
    for (size_t off = 0; off < payload.size(); off += k_dci_max_piece) {
        size_t n = payload.size() - off < k_dci_max_piece ? payload.size() - off : k_dci_max_piece;
        if (n > size_t(req.rsp_len)) n = size_t(req.rsp_len);
        memcpy(req.rsp, payload.data() + off, n);
        req.fn(req.rsp, int(n), req.data);
    }
}

void dci_on_record(int32_t proc, uint32_t tag, const std::vector<uint8_t> &record)
{
    std::unique_lock<std::mutex> lk(g().mu);
    dci_client *c = client_by_proc(proc);
    if (!c) return;
    dci_stream_fn fn = tag == DIAG_STREAM_LOG_TAG ? c->log_fn : c->event_fn;
    int sig = c->data_signal;
    delivery_guard guard(c->id);
    lk.unlock();

    raise_if_handled(sig);
    std::vector<uint8_t> copy = record;
    if (fn) fn(copy.data(), int(copy.size()));
}

void dci_register_all()
{
    std::vector<int> procs;
    {
        std::lock_guard<std::mutex> lk(g().mu);
        for (const auto &kv : g().dci) procs.push_back(kv.second.proc);
    }
    uint32_t status = 0;
    for (int proc : procs) session_request(DIAG_SESSION_DCI_REGISTER, proc, &status, nullptr);
}

}  // namespace diag
}  // namespace rlk_host

namespace {

bool dci_proc_valid(int proc) { return proc >= 0 && proc < k_dci_proc_count; }

/* The link, opened if needed. */
bool ensure_link() { return link_get() || link_open(); }

}  // namespace

extern "C" {

int diag_register_dci_client(int *client_id, diag_dci_peripherals *list, int proc, void *os_params)
{
    if (!client_id || !list || !os_params || !dci_proc_valid(proc)) return DIAG_DCI_PARAM_FAIL;
    {
        std::lock_guard<std::mutex> lk(g().mu);
        if (client_by_proc(proc)) return DIAG_DCI_DUP_CLIENT;
    }
    if (!ensure_link()) return DIAG_DCI_SEND_DATA_FAIL;
    uint32_t status = 0;
    if (!session_request(DIAG_SESSION_DCI_REGISTER, proc, &status, nullptr)) return DIAG_DCI_SEND_DATA_FAIL;
    if (status != DIAG_SESSION_OK) return DIAG_DCI_NOT_SUPPORTED;

    std::lock_guard<std::mutex> lk(g().mu);
    if (client_by_proc(proc)) return DIAG_DCI_DUP_CLIENT; /* another thread won */
    dci_client c;
    c.id = g().next_client_id++;
    c.proc = proc;
    c.peripherals = *list;
    c.os_signal = *static_cast<int *>(os_params);
    g().dci[c.id] = c;
    *client_id = c.id;
    return DIAG_DCI_NO_ERROR;
}

int diag_get_dci_support_list_proc(int proc, diag_dci_peripherals *list)
{
    if (!list || !dci_proc_valid(proc)) return DIAG_DCI_PARAM_FAIL;
    if (!ensure_link()) return DIAG_DCI_SEND_DATA_FAIL;
    uint32_t status = 0;
    std::vector<uint8_t> data;
    if (!session_request(DIAG_SESSION_DCI_SUPPORT, proc, &status, &data)) return DIAG_DCI_SEND_DATA_FAIL;
    if (status != DIAG_SESSION_OK || data.size() < 2) return DIAG_DCI_NOT_SUPPORTED;
    *list = diag_get_u16(data.data());
    return DIAG_DCI_NO_ERROR;
}

int diag_register_dci_signal_data(int client_id, int signal_type)
{
    std::lock_guard<std::mutex> lk(g().mu);
    auto it = g().dci.find(client_id);
    if (it == g().dci.end()) return DIAG_DCI_NO_REG;
    if (signal_type <= 0 || signal_type >= NSIG) return DIAG_DCI_PARAM_FAIL;
    it->second.data_signal = signal_type;
    return DIAG_DCI_NO_ERROR;
}

int diag_deregister_dci_signal_data(int client_id)
{
    std::lock_guard<std::mutex> lk(g().mu);
    auto it = g().dci.find(client_id);
    if (it == g().dci.end()) return DIAG_DCI_NO_REG;
    it->second.data_signal = DIAG_INVALID_SIGNAL;
    return DIAG_DCI_NO_ERROR;
}

int diag_register_dci_stream_proc(int client_id, void (*func_ptr_logs)(unsigned char *ptr, int len),
                                  void (*func_ptr_events)(unsigned char *ptr, int len))
{
    std::lock_guard<std::mutex> lk(g().mu);
    auto it = g().dci.find(client_id);
    if (it == g().dci.end()) return DIAG_DCI_NO_REG;
    it->second.log_fn = func_ptr_logs;
    it->second.event_fn = func_ptr_events;
    return DIAG_DCI_NO_ERROR;
}

/* Stream configuration is accepted and not applied: the simulator sends a
 * record only when a test asks for one, and every client gets it. */
int diag_log_stream_config(int client_id, int, uint16 log_codes_array[], int num_codes)
{
    std::lock_guard<std::mutex> lk(g().mu);
    if (!g().dci.count(client_id)) return DIAG_DCI_NO_REG;
    if (num_codes < 0 || (num_codes > 0 && !log_codes_array)) return DIAG_DCI_PARAM_FAIL;
    return DIAG_DCI_NO_ERROR;
}

int diag_event_stream_config(int client_id, int, int event_id_array[], int num_id)
{
    std::lock_guard<std::mutex> lk(g().mu);
    if (!g().dci.count(client_id)) return DIAG_DCI_NO_REG;
    if (num_id < 0 || (num_id > 0 && !event_id_array)) return DIAG_DCI_PARAM_FAIL;
    return DIAG_DCI_NO_ERROR;
}

int diag_send_dci_async_req(int client_id, unsigned char buf[], int bytes, unsigned char *rsp_ptr, int rsp_len,
                            void (*func_ptr)(unsigned char *ptr, int len, void *data_ptr), void *data_ptr)
{
    uint32_t tag = 0;
    int proc = 0;
    {
        std::lock_guard<std::mutex> lk(g().mu);
        auto it = g().dci.find(client_id);
        if (it == g().dci.end()) return DIAG_DCI_NO_REG;
        if (!buf || bytes <= 0 || !rsp_ptr || rsp_len <= 0 || !func_ptr) return DIAG_DCI_PARAM_FAIL;
        if (bytes > k_max_request) return DIAG_DCI_HUGE_PACKET;
        if (!g().conn) return DIAG_DCI_SEND_DATA_FAIL;
        dci_client &c = it->second;
        if (c.pending.size() >= k_dci_max_pending) return DIAG_DCI_NO_MEM;
        tag = g().next_tag;
        g().next_tag = g().next_tag >= DIAG_TAG_MAX ? 1 : g().next_tag + 1;
        c.pending[tag] = {rsp_ptr, rsp_len, func_ptr, data_ptr};
        proc = c.proc;
    }
    if (link_send(DCI_PKT_TYPE, proc, tag, buf, size_t(bytes))) return DIAG_DCI_NO_ERROR;
    std::lock_guard<std::mutex> lk(g().mu);
    auto it = g().dci.find(client_id);
    if (it != g().dci.end()) it->second.pending.erase(tag);
    return DIAG_DCI_SEND_DATA_FAIL;
}

/* Forgets the client (waiting for a callback of it that is running on the
 * reader thread, unless called from that callback) and zeroes the id. */
int diag_release_dci_client(int *client_id)
{
    if (!client_id) return DIAG_DCI_PARAM_FAIL;
    int proc = 0;
    {
        std::unique_lock<std::mutex> lk(g().mu);
        auto it = g().dci.find(*client_id);
        if (it == g().dci.end()) return DIAG_DCI_NO_REG;
        proc = it->second.proc;
        int id = it->second.id;
        g().dci.erase(it);
        g().cv.wait(lk, [id] {
            return g().delivering_client != id || g().delivering_thread == std::this_thread::get_id();
        });
    }
    if (link_get()) {
        uint32_t status = 0;
        session_request(DIAG_SESSION_DCI_RELEASE, proc, &status, nullptr);
    }
    *client_id = 0;
    return DIAG_DCI_NO_ERROR;
}

}  // extern "C"
