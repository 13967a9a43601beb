#include "diag_endpoint.h"

#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "faults.h"
#include "journal.h"
#include "modem_services.h"
#include "platform/host/link/diag_host_transport.h"
#include "platform/host/link/handshake.h"
#include "platform/host/link/qmi_host_transport.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

using nlohmann::json;
using Bytes = std::vector<uint8_t>;

// Diag command codes the modem answers, and its three error answers (the
// code, then the first bytes of the refused request).
constexpr uint8_t kCmdVersion = 0x00;
constexpr uint8_t kCmdBadCmd = 0x13;
constexpr uint8_t kCmdBadParams = 0x14;
constexpr uint8_t kCmdBadLen = 0x15;
constexpr uint8_t kCmdDiagVersion = 0x1C;
constexpr uint8_t kCmdTimestamp = 0x1D;
constexpr uint8_t kCmdSubsysDispatch = 0x4B;
constexpr uint8_t kCmdExtBuildId = 0x7C;
constexpr size_t kErrorEchoMax = 16;
constexpr size_t kSubsysHeaderLen = 4;  // code, subsystem u8, command u16

// Subsystems whose dispatch the modem echoes.
constexpr std::array<uint8_t, 6> kKnownSubsystems = {
    0x04,  // WCDMA
    0x08,  // GSM
    0x09,  // UMTS
    0x0B,  // FTM
    0x12,  // diag services
    0x13,  // EFS
};

constexpr uint16_t kDiagVersion = 8;

// DCI results of the library's interface.
constexpr int32_t kDciNoError = 1001;
constexpr int32_t kDciUnknownClient = 1004;
constexpr int32_t kDciBadParam = 1008;

constexpr uint32_t kMaxAnswer = 65536;
constexpr int kMaxProc = 16;

struct DiagServiceName {
  uint32_t id;
  const char *name;
};
constexpr DiagServiceName kDiagServices[] = {
    {kDiagServiceId, "diag"},       {kDciRegisterId, "dci-register"}, {kDciSignalId, "dci-signal"},
    {kDciSupportId, "dci-support"}, {kDciStreamId, "dci-stream"},     {kDciSendId, "dci-send"},
};

Bytes error_answer(uint8_t code, const uint8_t *req, size_t n) {
  // Sized first: GCC 12 at -O3 misreads an insert into a one-byte vector.
  const size_t echo = std::min(n, kErrorEchoMax);
  Bytes out(1 + echo);
  out[0] = code;
  std::copy(req, req + echo, out.begin() + 1);
  return out;
}

void append_text(Bytes &out, const char *text, size_t width) {
  const size_t n = std::min(strlen(text), width);
  out.insert(out.end(), text, text + n);
  out.resize(out.size() + width - n, 0);
}

// 55 bytes: code, compile date and time, release date and time, version
// directory, then the station class, CAI revision, model, firmware revision
// (u16), slot cycle index and hardware version.
Bytes version_answer() {
  Bytes out{kCmdVersion};
  append_text(out, "Nov 22 2026", 11);
  append_text(out, "12:00:00", 8);
  append_text(out, "Nov 22 2026", 11);
  append_text(out, "12:00:00", 8);
  append_text(out, "RPKSIM01", 8);
  const uint8_t tail[] = {0x01, 0x0B, 0x5A, 0x01, 0x00, 0x02, 0x01, 0x00};
  out.insert(out.end(), std::begin(tail), std::end(tail));
  return out;
}

// Code, then a u64 whose upper 48 bits count 1.25 ms since 1980-01-06.
Bytes timestamp_answer() {
  constexpr int64_t kGpsEpochUnix = 315964800;
  timeval tv{};
  gettimeofday(&tv, nullptr);
  const int64_t us = (static_cast<int64_t>(tv.tv_sec) - kGpsEpochUnix) * 1000000 + tv.tv_usec;
  const uint64_t ticks = static_cast<uint64_t>(us / 1250) << 16;
  Bytes out{kCmdTimestamp};
  for (int i = 0; i < 8; ++i) out.push_back(static_cast<uint8_t>(ticks >> (8 * i)));
  return out;
}

// Code, version, reserved u16, MSM hardware version u32, model id u32, then
// the build id and the model name, each with its terminator.
Bytes ext_build_id_answer() {
  Bytes out{kCmdExtBuildId, 0x00, 0x00, 0x00};
  const uint32_t words[] = {0x000A10E1, 0x00000519};
  for (uint32_t w : words) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(w >> (8 * i)));
  }
  for (const char *s : {"RPKSIM.MPSS.1.0", "rpk-modem-sim"})
    out.insert(out.end(), s, s + strlen(s) + 1);
  return out;
}

