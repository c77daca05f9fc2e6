/* The simulator's diag channel: decodes the packets of DIAG connections
 * (wire/diag_channel.h says what each envelope means), answers commands
 * from the command table (diag_commands.h) and the session ops, and applies
 * the test faults set through "diag ..." control requests:
 *
 *   diag reply <code> <hex>   answer command <code> with these bytes
 *   diag reply-clear [code]   forget one or all of those replies
 *   diag delay <code> <ms>    answer <code> that much later (0: at once)
 *   diag drop <code>          never answer <code>; "diag undrop <code>"
 *   diag clear                forget all replies, delays and drops, and the
 *                             DCI piece size
 *   diag dci-piece <bytes>    cut DCI responses into pieces of this size
 *                             (default 4096)
 *   diag next-size <bytes>    make the next answer (to any command) that
 *                             long: the real answer, cut or followed by
 *                             filler bytes 0x00, 0x01, ... (0 cancels)
 *   diag remote-mask <mask>   remote processors present (bit n = proc n)
 *   diag dci-support <mask> [proc]  DCI peripheral list of proc (default 0)
 *   diag log <hex>            send a log record to every DCI client
 *   diag event <hex>          send an event record to every DCI client
 *   diag last [n]             the last n commands (default 16), oldest
 *                             first: "cmd|dci|port <proc> <hex>" per line
 *   diag status               remote mask, piece size, connections, clients
 *   diag rate [n]             stream cycles a second of the diag port
 *   diag port                 the diag port's state and counters
 *
 * Commands for a processor that is not present are recorded and dropped. */
#ifndef MODEMD_DIAG_ENDPOINT_H
#define MODEMD_DIAG_ENDPOINT_H

#include <deque>
#include <map>
#include <set>

#include "daemon.h"
#include "diag_commands.h"
#include "diag_port.h"

namespace modemd {

constexpr size_t k_diag_default_piece = 4096;
constexpr size_t k_diag_max_piece = 16384;
constexpr size_t k_diag_journal_len = 64;
constexpr uint16_t k_diag_default_dci_support = 0x0003; /* APSS and MPSS up */
constexpr uint32_t k_diag_max_delay_ms = 3600000;
constexpr int32_t k_diag_max_proc = 15;
/* Frames of one packet that are served (the library sends one per packet). */
constexpr size_t k_diag_frames_per_packet = 16;

class diag_endpoint_impl : public diag_endpoint, public diag_port_server {
public:
    explicit diag_endpoint_impl(daemon &d);
    ~diag_endpoint_impl() override;
    void on_open(connection &c) override;
    void on_packet(connection &c, const uint8_t *data, size_t len) override;
    void on_close(connection &c) override;
    bool control(const std::vector<std::string> &args, std::string *answer) override;
    bool open_port(const std::string &link, std::string *error) override;
    bool serve_port_command(diag_modem_state &m, const std::vector<uint8_t> &cmd, std::vector<uint8_t> *rsp,
                            uint32_t *delay_ms) override;

private:
    struct diag_conn {
        connection *c;
        std::set<int32_t> dci_procs; /* processors with a DCI client here */
    };
    enum journal_kind { JOURNAL_CMD, JOURNAL_DCI, JOURNAL_PORT };
    struct journal_entry {
        journal_kind kind;
        int32_t proc;
        std::vector<uint8_t> bytes;
    };

    bool proc_present(int32_t proc) const;
    void on_command(diag_conn &dc, const diag_envelope &env, const std::vector<uint8_t> &cmd);
    /* Journals `cmd` and answers it from `m` with the test faults; false
     * when it is dropped. */
    bool serve(diag_modem_state &m, journal_kind kind, int32_t proc, const std::vector<uint8_t> &cmd,
               std::vector<uint8_t> *rsp, uint32_t *delay_ms);
    void on_session(diag_conn &dc, const diag_envelope &env);
    /* Sends `pkts` to connection `conn_id` now or after `delay_ms`. */
    void deliver(uint64_t conn_id, std::vector<std::vector<uint8_t>> pkts, uint32_t delay_ms);
    size_t send_stream_record(uint32_t tag, const std::vector<uint8_t> &record);

    std::string control_faults(const std::vector<std::string> &a);
    std::string control_config(const std::vector<std::string> &a);
    std::string control_last(const std::vector<std::string> &a);
    /* Gives `rsp` the length a "diag next-size" asked for, once. */
    void apply_next_size(std::vector<uint8_t> *rsp);

    daemon &d_;
    diag_modem_state modem_;
    std::map<uint64_t, diag_conn> conns_;
    std::deque<journal_entry> journal_;

    /* Test faults, by command code. */
    std::map<uint8_t, std::vector<uint8_t>> replies_;
    std::map<uint8_t, uint32_t> delays_;
    std::set<uint8_t> drops_;
    size_t piece_ = k_diag_default_piece;
    size_t next_size_ = 0; /* 0: answers keep their own length */

    uint16_t remote_mask_ = 0;
    std::map<int32_t, uint16_t> dci_support_;
    std::unique_ptr<diag_port> port_;
};

}  // namespace modemd

#endif
