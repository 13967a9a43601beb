// The diag transport against a scripted library (fake_diag_lib.h): what it
// registers, when it gives up, what it copies, and in which order it tears a
// DCI exchange down.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fake_diag_lib.h"
#include "front/velmar_qmi_test_cmn.h"
#include "support/capture_stdout.h"
#include "support/run_handler.h"
#include "velmar_extend_qmi/velmar_diag_send.h"

namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

using Calls = std::vector<std::string>;

const Calls kCallbackCalls = {
    "init",  "register_callback", "switch_logging 6", "callback_send 0", "switch_logging 1",
    "deinit"};

// A DCI exchange through its first `steps` set-up steps: the session is closed
// before the client is released, and a client never registered is not released.
Calls dci_calls(size_t steps) {
  static const char *const kSteps[] = {"register_dci", "signal 7", "support", "stream",
                                       "async 16384"};
  Calls calls{"init"};
  calls.insert(calls.end(), kSteps, kSteps + steps);
  calls.push_back("deinit");
  if (steps > 1) calls.push_back("release 7");
  return calls;
}

enum class Mode { kCallback, kDci };

struct Sent {
  int rc = -1;
  std::vector<uint8_t> reply;
  std::string out;
};

// One with-result send of `req`, capturing what it printed.
Sent send_with_result(Mode mode, std::vector<uint8_t> req, int32_t time_out) {
  // The wait thread of the send before may still log: not into this capture.
  velmar_diag_wait_for_wait_thread();
  req.reserve(req.size() + 1);  // a real buffer even for 0 bytes
  Sent s;
  s.reply.assign(10240, 0);
  int32_t len = 10240;
  s.out = mask_log_lines(capture_stdout([&] {
    s.rc = mode == Mode::kCallback
               ? velmar_diag_cmd_send_with_result_by_callback_mode(
                     req.data(), static_cast<int32_t>(req.size()), s.reply.data(), &len, time_out)
               : velmar_diag_cmd_send_with_result_by_dci_mode(
                     req.data(), static_cast<int32_t>(req.size()), s.reply.data(), &len, time_out);
  }));
  s.reply.resize(static_cast<size_t>(len));
  return s;
}

// A without-result send, waiting until its worker has ended.
std::string send_without_result(int32_t work_mode, std::vector<uint8_t> req, int *rc) {
  return mask_log_lines(capture_stdout([&] {
    *rc = velmar_diag_cmd_send_without_result_start_thread(
        req.data(), static_cast<int32_t>(req.size()), work_mode);
    velmar_diag_wait_for_workers();
  }));
}

class DiagSend : public testing::Test {
 protected:
  void SetUp() override { fake_diag_reset(); }
  // The last send's wait thread may tick once more; it must not print into
  // the next test's capture.
  void TearDown() override { velmar_diag_wait_for_wait_thread(); }
};

TEST_F(DiagSend, SessionCountsOpensAndOneCloseEndsIt) {
  capture_stdout([] {
    velmar_diag_init_with_result();
    velmar_diag_init_with_result();
  });
  EXPECT_EQ(g_diag_init_status, 2);
  capture_stdout(velmar_diag_deinit_with_result);
  EXPECT_EQ(g_diag_init_status, 0);
  EXPECT_EQ(fake_diag_calls(), (Calls{"init", "deinit"}));
}

// Masks 0, 0x05 and 0x40 are pinned end to end; 0x3C names its lowest bit and
// registers each of four processors with its own number as context.
TEST_F(DiagSend, RegistersThePrimaryAndEachRemoteProcessor) {
  fake_diag().remote_mask = 0x3C;
  const std::string out = mask_log_lines(
      capture_stdout([] { velmar_diag_register_callback(velmar_diag_cmd_response_by_callback); }));
  EXPECT_THAT(out, HasSubstr("register call back, g_diag_channel = [0]MSM, data_primary = 0, "
                             "remote_mask = [60] LPASS\n"));
  EXPECT_EQ(fake_diag().remote_procs, (std::vector<int>{3, 4, 5, 6}));
  for (int p : {3, 4, 5, 6}) {
    EXPECT_THAT(out, HasSubstr("register remote call back, data_remote = " + std::to_string(p)));
  }
  EXPECT_EQ(fake_diag_calls(), (Calls{"register_callback"}));
}

