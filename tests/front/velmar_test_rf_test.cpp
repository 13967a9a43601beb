// Category 3: the command lines refused before any request (exact console
// text, help section included) and how the set operations read their values.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/fake_qmi_service.h"
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

uint64_t field(const velmar_extend_qmi_msg_v01 &env, size_t at, size_t width) {
  uint64_t v = 0;
  memcpy(&v, env.data + at, width);
  return v;
}

// Values are read as atoi and strtoul (base 0) read them; the wire records of
// the simulated modem's cases are in tests/e2e/rf.
TEST(VelmarTestRfDo, SetRecordsTakeTheValuesAsTyped) {
  const struct {
    std::vector<std::string> args;
    size_t at, width;
    uint64_t want;
  } cases[] = {
      {{"rpk", "3", "0", "-1", "7x"}, 8, 4, 2},  // count
      {{"rpk", "3", "0", "-1", "7x"}, 12, 4, 0xFFFFFFFF},
      {{"rpk", "3", "0", "-1", "7x"}, 16, 4, 7},
      {{"rpk", "3", "3", "1", "0", "017"}, 16, 8, 15},  // octal
      {{"rpk", "3", "3", "1x", "4", "0x10"}, 8, 4, 1},
      {{"rpk", "3", "3", "1", "9", "0x10"}, 12, 4, 9},  // no range check
  };
  for (const auto &c : cases) {
    fake_qmi_service modem(0);
    std::string out;
    EXPECT_EQ(run_handler(velmar_test_rf_do, c.args, &out), 0);
    ASSERT_EQ(modem.requests().size(), 1u);
    const auto &env = modem.requests()[0].envelope;
    EXPECT_EQ(env.request_id, 4u);
    EXPECT_EQ(env.data_len, 512u);
    EXPECT_EQ(field(env, c.at, c.width), c.want) << testing::PrintToString(c.args) << " @" << c.at;
  }
}

}  // namespace
