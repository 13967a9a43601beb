// NR5G RRC log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info(uint32_t *,
                                                                 modem_stats_single **) {
  return false;
}
