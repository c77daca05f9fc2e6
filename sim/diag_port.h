/* rlk-modemd's diag port: the simulated modem's diag channel on a raw
 * pseudo-terminal, framed as a USB modem's diag serial port (HDLC frames,
 * no envelope, no DCI), so that diag clients nobody here wrote, rlk with
 * RLK_DIAG_DEVICE and rlk-replay read it as they read a modem.
 *
 * Commands are answered from the simulator's command table, with the test
 * faults of "diag reply/delay/drop/next-size" and the journal of "diag
 * last" (kind "port").  The port keeps its own log masks and event
 * reporting: once a LOG_CONFIG mask enables them it streams the log packets
 * of diag_log_stream.h (and event 1606 while event reporting is on) at
 * "diag rate" cycles a second, each cycle one packet per enabled code.
 *
 * The port's reader is whoever holds its device open; the port counts one
 * from its first bytes.  The simulator does not keep the device open
 * itself: when the last reader closes it (the device hangs up) the masks
 * and event reporting are reset, what was not yet written is discarded and
 * the device's buffers are flushed, so the next reader starts on a quiet
 * port.  Output is bounded: a reader that stops reading loses
 * stream packets (and, past k_diag_port_out_max, answers), never stalls
 * the simulator or its socket clients. */
#ifndef MODEMD_DIAG_PORT_H
#define MODEMD_DIAG_PORT_H

#include <stdint.h>

#include <string>
#include <vector>

#include "daemon.h"
#include "diag_commands.h"
#include "hdlc.h"

namespace modemd {

/* What the port needs from the diag endpoint: one command answered with
 * the endpoint's faults and journal; false when it is dropped. */
class diag_port_server {
public:
    virtual ~diag_port_server() = default;
    virtual bool serve_port_command(diag_modem_state &m, const std::vector<uint8_t> &cmd, std::vector<uint8_t> *rsp,
                                    uint32_t *delay_ms) = 0;
};

constexpr uint32_t k_diag_port_default_rate = 10;   /* stream cycles a second */
constexpr uint32_t k_diag_port_max_rate = 100000;
constexpr size_t k_diag_port_out_max = 1u << 20;     /* answers dropped past this */
constexpr size_t k_diag_port_stream_room = 64u << 10; /* stream cycles skipped past this */
constexpr uint32_t k_diag_port_tick_ms = 10;          /* stream tick */
constexpr uint32_t k_diag_port_events_every = 10;     /* an event packet every n cycles */

class diag_port {
public:
    diag_port(daemon &d, diag_port_server &server);
    ~diag_port();
    diag_port(const diag_port &) = delete;
    diag_port &operator=(const diag_port &) = delete;

    /* Opens the pseudo-terminal and links `link` to its device. */
    bool open(const std::string &link, std::string *error);

    /* "diag rate [n]" and "diag port" control requests. */
    std::string control(const std::vector<std::string> &args);

private:
    struct counters {
        uint64_t frames_in = 0, bad_frames = 0, answers = 0, log_packets = 0, event_packets = 0;
        uint64_t skipped_cycles = 0, dropped_out = 0, readers = 0;
    };

    void on_event(uint32_t events);
    void on_frame(hdlc_status status, const uint8_t *payload, size_t len);
    void reader_gone();
    void read_some();
    void send_payload(const std::vector<uint8_t> &payload, bool stream);
    void flush();
    void update_stream();
    void on_tick();
    void stream_cycle(uint64_t now_ms, uint64_t unix_ms);
    void flush_device_buffers();

    daemon &d_;
    diag_port_server &server_;
    int master_ = -1;
    std::string link_, pts_;
    bool reader_ = false; /* a reader holds the device open */
    uint64_t generation_ = 0; /* counts readers; a delayed answer keeps its reader's */
    hdlc_decoder decoder_;
    diag_modem_state state_;
    std::vector<uint8_t> out_;
    size_t out_off_ = 0;
    bool want_write_ = false;
    event_loop::timer_id timer_ = 0;
    bool ticking_ = false; /* in on_tick: the next tick keeps what is owed */
    uint32_t rate_ = k_diag_port_default_rate;
    uint64_t last_tick_ms_ = 0;
    uint64_t owed_milli_ = 0; /* cycles owed, in thousandths */
    uint64_t cycles_ = 0;
    counters n_;
};

}  // namespace modemd

#endif
