#include "ext_efs.h"

#include <string.h>

#include <map>
#include <string>
#include <vector>

namespace modemd {
namespace {

enum : uint8_t { k_op_efs_read = 4, k_op_efs_write = 5, k_op_efs_delete = 6 };

constexpr size_t k_off_op = 0, k_off_sub = 1, k_off_instance = 2, k_off_path_len = 4, k_off_path = 5;
constexpr size_t k_off_total = 76, k_off_chunk_len = 80, k_off_chunk_off = 84, k_off_chunk = 88;
constexpr size_t k_resp_off_total = 4, k_resp_off_chunk_len = 8, k_resp_off_result = 16, k_resp_off_data = 20;
constexpr uint8_t k_new_transfer = 255;
constexpr uint32_t k_max_write_path = 70, k_max_read_path = 71;
constexpr uint32_t k_max_write_chunk = 414, k_max_read_chunk = 424;
constexpr uint32_t k_max_file = 102410;
constexpr uint32_t k_subscriptions = 2;
constexpr int k_max_transfers = 255;

/* EFS error numbers of the answers (negative errno values). */
constexpr int32_t k_err_badf = -9;       /* unknown transfer instance */
constexpr int32_t k_err_inval = -22;     /* bad subscription, chunk out of order */
constexpr int32_t k_err_fbig = -27;      /* chunk runs past the announced total */
constexpr int32_t k_err_nametoolong = -36;

/* An open write transfer; committed when its last byte arrives. */
struct transfer {
    std::string path;
    uint32_t total = 0;
    std::vector<uint8_t> data;
    uint64_t opened = 0;
};

std::map<uint8_t, transfer> g_transfers;
uint64_t g_transfer_clock = 0;

/* Takes a free instance id, evicting the oldest transfer when all are in
 * use (an abandoned transfer never blocks new ones). */
uint8_t open_transfer()
{
    for (int id = 0; id < k_max_transfers; id++) {
        if (!g_transfers.count(uint8_t(id))) return uint8_t(id);
    }
    auto oldest = g_transfers.begin();
    for (auto it = g_transfers.begin(); it != g_transfers.end(); ++it) {
        if (it->second.opened < oldest->second.opened) oldest = it;
    }
    uint8_t id = oldest->first;
    g_transfers.erase(oldest);
    return id;
}

bool read_path(const uint8_t *p, uint32_t max_len, std::string *path)
{
    uint32_t len = p[k_off_path_len];
    if (len == 0 || len > max_len) return false;
    path->assign(reinterpret_cast<const char *>(p + k_off_path), len);
    return true;
}

int32_t efs_write(qmi_call &call, const uint8_t *p)
{
    std::string path;
    if (!read_path(p, k_max_write_path, &path)) return k_err_nametoolong;
    uint32_t total = ext_get_u32(p + k_off_total);
    uint32_t len = ext_get_u32(p + k_off_chunk_len);
    uint32_t off = ext_get_u32(p + k_off_chunk_off);
    if (len > k_max_write_chunk || total > k_max_file) return k_err_fbig;
    uint8_t id = p[k_off_instance];
    if (id == k_new_transfer) {
        if (off != 0) return k_err_inval;
        id = open_transfer();
        transfer &t = g_transfers[id];
        t = transfer{path, total, {}, ++g_transfer_clock};
        t.data.reserve(total);
    }
    auto it = g_transfers.find(id);
    if (it == g_transfers.end() || it->second.path != path || it->second.total != total) return k_err_badf;
    transfer &t = it->second;
    if (off != t.data.size()) {
        g_transfers.erase(it);
        return k_err_inval;
    }
    if (uint64_t(off) + len > t.total) {
        g_transfers.erase(it);
        return k_err_fbig;
    }
    t.data.insert(t.data.end(), p + k_off_chunk, p + k_off_chunk + len);
    if (t.data.size() == t.total) {
        int rc = call.d.store().efs_write(t.path, t.data);
        g_transfers.erase(it);
        if (rc != 0) return rc;
    }
    return id;
}

void efs_read(qmi_call &call, const uint8_t *p, tolvek_extend_msg &resp)
{
    std::string path;
    if (!read_path(p, k_max_read_path, &path)) return ext_reply(resp, k_err_nametoolong, k_resp_off_data);
    std::vector<uint8_t> data;
    int rc = call.d.store().efs_read(path, &data);
    if (rc != 0) return ext_reply(resp, rc, k_resp_off_data);
    uint32_t off = ext_get_u32(p + k_off_chunk_off);
    uint32_t size = uint32_t(data.size());
    uint32_t len = off >= size ? 0 : size - off;
    if (len > k_max_read_chunk) len = k_max_read_chunk;
    ext_put_u32(resp.data + k_resp_off_total, size);
    ext_put_u32(resp.data + k_resp_off_chunk_len, len);
    if (len) memcpy(resp.data + k_resp_off_data, data.data() + off, len);
    ext_reply(resp, 0, k_resp_off_data + len);
}

}  // namespace

void ext_put_u32(uint8_t *p, uint32_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
    p[2] = uint8_t(v >> 16);
    p[3] = uint8_t(v >> 24);
}

uint32_t ext_get_u32(const uint8_t *p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void ext_reply(tolvek_extend_msg &resp, int32_t result, uint32_t len)
{
    ext_put_u32(resp.data + k_resp_off_result, uint32_t(result));
    resp.msg_code = 0;
    resp.data_len = len;
    resp.data_valid = 1;
}

void ext_handle_efs_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp)
{
    const uint8_t *p = req.data;
    if (p[k_off_sub] >= k_subscriptions) return ext_reply(resp, k_err_inval, k_resp_off_data);
    switch (p[k_off_op]) {
    case k_op_efs_read:
        return efs_read(call, p, resp);
    case k_op_efs_write:
        return ext_reply(resp, efs_write(call, p), k_resp_off_data);
    case k_op_efs_delete: {
        std::string path;
        if (!read_path(p, k_max_write_path, &path)) return ext_reply(resp, k_err_nametoolong, k_resp_off_data);
        return ext_reply(resp, call.d.store().efs_delete(path), k_resp_off_data);
    }
    default:
        return ext_reply(resp, k_err_inval, k_resp_off_data);
    }
}

}  // namespace modemd
