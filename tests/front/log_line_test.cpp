// A log line's two shapes: the console's and the Android log's, which names
// this file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "common/velmar_log.h"
#include "platform/host/link/rpk_host.h"
#include "support/capture_stdout.h"

namespace {

TEST(LogLine, ConsoleAndAndroidShapes) {
  const std::string out = capture_stdout([] {
    VELMAR_LOGF("velmar_nv_read", "buf_len: %d", 365);
    VELMAR_LOGF_LN("velmar_tail", "tail %s", "x");
  });
  EXPECT_EQ(mask_log_lines(out), "RIL[velmar_nv_read:N]: buf_len: 365RIL[velmar_tail:N]: tail x\n");

  rpk_host::flush_log();
  std::ifstream log(std::string(getenv("RPK_SIM_DIR")) + "/logcat.txt");
  std::string line, found;
  while (std::getline(log, line)) {
    if (line.find("buf_len: 365") != std::string::npos) found = line;
  }
  // "<time> <pid> <tid> D RPK_SHELL: RIL[lib][<file>:<line>] <function>: <message>"
  EXPECT_NE(found.find(" D RPK_SHELL: RIL[lib][log_line_test.cpp:"), std::string::npos) << found;
  EXPECT_TRUE(found.ends_with("] velmar_nv_read: buf_len: 365")) << found;
}

}  // namespace
