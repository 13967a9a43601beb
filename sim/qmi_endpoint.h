// A QMI service of the simulated modem (Extend-QMI 0xFFE4, SAR 0x11): welcomes
// each client (or refuses it under the refuse-init fault), answers one request
// packet at a time through the modem, and journals each request before its
// answer goes out.
#pragma once

#include "endpoint.h"

namespace rpk_sim {

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
