/* The plumbing of one rlk-mbn run: SIGINT and SIGTERM taken by a thread
 * of their own (sigwait), which wakes every PDC waiter so the run ends and
 * releases its client; the timer thread behind the next-page callback of
 * the list; opening the PDC client within the run's deadline, on a thread
 * of its own so that neither a signal nor the deadline waits for an
 * attempt blocked in the QMI library. */
#ifndef RLK_MBN_SESSION_H
#define RLK_MBN_SESSION_H

#include <chrono>
#include <string>

/* Blocks SIGINT and SIGTERM in this thread (and every thread started
 * after) and starts the thread that waits for them.  Call first. */
void mbn_session_start();
/* Ends the run with `exit_code`: flushes the output and ends the signal
 * thread, then returns `exit_code`.  While an abandoned attempt to open
 * the client is still inside the QMI library the process ends here
 * (_exit), as its objects must not be destroyed under that thread. */
int mbn_session_end(int exit_code);
/* The signal that asked the run to stop, 0 when none did. */
int mbn_session_signal();

/* RLK_QMI_DEVICE, when set, must name a device this user can open: false
 * with the path and the system's reason in `error` otherwise. */
bool mbn_check_device(std::string *error);

enum mbn_open_status {
    MBN_OPEN_OK,
    MBN_OPEN_TIMEOUT, /* no client by the deadline */
    MBN_OPEN_SIGNAL,  /* a signal came first (a client opened meanwhile is installed, for release) */
};
/* Opens the PDC client, trying until `deadline`, and makes the deadline
 * that of every request (pdc_set_deadline). */
mbn_open_status mbn_open_pdc(std::chrono::steady_clock::time_point deadline);
/* Stops the timer thread and releases the PDC client. */
void mbn_close_pdc();

/* Timer thread of tolvek_qcril_setup_timed_callback: stops it, dropping
 * what it has not run yet. */
void mbn_timer_stop();

#endif
