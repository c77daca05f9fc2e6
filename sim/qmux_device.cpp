#include "qmux_device.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include "qmi_codec.h"

namespace modemd {
namespace {

/* The work of one wake-up, bounded as a socket client's (one packet per
 * wake-up) is, so that a writer flooding the device delays the other
 * clients by a fraction of a millisecond, not by the time it takes to
 * serve all it wrote: one read of at most k_read_chunk bytes, and at most
 * k_frames_per_wakeup frames or k_wakeup_budget_us of serving.  Frames
 * left over are served by the next turns of the loop, before the device
 * is read again, so what waits in memory stays under one read. */
constexpr size_t k_read_chunk = 4096;
constexpr int k_frames_per_wakeup = 16;
constexpr uint64_t k_wakeup_budget_us = 1000;
/* Bytes written out before the output buffer's front is dropped. */
constexpr size_t k_out_compact_bytes = 64u << 10;
/* The control service's own version in Get Version Info. */
constexpr uint16_t k_ctl_major = 1;
constexpr uint16_t k_ctl_minor = 5;
constexpr const char k_close_listener[] = "qmux";

uint64_t monotonic_us()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return uint64_t(ts.tv_sec) * 1000000u + uint64_t(ts.tv_nsec) / 1000u;
}

uint16_t client_key(uint8_t service, uint8_t cid) { return uint16_t(service << 8 | cid); }

void put_u16(std::vector<uint8_t> *v, uint32_t x)
{
    v->push_back(uint8_t(x));
    v->push_back(uint8_t(x >> 8));
}

}  // namespace

qmux_device::qmux_device(daemon &d) : d_(d) {}

qmux_device::~qmux_device()
{
    if (backlog_timer_) d_.loop().cancel_timer(backlog_timer_);
    if (master_ >= 0) {
        d_.loop().remove_fd(master_);
        close(master_);
    }
    if (slave_ >= 0) close(slave_);
    if (!link_.empty()) unlink(link_.c_str());
}

bool qmux_device::open(const std::string &link, std::string *error)
{
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
        *error = std::string("cannot open a pseudo-terminal: ") + strerror(errno);
        return false;
    }
    char name[128];
    if (ptsname_r(master_, name, sizeof(name)) != 0) {
        *error = std::string("cannot name the pseudo-terminal: ") + strerror(errno);
        return false;
    }
    slave_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    struct termios t;
    if (slave_ < 0 || tcgetattr(slave_, &t) != 0) {
        *error = std::string("cannot open ") + name + ": " + strerror(errno);
        return false;
    }
    cfmakeraw(&t);
    t.c_cc[VMIN] = 1;
    t.c_cc[VTIME] = 0;
    if (tcsetattr(slave_, TCSANOW, &t) != 0) {
        *error = std::string("cannot make ") + name + " raw: " + strerror(errno);
        return false;
    }
    /* A stale link of a simulator that died is replaced; anything else at
     * the path is left alone. */
    struct stat st;
    if (lstat(link.c_str(), &st) == 0) {
        if (!S_ISLNK(st.st_mode)) {
            *error = "cannot link " + link + ": something else is there";
            return false;
        }
        unlink(link.c_str());
    }
    if (symlink(name, link.c_str()) != 0) {
        *error = "cannot link " + link + ": " + strerror(errno);
        return false;
    }
    link_ = link;
    d_.loop().add_fd(master_, [this](uint32_t events) { on_event(events); });
    d_.on_connection_closed(k_close_listener, [this](uint64_t conn_id) { on_client_closed(conn_id); });
    d_.log("QMUX device %s (%s)", link.c_str(), name);
    return true;
}

void qmux_device::on_event(uint32_t events)
{
    if (events & EPOLLOUT) flush();
    if (!(events & (EPOLLIN | EPOLLHUP | EPOLLERR)) || backlog_timer_) return;
    uint8_t buf[k_read_chunk];
    ssize_t n = read(master_, buf, sizeof(buf));
    if (n <= 0) return;
    uint64_t now = event_loop::now_ms();
    if (reader_.partial() && now - last_rx_ms_ > k_qmux_partial_frame_ms) {
        reader_.reset();
        n_.dropped_partial++;
        d_.log("QMUX: incomplete frame abandoned by its writer: dropped");
    }
    last_rx_ms_ = now;
    reader_.feed(buf, size_t(n));
    serve_frames();
}