int32_t get_i32(const uint8_t *p) { return static_cast<int32_t>(rpk_diag::get_u32(p)); }

Bytes i32_bytes(int32_t v) {
  Bytes out(4);
  rpk_diag::put_u32(out.data(), static_cast<uint32_t>(v));
  return out;
}

const char *call_name(uint8_t type) {
  switch (type) {
    case rpk_diag::kDciRegister:
      return "dci_register";
    case rpk_diag::kDciSignal:
      return "dci_signal";
    case rpk_diag::kDciSupport:
      return "dci_support";
    case rpk_diag::kDciStream:
      return "dci_stream";
    case rpk_diag::kDciRelease:
      return "dci_release";
    case rpk_diag::kRemoteMask:
      return "remote_mask";
    default:
      return "unknown";
  }
}

// The fault id of a DCI call (0: the call takes no fault).
uint32_t call_fault_id(uint8_t type) {
  switch (type) {
    case rpk_diag::kDciRegister:
      return kDciRegisterId;
    case rpk_diag::kDciSignal:
      return kDciSignalId;
    case rpk_diag::kDciSupport:
      return kDciSupportId;
    case rpk_diag::kDciStream:
      return kDciStreamId;
    default:
      return 0;
  }
}

}  // namespace

bool diag_owns_service(uint32_t id) { return diag_service_name(id) != nullptr; }

const char *diag_service_name(uint32_t id) {
  for (const auto &s : kDiagServices) {
    if (s.id == id) return s.name;
  }
  return nullptr;
}

uint32_t diag_service_by_name(const std::string &name) {
  for (const auto &s : kDiagServices) {
    if (name == s.name) return s.id;
  }
  return 0;
}

Bytes diag_builtin_answer(const uint8_t *req, size_t n) {
  if (n == 0) return {kCmdBadLen};
  const uint8_t code = req[0];
  switch (code) {
    case kCmdVersion:
    case kCmdDiagVersion:
    case kCmdTimestamp:
    case kCmdExtBuildId:
      // These take no parameters.
      if (n != 1) return error_answer(kCmdBadParams, req, n);
      if (code == kCmdVersion) return version_answer();
      if (code == kCmdTimestamp) return timestamp_answer();
      if (code == kCmdExtBuildId) return ext_build_id_answer();
      return {kCmdDiagVersion, static_cast<uint8_t>(kDiagVersion), kDiagVersion >> 8};
    case kCmdSubsysDispatch:
      if (n < kSubsysHeaderLen) return error_answer(kCmdBadLen, req, n);
      if (std::find(kKnownSubsystems.begin(), kKnownSubsystems.end(), req[1]) ==
          kKnownSubsystems.end()) {
        return error_answer(kCmdBadCmd, req, n);
      }
      return Bytes(req, req + n);
    default:
      return error_answer(kCmdBadCmd, req, n);
  }
}

DiagEndpoint::DiagEndpoint(EndpointHost &host) : host_(host) {}

std::string DiagEndpoint::socket_path() const { return rpk_diag::diag_socket_path(); }

bool DiagEndpoint::on_accept(uint64_t conn) {
  if (host_.faults().refuses_client(kDiagServiceId)) return false;
  // Welcomed as the QMI services do, so the library joins the same way.
  host_.send_packet(conn, rpk_link::kWelcome);
  host_.journal().append({{"service", "diag"}, {"client", conn}, {"session", "open"}});
  return true;
}

void DiagEndpoint::on_close(uint64_t conn) {
  clients_.erase(conn);
  host_.journal().append({{"service", "diag"}, {"client", conn}, {"session", "closed"}});
}

void DiagEndpoint::reply(uint64_t conn, uint8_t type, uint8_t proc, uint8_t flags, uint32_t tag,
                         const Bytes &body) {
  Bytes packet(rpk_diag::kHeaderLen + body.size());
  rpk_diag::put_header(packet.data(), {type, proc, 0, flags, tag});
  std::copy(body.begin(), body.end(), packet.begin() + rpk_diag::kHeaderLen);
  host_.send_packet(conn, packet);
}

Bytes DiagEndpoint::answer_for(const uint8_t *req, size_t n) const {
  const Answer *best = nullptr;
  for (const auto &a : answers_) {
    if (a.prefix.size() <= n && std::equal(a.prefix.begin(), a.prefix.end(), req) &&
        (best == nullptr || a.prefix.size() >= best->prefix.size())) {
      best = &a;
    }
  }
  return best != nullptr ? best->response : diag_builtin_answer(req, n);
}

