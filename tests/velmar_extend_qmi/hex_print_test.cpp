// The hex line's refusals. Lines of 1 to 4096 bytes are pinned end to end by
// the diag cases, whose requests and answers each print one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture_stdout.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

namespace {

std::string hex_line(const uint8_t *data, uint32_t len) {
  return mask_log_lines(capture_stdout([&] { velmar_print_data_with_hex(data, len); }));
}

TEST(PrintDataWithHex, RefusesNoDataAndMoreThanALine) {
  const std::vector<uint8_t> bytes(4097, 0xab);
  const std::string fn = "RIL[velmar_print_data_with_hex:N]: print_data_with_hex, ";
  EXPECT_EQ(hex_line(bytes.data(), 0), fn + "invalid data len(0)\n");
  EXPECT_EQ(hex_line(bytes.data(), 4097), fn + "invalid data len(4097)\n");
  EXPECT_EQ(hex_line(nullptr, 3), fn + "data is null\n");
}

}  // namespace
