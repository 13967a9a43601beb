// rpk-decode on inputs the test builds itself: an HDLC capture with sound,
// damaged and foreign frames, and the text form.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "modem_stats/decode/decode_run.h"
#include "modem_stats/decode/decode_stream.h"
#include "modem_stats/modem_stats_events.h"
#include "support/capture_stdout.h"

namespace {

using Bytes = std::vector<uint8_t>;

// CRC-16/X.25 bit by bit, apart from the tool's table.
uint16_t crc_x25(const Bytes &b) {
  uint16_t crc = 0xFFFF;
  for (uint8_t byte : b) {
    crc ^= byte;
    for (int i = 0; i < 8; ++i) crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1;
  }
  return crc ^ 0xFFFF;
}

Bytes hdlc(Bytes packet, bool break_crc = false) {
  const uint16_t crc = crc_x25(packet) ^ (break_crc ? 1 : 0);
  packet.push_back(crc & 0xFF);
  packet.push_back(crc >> 8);
  Bytes framed;
  for (uint8_t b : packet) {
    if (b == 0x7E || b == 0x7D) {
      framed.push_back(0x7D);
      framed.push_back(b ^ 0x20);
    } else {
      framed.push_back(b);
    }
  }
  framed.push_back(0x7E);
  return framed;
}

// Sized up front and filled in place: GCC 12 at -O3 mistakes an insert after
// an initializer-list construction for an out-of-bounds copy.
Bytes log_packet(uint16_t code, const Bytes &payload) {
  const auto item_len = static_cast<uint16_t>(12 + payload.size());
  Bytes p(4 + item_len, 0x11);  // 0x11: the timestamp's filler
  const uint8_t header[] = {0x10,
                            0x00,
                            static_cast<uint8_t>(item_len),
                            static_cast<uint8_t>(item_len >> 8),
                            static_cast<uint8_t>(item_len),
                            static_cast<uint8_t>(item_len >> 8),
                            static_cast<uint8_t>(code),
                            static_cast<uint8_t>(code >> 8)};
  std::copy(std::begin(header), std::end(header), p.begin());
  std::copy(payload.begin(), payload.end(), p.end() - static_cast<std::ptrdiff_t>(payload.size()));
  return p;
}

// One event: id word (length code in bits 13-14, short timestamp in bit 15),
// timestamp, payload (length-prefixed for code 3).
Bytes event(uint16_t id, const Bytes &payload, bool short_stamp) {
  const unsigned code = payload.size() <= 2 ? payload.size() : 3;
  const auto word = static_cast<uint16_t>(id | code << 13 | (short_stamp ? 0x8000 : 0));
  Bytes e;
  e.reserve(2 + 8 + 1 + payload.size());
  e.push_back(static_cast<uint8_t>(word));
  e.push_back(static_cast<uint8_t>(word >> 8));
  e.insert(e.end(), short_stamp ? 2 : 8, 0x22);
  if (code == 3) e.push_back(static_cast<uint8_t>(payload.size()));
  e.insert(e.end(), payload.begin(), payload.end());
  return e;
}

Bytes event_report(const std::vector<Bytes> &events) {
  Bytes body;
  for (const auto &e : events) body.insert(body.end(), e.begin(), e.end());
  // Sized up front: GCC 12 misreads an insert behind a braced list as overflow.
  Bytes p(3 + body.size());
  p[0] = 0x60;
  p[1] = static_cast<uint8_t>(body.size());
  p[2] = static_cast<uint8_t>(body.size() >> 8);
  std::copy(body.begin(), body.end(), p.begin() + 3);
  return p;
}

std::string write_temp(const Bytes &bytes) {
  char path[] = "/tmp/rpk-decode-test-XXXXXX";
  const int fd = mkstemp(path);
  EXPECT_GE(fd, 0);
  EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  close(fd);
  return path;
}

std::string run_decode(std::vector<std::string> args, int *status) {
  args.insert(args.begin(), "rpk-decode");
  std::vector<char *> argv;
  for (auto &a : args) argv.push_back(a.data());
  modem_stats_reset_1606_diag_event_lte_rrc_state();
  return capture_stdout(
      [&] { *status = rpk_decode_main(static_cast<int>(argv.size()), argv.data()); });
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

}  // namespace
