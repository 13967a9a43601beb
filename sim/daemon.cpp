#include "daemon.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "control_link.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

constexpr auto kDirCheckPeriod = std::chrono::seconds(1);

int listen_at(const std::string &path, std::string *error) {
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
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

Daemon::Daemon(std::string state_dir)
    : dir_(std::move(state_dir)), modem_(dir_), journal_(dir_ + "/journal.jsonl") {
  services_.push_back({kExtendQmiServiceId});
  services_.push_back({kSarServiceId});
}

Daemon::~Daemon() {
  for (auto &s : services_) take_down(s);
  for (auto &[id, c] : conns_) close(c.fd);
  if (ctl_fd_ >= 0) {
    close(ctl_fd_);
    unlink(control_socket_path().c_str());
  }
  if (signal_fd_ >= 0) close(signal_fd_);
  if (lock_fd_ >= 0) {
    unlink(rpk_host::modem_sim_pid_path().c_str());
    close(lock_fd_);
  }
}

bool Daemon::lock() {
  lock_fd_ = open(rpk_host::modem_sim_lock_path().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock_fd_ < 0) return false;
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  if (fcntl(lock_fd_, F_OFD_SETLK, &fl) != 0) {
    close(lock_fd_);
    lock_fd_ = -1;
    return false;
  }
  rpk_host::write_file_atomic(rpk_host::modem_sim_pid_path(), std::to_string(getpid()) + "\n");
  return true;
}

bool Daemon::init(std::string *error) {
  modem_.store().ensure_factory();
  signal(SIGPIPE, SIG_IGN);
  sigset_t mask;
  sigemptyset(&mask);
  sigaddset(&mask, SIGTERM);
  sigaddset(&mask, SIGINT);
  sigaddset(&mask, SIGHUP);
  sigprocmask(SIG_BLOCK, &mask, nullptr);
  signal_fd_ = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
  ctl_fd_ = listen_at(control_socket_path(), error);
  if (ctl_fd_ < 0) return false;
  for (auto &s : services_) {
    if (!bring_up(s, error)) return false;
  }
  return true;
}

Daemon::Service *Daemon::find_service(uint32_t id) {
  for (auto &s : services_) {
    if (s.id == id) return &s;
  }
  return nullptr;
}

bool Daemon::bring_up(Service &s, std::string *error) {
  if (s.up) return true;
  s.listen_fd = listen_at(rpk_qmi::service_socket_path(s.id), error);
  s.up = s.listen_fd >= 0;
  return s.up;
}

void Daemon::take_down(Service &s) {
  if (!s.up) return;
  // The file goes first so no client sees a socket that no longer listens.
  unlink(rpk_qmi::service_socket_path(s.id).c_str());
  close(s.listen_fd);
  s.listen_fd = -1;
  s.up = false;
  std::vector<uint64_t> clients;
  for (const auto &[id, c] : conns_) {
    if (c.service == s.id) clients.push_back(id);
  }
  for (uint64_t id : clients) close_conn(id);
}

void Daemon::take_down_for(uint32_t id, uint32_t ms) {
  for (auto &s : services_) {
    if (id != 0 && s.id != id) continue;
    take_down(s);
    const uint64_t down = ++s.downs;
    if (ms == 0) continue;
    const uint32_t service = s.id;
    at(Clock::now() + std::chrono::milliseconds(ms), [this, service, down] {
      Service *again = find_service(service);
      if (again != nullptr && again->downs == down) bring_all_up(service);
    });
  }
}

void Daemon::bring_all_up(uint32_t id) {
  for (auto &s : services_) {
    if (id != 0 && s.id != id) continue;
    std::string error;
    if (!bring_up(s, &error)) fprintf(stderr, "rpk-modem-sim: %s\n", error.c_str());
  }
}

void Daemon::close_conn(uint64_t id) {
  auto it = conns_.find(id);
  if (it == conns_.end()) return;
  close(it->second.fd);
  conns_.erase(it);
}

void Daemon::at(Clock::time_point when, std::function<void()> fn) {
  timers_.emplace(when, std::move(fn));
}

void Daemon::send_packet(uint64_t conn_id, const std::vector<uint8_t> &packet) {
  auto it = conns_.find(conn_id);
  if (it == conns_.end()) return;  // the client left, or its service went down
  if (send(it->second.fd, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0) {
    close_conn(conn_id);
  }
}

void Daemon::on_accept(int fd, uint32_t service) {
  if (service != 0 && faults_.refuses_client(service)) {
    // Closed before the welcome: the client's init fails; no request was made,
    // so the journal has nothing to say.
    close(fd);
    ++refused_clients_;
    return;
  }
  const uint64_t id = next_conn_++;
  conns_[id] = Conn{fd, service};
  if (service == 0) return;
  std::vector<uint8_t> welcome(rpk_qmi::kHeaderLen);
  rpk_qmi::put_header(welcome.data(), {rpk_qmi::kCtlWelcome, 0, 0, 0});
  send_packet(id, welcome);
}

void Daemon::on_request(uint64_t conn_id, const uint8_t *packet, size_t n) {
  const uint32_t service = conns_[conn_id].service;
  nlohmann::json entry = {
      {"service", hex_id(service)}, {"client", conn_id}, {"wire", to_hex(packet, n)}};
  rpk_qmi::Header h;
  if (!rpk_qmi::parse_header(packet, n, &h) || h.ctl != rpk_qmi::kCtlRequest) {
    entry["error"] = "malformed packet";
    journal_.append(entry);
    return;
  }
  entry["txn"] = h.txn;
  Outcome out = modem_.handle(service, h.msg_id, packet + rpk_qmi::kHeaderLen, h.len, faults_);
  entry.update(out.journal);
  journal_.append(entry);
  if (!out.reply) {
    close_conn(conn_id);
    return;
  }
  std::vector<uint8_t> reply(rpk_qmi::kHeaderLen + out.tlvs.size());
  rpk_qmi::put_header(reply.data(), {rpk_qmi::kCtlResponse, h.txn, h.msg_id,
                                     static_cast<uint16_t>(out.tlvs.size())});
  std::copy(out.tlvs.begin(), out.tlvs.end(), reply.begin() + rpk_qmi::kHeaderLen);
  const AfterReply after = out.after;
  if (out.delay_ms == 0) {
    send_packet(conn_id, reply);
    after_reply(after);
  } else {
    at(Clock::now() + std::chrono::milliseconds(out.delay_ms), [this, conn_id, reply, after] {
      send_packet(conn_id, reply);
      after_reply(after);
    });
  }
}

void Daemon::after_reply(AfterReply what) {
  if (what == AfterReply::kNothing) return;
  // A restart or a crash takes every modem service away; a dump is written
  // on the way down.
  if (what == AfterReply::kFullDump) {
    write_dump(dir_, modem_.counters()["full_dumps"].get<uint64_t>());
    take_down_for(0, modem_.settings().dump_ms);
  } else {
    take_down_for(0, modem_.settings().ssr_ms);
  }
}

void Daemon::on_control(uint64_t conn_id, const uint8_t *packet, size_t n) {
  nlohmann::json command =
      nlohmann::json::parse(std::string(reinterpret_cast<const char *>(packet), n), nullptr, false);
  nlohmann::json answer = command.is_object()
                              ? control(command)
                              : nlohmann::json{{"ok", false}, {"error", "not a JSON object"}};
  const std::string text = dump_json(answer);
  send_packet(conn_id, std::vector<uint8_t>(text.begin(), text.end()));
  close_conn(conn_id);
}

void Daemon::run() {
  auto next_dir_check = Clock::now() + kDirCheckPeriod;
  std::vector<uint8_t> buf(rpk_qmi::kMaxPacket);
  while (!stopping_) {
    std::vector<pollfd> fds;
    std::vector<int64_t> what;  // -1 control listener, -2 signals, -(3 + i) service i, else conn
    fds.push_back({ctl_fd_, POLLIN, 0});
    what.push_back(-1);
    if (signal_fd_ >= 0) {
      fds.push_back({signal_fd_, POLLIN, 0});
      what.push_back(-2);
    }
    for (size_t i = 0; i < services_.size(); ++i) {
      if (!services_[i].up) continue;
      fds.push_back({services_[i].listen_fd, POLLIN, 0});
      what.push_back(-3 - static_cast<int64_t>(i));
    }
    for (const auto &[id, c] : conns_) {
      fds.push_back({c.fd, POLLIN, 0});
      what.push_back(static_cast<int64_t>(id));
    }
    auto wake = next_dir_check;
    if (!timers_.empty() && timers_.begin()->first < wake) wake = timers_.begin()->first;
    const auto wait_ms = std::chrono::duration_cast<std::chrono::milliseconds>(wake - Clock::now());
    int rc = poll(fds.data(), fds.size(), static_cast<int>(std::max<int64_t>(0, wait_ms.count())));
    if (rc < 0 && errno != EINTR) break;

    for (size_t i = 0; rc > 0 && i < fds.size() && !stopping_; ++i) {
      if (fds[i].revents == 0) continue;
      const int64_t w = what[i];
      if (w == -1 || w <= -3) {
        const uint32_t service = w == -1 ? 0 : services_[static_cast<size_t>(-3 - w)].id;
        int fd = accept4(fds[i].fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd >= 0) on_accept(fd, service);
      } else if (w == -2) {
        signalfd_siginfo si;
        ssize_t ignored = read(signal_fd_, &si, sizeof si);
        (void)ignored;
        stopping_ = true;
      } else {
        const auto id = static_cast<uint64_t>(w);
        if (conns_.count(id) == 0) continue;  // closed by an earlier event of this round
        ssize_t n = recv(fds[i].fd, buf.data(), buf.size(), 0);
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (n <= 0) {
          close_conn(id);
        } else if (conns_[id].service == 0) {
          on_control(id, buf.data(), static_cast<size_t>(n));
        } else {
          on_request(id, buf.data(), static_cast<size_t>(n));
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
      // A test that removed its state directory no longer needs its modem.
      struct stat st {};
      if (stat(dir_.c_str(), &st) != 0) stopping_ = true;
      next_dir_check = now + kDirCheckPeriod;
    }
  }
}

}  // namespace rpk_sim
