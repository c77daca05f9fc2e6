/* Common requests of the extension service (request code 4).  The payload
 * starts with a command code: 0 GPIO test set, 1 RF transmit test set
 * (both record their values in the test's EFS state file), 2 typed request
 * (type, length, value; answered by the table below), 20 the statistics
 * framework's debug counters (ext_stats_debug.h).  The response is a
 * tolvek_common_rsp: the command code echoed, the result (0 success, else a
 * negative errno value), then type, length and value of a typed answer. */
#ifndef MODEMD_EXT_COMMON_H
#define MODEMD_EXT_COMMON_H

#include "extension_service.h"

namespace modemd {

/* Results of common requests. */
constexpr int32_t k_common_ok = 0;
constexpr int32_t k_common_eio = -5;           /* the state could not be stored */
constexpr int32_t k_common_einval = -22;       /* length beyond the value area */
constexpr int32_t k_common_unsupported = -95;  /* unknown command code or type */

/* Answers one typed request: fills rsp->len and rsp->value (at most
 * TOLVEK_COMMON_RSP_VALUE_MAX bytes) and returns the result. */
typedef int32_t (*ext_typed_handler)(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);

struct ext_typed_entry {
    uint32_t type;
    ext_typed_handler fn;
};

/* The typed requests the modem answers (sim/services/ext_common_types.cpp),
 * ended by a row with a null handler. */
extern const ext_typed_entry g_ext_typed_requests[];

void ext_handle_common_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

}  // namespace modemd

#endif
