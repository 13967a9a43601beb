#include "modem_stats/decode/decode_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "modem_stats/decode/decode_stream.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "modem_stats/modem_stats_out.h"

namespace {

enum outcome { kDecoded, kRefused, kInvalid, kNoRecord, kOutcomes };
constexpr std::array<const char *, kOutcomes> kOutcomeNames = {"decoded", "refused", "invalid",
                                                               "no_record"};

enum class input_kind { sniff, text, hdlc };

// Input is read in blocks of this size (small enough that a block is still
// in the cache when the reader parses it); the form is guessed from the
// first kSniffBytes of a file.
constexpr size_t kBlockSize = 32 * 1024;
constexpr size_t kSniffBytes = 4096;

constexpr const char *kUsage =
    "usage: rpk-decode [--json] [--text | --hdlc] FILE...\n"
    "  Decodes captured diag packets with the statistics engine. FILE is the\n"
    "  text form (\"<code hex> <payload hex>\" or \"E<id> <payload hex>\" per line)\n"
    "  or a binary HDLC diag stream (.qmdl); \"-\" reads stdin.\n"
    "  --json  one JSON object per packet, one per line; counts go to stderr\n"
    "  --text, --hdlc  take every FILE as that form instead of guessing\n";

// `v` in decimal, at the end of `buf`.
std::string_view decimal(uint64_t v, char (&buf)[20]) {
  char *at = std::end(buf);
  do {
    *--at = static_cast<char>('0' + v % 10);
    v /= 10;
  } while (v != 0);
  return {at, static_cast<size_t>(std::end(buf) - at)};
}

// Two lower-case hex digits per byte at `out`; returns the end.
char *hex_into(char *out, std::span<const uint8_t> bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  for (uint8_t b : bytes) {
    *out++ = kDigits[b >> 4];
    *out++ = kDigits[b & 0xF];
  }
  return out;
}

// Everything the tool writes to stdout goes through one buffer, written out
// when full: a system call per 64 KiB rather than per packet.
class out_buffer {
 public:
  explicit out_buffer(int fd) : fd_(fd), buf_(std::make_unique<char[]>(kSize)) {}
  ~out_buffer() { flush(); }
  out_buffer(const out_buffer &) = delete;
  out_buffer &operator=(const out_buffer &) = delete;

  void put(char c) {
    if (len_ == kSize) flush();
    buf_[len_++] = c;
  }
  void append(const char *text, size_t n) {
    if (n > kSize - len_) {
      flush();
      if (n > kSize) {
        write_through(text, n);
        return;
      }
    }
    memcpy(buf_.get() + len_, text, n);
    len_ += n;
  }
  void append(std::string_view s) { append(s.data(), s.size()); }
  void number(uint64_t v) {
    char digits[20];
    append(decimal(v, digits));
  }
  void hex(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
      if (len_ + 2 > kSize) flush();
      const size_t n = std::min(bytes.size(), (kSize - len_) / 2);
      len_ = static_cast<size_t>(hex_into(buf_.get() + len_, bytes.first(n)) - buf_.get());
      bytes = bytes.subspan(n);
    }
  }
  void flush() {
    write_through(buf_.get(), len_);
    len_ = 0;
  }
  // Writes at once, past the buffer (flush first to keep the order).
  void write_through(const char *p, size_t n) {
    while (n > 0) {
      const ssize_t w = write(fd_, p, n);
      if (w < 0 && errno == EINTR) continue;
      if (w <= 0) return;  // a closed pipe: nothing more can be delivered
      p += w;
      n -= static_cast<size_t>(w);
    }
  }

 private:
  static constexpr size_t kSize = 64 * 1024;

  int fd_;
  std::unique_ptr<char[]> buf_;
  size_t len_ = 0;
};

// The bytes a JSON string holds as they are.
constexpr std::array<bool, 256> kJsonPlain = [] {
  std::array<bool, 256> t{};
  for (int c = 0x20; c < 0x7F; ++c) t[c] = c != '"' && c != '\\';
  return t;
}();

// True when none of the eight bytes in `x` needs escaping: the engine's text
// almost never does, so it is checked a word at a time.
constexpr bool json_plain8(uint64_t x) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  constexpr uint64_t kHighs = 0x8080808080808080;
  auto has_zero = [](uint64_t v) { return (v - kOnes) & ~v & kHighs; };
  const uint64_t below_space = (x - kOnes * 0x20) & ~x & kHighs;
  return ((x & kHighs) | below_space | has_zero(x ^ (kOnes * 0x7F)) | has_zero(x ^ (kOnes * '"')) |
          has_zero(x ^ (kOnes * '\\'))) == 0;
}

