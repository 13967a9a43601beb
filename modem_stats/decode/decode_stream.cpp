#include "modem_stats/decode/decode_stream.h"

#include <array>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "common/velmar_bytes.h"

namespace {

constexpr uint8_t kFlag = 0x7E;
constexpr uint8_t kEscape = 0x7D;
constexpr uint8_t kEscapeXor = 0x20;
constexpr size_t kCrcLen = 2;

constexpr uint8_t kCmdLog = 0x10;
constexpr uint8_t kCmdEvent = 0x60;
constexpr size_t kLogHeadLen = 4;    // cmd, more, u16 length
constexpr size_t kLogItemHead = 12;  // u16 length, u16 code, u64 timestamp
constexpr size_t kEventHeadLen = 3;  // cmd, u16 length

// CRC tables for sixteen bytes at a time: kCrc[k][b] is the CRC step of byte
// b followed by k zero bytes. Every frame is checked, so this is the reader's
// hot loop.
using crc_tables = std::array<std::array<uint16_t, 256>, 16>;
constexpr crc_tables kCrc = [] {
  crc_tables t{};
  for (unsigned i = 0; i < 256; ++i) {
    uint16_t c = static_cast<uint16_t>(i);
    for (int k = 0; k < 8; ++k) c = (c & 1) ? static_cast<uint16_t>((c >> 1) ^ 0x8408) : c >> 1;
    t[0][i] = c;
  }
  for (size_t k = 1; k < t.size(); ++k) {
    for (unsigned i = 0; i < 256; ++i) {
      t[k][i] = static_cast<uint16_t>((t[k - 1][i] >> 8) ^ t[0][t[k - 1][i] & 0xFF]);
    }
  }
  return t;
}();

#if defined(__x86_64__)
// The same CRC by carry-less multiplication, for CPUs with PCLMULQDQ: the
// frame is folded 64 bytes at a time into one 16-byte block whose remainder
// equals the folded bytes', and the tables finish that block and the tail.
// Bit k of a little-endian 128-bit block is the k-th bit sent, so the block
// stands for the polynomial with that bit at x^(127-k); a carry-less product
// of two such 64-bit halves comes out multiplied by x, hence the -1 in the
// exponents below.
constexpr uint64_t fold_constant(unsigned exponent) {
  uint32_t r = 1;  // x^exponent mod x^16 + x^12 + x^5 + 1, most significant bit = x^15
  for (unsigned i = 0; i < exponent; ++i) {
    r <<= 1;
    if (r & 0x10000) r ^= 0x11021;
  }
  uint64_t word = 0;  // x^d at bit 63 - d, as the halves hold their bits
  for (unsigned d = 0; d < 16; ++d) {
    if (r & (1u << d)) word |= uint64_t{1} << (63 - d);
  }
  return word;
}

// A block times x^distance (in bits), kept to 128 bits, plus `next`.
__attribute__((target("pclmul,sse2"), always_inline)) inline __m128i fold(__m128i block, __m128i k,
                                                                          __m128i next) {
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(block, k, 0x00), _mm_clmulepi64_si128(block, k, 0x11)),
      next);
}

template <unsigned kDistance>
__attribute__((target("pclmul,sse2"), always_inline)) inline __m128i fold_keys() {
  static constexpr uint64_t kLow = fold_constant(kDistance + 64 - 1);  // for the low half
  static constexpr uint64_t kHigh = fold_constant(kDistance - 1);
  return _mm_set_epi64x(static_cast<int64_t>(kHigh), static_cast<int64_t>(kLow));
}

__attribute__((target("pclmul,sse2"))) uint16_t crc16_clmul(const uint8_t *p, size_t n) {
  auto load = [](const uint8_t *at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
  };
  // The initial 0xFFFF, XORed into the first two bytes, is the same as
  // starting the register there.
  __m128i b0 = _mm_xor_si128(load(p), _mm_cvtsi32_si128(0xFFFF));
  __m128i b1 = load(p + 16);
  __m128i b2 = load(p + 32);
  __m128i b3 = load(p + 48);
  p += 64;
  n -= 64;
  const __m128i k512 = fold_keys<512>();
  for (; n >= 64; n -= 64, p += 64) {
    b0 = fold(b0, k512, load(p));
    b1 = fold(b1, k512, load(p + 16));
    b2 = fold(b2, k512, load(p + 32));
    b3 = fold(b3, k512, load(p + 48));
  }
  const __m128i k128 = fold_keys<128>();
  __m128i b = fold(fold(fold(b0, k128, b1), k128, b2), k128, b3);
  for (; n >= 16; n -= 16, p += 16) b = fold(b, k128, load(p));
  alignas(16) uint8_t last[16];
  _mm_store_si128(reinterpret_cast<__m128i *>(last), b);
  // From a zero register the block's bytes are independent lookups.
  uint16_t crc = 0;
  for (size_t k = 0; k < 16; ++k) crc ^= kCrc[15 - k][last[k]];
  for (; n > 0; --n, ++p) crc = static_cast<uint16_t>((crc >> 8) ^ kCrc[0][(crc ^ *p) & 0xFF]);
  return static_cast<uint16_t>(crc ^ 0xFFFF);
}

