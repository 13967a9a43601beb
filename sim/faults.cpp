#include "faults.h"

#include <algorithm>

#include "diag_endpoint.h"
#include "modem_services.h"
#include "sim_text.h"

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
  }
  return "?";
}

}  // namespace

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
