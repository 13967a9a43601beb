// The host QMI client framework against the simulated modem: what a product
// client sees through the platform calls.
#include <qmi_client.h>
#include <sar_service_v01.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "modem_sim_link.h"
#include "rpk_host.h"
#include "sim_fixture.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim_test {
namespace {

qmi_client_type open_extend(qmi_client_ind_cb cb = nullptr, void *cb_data = nullptr) {
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_service_info info[4] = {};
  unsigned entries = 4, services = 0;
  if (qmi_client_get_service_list(svc, info, &entries, &services) != 0) return nullptr;
  qmi_client_type h = nullptr;
  if (qmi_client_init(&info[0], svc, cb, cb_data, nullptr, &h) != 0) return nullptr;
  return h;
}

// Sends one envelope with request id `id` and the record `data`.
int exchange(qmi_client_type h, uint32_t id, const std::vector<uint8_t> &data,
             velmar_extend_qmi_msg_v01 *resp, unsigned timeout_ms = 3000) {
  velmar_extend_qmi_msg_v01 req{};
  req.request_id = id;
  req.data_len = static_cast<uint32_t>(data.size());
  req.data_valid = 1;
  memcpy(req.data, data.data(), data.size());
  *resp = {};
  return qmi_client_send_msg_sync(h, VELMAR_EXTEND_QMI_MSG_ID, &req, sizeof req, resp, sizeof *resp,
                                  timeout_ms);
}

std::vector<uint8_t> nv_read_record(uint8_t sub, uint16_t item) {
  std::vector<uint8_t> rec(512, 0);
  rec[0] = 1;
  rec[1] = sub;
  rec[2] = static_cast<uint8_t>(item);
  rec[3] = static_cast<uint8_t>(item >> 8);
  return rec;
}

int32_t le32(const uint8_t *p) {
  return static_cast<int32_t>(p[0] | (p[1] << 8) | (p[2] << 16) |
                              (static_cast<uint32_t>(p[3]) << 24));
}

std::vector<nlohmann::json> parse_lines(const std::string &text) {
  std::vector<nlohmann::json> out;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) out.push_back(nlohmann::json::parse(line));
  return out;
}

using QcciSimTest = SimTest;

TEST_F(QcciSimTest, ReadsAnNvItemAndTheJournalShowsTheExactRequest) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  ASSERT_EQ(exchange(h, 2, nv_read_record(0, 550), &resp), QMI_NO_ERR);
  EXPECT_EQ(resp.request_id, 0u);
  EXPECT_EQ(resp.data_valid, 1);
  EXPECT_EQ(le32(resp.data + 16), 0);  // modem result
  EXPECT_EQ(le32(resp.data + 4), 9);   // IMEI item length
  EXPECT_EQ(resp.data[20], 0x08);
  qmi_client_release(h);

  auto lines = parse_lines(journal());
  ASSERT_EQ(lines.size(), 1u);
  const auto &e = lines[0];
  EXPECT_EQ(e["service"], "0xffe4");
  EXPECT_EQ(e["msg_id"], "0x0002");
  EXPECT_EQ(e["envelope"]["request_id"], 2);
  EXPECT_EQ(e["envelope"]["data_len"], 512);
  EXPECT_EQ(e["envelope"]["data"].get<std::string>().substr(0, 8), "01002602");
  // Request, transaction 1, message 0x0002, 529 bytes of TLVs, then TLV 0x01.
  EXPECT_EQ(e["wire"].get<std::string>().substr(0, 28),
            "00010002001102"
            "01040002000000");
  EXPECT_EQ(e["wire"].get<std::string>().size(), 2u * 536);
}

std::vector<uint8_t> common_record(uint32_t t, std::vector<uint32_t> values) {
  std::vector<uint8_t> rec(512, 0);
  auto put = [&](size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) rec[at + i] = static_cast<uint8_t>(v >> (8 * i));
  };
  put(0, 2);
  put(8, t);
  put(12, static_cast<uint32_t>(4 * values.size()));
  for (size_t i = 0; i < values.size(); ++i) put(16 + 4 * i, values[i]);
  return rec;
}

std::vector<uint8_t> nv_write_record(uint8_t sub, uint16_t item, const std::string &value) {
  std::vector<uint8_t> rec = nv_read_record(sub, item);
  rec[0] = 2;
  rec[76] = static_cast<uint8_t>(value.size());
  memcpy(rec.data() + 88, value.data(), value.size());
  return rec;
}

