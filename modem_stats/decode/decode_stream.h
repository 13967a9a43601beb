// Reading captured diag packets for rpk-decode: the text form (one packet a
// line) and binary diag streams (HDLC frames, as in .qmdl files).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

// One packet for the statistics engine: a log item's payload (after its
// 12-byte header, starting at the version) or one event's payload.
struct decode_item {
  bool event;   // event id rather than log code
  uint16_t id;  // log code, or event id (12 bits)
  std::span<const uint8_t> payload;
};

// Why input was skipped.
enum class decode_damage {
  bad_crc,      // frame check sequence does not match
  short_frame,  // fewer bytes than a command code and its CRC
  bad_escape,   // 0x7D right before the frame end
  truncated,    // input ended inside a frame
  bad_packet,   // lengths inside a log or event packet do not add up
  bad_line,     // a text line that is not "<code> <hex>" or "E<id> <hex>"
};
const char *decode_damage_name(decode_damage d);

struct decode_sink {
  std::function<void(const decode_item &, size_t where)> item;  // where: frame number
  std::function<void(decode_damage, size_t where)> damage;      // where: frame or line number
  std::function<void(uint8_t cmd_code)> other;  // a sound frame that is neither log nor event
};

// CRC-16/X.25 (reflected 0x1021, init and xorout 0xFFFF), as HDLC frames carry
// it, low byte first.
uint16_t decode_crc16(std::span<const uint8_t> bytes);

// Splits an HDLC byte stream into frames (0x7E ends a frame, 0x7D escapes the
// next byte XOR 0x20), checks each frame's CRC and hands the log items and
// events of each sound frame to the sink. Empty frames (repeated flags) are
// not counted; everything else that is wrong is reported as damage.
void decode_hdlc(std::span<const uint8_t> stream, const decode_sink &sink);

// One unframed diag packet: 0x10 log (u8 more, u16 length, log item of u16
// length, u16 code, u64 timestamp, payload) or 0x60 event report (u16 length,
// then events: u16 id word, 2- or 8-byte timestamp, 0/1/2/length-prefixed
// payload bytes). `where` is passed to the damage report.
void decode_packet(std::span<const uint8_t> packet, size_t where, const decode_sink &sink);

// One line of the text form: "<log code hex> <payload hex>" or
// "E<event id decimal> <payload hex>". Blank lines and lines starting with
// '#' are no packet and are ignored. `payload` receives the bytes.
enum class decode_line_kind { item, empty, bad };
decode_line_kind decode_text_line(std::string_view line, bool *event, uint16_t *id,
                                  std::vector<uint8_t> *payload);

// True when the bytes look like the text form (printable ASCII and line
// breaks only).
bool decode_looks_like_text(std::span<const uint8_t> head);
