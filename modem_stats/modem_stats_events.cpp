// Diag event parsers: short byte-aligned payloads, one summary line and one
// record each, and the LTE RRC state machine of event 1606.
#include "modem_stats/modem_stats_events.h"

#include <cstdio>
#include <initializer_list>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

// A value read from the payload: an item of the record as it is read, so a
// field packed with its read width goes into the pack list as it is.
using ev_field = modem_stats_pk_item;
ev_field field(const char *name, int width) { return modem_stats_pk_int(name, 0, width); }
ev_field skip(int width) { return field(nullptr, width); }

// Reads the fields in order; a field named null is that many bytes skipped.
bool read_fields(std::initializer_list<ev_field *> fields) {
  for (ev_field *f : fields) {
    if (f->name == nullptr) {
      modem_stats_skip(f->width);
    } else if (!modem_stats_unpk_u(f->name, f->width, &f->value)) {
      return false;
    }
  }
  return true;
}

int as_int(const ev_field &f) { return static_cast<int>(f.value); }

// The six SIP session events share one layout and differ in their stat_id.
bool parse_sip_session(uint32_t stat_id_made, uint32_t *stat_id, modem_stats_single **record) {
  ev_field sip_call_id = field("sip_call_id", 4);
  if (!read_fields({&sip_call_id})) return false;
  modem_stats_printf("sip_call_id = %d\n", as_int(sip_call_id));
  return modem_stats_log_pack({sip_call_id}, stat_id_made, stat_id, record);
}

// EMM timer expiry, LTE and NR alike. The 4 after the timer id is part of the
// record as the statistics side has always received it.
bool parse_emm_timer(const char *label, uint32_t stat_id_made, uint32_t *stat_id,
                     modem_stats_single **record) {
  ev_field timer_id = field("timer_id", 1);
  if (!read_fields({&timer_id})) return false;
  modem_stats_printf("%s, sub_id = %d, timer_id = %d\n", label, 0, as_int(timer_id));
  return modem_stats_log_pack({timer_id, modem_stats_pk_int("timer_tail", 4, 1)}, stat_id_made,
                              stat_id, record);
}

// ---- 1606 LTE RRC state change -------------------------------------------

constexpr int kRrcConnected = 4;
constexpr int kRrcClosing = 7;
constexpr const char *kRrc = "1606_diag_event_lte_rrc_state_change";

// The state of the previous 1606 event.
uint8_t rrc_state_last = 0;

}  // namespace

bool modem_stats_update_1606_diag_event_lte_rrc_state_change(uint8_t state, uint32_t *stat_id,
                                                             modem_stats_single **record) {
  modem_stats_printf("sub_id = %d, rrc_state_current_in = %d\n", 0, state);
  return modem_stats_log_pack({modem_stats_pk_int("rrc_state_current", state, 1)}, 5, stat_id,
                              record);
}

bool modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(int state, uint32_t *stat_id,
                                                                   modem_stats_single **record) {
  // A negative state would keep the last one; a byte never is negative.
  const int current = state < 0 ? rrc_state_last : state;
  // No clock is kept, so times and old counts always show 0.
  modem_stats_printf(
      "%s, time_last = %d, time_current = %d, rrc_state_last = %d, rrc_state_current = %d, "
      "rrc_state_current_in = %d, old rrc_active_time = %d, old rrc_setup_count = %d\n",
      kRrc, 0, 0, rrc_state_last, current, state, 0, 0);
  bool made = false;
  if (current == kRrcClosing) {
    if (rrc_state_last == kRrcConnected) {
      modem_stats_printf(
          "%s, New Closing and Old Connected, time not inited, do nothing, sub_id %d\n", kRrc, 0);
    } else {
      modem_stats_printf("%s, New Closing and Old other state, do nothing, sub_id %d\n", kRrc, 0);
    }
  } else if (current != kRrcConnected) {
    // Printed also when the last state was Connected.
    modem_stats_printf("%s, New other state and Old other state, do nothing, sub_id %d\n", kRrc, 0);
  } else if (rrc_state_last == kRrcConnected) {
    modem_stats_printf(
        "%s, New Connected and Old Connected, time not inited, do nothing, sub_id %d\n", kRrc, 0);
  } else {
    // Counts are not accumulated: every new connection reports one setup and
    // no active time.
    modem_stats_printf(
        "----%s, New Connected and Old other state, rrc_setup_count = %d, sub_id %d\n", kRrc, 1, 0);
    if (stat_id != nullptr && record != nullptr) {
      made = modem_stats_log_pack(
          {modem_stats_pk_int("rrc_active_time", 0, 4), modem_stats_pk_int("rrc_setup_count", 1, 4),
           modem_stats_pk_int("rrc_new_setup", 1, 1)},
          127, stat_id, record);
    }
  }
  rrc_state_last = static_cast<uint8_t>(current);
  return made;
}

