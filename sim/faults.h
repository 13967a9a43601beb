// Faults a test injects into the simulated modem's answers. Each fault may be
// limited to one service and (Extend-QMI) one request id, and to a number of
// requests; the service-wide faults (chunk size, down/up) live in the daemon.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rpk_sim {

enum class FaultKind {
  kDelay,        // answer `value` ms late (past the caller's time-out)
  kError,        // answer with the service error `value`, doing nothing
  kDropAfter,    // answer `value` more requests, then close the connection
  kNoDataValid,  // answer without data (data_valid 0)
  kRefuseInit,   // close a new client's connection instead of welcoming it
  kCorrupt,      // answer with damaged bytes (Corruption)
  // Statistics service only: what its query answer says.
  kStatsEmpty,  // no ids returned
  kStatsId,     // record id `value` returned
  kStatsSub,    // subscription `value` returned
  kStatsCount,  // `value` ids returned
};

// How a hostile modem damages an answer, applied in this order to the answer
// as built: the claimed chunk, the cut, the header fields, then the patches.
struct Corruption {
  std::optional<uint32_t> claim;     // NV/EFS answers: data_len_send (record offset 8) says this
  std::optional<uint32_t> truncate;  // keep this many bytes of the TLV area (header says so)
  std::optional<uint16_t> msg_id;    // the header names this message
  std::optional<uint16_t> txn;       // the header names this transaction
  // Bytes written over the answer packet (7-byte header included) at an offset;
  // bytes past its end are dropped.
  std::vector<std::pair<uint32_t, std::vector<uint8_t>>> patches;

  bool any() const { return claim || truncate || msg_id || txn || !patches.empty(); }
  // Merges another matching fault's damage (its fields win).
  void add(const Corruption &other);
  // Applies the cut, the header fields and the patches to an answer packet.
  void apply(std::vector<uint8_t> &packet) const;
  nlohmann::json to_json() const;
};

struct Fault {
  FaultKind kind = FaultKind::kDelay;
  uint32_t service = 0;     // 0: any service
  int64_t request_id = -1;  // -1: any request
  int64_t count = -1;       // requests it still applies to; -1: until cleared
  uint32_t value = 0;
  Corruption corrupt;  // kCorrupt only
};

// What the faults make of one request.
struct FaultEffect {
  uint32_t delay_ms = 0;
  bool error = false;
  uint32_t error_code = 0;
  bool drop = false;
  bool no_data_valid = false;
  Corruption corrupt;
  // Statistics query answers; nullopt: as the modem has it.
  bool stats_empty = false;
  std::optional<uint32_t> stats_id, stats_sub, stats_count;
};

class Faults {
 public:
  void add(const Fault &f) { faults_.push_back(f); }
  void clear() { faults_.clear(); }
  // Applies (and uses up) the faults matching a request. With exact_service,
  // only faults that name this service apply (not those for any service).
  FaultEffect on_request(uint32_t service, int64_t request_id, bool exact_service = false);
  // Whether a new client of the service is refused (using up the fault).
  bool refuses_client(uint32_t service);
  nlohmann::json to_json() const;

 private:
  static bool matches(const Fault &f, uint32_t service, int64_t request_id,
                      bool exact_service = false);
  void drop_used_up();

  std::vector<Fault> faults_;
};

// Service names of the control interface: "extend" (0xffe4), "sar" (0x11),
// "stats" (the modem API's statistics endpoint), the diag channel's names
// ("diag", "dci-register", ...), or a number. 0 when unknown.
uint32_t parse_service(const nlohmann::json &j);
std::string service_name(uint32_t service);

// A fault from its control form, e.g. {"kind":"delay","ms":5000,"count":1}.
// Returns false with *error set when it is not one.
bool parse_fault(const nlohmann::json &j, Fault *f, std::string *error);

}  // namespace rpk_sim
