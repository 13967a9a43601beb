// The inner records of the Extend-QMI requests: NV store (request id 1),
// NV item and EFS file access (2), and the records of request id 4 chosen by
// their first word (common commands, RF tests, statistics debug information).
#include <algorithm>
#include <cstring>
#include <string>

#include "modem_errors.h"
#include "modem_services.h"
#include "sim_text.h"

namespace rpk_sim {
namespace {

uint32_t le32(const uint8_t *p) { return static_cast<uint32_t>(get_le(p, 4)); }

uint16_t le16(const uint8_t *p) { return static_cast<uint16_t>(get_le(p, 2)); }

void put_field(std::vector<uint8_t> &rec, size_t at, uint64_t v, int n) {
  put_le(rec.data() + at, v, n);
}

// NV reads and writes of request ids 1 and 2, which differ only in where
// the response carries the length: the item's true length at `len_at`, even
// when the data area (from offset 20) holds less.
int32_t read_nv_item(const Store &store, unsigned sub, uint32_t item, std::vector<uint8_t> &rsp,
                     size_t len_at, size_t area) {
  std::string value;
  const int32_t result = store.nv_read(sub, item, &value);
  if (result == kNvDone) {
    put_field(rsp, len_at, value.size(), 4);
    memcpy(rsp.data() + 20, value.data(), std::min(value.size(), area));
  }
  return result;
}

int32_t write_nv_item(Store &store, unsigned sub, uint32_t item, const uint8_t *data, uint32_t len,
                      size_t area) {
  if (len > area) return kNvBadParm;
  return store.nv_write(sub, item, std::string_view(reinterpret_cast<const char *>(data), len));
}

// NV store record (request id 1): op u32 @0, argument u32 @4, reserved @8,
// data length u32 @12, data @16 (412 bytes).
// Response: op @0, result i32 @4, argument @8, 0 @12, data length i32 @16,
// data @20 (412 bytes); 432 bytes in all.
namespace nv_store {
constexpr size_t kDataArea = 412;
constexpr size_t kResponseSize = 432;
enum Op : uint32_t { kRead = 1, kWrite = 2, kDelete = 3, kBackup = 4, kRestore = 5 };
}  // namespace nv_store

// NV/EFS request (request id 2): op u8 @0, sub u8 @1, nv_id u16 @2,
// path_len u8 @4, path @5 (71), data_len_all u32 @76, data_len_send u32 @80,
// data_len_cur u32 @84, data @88 (424).
// Response: op @0, data_len_all @4, data_len_send @8, data_len_cur @12,
// result i32 @16, data @20 (424); 444 bytes in all.
namespace nv_efs {
constexpr size_t kPathAt = 5;
constexpr size_t kDataAt = 88;
constexpr size_t kDataArea = 424;
constexpr size_t kResponseSize = 444;
enum Op : uint8_t { kNvRead = 1, kNvWrite, kNvDelete, kEfsRead, kEfsWrite, kEfsDelete };
}  // namespace nv_efs

// Request id 4 records: kind u32 @0, result i32 @4, then the kind's fields.
// Common command: t u32 @8, l u32 @12, v @16. Responses are 508 bytes.
namespace rec4 {
constexpr size_t kResponseSize = 508;
constexpr uint32_t kValueMax = 496;
enum Kind : uint32_t { kGpioTest = 0, kTxAntennaTest = 1, kCommon = 2, kStatsDebug = 20 };
enum Common : uint32_t {
  kSsr = 31,
  kNvSync = 35,
  kCardStatusQuery = 39,
  kCardStatusGet = 55,
  kCardTypeQuery = 56,
  kCardStatusSet = 57,
};
constexpr uint32_t kSsrRestart = 0x1000;
constexpr uint32_t kSsrFullDump = 0x2000;
constexpr uint32_t kGpioValuesMax = (512 - 12) / 4;
}  // namespace rec4

const char kGpioTestFile[] = "/nv/item_files/modem/velmar/rf_ant_port_config";
const char kTxAntennaFile[] = "/nv/item_files/modem/antenna/ant_tx_config";

// Statistics debug-information record after the version byte: the sections in
// order, each field little-endian with its width in bytes.
struct StatField {
  const char *section;
  const char *name;
  int width;
  uint64_t value;
};
constexpr uint8_t kStatsVersion = 1;
constexpr StatField kStatFields[] = {
    {"main", "g_modem_stats_feature_enable_status", 1, 1},
    {"main", "g_pk_version_not_support_num", 8, 0},
    {"main", "g_modem_stats_cmd_ok_count", 8, 0},  // counts the queries answered
    {"main", "g_modem_stats_cmd_fail_count", 8, 0},
    {"diag", "init_state", 1, 1},
    {"diag", "listener_event_num", 4, 16},
    {"diag", "listener_event_state", 1, 1},
    {"diag", "listener_event_call_num", 4, 5231},
    {"diag", "listener_event_parse_num", 4, 5187},
    {"diag", "listener_log_num", 4, 33},
    {"diag", "listener_log_state", 1, 1},
    {"diag", "listener_log_call_num", 8, 1048576},
    {"diag", "listener_log_parse_num", 8, 1046712},
    {"diag", "poll_update_call_num", 4, 720},
    {"diag", "poll_update_parse_num", 4, 718},
    {"cm", "init_state", 1, 1},
    {"cm", "listener_state", 1, 1},
    {"cm", "listener_call_event_call_num", 4, 42},
    {"cm", "listener_call_event_parse_num", 4, 42},
    {"cm", "listener_subs_event_call_num", 4, 12},
    {"cm", "listener_subs_event_parse_num", 4, 12},
    {"cm", "listener_ss_event_call_num", 4, 3310},
    {"cm", "listener_ss_event_parse_num", 4, 3296},
    {"cm", "listener_stats_event_call_num", 4, 1440},
    {"cm", "listener_stats_event_parse_num", 4, 1440},
    {"cm", "poll_update_rf_call_num", 4, 720},
    {"cm", "poll_update_rf_parse_num", 4, 720},
    {"cm", "poll_update_lte_call_num", 4, 720},
    {"cm", "poll_update_lte_parse_num", 4, 716},
    {"cm", "poll_update_nr5g_call_num", 4, 720},
    {"cm", "poll_update_nr5g_parse_num", 4, 355},
    {"uim", "init_state", 1, 1},
    {"uim", "listener_state", 1, 1},
    {"uim", "listener_event_call_num", 4, 27},
    {"uim", "listener_event_parse_num", 4, 27},
};

}  // namespace

bool stats_field_known(const std::string &key) {
  for (const auto &f : kStatFields) {
    if (key == std::string(f.section) + "." + f.name) return true;
  }
  return false;
}

std::vector<uint8_t> Modem::nv_store_request(const uint8_t *req, Outcome &out) {
  using namespace nv_store;
  std::vector<uint8_t> rsp(kResponseSize, 0);
  const uint32_t op = le32(req);
  const uint32_t arg = le32(req + 4);
  const uint32_t len = le32(req + 12);
  int32_t result = kNvDone;
  switch (op) {
    case kRead:
      result = read_nv_item(store_, 0, arg, rsp, 16, kDataArea);
      break;
    case kWrite:
      result = write_nv_item(store_, 0, arg, req + 16, len, kDataArea);
      break;
    case kDelete:
      result = store_.nv_delete(0, arg);
      break;
    case kBackup:
      result = store_.qcn_backup(arg != 0);
      out.delay_ms += settings_.qcn_ms;
      break;
    case kRestore:
      result = store_.qcn_restore(arg != 0);
      out.delay_ms += settings_.qcn_ms;
      break;
    default:
      result = kNvBadCmd;
      break;
  }
  put_field(rsp, 0, op, 4);
  put_field(rsp, 4, static_cast<uint32_t>(result), 4);
  put_field(rsp, 8, arg, 4);
  return rsp;
}

std::vector<uint8_t> Modem::nv_efs_request(const uint8_t *req) {
  using namespace nv_efs;
  std::vector<uint8_t> rsp(kResponseSize, 0);
  const uint8_t op = req[0];
  const unsigned sub = req[1];
  const uint16_t nv_id = le16(req + 2);
  const uint32_t all = le32(req + 76);
  const uint32_t send = le32(req + 80);
  const uint32_t cur = le32(req + 84);
  const uint8_t *data = req + kDataAt;
  int32_t result = 0;

  // The path travels with or without its terminator; it ends at the first 0.
  const uint8_t path_len = req[4];
  std::string path;
  if (path_len > kEfsPathMax) {
    result = kEfsNameTooLong;
  } else {
    path.assign(reinterpret_cast<const char *>(req + kPathAt), path_len);
    path.resize(strnlen(path.c_str(), path.size()));
  }
  const bool efs_op = op == kEfsRead || op == kEfsWrite || op == kEfsDelete;
  if (efs_op && result == 0 && path.empty()) result = kEfsInval;

  if (result == 0) {
    switch (op) {
      case kNvRead:
        result = read_nv_item(store_, sub, nv_id, rsp, 4, kDataArea);
        break;
      case kNvWrite:
        result = write_nv_item(store_, sub, nv_id, data, all, kDataArea);
        break;
      case kNvDelete:
        result = store_.nv_delete(sub, nv_id);
        break;
      case kEfsRead: {
        std::string content;
        result = store_.efs_read(sub, path, &content);
        if (result != 0) break;
        if (cur > content.size()) {
          result = kEfsInval;
          break;
        }
        const uint32_t n =
            static_cast<uint32_t>(std::min<size_t>({content.size() - cur, efs_chunk, kDataArea}));
        put_field(rsp, 4, content.size(), 4);
        put_field(rsp, 8, n, 4);
        put_field(rsp, 12, cur, 4);
        memcpy(rsp.data() + 20, content.data() + cur, n);
        break;
      }
      case kEfsWrite:
        result = efs_write_chunk(sub, path, all, send, cur, data);
        put_field(rsp, 4, all, 4);
        put_field(rsp, 8, send, 4);
        put_field(rsp, 12, cur, 4);
        break;
      case kEfsDelete:
        result = store_.efs_delete(sub, path);
        break;
      default:
        result = kEfsInval;
        break;
    }
  }
  put_field(rsp, 0, op, 4);
  put_field(rsp, 16, static_cast<uint32_t>(result), 4);
  return rsp;
}

int32_t Modem::efs_write_chunk(unsigned sub, const std::string &path, uint32_t all, uint32_t send,
                               uint32_t cur, const uint8_t *data) {
  auto it = transfers_.find(conn_);
  int32_t refused = 0;
  if (send > nv_efs::kDataArea || cur > all || send > all - cur) {
    refused = kEfsInval;
  } else if (all > kEfsFileMax) {
    refused = kEfsFBig;
  } else if (cur != 0 && (it == transfers_.end() || it->second.sub != sub ||
                          it->second.path != path || it->second.total != all)) {
    refused = kEfsInval;  // a chunk of a transfer this client never started
  }
  // A refused chunk, or the first chunk of another file, ends what this
  // client had under way.
  if (refused != 0 || cur == 0) {
    drop_transfers(conn_);
    if (refused != 0) return refused;
    // A file in one chunk needs no staging.
    if (send == all) {
      return store_.efs_write(sub, path,
                              std::string_view(reinterpret_cast<const char *>(data), send));
    }
    it = transfers_.emplace(conn_, Transfer{sub, path, all, {}, 0}).first;
  }
  Transfer &t = it->second;
  t.last_use = ++chunks_;
  const size_t end = static_cast<size_t>(cur) + send;
  if (end > t.data.size()) {
    make_room(end - t.data.size(), conn_);
    staged_bytes_ += end - t.data.size();
    t.data.resize(end);
  }
  memcpy(t.data.data() + cur, data, send);
  if (end != all) return 0;
  const int32_t result = store_.efs_write(sub, path, t.data);
  drop_transfers(conn_);
  return result;
}

void Modem::make_room(size_t need, uint64_t keep) {
  static_assert(kEfsFileMax < kStagedMax, "one transfer must always fit");
  while (staged_bytes_ + need > kStagedMax) {
    auto oldest = transfers_.end();
    for (auto it = transfers_.begin(); it != transfers_.end(); ++it) {
      if (it->first != keep &&
          (oldest == transfers_.end() || it->second.last_use < oldest->second.last_use)) {
        oldest = it;
      }
    }
    if (oldest == transfers_.end()) return;
    drop_transfers(oldest->first);
  }
}

void Modem::drop_transfers(uint64_t conn) {
  auto it = transfers_.find(conn);
  if (it == transfers_.end()) return;
  staged_bytes_ -= it->second.data.size();
  transfers_.erase(it);
}

std::vector<uint8_t> Modem::common_request(const uint8_t *req, Outcome &out) {
  using namespace rec4;
  std::vector<uint8_t> rsp(kResponseSize, 0);
  const uint32_t kind = le32(req);
  int32_t result = 0;
  switch (kind) {
    case kCommon: {
      const uint32_t t = le32(req + 8);
      const uint32_t l = le32(req + 12);
      std::vector<uint8_t> v;
      if (l > kValueMax) {
        result = static_cast<int32_t>(kQmiErrInvalidArg);
      } else {
        v = common_command(t, req + 16, l, &result, out);
      }
      const size_t n = std::min<size_t>(v.size(), kResponseSize - 16);
      put_field(rsp, 8, t, 4);
      put_field(rsp, 12, n, 4);
      if (n > 0) memcpy(rsp.data() + 16, v.data(), n);
      break;
    }
    case kGpioTest: {
      const uint32_t count = le32(req + 8);
      std::string file = le_bytes(count, 4);
      for (uint32_t i = 0; i < std::min(count, kGpioValuesMax); ++i) {
        file += le_bytes(le32(req + 12 + 4 * i), 4);
      }
      result = store_.efs_write(0, kGpioTestFile, file);
      break;
    }
    case kTxAntennaTest: {
      const uint32_t ant = le32(req + 8);
      const uint32_t sys = le32(req + 12);
      const uint64_t bands = get_le(req + 16, 8);
      if (ant > 1 || sys > 4) {
        result = static_cast<int32_t>(kQmiErrInvalidArg);
      } else {
        result = store_.efs_write(0, kTxAntennaFile,
                                  le_bytes(ant, 4) + le_bytes(sys, 4) + le_bytes(bands, 8));
      }
      break;
    }
    case kStatsDebug: {
      ++stats_queries_;
      std::vector<uint8_t> info = stats_debug_info();
      memcpy(rsp.data() + 8, info.data(), std::min(info.size(), kResponseSize - 8));
      break;
    }
    default:
      result = static_cast<int32_t>(kQmiErrNotSupported);
      break;
  }
  put_field(rsp, 0, kind, 4);
  put_field(rsp, 4, static_cast<uint32_t>(result), 4);
  return rsp;
}

std::vector<uint8_t> Modem::common_command(uint32_t t, const uint8_t *v, uint32_t l,
                                           int32_t *result, Outcome &out) {
  using namespace rec4;
  auto arg = [&](uint32_t i) { return 4 * (i + 1) <= l ? le32(v + 4 * i) : 0xFFFFFFFFu; };
  auto word = [](uint32_t x) {
    std::string s = le_bytes(x, 4);
    return std::vector<uint8_t>(s.begin(), s.end());
  };
  *result = 0;
  switch (t) {
    case kCardStatusQuery:
      return word(settings_.card_present[0] != 0 || settings_.card_present[1] != 0 ? 1 : 0);
    case kCardStatusGet: {
      const uint32_t sub = arg(0);
      if (sub > 1) break;
      return word(settings_.card_present[sub] != 0 ? 1 : 0);
    }
    case kCardStatusSet: {
      const uint32_t sub = arg(0), mode = arg(1), level = arg(2);
      if (sub > 1 || mode > 1 || level > 1) break;
      settings_.card_detect_mode[sub] = mode;
      settings_.card_detect_level[sub] = level;
      // In SIM mode the detect line itself says whether a card is there.
      if (mode == 1) settings_.card_present[sub] = level;
      settings_.save(dir_);
      std::vector<uint8_t> echo = word(sub);
      for (uint32_t x : {mode, level}) {
        auto w = word(x);
        echo.insert(echo.end(), w.begin(), w.end());
      }
      return echo;
    }
    case kCardTypeQuery:
      return word(settings_.card_type);
    case kNvSync:
      ++nv_syncs_;
      return {};
    case kSsr: {
      const uint32_t value = arg(0);
      if (value == kSsrRestart) {
        ++restarts_;
        out.after = AfterReply::kRestart;
      } else if (value == kSsrFullDump) {
        ++dumps_;
        out.after = AfterReply::kFullDump;
      } else {
        break;
      }
      return word(value);
    }
    default:
      *result = static_cast<int32_t>(kQmiErrNotSupported);
      return {};
  }
  *result = static_cast<int32_t>(kQmiErrInvalidArg);
  return {};
}

std::vector<uint8_t> Modem::stats_debug_info() {
  std::vector<uint8_t> out{kStatsVersion};
  for (const auto &f : kStatFields) {
    uint64_t value = f.value;
    if (std::string(f.name) == "g_modem_stats_cmd_ok_count") value = stats_queries_;
    const std::string key = std::string(f.section) + "." + f.name;
    if (auto it = settings_.stats.find(key); it != settings_.stats.end()) value = it->second;
    const std::string bytes = le_bytes(value, f.width);
    out.insert(out.end(), bytes.begin(), bytes.end());
  }
  return out;
}

}  // namespace rpk_sim
