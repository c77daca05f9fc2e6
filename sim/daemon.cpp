#include "daemon.h"
#include "at_channel.h"
#include "qmux_device.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <string.h>
#include <sys/file.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include "modemd_paths.h"
#include "qmi_codec.h"

namespace modemd {
namespace {

/* Requests kept for inspection. */
constexpr size_t k_journal_size = 256;
/* QMI error numbers used by the simulator's own answers. */
constexpr uint16_t k_qmi_err_malformed = 1;
constexpr uint16_t k_qmi_err_invalid_message_id = 0x39;

bool response_has_result_tlv(const qmi_idl_service_message_table_entry *m)
{
    return m && m->ei && m->ei[0].data_type == QMI_STRUCT && m->ei[0].tlv_type == QMI_RESULT_TLV_TYPE;
}

std::vector<uint8_t> failure_result_tlv(uint16_t error)
{
    return {QMI_RESULT_TLV_TYPE, 4, 0, 1, 0, uint8_t(error), uint8_t(error >> 8)};
}

std::vector<uint8_t> make_packet(uint8_t type, uint16_t txn, uint16_t msg_id, const std::vector<uint8_t> &tlvs)
{
    std::vector<uint8_t> pkt(QMI_HEADER_LEN + tlvs.size());
    qmi_header h = {type, txn, msg_id, uint16_t(tlvs.size())};
    qmi_header_write(pkt.data(), h);
    if (!tlvs.empty()) memcpy(pkt.data() + QMI_HEADER_LEN, tlvs.data(), tlvs.size());
    return pkt;
}

uint32_t instance_word(const sim_service &s) { return s.def->instance << 8 | (s.obj->idl_version & 0xFFu); }

}  // namespace

daemon::daemon(const daemon_options &opts) : opts_(opts) {}

daemon::~daemon()
{
    qmux_.reset();
    for (auto &kv : conns_) {
        if (kv.second->fd >= 0) close(kv.second->fd);
    }
    if (listen_fd_ >= 0) {
        close(listen_fd_);
        unlink(opts_.socket_path.c_str());
    }
    if (signal_fd_ >= 0) close(signal_fd_);
    if (lock_fd_ >= 0) close(lock_fd_);
    if (reserve_fd_ >= 0) close(reserve_fd_);
}

void daemon::log(const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    daemon_log::outcome o = log_.vlog(event_loop::now_ms(), fmt, ap);
    va_end(ap);
    on_log_outcome(o);
}

void daemon::on_log_outcome(daemon_log::outcome o)
{
    if (o != daemon_log::outcome::suppressed_first || log_summary_timer_) return;
    log_summary_timer_ = loop_.add_timer(k_log_window_ms, [this] {
        log_summary_timer_ = 0;
        log_.flush_summaries(event_loop::now_ms(), false);
    });
}

void daemon::on_connection_closed(const std::string &key, std::function<void(uint64_t)> fn)
{
    close_listeners_[key] = std::move(fn);
}

bool daemon::start(std::string *error)
{
    mkdir(opts_.state_dir.c_str(), 0700);
    if (!opts_.log_path.empty() && !log_.open(opts_.log_path, opts_.log_max_bytes, error)) return false;
    std::string lock_path = opts_.state_dir + "/lock";
    lock_fd_ = open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_fd_ < 0) {
        *error = "cannot open " + lock_path + ": " + strerror(errno);
        return false;
    }
    if (flock(lock_fd_, LOCK_EX | LOCK_NB) != 0) {
        char pid[32] = {0};
        ssize_t n = pread(lock_fd_, pid, sizeof(pid) - 1, 0);
        std::string who = n > 0 ? std::string(pid, size_t(n)) : std::string("?");
        while (!who.empty() && (who.back() == '\n' || who.back() == ' ')) who.pop_back();
        *error = "state directory " + opts_.state_dir + " is in use by another rlk-modemd (pid " + who + ")";
        close(lock_fd_);
        lock_fd_ = -1;
        return false;
    }
    std::string pid_text = std::to_string(getpid()) + "\n";
    if (ftruncate(lock_fd_, 0) != 0 || pwrite(lock_fd_, pid_text.data(), pid_text.size(), 0) < 0) {
        *error = "cannot write " + lock_path;
        return false;
    }
    if (!store_.open(opts_.state_dir)) {
        *error = "cannot open state directory " + opts_.state_dir;
        return false;
    }
    for (size_t i = 0; i < g_sim_service_count; i++) {
        auto s = std::make_unique<sim_service>();
        s->def = g_sim_services[i];
        s->obj = s->def->object();
        s->port = next_port_++;
        services_.push_back(std::move(s));
    }
    diag_ = make_diag_endpoint(*this);
    at_ = make_at_channel(*this);

