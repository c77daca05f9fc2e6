#include "diag_port.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include "diag_log_stream.h"
#include "services/vs_stats_service.h"

namespace modemd {
namespace {

constexpr size_t k_read_chunk = 4096;
/* Reads per wake-up, so that a flooding writer cannot hold the loop. */
constexpr int k_reads_per_wakeup = 64;
constexpr uint32_t k_port_events = EPOLLIN | EPOLLET;
constexpr uint64_t k_milli = 1000;
/* Room one stream cycle may need (its packets, escaped). */
constexpr size_t k_cycle_bytes_max = 1024;

uint64_t unix_now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    return uint64_t(ts.tv_sec) * 1000 + uint64_t(ts.tv_nsec) / 1000000;
}

}  // namespace

diag_port::diag_port(daemon &d, diag_port_server &server) : d_(d), server_(server) { state_.store = &d.store(); }

diag_port::~diag_port()
{
    if (timer_) d_.loop().cancel_timer(timer_);
    if (master_ >= 0) {
        d_.loop().remove_fd(master_);
        close(master_);
    }
    if (!link_.empty()) unlink(link_.c_str());
}

bool diag_port::open(const std::string &link, std::string *error)
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
    pts_ = name;
    /* Raw once and for all (the setting outlives its openers); closing the
     * device again leaves the port without a reader, as it starts. */
    int slave = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    struct termios t;
    if (slave < 0 || tcgetattr(slave, &t) != 0) {
        *error = std::string("cannot open ") + name + ": " + strerror(errno);
        if (slave >= 0) close(slave);
        return false;
    }
    cfmakeraw(&t);
    t.c_cc[VMIN] = 1;
    t.c_cc[VTIME] = 0;
    bool raw = tcsetattr(slave, TCSANOW, &t) == 0;
    close(slave);
    if (!raw) {
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
    d_.log("diag port %s (%s)", link.c_str(), name);
    d_.loop().add_fd(master_, [this](uint32_t events) { on_event(events); });
    d_.loop().set_fd_events(master_, k_port_events);
    return true;
}

void diag_port::reader_gone()
{
    reader_ = false;
    want_write_ = false;
    d_.loop().set_fd_events(master_, k_port_events);
    out_.clear();
    out_off_ = 0;
    state_.log_masks.clear();
    state_.event_report_on = false;
    decoder_.reset();
    update_stream();
    flush_device_buffers();
}

/* Discards what the device holds for a reader (a reader that opens the
 * port later must not get the last one's packets) by flushing it from the
 * device's side; the brief open does not count as a reader. */
