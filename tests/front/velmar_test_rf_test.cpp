// Category 3 command lines refused before any request: the exact console
// text, help section included.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/run_handler.h"

namespace {

struct CmdCase {
  std::vector<std::string> args;
  std::string before_help;
};

std::string cmd_error(const char *op) {
  return std::string("\nnote: Cmd error, should be: rpk 3 ") + op +
         " , Pls refer to the following cmd:\n";
}

TEST(VelmarTestRfDo, RefusalsPrintANoteAndTheSection) {
  const std::string argc_error = "\nnote: Error happen! error_code(268431370)\n";
  const std::string few = "\nnote: Too few parameters, Pls refer to the following cmd:\n";
  const std::string invalid =
      "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n";
  const std::string tx_set = "velmar_rf_tx_test_set, argc(";
  const std::string need5 = "\nnote: need 5 inputs, Pls refer to the following cmd:\n";
  const CmdCase cases[] = {
      {{"rpk"}, few},
      {{"rpk", "3"}, few},
      {{"rpk", "4", "1"},
       "\nnote: the first parameters should be 3, Pls refer to the following cmd:\n"},
      {{"rpk", "3", "6"}, invalid},
      {{"rpk", "3", "-1"}, invalid},
      {{"rpk", "3", "1", "x"}, "velmar_gpio_test_get\n" + cmd_error("1") + argc_error},
      {{"rpk", "3", "2", "x"}, "velmar_gpio_test_closed\n" + cmd_error("2") + argc_error},
      {{"rpk", "3", "4", "x"}, "velmar_rf_tx_test_get\n" + cmd_error("4") + argc_error},
      {{"rpk", "3", "5", "x", "y"}, "velmar_rf_tx_test_closed\n" + cmd_error("5") + argc_error},
      {{"rpk", "3", "3", "1", "4"}, tx_set + "5)\n" + need5 + argc_error},
      {{"rpk", "3", "3", "1", "4", "3", "9"}, tx_set + "7)\n" + need5 + argc_error},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_rf_do, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(3)) << testing::PrintToString(c.args);
  }
}

}  // namespace
