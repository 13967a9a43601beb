#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "modem_stats/modem_stats_cursor.h"
#include "support/capture_stdout.h"

namespace {

// A fresh packet of id 0xB14E over a zeroed readable area.
struct Packet {
  std::vector<uint8_t> area = std::vector<uint8_t>(MODEM_STATS_READABLE_LEN, 0);
  Packet() { modem_stats_cursor_reset(0xB14E, area.data()); }
};

struct Cursor {
  int cnt, left, byte_base, bit_pos;
  bool operator==(const Cursor &) const = default;
};
Cursor cursor() { return {g_pK_DATA_CNT, g_pk_data_left, g_unpk_byte_base, g_unpk_bit_pos}; }

TEST(ModemStatsCursor, ByteReadsCheckInOrderAndMove) {
  struct Case {
    const char *what;
    bool null_ptr;
    int left, cnt, n;
    std::string out;  // empty: the read succeeds
    Cursor after;
  };
  // clang-format off
  const Case cases[] = {
      {"plain u16", false, 2000, 0, 2, "", {2, 1998, 0, 0}},
      {"last 8 bytes", false, 8, 1992, 8, "", {2000, 0, 0, 0}},
      {"null payload", true, 2000, 0, 1,
       "MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: version, id(0xb14e)\n", {0, 2000, 0, 0}},
      {"nothing left", false, 0, 0, 1,
       "g_pk_data_left(0) is not enough for version, id(0xb14e)\n", {0, 0, 0, 0}},
      {"left checked before count", false, 3, -1, 4,
       "g_pk_data_left(3) is not enough for version, id(0xb14e)\n", {-1, 3, 0, 0}},
      // The negative-count message prints what is left, not the count.
      {"negative count", false, 2000, -2, 1,
       "g_pK_DATA_CNT(2000) is can not < 0 for version, id(0xb14e)\n", {-2, 2000, 0, 0}},
  };
  // clang-format on
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    Packet p;
    p.area[1992] = 0x5A;
    if (c.null_ptr) g_pk_data_ptr = nullptr;
    g_pk_data_left = c.left;
    g_pK_DATA_CNT = c.cnt;
    uint64_t v = 0;
    bool ok = false;
    EXPECT_EQ(capture_stdout([&] { ok = modem_stats_unpk_u("version", c.n, &v); }), c.out);
    EXPECT_EQ(ok, c.out.empty());
    EXPECT_EQ(cursor(), c.after);
    if (c.cnt == 1992) {
      EXPECT_EQ(v, 0x5Au);
    }
  }
}

// The golden packets pin the refusal line from a zero count; here the count
// goes on across packets, and an accepted version leaves it alone.
TEST(ModemStatsCursor, VersionGateCountsAcrossPackets) {
  const uint32_t accepted[] = {163};
  const uint64_t before = not_support_num;
  for (uint64_t k = 1; k <= 2; ++k) {
    Packet p;
    EXPECT_TRUE(modem_stats_version_gate(163, accepted, "x"));
    EXPECT_EQ(capture_stdout([&] { EXPECT_FALSE(modem_stats_version_gate(9, accepted, "x")); }),
              "VERSION_NOT_SUPPORT, version(9), not_support_num(" + std::to_string(before + k) +
                  "), name(x), id(0xb14e)\n");
  }
}

TEST(ModemStatsCursor, BitFieldsFromTheBase) {
  struct Case {
    const char *what;
    int base_bytes;                              // read before the base moves past them
    std::vector<std::pair<int, uint8_t>> bytes;  // payload byte, value
    modem_stats_field field;
    int extra;
    int64_t value;
    std::string out;  // empty: the read succeeds
    Cursor after;
  };
  // clang-format off
  const Case cases[] = {
      // The worked example: rank 2 bits at 28, CQI 4 bits at 39 after the version byte.
      {"rank", 1, {{4, 0x30}}, {"rank_idx", 28, 2}, 0, 3, "", {11, 1989, 1, 8}},
      {"cqi across bytes", 1, {{5, 0x80}, {6, 0x07}}, {"wideband_cqi_cw0", 39, 4}, 0, 15, "", {12, 1988, 1, 8}},
      {"record index", 1, {{11, 0xAB}}, {"x", 16, 8}, 64, 0xAB, "", {18, 1982, 1, 8}},
      {"signed", 1, {{2, 0x0E}}, {"tx", 9, 3, true}, 0, -1, "", {9, 1991, 1, 8}},
      {"full word", 0, {{0, 0xFF}, {7, 0x80}}, {"w", 0, 64, true}, 0, INT64_MIN + 0xFF, "", {8, 1992, 0, 0}},
      {"word at 1992", 0, {{1992, 0x5A}}, {"end", 15936, 8}, 0, 0x5A, "", {2000, 0, 0, 0}},
      {"57 bits at shift 7", 0, {}, {"wide", 7, 57}, 0, 0, "", {8, 1992, 0, 0}},
      // The word is always 8 bytes: a field in the last 7 bytes fails.
      {"word at 1993", 0, {}, {"end", 15944, 8}, 0, 0,
       "g_pk_data_left(7) is not enough for end_tmp, id(0xb14e)\n", {1993, 7, 0, 0}},
      {"past the area", 0, {}, {"end", 16000, 1}, 0, 0,
       "UNPK_SET_POS, pos(2000) should be[0, 2000), id(0xb14e)\n", {0, 2000, 0, 0}},
      {"before the base", 1, {}, {"back", -9, 1}, 0, 0,
       "UNPK_SET_POS, pos(-1) should be[0, 2000), id(0xb14e)\n", {0, 1999, 1, 8}},
      {"58 bits at shift 7", 0, {}, {"wide", 7, 58}, 0, 0,
       "UNPK_MID, high(65) should be in [1, 64] for wide, id(0xb14e)\n", {8, 1992, 0, 0}},
      {"negative shift", 0, {}, {"neg", -1, 4}, 0, 0,
       "UNPK_MID, low(0) should be in [1, 64] for neg, id(0xb14e)\n", {8, 1992, 0, 0}},
  };
  // clang-format on
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    Packet p;
    for (const auto &[at, v] : c.bytes) p.area[at] = v;
    modem_stats_skip(c.base_bytes);
    modem_stats_base_with_bit();
    int64_t v = 0;
    bool ok = false;
    EXPECT_EQ(capture_stdout([&] { ok = modem_stats_unpk_bits(c.field, c.extra, &v); }), c.out);
    EXPECT_EQ(ok, c.out.empty());
    if (ok) {
      EXPECT_EQ(v, c.value);
    }
    EXPECT_EQ(cursor(), c.after);
  }
}

