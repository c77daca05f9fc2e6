/* The host diag library's link to rlk-modemd: connection, reader thread,
 * packet dispatch and session ops. */
#include <errno.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "diag_channel.h"
#include "diag_host_internal.h"
#include "endpoint.h"

namespace rlk_host {
namespace diag {
namespace {

/* Delivers a callback-mode response to the callback of its processor. */
void on_raw_response(int32_t proc, std::vector<uint8_t> &payload)
{
    if (proc < 0 || proc >= NUM_PROC || payload.empty()) return;
    callback_slot slot;
    {
        std::lock_guard<std::mutex> lk(g().mu);
        if (g().logging_mode != CALLBACK_MODE) return;
        slot = g().callbacks[proc];
    }
    if (slot.fn) slot.fn(payload.data(), int(payload.size()), slot.ctx);
}

void on_session_answer(uint32_t op, const std::vector<uint8_t> &payload)
{
    std::lock_guard<std::mutex> lk(g().mu);
    g().answers[op] = payload;
    g().cv.notify_all();
}

void dispatch(const diag_packet &pkt)
{
    for (const hdlc_frame &f : pkt.frames) {
        if (f.status == HDLC_OK) deliver_frame(pkt.env.data_type, pkt.env.proc, pkt.env.tag, f.payload);
    }
}

void forget_link(const std::shared_ptr<link> &l) { link_lost(l); }

void reader_main(std::shared_ptr<link> l)
{
    std::vector<uint8_t> buf(MODEMD_MAX_PACKET);
    for (;;) {
        long n = modemd_recv(l->fd, buf.data(), buf.size(), -1);
        if (n <= 0) break;
        diag_packet pkt;
        if (diag_packet_parse(buf.data(), size_t(n), &pkt)) dispatch(pkt);
    }
    {
        std::lock_guard<std::mutex> lk(g().mu);
        l->done = true;
    }
    forget_link(l); /* the link was lost */
}

}  // namespace

void deliver_frame(uint32_t data_type, int32_t proc, uint32_t tag, const std::vector<uint8_t> &frame)
{
    std::vector<uint8_t> payload = frame;
    switch (data_type) {
    case USER_SPACE_RAW_DATA_TYPE:
        on_raw_response(proc, payload);
        break;
    case DCI_PKT_TYPE:
        dci_on_response(proc, tag, payload);
        break;
    case DCI_DATA_TYPE:
        if (tag == DIAG_STREAM_LOG_TAG || tag == DIAG_STREAM_EVENT_TAG) {
            dci_on_record(proc, tag, payload);
        } else {
            on_session_answer(tag, payload);
        }
        break;
    default:
        break;
    }
}

/* Ends the session carried by `l` unless a newer link has replaced it, and
 * wakes everyone waiting for an answer on it. */
void link_lost(const std::shared_ptr<link> &l)
{
    std::lock_guard<std::mutex> lk(g().mu);
    if (g().conn == l) {
        g().conn.reset();
        g().lost = l;
    }
    g().cv.notify_all();
}

void link_interrupt(const link &l)
{
    if (!l.serial) {
        shutdown(l.fd, SHUT_RDWR);
        return;
    }
    uint8_t b = 0;
    ssize_t n = write(l.wake[1], &b, 1);
    (void)n;
}

link::~link()
{
    if (fd >= 0) close(fd);
    for (int w : wake) {
        if (w >= 0) close(w);
    }
}

state &g()
{
    static state *s = new state; /* never destroyed: see diag_host_internal.h */
    return *s;
}

std::shared_ptr<link> link_get()
{
    std::lock_guard<std::mutex> lk(g().mu);
    return g().conn;
}

bool link_send(uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *data, size_t len)
{
    std::shared_ptr<link> l = link_get();
    if (!l) return false;
    if (l->serial) return serial_send(l, data_type, proc, tag, data, len);
    std::vector<uint8_t> pkt;
    diag_packet_build(data_type, proc, tag, data, len, &pkt);
    if (modemd_send(l->fd, pkt.data(), pkt.size())) return true;
    if (errno == EPIPE || errno == ECONNRESET || errno == ENOTCONN) {
        /* The simulator is gone.  The session ends now rather than when the
         * reader thread gets round to noticing, so that a caller who saw
         * this send fail also sees the session closed. */
        forget_link(l);
        shutdown(l->fd, SHUT_RDWR);
    }
    return false;
}

bool on_reader_thread()
{
    std::lock_guard<std::mutex> lk(g().mu);
    return g().conn && g().conn->reader == std::this_thread::get_id();
}

bool session_request(uint32_t op, int32_t proc, uint32_t *status, std::vector<uint8_t> *data)
{
    if (on_reader_thread()) {
        link_send(DCI_DATA_TYPE, proc, op, nullptr, 0);
        return false;
    }
    std::lock_guard<std::mutex> session(g().session_mu);
    {
        std::lock_guard<std::mutex> lk(g().mu);
        g().answers.erase(op);
    }
    if (!link_send(DCI_DATA_TYPE, proc, op, nullptr, 0)) return false;
    std::unique_lock<std::mutex> lk(g().mu);
    g().cv.wait_for(lk, std::chrono::milliseconds(k_session_timeout_ms),
                    [op] { return g().answers.count(op) || !g().conn; });
    auto it = g().answers.find(op);
    if (it == g().answers.end()) return false;
    std::vector<uint8_t> answer = std::move(it->second);
    g().answers.erase(it);
    if (answer.size() < 4) return false;
    *status = diag_get_u32(answer.data());
    if (data) data->assign(answer.begin() + 4, answer.end());
    return true;
}

bool link_open()
{
    std::lock_guard<std::mutex> life(g().life_mu);
    if (link_get()) return true;
    std::shared_ptr<link> l;
    if (serial_mode()) {
        l = serial_open();
        if (!l) return false;
    } else {
        int fd = modemd_connect(MODEMD_CONN_DIAG, 0, 0);
        if (fd < 0) return false;
        l = std::make_shared<link>();
        l->fd = fd;
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
    }

    /* The remote-processor mask both proves that the simulator serves the
     * channel and fills the cache that diag_callback_send_data checks. */
    uint32_t status = 0;
    std::vector<uint8_t> mask;
    if (!session_request(DIAG_SESSION_REMOTE_MASK, MSM, &status, &mask) || status != DIAG_SESSION_OK ||
        mask.size() < 2) {
        link_interrupt(*l);
        forget_link(l);
        return false;
    }
    {
        std::lock_guard<std::mutex> lk(g().mu);
        g().remote_mask = diag_get_u16(mask.data());
    }
    dci_register_all();
    return true;
}

/* A closed session leaves nothing to the next one: it starts in the
 * default mode, with no callbacks registered and no DCI pieces pending.
 * Called with g().mu held. */
static void reset_session_locked()
{
    g().logging_mode = USB_MODE;
    for (callback_slot &s : g().callbacks) s = callback_slot();
    for (auto &kv : g().dci) kv.second.pending.clear();
}

bool link_close()
{
    std::lock_guard<std::mutex> life(g().life_mu);
    std::shared_ptr<link> l;
    {
        std::lock_guard<std::mutex> lk(g().mu);
        l = g().conn;
        if (!l) {
            /* The session ended with its link; wait until its reader has
             * delivered its last callback. */
            std::shared_ptr<link> lost = std::move(g().lost);
            g().lost.reset();
            if (lost && lost->reader != std::this_thread::get_id()) {
                std::unique_lock<std::mutex> wait(g().mu, std::adopt_lock);
                g().cv.wait(wait, [&] { return lost->done; });
                wait.release();
            }
            /* Nothing of the lost session may reach the next one. */
            reset_session_locked();
            return false;
        }
        g().lost.reset();
        g().conn.reset();
        reset_session_locked();
        g().cv.notify_all();
    }
    link_interrupt(*l);
    std::unique_lock<std::mutex> lk(g().mu);
    if (l->reader != std::this_thread::get_id()) g().cv.wait(lk, [&] { return l->done; });
    return true;
}

}  // namespace diag
}  // namespace rlk_host
