// The simulated modem's diag channel: raw diag requests answered on the
// callback channel (processor 0, and the remote processors of the remote
// mask) and through DCI clients (registration, signal, support list, stream
// listeners, asynchronous requests answered whole or in pieces, release).
// Journals every request and DCI call before its answer goes out.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "endpoint.h"

namespace rpk_sim {

// Host-only ids (above 0xFFFF) that faults name the diag channel and each DCI
// call by: `--service diag`, `--service dci-register`, ...
inline constexpr uint32_t kDiagServiceId = 0x10000;
inline constexpr uint32_t kDciRegisterId = 0x10001;
inline constexpr uint32_t kDciSignalId = 0x10002;
inline constexpr uint32_t kDciSupportId = 0x10003;
inline constexpr uint32_t kDciStreamId = 0x10004;
inline constexpr uint32_t kDciSendId = 0x10005;

// Whether an id is the diag channel's, and its name for `--service`.
bool diag_owns_service(uint32_t id);
const char *diag_service_name(uint32_t id);              // nullptr when not a diag id
uint32_t diag_service_by_name(const std::string &name);  // 0 when unknown

// The modem's answer to one raw diag request (without any scripted answer).
std::vector<uint8_t> diag_builtin_answer(const uint8_t *req, size_t n);

class DiagEndpoint : public Endpoint {
 public:
  explicit DiagEndpoint(EndpointHost &host);

  uint32_t service_id() const override { return kDiagServiceId; }
  bool answers_for(uint32_t id) const override { return diag_owns_service(id); }
  std::string name() const override { return "diag"; }
  std::string socket_path() const override;
  bool on_accept(uint64_t conn) override;
  void on_packet(uint64_t conn, std::span<const uint8_t> packet) override;
  void on_close(uint64_t conn) override;
  std::optional<nlohmann::json> control(const nlohmann::json &command) override;
  nlohmann::json status() const override;
  void reset() override;

 private:
  struct Answer {
    std::vector<uint8_t> prefix;
    std::vector<uint8_t> response;
  };

  std::vector<uint8_t> answer_for(const uint8_t *req, size_t n) const;
  void on_raw_request(uint64_t conn, uint8_t type, uint8_t proc, uint8_t mode, uint32_t tag,
                      const uint8_t *body, size_t n);
  void on_dci_call(uint64_t conn, uint8_t type, uint8_t proc, uint32_t tag, const uint8_t *body,
                   size_t n);
  void reply(uint64_t conn, uint8_t type, uint8_t proc, uint8_t flags, uint32_t tag,
             const std::vector<uint8_t> &body);

  EndpointHost &host_;
  std::vector<Answer> answers_;
  uint16_t remote_mask_ = 0;
  uint16_t support_list_ = 0x02;  // the modem's DCI channel is up
  uint32_t dci_piece_ = 0;        // 0: a DCI response goes whole
  int32_t next_client_ = 1;
  std::map<uint64_t, std::set<int32_t>> clients_;  // DCI clients per connection
};

}  // namespace rpk_sim
