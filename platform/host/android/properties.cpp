// Host system properties: one "key=value" line each in <state dir>/properties,
// rewritten atomically under an exclusive lock so concurrent setters never lose
// each other's updates.
#include <cutils/properties.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace {

// Modern Android accepts long names (the tool's own
// "persist.vendor.ssr.restart_level_bak" exceeds the legacy 32); keep a sane cap.
constexpr size_t kKeyMax = 255;

std::string props_path() { return rpk_host::state_dir() + "/properties"; }

class FileLock {
 public:
  explicit FileLock(int op) {
    std::string path = rpk_host::state_dir() + "/properties.lock";
    fd_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd_ >= 0) flock(fd_, op);
  }
  ~FileLock() {
    if (fd_ >= 0) close(fd_);
  }
  FileLock(const FileLock &) = delete;
  FileLock &operator=(const FileLock &) = delete;

 private:
  int fd_ = -1;
};

std::map<std::string, std::string> load() {
  std::map<std::string, std::string> props;
  std::string text;
  if (!rpk_host::read_file(props_path(), text)) return props;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (size_t eq = line.find('='); eq != std::string::npos && eq > 0) {
      props[line.substr(0, eq)] = line.substr(eq + 1);
    }
    start = end + 1;
  }
  return props;
}

bool valid_key(const char *key) {
  if (key == nullptr || *key == '\0' || strlen(key) > kKeyMax) return false;
  for (const char *p = key; *p != '\0'; ++p) {
    if (*p == '=' || *p == '\n') return false;
  }
  return true;
}

}  // namespace

extern "C" int property_get(const char *key, char *value, const char *default_value) {
  if (value == nullptr) return -1;
  std::string found;
  if (valid_key(key)) {
    FileLock lock(LOCK_SH);
    auto props = load();
    if (auto it = props.find(key); it != props.end()) found = it->second;
  }
  if (found.empty() && default_value != nullptr) found = default_value;
  size_t len = found.size() < PROPERTY_VALUE_MAX - 1 ? found.size() : PROPERTY_VALUE_MAX - 1;
  memcpy(value, found.data(), len);
  value[len] = '\0';
  return static_cast<int>(len);
}

extern "C" int property_set(const char *key, const char *value) {
  if (!valid_key(key)) return -1;
  if (value == nullptr) value = "";
  if (strlen(value) >= PROPERTY_VALUE_MAX || strchr(value, '\n') != nullptr) return -1;
  FileLock lock(LOCK_EX);
  auto props = load();
  props[key] = value;
  std::string text;
  for (const auto &[k, v] : props) text += k + "=" + v + "\n";
  return rpk_host::write_file_atomic(props_path(), text) ? 0 : -1;
}
