#include "qmux_transport.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "endpoint.h"
#include "modemd_proto.h"
#include "qmux.h"

namespace rlk_host {
namespace {

constexpr const char k_device_env[] = "RLK_QMI_DEVICE";
/* Client ids one process may hold at once (the release table of the
 * signal handler has this many slots). */
constexpr size_t k_max_clients = 64;
/* How long one write to the device may wait for room. */
constexpr int k_write_timeout_ms = 2000;
constexpr size_t k_read_chunk = 4096;

struct bridge {
    uint8_t service;
    uint8_t cid;
    int local = -1;  /* the transport's end of the pair */
    int client = -1; /* the handle's end */
    bool closing = false;
};

struct ctl_wait {
    bool done = false;
    uint16_t msg_id = 0;
    std::vector<uint8_t> tlvs;
};

struct device {
    std::mutex mu;
    std::condition_variable cv;
    std::mutex write_mu;
    int fd = -1;
    int wake[2] = {-1, -1};
    bool opened = false;
    bool failed = false;
    uint8_t next_txn = 1;
    std::map<uint8_t, ctl_wait *> waits;
    std::vector<bridge> bridges;
    bool have_versions = false;
    std::map<uint8_t, uint16_t> majors;
    qmux_reader reader;
};

device &dev()
{
    static device *d = new device; /* lives until the process ends: its thread may outlast main */
    return *d;
}

/* Release frames the exit and signal paths write: service << 8 | cid,
 * plus one; 0 is a free slot. */
std::atomic<uint32_t> g_held[k_max_clients];
std::atomic<int> g_device_fd{-1};
std::atomic<bool> g_exit_hooks{false};

/* Writes a release of every client id still held; safe in a signal
 * handler (no allocation, no locks). */
void release_all_held()
{
    int fd = g_device_fd.load();
    if (fd < 0) return;
    for (auto &slot : g_held) {
        uint32_t v = slot.exchange(0);
        if (!v) continue;
        v--;
        uint8_t f[] = {QMUX_INTERFACE_TYPE, 0, 0, 0, QMUX_SERVICE_CTL, 0,
                       QMI_CTL_FLAG_REQUEST, 0xFF, uint8_t(QMI_CTL_MSG_RELEASE_CID), 0, 5, 0,
                       QMI_CTL_TLV_INFO, 2, 0, uint8_t(v >> 8), uint8_t(v)};
        f[1] = uint8_t(sizeof(f) - 1);
        ssize_t n = write(fd, f, sizeof(f));
        (void)n;
    }
}

void on_fatal_signal(int sig)
{
    release_all_held();
    signal(sig, SIG_DFL);
    raise(sig);
}

void install_exit_hooks()
{
    if (g_exit_hooks.exchange(true)) return;
    atexit(release_all_held);
    /* Only where the signal would end the process without the program's
     * say: a program that handles the signal itself exits through exit(). */
    for (int sig : {SIGINT, SIGTERM}) {
        struct sigaction old;
        if (sigaction(sig, nullptr, &old) != 0 || (old.sa_flags & SA_SIGINFO) || old.sa_handler != SIG_DFL) continue;
        struct sigaction sa;
        memset(&sa, 0, sizeof(sa));
        sa.sa_handler = on_fatal_signal;
        sigemptyset(&sa.sa_mask);
        sigaction(sig, &sa, nullptr);
    }
}

void hold(uint8_t service, uint8_t cid, bool on)
{
    uint32_t v = (uint32_t(service) << 8 | cid) + 1;
    for (auto &slot : g_held) {
        uint32_t expect = on ? 0 : v;
        if (slot.compare_exchange_strong(expect, on ? v : 0)) return;
    }
}

/* Writes all of `data`, waiting at most k_write_timeout_ms for room. */
bool write_all(int fd, const std::vector<uint8_t> &data)
{
    size_t off = 0;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_write_timeout_ms);
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

bool send_frame(device &d, uint8_t service, uint8_t cid, const uint8_t *qmi, size_t len)
{
    std::vector<uint8_t> f;
    if (!qmux_encode(0, service, cid, qmi, len, &f)) return false;
    std::lock_guard<std::mutex> g(d.write_mu);
    return d.fd >= 0 && write_all(d.fd, f);
}

void wake(device &d)
{
    uint8_t b = 0;
    ssize_t n = write(d.wake[1], &b, 1);
    (void)n;
}

/* The device is gone (unplugged, or the simulator stopped): every handle
 * sees its connection end and reports the loss as it does today. */
void fail_all(device &d)
{
    std::lock_guard<std::mutex> g(d.mu);
    d.failed = true;
    g_device_fd.store(-1); /* nothing left to release on it */
    for (bridge &b : d.bridges) {
        hold(b.service, b.cid, false);
        close(b.local);
    }
    d.bridges.clear();
    d.cv.notify_all();
}

void on_ctl_frame(device &d, const qmux_frame &f)
{
    qmi_ctl_header h;
    if (!qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h)) return;
    const uint8_t *tlvs = f.qmi.data() + QMI_CTL_HEADER_LEN;
    std::lock_guard<std::mutex> g(d.mu);
    if (h.flags == QMI_CTL_FLAG_RESPONSE) {
        auto it = d.waits.find(h.txn);
        if (it == d.waits.end() || it->second->msg_id != h.msg_id) return; /* stale: another process's */
        it->second->tlvs.assign(tlvs, tlvs + h.len);
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
                hold(b.service, b.cid, false);
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
 * the device is gone. */
bool from_device(device &d, std::vector<uint8_t> *buf)
{
    ssize_t n = read(d.fd, buf->data(), buf->size());
    if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) return false;
    if (n > 0) d.reader.feed(buf->data(), size_t(n));
    qmux_frame f;
    while (d.reader.next(&f)) {
        if (!(f.flags & QMUX_FLAG_FROM_SERVICE)) continue;
        if (f.service == QMUX_SERVICE_CTL) {
            on_ctl_frame(d, f);
        } else {
            on_service_frame(d, f);
        }
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
        hold(live.service, live.cid, false);
        std::vector<uint8_t> tlvs;
        qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {live.service, live.cid});
        uint8_t txn = d.next_txn++;
        if (d.next_txn == 0) d.next_txn = 1;
        std::vector<uint8_t> m = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, txn, QMI_CTL_MSG_RELEASE_CID, tlvs);
        send_frame(d, QMUX_SERVICE_CTL, 0, m.data(), m.size());
    }
}

