// Category 1: how backups and restores read their flag, and their time limits, which only a modem
// that answers late can show (support/fake_qmi_service.h plays that modem).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "front/velmar_handlers.h"
#include "support/fake_qmi_service.h"
#include "support/run_handler.h"

namespace {

uint32_t word(const velmar_extend_qmi_msg_v01 &env, size_t at) {
  uint32_t v = 0;
  memcpy(&v, env.data + at, sizeof v);
  return v;
}

// What the handler printed itself: the output without the client's lines.
std::string handler_lines(const std::string &out) {
  static const char *const kClient[] = {"VELMAR_QMI_NV: ", "QMI client inited",
                                        "velmar_extend_qmi_", "send msg sync failed"};
  std::string kept;
  size_t at = 0;
  while (at < out.size()) {
    const size_t end = std::min(out.find('\n', at), out.size() - 1) + 1;
    const std::string line = out.substr(at, end - at);
    bool client = false;
    for (const char *p : kClient) client = client || line.rfind(p, 0) == 0;
    if (!client) kept += line;
    at = end;
  }
  return kept;
}

TEST(VelmarTestNvDo, QcnFlagsAndTimeLimits) {
  const std::string fail = " result code:fffffffd, description:Fail \n";
  const std::string backup_ok =
      "Backup qcn result code:0, description:Success \n"
      "QCN backup file path:data/vendor/tombstones/rfs/modem/qcn.bin \n";
  const std::string restore_ok = "Restore qcn result code:0, description:Success \n";
  const std::string golden = "invalid goldencopy flag ";
  const struct {
    std::vector<std::string> args;
    uint32_t answer_ms;
    uint32_t op, flag, timeout_ms;
    std::string head, tail;  // the handler's lines before and after the request
  } cases[] = {
      {{"rpk", "1", "2"}, 11000, 4, 0, 10000, "", "Backup qcn" + fail},
      {{"rpk", "1", "2", "1"}, 9500, 4, 1, 10000, "", backup_ok},
      {{"rpk", "1", "2", "10"}, 0, 4, 0, 10000, "invalid privacy flag use default!\n", backup_ok},
      {{"rpk", "1", "2", "1", "x"}, 0, 4, 0, 10000, "", backup_ok},  // the flag must be last
      {{"rpk", "1", "25"}, 0, 4, 0, 10000, "", backup_ok},           // only '2' counts
      {{"rpk", "1", "3", "1"}, 30000, 5, 1, 60000, golden + "1!\n", restore_ok},
      {{"rpk", "1", "3"}, 61000, 5, 0, 60000, golden + "0!\n", "Restore qcn" + fail},
      {{"rpk", "1", "3", "7"}, 0, 5, 7, 60000, golden + "7!\n", restore_ok},
      {{"rpk", "1", "3", "10"},
       0,
       5,
       0,
       60000,
       "invalid goldencopy flag use default!\n" + golden + "0!\n",
       restore_ok},
  };
  for (const auto &c : cases) {
    const std::string name = testing::PrintToString(c.args);
    fake_qmi_service modem(c.answer_ms);
    std::string out;
    run_handler(velmar_test_nv_do, c.args, &out);
    EXPECT_EQ(handler_lines(out), c.head + c.tail) << name;
    ASSERT_EQ(modem.requests().size(), 1u) << name;
    const auto &req = modem.requests()[0];
    EXPECT_EQ(req.timeout_ms, c.timeout_ms) << name;
    EXPECT_EQ(req.envelope.request_id, 1u) << name;
    EXPECT_EQ(req.envelope.data_len, 428u) << name;
    EXPECT_EQ(word(req.envelope, 0), c.op) << name;
    EXPECT_EQ(word(req.envelope, 4), c.flag) << name;
  }
}

}  // namespace
