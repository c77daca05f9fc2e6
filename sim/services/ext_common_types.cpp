/* Typed common requests (command code 2) the simulated modem answers, by
 * type.  A type not listed is answered with k_common_unsupported. */
#include "ext_common.h"
#include "ext_restart.h"

namespace modemd {

const ext_typed_entry g_ext_typed_requests[] = {
    {k_typed_ssr, ext_typed_ssr},
    {k_typed_nv_sync, ext_typed_nv_sync},
    {0, nullptr},
};

}  // namespace modemd