void run(device *dp)
{
    device &d = *dp;
    std::vector<uint8_t> buf(k_read_chunk);
    for (;;) {
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
        if (poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR) continue;
            fail_all(d);
            return;
        }
        if (fds[0].revents) {
            uint8_t drain[64];
            while (read(d.wake[0], drain, sizeof(drain)) > 0) {
            }
        }
        if (fds[1].revents && !from_device(d, &buf)) {
            fail_all(d);
            return;
        }
        for (size_t i = 2; i < fds.size(); i++) {
            if (fds[i].revents && !from_handle(d, snapshot[i - 2])) handle_gone(d, snapshot[i - 2]);
        }
    }
}

/* Opens the device once per process.  Answers left on it by an earlier
 * client are read away first, so none is taken for this process's. */
bool ensure_open(device &d)
{
    std::lock_guard<std::mutex> g(d.mu);
    if (d.opened) return !d.failed;
    d.opened = true;
    const char *path = getenv(k_device_env);
    d.fd = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (d.fd < 0 || pipe2(d.wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        d.failed = true;
        return false;
    }
    struct termios t;
    if (tcgetattr(d.fd, &t) == 0) { /* a terminal (the simulator's): raw, as a USB device is */
        cfmakeraw(&t);
        tcsetattr(d.fd, TCSANOW, &t);
    }
    uint8_t junk[k_read_chunk];
    while (read(d.fd, junk, sizeof(junk)) > 0) {
    }
    /* Transactions start where a stale answer is least likely to match. */
    d.next_txn = uint8_t(getpid() | 1);
    g_device_fd.store(d.fd);
    std::thread(run, &d).detach();
    return true;
}

/* One control request; false without an answer in time. */
bool ctl_request(device &d, uint16_t msg_id, const std::vector<uint8_t> &tlvs, std::vector<uint8_t> *answer)
{
    ctl_wait w;
    w.msg_id = msg_id;
    uint8_t txn;
    {
        std::lock_guard<std::mutex> g(d.mu);
        if (d.failed) return false;
        txn = d.next_txn++;
        if (d.next_txn == 0) d.next_txn = 1;
        d.waits[txn] = &w;
    }
    std::vector<uint8_t> m = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, txn, msg_id, tlvs);
    bool sent = send_frame(d, QMUX_SERVICE_CTL, 0, m.data(), m.size());
    std::unique_lock<std::mutex> lk(d.mu);
    if (sent) {
        d.cv.wait_for(lk, std::chrono::milliseconds(k_qmux_ctl_timeout_ms), [&] { return w.done || d.failed; });
    }
    d.waits.erase(txn);
    if (!w.done) return false;
    *answer = w.tlvs;
    return true;
}

