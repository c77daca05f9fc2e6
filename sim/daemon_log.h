/* The simulator's log: one time-stamped line per message, written to a
 * file that is rotated at a size limit (the previous file is kept as
 * "<file>.1") or to standard error.
 *
 * Complaints a client can provoke at will (bad frames, malformed packets)
 * must not flood the disk, so each message format gets at most
 * k_log_burst lines per k_log_window_ms; the rest are counted and reported
 * in one summary line when the window ends. */
#ifndef MODEMD_DAEMON_LOG_H
#define MODEMD_DAEMON_LOG_H

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>

#include <map>
#include <string>

namespace modemd {

constexpr uint32_t k_log_burst = 10;
constexpr uint32_t k_log_window_ms = 1000;
/* Default size at which the log file is rotated. */
constexpr uint64_t k_log_default_max_bytes = 8u << 20;
/* Smallest limit accepted (a limit below one line would rotate forever). */
constexpr uint64_t k_log_min_max_bytes = 1024;

class daemon_log {
public:
    daemon_log() = default;
    ~daemon_log();
    daemon_log(const daemon_log &) = delete;
    daemon_log &operator=(const daemon_log &) = delete;

    /* Appends to `path` from now on (not following a symbolic link),
     * rotating it when it would pass `max_bytes`. */
    bool open(const std::string &path, uint64_t max_bytes, std::string *error);

    enum class outcome { written, suppressed_first, suppressed };
    /* Writes one message unless its format is over its rate at `now_ms`.
     * suppressed_first: the first line held back in this window (the
     * caller arranges a flush_summaries() when the window ends). */
    outcome vlog(uint64_t now_ms, const char *fmt, va_list ap);

    /* Writes the summary of every format whose window has ended by
     * `now_ms` (all of them when `all`). */
    void flush_summaries(uint64_t now_ms, bool all);

    /* Bytes written to the current file (for tests of the rotation). */
    uint64_t size() const { return size_; }

private:
    struct rate {
        uint64_t window_start = 0;
        uint32_t written = 0;
        uint64_t suppressed = 0;
    };
    void write_line(const char *text);
    void rotate();

    FILE *file_ = nullptr;
    std::string path_;
    uint64_t max_bytes_ = k_log_default_max_bytes;
    uint64_t size_ = 0;
    /* Keyed by the format's address: each call site is one kind of message. */
    std::map<const char *, rate> rates_;
};

}  // namespace modemd

#endif
