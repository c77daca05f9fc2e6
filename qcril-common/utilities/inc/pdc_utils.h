/* PDC client: one QMI client of the Persistent Device Configuration
 * service, the decoder of its indications and one outcome slot per PDC
 * operation in `g_pdc_info`.  A requester marks its slot in progress,
 * sends the request and waits on the slot's condition variable; the
 * indication handler (on the QMI library's thread) stores the outcome,
 * sets done and wakes it.  Progress and errors go to the radio log buffer
 * with the tag "PDC_UTIL". */
#ifndef PDC_UTILS_H
#define PDC_UTILS_H

#include <stdint.h>
#include <sys/time.h>

#include <condition_variable>

#include "persistent_device_configuration_v01.h"
#include "qmi_client.h"
#include "qtimutex/QtiMutex.h"

/* Results stored in a slot. */
#define PDC_RESULT_SUCCESS 0
#define PDC_RESULT_GENERAL_ERROR (-1)
#define PDC_RESULT_FRAME_RESET (-3)
#define PDC_RESULT_CONFIG_EXISTS (-4)
#define PDC_RESULT_NO_MEMORY (-5)
#define PDC_RESULT_NO_MBN (-6)

/* Opening the client. */
#define PDC_INIT_ATTEMPTS 20
#define PDC_INIT_RETRY_SECONDS 5
#define PDC_INIT_INSTANCE 65535
#define PDC_INIT_TIMEOUT_MS 4

/* The PDC operations, one outcome slot each. */
enum pdc_op {
    PDC_OP_GET_SELECTED = 0,
    PDC_OP_SELECT,
    PDC_OP_LIST,
    PDC_OP_DELETE,
    PDC_OP_LOAD,
    PDC_OP_ACTIVATE,
    PDC_OP_GET_CONFIG_INFO,
    PDC_OP_DEACTIVATE,
    PDC_OP_SET_FEATURE,
    PDC_OP_COUNT
};

/* One configuration id of a list, 136 bytes; new elements are pushed at
 * the head. */
struct pdc_config_list_element {
    uint32_t config_id_len;
    uint8_t config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
    pdc_config_list_element *next;
};
static_assert(sizeof(pdc_config_list_element) == 136, "a list element is 136 bytes");

/* Outcome of one operation.  `qmi_error` and `ind_token` keep what the
 * indication said beside the stored result. */
struct pdc_outcome_slot {
    uint32_t in_progress;
    uint32_t waiting;
    uint32_t done;
    int8_t result;
    uint16_t qmi_error;
    uint32_t ind_token;
};

struct pdc_list_slot {
    uint32_t is_pdc_list_handling;
    uint32_t waiting;
    uint32_t done;
    int8_t result;
    uint16_t qmi_error;
    uint32_t ind_token;            /* token of the last page, asked for the next one */
    uint32_t config_type;          /* type being listed */
    uint32_t *num_of_configs;      /* running count, owned by the requester */
    pdc_config_list_element **config_list_holder; /* list head, owned by the requester */
};

struct pdc_load_slot {
    pdc_outcome_slot outcome;
    uint32_t received_config_size;
    uint32_t remaining_config_size;
};

struct pdc_selected_slot {
    pdc_outcome_slot outcome;
    uint32_t active_config_id_len; /* 0: none */
    uint8_t active_config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
    uint32_t pending_config_id_len;
    uint8_t pending_config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
};

struct pdc_config_info_slot {
    pdc_outcome_slot outcome;
    uint8_t config_size_valid;
    uint32_t config_size;
    uint32_t config_desc_len;
    uint8_t config_desc[PDC_CONFIG_DESC_SIZE_MAX_V01];
    uint8_t config_version_valid;
    uint32_t config_version;
};

