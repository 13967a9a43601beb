// The daemon's side of the control interface: commands, scenarios, and the
// start of the daemon itself.
#include <cutils/properties.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <thread>

#include "control_link.h"
#include "daemon.h"
#include "modem_errors.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/qmi_host_transport.h"
#include "platform/host/link/rpk_host.h"
#include "qmi_wire.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

using nlohmann::json;

json ok(json extra = json::object()) {
  extra["ok"] = true;
  return extra;
}

json fail(const std::string &error) { return {{"ok", false}, {"error", error}}; }

// The bytes of a seed entry: "hex" or "text".
bool seed_bytes(const json &e, std::string *out, std::string *error) {
  if (e.contains("text") && e["text"].is_string()) {
    *out = e["text"].get<std::string>();
    return true;
  }
  std::vector<uint8_t> bytes;
  if (!e.contains("hex") || !e["hex"].is_string() ||
      !parse_hex(e["hex"].get<std::string>(), &bytes)) {
    *error = "needs \"hex\" or \"text\": " + dump_json(e);
    return false;
  }
  out->assign(bytes.begin(), bytes.end());
  return true;
}

// One "nv" or "efs" entry of a scenario: on its subscription, either
// "delete" (deleting what is not there, `absent`, is what was asked for) or a
// write of its bytes.
template <typename Write, typename Delete>
bool seed_entry(const json &e, const char *what, int32_t absent, Write write, Delete del,
                std::string *error) {
  uint32_t sub = 0;
  if (e.contains("sub") && !json_u32(e, "sub", &sub)) sub = kSubscriptions;  // refused below
  int32_t rc = 0;
  if (e.value("delete", false)) {
    rc = del(sub);
    if (rc == absent) rc = 0;
  } else {
    std::string bytes;
    if (!seed_bytes(e, &bytes, error)) return false;
    rc = write(sub, bytes);
  }
  if (rc != 0) {
    *error = std::string(what) + " entry refused (" + std::to_string(rc) + "): " + dump_json(e);
    return false;
  }
  return true;
}

}  // namespace

bool Daemon::apply_fault(const json &j, std::string *error) {
  const std::string kind =
      j.contains("kind") && j["kind"].is_string() ? j["kind"].get<std::string>() : "";
  uint32_t service = 0;
  if (j.contains("service")) {
    service = parse_service(j["service"]);
    const bool known = std::any_of(endpoints_.begin(), endpoints_.end(), [service](const auto &l) {
      return l.endpoint->service_id() != 0 && l.endpoint->answers_for(service);
    });
    if (!known) {
      *error = "unknown service: " + dump_json(j["service"]);
      return false;
    }
  }
  if (kind == "chunk") {
    uint32_t size = 0;
    if (!json_u32(j, "size", &size) || size > kEfsChunkMax) {
      *error = "fault chunk needs \"size\" from 1 to 424 (0: the default)";
      return false;
    }
    modem_.efs_chunk = size == 0 ? kEfsChunkMax : size;
    return true;
  }
  if (kind == "down") {
    uint32_t ms = 0;
    if (j.contains("ms") && !json_u32(j, "ms", &ms)) {
      *error = "fault down: \"ms\" must be a number";
      return false;
    }
    take_down_for(service, ms);
    return true;
  }
  if (kind == "up") {
    bring_all_up(service);
    return true;
  }
  if (kind == "clear") {
    faults_.clear();
    modem_.efs_chunk = kEfsChunkMax;
    bring_all_up(0);
    return true;
  }
  Fault f;
  if (!parse_fault(j, &f, error)) return false;
  faults_.add(f);
  return true;
}

