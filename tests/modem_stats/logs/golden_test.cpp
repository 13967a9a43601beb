// Runs every golden log packet through the log dispatcher: the payload is
// zero-padded into the 2000-byte readable area, and what the parser prints
// after the dispatcher line, the stat_id and the record bytes must match.
//
// not_support_num is set to 0 before each packet, so a packet refused by a
// version gate always prints not_support_num(1).
#include "modem_stats/logs/golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "modem_stats/modem_stats_dispatch.h"
#include "support/capture_stdout.h"

namespace {

std::vector<const modem_stats_golden *> all_goldens() {
  std::vector<const modem_stats_golden *> all;
  for (const auto &g : modem_stats_golden_lte()) all.push_back(&g);
  for (const auto &g : modem_stats_golden_nr()) all.push_back(&g);
  return all;
}

std::vector<uint16_t> golden_codes() {
  std::set<uint16_t> codes;
  for (const auto *g : all_goldens()) codes.insert(g->code);
  return {codes.begin(), codes.end()};
}

std::string hex(const uint8_t *p, size_t n) {
  std::string s;
  char b[4];
  for (size_t i = 0; i < n; ++i) {
    std::snprintf(b, sizeof b, "%02x ", p[i]);
    s += b;
  }
  return s;
}

// Drops the dispatcher's own first line, which every packet prints alike.
std::string after_dispatcher_line(const std::string &out) {
  const std::string head = "modem_stats_diag_process_log_ex:";
  if (out.compare(0, head.size(), head) != 0) return out;
  const size_t nl = out.find('\n');
  return nl == std::string::npos ? std::string() : out.substr(nl + 1);
}

class LogGolden : public ::testing::TestWithParam<uint16_t> {};

TEST_P(LogGolden, EveryVariantOfTheCode) {
  int run = 0;
  for (const auto *g : all_goldens()) {
    if (g->code != GetParam()) continue;
    ++run;
    SCOPED_TRACE(g->what);
    ASSERT_LE(g->payload.size(), static_cast<size_t>(MODEM_STATS_READABLE_LEN));
    std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN, 0);
    std::copy(g->payload.begin(), g->payload.end(), area.begin());
    const std::vector<uint8_t> before = area;

    not_support_num = 0;
    uint32_t stat_id = 0;
    modem_stats_single *record = nullptr;
    const std::string out = capture_stdout(
        [&] { modem_stats_diag_process_log_rec(g->code, area.data(), &stat_id, &record); });

    EXPECT_EQ(after_dispatcher_line(out), g->want);
    EXPECT_EQ(stat_id, g->want_stat_id);
    EXPECT_EQ(area, before) << "the parser wrote into the payload";
    if (g->want_record.empty()) {
      EXPECT_EQ(record, nullptr);
    } else if (record == nullptr) {
      ADD_FAILURE() << "no record made";
    } else {
      EXPECT_EQ(record->stat_id, g->want_stat_id);
      EXPECT_EQ(hex(record->data, static_cast<size_t>(record->data_len)),
                hex(g->want_record.data(), g->want_record.size()));
    }
    modem_stats_free_single(record);
  }
  EXPECT_GT(run, 0);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(LogGolden);
INSTANTIATE_TEST_SUITE_P(Logs, LogGolden, ::testing::ValuesIn(golden_codes()),
                         [](const ::testing::TestParamInfo<uint16_t> &info) {
                           char name[16];
                           std::snprintf(name, sizeof name, "code_%04X", info.param);
                           return std::string(name);
                         });

}  // namespace
