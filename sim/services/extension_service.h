/* The extension service (0xFFE4) of the simulated modem. */
#ifndef MODEMD_EXTENSION_SERVICE_H
#define MODEMD_EXTENSION_SERVICE_H

#include "daemon.h"
#include "tolvek_extend_service_v01.h"

namespace modemd {

/* A handler of one request code: reads the request payload and fills the
 * response (msg_code = result, data/data_len = payload). */
typedef void (*ext_request_handler)(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

struct ext_request_entry {
    uint32_t request_code;
    ext_request_handler fn;
};

/* msg_code of a response to a request code the modem does not know. */
constexpr uint32_t k_ext_unknown_request = 0x5E;

extern const sim_service_def g_extension_service_def;

}  // namespace modemd

#endif
