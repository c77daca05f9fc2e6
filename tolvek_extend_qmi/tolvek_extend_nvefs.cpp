#include "tolvek_extend_nvefs.h"

#include <string.h>

#include <mutex>

#include "tolvek_extend_cmn.h"
#include "tolvek_log.h"

/* Debug line logged under the name of the public function that called the
 * helper, so every line of one operation carries that operation's name. */
#define TOLVEK_LOGD_AS(func, fmt, ...) \
    tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, __LINE__, (func), fmt, ##__VA_ARGS__)

namespace {

/* The path is copied into a zeroed buffer and cut at position 70. */
constexpr size_t k_path_value_len = 72;
constexpr size_t k_path_value_cut = 70;

/* Held around every whole NV or EFS operation of the process. */
std::mutex g_nvefs_mutex;

/* Checks shared by the EFS calls: subscription, path pointer, path length
 * (1..max_path_len).  Returns 0 or the argument failure, logged. */
int check_efs_head(const char *func, uint32_t sub_id, const char *efs_path, uint32_t path_len,
                   uint32_t max_path_len)
{
    if (sub_id >= TOLVEK_EFS_SUB_COUNT) {
        TOLVEK_LOGD_AS(func, "sub invalid");
        return TOLVEK_NVEFS_ERR_SUB;
    }
    if (efs_path == nullptr) {
        TOLVEK_LOGD_AS(func, "efs_path is null");
        return TOLVEK_NVEFS_ERR_PATH_NULL;
    }
    if (path_len == 0 || path_len > max_path_len) {
        TOLVEK_LOGD_AS(func, "len invalid");
        return TOLVEK_NVEFS_ERR_PATH_LEN;
    }
    return 0;
}

/* Fills the payload head (operation, subscription, path) and logs the
 * path.  The rest of `req` is zeroed. */
void fill_efs_head(const char *func, tolvek_efs_req *req, uint8_t op, uint32_t sub_id, const char *efs_path,
                   uint32_t path_len)
{
    char path_value[k_path_value_len];
    memset(path_value, 0, sizeof(path_value));
    memcpy(path_value, efs_path, path_len);
    path_value[k_path_value_cut] = '\0';
    TOLVEK_LOGD_AS(func, "path_value: %s", path_value);

    memset(req, 0, sizeof(*req));
    req->op = op;
    req->sub_id = uint8_t(sub_id);
    req->path_len = uint8_t(path_len);
    memcpy(req->path, path_value, path_len);
}

/* One EFS/NV request with a 444-byte response capacity; returns the mapped
 * send result.  `*rsp_len` gets the number of response bytes received. */
int send_efs_payload(const void *req, tolvek_efs_rsp *rsp, uint32_t *rsp_len)
{
    *rsp_len = sizeof(*rsp);
    int result = tolvek_extend_qmi_send_sync(REQUEST_ID_EFS, static_cast<const uint8_t *>(req),
                                             TOLVEK_EXTEND_DATA_MAX, rsp, rsp_len);
    return tolvek_qmi_result_map(result);
}

int efs_write_locked(const char *func, uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf,
                     uint32_t buf_len)
{
    int rc = check_efs_head(func, sub_id, efs_path, path_len, TOLVEK_EFS_PATH_MAX);
    if (rc != 0) {
        return rc;
    }
    if (buf == nullptr) {
        TOLVEK_LOGD_AS(func, "buf is null");
        return TOLVEK_NVEFS_ERR_BUF_NULL;
    }
    if (buf_len == 0 || buf_len > TOLVEK_EFS_FILE_MAX) {
        TOLVEK_LOGD_AS(func, "buf_len is invalid");
        return TOLVEK_NVEFS_ERR_BUF_LEN;
    }
    tolvek_efs_req req;
    fill_efs_head(func, &req, TOLVEK_EFS_OP_WRITE, sub_id, efs_path, path_len);
    req.instance = TOLVEK_EFS_NEW_INSTANCE;
    req.data_len_all = buf_len;

    /* The response record is kept across chunks: a chunk whose send failed
     * is judged by the result of the chunk before it. */
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t sent = 0;
    int count = 0;
    for (;;) {
        uint32_t left = buf_len - sent;
        TOLVEK_LOGD_AS(func, "left_num(%d)", int(left));
        uint32_t chunk = left < TOLVEK_EFS_WRITE_CHUNK_MAX ? left : TOLVEK_EFS_WRITE_CHUNK_MAX;
        TOLVEK_LOGD_AS(func, "send_num(%d)", int(chunk));
        req.data_len_send = chunk;
        req.data_len_cur = sent;
        memcpy(req.data, buf + sent, chunk);
        memset(req.data + chunk, 0, sizeof(req.data) - chunk);

        uint32_t rsp_len = 0;
        int result = send_efs_payload(&req, &rsp, &rsp_len);
        TOLVEK_LOGD_AS(func, "result = %d, rsp.result[>=0 is instance id] = %d", result, rsp.result);
        if (result != 0) {
            TOLVEK_LOGD_AS(func, "tolvek_extend_qmi_send_sync fail");
        }
        if (rsp.result < 0) {
            TOLVEK_LOGD_AS(func, "qmi response fail");
            return rsp.result;
        }
        sent += chunk;
        req.instance = uint8_t(rsp.result);
        count++;
        TOLVEK_LOGD_AS(func,
                       "data_len_all = %d, data_len_send = %d, data_len_recv = %d, send_count = %d, "
                       "data_len_cur = %d",
                       int(buf_len), int(chunk), int(sent), count, int(req.data_len_cur));
        if (sent >= buf_len || count >= TOLVEK_NVEFS_MAX_REQUESTS) {
            return 0;
        }
    }
}

/* Bytes of chunk data a read response really carries: the chunk length it
 * states, but never more than arrived behind the 20-byte head. */
uint32_t received_chunk_len(const tolvek_efs_rsp &rsp, uint32_t rsp_len)
{
    uint32_t carried = rsp_len > offsetof(tolvek_efs_rsp, data) ? rsp_len - offsetof(tolvek_efs_rsp, data) : 0;
    return rsp.data_len_send < carried ? rsp.data_len_send : carried;
}

/* Checks of a read beyond the shared head: buffer, length pointer and
 * capacity (logged as it comes in).  Returns 0 or the argument failure. */
int check_efs_read_buffer(const char *func, const uint8_t *buf, const uint32_t *p_buf_len)
{
    if (buf == nullptr) {
        TOLVEK_LOGD_AS(func, "buf is null");
        return TOLVEK_NVEFS_ERR_BUF_NULL;
    }
    if (p_buf_len == nullptr) {
        TOLVEK_LOGD_AS(func, "p_buf_len is null");
        return TOLVEK_NVEFS_ERR_BUF_LEN;
    }
    TOLVEK_LOGD_AS(func, "buf_len: %d", int(*p_buf_len));
    if (*p_buf_len == 0) {
        TOLVEK_LOGD_AS(func, "buf_len is invalid");
        return TOLVEK_NVEFS_ERR_BUF_LEN;
    }
    return 0;
}

/* Copies a chunk received at `offset` into the caller's buffer and sets
 * the number of bytes read.  When the chunk does not fit, only what fits is
 * copied and false says that the read ends there. */
bool copy_read_chunk(const char *func, uint8_t *buf, uint32_t capacity, uint32_t offset, const uint8_t *chunk_data,
                     uint32_t chunk, uint32_t *p_buf_len)
{
    if (offset + chunk <= capacity) {
        memcpy(buf + offset, chunk_data, chunk);
        *p_buf_len = offset + chunk;
        return true;
    }
    if (offset >= capacity) {
        TOLVEK_LOGD_AS(func, "errro, abort, buf_len <= req.data_len_cur");
    } else {
        memcpy(buf + offset, chunk_data, capacity - offset);
        TOLVEK_LOGD_AS(func, "abort, buf_len <= data_len_recv");
    }
    *p_buf_len = capacity;
    return false;
}

int efs_read_locked(const char *func, uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf,
                    uint32_t *p_buf_len)
{
    int rc = check_efs_head(func, sub_id, efs_path, path_len, TOLVEK_EFS_READ_PATH_MAX);
    if (rc == 0) {
        rc = check_efs_read_buffer(func, buf, p_buf_len);
    }
    if (rc != 0) {
        return rc;
    }
    uint32_t capacity = *p_buf_len;
    tolvek_efs_req req;
    fill_efs_head(func, &req, TOLVEK_EFS_OP_READ, sub_id, efs_path, path_len);

    uint32_t received = 0;
    int count = 0;
    for (;;) {
        req.data_len_cur = received;
        /* Cleared for every chunk, so that nothing of an earlier answer can
         * pass for this one. */
        tolvek_efs_rsp rsp;
        memset(&rsp, 0, sizeof(rsp));
        uint32_t rsp_len = 0;
        int result = send_efs_payload(&req, &rsp, &rsp_len);
        TOLVEK_LOGD_AS(func, "result = %d, rsp.result = %d", result, rsp.result);
        if (result != 0) {
            TOLVEK_LOGD_AS(func, "tolvek_extend_qmi_send_sync fail, ABORT");
            return result;
        }
        if (rsp.result < 0) {
            TOLVEK_LOGD_AS(func, "qmi response fail");
            return rsp.result;
        }
        uint32_t offset = req.data_len_cur;
        uint32_t chunk = received_chunk_len(rsp, rsp_len);
        received += chunk;
        count++;
        TOLVEK_LOGD_AS(func,
                       "data_len_all = %d, data_len_send = %d, data_len_recv = %d, read_count = %d, "
                       "data_len_cur = %d",
                       int(rsp.data_len_all), int(chunk), int(received), count, int(offset));
        if (chunk == 0) {
            TOLVEK_LOGD_AS(func, "abort, data_len_send <= 0");
            return TOLVEK_NVEFS_ERR_BUF_LEN;
        }
        if (!copy_read_chunk(func, buf, capacity, offset, rsp.data, chunk, p_buf_len)) {
            return 0;
        }
        if (received >= rsp.data_len_all || received >= TOLVEK_EFS_FILE_MAX || count >= TOLVEK_NVEFS_MAX_REQUESTS) {
            return 0;
        }
    }
}

int efs_delete_locked(const char *func, uint32_t sub_id, const char *efs_path, uint32_t path_len)
{
    int rc = check_efs_head(func, sub_id, efs_path, path_len, TOLVEK_EFS_PATH_MAX);
    if (rc != 0) {
        return rc;
    }
    tolvek_efs_req req;
    fill_efs_head(func, &req, TOLVEK_EFS_OP_DELETE, sub_id, efs_path, path_len);
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t rsp_len = 0;
    int result = send_efs_payload(&req, &rsp, &rsp_len);
    TOLVEK_LOGD_AS(func, "result = %d, rsp.result = %d", result, rsp.result);
    if (result != 0) {
        TOLVEK_LOGD_AS(func, "tolvek_extend_qmi_send_sync fail");
        return result;
    }
    if (rsp.result < 0) {
        TOLVEK_LOGD_AS(func, "qmi response fail");
        return rsp.result;
    }
    return 0;
}

/* Judges an NV answer: a transport failure, then a non-zero NV status.
 * Returns 0 when the item request succeeded. */
int judge_nv_answer(const char *func, int result, const tolvek_efs_rsp &rsp)
{
    TOLVEK_LOGD_AS(func, "result = %d, rsp.result = %d", result, rsp.result);
    if (result != 0) {
        TOLVEK_LOGD_AS(func, "tolvek_extend_qmi_send_sync fail");
        return result;
    }
    if (rsp.result != 0) {
        TOLVEK_LOGD_AS(func, "qmi response fail");
        return rsp.result;
    }
    return 0;
}

/* NV request head: operation, subscription and item id; all else zero. */
void fill_nv_head(tolvek_nv_req *req, uint8_t op, uint32_t sub_id, uint32_t nv_id)
{
    memset(req, 0, sizeof(*req));
    req->op = op;
    req->sub_id = uint8_t(sub_id);
    req->nv_id = uint16_t(nv_id);
}

bool nv_id_in_range(const char *func, uint32_t nv_id)
{
    if (nv_id > TOLVEK_NV_ID_MAX) {
        TOLVEK_LOGD_AS(func, "nv_id is out range(%d)", TOLVEK_NV_ID_MAX);
        return false;
    }
    return true;
}

int nv_read_locked(const char *func, uint32_t sub_id, uint32_t nv_id, uint8_t *buf, uint32_t *p_buf_len)
{
    if (!nv_id_in_range(func, nv_id)) {
        return TOLVEK_NVEFS_ERR_NV_ID;
    }
    uint32_t capacity = *p_buf_len;
    TOLVEK_LOGD_AS(func, "buf_len: %d", int(capacity));
    tolvek_nv_req req;
    fill_nv_head(&req, TOLVEK_EFS_OP_NV_READ, sub_id, nv_id);
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t rsp_len = 0;
    int result = judge_nv_answer(func, send_efs_payload(&req, &rsp, &rsp_len), rsp);
    if (result != 0) {
        return result;
    }
    TOLVEK_LOGD_AS(func, "rsp.data_len_all = %d", int(rsp.data_len_all));
    if (rsp.data_len_all == 0) {
        TOLVEK_LOGD_AS(func, "rsp.data_len_all is invalid");
        return TOLVEK_NVEFS_ERR_BUF_LEN;
    }
    uint32_t len = rsp.data_len_all < capacity ? rsp.data_len_all : capacity;
    if (len > sizeof(rsp.data)) {
        len = sizeof(rsp.data);
    }
    memcpy(buf, rsp.data, len);
    *p_buf_len = len;
    return 0;
}

int nv_write_locked(const char *func, uint32_t sub_id, uint32_t nv_id, const uint8_t *buf, uint32_t buf_len)
{
    if (!nv_id_in_range(func, nv_id)) {
        return TOLVEK_NVEFS_ERR_NV_ID;
    }
    if (buf_len == 0 || buf_len > TOLVEK_NV_DATA_MAX) {
        TOLVEK_LOGD_AS(func, "buf_len is invalid");
        return TOLVEK_NVEFS_ERR_BUF_LEN;
    }
    tolvek_nv_req req;
    fill_nv_head(&req, TOLVEK_EFS_OP_NV_WRITE, sub_id, nv_id);
    req.data_len = buf_len;
    memcpy(req.data, buf, buf_len);
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t rsp_len = 0;
    return judge_nv_answer(func, send_efs_payload(&req, &rsp, &rsp_len), rsp);
}

int nv_delete_locked(const char *func, uint32_t sub_id, uint32_t nv_id)
{
    if (!nv_id_in_range(func, nv_id)) {
        return TOLVEK_NVEFS_ERR_NV_ID;
    }
    tolvek_nv_req req;
    fill_nv_head(&req, TOLVEK_EFS_OP_NV_DELETE, sub_id, nv_id);
    tolvek_efs_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t rsp_len = 0;
    return judge_nv_answer(func, send_efs_payload(&req, &rsp, &rsp_len), rsp);
}

}  // namespace