    if (!open_listener(error)) return false;
    if (!opts_.qmux_link.empty()) {
        qmux_ = std::make_unique<qmux_device>(*this);
        if (!qmux_->open(opts_.qmux_link, error)) return false;
    }
    if (!opts_.diag_port_link.empty() && !diag_->open_port(opts_.diag_port_link, error)) return false;

    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGTERM);
    sigaddset(&mask, SIGINT);
    sigprocmask(SIG_BLOCK, &mask, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal_fd_ = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
    loop_.add_fd(signal_fd_, [this](uint32_t) {
        struct signalfd_siginfo si;
        while (read(signal_fd_, &si, sizeof(si)) == ssize_t(sizeof(si))) {
            log("signal %u: exiting", si.ssi_signo);
            loop_.stop();
        }
    });
    update_idle_timer();
    log("serving %s (state %s)", opts_.socket_path.c_str(), opts_.state_dir.c_str());
    return true;
}

void daemon::update_idle_timer()
{
    if (!opts_.idle_exit_s) return;
    if (idle_timer_) {
        loop_.cancel_timer(idle_timer_);
        idle_timer_ = 0;
    }
    if (!conns_.empty()) return;
    idle_timer_ = loop_.add_timer(opts_.idle_exit_s * 1000u, [this] {
        idle_timer_ = 0;
        log("no clients for %u s: exiting", opts_.idle_exit_s);
        loop_.stop();
    });
}

void daemon::on_hello(connection &c, const uint8_t *data, size_t len)
{
    modemd_hello h;
    if (len != sizeof(h)) {
        close_connection(c.id);
        return;
    }
    memcpy(&h, data, sizeof(h));
    if (h.magic != MODEMD_HELLO_MAGIC) {
        close_connection(c.id);
        return;
    }
    c.hello_done = true;
    if (c.hello_timer) {
        loop_.cancel_timer(c.hello_timer);
        c.hello_timer = 0;
    }
    c.kind = modemd_conn_kind(h.kind);
    c.service = h.service;
    switch (c.kind) {
    case MODEMD_CONN_LOOKUP:
        send_lookup_list(c);
        break;
    case MODEMD_CONN_CLIENT: {
        modemd_ctrl_pkt ack = {MODEMD_CTRL_DEL_SERVER, h.service, h.instance, MODEMD_MODEM_NODE, 0};
        for (auto &s : services_) {
            if (s->up && s->obj->service_id == h.service && (h.instance == 0xFFFFFFFFu || instance_word(*s) == h.instance)) {
                c.attached = s.get();
                ack = {MODEMD_CTRL_NEW_SERVER, h.service, instance_word(*s), MODEMD_MODEM_NODE, s->port};
                break;
            }
        }
        c.send(&ack, sizeof(ack));
        if (!c.attached) close_connection(c.id);
        break;
    }
    case MODEMD_CONN_DIAG:
        if (diag_) {
            diag_->on_open(c);
        } else {
            close_connection(c.id);
        }
        break;
    case MODEMD_CONN_CONTROL:
        break;
    default:
        close_connection(c.id);
    }
}

void daemon::send_lookup_list(connection &c)
{
    for (auto &s : services_) {
        if (!s->up || (c.service && c.service != s->obj->service_id)) continue;
        modemd_ctrl_pkt p = {MODEMD_CTRL_NEW_SERVER, s->obj->service_id, instance_word(*s), MODEMD_MODEM_NODE, s->port};
        c.send(&p, sizeof(p));
    }
    modemd_ctrl_pkt end = {MODEMD_CTRL_NEW_SERVER, 0, 0, 0, 0};
    c.send(&end, sizeof(end));
}

