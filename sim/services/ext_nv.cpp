/* NV items of the extension service (request code 2, operations 1 read,
 * 2 write, 3 delete).  Items live in the EFS tree where the modem keeps
 * them: subscription 0 at "/nvm/num/<id>" (the path the diag NV commands
 * use too), subscription 1 at "/nvm/context1/<id>", so the NV, diag and
 * EFS views of an item always agree.  Results are NV status codes. */
#include <string.h>

#include <string>
#include <vector>

#include "diag_commands.h"
#include "ext_efs.h"

namespace modemd {
namespace {

/* NV status codes of the modem's NV service. */
constexpr int32_t k_nv_done = 0;
constexpr int32_t k_nv_fail = 4;
constexpr int32_t k_nv_notactive = 5; /* the item was never written (or was deleted) */
constexpr int32_t k_nv_badparm = 6;   /* subscription, item id or length out of range */
static_assert(k_nv_fail == k_nv_status_failed && k_nv_notactive == k_nv_status_inactive,
              "NV status codes agree with the diag NV commands");

constexpr uint32_t k_rsp_head_len = offsetof(tolvek_efs_rsp, data);

std::string item_path(uint8_t sub, uint16_t id)
{
    return sub == 0 ? diag_nv_item_path(id) : "/nvm/context1/" + std::to_string(id);
}

/* The item's EFS path, or false when the request addresses no item. */
bool request_item(const tolvek_nv_req &req, std::string *path)
{
    if (req.sub_id >= TOLVEK_EFS_SUB_COUNT || req.nv_id > TOLVEK_NV_ID_MAX) return false;
    *path = item_path(req.sub_id, req.nv_id);
    return true;
}

}  // namespace

void ext_nv_read(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_extend_msg &resp)
{
    tolvek_nv_req req = ext_payload_as<tolvek_nv_req>(req_msg);
    std::string path;
    if (!request_item(req, &path)) return ext_efs_reply_result(resp, k_nv_badparm);
    std::vector<uint8_t> data;
    int rc = call.d.store().efs_read(path, &data);
    if (rc == k_efs_enoent) return ext_efs_reply_result(resp, k_nv_notactive);
    if (rc != k_efs_ok) return ext_efs_reply_result(resp, k_nv_fail);

    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t len = data.size() < sizeof(rsp.data) ? uint32_t(data.size()) : uint32_t(sizeof(rsp.data));
    rsp.data_len_all = uint32_t(data.size());
    rsp.result = k_nv_done;
    if (len) memcpy(rsp.data, data.data(), len);
    ext_efs_reply(resp, rsp, k_rsp_head_len + len);
}

void ext_nv_write(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_extend_msg &resp)
{
    tolvek_nv_req req = ext_payload_as<tolvek_nv_req>(req_msg);
    std::string path;
    if (!request_item(req, &path) || req.data_len == 0 || req.data_len > TOLVEK_NV_DATA_MAX) {
        return ext_efs_reply_result(resp, k_nv_badparm);
    }
    std::vector<uint8_t> data(req.data, req.data + req.data_len);
    ext_efs_reply_result(resp, call.d.store().efs_write(path, data) == k_efs_ok ? k_nv_done : k_nv_fail);
}

void ext_nv_delete(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_extend_msg &resp)
{
    tolvek_nv_req req = ext_payload_as<tolvek_nv_req>(req_msg);
    std::string path;
    if (!request_item(req, &path)) return ext_efs_reply_result(resp, k_nv_badparm);
    int rc = call.d.store().efs_delete(path);
    ext_efs_reply_result(resp, rc == k_efs_ok ? k_nv_done : rc == k_efs_enoent ? k_nv_notactive : k_nv_fail);
}

}  // namespace modemd
