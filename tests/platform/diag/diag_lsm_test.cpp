// The host diag library against a private simulated modem, and the modem's
// own diag answers.
#include <diag_lsm.h>
#include <diag_lsm_dci.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "diag_endpoint.h"
#include "sim_fixture.h"

namespace {

using Bytes = std::vector<uint8_t>;
using rpk_sim_test::sim;

// What the handlers received, on the library's thread.
struct Received {
  std::mutex mu;
  std::condition_variable cv;
  std::vector<std::pair<int, Bytes>> got;  // context value (-1: none), bytes

  void add(const unsigned char *p, int n, void *ctx) {
    std::lock_guard<std::mutex> lock(mu);
    got.emplace_back(ctx != nullptr ? *static_cast<int *>(ctx) : -1, Bytes(p, p + n));
    cv.notify_all();
  }
  // Waits until `n` deliveries came (or a second passed) and returns them.
  std::vector<std::pair<int, Bytes>> wait_for(size_t n) {
    std::unique_lock<std::mutex> lock(mu);
    cv.wait_for(lock, std::chrono::seconds(1), [&] { return got.size() >= n; });
    return got;
  }
};
Received *g_received = nullptr;

int on_callback(unsigned char *p, int n, void *ctx) {
  g_received->add(p, n, ctx);
  return 0;
}
void on_dci(unsigned char *p, int n, void *ctx) { g_received->add(p, n, ctx); }
void on_stream(unsigned char *, int) {}

int g_ctx[4] = {0, 1, 2, 3};

class DiagLsm : public rpk_sim_test::SimTest {
 protected:
  void SetUp() override {
    SimTest::SetUp();
    g_received = &received_;
  }
  void TearDown() override {
    while (Diag_LSM_DeInit() != 0) {
    }
    SimTest::TearDown();
  }
  // A DCI client with the stream handlers in place.
  int dci_client() {
    int id = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    int signal = 18;
    EXPECT_EQ(diag_register_dci_client(&id, &list, 0, &signal), DIAG_DCI_NO_ERROR);
    EXPECT_EQ(diag_register_dci_stream_proc(id, on_stream, on_stream), DIAG_DCI_NO_ERROR);
    return id;
  }

