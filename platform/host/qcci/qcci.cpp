// Host QMI client framework (QCCI): the calls of qmi_client.h over the host
// transport of qmi_host_transport.h, messages encoded and decoded by the
// table-driven codec. Each client has one reader thread, the library's own,
// which runs the indication callback; each notifier has one watcher thread.
//
// One thread at a time reads a client's socket. A thread waiting for its
// answer reads it itself when nobody else does, so a request costs the two
// wake-ups of a bare round trip instead of three; packets it meets that are
// not its own go to their waiter, indications to the reader thread. The
// reader thread reads only once the client has been idle for kReaderLinger,
// so back-to-back requests never have to wait for it to hand an answer over.
#include <poll.h>
#include <qmi_client.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"
#include "platform/host/qcci/qmi_idl_codec.h"

struct qmi_client_struct {
  enum class Kind { kNotifier, kClient };

  struct Pending {
    std::vector<uint8_t> packet;
    bool done = false;
  };

  Kind kind = Kind::kClient;
  qmi_idl_service_object_type svc = nullptr;
  std::thread thread;  // reader of a client, watcher of a notifier

  std::mutex mu;
  std::condition_variable cv;         // senders (and a release) wait here
  std::condition_variable reader_cv;  // the reader thread waits here
  // Guarded by mu.
  bool stop = false;  // notifier: end the watcher; client: released
  bool dead = false;  // client: the connection is gone
  bool released = false;
  bool delete_on_exit = false;
  uint16_t last_txn = 0;
  std::map<uint16_t, Pending *> pending;
  bool reading = false;  // a thread reads the socket
  int active = 0;        // sends waiting for their answer
  std::chrono::steady_clock::time_point idle_since;
  std::deque<std::vector<uint8_t>> indications;  // read by a sender, for the reader thread

  // Client only; fixed after init.
  int fd = -1;
  qmi_client_ind_cb ind_cb = nullptr;
  void *ind_cb_data = nullptr;

  // Notifier only; the caller's signal object, which outlives the notifier.
  qmi_client_os_params *os = nullptr;
  // Notifier only, guarded by mu: the socket file of the server last
  // signalled, so that only a new one is signalled again.
  struct ServerKey {
    dev_t dev = 0;
    ino_t ino = 0;
    timespec ctime{};
    bool operator==(const ServerKey &o) const {
      return dev == o.dev && ino == o.ino && ctime.tv_sec == o.ctime.tv_sec &&
             ctime.tv_nsec == o.ctime.tv_nsec;
    }
  };
  bool signalled_server = false;
  ServerKey server;
};

