/* Connection I/O of the daemon: the listener, per-connection output queues
 * sent without ever waiting for a client, the hello deadline, descriptor
 * exhaustion and the pieces of control requests and answers.
 *
 * One thread serves every client, so nothing here may wait for a client:
 * a packet the socket does not take is queued and sent when the socket is
 * writable again, and a client that lets its queue grow past
 * k_out_queue_max_bytes is disconnected. */
#include "daemon.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace modemd {
namespace {

/* Descriptors kept free for the state store's own files (atomic writes
 * need a temporary file and the directory) and the log's rotation. */
constexpr uint64_t k_fd_headroom = 16;
/* Connections taken per wake-up of the listener, so that a burst of
 * connects cannot hold the other clients up. */
constexpr int k_accepts_per_wakeup = 32;
/* Accepts are paused this long when even the reserved descriptor cannot
 * take a waiting client (the system as a whole is out of descriptors). */
constexpr uint32_t k_accept_pause_ms = 100;
/* Largest control request (in pieces) the daemon assembles. */
constexpr size_t k_control_request_max = 4u << 20;
constexpr uint64_t k_no_fd_limit = uint64_t(1) << 20;

}  // namespace

bool connection::send(const void *data, size_t len) const
{
    if (sink) return !closing && sink(data, len);
    return owner && owner->queue_packet(id, data, len);
}

uint64_t daemon::open_pseudo_client(sim_service &s, std::function<bool(const void *, size_t)> sink)
{
    auto c = std::make_unique<connection>();
    c->id = next_conn_id_++;
    c->owner = this;
    c->kind = MODEMD_CONN_CLIENT;
    c->hello_done = true;
    c->service = s.obj->service_id;
    c->attached = &s;
    c->sink = std::move(sink);
    uint64_t id = c->id;
    conns_[id] = std::move(c);
    update_idle_timer();
    return id;
}

void daemon::pseudo_request(uint64_t conn_id, const uint8_t *data, size_t len)
{
    auto it = conns_.find(conn_id);
    if (it != conns_.end() && it->second->sink) on_qmi_request(*it->second, data, len);
}

connection *daemon::find_connection(uint64_t conn_id)
{
    auto it = conns_.find(conn_id);
    return it == conns_.end() ? nullptr : it->second.get();
}

bool daemon::open_listener(std::string *error)
{
    struct rlimit rl;
    fd_limit_ = getrlimit(RLIMIT_NOFILE, &rl) == 0 && rl.rlim_cur != RLIM_INFINITY ? uint64_t(rl.rlim_cur)
                                                                                     : k_no_fd_limit;
    reserve_fd_ = open("/dev/null", O_RDONLY | O_CLOEXEC);

    /* The socket: a stale one of a dead simulator is replaced (we hold the
     * state lock, so nobody else is serving this state). */
    listen_fd_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    if (opts_.socket_path.size() >= sizeof(addr.sun_path)) {
        *error = "socket path too long: " + opts_.socket_path;
        return false;
    }
    memcpy(addr.sun_path, opts_.socket_path.c_str(), opts_.socket_path.size());
    unlink(opts_.socket_path.c_str());
    if (bind(listen_fd_, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)) != 0 || listen(listen_fd_, 128) != 0) {
        *error = "cannot listen on " + opts_.socket_path + ": " + strerror(errno);
        return false;
    }
    loop_.add_fd(listen_fd_, [this](uint32_t) { on_accept(); });
    return true;
}

void daemon::on_accept()
{
    for (int i = 0; i < k_accepts_per_wakeup && accept_one(); i++) {
    }
    update_idle_timer();
}

void daemon::refuse_connection(int fd, const char *why)
{
    close(fd);
    log("connection refused: %s", why);
}

/* Takes one waiting client; false when there is none (or no more can be
 * taken now). */
