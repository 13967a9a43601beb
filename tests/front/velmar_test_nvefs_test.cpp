// Category 4 command lines that are refused before any request: the
// exact console text, help section included.
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

TEST(VelmarTestNvefsDo, RefusalsPrintANoteAndTheSection) {
  const std::string argc_error = "\nnote: Error happen! error_code(268431370)\n";
  const std::string need5 = "\nnote: need 5 inputs, Pls refer to the following cmd:\n";
  const std::string few_inputs = "\nnote: Too few inputs, Pls refer to the following cmd:\n";
  const std::string few = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
  const std::string invalid =
      "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";
  const CmdCase cases[] = {
      {{"rpk"}, few},
      {{"rpk", "4"}, few},
      {{"rpk", "5", "1"},
       "\nnote: the first parameters should be 4, Pls refer to the following "
       "cmd:\n"},
      {{"rpk", "4abc", "0"}, invalid},
      {{"rpk", "4", "7"}, invalid},
      {{"rpk", "4", "x"}, invalid},
      {{"rpk", "4", "1", "0"}, need5 + argc_error},
      {{"rpk", "4", "1", "0", "550", "1"}, need5 + argc_error},
      {{"rpk", "4", "2", "0", "550"}, few_inputs + argc_error},
      {{"rpk", "4", "3", "0"}, need5 + argc_error},
      {{"rpk", "4", "4", "0"}, need5 + argc_error},
      {{"rpk", "4", "5", "0", "/f"}, few_inputs + argc_error},
      {{"rpk", "4", "6", "0", "/f", "1"}, need5 + argc_error},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_nvefs_do, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(4)) << testing::PrintToString(c.args);
  }
}

}  // namespace
