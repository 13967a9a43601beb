// The modem API's statistics endpoint: serves the per-carrier signal records
// that libmodemapi's statistics query asks for (wire form in
// platform/host/link/modem_api_wire.h). Records it knows move over time like
// a live modem's; `stats set` pins a record's bytes, `stats clear` lets go.
#pragma once

#include <array>
#include <chrono>
#include <map>
#include <random>
#include <utility>

#include "endpoint.h"

namespace rpk_sim {

// A host-only id, above every QMI service id.
inline constexpr uint32_t kStatsServiceId = 0x10009;

class StatsEndpoint : public Endpoint {
 public:
  explicit StatsEndpoint(EndpointHost &host);

  uint32_t service_id() const override { return kStatsServiceId; }
  std::string name() const override { return "stats"; }
  std::string socket_path() const override;
  bool on_accept(uint64_t conn) override;
  void on_packet(uint64_t conn, std::span<const uint8_t> packet) override;
  void on_close(uint64_t conn) override;
  // {"cmd":"stats_set","sub":S,"id":I,"hex":"..."} and {"cmd":"stats_clear"}.
  std::optional<nlohmann::json> control(const nlohmann::json &command) override;
  nlohmann::json status() const override;
  void reset() override;

  // The record's bytes as the modem has them now (pinned, possibly empty, or
  // live); nullopt when it has none of that id on that subscription.
  std::optional<std::vector<uint8_t>> record(unsigned sub, uint32_t id);

 private:
  void answer_set_feature(uint64_t conn, const uint8_t *body, size_t len, nlohmann::json &entry,
                          std::vector<uint8_t> &rsp);
  void answer_get_stats(const uint8_t *body, size_t len, nlohmann::json &entry,
                        std::vector<uint8_t> &rsp, uint32_t *delay_ms, bool *drop);
  std::vector<uint8_t> live_record(unsigned sub, uint32_t id);

  EndpointHost &host_;
  std::chrono::steady_clock::time_point start_;
  std::minstd_rand rng_;
  std::map<std::pair<unsigned, uint32_t>, std::vector<uint8_t>> pinned_;
  std::map<uint64_t, std::array<int32_t, 4>> features_;  // per client, as last set
  uint64_t queries_ = 0;
};

}  // namespace rpk_sim
