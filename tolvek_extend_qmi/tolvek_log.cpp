#include "tolvek_log.h"

#include <stdarg.h>

#include "platform_syslog.h"

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
