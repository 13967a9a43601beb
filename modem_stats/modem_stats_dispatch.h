// Dispatch of diag log packets and events to their parsers.
#pragma once

#include <cstdint>
#include <span>

#include "modem_stats/modem_stats_parsers.h"

struct modem_stats_log_row {
  uint16_t code;     // log code
  const char *name;  // the parser's function name
  modem_stats_parser parse;
};

struct modem_stats_event_row {
  uint16_t id;  // event id
  const char *name;
  modem_stats_parser parse;
};

// The two tables, sorted by code / id.
std::span<const modem_stats_log_row> modem_stats_log_table();
std::span<const modem_stats_event_row> modem_stats_event_table();

// The dispatchers: print the dispatcher line, reset the cursor, run the
// parser; the record a parser makes is dropped.
void modem_stats_diag_process_log_ex(uint16_t log_code, uint8_t *payload);
bool modem_stats_diag_process_event_ex(uint16_t event_id, uint8_t *payload);

// The same, handing the record (or null) and its stat_id (146 when none) to
// the caller, who frees it with modem_stats_free_single. `payload` must give
// 2000 readable bytes (zero-pad short packets).
bool modem_stats_diag_process_log_rec(uint16_t log_code, uint8_t *payload, uint32_t *stat_id,
                                      modem_stats_single **record);
bool modem_stats_diag_process_event_rec(uint16_t event_id, uint8_t *payload, uint32_t *stat_id,
                                        modem_stats_single **record);
