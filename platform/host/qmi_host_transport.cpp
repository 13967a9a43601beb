#include "qmi_host_transport.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "rpk_host.h"

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

int connect_service(uint32_t service_id) {
  const std::string path = service_socket_path(service_id);
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  if (path.size() >= sizeof addr.sun_path) return -1;
  memcpy(addr.sun_path, path.c_str(), path.size() + 1);
  int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  if (connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

}  // namespace rpk_qmi
