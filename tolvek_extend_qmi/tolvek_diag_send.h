/* The diag command channel of the tool: the session with the platform diag
 * library, the command-response callback registration over the local and
 * the remote processors, the DCI client registration, and one raw diag
 * command sent in one of four modes:
 *
 *   mode 0 (callback), type 0: the caller blocks until the reply or the
 *                              time-out; the reply lands in its buffer;
 *   mode 1 (DCI),      type 0: the same over a DCI client;
 *   mode 0 / 1,        type 1: a detached thread sends, waits a fixed time
 *                              and prints whatever arrives.
 *
 * Every line is a paired system-log and console line (tolvek_log.h).  The
 * threads the channel starts are detached and named "TOLV DIAG". */
#ifndef TOLVEK_DIAG_SEND_H
#define TOLVEK_DIAG_SEND_H

#include <stdint.h>

/* Channel (processor) the tool addresses: the local modem processor. */
#define TOLVEK_DIAG_CHANNEL_MSM 0

/* Success code of every DCI call. */
#define TOLVEK_DIAG_DCI_OK 1001

/* Command length limits, the largest response the checks accept and the
 * reply buffer callers pass. */
#define TOLVEK_DIAG_CMD_MAX_LEN 4096
#define TOLVEK_DIAG_RSP_MAX_LEN 10240

/* A DCI response arrives in pieces of this size; a piece of exactly this
 * size means more pieces follow. */
#define TOLVEK_DIAG_DCI_PIECE_LEN 4096

/* Wait of the with-result modes: 100 ms steps, 30 by default, at most
 * 60000 ms in callback mode. */
#define TOLVEK_DIAG_WAIT_TICK_US 100000
#define TOLVEK_DIAG_WAIT_TICK_MS 100
#define TOLVEK_DIAG_DEFAULT_WAIT_STEPS 30
#define TOLVEK_DIAG_DEFAULT_TIMEOUT_MS 3000
#define TOLVEK_DIAG_MAX_TIMEOUT_MS 60000

/* Modes and types as the command line gives them. */
#define TOLVEK_DIAG_MODE_CALLBACK 0
#define TOLVEK_DIAG_MODE_DCI 1
#define TOLVEK_DIAG_TYPE_WITH_RESULT 0
#define TOLVEK_DIAG_TYPE_WITHOUT_RESULT 1

/* Name of every thread of the channel. */
#define TOLVEK_DIAG_THREAD_NAME "TOLV DIAG"

#ifdef __cplusplus
extern "C" {
#endif

/* The collected response: heap bytes (null when empty) and their count. */
typedef struct {
    uint8_t *data;
    int32_t length;
} tolvek_diag_rsp_buf_type;

/* 0: no diag session; 1 or more: open, counting the opens that found it
 * open. */
extern int32_t g_diag_init_status;
/* The channel the tool addresses (always TOLVEK_DIAG_CHANNEL_MSM). */
extern int32_t g_diag_channel;
/* The response the callbacks collect (guarded by the response mutex). */
extern tolvek_diag_rsp_buf_type g_qcril_diag_rsp_buf;

/* ---- session and registration ------------------------------------------ */

/* Opens the diag session (creating the response semaphore) or counts one
 * more user of an open one; "LSM init failed" when the library refuses. */
void tolvek_diag_init_with_result(void);
/* Closes the session whatever the count and destroys the semaphore. */
void tolvek_diag_deinit_with_result(void);
/* Registers `callback` for the local processor and for every remote
 * processor the library reports. */
void tolvek_diag_register_callback(int (*callback)(unsigned char *ptr, int len, void *context_data));
/* " APSS", " MPSS", " LPASS", " WCNSS", " SENSORS" or " WDSP" for the lowest
 * of bits 0 to 5 set in `mask`; "" when none is.  The text lives in one
 * process-wide buffer, rewritten by every call. */
char *tolvek_print_diag_mask_name(uint16_t mask);
/* "MSM", "MDM", "MDM_2" or "Unknown". */
const char *tolvek_diag_channel_name(int32_t channel);

/* ---- checks ---------------------------------------------------------------- */

/* 0 when the command may be sent (1..4096 bytes), 1 otherwise. */
int tolvek_diag_comand_input_check(unsigned char *data, int data_len);
/* 0 when the reply buffer and its length are usable, 1 otherwise. */
int tolvek_diag_comand_output_check(unsigned char *reply_buf, int *p_reply_len);
/* 0 when a response may be stored (1..10240 bytes), 1 otherwise;
 * `context` points to the signed 32-bit processor id, or is null. */
int tolvek_diag_cmd_response_check(unsigned char *ptr, int len, void *context);

/* ---- response callbacks ------------------------------------------------- */

int tolvek_diag_cmd_response_by_callback(unsigned char *ptr, int len, void *context_data);
void tolvek_diag_cmd_response_by_dci(unsigned char *ptr, int len, void *context_data);
void tolvek_diag_cmd_response_by_dci_log_stream(unsigned char *ptr, int len);
void tolvek_diag_cmd_response_by_dci_event_stream(unsigned char *ptr, int len);
int tolvek_diag_cmd_response_by_callback_no_handle(unsigned char *ptr, int len, void *context_data);
void tolvek_diag_cmd_response_by_dci_no_handle(unsigned char *ptr, int len, void *context_data);
void tolvek_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char *ptr, int len);
void tolvek_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char *ptr, int len);

/* ---- sending ------------------------------------------------------------ */

/* Sends `data` and waits for its reply, which is copied into `reply_buf`
 * (at most *p_reply_len bytes; *p_reply_len becomes the count copied).
 * 0 on a reply, 1 on a refused argument, a failed send or a time-out. */
int tolvek_diag_cmd_send_with_result_by_callback_mode(unsigned char *data, int data_len, unsigned char *reply_buf,
                                                      int *p_reply_len, int time_out);
int tolvek_diag_cmd_send_with_result_by_dci_mode(unsigned char *data, int data_len, unsigned char *reply_buf,
                                                 int *p_reply_len, int time_out);

/* Starts the wait thread of a with-result mode; 0 when it runs. */
int tolvek_diag_cmd_send_with_result_wait_create_thread(void);
void *tolvek_diag_cmd_send_with_result_wait_thread_proc(void *arg);

/* Starts the sender thread of a without-result mode (0 callback, any other
 * value DCI) on a copy of the command; 0 when it was started, 1 otherwise. */
int tolvek_diag_cmd_send_without_result_start_thread(unsigned char *data, int data_len, int diag_work_mode);
void *tolvek_diag_cmd_send_without_result_by_callback_mode_thread_proc(void *param);
void *tolvek_diag_cmd_send_without_result_by_dci_mode_thread_proc(void *param);

/* Waits at most `timeout_ms` until no sender thread is running, so that a
 * process does not end in the middle of a send; 0 when none is left. */
int tolvek_diag_cmd_send_without_result_wait_done(int timeout_ms);

#ifdef __cplusplus
}
#endif
#endif
