#include "qmi_endpoint.h"

#include <sys/socket.h>

#include "faults.h"
#include "journal.h"
#include "modem_services.h"
#include "platform/host/link/handshake.h"
#include "platform/host/link/qmi_host_transport.h"
#include "sim_text.h"

namespace rpk_sim {

int Endpoint::socket_type() const { return SOCK_SEQPACKET; }

QmiServiceEndpoint::QmiServiceEndpoint(EndpointHost &host, uint32_t service_id)
    : host_(host), id_(service_id) {}

std::string QmiServiceEndpoint::name() const { return service_name(id_); }

std::string QmiServiceEndpoint::socket_path() const { return rpk_qmi::service_socket_path(id_); }

bool QmiServiceEndpoint::on_accept(uint64_t conn) {
  if (host_.faults().refuses_client(id_)) {
    // Closed before the welcome: the client's init fails; no request was made,
    // so the journal has nothing to say.
    return false;
  }
  host_.send_packet(conn, rpk_link::kWelcome);
  return true;
}

void QmiServiceEndpoint::on_packet(uint64_t conn, std::span<const uint8_t> packet) {
  nlohmann::json entry = {
      {"service", hex_id(id_)}, {"client", conn}, {"wire", to_hex(packet.data(), packet.size())}};
  rpk_qmi::Header h;
  if (!rpk_qmi::parse_header(packet.data(), packet.size(), &h) || h.ctl != rpk_qmi::kCtlRequest) {
    entry["error"] = "malformed packet";
    host_.journal().append(entry);
    return;
  }
  entry["txn"] = h.txn;
  Outcome out = host_.modem().handle(id_, h.msg_id, packet.data() + rpk_qmi::kHeaderLen, h.len,
                                     host_.faults());
  entry.update(out.journal);
  host_.journal().append(entry);
  if (!out.reply) {
    host_.close_conn(conn);
    return;
  }
  std::vector<uint8_t> reply(rpk_qmi::kHeaderLen + out.tlvs.size());
  rpk_qmi::put_header(reply.data(), {rpk_qmi::kCtlResponse, h.txn, h.msg_id,
                                     static_cast<uint16_t>(out.tlvs.size())});
  std::copy(out.tlvs.begin(), out.tlvs.end(), reply.begin() + rpk_qmi::kHeaderLen);
  const AfterReply after = out.after;
  auto answer = [this, conn, reply = std::move(reply), after] {
    host_.send_packet(conn, reply);
    host_.after_reply(after);
  };
  if (out.delay_ms == 0) {
    answer();
  } else {
    host_.after(std::chrono::milliseconds(out.delay_ms), std::move(answer));
  }
}

}  // namespace rpk_sim
