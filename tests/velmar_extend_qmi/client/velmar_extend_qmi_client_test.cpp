// Argument checks of the synchronous sends. They come before the mutex and
// before the session is opened, so they must answer -1 without a modem.
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "common/velmar_status.h"
#include "support/capture_stdout.h"

namespace {

std::string invalid_param(const void *req) {
  char line[64];
  snprintf(line, sizeof line, "%x,  put Invalid param\n",
           static_cast<unsigned>(reinterpret_cast<uintptr_t>(req)));
  return line;
}

TEST(VelmarExtendQmiSendSync, RefusesBadArgumentsWithoutContact) {
  static uint8_t req[600];
  static uint8_t rsp[600];
  static uint32_t room = 512;
  static uint32_t big_room = 513;
  const struct {
    const char *name;
    std::function<int32_t()> call;
    std::string console;
  } cases[] = {
      {"null request", [] { return velmar_extend_qmi_send_sync(2, nullptr, 1, rsp, &room); },
       invalid_param(nullptr)},
      {"null response", [] { return velmar_extend_qmi_send_sync(2, req, 1, nullptr, &room); },
       invalid_param(req)},
      {"null room", [] { return velmar_extend_qmi_send_sync(2, req, 1, rsp, nullptr); },
       invalid_param(req)},
      {"request of 513", [] { return velmar_extend_qmi_send_sync(2, req, 513, rsp, &room); },
       "put data_len 513 > max 512\n"},
      {"negative request", [] { return velmar_extend_qmi_send_sync(2, req, -1, rsp, &room); },
       "put data_len -1 > max 512\n"},
      {"room of 513 names the request length",
       [] { return velmar_extend_qmi_send_sync(2, req, 512, rsp, &big_room); },
       "put data_len 512 > max 512\n"},
      {"long: null request",
       [] { return velmar_extend_qmi_send_sync_long_process(nullptr, rsp, &room, 1); },
       invalid_param(nullptr)},
      {"long: room of 513 names the fixed 428",
       [] { return velmar_extend_qmi_send_sync_long_process(req, rsp, &big_room, 1); },
       "put data_len 428 > max 512\n"},
  };
  for (const auto &c : cases) {
    int32_t got = 0;
    const std::string out = capture_stdout([&] { got = c.call(); });
    EXPECT_EQ(got, VELMAR_ERR_QMI_PARAM) << c.name;
    EXPECT_EQ(out, c.console) << c.name;
  }
  EXPECT_EQ(big_room, 513u);  // a refusal leaves the room as it was
}

}  // namespace
