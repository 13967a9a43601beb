#include "platform/host/link/qmi_host_transport.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/host/link/rpk_host.h"

namespace rpk_qmi {

void put_header(uint8_t *out, const Header &h) {
  out[0] = h.ctl;
  out[1] = static_cast<uint8_t>(h.txn);
  out[2] = static_cast<uint8_t>(h.txn >> 8);
  out[3] = static_cast<uint8_t>(h.msg_id);
  out[4] = static_cast<uint8_t>(h.msg_id >> 8);
  out[5] = static_cast<uint8_t>(h.len);
  out[6] = static_cast<uint8_t>(h.len >> 8);
}

bool parse_header(const uint8_t *packet, size_t n, Header *h) {
  if (n < kHeaderLen) return false;
  h->ctl = packet[0];
  h->txn = static_cast<uint16_t>(packet[1] | (packet[2] << 8));
  h->msg_id = static_cast<uint16_t>(packet[3] | (packet[4] << 8));
  h->len = static_cast<uint16_t>(packet[5] | (packet[6] << 8));
  return h->len == n - kHeaderLen;
}

std::string service_socket_path(uint32_t service_id) {
  char name[32];
  snprintf(name, sizeof name, "/qmi-%04x.sock", service_id);
  return rpk_host::state_dir() + name;
}

Join join_service(uint32_t service_id, int wait_ms, int *fd) {
  return join_socket(service_socket_path(service_id), wait_ms, fd);
}

Join join_socket(const std::string &path, int wait_ms, int *fd) {
  *fd = -1;
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  if (path.size() >= sizeof addr.sun_path) return Join::kNotListening;
  memcpy(addr.sun_path, path.c_str(), path.size() + 1);
  int s = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (s < 0) return Join::kNotListening;
  if (connect(s, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
    close(s);
    return Join::kNotListening;
  }
  // The connect only reached the listen queue; the service decides once it
  // accepts.
  pollfd p{s, POLLIN, 0};
  int ready;
  while ((ready = poll(&p, 1, wait_ms)) < 0 && errno == EINTR) {
  }
  if (ready <= 0) {
    close(s);
    return Join::kSilent;
  }
  uint8_t packet[kHeaderLen + 1];
  ssize_t n;
  while ((n = recv(s, packet, sizeof packet, 0)) < 0 && errno == EINTR) {
  }
  Header h;
  if (n <= 0 || !parse_header(packet, static_cast<size_t>(n), &h) || h.ctl != kCtlWelcome) {
    close(s);
    return Join::kRefused;
  }
  *fd = s;
  return Join::kJoined;
}

}  // namespace rpk_qmi