bool has_pclmul() {
  static const bool yes = (__builtin_cpu_init(), __builtin_cpu_supports("pclmul") != 0);
  return yes;
}
#endif

uint16_t le16(std::span<const uint8_t> b, size_t at) {
  return static_cast<uint16_t>(velmar_load_le(&b[at], 2));
}

void check_frame(std::span<const uint8_t> frame, size_t where, const decode_sink &sink) {
  if (frame.size() < 1 + kCrcLen) {
    sink.damage(decode_damage::short_frame, where);
    return;
  }
  const auto body = frame.first(frame.size() - kCrcLen);
  if (decode_crc16(body) != le16(frame, body.size())) {
    sink.damage(decode_damage::bad_crc, where);
    return;
  }
  decode_packet(body, where, sink);
}

// The readers of a packet's contents return false when the lengths inside do
// not add up; decode_packet reports that once. Items before the fault have
// been handed over by then.

bool decode_log(std::span<const uint8_t> packet, size_t where, const decode_sink &sink) {
  if (packet.size() < kLogHeadLen + kLogItemHead) return false;
  const size_t len = le16(packet, 2);
  const size_t item_len = le16(packet, kLogHeadLen);
  if (len < kLogItemHead || kLogHeadLen + len > packet.size() || item_len < kLogItemHead ||
      item_len > len) {
    return false;
  }
  const uint16_t code = le16(packet, kLogHeadLen + 2);
  sink.item({false, code, packet.subspan(kLogHeadLen + kLogItemHead, item_len - kLogItemHead)},
            where);
  return true;
}

bool decode_events(std::span<const uint8_t> events, size_t where, const decode_sink &sink) {
  size_t at = 0;
  while (at < events.size()) {
    if (events.size() - at < 2) return false;
    const uint16_t word = le16(events, at);
    at += 2;
    const auto id = static_cast<uint16_t>(word & 0x0FFF);
    const unsigned len_code = (word >> 13) & 0x3;
    const size_t stamp = (word & 0x8000) ? 2 : 8;
    if (events.size() - at < stamp) return false;
    at += stamp;
    size_t len = len_code;
    if (len_code == 3) {
      if (at >= events.size()) return false;
      len = events[at++];
    }
    if (events.size() - at < len) return false;
    sink.item({true, id, events.subspan(at, len)}, where);
    at += len;
  }
  return true;
}

bool decode_event_report(std::span<const uint8_t> packet, size_t where, const decode_sink &sink) {
  if (packet.size() < kEventHeadLen) return false;
  const size_t len = le16(packet, 1);
  if (kEventHeadLen + len > packet.size()) return false;
  return decode_events(packet.subspan(kEventHeadLen, len), where, sink);
}

// A hex digit's value; 0xFF for any other byte.
constexpr std::array<uint8_t, 256> kHexValue = [] {
  std::array<uint8_t, 256> t{};
  t.fill(0xFF);
  for (int i = 0; i < 10; ++i) t['0' + i] = static_cast<uint8_t>(i);
  for (int i = 0; i < 6; ++i) t['a' + i] = t['A' + i] = static_cast<uint8_t>(10 + i);
  return t;
}();

