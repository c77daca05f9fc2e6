/* How a process lets go of the QMUX client ids it holds on its way out.
 *
 * The ids are kept in a table that needs no lock (and in the record of
 * qmux_id_record.h).  At exit, the releases of the ids still held are
 * written to the device.  SIGINT and SIGTERM, while their default action
 * is in place, do not end the process in their handler: the handler wakes
 * the device thread, which waits for an allocation in flight to be
 * answered (its id is then held and released too), writes the releases,
 * and ends the process by the same signal.  A second signal ends it at
 * once, after writing the releases of what is held. */
#ifndef RLK_HOST_QMUX_EXIT_H
#define RLK_HOST_QMUX_EXIT_H

#include "qmux_id_record.h"

namespace rlk_host {

/* This process holds `id` from now on, or no longer. */
void qmux_hold(qmux_owned_id id);
void qmux_unhold(qmux_owned_id id);

/* Installs, once, the exit hook and the signal handlers.  Releases go to
 * `device_fd`; a byte written to `wake_fd` wakes the device thread. */
void qmux_exit_hooks_install(int device_fd, int wake_fd);

/* The device thread ends (the device is gone): nothing is left to
 * release, and a signal is no longer passed to it.  Ends the process when
 * a signal asked for that meanwhile. */
void qmux_exit_device_gone();

/* Allocations in flight (requests sent, not yet answered or given up). */
void qmux_alloc_started();
void qmux_alloc_ended();
int qmux_allocs_in_flight();

/* The signal the device thread is to end the process with, or 0. */
int qmux_pending_signal();

/* Writes a release of every id still held and takes this process's ids
 * out of the record; then, when `sig` is not 0, ends the process with it. */
void qmux_release_held_and_end(int sig);

}  // namespace rlk_host

#endif
