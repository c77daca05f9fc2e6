#include "modem_stats_log_format.h"

#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "orvex_log.h"

namespace {

/* The tool is single-threaded: the C library's stream lock is not needed
 * per line where the library offers the unlocked call. */
size_t write_stdout(const char *text, size_t n)
{
#ifdef __GLIBC__
    return fwrite_unlocked(text, 1, n, stdout);
#else
    return fwrite(text, 1, n, stdout);
#endif
}

/* Beyond this magnitude %.2f goes to vsnprintf: the hundredths of smaller
 * values fit in 64 bits with room to spare. */
constexpr double F2_DIRECT_LIMIT = 1e13;
constexpr double F2_SCALE = 100.0;

/* Appends to a bounded buffer; counts what would have been written. */
struct sink {
    char *out;
    size_t size;
    size_t len;

    void put(char c)
    {
        if (len + 1 < size) out[len] = c;
        len++;
    }
    void put(const char *s, size_t n)
    {
        if (len + 1 < size) {
            size_t room = size - 1 - len;
            memcpy(out + len, s, n < room ? n : room);
        }
        len += n;
    }
    void finish()
    {
        if (size) out[len < size ? len : size - 1] = '\0';
    }
};

void put_decimal(sink *s, uint64_t v)
{
    /* Two digits per division. */
    static const char pairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    char digits[24];
    size_t n = sizeof(digits);
    while (v >= 100) {
        const char *pair = pairs + 2 * (v % 100);
        v /= 100;
        digits[--n] = pair[1];
        digits[--n] = pair[0];
    }
    if (v >= 10) {
        digits[--n] = pairs[2 * v + 1];
        digits[--n] = pairs[2 * v];
    } else {
        digits[--n] = static_cast<char>('0' + v);
    }
    size_t count = sizeof(digits) - n;
    if (s->len + count < s->size) {
        /* A few characters: copied in place rather than through memcpy. */
        char *to = s->out + s->len;
        for (size_t i = 0; i < count; i++) to[i] = digits[n + i];
        s->len += count;
    } else {
        s->put(digits + n, count);
    }
}

void put_hex(sink *s, uint64_t v)
{
    char digits[16];
    size_t n = sizeof(digits);
    do {
        digits[--n] = "0123456789abcdef"[v & 0xF];
        v >>= 4;
    } while (v);
    s->put(digits + n, sizeof(digits) - n);
}

void put_signed(sink *s, int64_t v)
{
    if (v < 0) {
        s->put('-');
        put_decimal(s, static_cast<uint64_t>(-(v + 1)) + 1);
    } else {
        put_decimal(s, static_cast<uint64_t>(v));
    }
}

/* Layout of an IEEE 754 binary64 value. */
constexpr int F64_FRACTION_BITS = 52;
constexpr uint64_t F64_FRACTION_MASK = (uint64_t{1} << F64_FRACTION_BITS) - 1;
constexpr uint32_t F64_EXPONENT_MASK = 0x7FF;
constexpr int F64_EXPONENT_BIAS = 1075; /* value = significand * 2^(exponent - bias) */
/* significand * 100 < 2^60: a right shift of 64 or more leaves no
 * hundredth and less than half of one. */
constexpr int F2_MAX_SHIFT = 63;
static_assert(F2_DIRECT_LIMIT * F2_SCALE < 9007199254740992.0, "hundredths below the limit fit in 53 bits");

/* %.2f of a finite value below the direct limit: the exact hundredths,
 * rounded to nearest with ties to even.  The value is significand * 2^e
 * with an integer significand below 2^53, so significand * 100 fits in 64
 * bits and its binary point is a shift: the hundredths and the remainder
 * below them are exact integers for every double, not only for floats. */
void put_fixed2(sink *s, double v)
{
    if (signbit(v)) s->put('-');
    uint64_t raw = 0;
    memcpy(&raw, &v, sizeof(raw));
    uint32_t biased = static_cast<uint32_t>(raw >> F64_FRACTION_BITS) & F64_EXPONENT_MASK;
    uint64_t significand = raw & F64_FRACTION_MASK;
    int exponent = 1 - F64_EXPONENT_BIAS; /* subnormal */
    if (biased != 0) {
        significand |= uint64_t{1} << F64_FRACTION_BITS;
        exponent = static_cast<int>(biased) - F64_EXPONENT_BIAS;
    }
    uint64_t scaled = significand * static_cast<uint64_t>(F2_SCALE);
    uint64_t h = 0;
    if (exponent >= 0) {
        h = scaled << exponent; /* an integer below the limit: no rounding */
    } else if (-exponent <= F2_MAX_SHIFT) {
        int shift = -exponent;
        h = scaled >> shift;
        uint64_t rest = scaled & ((uint64_t{1} << shift) - 1);
        uint64_t half = uint64_t{1} << (shift - 1);
        if (rest > half || (rest == half && (h & 1))) h++;
    }
    put_decimal(s, h / 100);
    s->put('.');
    s->put(static_cast<char>('0' + (h / 10) % 10));
    s->put(static_cast<char>('0' + h % 10));
}

/* Formats with the fast conversions; false when `fmt` holds one it does
 * not make (the caller then uses vsnprintf). */
bool fast_format(sink *s, const char *fmt, va_list ap)
{
    for (const char *p = fmt; *p; p++) {
        if (*p != '%') {
            const char *next = strchr(p, '%');
            size_t n = next ? static_cast<size_t>(next - p) : strlen(p);
            s->put(p, n);
            p += n - 1;
            continue;
        }
        p++;
        bool is_long = false, two_decimals = false;
        if (p[0] == '.' && p[1] == '2') {
            two_decimals = true;
            p += 2;
        }
        if (*p == 'l') {
            is_long = true;
            p++;
        }
        if (two_decimals && *p != 'f') return false;
        switch (*p) {
            case '%': s->put('%'); break;
            case 'd':
            case 'i': put_signed(s, is_long ? va_arg(ap, long) : va_arg(ap, int)); break;
            case 'u': put_decimal(s, is_long ? va_arg(ap, unsigned long) : va_arg(ap, unsigned)); break;
            case 'x': put_hex(s, is_long ? va_arg(ap, unsigned long) : va_arg(ap, unsigned)); break;
            case 'c': s->put(static_cast<char>(va_arg(ap, int))); break;
            case 's': {
                const char *str = va_arg(ap, const char *);
                if (!str || is_long) return false;
                s->put(str, strlen(str));
                break;
            }
            case 'f': {
                double v = va_arg(ap, double);
                if (!two_decimals || is_long || !isfinite(v) || fabs(v) >= F2_DIRECT_LIMIT) return false;
                put_fixed2(s, v);
                break;
            }
            default: return false;
        }
    }
    return true;
}

}  // namespace