/* Each public call: entry marker, NV/EFS mutex, its first line, the work,
 * mutex released, exit marker. */

int tolvek_efs_write(uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf, uint32_t buf_len)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_efs_write, sub_id %d, path_len: %d, buf_len: %d", int(sub_id), int(path_len),
                    int(buf_len));
        result = efs_write_locked(__func__, sub_id, efs_path, path_len, buf, buf_len);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}

int tolvek_efs_read(uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf, uint32_t *p_buf_len)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_efs_read, sub_id %d, path_len: %d", int(sub_id), int(path_len));
        result = efs_read_locked(__func__, sub_id, efs_path, path_len, buf, p_buf_len);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}

int tolvek_efs_delete(uint32_t sub_id, const char *efs_path, uint32_t path_len)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_efs_delete, sub_id %d, path_len: %d", int(sub_id), int(path_len));
        result = efs_delete_locked(__func__, sub_id, efs_path, path_len);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}

int tolvek_nv_read(uint32_t sub_id, uint32_t nv_id, uint8_t *buf, uint32_t *p_buf_len)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_nv_read, sub_id %d, nv_id: %d", int(sub_id), int(nv_id));
        result = nv_read_locked(__func__, sub_id, nv_id, buf, p_buf_len);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}

int tolvek_nv_write_ex(uint32_t sub_id, uint32_t nv_id, const uint8_t *buf, uint32_t buf_len)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_nv_write, sub_id %d, nv_id: %d, buf_len: %d", int(sub_id), int(nv_id), int(buf_len));
        result = nv_write_locked(__func__, sub_id, nv_id, buf, buf_len);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}

int tolvek_nv_delete(uint32_t sub_id, uint32_t nv_id)
{
    TOLVEK_FUNC_ENTRY();
    int result;
    {
        std::lock_guard<std::mutex> guard(g_nvefs_mutex);
        TOLVEK_LOGD("tolvek_nv_delete, sub_id %d, nv_id: %d", int(sub_id), int(nv_id));
        result = nv_delete_locked(__func__, sub_id, nv_id);
    }
    TOLVEK_FUNC_EXIT();
    return result;
}
