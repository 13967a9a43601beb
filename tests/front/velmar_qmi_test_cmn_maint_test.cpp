// Category 5: the restart's wait, whose negative value sleeps until a signal
// ends it (a wait of 0 is pinned end to end).
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "front/velmar_handlers.h"
#include "front/velmar_qmi_test_cmn.h"
#include "platform/host/link/rpk_host.h"

namespace {

struct ChildRun {
  std::string out;
  int exit_status = -1;
  bool slept = false;  // still running a while after announcing its wait
};

extern "C" void ignore_signal(int) {}

// Runs body in a child whose RPK_SIM_DIR is `state` and whose stdout is a
// pipe. Once the child announces its wait, it is sent SIGUSR1 until it ends
// (it may not be asleep yet when the first one arrives). The child's exit
// status is what body returns, modulo 256.
ChildRun run_with_interrupted_wait(const std::string &state, int (*body)()) {
  int fds[2];
  if (pipe(fds) != 0) return {};
  const pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    dup2(fds[1], STDOUT_FILENO);
    close(fds[1]);
    setenv("RPK_SIM_DIR", state.c_str(), 1);
    struct sigaction sa {};
    sa.sa_handler = ignore_signal;  // no SA_RESTART: the sleep ends early
    sigaction(SIGUSR1, &sa, nullptr);
    const int rc = body();
    fflush(stdout);
    _exit(rc & 0xFF);
  }
  close(fds[1]);
  ChildRun run;
  bool announced = false;
  int idle_rounds = 0;
  for (;;) {
    pollfd p{fds[0], POLLIN, 0};
    const int ready = poll(&p, 1, 10);
    if (ready > 0) {
      char buf[4096];
      const ssize_t n = read(fds[0], buf, sizeof buf);
      if (n <= 0) break;
      run.out.append(buf, static_cast<size_t>(n));
      continue;
    }
    if (!announced && run.out.find("start to wait") != std::string::npos) announced = true;
    if (!announced) continue;
    // Ten quiet rounds after the announcement: it is asleep, not done.
    if (++idle_rounds == 10) run.slept = true;
    if (idle_rounds >= 10) kill(pid, SIGUSR1);
    if (idle_rounds > 1000) {  // the signal did not end the wait: give up
      kill(pid, SIGKILL);
      ADD_FAILURE() << "the wait did not end on a signal";
    }
  }
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  run.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

TEST(VelmarCmnTestSsrWaitS, WaitsAsThePropertySaysANegativeValueUntilASignal) {
  const struct {
    const char *wait_prop;  // nullptr: unset
    int (*body)();
    std::string out;
    int exit_status;
    bool sleeps;
    std::string properties_after;
  } cases[] = {
      // A negative wait is taken as a huge unsigned pause before its sign is
      // seen; the restart then stops with restarts left switched on.
      {"-1",
       [] {
         velmar_cmn_test_modem_ssr();
         return 0;
       },
       "Will trigger SSR of modem, the current state: ALL_DISABLE\n"
       "need to open ssr\n"
       "ssr wait_s = -1\n"
       "modem ssr start to wait -1s to init\n"
       "modem ssr end to wait -1s to init\n"
       "wait_s < 0, ssr is stoped\n",
       0, true, "persist.radio.ssr_wait_s=-1\npersist.vendor.ssr.restart_level=ALL_ENABLE\n"},
      {"-1", velmar_cmn_test_ssr_wait_s,
       "ssr wait_s = -1\nmodem ssr start to wait -1s to init\nmodem ssr end to wait -1s to init\n",
       255, true, "persist.radio.ssr_wait_s=-1\n"},
      {nullptr, velmar_cmn_test_ssr_wait_s,
       "ssr wait_s = 3\nmodem ssr start to wait 3s to init\nmodem ssr end to wait 3s to init\n", 3,
       true, ""},
  };
  for (const auto &c : cases) {
    const std::string label = c.wait_prop != nullptr ? c.wait_prop : "unset";
    char tmpl[] = "/tmp/rpk-cmn-wait-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    const std::string state = tmpl;
    if (c.wait_prop != nullptr) {
      std::ofstream(state + "/properties") << "persist.radio.ssr_wait_s=" << c.wait_prop << "\n";
    }
    const ChildRun run = run_with_interrupted_wait(state, c.body);
    EXPECT_EQ(run.out, c.out) << label;
    EXPECT_EQ(run.exit_status, c.exit_status) << label;
    EXPECT_EQ(run.slept, c.sleeps) << label;
    std::string properties;
    rpk_host::read_file(state + "/properties", properties);
    EXPECT_EQ(properties, c.properties_after) << label;
    std::filesystem::remove_all(state);
  }
}

}  // namespace
