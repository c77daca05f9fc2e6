/* Typed common requests (command code 2) the simulated modem answers, by
 * type.  A type not listed is answered with k_common_unsupported. */
#include "ext_card_slot.h"
#include "ext_common.h"
#include "ext_restart.h"

namespace modemd {

const ext_typed_entry g_ext_typed_requests[] = {
    {k_typed_ssr, ext_typed_ssr},
    {k_typed_nv_sync, ext_typed_nv_sync},
    {TOLVEK_CARD_TYPE_STATUS_QUERY, card_status_query},
    {TOLVEK_CARD_TYPE_STATUS_GET, card_status_get},
    {TOLVEK_CARD_TYPE_TYPE_QUERY, card_type_query},
    {TOLVEK_CARD_TYPE_STATUS_SET, card_status_set},
    {TOLVEK_CARD_TYPE_HOTSWAP, card_hotswap},
    {0, nullptr},
};

}  // namespace modemd
