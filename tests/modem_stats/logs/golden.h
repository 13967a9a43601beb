// Golden packets of the log parsers: payload bytes in, exact console text and
// record bytes out. Each technology's test file contributes its list; the
// dispatch-table test checks that every log code has at least one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct modem_stats_golden {
  uint16_t code;                 // log code
  std::string what;              // short description, e.g. "v163 all zero"
  std::vector<uint8_t> payload;  // from the version byte on; zero-padded to 2000 when run
  std::string want;              // what the parser prints (after the dispatcher line)
  uint32_t want_stat_id;         // 146 when no record is made
  std::vector<uint8_t> want_record;
};

std::span<const modem_stats_golden> modem_stats_golden_lte();  // golden_lte.cpp
std::span<const modem_stats_golden> modem_stats_golden_nr();   // golden_nr.cpp
