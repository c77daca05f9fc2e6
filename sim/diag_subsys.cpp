/* Subsystem commands (0x4B): u8 0x4B, u8 subsystem id, u16 subsystem
 * command, then the command's payload.  Responses repeat the four header
 * bytes.  The EFS2 item-file commands read and write the simulator's EFS
 * tree, the same files the extension service and the NV commands see. */
#include <string.h>

#include "diag_channel.h"
#include "diag_commands.h"

namespace modemd {
namespace {

constexpr size_t k_no_max = SIZE_MAX;

/* EFS2 (subsystem 19) commands. */
constexpr uint16_t k_efs_hello = 0;
constexpr uint16_t k_efs_put = 38;
constexpr uint16_t k_efs_get = 39;
/* HELLO: 10 u32 (window sizes, version, min/max version, feature bits),
 * echoed as the modem's own parameters. */
constexpr size_t k_efs_hello_len = k_diag_subsys_header_len + 10 * 4;
/* PUT: u32 data_length, u32 flags, u16 seq, data, NUL-terminated path. */
constexpr size_t k_efs_put_head_len = k_diag_subsys_header_len + 10;
/* GET: u32 data_length (most to read), u32 path_length, u16 seq, path. */
constexpr size_t k_efs_get_head_len = k_diag_subsys_header_len + 10;
constexpr int32_t k_efs_get_failed = -1;

/* Call manager (subsystem 15) STATE_INFO: ten u32 of CM state. */
constexpr uint16_t k_cm_state_info = 0;
constexpr uint32_t k_cm_call_state_idle = 0;
constexpr uint32_t k_cm_oper_mode_online = 5;
constexpr uint32_t k_cm_sys_mode_lte = 9;
constexpr uint32_t k_cm_mode_pref_automatic = 2;
constexpr uint32_t k_cm_band_pref_any = 0x3FFFFFFF;
constexpr uint32_t k_cm_roam_pref_any = 0xFF;
constexpr uint32_t k_cm_srv_domain_cs_ps = 2;

typedef void (*subsys_handler)(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp);

struct subsys_entry {
    uint8_t subsys;
    uint16_t cmd;
    size_t min_len;
    size_t max_len;
    subsys_handler fn;
};

void put_header(const uint8_t *req, std::vector<uint8_t> *rsp) { rsp->assign(req, req + k_diag_subsys_header_len); }

/* The text from `p` up to its NUL or the end of the request. */
std::string path_at(const uint8_t *p, const uint8_t *end)
{
    const uint8_t *nul = static_cast<const uint8_t *>(memchr(p, 0, size_t(end - p)));
    return std::string(reinterpret_cast<const char *>(p), size_t((nul ? nul : end) - p));
}

void efs_hello(diag_modem_state &, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    rsp->assign(req, req + len);
}

void efs_put(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    const uint8_t *p = req + k_diag_subsys_header_len;
    uint32_t data_len = diag_get_u32(p);
    uint16_t seq = diag_get_u16(p + 8);
    if (data_len > len - k_efs_put_head_len) {
        diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
        return;
    }
    const uint8_t *data = req + k_efs_put_head_len;
    std::string path = path_at(data + data_len, req + len);
    int err = m.store ? m.store->efs_write(path, std::vector<uint8_t>(data, data + data_len)) : k_efs_eio;
    put_header(req, rsp);
    diag_put_u16(rsp, seq);
    diag_put_u32(rsp, uint32_t(-err));
}

void efs_get(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    const uint8_t *p = req + k_diag_subsys_header_len;
    uint32_t most = diag_get_u32(p);
    uint16_t seq = diag_get_u16(p + 8);
    std::string path = path_at(req + k_efs_get_head_len, req + len);
    std::vector<uint8_t> data;
    int err = m.store ? m.store->efs_read(path, &data) : k_efs_eio;
    if (data.size() > most) data.resize(most);
    put_header(req, rsp);
    diag_put_u32(rsp, err == k_efs_ok ? uint32_t(data.size()) : uint32_t(k_efs_get_failed));
    diag_put_u32(rsp, uint32_t(-err));
    diag_put_u16(rsp, seq);
    if (err == k_efs_ok) rsp->insert(rsp->end(), data.begin(), data.end());
}

void cm_state_info(diag_modem_state &, const uint8_t *req, size_t, std::vector<uint8_t> *rsp)
{
    put_header(req, rsp);
    const uint32_t fields[] = {
        k_cm_call_state_idle, k_cm_oper_mode_online, k_cm_sys_mode_lte, k_cm_mode_pref_automatic,
        k_cm_band_pref_any,   k_cm_roam_pref_any,    k_cm_srv_domain_cs_ps,
        0, /* acquisition order: automatic */
        0, /* hybrid preference: off */
        0, /* network selection: automatic */
    };
    for (uint32_t v : fields) diag_put_u32(rsp, v);
}

const subsys_entry k_subsys_commands[] = {
    {k_diag_subsys_fs, k_efs_hello, k_efs_hello_len, k_efs_hello_len, efs_hello},
    {k_diag_subsys_fs, k_efs_put, k_efs_put_head_len + 1, k_no_max, efs_put},
    {k_diag_subsys_fs, k_efs_get, k_efs_get_head_len + 1, k_no_max, efs_get},
    {k_diag_subsys_cm, k_cm_state_info, k_diag_subsys_header_len, k_diag_subsys_header_len, cm_state_info},
};

}  // namespace

void diag_answer_subsys(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    uint8_t subsys = req[1];
    uint16_t cmd = diag_get_u16(req + 2);
    for (const subsys_entry &e : k_subsys_commands) {
        if (e.subsys != subsys || e.cmd != cmd) continue;
        if (len < e.min_len || len > e.max_len) {
            diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
        } else {
            rsp->clear();
            e.fn(m, req, len, rsp);
        }
        return;
    }
    diag_error_response(k_diag_cmd_bad_cmd, req, len, rsp);
}

}  // namespace modemd
