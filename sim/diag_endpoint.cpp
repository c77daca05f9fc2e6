/* Packet handling of the simulator's diag channel; the control requests are
 * in diag_control.cpp. */
#include "diag_endpoint.h"
#include "services/ext_stats_debug.h"

#include "diag_channel.h"
#include "diag_lsm_dci.h"

namespace modemd {

diag_endpoint_impl::diag_endpoint_impl(daemon &d) : d_(d) { modem_.store = &d.store(); }

diag_endpoint_impl::~diag_endpoint_impl() = default;

void diag_endpoint_impl::on_open(connection &c) { conns_[c.id] = diag_conn{&c, {}}; }

void diag_endpoint_impl::on_close(connection &c) { conns_.erase(c.id); }

bool diag_endpoint_impl::proc_present(int32_t proc) const
{
    if (proc == MSM) return true;
    return proc > 0 && proc <= k_diag_max_proc && (remote_mask_ >> proc) & 1;
}

void diag_endpoint_impl::on_packet(connection &c, const uint8_t *data, size_t len)
{
    auto it = conns_.find(c.id);
    if (it == conns_.end()) return;
    diag_packet pkt;
    if (!diag_packet_parse(data, len, &pkt)) {
        d_.log("diag: packet of %zu bytes is shorter than its envelope", len);
        return;
    }
    /* One packet may hold many frames, each with its own answer: only the
     * first few are served, so one packet cannot fill the client's queue. */
    size_t served = 0;
    for (const hdlc_frame &f : pkt.frames) {
        if (served == k_diag_frames_per_packet) {
            d_.log("diag: packet of %zu frames: only the first %zu served", pkt.frames.size(),
                   k_diag_frames_per_packet);
            break;
        }
        served++;
        if (f.status != HDLC_OK) {
            d_.log("diag: dropped a bad frame (status %d)", int(f.status));
            continue;
        }
        switch (pkt.env.data_type) {
        case USER_SPACE_RAW_DATA_TYPE:
        case DCI_PKT_TYPE:
            on_command(it->second, pkt.env, f.payload);
            break;
        case DCI_DATA_TYPE:
            on_session(it->second, pkt.env);
            break;
        default:
            d_.log("diag: unknown data type 0x%x", pkt.env.data_type);
        }
    }
}

bool diag_endpoint_impl::serve(diag_modem_state &m, journal_kind kind, int32_t proc, const std::vector<uint8_t> &cmd,
                               std::vector<uint8_t> *rsp, uint32_t *delay_ms)
{
    journal_.push_back({kind, proc, cmd});
    if (journal_.size() > k_diag_journal_len) journal_.pop_front();
    if (!proc_present(proc)) {
        d_.log("diag: command for absent processor %d dropped", proc);
        return false;
    }
    if (cmd.empty()) return false;
    uint8_t code = cmd[0];
    if (drops_.count(code)) return false;
    auto reply = replies_.find(code);
    if (reply != replies_.end()) {
        *rsp = reply->second;
    } else {
        diag_answer_command(m, cmd.data(), cmd.size(), rsp);
    }
    apply_next_size(rsp);
    auto delay = delays_.find(code);
    *delay_ms = delay == delays_.end() ? 0 : delay->second;
    return true;
}

bool diag_endpoint_impl::serve_port_command(diag_modem_state &m, const std::vector<uint8_t> &cmd,
                                            std::vector<uint8_t> *rsp, uint32_t *delay_ms)
{
    return serve(m, JOURNAL_PORT, MSM, cmd, rsp, delay_ms);
}

bool diag_endpoint_impl::open_port(const std::string &link, std::string *error)
{
    port_ = std::make_unique<diag_port>(d_, *this);
    return port_->open(link, error);
}

void diag_endpoint_impl::on_command(diag_conn &dc, const diag_envelope &env, const std::vector<uint8_t> &cmd)
{
    bool dci = env.data_type == DCI_PKT_TYPE;
    std::vector<uint8_t> rsp;
    uint32_t delay_ms = 0;
    if (!serve(modem_, dci ? JOURNAL_DCI : JOURNAL_CMD, env.proc, cmd, &rsp, &delay_ms)) return;

    std::vector<std::vector<uint8_t>> pkts;
    if (!dci) {
        pkts.emplace_back();
        diag_packet_build(USER_SPACE_RAW_DATA_TYPE, env.proc, 0, rsp.data(), rsp.size(), &pkts.back());
    } else {
        /* Pieces of piece_ bytes; the last one carries the final mark.  An
         * empty response is one empty final piece. */
        size_t off = 0;
        do {
            size_t n = rsp.size() - off < piece_ ? rsp.size() - off : piece_;
            uint32_t tag = env.tag & DIAG_TAG_MAX;
            if (off + n == rsp.size()) tag |= DIAG_TAG_FINAL;
            pkts.emplace_back();
            diag_packet_build(DCI_PKT_TYPE, env.proc, tag, rsp.data() + off, n, &pkts.back());
            off += n;
        } while (off < rsp.size());
    }
    deliver(dc.c->id, std::move(pkts), delay_ms);
}

void diag_endpoint_impl::apply_next_size(std::vector<uint8_t> *rsp)
{
    if (next_size_ == 0) return;
    size_t real = rsp->size() < next_size_ ? rsp->size() : next_size_;
    rsp->resize(next_size_);
    for (size_t i = real; i < next_size_; i++) (*rsp)[i] = uint8_t(i - real);
    next_size_ = 0;
}

void diag_endpoint_impl::deliver(uint64_t conn_id, std::vector<std::vector<uint8_t>> pkts, uint32_t delay_ms)
{
    auto send_all = [this, conn_id](const std::vector<std::vector<uint8_t>> &list) {
        auto it = conns_.find(conn_id);
        if (it == conns_.end()) return; /* the client went away meanwhile */
        for (const auto &p : list) {
            if (!it->second.c->send(p.data(), p.size())) {
                d_.log("diag: send to connection %llu failed", (unsigned long long)conn_id);
                return;
            }
        }
    };
    if (delay_ms == 0) {
        send_all(pkts);
        return;
    }
    d_.loop().add_timer(delay_ms, [send_all, pkts] { send_all(pkts); });
}

void diag_endpoint_impl::on_session(diag_conn &dc, const diag_envelope &env)
{
    std::vector<uint8_t> answer;
    uint32_t status = DIAG_SESSION_OK;
    std::vector<uint8_t> data;
    switch (env.tag) {
    case DIAG_SESSION_REMOTE_MASK:
        diag_put_u16(&data, remote_mask_);
        break;
    case DIAG_SESSION_DCI_SUPPORT: {
        if (!proc_present(env.proc)) {
            status = DIAG_SESSION_BAD_PROC;
            break;
        }
        auto it = dci_support_.find(env.proc);
        uint16_t list = it != dci_support_.end() ? it->second
                        : env.proc == MSM        ? k_diag_default_dci_support
                                                 : uint16_t(DIAG_CON_MPSS);
        diag_put_u16(&data, list);
        break;
    }
    case DIAG_SESSION_DCI_REGISTER:
        if (proc_present(env.proc)) {
            dc.dci_procs.insert(env.proc);
        } else {
            status = DIAG_SESSION_BAD_PROC;
        }
        break;
    case DIAG_SESSION_DCI_RELEASE:
        dc.dci_procs.erase(env.proc);
        break;
    default:
        status = DIAG_SESSION_BAD_OP;
    }
    answer.reserve(answer.size() + 4 + data.size());
    diag_put_u32(&answer, status);
    answer.insert(answer.end(), data.begin(), data.end());
    std::vector<uint8_t> pkt;
    diag_packet_build(DCI_DATA_TYPE, env.proc, env.tag, answer.data(), answer.size(), &pkt);
    dc.c->send(pkt.data(), pkt.size());
}

size_t diag_endpoint_impl::send_stream_record(uint32_t tag, const std::vector<uint8_t> &record)
{
    size_t sent = 0;
    for (auto &kv : conns_) {
        for (int32_t proc : kv.second.dci_procs) {
            std::vector<uint8_t> pkt;
            diag_packet_build(DCI_DATA_TYPE, proc, tag, record.data(), record.size(), &pkt);
            if (kv.second.c->send(pkt.data(), pkt.size())) sent++;
        }
    }
    /* The modem's statistics framework listens to the same stream: its
     * listener counters follow what was delivered. */
    if (sent) {
        d_.counters()[tag == DIAG_STREAM_LOG_TAG ? k_stats_counter_log_records : k_stats_counter_event_records]++;
    }
    return sent;
}

std::unique_ptr<diag_endpoint> make_diag_endpoint(daemon &d) { return std::make_unique<diag_endpoint_impl>(d); }

}  // namespace modemd
