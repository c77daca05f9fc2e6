/* OS parameters of the QMI client library: a signal built on a mutex and a
 * monotonic-clock condition variable. */
#ifndef RLK_PLATFORM_QMI_CCI_TARGET_EXT_H
#define RLK_PLATFORM_QMI_CCI_TARGET_EXT_H

#include <pthread.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
    uint32_t sig_set;    /* 1 once signalled, until cleared */
    uint32_t timed_out;  /* set by the wait routine when it timed out */
    uint32_t clock;      /* clock of the condition variable */
    pthread_cond_t cond;
    pthread_condattr_t attr;
    pthread_mutex_t mutex;
    uint32_t inited;     /* host library: cond/mutex have been initialised */
} qmi_cci_os_signal_type;

typedef qmi_cci_os_signal_type qmi_client_os_params;

#define QMI_CCI_OS_SIGNAL qmi_cci_os_signal_type

void qmi_cci_os_signal_init(qmi_cci_os_signal_type *ptr);
void qmi_cci_os_signal_deinit(qmi_cci_os_signal_type *ptr);
/* Waits until the signal is set; timeout_ms 0 waits without limit.  Clears
 * `timed_out` first and sets it when the time ran out; never clears
 * `sig_set`. */
void qmi_cci_os_signal_wait(qmi_cci_os_signal_type *ptr, unsigned int timeout_ms);
void qmi_cci_os_signal_set(qmi_cci_os_signal_type *ptr);

#define QMI_CCI_OS_SIGNAL_INIT(ptr, os_params) qmi_cci_os_signal_init(ptr)
#define QMI_CCI_OS_SIGNAL_DEINIT(ptr) qmi_cci_os_signal_deinit(ptr)
#define QMI_CCI_OS_SIGNAL_CLEAR(ptr) ((ptr)->sig_set = 0)
#define QMI_CCI_OS_SIGNAL_WAIT(ptr, timeout_ms) qmi_cci_os_signal_wait(ptr, timeout_ms)
#define QMI_CCI_OS_SIGNAL_TIMED_OUT(ptr) ((ptr)->timed_out)
#define QMI_CCI_OS_SIGNAL_SET(ptr) qmi_cci_os_signal_set(ptr)

#ifdef __cplusplus
}
#endif
#endif
