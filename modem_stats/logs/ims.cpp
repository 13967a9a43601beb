// IMS log-packet parsers.
#include "modem_stats/modem_stats_parsers.h"

// Not decoded yet: the dispatcher line is all these print.
bool modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_156e_diag_log_ims_sip_message(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_1830_diag_log_ims_volte_session_setup(uint32_t *, modem_stats_single **) {
  return false;
}
bool modem_stats_parse_1831_diag_log_ims_volte_session_end(uint32_t *, modem_stats_single **) {
  return false;
}
