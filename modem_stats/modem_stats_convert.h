/* Conversions of the modem's raw fixed-point measurements to decibel units.
 *
 * Each formula is computed in double precision and narrowed to float; all
 * but modem_stats_nr5g_rsrp_ex then round the result to two decimals with
 * modem_stats_round_2_decimals.  Pure functions. */
#ifndef MODEM_STATS_CONVERT_H
#define MODEM_STATS_CONVERT_H

#include <stdint.h>

/* Marker of an absent value (raw 0 for the two functions that test it). */
constexpr float MODEM_STATS_NO_VALUE_F = 65535.0f;

/* Two-decimal rounding, digit by digit: with a = |x|, the tenths, hundredths
 * and thousandths digits are taken from single-precision a*10, a*100 and
 * a*1000; the thousandths digit rounds the hundredths half-up, by
 * magnitude; the sign is put back. */
float modem_stats_round_2_decimals(float x);

/* LTE serving measurement (log 0xB193).  rsrp aborts when raw - 640
 * overflows. */
float modem_stats_i2f_rsrp(int32_t raw);
float modem_stats_i2f_rsrq(int32_t raw);
float modem_stats_i2f_rssi(int32_t raw);
float modem_stats_i2f_snr(int32_t raw);

/* NR5G serving beam (log 0xB975). */
float modem_stats_nr5g_rsrp(int32_t raw);
float modem_stats_nr5g_rsrq(int32_t raw);
/* NR5G receive AGC (log 0xB8C9); aborts when raw - 4096 overflows. */
float modem_stats_nr5g_rssi(int32_t raw);
/* NR5G serving FTL and SNR (logs 0xB8DD, 0xB8D8): 10*log10(raw/1024); raw 0
 * gives the absent marker, unrounded. */
float modem_stats_nr5g_snr(uint32_t raw);

/* LTE receive AGC (log 0xB111). */
float modem_stats_lte_rssi(int32_t raw);
/* WCDMA PN search (log 0x4179). */
float modem_stats_wcdma_rssi(int32_t raw);
/* GSM receive diversity (log 0x5096). */
float modem_stats_gsm_rssi(int32_t raw);
/* NR5G measurement database (log 0xB97F): raw/128 in single precision, not
 * rounded; raw 0 gives the absent marker. */
float modem_stats_nr5g_rsrp_ex(int32_t raw);

#endif
