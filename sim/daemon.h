/* rlk-modemd's core: connections, the service registry with name service,
 * QMI request dispatch through each service's handler table, test faults,
 * the request journal and the control interface. */
#ifndef MODEMD_DAEMON_H
#define MODEMD_DAEMON_H

#include <stdint.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "daemon_log.h"
#include "event_loop.h"
#include "modemd_proto.h"
#include "qmi_idl_lib.h"
#include "state_store.h"

namespace modemd {

class daemon;
class at_channel;
class qmux_device;
struct sim_service;

/* Bytes and packets a connection may have waiting for its client to read
 * (beyond what the socket holds); past either, the client is disconnected. */
constexpr size_t k_out_queue_max_bytes = 2u << 20;
constexpr size_t k_out_queue_max_packets = 4096;
/* Time a new connection has to send its hello. */
constexpr uint32_t k_default_hello_timeout_ms = 3000;

/* One accepted connection. */
struct connection {
    uint64_t id = 0;
    int fd = -1;
    modemd_conn_kind kind = MODEMD_CONN_CONTROL;
    bool hello_done = false;
    uint32_t service = 0;          /* LOOKUP: service followed (0 = all); CLIENT: attached service */
    sim_service *attached = nullptr; /* CLIENT */
    uint16_t ind_txn = 1;          /* CLIENT: counter of indications */

    /* Queues one packet for the client without ever waiting for it; false
     * when the connection is closing (its client left or stopped reading). */
    bool send(const void *data, size_t len) const;

    /* Pseudo connections (clients of another transport, the QMUX device):
     * where their packets go instead of a socket. */
    std::function<bool(const void *, size_t)> sink;

    /* Kept by the daemon (sim/daemon_io.cpp). */
    daemon *owner = nullptr;
    std::deque<std::vector<uint8_t>> out; /* packets the socket did not take yet */
    size_t out_bytes = 0;
    bool closing = false;
    event_loop::timer_id hello_timer = 0;
    std::string request; /* CONTROL: pieces of a request received so far */
    bool request_too_large = false;
};

/* One QMI request being handled. */
struct qmi_call {
    daemon &d;
    sim_service &svc;
    connection &client;
    uint16_t msg_id;
    uint16_t txn;
};

/* Fills the zeroed response structure of `call` from the decoded request. */
typedef void (*qmi_msg_handler)(qmi_call &call, const void *req, void *resp);

struct qmi_handler_entry {
    uint16_t msg_id;
    qmi_msg_handler fn;
};

/* A service of the simulated modem: its service object, its handler table
 * and how to mark a response as failed when a test asks for an error. */
struct sim_service_def {
    const char *name; /* short name used by the control interface */
    qmi_idl_service_object_type (*object)();
    uint32_t instance;
    const qmi_handler_entry *handlers;
    size_t n_handlers;
    /* Writes error `code` into a zeroed response of this service.  Null for
     * services whose responses start with the standard result TLV. */
    void (*fill_error)(void *resp, int code);
    /* "<name> ..." control requests of this service (args[0] is the
     * name) and their help lines; null when the service has none. */
    std::string (*control)(daemon &d, const std::vector<std::string> &args) = nullptr;
    const char *control_help = nullptr;
};

struct sim_service {
    const sim_service_def *def = nullptr;
    qmi_idl_service_object_type obj = nullptr;
    bool up = true;
    uint32_t port = 0;
    event_loop::timer_id up_timer = 0;
};

/* The diag channel of the simulator (sim/diag_endpoint.cpp). */
class diag_endpoint {
public:
    virtual ~diag_endpoint() = default;
    virtual void on_open(connection &c) = 0;
    /* One packet of a DIAG connection: diag_envelope + HDLC frame(s). */
    virtual void on_packet(connection &c, const uint8_t *data, size_t len) = 0;
    virtual void on_close(connection &c) = 0;
    /* "diag ..." control requests (args[0] == "diag"); false when unknown. */
    virtual bool control(const std::vector<std::string> &args, std::string *answer) = 0;
    /* Also serves the channel on a diag port linked at `link` (sim/diag_port.h). */
    virtual bool open_port(const std::string &link, std::string *error) = 0;
};
std::unique_ptr<diag_endpoint> make_diag_endpoint(daemon &d);

/* The services the simulator serves (sim/services/service_table.cpp). */
extern const sim_service_def *const g_sim_services[];
extern const size_t g_sim_service_count;

struct daemon_options {
    std::string socket_path;
    std::string state_dir;
    std::string log_path;   /* empty: standard error */
    uint32_t idle_exit_s = 0; /* 0: never */
    uint32_t hello_timeout_ms = k_default_hello_timeout_ms;
    uint64_t log_max_bytes = k_log_default_max_bytes;
    std::string qmux_link; /* non-empty: also serve a QMUX device, linked here */
    std::string diag_port_link; /* non-empty: also serve a diag port, linked here */
};

class daemon {
public:
    explicit daemon(const daemon_options &opts);
    ~daemon();

    /* Locks the state directory, opens the state and listens.  On failure
     * `error` says why. */
    bool start(std::string *error);
    void run() { loop_.run(); }
    void stop() { loop_.stop(); }

    event_loop &loop() { return loop_; }
    state_store &store() { return store_; }
    void log(const char *fmt, ...) __attribute__((format(printf, 2, 3)));

