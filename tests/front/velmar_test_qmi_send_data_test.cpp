// Category 6 command lines refused before any request (the qmi_id range
// refusals are pinned end to end): the exact console text, help section
// included.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/run_handler.h"

namespace {

struct CmdCase {
  std::vector<std::string> args;
  std::string before_help;  // all that is printed before the help section
};

TEST(VelmarTestQmiSendDataDo, RefusalsPrintANoteAndTheSection) {
  const CmdCase cases[] = {
      {{"rpk", "6", "2"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n"},
      {{"rpk", "7", "2", "1"},
       "\nnote: the first parameters should be 6, Pls refer to the following cmd:\n"},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_qmi_send_data_do, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(6)) << testing::PrintToString(c.args);
  }
}

}  // namespace
