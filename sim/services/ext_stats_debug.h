/* Command 20 of the extension service's common requests: the debug
 * counters of the modem-side statistics framework.
 *
 * Response payload: u32 command word (20), i32 result (0), then 137 packed
 * little-endian bytes: version (1); main info: feature enable status (1),
 * not-supported version count (8), command ok count (8), command fail count
 * (8); diag info (43 bytes); call-manager info (58 bytes); UIM info (10
 * bytes) — the fields of k_stats_debug_rows in ext_stats_debug.cpp, in
 * order.  Every value comes from a simulator counter named "stats.<block>.<field>"
 * (`rlk-modemd ctl counter set ...` changes it); the command ok count grows
 * with every answer served, the diag listener counts with every DCI log or
 * event record delivered. */
#ifndef MODEMD_EXT_STATS_DEBUG_H
#define MODEMD_EXT_STATS_DEBUG_H

#include "extension_service.h"

namespace modemd {

/* Fills `resp` with the debug counters. */
void ext_stats_debug_info(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

/* Counter of the commands the framework served. */
extern const char *const k_stats_counter_cmd_ok;
/* Counter names the diag channel bumps when it delivers stream records. */
extern const char *const k_stats_counter_log_records;
extern const char *const k_stats_counter_event_records;

}  // namespace modemd

#endif
