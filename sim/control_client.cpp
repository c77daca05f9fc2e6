#include "control_client.h"

#include <errno.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include <vector>

#include "modemd_paths.h"
#include "modemd_proto.h"

namespace modemd {
namespace {

/* Pause between connect attempts while the listener's queue is full. */
constexpr int k_connect_retry_ms = 5;

int64_t now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return int64_t(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

class session {
public:
    explicit session(int timeout_ms) : deadline_(now_ms() + (timeout_ms > 0 ? timeout_ms : 0)) {}
    ~session()
    {
        if (fd_ >= 0) close(fd_);
    }

    bool connect_to(const std::string &path, std::string *error);
    int fd() const { return fd_; }
    bool send_packet(const void *data, size_t len, std::string *error);
    /* One packet into `buf`; its length, or -1 (error says why). */
    ssize_t recv_packet(std::vector<char> &buf, std::string *error);

private:
    int left_ms() const
    {
        int64_t left = deadline_ - now_ms();
        return left > 0 ? int(left) : 0;
    }
    /* Waits for `events` until the deadline. */
    bool wait_for(short events, std::string *error);

    int64_t deadline_;
    int fd_ = -1;
};

bool session::wait_for(short events, std::string *error)
{
    for (;;) {
        struct pollfd p = {fd_, events, 0};
        int n = poll(&p, 1, left_ms());
        if (n > 0) return true;
        if (n < 0 && errno == EINTR) continue;
        *error = n == 0 ? "no answer in time" : std::string("poll: ") + strerror(errno);
        return false;
    }
}

bool session::connect_to(const std::string &path, std::string *error)
{
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    if (path.size() >= sizeof(addr.sun_path)) {
        *error = "socket path too long";
        return false;
    }
    memcpy(addr.sun_path, path.c_str(), path.size());
    fd_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd_ < 0) {
        *error = strerror(errno);
        return false;
    }
    /* A full listener queue answers EAGAIN at once: try again until the
     * deadline. */
    while (connect(fd_, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)) != 0) {
        if (errno != EAGAIN || left_ms() == 0) {
            *error = errno == EAGAIN ? "the simulator does not take connections" : strerror(errno);
            return false;
        }
        usleep(k_connect_retry_ms * 1000);
    }
    return true;
}

bool session::send_packet(const void *data, size_t len, std::string *error)
{
    for (;;) {
        ssize_t n = send(fd_, data, len, MSG_NOSIGNAL);
        if (n == ssize_t(len)) return true;
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            if (!wait_for(POLLOUT, error)) return false;
            continue;
        }
        *error = std::string("send: ") + (n < 0 ? strerror(errno) : "short");
        return false;
    }
}

ssize_t session::recv_packet(std::vector<char> &buf, std::string *error)
{
    for (;;) {
        ssize_t n = recv(fd_, buf.data(), buf.size(), 0);
        if (n > 0) return n;
        if (n == 0) {
            *error = "connection closed before the answer was complete";
            return -1;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            *error = std::string("recv: ") + strerror(errno);
            return -1;
        }
        if (!wait_for(POLLIN, error)) return -1;
    }
}

}  // namespace

bool control_request(const std::string &socket_path, const std::string &request, int timeout_ms,
                     std::string *answer, std::string *error)
{
    answer->clear();
    session s(timeout_ms);
    if (!s.connect_to(socket_path, error)) return false;
    /* At the default socket, only a simulator of this user (or root) may
     * receive what the user asks. */
    if (socket_path == modemd_default_socket_path() && !modemd_peer_is_trusted(s.fd(), error)) return false;
    modemd_hello hello = {MODEMD_HELLO_MAGIC, MODEMD_CONN_CONTROL, MODEMD_CONTROL_PIECES, 0};
    if (!s.send_packet(&hello, sizeof(hello), error)) return false;
    std::string piece;
    size_t off = 0;
    do {
        size_t n = request.size() - off < MODEMD_CONTROL_PIECE_DATA ? request.size() - off : MODEMD_CONTROL_PIECE_DATA;
        piece.assign(1, off + n == request.size() ? char(MODEMD_PIECE_LAST) : char(MODEMD_PIECE_MORE));
        piece.append(request, off, n);
        if (!s.send_packet(piece.data(), piece.size(), error)) return false;
        off += n;
    } while (off < request.size());

    std::vector<char> buf(MODEMD_CONTROL_PIECE_DATA + 1);
    for (;;) {
        ssize_t n = s.recv_packet(buf, error);
        if (n < 0) return false;
        if (buf[0] != MODEMD_PIECE_MORE && buf[0] != MODEMD_PIECE_LAST) {
            *error = "answer piece without its flag";
            return false;
        }
        answer->append(buf.data() + 1, size_t(n) - 1);
        if (buf[0] == MODEMD_PIECE_LAST) return true;
    }
}

}  // namespace modemd
