#include "platform/host/link/handshake.h"

#include <poll.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace rpk_link {

Join join(const std::string &socket_path, int wait_ms, int *fd, int socket_type) {
  *fd = -1;
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  if (socket_path.size() >= sizeof addr.sun_path) return Join::kNotListening;
  memcpy(addr.sun_path, socket_path.c_str(), socket_path.size() + 1);
  int s = socket(AF_UNIX, socket_type | SOCK_CLOEXEC, 0);
  if (s < 0) return Join::kNotListening;
  if (connect(s, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
    close(s);
    return Join::kNotListening;
  }
  // The connect only reached the listen queue; the endpoint decides once it
  // accepts.
  pollfd p{s, POLLIN, 0};
  int ready;
  while ((ready = poll(&p, 1, wait_ms)) < 0 && errno == EINTR) {
  }
  if (ready <= 0) {
    close(s);
    return Join::kSilent;
  }
  // One byte more than the welcome, so a longer packet is not taken for it. A
  // stream carries the welcome whole (one small write), and whatever follows it
  // must stay unread.
  uint8_t packet[kWelcome.size() + 1];
  const bool stream = socket_type == SOCK_STREAM;
  ssize_t n;
  while ((n = recv(s, packet, stream ? kWelcome.size() : sizeof packet, stream ? MSG_WAITALL : 0)) <
             0 &&
         errno == EINTR) {
  }
  if (n != static_cast<ssize_t>(kWelcome.size()) ||
      !std::equal(kWelcome.begin(), kWelcome.end(), packet)) {
    close(s);
    return Join::kRefused;
  }
  *fd = s;
  return Join::kJoined;
}

}  // namespace rpk_link
