/* The modem API layer over the vendor-service clients: a table of up to 10
 * registered clients under one mutex, registration and release, status
 * fan-out to the clients of a kind, asynchronous response delivery with the
 * payload copied into a tracked buffer, and the translation of QMI results
 * into the layer's own result codes. */
#ifndef MODEM_API_H
#define MODEM_API_H

#include <stdint.h>

#include "modem_api_types.h"
#include "orvex_vs_service_v01.h"
#include "qmi_client.h"

constexpr int MODEM_API_MAX_CLIENTS = 10;
/* Identifier of no client. */
constexpr int32_t MODEM_API_NO_CLIENT = -1;

/* Events given to a client's event callback. */
constexpr uint32_t MODEM_API_EVENT_SERVICE_DOWN = 0x10001; /* status 4 */
constexpr uint32_t MODEM_API_EVENT_SERVICE_UP = 0x10002;   /* status 3 */

/* Result codes of the layer. */
typedef enum {
    MODEM_API_SUCCESS = 0,
    MODEM_API_FAILURE = 1,
    MODEM_API_RESPONSE_DONE = 2,   /* a response was delivered in full */
    MODEM_API_NO_RESPONSE = 3,     /* the response was missing or empty */
    MODEM_API_NOT_SUPPORTED = 4,
    MODEM_API_INVALID_ARG = 5,
    MODEM_API_DEVICE_NOT_READY = 8,
    MODEM_API_ABORTED = 10,
    MODEM_API_TIMEOUT = 11,
    MODEM_API_TRANSPORT_ERROR = 12,
} modem_api_result_type;

/* Service change events of the client's kind. */
typedef void (*modem_api_event_cb_fn)(uint32_t event, modem_api_qmi_client_e_type kind, void *user_data);
/* Every operational status of the client's kind. */
typedef void (*modem_api_status_cb_fn)(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status,
                                       void *user_data);
/* Response of an asynchronous request: first, for a successful command,
 * the copied payload with result 0 (a buffer of orvex_malloc_adv that the
 * callee owns, or null when it could not be allocated); then the final
 * result (MODEM_API_RESPONSE_DONE or an error) without data. */
typedef void (*modem_api_resp_fn)(int result, void *data, uint32_t data_len, void *user_data);

/* Callback data of one asynchronous request (from orvex_malloc_adv; this
 * layer releases it once the response has been delivered). */
typedef struct {
    modem_api_resp_fn resp_fn;
    void *user_data;
} modem_api_cb_struct_type;

/* One registered client (40 bytes, tracked allocation). */
typedef struct {
    uint32_t kind; /* modem_api_qmi_client_e_type */
    int32_t id;    /* slot in the client table */
    modem_api_event_cb_fn event_cb;
    modem_api_status_cb_fn status_cb;
    void *user_data;
    uint32_t last_status;
    uint32_t reserved;
} modem_api_client_record;

static_assert(sizeof(void *) != 8 || sizeof(modem_api_client_record) == 40, "client record is 40 bytes");

/* Prepares the layer (again after modem_api_release). */
void modem_api_init(void);
/* Registers a client of `kind`; its identifier goes to *client_id.
 * Registering the first vs client opens the vs service client.  Returns a
 * result code. */
int modem_api_init_client(modem_api_qmi_client_e_type kind, modem_api_event_cb_fn event_cb,
                          modem_api_status_cb_fn status_cb, void *user_data, int32_t *client_id);
/* Frees one client; the last client of a kind releases its QMI client. */
void modem_api_free_client(int32_t client_id);
/* Frees every client and releases every QMI handle of the layer. */
void modem_api_release(void);

/* Status callback installed in the vs client. */
void modem_api_operational_status_cb(modem_api_qmi_client_e_type kind, modem_api_operational_status_type status);
/* Response delivery of the client kinds' command callbacks. */
void modem_api_process_response(unsigned int msg_id, void *resp, unsigned int resp_len, void *cb_data,
                                int transp_err);
/* Copies a command response's payload (32-bit result, 32-bit error,
 * 32-bit length, payload) for the caller. */
void modem_api_common_command_cb_handler(void *resp, unsigned int resp_len, void *cb_data);
/* QMI result of an exchange and the response's result/error words (two
 * 32-bit words at the start of every response of the vendor service) ->
 * result code. */
int modem_api_map_qmi_error_to_modem_api(int transp_err, const void *resp);

/* Requests of the vendor statistics service. */
int modem_api_set_orvex_feature_status(int32_t client_id, uint8_t feature_status);
/* Asks for `number` items of `data_id` on subscription `sub` (0 or 1;
 * anything else is refused with a printed line before anything is sent). */
int modem_api_get_stats_parameter(int32_t client_id, int32_t sub, uint32_t number, uint16_t data_id,
                                  orvex_vs_get_stats_resp_msg_v01 *resp);
/* Sends the generic command `cmd` asynchronously; the response comes to
 * `resp_fn` on a library thread. */
int modem_api_send_command(int32_t client_id, uint32_t cmd, const void *data, uint32_t data_len,
                           modem_api_resp_fn resp_fn, void *user_data);

/* Handler of the vs client's indications (null: none). */
void modem_api_set_indication_handler(void (*handler)(int event_type, void *payload, int payload_size));

/* Inspection for tests: registered clients, and the record of a slot. */
int modem_api_client_count(void);
const modem_api_client_record *modem_api_client_at(int32_t client_id);

/* Time-outs of the synchronous requests, in milliseconds. */
constexpr unsigned int MODEM_API_GET_STATS_TIMEOUT_MS = 30000;
constexpr unsigned int MODEM_API_FEATURE_STATUS_TIMEOUT_MS = 30000;

#endif
