// How host QMI clients and the simulated modem meet: one Unix-domain
// SOCK_SEQPACKET socket per service in the host state directory, one QMI
// message per packet in its wire form (7-byte header, then the TLVs), after
// the link's handshake (platform/host/link/handshake.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/host/link/handshake.h"

namespace rpk_qmi {

inline constexpr uint8_t kCtlRequest = 0;
inline constexpr uint8_t kCtlResponse = 2;
inline constexpr uint8_t kCtlIndication = 4;
inline constexpr size_t kHeaderLen = 7;
inline constexpr size_t kMaxPacket = kHeaderLen + 0xFFFF;

// The only service instance a host offers.
inline constexpr unsigned kHostInstance = 0;

struct Header {
  uint8_t ctl = 0;   // kCtlRequest, kCtlResponse or kCtlIndication
  uint16_t txn = 0;  // per client, starts at 1, skips 0
  uint16_t msg_id = 0;
  uint16_t len = 0;  // length of the TLV area
};

// Writes the 7 header bytes (little-endian).
void put_header(uint8_t *out, const Header &h);

// Reads a header from a whole packet of n bytes; false when the packet is too
// short or its length field disagrees with the packet.
bool parse_header(const uint8_t *packet, size_t n, Header *h);

// <state dir>/qmi-<service id as 4+ hex digits>.sock
std::string service_socket_path(uint32_t service_id);

using Join = rpk_link::Join;

// Joins a service at its socket (rpk_link::join).
Join join_service(uint32_t service_id, int wait_ms, int *fd);

}  // namespace rpk_qmi
