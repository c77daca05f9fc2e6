/* The paired diagnostic line of the tool's own code: every message goes to
 * the system log as "SUB[shell][<file>:<line>] <function>: <message>" and,
 * unless the console is quiet, to standard output as
 * "RIL[<function>:<line>]: <message>" followed by one newline.  The system
 * log is always written first. */
#ifndef TOLVEK_LOG_H
#define TOLVEK_LOG_H

#include <stdbool.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Process-wide console quiet flag: while set, console lines are suppressed
 * and system-log lines are still written. */
extern bool g_tolvek_console_quiet;

/* The format and its arguments go to the system log as they stand, at
 * LOG_ERR or LOG_DEBUG; no prefix is added. */
void tolvek_ril_syslog_err(const char *format, ...) __attribute__((format(printf, 1, 2)));
void tolvek_ril_syslog_dbg(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* Writes one paired line (system log at `priority`, then the console line)
 * for a message logged at `src_tag`:`line` inside `func`.  The arguments are
 * evaluated once, by the caller, so a message may pass expressions with side
 * effects.  Use the macros below rather than calling this directly. */
void tolvek_log_line(int priority, const char *src_tag, int line, const char *func,
                     const char *format, ...) __attribute__((format(printf, 5, 6)));

#ifdef __cplusplus
}
#endif

/* Source tag: the last path component of the source file name. */
#define TOLVEK_LOG_SRC_TAG __FILE_NAME__
#define TOLVEK_LOG_SUB_TAG "shell"

/* Priorities of the system log (syslog.h values). */
#define TOLVEK_LOG_PRIO_ERR 3
#define TOLVEK_LOG_PRIO_DEBUG 7

#define TOLVEK_LOG_PAIR(priority, fmt, ...) \
    tolvek_log_line((priority), TOLVEK_LOG_SRC_TAG, __LINE__, __func__, fmt, ##__VA_ARGS__)

/* A paired line printed under the name of `func` rather than the enclosing
 * function: helpers that run one step of a caller's sequence print as
 * that caller. */
#define TOLVEK_LOGD_AS(func, fmt, ...) \
    tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, __LINE__, (func), fmt, ##__VA_ARGS__)
#define TOLVEK_LOGE_AS(func, fmt, ...) \
    tolvek_log_line(TOLVEK_LOG_PRIO_ERR, TOLVEK_LOG_SRC_TAG, __LINE__, (func), fmt, ##__VA_ARGS__)

/* Debug-priority paired line (progress and most failures). */
#define TOLVEK_LOGD(fmt, ...) TOLVEK_LOG_PAIR(TOLVEK_LOG_PRIO_DEBUG, fmt, ##__VA_ARGS__)
/* Error-priority paired line (allocation failures, PDC initialisation
 * failures, an unreadable EFS flag file). */
#define TOLVEK_LOGE(fmt, ...) TOLVEK_LOG_PAIR(TOLVEK_LOG_PRIO_ERR, fmt, ##__VA_ARGS__)

#define TOLVEK_FUNC_ENTRY() TOLVEK_LOGD("function entry ------------->")
#define TOLVEK_FUNC_EXIT() TOLVEK_LOGD("function exit <-------------")

#endif