  Received received_;
};

TEST_F(DiagLsm, InitIsCountedAndTheLastDeInitStopsTheHandlers) {
  EXPECT_EQ(Diag_LSM_Init(nullptr), 0);  // no daemon, and autostart is off
  start();
  ASSERT_EQ(Diag_LSM_Init(nullptr), 1);
  ASSERT_EQ(Diag_LSM_Init(nullptr), 1);
  diag_register_callback(on_callback, &g_ctx[0]);
  EXPECT_EQ(Diag_LSM_DeInit(), 1);  // one session still open
  unsigned char version[] = {0x1C};
  EXPECT_EQ(diag_callback_send_data(MSM, version, 1), 0);
  EXPECT_EQ(received_.wait_for(1).at(0), (std::pair<int, Bytes>{0, {0x1C, 0x08, 0x00}}));

  // A late answer to a closed session reaches no handler.
  ASSERT_EQ(sim("fault delay 100 --service diag"), 0);
  EXPECT_EQ(diag_callback_send_data(MSM, version, 1), 0);
  EXPECT_EQ(Diag_LSM_DeInit(), 1);
  EXPECT_EQ(Diag_LSM_DeInit(), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_EQ(received_.wait_for(2).size(), 1u);
  EXPECT_EQ(diag_callback_send_data(MSM, version, 1), -1);
}

TEST_F(DiagLsm, CallbackChannelAnswersTheRemoteProcessorsOfTheMask) {
  start();
  ASSERT_EQ(sim("diag set remote_mask 05"), 0);
  ASSERT_EQ(Diag_LSM_Init(nullptr), 1);
  uint16_t mask = 0;
  EXPECT_EQ(diag_has_remote_device(&mask), 1);
  EXPECT_EQ(mask, 0x05);
  diag_register_callback(on_callback, &g_ctx[0]);
  diag_register_remote_callback(on_callback, 3, &g_ctx[3]);
  diag_register_remote_callback(on_callback, 2, &g_ctx[2]);
  unsigned char req[] = {0x4B, 0x13, 0x00, 0x00, 0xAA};
  EXPECT_EQ(diag_callback_send_data(2, req, 5), 0);  // bit 1 is clear: no answer
  EXPECT_EQ(diag_callback_send_data(3, req, 5), 0);
  EXPECT_EQ(diag_callback_send_data(MSM, req, 0), -1);
  const auto got = received_.wait_for(1);
  ASSERT_EQ(got.size(), 1u);
  EXPECT_EQ(got[0], (std::pair<int, Bytes>{3, Bytes(req, req + 5)}));
}

// Answers cut into pieces are pinned end to end, and the transport never hands
// over an empty or oversized request; what is left is the client's life.
TEST_F(DiagLsm, DciClientServesUntilReleased) {
  start();
  ASSERT_EQ(sim("diag set support_list 0x3"), 0);
  ASSERT_EQ(Diag_LSM_Init(nullptr), 1);
  int id = dci_client();
  EXPECT_GE(id, 1);
  EXPECT_EQ(diag_register_dci_signal_data(id, 64), DIAG_DCI_NO_ERROR);
  diag_dci_peripherals list = 0;
  EXPECT_EQ(diag_get_dci_support_list_proc(0, &list), DIAG_DCI_NO_ERROR);
  EXPECT_EQ(list, 0x3);
  std::vector<unsigned char> rsp(16384);
  unsigned char req[] = {0x4B, 0x04, 0x0E, 0x00};
  EXPECT_EQ(diag_send_dci_async_req(id + 100, req, 4, rsp.data(), 16384, on_dci, nullptr),
            DIAG_DCI_NOT_SUPPORTED);
  EXPECT_EQ(diag_release_dci_client(&id), DIAG_DCI_NO_ERROR);
  EXPECT_EQ(id, 0);
  EXPECT_EQ(diag_register_dci_signal_data(1, 64), DIAG_DCI_NOT_SUPPORTED);  // released
}

TEST_F(DiagLsm, FaultsOfEachDciCall) {
  start();
  const struct {
    const char *service;
    int code;
  } cases[] = {{"dci-register", 1009},
               {"dci-signal", 1006},
               {"dci-support", 1003},
               {"dci-stream", 1007},
               {"dci-send", 1006}};
  ASSERT_EQ(Diag_LSM_Init(nullptr), 1);
  for (const auto &c : cases) {
    ASSERT_EQ(sim("fault clear"), 0);
    ASSERT_EQ(sim("fault error " + std::to_string(c.code) + " --service " + c.service), 0);
    int id = 0;
    diag_dci_peripherals list = DIAG_CON_MPSS;
    int signal = 18;
    const int reg = diag_register_dci_client(&id, &list, 0, &signal);
    unsigned char req[] = {0x1C};
    unsigned char rsp[64];
    const int results[] = {reg, diag_register_dci_signal_data(id, 64),
                           diag_get_dci_support_list_proc(0, &list),
                           diag_register_dci_stream_proc(id, on_stream, on_stream),
                           diag_send_dci_async_req(id, req, 1, rsp, 64, on_dci, nullptr)};
    int failed = 0;
    for (size_t i = 0; i < std::size(results); ++i) {
      if (results[i] == c.code) ++failed;
    }
    EXPECT_EQ(failed, 1) << c.service;
    diag_release_dci_client(&id);
  }
  // After the session the release has nothing left to do.
  EXPECT_EQ(Diag_LSM_DeInit(), 1);
  int id = 5;
  EXPECT_EQ(diag_release_dci_client(&id), DIAG_DCI_NO_ERROR);
  EXPECT_EQ(id, 0);

  ASSERT_EQ(sim("fault refuse-init --service diag --count 1"), 0);
  EXPECT_EQ(Diag_LSM_Init(nullptr), 0);
  EXPECT_EQ(Diag_LSM_Init(nullptr), 1);
}

// The answers to 0x00, 0x1C, 0x1D, an echoed 0x4B 0x04 and an unknown subsystem
// are pinned end to end.
TEST(DiagModemAnswers, BuiltinCommands) {
  const struct {
    Bytes req;
    Bytes want;  // empty: only the length and code are checked
    size_t len;
  } cases[] = {
      {{0x7C}, {}, 42},
      {{0x4B, 0x04}, {0x15, 0x4B, 0x04}, 3},  // too short
      {{0x1C, 0x01}, {0x14, 0x1C, 0x01}, 3},  // no parameters taken
      {{0xEE}, {0x13, 0xEE}, 2},
      {Bytes(20, 0xEE), {}, 17},  // at most 16 request bytes come back
  };
  for (const auto &c : cases) {
    const Bytes got = rpk_sim::diag_builtin_answer(c.req.data(), c.req.size());
    EXPECT_EQ(got.size(), c.len) << int(c.req[0]);
    if (!c.want.empty()) {
      EXPECT_EQ(got, c.want);
    }
  }
  // The timestamp's upper 48 bits count 1.25 ms since 1980: well past 2020.
  const Bytes ts = rpk_sim::diag_builtin_answer(Bytes{0x1D}.data(), 1);
  uint64_t v = 0;
  for (int i = 8; i >= 1; --i) v = (v << 8) | ts[i];
  EXPECT_GT(v >> 16, uint64_t{40} * 365 * 24 * 3600 * 800);
  EXPECT_EQ(v & 0xFFFF, 0u);
}

}  // namespace
