// The daemon: one thread, one poll loop over its endpoints' sockets and their
// connections, with timers for late answers and services coming back.
// Requests of several clients are served as they arrive; a delayed answer
// never holds up anyone else.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "endpoint.h"
#include "faults.h"
#include "journal.h"
#include "modem_services.h"

namespace rpk_sim {

class Daemon : public EndpointHost {
 public:
  explicit Daemon(std::string state_dir);
  ~Daemon() override;
  Daemon(const Daemon &) = delete;
  Daemon &operator=(const Daemon &) = delete;

  // Takes the state directory's lock, then clears what a killed predecessor
  // left behind (socket files, temporaries of interrupted writes). False when
  // another daemon holds the lock, or (with *error) when the lock file cannot
  // be opened.
  bool lock(std::string *error);
  // Factory image, settings, sockets. False (and *error) when the daemon
  // cannot serve.
  bool init(std::string *error);
  // Applies a scenario (the same JSON the control interface takes).
  bool apply_scenario(const nlohmann::json &scenario, std::string *error);
  // Serves until told to stop, signalled, or the state directory goes away
  // (removed, or removed and made again).
  void run();

  // Executes one control command and returns its answer ({"ok": ...}).
  nlohmann::json control(const nlohmann::json &command);

  // EndpointHost
  void send_packet(uint64_t conn, std::span<const uint8_t> packet) override;
  void close_conn(uint64_t conn) override;
  void after(std::chrono::milliseconds delay, std::function<void()> fn) override;
  void after_reply(AfterReply what) override;
  std::vector<uint64_t> connections_of(uint32_t service_id) const override;
  Journal &journal() override { return journal_; }
  Modem &modem() override { return modem_; }
  Faults &faults() override { return faults_; }

 private:
  using Clock = std::chrono::steady_clock;

  struct Listener {
    std::unique_ptr<Endpoint> endpoint;
    int fd = -1;
    bool up = false;
    uint64_t downs = 0;  // a timed return applies only if no later down came
  };
  struct Conn {
    int fd = -1;
    Listener *listener = nullptr;
  };

  // The modem endpoint of a service id, or null.
  Listener *find_service(uint32_t id);
  bool bring_up(Listener &l, std::string *error);
  void take_down(Listener &l);
  // Takes the modem endpoints (all of them when id is 0) down, and back up
  // after ms (never when ms is 0).
  void take_down_for(uint32_t id, uint32_t ms);
  void bring_all_up(uint32_t id);
  void on_accept(Listener &l, int fd);
  bool apply_fault(const nlohmann::json &j, std::string *error);
  nlohmann::json status();

  // The state directory is still the one the daemon started in.
  bool dir_unchanged() const;

  std::string dir_;
  dev_t dir_dev_ = 0;
  ino_t dir_ino_ = 0;
  bool dir_lost_ = false;  // nothing in the path is the daemon's any more
  int lock_fd_ = -1;
  int signal_fd_ = -1;
  bool stopping_ = false;
  Modem modem_;
  Faults faults_;
  Journal journal_;
  // The control endpoint first; it never goes down.
  std::vector<Listener> endpoints_;
  std::map<uint64_t, Conn> conns_;
  uint64_t next_conn_ = 1;
  uint64_t refused_clients_ = 0;
  std::multimap<Clock::time_point, std::function<void()>> timers_;
};

// The `start` command: starts the daemon in the background (or in the
// foreground) and returns once it serves. 0 on success.
int start_daemon(const std::string &scenario_file, bool foreground);

}  // namespace rpk_sim
