/* Client of the platform's QMI UIM service: powers a SIM slot down or up,
 * reads the eUICC's EID, and exchanges APDUs with a card application over
 * a logical channel.  One process-wide client handle, created on the
 * first request; a subsystem restart reported by the error callback, a
 * request that finds the service gone (-2) or three failed requests drop
 * the handle so that the next request connects again.  Request and
 * response buffers come from qcril_malloc_adv and go back through
 * qcril_free_adv. */
#ifndef TOLVEK_UIM_CLIENT_H
#define TOLVEK_UIM_CLIENT_H

#include <stdint.h>

#include <atomic>

#include "qmi_client.h"

/* Client handle, null while not connected. */
extern std::atomic<qmi_client_type> uim_qmi_client;
/* Set by the error callback when the service reports a subsystem restart;
 * cleared by the next successful connect. */
extern std::atomic<uint8_t> SSR_Detected;
/* Failed requests since the last successful connect. */
extern std::atomic<uint32_t> failed_cnt;

/* Time-outs: connecting and one synchronous request. */
#define TOLVEK_UIM_CONNECT_TIMEOUT_MS 4000
#define TOLVEK_UIM_SYNC_TIMEOUT_MS 3000
/* Failed requests after which the handle is dropped. */
#define TOLVEK_UIM_MAX_FAILED 3
/* The indication the client handles. */
#define TOLVEK_UIM_HANDLED_IND_ID 97
#define TOLVEK_UIM_EID_LEN 16
/* No client could be made, or no memory for a buffer. */
#define TOLVEK_UIM_ERR_NO_CLIENT (-1)

/* Time-out of one synchronous request.  Tests shorten it. */
extern unsigned int g_tolvek_uim_sync_timeout_ms;

/* A power request: up (non-zero) or down (0), the slot (1-based), and
 * whether the modem ignores the hot-swap switch (non-zero = yes). */
typedef struct {
    int32_t power_up;
    int32_t slot;
    int32_t ignore_hotswap;
} tolvek_uim_power_params;

/* Connects; true when connected. */
bool init_uim_qmi_client();
/* Drops the handle. */
void uim_qmi_client_recovery();
/* The client library's error callback. */
void error_cb(qmi_client_type handle, qmi_client_error_type error, void *data);
/* The indication callback. */
void tolvek_uim_qmi_client_unsol_ind_cb(qmi_client_type handle, unsigned int msg_id, void *ind_buf,
                                        unsigned int ind_len, void *data);

/* Powers a slot down or up.  Returns the send result (0: sent and
 * answered; the modem's own result is not judged here), or -1 when there
 * is no client or no memory. */
int tolvek_uim_request_uicc_power_ex(const tolvek_uim_power_params *params);

/* Reads the EID of the slot held in the byte at `slot`.  The 16 EID bytes
 * are written to `output` only when the modem answered with success and a
 * valid EID; callers test the bytes themselves.  Returns the send result,
 * or -1 when there is no client or no memory. */
int tolvek_uim_request_eid(const uint8_t *slot, uint8_t *output);

/* Opens a logical channel to application `aid` on `slot`.  On success
 * `*channel` is the channel.  `*sw` gets the card's status words when the
 * modem reported them (else 0).  Returns 0, a negative send result, -1, or
 * the modem's QMI error number (positive) when it refused. */
int tolvek_uim_open_logical_channel(uint8_t slot, const uint8_t *aid, uint32_t aid_len, uint8_t *channel,
                                    uint16_t *sw);
/* Sends one APDU on `channel`; `rsp` (capacity `*rsp_len`) receives the
 * response data followed by the two status words.  Results as above; a
 * response longer than the capacity is -1. */
int tolvek_uim_send_apdu(uint8_t slot, uint8_t channel, const uint8_t *apdu, uint32_t apdu_len, uint8_t *rsp,
                         uint32_t *rsp_len);
/* Closes a logical channel.  Results as above. */
int tolvek_uim_close_logical_channel(uint8_t slot, uint8_t channel);

#endif
