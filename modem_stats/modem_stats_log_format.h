/* Output of the diag log parsers' lines.
 *
 * The lines are printf texts; the parsers print tens of them per packet,
 * and the C library's general conversions (above all the float one) cost
 * more than the decoding.  These functions produce exactly the bytes
 * printf would for the conversions the parsers use — %d, %i, %u, %x, %ld,
 * %lu, %lx, %s, %c, %.2f and %% — and hand anything else to vsnprintf, so
 * the output never differs from printf's.
 *
 * %.2f: any double (a float argument arrives promoted to one) is an
 * integer significand times a power of two, so its hundredths and the
 * remainder below them are computed as exact integers and rounded to
 * nearest, ties to even, as printf does in the default rounding mode; the
 * sign is the value's own (-0.001 prints "-0.00" as with printf).  Values
 * that are not finite or beyond 1e13 go to vsnprintf. */
#ifndef MODEM_STATS_LOG_FORMAT_H
#define MODEM_STATS_LOG_FORMAT_H

#include <stdarg.h>
#include <stddef.h>

/* Bound of a formatted line kept in the local buffer. */
constexpr size_t MODEM_STATS_LOG_LINE_MAX = 512;

/* vsnprintf(out, size, fmt, ap), byte for byte. */
int modem_stats_log_vformat(char *out, size_t size, const char *fmt, va_list ap);

/* printf(fmt, ...) on standard output. */
int modem_stats_log_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

/* A measurement line: formatted into the 102-byte record text buffer (as
 * orvex_log_buf does: at most 101 characters are kept) and printed
 * followed by a newline. */
void modem_stats_log_print_buf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

#endif
