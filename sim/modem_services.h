// The simulated modem's services: it answers one QMI request at a time, given
// its wire bytes, and says what the transport must do with the answer.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "endpoint.h"
#include "faults.h"
#include "qmi_wire.h"
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
  // An Extend-QMI request's and answer's envelopes, kept as they are: their
  // journal JSON is made once the answer is out (journal_of).
  std::optional<ExtendEnvelope> request, response;
};

// The journal's description of an outcome (taken from it): `journal` with the
// envelopes as "envelope" and "response".
nlohmann::json journal_of(Outcome &out);

class Modem {
 public:
  explicit Modem(std::string state_dir);

  // Answers one request of a service that came on connection `conn`; `fx` is
  // what the faults made of it. The request id is known only after decoding,
  // so faults are asked here.
  Outcome handle(uint64_t conn, uint32_t service, uint16_t msg_id, const uint8_t *tlvs, size_t len,
                 Faults &faults);

  // A connection ended: its unfinished EFS write is dropped (the file keeps
  // its old content).
  void drop_transfers(uint64_t conn);

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

  // One chunk of an EFS write on the current connection; the EFS result.
  int32_t efs_write_chunk(unsigned sub, const std::string &path, uint32_t all, uint32_t send,
                          uint32_t cur, const uint8_t *data);
  // Drops transfers, least recently used first, until `need` more bytes fit
  // under kStagedMax; `keep` is never dropped.
  void make_room(size_t need, uint64_t keep);

  // EFS writes in flight, one per connection (a client writes one file at a
  // time): the whole file is written when its last chunk arrives, so an
  // interrupted transfer leaves the old file, and two clients writing one path
  // never mix their chunks (the last to finish wins). The buffer grows with
  // the chunks received; all buffers together stay under kStagedMax.
  struct Transfer {
    unsigned sub = 0;
    std::string path;
    uint32_t total = 0;
    std::string data;
    uint64_t last_use = 0;
  };
  static constexpr size_t kStagedMax = 16 << 20;
  std::map<uint64_t, Transfer> transfers_;  // by connection
  size_t staged_bytes_ = 0;
  uint64_t chunks_ = 0;
  uint64_t conn_ = 0;  // the connection of the request being handled

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
