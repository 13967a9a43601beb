#include "journal.h"

#include <sys/time.h>

#include <ctime>

namespace rpk_sim {

Journal::Journal(std::string path, size_t max_bytes) : log_(std::move(path), max_bytes) {}

void Journal::append(nlohmann::json entry) {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  tm utc{};
  gmtime_r(&tv.tv_sec, &utc);
  char stamp[40];
  size_t n = strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%S", &utc);
  snprintf(stamp + n, sizeof stamp - n, ".%03ldZ", static_cast<long>(tv.tv_usec / 1000));
  entry["seq"] = ++seq_;
  entry["time"] = stamp;
  log_.append(entry.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

void Journal::clear() {
  log_.clear();
  seq_ = 0;
}

}  // namespace rpk_sim
