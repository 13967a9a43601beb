// LTE physical layer log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b111_diag_log_lte_ll1_rx_agc(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b14e_diag_log_lte_pusch_csf(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b16d_diag_log_lte_tx_power(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b16e_diag_log_lte_pusch_power_control(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b16f_diag_log_lte_pucch_power_control(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b193_diag_log_lte_srv_meas(uint32_t *, modem_stats_single **) {
  return false;
}
