// Steps shared by the NR5G log parsers.
//
// Every NR5G packet starts with a 32-bit version word (major << 16 | minor).
// A parser reads it, gates it against its layout table and moves the bit base
// past it; from then on every field is a bit field of the layout row chosen by
// the version. Positions in the tables are written as the payload byte the
// field's little-endian word starts at (P+n, counted from the version word) and
// the bit within that word, so they read like the packet's own drawing.
// Record counts and packing use the steps every log parser shares
// (log_steps.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_cursor.h"

// Bit of the payload the base sits at once the version word is read.
inline constexpr int MODEM_STATS_NR5G_BASE_BIT = 32;

// A field whose word starts at payload byte `byte` (or, inside a record, at byte
// `byte` of the record): `width` bits from bit `bit` of that word. Width 0 marks
// a field the version does not carry; reading it gives the caller's default.
constexpr modem_stats_field modem_stats_nr5g_field(const char *name, int byte, int width,
                                                   bool is_signed = false, int bit = 0,
                                                   bool check_high = false) {
  return {name, 8 * byte + bit - MODEM_STATS_NR5G_BASE_BIT, width, is_signed, check_high};
}

// A field value for a "%d" in a summary line.
constexpr int modem_stats_nr5g_int(int64_t v) { return static_cast<int>(v); }

// Short names for the layout tables and summary lines of the parser files.
namespace modem_stats_nr5g_short {
constexpr modem_stats_field F(const char *name, int byte, int width, bool is_signed = false,
                              int bit = 0, bool check_high = false) {
  return modem_stats_nr5g_field(name, byte, width, is_signed, bit, check_high);
}
constexpr int I(int64_t v) { return modem_stats_nr5g_int(v); }
}  // namespace modem_stats_nr5g_short

// One row of a parser's layout table: the version and the positions of the N
// fields the parser reads, in the order of the parser's field enum. Parsers
// whose packets also differ in record sizes use a row of their own with the
// same `version` and `f` members.
template <int N>
struct modem_stats_nr5g_layout {
  uint32_t version;
  modem_stats_field f[N];
};

// Reads the version word, gates it against the table's versions and moves the
// bit base past it. Returns the row of that version, or null when the read or
// the gate failed (both have printed why).
template <typename Row, size_t R>
const Row *modem_stats_nr5g_open(const Row (&rows)[R], const char *parser, uint32_t *version) {
  return modem_stats_log_read_version(rows, parser, version, MODEM_STATS_NR5G_BASE_BIT / 8);
}

// True when the 8-byte word that reading `f` in a record starting
// `record_byte` bytes after the field's own position needs lies wholly inside
// the readable area. Record walks check this so a count taken from the packet
// can never lead a read past the payload.
inline bool modem_stats_nr5g_fits(const modem_stats_field &f, int record_byte) {
  if (f.width == 0) return true;
  int64_t word = (int64_t{MODEM_STATS_NR5G_BASE_BIT} + f.bit + 8 * int64_t{record_byte}) / 8;
  return record_byte >= 0 && word + 8 <= MODEM_STATS_READABLE_LEN;
}

// Reads `f` shifted by `record_byte` bytes; a field the version does not carry
// gives `absent`.
inline bool modem_stats_nr5g_read(const modem_stats_field &f, int record_byte, int64_t *out,
                                  int64_t absent = 0) {
  if (f.width == 0) {
    *out = absent;
    return true;
  }
  return modem_stats_unpk_bits(f, 8 * record_byte, out);
}

// Reads fields[i] into out[i] for every i, stopping at the first failure.
inline bool modem_stats_nr5g_read_all(std::span<const modem_stats_field> fields, int record_byte,
                                      int64_t *out) {
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!modem_stats_nr5g_read(fields[i], record_byte, &out[i])) return false;
  }
  return true;
}

// Makes the record of a parser that packs its row as read: the version word,
// then v[i] as `width` bytes under the name of fields[i], for every i.
inline bool modem_stats_nr5g_pack_row(uint32_t version, std::span<const modem_stats_field> fields,
                                      const int64_t *v, int width, uint32_t stat, uint32_t *stat_id,
                                      modem_stats_single **record) {
  modem_stats_pk_begin();
  if (!modem_stats_pk("version", version, 4)) return false;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!modem_stats_pk(fields[i].name, static_cast<uint64_t>(v[i]), width)) return false;
  }
  return modem_stats_pk_finish(stat, stat_id, record);
}
