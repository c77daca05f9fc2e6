/* The extension service (0xFFE4) of the simulated modem: one message
 * (0x0002) whose request code (msg_code) selects what the modem does with
 * the payload.  Layouts, codes and error numbers: docs/extension-service.md. */
#ifndef MODEMD_EXTENSION_SERVICE_H
#define MODEMD_EXTENSION_SERVICE_H

#include <string.h>

#include "daemon.h"
#include "tolvek_extend_payload.h"

namespace modemd {

/* A handler of one request code: reads the request payload and fills the
 * response (msg_code = framework result, data/data_len = payload). */
typedef void (*ext_request_handler)(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

struct ext_request_entry {
    uint32_t request_code;
    ext_request_handler fn;
};

/* msg_code of a response to a request code the modem does not know
 * (QMI_ERR_NOT_SUPPORTED). */
constexpr uint32_t k_ext_unknown_request = 0x5E;
/* msg_code of a response to a request whose payload length is impossible
 * (QMI_ERR_MALFORMED_MSG). */
constexpr uint32_t k_ext_malformed_request = 0x01;

extern const sim_service_def g_extension_service_def;

/* The payload of `msg` seen as a layout structure.  Copied, because the
 * payload sits at an odd offset of the message. */
template <typename T>
T ext_payload_as(const tolvek_extend_msg &msg)
{
    static_assert(sizeof(T) <= sizeof(msg.data), "layout fits the payload");
    T out;
    memcpy(&out, msg.data, sizeof(out));
    return out;
}

/* Answers with the first `len` bytes of `payload` (a layout structure) and
 * framework result 0. */
template <typename T>
void ext_reply_with(tolvek_extend_msg &resp, const T &payload, uint32_t len)
{
    static_assert(sizeof(T) <= sizeof(resp.data), "layout fits the payload");
    memcpy(resp.data, &payload, sizeof(payload));
    resp.msg_code = 0;
    resp.data_len = len;
    resp.data_valid = 1;
}

/* Request codes of the extension service other than EFS (2) and common (4):
 * sim/services/ext_misc.cpp. */
void ext_handle_echo(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);
void ext_handle_version(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);
void ext_handle_status(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);
void ext_handle_uptime(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

/* The "ext ..." control requests (sim/services/ext_control.cpp); `args[0]`
 * is "ext". */
std::string ext_control(daemon &d, const std::vector<std::string> &args);

}  // namespace modemd

#endif
