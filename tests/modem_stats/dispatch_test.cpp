#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modem_stats/modem_stats_dispatch.h"
#include "support/capture_stdout.h"

namespace {

// The dispatchers look rows up by binary search; a row out of order is never
// found. (What each row points at is pinned by the golden packets and the event
// cases, which run every row.)
TEST(ModemStatsTables, SortedAndComplete) {
  const auto logs = modem_stats_log_table();
  const auto events = modem_stats_event_table();
  EXPECT_EQ(logs.size(), 33u);
  EXPECT_EQ(events.size(), 16u);
  for (size_t i = 1; i < logs.size(); ++i) EXPECT_LT(logs[i - 1].code, logs[i].code) << i;
  for (size_t i = 1; i < events.size(); ++i) EXPECT_LT(events[i - 1].id, events[i].id) << i;
}

struct DispatchCase {
  const char *what;
  bool event;
  uint16_t id;
  std::string want;
};

TEST(ModemStatsDispatch, LinesAndUnknownIds) {
  const DispatchCase cases[] = {
      {"log between rows", false, 0xB870,
       "modem_stats_diag_process_log_ex: log_id 0xb870, length 108, sub_id = 0\n"},
      {"event not in table", true, 1607,
       "modem_stats_diag_process_event_ex: event_id 1607, length 108, sub_id = 0\n"},
      {"log zero", false, 0,
       "modem_stats_diag_process_log_ex: log_id 0x0, length 108, sub_id = 0\n"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN, 0);
    uint32_t stat_id = 0;
    modem_stats_single sentinel{};
    modem_stats_single *record = &sentinel;  // the dispatcher must clear it
    bool made = true;
    const std::string out = capture_stdout([&] {
      made = c.event ? modem_stats_diag_process_event_rec(c.id, area.data(), &stat_id, &record)
                     : modem_stats_diag_process_log_rec(c.id, area.data(), &stat_id, &record);
    });
    EXPECT_EQ(out, c.want);
    EXPECT_FALSE(made);
    EXPECT_EQ(stat_id, MODEM_STATS_NO_RECORD);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(g_pk_data_id, c.id);
    EXPECT_EQ(g_pk_data_len, MODEM_STATS_READABLE_LEN);
  }
}

TEST(ModemStatsDispatch, NullPayloadNamesThePreviousId) {
  std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN, 0);
  capture_stdout([&] { modem_stats_diag_process_event_ex(3215, area.data()); });
  EXPECT_EQ(capture_stdout([] { modem_stats_diag_process_log_ex(0xB14E, nullptr); }),
            "modem_stats_diag_process_log_ex: log_id 0xb14e, length 108, sub_id = 0\n"
            "MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0xc8f)\n");
  EXPECT_EQ(g_pk_data_id, 3215);
}

}  // namespace
