// Event parsers: payload bytes in, exact text, stat_id and record bytes out.
#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "modem_stats/logs/golden_build.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "modem_stats/modem_stats_events.h"
#include "support/capture_stdout.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Result {
  std::string out;  // after the dispatcher line
  uint32_t stat_id;
  Bytes record;
};

Result run_event(uint16_t id, const Bytes &payload) {
  Bytes area(MODEM_STATS_READABLE_LEN, 0);
  std::copy(payload.begin(), payload.end(), area.begin());
  Result r{};
  modem_stats_single *record = nullptr;
  const std::string out = capture_stdout(
      [&] { modem_stats_diag_process_event_rec(id, area.data(), &r.stat_id, &record); });
  r.out = out.substr(out.find('\n') + 1);
  if (record != nullptr) {
    r.record.assign(record->data, record->data + record->data_len);
    EXPECT_EQ(record->stat_id, r.stat_id);
  }
  modem_stats_free_single(record);
  return r;
}

struct Golden {
  uint16_t id;
  const char *what;
  Bytes payload;
  std::string want;
  uint32_t stat_id;
  Bytes record;
};

void expect_goldens(std::span<const Golden> cases) {
  for (const auto &c : cases) {
    SCOPED_TRACE(testing::Message() << c.id << " " << c.what);
    modem_stats_reset_1606_diag_event_lte_rrc_state();
    const Result r = run_event(c.id, c.payload);
    EXPECT_EQ(r.out, c.want);
    EXPECT_EQ(r.stat_id, c.stat_id);
    EXPECT_EQ(r.record, c.record);
  }
}

constexpr const char *kRrcOther =
    "1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, "
    "sub_id 0\n";

std::string rrc_stats_line(int last, int current) {
  return golden_fmt(
      "1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, "
      "rrc_state_last = %d, rrc_state_current = %d, rrc_state_current_in = %d, old "
      "rrc_active_time = 0, old rrc_setup_count = 0\n",
      last, current, current);
}

TEST(ModemStatsEvents, SelfTestPacketUnderEveryId) {
  const Bytes st = golden_selftest_payload();
  // clang-format off
  std::vector<Golden> cases = {
      {629, "", st, "call_id = 9, call_type = 0, srv_type = 4\n", 117, {0x09, 0x00, 0x04}},
      {631, "", st, "num_calls = 9, call_id = 0\n", 118, {0x09, 0x00}},
      {1606, "", st, "sub_id = 0, rrc_state_current_in = 9\n" + rrc_stats_line(0, 9) + kRrcOther, 5, {0x09}},
      {1632, "", st, "lte_emm_timer_expiry, sub_id = 0, timer_id = 9\n", 95, {0x09, 0x04}},
      {1995, "", st, "sub_id = 0, rlf_count_rrc_connected = 9, rlf_count_lte_active = 4, rlf_cause = 0\n",
       131, {0x09, 0x00, 0x04, 0x00, 0x00, 0x00}},
      // freq is the 32-bit value at bytes 1 to 4; cause 9 is no handover.
      {2568, "", st, "cause = 9, freq = 1024, pci = 0\n"
       "DATA_IS_NOT_VALID(9), name(modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn), id(0xa08)\n",
       146, {}},
      {2622, "", st, "version = 0, ant_number = 0, ant_switch_path = 0, sig_path = 0, old_config = 0, new_config = 4\n",
       100, {0, 0, 0, 0, 0, 0, 0, 4}},
      {3184, "", st, "ssb_freq = 262153, pci = 0, bw = 0\n", 92, {0x09, 0, 0x04, 0, 0, 0, 0}},
      {3215, "", st, "nr5g_emm_timer_expiry, sub_id = 0, timer_id = 9\n", 102, {0x09, 0x04}},
      {3243, "", st, "sub_id = 0, scg_failure_cause = 0\n", 138, {0, 0}},
  };
  // clang-format on
  // The six SIP events, 1428 to 1433, differ only in stat_id.
  for (uint16_t id = 1428; id <= 1433; ++id) {
    cases.push_back({id, "", st, "sip_call_id = 262153\n", id - 1428u + 119, {9, 0, 4, 0}});
  }
  ASSERT_EQ(cases.size(), modem_stats_event_table().size());
  expect_goldens(cases);
}

