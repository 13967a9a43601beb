#include "modem_stats/modem_stats_cursor.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/velmar_bytes.h"
#include "modem_stats/modem_stats_out.h"

int g_pk_data_id = 0;
int g_pk_data_len = 0;
int g_pk_data_left = 0;
uint8_t *g_pk_data_ptr = nullptr;
int g_pK_DATA_CNT = 0;
int g_unpk_byte_base = 0;
int g_unpk_bit_pos = 0;
uint64_t not_support_num = 0;
uint8_t g_pk_out_buf[MODEM_STATS_PK_MAX];

namespace {

// Bytes tessera_log_buf may write, NUL included.
constexpr size_t kLogBufLimit = 102;

uint64_t g_failures = 0;

// Every failed step ends here, so a caller can tell "refused" from "invalid"
// without reading the printed text.
bool failed() {
  ++g_failures;
  return false;
}

// n (1..8) little-endian bytes at `at` bytes from the payload start. The
// position checks are made against the cursor's own view of what is left,
// which trusts a moved bit base; bytes past the readable area are read as 0
// rather than from whatever memory follows it.
uint64_t load_le(int64_t at, int n) {
  const int64_t inside = std::clamp<int64_t>(g_pk_data_len - at, 0, n);
  return velmar_load_le(g_pk_data_ptr + at, static_cast<size_t>(inside));
}

// The byte-aligned read; `suffix` is appended to the name in messages (the
// word read of a bit field names "<field>_tmp").
bool unpk_raw(const char *name, const char *suffix, int n, uint64_t *out) {
  if (g_pk_data_ptr == nullptr) {
    modem_stats_printf("MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: %s%s, id(0x%x)\n", name,
                       suffix, g_pk_data_id);
    return failed();
  }
  if (g_pk_data_left < n) {
    modem_stats_printf("g_pk_data_left(%d) is not enough for %s%s, id(0x%x)\n", g_pk_data_left,
                       name, suffix, g_pk_data_id);
    return failed();
  }
  if (g_pK_DATA_CNT < 0) {
    // The count printed is what is left, not the count itself: the tool has
    // always printed it this way.
    modem_stats_printf("g_pK_DATA_CNT(%d) is can not < 0 for %s%s, id(0x%x)\n", g_pk_data_left,
                       name, suffix, g_pk_data_id);
    return failed();
  }
  *out = load_le(static_cast<int64_t>(g_unpk_byte_base) + g_pK_DATA_CNT, n);
  g_pK_DATA_CNT += n;
  g_pk_data_left -= n;
  return true;
}

int64_t sign_extend(uint64_t v, int bits) {
  if (bits <= 0 || bits >= 64) return static_cast<int64_t>(v);
  const uint64_t sign = uint64_t{1} << (bits - 1);
  return static_cast<int64_t>((v ^ sign) - sign);
}

}  // namespace

bool modem_stats_new_single_ex(uint32_t stat_id, int32_t data_len, modem_stats_single **out) {
  if (data_len < 1 || data_len > MODEM_STATS_PK_MAX) {
    modem_stats_printf("data_len(%d) should be in (0, %d]", data_len, MODEM_STATS_PK_MAX);
    return failed();
  }
  assert(out != nullptr);
  auto *record = new modem_stats_single;
  *out = record;
  record->data = new uint8_t[static_cast<size_t>(data_len)];
  record->data_len = data_len;
  record->stat_id = stat_id;
  return true;
}

void modem_stats_free_single(modem_stats_single *record) {
  if (record == nullptr) return;
  delete[] record->data;
  delete record;
}

int tessera_log_buf(char *buf, const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = vsnprintf(buf, kLogBufLimit, fmt, ap);
  va_end(ap);
  return n;
}

uint64_t modem_stats_failures() { return g_failures; }

void modem_stats_cursor_reset(int id, uint8_t *payload) {
  g_pk_data_id = id;
  g_pk_data_len = MODEM_STATS_READABLE_LEN;
  g_pk_data_left = MODEM_STATS_READABLE_LEN;
  g_unpk_byte_base = 0;
  g_pk_data_ptr = payload;
  g_unpk_bit_pos = 0;
  g_pK_DATA_CNT = 0;
}

bool modem_stats_unpk_u(const char *name, int n, uint64_t *out) {
  return unpk_raw(name, "", n, out);
}

bool modem_stats_unpk_s(const char *name, int n, int64_t *out) {
  uint64_t v = 0;
  if (!unpk_raw(name, "", n, &v)) return false;
  *out = sign_extend(v, 8 * n);
  return true;
}

void modem_stats_skip(int n) {
  g_pK_DATA_CNT += n;
  g_pk_data_left -= n;
}

bool modem_stats_version_gate(uint32_t version, std::span<const uint32_t> accepted,
                              const char *name) {
  for (uint32_t v : accepted) {
    if (v == version) return true;
  }
  ++not_support_num;
  modem_stats_printf("VERSION_NOT_SUPPORT, version(%d), not_support_num(%" PRIu64
                     "), name(%s), id(0x%x)\n",
                     static_cast<int>(version), not_support_num, name, g_pk_data_id);
  return false;
}