void modem_stats_reset_1606_diag_event_lte_rrc_state() { rrc_state_last = 0; }

bool modem_stats_parse_1606_diag_event_lte_rrc_state_change(uint32_t *stat_id,
                                                            modem_stats_single **record) {
  ev_field state = field("rrc_state_current", 1);
  if (!read_fields({&state})) return false;
  const auto current = static_cast<uint8_t>(state.value);
  // The state record gets a real home so that the statistics step runs; the
  // caller receives the statistics record when a new connection makes one,
  // and the state record otherwise.
  uint32_t state_stat_id = MODEM_STATS_NO_RECORD;
  modem_stats_single *state_record = nullptr;
  if (!modem_stats_update_1606_diag_event_lte_rrc_state_change(current, &state_stat_id,
                                                               &state_record)) {
    return false;
  }
  if (modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(current, stat_id, record)) {
    modem_stats_free_single(state_record);
    return true;
  }
  *stat_id = state_stat_id;
  *record = state_record;
  return true;
}

// ---- the other events ----------------------------------------------------

bool modem_stats_parse_0629_diag_event_cm_call_event_orig(uint32_t *stat_id,
                                                          modem_stats_single **record) {
  ev_field call_id = field("call_id", 1), call_type = field("call_type", 1),
           srv_type = field("srv_type", 1);
  if (!read_fields({&call_id, &call_type, &srv_type})) return false;
  modem_stats_printf("call_id = %d, call_type = %d, srv_type = %d\n", as_int(call_id),
                     as_int(call_type), as_int(srv_type));
  return modem_stats_log_pack({call_id, call_type, srv_type}, 117, stat_id, record);
}

bool modem_stats_parse_0631_diag_event_cm_call_event_end(uint32_t *stat_id,
                                                         modem_stats_single **record) {
  ev_field num_calls = field("num_calls", 1), call_id = field("call_id", 1);
  if (!read_fields({&num_calls, &call_id})) return false;
  modem_stats_printf("num_calls = %d, call_id = %d\n", as_int(num_calls), as_int(call_id));
  return modem_stats_log_pack({num_calls, call_id}, 118, stat_id, record);
}

bool modem_stats_parse_1428_diag_event_ims_sip_session_start(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  return parse_sip_session(119, stat_id, record);
}

bool modem_stats_parse_1429_diag_event_ims_sip_session_ringing(uint32_t *stat_id,
                                                               modem_stats_single **record) {
  return parse_sip_session(120, stat_id, record);
}

bool modem_stats_parse_1430_diag_event_ims_sip_session_established(uint32_t *stat_id,
                                                                   modem_stats_single **record) {
  return parse_sip_session(121, stat_id, record);
}

bool modem_stats_parse_1431_diag_event_ims_sip_session_terminated(uint32_t *stat_id,
                                                                  modem_stats_single **record) {
  return parse_sip_session(122, stat_id, record);
}

bool modem_stats_parse_1432_diag_event_ims_sip_session_cancel(uint32_t *stat_id,
                                                              modem_stats_single **record) {
  return parse_sip_session(123, stat_id, record);
}

bool modem_stats_parse_1433_diag_event_ims_sip_session_failure(uint32_t *stat_id,
                                                               modem_stats_single **record) {
  return parse_sip_session(124, stat_id, record);
}

