#include "modem_stats/decode/decode_run.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "modem_stats/decode/decode_stream.h"
#include "modem_stats/modem_stats_dispatch.h"

namespace {

enum outcome { kDecoded, kRefused, kInvalid, kNoRecord, kOutcomes };
constexpr std::array<const char *, kOutcomes> kOutcomeNames = {"decoded", "refused", "invalid",
                                                               "no_record"};

enum class input_kind { sniff, text, hdlc };

constexpr const char *kUsage =
    "usage: rpk-decode [--json] [--text | --hdlc] FILE...\n"
    "  Decodes captured diag packets with the statistics engine. FILE is the\n"
    "  text form (\"<code hex> <payload hex>\" or \"E<id> <payload hex>\" per line)\n"
    "  or a binary HDLC diag stream (.qmdl); \"-\" reads stdin.\n"
    "  --json  one JSON object per packet, one per line; counts go to stderr\n"
    "  --text, --hdlc  take every FILE as that form instead of guessing\n";

// Everything the engine prints for one packet is captured by pointing the
// stdout descriptor at a scratch file; the tool's own output goes to a
// duplicate of the real stdout.
class stdout_capture {
 public:
  bool start() {
    fflush(stdout);
    scratch_ = tmpfile();
    const int real = dup(STDOUT_FILENO);
    if (scratch_ == nullptr || real < 0) return false;
    out_ = fdopen(real, "w");
    return out_ != nullptr && dup2(fileno(scratch_), STDOUT_FILENO) >= 0;
  }

  // What was printed since the last take.
  std::string take() {
    fflush(stdout);
    std::string text;
    const off_t n = lseek(STDOUT_FILENO, 0, SEEK_CUR);
    if (n > 0) {
      text.resize(static_cast<size_t>(n));
      const ssize_t got = pread(STDOUT_FILENO, text.data(), text.size(), 0);
      text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    }
    if (ftruncate(STDOUT_FILENO, 0) != 0) text += "\n[rpk-decode: scratch file not reset]";
    fseek(stdout, 0, SEEK_SET);
    return text;
  }

  void stop() {
    fflush(stdout);
    if (out_ != nullptr) {
      fflush(out_);
      dup2(fileno(out_), STDOUT_FILENO);
      fclose(out_);
    }
    if (scratch_ != nullptr) fclose(scratch_);
    out_ = scratch_ = nullptr;
  }

  FILE *out() const { return out_; }

 private:
  FILE *scratch_ = nullptr;
  FILE *out_ = nullptr;
};

void json_string(std::string &dst, std::string_view s) {
  dst += '"';
  for (unsigned char c : s) {
    if (c == '"' || c == '\\') {
      dst += '\\';
      dst += static_cast<char>(c);
    } else if (c < 0x20 || c >= 0x7F) {
      char esc[8];
      snprintf(esc, sizeof esc, "\\u%04x", c);
      dst += esc;
    } else {
      dst += static_cast<char>(c);
    }
  }
  dst += '"';
}

std::vector<std::string_view> split_lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t nl = text.find('\n');
    lines.push_back(text.substr(0, nl));
    if (nl == std::string_view::npos) break;
    text.remove_prefix(nl + 1);
  }
  return lines;
}

std::string hex_of(const uint8_t *p, size_t n) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string s;
  s.reserve(2 * n);
  for (size_t i = 0; i < n; ++i) {
    s += kDigits[p[i] >> 4];
    s += kDigits[p[i] & 0xF];
  }
  return s;
}

// The code column: "E<id>" for an event, four hex digits for a log code.
std::string code_label(bool event, uint16_t id) {
  char code[8];
  if (event) {
    snprintf(code, sizeof code, "E%u", static_cast<unsigned>(id));
  } else {
    snprintf(code, sizeof code, "%04X", static_cast<unsigned>(id));
  }
  return code;
}

class decoder {
 public:
  explicit decoder(bool json) : json_(json) {}

  bool begin() {
    if (!json_) return true;
    return capture_.start();
  }

  void end() {
    FILE *summary = json_ ? stderr : stdout;
    if (json_) capture_.stop();
    print_counts(summary);
  }

  void packet(const decode_item &item, const std::string &source) {
    area_.assign(std::max<size_t>(MODEM_STATS_READABLE_LEN, item.payload.size()), 0);
    std::copy(item.payload.begin(), item.payload.end(), area_.begin());

    const uint64_t refused_before = not_support_num;
    const uint64_t failed_before = modem_stats_failures();
    uint32_t stat_id = MODEM_STATS_NO_RECORD;
    modem_stats_single *record = nullptr;
    if (item.event) {
      modem_stats_diag_process_event_rec(item.id, area_.data(), &stat_id, &record);
    } else {
      modem_stats_diag_process_log_rec(item.id, area_.data(), &stat_id, &record);
    }
    const outcome o = record != nullptr                         ? kDecoded
                      : not_support_num != refused_before       ? kRefused
                      : modem_stats_failures() != failed_before ? kInvalid
                                                                : kNoRecord;
    const std::string code = code_label(item.event, item.id);
    ++counts_[{item.event, item.id}][o];
    ++packets_;

    if (json_) {
      emit_json(code, capture_.take(), record, source, o);
    } else if (record != nullptr) {
      printf("=> %s %s: stat_id %" PRIu32 ", record %s\n", code.c_str(), kOutcomeNames[o],
             record->stat_id, hex_of(record->data, static_cast<size_t>(record->data_len)).c_str());
    } else {
      printf("=> %s %s\n", code.c_str(), kOutcomeNames[o]);
    }
    modem_stats_free_single(record);
  }

  void damage(decode_damage d, const std::string &where) {
    ++damaged_;
    ++damage_kinds_[d];
    fprintf(stderr, "rpk-decode: %s: %s, skipped\n", where.c_str(), decode_damage_name(d));
  }

