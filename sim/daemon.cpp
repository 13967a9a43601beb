#include "daemon.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "control_link.h"
#include "diag_endpoint.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"
#include "qmi_endpoint.h"
#include "sim_text.h"
#include "stats_endpoint.h"

namespace rpk_sim {
namespace {

constexpr auto kDirCheckPeriod = std::chrono::seconds(1);

int listen_at(const std::string &path, int type, std::string *error) {
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  int fd = socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (fd < 0) {
    *error = std::string("socket: ") + strerror(errno);
    return -1;
  }
  // Clients take the socket file for a listening service: it is bound under
  // another name and moved into place once it listens. Only the lock holder
  // gets here, so files already there are leftovers.
  const std::string staging = path + ".new";
  if (staging.size() >= sizeof addr.sun_path) {
    *error = "socket path too long: " + staging;
    close(fd);
    return -1;
  }
  memcpy(addr.sun_path, staging.c_str(), staging.size() + 1);
  unlink(staging.c_str());
  if (bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0 || listen(fd, 64) != 0 ||
      rename(staging.c_str(), path.c_str()) != 0) {
    *error = "cannot listen at " + path + ": " + strerror(errno);
    close(fd);
    unlink(staging.c_str());
    return -1;
  }
  return fd;
}

void write_dump(const std::string &dir, uint64_t number) {
  const std::string dumps = dir + "/dumps";
  std::error_code ec;
  std::filesystem::create_directories(dumps, ec);
  std::string body = "rpk-modem-sim modem RAM dump " + std::to_string(number) + "\n";
  body.resize(4096, '\xA5');
  rpk_host::write_file_atomic(dumps + "/modem_dump_" + std::to_string(number) + ".bin", body);
}

}  // namespace

namespace {

// The control interface: one JSON command a connection, one JSON answer, then
// the connection is closed.
class ControlEndpoint : public Endpoint {
 public:
  explicit ControlEndpoint(Daemon &daemon) : daemon_(daemon) {}
  uint32_t service_id() const override { return 0; }
  std::string name() const override { return "control"; }
  std::string socket_path() const override { return control_socket_path(); }
  bool on_accept(uint64_t) override { return true; }
  void on_packet(uint64_t conn, std::span<const uint8_t> packet) override {
    nlohmann::json command = nlohmann::json::parse(
        std::string(reinterpret_cast<const char *>(packet.data()), packet.size()), nullptr, false);
    nlohmann::json answer = command.is_object()
                                ? daemon_.control(command)
                                : nlohmann::json{{"ok", false}, {"error", "not a JSON object"}};
    const std::string text = dump_json(answer);
    daemon_.send_packet(conn,
                        std::span(reinterpret_cast<const uint8_t *>(text.data()), text.size()));
    daemon_.close_conn(conn);
  }

