#include "stats_endpoint.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "faults.h"
#include "journal.h"
#include "modem_services.h"
#include "platform/host/link/modem_api_wire.h"
#include "platform/host/link/qmi_host_transport.h"
#include "qmi_endpoint.h"
#include "sim_text.h"
#include "store.h"

namespace rpk_sim {
namespace {

using nlohmann::json;

// The records this modem keeps per subscription, by id. Every record starts
// with a version; all fields are packed little-endian.
constexpr uint32_t kLtePcc = 82;    // LTE primary carrier
constexpr uint32_t kLteScc1 = 103;  // LTE secondary carriers 1..6: 103..108
constexpr uint32_t kLteSccCount = 6;
constexpr uint32_t kNrRssi = 94;        // NR primary carrier RSSI per chain
constexpr uint32_t kNrSnr = 112;        // NR primary carrier SNR per chain
constexpr uint32_t kNrAntSwitch = 113;  // NR antenna switch diversity
constexpr uint32_t kWcdmaAgc = 110;     // WCDMA receive AGC per chain
constexpr uint32_t kGsmLevel = 111;     // GSM receive levels

constexpr int kChains = 4;

// An LTE carrier record (75 bytes):
//   u8 version, u8 version_ssmr, i32 earfcn, u16 pci, u8 is_srv_cell,
//   u16 rx_valid (bit n: chain n measured),
//   then per chain 0..3: f32 rsrp (dBm), f32 rsrq (dB), f32 rssi (dBm), f32 snr (dB)
constexpr size_t kLteRecordLen = 1 + 1 + 4 + 2 + 1 + 2 + kChains * 4 * 4;
static_assert(kLteRecordLen == 75);
// NR RSSI / SNR records (20 bytes): u32 version, f32 per chain 0..3.
constexpr size_t kNrChainRecordLen = 4 + kChains * 4;
static_assert(kNrChainRecordLen == 20);
// NR antenna switch (16 bytes): u32 version, then u8 antenna before / after
// the last switch for rx 0..3, then for tx 0..1.
constexpr size_t kNrAntRecordLen = 4 + 2 * kChains + 2 * 2;
static_assert(kNrAntRecordLen == 16);
// WCDMA / GSM (9 bytes): u8 version, f32 chain 0 (primary), f32 chain 1 (diversity).
constexpr size_t kTwoChainRecordLen = 1 + 4 + 4;
static_assert(kTwoChainRecordLen == 9);

// The carriers each subscription's network gives it: primary, then SCC1..6.
constexpr int32_t kEarfcn[2][1 + kLteSccCount] = {
    {1300, 3050, 6300, 500, 9410, 39150, 1849},
    {100, 2850, 6400, 275, 9260, 38950, 1575},
};
// SCC4..6 are narrow carriers the handset receives on two chains only.
constexpr uint32_t kFourChainCarriers = 4;

class RecordWriter {
 public:
  void u8(uint64_t v) { put(v, 1); }
  void u16(uint64_t v) { put(v, 2); }
  void u32(uint64_t v) { put(v, 4); }
  void f32(double v) { u32(std::bit_cast<uint32_t>(static_cast<float>(v))); }
  std::vector<uint8_t> take() { return std::move(bytes_); }