void DiagEndpoint::on_packet(uint64_t conn, std::span<const uint8_t> packet) {
  rpk_diag::Header h;
  if (!rpk_diag::parse_header(packet.data(), packet.size(), &h)) {
    host_.journal().append({{"service", "diag"},
                            {"client", conn},
                            {"wire", to_hex(packet.data(), packet.size())},
                            {"error", "malformed packet"}});
    return;
  }
  const uint8_t *body = packet.data() + rpk_diag::kHeaderLen;
  const size_t n = packet.size() - rpk_diag::kHeaderLen;
  if (h.type == rpk_diag::kCallbackReq || h.type == rpk_diag::kDciSend) {
    on_raw_request(conn, h.type, h.proc, h.mode, h.tag, body, n);
  } else {
    on_dci_call(conn, h.type, h.proc, h.tag, body, n);
  }
}

void DiagEndpoint::on_raw_request(uint64_t conn, uint8_t type, uint8_t proc, uint8_t mode,
                                  uint32_t tag, const uint8_t *body, size_t n) {
  const bool dci = type == rpk_diag::kDciSend;
  json entry = {{"service", "diag"}, {"client", conn}, {"channel", dci ? "dci" : "callback"}};
  if (dci) {
    // The call itself: is the request taken at all?
    int32_t result = kDciNoError;
    const int32_t client = n >= 4 ? get_i32(body) : 0;
    const FaultEffect call_fx = host_.faults().on_request(kDciSendId, -1, true);
    if (n < 5) {
      result = kDciBadParam;
    } else if (call_fx.error) {
      result = static_cast<int32_t>(call_fx.error_code);
      entry["fault"] = "error";
    } else if (clients_[conn].count(client) == 0) {
      result = kDciUnknownClient;
    }
    entry["dci_client"] = client;
    entry["result"] = result;
    if (n >= 4) {
      body += 4;
      n -= 4;
    }
    entry["request"] = to_hex(body, n);
    if (result != kDciNoError) {
      host_.journal().append(entry);
      reply(conn, rpk_diag::kAnswer | type, 0, 0, tag, i32_bytes(result));
      return;
    }
  } else {
    entry["proc"] = proc;
    entry["mode"] = mode;
    entry["request"] = to_hex(body, n);
    if (proc > kMaxProc || (proc != 0 && (remote_mask_ & (1u << (proc - 1))) == 0)) {
      entry["error"] = "no such processor";
      host_.journal().append(entry);
      return;
    }
  }

  const FaultEffect fx = host_.faults().on_request(kDiagServiceId, -1);
  if (fx.drop) {
    // The request was taken; no response follows.
    entry["fault"] = "drop";
    host_.journal().append(entry);
    if (dci) reply(conn, rpk_diag::kAnswer | type, 0, 0, tag, i32_bytes(kDciNoError));
    return;
  }
  Bytes response =
      fx.error ? error_answer(static_cast<uint8_t>(fx.error_code), body, n) : answer_for(body, n);
  if (fx.error) entry["fault"] = "error";
  entry["response"] = to_hex(response.data(), response.size());
  entry["response_len"] = response.size();

  // A DCI response may be cut into pieces, the last one flagged.
  std::vector<Bytes> pieces;
  if (!dci || dci_piece_ == 0) {
    pieces.push_back(std::move(response));
  } else {
    for (size_t at = 0; at < response.size(); at += dci_piece_) {
      const size_t len = std::min<size_t>(dci_piece_, response.size() - at);
      pieces.emplace_back(response.begin() + at, response.begin() + at + len);
    }
  }
  entry["pieces"] = pieces.size();
  if (fx.delay_ms > 0) {
    entry["fault"] = "delay";
    entry["delay_ms"] = fx.delay_ms;
  }
  host_.journal().append(entry);
  // The request was taken; its response follows.
  if (dci) reply(conn, rpk_diag::kAnswer | type, 0, 0, tag, i32_bytes(kDciNoError));

  auto send = [this, conn, dci, proc, tag, pieces = std::move(pieces)] {
    for (size_t i = 0; i < pieces.size(); ++i) {
      if (dci) {
        reply(conn, rpk_diag::kDciPiece, 0, i + 1 == pieces.size() ? rpk_diag::kFlagLast : 0, tag,
              pieces[i]);
      } else {
        reply(conn, rpk_diag::kCallbackRsp, proc, 0, 0, pieces[i]);
      }
    }
  };
  if (fx.delay_ms == 0) {
    send();
  } else {
    host_.after(std::chrono::milliseconds(fx.delay_ms), std::move(send));
  }
}

