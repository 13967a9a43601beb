// A private simulated modem for one test: its own state directory (removed
// afterwards), autostart off, and the daemon stopped at the end; and the
// request records the tests send it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace rpk_sim_test {

// Inner records of Extend-QMI requests (512 bytes), built field by field.
using Record = std::vector<uint8_t>;
void put(Record &r, size_t at, uint64_t v, int n);  // little-endian, n bytes
uint32_t get(const uint8_t *p);                     // little-endian u32

// NV/EFS record (request id 2).
Record nv_efs(uint8_t op, uint8_t sub, uint16_t item, const std::string &path = "",
              uint32_t all = 0, uint32_t send = 0, uint32_t cur = 0, const std::string &data = "");
// Request id 4 record: a common command (kind 2) of type t with its values.
Record common(uint32_t t, const std::vector<uint32_t> &v, uint32_t kind = 2);

// Runs a shell command line; returns its exit status (128 + the signal that
// ended it) and, when asked, its stdout.
int sh(const std::string &command, std::string *out = nullptr);
// The same for the simulator's command line, with this test's state directory.
int sim(const std::string &args, std::string *out = nullptr);

class SimTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  void start() { ASSERT_EQ(sim("start"), 0); }
  // The journal's lines, parsed lazily by the caller.
  std::string journal();

  std::string dir_;
};

}  // namespace rpk_sim_test
