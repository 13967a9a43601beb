// WCDMA and GSM receive-level log-packet parsers. Both carry two signed raw
// levels for the primary and diversity chains and pack them as decibels.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_conv.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

struct two_chain_layout {
  uint32_t version;
  modem_stats_field chain0, chain1;  // offsets from the bit base after the version byte
};

// 0x4179 PN search edition 2:
//   byte 0 version | 1..2 | 3 rx_agc_old_0 (s16) | 5 rx_agc_old_1 (s16)
constexpr two_chain_layout kWcdmaLayouts[] = {
    {8, {"rx_agc_old_0", 16, 16, true}, {"rx_agc_old_1", 32, 16, true}},
};

// 0x5096 GSM L1 receive diversity metrics, levels in 1/16 dB.
// Provisional: no public definition of this packet exists; the positions are
// our own reading.
//   byte 0 version | 1 rx_prx_old (s16) | 3 rx_drx_old (s16)
constexpr two_chain_layout kGsmLayouts[] = {
    {6, {"rx_prx_old", 0, 16, true}, {"rx_drx_old", 16, 16, true}},
};

struct two_chain_values {
  uint32_t version;
  int old0, old1;
};

template <size_t N>
bool read_two_chains(const two_chain_layout (&table)[N], const char *name, two_chain_values *v) {
  const two_chain_layout *l = modem_stats_log_read_version(table, name, &v->version);
  if (l == nullptr) return false;
  return modem_stats_log_bits(l->chain0, 0, &v->old0) &&
         modem_stats_log_bits(l->chain1, 0, &v->old1);
}

}  // namespace

bool modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(uint32_t *stat_id,
                                                              modem_stats_single **record) {
  two_chain_values v{};
  if (!read_two_chains(kWcdmaLayouts, "modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2",
                       &v)) {
    return false;
  }
  const float agc0 = modem_stats_wcdma_rssi(v.old0);
  const float agc1 = modem_stats_wcdma_rssi(v.old1);
  std::printf(
      "version = %d, rx_agc_old_0 = %d, rx_agc_old_1 = %d, rx_agc_0 = %.2f, rx_agc_1 = %.2f\n",
      static_cast<int>(v.version), v.old0, v.old1, agc0, agc1);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", v.version, 1), modem_stats_pk_float("rx_agc_0", agc0),
       modem_stats_pk_float("rx_agc_1", agc1)},
      110, stat_id, record);
}

bool modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(uint32_t *stat_id,
                                                                 modem_stats_single **record) {
  two_chain_values v{};
  if (!read_two_chains(kGsmLayouts, "modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics",
                       &v)) {
    return false;
  }
  const float prx = modem_stats_gsm_rssi(v.old0);
  const float drx = modem_stats_gsm_rssi(v.old1);
  std::printf("version = %d, rx_prx_old = %d, rx_drx_old = %d, rx_prx = %.2f, rx_drx = %.2f\n",
              static_cast<int>(v.version), v.old0, v.old1, prx, drx);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", v.version, 1), modem_stats_pk_float("rx_prx", prx),
       modem_stats_pk_float("rx_drx", drx)},
      111, stat_id, record);
}