// JSON string contents: quote and backslash escaped, every byte outside
// printable ASCII as \u00XX. `Out` is anything with append(text, n).
template <typename Out>
void json_escape(Out &out, std::string_view s) {
  static constexpr char kDigits[] = "0123456789abcdef";
  size_t run = 0;
  size_t i = 0;
  while (i < s.size()) {
    uint64_t word;
    if (s.size() - i >= sizeof word) {
      memcpy(&word, s.data() + i, sizeof word);
      if (json_plain8(word)) {
        i += sizeof word;
        continue;
      }
    }
    const auto c = static_cast<unsigned char>(s[i++]);
    if (kJsonPlain[c]) continue;
    out.append(s.data() + run, i - 1 - run);
    run = i;
    if (c == '"' || c == '\\') {
      const char esc[2] = {'\\', static_cast<char>(c)};
      out.append(esc, sizeof esc);
    } else {
      const char esc[6] = {'\\', 'u', '0', '0', kDigits[c >> 4], kDigits[c & 0xF]};
      out.append(esc, sizeof esc);
    }
  }
  out.append(s.data() + run, s.size() - run);
}

// The code column: "E<id>" for an event, four hex digits for a log code.
std::string_view code_label(bool event, uint16_t id, char (&buf)[8]) {
  if (!event) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    for (int i = 0; i < 4; ++i) buf[i] = kDigits[(id >> (12 - 4 * i)) & 0xF];
    return {buf, 4};
  }
  char digits[20];
  const std::string_view n = decimal(id, digits);
  buf[0] = 'E';
  std::copy(n.begin(), n.end(), buf + 1);
  return {buf, n.size() + 1};
}

class decoder {
 public:
  explicit decoder(bool json) : json_(json), out_(STDOUT_FILENO), slot_(kCodeSlots, 0) {
    fflush(stdout);
    lines_.reserve(4096);
    // The engine prints into a stdio stream of our own: with --json it is
    // flushed into lines_ after each packet; plain, it carries the verdicts
    // too and empties into the output buffer when full. Formatting stays on
    // stdio's usual path and nothing leaves the process on the way.
    engine_ = fopencookie(this, "w", {nullptr, &decoder::engine_text, nullptr, nullptr});
    if (engine_ != nullptr) {
      setvbuf(engine_, nullptr, _IOFBF, json_ ? 8192 : 65536);
      modem_stats_bind_out(engine_);
    }
  }
  ~decoder() {
    modem_stats_bind_out(nullptr);
    if (engine_ != nullptr) fclose(engine_);
  }
  decoder(const decoder &) = delete;
  decoder &operator=(const decoder &) = delete;

  bool ready() const { return engine_ != nullptr; }

  // Names the input the following packets come from, and whether its
  // numbers count frames or lines.
  void source(std::string_view name, bool frames) {
    name_ = name;
    json_name_.clear();
    json_escape(json_name_, name);
    unit_ = frames ? ":frame " : ":";
  }

  void flush() {
    fflush(engine_);
    out_.flush();
  }

  void end() {
    const std::string counts = counts_text();
    fflush(engine_);
    if (json_) {
      out_.flush();
      fputs(counts.c_str(), stderr);
    } else {
      out_.append(counts);
      out_.flush();
    }
  }

  void packet(const decode_item &item, size_t where) {
    // The engine reads a 2000-byte area: the payload, zero-padded. Only what
    // the last packet left beyond this one's end needs zeroing again.
    const size_t n = std::min(item.payload.size(), area_.size());
    std::copy_n(item.payload.begin(), n, area_.begin());
    if (dirty_ > n) std::fill(area_.begin() + n, area_.begin() + dirty_, 0);
    dirty_ = n;

    const uint64_t refused_before = not_support_num;
    const uint64_t failed_before = modem_stats_failures();
    uint32_t stat_id = MODEM_STATS_NO_RECORD;
    modem_stats_single *record = nullptr;
    lines_.clear();
    if (item.event) {
      modem_stats_diag_process_event_rec(item.id, area_.data(), &stat_id, &record);
    } else {
      modem_stats_diag_process_log_rec(item.id, area_.data(), &stat_id, &record);
    }
    const outcome o = record != nullptr                         ? kDecoded
                      : not_support_num != refused_before       ? kRefused
                      : modem_stats_failures() != failed_before ? kInvalid
                                                                : kNoRecord;
    count(item, o);
    char label[8];
    const std::string_view code = code_label(item.event, item.id, label);
    if (json_) {
      fflush(engine_);
      emit_json(code, record, where, o);
    } else {
      verdict(code, record, o);
    }
    modem_stats_free_single(record);
  }

