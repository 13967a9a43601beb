#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "support/capture_stdout.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

namespace {

std::string hex_line(const uint8_t *data, uint32_t len) {
  return mask_log_lines(capture_stdout([&] { velmar_print_data_with_hex(data, len); }));
}

TEST(PrintDataWithHex, OneLineOfUpperCaseHex) {
  std::vector<uint8_t> bytes(4097, 0xab);
  const uint8_t head[] = {0x4b, 0x04, 0x0e, 0x00, 0xff};
  std::copy(std::begin(head), std::end(head), bytes.begin());
  std::string all = "4B 04 0E 00 FF";
  for (int i = 5; i < 4096; ++i) all += " AB";  // the longest line has room for all of them
  const std::string fn = "RIL[velmar_print_data_with_hex:N]: ";
  const struct {
    uint32_t len;
    std::string want;
  } cases[] = {
      {1, fn + "data hex show, len(1), data: 4B\n"},
      {5, fn + "data hex show, len(5), data: 4B 04 0E 00 FF\n"},
      {4096, fn + "data hex show, len(4096), data: " + all + "\n"},
      {0, fn + "print_data_with_hex, invalid data len(0)\n"},
      {4097, fn + "print_data_with_hex, invalid data len(4097)\n"},
  };
  for (const auto &c : cases) EXPECT_EQ(hex_line(bytes.data(), c.len), c.want) << c.len;
  EXPECT_EQ(hex_line(nullptr, 3), fn + "print_data_with_hex, data is null\n");
}

}  // namespace
