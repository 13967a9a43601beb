// NR5G MAC log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl(uint32_t *,
                                                                   modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b885_diag_log_nr5g_mac_dci_info(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report(uint32_t *, modem_stats_single **) {
  return false;
}
