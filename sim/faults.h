// Faults a test injects into the simulated modem's answers. Each fault may be
// limited to one service and (Extend-QMI) one request id, and to a number of
// requests; the service-wide faults (chunk size, down/up) live in the daemon.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rpk_sim {

enum class FaultKind {
  kDelay,        // answer `value` ms late (past the caller's time-out)
  kError,        // answer with the service error `value`, doing nothing
  kDropAfter,    // answer `value` more requests, then close the connection
  kNoDataValid,  // answer without data (data_valid 0)
  kRefuseInit,   // close a new client's connection instead of welcoming it
};

struct Fault {
  FaultKind kind = FaultKind::kDelay;
  uint32_t service = 0;     // 0: any service
  int64_t request_id = -1;  // -1: any request
  int64_t count = -1;       // requests it still applies to; -1: until cleared
  uint32_t value = 0;
};

// What the faults make of one request.
struct FaultEffect {
  uint32_t delay_ms = 0;
  bool error = false;
  uint32_t error_code = 0;
  bool drop = false;
  bool no_data_valid = false;
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
// the diag channel's names ("diag", "dci-register", ...), or a number. 0 when
// unknown.
uint32_t parse_service(const nlohmann::json &j);
std::string service_name(uint32_t service);

// A fault from its control form, e.g. {"kind":"delay","ms":5000,"count":1}.
// Returns false with *error set when it is not one.
bool parse_fault(const nlohmann::json &j, Fault *f, std::string *error);

}  // namespace rpk_sim
