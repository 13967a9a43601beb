#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture_stdout.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

namespace {

std::string hex_line(const uint8_t *data, uint32_t len) {
  return mask_log_lines(capture_stdout([&] { velmar_print_data_with_hex(data, len); }));
}

TEST(PrintDataWithHex, OneLineOfUpperCaseHex) {
  const uint8_t bytes[] = {0x4b, 0x04, 0x0e, 0x00, 0xff};
  const struct {
    uint32_t len;
    const char *want;
  } cases[] = {
      {1, "RIL[velmar_print_data_with_hex:N]: data hex show, len(1), data: 4B\n"},
      {5, "RIL[velmar_print_data_with_hex:N]: data hex show, len(5), data: 4B 04 0E 00 FF\n"},
      {0, "RIL[velmar_print_data_with_hex:N]: print_data_with_hex, invalid data len(0)\n"},
      {4097, "RIL[velmar_print_data_with_hex:N]: print_data_with_hex, invalid data len(4097)\n"},
  };
  for (const auto &c : cases) EXPECT_EQ(hex_line(bytes, c.len), c.want) << c.len;
  EXPECT_EQ(hex_line(nullptr, 3),
            "RIL[velmar_print_data_with_hex:N]: print_data_with_hex, data is null\n");
}

TEST(PrintDataWithHex, FullLengthFitsTheLine) {
  std::vector<uint8_t> big(4096, 0xAB);
  const std::string out = hex_line(big.data(), 4096);
  std::string want = "AB";
  for (int i = 1; i < 4096; ++i) want += " AB";
  EXPECT_EQ(out,
            "RIL[velmar_print_data_with_hex:N]: data hex show, len(4096), data: " + want + "\n");
}

}  // namespace
