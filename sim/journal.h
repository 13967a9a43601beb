// The journal: one JSON object per line for every request the modem received,
// appended to <state dir>/journal.jsonl with one write each, so lines never
// tear and a reader can follow the file while the daemon runs. Bounded: past
// kJournalMax bytes the file becomes journal.jsonl.1 (the one before is
// dropped) and a new one starts; "seq" goes on counting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace rpk_sim {

inline constexpr size_t kJournalMax = 4 << 20;

class Journal {
 public:
  explicit Journal(std::string path, size_t max_bytes = kJournalMax);

  // Adds "seq" and "time" to the entry and appends it.
  void append(const nlohmann::json &entry);
  // Empties the journal (both files) and starts counting again.
  void clear();
  const std::string &path() const { return log_.path(); }

 private:
  rpk_host::BoundedLog log_;
  uint64_t seq_ = 0;
  std::string line_;                                            // reused: the line being written
  rpk_host::ClockStamp stamp_{"%Y-%m-%dT%H:%M:%S", true, 'Z'};  // UTC
};

}  // namespace rpk_sim
