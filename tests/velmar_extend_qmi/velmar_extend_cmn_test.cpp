// Common requests that never reach the modem: the refusals of
// velmar_send_common_qmi_msg and the deliberate end of the process when a
// value passes the length bound but not the value area.
#include "velmar_extend_qmi/velmar_extend_cmn.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/capture_stdout.h"

namespace {

std::string cmn_trace(const std::string &middle) {
  const std::string fn = "RIL[velmar_send_common_qmi_msg:N]: ";
  return fn + "function entry ------------->\n" + middle + fn + "function exit <-------------\n";
}

TEST(VelmarSendCommonQmiMsg, RefusalsSendNothingAndLeaveAClearedAnswer) {
  const std::string fn = "RIL[velmar_send_common_qmi_msg:N]: ";
  static const uint8_t value[4] = {1, 2, 3, 4};
  const struct {
    const char *name;
    uint32_t l;
    const uint8_t *v;
    std::string log;
  } cases[] = {
      {"length 500", 500, value, fn + "t 7\n" + fn + "l 500\n" + fn + "l is out of range\n"},
      {"length 4096", 4096, value, fn + "t 7\n" + fn + "l 4096\n" + fn + "l is out of range\n"},
      {"no value", 3, nullptr, fn + "t 7\n" + fn + "l 3\n" + fn + "v is null\n"},
  };
  for (const auto &c : cases) {
    velmar_cmn_record rsp;
    memset(&rsp, 0xAA, sizeof rsp);
    const std::string out = capture_stdout([&] { velmar_send_common_qmi_msg(7, c.l, c.v, &rsp); });
    EXPECT_EQ(mask_log_lines(out), cmn_trace(c.log)) << c.name;
    // Only the 508 bytes of room are cleared; the last word is never touched.
    const auto *bytes = reinterpret_cast<const uint8_t *>(&rsp);
    for (size_t i = 0; i < sizeof rsp; ++i) {
      ASSERT_EQ(bytes[i], i < VELMAR_CMN_RSP_ROOM ? 0 : 0xAA) << c.name << " byte " << i;
    }
  }

  const std::string out =
      capture_stdout([] { velmar_send_common_qmi_msg(7, 1, nullptr, nullptr); });
  EXPECT_EQ(mask_log_lines(out), cmn_trace(fn + "rsp is NULL\n"));
}

TEST(VelmarCmnCopyValue, FillsTheValueAreaUpToItsSize) {
  uint8_t src[VELMAR_CMN_VALUE_MAX];
  for (size_t i = 0; i < sizeof src; ++i) src[i] = static_cast<uint8_t>(i + 1);
  velmar_cmn_record rec{};
  velmar_cmn_copy_value(rec, src, sizeof src);
  EXPECT_EQ(memcmp(rec.v, src, sizeof src), 0);
  velmar_cmn_copy_value(rec, nullptr, 0);  // nothing to copy, nothing read
}

TEST(VelmarCmnDeathTest, ValuesOf497To499BytesEndTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  static uint8_t big[600];
  for (uint32_t l : {497u, 498u, 499u}) {
    velmar_cmn_record rec{};
    EXPECT_DEATH(velmar_cmn_copy_value(rec, big, l), "does not fit the 496-byte value area") << l;
    velmar_cmn_record rsp{};
    EXPECT_DEATH(velmar_send_common_qmi_msg(1, l, big, &rsp),
                 "common value of " + std::to_string(l) + " bytes")
        << l;
    EXPECT_DEATH(velmar_cmn_cmd_send(1, l, big), "aborting") << l;
  }
}

}  // namespace