bool Daemon::apply_scenario(const json &s, std::string *error) {
  if (!s.is_object()) {
    *error = "a scenario is a JSON object";
    return false;
  }
  for (const auto &[key, value] : s.items()) {
    static const char *const kKeys[] = {"factory_reset", "settings",   "nv",
                                        "efs",           "properties", "faults"};
    if (std::find_if(std::begin(kKeys), std::end(kKeys),
                     [&key = key](const char *k) { return key == k; }) == std::end(kKeys)) {
      *error = "unknown scenario key: " + key;
      return false;
    }
  }
  if (s.value("factory_reset", false)) {
    json answer = control({{"cmd", "reset"}});
    if (!answer["ok"].get<bool>()) {
      *error = answer["error"].get<std::string>();
      return false;
    }
  }
  if (s.contains("settings")) {
    for (const auto &[name, value] : s["settings"].items()) {
      if (!value.is_number_unsigned() || !modem_.settings().set(name, value.get<uint64_t>())) {
        *error = "bad setting: " + name;
        return false;
      }
    }
    modem_.settings().save(dir_);
  }
  Store &store = modem_.store();
  for (const auto &e : s.value("nv", json::array())) {
    uint32_t item = 0;
    if (!json_u32(e, "item", &item)) {
      *error = "nv entry needs \"item\": " + dump_json(e);
      return false;
    }
    if (!seed_entry(
            e, "nv", kNvNotActive,
            [&](unsigned sub, const std::string &value) {
              return store.nv_write(sub, item, value);
            },
            [&](unsigned sub) { return store.nv_delete(sub, item); }, error)) {
      return false;
    }
  }
  for (const auto &e : s.value("efs", json::array())) {
    if (!e.contains("path") || !e["path"].is_string()) {
      *error = "efs entry needs \"path\": " + dump_json(e);
      return false;
    }
    const std::string path = e["path"].get<std::string>();
    if (!seed_entry(
            e, "efs", kEfsNoEnt,
            [&](unsigned sub, const std::string &content) {
              return store.efs_write(sub, path, content);
            },
            [&](unsigned sub) { return store.efs_delete(sub, path); }, error)) {
      return false;
    }
  }
  if (s.contains("properties")) {
    for (const auto &[key, value] : s["properties"].items()) {
      if (!value.is_string() || property_set(key.c_str(), value.get<std::string>().c_str()) != 0) {
        *error = "bad property: " + key;
        return false;
      }
    }
  }
  for (const auto &f : s.value("faults", json::array())) {
    if (!apply_fault(f, error)) return false;
  }
  return true;
}

json Daemon::status() {
  json services = json::array();
  for (const auto &l : endpoints_) {
    const uint32_t id = l.endpoint->service_id();
    if (id == 0) continue;
    json entry = {{"service", l.endpoint->name()},
                  {"id", hex_id(id)},
                  {"up", l.up},
                  {"clients", connections_of(id).size()}};
    if (json extra = l.endpoint->status(); extra.is_object()) entry.update(extra);
    services.push_back(entry);
  }
  const Settings &st = modem_.settings();
  json counters = modem_.counters();
  counters["refused_clients"] = refused_clients_;
  return {{"running", true},
          {"pid", getpid()},
          {"state_dir", dir_},
          {"services", services},
          {"faults", faults_.to_json()},
          {"efs_chunk", modem_.efs_chunk},
          {"counters", counters},
          {"settings", json::parse(st.to_json_text())}};
}

json Daemon::control(const json &command) {
  const std::string cmd = command.value("cmd", "");
  std::string error;
  if (cmd == "ping") return ok({{"pid", getpid()}});
  if (cmd == "status") return ok(status());
  if (cmd == "stop") {
    stopping_ = true;
    return ok();
  }
  if (cmd == "reset") {
    unlink((dir_ + "/modem.json").c_str());
    if (!modem_.store().factory_reset()) return fail("cannot write the factory image");
    modem_.reset_runtime();
    refused_clients_ = 0;
    faults_.clear();
    modem_.efs_chunk = kEfsChunkMax;
    for (auto &l : endpoints_) l.endpoint->reset();
    bring_all_up(0);
    return ok();
  }
  if (cmd == "fault") {
    if (!command.contains("fault") || !apply_fault(command["fault"], &error)) return fail(error);
    return ok();
  }
  if (cmd == "scenario") {
    if (!command.contains("scenario") || !apply_scenario(command["scenario"], &error)) {
      return fail(error);
    }
    return ok();
  }
  if (cmd == "set") {
    const std::string name = command.value("name", "");
    if (!command.contains("value") || !command["value"].is_number_unsigned() ||
        !modem_.settings().set(name, command["value"].get<uint64_t>())) {
      return fail("unknown setting or bad value: " + name);
    }
    modem_.settings().save(dir_);
    return ok();
  }
  if (cmd == "indicate") {
    uint32_t number = 0;
    std::vector<uint8_t> data;
    if (!json_u32(command, "number", &number) ||
        (command.contains("data") && !parse_hex(command.value("data", ""), &data))) {
      return fail("indicate needs a number and hex data");
    }
    const std::vector<uint8_t> tlvs = modem_.indication(number, data);
    std::vector<uint8_t> packet(rpk_qmi::kHeaderLen + tlvs.size());
    rpk_qmi::put_header(packet.data(), {rpk_qmi::kCtlIndication, 0, kExtendMsgIndication,
                                        static_cast<uint16_t>(tlvs.size())});
    std::copy(tlvs.begin(), tlvs.end(), packet.begin() + rpk_qmi::kHeaderLen);
    const std::vector<uint64_t> targets = connections_of(kExtendQmiServiceId);
    for (uint64_t id : targets) send_packet(id, packet);
    journal_.append({{"indication", number},
                     {"service", hex_id(kExtendQmiServiceId)},
                     {"msg_id", "0x0003"},
                     {"clients", targets.size()},
                     {"wire", to_hex(packet.data(), packet.size())}});
    return ok({{"clients", targets.size()}});
  }
  if (cmd == "journal_clear") {
    journal_.clear();
    return ok();
  }
  for (auto &l : endpoints_) {
    if (auto answer = l.endpoint->control(command)) return *answer;
  }
  return fail("unknown command: " + cmd);
}

