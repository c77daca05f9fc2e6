#include "orvex_log.h"

#include <stdarg.h>
#include <string.h>

namespace {

constexpr const char ORVEX_LOG_LABEL_FORMAT[] = "%s: ";

}  // namespace

int orvex_log_buf(char *buf, const char *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    int n = vsnprintf(buf, ORVEX_LOG_BUF_LEN, fmt, ap);
    va_end(ap);
    return n;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
int orvex_log_format_log_msg(char *out, int len, const char *fmt, ...)
{
    (void)len;
    if (!out) return 0;
    va_list ap;
    va_start(ap, fmt);
    int n = vsnprintf(out, ORVEX_LOG_MSG_LEN, fmt, ap);
    va_end(ap);
    return n;
}
#pragma GCC diagnostic pop

size_t orvex_strlcpy(char *dst, const char *src, size_t size)
{
    size_t n = strlen(src);
    if (size) {
        size_t copy = n < size - 1 ? n : size - 1;
        memcpy(dst, src, copy);
        dst[copy] = '\0';
    }
    return n;
}

size_t orvex_strlcat(char *dst, const char *src, size_t size)
{
    size_t used = strnlen(dst, size);
    if (used == size) return size + strlen(src);
    return used + orvex_strlcpy(dst + used, src, size - used);
}

void orvex_log_build_format(char *out, const char *msg)
{
    orvex_strlcpy(out, ORVEX_LOG_LABEL_FORMAT, ORVEX_LOG_MSG_LEN);
    orvex_strlcat(out, msg, ORVEX_LOG_MSG_LEN);
}