namespace {

constexpr unsigned kServiceInfoMagic = 0x52504B31;  // marks a host-made service info
constexpr auto kWatchPeriod = std::chrono::milliseconds(20);
constexpr auto kInitRetryPeriod = std::chrono::milliseconds(5);
// How long an init follows a daemon being replaced before it gives up.
constexpr auto kDaemonChangeWait = std::chrono::seconds(5);
// How long the reader thread leaves the socket to senders after the last
// answer: an indication that comes while nobody reads waits at most this.
constexpr auto kReaderLinger = std::chrono::milliseconds(10);
// A service welcomes a client at once; this only bounds a hung one.
constexpr int kWelcomeWaitMs = 10000;

// Every live handle, so a stale or foreign pointer is refused instead of used.
std::mutex g_handles_mu;
std::set<qmi_client_type> g_handles;

bool is_live(qmi_client_type h, qmi_client_struct::Kind kind) {
  std::lock_guard<std::mutex> lock(g_handles_mu);
  return g_handles.count(h) != 0 && h->kind == kind;
}

void add_handle(qmi_client_type h) {
  std::lock_guard<std::mutex> lock(g_handles_mu);
  g_handles.insert(h);
}

// Signal objects already set up here. A caller that opens again after a
// failed init passes the same object while the first notifier still uses it:
// it is reset, never initialised twice.
std::set<qmi_client_os_params *> g_signals;

// Returns true the first time it sees `os`.
bool first_use_of(qmi_client_os_params *os) {
  std::lock_guard<std::mutex> lock(g_handles_mu);
  return g_signals.insert(os).second;
}

bool remove_handle(qmi_client_type h) {
  std::lock_guard<std::mutex> lock(g_handles_mu);
  return g_handles.erase(h) != 0;
}

// The daemon puts a service's socket in place only once it listens and
// removes it before it stops listening; a killed daemon's leftover socket is
// told apart by the daemon's lock. So no probe connection is needed.
bool service_up(uint32_t service_id) {
  struct stat st {};
  return stat(rpk_qmi::service_socket_path(service_id).c_str(), &st) == 0 && S_ISSOCK(st.st_mode) &&
         rpk_host::modem_sim_running();
}

void set_signal(qmi_client_os_params *os) {
  pthread_mutex_lock(&os->mutex);
  os->sig_set = 1;
  pthread_cond_broadcast(&os->cond);
  pthread_mutex_unlock(&os->mutex);
}

// One look of a notifier, under its lock: signals a new server, i.e. a socket
// file that was not there (or was another file) and is served now. A killed
// server leaves its file behind; its successor replaces it, which shows as a
// new inode or ctime. A vanished daemon is signalled too when it may be
// started again, so a waiting client comes back to look up (and restart) it.
void look_nolock(qmi_client_type h, const std::string &path) {
  struct stat st {};
  if (stat(path.c_str(), &st) != 0) {
    h->signalled_server = false;
  } else {
    const qmi_client_struct::ServerKey now{st.st_dev, st.st_ino, st.st_ctim};
    if ((!h->signalled_server || !(now == h->server)) && service_up(h->svc->service_id)) {
      set_signal(h->os);
      h->server = now;
      h->signalled_server = true;
      return;
    }
  }
  if (rpk_host::modem_sim_autostart_allowed() && !rpk_host::modem_sim_running()) {
    set_signal(h->os);
  }
}

void watch_service(qmi_client_type h) {
  const std::string path = rpk_qmi::service_socket_path(h->svc->service_id);
  std::unique_lock<std::mutex> lock(h->mu);
  while (!h->stop) {
    look_nolock(h, path);
    h->cv.wait_for(lock, kWatchPeriod, [h] { return h->stop; });
  }
}

// A look-up found no server: the notifiers of that service drop what they
// signalled before, so the caller's next wait sleeps until a server comes
// (again) instead of returning at once. Checked again under each notifier's
// lock, so a server its watcher has just signalled is never forgotten.
void forget_missing_service(uint32_t service_id) {
  std::lock_guard<std::mutex> handles(g_handles_mu);
  for (qmi_client_type h : g_handles) {
    if (h->kind != qmi_client_struct::Kind::kNotifier || h->svc->service_id != service_id) {
      continue;
    }
    std::lock_guard<std::mutex> lock(h->mu);
    if (service_up(service_id)) continue;
    pthread_mutex_lock(&h->os->mutex);
    h->os->sig_set = 0;
    pthread_mutex_unlock(&h->os->mutex);
    h->signalled_server = false;
  }
}

// A packet read by whichever thread reads: a response completes its
// transaction, an indication is kept for the reader thread.
void take_packet_nolock(qmi_client_type h, const uint8_t *p, size_t n) {
  rpk_qmi::Header hdr;
  // A malformed packet cannot be matched to anything; drop it.
  if (!rpk_qmi::parse_header(p, n, &hdr)) return;
  if (hdr.ctl == rpk_qmi::kCtlResponse) {
    auto it = h->pending.find(hdr.txn);
    if (it != h->pending.end() && !it->second->done) {
      it->second->packet.assign(p, p + n);
      it->second->done = true;
      h->cv.notify_all();
    }
  } else if (hdr.ctl == rpk_qmi::kCtlIndication && h->ind_cb != nullptr) {
    h->indications.emplace_back(p, p + n);
    h->reader_cv.notify_one();
  }
}

void read_packets(qmi_client_type h) {
  std::vector<uint8_t> buf(rpk_qmi::kMaxPacket);
  std::unique_lock<std::mutex> lock(h->mu);
  for (;;) {
    if (!h->indications.empty()) {
      std::vector<uint8_t> ind = std::move(h->indications.front());
      h->indications.pop_front();
      lock.unlock();
      rpk_qmi::Header hdr;
      rpk_qmi::parse_header(ind.data(), ind.size(), &hdr);  // checked when it was kept
      h->ind_cb(h, hdr.msg_id, ind.data() + rpk_qmi::kHeaderLen, hdr.len, h->ind_cb_data);
      lock.lock();
      continue;
    }
    if (h->dead) break;
    // Senders read their own answers; the socket is taken back once they
    // have been quiet for a while (at once when released).
    if (h->reading || (!h->released && (h->active > 0 || std::chrono::steady_clock::now() <
                                                             h->idle_since + kReaderLinger))) {
      const auto now = std::chrono::steady_clock::now();
      h->reader_cv.wait_until(lock, std::max(now, h->idle_since) + kReaderLinger);
      continue;
    }
    h->reading = true;
    lock.unlock();
    ssize_t n;
    while ((n = recv(h->fd, buf.data(), buf.size(), 0)) < 0 && errno == EINTR) {
    }
    lock.lock();
    h->reading = false;
    if (n <= 0) break;
    take_packet_nolock(h, buf.data(), static_cast<size_t>(n));
    h->cv.notify_all();  // a sender may read now
  }
  bool self_delete = false;
  h->dead = true;
  self_delete = h->delete_on_exit;
  // A client whose connection ended may never be released (the product
  // keeps its client for the life of the process): the reader lets go of
  // itself, unless a release already waits to join it.
  if (!self_delete && !h->released) h->thread.detach();
  h->cv.notify_all();
  lock.unlock();
  if (self_delete) {
    close(h->fd);
    delete h;
  }
}

// Reads one packet for a sender: -1 when the wait ran out, 0 when the
// connection ended.
ssize_t receive(int fd, uint8_t *buf, size_t size, int wait_ms) {
  for (;;) {
    if (wait_ms >= 0) {
      pollfd p{fd, POLLIN, 0};
      const int ready = poll(&p, 1, wait_ms);
      if (ready < 0 && errno == EINTR) continue;
      if (ready == 0) return -1;
    }
    const ssize_t n = recv(fd, buf, size, wait_ms >= 0 ? MSG_DONTWAIT : 0);
    if (n >= 0) return n;
    if (errno == EINTR) continue;
    if (errno == EAGAIN || errno == EWOULDBLOCK) return -1;
    return 0;
  }
}

// The end of an init: a client on the welcomed connection, or the error the
// join came to.
qmi_client_error_type open_client(rpk_qmi::Join join, int fd, qmi_idl_service_object_type svc,
                                  qmi_client_ind_cb cb, void *cb_data, qmi_client_type *out) {
  if (join == rpk_qmi::Join::kSilent) {
    // A hung service stays silent, and so does a daemon too old to welcome.
    fprintf(stderr,
            "rpk: service 0x%04x took the connection but sent no welcome; restart the "
            "simulated modem (rpk-modem-sim stop)\n",
            svc->service_id);
    return QMI_TIMEOUT_ERR;
  }
  if (join != rpk_qmi::Join::kJoined) return QMI_SERVICE_ERR;
  auto *h = new qmi_client_struct;
  h->kind = qmi_client_struct::Kind::kClient;
  h->svc = svc;
  h->fd = fd;
  h->ind_cb = cb;
  h->ind_cb_data = cb_data;
  add_handle(h);
  {
    // The reader may end at once and let go of itself; it must find itself.
    std::lock_guard<std::mutex> lock(h->mu);
    h->thread = std::thread(read_packets, h);
  }
  *out = h;
  return QMI_NO_ERR;
}

}  // namespace

