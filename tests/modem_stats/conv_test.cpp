#include <gtest/gtest.h>

#include <cstdint>

#include "modem_stats/modem_stats_conv.h"

namespace {

TEST(ModemStatsConv, KnownValues) {
  const struct {
    const char *what;
    float got;
    float want;
  } cases[] = {
      // clang-format off
      {"rsrp 640", modem_stats_i2f_rsrp(640), -140.0f},
      {"rsrp 0", modem_stats_i2f_rsrp(0), -180.0f},
      {"rsrp -140.125 rounds away", modem_stats_i2f_rsrp(638), -140.13f},
      {"rsrp 1215", modem_stats_i2f_rsrp(1215), -104.06f},  // -104.0625
      {"rsrq 0", modem_stats_i2f_rsrq(0), -30.0f},
      {"rsrq 250", modem_stats_i2f_rsrq(250), -14.38f},  // -14.375
      {"rssi 0", modem_stats_i2f_rssi(0), -110.0f},
      {"snr 200", modem_stats_i2f_snr(200), 0.0f},
      {"snr 0", modem_stats_i2f_snr(0), -20.0f},
      {"snr 203", modem_stats_i2f_snr(203), 0.3f},
      {"nr5g rsrp -12800", modem_stats_nr5g_rsrp(-12800), -100.0f},
      {"nr5g rsrp 1", modem_stats_nr5g_rsrp(1), 0.01f},  // 0.0078125
      {"nr5g rsrq -1", modem_stats_nr5g_rsrq(-1), -0.01f},
      {"nr5g rssi 4096", modem_stats_nr5g_rssi(4096), 0.0f},
      {"nr5g rssi 0", modem_stats_nr5g_rssi(0), -512.0f},
      {"nr5g snr 1024", modem_stats_nr5g_snr(1024), 0.0f},
      {"nr5g snr 0", modem_stats_nr5g_snr(0), 65535.0f},
      {"nr5g snr 10240", modem_stats_nr5g_snr(10240), 10.0f},
      {"nr5g snr 512", modem_stats_nr5g_snr(512), -3.01f},  // -3.0103
      {"nr5g snr max", modem_stats_nr5g_snr(UINT32_MAX), 66.23f},
      {"lte rssi 1024", modem_stats_lte_rssi(1024), 0.0f},
      {"lte rssi 0", modem_stats_lte_rssi(0), -256.0f},
      {"wcdma rssi -512", modem_stats_wcdma_rssi(-512), -106.0f},
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

}  // namespace
