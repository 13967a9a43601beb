// Every log-packet and event parser of the statistics engine. A parser reads
// the packet at the cursor (already reset by the dispatcher), prints its
// summary and, when the packet is usable, makes one record: it stores the
// record in *record and its type in *stat_id and returns true. Otherwise it
// prints why, leaves both outputs alone and returns false.
#pragma once

#include <cstdint>

#include "modem_stats/modem_stats_cursor.h"

using modem_stats_parser = bool (*)(uint32_t *stat_id, modem_stats_single **record);

// Log packets.
bool modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload(uint32_t *stat_id,
                                                            modem_stats_single **record);
bool modem_stats_parse_156e_diag_log_ims_sip_message(uint32_t *stat_id,
                                                     modem_stats_single **record);
bool modem_stats_parse_1830_diag_log_ims_volte_session_setup(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_1831_diag_log_ims_volte_session_end(uint32_t *stat_id,
                                                           modem_stats_single **record);
bool modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(uint32_t *stat_id,
                                                              modem_stats_single **record);
bool modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(uint32_t *stat_id,
                                                                 modem_stats_single **record);
bool modem_stats_parse_b062_diag_log_lte_mac_rach_attempt(uint32_t *stat_id,
                                                          modem_stats_single **record);
bool modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block(uint32_t *stat_id,
                                                                modem_stats_single **record);
bool modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info(uint32_t *stat_id,
                                                               modem_stats_single **record);
bool modem_stats_parse_b111_diag_log_lte_ll1_rx_agc(uint32_t *stat_id, modem_stats_single **record);
bool modem_stats_parse_b14e_diag_log_lte_pusch_csf(uint32_t *stat_id, modem_stats_single **record);
bool modem_stats_parse_b16d_diag_log_lte_tx_power(uint32_t *stat_id, modem_stats_single **record);
bool modem_stats_parse_b16e_diag_log_lte_pusch_power_control(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_b16f_diag_log_lte_pucch_power_control(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication(uint32_t *stat_id,
                                                               modem_stats_single **record);
bool modem_stats_parse_b193_diag_log_lte_srv_meas(uint32_t *stat_id, modem_stats_single **record);
bool modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info(uint32_t *stat_id,
                                                                modem_stats_single **record);
bool modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info(uint32_t *stat_id,
                                                                 modem_stats_single **record);
bool modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb(uint32_t *stat_id, modem_stats_single **record);
bool modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl(uint32_t *stat_id,
                                                                   modem_stats_single **record);
bool modem_stats_parse_b885_diag_log_nr5g_mac_dci_info(uint32_t *stat_id,
                                                       modem_stats_single **record);
bool modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status(uint32_t *stat_id,
                                                           modem_stats_single **record);
bool modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats(uint32_t *stat_id,
                                                          modem_stats_single **record);
bool modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt(uint32_t *stat_id,
                                                           modem_stats_single **record);
bool modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report(uint32_t *stat_id,
                                                         modem_stats_single **record);
bool modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc(uint32_t *stat_id,
                                                                modem_stats_single **record);
bool modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power(uint32_t *stat_id,
                                                                 modem_stats_single **record);
bool modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr(uint32_t *stat_id,
                                                              modem_stats_single **record);
bool modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam(uint32_t *stat_id,
                                                           modem_stats_single **record);
bool modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext(uint32_t *stat_id,
                                                                       modem_stats_single **record);
bool modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity(uint32_t *stat_id,
                                                                       modem_stats_single **record);

// Events.
bool modem_stats_parse_0629_diag_event_cm_call_event_orig(uint32_t *stat_id,
                                                          modem_stats_single **record);
bool modem_stats_parse_0631_diag_event_cm_call_event_end(uint32_t *stat_id,
                                                         modem_stats_single **record);
bool modem_stats_parse_1428_diag_event_ims_sip_session_start(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_1429_diag_event_ims_sip_session_ringing(uint32_t *stat_id,
                                                               modem_stats_single **record);
bool modem_stats_parse_1430_diag_event_ims_sip_session_established(uint32_t *stat_id,
                                                                   modem_stats_single **record);
bool modem_stats_parse_1431_diag_event_ims_sip_session_terminated(uint32_t *stat_id,
                                                                  modem_stats_single **record);
bool modem_stats_parse_1432_diag_event_ims_sip_session_cancel(uint32_t *stat_id,
                                                              modem_stats_single **record);
bool modem_stats_parse_1433_diag_event_ims_sip_session_failure(uint32_t *stat_id,
                                                               modem_stats_single **record);
bool modem_stats_parse_1606_diag_event_lte_rrc_state_change(uint32_t *stat_id,
                                                            modem_stats_single **record);
bool modem_stats_parse_1632_diag_event_lte_emm_timer_expiry(uint32_t *stat_id,
                                                            modem_stats_single **record);
bool modem_stats_parse_1995_diag_event_lte_rrc_radio_link_failure_stat(uint32_t *stat_id,
                                                                       modem_stats_single **record);
bool modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn(uint32_t *stat_id,
                                                                       modem_stats_single **record);
bool modem_stats_parse_2622_diag_event_mcs_trm_asdiv(uint32_t *stat_id,
                                                     modem_stats_single **record);
bool modem_stats_parse_3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb(uint32_t *stat_id,
                                                                   modem_stats_single **record);
bool modem_stats_parse_3215_diag_event_nr5g_emm_timer_expiry(uint32_t *stat_id,
                                                             modem_stats_single **record);
bool modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure(uint32_t *stat_id,
                                                                  modem_stats_single **record);
