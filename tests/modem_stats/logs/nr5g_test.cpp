// The NR5G log parsers on packets of the right code but the wrong shape: every
// accepted version under hostile fillings must end in one summary or refusal,
// stay inside the 2000-byte area (the payload is a heap block of exactly that
// size, so the sanitizer build catches any read past it) and never write it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "modem_stats/modem_stats_dispatch.h"
#include "support/capture_stdout.h"

namespace {

struct nr_code {
  uint16_t code;
  std::vector<uint32_t> versions;  // every version the parser accepts
  std::vector<uint32_t> stat_ids;  // the record types it may make
};

const std::vector<nr_code> &nr_codes() {
  static const std::vector<nr_code> codes = {
      {0xB823, {0x4, 0x30000, 0x30002, 0x30003}, {130}},
      {0xB825, {0x8, 0xA, 0x20000, 0x30003, 0x30004, 0x30006}, {97}},
      {0xB872, {0x4, 0x30008}, {115}},
      {0xB884, {0x30005}, {90}},
      {0xB885, {0x20005, 0x30009}, {85}},
      {0xB887, {0x5, 0x30003}, {87}},
      {0xB888, {0x20002, 0x30000, 0x30001}, {88}},
      {0xB88A, {0x20003, 0x20006, 0x20007, 0x20009, 0x30000, 0x30005}, {86}},
      {0xB8A7, {0x20001, 0x30005}, {89}},
      {0xB8C9, {0x20000, 0x30001}, {94}},
      {0xB8D2, {0x20000}, {99}},
      {0xB8D8, {0x30002}, {137}},
      {0xB8DD, {0x7}, {112}},
      {0xB975, {0x20001}, {91}},
      {0xB97F, {0x20007}, {139, 140}},
      {0xB981, {0x20000}, {145}},
      {0xB98F, {0x20002}, {113}},
  };
  return codes;
}

struct outcome {
  std::string text;  // after the dispatcher line
  uint32_t stat_id;
  int32_t data_len;  // 0 without a record
  bool payload_intact;
};

outcome run(uint16_t code, const std::vector<uint8_t> &bytes) {
  auto area = std::make_unique<uint8_t[]>(MODEM_STATS_READABLE_LEN);
  std::copy(bytes.begin(), bytes.end(), area.get());
  uint32_t stat_id = 0;
  modem_stats_single *record = nullptr;
  std::string out = capture_stdout(
      [&] { modem_stats_diag_process_log_rec(code, area.get(), &stat_id, &record); });
  outcome o{out.substr(out.find('\n') + 1), stat_id, record ? record->data_len : 0,
            std::equal(bytes.begin(), bytes.end(), area.get())};
  modem_stats_free_single(record);
  return o;
}

std::vector<uint8_t> filled(uint32_t version, uint8_t fill) {
  std::vector<uint8_t> b(MODEM_STATS_READABLE_LEN, fill);
  for (int i = 0; i < 4; ++i) b[i] = static_cast<uint8_t>(version >> (8 * i));
  return b;
}

bool ends_lines(const std::string &text) { return !text.empty() && text.back() == '\n'; }

TEST(Nr5gLogs, EveryAcceptedVersionSurvivesHostileFillings) {
  std::mt19937 rng(20240611);
  for (const auto &c : nr_codes()) {
    for (uint32_t version : c.versions) {
      std::vector<std::vector<uint8_t>> packets;
      for (uint8_t fill : {0x00, 0xff, 0x55, 0xaa, 0x01}) packets.push_back(filled(version, fill));
      for (int i = 0; i < 40; ++i) {
        auto p = filled(version, 0);
        for (size_t k = 4; k < p.size(); ++k) p[k] = static_cast<uint8_t>(rng());
        packets.push_back(p);
      }
      for (const auto &p : packets) {
        SCOPED_TRACE(testing::Message() << std::hex << "code 0x" << c.code << " version 0x"
                                        << version << " byte 4 0x" << int{p[4]});
        const outcome o = run(c.code, p);
        EXPECT_EQ(o.text.find("VERSION_NOT_SUPPORT"), std::string::npos) << o.text;
        EXPECT_TRUE(ends_lines(o.text)) << o.text;
        EXPECT_TRUE(o.payload_intact);
        if (o.data_len == 0) {
          EXPECT_EQ(o.stat_id, MODEM_STATS_NO_RECORD);
          EXPECT_NE(o.text.find("DATA_IS_NOT_VALID"), std::string::npos) << o.text;
        } else {
          EXPECT_NE(std::find(c.stat_ids.begin(), c.stat_ids.end(), o.stat_id), c.stat_ids.end());
          EXPECT_GT(o.data_len, 0);
          EXPECT_LE(o.data_len, MODEM_STATS_PK_MAX);
        }
      }
    }
  }
}

}  // namespace