TEST(ModemStatsEvents, FieldsLandWhereTheLayoutPutsThem) {
  Bytes scg(34, 0xAA);  // the cause follows 32 skipped bytes
  scg[32] = 0x34;
  scg[33] = 0x12;
  // clang-format off
  const Golden cases[] = {
      // cause | freq (4) | pci (2)
      {2568, "handover", {0x02, 0x14, 0x05, 0x00, 0x00, 0xF5, 0x01},
       "cause = 2, freq = 1300, pci = 501\nho_time = 0, ho_type = 1, pci = 501\n",
       109, {0, 0, 0, 0, 0, 0, 0, 0, 0x01, 0x14, 0x05, 0x00, 0x00, 0xF5, 0x01}},
      // skip | old | new | skip (2) | ant | switch path (2) | sig path (2)
      {2622, "all fields", {0xEE, 0x01, 0x02, 0xEE, 0xEE, 0x03, 0x02, 0x01, 0x04, 0x03},
       "version = 0, ant_number = 3, ant_switch_path = 258, sig_path = 772, old_config = 1, new_config = 2\n",
       100, {0x00, 0x03, 0x02, 0x01, 0x04, 0x03, 0x01, 0x02}},
      {1995, "three counts", {0x01, 0x00, 0x02, 0x00, 0x03, 0x01},
       "sub_id = 0, rlf_count_rrc_connected = 1, rlf_count_lte_active = 2, rlf_cause = 259\n",
       131, {0x01, 0x00, 0x02, 0x00, 0x03, 0x01}},
      {1433, "all ones", {0xFF, 0xFF, 0xFF, 0xFF}, "sip_call_id = -1\n", 124, {0xFF, 0xFF, 0xFF, 0xFF}},
      {3184, "ssb", {0xC0, 0x27, 0x09, 0x00, 0x2A, 0x00, 0x05}, "ssb_freq = 600000, pci = 42, bw = 5\n",
       92, {0xC0, 0x27, 0x09, 0x00, 0x2A, 0x00, 0x05}},
      {1632, "timer", {0xFF}, "lte_emm_timer_expiry, sub_id = 0, timer_id = 255\n", 95, {0xFF, 0x04}},
      {3243, "scg", scg, "sub_id = 0, scg_failure_cause = 4660\n", 138, {0x34, 0x12}},
  };
  // clang-format on
  expect_goldens(cases);
}

TEST(ModemStatsEvents, ReadFailuresNameTheField) {
  const struct {
    uint16_t id;
    int left;  // readable bytes
    std::string want;
  } cases[] = {
      {629, 0, "g_pk_data_left(0) is not enough for call_id, id(0x275)\n"},
      {1606, 0, "g_pk_data_left(0) is not enough for rrc_state_current, id(0x646)\n"},
      {2568, 3, "g_pk_data_left(2) is not enough for freq, id(0xa08)\n"},
      {2622, 7, "g_pk_data_left(1) is not enough for ant_switch_path, id(0xa3e)\n"},
      {3243, 33, "g_pk_data_left(1) is not enough for scg_failure_cause, id(0xcab)\n"},
      {1995, -1,
       "MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: rlf_count_rrc_connected, id(0x7cb)\n"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.id);
    Bytes area(MODEM_STATS_READABLE_LEN, 0);
    modem_stats_cursor_reset(c.id, c.left < 0 ? nullptr : area.data());
    if (c.left >= 0) g_pk_data_left = c.left;
    const auto table = modem_stats_event_table();
    const auto row =
        std::find_if(table.begin(), table.end(), [&](auto &r) { return r.id == c.id; });
    ASSERT_NE(row, table.end());
    uint32_t stat_id = MODEM_STATS_NO_RECORD;
    modem_stats_single *record = nullptr;
    EXPECT_EQ(capture_stdout([&] { EXPECT_FALSE(row->parse(&stat_id, &record)); }), c.want);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(stat_id, MODEM_STATS_NO_RECORD);
  }
}

TEST(ModemStatsEvents, RrcStateMachine) {
  const std::string head = "1606_diag_event_lte_rrc_state_change, ";
  const Bytes state_record_of_new_connection = {0, 0, 0, 0, 1, 0, 0, 0, 1};
  const struct {
    uint8_t state;
    int last;
    std::string transition;
    uint32_t stat_id;
  } steps[] = {
      {2, 0, head + "New other state and Old other state, do nothing, sub_id 0\n", 5},
      {4, 2, "----" + head + "New Connected and Old other state, rrc_setup_count = 1, sub_id 0\n",
       127},
      {4, 4, head + "New Connected and Old Connected, time not inited, do nothing, sub_id 0\n", 5},
      {7, 4, head + "New Closing and Old Connected, time not inited, do nothing, sub_id 0\n", 5},
      {7, 7, head + "New Closing and Old other state, do nothing, sub_id 0\n", 5},
      {4, 7, "----" + head + "New Connected and Old other state, rrc_setup_count = 1, sub_id 0\n",
       127},
      {1, 4, head + "New other state and Old other state, do nothing, sub_id 0\n", 5},
  };
  modem_stats_reset_1606_diag_event_lte_rrc_state();
  for (const auto &s : steps) {
    SCOPED_TRACE(static_cast<int>(s.state));
    const Result r = run_event(1606, {s.state});
    EXPECT_EQ(r.out, "sub_id = 0, rrc_state_current_in = " + std::to_string(s.state) + "\n" +
                         rrc_stats_line(s.last, s.state) + s.transition);
    EXPECT_EQ(r.stat_id, s.stat_id);
    EXPECT_EQ(r.record, s.stat_id == 127 ? state_record_of_new_connection : Bytes{s.state});
  }
}

}  // namespace
