/* Diag library (LSM) interface, as the tool calls it. */
#ifndef RLK_PLATFORM_DIAG_LSM_H
#define RLK_PLATFORM_DIAG_LSM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char boolean;
typedef unsigned char byte;
typedef unsigned short uint16;
typedef unsigned char uint8;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

/* Logging modes of diag_switch_logging(). */
#define USB_MODE 1
#define MEMORY_DEVICE_MODE 2
#define NO_LOGGING_MODE 3
#define UART_MODE 4
#define SOCKET_MODE 5
#define CALLBACK_MODE 6
#define PCIE_MODE 7

/* Processor ids. */
#define MSM 0
#define MDM 1
#define MDM_2 2
#define NUM_PROC 10

/* Remote-device mask bits of diag_has_remote_device(). */
#define DIAG_MDM_MASK 0x0002
#define DIAG_MDM2_MASK 0x0004

/* Peripheral bits. */
#define DIAG_CON_APSS 0x0001
#define DIAG_CON_MPSS 0x0002
#define DIAG_CON_LPASS 0x0004
#define DIAG_CON_WCNSS 0x0008
#define DIAG_CON_SENSORS 0x0010
#define DIAG_CON_WDSP 0x0020
#define DIAG_CON_CDSP 0x0040
#define DIAG_CON_NPU 0x0080

/* Data-type words of the diag device. */
#define MSG_MASKS_TYPE 0x00000001
#define LOG_MASKS_TYPE 0x00000002
#define EVENT_MASKS_TYPE 0x00000004
#define PKT_TYPE 0x00000008
#define DEINIT_TYPE 0x00000010
#define USER_SPACE_DATA_TYPE 0x00000020
#define DCI_DATA_TYPE 0x00000040
#define USER_SPACE_RAW_DATA_TYPE 0x00000080
#define DCI_LOG_MASKS_TYPE 0x00000100
#define DCI_EVENT_MASKS_TYPE 0x00000200
#define DCI_PKT_TYPE 0x00000400

typedef int (*diag_callback_fn)(unsigned char *ptr, int len, void *context_data);

boolean Diag_LSM_Init(byte *pIEnv);
boolean Diag_LSM_DeInit(void);
void diag_register_callback(int (*client_cb_func_ptr)(unsigned char *ptr, int len, void *context_data),
                            void *context_data);
void diag_register_remote_callback(int (*client_rmt_cb_func_ptr)(unsigned char *ptr, int len,
                                                                 void *context_data),
                                   int proc, void *context_data);
int diag_has_remote_device(uint16 *remote_mask);
void diag_switch_logging(int requested_mode, char *dir_location);
int diag_send_data(unsigned char *buf, int len);
/* Sends a raw (unframed) diag command to processor `proc` in callback mode;
 * 0 on success, -1 on a bad processor, length or buffer, or a lost link. */
int diag_callback_send_data(int proc, unsigned char *buf, int len);
int diag_callback_send_data_hdlc(int proc, unsigned char *buf, int len);

#ifdef __cplusplus
}
#endif
#endif
