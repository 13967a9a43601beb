// The console's number readers and their quirks. The NV dump's layout is pinned
// by the self-test end-to-end cases (lengths 0, 3, 16, 124, 130, 400).
#include <gtest/gtest.h>

#include <string>

#include "common/velmar_console.h"
#include "support/capture_stdout.h"

namespace {

struct NumberCase {
  const char *text;
  int32_t want;
};

TEST(VelmarStringToInt, DecimalAndHexadecimal) {
  const NumberCase cases[] = {
      {"0X1f", 31},
      {"0x1F", 31},
      {"0x", 0},
      {"-5", -5},
      {"  42", 42},
      {"12ab", 12},
      {"ab", 0},
      {"0x-1", 1},
      {"0x1g", 16},
      {"0x7fffffff", 2147483647},
      {"0x80000000", 2147483647},  // first term clamps
      {"0xFFFFFFFF", -1879048194},
      {"0x123456789", static_cast<int32_t>(2147483647u + 0x23456789u)},  // clamp, then wrap
      {"300", 300},
      {"0", 0},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(velmar_string_to_int(c.text), c.want) << c.text;
  }
}

TEST(VelmarStringToInt, NullIsReportedAndZero) {
  int32_t got = 1;
  std::string out = capture_stdout([&] { got = velmar_string_to_int(nullptr); });
  EXPECT_EQ(got, 0);
  EXPECT_EQ(out, "\ninput is null\n");
  out = capture_stdout([&] { got = velmar_hex_string_to_int(nullptr); });
  EXPECT_EQ(out, "\ninput is null\n");
}

TEST(VelmarHexStringToInt, FiftyDigitsAreRead) {
  // 49 zeros then 1: the digit is inside the table and counts.
  std::string digits(49, '0');
  EXPECT_EQ(velmar_hex_string_to_int((digits + "1").c_str()), 1);
  // Anything past the 50th character is not read.
  EXPECT_EQ(velmar_hex_string_to_int((digits + "01").c_str()), 0);
  EXPECT_EQ(velmar_hex_string_to_int(""), 0);
}

}  // namespace