// Eight hex digits (the first in the low byte) to four bytes at `out`, a word
// at a time: the path without AVX2, and the tail of a line after it. False
// when one of them is no hex digit.
bool hex8(uint64_t x, uint8_t *out) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kHighs = 0x8080808080808080;
  // Per byte, high bit set when the byte (below 0x80) lies in [lo, hi].
  auto in_range = [](uint64_t v, uint64_t lo, uint64_t hi) {
    const uint64_t at_least_lo = (v | kHighs) - kOnes * lo;
    const uint64_t above_hi = (v | kHighs) - kOnes * (hi + 1);
    return at_least_lo & ~above_hi & kHighs;
  };
  const uint64_t digit = in_range(x, '0', '9');
  const uint64_t letter = in_range(x | (kOnes * 0x20), 'a', 'f');
  if ((x & kHighs) != 0 || (digit | letter) != kHighs) return false;
  const uint64_t v = (x & (kOnes * 0x0F)) + (letter >> 7) * 9;
  uint64_t w = ((v << 4) | (v >> 8)) & 0x00FF00FF00FF00FF;
  w = (w | (w >> 8)) & 0x0000FFFF0000FFFF;
  w = (w | (w >> 16)) & 0xFFFFFFFF;
  const uint32_t bytes = static_cast<uint32_t>(w);
  memcpy(out, &bytes, sizeof bytes);
  return true;
}

#if defined(__x86_64__)
// Whole groups of 32 hex digits from `in` (at most n characters) to bytes at
// `out`, on CPUs that have AVX2 (asked once). Stops before the first group
// that holds a character that is no hex digit; returns the digits used.
__attribute__((target("avx2"))) size_t hex_avx2(const char *in, size_t n, uint8_t *out) {
  size_t i = 0;
  for (; n - i >= 32; i += 32, out += 16) {
    const __m256i x = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + i));
    // Offsets from '0' and from 'a' (either case); a lane is a digit when its
    // offset is at most 9, a letter when at most 5 (unsigned, so below wraps).
    const __m256i d = _mm256_sub_epi8(x, _mm256_set1_epi8('0'));
    const __m256i l =
        _mm256_sub_epi8(_mm256_or_si256(x, _mm256_set1_epi8(0x20)), _mm256_set1_epi8('a'));
    const __m256i is_d = _mm256_cmpeq_epi8(_mm256_min_epu8(d, _mm256_set1_epi8(9)), d);
    const __m256i is_l = _mm256_cmpeq_epi8(_mm256_min_epu8(l, _mm256_set1_epi8(5)), l);
    if (_mm256_movemask_epi8(_mm256_or_si256(is_d, is_l)) != -1) break;
    const __m256i v = _mm256_blendv_epi8(_mm256_add_epi8(l, _mm256_set1_epi8(10)), d, is_d);
    // Per 16-bit lane: first digit * 16 + second digit.
    const __m256i pair = _mm256_maddubs_epi16(v, _mm256_set1_epi16(0x0110));
    // The pack works per 128-bit half: gather the two halves' low quarters.
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(pair, pair), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm256_castsi256_si128(packed));
  }
  return i;
}

bool has_avx2() {
  static const bool yes = (__builtin_cpu_init(), __builtin_cpu_supports("avx2") != 0);
  return yes;
}
#endif

// The code column: a log code of up to five hex digits, or 'E' (either case)
// and an event id in decimal.
bool parse_code(std::string_view code, bool *event, uint16_t *id) {
  if (code.empty()) return false;
  *event = code.front() == 'E' || code.front() == 'e';
  const std::string_view digits = *event ? code.substr(1) : code;
  const unsigned base = *event ? 10 : 16;
  if (digits.empty() || digits.size() > 5) return false;
  uint32_t value = 0;
  for (char c : digits) {
    const unsigned d = kHexValue[static_cast<uint8_t>(c)];
    if (d >= base) return false;
    value = value * base + d;
  }
  if (value > (*event ? 0x0FFFu : 0xFFFFu)) return false;
  *id = static_cast<uint16_t>(value);
  return true;
}

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view trim(std::string_view s) {
  while (!s.empty() && is_blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && is_blank(s.back())) s.remove_suffix(1);
  return s;
}

}  // namespace

const char *decode_damage_name(decode_damage d) {
  switch (d) {
    case decode_damage::bad_crc:
      return "bad CRC";
    case decode_damage::short_frame:
      return "short frame";
    case decode_damage::bad_escape:
      return "bad escape";
    case decode_damage::truncated:
      return "truncated frame";
    case decode_damage::bad_packet:
      return "bad packet lengths";
    case decode_damage::bad_line:
      return "bad line";
    case decode_damage::long_frame:
      return "over-long frame";
    case decode_damage::long_line:
      return "over-long line";
  }
  return "damaged";
}

