// WCDMA and GSM log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(uint32_t *,
                                                                 modem_stats_single **) {
  return false;
}
