// Measurement conversions: the modem's fixed-point units to decibels, as 32-bit
// floats rounded to two decimals by the engine's digit-by-digit rule.
#pragma once

#include <cstdint>

float modem_stats_i2f_rsrp(int32_t x);      // (x - 640) / 16 - 140
float modem_stats_i2f_rsrq(int32_t x);      // x / 16 - 30
float modem_stats_i2f_rssi(int32_t x);      // x / 16 - 110
float modem_stats_i2f_snr(int32_t x);       // x / 10 - 20
float modem_stats_nr5g_rsrp(int32_t x);     // x / 128
float modem_stats_nr5g_rsrq(int32_t x);     // x / 128
float modem_stats_nr5g_rssi(int32_t x);     // (x - 4096) / 8
float modem_stats_nr5g_snr(uint32_t x);     // 10 log10(x / 1024); 0 gives 65535
float modem_stats_lte_rssi(int32_t x);      // (x - 1024) / 4
float modem_stats_wcdma_rssi(int32_t x);    // (x + 512) / 10 - 106
float modem_stats_gsm_rssi(int32_t x);      // x / 16
float modem_stats_nr5g_rsrp_ex(int32_t x);  // x / 128 in single precision, unrounded; 0 gives 65535
