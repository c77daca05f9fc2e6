#include "log_sink.h"

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <mutex>

#include "android/log.h"
#include "endpoint.h"
#include "modemd_paths.h"
#include "platform_syslog.h"

namespace rlk_host {
namespace {

struct log_file {
    const char *env;
    const char *default_name;
    std::mutex mu;
    std::string path;
    int fd = -1;
};

log_file g_syslog = {"RLK_SYSLOG_FILE", "syslog.log", {}, {}, -1};
log_file g_logcat = {"RLK_LOGCAT_FILE", "logcat.log", {}, {}, -1};

std::string log_path(const log_file &f)
{
    const char *env = getenv(f.env);
    if (env && *env) return env;
    return modemd_socket_dir() + "/" + f.default_name;
}

/* A file named by its variable is the user's choice and opened as named.
 * The default files live in the default simulator directory, which must
 * be this user's private directory; a link there is not followed. */
int open_log(const log_file &f, const std::string &path)
{
    const char *env = getenv(f.env);
    if (env && *env) {
        size_t slash = path.rfind('/');
        if (slash != std::string::npos && slash > 0) mkdir(path.substr(0, slash).c_str(), 0700);
        return open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    }
    if (modemd_socket_is_default()) {
        std::string error;
        if (!modemd_private_dir_ensure(modemd_dir_of(path), &error)) {
            static std::atomic<bool> reported{false};
            if (!reported.exchange(true)) fprintf(stderr, "rlk: %s\n", error.c_str());
            return -1;
        }
    } else {
        mkdir(modemd_dir_of(path).c_str(), 0700);
    }
    return modemd_open_log_file(path);
}

/* Appends one line with one write.  The file is opened on first use and
 * again whenever the variable that names it changes (tests point it at a
 * new file per case). */
void write_line(log_file &f, const std::string &line)
{
    std::string path = log_path(f);
    std::lock_guard<std::mutex> guard(f.mu);
    if (f.fd < 0 || path != f.path) {
        if (f.fd >= 0) close(f.fd);
        f.path = path;
        f.fd = open_log(f, path);
    }
    if (f.fd < 0) return;
    ssize_t n = write(f.fd, line.data(), line.size());
    (void)n;
}

std::string vformat(const char *fmt, va_list ap)
{
    char small[1024];
    va_list copy;
    va_copy(copy, ap);
    int n = vsnprintf(small, sizeof(small), fmt, copy);
    va_end(copy);
    if (n < 0) return std::string();
    if (static_cast<size_t>(n) < sizeof(small)) return std::string(small, static_cast<size_t>(n));
    std::string big(static_cast<size_t>(n) + 1, '\0');
    vsnprintf(&big[0], big.size(), fmt, ap);
    big.resize(static_cast<size_t>(n));
    return big;
}

void android_log(int buf_id, int prio, const char *tag, const char *fmt, va_list ap)
{
    std::string msg = vformat(fmt, ap);
    std::string line = std::to_string(buf_id) + "\t" + std::to_string(prio) + "\t";
    const char *t = tag ? tag : "";
    log_escape(t, strlen(t), &line);
    line += '\t';
    log_escape(msg.data(), msg.size(), &line);
    line += '\n';
    write_line(g_logcat, line);
}

}  // namespace

void log_escape(const char *text, size_t len, std::string *out)
{
    for (size_t i = 0; i < len; i++) {
        char c = text[i];
        if (c == '\n') {
            *out += "\\n";
        } else if (c == '\t') {
            *out += "\\t";
        } else if (c == '\\') {
            *out += "\\\\";
        } else {
            *out += c;
        }
    }
}

}  // namespace rlk_host

extern "C" void platform_vsyslog(int priority, const char *format, va_list ap)
{
    std::string msg = rlk_host::vformat(format, ap);
    std::string line = std::to_string(priority) + "\t";
    rlk_host::log_escape(msg.data(), msg.size(), &line);
    line += '\n';
    rlk_host::write_line(rlk_host::g_syslog, line);
}

extern "C" int __android_log_print(int prio, const char *tag, const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    rlk_host::android_log(LOG_ID_MAIN, prio, tag, fmt, ap);
    va_end(ap);
    return 1;
}

extern "C" int __android_log_buf_print(int bufID, int prio, const char *tag, const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    rlk_host::android_log(bufID, prio, tag, fmt, ap);
    va_end(ap);
    return 1;
}
