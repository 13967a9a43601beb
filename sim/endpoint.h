// An endpoint is one socket of the simulated modem: a QMI service, the diag
// channel, the modem API, or the control interface. The daemon's poll loop
// owns the sockets and the connections; an endpoint only says whether it takes
// a new connection on and what it does with each packet. A new endpoint is a
// new class added to the daemon's list, never a change to the loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace rpk_sim {

class Faults;
class Journal;
class Modem;

// What happens to the modem after an answer has gone out.
enum class AfterReply { kNothing, kRestart, kFullDump };

// What the daemon offers its endpoints. Everything runs on the daemon's one
// thread, so none of this needs a lock.
class EndpointHost {
 public:
  virtual ~EndpointHost() = default;
  // Sends one packet on a connection; a connection that cannot take it is
  // closed. A connection that is gone is ignored.
  virtual void send_packet(uint64_t conn, std::span<const uint8_t> packet) = 0;
  virtual void close_conn(uint64_t conn) = 0;
  // Runs fn on the daemon's thread after `delay`.
  virtual void after(std::chrono::milliseconds delay, std::function<void()> fn) = 0;
  // A restart or full dump: every modem endpoint goes away for a while. Called
  // just before the answer is sent; the answer still reaches its client.
  virtual void after_reply(AfterReply what) = 0;
  // Connections currently open on an endpoint (by its service id).
  virtual std::vector<uint64_t> connections_of(uint32_t service_id) const = 0;
  virtual Journal &journal() = 0;
  virtual Modem &modem() = 0;
  virtual Faults &faults() = 0;
};

class Endpoint {
 public:
  virtual ~Endpoint() = default;

  // The id faults and outages name it by (a QMI service id, or a host-only id
  // above 0xFFFF); 0 for the control interface, which never goes down.
  virtual uint32_t service_id() const = 0;
  // Whether faults naming `id` are its own (an endpoint may answer to several
  // ids, one per call it serves).
  virtual bool answers_for(uint32_t id) const { return id == service_id(); }
  // Its name in `status` and in `--service NAME`.
  virtual std::string name() const = 0;
  // The socket file it listens at.
  virtual std::string socket_path() const = 0;
  // Seqpacket (one message per packet) unless it says otherwise.
  virtual int socket_type() const;

  // A new connection: false closes it at once (the endpoint refused it).
  virtual bool on_accept(uint64_t conn) = 0;
  // One packet received on a connection it took.
  virtual void on_packet(uint64_t conn, std::span<const uint8_t> packet) = 0;
  // The connection ended (either side); drop what was kept for it.
  virtual void on_close(uint64_t /*conn*/) {}

  // A control command for this endpoint ({"cmd": ...}); nullopt when it is
  // not one of its own. The answer is {"ok": true, ...} or {"ok": false, "error": ...}.
  virtual std::optional<nlohmann::json> control(const nlohmann::json & /*command*/) {
    return std::nullopt;
  }
  // Extra fields for `status` (an object), or null.
  virtual nlohmann::json status() const { return nullptr; }
  // A factory reset: back to the settings it had when the daemon started.
  virtual void reset() {}
};

}  // namespace rpk_sim