void daemon::announce(const sim_service &s, uint32_t cmd)
{
    modemd_ctrl_pkt p = {cmd, s.obj->service_id, instance_word(s), MODEMD_MODEM_NODE, s.port};
    for (auto &kv : conns_) {
        connection &c = *kv.second;
        if (c.hello_done && c.kind == MODEMD_CONN_LOOKUP && (!c.service || c.service == s.obj->service_id)) {
            c.send(&p, sizeof(p));
        }
    }
}

sim_service *daemon::find_service(const std::string &name_or_id)
{
    int64_t id = -1;
    bool numeric = parse_number(name_or_id, &id);
    for (auto &s : services_) {
        if (s->def->name == name_or_id || (numeric && int64_t(s->obj->service_id) == id)) return s.get();
    }
    return nullptr;
}

void daemon::service_down(sim_service &s)
{
    if (s.up_timer) {
        loop_.cancel_timer(s.up_timer);
        s.up_timer = 0;
    }
    if (!s.up) return;
    s.up = false;
    log("service %s down", s.def->name);
    announce(s, MODEMD_CTRL_DEL_SERVER);
    std::vector<uint64_t> gone;
    for (auto &kv : conns_) {
        if (kv.second->attached == &s) gone.push_back(kv.first);
    }
    for (uint64_t id : gone) close_connection(id);
}

void daemon::service_up(sim_service &s)
{
    if (s.up_timer) {
        loop_.cancel_timer(s.up_timer);
        s.up_timer = 0;
    }
    if (s.up) return;
    s.up = true;
    s.port = next_port_++; /* a restarted server gets a new port, as on a modem */
    log("service %s up", s.def->name);
    announce(s, MODEMD_CTRL_NEW_SERVER);
}

daemon::fault *daemon::match_fault(uint32_t service, uint16_t msg_id)
{
    for (auto &f : faults_) {
        if (f.service == service && f.msg_id == msg_id && f.remaining != 0) return &f;
    }
    return nullptr;
}

/* Decodes the request, runs the handler and encodes its response.  False
 * when the service has no answer to give (the caller answers with a
 * failure). */
bool daemon::build_response(qmi_call &call, const std::vector<uint8_t> &req_tlvs, std::vector<uint8_t> *out)
{
    qmi_idl_service_object_type obj = call.svc.obj;
    const qmi_idl_service_message_table_entry *req_m = qmi_idl_find_message(obj, QMI_IDL_REQUEST, call.msg_id);
    const qmi_idl_service_message_table_entry *resp_m = qmi_idl_find_message(obj, QMI_IDL_RESPONSE, call.msg_id);
    const qmi_handler_entry *h = nullptr;
    for (size_t i = 0; i < call.svc.def->n_handlers; i++) {
        if (call.svc.def->handlers[i].msg_id == call.msg_id) h = &call.svc.def->handlers[i];
    }
    if (!req_m || !resp_m || !h) {
        *out = failure_result_tlv(k_qmi_err_invalid_message_id);
        return true;
    }
    std::vector<uint8_t> req(req_m->c_struct_sz + 1), resp(resp_m->c_struct_sz + 1);
    int rc = qmi_codec_decode(req_m->ei, req_tlvs.data(), req_tlvs.size(), req.data(), req_m->c_struct_sz);
    if (rc != 0) {
        log("service %s message 0x%04x: malformed request (%d)", call.svc.def->name, call.msg_id, rc);
        *out = failure_result_tlv(k_qmi_err_malformed);
        return true;
    }
    h->fn(call, req.data(), resp.data());
    out->resize(size_t(resp_m->max_msg_len) + 64);
    size_t len = 0;
    rc = qmi_codec_encode(resp_m->ei, resp.data(), out->data(), out->size(), &len);
    if (rc != 0) {
        log("service %s message 0x%04x: response does not encode (%d)", call.svc.def->name, call.msg_id, rc);
        return false;
    }
    out->resize(len);
    return true;
}