// One EFS write chunk: `all` bytes in total, `chunk` placed at `cur`.
std::vector<uint8_t> efs_write_record(const std::string &path, uint32_t all, uint32_t cur,
                                      const std::string &chunk) {
  std::vector<uint8_t> rec(512, 0);
  rec[0] = 5;
  rec[4] = static_cast<uint8_t>(path.size());
  memcpy(rec.data() + 5, path.data(), path.size());
  auto put = [&](size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) rec[at + i] = static_cast<uint8_t>(v >> (8 * i));
  };
  put(76, all);
  put(80, static_cast<uint32_t>(chunk.size()));
  put(84, cur);
  memcpy(rec.data() + 88, chunk.data(), chunk.size());
  return rec;
}

// Writes a whole EFS file as the product does: 414-byte chunks.
int efs_write(qmi_client_type h, const std::string &path, const std::string &content) {
  for (uint32_t cur = 0; cur < content.size(); cur += 414) {
    velmar_extend_qmi_msg_v01 resp;
    int rc = exchange(h, 2,
                      efs_write_record(path, static_cast<uint32_t>(content.size()), cur,
                                       content.substr(cur, 414)),
                      &resp);
    if (rc != 0) return rc;
    if (resp.request_id != 0 || le32(resp.data + 16) != 0) return -1000;
  }
  return 0;
}

std::string nv_value(qmi_client_type h, uint8_t sub, uint16_t item) {
  velmar_extend_qmi_msg_v01 resp;
  const int rc = exchange(h, 2, nv_read_record(sub, item), &resp);
  if (rc != 0 || le32(resp.data + 16) != 0) {
    return "<error " + std::to_string(rc) + " " + std::to_string(le32(resp.data + 16)) + ">";
  }
  return std::string(reinterpret_cast<const char *>(resp.data + 20),
                     static_cast<size_t>(le32(resp.data + 4)));
}

pid_t daemon_pid(const std::string &dir) {
  std::string text;
  rpk_host::read_file(dir + "/sim.pid", text);
  return static_cast<pid_t>(atoi(text.c_str()));
}

TEST_F(QcciSimTest, ServiceListFailsWhileStoppedAndAnOpenWaitsForTheStart) {
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  unsigned services = 7;
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &services), QMI_SERVICE_ERR);
  EXPECT_EQ(services, 0u);

  // The product's open: notifier, then list and wait until the service is up.
  auto opened = std::async(std::launch::async, [svc] {
    qmi_client_os_params os{};
    qmi_client_type notifier = nullptr;
    if (qmi_client_notifier_init(svc, &os, &notifier) != 0) return false;
    unsigned n = 0;
    while (qmi_client_get_service_list(svc, nullptr, nullptr, &n) != 0) {
      if (qmi_cci_os_signal_wait(&os, 30000) != 0) return false;
    }
    qmi_client_release(notifier);
    qmi_client_type h = open_extend();
    if (h == nullptr) return false;
    qmi_client_release(h);
    return true;
  });
  EXPECT_EQ(opened.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  start();
  ASSERT_EQ(opened.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  EXPECT_TRUE(opened.get());
}

TEST_F(QcciSimTest, SendChecksItsArguments) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 req{}, resp{};
  struct Case {
    const char *name;
    unsigned msg_id;
    void *req;
    unsigned req_len;
    void *resp;
    unsigned resp_len;
    int expected;
  };
  const Case cases[] = {
      {"request not its struct size", 2, &req, 100, &resp, sizeof resp, QMI_CLIENT_PARAM_ERR},
      {"no response struct", 2, &req, sizeof req, nullptr, sizeof resp, QMI_CLIENT_PARAM_ERR},
      {"unknown message", 9, &req, sizeof req, &resp, sizeof resp,
       QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND},
      {"response struct too small", 2, &req, sizeof req, &resp, 100, QMI_IDL_LIB_BUFFER_TOO_SMALL},
      {"empty request is sent and refused by the modem", 2, nullptr, 0, &resp, sizeof resp, 0},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(qmi_client_send_msg_sync(h, c.msg_id, c.req, c.req_len, c.resp, c.resp_len, 3000),
              c.expected)
        << c.name;
  }
  EXPECT_EQ(resp.request_id, 0x01u);  // the empty request does not decode on the modem
  qmi_client_release(h);
  EXPECT_EQ(qmi_client_send_msg_sync(h, 2, &req, sizeof req, &resp, sizeof resp, 3000),
            QMI_CLIENT_INVALID_CLNT);
  EXPECT_EQ(qmi_client_release(h), QMI_CLIENT_INVALID_CLNT);
}