/* Serves the frames read so far, within the budget of one wake-up; the
 * rest on a later turn of the loop, reading paused until then. */
void qmux_device::serve_frames()
{
    uint64_t start = monotonic_us();
    qmux_frame f;
    bool more = false;
    for (int i = 0; !more && reader_.next(&f); i++) {
        on_frame(f);
        more = i + 1 >= k_frames_per_wakeup || monotonic_us() - start >= k_wakeup_budget_us;
    }
    if (reader_.skipped_bytes() != n_.skipped_bytes) {
        d_.log("QMUX: %llu bytes that start no frame skipped",
               (unsigned long long)(reader_.skipped_bytes() - n_.skipped_bytes));
        n_.skipped_bytes = reader_.skipped_bytes();
    }
    if (more) {
        backlog_timer_ = d_.loop().add_timer(0, [this] {
            backlog_timer_ = 0;
            serve_frames();
        });
    }
    update_events();
}

void qmux_device::update_events()
{
    uint32_t events = (backlog_timer_ ? 0u : uint32_t(EPOLLIN)) | (want_write_ ? uint32_t(EPOLLOUT) : 0u);
    if (events != watched_) {
        watched_ = events;
        d_.loop().set_fd_events(master_, events);
    }
}

void qmux_device::on_frame(const qmux_frame &f)
{
    n_.frames_in++;
    if (f.flags & QMUX_FLAG_FROM_SERVICE) {
        n_.dropped_malformed++; /* our own direction echoed back: not a request */
        return;
    }
    if (f.service == QMUX_SERVICE_CTL) {
        on_ctl(f);
        return;
    }
    auto it = clients_.find(client_key(f.service, f.client));
    if (it == clients_.end()) {
        n_.dropped_no_client++;
        d_.log("QMUX: frame for service 0x%02x client %u, which is not allocated: dropped", f.service, f.client);
        return;
    }
    qmi_header h;
    if (!qmi_header_read(f.qmi.data(), f.qmi.size(), &h) || h.type != QMI_TYPE_REQUEST) {
        n_.dropped_malformed++;
        d_.log("QMUX: malformed QMI message of %zu bytes for service 0x%02x: dropped", f.qmi.size(), f.service);
        return;
    }
    d_.pseudo_request(it->second, f.qmi.data(), f.qmi.size());
}

void qmux_device::on_ctl(const qmux_frame &f)
{
    qmi_ctl_header h;
    if (!qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h) || h.flags != QMI_CTL_FLAG_REQUEST) {
        n_.dropped_malformed++;
        d_.log("QMUX: malformed control message of %zu bytes: dropped", f.qmi.size());
        return;
    }
    std::vector<uint8_t> tlvs(f.qmi.begin() + long(QMI_CTL_HEADER_LEN), f.qmi.end());
    std::vector<uint8_t> answer;
    switch (h.msg_id) {
    case QMI_CTL_MSG_GET_VERSION_INFO:
        answer = ctl_version_info();
        break;
    case QMI_CTL_MSG_ALLOCATE_CID:
        answer = ctl_allocate(tlvs);
        break;
    case QMI_CTL_MSG_RELEASE_CID:
        answer = ctl_release(tlvs);
        break;
    case QMI_CTL_MSG_SYNC:
        answer = ctl_sync();
        break;
    default:
        answer = qmi_result_tlv(QMI_PROTOCOL_ERR_INVALID_QMI_COMMAND);
    }
    std::vector<uint8_t> msg = qmi_ctl_message(QMI_CTL_FLAG_RESPONSE, h.txn, h.msg_id, answer);
    if (uint32_t late = ctl_delay_.take(h.msg_id)) {
        uint8_t client = f.client;
        d_.loop().add_timer(late, [this, client, msg] {
            send_frame(QMUX_SERVICE_CTL, client, msg.data(), msg.size());
        });
        return;
    }
    send_frame(QMUX_SERVICE_CTL, f.client, msg.data(), msg.size());
}