TEST(ModemStatsCursor, MovedBaseNeverReadsPastTheArea) {
  // The position check counts from the base, so a word can reach past byte
  // 2000; what lies there reads as zero.
  std::vector<uint8_t> area(MODEM_STATS_READABLE_LEN + 64, 0xFF);
  std::fill(area.begin(), area.begin() + MODEM_STATS_READABLE_LEN, 0);
  area[MODEM_STATS_READABLE_LEN - 1] = 0x11;
  modem_stats_cursor_reset(0xB064, area.data());
  ASSERT_TRUE(modem_stats_base_to_bit(8 * 1000));
  int64_t v = 0;
  ASSERT_TRUE(modem_stats_unpk_bits({"far", 8 * 999, 64}, 0, &v));
  EXPECT_EQ(v, 0x11);
  EXPECT_EQ(capture_stdout([] { EXPECT_FALSE(modem_stats_base_to_bit(-8)); }),
            "BASE_WITH_BIT, bit(-8) should >= 0, id(0xb064)\n");
}

TEST(ModemStatsCursor, PackingChecksOnlyTheStart) {
  const struct {
    int at, width;
    std::string out;  // empty: written
  } cases[] = {
      {0, 4, ""},
      {699, 4, ""},  // runs past 700; the record maker refuses the length
      {700, 1, "Cur(700) reached max(700), for rsrp, id(0xb14e)\n"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.at);
    Packet p;
    modem_stats_pk_begin();
    g_pK_DATA_CNT = c.at;
    EXPECT_EQ(capture_stdout([&] { modem_stats_pk("rsrp", 0xA1B2C3D4, c.width); }), c.out);
    EXPECT_EQ(g_pK_DATA_CNT, c.out.empty() ? c.at + c.width : c.at);
    EXPECT_EQ(p.area, std::vector<uint8_t>(MODEM_STATS_READABLE_LEN, 0)) << "payload written";
  }
  Packet p;
  g_pk_data_ptr = nullptr;
  EXPECT_EQ(capture_stdout([] { EXPECT_FALSE(modem_stats_pk("pci", 1, 2)); }),
            "MODEM_STATS_DATA_PK, g_pk_data_ptr is NULL, name: pci, id(0xb14e)\n");
}

// What a record holds is pinned by the golden packets; here its length bounds.
TEST(ModemStatsCursor, RecordLengthIsBounded) {
  for (int32_t len : {0, -1, 701, 1, 700}) {
    SCOPED_TRACE(len);
    modem_stats_single *rec = nullptr;
    const bool ok = len >= 1 && len <= 700;
    const std::string out =
        capture_stdout([&] { EXPECT_EQ(modem_stats_new_single_ex(7, len, &rec), ok); });
    EXPECT_EQ(out, ok ? "" : "data_len(" + std::to_string(len) + ") should be in (0, 700]");
    EXPECT_EQ(rec != nullptr && rec->data_len == len, ok);
    modem_stats_free_single(rec);
  }
}

TEST(TesseraLogBuf, KeepsAtMost101Characters) {
  char buf[TESSERA_LOG_BUF_SIZE] = {};
  const std::string long_text(150, 'x');
  EXPECT_EQ(tessera_log_buf(buf, "%s", long_text.c_str()), 150);
  EXPECT_EQ(std::string(buf), std::string(101, 'x'));
  EXPECT_EQ(buf[101], '\0');
  EXPECT_EQ(tessera_log_buf(buf, "version = %d", 163), 13);
  EXPECT_STREQ(buf, "version = 163");
}

}  // namespace
