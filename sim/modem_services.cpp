#include "modem_services.h"

#include <algorithm>
#include <array>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "modem_errors.h"
#include "qmi_wire.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

// Request ids of the Extend-QMI envelope the modem carries out.
constexpr uint32_t kRequestIdNvStore = 1;
constexpr uint32_t kRequestIdNvEfs = 2;
constexpr uint32_t kRequestIdCommon = 4;

nlohmann::json envelope_json(const ExtendEnvelope &m, bool is_response) {
  const uint32_t shown = m.data_valid ? std::min<uint32_t>(m.data_len, kExtendDataMax) : 0;
  return {{is_response ? "result" : "request_id", m.word},
          {"data_len", m.data_len},
          {"data_valid", m.data_valid ? 1 : 0},
          {"data", to_hex(m.data.data(), shown)}};
}

// What the faults make of a request, with the delay and a dropped connection
// already in `out`.
FaultEffect apply_faults(Faults &faults, uint32_t service, int64_t request_id, Outcome &out) {
  const FaultEffect fx = faults.on_request(service, request_id);
  out.delay_ms = fx.delay_ms;
  out.corrupt = fx.corrupt;
  if (fx.corrupt.any()) {
    out.journal["fault"] = "corrupt";  // drop, error and no_data_valid name themselves over it
    out.journal["corrupt"] = fx.corrupt.to_json();
  }
  if (fx.drop) {
    out.reply = false;
    out.journal["fault"] = "drop";
  }
  return fx;
}

}  // namespace

nlohmann::json journal_of(Outcome &out) {
  nlohmann::json j = std::move(out.journal);
  if (out.request) j["envelope"] = envelope_json(*out.request, false);
  if (out.response) j["response"] = envelope_json(*out.response, true);
  return j;
}

std::string to_hex(const uint8_t *p, size_t n) {
  // Both digits of every byte value, so each byte is one two-byte copy.
  static constexpr auto kPairs = [] {
    constexpr char kDigits[] = "0123456789abcdef";
    std::array<char, 512> pairs{};
    for (size_t b = 0; b < 256; ++b) {
      pairs[2 * b] = kDigits[b >> 4];
      pairs[2 * b + 1] = kDigits[b & 0x0F];
    }
    return pairs;
  }();
  std::string s(n * 2, '\0');
  char *out = s.data();
  size_t i = 0;
#ifdef __SSE2__
  // Every entry carries a few kilobytes of hex: 16 bytes at a time, each
  // nibble n made '0' + n, plus 39 more above 9 ('a' - '0' - 10).
  const __m128i low = _mm_set1_epi8(0x0F);
  const __m128i nine = _mm_set1_epi8(9);
  const __m128i zero = _mm_set1_epi8('0');
  const __m128i gap = _mm_set1_epi8(39);
  auto digits = [&](__m128i nibbles) {
    const __m128i above = _mm_and_si128(_mm_cmpgt_epi8(nibbles, nine), gap);
    return _mm_add_epi8(_mm_add_epi8(nibbles, zero), above);
  };
  for (; n - i >= 16; i += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + i));
    const __m128i hi = digits(_mm_and_si128(_mm_srli_epi16(v, 4), low));
    const __m128i lo = digits(_mm_and_si128(v, low));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 2 * i), _mm_unpacklo_epi8(hi, lo));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 2 * i + 16), _mm_unpackhi_epi8(hi, lo));
  }
#endif
  for (; i < n; ++i) memcpy(out + 2 * i, &kPairs[2 * p[i]], 2);
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
  ExtendEnvelope req;
  ExtendEnvelope resp;
  const int rc =
      extend_request_known(msg_id) ? decode_extend({tlvs, len}, &req) : kIdlMessageIdNotFound;
  int64_t request_id = -1;
  if (rc != 0) {
    out.journal["decode_error"] = rc;
    resp.word = kQmiErrMalformedMsg;
  } else {
    out.request = req;
    request_id = req.word;
  }
  const FaultEffect fx = apply_faults(faults, kExtendQmiServiceId, request_id, out);
  if (!out.reply) return out;
  if (rc == kIdlMessageIdNotFound) {
    // No response layout exists for an unknown message: an empty answer.
    out.journal["response"] = nullptr;
    return out;
  }
  if (fx.error) {
    resp.word = fx.error_code;
    out.journal["fault"] = "error";
  } else if (rc == 0) {
    std::vector<uint8_t> record;
    if (msg_id != kExtendMsgRequest) {
      resp.word = kQmiErrNotSupported;
    } else if (!req.data_valid) {
      resp.word = kQmiErrMissingArg;
    } else if (req.word == kRequestIdNvStore) {
      record = nv_store_request(req.data.data(), out);
    } else if (req.word == kRequestIdNvEfs) {
      record = nv_efs_request(req.data.data());
    } else if (req.word == kRequestIdCommon) {
      record = common_request(req.data.data(), out);
    } else {
      resp.word = kQmiErrNotSupported;
    }
    if (fx.corrupt.claim && req.word == kRequestIdNvEfs && record.size() >= 12) {
      put_le(record.data() + 8, *fx.corrupt.claim, 4);  // data_len_send
    }
    if (!record.empty()) {
      const size_t n = std::min(record.size(), kExtendDataMax);
      std::copy_n(record.begin(), n, resp.data.begin());
      resp.data_len = static_cast<uint32_t>(n);
      resp.data_valid = !fx.no_data_valid;
      if (fx.no_data_valid) out.journal["fault"] = "no_data_valid";
    }
  }
  if (out.delay_ms > 0 && fx.delay_ms > 0) out.journal["delay_ms"] = out.delay_ms;
  out.tlvs = encode_extend(resp);
  out.response = std::move(resp);
  return out;
}

Outcome Modem::sar(uint16_t msg_id, const uint8_t *tlvs, size_t len, Faults &faults) {
  Outcome out;
  const int rc = decode_sar_request(msg_id, {tlvs, len});
  if (rc != 0) out.journal["decode_error"] = rc;
  const FaultEffect fx = apply_faults(faults, kSarServiceId, -1, out);
  if (!out.reply) return out;
  if (rc == kIdlMessageIdNotFound) {
    out.journal["response"] = nullptr;
    return out;
  }
  SarRfState resp;
  if (fx.error || rc != 0) {
    resp.result = 1;
    resp.error = static_cast<uint16_t>(fx.error ? fx.error_code : kQmiErrMalformedMsg);
    if (fx.error) out.journal["fault"] = "error";
  } else {
    resp.state_valid = !fx.no_data_valid && settings_.sar_valid != 0;
    resp.state = settings_.sar_state;
    if (fx.no_data_valid) out.journal["fault"] = "no_data_valid";
  }
  out.journal["response"] = {{"result", resp.result},
                             {"error", resp.error},
                             {"sar_rf_state_valid", resp.state_valid ? 1 : 0},
                             {"sar_rf_state", resp.state}};
  out.tlvs = encode_sar_rf_state(resp);
  return out;
}

std::vector<uint8_t> Modem::indication(uint32_t number, const std::vector<uint8_t> &data) {
  ExtendEnvelope ind;
  ind.word = number;
  if (!data.empty()) {
    ind.data_len = static_cast<uint32_t>(std::min(data.size(), kExtendDataMax));
    std::copy_n(data.begin(), ind.data_len, ind.data.begin());
    ind.data_valid = true;
  }
  return encode_extend(ind);
}

}  // namespace rpk_sim
