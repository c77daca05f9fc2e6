/* The parsers' line formatter against the C library: the same bytes for
 * every conversion the parsers use, including the float cases where a
 * faster two-decimal conversion could differ (exact ties, negative zero,
 * values that round to zero, huge and non-finite values). */
#include <gtest/gtest.h>
#include <limits.h>
#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <random>
#include <string>

#include "log_test_util.h"
#include "modem_stats_log_format.h"
#include "orvex_log.h"

namespace {

/* Formats into `size` bytes with both and returns true when they agree,
 * the 128 bytes past the end included (reporting the difference
 * otherwise). */
bool same_in(size_t size, const char *fmt, ...)
{
    char ours[MODEM_STATS_LOG_LINE_MAX + 128], libc[MODEM_STATS_LOG_LINE_MAX + 128];
    memset(ours + size, '#', 128);
    memset(libc + size, '#', 128);
    va_list a, b;
    va_start(a, fmt);
    va_copy(b, a);
    int n1 = modem_stats_log_vformat(ours, size, fmt, a);
    int n2 = vsnprintf(libc, size, fmt, b);
    va_end(b);
    va_end(a);
    EXPECT_EQ(n1, n2) << fmt;
    EXPECT_STREQ(ours, libc) << fmt;
    return n1 == n2 && strcmp(ours, libc) == 0 && memcmp(ours + size, libc + size, 128) == 0;
}

template <typename... A>
bool same(const char *fmt, A... args)
{
    return same_in(MODEM_STATS_LOG_LINE_MAX, fmt, args...);
}

/* The value of the bits `raw`. */
template <typename T, typename U>
T from_bits(U raw)
{
    static_assert(sizeof(T) == sizeof(U), "same size");
    T v;
    memcpy(&v, &raw, sizeof(v));
    return v;
}

/* "%.2f" of `n` values made by `next(i)`, up to the first difference. */
template <typename F>
void check_many(int n, F next)
{
    for (int i = 0; i < n; i++) {
        if (!same("%.2f", next(i))) return;
    }
}

/* Floats: exact binary ties round to even, as printf does.  Doubles that
 * are not floats: v * 100 is no longer exact in double precision, so a
 * conversion that multiplies first rounds some of them the wrong way
 * (160.685 printed as 160.68).  Values with three decimals sit next to a
 * tie and find such faults in about one case of a hundred. */
TEST(LogFormatTest, TwoDecimalsMatchPrintf)
{
    const double specials[] = {0.125f, 0.375f, -0.125f, 2.675f, -0.0f, -0.001f, 0.004999f, 65535.0f, -180.0f,
                               -179.94f, 9.9e12f, 1.1e13f, 1e30f, -1e30f, 1e-40f, -3.01f, 99.995f, -8.99f, 160.685,
                               -47.455, 0.005, 0.015, 1.005, 2.675, 1e13 - 0.005, 9999999999999.995, 0.125, 1e-300,
                               5e-324, -5e-324, 0.0049999, 0.00500001, 4503599627370495.5, INFINITY, -INFINITY, NAN};
    for (double d : specials) EXPECT_TRUE(same("x = %.2f, y = %.2f", d, -d)) << d;
    std::mt19937 rng(7);
    std::uniform_int_distribution<uint32_t> bits;
    /* Any float bit pattern, then every hundredth the conversions produce
     * and its neighbours. */
    check_many(200000, [&](int) { return static_cast<double>(from_bits<float>(bits(rng))); });
    for (int i = -200000; i < 200000; i++) {
        float f = static_cast<float>(i) / 100.0f;
        if (!same("%.2f %.2f %.2f", f, nextafterf(f, -INFINITY), nextafterf(f, INFINITY))) break;
    }
    std::mt19937_64 rng64(11);
    std::uniform_int_distribution<int64_t> thousandths(-10000000000LL, 10000000000LL);
    check_many(300000, [&](int) { return static_cast<double>(thousandths(rng64)) / 1000.0; });
    /* Any double bit pattern: every exponent, subnormals, infinities and
     * NaNs. */
    std::uniform_int_distribution<uint64_t> bits64;
    check_many(300000, [&](int) { return from_bits<double>(bits64(rng64)); });
    /* Magnitudes below the direct limit, evenly spread over the exponents. */
    std::uniform_real_distribution<double> exponent(-30.0, 13.0);
    check_many(300000, [&](int i) { return (i & 1 ? -1 : 1) * pow(10.0, exponent(rng64)); });
}

TEST(LogFormatTest, IntegersStringsAndDigitCountBoundaries)
{
    EXPECT_TRUE(same("%d %d %d %d", INT_MIN, INT_MAX, 0, -1));
    EXPECT_TRUE(same("%u %x %lu %ld %lx", UINT_MAX, 0xb193u, ULONG_MAX, LONG_MIN, 0xdeadbeeful));
    EXPECT_TRUE(same("id(0x%x), name(%s), %c%%", 0xb97fu, "b97f num_layers", 'z'));
    /* Conversions it does not make itself go to the C library. */
    EXPECT_TRUE(same("%5d|%-8s|%08.3f|%e|%.1f|%p", 42, "ab", 3.14159, 2.5, 0.25, static_cast<void *>(nullptr)));
    EXPECT_TRUE(same("%s", ""));
    /* Decimals at every digit count boundary. */
    for (unsigned long p = 1; p <= ULONG_MAX / 10; p *= 10) {
        for (unsigned long v : {p - 1, p, p + 1, 10 * p - 1}) {
            ASSERT_TRUE(same("%lu", v)) << v;
            if (v <= LONG_MAX) {
                ASSERT_TRUE(same("%ld %ld", static_cast<long>(v), -static_cast<long>(v))) << v;
            }
        }
    }
    for (int v = 0; v < 1000; v++) ASSERT_TRUE(same("%d,%u", -v, static_cast<unsigned>(v))) << v;
}

TEST(LogFormatTest, TruncatesLikeVsnprintf)
{
    std::string long_text(300, 'a');
    for (size_t size : {1u, 2u, 10u, 102u}) EXPECT_TRUE(same_in(size, "%s = %.2f", long_text.c_str(), 1.5)) << size;
}

/* A measurement line keeps what orvex_log_buf keeps: 101 characters. */
TEST(LogFormatTest, MeasurementLineKeepsTheRecordTextBound)
{
    std::string name(120, 'n');
    char expected[ORVEX_LOG_BUF_LEN];
    orvex_log_buf(expected, "%s = %.2f", name.c_str(), -99.5);
    std::string out = log_test::captured_stdout([&] { modem_stats_log_print_buf("%s = %.2f", name.c_str(), -99.5); });
    EXPECT_EQ(out, std::string(expected) + "\n");
    EXPECT_EQ(out.size(), ORVEX_LOG_BUF_LEN);
}

}  // namespace
