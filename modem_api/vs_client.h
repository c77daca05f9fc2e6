/* The client of the vendor statistics service: opening with retries, the
 * indication path into the program's own event records, and the restart
 * path (service down: release and wait; service up: open again), each step
 * reported to the registered operational-status callback. */
#ifndef VS_CLIENT_H
#define VS_CLIENT_H

#include <stdint.h>

#include "modem_api_types.h"
#include "orvex_vs_service_v01.h"
#include "qmi_client.h"

/* Instance asked for: any instance of the service. */
constexpr unsigned int VS_CLIENT_MASTER_PORT = 0xFFFF;
/* Time-out argument of qmi_client_init_instance. */
constexpr uint32_t VS_CLIENT_INIT_TIMEOUT = 4;
/* Opening makes at most this many calls, one second apart. */
constexpr int VS_CLIENT_INIT_ATTEMPTS = 10;
constexpr unsigned int VS_CLIENT_INIT_RETRY_SLEEP_S = 1;

/* Event types of the indication record. */
constexpr int32_t VS_CLIENT_EVENT_FEATURE_STATUS = 2; /* 0x0004 */
constexpr int32_t VS_CLIENT_EVENT_STATS_REPORT = 3;   /* 0x0203 */
constexpr int32_t VS_CLIENT_EVENT_ANT_STATE = 4;      /* 0x0204 */
constexpr int32_t VS_CLIENT_EVENT_MODEM_EVENT = 5;    /* 0x0601 */

/* Clamps of the indication copies. */
constexpr uint32_t VS_CLIENT_REPORT_PRIMARY_MAX = 10;
constexpr uint32_t VS_CLIENT_REPORT_SECONDARY_MAX = 5;
constexpr uint32_t VS_CLIENT_ITEM_DATA_MAX = 700;
constexpr uint32_t VS_CLIENT_ANT_ENTRIES_MAX = 100;
/* Stored for the optional last value of 0x0203 when it is absent. */
constexpr uint32_t VS_CLIENT_VALUE_ABSENT = 0xFFFFFFFFu;

/* Payloads of the event record, as the handler receives them. */
typedef struct {
    uint32_t value;
    uint8_t flag0; /* 0 or 1 */
    uint8_t flag1; /* 0 or 1 */
} vs_client_feature_status_payload;

typedef struct {
    uint32_t value;
    uint32_t primary_count;
    orvex_vs_stats_data_type_v01 primary[VS_CLIENT_REPORT_PRIMARY_MAX];
    uint32_t secondary_count;
    orvex_vs_stats_data_type_v01 secondary[VS_CLIENT_REPORT_SECONDARY_MAX];
    uint32_t last_value; /* VS_CLIENT_VALUE_ABSENT when the indication had none */
} vs_client_stats_report_payload;

typedef struct {
    uint32_t value;
    uint32_t count;
    uint32_t entries[VS_CLIENT_ANT_ENTRIES_MAX];
    uint16_t value_a;
    uint16_t value_b;
} vs_client_ant_state_payload;

typedef struct {
    uint8_t event;
} vs_client_modem_event_payload;

typedef struct {
    int32_t event_type;
    union {
        vs_client_feature_status_payload feature_status;
        vs_client_stats_report_payload stats_report;
        vs_client_ant_state_payload ant_state;
        vs_client_modem_event_payload modem_event;
    } payload;
} vs_client_event_record;

static_assert(sizeof(vs_client_feature_status_payload) == 8, "feature status payload is 8 bytes");
static_assert(sizeof(vs_client_stats_report_payload) == 10696, "report payload is 10696 bytes");
static_assert(sizeof(vs_client_ant_state_payload) == 412, "antenna payload is 412 bytes");
static_assert(sizeof(vs_client_event_record) == 10700, "the event record is 10700 bytes");

typedef void (*vs_client_ind_handler_fn)(int event_type, void *payload, int payload_size);
typedef void (*vs_client_status_cb_fn)(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status);

/* The one vs client entry. */
typedef struct {
    qmi_idl_service_object_type service_object;
    qmi_client_type client_handle;
    qmi_client_os_params os_params;
    qmi_client_type notifier_handle;
    vs_client_ind_handler_fn ind_handler;
    vs_client_status_cb_fn status_cb;
    uint32_t initialised;
} vs_client_entry;

extern vs_client_entry g_vs_client;

/* The entry is shared without a lock between the main thread and the
 * library's and the client's own threads; its fields are read and written
 * whole, with these atomic accesses. */
#define VS_CLIENT_GET(field) __atomic_load_n(&g_vs_client.field, __ATOMIC_ACQUIRE)
#define VS_CLIENT_SET(field, value) __atomic_store_n(&g_vs_client.field, (value), __ATOMIC_RELEASE)

/* Opens the client: 1 on success, 0 on failure. */
int vs_client_init_client_handles(void);

void vs_client_unsol_ind_cb(qmi_client_type user_handle, unsigned int msg_id, void *ind_buf,
                            unsigned int ind_buf_len, void *ind_cb_data);
void vs_client_service_down_event(qmi_client_type user_handle, qmi_client_error_type error, void *err_cb_data);
void vs_client_service_up_event(qmi_client_type user_handle, qmi_idl_service_object_type service_object,
                                qmi_client_notify_event_type service_event, void *notify_cb_data);
void *vs_client_release_qmi_client_thread(void *arg);
void *vs_client_resume_qmi_client_thread(void *arg);

/* Asynchronous-response callback of requests on the client; forwards to
 * modem_api_process_response.  The three others are the same function
 * under the names of the other client kinds. */
extern "C" {
void vs_client_command_cb(qmi_client_type user_handle, unsigned int msg_id, void *resp, unsigned int resp_len,
                          void *resp_cb_data, qmi_client_error_type transp_err);
void sar_client_command_cb(qmi_client_type user_handle, unsigned int msg_id, void *resp, unsigned int resp_len,
                           void *resp_cb_data, qmi_client_error_type transp_err);
void nas_0_client_command_cb(qmi_client_type user_handle, unsigned int msg_id, void *resp, unsigned int resp_len,
                             void *resp_cb_data, qmi_client_error_type transp_err);
void nas_1_client_command_cb(qmi_client_type user_handle, unsigned int msg_id, void *resp, unsigned int resp_len,
                             void *resp_cb_data, qmi_client_error_type transp_err);
}

/* Called by the owner when it closes the client: a release thread still
 * running then releases the notifier it made instead of keeping it. */
void vs_client_closed(void);

/* Handler step of the indication path (decoded structure or null). */
void vs_client_ind_hdlr(unsigned int msg_id, const void *decoded);

/* Test seams: the pause between two opening attempts (sleep() unless
 * replaced; null restores it) and the thread starter of the down/up path
 * (pthread_create with detached attributes unless replaced). */
typedef void (*vs_client_sleep_fn)(unsigned int seconds);
void vs_client_set_sleep(vs_client_sleep_fn fn);
typedef int (*vs_client_thread_start_fn)(void *(*body)(void *));
void vs_client_set_thread_start(vs_client_thread_start_fn fn);

#endif
