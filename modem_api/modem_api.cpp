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
modem_api_client_record *g_clients[MODEM_API_MAX_CLIENTS];
kind_state g_kinds[MODEM_API_QMI_CLIENT_MAX] = {
    {"vs_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"sar_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"nas_0_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
    {"nas_1_init", 0, MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL},
};

bool kind_valid(uint32_t kind) { return kind < MODEM_API_QMI_CLIENT_MAX; }

/* Opens the vs client for its first registered client.  False when the
 * service could not be reached. */
bool open_vs_kind(void)
{
    kind_state &ks = g_kinds[MODEM_API_QMI_CLIENT_VS];
    if (ks.clients > 0) {
        if (ks.last_status == MODEM_API_OPERATIONAL_STATUS_READY) {
            ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Already another client init vs client successfully");
        } else {
            ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Another client init vs client with operational status %d",
                            int(ks.last_status));
        }
        return true;
    }
    ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "Client connecting to QMI FW");
    VS_CLIENT_SET(status_cb, &modem_api_operational_status_cb);
    long ret = vs_client_init_client_handles();
    ORVEX_LOG_LABEL(k_prio_debug, "vs_client_init", "function exit with ret %ld", ret);
    ks.last_status = ret == 1 ? MODEM_API_OPERATIONAL_STATUS_READY : MODEM_API_OPERATIONAL_STATUS_RESUME_FAIL;
    return ret == 1;
}

/* Closes what the last client of a kind held.  Table mutex held. */
void close_kind(uint32_t kind)
{
    if (kind != MODEM_API_QMI_CLIENT_VS) return;
    /* The status hook goes first, so that no fan-out reaches a closing
     * table; then the QMI handles. */
    VS_CLIENT_SET(status_cb, nullptr);
    VS_CLIENT_SET(initialised, 0u);
    qmi_client_type handle = __atomic_exchange_n(&g_vs_client.client_handle, nullptr, __ATOMIC_ACQ_REL);
    if (handle) qmi_client_release(handle);
    qmi_client_type notifier = __atomic_exchange_n(&g_vs_client.notifier_handle, nullptr, __ATOMIC_ACQ_REL);
    if (notifier) qmi_client_release(notifier);
}

/* Frees the client of `slot`.  Table mutex held. */
void free_slot(int32_t slot)
{
    modem_api_client_record *rec = g_clients[slot];
    if (kind_valid(rec->kind)) {
        kind_state &ks = g_kinds[rec->kind];
        if (ks.clients > 0) ks.clients--;
        if (ks.clients == 0) close_kind(rec->kind);
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
    std::lock_guard<std::mutex> g(g_table_mutex);
    int32_t slot = 0;
    while (slot < MODEM_API_MAX_CLIENTS && g_clients[slot]) slot++;
    if (slot == MODEM_API_MAX_CLIENTS) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "no more client can be added");
        orvex_free_adv(rec);
        return MODEM_API_FAILURE;
    }
    if (kind == MODEM_API_QMI_CLIENT_VS && !open_vs_kind()) {
        orvex_free_adv(rec);
        return MODEM_API_FAILURE;
    }
    rec->kind = uint32_t(kind);
    rec->id = slot;
    rec->event_cb = event_cb;
    rec->status_cb = status_cb;
    rec->user_data = user_data;
    rec->last_status = g_kinds[kind].last_status;
    g_clients[slot] = rec;
    g_kinds[kind].clients++;
    *client_id = slot;
    ORVEX_LOG_LABEL(k_prio_debug, __func__, "new client: type %d, id %d", int(kind), int(slot));
    return MODEM_API_SUCCESS;
}

void modem_api_free_client(int32_t client_id)
{
    std::lock_guard<std::mutex> g(g_table_mutex);
    if (client_id < 0 || client_id >= MODEM_API_MAX_CLIENTS || !g_clients[client_id]) {
        ORVEX_LOG_LABEL(k_prio_debug, __func__, "client already freed");
        return;
    }
    free_slot(client_id);
}

void modem_api_release(void)
{
    ORVEX_LOGD("function entry");
    {
        std::lock_guard<std::mutex> g(g_table_mutex);
        for (int32_t slot = 0; slot < MODEM_API_MAX_CLIENTS; slot++) {
            if (g_clients[slot]) free_slot(slot);
        }
        /* Nothing of the vs kind stays open, registered or not. */
        close_kind(MODEM_API_QMI_CLIENT_VS);
        VS_CLIENT_SET(ind_handler, nullptr);
    }
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
