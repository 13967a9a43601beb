// The simulated modem's statistics endpoint through the host libmodemapi:
// live records stay in a live modem's ranges and move; pinned records and the
// stats faults answer as told, for as long as told.
#include <modem_api.h>

#include <bit>
#include <cstring>
#include <nlohmann/json.hpp>

#include "sim_fixture.h"

namespace rpk_sim_test {
namespace {

class StatsEndpointTest : public SimTest {
 protected:
  void SetUp() override {
    SimTest::SetUp();
    start();
    modem_api_init();
    ASSERT_EQ(modem_api_init_client(0, nullptr, nullptr, &client_), 0);
  }
  void TearDown() override {
    modem_api_release();
    SimTest::TearDown();
  }

  // Asks for one record; the call's result.
  int query(unsigned sub, unsigned id, modem_api_stats_result *r) {
    *r = {};
    const unsigned ids[] = {id};
    return modem_api_get_stats_parameter(client_, sub, 1, 1, ids, r);
  }

  int client_ = -1;
};

float f32_at(const modem_api_stats_result &r, size_t at) {
  return std::bit_cast<float>(get(r.data + at));
}

TEST_F(StatsEndpointTest, LiveRecordsStayInRangeAndMove) {
  struct Range {
    float lo, hi;
  };
  constexpr Range kRsrp{-140, -44}, kRsrq{-20, -3}, kRssi{-120, -25}, kSnr{-20, 30};
  for (unsigned sub = 0; sub < 2; ++sub) {
    modem_api_stats_result r;
    for (unsigned id : {82u, 103u, 104u, 105u, 106u, 107u, 108u}) {
      ASSERT_EQ(query(sub, id, &r), 0);
      ASSERT_EQ(r.id_num, 1u);
      ASSERT_EQ(r.data_len, 75u) << id;
      const unsigned rx_valid = r.data[9] | (r.data[10] << 8);
      EXPECT_NE(rx_valid & 1, 0u) << id;
      for (unsigned chain = 0; chain < 4; ++chain) {
        const size_t at = 11 + 16 * chain;
        const Range ranges[] = {kRsrp, kRsrq, kRssi, kSnr};
        for (size_t k = 0; k < 4; ++k) {
          const float v = f32_at(r, at + 4 * k);
          EXPECT_TRUE(v >= ranges[k].lo && v <= ranges[k].hi)
              << "sub " << sub << " id " << id << " chain " << chain << " field " << k << ": " << v;
        }
      }
    }
    struct Chains {
      unsigned id;
      size_t first, count;
      Range range;
    };
    const Chains chains[] = {
        {94, 4, 4, {-110, -20}},   // NR RSSI
        {112, 4, 4, kSnr},         // NR SNR
        {110, 1, 2, {-106, -25}},  // WCDMA AGC
        {111, 1, 2, {-110, -48}},  // GSM levels
    };
    for (const Chains &c : chains) {
      ASSERT_EQ(query(sub, c.id, &r), 0);
      ASSERT_EQ(r.data_len, c.first + 4 * c.count) << c.id;
      for (size_t k = 0; k < c.count; ++k) {
        const float v = f32_at(r, c.first + 4 * k);
        EXPECT_TRUE(v >= c.range.lo && v <= c.range.hi) << "id " << c.id << ": " << v;
      }
    }
    ASSERT_EQ(query(sub, 113, &r), 0);
    ASSERT_EQ(r.data_len, 16u);
    for (size_t k = 4; k < 16; ++k) EXPECT_LT(r.data[k], k < 12 ? 4 : 2) << k;
  }
  modem_api_stats_result a, b;
  ASSERT_EQ(query(0, 82, &a), 0);
  ASSERT_EQ(query(0, 82, &b), 0);
  EXPECT_NE(memcmp(a.data, b.data, a.data_len), 0) << "a live record moves";
  ASSERT_EQ(query(0, 1234, &a), 0);
  EXPECT_EQ(a.id_num, 0u) << "no such record";
}

TEST_F(StatsEndpointTest, PinnedRecordsAndFaultsLastAsLongAsTold) {
  ASSERT_EQ(sim("stats set 1 82 01 02 03"), 0);
  ASSERT_EQ(sim("fault stats-id 83 --count 1"), 0);
  ASSERT_EQ(sim("fault error 9 --service stats --request-id 94"), 0);
  EXPECT_NE(sim("fault stats-sub 1 --service extend"), 0) << "stats faults are the stats service's";
  EXPECT_NE(sim("stats set 2 82 01"), 0) << "no sub 2";

  modem_api_stats_result r;
  ASSERT_EQ(query(1, 82, &r), 0);
  EXPECT_EQ(r.id, 83u) << "the fault, once";
  ASSERT_EQ(query(1, 82, &r), 0);
  EXPECT_EQ(r.id, 82u);
  EXPECT_EQ(r.data_len, 3u);
  EXPECT_EQ(r.data[2], 3);
  ASSERT_EQ(query(0, 82, &r), 0);
  EXPECT_EQ(r.data_len, 75u) << "the other sub is still live";
  EXPECT_EQ(query(0, 94, &r), 9) << "the error fault matches its record id";
  EXPECT_EQ(query(0, 112, &r), 0);

  std::string out;
  ASSERT_EQ(sim("status", &out), 0);
  const auto stats = nlohmann::json::parse(out)["services"][2];
  EXPECT_EQ(stats["service"], "stats");
  EXPECT_EQ(stats["pinned"].size(), 1u);
  EXPECT_EQ(stats["clients"], 1);

  ASSERT_EQ(sim("reset"), 0);
  ASSERT_EQ(query(1, 82, &r), 0);
  EXPECT_EQ(r.data_len, 75u) << "a reset lets go of pinned records";
  ASSERT_EQ(sim("stats set 1 82 01"), 0);
  ASSERT_EQ(sim("stats clear"), 0);
  ASSERT_EQ(query(1, 82, &r), 0);
  EXPECT_EQ(r.data_len, 75u);
}

}  // namespace
}  // namespace rpk_sim_test