extern "C" {

int qmi_cci_os_signal_wait(qmi_client_os_params *os_params, unsigned int timeout_ms) {
  if (os_params == nullptr) return QMI_CLIENT_PARAM_ERR;
  pthread_mutex_lock(&os_params->mutex);
  if (timeout_ms == 0) {
    while (os_params->sig_set == 0) pthread_cond_wait(&os_params->cond, &os_params->mutex);
  } else {
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += timeout_ms / 1000;
    deadline.tv_nsec += static_cast<long>(timeout_ms % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
      deadline.tv_sec += 1;
      deadline.tv_nsec -= 1000000000L;
    }
    while (os_params->sig_set == 0) {
      if (pthread_cond_timedwait(&os_params->cond, &os_params->mutex, &deadline) == ETIMEDOUT) {
        break;
      }
    }
  }
  const bool set = os_params->sig_set != 0;
  if (!set) os_params->timed_out = 1;
  pthread_mutex_unlock(&os_params->mutex);
  return set ? QMI_NO_ERR : QMI_TIMEOUT_ERR;
}

qmi_client_error_type qmi_client_notifier_init(qmi_idl_service_object_type service_obj,
                                               qmi_client_os_params *os_params,
                                               qmi_client_type *user_handle) {
  if (service_obj == nullptr || os_params == nullptr || user_handle == nullptr) {
    return QMI_CLIENT_PARAM_ERR;
  }
  rpk_host::ensure_modem_sim();
  if (first_use_of(os_params)) {
    pthread_condattr_init(&os_params->attr);
    pthread_condattr_setclock(&os_params->attr, CLOCK_MONOTONIC);
    pthread_cond_init(&os_params->cond, &os_params->attr);
    pthread_mutex_init(&os_params->mutex, nullptr);
    os_params->clock = CLOCK_MONOTONIC;
  }
  pthread_mutex_lock(&os_params->mutex);
  os_params->sig_set = 0;
  os_params->timed_out = 0;
  pthread_mutex_unlock(&os_params->mutex);

  auto *h = new qmi_client_struct;
  h->kind = qmi_client_struct::Kind::kNotifier;
  h->svc = service_obj;
  h->os = os_params;
  // The first look is made here so a server that is already up is signalled
  // before this call returns.
  look_nolock(h, rpk_qmi::service_socket_path(service_obj->service_id));
  add_handle(h);
  h->thread = std::thread(watch_service, h);
  *user_handle = h;
  return QMI_NO_ERR;
}

qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service_obj,
                                                  qmi_service_info *service_info_array,
                                                  unsigned int *num_entries,
                                                  unsigned int *num_services) {
  if (service_obj == nullptr) return QMI_CLIENT_PARAM_ERR;
  rpk_host::ensure_modem_sim();
  const unsigned found = service_up(service_obj->service_id) ? 1 : 0;
  if (found == 0) forget_missing_service(service_obj->service_id);
  if (num_services != nullptr) *num_services = found;
  if (service_info_array != nullptr && num_entries != nullptr) {
    const unsigned n = *num_entries < found ? *num_entries : found;
    for (unsigned i = 0; i < n; ++i) {
      service_info_array[i] = qmi_service_info{};
      service_info_array[i].info[0] = service_obj->service_id;
      service_info_array[i].info[1] = rpk_qmi::kHostInstance;
      service_info_array[i].info[2] = kServiceInfoMagic;
    }
    *num_entries = n;
  }
  return found != 0 ? QMI_NO_ERR : QMI_SERVICE_ERR;
}

