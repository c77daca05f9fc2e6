#include "daemon_log.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <vector>

namespace modemd {
namespace {

/* Longest message kept; longer ones are cut (they are single lines). */
constexpr size_t k_log_line_max = 4096;

FILE *open_append(const std::string &path, uint64_t *size)
{
    int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) return nullptr;
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        errno = EINVAL;
        return nullptr;
    }
    FILE *f = fdopen(fd, "a");
    if (!f) {
        close(fd);
        return nullptr;
    }
    *size = uint64_t(st.st_size);
    return f;
}

}  // namespace

daemon_log::~daemon_log()
{
    flush_summaries(0, true);
    if (file_) fclose(file_);
}

bool daemon_log::open(const std::string &path, uint64_t max_bytes, std::string *error)
{
    path_ = path;
    max_bytes_ = max_bytes < k_log_min_max_bytes ? k_log_min_max_bytes : max_bytes;
    file_ = open_append(path, &size_);
    if (!file_) {
        *error = "cannot open log file " + path + ": " + strerror(errno);
        return false;
    }
    return true;
}

void daemon_log::rotate()
{
    fclose(file_);
    file_ = nullptr;
    std::string old = path_ + ".1";
    if (rename(path_.c_str(), old.c_str()) != 0) {
        /* Keep writing to the same file rather than lose messages. */
    }
    file_ = open_append(path_, &size_);
}

void daemon_log::write_line(const char *text)
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    struct tm tm;
    localtime_r(&ts.tv_sec, &tm);
    char stamp[32];
    strftime(stamp, sizeof(stamp), "%Y-%m-%d %H:%M:%S", &tm);
    char head[96];
    int n = snprintf(head, sizeof(head), "%s.%03ld rlk-modemd[%d]: ", stamp, ts.tv_nsec / 1000000, getpid());
    size_t len = (n > 0 ? size_t(n) : 0) + strlen(text) + 1;
    if (file_ && size_ + len > max_bytes_ && size_ > 0) rotate();
    FILE *out = file_ ? file_ : stderr;
    fprintf(out, "%s%s\n", head, text);
    fflush(out);
    size_ += len;
}

daemon_log::outcome daemon_log::vlog(uint64_t now_ms, const char *fmt, va_list ap)
{
    rate &r = rates_[fmt];
    if (now_ms - r.window_start >= k_log_window_ms) {
        if (r.suppressed) flush_summaries(now_ms, false);
        r.window_start = now_ms;
        r.written = 0;
    }
    if (r.written >= k_log_burst) {
        return r.suppressed++ == 0 ? outcome::suppressed_first : outcome::suppressed;
    }
    r.written++;
    std::vector<char> text(k_log_line_max);
    vsnprintf(text.data(), text.size(), fmt, ap);
    write_line(text.data());
    return outcome::written;
}

void daemon_log::flush_summaries(uint64_t now_ms, bool all)
{
    for (auto &kv : rates_) {
        rate &r = kv.second;
        if (!r.suppressed || (!all && now_ms - r.window_start < k_log_window_ms)) continue;
        std::string line = "(" + std::to_string(r.suppressed) + " more like \"" + kv.first + "\" in " +
                           std::to_string(k_log_window_ms) + " ms not shown)";
        r.suppressed = 0;
        write_line(line.c_str());
    }
}

}  // namespace modemd
