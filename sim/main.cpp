// rpk-modem-sim: the simulated modem and its control command line. See the
// README section "The simulated modem" for every command.
#include <cutils/properties.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "control_link.h"
#include "daemon.h"
#include "modem_errors.h"
#include "modem_services.h"
#include "platform/host/link/modem_sim_link.h"
#include "platform/host/link/rpk_host.h"
#include "settings.h"
#include "sim_text.h"
#include "store.h"

namespace {

using nlohmann::json;
using rpk_sim::parse_number;

constexpr char kUsage[] =
    "usage: rpk-modem-sim COMMAND [ARGS]\n"
    "  start [--scenario FILE] [--foreground]   start the daemon (returns once it serves)\n"
    "  stop | status | reset                    stop, show state, factory reset\n"
    "  scenario FILE                            apply a scenario to the running daemon\n"
    "  nv get|set|del|list SUB [ITEM [HEX...]]  NV items\n"
    "  efs get|set|set-file|del|list SUB [PATH [HEX...|FILE]]  EFS files\n"
    "  prop get KEY | prop set KEY VALUE        system properties\n"
    "  set NAME VALUE                           a modem setting\n"
    "  fault delay MS | error CODE | drop-after N | no-data-valid\n"
    "        [--service S] [--request-id ID] [--count N]\n"
    "  fault refuse-init [--service S] [--count N]\n"
    "  fault corrupt [--patch OFFSET:HEX]... [--msg-id ID] [--txn ID] [--truncate N]\n"
    "        [--claim N] [--service S] [--request-id ID] [--count N]\n"
    "  fault chunk SIZE | down [MS] [--service S] | up [--service S] | clear\n"
    "  fault stats-empty | stats-id N | stats-sub N | stats-count N [--count N]\n"
    "  stats set SUB ID [HEX...] | stats clear     pin a statistics record, or let go\n"
    "  indicate NUMBER [HEX...]                 send an Extend-QMI indication\n"
    "  diag answer REQ_PREFIX_HEX RESPONSE_HEX [--size N] | diag answer clear\n"
    "  diag set remote_mask|support_list HEX | diag set dci_piece N\n"
    "  journal [clear|sync]                     print or clear the request journal, or\n"
    "                                           wait until it holds every answered request\n";

int usage() {
  fputs(kUsage, stderr);
  return 2;
}

int complain(const std::string &what) {
  fprintf(stderr, "rpk-modem-sim: %s\n", what.c_str());
  return 1;
}

// Sends a command to the daemon, starting it first when allowed.
int ask_daemon(const json &command, json *answer_out = nullptr) {
  if (!rpk_host::modem_sim_running()) {
    if (!rpk_host::modem_sim_autostart_allowed()) return complain("not running");
    if (rpk_sim::start_daemon("", false) != 0) return 1;
  }
  json answer;
  std::string error;
  if (!rpk_sim::control_request(command, &answer, &error)) return complain(error);
  if (!answer.value("ok", false)) return complain(answer.value("error", "refused"));
  if (answer_out != nullptr) *answer_out = answer;
  return 0;
}

std::string join_from(const std::vector<std::string> &args, size_t from) {
  std::string s;
  for (size_t i = from; i < args.size(); ++i) s += (i > from ? " " : "") + args[i];
  return s;
}

bool parse_sub(const std::string &text, unsigned *sub) {
  uint64_t v = 0;
  if (!parse_number(text, &v) || v >= rpk_sim::kSubscriptions) return false;
  *sub = static_cast<unsigned>(v);
  return true;
}

bool stopped_within(int ms) {
  for (int waited = 0; rpk_host::modem_sim_running(); waited += 10) {
    if (waited >= ms) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

int cmd_stop() {
  if (!rpk_host::modem_sim_running()) return 0;
  json answer;
  std::string error;
  rpk_sim::control_request({{"cmd", "stop"}}, &answer, &error, 5000);
  if (stopped_within(10000)) return 0;
  // It did not listen: end it by the pid it recorded for itself.
  std::string pid_text;
  uint64_t pid = 0;
  if (rpk_host::read_file(rpk_host::modem_sim_pid_path(), pid_text) &&
      parse_number(pid_text.substr(0, pid_text.find('\n')), &pid) && pid > 1) {
    kill(static_cast<pid_t>(pid), SIGKILL);
  }
  return stopped_within(5000) ? 0 : complain("could not stop the daemon");
}

int cmd_status() {
  if (!rpk_host::modem_sim_running()) {
    printf("%s\n",
           rpk_sim::dump_json({{"running", false}, {"state_dir", rpk_host::state_dir()}}).c_str());
    return 3;
  }
  json answer;
  std::string error;
  if (!rpk_sim::control_request({{"cmd", "status"}}, &answer, &error)) return complain(error);
  answer.erase("ok");
  printf("%s\n", answer.dump(2, ' ', false, json::error_handler_t::replace).c_str());
  return 0;
}

int cmd_reset() {
  if (rpk_host::modem_sim_running()) return ask_daemon({{"cmd", "reset"}});
  const std::string dir = rpk_host::state_dir();
  unlink((dir + "/modem.json").c_str());
  return rpk_sim::Store(dir).factory_reset() ? 0 : complain("cannot write the factory image");
}

// nv OP SUB ..., with the subscription checked.
int nv_command(rpk_sim::Store &store, const std::vector<std::string> &a, unsigned sub) {
  const std::string &op = a[0];
  if (op == "list" && a.size() == 2) {
    for (uint16_t item : store.nv_items(sub)) printf("%u\n", item);
    return 0;
  }
  uint64_t item = 0;
  if (a.size() < 3 || !parse_number(a[2], &item) || item >= rpk_sim::kNvItemCount) {
    return complain("bad item number");
  }
  const auto id = static_cast<uint32_t>(item);
  if (op == "get" && a.size() == 3) {
    std::string value;
    if (store.nv_read(sub, id, &value) != rpk_sim::kNvDone) {
      return complain("item " + a[2] + " of sub " + a[1] + " is not set");
    }
    printf("%s\n", rpk_sim::spaced_hex(value).c_str());
    return 0;
  }
  if (op == "set" && a.size() >= 4) {
    std::vector<uint8_t> bytes;
    if (!rpk_sim::parse_hex(join_from(a, 3), &bytes)) return complain("bad hex");
    const int32_t rc = store.nv_write(sub, id, std::string(bytes.begin(), bytes.end()));
    return rc == 0 ? 0 : complain("write refused (" + std::to_string(rc) + "): 1 to 424 bytes");
  }
  if (op == "del" && a.size() == 3) {
    const int32_t rc = store.nv_delete(sub, id);
    return rc == 0 || rc == rpk_sim::kNvNotActive ? 0 : complain("delete failed");
  }
  return usage();
}

// efs OP SUB ..., with the subscription checked.
int efs_command(rpk_sim::Store &store, const std::vector<std::string> &a, unsigned sub) {
  const std::string &op = a[0];
  if (op == "list" && a.size() == 2) {
    for (const auto &f : store.efs_files(sub)) printf("%s\n", f.c_str());
    return 0;
  }
  if (a.size() < 3) return usage();
  const std::string &path = a[2];
  if (op == "get" && a.size() == 3) {
    std::string content;
    const int32_t rc = store.efs_read(sub, path, &content);
    if (rc != 0) return complain("cannot read " + path + " (" + std::to_string(rc) + ")");
    printf("%s\n", rpk_sim::spaced_hex(content).c_str());
    return 0;
  }
  std::string content;
  if (op == "set" && a.size() >= 3) {
    std::vector<uint8_t> bytes;
    if (!rpk_sim::parse_hex(join_from(a, 3), &bytes)) return complain("bad hex");
    content.assign(bytes.begin(), bytes.end());
  } else if (op == "set-file" && a.size() == 4) {
    if (!rpk_host::read_file(a[3], content)) return complain("cannot read " + a[3]);
  } else if (op == "del" && a.size() == 3) {
    const int32_t rc = store.efs_delete(sub, path);
    return rc == 0 || rc == rpk_sim::kEfsNoEnt ? 0 : complain("cannot delete " + path);
  } else {
    return usage();
  }
  const int32_t rc = store.efs_write(sub, path, content);
  return rc == 0 ? 0 : complain("cannot write " + path + " (" + std::to_string(rc) + ")");
}

// nv and efs work on the store itself, with or without a daemon; a store
// without the factory image gets it first.
int cmd_store(const std::string &cmd, const std::vector<std::string> &a) {
  if (a.size() < 2) return usage();
  rpk_sim::Store store(rpk_host::state_dir());
  store.ensure_factory();
  unsigned sub = 0;
  if (!parse_sub(a[1], &sub)) return complain("bad subscription: " + a[1]);
  return cmd == "nv" ? nv_command(store, a, sub) : efs_command(store, a, sub);
}

int cmd_prop(const std::vector<std::string> &a) {
  if (a.size() == 2 && a[0] == "get") {
    char value[PROPERTY_VALUE_MAX];
    property_get(a[1].c_str(), value, "");
    printf("%s\n", value);
    return 0;
  }
  if (a.size() == 3 && a[0] == "set") {
    return property_set(a[1].c_str(), a[2].c_str()) == 0 ? 0 : complain("property refused");
  }
  return usage();
}

int cmd_set(const std::vector<std::string> &a) {
  uint64_t value = 0;
  if (a.size() != 2 || !parse_number(a[1], &value)) return usage();
  if (rpk_host::modem_sim_running()) {
    return ask_daemon({{"cmd", "set"}, {"name", a[0]}, {"value", value}});
  }
  const std::string dir = rpk_host::state_dir();
  rpk_sim::Settings s = rpk_sim::Settings::load(dir);
  if (!s.set(a[0], value)) return complain("unknown setting: " + a[0]);
  return s.save(dir) ? 0 : complain("cannot save the settings");
}

// Fault kinds as the command line names them, and their control form.
struct FaultWord {
  const char *word;
  const char *kind;
  const char *value_key;  // the number after the kind; nullptr: none
  bool value_optional;
};
constexpr FaultWord kFaultWords[] = {
    {"delay", "delay", "ms", false},
    {"error", "error", "code", false},
    {"drop-after", "drop_after", "requests", false},
    {"no-data-valid", "no_data_valid", nullptr, false},
    {"refuse-init", "refuse_init", nullptr, false},
    {"corrupt", "corrupt", nullptr, false},
    {"chunk", "chunk", "size", false},
    {"down", "down", "ms", true},
    {"up", "up", nullptr, false},
    {"clear", "clear", nullptr, false},
    {"stats-empty", "stats_empty", nullptr, false},
    {"stats-id", "stats_id", "id", false},
    {"stats-sub", "stats_sub", "sub", false},
    {"stats-count", "stats_count", "ids", false},
};

// The options of `fault corrupt` into its control form: --patch OFFSET:HEX
// (repeatable), --msg-id, --txn, --truncate, --claim. False when `option` is
// not one of them or its value does not parse.
bool corrupt_option(const std::string &option, const std::string &value, json *fault) {
  uint64_t v = 0;
  if (option == "--patch") {
    const size_t colon = value.find(':');
    std::vector<uint8_t> bytes;
    if (colon == std::string::npos || !parse_number(value.substr(0, colon), &v) ||
        !rpk_sim::parse_hex(value.substr(colon + 1), &bytes)) {
      return false;
    }
    (*fault)["patch"].push_back({{"at", v}, {"hex", value.substr(colon + 1)}});
    return true;
  }
  static constexpr std::pair<const char *, const char *> kNumbers[] = {
      {"--msg-id", "msg_id"}, {"--txn", "txn"}, {"--truncate", "truncate"}, {"--claim", "claim"}};
  for (const auto &[flag, key] : kNumbers) {
    if (option == flag && parse_number(value, &v)) {
      (*fault)[key] = v;
      return true;
    }
  }
  return false;
}

int cmd_fault(const std::vector<std::string> &a) {
  if (a.empty()) return usage();
  const FaultWord *w = std::find_if(std::begin(kFaultWords), std::end(kFaultWords),
                                    [&](const FaultWord &f) { return a[0] == f.word; });
  if (w == std::end(kFaultWords)) return usage();
  json fault = {{"kind", w->kind}};
  size_t i = 1;
  uint64_t v = 0;
  if (w->value_key != nullptr && i < a.size() && a[i].compare(0, 2, "--") != 0) {
    if (!parse_number(a[i], &v)) return usage();
    fault[w->value_key] = v;
    ++i;
  } else if (w->value_key != nullptr && !w->value_optional) {
    return usage();
  }
  for (; i + 1 < a.size(); i += 2) {
    if (a[i] == "--service") {
      fault["service"] = a[i + 1];
    } else if (a[i] == "--request-id" && parse_number(a[i + 1], &v)) {
      fault["request_id"] = v;
    } else if (a[i] == "--count" && parse_number(a[i + 1], &v)) {
      fault["count"] = v;
    } else if (std::string(w->kind) != "corrupt" || !corrupt_option(a[i], a[i + 1], &fault)) {
      return usage();
    }
  }
  if (i != a.size()) return usage();
  return ask_daemon({{"cmd", "fault"}, {"fault", fault}});
}

int cmd_indicate(const std::vector<std::string> &a) {
  uint64_t number = 0;
  if (a.empty() || !parse_number(a[0], &number) || number > 0xFFFFFFFFu) return usage();
  json answer;
  int rc =
      ask_daemon({{"cmd", "indicate"}, {"number", number}, {"data", join_from(a, 1)}}, &answer);
  if (rc == 0) printf("%d\n", answer.value("clients", 0));
  return rc;
}

// diag answer PREFIX RESPONSE [--size N] | diag answer clear | diag set NAME VALUE
int cmd_diag(const std::vector<std::string> &a) {
  if (a.size() == 2 && a[0] == "answer" && a[1] == "clear") {
    return ask_daemon({{"cmd", "diag_answer_clear"}});
  }
  if (a.size() >= 3 && a[0] == "answer") {
    json command = {{"cmd", "diag_answer"}, {"prefix", a[1]}, {"response", a[2]}};
    uint64_t size = 0;
    if (a.size() == 5 && a[3] == "--size" && parse_number(a[4], &size)) {
      command["size"] = size;
    } else if (a.size() != 3) {
      return usage();
    }
    return ask_daemon(command);
  }
  if (a.size() == 3 && a[0] == "set") {
    // The masks are hexadecimal with or without 0x; the piece size is decimal.
    uint64_t value = 0;
    const bool hex = a[1] != "dci_piece";
    const std::string text = hex && a[2].compare(0, 2, "0x") != 0 ? "0x" + a[2] : a[2];
    if (!parse_number(text, &value) || value > 0xFFFFFFFFu) return usage();
    return ask_daemon({{"cmd", "diag_set"}, {"name", a[1]}, {"value", value}});
  }
  return usage();
}

int cmd_journal(const std::vector<std::string> &a) {
  if (a.size() == 1 && a[0] == "clear") {
    if (rpk_host::modem_sim_running()) return ask_daemon({{"cmd", "journal_clear"}});
    const std::string journal = rpk_host::state_dir() + "/journal.jsonl";
    unlink(journal.c_str());
    unlink((journal + ".1").c_str());
    return 0;
  }
  const bool sync = a.size() == 1 && a[0] == "sync";
  if (!a.empty() && !sync) return usage();
  // A request's entry is written just after its answer, before the daemon
  // reads anything else: once it has answered this, every request answered
  // before is in the file.
  if (rpk_host::modem_sim_running()) {
    json answer;
    std::string error;
    if (!rpk_sim::control_request({{"cmd", "ping"}}, &answer, &error)) return complain(error);
  }
  if (sync) return 0;
  // What the journal keeps: the rotated part first, then the current file.
  const std::string journal = rpk_host::state_dir() + "/journal.jsonl";
  for (const std::string &file : {journal + ".1", journal}) {
    std::string text;
    rpk_host::read_file(file, text);
    fwrite(text.data(), 1, text.size(), stdout);
  }
  return 0;
}

int cmd_stats(const std::vector<std::string> &a) {
  if (a.size() == 1 && a[0] == "clear") return ask_daemon({{"cmd", "stats_clear"}});
  uint64_t sub = 0, id = 0;
  if (a.size() < 3 || a[0] != "set" || !parse_number(a[1], &sub) || !parse_number(a[2], &id) ||
      id > 0xFFFFFFFFu) {
    return usage();
  }
  return ask_daemon({{"cmd", "stats_set"}, {"sub", sub}, {"id", id}, {"hex", join_from(a, 3)}});
}

int cmd_scenario(const std::vector<std::string> &a) {
  if (a.size() != 1) return usage();
  std::string text;
  if (!rpk_host::read_file(a[0], text)) return complain("cannot read " + a[0]);
  json scenario = json::parse(text, nullptr, false);
  if (!scenario.is_object()) return complain(a[0] + " is not a JSON object");
  return ask_daemon({{"cmd", "scenario"}, {"scenario", scenario}});
}

int cmd_start(const std::vector<std::string> &a) {
  std::string scenario;
  bool foreground = false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] == "--foreground") {
      foreground = true;
    } else if (a[i] == "--scenario" && i + 1 < a.size()) {
      scenario = a[++i];
    } else {
      return usage();
    }
  }
  if (scenario.empty()) {
    if (const char *s = getenv("RPK_SIM_SCENARIO"); s != nullptr) scenario = s;
  }
  return rpk_sim::start_daemon(scenario, foreground);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) return usage();
  const std::string cmd = argv[1];
  const std::vector<std::string> args(argv + 2, argv + argc);
  if (cmd == "start") return cmd_start(args);
  if (cmd == "stop" && args.empty()) return cmd_stop();
  if (cmd == "status" && args.empty()) return cmd_status();
  if (cmd == "reset" && args.empty()) return cmd_reset();
  if (cmd == "scenario") return cmd_scenario(args);
  if (cmd == "nv" || cmd == "efs") return cmd_store(cmd, args);
  if (cmd == "prop") return cmd_prop(args);
  if (cmd == "set") return cmd_set(args);
  if (cmd == "fault") return cmd_fault(args);
  if (cmd == "indicate") return cmd_indicate(args);
  if (cmd == "journal") return cmd_journal(args);
  if (cmd == "stats") return cmd_stats(args);
  if (cmd == "diag") return cmd_diag(args);
  return usage();
}