bool daemon::accept_one()
{
    int fd = accept4(listen_fd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd < 0 && (errno == EMFILE || errno == ENFILE)) {
        /* The client stays queued and the listener stays readable: take it
         * with the reserved descriptor and drop it, or pause accepting. */
        if (reserve_fd_ >= 0) close(reserve_fd_);
        fd = accept4(listen_fd_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd >= 0) refuse_connection(fd, "out of file descriptors");
        reserve_fd_ = open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (fd >= 0) return true;
        log("out of file descriptors: accepting paused for %u ms", k_accept_pause_ms);
        loop_.set_fd_events(listen_fd_, 0);
        loop_.add_timer(k_accept_pause_ms, [this] { loop_.set_fd_events(listen_fd_, EPOLLIN); });
        return false;
    }
    if (fd < 0) return errno == EINTR || errno == ECONNABORTED;
    /* Descriptors are handed out lowest first: every one below `fd` is in
     * use, so this leaves the store its headroom. */
    if (uint64_t(fd) + k_fd_headroom >= fd_limit_) {
        refuse_connection(fd, "too many connections");
        return true;
    }
    auto c = std::make_unique<connection>();
    c->id = next_conn_id_++;
    c->fd = fd;
    c->owner = this;
    uint64_t id = c->id;
    c->hello_timer = loop_.add_timer(opts_.hello_timeout_ms, [this, id] {
        auto it = conns_.find(id);
        if (it == conns_.end()) return;
        it->second->hello_timer = 0;
        log("connection %llu: no hello within %u ms: closed", (unsigned long long)id, opts_.hello_timeout_ms);
        close_connection(id);
    });
    conns_[id] = std::move(c);
    loop_.add_fd(fd, [this, id](uint32_t events) { on_conn_event(id, events); });
    return true;
}

void daemon::on_conn_event(uint64_t conn_id, uint32_t events)
{
    auto it = conns_.find(conn_id);
    if (it == conns_.end()) return;
    connection &c = *it->second;
    if (c.closing) {
        if (events & (EPOLLHUP | EPOLLERR)) close_connection(conn_id);
        return;
    }
    if (events & EPOLLOUT) {
        flush_output(c);
        if (!conns_.count(conn_id)) return;
    }
    if (events & (EPOLLIN | EPOLLHUP | EPOLLERR)) on_readable(conn_id);
}

void daemon::on_readable(uint64_t conn_id)
{
    auto it = conns_.find(conn_id);
    if (it == conns_.end()) return;
    connection &c = *it->second;
    static uint8_t buf[MODEMD_MAX_PACKET];
    ssize_t n = recv(c.fd, buf, sizeof(buf), MSG_DONTWAIT);
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (n <= 0) {
        close_connection(conn_id);
        return;
    }
    if (!c.hello_done) {
        on_hello(c, buf, size_t(n));
        return;
    }
    switch (c.kind) {
    case MODEMD_CONN_CLIENT:
        on_qmi_request(c, buf, size_t(n));
        break;
    case MODEMD_CONN_DIAG:
        if (diag_) diag_->on_packet(c, buf, size_t(n));
        break;
    case MODEMD_CONN_CONTROL:
        on_control_packet(c, buf, size_t(n));
        break;
    default:
        break; /* lookups only listen */
    }
}

/* One control packet: a whole request, or a piece of one from a client
 * that asked for pieces.  The answer is queued as a whole: it is the only
 * answer of the request, so it counts against the queue's bound only by
 * what was waiting before it. */
void daemon::on_control_packet(connection &c, const uint8_t *data, size_t len)
{
    bool pieces = c.service & MODEMD_CONTROL_PIECES;
    std::string answer;
    if (!pieces) {
        answer = control(std::string(reinterpret_cast<const char *>(data), len));
        if (answer.size() > MODEMD_MAX_PACKET) {
            answer = "error answer of " + std::to_string(answer.size()) +
                     " bytes does not fit one packet (ask for pieces in the hello)";
        }
        queue_answer(c, answer);
        return;
    }
    if (data[0] != MODEMD_PIECE_MORE && data[0] != MODEMD_PIECE_LAST) {
        close_later(c, "control piece without its flag");
        return;
    }
    if (c.request.size() + len - 1 > k_control_request_max) {
        c.request_too_large = true;
        c.request.clear();
    }
    if (!c.request_too_large) c.request.append(reinterpret_cast<const char *>(data) + 1, len - 1);
    if (data[0] == MODEMD_PIECE_MORE) return;
    if (c.request_too_large) {
        answer = "error request larger than " + std::to_string(k_control_request_max) + " bytes";
    } else {
        answer = control(c.request);
    }
    c.request.clear();
    c.request_too_large = false;
    queue_answer(c, answer);
}

