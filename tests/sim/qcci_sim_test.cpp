// The host QMI client framework against the simulated modem: what a product
// client sees through the platform calls.
#include <qmi_client.h>
#include <sar_service_v01.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <nlohmann/json.hpp>
#include <thread>

#include "modem_errors.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/rpk_host.h"
#include "sim_fixture.h"
#include "store.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace rpk_sim_test {
namespace {

// Generous: only a hung daemon takes this long, never a loaded machine.
constexpr unsigned kPatientMs = 30000;

int init_extend(qmi_client_type *h) {
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_service_info info[4] = {};
  unsigned entries = 4, services = 0;
  *h = nullptr;
  const int rc = qmi_client_get_service_list(svc, info, &entries, &services);
  return rc != 0 ? rc : qmi_client_init(&info[0], svc, nullptr, nullptr, nullptr, h);
}

qmi_client_type open_extend() {
  qmi_client_type h = nullptr;
  init_extend(&h);
  return h;
}

// Sends one envelope with request id `id` and the record `data`.
int exchange(qmi_client_type h, uint32_t id, const Record &data, velmar_extend_qmi_msg_v01 *resp,
             unsigned timeout_ms = kPatientMs) {
  velmar_extend_qmi_msg_v01 req{};
  req.request_id = id;
  req.data_len = static_cast<uint32_t>(data.size());
  req.data_valid = 1;
  memcpy(req.data, data.data(), data.size());
  *resp = {};
  return qmi_client_send_msg_sync(h, VELMAR_EXTEND_QMI_MSG_ID, &req, sizeof req, resp, sizeof *resp,
                                  timeout_ms);
}

// Sends an NV/EFS record; the transport's error, or else the modem's result.
int nv_efs_result(qmi_client_type h, const Record &record) {
  velmar_extend_qmi_msg_v01 resp;
  const int rc = exchange(h, 2, record, &resp);
  return rc != 0 ? rc : static_cast<int>(get(resp.data + 16));
}

int nv_write(qmi_client_type h, uint16_t item, const std::string &value) {
  return nv_efs_result(h, nv_efs(2, 0, item, "", static_cast<uint32_t>(value.size()), 0, 0, value));
}

int efs_chunk(qmi_client_type h, const std::string &path, uint32_t all, uint32_t cur,
              const std::string &chunk) {
  return nv_efs_result(h,
                       nv_efs(5, 0, 0, path, all, static_cast<uint32_t>(chunk.size()), cur, chunk));
}

// Writes a whole EFS file as the product does: 414-byte chunks.
int efs_write(qmi_client_type h, const std::string &path, const std::string &content) {
  const auto all = static_cast<uint32_t>(content.size());
  int rc = 0;
  for (uint32_t cur = 0; cur < all && rc == 0; cur += 414)
    rc = efs_chunk(h, path, all, cur, content.substr(cur, 414));
  return rc;
}

std::string nv_value(qmi_client_type h, uint16_t item) {
  velmar_extend_qmi_msg_v01 resp;
  const int rc = exchange(h, 2, nv_efs(1, 0, item), &resp);
  if (rc != 0 || get(resp.data + 16) != 0) {
    return "<error " + std::to_string(rc) + " " + std::to_string(get(resp.data + 16)) + ">";
  }
  return std::string(reinterpret_cast<const char *>(resp.data + 20),
                     static_cast<size_t>(get(resp.data + 4)));
}

using QcciSimTest = SimTest;

// Entries are written after the answers; a reader in step with the modem
// (journal() syncs first) must still find each answered request.
TEST_F(QcciSimTest, EachAnsweredRequestIsInTheJournalOnceSynced) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  for (int i = 1; i <= 5; ++i) {
    ASSERT_EQ(nv_value(h, 550).size(), 9u);
    const std::string text = journal();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), i);
    EXPECT_NE(text.find("\"seq\":" + std::to_string(i) + ","), std::string::npos);
  }
  qmi_client_release(h);
}

