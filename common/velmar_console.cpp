#include "common/velmar_console.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

uint8_t g_nv_data_buf[VELMAR_NV_DATA_BUF_SIZE];

namespace {

constexpr size_t kHexDigitsMax = 50;

int32_t hex_digit_value(char c) {
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  const char one[2] = {c, '\0'};
  return atoi(one);  // '0'..'9' give their value, anything else 0
}

int32_t clamp_to_int32(double v) {
  if (v >= static_cast<double>(std::numeric_limits<int32_t>::max())) {
    return std::numeric_limits<int32_t>::max();
  }
  if (v <= static_cast<double>(std::numeric_limits<int32_t>::min())) {
    return std::numeric_limits<int32_t>::min();
  }
  return static_cast<int32_t>(v);  // truncates toward zero
}

}  // namespace

int32_t velmar_hex_string_to_int(const char *digits) {
  if (digits == nullptr) {
    puts("\ninput is null");
    return 0;
  }
  std::array<int32_t, kHexDigitsMax> value{};
  const size_t n = strnlen(digits, kHexDigitsMax);
  for (size_t i = 0; i < n; ++i) value[i] = hex_digit_value(digits[i]);
  uint32_t sum = 0;  // wraps like the 32-bit accumulator it stands for
  for (size_t i = 0; i < n; ++i) {
    double term = value[i] * exp2(4.0 * static_cast<double>(n - 1 - i));
    sum += static_cast<uint32_t>(clamp_to_int32(term));
  }
  return static_cast<int32_t>(sum);
}

int32_t velmar_string_to_int(const char *text) {
  if (text == nullptr) {
    puts("\ninput is null");
    return 0;
  }
  if (text[0] == '0' && (text[1] | 0x20) == 'x') return velmar_hex_string_to_int(text + 2);
  return atoi(text);
}

void velmar_print_hex_bytes(const uint8_t *data, uint32_t len) {
  for (uint32_t i = 0; i < len; ++i) printf(" %02X", data[i]);
  putchar('\n');
}

void dump_data(uint32_t length) {
  const int32_t len =
      std::min(static_cast<int32_t>(length), static_cast<int32_t>(VELMAR_NV_DATA_BUF_SIZE));
  if (len < 1) {
    putchar('\n');
    return;
  }
  for (int32_t i = 0; i < len; ++i) {
    printf("%02x ", g_nv_data_buf[i]);
    const bool last = (i == len - 1);
    if (!last && (i + 1) % 16 != 0) continue;
    // A last line holds len % 16 bytes: 0 when len is a multiple of 16, which
    // pads a whole line and leaves its text column out.
    const int32_t count = last ? len % 16 : 16;
    for (int32_t pad = count; last && pad < 16; ++pad) printf("   ");
    printf("   ");
    // The text column starts one byte before its line.
    const int32_t first = i - i % 16 - 1;
    for (int32_t k = 0; k < count; ++k) {
      const int32_t at = first + k;
      const uint8_t c = at >= 0 ? g_nv_data_buf[at] : ' ';
      putchar(c < 0x21 || c > 0x7E ? ' ' : c);
    }
    putchar('\n');
  }
  putchar('\n');
}
