#include "modem_services.h"

#include <sar_service_v01.h>

#include <cstring>

#include "modem_errors.h"
#include "platform/host/qcci/qmi_idl_codec.h"
#include "sim_text.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim {
namespace {

constexpr uint16_t kExtendMsg = VELMAR_EXTEND_QMI_MSG_ID;
constexpr uint16_t kExtendIndication = VELMAR_EXTEND_QMI_MSG_ID_2;
constexpr uint16_t kSarRfGetState = QMI_SAR_RF_GET_STATE_REQ_MSG_V01;

nlohmann::json envelope_json(const velmar_extend_qmi_msg_v01 &m, bool is_response) {
  const uint32_t shown =
      m.data_valid ? std::min<uint32_t>(m.data_len, VELMAR_EXTEND_QMI_DATA_MAX) : 0;
  return {{is_response ? "result" : "request_id", m.request_id},
          {"data_len", m.data_len},
          {"data_valid", m.data_valid},
          {"data", to_hex(m.data, shown)}};
}

// What the faults make of a request, with the delay and a dropped connection
// already in `out`.
FaultEffect apply_faults(Faults &faults, uint32_t service, int64_t request_id, Outcome &out) {
  const FaultEffect fx = faults.on_request(service, request_id);
  out.delay_ms = fx.delay_ms;
  if (fx.drop) {
    out.reply = false;
    out.journal["fault"] = "drop";
  }
  return fx;
}

std::vector<uint8_t> encode(qmi_idl_service_object_type svc, uint16_t msg_id, const void *c,
                            uint32_t c_len) {
  std::vector<uint8_t> out(0xFFFF);
  uint32_t len = 0;
  if (rpk_qmi::encode_message(svc, QMI_IDL_RESPONSE, msg_id, c, c_len, out.data(),
                              static_cast<uint32_t>(out.size()), &len) != 0) {
    len = 0;  // a message this modem cannot encode goes out empty
  }
  out.resize(len);
  return out;
}

}  // namespace

std::string to_hex(const uint8_t *p, size_t n) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string s;
  s.reserve(n * 2);
  for (size_t i = 0; i < n; ++i) {
    s.push_back(kDigits[p[i] >> 4]);
    s.push_back(kDigits[p[i] & 0x0F]);
  }
  return s;
}

Modem::Modem(std::string state_dir)
    : dir_(std::move(state_dir)), store_(dir_), settings_(Settings::load(dir_)) {}

void Modem::reset_runtime() {
  transfers_.clear();
  staged_bytes_ = 0;
  settings_ = Settings::load(dir_);
  requests_ = stats_queries_ = nv_syncs_ = restarts_ = dumps_ = 0;
}

nlohmann::json Modem::counters() const {
  return {{"requests", requests_},
          {"stats_queries", stats_queries_},
          {"nv_syncs", nv_syncs_},
          {"restarts", restarts_},
          {"full_dumps", dumps_},
          {"efs_writes_in_flight", transfers_.size()},
          {"efs_staged_bytes", staged_bytes_}};
}

Outcome Modem::handle(uint64_t conn, uint32_t service, uint16_t msg_id, const uint8_t *tlvs,
                      size_t len, Faults &faults) {
  ++requests_;
  conn_ = conn;
  Outcome out;
  if (service == kExtendQmiServiceId) {
    out = extend_qmi(msg_id, tlvs, len, faults);
  } else if (service == kSarServiceId) {
    out = sar(msg_id, tlvs, len, faults);
  } else {
    out.journal["error"] = "no such service";
  }
  out.journal["msg_id"] = hex_id(msg_id);
  return out;
}

