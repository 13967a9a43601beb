#include "platform/host/link/handshake.h"
#include "platform/host/link/qmi_host_transport.h"

#include <cstdio>

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
  return rpk_link::join(service_socket_path(service_id), wait_ms, fd);
}

}  // namespace rpk_qmi
