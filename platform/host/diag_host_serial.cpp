/* The host diag library over a serial diag port (RLK_DIAG_DEVICE: a USB
 * modem's /dev/ttyUSB0 and the like, or rlk-modemd's --diag-port link).
 *
 * Such a port carries bare HDLC frames: no envelope, no processor, no DCI
 * tag.  The link keeps the commands it sent that wait for an answer, in
 * order; a frame from the port is the answer of the oldest waiting command
 * whose code it carries (or whose code an error answer echoes).  Anything
 * else is skipped: log packets (0x10), event reports (0x60 with events),
 * messages, and answers nobody waits for any more.  A command supersedes a
 * waiting one with the same code (its caller has given up: the tool sends
 * one command at a time), so a late answer cannot be taken for a newer one.
 *
 * Only the local processor is there (remote mask 0).  DCI is served over the
 * same frames: the DCI client of processor 0 registers (MPSS up), its
 * requests go out as commands and each answer comes back as the request's
 * final response, which the DCI layer hands out in 4096-byte pieces.  Log
 * and event streams never reach DCI clients.
 *
 * The device is opened raw (no echo, no line discipline) and locked with
 * flock against another user of the same port (a second rlk waits for it
 * at most k_lock_wait_ms); what a previous user left unread is read away.
 * A port that vanishes (unplugged, pty closed) ends the link: waiting
 * commands end by their time-out. */
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <deque>

#include "diag_channel.h"
#include "diag_host_internal.h"
#include "diag_lsm_dci.h"
#include "hdlc.h"

namespace rlk_host {
namespace diag {
namespace {

constexpr const char k_device_env[] = "RLK_DIAG_DEVICE";
constexpr int k_lock_wait_ms = 1000;
constexpr int k_lock_poll_ms = 10;
constexpr int k_write_timeout_ms = 2000;
constexpr int k_drain_ms = 200;
constexpr size_t k_read_chunk = 16384;
constexpr size_t k_max_waiting = 64;

/* Codes the port sends on its own, never as an answer to another code. */
constexpr uint8_t k_code_log = 0x10;
constexpr uint8_t k_code_event = 0x60;
/* Error answers: the code, then the request. */
constexpr uint8_t k_error_codes[] = {0x13, 0x14, 0x15, 0x16, 0x18, 0x42, 0x47};

struct waiting_cmd {
    uint8_t code;
    uint32_t data_type;
    uint32_t tag;
};

struct serial_state {
    std::mutex mu;
    std::mutex write_mu;
    std::deque<waiting_cmd> waiting;
    std::shared_ptr<link> owner; /* the link `waiting` belongs to */
};

serial_state &ss()
{
    static serial_state *s = new serial_state; /* a reader may outlive main */
    return *s;
}

bool is_error_answer(const std::vector<uint8_t> &f, uint8_t code)
{
    if (f.size() < 2 || f[1] != code) return false;
    for (uint8_t e : k_error_codes) {
        if (f[0] == e) return true;
    }
    return false;
}

/* Whether frame `f` answers a command with code `code`.  An EVENT_REPORT
 * answer is `0x60, u16 0`; a report carrying events is not one. */
bool answers(const std::vector<uint8_t> &f, uint8_t code)
{
    if (f[0] == code) {
        if (code == k_code_event) return f.size() == 3 && f[1] == 0 && f[2] == 0;
        return true;
    }
    return code != k_code_log && is_error_answer(f, code);
}

void on_port_frame(const std::shared_ptr<link> &l, const std::vector<uint8_t> &f)
{
    if (f.empty()) return;
    waiting_cmd w;
    {
        std::lock_guard<std::mutex> lk(ss().mu);
        if (ss().owner != l) return;
        auto it = ss().waiting.begin();
        while (it != ss().waiting.end() && !answers(f, it->code)) ++it;
        if (it == ss().waiting.end()) return; /* a log, an event, a stale answer */
        w = *it;
        ss().waiting.erase(it);
    }
    uint32_t tag = w.data_type == DCI_PKT_TYPE ? (w.tag | DIAG_TAG_FINAL) : 0;
    deliver_frame(w.data_type, MSM, tag, f);
}

struct frame_sink {
    std::shared_ptr<link> l;
};

void reader_main(std::shared_ptr<link> l)
{
    std::vector<uint8_t> buf(k_read_chunk);
    hdlc_decoder dec;
    frame_sink sink = {l};
    for (;;) {
        struct pollfd p[2] = {{l->fd, POLLIN, 0}, {l->wake[0], POLLIN, 0}};
        if (poll(p, 2, -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        if (p[1].revents) break; /* closed by the library */
        if (p[0].revents & (POLLERR | POLLNVAL)) break;
        ssize_t n = read(l->fd, buf.data(), buf.size());
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (n <= 0) break; /* the port is gone */
        dec.feed(
            buf.data(), size_t(n),
            [](void *ctx, hdlc_status status, const uint8_t *payload, size_t len) {
                if (status != HDLC_OK) return;
                on_port_frame(static_cast<frame_sink *>(ctx)->l, std::vector<uint8_t>(payload, payload + len));
            },
            &sink);
    }
    {
        /* The port is let go now (the device itself is closed with the
         * last reference to the link, which the port's state drops): a
         * session opened right after this one must not wait for the lock. */
        std::lock_guard<std::mutex> lk(ss().mu);
        flock(l->fd, LOCK_UN);
        if (ss().owner == l) ss().owner.reset();
        ss().waiting.clear();
    }
    {
        std::lock_guard<std::mutex> lk(g().mu);
        l->done = true;
    }
    link_lost(l);
}

bool lock_port(int fd)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_lock_wait_ms);
    for (;;) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) return true;
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        usleep(k_lock_poll_ms * 1000);
    }
}

/* Reads away what the port holds for nobody (bounded: a port that streams
 * logs never runs dry). */
void drain(int fd)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_drain_ms);
    uint8_t junk[4096];
    while (read(fd, junk, sizeof(junk)) > 0 && std::chrono::steady_clock::now() < deadline) {
    }
}

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

