/* The QMI client interface over a QMUX device (RLK_QMI_DEVICE, for example
 * a USB modem's /dev/cdc-wdm0, or rlk-modemd's --qmux link).
 *
 * One process-wide connection to the device: services are looked up in
 * the control service's version info, and each client handle gets a client
 * id of its own, allocated when the handle is made and released when it is
 * released.  A handle sees its client id as a packet pair carrying QMI
 * messages exactly as the simulator's socket does, so the rest of the
 * client library does not change.  Client ids still held when the process
 * exits, or when SIGINT or SIGTERM ends it (while their default action is
 * in place), are released on the way out (qmux_exit.h); those of a process
 * that could not release them are released by the next one
 * (qmux_id_record.h). */
#ifndef RLK_HOST_QMUX_TRANSPORT_H
#define RLK_HOST_QMUX_TRANSPORT_H

#include <stdint.h>

namespace rlk_host {

/* How long a control request (lookup, allocate, release) waits at most. */
constexpr int k_qmux_ctl_timeout_ms = 2000;
/* The least a bounded call gives a device that has not yet left a request
 * unanswered: room for its exchanges on a slow or loaded link, even when
 * the caller's time-out is a few milliseconds. */
constexpr int k_qmux_min_call_ms = 1000;

/* Bounds the control requests this thread makes while it lives by the
 * caller's time-out (milliseconds from now; 0: no bound but the requests'
 * own): all of them end by then, or by k_qmux_min_call_ms while the device
 * has answered every request so far.  Scopes nest; the inner one rules. */
class qmux_call_bound {
public:
    explicit qmux_call_bound(uint32_t timeout_ms);
    ~qmux_call_bound();
    qmux_call_bound(const qmux_call_bound &) = delete;
    qmux_call_bound &operator=(const qmux_call_bound &) = delete;

private:
    const void *outer_;
};

/* True when RLK_QMI_DEVICE names a device. */
bool qmux_mode();

/* Whether `service` goes over the device: every service when
 * RLK_QMI_DEVICE is set, except that a service the service byte cannot
 * name (the 16-bit vendor services) is still looked up on the simulator
 * when RLK_MODEMD_SOCKET names one explicitly (the simulator then stands
 * in for the modem's other channel).  Without RLK_MODEMD_SOCKET such a
 * service is looked up on the device, which never has it. */
bool qmux_carries(uint32_t service);

/* True when the device cannot serve: it did not open, went away, or sends
 * no QMUX frames.  `*error` gets the reason as an errno value. */
bool qmux_unusable(int *error);

/* Whether the device has `service`, and its major version; false when it
 * has not (services above the service byte never are) or the device
 * cannot be reached. */
bool qmux_lookup(uint32_t service, uint32_t *major);

/* Allocates a client id of `service`; returns the handle's end of its
 * packet pair, or -1. */
int qmux_attach(uint32_t service);

/* Releases the client id behind `fd` (from qmux_attach) and waits, at most
 * k_qmux_ctl_timeout_ms, for the device to confirm.  The caller still
 * closes `fd`. */
void qmux_detach(int fd);

}  // namespace rlk_host

#endif