void diag_port::flush_device_buffers()
{
    int fd = ::open(pts_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return;
    tcflush(fd, TCIOFLUSH);
    close(fd);
}

void diag_port::on_event(uint32_t events)
{
    if (events & (EPOLLHUP | EPOLLERR)) {
        /* The last reader closed the device (or the simulator's own brief
         * open for flushing did: then there was no reader to lose). */
        if (reader_) reader_gone();
        return;
    }
    if (events & EPOLLOUT) flush();
    if (events & EPOLLIN) read_some();
}

/* Reads what the device holds.  Its events are edge-triggered (a device
 * without a reader reports a hang-up for as long as it lasts), so reading
 * goes on until the device is empty, in turns of k_reads_per_wakeup reads
 * so that a flooding writer cannot hold the loop. */
void diag_port::read_some()
{
    uint8_t buf[k_read_chunk];
    for (int i = 0; i < k_reads_per_wakeup; i++) {
        ssize_t n = read(master_, buf, sizeof(buf));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return; /* empty (EAGAIN), or no reader any more (EIO: its hang-up follows) */
        if (!reader_) {
            /* Bytes from the device: someone holds it open. */
            reader_ = true;
            generation_++;
            n_.readers++;
            decoder_.reset();
        }
        decoder_.feed(
            buf, size_t(n),
            [](void *ctx, hdlc_status status, const uint8_t *payload, size_t len) {
                static_cast<diag_port *>(ctx)->on_frame(status, payload, len);
            },
            this);
    }
    d_.loop().add_timer(0, [this] { read_some(); });
}

void diag_port::on_frame(hdlc_status status, const uint8_t *payload, size_t len)
{
    n_.frames_in++;
    if (status != HDLC_OK || len == 0) {
        n_.bad_frames++;
        d_.log("diag port: dropped a bad frame (status %d)", int(status));
        return;
    }
    std::vector<uint8_t> cmd(payload, payload + len);
    std::vector<uint8_t> rsp;
    uint32_t delay_ms = 0;
    if (server_.serve_port_command(state_, cmd, &rsp, &delay_ms)) {
        if (delay_ms == 0) {
            send_payload(rsp, false);
        } else {
            uint64_t gen = generation_;
            d_.loop().add_timer(delay_ms, [this, gen, rsp] {
                if (reader_ && generation_ == gen) send_payload(rsp, false);
            });
        }
    }
    update_stream();
}

void diag_port::send_payload(const std::vector<uint8_t> &payload, bool stream)
{
    size_t pending = out_.size() - out_off_;
    std::vector<uint8_t> frame;
    hdlc_encode(payload.data(), payload.size(), &frame);
    if (pending + frame.size() > (stream ? k_diag_port_stream_room : k_diag_port_out_max)) {
        n_.dropped_out++;
        if (!stream) d_.log("diag port: nobody reads the port (%zu bytes waiting): answer dropped", pending);
        return;
    }
    out_.insert(out_.end(), frame.begin(), frame.end());
    if (stream) {
        (payload[0] == 0x10 ? n_.log_packets : n_.event_packets)++;
    } else {
        n_.answers++;
    }
    flush();
}

void diag_port::flush()
{
    while (reader_ && out_off_ < out_.size()) {
        ssize_t n = write(master_, out_.data() + out_off_, out_.size() - out_off_);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        out_off_ += size_t(n);
    }
    if (out_off_ == out_.size()) {
        out_.clear();
        out_off_ = 0;
    }
    bool want = reader_ && !out_.empty();
    if (want != want_write_) {
        want_write_ = want;
        d_.loop().set_fd_events(master_, want ? k_port_events | EPOLLOUT : k_port_events);
    }
}

void diag_port::update_stream()
{
    bool logs = false;
    for (size_t i = 0; i < k_stream_log_code_count; i++) logs = logs || diag_log_enabled(state_, k_stream_log_codes[i]);
    bool need = reader_ && rate_ > 0 && (logs || state_.event_report_on);
    if (need && !timer_) {
        if (!ticking_) {
            last_tick_ms_ = event_loop::now_ms();
            owed_milli_ = 0;
        }
        timer_ = d_.loop().add_timer(k_diag_port_tick_ms, [this] { on_tick(); });
    } else if (!need && timer_) {
        d_.loop().cancel_timer(timer_);
        timer_ = 0;
    }
}

void diag_port::on_tick()
{
    timer_ = 0;
    ticking_ = true;
    uint64_t now = event_loop::now_ms();
    owed_milli_ += uint64_t(rate_) * (now - last_tick_ms_);
    last_tick_ms_ = now;
    uint64_t cycles = owed_milli_ / k_milli;
    owed_milli_ %= k_milli;
    if (cycles > rate_) cycles = rate_; /* at most one second is made up after a late tick */
    uint64_t unix_ms = unix_now_ms();
    for (uint64_t i = 0; i < cycles; i++) {
        if (out_.size() - out_off_ + k_cycle_bytes_max > k_diag_port_stream_room) {
            n_.skipped_cycles += cycles - i;
            break;
        }
        stream_cycle(now, unix_ms);
    }
    update_stream();
    ticking_ = false;
}

void diag_port::stream_cycle(uint64_t now_ms, uint64_t unix_ms)
{
    const vs_scene &scene = vs_stats().scene[0];
    uint64_t ts = diag_timestamp_of(unix_ms);
    std::vector<uint8_t> body, pkt;
    for (size_t i = 0; i < k_stream_log_code_count; i++) {
        uint16_t code = k_stream_log_codes[i];
        if (!diag_log_enabled(state_, code) || !diag_stream_log_body(code, scene, now_ms, &body)) continue;
        diag_log_packet(code, ts, body, &pkt);
        send_payload(pkt, true);
    }
    if (state_.event_report_on && cycles_ % k_diag_port_events_every == 0) {
        diag_stream_event_packet(scene, ts, &pkt);
        send_payload(pkt, true);
    }
    cycles_++;
}

std::string diag_port::control(const std::vector<std::string> &a)
{
    if (a.size() >= 2 && a[1] == "rate") {
        if (a.size() == 2) return "ok " + std::to_string(rate_);
        int64_t v = 0;
        if (a.size() != 3 || !parse_number(a[2], &v) || v < 0 || v > int64_t(k_diag_port_max_rate)) {
            return "error usage: diag rate [cycles-per-second 0.." + std::to_string(k_diag_port_max_rate) + "]";
        }
        rate_ = uint32_t(v);
        if (timer_) {
            d_.loop().cancel_timer(timer_);
            timer_ = 0;
        }
        update_stream();
        return "ok";
    }
    std::string logs;
    for (size_t i = 0; i < k_stream_log_code_count; i++) {
        if (!diag_log_enabled(state_, k_stream_log_codes[i])) continue;
        char code[8];
        snprintf(code, sizeof(code), "0x%04X", k_stream_log_codes[i]);
        logs += (logs.empty() ? "" : ",") + std::string(code);
    }
    char buf[512];
    snprintf(buf, sizeof(buf),
             "ok link=%s reader=%d rate=%u events=%s logs=%s frames-in=%llu bad-frames=%llu answers=%llu "
             "log-packets=%llu event-packets=%llu skipped-cycles=%llu dropped-out=%llu readers=%llu",
             link_.c_str(), reader_ ? 1 : 0, rate_, state_.event_report_on ? "on" : "off",
             logs.empty() ? "none" : logs.c_str(), (unsigned long long)n_.frames_in,
             (unsigned long long)n_.bad_frames, (unsigned long long)n_.answers, (unsigned long long)n_.log_packets,
             (unsigned long long)n_.event_packets, (unsigned long long)n_.skipped_cycles,
             (unsigned long long)n_.dropped_out, (unsigned long long)n_.readers);
    return buf;
}

}  // namespace modemd
