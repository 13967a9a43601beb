// The modem's own settings that outlive the daemon (<state dir>/modem.json):
// SIM card states, card type, SAR state, restart timing, statistics overrides.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace rpk_sim {

struct Settings {
  uint32_t card_present[2] = {1, 1};
  uint32_t card_detect_mode[2] = {0, 0};   // 0 general, 1 sim
  uint32_t card_detect_level[2] = {1, 1};  // 0 low, 1 high
  uint32_t card_type = 2;                  // 0 error, 1 single SIM, 2 multi SIM
  uint32_t sar_state = 0;
  uint32_t sar_valid = 1;
  uint32_t ssr_ms = 3000;   // how long a subsystem restart keeps the services away
  uint32_t dump_ms = 3000;  // the same for a full dump
  uint32_t qcn_ms = 200;    // how long a QCN backup or restore takes
  // Statistics counters set by hand, "section.field" -> value.
  std::map<std::string, uint64_t> stats;

  // Loads <dir>/modem.json; defaults for anything missing or unreadable.
  static Settings load(const std::string &state_dir);
  bool save(const std::string &state_dir) const;
  std::string to_json_text() const;

  // Sets one setting by name ("sar_state", "card_present.1", "stats.main.x"),
  // as the control interface names them. False, changing nothing, for an
  // unknown name (a statistics counter the modem does not have included).
  bool set(const std::string &name, uint64_t value);
};

}  // namespace rpk_sim
