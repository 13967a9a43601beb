// Packets of the right code and an accepted version but arbitrary contents:
// the parser must stay inside the 2000-byte area (the sanitizer build checks
// the reads), end every line it prints, and make either no record or one of
// the code's own kind and size.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "modem_stats/modem_stats_dispatch.h"
#include "support/capture_stdout.h"

namespace {

struct shape {
  uint16_t code;
  std::vector<uint8_t> head;       // leading bytes that get past the version gates
  std::vector<uint32_t> stat_ids;  // record kinds the parser may make
  int min_len, max_len;            // record sizes it may make
};

const shape kShapes[] = {
    {0x1568, {13}, {136}, 3, 3},
    {0x156e, {1}, {116}, 10, 10 + 255},
    {0x1830, {4}, {125}, 11, 11},
    {0x1831, {6}, {126}, 11, 11},
    {0x4179, {8}, {110}, 9, 9},
    {0x5096, {6}, {111}, 9, 9},
    {0xb062, {1, 1, 0, 0, 6, 49}, {132}, 3, 3},
    {0xb064, {1, 1, 0, 0, 8, 1}, {114}, 23, 23},
    {0xb064, {1, 1, 0, 0, 8, 5}, {114}, 23, 23},
    {0xb0c2, {3}, {129}, 22, 22},
    {0xb111, {164}, {96}, 18, 18},
    {0xb14e, {163}, {84}, 4, 4},
    {0xb16d, {49}, {83}, 7, 7},
    {0xb16e, {25}, {98}, 4, 4},
    {0xb16f, {24}, {128}, 4, 4},
    {0xb173, {48}, {93}, 7, 7},
    {0xb193, {1, 1, 0, 0, 25, 36}, {25, 53, 64}, 75, 75},
    {0xb193, {1, 1, 0, 0, 25, 50}, {25, 53, 64}, 75, 75},
};

void expect_sane(const shape &s, const std::vector<uint8_t> &area, const std::string &what) {
  SCOPED_TRACE(what);
  std::vector<uint8_t> copy = area;
  uint32_t stat_id = 0;
  modem_stats_single *record = nullptr;
  const std::string out = capture_stdout(
      [&] { modem_stats_diag_process_log_rec(s.code, copy.data(), &stat_id, &record); });
  EXPECT_TRUE(!out.empty() && out.back() == '\n') << out;
  if (record == nullptr) {
    EXPECT_EQ(stat_id, MODEM_STATS_NO_RECORD);
  } else {
    EXPECT_NE(std::find(s.stat_ids.begin(), s.stat_ids.end(), stat_id), s.stat_ids.end());
    EXPECT_EQ(record->stat_id, stat_id);
    EXPECT_GE(record->data_len, s.min_len);
    EXPECT_LE(record->data_len, s.max_len);
  }
  modem_stats_free_single(record);
}

class WrongShape : public ::testing::TestWithParam<shape> {};

TEST_P(WrongShape, StaysInsideAndMakesOnlyItsOwnRecord) {
  const shape &s = GetParam();
  for (const uint8_t fill : {0x00, 0xff, 0x80, 0x7f}) {
    std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN, fill);
    std::copy(s.head.begin(), s.head.end(), area.begin());
    expect_sane(s, area, "filled with " + std::to_string(fill));
  }
  std::mt19937 rng(s.code);
  for (int i = 0; i < 300; ++i) {
    std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN);
    for (auto &b : area) b = static_cast<uint8_t>(rng());
    std::copy(s.head.begin(), s.head.end(), area.begin());
    expect_sane(s, area, "random #" + std::to_string(i));
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Logs, WrongShape, ::testing::ValuesIn(kShapes),
                         [](const ::testing::TestParamInfo<shape> &info) {
                           char name[24];
                           std::snprintf(name, sizeof name, "code_%04X_%zu", info.param.code,
                                         info.index);
                           return std::string(name);
                         });

}  // namespace
