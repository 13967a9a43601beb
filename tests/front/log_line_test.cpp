#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "common/velmar_log.h"
#include "front/velmar_help.h"
#include "platform/host/link/rpk_host.h"
#include "support/capture_stdout.h"

namespace {

constexpr const char *kSectionHeaders[] = {
    "1: nv option cmd\n",          "3: rf option cmd\n",
    "4: nvefs option cmd: \n",     "5: cmn option cmd: \n",
    "6: velmar qmi send_data\n",   "7: velmar modem stats test\n",
    "8: velmar at command test\n", "9: velmar modem stats qmi test\n",
};
constexpr int kSectionCategory[] = {1, 3, 4, 5, 6, 7, 8, 9};

TEST(ShowHelp, SelectsOnlyTheAskedSection) {
  const uint32_t ns[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 16, 0x80000000u, 0xFFFFFFFFu};
  for (uint32_t n : ns) {
    const std::string out = capture_stdout([n] { show_help(n); });
    EXPECT_EQ(out.rfind("\n=========== blew: radio_probe_kit(rpk) cmd help ", 0), 0u) << n;
    EXPECT_TRUE(
        out.ends_with("=========== above: radio_probe_kit(rpk) cmd help "
                      "=======================================================\n\n"))
        << n;
    for (size_t s = 0; s < std::size(kSectionHeaders); ++s) {
      const bool want = n == 0 || n == static_cast<uint32_t>(kSectionCategory[s]);
      EXPECT_EQ(out.find(kSectionHeaders[s]) != std::string::npos, want)
          << "n=" << n << " section " << kSectionCategory[s];
    }
  }
}

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
  EXPECT_NE(found.find(" D RPK_SHELL: RIL[lib][help_test.cpp:"), std::string::npos) << found;
  EXPECT_TRUE(found.ends_with("] velmar_nv_read: buf_len: 365")) << found;
}

}  // namespace
