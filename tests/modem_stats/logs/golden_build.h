// Builders for golden packets: a payload written field by field from a
// layout (little-endian values at byte or bit positions), the record bytes a
// parser should pack, and the lines it prints when it makes none.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "modem_stats/logs/golden.h"

class golden_payload {
 public:
  explicit golden_payload(size_t size) : b_(size, 0) {}

  // `width` bytes of `value`, little-endian, at payload byte `at`.
  golden_payload &le(size_t at, uint64_t value, int width) {
    for (int i = 0; i < width; ++i) b_.at(at + i) = static_cast<uint8_t>(value >> (8 * i));
    return *this;
  }
  // `width` bits of `value` at payload bit `bit` (bit k of byte n is bit 8n + k).
  golden_payload &bits(int bit, uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
      uint8_t &b = b_.at((bit + i) / 8);
      const auto mask = static_cast<uint8_t>(1u << ((bit + i) % 8));
      b = static_cast<uint8_t>((value >> i) & 1 ? b | mask : b & ~mask);
    }
    return *this;
  }
  golden_payload &text(size_t at, const std::string &s) {
    for (size_t i = 0; i < s.size(); ++i) le(at + i, static_cast<uint8_t>(s[i]), 1);
    return *this;
  }
  operator std::vector<uint8_t>() const { return b_; }

 private:
  std::vector<uint8_t> b_;
};

class golden_record {
 public:
  golden_record &u(uint64_t value, int width) {
    for (int i = 0; i < width; ++i) b_.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return *this;
  }
  golden_record &u8(uint64_t v) { return u(v, 1); }
  golden_record &u16(uint64_t v) { return u(v, 2); }
  golden_record &u32(uint64_t v) { return u(v, 4); }
  golden_record &f32(float v) {
    uint32_t raw;
    std::memcpy(&raw, &v, sizeof raw);
    return u(raw, 4);
  }
  golden_record &bytes(const std::vector<uint8_t> &v) {
    b_.insert(b_.end(), v.begin(), v.end());
    return *this;
  }
  operator std::vector<uint8_t>() const { return b_; }

 private:
  std::vector<uint8_t> b_;
};

constexpr uint32_t kGoldenNoRecord = 146;

// printf into a string, for the expected lines.
template <typename... A>
std::string golden_fmt(const char *format, A... args) {
  char s[300];
  std::snprintf(s, sizeof s, format, args...);
  return s;
}
inline std::string golden_refused(uint32_t version, const char *name, uint16_t code) {
  return golden_fmt("VERSION_NOT_SUPPORT, version(%u), not_support_num(1), name(%s), id(0x%x)\n",
                    version, name, code);
}
inline std::string golden_invalid(long value, const char *name, uint16_t code) {
  return golden_fmt("DATA_IS_NOT_VALID(%ld), name(%s), id(0x%x)\n", value, name, code);
}

// A log parser's code and the name its messages carry.
inline std::pair<uint16_t, const char *> golden_parser(uint16_t code, const char *what) {
  static std::deque<std::string> names;  // outlive the goldens that point at them
  return {code,
          names.emplace_back(golden_fmt("modem_stats_parse_%04x_diag_log_%s", code, what)).c_str()};
}

// A packet that prints `summary` and is then stopped by the validity gate with
// `value`.
inline modem_stats_golden golden_gated(uint16_t code, const std::string &what,
                                       const std::vector<uint8_t> &payload,
                                       const std::string &summary, long value, const char *name) {
  return {code, what, payload, summary + golden_invalid(value, name, code), kGoldenNoRecord, {}};
}
// A packet a version gate refuses.
inline modem_stats_golden golden_refusal(uint16_t code, const std::string &what,
                                         const std::vector<uint8_t> &payload, uint32_t version,
                                         const char *name) {
  return {code, what, payload, golden_refused(version, name, code), kGoldenNoRecord, {}};
}

// The canned 108-byte packet of the category-7 self-test; its first byte,
// read as a version, is 9.
inline std::vector<uint8_t> golden_selftest_payload() {
  return golden_payload(108)
      .le(0, 0x00040009, 4)
      .le(15, 0x01, 1)
      .le(18, 0xff, 1)
      .le(21, 0x0108, 2)
      .le(25, 0x01, 1);
}