// 50 and 3000 ms, and 0 ms in DCI mode, are pinned end to end; these are the
// bounds.
TEST_F(DiagSend, TimeLimitsBecomeTicks) {
  const struct {
    Mode mode;
    int32_t time_out;
    std::string line;
  } cases[] = {
      {Mode::kCallback, 0, "Command time = 30 * 100ms"},  // invalid: 3000 ms
      {Mode::kCallback, 60000, "Command time = 600 * 100ms"},
      {Mode::kCallback, 60001, "Command time = 30 * 100ms"},
      {Mode::kDci, 60000, "Dci Command time = 600"},
      {Mode::kDci, 60001, "Dci Command time = 600"},
  };
  for (const auto &c : cases) {
    fake_diag_reset().pieces = {fake_response(3)};
    const Sent s = send_with_result(c.mode, {0x1C}, c.time_out);
    EXPECT_EQ(s.rc, 0) << c.line;
    EXPECT_THAT(s.out, HasSubstr(c.line + "\n"));
    EXPECT_EQ(s.out.find("Time out is invalid") != std::string::npos,
              c.mode == Mode::kCallback && (c.time_out == 0 || c.time_out == 60001))
        << c.time_out;
    EXPECT_EQ(g_diag_wait_limit_100ms, 30);
  }
}

// 4196 and 8192 bytes in pieces, 12000 by callback and no answer at all are
// pinned end to end.
TEST_F(DiagSend, ResponseSizesAndPieces) {
  const struct {
    Mode mode;
    std::vector<std::vector<uint8_t>> pieces;
    int rc;
    size_t copied;
  } cases[] = {
      {Mode::kCallback, {fake_response(1)}, 0, 1},
      {Mode::kCallback, {fake_response(4096)}, 0, 4096},
      {Mode::kCallback, {fake_response(10240)}, 0, 10240},
      {Mode::kCallback, {fake_response(10241)}, 1, 0},  // refused by the check: time-out
      {Mode::kDci, {fake_response(1)}, 0, 1},
      {Mode::kDci, {fake_response(4096)}, 0, 4096},
      {Mode::kDci, fake_pieces(10240, 4096), 0, 10240},
      {Mode::kDci, fake_pieces(10241, 4096), 0, 10240},  // cut to the capacity
      {Mode::kDci, fake_pieces(12000, 4096), 0, 10240},
  };
  for (const auto &c : cases) {
    size_t total = 0;
    for (const auto &p : c.pieces) total += p.size();
    fake_diag_reset().pieces = c.pieces;
    const Sent s = send_with_result(c.mode, {0x4B, 0x04, 0x0E, 0x00}, 50);
    const std::string what = std::to_string(static_cast<int>(c.mode)) + "/" + std::to_string(total);
    EXPECT_EQ(s.rc, c.rc) << what;
    EXPECT_EQ(fake_diag_calls(), c.mode == Mode::kCallback ? kCallbackCalls : dci_calls(5)) << what;
    ASSERT_EQ(s.reply.size(), c.copied) << what;
    const std::vector<uint8_t> whole = fake_response(total);
    EXPECT_TRUE(std::equal(s.reply.begin(), s.reply.end(), whole.begin())) << what;
    const bool by_length = total % 4096 == 0 && c.mode == Mode::kDci;
    EXPECT_EQ(s.out.find("length is times of 4096") != std::string::npos, by_length) << what;
    EXPECT_EQ(
        s.out.find("RIL[velmar_diag_cmd_send_with_result_wait_thread_proc:N]: stop waiting\n") !=
            std::string::npos,
        c.rc != 0)
        << what;
  }
}

TEST_F(DiagSend, RequestLengths) {
  const struct {
    size_t len;
    int rc;
  } cases[] = {{0, 1}, {1, 0}, {4096, 0}, {4097, 1}};
  for (const auto &c : cases) {
    for (Mode mode : {Mode::kCallback, Mode::kDci}) {
      fake_diag_reset().pieces = {fake_response(3)};
      std::vector<uint8_t> req(c.len, 0x1C);
      const Sent s = send_with_result(mode, req, 3000);
      EXPECT_EQ(s.rc, c.rc) << c.len;
      if (c.rc != 0) {
        EXPECT_THAT(
            s.out,
            HasSubstr("Invalid input parameter, data_len = " + std::to_string(c.len) + "\n"));
        EXPECT_THAT(s.out, HasSubstr("velmar_diag_comand_param_check fail\n"));
        EXPECT_TRUE(fake_diag_calls().empty());
      } else {
        EXPECT_EQ(fake_diag().requests, (std::vector<std::vector<uint8_t>>{req}));
      }
    }
  }
  int rc = 0;
  const std::string out = send_without_result(0, std::vector<uint8_t>(4097, 1), &rc);
  EXPECT_EQ(rc, 1);
  EXPECT_THAT(out, HasSubstr("velmar_diag_comand_input_check fail\n"));
  EXPECT_TRUE(fake_diag_calls().empty());
}

