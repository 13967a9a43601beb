// Category 3: how the set operations read their values.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/fake_qmi_service.h"
#include "support/run_handler.h"

namespace {

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
