// Builders for golden packets: a payload written field by field from a
// layout (little-endian values at byte or bit positions), and the record bytes
// a parser should pack.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

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
      const int at = bit + i;
      const auto mask = static_cast<uint8_t>(1u << (at % 8));
      if ((value >> i) & 1) {
        b_.at(at / 8) |= mask;
      } else {
        b_.at(at / 8) &= static_cast<uint8_t>(~mask);
      }
    }
    return *this;
  }
  golden_payload &text(size_t at, const std::string &s) {
    for (size_t i = 0; i < s.size(); ++i) b_.at(at + i) = static_cast<uint8_t>(s[i]);
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