uint16_t decode_crc16(std::span<const uint8_t> bytes) {
  uint16_t crc = 0xFFFF;
  const uint8_t *p = bytes.data();
  size_t n = bytes.size();
#if defined(__x86_64__)
  if (n >= 64 && has_pclmul()) return crc16_clmul(p, n);
#endif
  for (; n >= 16; n -= 16, p += 16) {
    uint16_t c = static_cast<uint16_t>(kCrc[15][(crc ^ p[0]) & 0xFF] ^ kCrc[14][(crc >> 8) ^ p[1]]);
    for (size_t k = 2; k < 16; ++k) c ^= kCrc[15 - k][p[k]];
    crc = c;
  }
  for (; n > 0; --n, ++p) crc = static_cast<uint16_t>((crc >> 8) ^ kCrc[0][(crc ^ *p) & 0xFF]);
  return static_cast<uint16_t>(crc ^ 0xFFFF);
}

decode_hdlc_reader::decode_hdlc_reader(const decode_sink &sink)
    : sink_(sink), frame_(new uint8_t[decode_max_frame]) {}

void decode_hdlc_reader::append(const uint8_t *bytes, size_t n) {
  if (too_long_) return;
  if (n > decode_max_frame - len_) {
    too_long_ = true;
    return;
  }
  memcpy(frame_.get() + len_, bytes, n);
  len_ += n;
}

void decode_hdlc_reader::end_frame() {
  if (len_ == 0 && !escaped_ && !too_long_) return;  // a leading or repeated flag
  ++frames_;
  if (too_long_) {
    sink_.damage(decode_damage::long_frame, frames_);
  } else if (escaped_) {
    sink_.damage(decode_damage::bad_escape, frames_);
  } else {
    check_frame({frame_.get(), len_}, frames_, sink_);
  }
  len_ = 0;
  escaped_ = false;
  too_long_ = false;
}

void decode_hdlc_reader::feed(std::span<const uint8_t> bytes) {
  const uint8_t *p = bytes.data();
  const uint8_t *const end = p + bytes.size();
  while (p < end) {
    // Whole runs between flags and escapes are copied at once.
    const auto *flag = static_cast<const uint8_t *>(memchr(p, kFlag, end - p));
    const uint8_t *const stop = flag != nullptr ? flag : end;
    if (escaped_ && p < stop) {
      const uint8_t b = *p++ ^ kEscapeXor;
      append(&b, 1);
      escaped_ = false;
    }
    while (p < stop) {
      const auto *esc = static_cast<const uint8_t *>(memchr(p, kEscape, stop - p));
      const uint8_t *const run_end = esc != nullptr ? esc : stop;
      append(p, run_end - p);
      p = run_end;
      if (esc == nullptr) break;
      ++p;
      if (p == stop) {
        escaped_ = true;
      } else {
        const uint8_t b = *p++ ^ kEscapeXor;
        append(&b, 1);
      }
    }
    if (flag == nullptr) return;
    end_frame();
    p = flag + 1;
  }
}

void decode_hdlc_reader::finish() {
  if (len_ != 0 || escaped_ || too_long_) {
    sink_.damage(too_long_ ? decode_damage::long_frame : decode_damage::truncated, frames_ + 1);
  }
  len_ = 0;
  escaped_ = too_long_ = false;
}

void decode_hdlc(std::span<const uint8_t> stream, const decode_sink &sink) {
  decode_hdlc_reader reader(sink);
  reader.feed(stream);
  reader.finish();
}

decode_text_reader::decode_text_reader(const decode_sink &sink)
    : sink_(sink), quick_(decode_max_packet) {}

void decode_text_reader::carry(const char *text, size_t n) {
  if (too_long_) return;
  if (n > decode_max_line - carried_.size()) {
    too_long_ = true;
    carried_.clear();
    carried_.shrink_to_fit();
    return;
  }
  carried_.append(text, n);
}

void decode_text_reader::line(std::string_view text) {
  ++lines_;
  if (too_long_ || text.size() > decode_max_line) {
    sink_.damage(decode_damage::long_line, lines_);
    return;
  }
  bool event = false;
  uint16_t id = 0;
  switch (decode_text_line(text, &event, &id, &payload_)) {
    case decode_line_kind::item:
      sink_.item({event, id, payload_}, lines_);
      break;
    case decode_line_kind::bad:
      sink_.damage(decode_damage::bad_line, lines_);
      break;
    case decode_line_kind::empty:
      break;
  }
}

