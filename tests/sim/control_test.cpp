// The simulator's control surface as tests and shell steps use it: service
// downs, scenario files, the command line's refusals. (Autostart runs in
// every end-to-end case.)
#include <qmi_client.h>

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "platform/host/link/modem_sim_link.h"
#include "sim_fixture.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim_test {
namespace {

using ControlTest = SimTest;

TEST_F(ControlTest, ALaterDownOutlastsAnEarlierTimedOne) {
  start();
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  unsigned n = 0;
  ASSERT_EQ(sim("fault down 200"), 0);
  ASSERT_EQ(sim("fault down --service extend"), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), QMI_SERVICE_ERR);
  std::string out;
  ASSERT_EQ(sim("status", &out), 0);
  EXPECT_EQ(nlohmann::json::parse(out)["services"][1]["up"], true);  // sar came back
  ASSERT_EQ(sim("fault up"), 0);
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), 0);
}

TEST_F(ControlTest, AScenarioSeedsTheModemAtStart) {
  const std::string file = dir_ + "/scenario.json";
  std::ofstream(file) << R"({
    "settings": {"sar_state": 3, "stats.main.g_pk_version_not_support_num": 2},
    "nv": [{"sub": 1, "item": 6858, "hex": "64 65"}, {"sub": 0, "item": 550, "delete": true}],
    "efs": [{"path": "/nv/item_files/modem/velmar/ssr_update_count", "hex": "02000000"},
            {"sub": 1, "path": "/a/b", "text": "hi"}],
    "properties": {"persist.radio.ssr_wait_s": "0"},
    "faults": [{"kind": "chunk", "size": 100}, {"kind": "delay", "ms": 10, "count": 2},
               {"kind": "refuse_init", "count": 1}]
  })";
  ASSERT_EQ(sim("start --scenario " + file), 0);
  struct Case {
    const char *command;
    int status;
    const char *out;
  };
  const Case cases[] = {
      {"nv get 1 6858", 0, "64 65\n"},
      {"nv get 0 550", 1, ""},
      {"efs get 0 /nv/item_files/modem/velmar/ssr_update_count", 0, "02 00 00 00\n"},
      {"efs get 1 /a/b", 0, "68 69\n"},
      {"prop get persist.radio.ssr_wait_s", 0, "0\n"},
  };
  for (const Case &c : cases) {
    std::string out;
    EXPECT_EQ(sim(c.command, &out), c.status) << c.command;
    EXPECT_EQ(out, c.out) << c.command;
  }
  std::string out;
  ASSERT_EQ(sim("status", &out), 0);
  auto status = nlohmann::json::parse(out);
  EXPECT_EQ(status["efs_chunk"], 100);
  EXPECT_EQ(status["faults"].size(), 2u);
  EXPECT_EQ(status["settings"]["sar_state"], 3);
  EXPECT_EQ(status["settings"]["stats"]["main.g_pk_version_not_support_num"], 2);
  ASSERT_EQ(sim("reset"), 0);
  out.clear();
  EXPECT_EQ(sim("nv get 0 550", &out), 0);
  EXPECT_EQ(out, "08 3a 65 39 08 53 46 83 90\n");
}

TEST_F(ControlTest, RefusalsLeaveNoDaemonBehind) {
  const std::string file = dir_ + "/bad.json";
  std::ofstream(file) << R"({"faults": [{"kind": "explode"}]})";
  EXPECT_EQ(sim("start --scenario " + file + " 2>/dev/null"), 1);
  EXPECT_FALSE(rpk_host::modem_sim_running());
  struct Case {
    const char *command;
    int status;
  };
  const Case cases[] = {
      {"fault delay 5", 1},  // needs the daemon, autostart is off
      {"nv set 0 7233 01", 1},
      {"nv set 2 10 01", 1},
      {"nv set 0 10 0g", 1},
      {"efs set 0 ../x 01", 1},
      {"set no_such_setting 1", 1},
      {"set stats.main.no_such_counter 1", 1},
      {"fault", 2},
      {"bogus", 2},
      {"status", 3},
      {"stop", 0},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(sim(std::string(c.command) + " 2>/dev/null >/dev/null"), c.status) << c.command;
  }
}

}  // namespace
}  // namespace rpk_sim_test
