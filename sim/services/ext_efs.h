/* EFS and NV requests of the extension service (request code 2).  The
 * operation byte selects NV read/write/delete (1, 2, 3, sim/services/
 * ext_nv.cpp) or EFS read/write/delete (4, 5, 6).  Payload layouts are the
 * shared tolvek_efs_req / tolvek_nv_req / tolvek_efs_rsp; error numbers and
 * the transfer rules are in docs/extension-service.md. */
#ifndef MODEMD_EXT_EFS_H
#define MODEMD_EXT_EFS_H

#include <stddef.h>

#include "extension_service.h"

namespace modemd {

/* EFS error numbers of the answers besides the store's k_efs_* (negative
 * errno values, as the modem's EFS layer reports them). */
constexpr int32_t k_efs_ebadf = -9;  /* no open transfer with the quoted instance id */
constexpr int32_t k_efs_efbig = -27; /* file above 102410 bytes, or a chunk past the announced total */
constexpr int32_t k_efs_emfile = -24; /* every instance id taken by a transfer that is still moving */

/* A write transfer nobody moved for this long is dropped ("ext
 * transfer-idle <ms>" changes it for tests). */
constexpr uint64_t k_transfer_idle_ms = 60000;
/* A transfer that moved within this time is never evicted for a new one. */
constexpr uint64_t k_transfer_recent_ms = 10000;
/* How often idle transfers are looked for while any is open. */
constexpr uint32_t k_transfer_sweep_ms = 5000;
constexpr int64_t k_transfer_idle_max_ms = 3600000;

void ext_handle_efs_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

/* Answers an EFS/NV request with `rsp` (its first `len` bytes count). */
void ext_efs_reply(tolvek_extend_msg &resp, const tolvek_efs_rsp &rsp, uint32_t len);
/* Answers with only `result` (20-byte record). */
void ext_efs_reply_result(tolvek_extend_msg &resp, int32_t result);

/* Number of write transfers open now (opened, not yet committed). */
size_t ext_efs_open_transfers();
/* Time after which an idle transfer is dropped (default k_transfer_idle_ms). */
void ext_efs_set_transfer_idle(uint64_t ms);

/* Answers `resp` with the failure a test armed through the "ext fail-efs"
 * control, when it is due (sim/services/ext_control.cpp); false otherwise. */
bool ext_efs_take_failure(tolvek_extend_msg &resp);

/* NV operations (sim/services/ext_nv.cpp). */
void ext_nv_read(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);
void ext_nv_write(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);
void ext_nv_delete(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

}  // namespace modemd

#endif
