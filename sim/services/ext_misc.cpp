/* Request codes of the extension service beside EFS (2) and common (4):
 * what the modem answers to the other codes the tool's raw send (option 6)
 * can carry.  All answer with framework result 0 and a small payload:
 *   0 echo    - the request payload, unchanged (a link check);
 *   1 version - u32 IDL major, u32 IDL minor, u32 IDL library version, then
 *               the service build name, zero-terminated;
 *   3 status  - u32 requests served since start, u32 open EFS write
 *               transfers, u32 largest payload, u32 largest EFS file;
 *   5 uptime  - u64 milliseconds since the simulated modem started. */
#include <string.h>
#include <time.h>

#include "ext_efs.h"

namespace modemd {
namespace {

constexpr char k_build_name[] = "RLKSIM-EXT 1.1";

uint64_t monotonic_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return uint64_t(ts.tv_sec) * 1000u + uint64_t(ts.tv_nsec) / 1000000u;
}

const uint64_t g_started_ms = monotonic_ms();

struct version_payload {
    uint32_t idl_major;
    uint32_t idl_minor;
    uint32_t library_version;
    char build[sizeof(k_build_name)];
};

struct status_payload {
    uint32_t requests;
    uint32_t open_transfers;
    uint32_t max_payload;
    uint32_t max_efs_file;
};

}  // namespace

void ext_handle_echo(qmi_call &, const tolvek_extend_msg &req, tolvek_extend_msg &resp)
{
    if (req.data_len > TOLVEK_EXTEND_DATA_MAX) {
        resp.msg_code = k_ext_malformed_request;
        return;
    }
    memcpy(resp.data, req.data, sizeof(resp.data));
    resp.msg_code = 0;
    resp.data_len = req.data_len;
    resp.data_valid = 1;
}

void ext_handle_version(qmi_call &, const tolvek_extend_msg &, tolvek_extend_msg &resp)
{
    version_payload v;
    memset(&v, 0, sizeof(v));
    v.idl_major = TOLVEK_EXTEND_V01_IDL_MAJOR_VERS;
    v.idl_minor = TOLVEK_EXTEND_V01_IDL_MINOR_VERS;
    v.library_version = TOLVEK_EXTEND_V01_IDL_TOOL_VERS;
    memcpy(v.build, k_build_name, sizeof(k_build_name));
    ext_reply_with(resp, v, uint32_t(sizeof(v)));
}

void ext_handle_status(qmi_call &call, const tolvek_extend_msg &, tolvek_extend_msg &resp)
{
    status_payload s;
    s.requests = uint32_t(call.d.counters()["ext.requests"]);
    s.open_transfers = uint32_t(ext_efs_open_transfers());
    s.max_payload = TOLVEK_EXTEND_DATA_MAX;
    s.max_efs_file = TOLVEK_EFS_FILE_MAX;
    ext_reply_with(resp, s, uint32_t(sizeof(s)));
}

void ext_handle_uptime(qmi_call &, const tolvek_extend_msg &, tolvek_extend_msg &resp)
{
    uint64_t up = monotonic_ms() - g_started_ms;
    ext_reply_with(resp, up, uint32_t(sizeof(up)));
}

}  // namespace modemd
