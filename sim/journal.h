// The journal: one JSON object per line for every request the modem received,
// appended to <state dir>/journal.jsonl with one write each, so lines never
// tear and a reader can follow the file while the daemon runs.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace rpk_sim {

class Journal {
 public:
  explicit Journal(std::string path);
  ~Journal();
  Journal(const Journal &) = delete;
  Journal &operator=(const Journal &) = delete;

  // Adds "seq" and "time" to the entry and appends it.
  void append(nlohmann::json entry);
  void clear();
  const std::string &path() const { return path_; }

 private:
  void open_file();

  std::string path_;
  int fd_ = -1;
  uint64_t seq_ = 0;
};

}  // namespace rpk_sim
