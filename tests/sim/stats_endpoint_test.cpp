// The simulated modem's statistics endpoint through the host libmodemapi:
// live records stay in a live modem's ranges and move; pinned records and the
// stats faults answer as told, for as long as told.
#include <modem_api.h>

#include <bit>
#include <cstring>

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
  constexpr Range kSnr{-20, 30};
  // RSRP, RSRQ, RSSI and SNR of each of an LTE record's four chains.
  constexpr Range kLte[] = {{-140, -44}, {-20, -3}, {-120, -25}, kSnr};
  for (unsigned sub = 0; sub < 2; ++sub) {
    modem_api_stats_result r;
    for (unsigned id : {82u, 103u, 104u, 105u, 106u, 107u, 108u}) {
      ASSERT_EQ(query(sub, id, &r), 0);
      ASSERT_EQ(r.id_num, 1u);
      ASSERT_EQ(r.data_len, 75u) << id;
      EXPECT_NE(r.data[9] & 1, 0) << id;  // rx_valid: chain 0 at least
      for (size_t k = 0; k < 16; ++k) {
        const float v = f32_at(r, 11 + 4 * k);
        EXPECT_TRUE(v >= kLte[k % 4].lo && v <= kLte[k % 4].hi)
            << "sub " << sub << " id " << id << " chain " << k / 4 << ": " << v;
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
  EXPECT_EQ(r.data_len, 3u);
  ASSERT_EQ(query(0, 82, &r), 0);
  EXPECT_EQ(r.data_len, 75u) << "the other sub is still live";
  EXPECT_EQ(query(0, 94, &r), 9) << "the error fault matches its record id";
  EXPECT_EQ(query(0, 112, &r), 0);

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
