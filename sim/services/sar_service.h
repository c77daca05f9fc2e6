/* The SAR service (0x11) of the simulated modem: RF Set State and RF Get
 * State over one RF state kept in the modem state (0 on a fresh modem).
 * Control requests:
 *   sar state          the current state
 *   sar state <n>      sets it (0..20), as a set request would */
#ifndef MODEMD_SAR_SERVICE_H
#define MODEMD_SAR_SERVICE_H

#include "daemon.h"

namespace modemd {

extern const sim_service_def g_sar_service_def;

/* Where the modem keeps its RF state: u32, little-endian. */
constexpr const char k_sar_state_file[] = "/nv/item_files/modem/sar/rf_state";

}  // namespace modemd

#endif
