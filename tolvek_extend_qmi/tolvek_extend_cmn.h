/* The client of the extension QMI service: one connection per process,
 * opened on the first request and kept until the process ends, and the one
 * synchronous send routine every NV, EFS, GPIO, RF and common request
 * passes through. */
#ifndef TOLVEK_EXTEND_CMN_H
#define TOLVEK_EXTEND_CMN_H

#include <stdint.h>

#include "qmi_client.h"
#include "tolvek_extend_payload.h"

/* Results of tolvek_extend_qmi_send_sync. */
#define TOLVEK_EXTEND_SEND_OK 0
#define TOLVEK_EXTEND_SEND_BAD_PARAM (-1)
#define TOLVEK_EXTEND_SEND_NO_CLIENT (-2)
#define TOLVEK_EXTEND_SEND_FAILED (-3)

/* The same failures in the EFS/NV error space (tolvek_qmi_result_map). */
#define TOLVEK_QMI_RESULT_BAD_PARAM (-101)
#define TOLVEK_QMI_RESULT_NO_CLIENT (-102)
#define TOLVEK_QMI_RESULT_FAILED (-103)

/* How long one request waits for its answer. */
#define TOLVEK_EXTEND_TIMEOUT_MS 3000

/* Sends `req_len` bytes (at most 512) of `req_data` with request code
 * `msg_code` and waits for the answer.  `*rsp_len` is the capacity of
 * `rsp_data` (at most 512) on entry and the number of bytes copied on
 * return.  Returns 0, -1 for bad arguments, -2 when no client could be
 * created, -3 when the exchange failed or the service answered with a
 * non-zero result.  Connects on the first call, waiting without limit for
 * the service to be listed. */
int tolvek_extend_qmi_send_sync(uint32_t msg_code, const uint8_t *req_data, int req_len, void *rsp_data,
                                uint32_t *rsp_len);

/* Wraps `l` bytes of `data` (at most 496; more aborts) as a typed request
 * of type `t` (command code 2) and sends it with request code 4.  `rsp`
 * receives the 508-byte response record (tolvek_common_rsp), zeroed first;
 * callers read the result from it. */
void tolvek_send_common_qmi_msg(uint32_t t, uint32_t l, void *data, void *rsp);

/* -1, -2, -3 become -101, -102, -103; anything else is returned as is. */
int tolvek_qmi_result_map(int result);

/* Indication callback of the extension client: reports the indication and
 * acts on none. */
void tolvek_extend_qmi_ind_cb(qmi_client_type user_handle, unsigned int msg_id, void *ind_buf,
                              unsigned int ind_buf_len, void *ind_cb_data);

/* Do-nothing indication callback for other clients; logs the message id. */
void tolvek_qcril_qmi_client_common_empty_unsol_ind_cb(qmi_client_type user_handle, unsigned int msg_id,
                                                       void *ind_buf, unsigned int ind_buf_len,
                                                       void *ind_cb_data);

#endif