/* The answer of a session op, which the library gives itself. */
void answer_session(uint32_t op, int32_t proc)
{
    uint32_t status = DIAG_SESSION_OK;
    std::vector<uint8_t> data;
    switch (op) {
    case DIAG_SESSION_REMOTE_MASK:
        diag_put_u16(&data, 0);
        break;
    case DIAG_SESSION_DCI_SUPPORT:
        if (proc == MSM) {
            diag_put_u16(&data, DIAG_CON_MPSS);
        } else {
            status = DIAG_SESSION_BAD_PROC;
        }
        break;
    case DIAG_SESSION_DCI_REGISTER:
        if (proc != MSM) status = DIAG_SESSION_BAD_PROC;
        break;
    case DIAG_SESSION_DCI_RELEASE:
        break;
    default:
        status = DIAG_SESSION_BAD_OP;
    }
    std::vector<uint8_t> answer;
    diag_put_u32(&answer, status);
    answer.insert(answer.end(), data.begin(), data.end());
    deliver_frame(DCI_DATA_TYPE, proc, op, answer);
}

}  // namespace

bool serial_mode()
{
    const char *path = getenv(k_device_env);
    return path && *path;
}

std::shared_ptr<link> serial_open()
{
    int fd = open(getenv(k_device_env), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return nullptr;
    auto l = std::make_shared<link>();
    l->fd = fd;
    l->serial = true;
    if (!lock_port(fd) || pipe2(l->wake, O_CLOEXEC | O_NONBLOCK) != 0) return nullptr;
    struct termios t;
    if (tcgetattr(fd, &t) == 0) {
        cfmakeraw(&t);
        t.c_cc[VMIN] = 1;
        t.c_cc[VTIME] = 0;
        tcsetattr(fd, TCSANOW, &t);
    }
    drain(fd);
    {
        std::lock_guard<std::mutex> lk(ss().mu);
        ss().owner = l;
        ss().waiting.clear();
    }
    {
        std::lock_guard<std::mutex> lk(g().mu);
        g().conn = l;
    }
    std::thread reader(reader_main, l);
    {
        std::lock_guard<std::mutex> lk(g().mu);
        l->reader = reader.get_id();
    }
    reader.detach();
    return l;
}

bool serial_send(const std::shared_ptr<link> &l, uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *data,
                 size_t len)
{
    if (data_type == DCI_DATA_TYPE) {
        answer_session(tag, proc);
        return true;
    }
    if (proc != MSM || !data || len == 0) return false;
    {
        std::lock_guard<std::mutex> lk(ss().mu);
        if (ss().owner != l) return false;
        for (auto it = ss().waiting.begin(); it != ss().waiting.end();) {
            it = it->code == data[0] ? ss().waiting.erase(it) : it + 1;
        }
        if (ss().waiting.size() >= k_max_waiting) ss().waiting.pop_front();
        ss().waiting.push_back({data[0], data_type, tag & DIAG_TAG_MAX});
    }
    std::vector<uint8_t> frame;
    hdlc_encode(data, len, &frame);
    bool sent;
    {
        std::lock_guard<std::mutex> w(ss().write_mu);
        sent = write_all(l->fd, frame);
    }
    if (!sent && (errno == EIO || errno == ENXIO || errno == ENODEV)) {
        /* The port is gone: the session ends now, as a caller who saw this
         * send fail expects, rather than when the reader notices. */
        link_lost(l);
        link_interrupt(*l);
    }
    if (!sent) {
        std::lock_guard<std::mutex> lk(ss().mu);
        for (auto it = ss().waiting.begin(); it != ss().waiting.end(); ++it) {
            if (it->code == data[0] && it->tag == (tag & DIAG_TAG_MAX)) {
                ss().waiting.erase(it);
                break;
            }
        }
    }
    return sent;
}

}  // namespace diag
}  // namespace rlk_host