int modem_stats_log_vformat(char *out, size_t size, const char *fmt, va_list ap)
{
    sink s = {out, size, 0};
    va_list fast;
    va_copy(fast, ap);
    bool ok = fast_format(&s, fmt, fast);
    va_end(fast);
    if (!ok) return vsnprintf(out, size, fmt, ap);
    s.finish();
    return static_cast<int>(s.len);
}

int modem_stats_log_printf(const char *fmt, ...)
{
    char line[MODEM_STATS_LOG_LINE_MAX];
    va_list ap;
    va_start(ap, fmt);
    int n = modem_stats_log_vformat(line, sizeof(line), fmt, ap);
    va_end(ap);
    if (n < 0) return n;
    if (static_cast<size_t>(n) < sizeof(line)) return static_cast<int>(write_stdout(line, static_cast<size_t>(n)));
    /* Longer than the local buffer: the C library prints it. */
    va_start(ap, fmt);
    n = vprintf(fmt, ap);
    va_end(ap);
    return n;
}

void modem_stats_log_print_buf(const char *fmt, ...)
{
    /* The record text buffer, and room for the newline after it. */
    char text[ORVEX_LOG_BUF_LEN + 1];
    va_list ap;
    va_start(ap, fmt);
    int n = modem_stats_log_vformat(text, ORVEX_LOG_BUF_LEN, fmt, ap);
    va_end(ap);
    if (n < 0) return;
    size_t kept = static_cast<size_t>(n) < ORVEX_LOG_BUF_LEN ? static_cast<size_t>(n) : ORVEX_LOG_BUF_LEN - 1;
    text[kept] = '\n';
    write_stdout(text, kept + 1);
}
