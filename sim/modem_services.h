// The simulated modem's services: it answers one QMI request at a time, given
// its wire bytes, and says what the transport must do with the answer.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "endpoint.h"
#include "faults.h"
#include "settings.h"
#include "store.h"

namespace rpk_sim {

inline constexpr uint32_t kExtendQmiServiceId = 0xFFE4;
inline constexpr uint32_t kSarServiceId = 0x11;
inline constexpr uint32_t kEfsChunkMax = 424;

struct Outcome {
  bool reply = true;          // false: the connection is dropped instead
  std::vector<uint8_t> tlvs;  // the response's TLV area
  uint32_t delay_ms = 0;      // send the answer this late
  AfterReply after = AfterReply::kNothing;
  nlohmann::json journal;  // decoded request and response, for the journal
  Corruption corrupt;      // damage the transport does to the answer packet
};

class Modem {
 public:
  explicit Modem(std::string state_dir);

  // Answers one request of a service; `fx` is what the faults made of it.
  // The request id is known only after decoding, so faults are asked here.
  Outcome handle(uint32_t service, uint16_t msg_id, const uint8_t *tlvs, size_t len,
                 Faults &faults);

  // An Extend-QMI indication's TLV area.
  std::vector<uint8_t> indication(uint32_t number, const std::vector<uint8_t> &data);

  // Clears what only lives while the daemon runs (transfers under way,
  // counters) and reloads the settings, after a factory reset or a restart.
  void reset_runtime();

  Store &store() { return store_; }
  Settings &settings() { return settings_; }
  const std::string &state_dir() const { return dir_; }
  uint32_t efs_chunk = kEfsChunkMax;
  nlohmann::json counters() const;

  // Inner-record handlers, one per request id: `req` is the 512-byte record,
  // the answer is the response record.
  std::vector<uint8_t> nv_store_request(const uint8_t *req, Outcome &out);
  std::vector<uint8_t> nv_efs_request(const uint8_t *req);
  std::vector<uint8_t> common_request(const uint8_t *req, Outcome &out);

 private:
  Outcome extend_qmi(uint16_t msg_id, const uint8_t *tlvs, size_t len, Faults &faults);
  Outcome sar(uint16_t msg_id, const uint8_t *tlvs, size_t len, Faults &faults);
  std::vector<uint8_t> common_command(uint32_t t, const uint8_t *v, uint32_t l, int32_t *result,
                                      Outcome &out);
  std::vector<uint8_t> stats_debug_info();

  std::string dir_;
  Store store_;
  Settings settings_;

  // EFS writes in flight: the whole file is written when its last chunk
  // arrives, so an interrupted transfer leaves the old file.
  struct Staging {
    uint32_t total = 0;
    std::string data;
  };
  std::map<std::pair<unsigned, std::string>, Staging> staging_;

  uint64_t requests_ = 0;
  uint64_t stats_queries_ = 0;
  uint64_t nv_syncs_ = 0;
  uint64_t restarts_ = 0;
  uint64_t dumps_ = 0;
};

// Whether "section.field" names a statistics debug counter.
bool stats_field_known(const std::string &key);

// Lower-case hex of bytes, no separators.
std::string to_hex(const uint8_t *p, size_t n);

}  // namespace rpk_sim
