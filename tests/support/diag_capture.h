// Builds diag captures for tests and benchmarks: log and event-report packets
// and their HDLC frames, written here from the wire format rather than with
// the decoder's own code, so the decoder is checked against an independent
// encoder.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace diag_capture {

using Bytes = std::vector<uint8_t>;

// CRC-16/X.25 bit by bit.
inline uint16_t crc_x25(const Bytes &b) {
  uint16_t crc = 0xFFFF;
  for (uint8_t byte : b) {
    crc ^= byte;
    for (int i = 0; i < 8; ++i) crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1;
  }
  return crc ^ 0xFFFF;
}

// The packet, its CRC (low byte first; one bit flipped when asked), 0x7E and
// 0x7D escaped, then the closing flag.
inline Bytes hdlc(Bytes packet, bool break_crc = false) {
  const uint16_t crc = crc_x25(packet) ^ (break_crc ? 1 : 0);
  packet.push_back(crc & 0xFF);
  packet.push_back(crc >> 8);
  Bytes framed;
  for (uint8_t b : packet) {
    if (b == 0x7E || b == 0x7D) {
      framed.push_back(0x7D);
      framed.push_back(b ^ 0x20);
    } else {
      framed.push_back(b);
    }
  }
  framed.push_back(0x7E);
  return framed;
}

// 0x10, more 0, u16 length, then the log item: u16 length, u16 code, u64
// timestamp, payload. Sized up front and filled in place: GCC 12 at -O3
// mistakes an insert after an initializer-list construction for an
// out-of-bounds copy.
inline Bytes log_packet(uint16_t code, const Bytes &payload) {
  const auto item_len = static_cast<uint16_t>(12 + payload.size());
  Bytes p(4 + item_len, 0x11);  // 0x11: the timestamp's filler
  const uint8_t header[] = {0x10,
                            0x00,
                            static_cast<uint8_t>(item_len),
                            static_cast<uint8_t>(item_len >> 8),
                            static_cast<uint8_t>(item_len),
                            static_cast<uint8_t>(item_len >> 8),
                            static_cast<uint8_t>(code),
                            static_cast<uint8_t>(code >> 8)};
  std::copy(std::begin(header), std::end(header), p.begin());
  std::copy(payload.begin(), payload.end(), p.end() - static_cast<std::ptrdiff_t>(payload.size()));
  return p;
}

// One event: id word (length code in bits 13-14, short timestamp in bit 15),
// timestamp, payload (length-prefixed for code 3, at most 255 bytes).
inline Bytes event(uint16_t id, const Bytes &payload, bool short_stamp) {
  const unsigned code = payload.size() <= 2 ? payload.size() : 3;
  const auto word = static_cast<uint16_t>(id | code << 13 | (short_stamp ? 0x8000 : 0));
  // Sized up front: growing a two-byte vector trips a GCC 12 bounds warning.
  Bytes e(2 + (short_stamp ? 2 : 8), 0x22);
  e[0] = static_cast<uint8_t>(word);
  e[1] = static_cast<uint8_t>(word >> 8);
  if (code == 3) e.push_back(static_cast<uint8_t>(payload.size()));
  e.insert(e.end(), payload.begin(), payload.end());
  return e;
}

// 0x60, u16 length, the events.
inline Bytes event_report(const std::vector<Bytes> &events) {
  Bytes body;
  for (const auto &e : events) body.insert(body.end(), e.begin(), e.end());
  // Sized up front: GCC 12 misreads an insert behind a braced list as overflow.
  Bytes p(3 + body.size());
  p[0] = 0x60;
  p[1] = static_cast<uint8_t>(body.size());
  p[2] = static_cast<uint8_t>(body.size() >> 8);
  std::copy(body.begin(), body.end(), p.begin() + 3);
  return p;
}

}  // namespace diag_capture