qmi_client_error_type qmi_client_init(qmi_service_info *service_info,
                                      qmi_idl_service_object_type service_obj,
                                      qmi_client_ind_cb ind_cb, void *ind_cb_data,
                                      qmi_client_os_params * /*os_params*/,
                                      qmi_client_type *user_handle) {
  if (user_handle != nullptr) *user_handle = nullptr;
  if (service_info == nullptr || service_obj == nullptr || user_handle == nullptr ||
      service_info->info[0] != service_obj->service_id ||
      service_info->info[2] != kServiceInfoMagic) {
    return QMI_CLIENT_PARAM_ERR;
  }
  const auto deadline = std::chrono::steady_clock::now() + kDaemonChangeWait;
  int fd = -1;
  rpk_qmi::Join join;
  for (;;) {
    rpk_host::ensure_modem_sim();
    const long daemon = rpk_host::modem_sim_serving_pid();
    join = rpk_qmi::join_service(service_obj->service_id, kWelcomeWaitMs, &fd);
    if (join == rpk_qmi::Join::kJoined || join == rpk_qmi::Join::kSilent ||
        std::chrono::steady_clock::now() >= deadline) {
      break;
    }
    // Nobody listening at a socket a live daemon is said to serve: a new
    // daemon has taken over a killed one's state directory and is about to
    // replace its leftover file. A connection closed unwelcomed by a daemon
    // that died meanwhile is no refusal either. Both go to the daemon that
    // serves now (started here when none does); a live daemon's refusal, or
    // its service being down, is the answer.
    const bool stale_socket =
        join == rpk_qmi::Join::kNotListening && service_up(service_obj->service_id);
    if (!stale_socket && daemon != 0 && rpk_host::modem_sim_serving_pid() == daemon) break;
    if (!stale_socket && daemon == 0) break;  // no daemon, and none may be started
    std::this_thread::sleep_for(kInitRetryPeriod);
  }
  return open_client(join, fd, service_obj, ind_cb, ind_cb_data, user_handle);
}