  void damage(decode_damage d, size_t where) {
    ++damaged_;
    ++damage_kinds_[static_cast<size_t>(d)];
    // What came before goes out first, so the report lands beside it when
    // both streams share a file.
    flush();
    fprintf(stderr, "rpk-decode: %s%s%zu: %s, skipped\n", name_.c_str(), unit_, where,
            decode_damage_name(d));
  }

  void other_frame() { ++other_frames_; }

 private:
  // Logs (0..0xFFFF) before events (0..0xFFF), each by code.
  static constexpr size_t kCodeSlots = 0x10000 + 0x1000;
  static constexpr size_t kDamageKinds = static_cast<size_t>(decode_damage::long_line) + 1;

  // Plain output: the verdict line follows the engine's lines in the
  // engine's own stream, which then needs no flush per packet.
  void verdict(std::string_view code, const modem_stats_single *record, outcome o) {
    char line[2 * MODEM_STATS_PK_MAX + 64];
    char *at = line;
    auto put = [&at](std::string_view s) { at = std::copy(s.begin(), s.end(), at); };
    put("=> ");
    put(code);
    put(" ");
    put(kOutcomeNames[o]);
    if (record != nullptr) {
      char digits[20];
      put(": stat_id ");
      put(decimal(record->stat_id, digits));
      put(", record ");
      const auto len = std::clamp<int32_t>(record->data_len, 0, MODEM_STATS_PK_MAX);
      at = hex_into(at, {record->data, static_cast<size_t>(len)});
    }
    *at++ = '\n';
    fwrite_unlocked(line, 1, static_cast<size_t>(at - line), engine_);
  }

  static ssize_t engine_text(void *ctx, const char *text, size_t n) {
    auto *d = static_cast<decoder *>(ctx);
    if (d->json_) {
      d->lines_.append(text, n);
    } else {
      // A full stream buffer goes out as it is, not through a second copy.
      d->out_.flush();
      d->out_.write_through(text, n);
    }
    return static_cast<ssize_t>(n);
  }

  void count(const decode_item &item, outcome o) {
    uint32_t &slot = slot_[item.event ? 0x10000u + (item.id & 0x0FFFu) : item.id];
    if (slot == 0) {
      counts_.push_back({});
      slot = static_cast<uint32_t>(counts_.size());
    }
    ++counts_[slot - 1][o];
    ++packets_;
  }

  void emit_json(std::string_view code, const modem_stats_single *record, size_t where, outcome o) {
    out_.append("{\"code\": \"");
    out_.append(code);
    out_.append("\", \"lines\": [");
    std::string_view printed = lines_;
    bool first = true;
    while (!printed.empty()) {
      const size_t nl = printed.find('\n');
      if (!first) out_.append(", ");
      first = false;
      out_.put('"');
      json_escape(out_, printed.substr(0, nl));
      out_.put('"');
      if (nl == std::string_view::npos) break;
      printed.remove_prefix(nl + 1);
    }
    out_.append("], \"stat_id\": ");
    if (record != nullptr) {
      out_.number(record->stat_id);
      out_.append(", \"record\": \"");
      out_.hex({record->data, static_cast<size_t>(record->data_len)});
      out_.put('"');
    } else {
      out_.append("null, \"record\": null");
    }
    out_.append(", \"status\": \"");
    out_.append(kOutcomeNames[o]);
    out_.append("\", \"source\": \"");
    out_.append(json_name_);
    out_.append(unit_);
    out_.number(where);
    out_.append("\"}\n");
  }