std::vector<uint8_t> qmux_device::ctl_version_info()
{
    std::vector<uint8_t> list = {0};
    list.push_back(QMUX_SERVICE_CTL);
    put_u16(&list, k_ctl_major);
    put_u16(&list, k_ctl_minor);
    for (const auto &s : d_.services()) {
        if (s->obj->service_id > QMUX_SERVICE_MAX) continue;
        list.push_back(uint8_t(s->obj->service_id));
        put_u16(&list, s->obj->idl_version);
        put_u16(&list, s->obj->idl_minor_version);
    }
    list[0] = uint8_t((list.size() - 1) / 5);
    std::vector<uint8_t> out = qmi_result_tlv(0);
    qmi_tlv_append(&out, QMI_CTL_TLV_INFO, list);
    return out;
}

sim_service *qmux_device::service_of(uint8_t service_byte)
{
    for (const auto &s : d_.services()) {
        if (s->obj->service_id == service_byte) return s.get();
    }
    return nullptr;
}

std::vector<uint8_t> qmux_device::ctl_allocate(const std::vector<uint8_t> &tlvs)
{
    std::vector<uint8_t> v;
    if (!qmi_tlv_find(tlvs.data(), tlvs.size(), QMI_CTL_TLV_INFO, &v) || v.size() != 1) {
        return qmi_result_tlv(QMI_PROTOCOL_ERR_MALFORMED);
    }
    uint8_t service = v[0];
    sim_service *s = service_of(service);
    if (!s || service == QMUX_SERVICE_CTL || !s->up) return qmi_result_tlv(QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE);
    size_t in_use = 0;
    for (const auto &kv : clients_) in_use += (kv.first >> 8) == service;
    if (in_use >= k_qmux_clients_per_service) return qmi_result_tlv(QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED);
    uint8_t &next = next_cid_[service];
    if (next < k_qmux_first_client_id || next > k_qmux_last_client_id) next = k_qmux_first_client_id;
    while (clients_.count(client_key(service, next))) {
        next = next >= k_qmux_last_client_id ? k_qmux_first_client_id : uint8_t(next + 1);
    }
    uint8_t cid = next;
    next = cid >= k_qmux_last_client_id ? k_qmux_first_client_id : uint8_t(cid + 1);
    uint64_t conn = d_.open_pseudo_client(*s, [this, service, cid](const void *data, size_t len) {
        return send_frame(service, cid, static_cast<const uint8_t *>(data), len);
    });
    clients_[client_key(service, cid)] = conn;
    by_conn_[conn] = client_key(service, cid);
    std::vector<uint8_t> out = qmi_result_tlv(0);
    qmi_tlv_append(&out, QMI_CTL_TLV_INFO, {service, cid});
    return out;
}

bool qmux_device::release(uint8_t service, uint8_t cid)
{
    auto it = clients_.find(client_key(service, cid));
    if (it == clients_.end()) return false;
    uint64_t conn = it->second;
    clients_.erase(it);
    by_conn_.erase(conn);
    d_.close_pseudo_client(conn);
    return true;
}

std::vector<uint8_t> qmux_device::ctl_release(const std::vector<uint8_t> &tlvs)
{
    std::vector<uint8_t> v;
    if (!qmi_tlv_find(tlvs.data(), tlvs.size(), QMI_CTL_TLV_INFO, &v) || v.size() != 2) {
        return qmi_result_tlv(QMI_PROTOCOL_ERR_MALFORMED);
    }
    if (!release(v[0], v[1])) return qmi_result_tlv(QMI_PROTOCOL_ERR_INVALID_CLIENT_ID);
    std::vector<uint8_t> out = qmi_result_tlv(0);
    qmi_tlv_append(&out, QMI_CTL_TLV_INFO, v);
    return out;
}

