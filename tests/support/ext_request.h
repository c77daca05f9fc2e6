/* Extension-service requests built by hand, for tests that talk to the
 * simulator below the tool's own client. */
#ifndef RLK_TEST_EXT_REQUEST_H
#define RLK_TEST_EXT_REQUEST_H

#include <string.h>

#include "tolvek_extend_service_v01.h"

/* The seeded file every fresh simulator holds (16 bytes). */
constexpr const char *k_seeded_efs_file = "/nv/item_files/modem/antenna/ant_tx_config";

/* An EFS read (operation 4) of `path` from offset 0. */
inline tolvek_extend_msg make_efs_read_request(const char *path = k_seeded_efs_file)
{
    tolvek_extend_msg req;
    memset(&req, 0, sizeof(req));
    req.msg_code = REQUEST_ID_EFS;
    req.data_len = TOLVEK_EXTEND_DATA_MAX;
    req.data_valid = 1;
    size_t len = strlen(path);
    req.data[0] = 4;
    req.data[4] = uint8_t(len);
    memcpy(req.data + 5, path, len);
    return req;
}

#endif
