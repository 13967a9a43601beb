// The LTE RRC state machine behind event 1606. Its parser (in
// modem_stats_parsers.h) runs both steps; they are exposed for tests.
#pragma once

#include <cstdint>

#include "modem_stats/modem_stats_cursor.h"

// Prints the state and makes its one-byte record (stat_id 5).
bool modem_stats_update_1606_diag_event_lte_rrc_state_change(uint8_t state, uint32_t *stat_id,
                                                             modem_stats_single **record);

// Prints the transition from the last state and remembers `state`. A new
// connection (Connected after any state but Connected) makes the 9-byte
// statistics record (stat_id 127) when both outputs are given; returns
// whether it made one.
bool modem_stats_update_1606_diag_event_lte_rrc_state_change_stats(int state, uint32_t *stat_id,
                                                                   modem_stats_single **record);

// Forgets the last state, as at program start.
void modem_stats_reset_1606_diag_event_lte_rrc_state();
