/* rlk-modemd's QMUX device: a pseudo-terminal in raw mode that speaks
 * QMUX as the character device of a USB modem does, so that standard QMI
 * tools (and rlk with RLK_QMI_DEVICE) reach the simulated services.
 *
 * The control service (0) answers Get Version Info (the services whose id
 * fits the service byte), Allocate and Release Client ID and Sync.  Every
 * other frame goes to the service's handlers through a pseudo connection
 * of the daemon, one per allocated (service, client id), so requests,
 * faults, the journal and indications behave as on the socket.
 *
 * Each service hands out at most k_qmux_clients_per_service client ids at
 * a time, as a modem's pool is finite; ids are given round-robin over
 * 1..254, so a released id is not handed out again at once.  A client that
 * never releases keeps its id until Sync, a restart of its service (the
 * modem then sends Revoke Client ID) or the simulator's exit.
 *
 * Frames that cannot be served are dropped and counted: a QMUX byte stream
 * that does not start a frame, a QMI message whose length disagrees with
 * its frame, a client id not allocated, an incomplete frame abandoned by
 * its writer (dropped when nothing follows it within
 * k_qmux_partial_frame_ms), and frames to a reader that does not read
 * (past k_qmux_out_max_bytes waiting). */
#ifndef MODEMD_QMUX_DEVICE_H
#define MODEMD_QMUX_DEVICE_H

#include <stdint.h>
#include <sys/epoll.h>

#include <map>
#include <string>
#include <vector>

#include "daemon.h"
#include "qmux.h"
#include "qmux_ctl_delay.h"

namespace modemd {

constexpr size_t k_qmux_clients_per_service = 32;
constexpr uint8_t k_qmux_first_client_id = 1;
constexpr uint8_t k_qmux_last_client_id = 254;
constexpr uint32_t k_qmux_partial_frame_ms = 1000;
constexpr size_t k_qmux_out_max_bytes = 1u << 20;

class qmux_device {
public:
    explicit qmux_device(daemon &d);
    ~qmux_device();
    qmux_device(const qmux_device &) = delete;
    qmux_device &operator=(const qmux_device &) = delete;

    /* Opens the pseudo-terminal and links `link` to its device. */
    bool open(const std::string &link, std::string *error);

    /* "qmux [clients|counters]" control requests (args[0] == "qmux"). */
    std::string control(const std::vector<std::string> &args);

private:
    struct counters {
        uint64_t frames_in = 0;
        uint64_t frames_out = 0;
        uint64_t skipped_bytes = 0;
        uint64_t dropped_malformed = 0;
        uint64_t dropped_no_client = 0;
        uint64_t dropped_partial = 0;
        uint64_t dropped_out = 0;
    };

    void on_event(uint32_t events);
    void serve_frames();
    void update_events();
    void on_frame(const qmux_frame &f);
    void on_ctl(const qmux_frame &f);
    std::vector<uint8_t> ctl_version_info();
    std::vector<uint8_t> ctl_allocate(const std::vector<uint8_t> &tlvs);
    std::vector<uint8_t> ctl_release(const std::vector<uint8_t> &tlvs);
    std::vector<uint8_t> ctl_sync();
    bool release(uint8_t service, uint8_t cid);
    void on_client_closed(uint64_t conn_id);
    sim_service *service_of(uint8_t service_byte);
    bool send_frame(uint8_t service, uint8_t cid, const uint8_t *qmi, size_t len);
    void flush();

    daemon &d_;
    int master_ = -1;
    int slave_ = -1; /* kept open so the master never sees a hang-up */
    std::string link_;
    qmux_reader reader_;
    uint64_t last_rx_ms_ = 0;
    std::vector<uint8_t> out_;
    size_t out_off_ = 0;
    bool want_write_ = false;
    uint32_t watched_ = EPOLLIN;            /* what the loop watches the device for */
    event_loop::timer_id backlog_timer_ = 0; /* frames read wait to be served */
    /* (service << 8 | client id) -> pseudo connection, and back. */
    std::map<uint16_t, uint64_t> clients_;
    std::map<uint64_t, uint16_t> by_conn_;
    std::map<uint8_t, uint8_t> next_cid_;
    counters n_;
    qmux_ctl_delay ctl_delay_;
};

}  // namespace modemd

#endif
