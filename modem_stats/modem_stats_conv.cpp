#include "modem_stats/modem_stats_conv.h"

#include <cmath>

namespace {

constexpr float kNoValue = 65535.0f;

// Two decimals, each digit taken from its own truncated single-precision
// product: only the third decimal rounds the second, and a product that lands
// just below a whole number loses that digit. The records and the summaries
// have always shown these values, so the rule is kept as it is. Every product
// and sum is its own statement so that no compiler fuses them.
float round2(float v) {
  const float a = std::fabs(v);
  const float a10 = a * 10.0f;
  const float a100 = a * 100.0f;
  const float a1000 = a * 1000.0f;
  const int64_t i = static_cast<int64_t>(a);
  const int64_t t = static_cast<int64_t>(a10) % 10;
  const int64_t h = static_cast<int64_t>(a100) % 10;
  const int64_t k = static_cast<int64_t>(a1000) % 10;
  const double tenths = 0.1 * static_cast<double>(t);
  const double hundredths = 0.01 * static_cast<double>(k >= 5 ? h + 1 : h);
  double r = static_cast<double>(i) + tenths;
  r = r + hundredths;
  const float rf = static_cast<float>(r);
  return v < 0 ? 0.0f - rf : rf;
}

// The i2f family narrows the offset raw value to float before scaling.
float i2f(int64_t raw, double scale, double offset) {
  const double x = static_cast<double>(static_cast<float>(raw));
  const double scaled = x * scale;
  return round2(static_cast<float>(scaled - offset));
}

float scaled(int64_t raw, double scale) {
  const double v = static_cast<double>(raw) * scale;
  return round2(static_cast<float>(v));
}

}  // namespace

float modem_stats_i2f_rsrp(int32_t x) { return i2f(int64_t{x} - 640, 0.0625, 140.0); }
float modem_stats_i2f_rsrq(int32_t x) { return i2f(x, 0.0625, 30.0); }
float modem_stats_i2f_rssi(int32_t x) { return i2f(x, 0.0625, 110.0); }
float modem_stats_i2f_snr(int32_t x) { return i2f(x, 0.1, 20.0); }

float modem_stats_nr5g_rsrp(int32_t x) { return scaled(x, 0.0078125); }
float modem_stats_nr5g_rsrq(int32_t x) { return scaled(x, 0.0078125); }
float modem_stats_nr5g_rssi(int32_t x) { return scaled(int64_t{x} - 4096, 0.125); }
float modem_stats_lte_rssi(int32_t x) { return scaled(int64_t{x} - 1024, 0.25); }
float modem_stats_gsm_rssi(int32_t x) { return scaled(x, 0.0625); }

float modem_stats_wcdma_rssi(int32_t x) {
  const double v = static_cast<double>(int64_t{x} + 512) / 10.0 - 106.0;
  return round2(static_cast<float>(v));
}

float modem_stats_nr5g_snr(uint32_t x) {
  if (x == 0) return kNoValue;
  const double ratio = static_cast<double>(x) * 0.0009765625;
  const double db = 10.0 * std::log10(ratio);
  return round2(static_cast<float>(db));
}

float modem_stats_nr5g_rsrp_ex(int32_t x) {
  if (x == 0) return kNoValue;
  return static_cast<float>(x) * 0.0078125f;
}
