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

TEST(DumpData, LayoutAndQuirks) {
  // Byte i holds 0x20 + i: a blank first, printable after.
  for (size_t i = 0; i < VELMAR_NV_DATA_BUF_SIZE; ++i) {
    g_nv_data_buf[i] = static_cast<uint8_t>(0x20 + i % 0x60);
  }
  const std::string line16 = "20 21 22 23 24 25 26 27 28 29 2a 2b 2c 2d 2e 2f ";
  const struct {
    uint32_t length;
    std::string want;
  } cases[] = {
      {0, "\n"},
      {static_cast<uint32_t>(-1), "\n"},
      {3, "20 21 22 " + std::string(42, ' ') + "  !\n\n"},
      // A multiple of 16: the last line is padded whole and has no text column.
      {16, line16 + std::string(51, ' ') + "\n\n"},
      // One full line (text column shifted one byte left), then a one-byte line.
      {17, line16 + "     !\"#$%&'()*+,-.\n30 " + std::string(48, ' ') + "/\n\n"},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(capture_stdout([&] { dump_data(c.length); }), c.want) << "length " << c.length;
  }
}

}  // namespace