int start_daemon(const std::string &scenario_file, bool foreground) {
  json scenario;
  if (!scenario_file.empty()) {
    std::string text;
    if (!rpk_host::read_file(scenario_file, text)) {
      fprintf(stderr, "rpk-modem-sim: cannot read %s\n", scenario_file.c_str());
      return 1;
    }
    scenario = json::parse(text, nullptr, false);
    if (!scenario.is_object()) {
      fprintf(stderr, "rpk-modem-sim: %s is not a JSON object\n", scenario_file.c_str());
      return 1;
    }
  }
  auto apply_to_running = [&]() {
    if (scenario.is_null()) return 0;
    json answer;
    std::string error;
    if (!control_request({{"cmd", "scenario"}, {"scenario", scenario}}, &answer, &error) ||
        !answer.value("ok", false)) {
      fprintf(stderr, "rpk-modem-sim: scenario: %s\n",
              error.empty() ? answer.value("error", "").c_str() : error.c_str());
      return 1;
    }
    return 0;
  };
  if (rpk_host::modem_sim_running()) {
    fprintf(stderr, "rpk-modem-sim: already running\n");
    return apply_to_running();
  }

  const std::string dir = rpk_host::state_dir();
  if (std::string problem = rpk_host::state_dir_problem(); !problem.empty()) {
    fprintf(stderr, "rpk-modem-sim: %s\n", problem.c_str());
    return 1;
  }
  int ready[2] = {-1, -1};
  if (!foreground) {
    if (pipe2(ready, O_CLOEXEC) != 0) return 1;
    pid_t pid = fork();
    if (pid < 0) return 1;
    if (pid > 0) {
      close(ready[1]);
      char c = 0;
      ssize_t n;
      while ((n = read(ready[0], &c, 1)) < 0 && errno == EINTR) {
      }
      close(ready[0]);
      waitpid(pid, nullptr, WNOHANG);
      if (n == 1 && c == 'R') return 0;
      if (n == 1 && c == 'A') {
        // Another start won the race: wait until that one serves.
        for (int i = 0; i < 1000; ++i) {
          json answer;
          std::string error;
          if (control_request({{"cmd", "ping"}}, &answer, &error, 1000)) return apply_to_running();
          std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
      }
      // The daemon said why in its log: pass its last line on.
      std::string log;
      rpk_host::read_file(dir + "/sim.log", log);
      while (!log.empty() && log.back() == '\n') log.pop_back();
      const size_t last = log.rfind('\n');
      fprintf(stderr, "rpk-modem-sim: the daemon did not start (%s); see %s/sim.log\n",
              log.substr(last == std::string::npos ? 0 : last + 1).c_str(), dir.c_str());
      return 1;
    }
    close(ready[0]);
    setsid();
    // The daemon outlives its caller: it must hold none of the caller's
    // terminals or pipes.
    int null_fd = open("/dev/null", O_RDONLY);
    int log_fd = open((dir + "/sim.log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (null_fd >= 0) dup2(null_fd, STDIN_FILENO);
    if (log_fd >= 0) {
      dup2(log_fd, STDOUT_FILENO);
      dup2(log_fd, STDERR_FILENO);
    }
    for (int fd = 3; fd < 1024; ++fd) {
      if (fd != ready[1]) close(fd);
    }
  }
  auto tell = [&](char c) {
    if (ready[1] < 0) return;
    ssize_t ignored = write(ready[1], &c, 1);
    (void)ignored;
    close(ready[1]);
    ready[1] = -1;
  };

  int status = 0;
  {
    Daemon daemon(dir);
    std::string error;
    if (!daemon.lock(&error)) {
      if (!error.empty()) {
        fprintf(stderr, "rpk-modem-sim: %s\n", error.c_str());
        tell('F');
        return 1;
      }
      tell('A');
      fprintf(stderr, "rpk-modem-sim: already running\n");
      return 0;
    }
    if (!daemon.init(&error) || (!scenario.is_null() && !daemon.apply_scenario(scenario, &error))) {
      fprintf(stderr, "rpk-modem-sim: %s\n", error.c_str());
      status = 1;
    } else {
      fprintf(stderr, "rpk-modem-sim: serving in %s (pid %d)\n", dir.c_str(), getpid());
      tell('R');
      daemon.run();
      fprintf(stderr, "rpk-modem-sim: stopped\n");
    }
  }
  tell('F');
  return status;
}

}  // namespace rpk_sim
