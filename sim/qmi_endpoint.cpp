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

bool QmiServiceEndpoint::on_accept(uint64_t conn) { return welcome_client(host_, id_, conn); }

void QmiServiceEndpoint::on_close(uint64_t conn) { host_.modem().drop_transfers(conn); }

void QmiServiceEndpoint::on_packet(uint64_t conn, std::span<const uint8_t> packet) {
  nlohmann::json entry = {{"service", hex_id(id_)}, {"client", conn}};
  rpk_qmi::Header h;
  if (!take_request(host_, packet, entry, &h)) return;
  Outcome out = host_.modem().handle(conn, id_, h.msg_id, packet.data() + rpk_qmi::kHeaderLen,
                                     h.len, host_.faults());
  if (out.reply) {
    send_response(host_, conn, h, out.tlvs, out.delay_ms, out.after, &out.corrupt);
  } else {
    host_.close_conn(conn);
  }
  // The entry is made and written while the client reads its answer; the
  // daemon reads nothing else before it is in the file, so a reader who has
  // since had any answer from the control socket finds it there.
  nlohmann::json described = journal_of(out);
  for (auto &[key, value] : described.items()) entry[key] = std::move(value);
  journal_request(host_, packet, entry);
}

bool welcome_client(EndpointHost &host, uint32_t service, uint64_t conn) {
  // No request was made before a refusal, so the journal has nothing to say.
  if (host.faults().refuses_client(service)) return false;
  host.send_packet(conn, rpk_link::kWelcome);
  return true;
}

bool take_request(EndpointHost &host, std::span<const uint8_t> packet, nlohmann::json &entry,
                  rpk_qmi::Header *h) {
  if (!rpk_qmi::parse_header(packet.data(), packet.size(), h) || h->ctl != rpk_qmi::kCtlRequest) {
    entry["error"] = "malformed packet";
    journal_request(host, packet, entry);
    return false;
  }
  entry["txn"] = h->txn;
  return true;
}

void journal_request(EndpointHost &host, std::span<const uint8_t> packet, nlohmann::json &entry) {
  entry["wire"] = to_hex(packet.data(), packet.size());
  host.journal().append(entry);
}

void send_response(EndpointHost &host, uint64_t conn, const rpk_qmi::Header &req,
                   std::span<const uint8_t> body, uint32_t delay_ms, AfterReply after,
                   const Corruption *corrupt) {
  std::vector<uint8_t> reply(rpk_qmi::kHeaderLen);
  rpk_qmi::put_header(reply.data(), {rpk_qmi::kCtlResponse, req.txn, req.msg_id,
                                     static_cast<uint16_t>(body.size())});
  reply.insert(reply.end(), body.begin(), body.end());
  if (corrupt != nullptr) corrupt->apply(reply);
  auto answer = [&host, conn, reply = std::move(reply), after] {
    host.after_reply(after);  // first: it keeps new clients out
    host.send_packet(conn, reply);
  };
  if (delay_ms == 0) {
    answer();
  } else {
    host.after(std::chrono::milliseconds(delay_ms), std::move(answer));
  }
}

}  // namespace rpk_sim
