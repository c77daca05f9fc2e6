#include "qmux_link.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "modemd_proto.h"
#include "qmux.h"
#include "qmux_exit.h"
#include "qmux_transport.h"

namespace rlk_host {
namespace qmux_link {
namespace {

/* How long one write to the device may wait for room. */
constexpr int k_write_timeout_ms = 2000;
constexpr size_t k_read_chunk = 4096;
/* How often a process ending by a signal looks again for the answer of an
 * allocation in flight, and how long it waits for it at most. */
constexpr int k_dying_poll_ms = 5;
constexpr int k_dying_max_ms = k_qmux_ctl_timeout_ms;

uint8_t take_txn(device &d)
{
    uint8_t txn = d.next_txn++;
    if (d.next_txn == 0) d.next_txn = 1;
    d.late.erase(txn); /* reused: an answer to the old request can no longer be told apart */
    return txn;
}

using clock_type = std::chrono::steady_clock;

/* Writes all of `data`, waiting for room until `deadline` at most. */
bool write_all(int fd, const std::vector<uint8_t> &data, clock_type::time_point deadline)
{
    size_t off = 0;
    while (off < data.size()) {
        ssize_t n = write(fd, data.data() + off, data.size() - off);
        if (n > 0) {
            off += size_t(n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EAGAIN) return false;
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        struct pollfd p = {fd, POLLOUT, 0};
        poll(&p, 1, int(left.count()));
    }
    return true;
}

bool send_frame(device &d, uint8_t service, uint8_t cid, const uint8_t *qmi, size_t len,
                clock_type::time_point deadline)
{
    std::vector<uint8_t> f;
    if (!qmux_encode(0, service, cid, qmi, len, &f)) return false;
    std::lock_guard<std::mutex> g(d.write_mu);
    return d.fd >= 0 && write_all(d.fd, f, deadline);
}

bool send_frame(device &d, uint8_t service, uint8_t cid, const uint8_t *qmi, size_t len)
{
    return send_frame(d, service, cid, qmi, len, clock_type::now() + std::chrono::milliseconds(k_write_timeout_ms));
}

}  // namespace

void wake(device &d)
{
    uint8_t b = 0;
    ssize_t n = write(d.wake[1], &b, 1);
    (void)n;
}

void send_ctl_unwaited(device &d, uint16_t msg_id, qmux_owned_id id)
{
    std::vector<uint8_t> tlvs;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {id.service, id.cid});
    std::vector<uint8_t> m = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, take_txn(d), msg_id, tlvs);
    send_frame(d, QMUX_SERVICE_CTL, 0, m.data(), m.size());
}

namespace {

/* The device is gone (unplugged, the simulator stopped, or it sends no
 * QMUX frames): every handle sees its connection end and reports the loss
 * as it does today. */
void fail_all(device &d, int error)
{
    std::lock_guard<std::mutex> g(d.mu);
    d.failed = true;
    d.error = error;
    for (bridge &b : d.bridges) close(b.local);
    d.bridges.clear();
    d.cv.notify_all();
    qmux_exit_device_gone(); /* nothing left to release on it */
}

}  // namespace

void take_versions(device &d, const std::vector<uint8_t> &answer)
{
    uint16_t err = 1;
    std::vector<uint8_t> list;
    if (!qmi_result_read(answer.data(), answer.size(), &err) || err != 0 ||
        !qmi_tlv_find(answer.data(), answer.size(), QMI_CTL_TLV_INFO, &list) || list.empty()) {
        return;
    }
    for (size_t i = 0; i < list[0] && 1 + 5 * (i + 1) <= list.size(); i++) {
        const uint8_t *e = list.data() + 1 + 5 * i;
        d.majors[e[0]] = uint16_t(e[1] | e[2] << 8);
    }
    d.have_versions = true;
}

bool allocated_id(const std::vector<uint8_t> &answer, qmux_owned_id *id)
{
    uint16_t err = 1;
    std::vector<uint8_t> v;
    if (!qmi_result_read(answer.data(), answer.size(), &err) || err != 0 ||
        !qmi_tlv_find(answer.data(), answer.size(), QMI_CTL_TLV_INFO, &v) || v.size() != 2) {
        return false;
    }
    *id = {v[0], v[1]};
    return true;
}

namespace {

/* An answer to a request given up on: versions are kept, and a client id
 * handed out too late goes back at once. */
void on_late_answer(device &d, uint16_t msg_id, const std::vector<uint8_t> &answer)
{
    qmux_owned_id id;
    if (msg_id == QMI_CTL_MSG_GET_VERSION_INFO) {
        take_versions(d, answer);
    } else if (msg_id == QMI_CTL_MSG_ALLOCATE_CID && allocated_id(answer, &id)) {
        send_ctl_unwaited(d, QMI_CTL_MSG_RELEASE_CID, id);
    }
}

void on_ctl_frame(device &d, const qmux_frame &f)
{
    qmi_ctl_header h;
    if (!qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h)) return;
    const uint8_t *tlvs = f.qmi.data() + QMI_CTL_HEADER_LEN;
    std::lock_guard<std::mutex> g(d.mu);
    if (h.flags == QMI_CTL_FLAG_RESPONSE) {
        std::vector<uint8_t> answer(tlvs, tlvs + h.len);
        auto it = d.waits.find(h.txn);
        if (it == d.waits.end() || it->second->msg_id != h.msg_id) {
            auto late = d.late.find(h.txn);
            if (late == d.late.end() || late->second != h.msg_id) return; /* stale: another process's */
            d.late.erase(late);
            on_late_answer(d, h.msg_id, answer);
            d.cv.notify_all();
            return;
        }
        qmux_owned_id id;
        if (h.msg_id == QMI_CTL_MSG_ALLOCATE_CID) {
            /* Held from the moment it is known: a signal that ends the
             * process now releases it too. */
            if (allocated_id(answer, &id)) qmux_hold(id);
            qmux_alloc_ended();
        }
        it->second->tlvs.swap(answer);
        it->second->done = true;
        d.waits.erase(it);
        d.cv.notify_all();
        return;
    }
    std::vector<uint8_t> v;
    if (h.flags == QMI_CTL_FLAG_INDICATION && h.msg_id == QMI_CTL_MSG_REVOKE_CID_IND &&
        qmi_tlv_find(tlvs, h.len, QMI_CTL_TLV_INFO, &v) && v.size() == 2) {
        /* The modem took the client id back (its service restarted). */
        for (bridge &b : d.bridges) {
            if (b.service == v[0] && b.cid == v[1] && !b.closing) {
                b.closing = true;
                qmux_unhold({b.service, b.cid});
                shutdown(b.local, SHUT_RDWR);
            }
        }
    }
}

void on_service_frame(device &d, const qmux_frame &f)
{
    std::lock_guard<std::mutex> g(d.mu);
    for (bridge &b : d.bridges) {
        if (b.service == f.service && b.cid == f.client && !b.closing) {
            send(b.local, f.qmi.data(), f.qmi.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            return;
        }
    }
}

/* Handles what one handle's end sent; false when the handle is gone. */
bool from_handle(device &d, const bridge &b)
{
    std::vector<uint8_t> buf(MODEMD_MAX_PACKET);
    ssize_t n = recv(b.local, buf.data(), buf.size(), MSG_DONTWAIT);
    if (n < 0) return errno == EAGAIN || errno == EINTR;
    if (n == 0) return false;
    send_frame(d, b.service, b.cid, buf.data(), size_t(n));
    return true;
}

/* Reads what the device has and hands out its whole frames; false when
 * the device is gone or sends no QMUX frames (`*error` says which). */
bool from_device(device &d, std::vector<uint8_t> *buf, int *error)
{
    ssize_t n = read(d.fd, buf->data(), buf->size());
    if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
        *error = n == 0 ? ENODEV : errno;
        return false;
    }
    if (n > 0) {
        d.reader.feed(buf->data(), size_t(n));
        d.bytes_without_frame += size_t(n);
    }
    qmux_frame f;
    while (d.reader.next(&f)) {
        d.bytes_without_frame = 0;
        if (!(f.flags & QMUX_FLAG_FROM_SERVICE)) continue;
        {
            std::lock_guard<std::mutex> g(d.mu);
            d.unresponsive = false;
        }
        if (f.service == QMUX_SERVICE_CTL) {
            on_ctl_frame(d, f);
        } else {
            on_service_frame(d, f);
        }
    }
    if (d.bytes_without_frame > k_garbage_max_bytes) {
        report(d.path + " sends no QMUX frames (" + std::to_string(d.bytes_without_frame) +
               " bytes without one): not a QMI device? Given up.");
        *error = EPROTO;
        return false;
    }
    return true;
}

/* A handle's end closed without qmux_detach: its client id is released
 * for it (without waiting: this is the thread that reads the answer). */
void handle_gone(device &d, const bridge &b)
{
    std::lock_guard<std::mutex> g(d.mu);
    for (bridge &live : d.bridges) {
        if (live.local != b.local || live.closing) continue;
        live.closing = true;
        send_ctl_unwaited(d, QMI_CTL_MSG_RELEASE_CID, {live.service, live.cid});
        qmux_unhold({live.service, live.cid});
    }
}

/* A signal asked the process to end: it does once no allocation is in
 * flight (the id it brings is then held, and released with the others).
 * Under d.mu, against an allocation starting now (ctl_request refuses to
 * start one once a signal is pending), and under write_mu, so that the
 * releases do not cut into a frame another thread is writing. */
bool end_if_signalled(device &d, clock_type::time_point *since)
{
    int sig = qmux_pending_signal();
    if (!sig) return false;
    auto now = clock_type::now();
    if (*since == clock_type::time_point()) *since = now;
    std::lock_guard<std::mutex> g(d.mu);
    if (qmux_allocs_in_flight() == 0 || now - *since >= std::chrono::milliseconds(k_dying_max_ms)) {
        std::lock_guard<std::mutex> w(d.write_mu);
        qmux_release_held_and_end(sig);
    }
    return true;
}

void run(device *dp)
{
    device &d = *dp;
    std::vector<uint8_t> buf(k_read_chunk);
    clock_type::time_point signalled;
    for (;;) {
        bool dying = end_if_signalled(d, &signalled);
        std::vector<struct pollfd> fds = {{d.wake[0], POLLIN, 0}, {d.fd, POLLIN, 0}};
        std::vector<bridge> snapshot;
        {
            std::lock_guard<std::mutex> g(d.mu);
            for (auto it = d.bridges.begin(); it != d.bridges.end();) {
                if (it->closing) {
                    close(it->local);
                    it = d.bridges.erase(it);
                    continue;
                }
                fds.push_back({it->local, POLLIN, 0});
                snapshot.push_back(*it);
                ++it;
            }
        }
        if (poll(fds.data(), fds.size(), dying ? k_dying_poll_ms : -1) < 0) {
            if (errno == EINTR) continue;
            fail_all(d, errno);
            return;
        }
        if (fds[0].revents) {
            uint8_t drain[64];
            while (read(d.wake[0], drain, sizeof(drain)) > 0) {
            }
        }
        int error = 0;
        if (fds[1].revents && !from_device(d, &buf, &error)) {
            fail_all(d, error);
            return;
        }
        for (size_t i = 2; i < fds.size(); i++) {
            if (fds[i].revents && !from_handle(d, snapshot[i - 2])) handle_gone(d, snapshot[i - 2]);
        }
    }
}
}  // namespace

