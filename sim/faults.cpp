#include "faults.h"

#include <algorithm>

#include "diag_endpoint.h"
#include "modem_services.h"
#include "platform/host/link/qmi_host_transport.h"
#include "sim_text.h"
#include "stats_endpoint.h"

namespace rpk_sim {
namespace {

const char *kind_name(FaultKind k) {
  switch (k) {
    case FaultKind::kDelay:
      return "delay";
    case FaultKind::kError:
      return "error";
    case FaultKind::kDropAfter:
      return "drop_after";
    case FaultKind::kNoDataValid:
      return "no_data_valid";
    case FaultKind::kRefuseInit:
      return "refuse_init";
    case FaultKind::kCorrupt:
      return "corrupt";
    case FaultKind::kStatsEmpty:
      return "stats_empty";
    case FaultKind::kStatsId:
      return "stats_id";
    case FaultKind::kStatsSub:
      return "stats_sub";
    case FaultKind::kStatsCount:
      return "stats_count";
  }
  return "?";
}

// One optional number of the corrupt fault's control form, at most `max`.
template <typename T>
bool corrupt_field(const nlohmann::json &j, const char *key, uint32_t max, std::optional<T> *out,
                   std::string *error) {
  if (!j.contains(key)) return true;
  uint32_t v = 0;
  if (!json_u32(j, key, &v) || v > max) {
    *error =
        std::string("fault corrupt: \"") + key + "\" must be a number up to " + std::to_string(max);
    return false;
  }
  *out = static_cast<T>(v);
  return true;
}

// The corrupt fault's fields from its control form.
bool parse_corruption(const nlohmann::json &j, Corruption *c, std::string *error) {
  if (!corrupt_field(j, "claim", UINT32_MAX, &c->claim, error) ||
      !corrupt_field(j, "truncate", 0xFFFF, &c->truncate, error) ||
      !corrupt_field(j, "msg_id", 0xFFFF, &c->msg_id, error) ||
      !corrupt_field(j, "txn", 0xFFFF, &c->txn, error)) {
    return false;
  }
  uint32_t v = 0;
  for (const auto &p : j.value("patch", nlohmann::json::array())) {
    std::vector<uint8_t> bytes;
    if (!p.is_object() || !json_u32(p, "at", &v) || !p.contains("hex") || !p["hex"].is_string() ||
        !parse_hex(p["hex"].get<std::string>(), &bytes) || bytes.empty()) {
      *error = "fault corrupt: a patch is {\"at\": OFFSET, \"hex\": \"BYTES\"}";
      return false;
    }
    c->patches.emplace_back(v, std::move(bytes));
  }
  if (!c->any()) {
    *error = "fault corrupt needs patch, msg_id, txn, truncate or claim";
    return false;
  }
  return true;
}

}  // namespace

void Corruption::add(const Corruption &other) {
  if (other.claim) claim = other.claim;
  if (other.truncate) truncate = other.truncate;
  if (other.msg_id) msg_id = other.msg_id;
  if (other.txn) txn = other.txn;
  patches.insert(patches.end(), other.patches.begin(), other.patches.end());
}

void Corruption::apply(std::vector<uint8_t> &packet) const {
  rpk_qmi::Header h;
  if (packet.size() >= rpk_qmi::kHeaderLen &&
      rpk_qmi::parse_header(packet.data(), packet.size(), &h)) {
    if (truncate && *truncate < h.len) {
      h.len = static_cast<uint16_t>(*truncate);
      packet.resize(rpk_qmi::kHeaderLen + h.len);
    }
    if (msg_id) h.msg_id = *msg_id;
    if (txn) h.txn = *txn;
    rpk_qmi::put_header(packet.data(), h);
  }
  for (const auto &[at, bytes] : patches) {
    for (size_t i = 0; i < bytes.size() && at + i < packet.size(); ++i) packet[at + i] = bytes[i];
  }
}

nlohmann::json Corruption::to_json() const {
  nlohmann::json j = nlohmann::json::object();
  if (claim) j["claim"] = *claim;
  if (truncate) j["truncate"] = *truncate;
  if (msg_id) j["msg_id"] = *msg_id;
  if (txn) j["txn"] = *txn;
  for (const auto &[at, bytes] : patches) {
    j["patch"].push_back(
        {{"at", at}, {"hex", spaced_hex(std::string(bytes.begin(), bytes.end()))}});
  }
  return j;
}

bool Faults::matches(const Fault &f, uint32_t service, int64_t request_id, bool exact_service) {
  return f.count != 0 && (f.service == service || (f.service == 0 && !exact_service)) &&
         (f.request_id < 0 || f.request_id == request_id);
}

void Faults::drop_used_up() {
  faults_.erase(
      std::remove_if(faults_.begin(), faults_.end(), [](const Fault &f) { return f.count == 0; }),
      faults_.end());
}

FaultEffect Faults::on_request(uint32_t service, int64_t request_id, bool exact_service) {
  FaultEffect effect;
  for (auto &f : faults_) {
    if (f.kind == FaultKind::kRefuseInit || !matches(f, service, request_id, exact_service)) {
      continue;
    }
    switch (f.kind) {
      case FaultKind::kDelay:
        effect.delay_ms = std::max(effect.delay_ms, f.value);
        break;
      case FaultKind::kError:
        effect.error = true;
        effect.error_code = f.value;
        break;
      case FaultKind::kNoDataValid:
        effect.no_data_valid = true;
        break;
      case FaultKind::kCorrupt:
        effect.corrupt.add(f.corrupt);
        break;
      case FaultKind::kDropAfter:
        if (f.value > 0) {
          --f.value;
          continue;  // answered normally; not used up yet
        }
        effect.drop = true;
        f.count = 0;
        continue;
      case FaultKind::kRefuseInit:
        break;
      case FaultKind::kStatsEmpty:
        effect.stats_empty = true;
        break;
      case FaultKind::kStatsId:
        effect.stats_id = f.value;
        break;
      case FaultKind::kStatsSub:
        effect.stats_sub = f.value;
        break;
      case FaultKind::kStatsCount:
        effect.stats_count = f.value;
        break;
    }
    if (f.count > 0) --f.count;
  }
  drop_used_up();
  return effect;
}

bool Faults::refuses_client(uint32_t service) {
  bool refused = false;
  for (auto &f : faults_) {
    if (f.kind != FaultKind::kRefuseInit || !matches(f, service, -1)) continue;
    refused = true;
    if (f.count > 0) --f.count;
  }
  drop_used_up();
  return refused;
}

nlohmann::json Faults::to_json() const {
  nlohmann::json out = nlohmann::json::array();
  for (const auto &f : faults_) {
    nlohmann::json j = {{"kind", kind_name(f.kind)}, {"value", f.value}};
    if (f.service != 0) j["service"] = service_name(f.service);
    if (f.request_id >= 0) j["request_id"] = f.request_id;
    if (f.count >= 0) j["count"] = f.count;
    if (f.kind == FaultKind::kCorrupt) j.update(f.corrupt.to_json());
    out.push_back(j);
  }
  return out;
}

uint32_t parse_service(const nlohmann::json &j) {
  if (j.is_number_unsigned()) return j.get<uint32_t>();
  if (!j.is_string()) return 0;
  const std::string s = j.get<std::string>();
  if (s == "extend" || s == "extend_qmi") return kExtendQmiServiceId;
  if (s == "sar") return kSarServiceId;
  if (s == "stats") return kStatsServiceId;
  if (const uint32_t diag = diag_service_by_name(s); diag != 0) return diag;
  try {
    size_t used = 0;
    unsigned long v = std::stoul(s, &used, 0);
    return used == s.size() ? static_cast<uint32_t>(v) : 0;
  } catch (...) {
    return 0;
  }
}

std::string service_name(uint32_t service) {
  if (service == kExtendQmiServiceId) return "extend";
  if (service == kSarServiceId) return "sar";
  if (service == kStatsServiceId) return "stats";
  if (const char *diag = diag_service_name(service); diag != nullptr) return diag;
  return std::to_string(service);
}

bool parse_fault(const nlohmann::json &j, Fault *f, std::string *error) {
  if (!j.is_object() || !j.contains("kind") || !j["kind"].is_string()) {
    *error = "a fault needs a \"kind\"";
    return false;
  }
  const std::string kind = j["kind"].get<std::string>();
  *f = Fault{};
  const char *value_key = nullptr;
  if (kind == "delay") {
    f->kind = FaultKind::kDelay;
    value_key = "ms";
  } else if (kind == "error") {
    f->kind = FaultKind::kError;
    value_key = "code";
  } else if (kind == "drop_after") {
    f->kind = FaultKind::kDropAfter;
    value_key = "requests";
  } else if (kind == "no_data_valid") {
    f->kind = FaultKind::kNoDataValid;
  } else if (kind == "refuse_init") {
    f->kind = FaultKind::kRefuseInit;
  } else if (kind == "corrupt") {
    f->kind = FaultKind::kCorrupt;
    if (!parse_corruption(j, &f->corrupt, error)) return false;
  } else if (kind == "stats_empty") {
    f->kind = FaultKind::kStatsEmpty;
  } else if (kind == "stats_id") {
    f->kind = FaultKind::kStatsId;
    value_key = "id";
  } else if (kind == "stats_sub") {
    f->kind = FaultKind::kStatsSub;
    value_key = "sub";
  } else if (kind == "stats_count") {
    f->kind = FaultKind::kStatsCount;
    value_key = "ids";
  } else {
    *error = "unknown fault kind: " + kind;
    return false;
  }
  if (value_key != nullptr && !json_u32(j, value_key, &f->value)) {
    *error = "fault " + kind + " needs \"" + value_key + "\" (a number)";
    return false;
  }
  if (j.contains("service")) {
    f->service = parse_service(j["service"]);
    if (f->service == 0) {
      *error = "unknown service: " + j["service"].dump();
      return false;
    }
  }
  const bool stats_only = f->kind == FaultKind::kStatsEmpty || f->kind == FaultKind::kStatsId ||
                          f->kind == FaultKind::kStatsSub || f->kind == FaultKind::kStatsCount;
  if (stats_only) {
    if (f->service != 0 && f->service != kStatsServiceId) {
      *error = "fault " + kind + " applies to the stats service only";
      return false;
    }
    f->service = kStatsServiceId;
  }
  uint32_t v = 0;
  if (j.contains("request_id")) {
    if (f->kind == FaultKind::kRefuseInit) {
      *error = "fault refuse_init comes before any request: no request_id";
      return false;
    }
    if (!json_u32(j, "request_id", &v)) {
      *error = "request_id must be a number";
      return false;
    }
    f->request_id = v;
  }
  if (j.contains("count")) {
    if (!json_u32(j, "count", &v) || v == 0) {
      *error = "count must be a number above 0";
      return false;
    }
    f->count = v;
  }
  return true;
}

}  // namespace rpk_sim
