// Host libmodemapi: the calls of modem_api.h against the simulated modem's
// statistics endpoint (platform/host/link/modem_api_wire.h). Each client is
// one connection with one reader thread, the library's own: it completes the
// pending request and runs the client's callbacks when the modem sends an
// event, and only then.
//
// Results: 0 success; kNoClient (-1) when the library is not initialised, the
// client id is unknown or an argument is bad; kModemGone (-2) when the modem
// refused or dropped the connection; kTimeout (-3) when no answer came; any
// other value is the modem's own result.
#include <modem_api.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/host/link/handshake.h"
#include "platform/host/link/modem_api_wire.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"

namespace {

constexpr int kNoClient = -1;
constexpr int kModemGone = -2;
constexpr int kTimeout = -3;

// The endpoint answers at once; this bounds a hung or delayed one.
constexpr int kWelcomeWaitMs = 10000;
constexpr auto kAnswerWait = std::chrono::milliseconds(5000);

uint32_t load_u32(const uint8_t *p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

void store_u32(std::vector<uint8_t> &out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

struct Client {
  int id = -1;
  int fd = -1;
  modem_api_event_cb event_cb = nullptr;
  modem_api_status_cb status_cb = nullptr;
  std::thread reader;

  std::mutex call_mu;  // one request at a time per client

  std::mutex mu;
  std::condition_variable cv;
  // Guarded by mu.
  bool dead = false;
  uint16_t last_txn = 0;
  uint16_t waiting_txn = 0;  // 0: nothing pending
  bool answered = false;
  std::vector<uint8_t> answer;  // the whole packet

  ~Client() {
    if (fd >= 0) close(fd);
  }
};

std::mutex g_mu;
// Guarded by g_mu.
bool g_inited = false;
int g_next_id = 1;
// Never destroyed: a client still open at exit has a running reader, which a
// destructor would have to join.
std::map<int, std::shared_ptr<Client>> &g_clients = *new std::map<int, std::shared_ptr<Client>>;

std::shared_ptr<Client> find_client(int id) {
  std::lock_guard<std::mutex> lock(g_mu);
  auto it = g_clients.find(id);
  return it == g_clients.end() ? nullptr : it->second;
}

void read_packets(std::shared_ptr<Client> c) {
  std::vector<uint8_t> buf(rpk_qmi::kMaxPacket);
  for (;;) {
    ssize_t n = recv(c->fd, buf.data(), buf.size(), 0);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    rpk_qmi::Header h;
    if (!rpk_qmi::parse_header(buf.data(), static_cast<size_t>(n), &h)) continue;
    const uint8_t *body = buf.data() + rpk_qmi::kHeaderLen;
    if (h.ctl == rpk_qmi::kCtlResponse) {
      std::lock_guard<std::mutex> lock(c->mu);
      if (h.txn != 0 && h.txn == c->waiting_txn && !c->answered) {
        c->answer.assign(buf.begin(), buf.begin() + n);
        c->answered = true;
        c->cv.notify_all();
      }
    } else if (h.ctl == rpk_qmi::kCtlIndication && h.len >= 4) {
      const auto value = static_cast<int>(load_u32(body));
      if (h.msg_id == rpk_modem_api::kIndEvent && c->event_cb != nullptr) {
        c->event_cb(value, const_cast<uint8_t *>(body + 4), static_cast<int>(h.len - 4));
      } else if (h.msg_id == rpk_modem_api::kIndStatus && c->status_cb != nullptr) {
        c->status_cb(value);
      }
    }
  }
  std::lock_guard<std::mutex> lock(c->mu);
  c->dead = true;
  c->cv.notify_all();
}

// Sends one request and waits for its answer's body.
int transact(Client &c, uint16_t msg_id, const std::vector<uint8_t> &body,
             std::vector<uint8_t> *answer) {
  std::lock_guard<std::mutex> call(c.call_mu);
  uint16_t txn = 0;
  {
    std::lock_guard<std::mutex> lock(c.mu);
    if (c.dead) return kModemGone;
    txn = ++c.last_txn;
    if (txn == 0) txn = ++c.last_txn;
    c.waiting_txn = txn;
    c.answered = false;
  }
  std::vector<uint8_t> packet(rpk_qmi::kHeaderLen);
  rpk_qmi::put_header(packet.data(),
                      {rpk_qmi::kCtlRequest, txn, msg_id, static_cast<uint16_t>(body.size())});
  packet.insert(packet.end(), body.begin(), body.end());
  const ssize_t sent = send(c.fd, packet.data(), packet.size(), MSG_NOSIGNAL);
  rpk_host::flush_log();  // while the modem works on the answer

  std::unique_lock<std::mutex> lock(c.mu);
  if (sent == static_cast<ssize_t>(packet.size())) {
    c.cv.wait_for(lock, kAnswerWait, [&c] { return c.answered || c.dead; });
  }
  c.waiting_txn = 0;
  if (!c.answered) return (sent < 0 || c.dead) ? kModemGone : kTimeout;
  answer->assign(c.answer.begin() + rpk_qmi::kHeaderLen, c.answer.end());
  return 0;
}

// Closes a client taken out of the table: its reader ends once the
// connection is shut down.
void close_client(const std::shared_ptr<Client> &c) {
  shutdown(c->fd, SHUT_RDWR);
  if (c->reader.get_id() == std::this_thread::get_id()) {
    c->reader.detach();  // freed from its own callback; the reader holds it
  } else if (c->reader.joinable()) {
    c->reader.join();
  }
}

}  // namespace

extern "C" {

int modem_api_init(void) {
  rpk_host::ensure_modem_sim();
  std::lock_guard<std::mutex> lock(g_mu);
  g_inited = true;
  return 0;
}

int modem_api_release(void) {
  std::map<int, std::shared_ptr<Client>> clients;
  {
    std::lock_guard<std::mutex> lock(g_mu);
    g_inited = false;
    clients.swap(g_clients);
  }
  for (auto &[id, c] : clients) close_client(c);
  return 0;
}

int modem_api_init_client(int /*flags*/, modem_api_event_cb event_cb, modem_api_status_cb status_cb,
                          int *client_id) {
  if (client_id == nullptr) return kNoClient;
  *client_id = -1;
  {
    std::lock_guard<std::mutex> lock(g_mu);
    if (!g_inited) return kNoClient;
  }
  int fd = -1;
  if (rpk_link::join(rpk_modem_api::socket_path(), kWelcomeWaitMs, &fd) !=
      rpk_link::Join::kJoined) {
    return kModemGone;
  }
  auto c = std::make_shared<Client>();
  c->fd = fd;
  c->event_cb = event_cb;
  c->status_cb = status_cb;
  std::lock_guard<std::mutex> lock(g_mu);
  if (!g_inited) return kNoClient;  // released meanwhile; c closes its fd
  c->id = g_next_id++;
  c->reader = std::thread(read_packets, c);
  g_clients[c->id] = c;
  *client_id = c->id;
  return 0;
}

int modem_api_free_client(int client_id) {
  std::shared_ptr<Client> c;
  {
    std::lock_guard<std::mutex> lock(g_mu);
    auto it = g_clients.find(client_id);
    if (it == g_clients.end()) return kNoClient;
    c = it->second;
    g_clients.erase(it);
  }
  close_client(c);
  return 0;
}

int modem_api_set_tessera_feature_status(int client_id, int a, int b, int c, int d) {
  std::shared_ptr<Client> client = find_client(client_id);
  if (client == nullptr) return kNoClient;
  std::vector<uint8_t> req;
  for (int v : {a, b, c, d}) store_u32(req, static_cast<uint32_t>(v));
  std::vector<uint8_t> answer;
  const int rc = transact(*client, rpk_modem_api::kMsgSetFeature, req, &answer);
  if (rc != 0) return rc;
  if (answer.size() < 4) return kModemGone;
  return static_cast<int>(load_u32(answer.data()));
}

int modem_api_get_stats_parameter(int client_id, unsigned int sub, unsigned int number,
                                  unsigned int id_count, const unsigned int *id_list,
                                  struct modem_api_stats_result *result) {
  std::shared_ptr<Client> client = find_client(client_id);
  const size_t max_ids = (0xFFFF - rpk_modem_api::kGetStatsReqHead) / 4;
  if (client == nullptr || result == nullptr || (id_count != 0 && id_list == nullptr) ||
      id_count > max_ids) {
    return kNoClient;
  }
  std::vector<uint8_t> req;
  store_u32(req, sub);
  store_u32(req, number);
  store_u32(req, id_count);
  for (unsigned i = 0; i < id_count; ++i) store_u32(req, id_list[i]);
  std::vector<uint8_t> answer;
  const int rc = transact(*client, rpk_modem_api::kMsgGetStats, req, &answer);
  if (rc != 0) return rc;
  if (answer.size() < rpk_modem_api::kGetStatsRspHead) return kModemGone;
  const auto modem_result = static_cast<int>(load_u32(answer.data()));
  if (modem_result != 0) return modem_result;
  result->id_num = load_u32(answer.data() + 4);
  result->sub = load_u32(answer.data() + 8);
  result->id = load_u32(answer.data() + 12);
  // The length is reported as the modem gave it; only what fits is copied.
  result->data_len = load_u32(answer.data() + 16);
  const size_t have = answer.size() - rpk_modem_api::kGetStatsRspHead;
  const size_t copy = std::min<size_t>({have, result->data_len, MODEM_API_STATS_DATA_MAX});
  memcpy(result->data, answer.data() + rpk_modem_api::kGetStatsRspHead, copy);
  return 0;
}

}  // extern "C"
