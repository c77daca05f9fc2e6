#include "modem_stats_convert.h"

#include <math.h>
#include <stdlib.h>

namespace {

constexpr int32_t LTE_RSRP_RAW_OFFSET = 640;
constexpr int32_t NR5G_RSSI_RAW_OFFSET = 4096;
constexpr double Q4_STEP = 0.0625;     /* 1/16 */
constexpr double Q7_STEP = 0.0078125;  /* 1/128 */
constexpr float Q7_STEP_F = 0.0078125f;
constexpr double Q3_STEP = 0.125;      /* 1/8 */
constexpr double Q10_STEP = 0.0009765625; /* 1/1024 */

/* raw - offset in 32-bit integers; an overflow ends the process. */
int32_t checked_sub(int32_t raw, int32_t offset)
{
    int32_t diff = 0;
    if (__builtin_sub_overflow(raw, offset, &diff)) abort();
    return diff;
}

float rounded(double value)
{
    return modem_stats_round_2_decimals(static_cast<float>(value));
}

}  // namespace

float modem_stats_round_2_decimals(float x)
{
    float a = fabsf(x);
    /* The products are single precision; their own rounding may move a
     * digit.  64-bit truncation keeps every product of a 32-bit raw value
     * in range. */
    int64_t i0 = static_cast<int64_t>(a);
    int64_t i1 = static_cast<int64_t>(a * 10.0f);
    int64_t i2 = static_cast<int64_t>(a * 100.0f);
    int64_t i3 = static_cast<int64_t>(a * 1000.0f);
    int64_t d1 = i1 % 10;
    int64_t d2 = i2 % 10;
    int64_t d3 = i3 % 10;
    double r = static_cast<double>(d1) * 0.1 + static_cast<double>(i0) +
               static_cast<double>(d2 + (d3 >= 5 ? 1 : 0)) * 0.01;
    float rf = static_cast<float>(r);
    return x < 0 ? -rf : rf;
}

float modem_stats_i2f_rsrp(int32_t raw)
{
    float shifted = static_cast<float>(checked_sub(raw, LTE_RSRP_RAW_OFFSET));
    return rounded(static_cast<double>(shifted) * Q4_STEP - 140.0);
}

float modem_stats_i2f_rsrq(int32_t raw)
{
    return rounded(static_cast<double>(static_cast<float>(raw)) * Q4_STEP - 30.0);
}

float modem_stats_i2f_rssi(int32_t raw)
{
    return rounded(static_cast<double>(static_cast<float>(raw)) * Q4_STEP - 110.0);
}

float modem_stats_i2f_snr(int32_t raw)
{
    return rounded(static_cast<double>(static_cast<float>(raw)) * 0.1 - 20.0);
}

float modem_stats_nr5g_rsrp(int32_t raw)
{
    return rounded(static_cast<double>(raw) * Q7_STEP);
}

float modem_stats_nr5g_rsrq(int32_t raw)
{
    return rounded(static_cast<double>(raw) * Q7_STEP);
}

float modem_stats_nr5g_rssi(int32_t raw)
{
    return rounded(static_cast<double>(checked_sub(raw, NR5G_RSSI_RAW_OFFSET)) * Q3_STEP);
}

float modem_stats_nr5g_snr(uint32_t raw)
{
    if (raw == 0) return MODEM_STATS_NO_VALUE_F;
    return rounded(10.0 * log10(static_cast<double>(raw) * Q10_STEP));
}

float modem_stats_lte_rssi(int32_t raw)
{
    return rounded((static_cast<double>(raw) - 1024.0) * 0.25);
}

float modem_stats_wcdma_rssi(int32_t raw)
{
    return rounded((static_cast<double>(raw) + 512.0) / 10.0 - 106.0);
}

float modem_stats_gsm_rssi(int32_t raw)
{
    return rounded(static_cast<double>(raw) * Q4_STEP);
}

float modem_stats_nr5g_rsrp_ex(int32_t raw)
{
    if (raw == 0) return MODEM_STATS_NO_VALUE_F;
    return static_cast<float>(raw) * Q7_STEP_F;
}
