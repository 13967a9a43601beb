// rpk-decode on inputs the test builds itself (an HDLC capture with sound,
// damaged and foreign frames, and the text form), its readers fed in pieces,
// and its --json output on the shared real packets against a reference built
// here from the engine's console output.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "modem_stats/decode/decode_run.h"
#include "modem_stats/decode/decode_stream.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "modem_stats/modem_stats_events.h"
#include "support/capture_stdout.h"
#include "support/diag_capture.h"

namespace {

using namespace diag_capture;

std::string write_temp(const Bytes &bytes) {
  char path[] = "/tmp/rpk-decode-test-XXXXXX";
  const int fd = mkstemp(path);
  EXPECT_GE(fd, 0);
  EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  close(fd);
  return path;
}

// The engine's state that shows in its output: the refusal count it prints and
// the RRC state event 1606 keeps.
void reset_engine() {
  not_support_num = 0;
  modem_stats_reset_1606_diag_event_lte_rrc_state();
}

std::string run_decode(std::vector<std::string> args, int *status) {
  args.insert(args.begin(), "rpk-decode");
  std::vector<char *> argv;
  for (auto &a : args) argv.push_back(a.data());
  reset_engine();
  return capture_stdout(
      [&] { *status = rpk_decode_main(static_cast<int>(argv.size()), argv.data()); });
}

// rpk-decode reading `input` on stdin.
std::string run_decode_stdin(const std::string &input, std::vector<std::string> args, int *status) {
  const int saved = dup(STDIN_FILENO);
  FILE *in = fopen(input.c_str(), "rb");
  EXPECT_NE(in, nullptr);
  dup2(fileno(in), STDIN_FILENO);
  std::string out = run_decode(args, status);
  dup2(saved, STDIN_FILENO);
  close(saved);
  fclose(in);
  return out;
}

// Bytes as hex digits; `mixed` writes every other byte in upper case.
std::string hex_text(const uint8_t *b, size_t n, bool mixed = false) {
  std::string s;
  char two[3];
  for (size_t i = 0; i < n; ++i) {
    snprintf(two, sizeof two, mixed && i % 2 == 0 ? "%02X" : "%02x", b[i]);
    s += two;
  }
  return s;
}

std::string json(const std::string &code, const std::string &lines, const std::string &stat_id,
                 const std::string &record, const std::string &status, const std::string &src) {
  return "{\"code\": \"" + code + "\", \"lines\": [" + lines + "], \"stat_id\": " + stat_id +
         ", \"record\": " + record + ", \"status\": \"" + status + "\", \"source\": \"" + src +
         "\"}\n";
}

TEST(RpkDecode, HdlcCaptureWithDamagedFrames) {
  // An SSB frequency of 0x7E7D7E7D forces escapes inside the frame.
  const Bytes cell = {0x7D, 0x7E, 0x7D, 0x7E, 0x2A, 0x00, 0x05};
  Bytes capture = {0x7E, 0x7E};  // leading flags are no frame
  const std::vector<Bytes> frames = {
      hdlc(event_report({event(3184, cell, false), event(1606, {0x04}, true)})),  // frame 1
      hdlc(log_packet(0xB870, {0x01, 0x02}), true),                               // 2: bad CRC
      hdlc(event_report({event(631, {0x01, 0x07}, true)})),                       // 3
      hdlc({0x4B, 0x12, 0x34, 0x00}),                                             // 4: not ours
      hdlc({0x10, 0x00, 0x40, 0x00, 0x1C, 0x00, 0x70, 0xB8}),                     // 5: too short
      hdlc(log_packet(0xB870, {0x09})),                                           // 6
      {0x01, 0x7D, 0x7E},                                                         // 7: bad escape
      {0x60, 0x01},                                                               // 8: no end
  };
  for (const auto &f : frames) capture.insert(capture.end(), f.begin(), f.end());
  const std::string path = write_temp(capture);

  int status = -1;
  const std::string out = run_decode({"--json", path}, &status);
  EXPECT_EQ(status, 0);
  const std::string ev = "modem_stats_diag_process_event_ex: event_id ";
  EXPECT_EQ(
      out,
      json("E3184",
           "\"" + ev + "3184, length 108, sub_id = 0\", " +
               "\"ssb_freq = 2122153597, pci = 42, bw = 5\"",
           "92", "\"7d7e7d7e2a0005\"", "decoded", path + ":frame 1") +
          json("E1606",
               "\"" + ev +
                   "1606, length 108, sub_id = 0\", \"sub_id = 0, rrc_state_current_in = "
                   "4\", \"1606_diag_event_lte_rrc_state_change, time_last = 0, "
                   "time_current = 0, rrc_state_last = 0, rrc_state_current = 4, "
                   "rrc_state_current_in = 4, old rrc_active_time = 0, old "
                   "rrc_setup_count = 0\", \"----1606_diag_event_lte_rrc_state_change, New "
                   "Connected and Old other state, rrc_setup_count = 1, sub_id 0\"",
               "127", "\"000000000100000001\"", "decoded", path + ":frame 1") +
          json("E631", "\"" + ev + "631, length 108, sub_id = 0\", \"num_calls = 1, call_id = 7\"",
               "118", "\"0107\"", "decoded", path + ":frame 3") +
          json("B870", "\"modem_stats_diag_process_log_ex: log_id 0xb870, length 108, sub_id = 0\"",
               "null", "null", "no_record", path + ":frame 6"));

  const std::string plain = run_decode({path}, &status);
  const std::string summary = plain.substr(plain.find("== rpk-decode"));
  EXPECT_EQ(summary,
            "== rpk-decode: 4 packets\n"
            "code     decoded   refused   invalid no_record\n"
            "B870           0         0         0         1\n"
            "E631           1         0         0         0\n"
            "E1606          1         0         0         0\n"
            "E3184          1         0         0         0\n"
            "malformed: 4 (bad CRC 1, bad escape 1, truncated frame 1, bad packet lengths 1)\n"
            "other frames skipped: 1\n");
  unlink(path.c_str());
}

TEST(RpkDecode, TextFormAndItsBadLines) {
  const std::string text =
      "# comment\n"
      "E2568 09000400000000\n"
      "\n"
      "B870 zz\n"
      "E99999 00\n"
      "b870 0\n"
      "E3215 05\r\n";
  const std::string path = write_temp(Bytes(text.begin(), text.end()));
  int status = -1;
  const std::string out = run_decode({path}, &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out.substr(0, out.find("== rpk-decode")),
            "modem_stats_diag_process_event_ex: event_id 2568, length 108, sub_id = 0\n"
            "cause = 9, freq = 1024, pci = 0\n"
            "DATA_IS_NOT_VALID(9), name(modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_"
            "ext_earfcn), id(0xa08)\n"
            "=> E2568 invalid\n"
            "modem_stats_diag_process_event_ex: event_id 3215, length 108, sub_id = 0\n"
            "nr5g_emm_timer_expiry, sub_id = 0, timer_id = 5\n"
            "=> E3215 decoded: stat_id 102, record 0504\n");
  EXPECT_NE(out.find("malformed: 3 (bad line 3)\n"), std::string::npos);
  unlink(path.c_str());

  EXPECT_EQ(run_decode({"/nonexistent/capture"}, &status).find("== rpk-decode: 0 packets"), 0u);
  EXPECT_EQ(status, 1);
  run_decode({"--bogus", path}, &status);
  EXPECT_EQ(status, 2);
}

TEST(DecodeReaders, CrcMatchesTheBitwiseDefinition) {
  std::mt19937 rng(7);
  for (size_t len = 0; len < 300; ++len) {
    Bytes b(len);
    for (auto &x : b) x = static_cast<uint8_t>(rng());
    EXPECT_EQ(decode_crc16(b), crc_x25(b)) << len;
  }
}

TEST(DecodeReaders, TextLineHexDigitsAnywhere) {
  std::vector<uint8_t> payload;
  bool event = false;
  uint16_t id = 0;
  // A long payload of every digit in both cases decodes.
  Bytes expected(37);
  for (size_t i = 0; i < expected.size(); ++i) expected[i] = static_cast<uint8_t>(i * 53 + 7);
  const std::string hex = hex_text(expected.data(), expected.size(), true);
  ASSERT_EQ(decode_text_line("B193 " + hex, &event, &id, &payload), decode_line_kind::item);
  EXPECT_EQ(payload, expected);
  // Any byte next to the digits' ranges, at every position, makes the line bad.
  for (const char bad : {'/', ':', '@', 'G', '`', 'g', 'z', ' ', '\x7f', '\x80', '\xb0', '\xff'}) {
    for (size_t at = 0; at < 58; ++at) {
      std::string line = "B193 " + hex.substr(0, 58);
      line[5 + at] = bad;
      if (bad == ' ' && (at == 0 || at == 57)) continue;  // blanks at the ends are trimmed
      EXPECT_EQ(decode_text_line(line, &event, &id, &payload), decode_line_kind::bad)
          << static_cast<int>(static_cast<uint8_t>(bad)) << " at " << at;
    }
  }
}

// What a reader hands over, as text: one line per item, damage or other frame.
struct recorder {
  std::string log;
  decode_sink sink{[this](const decode_item &item, size_t where) {
                     log += item.event ? 'E' : 'L';
                     log += std::to_string(item.id) + "@" + std::to_string(where) + ":" +
                            std::string(item.payload.begin(), item.payload.end()) + "\n";
                   },
                   [this](decode_damage d, size_t where) {
                     log += std::string(decode_damage_name(d)) + "@" + std::to_string(where) + "\n";
                   },
                   [this](uint8_t cmd) { log += "other " + std::to_string(cmd) + "\n"; }};
};

// The reader's account of `bytes` fed in the pieces that `cuts` (ascending
// offsets) make.
template <typename Reader>
std::string read_in_pieces(const Bytes &bytes, const std::vector<size_t> &cuts) {
  recorder r;
  Reader reader(r.sink);
  size_t from = 0;
  for (size_t cut : cuts) {
    reader.feed(std::span(bytes).subspan(from, cut - from));
    from = cut;
  }
  reader.feed(std::span(bytes).subspan(from));
  reader.finish();
  return r.log;
}

template <typename Reader>
void expect_any_split_reads_alike(const Bytes &bytes, const char *form) {
  const std::string whole = read_in_pieces<Reader>(bytes, {});
  for (size_t cut = 0; cut <= bytes.size(); ++cut) {
    ASSERT_EQ(read_in_pieces<Reader>(bytes, {cut}), whole) << form << " cut at " << cut;
  }
  std::vector<size_t> every_byte(bytes.size());
  for (size_t i = 0; i < bytes.size(); ++i) every_byte[i] = i;
  EXPECT_EQ(read_in_pieces<Reader>(bytes, every_byte), whole) << form << " byte by byte";
  std::mt19937 rng(14);
  for (int round = 0; round < 200; ++round) {
    std::vector<size_t> cuts;
    for (size_t at = 0; (at += rng() % 23) < bytes.size();) cuts.push_back(at);
    ASSERT_EQ(read_in_pieces<Reader>(bytes, cuts), whole) << form << " round " << round;
  }
}

TEST(DecodeReaders, AnySplitOfTheInputReadsAlike) {
  // Escapes right before and after frame ends, a damaged and a foreign frame.
  Bytes hdlc_capture = {0x7E};
  for (const Bytes &f :
       {hdlc(log_packet(0xB193, {0x7E, 0x01, 0x7D})),
        hdlc(event_report({event(631, {0x7D, 0x7E}, true)}), true), hdlc({0x4B, 0x7D}),
        hdlc(log_packet(0xB0C2, {0x03, 0x7D, 0x5E})), Bytes{0x10, 0x7D, 0x7E}, Bytes{0x60, 0x7D}}) {
    hdlc_capture.insert(hdlc_capture.end(), f.begin(), f.end());
  }
  // Lines of the usual shape and every way of leaving it: long and lone
  // digits, blanks, tabs, CR, empty payloads.
  Bytes long_payload(35);
  std::iota(long_payload.begin(), long_payload.end(), 0);
  const std::string long_hex = hex_text(long_payload.data(), long_payload.size());
  const std::string long_bytes(long_payload.begin(), long_payload.end());
  const std::string text = "B193 0a0b\n\n# note\r\nE631 0107\nzz 00\nB193 " + long_hex +
                           "\nB193 0a0\nB193 0a0b \nB193\t0c\ne12 0d\r\nB193  0e\nB193 \nB193 0G\n"
                           "B0C2 03";
  const Bytes text_capture(text.begin(), text.end());

  EXPECT_EQ(read_in_pieces<decode_hdlc_reader>(hdlc_capture, {}),
            "L45459@1:~\x01}\nbad CRC@2\nother 75\nL45250@4:\x03}^\nbad escape@5\n"
            "truncated frame@6\n");
  EXPECT_EQ(read_in_pieces<decode_text_reader>(text_capture, {}),
            "L45459@1:\x0a\x0b\nE631@4:\x01\x07\nbad line@5\nL45459@6:" + long_bytes +
                "\nbad line@7\nL45459@8:\x0a\x0b\nL45459@9:\x0c\nE12@10:\x0d\nL45459@11:\x0e\n"
                "L45459@12:\nbad line@13\nL45250@14:\x03\n");
  expect_any_split_reads_alike<decode_hdlc_reader>(hdlc_capture, "hdlc");
  expect_any_split_reads_alike<decode_text_reader>(text_capture, "text");
}

TEST(DecodeReaders, OverLongFrameOrLineIsSkipped) {
  // The longest log packet still decodes; one byte more is no diag packet.
  const Bytes longest = log_packet(0xB0C2, Bytes(0xFFFF - 12, 0x33));
  Bytes too_long = longest;
  too_long.push_back(0x33);
  Bytes capture = hdlc(longest);
  for (const Bytes &f : {hdlc(too_long), Bytes(3 * decode_max_frame, 0x44), Bytes{0x7E},
                         hdlc(log_packet(0xB0C2, {0x05})), Bytes(decode_max_frame + 1, 0x44)}) {
    capture.insert(capture.end(), f.begin(), f.end());
  }
  std::vector<size_t> blocks;
  for (size_t at = 65536; at < capture.size(); at += 65536) blocks.push_back(at);
  const std::string hdlc_log = read_in_pieces<decode_hdlc_reader>(capture, blocks);
  EXPECT_EQ(hdlc_log.substr(0, 8), "L45250@1");
  EXPECT_EQ(hdlc_log.substr(hdlc_log.find('\n')),
            "\nover-long frame@2\nover-long frame@3\nL45250@4:\x05\nover-long frame@5\n");

  std::string text = "B0C2 " + std::string(2 * decode_max_packet, '3') + "\n";
  text +=
      std::string(decode_max_line + 1, ' ') + "\nB0C2 05\n" + std::string(decode_max_line + 1, '0');
  const Bytes text_bytes(text.begin(), text.end());
  for (const auto &cuts : {std::vector<size_t>{}, blocks}) {
    const std::string text_log = read_in_pieces<decode_text_reader>(text_bytes, cuts);
    EXPECT_EQ(text_log.substr(0, 8), "L45250@1");
    EXPECT_EQ(text_log.substr(text_log.find('\n')),
              "\nover-long line@2\nL45250@3:\x05\nover-long line@4\n");
  }
}

TEST(RpkDecode, StdinAndCapturesLargerThanABlock) {
  // Frames of an odd size, so block ends fall everywhere inside them.
  const Bytes frame =
      hdlc(event_report({event(631, {0x01, 0x07}, true), event(3215, {0x05}, true)}));
  const std::string one_path = write_temp(frame);
  Bytes big;
  const int copies = 10000;
  for (int i = 0; i < copies; ++i) big.insert(big.end(), frame.begin(), frame.end());
  ASSERT_GT(big.size(), 2u * 65536);
  const std::string big_path = write_temp(big);

  int status = -1;
  const std::string one = run_decode({one_path}, &status);
  const std::string packets = one.substr(0, one.find("== rpk-decode"));
  std::string expected;
  for (int i = 0; i < copies; ++i) expected += packets;
  expected += "== rpk-decode: " + std::to_string(2 * copies) + " packets\n";

  for (const bool on_stdin : {false, true}) {
    const std::string out =
        on_stdin ? run_decode_stdin(big_path, {"-"}, &status) : run_decode({big_path}, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(out.substr(0, out.find('\n', expected.size() - 1) + 1), expected) << on_stdin;
  }
  const std::string json = run_decode_stdin(one_path, {"--json", "-"}, &status);
  EXPECT_NE(json.find("\"source\": \"-:frame 1\"}\n"), std::string::npos);
  unlink(one_path.c_str());
  unlink(big_path.c_str());
}

TEST(RpkDecode, JsonEscapesTheSourceName) {
  const Bytes frame = hdlc(event_report({event(631, {0x01, 0x07}, true)}));
  struct {
    std::string name;  // appended to a temporary directory
    std::string escaped;
  } const cases[] = {
      {"plain-name.qmdl", "plain-name.qmdl"},
      {"q\"uote\\back", "q\\\"uote\\\\back"},
      {"ctl\x01\x1f\x7f-and-a-longer-tail", "ctl\\u0001\\u001f\\u007f-and-a-longer-tail"},
      {"\xc3\xa9t\xc3\xa9-8-bytes\"", "\\u00c3\\u00a9t\\u00c3\\u00a9-8-bytes\\\""},
  };
  char dir[] = "/tmp/rpk-decode-names-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  for (const auto &c : cases) {
    const std::string path = std::string(dir) + "/" + c.name;
    FILE *f = fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr) << c.escaped;
    fwrite(frame.data(), 1, frame.size(), f);
    fclose(f);
    int status = -1;
    const std::string out = run_decode({"--json", path}, &status);
    EXPECT_NE(out.find("\"source\": \"" + std::string(dir) + "/" + c.escaped + ":frame 1\"}\n"),
              std::string::npos)
        << out;
    unlink(path.c_str());
  }
  rmdir(dir);
}

