#include "settings.h"

#include <nlohmann/json.hpp>

#include "modem_services.h"
#include "platform/host/link/rpk_host.h"

namespace rpk_sim {
namespace {

using nlohmann::json;

std::string path_of(const std::string &dir) { return dir + "/modem.json"; }

template <typename T>
void take(const json &j, const char *key, T &dst) {
  if (j.contains(key) && j[key].is_number_unsigned()) dst = j[key].get<T>();
}

void take_pair(const json &j, const char *key, uint32_t (&dst)[2]) {
  if (!j.contains(key) || !j[key].is_array()) return;
  for (size_t i = 0; i < 2 && i < j[key].size(); ++i) {
    if (j[key][i].is_number_unsigned()) dst[i] = j[key][i].get<uint32_t>();
  }
}

}  // namespace

Settings Settings::load(const std::string &state_dir) {
  Settings s;
  std::string text;
  if (!rpk_host::read_file(path_of(state_dir), text)) return s;
  json j = json::parse(text, nullptr, false);
  if (!j.is_object()) return s;
  take_pair(j, "card_present", s.card_present);
  take_pair(j, "card_detect_mode", s.card_detect_mode);
  take_pair(j, "card_detect_level", s.card_detect_level);
  take(j, "card_type", s.card_type);
  take(j, "sar_state", s.sar_state);
  take(j, "sar_valid", s.sar_valid);
  take(j, "ssr_ms", s.ssr_ms);
  take(j, "dump_ms", s.dump_ms);
  take(j, "qcn_ms", s.qcn_ms);
  if (j.contains("stats") && j["stats"].is_object()) {
    for (const auto &[k, v] : j["stats"].items()) {
      if (v.is_number_unsigned()) s.stats[k] = v.get<uint64_t>();
    }
  }
  return s;
}

std::string Settings::to_json_text() const {
  json j = {
      {"card_present", {card_present[0], card_present[1]}},
      {"card_detect_mode", {card_detect_mode[0], card_detect_mode[1]}},
      {"card_detect_level", {card_detect_level[0], card_detect_level[1]}},
      {"card_type", card_type},
      {"sar_state", sar_state},
      {"sar_valid", sar_valid},
      {"ssr_ms", ssr_ms},
      {"dump_ms", dump_ms},
      {"qcn_ms", qcn_ms},
      {"stats", stats},
  };
  return j.dump(2) + "\n";
}

bool Settings::save(const std::string &state_dir) const {
  return rpk_host::write_file_atomic(path_of(state_dir), to_json_text());
}

bool Settings::set(const std::string &name, uint64_t value) {
  const auto v32 = static_cast<uint32_t>(value);
  auto per_sub = [&](const char *prefix, uint32_t(&dst)[2]) {
    const std::string p = std::string(prefix) + ".";
    if (name.compare(0, p.size(), p) != 0) return false;
    const std::string sub = name.substr(p.size());
    if (sub != "0" && sub != "1") return false;
    dst[sub[0] - '0'] = v32;
    return true;
  };
  if (per_sub("card_present", card_present) || per_sub("card_detect_mode", card_detect_mode) ||
      per_sub("card_detect_level", card_detect_level)) {
    return true;
  }
  if (name.compare(0, 6, "stats.") == 0) {
    if (!stats_field_known(name.substr(6))) return false;
    stats[name.substr(6)] = value;
    return true;
  }
  const std::map<std::string, uint32_t *> scalars = {
      {"card_type", &card_type}, {"sar_state", &sar_state}, {"sar_valid", &sar_valid},
      {"ssr_ms", &ssr_ms},       {"dump_ms", &dump_ms},     {"qcn_ms", &qcn_ms},
  };
  auto it = scalars.find(name);
  if (it == scalars.end()) return false;
  *it->second = v32;
  return true;
}

}  // namespace rpk_sim
