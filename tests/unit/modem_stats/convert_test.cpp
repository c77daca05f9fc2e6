/* Measurement conversions: formulas, the digit-by-digit rounding and the
 * overflow-checked subtractions. */
#include <gtest/gtest.h>
#include <stdint.h>

#include "modem_stats_convert.h"

namespace {

float nr5g_snr_signed(int32_t raw)
{
    return modem_stats_nr5g_snr(static_cast<uint32_t>(raw));
}

TEST(ConvertTest, KnownValues)
{
    const struct {
        const char *name;
        float (*fn)(int32_t);
        int32_t raw;
        float expected;
    } cases[] = {
        {"i2f_rsrp", modem_stats_i2f_rsrp, 640, -140.0f},
        {"i2f_rsrp", modem_stats_i2f_rsrp, 0, -180.0f},
        /* -179.9375 rounds half-up by magnitude. */
        {"i2f_rsrp", modem_stats_i2f_rsrp, 1, -179.94f},
        {"i2f_rsrq", modem_stats_i2f_rsrq, -3, -30.19f},
        {"i2f_rssi", modem_stats_i2f_rssi, 5, -109.69f},
        {"i2f_snr", modem_stats_i2f_snr, 200, 0.0f},
        {"i2f_snr", modem_stats_i2f_snr, 0, -20.0f},
        {"i2f_snr", modem_stats_i2f_snr, 1, -19.9f},
        {"nr5g_rsrp", modem_stats_nr5g_rsrp, -12800, -100.0f},
        {"nr5g_rsrp", modem_stats_nr5g_rsrp, -1, -0.01f},
        {"nr5g_rsrq", modem_stats_nr5g_rsrq, 129, 1.01f},
        {"nr5g_rssi", modem_stats_nr5g_rssi, 4096, 0.0f},
        {"nr5g_rssi", modem_stats_nr5g_rssi, 4095, -0.13f},
        {"nr5g_snr", nr5g_snr_signed, 0, 65535.0f},
        {"nr5g_snr", nr5g_snr_signed, 1024, 0.0f},
        {"nr5g_snr", nr5g_snr_signed, 2048, 3.01f},
        {"nr5g_snr", nr5g_snr_signed, 512, -3.01f},
        {"lte_rssi", modem_stats_lte_rssi, 1024, 0.0f},
        {"lte_rssi", modem_stats_lte_rssi, 0, -256.0f},
        {"wcdma_rssi", modem_stats_wcdma_rssi, -512, -106.0f},
        {"wcdma_rssi", modem_stats_wcdma_rssi, -507, -105.5f},
        {"gsm_rssi", modem_stats_gsm_rssi, -1, -0.06f},
        {"nr5g_rsrp_ex", modem_stats_nr5g_rsrp_ex, 0, 65535.0f},
        {"nr5g_rsrp_ex", modem_stats_nr5g_rsrp_ex, -128, -1.0f},
        /* Not rounded. */
        {"nr5g_rsrp_ex", modem_stats_nr5g_rsrp_ex, 1, 0.0078125f},
        {"nr5g_rsrp_ex", modem_stats_nr5g_rsrp_ex, -3, -0.0234375f},
    };
    for (const auto &c : cases) EXPECT_EQ(c.fn(c.raw), c.expected) << c.name << "(" << c.raw << ")";
}

TEST(ConvertTest, RoundingDigitByDigit)
{
    const struct {
        float in, out;
    } cases[] = {
        {1.235f, 1.24f},   /* thousandths 5 rounds the hundredths up */
        {-1.235f, -1.24f}, /* by magnitude */
        {1.234f, 1.23f},
        {1.995f, 2.0f}, /* carry out of the hundredths left to the sum */
        {-0.005f, -0.01f},
        /* 2.675f is 2.67499995; its single-precision product by 1000 is
         * 2675, so the digit rounds up where exact arithmetic would not. */
        {2.675f, 2.68f},
        {0.0f, 0.0f},
        {65535.0f, 65535.0f},
    };
    for (const auto &c : cases) EXPECT_EQ(modem_stats_round_2_decimals(c.in), c.out) << c.in;
}

TEST(ConvertDeathTest, SubtractionOverflowAbortsOnlyPastTheEdge)
{
    EXPECT_DEATH(modem_stats_i2f_rsrp(INT32_MIN), "");
    EXPECT_DEATH(modem_stats_i2f_rsrp(INT32_MIN + 639), "");
    EXPECT_DEATH(modem_stats_nr5g_rssi(INT32_MIN + 4095), "");
    EXPECT_LT(modem_stats_i2f_rsrp(INT32_MIN + 640), -1.0e8f);
    EXPECT_LT(modem_stats_nr5g_rssi(INT32_MIN + 4096), -2.0e8f);
    EXPECT_GT(modem_stats_i2f_rsrp(INT32_MAX), 1.0e8f);
}

}  // namespace