bool modem_stats_parse_1632_diag_event_lte_emm_timer_expiry(uint32_t *stat_id,
                                                            modem_stats_single **record) {
  return parse_emm_timer("lte_emm_timer_expiry", 95, stat_id, record);
}

bool modem_stats_parse_1995_diag_event_lte_rrc_radio_link_failure_stat(
    uint32_t *stat_id, modem_stats_single **record) {
  ev_field connected = field("rlf_count_rrc_connected", 2),
           active = field("rlf_count_lte_active", 2), cause = field("rlf_cause", 2);
  if (!read_fields({&connected, &active, &cause})) return false;
  modem_stats_printf(
      "sub_id = %d, rlf_count_rrc_connected = %d, rlf_count_lte_active = %d, rlf_cause = %d\n", 0,
      as_int(connected), as_int(active), as_int(cause));
  return modem_stats_log_pack({connected, active, cause}, 131, stat_id, record);
}

bool modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn(
    uint32_t *stat_id, modem_stats_single **record) {
  constexpr int kHandover = 2;
  ev_field cause = field("cause", 1), freq = field("freq", 4), pci = field("pci", 2);
  if (!read_fields({&cause, &freq, &pci})) return false;
  modem_stats_printf("cause = %d, freq = %d, pci = %d\n", as_int(cause), as_int(freq), as_int(pci));
  // Only a handover is of interest; its time and type are not in the event.
  if (as_int(cause) != kHandover) {
    return modem_stats_not_valid(
        as_int(cause), "modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn");
  }
  modem_stats_printf("ho_time = %ld, ho_type = %d, pci = %d\n", 0L, 1, as_int(pci));
  return modem_stats_log_pack(
      {modem_stats_pk_int("ho_time", 0, 8), modem_stats_pk_int("ho_type", 1, 1), freq, pci}, 109,
      stat_id, record);
}

bool modem_stats_parse_2622_diag_event_mcs_trm_asdiv(uint32_t *stat_id,
                                                     modem_stats_single **record) {
  ev_field skip1 = skip(1), old_config = field("old_config", 1),
           new_config = field("new_config", 1), skip2 = skip(2),
           ant_number = field("ant_number", 1), ant_switch_path = field("ant_switch_path", 2),
           sig_path = field("sig_path", 2);
  if (!read_fields(
          {&skip1, &old_config, &new_config, &skip2, &ant_number, &ant_switch_path, &sig_path})) {
    return false;
  }
  modem_stats_printf(
      "version = %d, ant_number = %d, ant_switch_path = %d, sig_path = %d, old_config = %d, "
      "new_config = %d\n",
      0, as_int(ant_number), as_int(ant_switch_path), as_int(sig_path), as_int(old_config),
      as_int(new_config));
  return modem_stats_log_pack({modem_stats_pk_int("version", 0, 1), ant_number, ant_switch_path,
                               sig_path, old_config, new_config},
                              100, stat_id, record);
}

bool modem_stats_parse_3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb(uint32_t *stat_id,
                                                                   modem_stats_single **record) {
  ev_field ssb_freq = field("ssb_freq", 4), pci = field("pci", 2), bw = field("bw", 1);
  if (!read_fields({&ssb_freq, &pci, &bw})) return false;
  modem_stats_printf("ssb_freq = %d, pci = %d, bw = %d\n", as_int(ssb_freq), as_int(pci),
                     as_int(bw));
  return modem_stats_log_pack({ssb_freq, pci, bw}, 92, stat_id, record);
}

bool modem_stats_parse_3215_diag_event_nr5g_emm_timer_expiry(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  return parse_emm_timer("nr5g_emm_timer_expiry", 102, stat_id, record);
}

bool modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure(uint32_t *stat_id,
                                                                  modem_stats_single **record) {
  ev_field gap = skip(32), cause = field("scg_failure_cause", 2);
  if (!read_fields({&gap, &cause})) return false;
  modem_stats_printf("sub_id = %d, scg_failure_cause = %d\n", 0, as_int(cause));
  return modem_stats_log_pack({cause}, 138, stat_id, record);
}
