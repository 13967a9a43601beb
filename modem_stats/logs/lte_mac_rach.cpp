// LTE MAC random access log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_b062_diag_log_lte_mac_rach_attempt(uint32_t *, modem_stats_single **) {
  return false;
}