 private:
  Daemon &daemon_;
};

}  // namespace

Daemon::Daemon(std::string state_dir)
    : dir_(std::move(state_dir)), modem_(dir_), journal_(dir_ + "/journal.jsonl") {
  endpoints_.push_back({std::make_unique<ControlEndpoint>(*this)});
  endpoints_.push_back({std::make_unique<QmiServiceEndpoint>(*this, kExtendQmiServiceId)});
  endpoints_.push_back({std::make_unique<QmiServiceEndpoint>(*this, kSarServiceId)});
  endpoints_.push_back({std::make_unique<StatsEndpoint>(*this)});
  endpoints_.push_back({std::make_unique<DiagEndpoint>(*this)});
}

Daemon::~Daemon() {
  // In a state directory made again after the daemon's was removed, the files
  // of those names belong to someone else.
  if (dir_lost_) {
    for (auto &l : endpoints_) {
      if (l.fd >= 0) close(l.fd);
      l.up = false;
    }
    for (auto &[id, c] : conns_) close(c.fd);
    conns_.clear();
    if (signal_fd_ >= 0) close(signal_fd_);
    if (lock_fd_ >= 0) close(lock_fd_);
    return;
  }
  for (auto &l : endpoints_) take_down(l);
  for (auto &[id, c] : conns_) close(c.fd);
  if (signal_fd_ >= 0) close(signal_fd_);
  if (lock_fd_ >= 0) {
    unlink(rpk_host::modem_sim_pid_path().c_str());
    close(lock_fd_);
  }
}

bool Daemon::lock(std::string *error) {
  lock_fd_ = open(rpk_host::modem_sim_lock_path().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock_fd_ < 0) {
    *error =
        "cannot open the lock file " + rpk_host::modem_sim_lock_path() + ": " + strerror(errno);
    return false;
  }
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  if (fcntl(lock_fd_, F_OFD_SETLK, &fl) != 0) {
    close(lock_fd_);
    lock_fd_ = -1;
    return false;
  }
  // Clients take a socket file of a live daemon for a listening service: a
  // killed predecessor's files go before anything else is done.
  for (auto &l : endpoints_) unlink(l.endpoint->socket_path().c_str());
  struct stat st {};
  if (stat(dir_.c_str(), &st) == 0) {
    dir_dev_ = st.st_dev;
    dir_ino_ = st.st_ino;
  }
  rpk_host::write_file_atomic(rpk_host::modem_sim_pid_path(), std::to_string(getpid()) + "\n");
  rpk_host::remove_stale_temporaries(dir_);
  return true;
}

bool Daemon::dir_unchanged() const {
  struct stat st {};
  return stat(dir_.c_str(), &st) == 0 && st.st_dev == dir_dev_ && st.st_ino == dir_ino_;
}

bool Daemon::init(std::string *error) {
  if (!modem_.store().ensure_factory()) {
    *error = "cannot write the factory image in " + dir_ + " (disk full?)";
    return false;
  }
  signal(SIGPIPE, SIG_IGN);
  sigset_t mask;
  sigemptyset(&mask);
  sigaddset(&mask, SIGTERM);
  sigaddset(&mask, SIGINT);
  sigaddset(&mask, SIGHUP);
  sigprocmask(SIG_BLOCK, &mask, nullptr);
  signal_fd_ = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
  for (auto &l : endpoints_) {
    if (!bring_up(l, error)) return false;
  }
  return true;
}

Daemon::Listener *Daemon::find_service(uint32_t id) {
  for (auto &l : endpoints_) {
    if (id != 0 && l.endpoint->service_id() == id) return &l;
  }
  return nullptr;
}

bool Daemon::bring_up(Listener &l, std::string *error) {
  if (l.up) return true;
  l.fd = listen_at(l.endpoint->socket_path(), l.endpoint->socket_type(), error);
  l.up = l.fd >= 0;
  return l.up;
}

void Daemon::take_down(Listener &l) {
  if (!l.up) return;
  // The file goes first so no client sees a socket that no longer listens.
  unlink(l.endpoint->socket_path().c_str());
  close(l.fd);
  l.fd = -1;
  l.up = false;
  std::vector<uint64_t> clients;
  for (const auto &[id, c] : conns_) {
    if (c.listener == &l) clients.push_back(id);
  }
  for (uint64_t id : clients) close_conn(id);
}

void Daemon::take_down_for(uint32_t id, uint32_t ms) {
  for (auto &l : endpoints_) {
    const uint32_t service = l.endpoint->service_id();
    if (service == 0 || (id != 0 && service != id)) continue;
    take_down(l);
    const uint64_t down = ++l.downs;
    if (ms == 0) continue;
    after(std::chrono::milliseconds(ms), [this, service, down] {
      Listener *again = find_service(service);
      if (again != nullptr && again->downs == down) bring_all_up(service);
    });
  }
}

void Daemon::bring_all_up(uint32_t id) {
  for (auto &l : endpoints_) {
    if (id != 0 && l.endpoint->service_id() != id) continue;
    std::string error;
    if (!bring_up(l, &error)) fprintf(stderr, "rpk-modem-sim: %s\n", error.c_str());
  }
}

void Daemon::close_conn(uint64_t id) {
  auto it = conns_.find(id);
  if (it == conns_.end()) return;
  Listener *l = it->second.listener;
  close(it->second.fd);
  conns_.erase(it);
  l->endpoint->on_close(id);
}

std::vector<uint64_t> Daemon::connections_of(uint32_t service_id) const {
  std::vector<uint64_t> out;
  for (const auto &[id, c] : conns_) {
    if (c.listener->endpoint->service_id() == service_id) out.push_back(id);
  }
  return out;
}

void Daemon::after(std::chrono::milliseconds delay, std::function<void()> fn) {
  timers_.emplace(Clock::now() + delay, std::move(fn));
}

void Daemon::send_packet(uint64_t conn_id, std::span<const uint8_t> packet) {
  auto it = conns_.find(conn_id);
  if (it == conns_.end()) return;  // the client left, or its service went down
  if (send(it->second.fd, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0) {
    close_conn(conn_id);
  }
}

void Daemon::on_accept(Listener &l, int fd) {
  const uint64_t id = next_conn_++;
  conns_[id] = Conn{fd, &l};
  if (!l.endpoint->on_accept(id)) {
    conns_.erase(id);
    close(fd);
    ++refused_clients_;
  }
}

void Daemon::after_reply(AfterReply what) {
  if (what == AfterReply::kNothing) return;
  // A restart or a crash takes every modem service away. Their socket files
  // go now, before the answer is sent, so no client can come in between the
  // answer and the restart; the services and every connection go on this
  // round's timers, once the answer is out. The dump file is written while
  // they are away. An away time of 0 still drops every connection.
  for (auto &l : endpoints_) {
    if (l.up && l.endpoint->service_id() != 0) unlink(l.endpoint->socket_path().c_str());
  }
  const bool dump = what == AfterReply::kFullDump;
  const uint32_t away_ms = dump ? modem_.settings().dump_ms : modem_.settings().ssr_ms;
  after(std::chrono::milliseconds(0), [this, dump, away_ms] {
    take_down_for(0, std::max<uint32_t>(away_ms, 1));
    if (dump) write_dump(dir_, modem_.counters()["full_dumps"].get<uint64_t>());
  });
}

void Daemon::run() {
  auto next_dir_check = Clock::now() + kDirCheckPeriod;
  std::vector<uint8_t> buf(rpk_qmi::kMaxPacket);
  // What each polled descriptor is: a listener, the signals, or a connection.
  struct Polled {
    Listener *listener = nullptr;
    uint64_t conn = 0;
  };
  std::vector<pollfd> fds;  // kept across rounds: no allocation per request
  std::vector<Polled> what;
  while (!stopping_) {
    fds.clear();
    what.clear();
    if (signal_fd_ >= 0) {
      fds.push_back({signal_fd_, POLLIN, 0});
      what.push_back({});
    }
    for (auto &l : endpoints_) {
      if (!l.up) continue;
      fds.push_back({l.fd, POLLIN, 0});
      what.push_back({&l, 0});
    }
    for (const auto &[id, c] : conns_) {
      fds.push_back({c.fd, POLLIN, 0});
      what.push_back({nullptr, id});
    }
    auto wake = next_dir_check;
    if (!timers_.empty() && timers_.begin()->first < wake) wake = timers_.begin()->first;
    const auto wait_ms = std::chrono::duration_cast<std::chrono::milliseconds>(wake - Clock::now());
    int rc = poll(fds.data(), fds.size(), static_cast<int>(std::max<int64_t>(0, wait_ms.count())));
    if (rc < 0 && errno != EINTR) break;

    for (size_t i = 0; rc > 0 && i < fds.size() && !stopping_; ++i) {
      if (fds[i].revents == 0) continue;
      const Polled w = what[i];
      if (w.listener != nullptr) {
        // Taken down by an earlier event of this round: its descriptor is closed.
        if (!w.listener->up || w.listener->fd != fds[i].fd) continue;
        int fd = accept4(fds[i].fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd >= 0) on_accept(*w.listener, fd);
      } else if (w.conn == 0) {
        signalfd_siginfo si;
        ssize_t ignored = read(signal_fd_, &si, sizeof si);
        (void)ignored;
        stopping_ = true;
      } else {
        auto it = conns_.find(w.conn);
        if (it == conns_.end()) continue;  // closed by an earlier event of this round
        ssize_t n = recv(it->second.fd, buf.data(), buf.size(), 0);
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (n <= 0) {
          close_conn(w.conn);
        } else {
          it->second.listener->endpoint->on_packet(
              w.conn, std::span<const uint8_t>(buf.data(), static_cast<size_t>(n)));
        }
      }
    }

    const auto now = Clock::now();
    while (!timers_.empty() && timers_.begin()->first <= now && !stopping_) {
      auto fn = std::move(timers_.begin()->second);
      timers_.erase(timers_.begin());
      fn();
    }
    if (now >= next_dir_check) {
      // A test that removed its state directory no longer needs its modem;
      // one made again under the same name is another modem's.
      if (!dir_unchanged()) {
        dir_lost_ = true;
        stopping_ = true;
        fprintf(stderr, "rpk-modem-sim: the state directory %s went away\n", dir_.c_str());
      }
      next_dir_check = now + kDirCheckPeriod;
    }
  }
}

}  // namespace rpk_sim