qmi_client_error_type qmi_client_init_instance(qmi_idl_service_object_type service_obj,
                                               qmi_service_instance instance_id,
                                               qmi_client_ind_cb ind_cb, void *ind_cb_data,
                                               qmi_client_os_params * /*os_params*/,
                                               uint32_t timeout, qmi_client_type *user_handle) {
  if (user_handle != nullptr) *user_handle = nullptr;
  if (service_obj == nullptr || user_handle == nullptr) return QMI_CLIENT_PARAM_ERR;
  rpk_host::ensure_modem_sim();
  const bool instance_exists =
      instance_id == QMI_CLIENT_INSTANCE_ANY || instance_id == rpk_qmi::kHostInstance;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
  // Look once before any time check: a 4 ms limit must still find a service
  // that is up.
  for (;;) {
    if (instance_exists) {
      int fd = -1;
      const rpk_qmi::Join join =
          rpk_qmi::join_service(service_obj->service_id, kWelcomeWaitMs, &fd);
      // Only a missing service is waited for; a refusal ends the init as on a
      // phone.
      if (join != rpk_qmi::Join::kNotListening) {
        return open_client(join, fd, service_obj, ind_cb, ind_cb_data, user_handle);
      }
    }
    if (timeout != 0 && std::chrono::steady_clock::now() >= deadline) return QMI_TIMEOUT_ERR;
    std::this_thread::sleep_for(kInitRetryPeriod);
  }
}

