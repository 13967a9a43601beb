// The statistics engine's one cursor over the packet being parsed, its read
// and pack steps, and the statistics record.
//
// Bit numbering: bit k counted from the bit base is bit (k mod 8) of byte
// (k div 8) after the base, bit 0 being the least significant bit of its byte:
//
//        byte 0 after the base      byte 1
//     | 7 6 5 4 3 2 1 0 | 15 14 13 12 11 10 9 8 | ...
//
// A w-bit field at bit b is the little-endian integer of bits b .. b+w-1.
// Multi-byte values are little-endian.
//
// Every step checks before it reads. A failed step prints its message (with a
// newline) through modem_stats_printf, leaves the cursor where the failing
// check found it, and returns false; the parser then returns at once without a
// record. The engine is single-threaded: one packet at a time.
#pragma once

#include <cstdint>
#include <span>

inline constexpr int MODEM_STATS_READABLE_LEN = 2000;   // every packet's readable area
inline constexpr int MODEM_STATS_PK_MAX = 700;          // pack buffer and record limit
inline constexpr uint32_t MODEM_STATS_NO_RECORD = 146;  // stat_id meaning "no record"

// The cursor (reset by the dispatchers at each packet).
extern int g_pk_data_id;          // log code or event id, printed as id(0x%x)
extern int g_pk_data_len;         // readable length (2000), 0 before the first packet
extern int g_pk_data_left;        // readable bytes after the cursor
extern uint8_t *g_pk_data_ptr;    // payload; the pack buffer once packing began
extern int g_pK_DATA_CNT;         // byte cursor from the bit base; write position when packing
extern int g_unpk_byte_base;      // byte offset of the bit base
extern int g_unpk_bit_pos;        // absolute bit position of the bit base
extern uint64_t not_support_num;  // packets refused by a version gate, never reset
extern uint8_t g_pk_out_buf[MODEM_STATS_PK_MAX];

struct modem_stats_single {
  uint32_t stat_id;  // record type
  uint8_t *data;     // data_len packed bytes (heap)
  int32_t data_len;  // 1..700
};

// Allocates a record (two heap blocks, owned by the caller). data_len outside
// 1..700 prints "data_len(%d) should be in (0, 700]" (no newline) and returns
// false with *out untouched.
bool modem_stats_new_single_ex(uint32_t stat_id, int32_t data_len, modem_stats_single **out);

// Frees a record made by modem_stats_new_single_ex (null is fine).
void modem_stats_free_single(modem_stats_single *record);

// vsnprintf into buf with at most 102 bytes written including the NUL.
int tessera_log_buf(char *buf, const char *fmt, ...) __attribute__((format(printf, 2, 3)));
inline constexpr int TESSERA_LOG_BUF_SIZE = 112;  // what callers hand in, zeroed

// Resets the cursor for a new packet.
void modem_stats_cursor_reset(int id, uint8_t *payload);

// Steps that have failed since the program started (every message above but
// the version gate's, which counts in not_support_num). Lets a caller tell a
// refused packet from an invalid one without reading the printed text.
uint64_t modem_stats_failures();

// Byte-aligned read of n (1, 2, 4 or 8) bytes at the cursor, little-endian;
// moves the cursor by n. Signed reads sign-extend from n bytes.
bool modem_stats_unpk_u(const char *name, int n, uint64_t *out);
bool modem_stats_unpk_s(const char *name, int n, int64_t *out);

// Skips n bytes without any check (the next read checks).
void modem_stats_skip(int n);

// Version gate: prints VERSION_NOT_SUPPORT naming `name`, counts the packet
// and returns false when `version` is not in `accepted`.
bool modem_stats_version_gate(uint32_t version, std::span<const uint32_t> accepted,
                              const char *name);

// Validity gate message: "DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)". Always
// returns false so a parser can `return modem_stats_not_valid(...)`-style stop.
bool modem_stats_not_valid(int64_t value, const char *name);

// Moves the bit base past the bytes read so far (BASE_WITH_BIT).
void modem_stats_base_with_bit();
// Moves the bit base to an absolute bit number of the payload (the byte
// cursor to 0 and what is left to the bytes from the new base on); a negative
// one is refused.
bool modem_stats_base_to_bit(int bit);

// A bit field of a packet layout: `width` bits (1..64) at `bit` from the bit base.
struct modem_stats_field {
  const char *name;         // used in messages ("_tmp" is appended for the word read)
  int bit;                  // offset from the bit base
  int width;                // 1..64
  bool is_signed = false;   // sign-extend from `width`
  bool check_high = false;  // also make the UNPK_HIGH check (0xB14E, 0xB8A7, 0xB064)
};

// Reads field f at f.bit + extra_bits (a record index times the record size).
// Checks position, the 8-byte word, UNPK_MID low/high (and UNPK_HIGH) in order.
// The position step sets the byte cursor to the word before it is read, so
// after a later failure the cursor is where that step left it; on success it
// is 8 bytes past the word. The bit base never moves. Bytes past the readable
// area (reachable when the base was moved) read as 0.
bool modem_stats_unpk_bits(const modem_stats_field &f, int extra_bits, int64_t *out);

// Packing: begin zeroes the pack buffer and points the cursor at it; each pk
// writes `width` little-endian bytes at the write position (only the start
// position is checked against 700).
void modem_stats_pk_begin();
bool modem_stats_pk(const char *name, uint64_t value, int width);
bool modem_stats_pk_f32(const char *name, float value);

// Makes the record from the packed bytes; on success stores stat_id in
// *stat_id_out and the record in *record_out.
bool modem_stats_pk_finish(uint32_t stat_id, uint32_t *stat_id_out,
                           modem_stats_single **record_out);
