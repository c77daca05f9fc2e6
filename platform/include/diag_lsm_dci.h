/* Diag consumer interface (DCI), as the tool calls it. */
#ifndef RLK_PLATFORM_DIAG_LSM_DCI_H
#define RLK_PLATFORM_DIAG_LSM_DCI_H

#include "diag_lsm.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16 diag_dci_peripherals;

#define DIAG_PROC_MSM 0
#define DIAG_PROC_MDM 1

enum {
    DIAG_DCI_NO_ERROR = 1001,
    DIAG_DCI_NO_REG = 1002,
    DIAG_DCI_NO_MEM = 1003,
    DIAG_DCI_NOT_SUPPORTED = 1004,
    DIAG_DCI_HUGE_PACKET = 1005,
    DIAG_DCI_SEND_DATA_FAIL = 1006,
    DIAG_DCI_ERR_DEREG = 1007,
    DIAG_DCI_PARAM_FAIL = 1008,
    DIAG_DCI_DUP_CLIENT = 1009,
};

#define DIAG_INVALID_SIGNAL 0
#define DIAG_STATUS_OPEN 0x00010000
#define DIAG_STATUS_CLOSED 0x00020000
#define DCI_IN_BUF_SIZE 16384

/* Record types inside the DCI data stream. */
#define DCI_PKT_RSP_TYPE 0
#define DCI_LOG_TYPE (-1)
#define DCI_EVENT_TYPE (-2)
#define DCI_EXT_HDR_TYPE (-3)

int diag_register_dci_client(int *client_id, diag_dci_peripherals *list, int proc, void *os_params);
int diag_get_dci_support_list_proc(int proc, diag_dci_peripherals *list);
int diag_register_dci_signal_data(int client_id, int signal_type);
int diag_deregister_dci_signal_data(int client_id);
int diag_register_dci_stream_proc(int client_id, void (*func_ptr_logs)(unsigned char *ptr, int len),
                                  void (*func_ptr_events)(unsigned char *ptr, int len));
int diag_log_stream_config(int client_id, int set_mask, uint16 log_codes_array[], int num_codes);
int diag_event_stream_config(int client_id, int set_mask, int event_id_array[], int num_id);
int diag_send_dci_async_req(int client_id, unsigned char buf[], int bytes, unsigned char *rsp_ptr, int rsp_len,
                            void (*func_ptr)(unsigned char *ptr, int len, void *data_ptr), void *data_ptr);
int diag_release_dci_client(int *client_id);

#ifdef __cplusplus
}
#endif
#endif
