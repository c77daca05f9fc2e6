/* EFS files and NV items of the modem through the extension service
 * (request code 2).  Files travel in chunks of at most 414 bytes (writes)
 * or 424 bytes (reads); the chunks of one operation are never interleaved
 * with another operation of the process: one NV/EFS mutex is held around
 * each whole operation, always taken before the extension-service mutex. */
#ifndef TOLVEK_EXTEND_NVEFS_H
#define TOLVEK_EXTEND_NVEFS_H

#include <stdint.h>

#include "tolvek_extend_payload.h"

/* Argument failures of the NV/EFS calls. */
#define TOLVEK_NVEFS_ERR_SUB (-104)
#define TOLVEK_NVEFS_ERR_PATH_NULL (-105)
#define TOLVEK_NVEFS_ERR_PATH_LEN (-106)
#define TOLVEK_NVEFS_ERR_BUF_NULL (-107)
#define TOLVEK_NVEFS_ERR_BUF_LEN (-108)
#define TOLVEK_NVEFS_ERR_NV_ID (-109)

/* Most requests one EFS operation sends (a 102410-byte file needs 248). */
#define TOLVEK_NVEFS_MAX_REQUESTS 300

/* Writes `buf_len` bytes (1..102410) to the EFS file `efs_path` (`path_len`
 * bytes, 1..70) of subscription `sub_id` (0 or 1).  Returns 0, an argument
 * failure (-104..-108) or the modem's negative result for a chunk.  A
 * transport failure of one chunk does not end the transfer by itself. */
int tolvek_efs_write(uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf, uint32_t buf_len);

/* Reads an EFS file into `buf`; `*p_buf_len` is the capacity on entry and
 * the number of bytes read on return (a longer file is cut to the
 * capacity).  The path may be 71 bytes long.  Returns 0, an argument
 * failure, a mapped transport failure (-101..-103) or the modem's negative
 * result; a failed chunk ends the read and nothing of it is copied. */
int tolvek_efs_read(uint32_t sub_id, const char *efs_path, uint32_t path_len, uint8_t *buf, uint32_t *p_buf_len);

/* Deletes an EFS file.  Returns 0, an argument failure, a mapped transport
 * failure or the modem's negative result. */
int tolvek_efs_delete(uint32_t sub_id, const char *efs_path, uint32_t path_len);

/* Reads NV item `nv_id` (0..7232) of `sub_id` into `buf`: `*p_buf_len` is
 * the capacity on entry and the number of bytes copied on return.  Returns
 * 0, -109 for an id out of range, -108 for an empty item, a mapped
 * transport failure or the modem's non-zero NV status. */
int tolvek_nv_read(uint32_t sub_id, uint32_t nv_id, uint8_t *buf, uint32_t *p_buf_len);

/* Writes `buf_len` bytes (1..424) of `buf` to NV item `nv_id`.  Returns 0,
 * -109, -108 for a length out of range, a mapped transport failure or the
 * modem's NV status. */
int tolvek_nv_write_ex(uint32_t sub_id, uint32_t nv_id, const uint8_t *buf, uint32_t buf_len);

/* Deletes NV item `nv_id`.  Same results as tolvek_nv_read but -108. */
int tolvek_nv_delete(uint32_t sub_id, uint32_t nv_id);

#endif
