// The daemon: one thread, one poll loop over the service sockets, the clients
// and the control socket, with timers for late answers and services coming
// back. Requests of several clients are served as they arrive; a delayed
// answer never holds up anyone else.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "faults.h"
#include "journal.h"
#include "modem_services.h"

namespace rpk_sim {

class Daemon {
 public:
  explicit Daemon(std::string state_dir);
  ~Daemon();
  Daemon(const Daemon &) = delete;
  Daemon &operator=(const Daemon &) = delete;

  // Takes the state directory's lock. False when another daemon holds it.
  bool lock();
  // Factory image, settings, sockets. False (and *error) when the daemon
  // cannot serve.
  bool init(std::string *error);
  // Applies a scenario (the same JSON the control interface takes).
  bool apply_scenario(const nlohmann::json &scenario, std::string *error);
  // Serves until told to stop, signalled, or the state directory goes away.
  void run();

  // Executes one control command and returns its answer ({"ok": ...}).
  nlohmann::json control(const nlohmann::json &command);

 private:
  using Clock = std::chrono::steady_clock;

  struct Service {
    uint32_t id = 0;
    int listen_fd = -1;
    bool up = false;
    uint64_t downs = 0;  // a timed return applies only if no later down came
  };
  struct Conn {
    int fd = -1;
    uint32_t service = 0;  // 0: a control connection
  };

  Service *find_service(uint32_t id);
  bool bring_up(Service &s, std::string *error);
  void take_down(Service &s);
  // Takes the services (all of them when id is 0) down, and back up after ms
  // (never when ms is 0).
  void take_down_for(uint32_t id, uint32_t ms);
  void bring_all_up(uint32_t id);
  void close_conn(uint64_t id);
  // A new connection: a control one, or a client a service welcomes or refuses.
  void on_accept(int fd, uint32_t service);
  void on_request(uint64_t conn_id, const uint8_t *packet, size_t n);
  void on_control(uint64_t conn_id, const uint8_t *packet, size_t n);
  void send_packet(uint64_t conn_id, const std::vector<uint8_t> &packet);
  void after_reply(AfterReply what);
  void at(Clock::time_point when, std::function<void()> fn);
  bool apply_fault(const nlohmann::json &j, std::string *error);
  nlohmann::json status();

  std::string dir_;
  int lock_fd_ = -1;
  int ctl_fd_ = -1;
  int signal_fd_ = -1;
  bool stopping_ = false;
  Modem modem_;
  Faults faults_;
  Journal journal_;
  std::vector<Service> services_;
  std::map<uint64_t, Conn> conns_;
  uint64_t next_conn_ = 1;
  uint64_t refused_clients_ = 0;
  std::multimap<Clock::time_point, std::function<void()>> timers_;
};

// The `start` command: starts the daemon in the background (or in the
// foreground) and returns once it serves. 0 on success.
int start_daemon(const std::string &scenario_file, bool foreground);

}  // namespace rpk_sim