TEST_F(QcciSimTest, FaultsShapeTheAnswer) {
  start();
  struct Case {
    const char *fault;
    int rc;           // of the faulty exchange
    uint32_t result;  // envelope result
    uint8_t data_valid;
  };
  const Case cases[] = {
      {"error 4660 --count 1", 0, 4660, 0},
      {"no-data-valid --count 1", 0, 0, 0},
      {"delay 2000 --count 1", QMI_TIMEOUT_ERR, 0, 0},
      {"error 5 --request-id 4 --count 1", 0, 0, 1},  // another request id: not hit
      {"drop-after 0", QMI_SERVICE_ERR, 0, 0},
  };
  for (const Case &c : cases) {
    ASSERT_EQ(sim(std::string("fault ") + c.fault), 0) << c.fault;
    qmi_client_type h = open_extend();
    ASSERT_NE(h, nullptr);
    velmar_extend_qmi_msg_v01 resp;
    EXPECT_EQ(exchange(h, 2, nv_read_record(0, 550), &resp, 300), c.rc) << c.fault;
    if (c.rc == 0) {
      EXPECT_EQ(resp.request_id, c.result) << c.fault;
      EXPECT_EQ(resp.data_valid, c.data_valid) << c.fault;
    }
    ASSERT_EQ(sim("fault clear"), 0);
    // The fault is used up or cleared: a new client gets a plain answer.
    qmi_client_type h2 = open_extend();
    ASSERT_NE(h2, nullptr);
    EXPECT_EQ(exchange(h2, 2, nv_read_record(0, 550), &resp), 0) << c.fault;
    EXPECT_EQ(resp.data_valid, 1) << c.fault;
    qmi_client_release(h2);
    qmi_client_release(h);
  }
}

TEST_F(QcciSimTest, ALateAnswerIsDroppedAndTheNextOneMatches) {
  start();
  ASSERT_EQ(sim("fault delay 500 --count 1"), 0);
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  EXPECT_EQ(exchange(h, 2, nv_read_record(0, 550), &resp, 100), QMI_TIMEOUT_ERR);
  std::this_thread::sleep_for(std::chrono::milliseconds(700));
  EXPECT_EQ(exchange(h, 2, nv_read_record(1, 550), &resp), 0);
  EXPECT_EQ(resp.data[20 + 8], 0x71);  // the second IMEI's last BCD byte, not the first's
  qmi_client_release(h);
}

TEST_F(QcciSimTest, IndicationsArriveOnTheLibrarysThread) {
  start();
  struct Seen {
    std::promise<std::pair<std::thread::id, velmar_extend_qmi_msg_v01>> got;
  } seen;
  auto cb = [](qmi_client_type h, unsigned msg_id, void *buf, unsigned len, void *data) {
    velmar_extend_qmi_msg_v01 ind{};
    qmi_client_message_decode(h, QMI_IDL_INDICATION, msg_id, buf, len, &ind, sizeof ind);
    static_cast<Seen *>(data)->got.set_value({std::this_thread::get_id(), ind});
  };
  qmi_client_type h = open_extend(cb, &seen);
  ASSERT_NE(h, nullptr);
  std::string out;
  ASSERT_EQ(sim("indicate 9 0a0b", &out), 0);
  EXPECT_EQ(out, "1\n");
  auto f = seen.got.get_future();
  ASSERT_EQ(f.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  auto [tid, ind] = f.get();
  EXPECT_NE(tid, std::this_thread::get_id());
  EXPECT_EQ(ind.request_id, 9u);
  EXPECT_EQ(ind.data_len, 2u);
  EXPECT_EQ(ind.data[1], 0x0b);
  qmi_client_release(h);
}

TEST_F(QcciSimTest, SubsystemRestartTakesTheServicesAwayForAWhile) {
  start();
  ASSERT_EQ(sim("set ssr_ms 3000"), 0);
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_client_os_params os{};
  qmi_client_type notifier = nullptr;
  ASSERT_EQ(qmi_client_notifier_init(svc, &os, &notifier), 0);
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  ASSERT_EQ(exchange(h, 4, common_record(31, {0x1000}), &resp), 0);
  EXPECT_EQ(le32(resp.data + 4), 0);
  // The old connection is gone with the service.
  EXPECT_EQ(exchange(h, 2, nv_read_record(0, 550), &resp), QMI_SERVICE_ERR);
  unsigned n = 0;
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), QMI_SERVICE_ERR);
  // The signal was set when the service first showed up; clear it to see it come back.
  pthread_mutex_lock(&os.mutex);
  os.sig_set = 0;
  pthread_mutex_unlock(&os.mutex);
  ASSERT_EQ(qmi_cci_os_signal_wait(&os, 30000), 0);
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), 0);
  qmi_client_release(h);
  qmi_client_release(notifier);
}

