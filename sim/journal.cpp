#include "journal.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <ctime>

namespace rpk_sim {

Journal::Journal(std::string path) : path_(std::move(path)) { open_file(); }

Journal::~Journal() {
  if (fd_ >= 0) close(fd_);
}

void Journal::open_file() {
  fd_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
}

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
  const std::string line =
      entry.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  if (fd_ >= 0) {
    ssize_t ignored = write(fd_, line.data(), line.size());
    (void)ignored;
  }
}

void Journal::clear() {
  if (fd_ >= 0) close(fd_);
  unlink(path_.c_str());
  seq_ = 0;
  open_file();
}

}  // namespace rpk_sim
