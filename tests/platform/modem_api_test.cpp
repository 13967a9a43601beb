// The host libmodemapi against a scripted modem endpoint on its socket: what a
// failed init leaves behind, and that the callbacks run for the modem's events
// and for nothing else. A refused init and what a query answer becomes are
// pinned end to end.
#include <gtest/gtest.h>
#include <modem_api.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/link/handshake.h"
#include "platform/host/link/modem_api_wire.h"
#include "platform/host/link/qmi_host_transport.h"

namespace {

using Bytes = std::vector<uint8_t>;

void put_u32(Bytes &b, uint32_t v) {
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

// The modem's side of the socket, driven step by step by the test.
class FakeModem {
 public:
  FakeModem() {
    const std::string path = rpk_modem_api::socket_path();
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    memcpy(addr.sun_path, path.c_str(), path.size() + 1);
    listener_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    EXPECT_EQ(listen(listener_, 4), 0);
  }
  ~FakeModem() {
    if (conn_ >= 0) close(conn_);
    close(listener_);
  }

  // Takes the next client on.
  void accept_client() {
    conn_ = accept(listener_, nullptr, nullptr);
    ASSERT_GE(conn_, 0);
    ASSERT_EQ(send(conn_, rpk_link::kWelcome.data(), rpk_link::kWelcome.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(rpk_link::kWelcome.size()));
  }

  void send_packet(uint8_t ctl, uint16_t txn, uint16_t msg_id, const Bytes &body) {
    Bytes p(rpk_qmi::kHeaderLen);
    rpk_qmi::put_header(p.data(), {ctl, txn, msg_id, static_cast<uint16_t>(body.size())});
    p.insert(p.end(), body.begin(), body.end());
    ASSERT_EQ(send(conn_, p.data(), p.size(), MSG_NOSIGNAL), static_cast<ssize_t>(p.size()));
  }

  // Reads one request and answers it with `answer`.
  void answer_next(const Bytes &answer) {
    Bytes buf(rpk_qmi::kMaxPacket);
    const ssize_t n = recv(conn_, buf.data(), buf.size(), 0);
    rpk_qmi::Header h;
    if (n <= 0 || !rpk_qmi::parse_header(buf.data(), static_cast<size_t>(n), &h)) return;
    send_packet(rpk_qmi::kCtlResponse, h.txn, h.msg_id, answer);
  }

 private:
  int listener_ = -1;
  int conn_ = -1;
};

class ModemApiTest : public testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/rpk-modemapi-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    setenv("RPK_SIM_DIR", dir_.c_str(), 1);
    setenv("RPK_SIM_AUTOSTART", "0", 1);
  }
  void TearDown() override {
    modem_api_release();
    std::filesystem::remove_all(dir_);
  }

  // Opens a client that the fake modem welcomes.
  int open_client(FakeModem &modem, modem_api_event_cb ev = nullptr,
                  modem_api_status_cb st = nullptr) {
    modem_api_init();
    int id = -1;
    std::thread accept([&] { modem.accept_client(); });
    EXPECT_EQ(modem_api_init_client(0, ev, st, &id), 0);
    accept.join();
    return id;
  }

  std::string dir_;
};

TEST_F(ModemApiTest, AFailedInitLeavesTheClientIdAtMinusOne) {
  int id = 7;
  EXPECT_EQ(modem_api_init_client(0, nullptr, nullptr, &id), -1) << "library not initialised";
  EXPECT_EQ(id, -1);

  modem_api_init();
  id = 7;
  EXPECT_EQ(modem_api_init_client(0, nullptr, nullptr, &id), -2) << "no modem";
  EXPECT_EQ(id, -1);

  modem_api_stats_result r{};
  const unsigned ids[] = {82};
  EXPECT_EQ(modem_api_set_tessera_feature_status(-1, 2, 1, 1, 1), -1);
  EXPECT_EQ(modem_api_get_stats_parameter(-1, 0, 1, 1, ids, &r), -1);
  EXPECT_EQ(modem_api_free_client(-1), -1);
}

std::atomic<int> g_events{0}, g_last_event{0}, g_event_len{0}, g_statuses{0}, g_last_status{0};

void on_event(int event, void *, int len) {
  g_last_event = event;
  g_event_len = len;
  ++g_events;
}

void on_status(int status) {
  g_last_status = status;
  ++g_statuses;
}

TEST_F(ModemApiTest, TheCallbacksRunOnlyForTheModemsEvents) {
  FakeModem modem;
  const int id = open_client(modem, on_event, on_status);
  ASSERT_NE(id, -1);
  Bytes ok;
  put_u32(ok, 0);
  std::thread serve([&] { modem.answer_next(ok); });
  EXPECT_EQ(modem_api_set_tessera_feature_status(id, 2, 1, 1, 1), 0);
  serve.join();
  EXPECT_EQ(g_events + g_statuses, 0);

  Bytes event;
  put_u32(event, 7);
  event.push_back(0xAB);
  event.push_back(0xCD);
  modem.send_packet(rpk_qmi::kCtlIndication, 0, rpk_modem_api::kIndEvent, event);
  Bytes status;
  put_u32(status, 3);
  modem.send_packet(rpk_qmi::kCtlIndication, 0, rpk_modem_api::kIndStatus, status);
  for (int i = 0; i < 200 && (g_events == 0 || g_statuses == 0); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(g_events, 1);
  EXPECT_EQ(g_last_event, 7);
  EXPECT_EQ(g_event_len, 2);
  EXPECT_EQ(g_statuses, 1);
  EXPECT_EQ(g_last_status, 3);
  // Release closes the client it still holds.
  EXPECT_EQ(modem_api_release(), 0);
  EXPECT_EQ(modem_api_free_client(id), -1);
}

}  // namespace
