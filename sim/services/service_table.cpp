/* The services of the simulated modem, in the order they are published. */
#include "daemon.h"
#include "extension_service.h"
#include "vs_stats_service.h"
#include "uim_service.h"
#include "sar_service.h"
#include "pdc_service.h"
#include "dms_service.h"

namespace modemd {

const sim_service_def *const g_sim_services[] = {
    &g_extension_service_def,
    &g_vs_stats_service_def,
    &g_uim_service_def,
    &g_sar_service_def,
    &g_pdc_service_def,
    &g_dms_service_def,
};
const size_t g_sim_service_count = sizeof(g_sim_services) / sizeof(g_sim_services[0]);

}  // namespace modemd
