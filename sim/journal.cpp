#include "journal.h"

#include <sys/time.h>

#include <charconv>
#include <cstring>
#include <string_view>

namespace rpk_sim {
namespace {

using json = nlohmann::json;

// A string needs no escaping when it is printable ASCII without '"' or '\'.
// Entries are mostly long hex strings, so those are copied as they are; the
// rest goes through the library, which escapes them the same way as before.
//
// Checked eight bytes at a time (a per-byte loop cost more than the rest of
// an entry): per byte, the high bit of `hit` is set for a byte below 0x20,
// above 0x7E, or equal to '"' or '\\'.
bool plain_json(std::string_view s) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kHighs = kOnes * 0x80;
  auto zero_byte = [](uint64_t v) { return (v - kOnes) & ~v; };
  auto hit = [&](uint64_t v) {
    return ((v - kOnes * 0x20) | (v + kOnes * 0x01) | zero_byte(v ^ (kOnes * '"')) |
            zero_byte(v ^ (kOnes * '\\')) | v) &
           kHighs;
  };
  size_t i = 0;
  uint64_t seen = 0;
  for (; s.size() - i >= 8; i += 8) {
    uint64_t v;
    memcpy(&v, s.data() + i, sizeof v);
    seen |= hit(v);
  }
  for (; i < s.size(); ++i) seen |= hit(static_cast<unsigned char>(s[i])) & 0x80;
  return seen == 0;
}

void put_string(std::string &out, std::string_view s) {
  const bool plain = plain_json(s);
  if (!plain) {
    out += json(s).dump(-1, ' ', false, json::error_handler_t::replace);
    return;
  }
  out += '"';
  out += s;
  out += '"';
}

template <typename T>
void put_number(std::string &out, T v) {
  char buf[24];
  const auto r = std::to_chars(buf, buf + sizeof buf, v);
  out.append(buf, r.ptr);
}

void put_value(std::string &out, const json &j);

void put_member(std::string &out, bool &first, std::string_view key, const json &value) {
  if (!first) out += ',';
  first = false;
  put_string(out, key);
  out += ':';
  put_value(out, value);
}

void put_value(std::string &out, const json &j) {
  switch (j.type()) {
    case json::value_t::object: {
      out += '{';
      bool first = true;
      for (const auto &[key, value] : j.items()) put_member(out, first, key, value);
      out += '}';
      break;
    }
    case json::value_t::array: {
      out += '[';
      bool first = true;
      for (const auto &value : j) {
        if (!first) out += ',';
        first = false;
        put_value(out, value);
      }
      out += ']';
      break;
    }
    case json::value_t::string:
      put_string(out, j.get_ref<const std::string &>());
      break;
    case json::value_t::number_integer:
      put_number(out, j.get<int64_t>());
      break;
    case json::value_t::number_unsigned:
      put_number(out, j.get<uint64_t>());
      break;
    default:  // null, booleans, floating point, binary
      out += j.dump(-1, ' ', false, json::error_handler_t::replace);
      break;
  }
}

}  // namespace

Journal::Journal(std::string path, size_t max_bytes) : log_(std::move(path), max_bytes) {}

void Journal::append(const nlohmann::json &entry) {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  const json seq = ++seq_;
  const json time = std::string(stamp_.text(tv));

  // The entry as one compact JSON object with "seq" and "time" in their
  // places among its sorted keys, written without copying the entry.
  line_.clear();
  line_ += '{';
  bool first = true;
  bool seq_done = false;
  bool time_done = false;
  auto put_ours_before = [&](std::string_view key) {
    if (!seq_done && key >= "seq") {
      put_member(line_, first, "seq", seq);
      seq_done = true;
    }
    if (!time_done && key >= "time") {
      put_member(line_, first, "time", time);
      time_done = true;
    }
  };
  if (entry.is_object()) {
    for (const auto &[key, value] : entry.items()) {
      put_ours_before(key);
      if (key != "seq" && key != "time") put_member(line_, first, key, value);
    }
  }
  put_ours_before("\x7f");
  line_ += "}\n";
  log_.append(line_);
}

void Journal::clear() {
  log_.clear();
  seq_ = 0;
}

}  // namespace rpk_sim
