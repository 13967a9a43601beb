// LTE RRC log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info(uint32_t *, modem_stats_single **) {
  return false;
}
