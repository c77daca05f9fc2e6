/* The UIM service (0x0B) of the simulated modem.  docs/uim-service.md. */
#ifndef MODEMD_UIM_SERVICE_H
#define MODEMD_UIM_SERVICE_H

#include "daemon.h"
#include "uim_card.h"
#include "user_identity_module_v01.h"

namespace modemd {

extern const sim_service_def g_uim_service_def;

/* The slot status TLVs of both slots (get and indication). */
void uim_fill_slots_status(const uim_model &m, uim_slots_status_type_v01 *s);

}  // namespace modemd

#endif
