/* EFS requests of the extension service (request code 2, operations 4 read,
 * 5 write, 6 delete).
 *
 * Request payload: u8 operation, u8 subscription, u8 instance (writes: 255
 * opens a transfer, later chunks quote the id the modem returned), u8 0,
 * u8 path length (1..70; reads accept 71), path bytes from 5, u32 total
 * length at 76, u32 chunk length at 80, u32 chunk offset at 84, chunk data
 * from 88.
 * Response payload: u32 total length at 4 and u32 chunk length at 8
 * (reads), i32 result at 16 (write: the transfer's instance id 0..254;
 * failure: a negative EFS error number), read data from 20 (at most 424
 * bytes). */
#ifndef MODEMD_EXT_EFS_H
#define MODEMD_EXT_EFS_H

#include "extension_service.h"

namespace modemd {

void ext_handle_efs_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp);

/* Writes a little-endian u32/i32 into a payload. */
void ext_put_u32(uint8_t *p, uint32_t v);
uint32_t ext_get_u32(const uint8_t *p);
/* Finishes a response payload of `len` bytes with `result` at offset 16. */
void ext_reply(tolvek_extend_msg &resp, int32_t result, uint32_t len);

}  // namespace modemd

#endif