 private:
  void put(uint64_t v, int n) {
    for (int i = 0; i < n; ++i) bytes_.push_back(static_cast<uint8_t>(v >> (8 * i)));
  }
  std::vector<uint8_t> bytes_;
};

// A measurement drifting around `base` by about `swing`, slow and fast fading
// mixed, each (record, field) on its own phase.
double drift(double t, unsigned seed, double base, double swing) {
  const double phase = seed * 1.7;
  return base + swing * (0.7 * std::sin(t / (7.0 + seed % 5) + phase) +
                         0.3 * std::sin(t / 1.9 + 2.0 * phase));
}

}  // namespace

StatsEndpoint::StatsEndpoint(EndpointHost &host)
    : host_(host),
      start_(std::chrono::steady_clock::now()),
      rng_(static_cast<uint32_t>(start_.time_since_epoch().count())) {}

std::string StatsEndpoint::socket_path() const { return rpk_modem_api::socket_path(); }

bool StatsEndpoint::on_accept(uint64_t conn) {
  if (!welcome_client(host_, kStatsServiceId, conn)) return false;
  features_[conn] = {};
  return true;
}

void StatsEndpoint::on_close(uint64_t conn) { features_.erase(conn); }

void StatsEndpoint::on_packet(uint64_t conn, std::span<const uint8_t> packet) {
  json entry = {{"service", "stats"}, {"client", conn}};
  rpk_qmi::Header h;
  if (!take_request(host_, packet, entry, &h)) return;
  entry["msg_id"] = hex_id(h.msg_id);
  const uint8_t *body = packet.data() + rpk_qmi::kHeaderLen;
  std::vector<uint8_t> rsp;
  uint32_t delay_ms = 0;
  bool drop = false;
  if (h.msg_id == rpk_modem_api::kMsgSetFeature) {
    answer_set_feature(conn, body, h.len, entry, rsp);
  } else if (h.msg_id == rpk_modem_api::kMsgGetStats) {
    answer_get_stats(body, h.len, entry, rsp, &delay_ms, &drop);
  } else {
    entry["error"] = "unknown message";
    rsp.assign(4, 0xFF);  // result -1
  }
  journal_request(host_, packet, entry);
  if (drop) {
    host_.close_conn(conn);
    return;
  }
  send_response(host_, conn, h, rsp, delay_ms);
}

void StatsEndpoint::answer_set_feature(uint64_t conn, const uint8_t *body, size_t len, json &entry,
                                       std::vector<uint8_t> &rsp) {
  entry["msg"] = "set_feature";
  int32_t result = 0;
  if (len < rpk_modem_api::kSetFeatureReqLen) {
    entry["error"] = "short request";
    result = -1;
  } else {
    std::array<int32_t, 4> status{};
    for (size_t i = 0; i < status.size(); ++i) {
      status[i] = static_cast<int32_t>(get_le(body + 4 * i, 4));
    }
    features_[conn] = status;
    entry["request"] = {{"status", status}};
  }
  entry["response"] = {{"result", result}};
  rsp.resize(4);
  put_le(rsp.data(), static_cast<uint32_t>(result), 4);
}

void StatsEndpoint::answer_get_stats(const uint8_t *body, size_t len, json &entry,
                                     std::vector<uint8_t> &rsp, uint32_t *delay_ms, bool *drop) {
  entry["msg"] = "get_stats";
  rsp.assign(rpk_modem_api::kGetStatsRspHead, 0);
  const uint32_t id_count =
      len >= rpk_modem_api::kGetStatsReqHead ? static_cast<uint32_t>(get_le(body + 8, 4)) : 0;
  if (len < rpk_modem_api::kGetStatsReqHead ||
      (len - rpk_modem_api::kGetStatsReqHead) / 4 < id_count) {
    entry["error"] = "short request";
    put_le(rsp.data(), 0xFFFFFFFFu, 4);  // result -1
    return;
  }
  ++queries_;
  const auto sub = static_cast<uint32_t>(get_le(body, 4));
  std::vector<uint32_t> ids(id_count);
  for (uint32_t i = 0; i < id_count; ++i) {
    ids[i] = static_cast<uint32_t>(get_le(body + rpk_modem_api::kGetStatsReqHead + 4 * i, 4));
  }
  entry["request"] = {{"sub", sub}, {"number", get_le(body + 4, 4)}, {"ids", ids}};

  // Faults are matched by the first record id asked for.
  const FaultEffect fx =
      host_.faults().on_request(kStatsServiceId, ids.empty() ? -1 : static_cast<int64_t>(ids[0]));
  *delay_ms = fx.delay_ms;
  if (fx.delay_ms > 0) entry["delay_ms"] = fx.delay_ms;
  if (fx.drop) {
    entry["fault"] = "drop";
    *drop = true;
    return;
  }
  if (fx.error) {
    entry["fault"] = "error";
    entry["response"] = {{"result", fx.error_code}};
    put_le(rsp.data(), fx.error_code, 4);
    return;
  }

  // The answer carries the first record found, and how many were found.
  uint32_t found = 0, id = 0;
  std::vector<uint8_t> data;
  for (uint32_t want : ids) {
    std::optional<std::vector<uint8_t>> r = record(sub, want);
    if (!r) continue;
    if (found++ == 0) {
      id = want;
      data = std::move(*r);
    }
  }
  uint32_t rsp_sub = sub;
  if (fx.stats_empty) {
    found = 0;
    id = 0;
    data.clear();
  }
  if (fx.no_data_valid) data.clear();
  if (fx.stats_count) found = *fx.stats_count;
  if (fx.stats_id) id = *fx.stats_id;
  if (fx.stats_sub) rsp_sub = *fx.stats_sub;
  if (fx.stats_empty || fx.no_data_valid || fx.stats_count || fx.stats_id || fx.stats_sub) {
    entry["fault"] = fx.stats_empty ? "stats_empty" : fx.no_data_valid ? "no_data_valid" : "stats";
  }
  data.resize(std::min(data.size(), rpk_modem_api::kGetStatsDataMax));
  put_le(rsp.data() + 4, found, 4);
  put_le(rsp.data() + 8, rsp_sub, 4);
  put_le(rsp.data() + 12, id, 4);
  put_le(rsp.data() + 16, data.size(), 4);
  rsp.insert(rsp.end(), data.begin(), data.end());
  entry["response"] = {
      {"result", 0}, {"id_num", found},         {"sub", rsp_sub},
      {"id", id},    {"data_len", data.size()}, {"data", to_hex(data.data(), data.size())}};
}

std::optional<std::vector<uint8_t>> StatsEndpoint::record(unsigned sub, uint32_t id) {
  if (sub >= kSubscriptions) return std::nullopt;
  auto it = pinned_.find({sub, id});
  if (it != pinned_.end()) return it->second;
  std::vector<uint8_t> live = live_record(sub, id);
  if (live.empty()) return std::nullopt;
  return live;
}

std::vector<uint8_t> StatsEndpoint::live_record(unsigned sub, uint32_t id) {
  const double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  std::uniform_real_distribution<double> noise(-0.5, 0.5);
  // Each field's own phase: record, subscription and field number.
  auto seed = [&](unsigned field) { return id * 31 + sub * 17 + field; };
  auto measure = [&](unsigned field, double base, double swing, double lo, double hi) {
    return std::clamp(drift(t, seed(field), base, swing) + noise(rng_), lo, hi);
  };
  RecordWriter w;
  const bool lte = id == kLtePcc || (id >= kLteScc1 && id < kLteScc1 + kLteSccCount);
  if (lte) {
    const uint32_t carrier = id == kLtePcc ? 0 : id - kLteScc1 + 1;
    const bool four_chains = carrier < kFourChainCarriers;
    w.u8(1);  // version
    w.u8(0);  // version_ssmr
    w.u32(static_cast<uint32_t>(kEarfcn[sub][carrier]));
    w.u16((101 + 37 * carrier + 211 * sub) % 504);  // pci
    w.u8(1);                                        // is_srv_cell
    w.u16(four_chains ? 0x0F : 0x03);               // rx_valid
    for (unsigned chain = 0; chain < kChains; ++chain) {
      if (!four_chains && chain >= 2) {
        // A chain not measured reads at the floor.
        w.f32(-140.0);
        w.f32(-20.0);
        w.f32(-120.0);
        w.f32(-20.0);
        continue;
      }
      const double rsrp =
          measure(4 * chain, -86.0 - 4.0 * carrier - 6.0 * sub - 1.5 * chain, 9.0, -140, -44);
      const double rsrq = measure(4 * chain + 1, -9.0, 3.0, -20, -3);
      // RSSI over 100 resource blocks: RSRP - RSRQ + 10 log10(100).
      const double rssi = std::clamp(rsrp - rsrq + 20.0 + noise(rng_), -120.0, -25.0);
      const double snr = std::clamp((rsrp + 118.0) / 2.2 + noise(rng_) * 2.0, -20.0, 30.0);
      w.f32(rsrp);
      w.f32(rsrq);
      w.f32(rssi);
      w.f32(snr);
    }
    return w.take();
  }
  switch (id) {
    case kNrRssi:
      w.u32(1);
      for (unsigned chain = 0; chain < kChains; ++chain) {
        w.f32(measure(chain, -64.0 - 5.0 * sub - 2.0 * chain, 7.0, -110, -20));
      }
      break;
    case kNrSnr:
      w.u32(1);
      for (unsigned chain = 0; chain < kChains; ++chain) {
        w.f32(measure(chain, 17.0 - 4.0 * sub - 1.5 * chain, 7.0, -20, 30));
      }
      break;
    case kNrAntSwitch: {
      // The modem swaps antennas every 20 s; before the first swap old = new.
      const auto swaps = static_cast<unsigned>(t / 20.0);
      const unsigned before = swaps == 0 ? 0 : swaps - 1;
      w.u32(1);
      for (unsigned rx = 0; rx < kChains; ++rx) {
        w.u8((rx + before + sub) % kChains);
        w.u8((rx + swaps + sub) % kChains);
      }
      for (unsigned tx = 0; tx < 2; ++tx) {
        w.u8((tx + before + sub) % 2);
        w.u8((tx + swaps + sub) % 2);
      }
      break;
    }
    case kWcdmaAgc: {
      const double agc0 = measure(0, -72.0 - 5.0 * sub, 8.0, -106, -25);
      w.u8(1);
      w.f32(agc0);
      w.f32(std::clamp(agc0 - 2.5 + noise(rng_), -106.0, -25.0));
      break;
    }
    case kGsmLevel: {
      const double prx = measure(0, -78.0 - 4.0 * sub, 8.0, -110, -48);
      w.u8(1);
      w.f32(prx);
      w.f32(std::clamp(prx - 3.0 + noise(rng_), -110.0, -48.0));
      break;
    }
    default:
      break;
  }
  return w.take();
}

std::optional<json> StatsEndpoint::control(const json &command) {
  const std::string cmd = command.value("cmd", "");
  if (cmd == "stats_clear") {
    pinned_.clear();
    return json{{"ok", true}};
  }
  if (cmd != "stats_set") return std::nullopt;
  uint32_t sub = 0, id = 0;
  std::vector<uint8_t> bytes;
  if (!json_u32(command, "sub", &sub) || sub >= kSubscriptions || !json_u32(command, "id", &id) ||
      !command.contains("hex") || !command["hex"].is_string() ||
      !parse_hex(command["hex"].get<std::string>(), &bytes)) {
    return json{{"ok", false}, {"error", "stats set needs a sub (0 or 1), a record id and hex"}};
  }
  if (bytes.size() > rpk_modem_api::kGetStatsDataMax) {
    return json{{"ok", false},
                {"error", "a record holds at most " +
                              std::to_string(rpk_modem_api::kGetStatsDataMax) + " bytes"}};
  }
  pinned_[{sub, id}] = std::move(bytes);
  return json{{"ok", true}};
}

json StatsEndpoint::status() const {
  json pinned = json::array();
  for (const auto &[key, bytes] : pinned_) {
    pinned.push_back({{"sub", key.first}, {"id", key.second}, {"data_len", bytes.size()}});
  }
  json features = json::array();
  for (const auto &[conn, status] : features_) features.push_back(status);
  return {{"queries", queries_}, {"pinned", pinned}, {"feature_status", features}};
}

void StatsEndpoint::reset() {
  pinned_.clear();
  queries_ = 0;
}

}  // namespace rpk_sim
