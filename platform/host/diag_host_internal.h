/* Internals of the host diag library (diag_lsm.h, diag_lsm_dci.h) over
 * rlk-modemd's DIAG connection (wire/diag_channel.h).
 *
 * One process-wide state, never destroyed (a reader thread may still run
 * while the process exits).  The link is one connection plus a detached
 * reader thread; every callback of the user runs on that thread, without
 * any lock of the library held, so that a callback may call the library.
 * Diag_LSM_DeInit waits for the reader to end unless it is called from a
 * callback; the socket is closed when the last user of the link lets go of
 * it, so no thread ever sends on a reused descriptor.
 *
 * The DCI client table outlives the link: a client registered before
 * Diag_LSM_DeInit can still be released afterwards (the tool closes the
 * session first), and DCI calls open the link themselves when no session is
 * open.  Pending DCI requests end with the link. */
#ifndef RLK_HOST_DIAG_HOST_INTERNAL_H
#define RLK_HOST_DIAG_HOST_INTERNAL_H

#include <stdint.h>

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"

namespace rlk_host {
namespace diag {

/* How long a session op may take before the library gives up. */
constexpr int k_session_timeout_ms = 3000;
/* Longest command the library sends (the size of the DCI buffer). */
constexpr int k_max_request = DCI_IN_BUF_SIZE;
/* Largest piece a DCI response callback gets at once. */
constexpr size_t k_dci_max_piece = 4096;
/* DCI requests a client may have waiting for their responses. */
constexpr size_t k_dci_max_pending = 256;
/* Processors a DCI client may be registered on. */
constexpr int k_dci_proc_count = 2;

struct link {
    int fd = -1;
    bool done = false; /* the reader thread has ended (guarded by state::mu) */
    std::thread::id reader;
    /* A serial diag port (RLK_DIAG_DEVICE) rather than the simulator's
     * socket: its reader is woken through `wake` (diag_host_serial.cpp). */
    bool serial = false;
    int wake[2] = {-1, -1};
    ~link();
};

struct callback_slot {
    diag_callback_fn fn = nullptr;
    void *ctx = nullptr;
};

typedef void (*dci_rsp_fn)(unsigned char *ptr, int len, void *data_ptr);
typedef void (*dci_stream_fn)(unsigned char *ptr, int len);

struct dci_request {
    unsigned char *rsp = nullptr;
    int rsp_len = 0;
    dci_rsp_fn fn = nullptr;
    void *data = nullptr;
};

struct dci_client {
    int id = 0;
    int proc = 0;
    uint16_t peripherals = 0;
    int os_signal = 0;   /* channel open/close signal: recorded, never raised */
    int data_signal = 0; /* raised on DCI data only when a handler is installed */
    dci_stream_fn log_fn = nullptr;
    dci_stream_fn event_fn = nullptr;
    std::map<uint32_t, dci_request> pending; /* by request tag */
};

struct state {
    std::mutex life_mu; /* serialises opening and closing the link */
    std::mutex mu;      /* everything below */
    std::condition_variable cv;
    std::shared_ptr<link> conn; /* null: no link */
    /* The link of a session that ended because the link was lost, until
     * Diag_LSM_DeInit has waited for its reader: after DeInit no callback
     * of that session runs any more. */
    std::shared_ptr<link> lost;

    /* Session op answers by op, one op in flight at a time (session_mu). */
    std::mutex session_mu;
    std::map<uint32_t, std::vector<uint8_t>> answers;

    int logging_mode = USB_MODE;
    uint16_t remote_mask = 0;
    callback_slot callbacks[NUM_PROC];

    std::map<int, dci_client> dci; /* by client id */
    int next_client_id = 1;
    uint32_t next_tag = 1;
    int delivering_client = 0; /* client whose callback runs now, 0: none */
    std::thread::id delivering_thread;
};

state &g();

/* Opens the link (connect, reader, remote-mask query); true when it is up. */
bool link_open();
/* Closes the link; false when there was none. */
bool link_close();
/* The current link, or null. */
std::shared_ptr<link> link_get();
/* True on the reader thread of the current link. */
bool on_reader_thread();
/* Sends one packet on the current link. */
bool link_send(uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *data, size_t len);
/* A session op and its answer; false when the link is down or the
 * simulator did not answer in time.  `data` gets what follows the status.
 * Called from a callback (on the reader thread, which alone could deliver
 * the answer) it only sends the op and returns false. */
bool session_request(uint32_t op, int32_t proc, uint32_t *status, std::vector<uint8_t> *data);

/* Hands one frame to whoever waits for it, as if it came in a packet
 * with this envelope (reader threads). */
void deliver_frame(uint32_t data_type, int32_t proc, uint32_t tag, const std::vector<uint8_t> &payload);
/* Ends the session carried by `l` (its link was lost). */
void link_lost(const std::shared_ptr<link> &l);

/* The serial diag port (diag_host_serial.cpp): true when RLK_DIAG_DEVICE
 * names one; opening it (locked, raw, its reader started) and sending on
 * it.  Session ops are answered by the library itself. */
bool serial_mode();
std::shared_ptr<link> serial_open();
bool serial_send(const std::shared_ptr<link> &l, uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *data,
                 size_t len);
/* Wakes the link's reader so that it ends. */
void link_interrupt(const link &l);

/* Called by the reader thread for DCI packets (diag_host_dci.cpp). */
void dci_on_response(int32_t proc, uint32_t tag, const std::vector<uint8_t> &payload);
void dci_on_record(int32_t proc, uint32_t tag, const std::vector<uint8_t> &record);
/* Sends the registration of every client in the table (after reconnecting). */
void dci_register_all();

}  // namespace diag
}  // namespace rlk_host

#endif
