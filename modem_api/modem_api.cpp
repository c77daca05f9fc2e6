/* The modem API client table: registration, release and status fan-out. */
#include "modem_api.h"

#include <mutex>

#include "modem_api_internal.h"
#include "orvex_log.h"
#include "orvex_mem.h"
#include "vs_client.h"

namespace {

constexpr int k_prio_debug = ANDROID_LOG_DEBUG;
constexpr int k_prio_error = ANDROID_LOG_ERROR;

/* Per client kind: the label of its initialisation step and how many
 * registered clients use it. */
struct kind_state {
    const char *init_label;
    int clients;
    modem_api_operational_status_type last_status;
};

std::mutex g_table_mutex;
/* Serialises registrations, which open the vs client outside the table
 * mutex; always taken before the table mutex. */
std::mutex g_register_mutex;
modem_api_client_record *g_clients[MODEM_API_MAX_CLIENTS];
kind_state g_kinds[MODEM_API_QMI_CLIENT_MAX] = {
    {"vs_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"sar_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"nas_0_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"nas_1_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
};

bool kind_valid(uint32_t kind) { return kind < MODEM_API_QMI_CLIENT_MAX; }

/* Opens the vs client for its first registered client (`clients` of the
 * kind registered so far, `last_status` the kind's last status).  Runs
 * without the table mutex: opening takes seconds when the service is
 * absent, and an error callback during the open reports a status.  False
 * when the service could not be reached. */
bool open_vs_kind(int clients, modem_api_operational_status_type last_status)
{
    kind_state &ks = g_kinds[MODEM_API_QMI_CLIENT_VS];
    if (clients > 0) {
        if (last_status == MODEM_API_OPERATIONAL_STATUS_READY) {
            ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Already another client init vs client successfully");
        } else {
            ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Another client init vs client with operational status %d",
                            int(last_status));
        }
        return true;
    }
    ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Client connecting to QMI FW");
    VS_CLIENT_SET(status_cb, &modem_api_operational_status_cb);
    long ret = vs_client_init_client_handles();
    ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "function exit with ret %ld", ret);
    std::lock_guard<std::mutex> g(g_table_mutex);
    ks.last_status = ret == 1 ? MODEM_API_OPERATIONAL_STATUS_READY : MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL;
    return ret == 1;
}

/* QMI handles taken out of the vs entry under the table mutex and released
 * after it: releasing a handle waits for its callback thread, which may
 * itself be waiting for the table mutex in the status fan-out. */
struct closed_handles {
    qmi_client_type client = nullptr;
    qmi_client_type notifier = nullptr;

    void release()
    {
        if (client) qmi_client_release(client);
        if (notifier) qmi_client_release(notifier);
        client = notifier = nullptr;
    }
};

/* Closes what the last client of a kind held.  Table mutex held. */
void close_kind(uint32_t kind, closed_handles *out)
{
    if (kind != MODEM_API_QMI_CLIENT_VS) return;
    /* The status hook goes first, so that no fan-out reaches a closing
     * table; then the QMI handles. */
    VS_CLIENT_SET(status_cb, nullptr);
    VS_CLIENT_SET(initialised, 0u);
    vs_client_closed();
    qmi_client_type handle = __atomic_exchange_n(&g_vs_client.client_handle, nullptr, __ATOMIC_ACQ_REL);
    if (handle) out->client = handle;
    qmi_client_type notifier = __atomic_exchange_n(&g_vs_client.notifier_handle, nullptr, __ATOMIC_ACQ_REL);
    if (notifier) out->notifier = notifier;
}

/* Frees the client of `slot`.  Table mutex held. */
void free_slot(int32_t slot, closed_handles *out)
{
    modem_api_client_record *rec = g_clients[slot];
    if (kind_valid(rec->kind)) {
        kind_state &ks = g_kinds[rec->kind];
        if (ks.clients > 0) ks.clients--;
        if (ks.clients == 0) close_kind(rec->kind, out);
    }
    orvex_free_adv(rec);
    g_clients[slot] = nullptr;
}

}  // namespace

void modem_api_init(void)
{
    ORVEX_LOGD("function entry");
    std::lock_guard<std::mutex> g(g_table_mutex);
    for (uint32_t kind = 0; kind < MODEM_API_QMI_CLIENT_MAX; kind++) {
        ORVEX_LOG_LABEL(k_prio_debug, g_kinds[kind].init_label, "function entry");
    }
    if (g_kinds[MODEM_API_QMI_CLIENT_VS].clients == 0) {
        VS_CLIENT_SET(service_object, orvex_vs_get_service_object_v01());
    }
    ORVEX_LOGD("function exit");
}

