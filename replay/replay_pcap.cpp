#include "replay_pcap.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include "gsmtap_pcap.h"
#include "signalling.h"

namespace {

constexpr uint64_t MICROSECONDS_PER_SECOND = 1000000;

}  // namespace

replay_pcap::~replay_pcap()
{
    close();
}

bool replay_pcap::open(const std::string &path, std::string *error)
{
    if (path == "-") {
        fd_ = STDOUT_FILENO;
    } else {
        fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd_ < 0) {
            *error = "cannot create " + path + ": " + strerror(errno);
            return false;
        }
        own_fd_ = true;
    }
    pcap_append_file_header(&buf_);
    return flush();
}

void replay_pcap::packet(const diag_packet &pkt, replay_counts *counts)
{
    if (pkt.kind != DIAG_PACKET_LOG) return;
    signalling_result r = signalling_extract(pkt.code, pkt.payload, pkt.length);
    switch (r.status) {
    case SIGNALLING_NONE: return;
    case SIGNALLING_VERSION_REFUSED: counts->pcap_refused[{pkt.code, r.version}]++; return;
    case SIGNALLING_OK: break;
    default: counts->pcap_not_written[r.status]++; return;
    }
    /* Seconds and microseconds since 1970 of the packet's own timestamp
     * (UTC, no leap seconds, as the text output reads it). */
    uint64_t seconds = pkt.timestamp / DIAG_TS_UNITS_PER_SECOND + DIAG_TS_EPOCH_UNIX;
    uint64_t micro = pkt.timestamp % DIAG_TS_UNITS_PER_SECOND * MICROSECONDS_PER_SECOND / DIAG_TS_UNITS_PER_SECOND;
    if (!pcap_append_gsmtap(&buf_, static_cast<uint32_t>(seconds), static_cast<uint32_t>(micro), r.msg)) {
        counts->pcap_not_written[SIGNALLING_MALFORMED]++;
        return;
    }
    counts->pcap_written[r.kind]++;
    if (buf_.size() >= REPLAY_PCAP_FLUSH_AT) flush();
}

bool replay_pcap::flush()
{
    if (fd_ < 0 || buf_.empty() || failed_) {
        buf_.clear();
        return !failed_;
    }
    /* A stop signal during the write would cut a record in two. */
    sigset_t stop, saved;
    sigemptyset(&stop);
    sigaddset(&stop, SIGINT);
    sigaddset(&stop, SIGTERM);
    sigprocmask(SIG_BLOCK, &stop, &saved);
    size_t at = 0;
    while (at < buf_.size()) {
        ssize_t n = write(fd_, buf_.data() + at, buf_.size() - at);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            failed_ = true;
            break;
        }
        at += static_cast<size_t>(n);
    }
    sigprocmask(SIG_SETMASK, &saved, nullptr);
    buf_.clear();
    return !failed_;
}

bool replay_pcap::close()
{
    if (fd_ < 0) return !failed_;
    flush();
    if (own_fd_ && ::close(fd_) != 0) failed_ = true;
    fd_ = -1;
    own_fd_ = false;
    return !failed_;
}
