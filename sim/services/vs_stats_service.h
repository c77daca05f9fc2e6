/* The vendor statistics service (0xFFE5) of the simulated modem: the
 * feature status, items of the radio scene by data id and subscription,
 * the generic command, test faults of the item answers, and the four
 * indication kinds on request (and periodically in the demo scene).
 * Layouts and controls: docs/vendor-stats-service.md. */
#ifndef MODEMD_VS_STATS_SERVICE_H
#define MODEMD_VS_STATS_SERVICE_H

#include "daemon.h"
#include "orvex_vs_service_v01.h"
#include "vs_stats_scene.h"

namespace modemd {

extern const sim_service_def g_vs_stats_service_def;

/* A fault of the item answers, armed through the control interface. */
struct vs_item_fault {
    enum kind_t { NONE, WRONG_ID, WRONG_SUB, DATA_LEN, EMPTY } kind = NONE;
    uint32_t value = 0; /* DATA_LEN: the length answered */
    int remaining = 0;  /* answers still affected; -1: until cleared */
};

/* State of the service, kept in the simulator process. */
struct vs_stats_state {
    vs_scene scene[k_vs_subs];
    uint8_t feature_status = ORVEX_VS_FEATURE_STOP;
    uint32_t served_port = 0; /* port of the server that set the status */
    uint32_t update_count = 0;
    uint32_t report_id = 0;
    vs_item_fault fault;
    event_loop::timer_id demo_timer = 0;
    uint32_t demo_period_ms = 0;
};

vs_stats_state &vs_stats(void);

/* The service's control requests ("vs ..."). */
std::string vs_stats_control(daemon &d, const std::vector<std::string> &args);

/* Sends one indication of each kind; false when no client listens. */
bool vs_send_feature_ind(daemon &d, uint32_t mask, uint8_t enabled, uint8_t collecting);
bool vs_send_report_ind(daemon &d, uint32_t primary, uint32_t secondary, bool with_interval, uint32_t interval_ms);
bool vs_send_ant_ind(daemon &d, uint32_t sub, uint32_t count);
bool vs_send_event_ind(daemon &d, uint8_t event);
bool vs_send_cell_ind(daemon &d, uint32_t sub, uint32_t earfcn);

/* Counters of the service (`rlk-modemd ctl counters`). */
extern const char *const k_vs_counter_requests;

}  // namespace modemd

#endif
