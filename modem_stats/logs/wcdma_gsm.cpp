// WCDMA and GSM receive-level log-packet parsers. Both carry two signed raw
// levels for the primary and diversity chains and pack them as decibels.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_conv.h"
#include "modem_stats/modem_stats_out.h"
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

// Both parsers read the two raw levels, convert them with `to_db`, print raw
// and converted values and pack the version and the decibels; only the names,
// the conversion and the record type differ.
template <size_t N>
bool parse_two_chains(const two_chain_layout (&table)[N], const char *name, float (*to_db)(int32_t),
                      const char *db0_name, const char *db1_name, uint32_t stat_id_value,
                      uint32_t *stat_id, modem_stats_single **record) {
  uint32_t version = 0;
  const two_chain_layout *l = modem_stats_log_read_version(table, name, &version);
  if (l == nullptr) return false;
  int old0 = 0, old1 = 0;
  if (!modem_stats_log_bits(l->chain0, 0, &old0) || !modem_stats_log_bits(l->chain1, 0, &old1)) {
    return false;
  }
  const float db0 = to_db(old0);
  const float db1 = to_db(old1);
  modem_stats_printf("version = %d, %s = %d, %s = %d, %s = %.2f, %s = %.2f\n",
                     static_cast<int>(version), l->chain0.name, old0, l->chain1.name, old1,
                     db0_name, db0, db1_name, db1);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_float(db0_name, db0),
       modem_stats_pk_float(db1_name, db1)},
      stat_id_value, stat_id, record);
}

}  // namespace

bool modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(uint32_t *stat_id,
                                                              modem_stats_single **record) {
  return parse_two_chains(kWcdmaLayouts, "modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2",
                          modem_stats_wcdma_rssi, "rx_agc_0", "rx_agc_1", 110, stat_id, record);
}

bool modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(uint32_t *stat_id,
                                                                 modem_stats_single **record) {
  return parse_two_chains(kGsmLayouts,
                          "modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics",
                          modem_stats_gsm_rssi, "rx_prx", "rx_drx", 111, stat_id, record);
}
