// A private simulated modem for one test: its own state directory (removed
// afterwards), autostart off, and the daemon stopped at the end.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace rpk_sim_test {

// Runs the simulator's command line with this test's state directory;
// returns its exit status and, when asked, its stdout.
int sim(const std::string &args, std::string *out = nullptr);

class SimTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  void start() { ASSERT_EQ(sim("start"), 0); }
  void stop() { ASSERT_EQ(sim("stop"), 0); }
  // The journal's lines, parsed lazily by the caller.
  std::string journal();

  std::string dir_;
};

}  // namespace rpk_sim_test
