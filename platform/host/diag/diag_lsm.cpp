// Host diag library: the calls of diag_lsm.h and diag_lsm_dci.h over the host
// transport of diag_host_transport.h. The first Diag_LSM_Init connects to the
// simulated modem (starting it when allowed) and starts the library's one
// reader thread; every handler runs on that thread. The last Diag_LSM_DeInit
// closes the connection and joins the reader, so no handler runs afterwards.
#include <diag_lsm.h>
#include <diag_lsm_dci.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/host/link/diag_host_transport.h"
#include "platform/host/link/handshake.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"

namespace {

using rpk_diag::Type;
using Bytes = std::vector<uint8_t>;

// The daemon answers at once; these only bound a hung one.
constexpr int kWelcomeWaitMs = 10000;
constexpr auto kAnswerWait = std::chrono::seconds(2);
constexpr int kMaxProc = 16;
constexpr int kMaxDciRequest = 16384;

struct Callback {
  int (*fn)(unsigned char *, int, void *) = nullptr;
  void *ctx = nullptr;
};

struct DciClient {
  void (*log)(unsigned char *, int) = nullptr;
  void (*event)(unsigned char *, int) = nullptr;
};

// An asynchronous request whose response has not fully arrived.
struct DciRequest {
  int client = 0;
  unsigned char *rsp_buf = nullptr;
  int rsp_len = 0;
  void (*fn)(unsigned char *, int, void *) = nullptr;
  void *ctx = nullptr;
};

struct Library {
  // Serialises Init and DeInit, the reader's join included.
  std::mutex life_mu;
  int refs = 0;  // under life_mu
  std::thread reader;

  std::mutex mu;
  std::condition_variable cv;
  // Under mu.
  int fd = -1;
  bool connected = false;
  uint32_t last_tag = 0;
  std::map<uint32_t, std::optional<Bytes>> answers;  // awaited tags
  int mode = USB_MODE;
  Callback callbacks[kMaxProc + 1];
  std::map<int, DciClient> clients;
  std::map<uint32_t, DciRequest> requests;

  // Held while a handler runs or a response buffer is written, so that a
  // released client's buffer is never touched afterwards.
  std::mutex deliver_mu;
};

// Never destroyed: a detached thread of the tool may call in during exit.
Library &lib() {
  static auto *l = new Library;
  return *l;
}

void put_i32(Bytes &b, int32_t v) {
  const size_t at = b.size();
  b.resize(at + 4);
  rpk_diag::put_u32(b.data() + at, static_cast<uint32_t>(v));
}

void put_u16(Bytes &b, uint16_t v) {
  b.push_back(static_cast<uint8_t>(v));
  b.push_back(static_cast<uint8_t>(v >> 8));
}

int32_t get_i32(const Bytes &b, size_t at) {
  return b.size() >= at + 4 ? static_cast<int32_t>(rpk_diag::get_u32(b.data() + at)) : 0;
}

uint16_t get_u16(const Bytes &b, size_t at) {
  return b.size() >= at + 2 ? static_cast<uint16_t>(b[at] | (b[at + 1] << 8)) : 0;
}

// Sends one message; the caller holds mu.
bool send_locked(Library &l, const rpk_diag::Header &h, const uint8_t *body, size_t n) {
  if (!l.connected) return false;
  Bytes packet(rpk_diag::kHeaderLen + n);
  rpk_diag::put_header(packet.data(), h);
  if (n > 0) memcpy(packet.data() + rpk_diag::kHeaderLen, body, n);
  ssize_t sent;
  while ((sent = send(l.fd, packet.data(), packet.size(), MSG_NOSIGNAL)) < 0 && errno == EINTR) {
  }
  rpk_host::flush_log();  // while the modem works on the answer
  return sent == static_cast<ssize_t>(packet.size());
}

// A request and its answer's body; nullopt when there is no session or no
// answer came. `before_send` runs under the lock with the request's tag.
template <typename Hook>
std::optional<Bytes> call(Type type, uint8_t proc, const Bytes &body, Hook before_send) {
  Library &l = lib();
  std::unique_lock<std::mutex> lock(l.mu);
  if (!l.connected) return std::nullopt;
  if (++l.last_tag == 0) ++l.last_tag;
  const uint32_t tag = l.last_tag;
  before_send(tag);
  l.answers[tag] = std::nullopt;
  std::optional<Bytes> answer;
  if (send_locked(l, {type, proc, 0, 0, tag}, body.data(), body.size())) {
    l.cv.wait_for(lock, kAnswerWait, [&] { return l.answers[tag].has_value() || !l.connected; });
    answer = std::move(l.answers[tag]);
  }
  l.answers.erase(tag);
  return answer;
}

std::optional<Bytes> call(Type type, uint8_t proc, const Bytes &body) {
  return call(type, proc, body, [](uint32_t) {});
}

void deliver_callback(Library &l, const rpk_diag::Header &h, uint8_t *body, int n) {
  Callback cb;
  {
    std::lock_guard<std::mutex> lock(l.mu);
    if (h.proc <= kMaxProc) cb = l.callbacks[h.proc];
  }
  if (cb.fn == nullptr) return;
  std::lock_guard<std::mutex> deliver(l.deliver_mu);
  cb.fn(body, n, cb.ctx);
}

void deliver_piece(Library &l, const rpk_diag::Header &h, const uint8_t *body, int n) {
  std::lock_guard<std::mutex> deliver(l.deliver_mu);
  DciRequest r;
  {
    std::lock_guard<std::mutex> lock(l.mu);
    auto it = l.requests.find(h.tag);
    if (it == l.requests.end()) return;  // released, or never ours
    r = it->second;
    if ((h.flags & rpk_diag::kFlagLast) != 0) l.requests.erase(it);
  }
  const int kept = n < r.rsp_len ? n : r.rsp_len;
  memcpy(r.rsp_buf, body, static_cast<size_t>(kept));
  r.fn(r.rsp_buf, kept, r.ctx);
}

void read_loop(int fd) {
  Library &l = lib();
  Bytes buf(rpk_diag::kMaxPacket);
  for (;;) {
    ssize_t n = recv(fd, buf.data(), buf.size(), 0);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    rpk_diag::Header h;
    if (!rpk_diag::parse_header(buf.data(), static_cast<size_t>(n), &h)) continue;
    uint8_t *body = buf.data() + rpk_diag::kHeaderLen;
    const int len = static_cast<int>(n) - static_cast<int>(rpk_diag::kHeaderLen);
    if (h.type == rpk_diag::kCallbackRsp) {
      deliver_callback(l, h, body, len);
    } else if (h.type == rpk_diag::kDciPiece) {
      deliver_piece(l, h, body, len);
    } else if ((h.type & rpk_diag::kAnswer) != 0) {
      std::lock_guard<std::mutex> lock(l.mu);
      auto it = l.answers.find(h.tag);
      if (it != l.answers.end()) {
        it->second = Bytes(body, body + len);
        l.cv.notify_all();
      }
    }
  }
  std::lock_guard<std::mutex> lock(l.mu);
  l.connected = false;
  l.cv.notify_all();
}

// The result word of a DCI answer, or `otherwise` when none came.
int dci_result(const std::optional<Bytes> &answer, int otherwise) {
  return answer ? get_i32(*answer, 0) : otherwise;
}

}  // namespace