Outcome Modem::extend_qmi(uint16_t msg_id, const uint8_t *tlvs, size_t len, Faults &faults) {
  Outcome out;
  auto *svc = velmar_extend_qmi_get_service_object_v01();
  velmar_extend_qmi_msg_v01 req{};
  velmar_extend_qmi_msg_v01 resp{};
  const int rc = rpk_qmi::decode_message(svc, QMI_IDL_REQUEST, msg_id, tlvs,
                                         static_cast<uint32_t>(len), &req, sizeof req);
  int64_t request_id = -1;
  if (rc != 0) {
    out.journal["decode_error"] = rc;
    resp.request_id = kQmiErrMalformedMsg;
  } else {
    out.journal["envelope"] = envelope_json(req, false);
    request_id = req.request_id;
  }
  const FaultEffect fx = apply_faults(faults, kExtendQmiServiceId, request_id, out);
  if (!out.reply) return out;
  if (rc == QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND) {
    // No response layout exists for an unknown message: an empty answer.
    out.journal["response"] = nullptr;
    return out;
  }
  if (fx.error) {
    resp.request_id = fx.error_code;
    out.journal["fault"] = "error";
  } else if (rc == 0) {
    std::vector<uint8_t> record;
    if (msg_id != kExtendMsg) {
      resp.request_id = kQmiErrNotSupported;
    } else if (!req.data_valid) {
      resp.request_id = kQmiErrMissingArg;
    } else if (req.request_id == VELMAR_REQUEST_ID_NV) {
      record = nv_store_request(req.data, out);
    } else if (req.request_id == VELMAR_REQUEST_ID_EFS) {
      record = nv_efs_request(req.data);
    } else if (req.request_id == VELMAR_REQUEST_ID_COMMON) {
      record = common_request(req.data, out);
    } else {
      resp.request_id = kQmiErrNotSupported;
    }
    if (!record.empty()) {
      memcpy(resp.data, record.data(), std::min<size_t>(record.size(), sizeof resp.data));
      resp.data_len = static_cast<uint32_t>(std::min<size_t>(record.size(), sizeof resp.data));
      resp.data_valid = fx.no_data_valid ? 0 : 1;
      if (fx.no_data_valid) out.journal["fault"] = "no_data_valid";
    }
  }
  if (out.delay_ms > 0 && fx.delay_ms > 0) out.journal["delay_ms"] = out.delay_ms;
  out.journal["response"] = envelope_json(resp, true);
  out.tlvs = encode(svc, msg_id, &resp, sizeof resp);
  return out;
}

Outcome Modem::sar(uint16_t msg_id, const uint8_t *tlvs, size_t len, Faults &faults) {
  Outcome out;
  auto *svc = sar_get_service_object_internal_v01(1, 12, 6);
  const int rc = rpk_qmi::decode_message(svc, QMI_IDL_REQUEST, msg_id, tlvs,
                                         static_cast<uint32_t>(len), nullptr, 0);
  if (rc != 0) out.journal["decode_error"] = rc;
  const FaultEffect fx = apply_faults(faults, kSarServiceId, -1, out);
  if (!out.reply) return out;
  if (rc == QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND || msg_id != kSarRfGetState) {
    out.journal["response"] = nullptr;
    return out;
  }
  sar_rf_get_state_resp_msg_v01 resp{};
  if (fx.error || rc != 0) {
    resp.resp.result = 1;
    resp.resp.error = static_cast<int32_t>(fx.error ? fx.error_code : kQmiErrMalformedMsg);
    if (fx.error) out.journal["fault"] = "error";
  } else {
    resp.sar_rf_state_valid = fx.no_data_valid ? 0 : static_cast<uint8_t>(settings_.sar_valid != 0);
    resp.sar_rf_state = settings_.sar_state;
    if (fx.no_data_valid) out.journal["fault"] = "no_data_valid";
  }
  out.journal["response"] = {{"result", resp.resp.result},
                             {"error", resp.resp.error},
                             {"sar_rf_state_valid", resp.sar_rf_state_valid},
                             {"sar_rf_state", resp.sar_rf_state}};
  out.tlvs = encode(svc, msg_id, &resp, sizeof resp);
  return out;
}

std::vector<uint8_t> Modem::indication(uint32_t number, const std::vector<uint8_t> &data) {
  velmar_extend_qmi_msg_v01 ind{};
  ind.request_id = number;
  if (!data.empty()) {
    ind.data_len = static_cast<uint32_t>(std::min<size_t>(data.size(), sizeof ind.data));
    memcpy(ind.data, data.data(), ind.data_len);
    ind.data_valid = 1;
  }
  std::vector<uint8_t> out(0xFFFF);
  uint32_t len = 0;
  rpk_qmi::encode_message(velmar_extend_qmi_get_service_object_v01(), QMI_IDL_INDICATION,
                          kExtendIndication, &ind, sizeof ind, out.data(),
                          static_cast<uint32_t>(out.size()), &len);
  out.resize(len);
  return out;
}

}  // namespace rpk_sim