  void other_frame() { ++other_frames_; }

 private:
  void emit_json(const std::string &code, const std::string &printed,
                 const modem_stats_single *record, const std::string &source, outcome o) {
    std::string j = "{\"code\": ";
    json_string(j, code);
    j += ", \"lines\": [";
    bool first = true;
    for (std::string_view line : split_lines(printed)) {
      if (!first) j += ", ";
      first = false;
      json_string(j, line);
    }
    j += "], \"stat_id\": ";
    if (record != nullptr) {
      j += std::to_string(record->stat_id);
      j += ", \"record\": \"" + hex_of(record->data, static_cast<size_t>(record->data_len)) + "\"";
    } else {
      j += "null, \"record\": null";
    }
    j += ", \"status\": \"";
    j += kOutcomeNames[o];
    j += "\", \"source\": ";
    json_string(j, source);
    j += "}\n";
    fputs(j.c_str(), capture_.out());
  }

  void print_counts(FILE *f) const {
    fprintf(f, "== rpk-decode: %" PRIu64 " packets\n", packets_);
    fprintf(f, "%-6s %9s %9s %9s %9s\n", "code", kOutcomeNames[0], kOutcomeNames[1],
            kOutcomeNames[2], kOutcomeNames[3]);
    for (const auto &[key, n] : counts_) {
      fprintf(f, "%-6s %9" PRIu64 " %9" PRIu64 " %9" PRIu64 " %9" PRIu64 "\n",
              code_label(key.first, key.second).c_str(), n[0], n[1], n[2], n[3]);
    }
    fprintf(f, "malformed: %" PRIu64, damaged_);
    const char *sep = " (";
    for (const auto &[kind, n] : damage_kinds_) {
      fprintf(f, "%s%s %" PRIu64, sep, decode_damage_name(kind), n);
      sep = ", ";
    }
    fprintf(f, "%s\n", damaged_ != 0 ? ")" : "");
    fprintf(f, "other frames skipped: %" PRIu64 "\n", other_frames_);
  }

  bool json_;
  stdout_capture capture_;
  std::vector<uint8_t> area_;
  // Logs before events, each by code.
  std::map<std::pair<bool, uint16_t>, std::array<uint64_t, kOutcomes>> counts_;
  std::map<decode_damage, uint64_t> damage_kinds_;
  uint64_t packets_ = 0;
  uint64_t damaged_ = 0;
  uint64_t other_frames_ = 0;
};

bool read_file(const char *path, std::vector<uint8_t> *bytes) {
  const bool is_stdin = strcmp(path, "-") == 0;
  FILE *f = is_stdin ? stdin : fopen(path, "rb");
  if (f == nullptr) return false;
  uint8_t buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) bytes->insert(bytes->end(), buf, buf + n);
  const bool ok = ferror(f) == 0;
  if (!is_stdin) fclose(f);
  return ok;
}

void decode_text(decoder &d, const std::string &name, std::span<const uint8_t> bytes) {
  const std::string_view all(reinterpret_cast<const char *>(bytes.data()), bytes.size());
  size_t line_no = 0;
  std::vector<uint8_t> payload;
  for (std::string_view line : split_lines(all)) {
    ++line_no;
    const std::string where = name + ":" + std::to_string(line_no);
    bool event = false;
    uint16_t id = 0;
    switch (decode_text_line(line, &event, &id, &payload)) {
      case decode_line_kind::item:
        d.packet({event, id, payload}, where);
        break;
      case decode_line_kind::bad:
        d.damage(decode_damage::bad_line, where);
        break;
      case decode_line_kind::empty:
        break;
    }
  }
}

void decode_binary(decoder &d, const std::string &name, std::span<const uint8_t> bytes) {
  auto where = [&](size_t frame) { return name + ":frame " + std::to_string(frame); };
  decode_hdlc(bytes, {[&](const decode_item &item, size_t frame) { d.packet(item, where(frame)); },
                      [&](decode_damage kind, size_t frame) { d.damage(kind, where(frame)); },
                      [&](uint8_t) { d.other_frame(); }});
}

}  // namespace

int rpk_decode_main(int argc, char **argv) {
  bool json = false;
  input_kind kind = input_kind::sniff;
  std::vector<const char *> files;
  for (int i = 1; i < argc; ++i) {
    const std::string_view a = argv[i];
    if (a == "--json") {
      json = true;
    } else if (a == "--text") {
      kind = input_kind::text;
    } else if (a == "--hdlc") {
      kind = input_kind::hdlc;
    } else if (a == "-h" || a == "--help") {
      fputs(kUsage, stdout);
      return 0;
    } else if (a.size() > 1 && a[0] == '-') {
      fprintf(stderr, "rpk-decode: unknown option %s\n%s", argv[i], kUsage);
      return 2;
    } else {
      files.push_back(argv[i]);
    }
  }
  if (files.empty()) {
    fputs(kUsage, stderr);
    return 2;
  }

  decoder d(json);
  if (!d.begin()) {
    fputs("rpk-decode: cannot capture the engine's output\n", stderr);
    return 1;
  }
  int status = 0;
  for (const char *path : files) {
    std::vector<uint8_t> bytes;
    if (!read_file(path, &bytes)) {
      fprintf(stderr, "rpk-decode: cannot read %s\n", path);
      status = 1;
      continue;
    }
    const bool text =
        kind == input_kind::text ||
        (kind == input_kind::sniff &&
         decode_looks_like_text(std::span(bytes).first(std::min<size_t>(bytes.size(), 4096))));
    if (text) {
      decode_text(d, path, bytes);
    } else {
      decode_binary(d, path, bytes);
    }
  }
  d.end();
  return status;
}
