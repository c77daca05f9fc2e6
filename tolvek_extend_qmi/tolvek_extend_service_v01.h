/* The phone maker's extension QMI service: one generic message (request
 * code, payload length, up to 512 payload bytes) answered by a message of
 * the same shape.  Shared by the tool and the modem simulator. */
#ifndef TOLVEK_EXTEND_SERVICE_V01_H
#define TOLVEK_EXTEND_SERVICE_V01_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#define TOLVEK_EXTEND_SERVICE_ID 0xFFE4
#define TOLVEK_EXTEND_V01_IDL_MAJOR_VERS 0x01
#define TOLVEK_EXTEND_V01_IDL_MINOR_VERS 0x01
#define TOLVEK_EXTEND_V01_IDL_TOOL_VERS 0x06
#define TOLVEK_EXTEND_MAX_MSG_LEN 529

/* Message ids: 0x0002 is the request/response every caller uses; 0x0003 is
 * defined (request, response and indication) but never sent by the tool. */
#define TOLVEK_EXTEND_REQ_MSG_ID_V01 0x0002
#define TOLVEK_EXTEND_IND_MSG_ID_V01 0x0003

#define TOLVEK_EXTEND_DATA_MAX 512

/* TLV ids of the message. */
#define TOLVEK_EXTEND_TLV_MSG_CODE 0x01
#define TOLVEK_EXTEND_TLV_DATA_LEN 0x02
#define TOLVEK_EXTEND_TLV_DATA 0x10

/* Request codes carried in msg_code. */
#define REQUEST_ID_EFS 2
#define REQUEST_ID_COMMON 4

typedef struct {
    uint32_t msg_code;  /* request: request code; response/indication: result, 0 = success */
    uint32_t data_len;  /* meaningful payload bytes */
    uint8_t data_valid; /* request: always 1; response: 0 when no payload came back */
    uint8_t data[TOLVEK_EXTEND_DATA_MAX];
} tolvek_extend_msg;

static_assert(sizeof(tolvek_extend_msg) == 524, "the extension message is 524 bytes in memory");

#ifdef __cplusplus
extern "C" {
#endif

extern struct qmi_elem_info tolvek_extend_msg_ei[];

/* Returns the service object, or null when the versions asked for do not
 * match this definition. */
qmi_idl_service_object_type tolvek_extend_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                          int32_t idl_min_version,
                                                                          int32_t library_version);

#define tolvek_extend_get_service_object_v01()                                                    \
    tolvek_extend_get_service_object_internal_v01(TOLVEK_EXTEND_V01_IDL_MAJOR_VERS,                \
                                                  TOLVEK_EXTEND_V01_IDL_MINOR_VERS,                \
                                                  TOLVEK_EXTEND_V01_IDL_TOOL_VERS)

#ifdef __cplusplus
}
#endif
#endif
