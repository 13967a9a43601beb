#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/host/link/rpk_host.h"

namespace rpk_host {
namespace {

void make_dirs(const std::string &path) {
  for (size_t pos = 1; pos <= path.size(); ++pos) {
    if (pos == path.size() || path[pos] == '/') {
      std::string part = path.substr(0, pos);
      if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return;
    }
  }
}

}  // namespace

std::string state_dir() {
  std::string dir;
  if (const char *d = getenv("RPK_SIM_DIR"); d != nullptr && *d != '\0') {
    dir = d;
  } else if (const char *x = getenv("XDG_STATE_HOME"); x != nullptr && *x != '\0') {
    dir = std::string(x) + "/rpk-sim";
  } else {
    const char *home = getenv("HOME");
    dir = std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.local/state/rpk-sim";
  }
  while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
  make_dirs(dir);
  return dir;
}

bool write_file_atomic(const std::string &path, std::string_view data) {
  std::string tmp = path + ".tmp." + std::to_string(getpid());
  int fd = open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < data.size()) {
    ssize_t n = write(fd, data.data() + done, data.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      close(fd);
      unlink(tmp.c_str());
      return false;
    }
    done += static_cast<size_t>(n);
  }
  if (fsync(fd) != 0 || close(fd) != 0 || rename(tmp.c_str(), path.c_str()) != 0) {
    unlink(tmp.c_str());
    return false;
  }
  return true;
}

bool read_file(const std::string &path, std::string &out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream ss;
  ss << in.rdbuf();
  out = ss.str();
  return true;
}

}  // namespace rpk_host
