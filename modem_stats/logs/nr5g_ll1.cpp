// NR5G LL1 log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power(uint32_t *,
                                                                 modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl(uint32_t *, modem_stats_single **) {
  return false;
}
