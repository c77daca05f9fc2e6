/* System-log sink.  On a handset this is the C library's vsyslog(); the
 * host platform records every line with its priority so that tests can read
 * what one run wrote. */
#ifndef RLK_PLATFORM_SYSLOG_H
#define RLK_PLATFORM_SYSLOG_H

#include <stdarg.h>
#include <syslog.h>

#ifdef __cplusplus
extern "C" {
#endif

void platform_vsyslog(int priority, const char *format, va_list ap)
    __attribute__((format(printf, 2, 0)));

#ifdef __cplusplus
}
#endif
#endif