  std::string counts_text() const {
    std::string text;
    char line[128];
    auto add = [&](int n) { text.append(line, static_cast<size_t>(std::max(n, 0))); };
    add(snprintf(line, sizeof line, "== rpk-decode: %" PRIu64 " packets\n", packets_));
    add(snprintf(line, sizeof line, "%-6s %9s %9s %9s %9s\n", "code", kOutcomeNames[0],
                 kOutcomeNames[1], kOutcomeNames[2], kOutcomeNames[3]));
    for (size_t key = 0; key < kCodeSlots; ++key) {
      if (slot_[key] == 0) continue;
      const auto &n = counts_[slot_[key] - 1];
      const bool event = key >= 0x10000;
      char label[8];
      const std::string code(code_label(event, static_cast<uint16_t>(key & 0xFFFF), label));
      add(snprintf(line, sizeof line, "%-6s %9" PRIu64 " %9" PRIu64 " %9" PRIu64 " %9" PRIu64 "\n",
                   code.c_str(), n[0], n[1], n[2], n[3]));
    }
    add(snprintf(line, sizeof line, "malformed: %" PRIu64, damaged_));
    const char *sep = " (";
    for (size_t kind = 0; kind < kDamageKinds; ++kind) {
      if (damage_kinds_[kind] == 0) continue;
      add(snprintf(line, sizeof line, "%s%s %" PRIu64, sep,
                   decode_damage_name(static_cast<decode_damage>(kind)), damage_kinds_[kind]));
      sep = ", ";
    }
    add(snprintf(line, sizeof line, "%s\n", damaged_ != 0 ? ")" : ""));
    add(snprintf(line, sizeof line, "other frames skipped: %" PRIu64 "\n", other_frames_));
    return text;
  }

  bool json_;
  out_buffer out_;
  FILE *engine_ = nullptr;  // what the engine prints to
  std::string lines_;       // the engine's text for the packet at hand (--json)
  std::array<uint8_t, MODEM_STATS_READABLE_LEN> area_{};
  size_t dirty_ = 0;  // bytes of area_ the last payload filled
  std::string name_;
  std::string json_name_;
  const char *unit_ = ":";
  std::vector<uint32_t> slot_;  // per code: 1 + its index in counts_, 0 when not seen
  std::vector<std::array<uint64_t, kOutcomes>> counts_;
  std::array<uint64_t, kDamageKinds> damage_kinds_{};
  uint64_t packets_ = 0;
  uint64_t damaged_ = 0;
  uint64_t other_frames_ = 0;
};

// Reads until `buf` is full or the input ends; false on a read error.
bool read_block(int fd, std::span<uint8_t> buf, size_t *got) {
  *got = 0;
  while (*got < buf.size()) {
    const ssize_t n = read(fd, buf.data() + *got, buf.size() - *got);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) break;
    *got += static_cast<size_t>(n);
  }
  return true;
}

// Streams one input through the reader of its form; false when it could not
// be read.
bool decode_input(decoder &d, const char *path, input_kind kind, std::vector<uint8_t> &block) {
  const bool is_stdin = strcmp(path, "-") == 0;
  const int fd = is_stdin ? STDIN_FILENO : open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  size_t got = 0;
  bool ok = read_block(fd, block, &got);
  if (ok) {
    const auto first = std::span<const uint8_t>(block).first(got);
    const bool text = kind == input_kind::text ||
                      (kind == input_kind::sniff &&
                       decode_looks_like_text(first.first(std::min(got, kSniffBytes))));
    d.source(path, !text);
    const decode_sink sink{[&](const decode_item &item, size_t where) { d.packet(item, where); },
                           [&](decode_damage kind, size_t where) { d.damage(kind, where); },
                           [&](uint8_t) { d.other_frame(); }};
    decode_hdlc_reader hdlc(sink);
    decode_text_reader lines(sink);
    // A block that is not full is the end of the input.
    bool more = got == block.size();
    for (;;) {
      const auto bytes = std::span<const uint8_t>(block).first(got);
      text ? lines.feed(bytes) : hdlc.feed(bytes);
      if (!more) break;
      ok = read_block(fd, block, &got);
      if (!ok) break;
      more = got == block.size();
    }
    if (ok) text ? lines.finish() : hdlc.finish();
  }
  if (!is_stdin) close(fd);
  return ok;
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
  if (!d.ready()) {
    fputs("rpk-decode: cannot capture the engine's output\n", stderr);
    return 1;
  }
  std::vector<uint8_t> block(kBlockSize);
  int status = 0;
  for (const char *path : files) {
    if (!decode_input(d, path, kind, block)) {
      d.flush();
      fprintf(stderr, "rpk-decode: cannot read %s\n", path);
      status = 1;
    }
  }
  d.end();
  return status;
}
