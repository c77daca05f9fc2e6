/* Measurement conversions: formulas and the digit-by-digit rounding
 * (convert.cases), and the overflow-checked subtractions. */
#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>

#include <map>
#include <string>

#include "../modem_stats_logs/log_test_util.h"
#include "modem_stats_convert.h"

namespace {

TEST(ConvertTest, KnownValues)
{
    const std::map<std::string, float (*)(int32_t)> functions = {
        {"i2f_rsrp", modem_stats_i2f_rsrp},   {"i2f_rsrq", modem_stats_i2f_rsrq},
        {"i2f_rssi", modem_stats_i2f_rssi},   {"i2f_snr", modem_stats_i2f_snr},
        {"nr5g_rsrp", modem_stats_nr5g_rsrp}, {"nr5g_rsrq", modem_stats_nr5g_rsrq},
        {"lte_rssi", modem_stats_lte_rssi},   {"wcdma_rssi", modem_stats_wcdma_rssi},
        {"gsm_rssi", modem_stats_gsm_rssi},   {"nr5g_rsrp_ex", modem_stats_nr5g_rsrp_ex},
        {"nr5g_rssi", modem_stats_nr5g_rssi},
        {"nr5g_snr", [](int32_t raw) { return modem_stats_nr5g_snr(static_cast<uint32_t>(raw)); }}};
    size_t rows = 0;
    for (const words &row : data_rows(__FILE__, "convert.cases")) {
        const std::string &name = row.at(0), &raw = row.at(1);
        const float want = strtof(row.at(2).c_str(), nullptr);
        if (name == "round") {
            EXPECT_EQ(modem_stats_round_2_decimals(strtof(raw.c_str(), nullptr)), want) << raw;
        } else {
            ASSERT_EQ(functions.count(name), 1u) << name;
            EXPECT_EQ(functions.at(name)(atoi(raw.c_str())), want) << name << "(" << raw << ")";
        }
        rows++;
    }
    EXPECT_EQ(rows, 34u);
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
