#include "sim_fixture.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "platform/host/link/rpk_host.h"

namespace rpk_sim_test {

void put(Record &r, size_t at, uint64_t v, int n) {
  for (int i = 0; i < n; ++i) r[at + i] = static_cast<uint8_t>(v >> (8 * i));
}

uint32_t get(const uint8_t *p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

Record nv_efs(uint8_t op, uint8_t sub, uint16_t item, const std::string &path, uint32_t all,
              uint32_t send, uint32_t cur, const std::string &data) {
  Record r(512, 0);
  r[0] = op;
  r[1] = sub;
  put(r, 2, item, 2);
  r[4] = static_cast<uint8_t>(path.size());
  memcpy(r.data() + 5, path.data(), std::min<size_t>(path.size(), 71));
  put(r, 76, all, 4);
  put(r, 80, send, 4);
  put(r, 84, cur, 4);
  memcpy(r.data() + 88, data.data(), data.size());
  return r;
}

Record common(uint32_t t, const std::vector<uint32_t> &v, uint32_t kind) {
  Record r(512, 0);
  put(r, 0, kind, 4);
  put(r, 8, t, 4);
  put(r, 12, 4 * v.size(), 4);
  for (size_t i = 0; i < v.size(); ++i) put(r, 16 + 4 * i, v[i], 4);
  return r;
}

int sh(const std::string &command, std::string *out) {
  FILE *p = popen(command.c_str(), "r");
  if (p == nullptr) return -1;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) {
    if (out != nullptr) out->append(buf, n);
  }
  const int status = pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int sim(const std::string &args, std::string *out) {
  return sh(std::string(RPK_SIM_TEST_BINARY) + " " + args, out);
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
  sim("journal sync");
  std::string text;
  rpk_host::read_file(dir_ + "/journal.jsonl", text);
  return text;
}

}  // namespace rpk_sim_test
