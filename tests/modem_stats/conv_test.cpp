#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "modem_stats/modem_stats_conv.h"

namespace {

// Values worked out by hand: the rounding quirks that anchor the sweep's
// reference below, and inputs the sweeps do not reach.
TEST(ModemStatsConv, KnownValues) {
  const struct {
    const char *what;
    float got;
    float want;
  } cases[] = {
      // clang-format off
      {"rsrp -140.125 rounds away", modem_stats_i2f_rsrp(638), -140.13f},
      {"rsrp 1215", modem_stats_i2f_rsrp(1215), -104.06f},  // -104.0625
      {"rsrq 250", modem_stats_i2f_rsrq(250), -14.38f},  // -14.375
      {"snr 203", modem_stats_i2f_snr(203), 0.3f},
      {"nr5g rsrp 1", modem_stats_nr5g_rsrp(1), 0.01f},  // 0.0078125
      {"nr5g rsrq -1", modem_stats_nr5g_rsrq(-1), -0.01f},
      {"nr5g snr 0", modem_stats_nr5g_snr(0), 65535.0f},
      {"nr5g snr 512", modem_stats_nr5g_snr(512), -3.01f},  // -3.0103
      {"nr5g snr max", modem_stats_nr5g_snr(UINT32_MAX), 66.23f},
      {"wcdma rssi -507", modem_stats_wcdma_rssi(-507), -105.5f},
      {"gsm rssi -1", modem_stats_gsm_rssi(-1), -0.06f},  // -0.0625
      {"rsrp_ex 0", modem_stats_nr5g_rsrp_ex(0), 65535.0f},
      {"rsrp_ex -12800", modem_stats_nr5g_rsrp_ex(-12800), -100.0f},
      {"rsrp_ex unrounded", modem_stats_nr5g_rsrp_ex(-12801), -100.0078125f},
      // Each digit comes from its own truncated product: -40.6 shows as -40.69,
      // as the records always had it.
      {"snr -206 digit by digit", modem_stats_i2f_snr(-206), -40.69f},
      {"wcdma rssi -996 digit by digit", modem_stats_wcdma_rssi(-996), -154.49f},
      // clang-format on
  };
  for (const auto &c : cases) {
    EXPECT_EQ(c.got, c.want) << c.what;
  }
}

// The rounding rule, written out the long way: each decimal digit comes from
// a correctly rounded single-precision product of |v|, the third decides the
// second, and the digits are summed as hundredths.
float reference_round(float v) {
  const float a = std::fabs(v);
  auto digit = [a](double scale) {
    const float product =
        static_cast<float>(static_cast<double>(a) * scale);  // exact, then rounded
    return static_cast<long long>(std::floor(product)) % 10;
  };
  long long hundredths = static_cast<long long>(std::floor(a)) * 100 + digit(10) * 10 + digit(100);
  if (digit(1000) >= 5) ++hundredths;
  const float r = static_cast<float>(static_cast<long double>(hundredths) / 100.0L);
  return v < 0 ? -r : r;
}

struct Sweep {
  const char *what;
  float (*conv)(int32_t);
  long double (*exact)(long long);  // the formula before rounding
  int32_t from, to, step;
};

TEST(ModemStatsConv, SweepAgainstReference) {
  // clang-format off
  const Sweep sweeps[] = {
      {"i2f_rsrp", modem_stats_i2f_rsrp, [](long long x) { return (x - 640) / 16.0L - 140; }, -5000, 5000, 1},
      {"i2f_rsrq", modem_stats_i2f_rsrq, [](long long x) { return x / 16.0L - 30; }, -2000, 2000, 1},
      {"i2f_rssi", modem_stats_i2f_rssi, [](long long x) { return x / 16.0L - 110; }, -2000, 4000, 1},
      {"i2f_snr", modem_stats_i2f_snr, [](long long x) { return x / 10.0L - 20; }, -1000, 1000, 1},
      {"nr5g_rsrp", modem_stats_nr5g_rsrp, [](long long x) { return x / 128.0L; }, -40000, 40000, 1},
      {"nr5g_rsrq", modem_stats_nr5g_rsrq, [](long long x) { return x / 128.0L; }, -40000, 40000, 7},
      {"nr5g_rssi", modem_stats_nr5g_rssi, [](long long x) { return (x - 4096) / 8.0L; }, -10000, 10000, 1},
      {"lte_rssi", modem_stats_lte_rssi, [](long long x) { return (x - 1024) / 4.0L; }, -5000, 5000, 1},
      {"wcdma_rssi", modem_stats_wcdma_rssi, [](long long x) { return (x + 512) / 10.0L - 106; }, -5000, 5000, 1},
      {"gsm_rssi", modem_stats_gsm_rssi, [](long long x) { return x / 16.0L; }, -5000, 5000, 1},
      {"nr5g_snr", [](int32_t x) { return modem_stats_nr5g_snr(static_cast<uint32_t>(x)); },
       [](long long x) { return 10.0L * std::log10(x / 1024.0L); }, 1, 200000, 3},
  };
  // clang-format on
  for (const auto &s : sweeps) {
    int bad = 0;
    for (int32_t x = s.from; x <= s.to && bad < 5; x += s.step) {
      const float want = reference_round(static_cast<float>(s.exact(x)));
      const float got = s.conv(x);
      if (got != want) {
        ++bad;
        ADD_FAILURE() << s.what << "(" << x << ") = " << got << ", want " << want;
      }
    }
  }
}

}  // namespace
