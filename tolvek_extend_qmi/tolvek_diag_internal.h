/* State shared by the files of the diag channel: the response semaphore,
 * the response mutex and the wait state of the with-result modes, and the
 * DCI registration sequence.  Not for callers outside the channel (tests
 * read the wait state through it). */
#ifndef TOLVEK_DIAG_INTERNAL_H
#define TOLVEK_DIAG_INTERNAL_H

#include <pthread.h>
#include <semaphore.h>
#include <stdint.h>

#include "tolvek_diag_send.h"

/* Response semaphore: created with the session, posted by the response
 * callbacks and the wait thread, waited on by the with-result modes. */
extern sem_t g_diag_rsp_sem;

/* The response mutex guards g_qcril_diag_rsp_buf, the scratch copy of the
 * DCI append and the wait state below. */
extern pthread_mutex_t g_diag_rsp_mutex;

/* Wait state of the with-result modes. */
typedef struct {
    uint8_t waiting;    /* 1 while a with-result mode waits */
    int32_t time_count; /* wait limit in 100 ms steps */
    uint8_t timed_out;  /* set by the wait thread when the limit passed */
    uint64_t wait_id;   /* counts the waits, so that a wait thread of an
                           earlier command never wakes a later one */
} tolvek_diag_wait_state;

extern tolvek_diag_wait_state g_diag_wait;

/* Microseconds of one wait-thread tick (TOLVEK_DIAG_WAIT_TICK_US; tests may
 * shorten it). */
extern uint32_t g_diag_wait_tick_us;

/* Ends the current wait (under the response mutex, which the caller
 * holds): clears the wait flag, restores the default limit and moves the
 * wait id on, and wakes a ticking wait thread so that it ends at once. */
void tolvek_diag_wait_end_locked(void);

/* Waits at most `timeout_ms` until no wait thread runs any more (under the
 * response mutex, which the caller holds); 0 when none does.  A caller
 * that returns only then never leaves a wait thread behind, even when the
 * process ends right after. */
int tolvek_diag_wait_threads_gone_locked(int timeout_ms);

/* How long a with-result mode waits for its wait thread to end. */
#define TOLVEK_DIAG_WAIT_THREAD_END_MS 1000

/* Drops the stored response (under the response mutex). */
void tolvek_diag_rsp_buf_clear(void);

/* One DCI client of one command. */
typedef struct {
    int client_id;        /* 0: none registered */
    unsigned char *rsp;   /* the 16384-byte DCI response buffer */
    const char *func;     /* the mode function whose lines the sequence prints */
} tolvek_diag_dci_session;

/* Callbacks of one DCI mode. */
typedef struct {
    void (*log_stream)(unsigned char *ptr, int len);
    void (*event_stream)(unsigned char *ptr, int len);
    void (*response)(unsigned char *ptr, int len, void *data_ptr);
} tolvek_diag_dci_callbacks;

/* Size of the DCI response buffer, the DCI client's channel signal and its
 * data signal offset from SIGRTMIN. */
#define TOLVEK_DIAG_DCI_RSP_BUF_LEN 16384
#define TOLVEK_DIAG_DCI_CHANNEL_SIGNAL 18
#define TOLVEK_DIAG_DCI_DATA_SIGNAL_OFFSET 30

/* Registers a DCI client on channel 0, opens its streams with `cbs` and
 * sends `data` asynchronously.  Returns TOLVEK_DIAG_DCI_OK when the
 * request went; anything else means the caller goes straight to
 * tolvek_diag_dci_release. */
int tolvek_diag_dci_register_and_send(unsigned char *data, int data_len, const tolvek_diag_dci_callbacks *cbs,
                                      tolvek_diag_dci_session *s);
/* Closes the diag session (the counted close of the with-result mode when
 * `counted_session`, else the library's own), releases the client and
 * frees the response buffer. */
void tolvek_diag_dci_release(tolvek_diag_dci_session *s, int counted_session);

/* Starts a detached "TOLV DIAG" thread; the pthread_create result. */
int tolvek_diag_start_detached(void *(*proc)(void *), void *arg);

#endif
