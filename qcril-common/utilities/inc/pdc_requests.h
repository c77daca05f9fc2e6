/* The requester side of the PDC client: sending each PDC request (its
 * immediate response only says whether the modem took it) and waiting on
 * the operation's slot for the indication that carries the outcome. */
#ifndef PDC_REQUESTS_H
#define PDC_REQUESTS_H

#include <stdint.h>

#include <chrono>

#include "pdc_utils.h"

/* How long a request waits for its immediate response when no deadline
 * is set. */
#define PDC_RESPONSE_TIMEOUT_MS 5000

/* pdc_send_request() was ended by pdc_cancel_waits(). */
#define PDC_SEND_CANCELLED (-1000)

/* What pdc_wait_outcome() ended with. */
enum pdc_wait_status {
    PDC_WAIT_DONE = 0,      /* the indication arrived; the slot's result says how it went */
    PDC_WAIT_TIMEOUT = 1,   /* no indication in time */
    PDC_WAIT_CANCELLED = 2, /* pdc_cancel_waits() was called */
    PDC_WAIT_LOST = 3,      /* the installed client's connection ended (the service restarted) */
};

/* A configuration id as the requests take it. */
struct pdc_config_id {
    uint32_t len;
    uint8_t bytes[PDC_CONFIG_ID_SIZE_MAX_V01];
};

/* Sends one request over the open client and checks its response:
 * 0 when the modem took it, a positive QMI error when the response
 * refused it, a negative QMI transport error when it went nowhere
 * (QMI_TIMEOUT_ERR: no response by the deadline; QMI_SERVICE_ERR: the
 * connection ended first), PDC_SEND_CANCELLED after pdc_cancel_waits(). */
int pdc_send_request(unsigned int msg_id, void *req, unsigned int req_len);

/* The point after which no request waits for its response (every thread's
 * requests, the list's next pages included).  time_point::max() (the
 * start value) gives each request PDC_RESPONSE_TIMEOUT_MS instead. */
void pdc_set_deadline(std::chrono::steady_clock::time_point deadline);

/* Marks the slot of `op` in progress with nothing arrived yet. */
void pdc_begin(pdc_op op);
/* Clears the in-progress mark of `op` (a request that was not sent). */
void pdc_end(pdc_op op);
/* Waits (bounded by timeout_ms) for the outcome of `op`; with a non-zero
 * `token`, an indication carrying another token is not the outcome and
 * the wait goes on.  Clears the in-progress mark when it ends. */
pdc_wait_status pdc_wait_outcome(pdc_op op, unsigned int timeout_ms, uint32_t token = 0);

/* A fresh token for a request (never 0). */
uint32_t pdc_next_token();

/* The requests.  `sub` is the subscription; `token` pairs the request with
 * its indication. */
int pdc_request_list(uint32_t config_type, uint32_t token);
int pdc_request_get_selected(uint32_t config_type, uint32_t sub, uint32_t token);
int pdc_request_select(uint32_t config_type, const pdc_config_id &id, uint32_t sub, uint32_t token);
int pdc_request_activate(uint32_t config_type, uint32_t sub, uint32_t token);
int pdc_request_deactivate(uint32_t config_type, uint32_t sub, uint32_t token);
int pdc_request_delete(uint32_t config_type, const pdc_config_id &id, uint32_t token);
int pdc_request_config_info(uint32_t config_type, const pdc_config_id &id, uint32_t token);
int pdc_request_load_frame(uint32_t config_type, const pdc_config_id &id, uint32_t total_size, const uint8_t *frame,
                           uint32_t frame_len, uint32_t token);

/* Starts listing `config_type` into the caller's count and list head (the
 * list slot keeps pointers to them until the list ends) and sends the
 * first request with `token`, which every further page reuses. */
int pdc_list_start(uint32_t config_type, uint32_t token, uint32_t *num_of_configs, pdc_config_list_element **holder);
/* Frees a list built by the list handler. */
void pdc_free_config_list(pdc_config_list_element *head);

#endif
