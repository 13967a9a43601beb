// How the host diag library and the simulated modem meet: one Unix-domain
// SOCK_SEQPACKET socket (<state dir>/diag.sock), one message per packet. The
// daemon welcomes each connection as a QMI service does (a bare QMI header
// with control flag 0x80) or closes it to refuse it. A connection is one
// library session; the DCI clients registered on it end with it.
//
// Every message starts with an 8-byte header, then its body:
//   type u8 | proc u8 | mode u8 | flags u8 | tag u32 LE
// Requests carry a tag chosen by the library; an answer (type | 0x80) carries
// the tag of its request. Bodies (integers little-endian):
//   kCallbackReq   raw request bytes (proc, mode = the logging mode)
//   kCallbackRsp   raw response bytes (proc = the processor that answered)
//   kRemoteMask    -                     answer: u16 mask
//   kDciRegister   i32 signal, u16 list  answer: i32 result, i32 client id
//   kDciSignal     i32 client, i32 signal  answer: i32 result
//   kDciSupport    - (proc)              answer: i32 result, u16 list
//   kDciStream     i32 client            answer: i32 result
//   kDciSend       i32 client, bytes     answer: i32 result; then kDciPiece
//                                        messages with the same tag, the last
//                                        one flagged kFlagLast
//   kDciRelease    i32 client            answer: i32 result
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace rpk_diag {

enum Type : uint8_t {
  kCallbackReq = 0x01,
  kRemoteMask = 0x02,
  kDciRegister = 0x03,
  kDciSignal = 0x04,
  kDciSupport = 0x05,
  kDciStream = 0x06,
  kDciSend = 0x07,
  kDciRelease = 0x08,
  kAnswer = 0x80,  // or-ed into the request type
  kCallbackRsp = kAnswer | kCallbackReq,
  kDciPiece = 0x90,
};

inline constexpr uint8_t kFlagLast = 0x01;
inline constexpr size_t kHeaderLen = 8;
// Large enough for any request the library takes and any answer the modem
// gives, pieces included.
inline constexpr size_t kMaxPacket = kHeaderLen + 65536;

struct Header {
  uint8_t type = 0;
  uint8_t proc = 0;
  uint8_t mode = 0;
  uint8_t flags = 0;
  uint32_t tag = 0;
};

inline void put_header(uint8_t *out, const Header &h) {
  out[0] = h.type;
  out[1] = h.proc;
  out[2] = h.mode;
  out[3] = h.flags;
  for (int i = 0; i < 4; ++i) out[4 + i] = static_cast<uint8_t>(h.tag >> (8 * i));
}

inline bool parse_header(const uint8_t *p, size_t n, Header *h) {
  if (n < kHeaderLen) return false;
  h->type = p[0];
  h->proc = p[1];
  h->mode = p[2];
  h->flags = p[3];
  h->tag = static_cast<uint32_t>(p[4] | (p[5] << 8) | (p[6] << 16)) |
           (static_cast<uint32_t>(p[7]) << 24);
  return true;
}

inline void put_u32(uint8_t *out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(v >> (8 * i));
}

inline uint32_t get_u32(const uint8_t *p) {
  return static_cast<uint32_t>(p[0] | (p[1] << 8) | (p[2] << 16)) |
         (static_cast<uint32_t>(p[3]) << 24);
}

// <state dir>/diag.sock
std::string diag_socket_path();

}  // namespace rpk_diag
