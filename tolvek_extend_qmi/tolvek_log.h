/* The paired diagnostic line of the tool's own code: every message goes to
 * the system log as "SUB[shell][<file>:<line>] <function>: <message>" and,
 * unless the console is quiet, to standard output as
 * "RIL[<function>:<line>]: <message>" followed by one newline. */
#ifndef TOLVEK_LOG_H
#define TOLVEK_LOG_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Process-wide console quiet flag: while set, console lines are suppressed
 * and system-log lines are still written. */
extern bool g_tolvek_console_quiet;

void tolvek_ril_syslog_err(const char *format, ...) __attribute__((format(printf, 1, 2)));
void tolvek_ril_syslog_dbg(const char *format, ...) __attribute__((format(printf, 1, 2)));

#ifdef __cplusplus
}
#endif

/* Source tag: the last path component of the source file name. */
#define TOLVEK_LOG_SRC_TAG __FILE_NAME__
#define TOLVEK_LOG_SUB_TAG "shell"

#define TOLVEK_LOG_PAIR(syslog_fn, fmt, ...)                                                        \
    do {                                                                                            \
        syslog_fn("SUB[%s][%s:%d] %s: " fmt, TOLVEK_LOG_SUB_TAG, TOLVEK_LOG_SRC_TAG, __LINE__,      \
                  __func__, ##__VA_ARGS__);                                                         \
        if (!g_tolvek_console_quiet) {                                                              \
            printf("RIL[%s:%d]: " fmt, __func__, __LINE__, ##__VA_ARGS__);                          \
            putchar('\n');                                                                          \
        }                                                                                           \
    } while (0)

/* Debug-priority paired line (progress and most failures). */
#define TOLVEK_LOGD(fmt, ...) TOLVEK_LOG_PAIR(tolvek_ril_syslog_dbg, fmt, ##__VA_ARGS__)
/* Error-priority paired line (allocation failures, PDC initialisation
 * failures, an unreadable EFS flag file). */
#define TOLVEK_LOGE(fmt, ...) TOLVEK_LOG_PAIR(tolvek_ril_syslog_err, fmt, ##__VA_ARGS__)

#define TOLVEK_FUNC_ENTRY() TOLVEK_LOGD("function entry ------------->")
#define TOLVEK_FUNC_EXIT() TOLVEK_LOGD("function exit <-------------")

#endif