TEST_F(QcciSimTest, SendChecksItsArgumentsAndTheModemItsEnvelope) {
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 req{}, resp{};  // request id 0, no data
  struct Case {
    const char *name;
    unsigned msg_id;
    void *req;
    unsigned req_len;
    void *resp;
    unsigned resp_len;
    int expected;
    uint32_t result = 0;  // the modem's envelope result, when sent
  };
  const Case cases[] = {
      {"request not its struct size", 2, &req, 100, &resp, sizeof resp, QMI_CLIENT_PARAM_ERR},
      {"no response struct", 2, &req, sizeof req, nullptr, sizeof resp, QMI_CLIENT_PARAM_ERR},
      {"unknown message", 9, &req, sizeof req, &resp, sizeof resp,
       QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND},
      {"response struct too small", 2, &req, sizeof req, &resp, 100, QMI_IDL_LIB_BUFFER_TOO_SMALL},
      {"empty request: does not decode", 2, nullptr, 0, &resp, sizeof resp, 0, 0x01},
      {"no data", 2, &req, sizeof req, &resp, sizeof resp, 0, 0x11},
      {"the other message", 3, &req, sizeof req, &resp, sizeof resp, 0, 0x5E},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(qmi_client_send_msg_sync(h, c.msg_id, c.req, c.req_len, c.resp, c.resp_len, 3000),
              c.expected)
        << c.name;
    if (c.expected == 0) {
      EXPECT_EQ(resp.request_id, c.result) << c.name;
    }
  }
  qmi_client_release(h);
  EXPECT_EQ(qmi_client_send_msg_sync(h, 2, &req, sizeof req, &resp, sizeof resp, 3000),
            QMI_CLIENT_INVALID_CLNT);
  EXPECT_EQ(qmi_client_release(h), QMI_CLIENT_INVALID_CLNT);
}

TEST_F(QcciSimTest, FaultsHitTheirTargetAndAreUsedUp) {
  start();
  struct Case {
    const char *fault;
    int init_rc;
    uint32_t result;  // envelope result of the first exchange
    uint8_t data_valid;
    int then_rc;  // of a second exchange on the same client
  };
  const Case cases[] = {
      {"error 4660 --count 1", 0, 4660, 0, 0},
      {"no-data-valid --count 1", 0, 0, 0, 0},
      {"error 5 --request-id 4", 0, 0, 1, 0},  // another request id: not hit
      {"drop-after 1", 0, 0, 1, QMI_SERVICE_ERR},
      {"refuse-init --count 1", QMI_SERVICE_ERR, 0, 0, 0},
      {"refuse-init --service sar", 0, 0, 1, 0},
  };
  for (const Case &c : cases) {
    ASSERT_EQ(sim(std::string("fault ") + c.fault), 0) << c.fault;
    qmi_client_type h = nullptr;
    ASSERT_EQ(init_extend(&h), c.init_rc) << c.fault;
    velmar_extend_qmi_msg_v01 resp;
    if (h != nullptr) {
      EXPECT_EQ(exchange(h, 2, nv_efs(1, 0, 550), &resp), 0) << c.fault;
      EXPECT_EQ(resp.request_id, c.result) << c.fault;
      EXPECT_EQ(resp.data_valid, c.data_valid) << c.fault;
      EXPECT_EQ(exchange(h, 2, nv_efs(1, 0, 550), &resp), c.then_rc) << c.fault;
      qmi_client_release(h);
    }
    // Used up or never hit: a new client gets a plain answer.
    ASSERT_EQ(init_extend(&h), 0) << c.fault;
    EXPECT_EQ(exchange(h, 2, nv_efs(1, 0, 550), &resp), 0) << c.fault;
    EXPECT_EQ(resp.data_valid, 1) << c.fault;
    qmi_client_release(h);
    ASSERT_EQ(sim("fault clear"), 0);
  }
}

TEST_F(QcciSimTest, ALateAnswerIsDroppedAndTheNextOneMatches) {
  start();
  ASSERT_EQ(sim("fault delay 500 --count 1"), 0);
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  velmar_extend_qmi_msg_v01 resp;
  EXPECT_EQ(exchange(h, 2, nv_efs(1, 0, 550), &resp, 100), QMI_TIMEOUT_ERR);
  std::this_thread::sleep_for(std::chrono::milliseconds(700));
  EXPECT_EQ(exchange(h, 2, nv_efs(1, 1, 550), &resp), 0);
  EXPECT_EQ(resp.data[20 + 8], 0x71);  // the second IMEI's last BCD byte, not the first's
  qmi_client_release(h);
}

