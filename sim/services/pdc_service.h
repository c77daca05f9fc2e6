/* The PDC service (0x24) of the simulated modem.  Each request is answered
 * at once with the result TLV; its outcome follows in an indication with
 * the same message id, sent to the requesting client after the response.
 * Layouts, behaviour and control requests: docs/pdc-service.md. */
#ifndef MODEMD_PDC_SERVICE_H
#define MODEMD_PDC_SERVICE_H

#include <stdint.h>

#include <map>
#include <string>
#include <vector>

#include "daemon.h"
#include "pdc_state.h"
#include "persistent_device_configuration_v01.h"

namespace modemd {

extern const sim_service_def g_pdc_service_def;

/* Configuration ids per list indication. */
constexpr uint32_t k_pdc_page_size = PDC_CONFIG_LIST_SIZE_MAX_V01;
/* Default time an activation takes before its indication, and how long
 * the modem's services stay down in the restart that follows it. */
constexpr uint32_t k_pdc_default_activation_ms = 2000;
constexpr uint32_t k_pdc_default_restart_ms = 1000;
/* Gap between the activation indication and the restart, so that the
 * indication leaves before the connections close. */
constexpr uint32_t k_pdc_restart_gap_ms = 50;

/* A failure a test arms for the next indications of one message. */
enum pdc_fault_kind {
    PDC_FAULT_ERROR,    /* the indication carries `code` */
    PDC_FAULT_RESET,    /* load: frame data reset */
    PDC_FAULT_NO_MBN,   /* list: no configuration list at all */
    PDC_FAULT_NO_IND,   /* no indication is sent */
};

struct pdc_fault {
    pdc_fault_kind kind;
    uint16_t code;
    int remaining; /* -1: until cleared */
};

struct pdc_runtime {
    std::map<uint16_t, pdc_fault> faults;
    uint32_t activation_ms = k_pdc_default_activation_ms;
    uint32_t restart_ms = k_pdc_default_restart_ms;
    uint32_t load_ind_ms = 0; /* time each load frame's indication follows its response */
};
pdc_runtime &pdc_rt();

/* Takes the armed fault of `msg_id` (counting it down); null when none. */
const pdc_fault *pdc_take_fault(uint16_t msg_id);

pdc_state &pdc_state_of(daemon &d);
void pdc_save(daemon &d);

/* Sends `ind` (a structure of the message's indication) to the client of
 * `call` once its response has gone. */
void pdc_send_ind_later(qmi_call &call, uint16_t msg_id, const void *ind, size_t ind_size, uint32_t delay_ms = 0);
/* Sends an outcome indication (error code and token) after the response,
 * unless a fault replaces or suppresses it. */
void pdc_reply_generic(qmi_call &call, uint16_t error, uint8_t token_valid, uint32_t token);

void pdc_handle_load(qmi_call &call, const void *req, void *resp);
void pdc_handle_list(qmi_call &call, const void *req, void *resp);

/* Takes every service of the modem down and brings them back after the
 * restart time. */
void pdc_subsystem_restart(daemon &d);

std::string pdc_control(daemon &d, const std::vector<std::string> &args);

}  // namespace modemd

#endif
