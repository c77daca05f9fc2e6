/* Formatting helpers of the modem-statistics code and its Android log line.
 *
 * An ORVEX line is "<label>: <message>" written to the Android log with the
 * tag "ORVEX": the format "%s: " + message is built with bounded copies into
 * a 512-byte buffer, expanded with the label as first argument into a second
 * 512-byte buffer, and logged as "%s". */
#ifndef ORVEX_LOG_H
#define ORVEX_LOG_H

#include <stddef.h>
#include <stdio.h>

#include "android/log.h"

#define ORVEX_LOG_TAG "ORVEX"
/* Bound of orvex_log_buf: the short text field of a statistics record. */
constexpr size_t ORVEX_LOG_BUF_LEN = 102;
/* Bound of a formatted ORVEX line and of its format. */
constexpr size_t ORVEX_LOG_MSG_LEN = 512;

/* vsnprintf into `buf` with the fixed bound of 102 bytes; `buf` must hold
 * at least that many.  Returns the vsnprintf result. */
int orvex_log_buf(char *buf, const char *fmt, ...) __attribute__((format(printf, 2, 3)));

/* vsnprintf into `out` with the fixed bound of 512 bytes (`len` is
 * ignored); a null `out` writes nothing and returns 0.  The format is built
 * at run time, so it carries no format attribute: ORVEX_LOG checks the
 * message against its arguments instead. */
int orvex_log_format_log_msg(char *out, int len, const char *fmt, ...);

/* Builds "%s: " followed by `msg` into `out` (512 bytes), truncating. */
void orvex_log_build_format(char *out, const char *msg);

/* Bounded string copy and concatenation: `dst` always ends in a terminator
 * when `size` is not 0; the return value is the length they tried to make. */
size_t orvex_strlcpy(char *dst, const char *src, size_t size);
size_t orvex_strlcat(char *dst, const char *src, size_t size);

/* Writes one ORVEX line "<label>: <msg>" at `prio`. */
#define ORVEX_LOG_LABEL(prio, label, msg, ...)                                                          \
    do {                                                                                                \
        if (0) printf(msg, ##__VA_ARGS__); /* checks msg against its arguments, never runs */          \
        char orvex_fmt_[ORVEX_LOG_MSG_LEN];                                                             \
        char orvex_text_[ORVEX_LOG_MSG_LEN];                                                            \
        orvex_log_build_format(orvex_fmt_, msg);                                                        \
        orvex_log_format_log_msg(orvex_text_, static_cast<int>(ORVEX_LOG_MSG_LEN), orvex_fmt_, label,   \
                                 ##__VA_ARGS__);                                                        \
        __android_log_print(prio, ORVEX_LOG_TAG, "%s", orvex_text_);                                    \
    } while (0)

/* Informational and failure lines labelled with the calling function. */
#define ORVEX_LOGD(msg, ...) ORVEX_LOG_LABEL(ANDROID_LOG_DEBUG, __func__, msg, ##__VA_ARGS__)
#define ORVEX_LOGE(msg, ...) ORVEX_LOG_LABEL(ANDROID_LOG_ERROR, __func__, msg, ##__VA_ARGS__)

#endif
