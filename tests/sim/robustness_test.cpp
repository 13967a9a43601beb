// The host platform and the simulated modem on a bad day: a modem that cannot
// start, a daemon that vanishes, a state directory that goes wrong.
#include <qmi_client.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/rpk_host.h"
#include "sim_fixture.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim_test {
namespace {

namespace fs = std::filesystem;

const std::string kBuildDir = fs::path(RPK_SIM_TEST_BINARY).parent_path().string();

struct Outcome {
  int status = -1;
  std::string out, err;
};

// Runs `env` with the settings and command line (with `timeout` as the hang
// guard) and collects what it printed.
Outcome run(const std::string &env_and_command, const std::string &scratch) {
  const std::string err_file = scratch + "/stderr.txt";
  Outcome r;
  r.status = sh("env " + env_and_command + " 2>" + err_file, &r.out);
  rpk_host::read_file(err_file, r.err);
  return r;
}

using RobustnessTest = SimTest;

// A host whose modem cannot start ends the command with the reason instead of
// waiting for a service that will never come.
TEST_F(RobustnessTest, AModemThatCannotStartEndsTheCommand) {
  const std::string file = dir_ + "/a-file";
  std::ofstream(file) << "x";
  const std::string long_dir = dir_ + "/" + std::string(rpk_host::kStateDirMax, 'd');
  const std::string rpk = "timeout 60 " + kBuildDir + "/rpk";
  struct Case {
    const char *name;
    std::string env;  // settings for the run (RPK_SIM_DIR is this test's unless set)
    std::string args;
    const char *reason;  // part of the stderr line
  };
  const Case cases[] = {
      {"binary says ok, starts nothing", "RPK_SIM_BIN=/bin/true", "4 1 0 550", "started no daemon"},
      {"binary missing", "RPK_SIM_BIN=" + dir_ + "/none", "4 1 0 550", "No such file"},
      {"binary not executable", "RPK_SIM_BIN=" + file, "4 1 0 550", "Permission denied"},
      {"state directory too long", "RPK_SIM_DIR=" + long_dir, "4 1 0 550", "at most 80"},
      {"state directory is a file", "RPK_SIM_DIR=" + file, "4 1 0 550", "not a directory"},
      {"HOME is a file", "-u RPK_SIM_DIR -u XDG_STATE_HOME HOME=" + file, "4 1 0 550",
       "Not a directory"},
      {"category 8, device path too long", "RPK_SIM_DIR=" + long_dir, "8 AT+CSQ", "at most 80"},
  };
  for (const Case &c : cases) {
    const Outcome r = run(c.env + " RPK_SIM_AUTOSTART=1 " + rpk + " " + c.args, dir_);
    EXPECT_EQ(r.status, rpk_host::kPlatformFailureStatus) << c.name << "\n" << r.err;
    EXPECT_NE(r.err.find(c.reason), std::string::npos) << c.name << "\n" << r.err;
    EXPECT_EQ(r.out.find("get_service_list() returned -2"), std::string::npos) << c.name;
  }
}

// A daemon killed under a process that already used it is started again by
// that process's next look-up.
TEST_F(RobustnessTest, AVanishedDaemonIsStartedAgain) {
  start();
  setenv("RPK_SIM_AUTOSTART", "1", 1);
  setenv("RPK_SIM_BIN", RPK_SIM_TEST_BINARY, 1);
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_client_os_params os{};
  qmi_client_type notifier = nullptr;
  ASSERT_EQ(qmi_client_notifier_init(svc, &os, &notifier), 0);
  const long first = rpk_host::modem_sim_serving_pid();
  ASSERT_GT(first, 0);
  ASSERT_EQ(kill(static_cast<pid_t>(first), SIGKILL), 0);
  for (int i = 0; i < 3000 && rpk_host::modem_sim_serving_pid() == first; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  unsigned n = 0;
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), 0);
  EXPECT_NE(rpk_host::modem_sim_serving_pid(), first);
  qmi_client_release(notifier);
  unsetenv("RPK_SIM_BIN");
  setenv("RPK_SIM_AUTOSTART", "0", 1);
}

// What a daemon finds in its state directory when it starts.
TEST_F(RobustnessTest, StartInAStateDirectoryThatGoesWrong) {
  struct Case {
    const char *name;
    void (*prepare)(const std::string &dir);
    int status;          // of `start`
    const char *reason;  // part of its stderr; "" none expected
    const char *absent;  // a file that must not be there afterwards ("" none)
  };
  const Case cases[] = {
      {"lock file cannot be opened",
       [](const std::string &d) { fs::create_directories(d + "/sim.lock"); }, 1,
       "cannot open the lock file", ""},
      {"no room for the factory image",
       [](const std::string &d) {
         fs::create_directories(d + "/efs/sub0/nv/item_files/modem/velmar/rf_cal_data");
       },
       1, "factory image", "/nv/.factory"},
      {"temporaries of a writer that died",
       [](const std::string &d) {
         fs::create_directories(d + "/nv/sub0");
         std::ofstream(d + "/nv/sub0/550.tmp.4194400") << "half";
         std::ofstream(d + "/properties.tmp.4194400") << "half";
       },
       0, "", "/nv/sub0/550.tmp.4194400"},
  };
  for (const Case &c : cases) {
    const std::string d = dir_ + "/" + std::to_string(&c - cases);
    fs::create_directories(d);
    c.prepare(d);
    const Outcome r =
        run("RPK_SIM_DIR=" + d + " timeout 60 " + RPK_SIM_TEST_BINARY + " start", dir_);
    EXPECT_EQ(r.status, c.status) << c.name << "\n" << r.err;
    EXPECT_NE(r.err.find(c.reason), std::string::npos) << c.name << "\n" << r.err;
    EXPECT_EQ(r.err.find("already running"), std::string::npos) << c.name;
    if (*c.absent != '\0') {
      EXPECT_FALSE(fs::exists(d + c.absent)) << c.name;
    }
    run("RPK_SIM_DIR=" + d + " " + RPK_SIM_TEST_BINARY + " stop", dir_);
  }
  EXPECT_FALSE(fs::exists(dir_ + "/2/properties.tmp.4194400"));
}

// A state directory removed and made again is someone else's: the daemon
// ends and leaves the new directory's files alone.
TEST_F(RobustnessTest, ADaemonWhoseStateDirectoryWasReplacedEnds) {
  start();
  const long pid = rpk_host::modem_sim_serving_pid();
  ASSERT_GT(pid, 0);
  fs::rename(dir_, dir_ + ".old");
  fs::create_directories(dir_);
  std::ofstream(dir_ + "/qmi-ffe4.sock") << "not the daemon's";
  bool ended = false;
  for (int i = 0; i < 3000 && !ended; ++i) {  // hang guard only
    ended = kill(static_cast<pid_t>(pid), 0) != 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(ended);
  EXPECT_TRUE(fs::exists(dir_ + "/qmi-ffe4.sock"));
  std::error_code ec;
  fs::remove_all(dir_ + ".old", ec);
}

}  // namespace
}  // namespace rpk_sim_test