// A client waiting for its service the way the product does: look up, and
// wait on the notifier while there is none.
TEST_F(QcciSimTest, AWaitForAMissingServiceSleepsUntilItComesBack) {
  start();
  qmi_idl_service_object_type svc = velmar_extend_qmi_get_service_object_v01();
  qmi_client_os_params os{};
  qmi_client_type notifier = nullptr;
  ASSERT_EQ(qmi_client_notifier_init(svc, &os, &notifier), 0);  // signalled: the service is up
  ASSERT_EQ(sim("fault down --service extend"), 0);
  unsigned n = 0;
  ASSERT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), QMI_SERVICE_ERR);
  // Returning at once here is what made a waiting client spin.
  EXPECT_EQ(qmi_cci_os_signal_wait(&os, 200), QMI_TIMEOUT_ERR);
  ASSERT_EQ(sim("fault up"), 0);
  ASSERT_EQ(qmi_cci_os_signal_wait(&os, kPatientMs), 0);
  EXPECT_EQ(qmi_client_get_service_list(svc, nullptr, nullptr, &n), 0);
  qmi_client_release(notifier);
}

// Several clients writing one path, their chunks interleaved: each file lands
// whole, the last one finished wins, and every writer that was told it
// succeeded wrote what is there or was overwritten whole.
TEST_F(QcciSimTest, WritersOfOnePathNeverMixTheirChunks) {
  start();
  const std::string path = "/nv/item_files/test/shared";
  struct Case {
    const char *name;
    uint32_t lengths[2];  // bytes each writer sends (414 a chunk)
    uint32_t b_starts;    // writer b sends its first chunk after a's n-th
  };
  const Case cases[] = {
      {"same length, side by side", {1500, 1500}, 0},
      {"a longer, b finishes first", {2000, 900}, 1},
      {"b starts as a ends", {1300, 1300}, 3},
  };
  for (const Case &c : cases) {
    qmi_client_type h[2] = {open_extend(), open_extend()};
    ASSERT_NE(h[0], nullptr);
    ASSERT_NE(h[1], nullptr);
    const std::string content[2] = {std::string(c.lengths[0], 'a'), std::string(c.lengths[1], 'b')};
    uint32_t sent[2] = {0, 0};
    int finished_last = -1;
    // Chunks alternate once b has started; a failed chunk would show here.
    for (uint32_t round = 0; sent[0] < c.lengths[0] || sent[1] < c.lengths[1]; ++round) {
      for (int w = 0; w < 2; ++w) {
        if (sent[w] >= c.lengths[w] || (w == 1 && round < c.b_starts)) continue;
        const std::string chunk = content[w].substr(sent[w], 414);
        ASSERT_EQ(efs_chunk(h[w], path, c.lengths[w], sent[w], chunk), 0)
            << c.name << " writer " << w << " at " << sent[w];
        sent[w] += static_cast<uint32_t>(chunk.size());
        if (sent[w] == c.lengths[w]) finished_last = w;
      }
    }
    std::string file;
    ASSERT_EQ(rpk_sim::Store(dir_).efs_read(0, path, &file), 0) << c.name;
    EXPECT_EQ(file, content[finished_last]) << c.name;
    qmi_client_release(h[0]);
    qmi_client_release(h[1]);
  }
}

nlohmann::json sim_counters() {
  std::string out;
  if (sim("status", &out) != 0) return nullptr;
  return nlohmann::json::parse(out)["counters"];
}