bool succeeded(const std::vector<uint8_t> &answer)
{
    uint16_t err = 1;
    return qmi_result_read(answer.data(), answer.size(), &err) && err == 0;
}

}  // namespace

bool qmux_mode()
{
    const char *path = getenv(k_device_env);
    return path && *path;
}

bool qmux_carries(uint32_t service)
{
    return qmux_mode() && (service <= QMUX_SERVICE_MAX || modemd_socket_is_default());
}

bool qmux_lookup(uint32_t service, uint32_t *major)
{
    if (service > QMUX_SERVICE_MAX || service == QMUX_SERVICE_CTL) return false;
    device &d = dev();
    if (!ensure_open(d)) return false;
    bool have;
    {
        std::lock_guard<std::mutex> g(d.mu);
        have = d.have_versions;
    }
    if (!have) {
        std::vector<uint8_t> answer, list;
        if (!ctl_request(d, QMI_CTL_MSG_GET_VERSION_INFO, {}, &answer) || !succeeded(answer) ||
            !qmi_tlv_find(answer.data(), answer.size(), QMI_CTL_TLV_INFO, &list) || list.empty()) {
            return false;
        }
        std::lock_guard<std::mutex> g(d.mu);
        for (size_t i = 0; i < list[0] && 1 + 5 * (i + 1) <= list.size(); i++) {
            const uint8_t *e = list.data() + 1 + 5 * i;
            d.majors[e[0]] = uint16_t(e[1] | e[2] << 8);
        }
        d.have_versions = true;
    }
    std::lock_guard<std::mutex> g(d.mu);
    auto it = d.majors.find(uint8_t(service));
    if (it == d.majors.end()) return false;
    *major = it->second;
    return true;
}

int qmux_attach(uint32_t service)
{
    if (service > QMUX_SERVICE_MAX || service == QMUX_SERVICE_CTL) return -1;
    device &d = dev();
    if (!ensure_open(d)) return -1;
    install_exit_hooks();
    std::vector<uint8_t> tlvs, answer, v;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {uint8_t(service)});
    if (!ctl_request(d, QMI_CTL_MSG_ALLOCATE_CID, tlvs, &answer) || !succeeded(answer) ||
        !qmi_tlv_find(answer.data(), answer.size(), QMI_CTL_TLV_INFO, &v) || v.size() != 2 || v[0] != service) {
        return -1;
    }
    int sv[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sv) != 0) {
        std::vector<uint8_t> ignored;
        ctl_request(d, QMI_CTL_MSG_RELEASE_CID, v, &ignored);
        return -1;
    }
    {
        std::lock_guard<std::mutex> g(d.mu);
        hold(v[0], v[1], true);
        d.bridges.push_back({v[0], v[1], sv[0], sv[1], false});
    }
    wake(d);
    return sv[1];
}

void qmux_detach(int fd)
{
    device &d = dev();
    std::vector<uint8_t> v;
    {
        std::lock_guard<std::mutex> g(d.mu);
        for (bridge &b : d.bridges) {
            if (b.client != fd || b.closing) continue;
            b.closing = true;
            hold(b.service, b.cid, false);
            v = {b.service, b.cid};
        }
    }
    if (v.empty()) return; /* revoked, or the device is gone */
    wake(d);
    std::vector<uint8_t> tlvs, answer;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, v);
    ctl_request(d, QMI_CTL_MSG_RELEASE_CID, tlvs, &answer);
}

}  // namespace rlk_host
