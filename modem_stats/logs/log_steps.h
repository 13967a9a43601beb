// Steps shared by the log-packet parsers, built only from the cursor's calls:
// picking a version's layout, bounding record counts and packing a record from
// a list of fields (the event parsers pack theirs the same way).
//
// Parsers print their summary line with modem_stats_printf rather than through
// tessera_log_buf: several summaries run past its 101 characters, and a cut
// line would hide the values that matter most (cell counts, MCS, message ids).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "modem_stats/modem_stats_cursor.h"

// Reads the version of `bytes` bytes at the cursor and gates it against
// `accepted` under `name`; on success moves the bit base past it.
inline bool modem_stats_log_open(std::span<const uint32_t> accepted, const char *name,
                                 uint32_t *version, int bytes = 1) {
  uint64_t v = 0;
  if (!modem_stats_unpk_u("version", bytes, &v)) return false;
  *version = static_cast<uint32_t>(v);
  if (!modem_stats_version_gate(*version, accepted, name)) return false;
  modem_stats_base_with_bit();
  return true;
}

// The `version` members of a layout table, in its order.
template <typename Layout, size_t N>
constexpr std::array<uint32_t, N> modem_stats_log_versions(const Layout (&table)[N]) {
  std::array<uint32_t, N> versions{};
  for (size_t i = 0; i < N; ++i) versions[i] = table[i].version;
  return versions;
}

// The row of `table` for a version its gate accepted.
template <typename Layout, size_t N>
const Layout *modem_stats_log_row(uint32_t version, const Layout (&table)[N]) {
  for (const Layout &row : table) {
    if (row.version == version) return &row;
  }
  return nullptr;  // unreachable: the gate accepted one of the rows
}

// Finds the row of `table` whose `version` member equals `version`; when none
// does, the version gate refuses the packet under `name` and null is returned.
template <typename Layout, size_t N>
const Layout *modem_stats_log_layout_for(uint32_t version, const Layout (&table)[N],
                                         const char *name) {
  if (!modem_stats_version_gate(version, modem_stats_log_versions(table), name)) return nullptr;
  return modem_stats_log_row(version, table);
}

// modem_stats_log_open against the versions of `table`; returns the version's
// row, or null when the read or the gate failed.
template <typename Layout, size_t N>
const Layout *modem_stats_log_read_version(const Layout (&table)[N], const char *name,
                                           uint32_t *version, int bytes = 1) {
  if (!modem_stats_log_open(modem_stats_log_versions(table), name, version, bytes)) return nullptr;
  return modem_stats_log_row(*version, table);
}

// Short names for the layout tables of the parsers whose version is one byte.
namespace modem_stats_log_short {
// The bit, counted from the base after the version, at which payload byte
// `payload_byte` starts.
constexpr int byte_bit(int payload_byte) { return 8 * payload_byte - 8; }
}  // namespace modem_stats_log_short

// Reads a field that is known to be a small unsigned value into an int.
inline bool modem_stats_log_bits(const modem_stats_field &f, int extra_bits, int *out) {
  int64_t v = 0;
  if (!modem_stats_unpk_bits(f, extra_bits, &v)) return false;
  *out = static_cast<int>(v);
  return true;
}

// Reads a sub-packet header whose id must be `id` (else the packet is not
// valid under `name`) and whose version picks the row of `table`. Returns the
// row, or null when a read, the id check or the version gate failed.
template <typename Layout, size_t N>
const Layout *modem_stats_log_sub_packet(const modem_stats_field &id_field, int id,
                                         const modem_stats_field &version_field,
                                         const Layout (&table)[N], const char *name,
                                         int *sub_version) {
  int sub_packet_id = 0;
  if (!modem_stats_log_bits(id_field, 0, &sub_packet_id)) return nullptr;
  if (sub_packet_id != id) {
    modem_stats_not_valid(sub_packet_id, name);
    return nullptr;
  }
  if (!modem_stats_log_bits(version_field, 0, sub_version)) return nullptr;
  return modem_stats_log_layout_for(static_cast<uint32_t>(*sub_version), table, name);
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