extern "C" {

boolean Diag_LSM_Init(uint8_t *) {
  Library &l = lib();
  std::lock_guard<std::mutex> life(l.life_mu);
  if (l.refs > 0) {
    ++l.refs;
    return 1;
  }
  rpk_host::ensure_modem_sim();
  int fd = -1;
  if (rpk_link::join(rpk_diag::diag_socket_path(), kWelcomeWaitMs, &fd) !=
      rpk_link::Join::kJoined) {
    return 0;
  }
  {
    std::lock_guard<std::mutex> lock(l.mu);
    l.fd = fd;
    l.connected = true;
  }
  l.reader = std::thread(read_loop, fd);
  l.refs = 1;
  return 1;
}

boolean Diag_LSM_DeInit(void) {
  Library &l = lib();
  std::lock_guard<std::mutex> life(l.life_mu);
  if (l.refs == 0) return 0;
  if (--l.refs > 0) return 1;
  int fd;
  {
    std::lock_guard<std::mutex> lock(l.mu);
    fd = l.fd;
    l.connected = false;
    shutdown(fd, SHUT_RDWR);
    l.cv.notify_all();
  }
  l.reader.join();
  std::lock_guard<std::mutex> lock(l.mu);
  close(fd);
  l.fd = -1;
  // The daemon forgets a session's DCI clients with its connection.
  l.clients.clear();
  l.requests.clear();
  return 1;
}

void diag_register_callback(int (*client_cb_func_ptr)(unsigned char *, int, void *),
                            void *context_data) {
  Library &l = lib();
  std::lock_guard<std::mutex> lock(l.mu);
  l.callbacks[MSM] = {client_cb_func_ptr, context_data};
}

void diag_register_remote_callback(int (*client_rmt_cb_func_ptr)(unsigned char *, int, void *),
                                   int proc, void *context_data) {
  if (proc < 1 || proc > kMaxProc) return;
  Library &l = lib();
  std::lock_guard<std::mutex> lock(l.mu);
  l.callbacks[proc] = {client_rmt_cb_func_ptr, context_data};
}

int diag_has_remote_device(uint16_t *remote_mask) {
  if (remote_mask == nullptr) return 0;
  const std::optional<Bytes> answer = call(rpk_diag::kRemoteMask, 0, {});
  *remote_mask = answer ? get_u16(*answer, 0) : 0;
  return answer ? 1 : 0;
}

void diag_switch_logging(int requested_mode, char *) {
  Library &l = lib();
  std::lock_guard<std::mutex> lock(l.mu);
  l.mode = requested_mode;
}

int diag_callback_send_data(int proc, unsigned char *buf, int len) {
  if (buf == nullptr || len < 1 || len > kMaxDciRequest || proc < 0 || proc > kMaxProc) return -1;
  Library &l = lib();
  std::lock_guard<std::mutex> lock(l.mu);
  const rpk_diag::Header h{rpk_diag::kCallbackReq, static_cast<uint8_t>(proc),
                           static_cast<uint8_t>(l.mode), 0, 0};
  return send_locked(l, h, buf, static_cast<size_t>(len)) ? 0 : -1;
}

int diag_register_dci_client(int *client_id, diag_dci_peripherals *list, int proc,
                             void *os_params) {
  if (client_id == nullptr || list == nullptr) return DIAG_DCI_NO_MEM;
  Bytes body;
  put_i32(body, os_params != nullptr ? *static_cast<int *>(os_params) : 0);
  put_u16(body, *list);
  const std::optional<Bytes> answer =
      call(rpk_diag::kDciRegister, static_cast<uint8_t>(proc), body);
  const int result = dci_result(answer, DIAG_DCI_NO_REG);
  if (result == DIAG_DCI_NO_ERROR) {
    *client_id = get_i32(*answer, 4);
    Library &l = lib();
    std::lock_guard<std::mutex> lock(l.mu);
    l.clients[*client_id] = {};
  }
  return result;
}

int diag_register_dci_signal_data(int client_id, int signal_type) {
  Bytes body;
  put_i32(body, client_id);
  put_i32(body, signal_type);
  // The signal is only recorded: the host never raises it.
  return dci_result(call(rpk_diag::kDciSignal, 0, body), DIAG_DCI_NO_REG);
}

int diag_get_dci_support_list_proc(int proc, diag_dci_peripherals *list) {
  if (list == nullptr) return DIAG_DCI_NO_MEM;
  const std::optional<Bytes> answer = call(rpk_diag::kDciSupport, static_cast<uint8_t>(proc), {});
  const int result = dci_result(answer, DIAG_DCI_NO_REG);
  if (result == DIAG_DCI_NO_ERROR) *list = get_u16(*answer, 4);
  return result;
}

int diag_register_dci_stream_proc(int client_id, void (*func_ptr_logs)(unsigned char *, int),
                                  void (*func_ptr_events)(unsigned char *, int)) {
  Bytes body;
  put_i32(body, client_id);
  const int result = dci_result(call(rpk_diag::kDciStream, 0, body), DIAG_DCI_NO_REG);
  if (result == DIAG_DCI_NO_ERROR) {
    Library &l = lib();
    std::lock_guard<std::mutex> lock(l.mu);
    l.clients[client_id] = {func_ptr_logs, func_ptr_events};
  }
  return result;
}

int diag_send_dci_async_req(int client_id, unsigned char *buf, int bytes, unsigned char *rsp_ptr,
                            int rsp_len, void (*func_ptr)(unsigned char *, int, void *),
                            void *data_ptr) {
  if (bytes < 1 || bytes > kMaxDciRequest) return DIAG_DCI_HUGE_PACKET;
  if (buf == nullptr || rsp_ptr == nullptr) return DIAG_DCI_NO_MEM;
  if (rsp_len < 1 || func_ptr == nullptr) return DIAG_DCI_PARAM_FAIL;
  Bytes body;
  put_i32(body, client_id);
  body.insert(body.end(), buf, buf + bytes);
  Library &l = lib();
  uint32_t tag = 0;
  // Known before it goes out: its first piece may come right behind the answer.
  const std::optional<Bytes> answer = call(rpk_diag::kDciSend, 0, body, [&](uint32_t t) {
    tag = t;
    l.requests[t] = {client_id, rsp_ptr, rsp_len, func_ptr, data_ptr};
  });
  const int result = dci_result(answer, DIAG_DCI_SEND_DATA_FAIL);
  if (result != DIAG_DCI_NO_ERROR) {
    std::lock_guard<std::mutex> deliver(l.deliver_mu);
    std::lock_guard<std::mutex> lock(l.mu);
    l.requests.erase(tag);
  }
  return result;
}

int diag_release_dci_client(int *client_id) {
  if (client_id == nullptr) return DIAG_DCI_NO_MEM;
  Library &l = lib();
  {
    // From here on no response reaches the client's buffers.
    std::lock_guard<std::mutex> deliver(l.deliver_mu);
    std::lock_guard<std::mutex> lock(l.mu);
    for (auto it = l.requests.begin(); it != l.requests.end();) {
      it = it->second.client == *client_id ? l.requests.erase(it) : std::next(it);
    }
    l.clients.erase(*client_id);
  }
  Bytes body;
  put_i32(body, *client_id);
  // After the session was closed there is nothing left to release.
  const int result = dci_result(call(rpk_diag::kDciRelease, 0, body), DIAG_DCI_NO_ERROR);
  *client_id = 0;
  return result;
}

}  // extern "C"
