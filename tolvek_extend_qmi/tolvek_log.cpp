#include "tolvek_log.h"

#include <stdarg.h>

#include <string>

#include "platform_syslog.h"

static_assert(TOLVEK_LOG_PRIO_ERR == LOG_ERR, "error priority must be syslog's LOG_ERR");
static_assert(TOLVEK_LOG_PRIO_DEBUG == LOG_DEBUG, "debug priority must be syslog's LOG_DEBUG");

bool g_tolvek_console_quiet = false;

void tolvek_ril_syslog_err(const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    platform_vsyslog(LOG_ERR, format, ap);
    va_end(ap);
}

void tolvek_ril_syslog_dbg(const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    platform_vsyslog(LOG_DEBUG, format, ap);
    va_end(ap);
}

/* Appends `text` to a format string so that it prints literally. */
static void append_literal(std::string *format, const char *text)
{
    for (const char *p = text; *p != '\0'; ++p) {
        if (*p == '%') {
            *format += '%';
        }
        *format += *p;
    }
}

/* "SUB[<sub tag>][<src tag>:<line>] <func>: " followed by the message's own
 * format, so that the message arguments fill the system-log line in one
 * call. */
static std::string syslog_format(const char *src_tag, int line, const char *func,
                                 const char *format)
{
    std::string out = "SUB[";
    append_literal(&out, TOLVEK_LOG_SUB_TAG);
    out += "][";
    append_literal(&out, src_tag);
    out += ':';
    out += std::to_string(line);
    out += "] ";
    append_literal(&out, func);
    out += ": ";
    out += format;
    return out;
}

void tolvek_log_line(int priority, const char *src_tag, int line, const char *func,
                     const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    va_list console_ap;
    va_copy(console_ap, ap);

    std::string sys_format = syslog_format(src_tag, line, func, format);
    platform_vsyslog(priority, sys_format.c_str(), ap);

    if (!g_tolvek_console_quiet) {
        printf("RIL[%s:%d]: ", func, line);
        vprintf(format, console_ap);
        putchar('\n');
    }
    va_end(console_ap);
    va_end(ap);
}