    /* Service registry. */
    sim_service *find_service(const std::string &name_or_id);
    void service_down(sim_service &s);
    void service_up(sim_service &s);

    /* Sends an indication (encoded from `ind` with the service's table) to
     * every client of `s`, or to `only` when given. */
    bool send_indication(sim_service &s, uint16_t msg_id, const void *ind, connection *only = nullptr);
    bool send_indication_raw(sim_service &s, uint16_t msg_id, const std::vector<uint8_t> &tlvs,
                             connection *only = nullptr);

    /* Counters any part of the simulator may keep (ok/fail counts of the
     * statistics service, ...); settable through the control interface. */
    std::map<std::string, int64_t> &counters() { return counters_; }

    /* Handles one control request; used by the CONTROL connections. */
    std::string control(const std::string &request);

    /* The services, in the order they are published. */
    const std::vector<std::unique_ptr<sim_service>> &services() const { return services_; }

    /* Pseudo connections: a QMI client of service `s` whose packets (QMI
     * messages as the socket carries them) go to `sink`.  Requests enter
     * through pseudo_request and take the socket clients' path; indications
     * reach it like any client of the service.  Returns its connection id. */
    uint64_t open_pseudo_client(sim_service &s, std::function<bool(const void *, size_t)> sink);
    void pseudo_request(uint64_t conn_id, const uint8_t *data, size_t len);
    void close_pseudo_client(uint64_t conn_id) { close_connection(conn_id); }

    /* The open connection `conn_id`; null once it closed. */
    connection *find_connection(uint64_t conn_id);

    /* Calls `fn` with the id of every connection that closes from now on;
     * a second registration under the same key replaces the first. */
    void on_connection_closed(const std::string &key, std::function<void(uint64_t conn_id)> fn);

private:
    friend struct connection;
    struct fault {
        uint32_t service;
        uint16_t msg_id;
        enum kind_t { DELAY, DROP, RESPOND, ERROR } kind;
        uint32_t ms;
        int code;
        std::vector<uint8_t> tlvs;
        int remaining; /* -1: until cleared */
    };
    struct journal_entry {
        uint32_t service;
        uint16_t msg_id;
        uint16_t txn;
        std::vector<uint8_t> bytes;
    };

    /* Connection I/O (sim/daemon_io.cpp). */
    bool open_listener(std::string *error);
    void on_accept();
    bool accept_one();
    void refuse_connection(int fd, const char *why);
    void on_conn_event(uint64_t conn_id, uint32_t events);
    void on_readable(uint64_t conn_id);
    void on_control_packet(connection &c, const uint8_t *data, size_t len);
    /* Sends or queues one packet; `bounded`: disconnects a client whose
     * queue passes k_out_queue_max_bytes or k_out_queue_max_packets. */
    bool queue_packet(uint64_t conn_id, const void *data, size_t len, bool bounded = true);
    void queue_answer(connection &c, const std::string &answer);
    void flush_output(connection &c);
    void close_later(connection &c, const char *why);
    void close_connection(uint64_t conn_id);
    void on_log_outcome(daemon_log::outcome o);
    void on_hello(connection &c, const uint8_t *data, size_t len);
    void on_qmi_request(connection &c, const uint8_t *data, size_t len);
    void send_lookup_list(connection &c);
    void announce(const sim_service &s, uint32_t cmd);
    bool build_response(qmi_call &call, const std::vector<uint8_t> &req_tlvs, std::vector<uint8_t> *out);
    fault *match_fault(uint32_t service, uint16_t msg_id);
    void deliver_response(uint64_t conn_id, std::vector<uint8_t> pkt, uint32_t delay_ms);
    void update_idle_timer();
    std::string control_faults(const std::vector<std::string> &args);
    std::string control_state(const std::vector<std::string> &args);
    std::string control_services(const std::vector<std::string> &args);

    daemon_options opts_;
    event_loop loop_;
    state_store store_;
    int listen_fd_ = -1;
    int lock_fd_ = -1;
    int signal_fd_ = -1;
    daemon_log log_;
    event_loop::timer_id log_summary_timer_ = 0;
    int reserve_fd_ = -1; /* closed to accept and drop a client when out of descriptors */
    uint64_t fd_limit_ = 0;
    uint64_t next_conn_id_ = 1;
    uint32_t next_port_ = 1;
    std::map<uint64_t, std::unique_ptr<connection>> conns_;
    std::vector<std::unique_ptr<sim_service>> services_;
    std::vector<fault> faults_;
    std::deque<journal_entry> journal_;
    std::map<std::string, int64_t> counters_;
    std::unique_ptr<diag_endpoint> diag_;
    std::unique_ptr<at_channel> at_; /* sim/at_channel.h */
    std::unique_ptr<qmux_device> qmux_; /* sim/qmux_device.h */
    event_loop::timer_id idle_timer_ = 0;
    std::map<std::string, std::function<void(uint64_t)>> close_listeners_;
};

/* Parses "0x1f" / "31" (false on junk). */
bool parse_number(const std::string &text, int64_t *out);
/* Parses a hex byte string ("01 0a ff" or "010aff"). */
bool parse_hex(const std::string &text, std::vector<uint8_t> *out);
std::string to_hex(const uint8_t *data, size_t len);

}  // namespace modemd

#endif
