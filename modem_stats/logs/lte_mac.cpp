// LTE MAC uplink log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block(uint32_t *, modem_stats_single **) {
  return false;
}
