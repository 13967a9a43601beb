// NR5G ML1 log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext(uint32_t *,
                                                                       modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity(uint32_t *,
                                                                       modem_stats_single **) {
  return false;
}