// The --json objects rpk-decode printed before its engine output was captured
// in memory: each packet dispatched with the engine printing to stdout, the
// text cut into lines and escaped byte by byte.
std::string json_reference(const std::string &path) {
  std::ifstream in(path);
  std::string out;
  std::string line;
  size_t line_no = 0;
  std::vector<uint8_t> payload;
  while (std::getline(in, line)) {
    ++line_no;
    bool event = false;
    uint16_t id = 0;
    if (decode_text_line(line, &event, &id, &payload) != decode_line_kind::item) continue;
    std::vector<uint8_t> area(std::max<size_t>(MODEM_STATS_READABLE_LEN, payload.size()), 0);
    std::copy(payload.begin(), payload.end(), area.begin());
    const uint64_t refused = not_support_num;
    const uint64_t failed = modem_stats_failures();
    uint32_t stat_id = 0;
    modem_stats_single *record = nullptr;
    const std::string printed = capture_stdout([&] {
      if (event) {
        modem_stats_diag_process_event_rec(id, area.data(), &stat_id, &record);
      } else {
        modem_stats_diag_process_log_rec(id, area.data(), &stat_id, &record);
      }
    });
    auto quoted = [](const std::string &s) {
      std::string q = "\"";
      for (unsigned char c : s) {
        char esc[8];
        snprintf(esc, sizeof esc,
                 c == '"' || c == '\\'   ? "\\%c"
                 : c < 0x20 || c >= 0x7F ? "\\u%04x"
                                         : "%c",
                 c);
        q += esc;
      }
      return q + "\"";
    };
    std::string lines;
    for (size_t at = 0; at < printed.size();) {
      const size_t nl = std::min(printed.find('\n', at), printed.size());
      lines += (lines.empty() ? "" : ", ") + quoted(printed.substr(at, nl - at));
      at = nl + 1;
    }
    char code[8];
    snprintf(code, sizeof code, event ? "E%u" : "%04X", static_cast<unsigned>(id));
    // Appended, not chained with +: GCC 12 at -O3 misreads the chain as overlapping.
    std::string rec = record == nullptr ? "null" : "\"";
    if (record != nullptr) rec.append(hex_text(record->data, record->data_len)).append("\"");
    const char *status = record != nullptr                  ? "decoded"
                         : not_support_num != refused       ? "refused"
                         : modem_stats_failures() != failed ? "invalid"
                                                            : "no_record";
    out += json(code, lines, record != nullptr ? std::to_string(record->stat_id) : "null", rec,
                status, path + ":" + std::to_string(line_no));
    modem_stats_free_single(record);
  }
  return out;
}

TEST(RpkDecode, JsonOnRealPacketsMatchesTheConsoleEngine) {
  int files = 0;
  for (const char *name : {"mobileinsight-core.txt", "scat-tests.txt"}) {
    const std::string path = std::string(RPK_REALDATA_DIR) + "/" + name;
    if (access(path.c_str(), R_OK) != 0) continue;
    ++files;
    reset_engine();
    const std::string expected = json_reference(path);
    int status = -1;
    const std::string out = run_decode({"--json", path}, &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(out == expected)
        << name << ": output differs from the reference at byte "
        << std::mismatch(out.begin(), out.end(), expected.begin(), expected.end()).first -
               out.begin();
  }
  if (files == 0) GTEST_SKIP() << "no real packets at " << RPK_REALDATA_DIR;
}

}  // namespace
