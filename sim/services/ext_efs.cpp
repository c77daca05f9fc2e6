#include "ext_efs.h"

#include <string.h>
#include <sys/stat.h>

#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace modemd {
namespace {

/* Instance ids a write transfer can get: 0..254 (255 asks for a new one). */
constexpr int k_transfer_ids = TOLVEK_EFS_INSTANCE_MAX + 1;
/* Bytes of the response record up to and including `result`. */
constexpr uint32_t k_rsp_head_len = offsetof(tolvek_efs_rsp, data);

/* An open write transfer: its file is committed (atomically, as a whole)
 * when the last byte arrives; until then the old file stays as it was.
 * It belongs to the connection that opened it and goes with it. */
struct transfer {
    std::string path;
    uint32_t total = 0;
    std::vector<uint8_t> data;
    uint64_t owner = 0;    /* connection id */
    uint64_t moved_ms = 0; /* last chunk (or the opening) */
};

std::map<uint8_t, transfer> g_transfers;
event_loop::timer_id g_sweep_timer = 0;
uint64_t g_idle_ms = k_transfer_idle_ms;

/* Drops the transfers idle for g_idle_ms. */
void expire_idle(daemon &d, uint64_t now)
{
    for (auto it = g_transfers.begin(); it != g_transfers.end();) {
        if (now - it->second.moved_ms < g_idle_ms) {
            ++it;
            continue;
        }
        d.log("ext: EFS write transfer %u of %s idle for %llu ms: dropped", unsigned(it->first),
              it->second.path.c_str(), (unsigned long long)(now - it->second.moved_ms));
        it = g_transfers.erase(it);
    }
}

/* Keeps a sweep of idle transfers armed while any is open, and forgets the
 * transfers of connections that close. */
void watch_transfers(daemon &d)
{
    d.on_connection_closed("ext_efs.transfers", [](uint64_t conn_id) {
        for (auto it = g_transfers.begin(); it != g_transfers.end();) {
            it = it->second.owner == conn_id ? g_transfers.erase(it) : std::next(it);
        }
    });
    if (g_sweep_timer || g_transfers.empty()) return;
    daemon *dp = &d;
    uint32_t period = uint32_t(g_idle_ms < k_transfer_sweep_ms ? g_idle_ms : k_transfer_sweep_ms);
    g_sweep_timer = d.loop().add_timer(period, [dp] {
        g_sweep_timer = 0;
        expire_idle(*dp, event_loop::now_ms());
        watch_transfers(*dp);
    });
}

/* The file a chunked read is going through: a 102410-byte file is asked
 * for 244 times in a row, so it is kept between chunks as long as the host
 * file is the same one (every store write replaces the file, giving it a
 * new inode and times). */
struct read_cache {
    std::string path;
    struct stat identity;
    std::vector<uint8_t> data;
};

read_cache g_read_cache;

bool same_file(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec &&
           a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

/* Reads a whole EFS file, from the cache when the host file has not
 * changed since it was cached. */
int32_t read_file(state_store &store, const std::string &path, const std::vector<uint8_t> **data)
{
    struct stat st;
    bool known = store.efs_stat(path, &st);
    if (known && g_read_cache.path == path && same_file(g_read_cache.identity, st)) {
        *data = &g_read_cache.data;
        return k_efs_ok;
    }
    g_read_cache.path.clear();
    int32_t rc = store.efs_read(path, &g_read_cache.data);
    if (rc != k_efs_ok) return rc;
    if (known) {
        g_read_cache.path = path;
        g_read_cache.identity = st;
    }
    *data = &g_read_cache.data;
    return k_efs_ok;
}

/* Takes a free instance id.  When all are in use, the transfer that moved
 * least recently is evicted, unless even that one moved within
 * k_transfer_recent_ms: a live transfer is never taken.  False when no id
 * can be had. */
bool open_transfer(daemon &d, const std::string &path, uint32_t total, uint64_t owner, uint8_t *id)
{
    uint64_t now = event_loop::now_ms();
    expire_idle(d, now);
    for (int i = 0; i < k_transfer_ids; i++) {
        if (!g_transfers.count(uint8_t(i))) {
            *id = uint8_t(i);
            g_transfers[*id] = transfer{path, total, {}, owner, now};
            return true;
        }
    }
    auto oldest = g_transfers.begin();
    for (auto it = g_transfers.begin(); it != g_transfers.end(); ++it) {
        if (it->second.moved_ms < oldest->second.moved_ms) oldest = it;
    }
    if (now - oldest->second.moved_ms < k_transfer_recent_ms) return false;
    d.log("ext: EFS write transfer %u of %s evicted for a new one", unsigned(oldest->first),
          oldest->second.path.c_str());
    *id = oldest->first;
    oldest->second = transfer{path, total, {}, owner, now};
    return true;
}

/* The modem takes the path as a C string: up to its first zero byte within
 * the stated length (the tool counts the terminating zero of some paths). */
int32_t read_path(const tolvek_efs_req &req, uint32_t max_len, std::string *path)
{
    uint32_t len = req.path_len;
    if (len > max_len) return k_efs_enametoolong;
    size_t n = strnlen(req.path, len);
    if (n == 0) return k_efs_einval;
    path->assign(req.path, n);
    return k_efs_ok;
}

/* Paths the EFS accepts: absolute, no empty, "." or ".." component, no
 * component starting with a dot, no trailing slash. */
bool path_acceptable(const std::string &path)
{
    return path[0] == '/' && path.back() != '/' && path.find("//") == std::string::npos &&
           path.find("/.") == std::string::npos;
}

int32_t efs_write(qmi_call &call, const tolvek_efs_req &req)
{
    std::string path;
    int32_t rc = read_path(req, TOLVEK_EFS_PATH_MAX, &path);
    if (rc != k_efs_ok) return rc;
    if (!path_acceptable(path)) return k_efs_einval;
    uint32_t total = req.data_len_all, len = req.data_len_send, off = req.data_len_cur;
    if (len > TOLVEK_EFS_WRITE_CHUNK_MAX) return k_efs_einval;
    if (total > TOLVEK_EFS_FILE_MAX) return k_efs_efbig;

    uint8_t id = req.instance;
    watch_transfers(call.d);
    if (id == TOLVEK_EFS_NEW_INSTANCE) {
        if (off != 0) return k_efs_einval;
        if (!open_transfer(call.d, path, total, call.client.id, &id)) return k_efs_emfile;
        watch_transfers(call.d);
    }
    auto it = g_transfers.find(id);
    /* An id that is not open, that belongs to another file or to another
     * connection, is refused without touching the transfer it names. */
    if (it == g_transfers.end() || it->second.path != path || it->second.total != total ||
        it->second.owner != call.client.id) {
        return k_efs_ebadf;
    }
    transfer &t = it->second;
    t.moved_ms = event_loop::now_ms();
    if (off != t.data.size()) {
        g_transfers.erase(it); /* gap or repeated chunk: the transfer is lost */
        return k_efs_einval;
    }
    if (uint64_t(off) + len > t.total) {
        g_transfers.erase(it);
        return k_efs_efbig;
    }
    t.data.insert(t.data.end(), req.data, req.data + len);
    if (t.data.size() < t.total) return id;
    rc = call.d.store().efs_write(t.path, t.data);
    g_transfers.erase(it);
    return rc != k_efs_ok ? rc : id;
}

void efs_read(qmi_call &call, const tolvek_efs_req &req, tolvek_extend_msg &resp)
{
    std::string path;
    int32_t rc = read_path(req, TOLVEK_EFS_READ_PATH_MAX, &path);
    const std::vector<uint8_t> *file = nullptr;
    if (rc == k_efs_ok) rc = read_file(call.d.store(), path, &file);
    if (rc != k_efs_ok) return ext_efs_reply_result(resp, rc);
    const std::vector<uint8_t> &data = *file;

    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t size = uint32_t(data.size());
    uint32_t off = req.data_len_cur;
    uint32_t len = off >= size ? 0 : size - off;
    if (len > TOLVEK_EFS_READ_CHUNK_MAX) len = TOLVEK_EFS_READ_CHUNK_MAX;
    rsp.data_len_all = size;
    rsp.data_len_send = len;
    if (len) memcpy(rsp.data, data.data() + off, len);
    ext_efs_reply(resp, rsp, k_rsp_head_len + len);
}

int32_t efs_delete(qmi_call &call, const tolvek_efs_req &req)
{
    std::string path;
    int32_t rc = read_path(req, TOLVEK_EFS_PATH_MAX, &path);
    return rc != k_efs_ok ? rc : call.d.store().efs_delete(path);
}

}  // namespace

void ext_efs_reply(tolvek_extend_msg &resp, const tolvek_efs_rsp &rsp, uint32_t len)
{
    ext_reply_with(resp, rsp, len);
}

void ext_efs_reply_result(tolvek_extend_msg &resp, int32_t result)
{
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    rsp.result = result;
    ext_efs_reply(resp, rsp, k_rsp_head_len);
}

size_t ext_efs_open_transfers() { return g_transfers.size(); }

void ext_efs_set_transfer_idle(uint64_t ms) { g_idle_ms = ms; }

void ext_handle_efs_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp)
{
    if (ext_efs_take_failure(resp)) return;
    tolvek_efs_req efs = ext_payload_as<tolvek_efs_req>(req);
    switch (efs.op) {
    case TOLVEK_EFS_OP_NV_READ:
        return ext_nv_read(call, req, resp);
    case TOLVEK_EFS_OP_NV_WRITE:
        return ext_nv_write(call, req, resp);
    case TOLVEK_EFS_OP_NV_DELETE:
        return ext_nv_delete(call, req, resp);
    default:
        break;
    }
    if (efs.sub_id >= TOLVEK_EFS_SUB_COUNT) return ext_efs_reply_result(resp, k_efs_einval);
    switch (efs.op) {
    case TOLVEK_EFS_OP_READ:
        return efs_read(call, efs, resp);
    case TOLVEK_EFS_OP_WRITE:
        return ext_efs_reply_result(resp, efs_write(call, efs));
    case TOLVEK_EFS_OP_DELETE:
        return ext_efs_reply_result(resp, efs_delete(call, efs));
    default:
        return ext_efs_reply_result(resp, k_efs_einval);
    }
}

}  // namespace modemd
