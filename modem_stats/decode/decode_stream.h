// Reading captured diag packets for rpk-decode: the text form (one packet a
// line) and binary diag streams (HDLC frames, as in .qmdl files). Both
// readers take their input in blocks of any size, split anywhere, and hold at
// most one frame or line of it: memory does not grow with the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
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
  long_frame,   // a frame longer than any diag packet (decode_max_frame)
  long_line,    // a text line longer than any packet's (decode_max_line)
};
const char *decode_damage_name(decode_damage d);

struct decode_sink {
  std::function<void(const decode_item &, size_t where)> item;  // where: frame or line number
  std::function<void(decode_damage, size_t where)> damage;      // where: frame or line number
  std::function<void(uint8_t cmd_code)> other;  // a sound frame that is neither log nor event
};

// The longest diag packet: a log packet (4-byte header, then a log item of at
// most 0xFFFF bytes); its frame adds the 2-byte CRC.
inline constexpr size_t decode_max_packet = 4 + 0xFFFF;
inline constexpr size_t decode_max_frame = decode_max_packet + 2;
// The longest text line of such a packet's payload, with room for blanks.
inline constexpr size_t decode_max_line = 2 * decode_max_packet + 256;

// CRC-16/X.25 (reflected 0x1021, init and xorout 0xFFFF), as HDLC frames carry
// it, low byte first.
uint16_t decode_crc16(std::span<const uint8_t> bytes);

// Splits an HDLC byte stream into frames (0x7E ends a frame, 0x7D escapes the
// next byte XOR 0x20), checks each frame's CRC and hands the log items and
// events of each sound frame to the sink. Empty frames (repeated flags) are
// not counted; everything else that is wrong is reported as damage, with the
// frame's number. A frame that grows past decode_max_frame is not kept: it is
// reported as long_frame when it ends.
class decode_hdlc_reader {
 public:
  explicit decode_hdlc_reader(const decode_sink &sink);
  void feed(std::span<const uint8_t> bytes);
  // End of input: a frame left open is reported as truncated.
  void finish();

 private:
  void append(const uint8_t *bytes, size_t n);
  void end_frame();

  const decode_sink &sink_;
  std::unique_ptr<uint8_t[]> frame_;  // decode_max_frame bytes, of which len_ are used
  size_t len_ = 0;
  size_t frames_ = 0;
  bool escaped_ = false;
  bool too_long_ = false;
};

// The whole of `stream` through a decode_hdlc_reader.
void decode_hdlc(std::span<const uint8_t> stream, const decode_sink &sink);

// Splits the text form into lines ('\n'; a last line needs none) and hands
// each packet to the sink, with its line number; bad lines are reported as
// damage. A line longer than decode_max_line is not kept: it is reported as
// long_line.
class decode_text_reader {
 public:
  explicit decode_text_reader(const decode_sink &sink);
  void feed(std::span<const uint8_t> bytes);
  // End of input: a last line without its newline is read.
  void finish();

 private:
  void line(std::string_view text);
  void carry(const char *text, size_t n);
  // A whole usual line at p read at once; the start of the next, or nullptr
  // when the line needs the general path.
  const char *quick_line(const char *p, const char *end);

  const decode_sink &sink_;
  std::string carried_;  // the start of a line split across blocks
  std::vector<uint8_t> payload_;
  std::vector<uint8_t> quick_;  // quick_line's payload: decode_max_packet bytes
  size_t lines_ = 0;
  bool too_long_ = false;
};

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

// Decodes the hex digits at the start of `in` (n characters), two to a byte,
// into `out` (room for n / 2 bytes), up to the first character that is no
// hex digit; returns how many digits it used (even: a lone last digit is not
// used).
size_t decode_hex_prefix(const char *in, size_t n, uint8_t *out);

// True when the bytes look like the text form (printable ASCII and line
// breaks only).
bool decode_looks_like_text(std::span<const uint8_t> head);
