/* A minimal DMS service (0x02, device management) of the simulated modem,
 * so that standard QMI tools can identify it: Get Revision (0x0023, the
 * firmware revision in TLV 0x01) and Get IDs (0x0025: ESN 0x10, IMEI 0x11,
 * MEID 0x12, each a string TLV).  The IMEI is the one NV item 550 holds;
 * ESN and MEID are "0", as on a modem without CDMA. */
#ifndef MODEMD_DMS_SERVICE_H
#define MODEMD_DMS_SERVICE_H

#include "daemon.h"

namespace modemd {

extern const sim_service_def g_dms_service_def;

constexpr uint32_t k_dms_service_id = 0x02;
constexpr uint16_t k_dms_msg_get_revision = 0x0023;
constexpr uint16_t k_dms_msg_get_ids = 0x0025;

}  // namespace modemd

#endif
