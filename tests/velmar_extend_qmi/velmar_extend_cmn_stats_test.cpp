#include "velmar_extend_qmi/velmar_extend_cmn_stats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/capture_stdout.h"

namespace {

TEST(ModemStatsDebugInfo, SectionsReadLittleEndianAndReportTheirSize) {
  const struct {
    const char *what;
    int (*unpk)(const uint8_t *);
    int size;
    long fields;
    std::string first_lines;
  } cases[] = {
      {"main", velmar_modem_stats_info_unpk, 25, 4,
       "UNPK[size:1], g_modem_stats_feature_enable_status = 1\n"
       "UNPK[size:8], g_pk_version_not_support_num = 18446744073709551362\n"},
      {"diag", velmar_modem_stats_diag_info_unpk, 43, 11,
       "UNPK[size:1], init_state = 1\nUNPK[size:4], listener_event_num = 4294967042\n"},
      {"cm", velmar_modem_stats_cm_info_unpk, 58, 16,
       "UNPK[size:1], init_state = 1\nUNPK[size:1], listener_state = 2\n"},
      {"uim", velmar_modem_stats_uim_info_unpk, 10, 4,
       "UNPK[size:1], init_state = 1\nUNPK[size:1], listener_state = 2\n"},
  };
  // 01 02 ff ff ...: a wide second field keeps its high bytes.
  std::vector<uint8_t> body(64, 0xFF);
  body[0] = 0x01;
  body[1] = 0x02;
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    int got = -1;
    const std::string out = capture_stdout([&] { got = c.unpk(body.data()); });
    EXPECT_EQ(got, c.size);
    EXPECT_EQ(out.substr(0, c.first_lines.size()), c.first_lines);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), c.fields);
    EXPECT_EQ(capture_stdout([&] { got = c.unpk(nullptr); }), "ptr is null\n");
    EXPECT_EQ(got, 0);
  }
}

TEST(ModemStatsDebugInfo, SupportVerdict) {
  const struct {
    uint8_t enabled;
    uint8_t refused;
    bool ok;
  } cases[] = {{1, 0, true}, {0, 0, false}, {1, 1, false}};
  for (const auto &c : cases) {
    std::vector<uint8_t> rec(26, 0);
    rec[0] = 1;
    rec[1] = c.enabled;
    rec[9] = c.refused;  // high byte of the 8-byte count
    bool ok = !c.ok;
    const std::string out =
        capture_stdout([&] { ok = velmar_modem_stats_support_status_check(rec.data()); });
    EXPECT_EQ(ok, c.ok);
    EXPECT_NE(out.find(c.ok ? "================ SUCCES ===================\n"
                            : "================= FAIL ====================\n"),
              std::string::npos);
  }
}

}  // namespace
