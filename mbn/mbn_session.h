/* The plumbing of one rlk-mbn run: SIGINT and SIGTERM taken by a thread
 * of their own (sigwait), which wakes every PDC waiter so the run ends and
 * releases its client; the timer thread behind the next-page callback of
 * the list; opening the PDC client with waits a signal cuts short. */
#ifndef RLK_MBN_SESSION_H
#define RLK_MBN_SESSION_H

/* Blocks SIGINT and SIGTERM in this thread (and every thread started
 * after) and starts the thread that waits for them.  Call first. */
void mbn_session_start();
/* Ends the signal thread (after it finished with a signal, if one came). */
void mbn_session_end();
/* The signal that asked the run to stop, 0 when none did. */
int mbn_session_signal();

/* Opens the PDC client (pdc_init); the waits between attempts end early
 * at a signal or once `timeout_s` have passed.  True when it is open. */
bool mbn_open_pdc(unsigned int timeout_s);
/* Stops the timer thread and releases the PDC client. */
void mbn_close_pdc();

/* Timer thread of tolvek_qcril_setup_timed_callback: stops it, dropping
 * what it has not run yet. */
void mbn_timer_stop();

#endif
