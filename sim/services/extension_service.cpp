/* The extension service: one message (0x0002) whose request code selects
 * what the modem does with the payload. */
#include "extension_service.h"

#include <string>

#include "ext_common.h"
#include "ext_efs.h"

namespace modemd {
namespace {

/* Request codes the modem knows; option 6 of the tool may send 0 to 5. */
enum : uint32_t {
    k_req_echo = 0,
    k_req_version = 1,
    k_req_status = 3,
    k_req_uptime = 5,
};

const ext_request_entry k_request_handlers[] = {
    {k_req_echo, ext_handle_echo},       {k_req_version, ext_handle_version},
    {REQUEST_ID_EFS, ext_handle_efs_request}, {k_req_status, ext_handle_status},
    {REQUEST_ID_COMMON, ext_handle_common_request}, {k_req_uptime, ext_handle_uptime},
};

void ext_handle_msg(qmi_call &call, const void *req_v, void *resp_v)
{
    const tolvek_extend_msg &req = *static_cast<const tolvek_extend_msg *>(req_v);
    tolvek_extend_msg &resp = *static_cast<tolvek_extend_msg *>(resp_v);
    call.d.counters()["ext.requests"]++;
    for (const ext_request_entry &e : k_request_handlers) {
        if (e.request_code == req.msg_code) {
            call.d.counters()["ext.requests." + std::to_string(e.request_code)]++;
            e.fn(call, req, resp);
            return;
        }
    }
    resp.msg_code = k_ext_unknown_request;
    resp.data_len = 0;
    resp.data_valid = 0;
}

void ext_fill_error(void *resp_v, int code)
{
    tolvek_extend_msg &resp = *static_cast<tolvek_extend_msg *>(resp_v);
    resp.msg_code = uint32_t(code);
}

qmi_idl_service_object_type ext_object() { return tolvek_extend_get_service_object_v01(); }

const qmi_handler_entry k_handlers[] = {
    {TOLVEK_EXTEND_REQ_MSG_ID_V01, ext_handle_msg},
};

}  // namespace

const sim_service_def g_extension_service_def = {
    "ext", ext_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), ext_fill_error, ext_control,
    "  ext fail-efs <skip> result|msg_code <code> | ext transfers | ext transfer-idle <ms>\n"
    "  ext restart-delay [ms]\n"
    "  ext card [second-ms <ms>]\n",
};

}  // namespace modemd