void DiagEndpoint::on_dci_call(uint64_t conn, uint8_t type, uint8_t proc, uint32_t tag,
                               const uint8_t *body, size_t n) {
  json entry = {{"service", "diag"}, {"client", conn}, {"call", call_name(type)}};
  Bytes answer;
  if (type == rpk_diag::kRemoteMask) {
    answer = {static_cast<uint8_t>(remote_mask_), static_cast<uint8_t>(remote_mask_ >> 8)};
    entry["remote_mask"] = remote_mask_;
    host_.journal().append(entry);
    reply(conn, rpk_diag::kAnswer | type, proc, 0, tag, answer);
    return;
  }
  int32_t result = kDciNoError;
  const int32_t client = n >= 4 ? get_i32(body) : 0;
  std::set<int32_t> &mine = clients_[conn];
  const uint32_t fault_id = call_fault_id(type);
  const FaultEffect fx =
      fault_id != 0 ? host_.faults().on_request(fault_id, -1, true) : FaultEffect{};
  if (fx.error) {
    result = static_cast<int32_t>(fx.error_code);
    entry["fault"] = "error";
  } else if (type == rpk_diag::kDciRegister) {
    if (n < 6) {
      result = kDciBadParam;
    } else {
      const int32_t id = next_client_++;
      mine.insert(id);
      entry["signal"] = client;  // the body starts with the signal here
      entry["dci_client"] = id;
      answer = i32_bytes(id);
    }
  } else if (type == rpk_diag::kDciSupport) {
    const uint8_t list[] = {static_cast<uint8_t>(support_list_),
                            static_cast<uint8_t>(support_list_ >> 8)};
    answer.assign(std::begin(list), std::end(list));
    entry["support_list"] = support_list_;
  } else if (n < 4 || mine.count(client) == 0) {
    result = kDciUnknownClient;
  } else {
    entry["dci_client"] = client;
    if (type == rpk_diag::kDciSignal && n >= 8) entry["signal"] = get_i32(body + 4);
    if (type == rpk_diag::kDciRelease) mine.erase(client);
  }
  entry["result"] = result;
  host_.journal().append(entry);
  Bytes out = i32_bytes(result);
  if (result == kDciNoError) out.insert(out.end(), answer.begin(), answer.end());
  reply(conn, rpk_diag::kAnswer | type, proc, 0, tag, out);
}

std::optional<json> DiagEndpoint::control(const json &command) {
  const std::string cmd = command.value("cmd", "");
  auto fail = [](const std::string &error) { return json{{"ok", false}, {"error", error}}; };
  if (cmd == "diag_answer_clear") {
    answers_.clear();
    return json{{"ok", true}};
  }
  if (cmd == "diag_answer") {
    Answer a;
    uint32_t size = 0;
    if (!command.contains("prefix") || !command["prefix"].is_string() ||
        !parse_hex(command["prefix"].get<std::string>(), &a.prefix) ||
        !command.contains("response") || !command["response"].is_string() ||
        !parse_hex(command["response"].get<std::string>(), &a.response) || a.response.empty()) {
      return fail("diag answer needs a request prefix and a response, in hex");
    }
    if (command.contains("size") &&
        (!json_u32(command, "size", &size) || size == 0 || size > kMaxAnswer)) {
      return fail("diag answer --size must be 1 to 65536");
    }
    if (size > 0) {
      // The response repeated and cut to the size asked for.
      Bytes body;
      while (body.size() < size) body.insert(body.end(), a.response.begin(), a.response.end());
      body.resize(size);
      a.response = std::move(body);
    }
    std::erase_if(answers_, [&a](const Answer &old) { return old.prefix == a.prefix; });
    answers_.push_back(std::move(a));
    return json{{"ok", true}};
  }
  if (cmd == "diag_set") {
    const std::string name = command.value("name", "");
    uint32_t value = 0;
    if (!json_u32(command, "value", &value)) return fail("diag set needs a number");
    if (name == "remote_mask" && value <= 0xFFFF) {
      remote_mask_ = static_cast<uint16_t>(value);
    } else if (name == "support_list" && value <= 0xFFFF) {
      support_list_ = static_cast<uint16_t>(value);
    } else if (name == "dci_piece" && value <= kMaxAnswer) {
      dci_piece_ = value;
    } else {
      return fail("diag set: unknown setting or value out of range: " + name);
    }
    return json{{"ok", true}};
  }
  return std::nullopt;
}

json DiagEndpoint::status() const {
  size_t clients = 0;
  for (const auto &[conn, ids] : clients_) clients += ids.size();
  return {{"remote_mask", remote_mask_},
          {"support_list", support_list_},
          {"dci_piece", dci_piece_},
          {"answers", answers_.size()},
          {"dci_clients", clients}};
}

void DiagEndpoint::reset() {
  answers_.clear();
  remote_mask_ = 0;
  support_list_ = 0x02;
  dci_piece_ = 0;
}

}  // namespace rpk_sim
