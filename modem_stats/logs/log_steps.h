// Steps shared by the log-packet parsers, built only from the cursor's calls:
// picking a version's layout, bounding record counts and packing a record from
// a list of fields.
//
// Parsers print their summary line with printf rather than through
// tessera_log_buf: several summaries run past its 101 characters, and a cut
// line would hide the values that matter most (cell counts, MCS, message ids).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "modem_stats/modem_stats_cursor.h"

// Finds the row of `table` whose `version` member equals `version`; when none
// does, the version gate refuses the packet under `name` and null is returned.
template <typename Layout, size_t N>
const Layout *modem_stats_log_layout_for(uint32_t version, const Layout (&table)[N],
                                         const char *name) {
  std::array<uint32_t, N> accepted{};
  for (size_t i = 0; i < N; ++i) accepted[i] = table[i].version;
  if (!modem_stats_version_gate(version, accepted, name)) return nullptr;
  for (const Layout &row : table) {
    if (row.version == version) return &row;
  }
  return nullptr;  // unreachable: the gate accepted one of the rows
}

// Reads the one-byte version at the cursor and gates it against `table`; on
// success moves the bit base past it and returns the version's row.
template <typename Layout, size_t N>
const Layout *modem_stats_log_read_version(const Layout (&table)[N], const char *name,
                                           uint32_t *version) {
  uint64_t v = 0;
  if (!modem_stats_unpk_u("version", 1, &v)) return nullptr;
  *version = static_cast<uint32_t>(v);
  const Layout *row = modem_stats_log_layout_for(*version, table, name);
  if (row != nullptr) modem_stats_base_with_bit();
  return row;
}

// Reads a field that is known to be a small unsigned value into an int.
inline bool modem_stats_log_bits(const modem_stats_field &f, int extra_bits, int *out) {
  int64_t v = 0;
  if (!modem_stats_unpk_bits(f, extra_bits, &v)) return false;
  *out = static_cast<int>(v);
  return true;
}

// True when `count` records of `record_bytes` from byte `first_byte` of the
// payload lie inside the readable area, and there is at least one.
constexpr bool modem_stats_log_records_fit(int first_byte, int64_t count, int record_bytes) {
  return count > 0 && first_byte + count * record_bytes <= MODEM_STATS_READABLE_LEN;
}

// True when the 8-byte word that reading `f` from a base at payload byte
// `base_byte` takes lies inside the readable area.
constexpr bool modem_stats_log_word_fits(int base_byte, const modem_stats_field &f) {
  return base_byte + f.bit / 8 + 8 <= MODEM_STATS_READABLE_LEN;
}

// One field of a record to pack: an integer of `width` bytes or a 32-bit float.
struct modem_stats_pk_item {
  const char *name;
  uint64_t value = 0;
  int width = 0;  // 0: the float `f`
  float f = 0.0f;
};
inline modem_stats_pk_item modem_stats_pk_int(const char *name, uint64_t value, int width) {
  return {name, value, width, 0.0f};
}
inline modem_stats_pk_item modem_stats_pk_float(const char *name, float value) {
  return {name, 0, 0, value};
}

// Packs the items in order into a fresh pack buffer and makes the record.
inline bool modem_stats_log_pack(std::initializer_list<modem_stats_pk_item> items, uint32_t stat_id,
                                 uint32_t *stat_id_out, modem_stats_single **record_out) {
  modem_stats_pk_begin();
  for (const auto &it : items) {
    const bool ok = it.width == 0 ? modem_stats_pk_f32(it.name, it.f)
                                  : modem_stats_pk(it.name, it.value, it.width);
    if (!ok) return false;
  }
  return modem_stats_pk_finish(stat_id, stat_id_out, record_out);
}
