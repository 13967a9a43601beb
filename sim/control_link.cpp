#include "control_link.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "platform/host/link/rpk_host.h"
#include "sim_text.h"

namespace rpk_sim {

std::string control_socket_path() { return rpk_host::state_dir() + "/sim-ctl.sock"; }

bool control_request(const nlohmann::json &command, nlohmann::json *answer, std::string *error,
                     int timeout_ms) {
  const std::string path = control_socket_path();
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  if (path.size() >= sizeof addr.sun_path) {
    *error = "socket path too long: " + path;
    return false;
  }
  memcpy(addr.sun_path, path.c_str(), path.size() + 1);
  int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    *error = strerror(errno);
    return false;
  }
  if (connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
    *error = "not running";
    close(fd);
    return false;
  }
  const std::string text = dump_json(command);
  if (send(fd, text.data(), text.size(), MSG_NOSIGNAL) < 0) {
    *error = strerror(errno);
    close(fd);
    return false;
  }
  pollfd p{fd, POLLIN, 0};
  std::vector<char> buf(1 << 20);
  ssize_t n = -1;
  if (poll(&p, 1, timeout_ms) == 1) n = recv(fd, buf.data(), buf.size(), 0);
  close(fd);
  if (n <= 0) {
    *error = "no answer from the daemon";
    return false;
  }
  *answer = nlohmann::json::parse(std::string(buf.data(), static_cast<size_t>(n)), nullptr, false);
  if (!answer->is_object()) {
    *error = "bad answer from the daemon";
    return false;
  }
  return true;
}

}  // namespace rpk_sim
