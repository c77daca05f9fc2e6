#include "log_sink.h"

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>

#include "android/log.h"
#include "endpoint.h"
#include "platform_syslog.h"

namespace rlk_host {
namespace {

struct log_file {
    const char *env;
    const char *default_name;
    std::once_flag once;
    int fd = -1;
};

log_file g_syslog = {"RLK_SYSLOG_FILE", "syslog.log", {}, -1};
log_file g_logcat = {"RLK_LOGCAT_FILE", "logcat.log", {}, -1};

int log_fd(log_file &f)
{
    std::call_once(f.once, [&f] {
        const char *env = getenv(f.env);
        std::string path;
        if (env && *env) {
            path = env;
        } else {
            std::string dir = modemd_socket_dir();
            mkdir(dir.c_str(), 0700);
            path = dir + "/" + f.default_name;
        }
        f.fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    });
    return f.fd;
}

void write_line(log_file &f, const std::string &line)
{
    int fd = log_fd(f);
    if (fd < 0) return;
    ssize_t n = write(fd, line.data(), line.size());
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
