// Every log code of the dispatch table, run through the log dispatcher:
// - its golden packets (zero-padded into the 2000-byte readable area) print the
//   exact text after the dispatcher line and make the exact record, and the
//   category-7 self-test packet is refused by its version gate;
// - its accepted packet heads, followed by hostile fillings, end every line,
//   never write the payload, and make one of the code's own record kinds and
//   sizes or say why they make none. The payload is a heap block of exactly
//   2000 bytes, so the sanitizer build catches any read past it.
//
// not_support_num is set to 0 before each packet, so a packet refused by a
// version gate always prints not_support_num(1).
#include "modem_stats/logs/golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "modem_stats/logs/golden_build.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "support/capture_stdout.h"

namespace {

struct outcome {
  std::string text;  // after the dispatcher's own first line
  uint32_t stat_id;
  std::optional<std::vector<uint8_t>> record;
  bool payload_intact;
};

outcome run(uint16_t code, const std::vector<uint8_t> &bytes) {
  std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN, 0);
  std::copy(bytes.begin(), bytes.end(), area.begin());
  not_support_num = 0;
  outcome o{};
  modem_stats_single *record = nullptr;
  const std::string out = capture_stdout(
      [&] { modem_stats_diag_process_log_rec(code, area.data(), &o.stat_id, &record); });
  o.text = out.substr(out.find('\n') + 1);
  if (record != nullptr) {
    EXPECT_EQ(record->stat_id, o.stat_id);
    o.record.emplace(record->data, record->data + record->data_len);
  }
  modem_stats_free_single(record);
  o.payload_intact = std::equal(bytes.begin(), bytes.end(), area.begin()) &&
                     std::all_of(area.begin() + static_cast<long>(bytes.size()), area.end(),
                                 [](uint8_t b) { return b == 0; });
  return o;
}

// Records compare as hex text, so a mismatch shows which bytes differ.
std::string hex(const std::vector<uint8_t> &b) {
  std::string s;
  for (uint8_t x : b) s += golden_fmt("%02x ", x);
  return s;
}

std::vector<const modem_stats_golden *> goldens_of(uint16_t code) {
  std::vector<const modem_stats_golden *> found;
  for (auto list : {modem_stats_golden_lte(), modem_stats_golden_nr()}) {
    for (const auto &g : list) {
      if (g.code == code) found.push_back(&g);
    }
  }
  return found;
}

std::vector<uint16_t> log_codes() {
  std::vector<uint16_t> codes;
  for (const auto &r : modem_stats_log_table()) codes.push_back(r.code);
  return codes;
}

const modem_stats_log_row &row_of(uint16_t code) {
  const auto table = modem_stats_log_table();
  return *std::find_if(table.begin(), table.end(),
                       [code](const auto &r) { return r.code == code; });
}

// NR5G packets open with a 32-bit version word, the others with one byte.
bool nr5g(uint16_t code) { return code >= 0xB800; }

class LogCode : public ::testing::TestWithParam<uint16_t> {};

TEST_P(LogCode, GoldenPackets) {
  const uint16_t code = GetParam();
  const auto goldens = goldens_of(code);
  EXPECT_FALSE(goldens.empty()) << "no golden packet";
  for (const auto *g : goldens) {
    SCOPED_TRACE(g->what);
    ASSERT_LE(g->payload.size(), static_cast<size_t>(MODEM_STATS_READABLE_LEN));
    const outcome o = run(code, g->payload);
    EXPECT_EQ(o.text, g->want);
    EXPECT_EQ(o.stat_id, g->want_stat_id);
    EXPECT_TRUE(o.payload_intact) << "the parser wrote into the payload";
    if (g->want_record.empty()) {
      EXPECT_FALSE(o.record.has_value());
    } else {
      EXPECT_EQ(hex(o.record.value_or(std::vector<uint8_t>{})), hex(g->want_record));
    }
  }

  // The self-test packet's first word is 0x00040009: no parser accepts 9 or 0x40009.
  const outcome o = run(code, golden_selftest_payload());
  EXPECT_EQ(o.text, golden_refused(nr5g(code) ? 0x40009 : 9, row_of(code).name, code));
  EXPECT_EQ(o.stat_id, kGoldenNoRecord);
  EXPECT_FALSE(o.record.has_value());
}

// What the goldens of a code tell about the packets it accepts: the heads that
// get past its version gates, the record kinds it makes and their sizes.
struct accepted {
  std::set<std::vector<uint8_t>> heads;
  std::set<uint32_t> stat_ids;
  size_t min_len = SIZE_MAX, max_len = 0;
};

accepted accepted_by(uint16_t code) {
  // Three LTE codes also gate a sub-packet id (P+4) and version (P+5).
  const bool sub_packet = code == 0xB062 || code == 0xB064 || code == 0xB193;
  const size_t head_len = nr5g(code) ? 4 : sub_packet ? 6 : 1;
  accepted a;
  for (const auto *g : goldens_of(code)) {
    if (g->want.find("VERSION_NOT_SUPPORT") != std::string::npos) continue;
    std::vector<uint8_t> head(head_len, 0);
    std::copy_n(g->payload.begin(), std::min(head_len, g->payload.size()), head.begin());
    a.heads.insert(head);
    if (g->want_record.empty()) continue;
    a.stat_ids.insert(g->want_stat_id);
    a.min_len = std::min(a.min_len, g->want_record.size());
    a.max_len = std::max(a.max_len, g->want_record.size());
  }
  return a;
}

TEST_P(LogCode, AcceptedHeadsSurviveHostileFillings) {
  const uint16_t code = GetParam();
  const accepted a = accepted_by(code);
  ASSERT_FALSE(a.heads.empty());
  ASSERT_FALSE(a.stat_ids.empty());
  std::mt19937 rng(code);
  for (const auto &head : a.heads) {
    for (int i = 0; i < 160; ++i) {
      // A few plain fillings first, then random ones.
      static constexpr uint8_t kFills[] = {0x00, 0xff, 0x80, 0x7f, 0x55, 0xaa, 0x01};
      std::vector<uint8_t> p(MODEM_STATS_READABLE_LEN, i < 7 ? kFills[i] : 0);
      if (i >= 7) {
        for (auto &b : p) b = static_cast<uint8_t>(rng());
      }
      std::copy(head.begin(), head.end(), p.begin());
      SCOPED_TRACE(testing::Message() << "head " << hex(head) << "filling #" << i);
      const outcome o = run(code, p);
      EXPECT_EQ(o.text.find("VERSION_NOT_SUPPORT"), std::string::npos) << o.text;
      EXPECT_TRUE(!o.text.empty() && o.text.back() == '\n') << o.text;
      EXPECT_TRUE(o.payload_intact);
      if (o.record) {
        EXPECT_EQ(a.stat_ids.count(o.stat_id), 1u) << o.stat_id;
        EXPECT_GE(o.record->size(), a.min_len);
        EXPECT_LE(o.record->size(), a.max_len);
      } else {
        EXPECT_EQ(o.stat_id, MODEM_STATS_NO_RECORD);
        // It says why: a validity refusal, or a successful RACH's "do nothing".
        EXPECT_TRUE(o.text.find("DATA_IS_NOT_VALID") != std::string::npos ||
                    o.text.find("do nothing") != std::string::npos)
            << o.text;
      }
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Logs, LogCode, ::testing::ValuesIn(log_codes()),
                         [](const ::testing::TestParamInfo<uint16_t> &info) {
                           return golden_fmt("code_%04X", info.param);
                         });

}  // namespace