qmi_client_error_type qmi_client_send_msg_sync(qmi_client_type user_handle, unsigned int msg_id,
                                               void *req_c_struct, unsigned int req_c_struct_len,
                                               void *resp_c_struct, unsigned int resp_c_struct_len,
                                               unsigned int timeout_msecs) {
  if (!is_live(user_handle, qmi_client_struct::Kind::kClient)) return QMI_CLIENT_INVALID_CLNT;
  qmi_client_type h = user_handle;
  if (resp_c_struct == nullptr || msg_id > 0xFFFF ||
      (req_c_struct == nullptr && req_c_struct_len != 0)) {
    return QMI_CLIENT_PARAM_ERR;
  }
  const auto id = static_cast<uint16_t>(msg_id);
  rpk_qmi::MessageInfo req_info;
  int rc = rpk_qmi::lookup_message(h->svc, QMI_IDL_REQUEST, id, &req_info);
  if (rc != 0) return rc;
  if (req_c_struct_len != 0 && req_c_struct_len != req_info.c_struct_sz) {
    return QMI_CLIENT_PARAM_ERR;
  }

  // The largest packet, allocated once per thread and never cleared: only
  // what the encoder writes is sent.
  thread_local std::unique_ptr<uint8_t[]> packet_buf(new uint8_t[rpk_qmi::kMaxPacket]);
  uint8_t *const packet = packet_buf.get();
  uint32_t tlv_len = 0;
  if (req_c_struct_len != 0) {
    rc = rpk_qmi::encode_message(
        h->svc, QMI_IDL_REQUEST, id, req_c_struct, req_c_struct_len, packet + rpk_qmi::kHeaderLen,
        static_cast<uint32_t>(rpk_qmi::kMaxPacket - rpk_qmi::kHeaderLen), &tlv_len);
    if (rc != 0) return rc;
  }

  qmi_client_struct::Pending pending;
  uint16_t txn = 0;
  {
    std::lock_guard<std::mutex> lock(h->mu);
    if (h->dead) return QMI_SERVICE_ERR;
    do {
      txn = ++h->last_txn;
    } while (txn == 0 || h->pending.count(txn) != 0);
    h->pending[txn] = &pending;
    ++h->active;
  }
  rpk_qmi::put_header(packet, {rpk_qmi::kCtlRequest, txn, id, static_cast<uint16_t>(tlv_len)});
  const ssize_t sent = send(h->fd, packet, rpk_qmi::kHeaderLen + tlv_len, MSG_NOSIGNAL);
  rpk_host::flush_log();  // while the modem works on the answer

  std::unique_lock<std::mutex> lock(h->mu);
  bool answered = false;
  if (sent == static_cast<ssize_t>(rpk_qmi::kHeaderLen + tlv_len)) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_msecs);
    while (!pending.done && !h->dead) {
      if (h->reading) {
        // Another thread reads: it hands the answer over.
        if (timeout_msecs == 0) {
          h->cv.wait(lock);
        } else if (h->cv.wait_until(lock, deadline) == std::cv_status::timeout) {
          break;
        }
        continue;
      }
      int wait_ms = -1;
      if (timeout_msecs != 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) break;
        wait_ms = static_cast<int>(left.count());
      }
      h->reading = true;
      lock.unlock();
      // The packet buffer is free again once the request is out.
      const ssize_t n = receive(h->fd, packet, rpk_qmi::kMaxPacket, wait_ms);
      lock.lock();
      h->reading = false;
      if (n == 0) {
        h->dead = true;
        h->reader_cv.notify_one();  // the reader thread ends the client
      } else if (n > 0) {
        take_packet_nolock(h, packet, static_cast<size_t>(n));
      }
      h->cv.notify_all();  // another sender may read now
    }
    answered = pending.done;
  }
  const bool dead = h->dead;
  h->pending.erase(txn);
  if (--h->active == 0) h->idle_since = std::chrono::steady_clock::now();
  lock.unlock();

  if (!answered) {
    return (sent < 0 || dead) ? QMI_SERVICE_ERR : QMI_TIMEOUT_ERR;
  }
  rpk_qmi::Header hdr;
  rpk_qmi::parse_header(pending.packet.data(), pending.packet.size(), &hdr);
  if (hdr.msg_id != id) return QMI_INVALID_TXN;
  return rpk_qmi::decode_message(h->svc, QMI_IDL_RESPONSE, id,
                                 pending.packet.data() + rpk_qmi::kHeaderLen, hdr.len,
                                 resp_c_struct, resp_c_struct_len);
}

qmi_client_error_type qmi_client_message_decode(qmi_client_type user_handle,
                                                qmi_idl_type_of_message_type req_resp_ind,
                                                unsigned int message_id, const void *p_src,
                                                unsigned int src_len, void *p_dst,
                                                unsigned int dst_len) {
  if (!is_live(user_handle, qmi_client_struct::Kind::kClient)) return QMI_CLIENT_INVALID_CLNT;
  if (message_id > 0xFFFF) return QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
  return rpk_qmi::decode_message(user_handle->svc, req_resp_ind, static_cast<uint16_t>(message_id),
                                 static_cast<const uint8_t *>(p_src), src_len, p_dst, dst_len);
}

qmi_client_error_type qmi_client_release(qmi_client_type user_handle) {
  if (user_handle == nullptr || !remove_handle(user_handle)) return QMI_CLIENT_INVALID_CLNT;
  qmi_client_type h = user_handle;
  if (h->kind == qmi_client_struct::Kind::kNotifier) {
    {
      std::lock_guard<std::mutex> lock(h->mu);
      h->stop = true;
      h->cv.notify_all();
    }
    h->thread.join();
    delete h;
    return QMI_NO_ERR;
  }
  // Waking the reader with a shutdown makes it finish on its own.
  shutdown(h->fd, SHUT_RDWR);
  bool join = false;
  {
    std::lock_guard<std::mutex> lock(h->mu);
    h->released = true;
    h->reader_cv.notify_one();
    if (h->thread.get_id() == std::this_thread::get_id()) {
      // Released from its own indication callback: the reader frees it.
      h->thread.detach();
      h->delete_on_exit = true;
      return QMI_NO_ERR;
    }
    join = h->thread.joinable();  // not when the reader already let go
  }
  if (join) h->thread.join();
  close(h->fd);
  delete h;
  return QMI_NO_ERR;
}

}  // extern "C"
