#include "sim_fixture.h"

#include <stdlib.h>

#include <cstdio>
#include <filesystem>

#include "rpk_host.h"

namespace rpk_sim_test {

int sim(const std::string &args, std::string *out) {
  const std::string cmd = std::string(RPK_SIM_TEST_BINARY) + " " + args;
  FILE *p = popen(cmd.c_str(), "r");
  if (p == nullptr) return -1;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) {
    if (out != nullptr) out->append(buf, n);
  }
  int status = pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void SimTest::SetUp() {
  char tmpl[] = "/tmp/rpk-sim-test-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  dir_ = tmpl;
  setenv("RPK_SIM_DIR", dir_.c_str(), 1);
  setenv("RPK_SIM_AUTOSTART", "0", 1);
  unsetenv("RPK_SIM_SCENARIO");
}

void SimTest::TearDown() {
  sim("stop");
  // A sanitizer build's daemon reports into its log, out of the test's sight.
  std::string log;
  rpk_host::read_file(dir_ + "/sim.log", log);
  EXPECT_EQ(log.find("Sanitizer"), std::string::npos) << log;
  EXPECT_EQ(log.find("runtime error"), std::string::npos) << log;
  std::error_code ec;
  std::filesystem::remove_all(dir_, ec);
}

std::string SimTest::journal() {
  std::string text;
  rpk_host::read_file(dir_ + "/journal.jsonl", text);
  return text;
}

}  // namespace rpk_sim_test