/* Sync: the host starts afresh, every client id is released. */
std::vector<uint8_t> qmux_device::ctl_sync()
{
    std::vector<uint16_t> all;
    for (const auto &kv : clients_) all.push_back(kv.first);
    for (uint16_t k : all) release(uint8_t(k >> 8), uint8_t(k));
    return qmi_result_tlv(0);
}

/* A pseudo connection closed by the daemon (its service went down): the
 * client id is revoked and the host told so. */
void qmux_device::on_client_closed(uint64_t conn_id)
{
    auto it = by_conn_.find(conn_id);
    if (it == by_conn_.end()) return;
    uint16_t key = it->second;
    by_conn_.erase(it);
    clients_.erase(key);
    std::vector<uint8_t> tlvs;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {uint8_t(key >> 8), uint8_t(key)});
    std::vector<uint8_t> msg = qmi_ctl_message(QMI_CTL_FLAG_INDICATION, 0, QMI_CTL_MSG_REVOKE_CID_IND, tlvs);
    send_frame(QMUX_SERVICE_CTL, QMUX_CLIENT_BROADCAST, msg.data(), msg.size());
}

bool qmux_device::send_frame(uint8_t service, uint8_t cid, const uint8_t *qmi, size_t len)
{
    std::vector<uint8_t> frame;
    if (!qmux_encode(QMUX_FLAG_FROM_SERVICE, service, cid, qmi, len, &frame)) {
        n_.dropped_out++;
        return false;
    }
    if (out_.size() - out_off_ + frame.size() > k_qmux_out_max_bytes) {
        n_.dropped_out++;
        d_.log("QMUX: nobody reads the device (%zu bytes waiting): frame dropped", out_.size() - out_off_);
        return false;
    }
    out_.insert(out_.end(), frame.begin(), frame.end());
    n_.frames_out++;
    flush();
    return true;
}

void qmux_device::flush()
{
    while (out_off_ < out_.size()) {
        ssize_t n = write(master_, out_.data() + out_off_, out_.size() - out_off_);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        out_off_ += size_t(n);
    }
    if (out_off_ == out_.size()) {
        out_.clear();
        out_off_ = 0;
    } else if (out_off_ >= k_out_compact_bytes && out_off_ * 2 >= out_.size()) {
        /* A reader that never quite catches up: what it took is dropped
         * from the front, so the buffer stays near what waits. */
        out_.erase(out_.begin(), out_.begin() + long(out_off_));
        out_off_ = 0;
    }
    want_write_ = !out_.empty();
    update_events();
}

std::string qmux_device::control(const std::vector<std::string> &a)
{
    if (a.size() == 1 || (a.size() == 2 && a[1] == "clients")) {
        /* One line per service with clients: "0x0b 1 2", ids in order. */
        std::map<uint8_t, std::vector<uint8_t>> per;
        for (const auto &kv : clients_) per[uint8_t(kv.first >> 8)].push_back(uint8_t(kv.first));
        std::string out = "ok";
        for (const auto &kv : per) {
            char head[16];
            snprintf(head, sizeof(head), "\n0x%02x", kv.first);
            out += head;
            for (uint8_t cid : kv.second) out += " " + std::to_string(cid);
        }
        return out;
    }
    if (a.size() == 2 && a[1] == "counters") {
        char buf[512];
        snprintf(buf, sizeof(buf),
                 "ok frames-in %llu\nframes-out %llu\nskipped-bytes %llu\ndropped-malformed %llu\n"
                 "dropped-no-client %llu\ndropped-partial %llu\ndropped-out %llu",
                 (unsigned long long)n_.frames_in, (unsigned long long)n_.frames_out,
                 (unsigned long long)n_.skipped_bytes, (unsigned long long)n_.dropped_malformed,
                 (unsigned long long)n_.dropped_no_client, (unsigned long long)n_.dropped_partial,
                 (unsigned long long)n_.dropped_out);
        return buf;
    }
    if (a.size() == 2 && a[1] == "path") return "ok " + link_;
    if (a.size() >= 2 && a[1] == "delay-ctl") return ctl_delay_.control(a);
    return "error usage: qmux [clients | counters | path | delay-ctl MSG MS [COUNT]]";
}

}  // namespace modemd