// Every DCI set-up step failing in turn: what runs, and in which order the
// exchange is torn down.
TEST_F(DiagSend, DciSetupFailuresTearDownInOrder) {
  const struct {
    int FakeDiag::*rc;
    std::string line;
    size_t steps;
  } cases[] = {
      {&FakeDiag::register_rc, "Could not register with DCI, err: 1002, errno: ", 1},
      {&FakeDiag::signal_rc, "Could not register signal for DCI Data for ch:0, err: 1002", 2},
      {&FakeDiag::support_rc, "Could not get support list for ch 0, err: 1002", 3},
      {&FakeDiag::stream_rc, "Unable to register DCI stream for ch:0, err: 1002", 4},
      {&FakeDiag::async_rc, "Error sending SEND_REQUEST_ASYNC to peripheral 1002 for ch:0", 5},
  };
  for (const auto &c : cases) {
    fake_diag_reset().*c.rc = 1002;
    const Sent s = send_with_result(Mode::kDci, {0x1C}, 3000);
    EXPECT_EQ(s.rc, 1) << c.line;
    EXPECT_THAT(s.out, HasSubstr(c.line));
    EXPECT_THAT(fake_diag_calls(), ElementsAreArray(dci_calls(c.steps)));

    // The worker carries the same sequence.
    fake_diag_reset().*c.rc = 1002;
    int rc = -1;
    const std::string out = send_without_result(1, {0x1C}, &rc);
    EXPECT_EQ(rc, 0);
    EXPECT_THAT(out, HasSubstr(c.line));
    EXPECT_THAT(fake_diag_calls(), ElementsAreArray(dci_calls(c.steps)));
  }
}

TEST_F(DiagSend, ModemDownIsOnlyReported) {
  fake_diag().support_list = 0x01;
  fake_diag().pieces = {fake_response(3)};
  const Sent s = send_with_result(Mode::kDci, {0x1C}, 3000);
  EXPECT_EQ(s.rc, 0);
  EXPECT_THAT(s.out, HasSubstr("MPSS on ch:0: DOWN\n"));
}

TEST_F(DiagSend, WorkersPickTheirChannelByWorkMode) {
  const struct {
    int32_t mode;
    Calls calls;
    std::string handler_line;
  } cases[] = {
      {0, kCallbackCalls, "RIL[velmar_diag_cmd_response_by_callback_no_handle:N]: len = 3\n"},
      {7, dci_calls(5), "RIL[velmar_diag_cmd_response_by_dci_no_handle:N]: len = 3\n"},
  };
  for (const auto &c : cases) {
    fake_diag_reset().pieces = {fake_response(3)};
    int rc = -1;
    const std::string out = send_without_result(c.mode, {0x1C}, &rc);
    EXPECT_EQ(rc, 0);
    EXPECT_THAT(fake_diag_calls(), ElementsAreArray(c.calls));
    EXPECT_THAT(out, HasSubstr(c.handler_line));
    EXPECT_THAT(out, HasSubstr("velmar daig is created, conf = 0, diag_work_mode = " +
                               std::to_string(c.mode) + "\n"));
  }
}

// What the handler reads from the command line that the e2e cases do not show:
// a value cut to its byte, a time that is not a number, and work mode 2.
TEST_F(DiagSend, CommandLine) {
  const struct {
    std::vector<std::string> args;
    std::vector<std::string> lines;
  } cases[] = {
      {{"rpk", "5", "0", "0", "0", "3000", "300", "0x4b"},
       {"diag cmd:\n0x2C 0x4B \ncallback mode with result\n",
        "\nrsp data len(3)\nrsp data: 0x4B 0x01 0x02\n"}},
      {{"rpk", "5", "0", "1", "0", "x", "0x1C"},
       {"dci mode with result\n", "Dci Command time = 0\n"}},
      {{"rpk", "5", "0", "2", "9", "3000", "0x1C"},
       {"dci mode without result\n", "\ndone without rsp data\n"}},
  };
  for (const auto &c : cases) {
    fake_diag_reset().pieces = {fake_response(3)};
    std::string out;
    const int32_t rc = run_handler(velmar_cmn_diag_cmd_send, c.args, &out);
    velmar_diag_wait_for_workers();
    EXPECT_EQ(rc, 0) << c.args.size();
    for (const auto &line : c.lines) EXPECT_THAT(out, HasSubstr(line));
    EXPECT_THAT(out, Not(HasSubstr("velmar_diag_cmd_send fail")));
  }
}

}  // namespace
