#include "modem_stats/modem_stats_dispatch.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "modem_stats/modem_stats_out.h"

namespace {

// The name column is the parser's own function name, as its messages print it.
// The record type (stat_id) a parser makes is chosen where it packs the
// record, beside the fields it describes; several parsers choose it per packet.
#define MODEM_STATS_LOG_ROW(code, suffix) \
  modem_stats_log_row { code, "modem_stats_parse_" #suffix, modem_stats_parse_##suffix }
#define MODEM_STATS_EVENT_ROW(id, suffix) \
  modem_stats_event_row { id, "modem_stats_parse_" #suffix, modem_stats_parse_##suffix }

// Sorted by code (a test checks it; lookups are binary searches).
constexpr std::array kLogTable{
    MODEM_STATS_LOG_ROW(0x1568, 1568_diag_log_ims_rtp_sn_and_payload),
    MODEM_STATS_LOG_ROW(0x156E, 156e_diag_log_ims_sip_message),
    MODEM_STATS_LOG_ROW(0x1830, 1830_diag_log_ims_volte_session_setup),
    MODEM_STATS_LOG_ROW(0x1831, 1831_diag_log_ims_volte_session_end),
    MODEM_STATS_LOG_ROW(0x4179, 4179_diag_log_wcdma_pn_search_edition2),
    MODEM_STATS_LOG_ROW(0x5096, 5096_diag_log_gsm_l1_rx_diversity_metrics),
    MODEM_STATS_LOG_ROW(0xB062, b062_diag_log_lte_mac_rach_attempt),
    MODEM_STATS_LOG_ROW(0xB064, b064_diag_log_lte_mac_ul_transport_block),
    MODEM_STATS_LOG_ROW(0xB0C2, b0c2_diag_log_lte_rrc_serving_cell_info),
    MODEM_STATS_LOG_ROW(0xB111, b111_diag_log_lte_ll1_rx_agc),
    MODEM_STATS_LOG_ROW(0xB14E, b14e_diag_log_lte_pusch_csf),
    MODEM_STATS_LOG_ROW(0xB16D, b16d_diag_log_lte_tx_power),
    MODEM_STATS_LOG_ROW(0xB16E, b16e_diag_log_lte_pusch_power_control),
    MODEM_STATS_LOG_ROW(0xB16F, b16f_diag_log_lte_pucch_power_control),
    MODEM_STATS_LOG_ROW(0xB173, b173_diag_log_lte_pdsch_stat_indication),
    MODEM_STATS_LOG_ROW(0xB193, b193_diag_log_lte_srv_meas),
    MODEM_STATS_LOG_ROW(0xB823, b823_diag_log_nr5g_rrc_serving_cell_info),
    MODEM_STATS_LOG_ROW(0xB825, b825_diag_log_nr5g_rrc_configuration_info),
    MODEM_STATS_LOG_ROW(0xB872, b872_diag_log_nr5g_l2_ul_tb),
    MODEM_STATS_LOG_ROW(0xB884, b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl),
    MODEM_STATS_LOG_ROW(0xB885, b885_diag_log_nr5g_mac_dci_info),
    MODEM_STATS_LOG_ROW(0xB887, b887_diag_log_nr5g_mac_pdsch_status),
    MODEM_STATS_LOG_ROW(0xB888, b888_diag_log_nr5g_mac_pdsch_stats),
    MODEM_STATS_LOG_ROW(0xB88A, b88a_diag_log_nr5g_mac_rach_attempt),
    MODEM_STATS_LOG_ROW(0xB8A7, b8a7_diag_log_nr5g_mac_csf_report),
    MODEM_STATS_LOG_ROW(0xB8C9, b8c9_diag_log_nr5g_ll1_fw_rx_control_agc),
    MODEM_STATS_LOG_ROW(0xB8D2, b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power),
    MODEM_STATS_LOG_ROW(0xB8D8, b8d8_diag_log_nr5g_ll1_log_serving_snr),
    MODEM_STATS_LOG_ROW(0xB8DD, b8dd_diag_log_nr5g_ll1_fw_serving_ftl),
    MODEM_STATS_LOG_ROW(0xB975, b975_diag_log_nr5g_mac_ml1_srv_beam),
    MODEM_STATS_LOG_ROW(0xB97F, b97f_diag_log_nr5g_ml1_meas_database_update_ext),
    MODEM_STATS_LOG_ROW(0xB981, b981_diag_log_nr5g_ml1_fc_information),
    MODEM_STATS_LOG_ROW(0xB98F, b98f_diag_log_nr5g_ml1_antenna_switch_diversity),
};

// Sorted by id.
constexpr std::array kEventTable{
    MODEM_STATS_EVENT_ROW(629, 0629_diag_event_cm_call_event_orig),
    MODEM_STATS_EVENT_ROW(631, 0631_diag_event_cm_call_event_end),
    MODEM_STATS_EVENT_ROW(1428, 1428_diag_event_ims_sip_session_start),
    MODEM_STATS_EVENT_ROW(1429, 1429_diag_event_ims_sip_session_ringing),
    MODEM_STATS_EVENT_ROW(1430, 1430_diag_event_ims_sip_session_established),
    MODEM_STATS_EVENT_ROW(1431, 1431_diag_event_ims_sip_session_terminated),
    MODEM_STATS_EVENT_ROW(1432, 1432_diag_event_ims_sip_session_cancel),
    MODEM_STATS_EVENT_ROW(1433, 1433_diag_event_ims_sip_session_failure),
    MODEM_STATS_EVENT_ROW(1606, 1606_diag_event_lte_rrc_state_change),
    MODEM_STATS_EVENT_ROW(1632, 1632_diag_event_lte_emm_timer_expiry),
    MODEM_STATS_EVENT_ROW(1995, 1995_diag_event_lte_rrc_radio_link_failure_stat),
    MODEM_STATS_EVENT_ROW(2568, 2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn),
    MODEM_STATS_EVENT_ROW(2622, 2622_diag_event_mcs_trm_asdiv),
    MODEM_STATS_EVENT_ROW(3184, 3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb),
    MODEM_STATS_EVENT_ROW(3215, 3215_diag_event_nr5g_emm_timer_expiry),
    MODEM_STATS_EVENT_ROW(3243, 3243_diag_event_event_nr5g_rrc_scg_failure),
};

#undef MODEM_STATS_LOG_ROW
#undef MODEM_STATS_EVENT_ROW

// The length and sub id the dispatcher lines print: it is given neither, and
// the lines have always shown the self-test packet's length.
constexpr int kPrintedLength = 108;
constexpr int kPrintedSubId = 0;

template <typename Row, size_t N>
const Row *find_row(const std::array<Row, N> &table, uint16_t key, uint16_t Row::*field) {
  const auto it = std::lower_bound(table.begin(), table.end(), key,
                                   [field](const Row &r, uint16_t k) { return r.*field < k; });
  return it != table.end() && (*it).*field == key ? &*it : nullptr;
}

// Both dispatchers after their own line: no record yet, the cursor on the
// payload, then the parser of `id` when the table has one. The cursor is
// reset only for a payload; a missing one is reported with the id of the
// packet before, which is all the cursor knows at that point.
template <typename Row, size_t N>
bool run_parser(const std::array<Row, N> &table, uint16_t Row::*key, uint16_t id, uint8_t *payload,
                uint32_t *stat_id, modem_stats_single **record) {
  *stat_id = MODEM_STATS_NO_RECORD;
  *record = nullptr;
  if (payload == nullptr) {
    modem_stats_printf("MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0x%x)\n", g_pk_data_id);
    return false;
  }
  modem_stats_cursor_reset(id, payload);
  const Row *row = find_row(table, id, key);
  return row != nullptr && row->parse(stat_id, record);
}

using record_dispatcher = bool (*)(uint16_t id, uint8_t *payload, uint32_t *stat_id,
                                   modem_stats_single **record);

// Runs a dispatcher for a caller that has no use for the record; freeing it
// keeps a long run from growing.
bool drop_record(record_dispatcher dispatch, uint16_t id, uint8_t *payload) {
  uint32_t stat_id = 0;
  modem_stats_single *record = nullptr;
  const bool made = dispatch(id, payload, &stat_id, &record);
  modem_stats_free_single(record);
  return made;
}

}  // namespace

std::span<const modem_stats_log_row> modem_stats_log_table() { return kLogTable; }
std::span<const modem_stats_event_row> modem_stats_event_table() { return kEventTable; }

bool modem_stats_diag_process_log_rec(uint16_t log_code, uint8_t *payload, uint32_t *stat_id,
                                      modem_stats_single **record) {
  modem_stats_printf("modem_stats_diag_process_log_ex: log_id 0x%x, length %d, sub_id = %d\n",
                     log_code, kPrintedLength, kPrintedSubId);
  return run_parser(kLogTable, &modem_stats_log_row::code, log_code, payload, stat_id, record);
}

bool modem_stats_diag_process_event_rec(uint16_t event_id, uint8_t *payload, uint32_t *stat_id,
                                        modem_stats_single **record) {
  modem_stats_printf("modem_stats_diag_process_event_ex: event_id %d, length %d, sub_id = %d\n",
                     event_id, kPrintedLength, kPrintedSubId);
  return run_parser(kEventTable, &modem_stats_event_row::id, event_id, payload, stat_id, record);
}

void modem_stats_diag_process_log_ex(uint16_t log_code, uint8_t *payload) {
  drop_record(modem_stats_diag_process_log_rec, log_code, payload);
}

bool modem_stats_diag_process_event_ex(uint16_t event_id, uint8_t *payload) {
  return drop_record(modem_stats_diag_process_event_rec, event_id, payload);
}