// Transfers that never finish: a client that leaves takes its buffer along,
// and the clients that stay cannot pin more than the cap between them.
TEST_F(QcciSimTest, UnfinishedTransfersHoldBoundedMemory) {
  start();
  constexpr uint32_t kFileMax = 1 << 20;
  const std::string chunk(414, 'x');
  auto begin_transfer = [&](qmi_client_type h, const std::string &path, uint32_t cur) {
    return efs_chunk(h, path, kFileMax, cur, chunk);
  };
  // One abandoned first chunk per client, as a raw request from the command
  // line makes it: gone with the client.
  for (int i = 0; i < 20; ++i) {
    qmi_client_type h = open_extend();
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(begin_transfer(h, "/abandoned/" + std::to_string(i), 0), 0);
    qmi_client_release(h);
  }
  // Twenty clients that stay, each with a chunk at the end of a 1 MiB file:
  // the oldest transfers are dropped to keep the rest under the cap.
  std::vector<qmi_client_type> open;
  for (int i = 0; i < 20; ++i) {
    open.push_back(open_extend());
    ASSERT_NE(open.back(), nullptr);
    const std::string path = "/held/" + std::to_string(i);
    ASSERT_EQ(begin_transfer(open.back(), path, 0), 0);
    ASSERT_EQ(begin_transfer(open.back(), path, kFileMax - 414), 0);
  }
  nlohmann::json counters = sim_counters();
  EXPECT_LE(counters["efs_staged_bytes"].get<uint64_t>(), 16u << 20);
  EXPECT_LT(counters["efs_writes_in_flight"].get<uint64_t>(), 20u);
  // The first one was dropped: its next chunk belongs to no transfer.
  EXPECT_EQ(begin_transfer(open[0], "/held/0", 414), rpk_sim::kEfsInval);
  for (qmi_client_type h : open) qmi_client_release(h);
  // Each close reaches the daemon before a later connection's request.
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(nv_value(h, 550).size(), 9u);
  qmi_client_release(h);
  counters = sim_counters();
  EXPECT_EQ(counters["efs_writes_in_flight"], 0);
  EXPECT_EQ(counters["efs_staged_bytes"], 0);
}

// A missing service is waited for; a refusal ends the init at once.
TEST_F(QcciSimTest, SarInstanceTimeoutAndRefusal) {
  qmi_idl_service_object_type sar = sar_get_service_object_internal_v01(1, 12, 6);
  qmi_client_type h = nullptr;
  EXPECT_EQ(
      qmi_client_init_instance(sar, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, nullptr, 50, &h),
      QMI_TIMEOUT_ERR);
  start();
  ASSERT_EQ(sim("fault refuse-init --service sar --count 1"), 0);
  qmi_client_os_params os{};
  EXPECT_EQ(qmi_client_init_instance(sar, 0, nullptr, nullptr, &os, 30000, &h), QMI_SERVICE_ERR);
  ASSERT_EQ(qmi_client_init_instance(sar, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os, 4, &h),
            0);
  qmi_client_release(h);
}

TEST_F(QcciSimTest, KillDuringWritesLosesNothingAcknowledged) {
  start();
  const std::string path = "/nv/item_files/test/versioned";
  auto content = [](int version) {
    return std::string(1500, static_cast<char>('A' + version % 26));
  };
  std::atomic<int> acknowledged{-1};
  std::atomic<bool> stop_writing{false};
  // Each version is an EFS file in four chunks, then an NV item; it counts
  // as acknowledged once both were answered.
  auto writer = std::async(std::launch::async, [&] {
    qmi_client_type h = open_extend();
    if (h == nullptr) return;
    for (int v = 0; !stop_writing; ++v) {
      if (efs_write(h, path, content(v)) != 0 || nv_write(h, 7100, std::to_string(v)) != 0) break;
      acknowledged = v;
    }
    qmi_client_release(h);
  });
  // The writer may fail early; it must not leave this loop waiting forever.
  while (acknowledged < 5 &&
         writer.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
  }
  ASSERT_GE(acknowledged, 5) << "the writer failed before the kill";
  const int killed = kill(static_cast<pid_t>(rpk_host::modem_sim_serving_pid()), SIGKILL);
  stop_writing = true;
  writer.get();
  ASSERT_EQ(killed, 0);
  const int last = acknowledged;

  // Each file is whole: the last acknowledged version, or the one in flight.
  rpk_sim::Store store(dir_);
  std::string nv, efs;
  ASSERT_EQ(store.nv_read(0, 7100, &nv), rpk_sim::kNvDone);
  ASSERT_EQ(store.efs_read(0, path, &efs), 0);
  EXPECT_TRUE(nv == std::to_string(last) || nv == std::to_string(last + 1)) << nv << " " << last;
  EXPECT_TRUE(efs == content(last) || efs == content(last + 1)) << efs.size() << " " << last;

  // The killed daemon's leftovers do not keep a new one from serving it.
  for (int i = 0; i < 3000 && rpk_host::modem_sim_running(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  start();
  qmi_client_type h = open_extend();
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(nv_value(h, 7100), nv);
  qmi_client_release(h);
}

}  // namespace
}  // namespace rpk_sim_test