int modem_api_init_client(modem_api_qmi_client_e_type kind, modem_api_event_cb_fn event_cb,
                          modem_api_status_cb_fn status_cb, void *user_data, int32_t *client_id)
{
    if (client_id) *client_id = MODEM_API_NO_CLIENT;
    if (!kind_valid(uint32_t(kind)) || !client_id) return MODEM_API_INVALID_ARG;
    auto *rec = static_cast<modem_api_client_record *>(
        orvex_malloc_adv(sizeof(modem_api_client_record), "modem_api_init_client"));
    if (!rec) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "could not allocate memory");
        return MODEM_API_FAILURE;
    }
    std::lock_guard<std::mutex> reg(g_register_mutex);
    int32_t slot = 0;
    int kind_clients = 0;
    modem_api_operational_status_type last_status;
    {
        std::lock_guard<std::mutex> g(g_table_mutex);
        while (slot < MODEM_API_MAX_CLIENTS && g_clients[slot]) slot++;
        kind_clients = g_kinds[kind].clients;
        last_status = g_kinds[kind].last_status;
    }
    if (slot == MODEM_API_MAX_CLIENTS) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "no more client can be added");
        orvex_free_adv(rec);
        return MODEM_API_FAILURE;
    }
    if (kind == MODEM_API_QMI_CLIENT_VS && !open_vs_kind(kind_clients, last_status)) {
        orvex_free_adv(rec);
        return MODEM_API_FAILURE;
    }
    rec->kind = uint32_t(kind);
    rec->id = slot;
    rec->event_cb = event_cb;
    rec->status_cb = status_cb;
    rec->user_data = user_data;
    {
        /* Only registrations take slots, and they are serialised. */
        std::lock_guard<std::mutex> g(g_table_mutex);
        rec->last_status = g_kinds[kind].last_status;
        g_clients[slot] = rec;
        g_kinds[kind].clients++;
    }
    *client_id = slot;
    ORVEX_LOG_LABEL(k_prio_debug, __func__, "new client: type %d, id %d", int(kind), int(slot));
    return MODEM_API_SUCCESS;
}

void modem_api_free_client(int32_t client_id)
{
    closed_handles handles;
    {
        std::lock_guard<std::mutex> g(g_table_mutex);
        if (client_id < 0 || client_id >= MODEM_API_MAX_CLIENTS || !g_clients[client_id]) {
            ORVEX_LOG_LABEL(k_prio_debug, __func__, "client already freed");
            return;
        }
        free_slot(client_id, &handles);
    }
    handles.release();
}

void modem_api_release(void)
{
    ORVEX_LOGD("function entry");
    closed_handles handles;
    {
        std::lock_guard<std::mutex> g(g_table_mutex);
        for (int32_t slot = 0; slot < MODEM_API_MAX_CLIENTS; slot++) {
            if (g_clients[slot]) free_slot(slot, &handles);
        }
        /* Nothing of the vs kind stays open, registered or not. */
        close_kind(MODEM_API_QMI_CLIENT_VS, &handles);
        VS_CLIENT_SET(ind_handler, nullptr);
    }
    handles.release();
    ORVEX_LOGD("function exit");
}

void modem_api_operational_status_cb(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status)
{
    ORVEX_LOGD("function entry");
    if (!kind_valid(uint32_t(kind))) return;
    struct call {
        modem_api_event_cb_fn event_cb;
        modem_api_status_cb_fn status_cb;
        void *user_data;
    } calls[MODEM_API_MAX_CLIENTS];
    int n = 0;
    {
        std::lock_guard<std::mutex> g(g_table_mutex);
        g_kinds[kind].last_status = status;
        for (int32_t slot = 0; slot < MODEM_API_MAX_CLIENTS; slot++) {
            modem_api_client_record *rec = g_clients[slot];
            if (!rec || rec->kind != uint32_t(kind)) continue;
            ORVEX_LOG_LABEL(k_prio_debug, __func__, "client type %d, client id %d, operational_status %d", int(kind),
                            int(slot), int(status));
            rec->last_status = status;
            calls[n++] = {rec->event_cb, rec->status_cb, rec->user_data};
        }
    }
    /* Callbacks run outside the lock, so that they may use the layer. */
    for (int i = 0; i < n; i++) {
        if (calls[i].status_cb) calls[i].status_cb(kind, status, calls[i].user_data);
        if (!calls[i].event_cb) continue;
        if (status == MODEM_API_OPERATIONAL_STATUS_SUSPEND) {
            calls[i].event_cb(MODEM_API_EVENT_SERVICE_DOWN, kind, calls[i].user_data);
        } else if (status == MODEM_API_OPERATIONAL_STATUS_READY) {
            calls[i].event_cb(MODEM_API_EVENT_SERVICE_UP, kind, calls[i].user_data);
        }
    }
}

void modem_api_set_indication_handler(void (*handler)(int event_type, void *payload, int payload_size))
{
    std::lock_guard<std::mutex> g(g_table_mutex);
    VS_CLIENT_SET(ind_handler, handler);
}

int modem_api_client_count(void)
{
    std::lock_guard<std::mutex> g(g_table_mutex);
    int n = 0;
    for (modem_api_client_record *rec : g_clients) n += rec ? 1 : 0;
    return n;
}

const modem_api_client_record *modem_api_client_at(int32_t client_id)
{
    std::lock_guard<std::mutex> g(g_table_mutex);
    if (client_id < 0 || client_id >= MODEM_API_MAX_CLIENTS) return nullptr;
    return g_clients[client_id];
}

qmi_client_type modem_api_handle_of(int32_t client_id)
{
    std::lock_guard<std::mutex> g(g_table_mutex);
    if (client_id < 0 || client_id >= MODEM_API_MAX_CLIENTS || !g_clients[client_id]) return nullptr;
    if (g_clients[client_id]->kind != MODEM_API_QMI_CLIENT_VS) return nullptr;
    return VS_CLIENT_GET(client_handle);
}
