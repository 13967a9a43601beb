// Command lines each category refuses before any request: the exact console
// text, which ends with the category's help section.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "front/velmar_test_dispatch.h"
#include "support/run_handler.h"

namespace {

std::string note(const std::string &what) {
  return "\nnote: " + what + ", Pls refer to the following cmd:\n";
}
std::string need(int n) { return note("need " + std::to_string(n) + " inputs"); }
std::string first(int n) { return note("the first parameters should be " + std::to_string(n)); }
std::string cmd_error(const char *op) {
  return note(std::string("Cmd error, should be: rpk 3 ") + op + " ");
}

TEST(CategoryRefusals, PrintTheirLinesAndTheHelpSection) {
  const std::string argc_error = "\nnote: Error happen! error_code(268431370)\n";
  const std::string few = note("Too few parameters");
  const std::string few_inputs = note("Too few inputs");
  const std::string invalid = note("the second parameters is invalid");
  const std::string nv_few = "There are no enough parameters!\n";
  const std::string tx_set = "velmar_rf_tx_test_set, argc(";
  const std::string query = "velmar_cmn_card_status_query\n";
  const std::string get = "velmar_cmn_card_status_get\n";
  const std::string set = "velmar_cmn_card_status_set\n";
  const std::string type = "velmar_cmn_card_type_query\n";
  const struct {
    int32_t (*handler)(int, char **);
    uint32_t help;  // the section shown
    std::vector<std::string> args;
    std::string before_help;
  } cases[] = {
      {velmar_main, 1, {"rpk", "1"}, nv_few},
      {velmar_main, 1, {"rpk", "1", "4"}, nv_few},
      {velmar_main, 1, {"rpk", "1", "4", "123456"}, "invalid nv id!\n"},
      {velmar_main, 1, {"rpk", "1", "5"}, "cmd:5 not supported \n"},
      {velmar_main, 1, {"rpk", "1", "x2"}, "cmd:x2 not supported \n"},
      {velmar_main, 1, {"rpk", "1", ""}, "cmd: not supported \n"},
      // main routes "01" to category 1 by atoi; the handler wants a leading '1'.
      {velmar_main, 0, {"rpk", "01", "1"}, "cmd not support \n"},

      {velmar_test_rf_do, 3, {"rpk"}, few},
      {velmar_test_rf_do, 3, {"rpk", "3"}, few},
      {velmar_test_rf_do, 3, {"rpk", "4", "1"}, first(3)},
      {velmar_test_rf_do, 3, {"rpk", "3", "6"}, invalid},
      {velmar_test_rf_do, 3, {"rpk", "3", "-1"}, invalid},
      {velmar_test_rf_do,
       3,
       {"rpk", "3", "1", "x"},
       "velmar_gpio_test_get\n" + cmd_error("1") + argc_error},
      {velmar_test_rf_do,
       3,
       {"rpk", "3", "2", "x"},
       "velmar_gpio_test_closed\n" + cmd_error("2") + argc_error},
      {velmar_test_rf_do,
       3,
       {"rpk", "3", "4", "x"},
       "velmar_rf_tx_test_get\n" + cmd_error("4") + argc_error},
      {velmar_test_rf_do,
       3,
       {"rpk", "3", "5", "x", "y"},
       "velmar_rf_tx_test_closed\n" + cmd_error("5") + argc_error},
      {velmar_test_rf_do, 3, {"rpk", "3", "3", "1", "4"}, tx_set + "5)\n" + need(5) + argc_error},
      {velmar_test_rf_do,
       3,
       {"rpk", "3", "3", "1", "4", "3", "9"},
       tx_set + "7)\n" + need(5) + argc_error},

      {velmar_test_nvefs_do, 4, {"rpk"}, few},
      {velmar_test_nvefs_do, 4, {"rpk", "4"}, few},
      {velmar_test_nvefs_do, 4, {"rpk", "5", "1"}, first(4)},
      {velmar_test_nvefs_do, 4, {"rpk", "4abc", "0"}, invalid},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "7"}, invalid},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "x"}, invalid},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "1", "0"}, need(5) + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "1", "0", "550", "1"}, need(5) + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "2", "0", "550"}, few_inputs + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "3", "0"}, need(5) + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "4", "0"}, need(5) + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "5", "0", "/f"}, few_inputs + argc_error},
      {velmar_test_nvefs_do, 4, {"rpk", "4", "6", "0", "/f", "1"}, need(5) + argc_error},

      {velmar_test_cmn_do, 5, {"rpk"}, few},
      {velmar_test_cmn_do, 5, {"rpk", "5"}, few},
      {velmar_test_cmn_do, 5, {"rpk", "4", "1"}, first(5)},
      {velmar_test_cmn_do, 5, {"rpk", "5", "9"}, invalid},
      {velmar_test_cmn_do, 5, {"rpk", "5abc", "9"}, invalid},
      {velmar_test_cmn_do, 5, {"rpk", "5", "-1"}, invalid},
      {velmar_test_cmn_do, 5, {"rpk", "5", "1", "0"}, query + need(3) + argc_error},
      {velmar_test_cmn_do, 5, {"rpk", "5", "2"}, get + need(4) + argc_error},
      {velmar_test_cmn_do, 5, {"rpk", "5", "2", "0", "1"}, get + need(4) + argc_error},
      {velmar_test_cmn_do, 5, {"rpk", "5", "3", "1", "0"}, set + need(6) + argc_error},
      {velmar_test_cmn_do, 5, {"rpk", "5", "3", "1", "0", "1", "1"}, set + need(6) + argc_error},
      {velmar_test_cmn_do, 5, {"rpk", "5", "4", "x"}, type + need(3) + argc_error},

      {velmar_test_qmi_send_data_do, 6, {"rpk", "6", "2"}, few},
      {velmar_test_qmi_send_data_do, 6, {"rpk", "7", "2", "1"}, first(6)},
      // "rpk 9 0" is pinned end to end; main never hands category 9 an 8.
      {velmar_test_qmi_modem_stats_do, 9, {"rpk", "8", "0", "0"}, first(9)},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(c.handler, c.args, &out);
    EXPECT_EQ(out, c.before_help + help_text(c.help))
        << c.help << " " << testing::PrintToString(c.args);
  }
}

}  // namespace
