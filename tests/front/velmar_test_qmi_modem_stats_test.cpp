// Category 9 without a modem to ask: the refusals that come before the
// session, and a session whose client cannot open (the modem's answers are
// pinned end to end).
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/run_handler.h"

namespace {

TEST(VelmarTestQmiModemStatsDo, RefusalsComeBeforeAnySession) {
  struct Case {
    std::vector<std::string> args;
    std::string out;
  };
  const Case cases[] = {
      {{"rpk", "9", "0"},
       "\nnote: Too few parameters, Pls refer to the following cmd:\n" + help_text(9)},
      {{"rpk", "8", "0", "0"},
       "\nnote: the first parameters should be 9, Pls refer to the following cmd:\n" +
           help_text(9)},
  };
  for (const auto &c : cases) {
    std::string out;
    run_handler(velmar_test_qmi_modem_stats_do, c.args, &out);
    EXPECT_EQ(out, c.out) << testing::PrintToString(c.args);
  }
}

TEST(VelmarTestQmiModemStatsDo, NoModemLeavesTheClientAtMinusOneAndAsksNothing) {
  char tmpl[] = "/tmp/rpk-cat9-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  setenv("RPK_SIM_DIR", tmpl, 1);
  setenv("RPK_SIM_AUTOSTART", "0", 1);
  std::string out;
  EXPECT_EQ(run_handler(velmar_test_qmi_modem_stats_do, {"rpk", "9", "51", "1"}, &out), 0);
  EXPECT_EQ(out,
            "modem_api_set_tessera_feature_status, start fail, result = -1\n"
            "opt = 51, sub = 1, g_tessera_client_id = -1\n"
            "tessera qmi is not yet inited\n");
  std::filesystem::remove_all(tmpl);
}

}  // namespace
