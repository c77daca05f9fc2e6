/* Typed common requests (command code 2) the simulated modem answers, by
 * type.  A type not listed is answered with k_common_unsupported. */
#include "ext_common.h"

namespace modemd {

const ext_typed_entry g_ext_typed_requests[] = {
    {0, nullptr},
};

}  // namespace modemd