void daemon::deliver_response(uint64_t conn_id, std::vector<uint8_t> pkt, uint32_t delay_ms)
{
    if (delay_ms == 0) {
        auto it = conns_.find(conn_id);
        if (it != conns_.end()) it->second->send(pkt.data(), pkt.size());
        return;
    }
    loop_.add_timer(delay_ms, [this, conn_id, pkt] {
        auto it = conns_.find(conn_id);
        if (it != conns_.end()) it->second->send(pkt.data(), pkt.size());
    });
}

void daemon::on_qmi_request(connection &c, const uint8_t *data, size_t len)
{
    qmi_header h;
    if (!qmi_header_read(data, len, &h) || h.type != QMI_TYPE_REQUEST || !c.attached) {
        log("connection %llu: malformed QMI packet of %zu bytes ignored", (unsigned long long)c.id, len);
        return;
    }
    sim_service &s = *c.attached;
    journal_.push_back({s.obj->service_id, h.msg_id, h.txn, std::vector<uint8_t>(data, data + len)});
    if (journal_.size() > k_journal_size) journal_.pop_front();

    std::vector<uint8_t> tlvs;
    uint32_t delay = 0;
    fault *f = match_fault(s.obj->service_id, h.msg_id);
    if (f && f->remaining > 0) f->remaining--;
    qmi_call call = {*this, s, c, h.msg_id, h.txn};
    if (f && f->kind == fault::DROP) return;
    if (f && f->kind == fault::RESPOND) {
        tlvs = f->tlvs;
    } else if (f && f->kind == fault::ERROR) {
        const qmi_idl_service_message_table_entry *m = qmi_idl_find_message(s.obj, QMI_IDL_RESPONSE, h.msg_id);
        if (m && !response_has_result_tlv(m) && s.def->fill_error) {
            std::vector<uint8_t> resp(m->c_struct_sz + 1);
            s.def->fill_error(resp.data(), f->code);
            tlvs.resize(size_t(m->max_msg_len) + 64);
            size_t n = 0;
            if (qmi_codec_encode(m->ei, resp.data(), tlvs.data(), tlvs.size(), &n) != 0) n = 0;
            tlvs.resize(n);
        } else {
            tlvs = failure_result_tlv(uint16_t(f->code));
        }
    } else {
        if (f && f->kind == fault::DELAY) delay = f->ms;
        if (!build_response(call, std::vector<uint8_t>(data + QMI_HEADER_LEN, data + len), &tlvs)) {
            tlvs = failure_result_tlv(k_qmi_err_malformed);
        }
    }
    deliver_response(c.id, make_packet(QMI_TYPE_RESPONSE, h.txn, h.msg_id, tlvs), delay);
}

bool daemon::send_indication_raw(sim_service &s, uint16_t msg_id, const std::vector<uint8_t> &tlvs, connection *only)
{
    bool any = false;
    for (auto &kv : conns_) {
        connection &c = *kv.second;
        if (c.attached != &s || (only && only != &c)) continue;
        std::vector<uint8_t> pkt = make_packet(QMI_TYPE_INDICATION, c.ind_txn++, msg_id, tlvs);
        if (c.ind_txn == 0) c.ind_txn = 1;
        any = c.send(pkt.data(), pkt.size()) || any;
    }
    return any;
}

bool daemon::send_indication(sim_service &s, uint16_t msg_id, const void *ind, connection *only)
{
    const qmi_idl_service_message_table_entry *m = qmi_idl_find_message(s.obj, QMI_IDL_INDICATION, msg_id);
    if (!m) return false;
    std::vector<uint8_t> tlvs(size_t(m->max_msg_len) + 64);
    size_t n = 0;
    if (qmi_codec_encode(m->ei, ind, tlvs.data(), tlvs.size(), &n) != 0) return false;
    tlvs.resize(n);
    return send_indication_raw(s, msg_id, tlvs, only);
}

}  // namespace modemd