TEST_F(QcciSimTest, SarStateAndInstanceTimeout) {
  qmi_idl_service_object_type sar = sar_get_service_object_internal_v01(1, 12, 6);
  qmi_client_type h = nullptr;
  EXPECT_EQ(
      qmi_client_init_instance(sar, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, nullptr, 50, &h),
      QMI_TIMEOUT_ERR);
  start();
  ASSERT_EQ(sim("set sar_state 7"), 0);
  qmi_client_os_params os{};
  ASSERT_EQ(qmi_client_init_instance(sar, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os, 4, &h),
            0);
  sar_rf_get_state_resp_msg_v01 resp{};
  ASSERT_EQ(qmi_client_send_msg_sync(h, 2, nullptr, 0, &resp, sizeof resp, 30000), 0);
  EXPECT_EQ(resp.resp.result, 0);
  EXPECT_EQ(resp.sar_rf_state_valid, 1);
  EXPECT_EQ(resp.sar_rf_state, 7u);
  qmi_client_release(h);
}

TEST_F(QcciSimTest, WritesSurviveADaemonRestart) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  ASSERT_EQ(exchange(h, 2, nv_write_record(1, 6858, "persist"), &resp), 0);
  ASSERT_EQ(le32(resp.data + 16), 0);
  const std::string file(1000, 'f');
  ASSERT_EQ(efs_write(h, "/nv/item_files/test/persist", file), 0);
  qmi_client_release(h);
  stop();
  start();
  h = open_extend();
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(nv_value(h, 1, 6858), "persist");
  qmi_client_release(h);
  std::string out;
  ASSERT_EQ(sim("efs get 0 /nv/item_files/test/persist", &out), 0);
  EXPECT_EQ(out.size(), 1000u * 3);  // "66 " per byte, a newline last
}

TEST_F(QcciSimTest, SeveralClientsAtOnce) {
  start();
  constexpr int kClients = 4;
  constexpr int kRounds = 40;
  std::vector<std::future<int>> clients;
  for (int c = 0; c < kClients; ++c) {
    clients.push_back(std::async(std::launch::async, [c] {
      qmi_client_type h = open_extend();
      if (h == nullptr) return -1;
      int good = 0;
      for (int r = 0; r < kRounds; ++r) {
        const std::string value = "client" + std::to_string(c) + "-" + std::to_string(r);
        velmar_extend_qmi_msg_v01 resp;
        const auto item = static_cast<uint16_t>(7000 + c);
        if (exchange(h, 2, nv_write_record(0, item, value), &resp) == 0 &&
            nv_value(h, 0, item) == value) {
          ++good;
        }
      }
      qmi_client_release(h);
      return good;
    }));
  }
  for (auto &f : clients) {
    ASSERT_EQ(f.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_EQ(f.get(), kRounds);
  }
}

TEST_F(QcciSimTest, KillDuringWritesLosesNothingAcknowledged) {
  start();
  const std::string path = "/nv/item_files/test/versioned";
  auto content = [](int version) {
    return std::string(1500, static_cast<char>('A' + version % 26));
  };
  std::atomic<int> acknowledged{-1};
  std::atomic<bool> stop_writing{false};
  auto writer = std::async(std::launch::async, [&] {
    qmi_client_type h = open_extend();
    if (h == nullptr) return;
    for (int v = 0; !stop_writing; ++v) {
      velmar_extend_qmi_msg_v01 resp;
      if (efs_write(h, path, content(v)) != 0) break;
      if (exchange(h, 2, nv_write_record(0, 7100, std::to_string(v)), &resp) != 0 ||
          le32(resp.data + 16) != 0) {
        break;
      }
      acknowledged = v;
    }
    qmi_client_release(h);
  });
  while (acknowledged < 5) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ASSERT_EQ(kill(daemon_pid(dir_), SIGKILL), 0);
  stop_writing = true;
  ASSERT_EQ(writer.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  const int last = acknowledged;
  // A killed process lets go of its lock only once it is gone.
  for (int i = 0; i < 3000 && rpk_host::modem_sim_running(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  // Each file is whole: the last acknowledged version, or the one in flight.
  const std::string nv = nv_value(h, 0, 7100);
  EXPECT_TRUE(nv == std::to_string(last) || nv == std::to_string(last + 1)) << nv << " " << last;
  qmi_client_release(h);
  std::string efs;
  rpk_host::read_file(dir_ + "/efs/sub0" + path, efs);
  EXPECT_TRUE(efs == content(last) || efs == content(last + 1)) << efs.size();
}

}  // namespace
}  // namespace rpk_sim_test