device &dev()
{
    static device *d = new device; /* lives until the process ends: its thread may outlast main */
    return *d;
}

void report(const std::string &what) { fprintf(stderr, "rlk: RLK_QMI_DEVICE %s\n", what.c_str()); }

void start(device &d) { std::thread(run, &d).detach(); }

namespace {

/* How long a control request made now may wait. */
clock_type::time_point request_deadline(device &d, const call_bound *bound)
{
    auto now = clock_type::now();
    auto most = now + std::chrono::milliseconds(k_qmux_ctl_timeout_ms);
    if (!bound || bound->timeout_ms == 0) return most;
    uint32_t ms = bound->timeout_ms;
    if (!d.unresponsive && ms < uint32_t(k_qmux_min_call_ms)) ms = k_qmux_min_call_ms;
    return std::min(most, bound->start + std::chrono::milliseconds(ms));
}

bool late_versions(const device &d)
{
    for (const auto &kv : d.late) {
        if (kv.second == QMI_CTL_MSG_GET_VERSION_INFO) return true;
    }
    return false;
}

}  // namespace

bool ctl_request(device &d, uint16_t msg_id, const std::vector<uint8_t> &tlvs, std::vector<uint8_t> *answer,
                 const call_bound *bound)
{
    ctl_wait w;
    w.msg_id = msg_id;
    uint8_t txn;
    clock_type::time_point deadline;
    {
        std::unique_lock<std::mutex> lk(d.mu);
        if (d.failed) return false;
        deadline = request_deadline(d, bound);
        if (msg_id == QMI_CTL_MSG_GET_VERSION_INFO && late_versions(d)) {
            /* Asked before and not answered yet: not asked again (a device
             * that does not read would fill up), the answer is waited for. */
            d.cv.wait_until(lk, deadline, [&] { return d.have_versions || d.failed; });
            return false;
        }
        if (msg_id == QMI_CTL_MSG_ALLOCATE_CID) {
            if (qmux_pending_signal()) return false; /* the process is ending */
            qmux_alloc_started();
        }
        txn = take_txn(d);
        d.waits[txn] = &w;
    }
    std::vector<uint8_t> m = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, txn, msg_id, tlvs);
    bool sent = send_frame(d, QMUX_SERVICE_CTL, 0, m.data(), m.size(), deadline);
    std::unique_lock<std::mutex> lk(d.mu);
    if (sent) d.cv.wait_until(lk, deadline, [&] { return w.done || d.failed; });
    if (w.done) {
        *answer = w.tlvs;
        return true;
    }
    d.waits.erase(txn);
    if (msg_id == QMI_CTL_MSG_ALLOCATE_CID) qmux_alloc_ended();
    if (sent && !d.failed) {
        d.late[txn] = msg_id;
        d.unresponsive = true;
    }
    return false;
}

}  // namespace qmux_link
}  // namespace rlk_host
