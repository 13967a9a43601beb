// A QMI service of the simulated modem (Extend-QMI 0xFFE4, SAR 0x11): welcomes
// each client (or refuses it under the refuse-init fault), answers one request
// packet at a time through the modem, and journals each request right after
// its answer goes out (before the daemon reads anything else).
#pragma once

#include "endpoint.h"
#include "faults.h"
#include "platform/host/link/qmi_host_transport.h"

namespace rpk_sim {

// What every endpoint with the QMI wire form does (the QMI services and the
// modem API's statistics endpoint).
//
// A new connection: refused under the refuse-init fault of `service` (closed
// before the welcome, so the client's init fails), else welcomed.
bool welcome_client(EndpointHost &host, uint32_t service, uint64_t conn);
// Reads a request's header into *h. A packet that is not a request is
// journalled with `entry` (which already names the service and client) and
// false is returned; else `entry` gains "txn".
bool take_request(EndpointHost &host, std::span<const uint8_t> packet, nlohmann::json &entry,
                  rpk_qmi::Header *h);
// Journals `entry` with the request's bytes as "wire".
void journal_request(EndpointHost &host, std::span<const uint8_t> packet, nlohmann::json &entry);
// Answers request `req` with `body` (damaged by `corrupt` when given),
// `delay_ms` late; `after` takes its effect just before the answer goes out.
void send_response(EndpointHost &host, uint64_t conn, const rpk_qmi::Header &req,
                   std::span<const uint8_t> body, uint32_t delay_ms,
                   AfterReply after = AfterReply::kNothing, const Corruption *corrupt = nullptr);

class QmiServiceEndpoint : public Endpoint {
 public:
  QmiServiceEndpoint(EndpointHost &host, uint32_t service_id);

  uint32_t service_id() const override { return id_; }
  std::string name() const override;
  std::string socket_path() const override;
  bool on_accept(uint64_t conn) override;
  void on_packet(uint64_t conn, std::span<const uint8_t> packet) override;
  void on_close(uint64_t conn) override;

 private:
  EndpointHost &host_;
  uint32_t id_;
};

}  // namespace rpk_sim