void daemon::queue_answer(connection &c, const std::string &answer)
{
    if (c.out_bytes > k_out_queue_max_bytes || c.out.size() > k_out_queue_max_packets) {
        close_later(c, "client does not read its answers");
        return;
    }
    if (!(c.service & MODEMD_CONTROL_PIECES)) {
        queue_packet(c.id, answer.data(), answer.size(), false);
        return;
    }
    std::vector<uint8_t> piece;
    size_t off = 0;
    do {
        size_t n = answer.size() - off < MODEMD_CONTROL_PIECE_DATA ? answer.size() - off : MODEMD_CONTROL_PIECE_DATA;
        piece.assign(1, off + n == answer.size() ? MODEMD_PIECE_LAST : MODEMD_PIECE_MORE);
        piece.insert(piece.end(), answer.begin() + long(off), answer.begin() + long(off + n));
        if (!queue_packet(c.id, piece.data(), piece.size(), false)) return;
        off += n;
    } while (off < answer.size());
}

bool daemon::queue_packet(uint64_t conn_id, const void *data, size_t len, bool bounded)
{
    auto it = conns_.find(conn_id);
    if (it == conns_.end() || it->second->closing) return false;
    connection &c = *it->second;
    if (c.out.empty()) {
        ssize_t n;
        do {
            n = ::send(c.fd, data, len, MSG_DONTWAIT | MSG_NOSIGNAL);
        } while (n < 0 && errno == EINTR);
        if (n == ssize_t(len)) return true;
        if (n < 0 && errno == EMSGSIZE) {
            log("connection %llu: packet of %zu bytes too large to send: dropped", (unsigned long long)conn_id, len);
            return false;
        }
        if (n >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
            close_later(c, nullptr); /* the client is gone */
            return false;
        }
    }
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    c.out.emplace_back(bytes, bytes + len);
    c.out_bytes += len;
    if (bounded && (c.out_bytes > k_out_queue_max_bytes || c.out.size() > k_out_queue_max_packets)) {
        log("connection %llu: client does not read (%zu packets, %zu bytes waiting): disconnected",
            (unsigned long long)conn_id, c.out.size(), c.out_bytes);
        close_later(c, nullptr);
        return false;
    }
    if (c.out.size() == 1) loop_.set_fd_events(c.fd, EPOLLIN | EPOLLOUT);
    return true;
}

void daemon::flush_output(connection &c)
{
    while (!c.out.empty()) {
        const std::vector<uint8_t> &p = c.out.front();
        ssize_t n = ::send(c.fd, p.data(), p.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
        if (n < 0 && errno != EMSGSIZE) {
            close_connection(c.id);
            return;
        }
        c.out_bytes -= p.size();
        c.out.pop_front();
    }
    loop_.set_fd_events(c.fd, EPOLLIN);
}

/* Closes `c` once the current event is handled: callers may be walking the
 * connections (indications, announcements). */
void daemon::close_later(connection &c, const char *why)
{
    if (c.closing) return;
    c.closing = true;
    if (why) log("connection %llu: %s: disconnected", (unsigned long long)c.id, why);
    loop_.set_fd_events(c.fd, 0);
    uint64_t id = c.id;
    loop_.add_timer(0, [this, id] { close_connection(id); });
}

void daemon::close_connection(uint64_t conn_id)
{
    auto it = conns_.find(conn_id);
    if (it == conns_.end()) return;
    connection &c = *it->second;
    if (c.hello_timer) loop_.cancel_timer(c.hello_timer);
    if (c.kind == MODEMD_CONN_DIAG && c.hello_done && diag_) diag_->on_close(c);
    for (auto &kv : close_listeners_) kv.second(conn_id);
    if (c.fd >= 0) {
        loop_.remove_fd(c.fd);
        close(c.fd);
    }
    conns_.erase(it);
    update_idle_timer();
}

}  // namespace modemd
