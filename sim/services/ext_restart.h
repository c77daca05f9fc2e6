/* Typed common requests of the modem's maintenance: subsystem restart and
 * full dump (type 31) and NV sync (type 35), and the control of the
 * restart delay ("ext restart-delay [ms]").
 *
 * A restart acknowledges the request first, as a modem does before it goes
 * down: the answer leaves, then every service goes down and comes back
 * after the restart delay.  A full dump writes a dump file under
 * <state>/dumps before the same restart.  Counters: ext.ssr,
 * ext.full_dump, ext.nv_sync, ext.restart.down, ext.restart.up. */
#ifndef MODEMD_EXT_RESTART_H
#define MODEMD_EXT_RESTART_H

#include "ext_common.h"

namespace modemd {

/* Type and values of the restart request, type of the NV sync. */
constexpr uint32_t k_typed_ssr = 31;
constexpr uint32_t k_ssr_value_restart = 4096;
constexpr uint32_t k_ssr_value_full_dump = 8192;
constexpr uint32_t k_typed_nv_sync = 35;

/* How long a restarted modem stays away unless a test sets otherwise, and
 * the longest delay a test may set. */
constexpr uint32_t k_restart_delay_default_ms = 2000;
constexpr uint32_t k_restart_delay_max_ms = 600000;
/* Time between the answer and the services going down. */
constexpr uint32_t k_restart_ack_ms = 20;

/* Folder of the dump files, under the state directory. */
constexpr const char *k_dump_dir = "dumps";

int32_t ext_typed_ssr(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);
int32_t ext_typed_nv_sync(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);

/* "ext restart-delay [ms]": answers with the delay, or sets it.  False
 * when `args` is not a restart-delay request. */
bool ext_restart_control(daemon &d, const std::vector<std::string> &args, std::string *answer);

/* Takes every service down after k_restart_ack_ms and brings each back
 * after the restart delay. */
void ext_schedule_restart(daemon &d);

}  // namespace modemd

#endif