bool modem_stats_not_valid(int64_t value, const char *name) {
  modem_stats_printf("DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)\n", static_cast<int>(value), name,
                     g_pk_data_id);
  return failed();
}

void modem_stats_base_with_bit() {
  g_unpk_bit_pos += 8 * g_pK_DATA_CNT;
  g_pK_DATA_CNT = 0;
  g_unpk_byte_base = g_unpk_bit_pos / 8;
}

bool modem_stats_base_to_bit(int bit) {
  if (bit < 0) {
    modem_stats_printf("BASE_WITH_BIT, bit(%d) should >= 0, id(0x%x)\n", bit, g_pk_data_id);
    return failed();
  }
  g_unpk_bit_pos = bit;
  g_pK_DATA_CNT = 0;
  g_unpk_byte_base = bit / 8;
  g_pk_data_left = g_pk_data_len - g_unpk_byte_base;
  return true;
}

bool modem_stats_unpk_bits(const modem_stats_field &f, int extra_bits, int64_t *out) {
  const int64_t abs = static_cast<int64_t>(g_unpk_bit_pos) + f.bit + extra_bits;
  const int64_t pos = abs / 8 - g_unpk_byte_base;
  const int shift = static_cast<int>(abs - 8 * (abs / 8));
  if (pos < 0 || pos >= g_pk_data_len) {
    modem_stats_printf("UNPK_SET_POS, pos(%d) should be[0, %d), id(0x%x)\n", static_cast<int>(pos),
                       g_pk_data_len, g_pk_data_id);
    return failed();
  }
  g_pK_DATA_CNT = static_cast<int>(pos);
  g_pk_data_left = g_pk_data_len - static_cast<int>(pos);

  // Always a whole 64-bit word, whatever the width.
  uint64_t word = 0;
  if (!unpk_raw(f.name, "_tmp", 8, &word)) return false;

  const int low = shift + 1;
  const int high = shift + f.width;
  if (low < 1 || low > 64) {
    modem_stats_printf("UNPK_MID, low(%d) should be in [1, %d] for %s, id(0x%x)\n", low, 64, f.name,
                       g_pk_data_id);
    return failed();
  }
  if (high < 1 || high > 64) {
    modem_stats_printf("UNPK_MID, high(%d) should be in [1, %d] for %s, id(0x%x)\n", high, 64,
                       f.name, g_pk_data_id);
    return failed();
  }
  if (f.check_high) {
    const int bit_num = 64 - shift;
    if (bit_num < 1 || bit_num > 64) {
      modem_stats_printf("UNPK_HIGH, bit_num(%d) should be in [1, %d] for %s, id(0x%x)\n", bit_num,
                         64, f.name, g_pk_data_id);
      return failed();
    }
  }
  const int bits = high - low + 1;
  uint64_t v = word >> (low - 1);
  if (bits <= 0) {
    v = 0;
  } else if (bits < 64) {
    v &= (uint64_t{1} << bits) - 1;
  }
  *out = f.is_signed ? sign_extend(v, bits) : static_cast<int64_t>(v);
  return true;
}

void modem_stats_pk_begin() {
  memset(g_pk_out_buf, 0, sizeof g_pk_out_buf);
  g_pk_data_ptr = g_pk_out_buf;
  g_pK_DATA_CNT = 0;
}

bool modem_stats_pk(const char *name, uint64_t value, int width) {
  if (g_pk_data_ptr == nullptr) {
    modem_stats_printf("MODEM_STATS_DATA_PK, g_pk_data_ptr is NULL, name: %s, id(0x%x)\n", name,
                       g_pk_data_id);
    return failed();
  }
  // Only the start is checked: a wide field at the end may run past 700, and
  // the record maker then refuses the length.
  if (g_pK_DATA_CNT >= MODEM_STATS_PK_MAX) {
    modem_stats_printf("Cur(%d) reached max(%d), for %s, id(0x%x)\n", g_pK_DATA_CNT,
                       MODEM_STATS_PK_MAX, name, g_pk_data_id);
    return failed();
  }
  // The bytes past the buffer are dropped, never written.
  for (int i = 0; i < width; ++i) {
    const int at = g_pK_DATA_CNT + i;
    if (at >= 0 && at < MODEM_STATS_PK_MAX) {
      g_pk_out_buf[at] = static_cast<uint8_t>(i < 8 ? value >> (8 * i) : 0);
    }
  }
  g_pK_DATA_CNT += width;
  return true;
}

bool modem_stats_pk_f32(const char *name, float value) {
  return modem_stats_pk(name, std::bit_cast<uint32_t>(value), 4);
}

bool modem_stats_pk_finish(uint32_t stat_id, uint32_t *stat_id_out,
                           modem_stats_single **record_out) {
  if (!modem_stats_new_single_ex(stat_id, g_pK_DATA_CNT, record_out)) return false;
  memcpy((*record_out)->data, g_pk_out_buf, static_cast<size_t>(g_pK_DATA_CNT));
  if (stat_id_out != nullptr) *stat_id_out = stat_id;
  return true;
}