const char *decode_text_reader::quick_line(const char *p, const char *end) {
  // Only the usual shape, "<code> <hex>\n" with no other blank: the code is
  // at most six characters, and the hex digits are decoded as they are
  // found, so the line end is where they stop.
  const size_t look = std::min<size_t>(end - p, 7);
  const auto *gap = static_cast<const char *>(memchr(p, ' ', look));
  bool event = false;
  uint16_t id = 0;
  if (gap == nullptr || !parse_code({p, static_cast<size_t>(gap - p)}, &event, &id)) return nullptr;
  const char *const hex = gap + 1;
  const size_t room = std::min<size_t>(end - hex, 2 * decode_max_packet);
  const size_t used = decode_hex_prefix(hex, room, quick_.data());
  if (used == 0 || used == room || hex[used] != '\n') return nullptr;
  ++lines_;
  sink_.item({event, id, {quick_.data(), used / 2}}, lines_);
  return hex + used + 1;
}

void decode_text_reader::feed(std::span<const uint8_t> bytes) {
  const char *p = reinterpret_cast<const char *>(bytes.data());
  const char *const end = p + bytes.size();
  while (p < end) {
    if (carried_.empty() && !too_long_) {
      if (const char *next = quick_line(p, end)) {
        p = next;
        continue;
      }
    }
    const auto *nl = static_cast<const char *>(memchr(p, '\n', end - p));
    if (nl == nullptr) {
      carry(p, end - p);
      return;
    }
    if (carried_.empty() && !too_long_) {
      line({p, static_cast<size_t>(nl - p)});
    } else {
      carry(p, nl - p);
      line(carried_);
      carried_.clear();
      too_long_ = false;
    }
    p = nl + 1;
  }
}

void decode_text_reader::finish() {
  if (!carried_.empty() || too_long_) line(carried_);
  carried_.clear();
  too_long_ = false;
}

void decode_packet(std::span<const uint8_t> packet, size_t where, const decode_sink &sink) {
  if (packet.empty()) {
    sink.damage(decode_damage::short_frame, where);
    return;
  }
  bool sound = true;
  if (packet[0] == kCmdLog) {
    sound = decode_log(packet, where, sink);
  } else if (packet[0] == kCmdEvent) {
    sound = decode_event_report(packet, where, sink);
  } else {
    sink.other(packet[0]);
  }
  if (!sound) sink.damage(decode_damage::bad_packet, where);
}

decode_line_kind decode_text_line(std::string_view line, bool *event, uint16_t *id,
                                  std::vector<uint8_t> *payload) {
  line = trim(line);
  if (line.empty() || line.front() == '#') return decode_line_kind::empty;
  const size_t gap = line.find_first_of(" \t");
  const std::string_view code = line.substr(0, gap);
  const std::string_view hex = gap == std::string_view::npos ? "" : trim(line.substr(gap));

  if (!parse_code(code, event, id)) return decode_line_kind::bad;

  if (hex.size() % 2 != 0) return decode_line_kind::bad;
  payload->resize(hex.size() / 2);
  if (decode_hex_prefix(hex.data(), hex.size(), payload->data()) != hex.size()) {
    return decode_line_kind::bad;
  }
  return decode_line_kind::item;
}

size_t decode_hex_prefix(const char *in, size_t n, uint8_t *out) {
  size_t i = 0;
#if defined(__x86_64__)
  if (n >= 32 && has_avx2()) i = hex_avx2(in, n, out);
#endif
  if constexpr (std::endian::native == std::endian::little) {
    for (; n - i >= 8; i += 8) {
      uint64_t word;
      memcpy(&word, in + i, sizeof word);
      if (!hex8(word, out + i / 2)) break;
    }
  }
  for (; n - i >= 2; i += 2) {
    const uint8_t hi = kHexValue[static_cast<uint8_t>(in[i])];
    const uint8_t lo = kHexValue[static_cast<uint8_t>(in[i + 1])];
    if ((hi | lo) > 0xF) break;
    out[i / 2] = static_cast<uint8_t>(hi << 4 | lo);
  }
  return i;
}

bool decode_looks_like_text(std::span<const uint8_t> head) {
  for (uint8_t b : head) {
    const bool printable = b >= 0x20 && b < 0x7F;
    if (!printable && b != '\n' && b != '\r' && b != '\t') return false;
  }
  return true;
}