/* Plain data of every slot, zeroed by qmi_pdc_init_pdc_info(). */
struct pdc_slots {
    pdc_selected_slot get_selected;
    pdc_outcome_slot select;
    pdc_list_slot list;
    pdc_outcome_slot del;
    pdc_load_slot load;
    pdc_outcome_slot activate;
    pdc_config_info_slot get_config_info;
    pdc_outcome_slot deactivate;
    pdc_outcome_slot set_feature;
};

struct pdc_global_info {
    pdc_global_info();
    qtimutex::QtiSharedMutex pdc_mutex;
    std::condition_variable_any cond[PDC_OP_COUNT];
    pdc_slots slots;
    /* Set by pdc_cancel_waits(): every waiter returns at once. */
    bool cancelled;
    /* Set when the connection of a client opened with pdc_install_client()
     * ended (the service restarted or went away): every waiter returns. */
    bool service_lost;
    /* Where requests wait for their immediate response (pdc_requests.h). */
    std::condition_variable_any response_cond;
    qmi_client_type client_handle;
};

extern pdc_global_info g_pdc_info;

/* The common fields of one operation's slot, for code that handles every
 * operation alike (waiters, tests). */
struct pdc_slot_view {
    uint32_t *in_progress;
    uint32_t *waiting;
    uint32_t *done;
    int8_t *result;
    uint16_t *qmi_error;
    uint32_t *ind_token;
};
pdc_slot_view pdc_slot_of(pdc_op op);

/* Zeroes every slot; logs "pdc_info init done". */
void qmi_pdc_init_pdc_info();
/* 0 when the client is open, -1 after PDC_INIT_ATTEMPTS failures. */
int pdc_init();
/* Releases the client when one is open; the handle is cleared always. */
void pdc_clean();

/* For programs that open the client on their own terms (a deadline, a
 * signal that ends the run): one attempt, waiting at most `timeout_ms` for
 * the service, logged as pdc_init's attempts are (`attempt` numbers it).
 * Returns 0 with the new client in `*handle`, which is not yet the PDC
 * client, or the QMI error. */
int pdc_open_attempt(unsigned int timeout_ms, int attempt, qmi_client_type *handle);
/* Makes `handle` (from pdc_open_attempt) the PDC client and follows its
 * connection: when it ends, every wait ends with PDC_WAIT_LOST. */
void pdc_install_client(qmi_client_type handle);

/* The indication callback given to the QMI client library. */
void qmi_pdc_unsol_ind_cb(qmi_client_type client, unsigned int msg_id, void *ind_buf, unsigned int ind_buf_len,
                          void *cb_data);

/* Indication handlers, by message id; each takes the decoded structure. */
void qmi_pdc_get_selected_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_select_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_list_configs_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_delete_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_load_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_activate_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_get_config_info_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_deactivate_config_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);
void qmi_pdc_set_feature_ind_hdlr(void *ind_data_ptr, uint32_t ind_data_len);

/* The hook through which the list handler asks for the next page of
 * configurations: run `callback` after `delay`.  Each program that links
 * the PDC client defines it. */
typedef void (*tolvek_qcril_timed_callback)(void *param);
#define QCRIL_DEFAULT_INSTANCE_ID 0
#define QCRIL_DEFAULT_MODEM_ID 0
void tolvek_qcril_setup_timed_callback(int instance, int modem, tolvek_qcril_timed_callback callback,
                                       const struct timeval *delay);

/* The callback the list handler schedules: asks for the next page with
 * the last indication's token; a failed send ends the list with -1. */
void qmi_pdc_list_configs_next_page(void *param);

/* Test seam: how pdc_init waits between attempts (sleep() by default).
 * Null restores the default. */
typedef void (*pdc_retry_sleep_fn)(unsigned int seconds);
void pdc_set_retry_sleep(pdc_retry_sleep_fn fn);

/* Wakes every waiter, which then returns PDC_WAIT_CANCELLED; used when
 * the process is asked to stop.  pdc_reset_cancel() clears it, and the
 * mark of a lost service. */
void pdc_cancel_waits();
void pdc_reset_cancel();

#endif
