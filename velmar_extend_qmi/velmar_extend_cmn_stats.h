// The modem statistics feature's debug counters (request id 4, kind 20):
// asked for, unpacked field by field and printed.
#pragma once

#include <cstdint>

// Debug response, little-endian and packed, received into the room every
// request id 4 response gets (VELMAR_CMN_RSP_ROOM):
//   0  u32  not read
//   4  i32  result, 0 success
//   8  u8   version, then the sections the mask selects, back to back
//           (support status instead when the mask is 0)
inline constexpr int VELMAR_STATS_DEBUG_RESULT_AT = 4;
inline constexpr int VELMAR_STATS_DEBUG_BODY_AT = 8;

// Mask bits of `rpk 7 2 <mask>`, one per section.
inline constexpr int VELMAR_STATS_MASK_MAIN = 0x01;
inline constexpr int VELMAR_STATS_MASK_DIAG = 0x02;
inline constexpr int VELMAR_STATS_MASK_CM = 0x04;
inline constexpr int VELMAR_STATS_MASK_UIM = 0x08;

// Each prints one section's fields ("UNPK[size:%d], %s = %lu") and returns
// its size in bytes (25, 43, 58, 10); a null pointer prints "ptr is null"
// and returns 0.
int velmar_modem_stats_info_unpk(const uint8_t *p);
int velmar_modem_stats_diag_info_unpk(const uint8_t *p);
int velmar_modem_stats_cm_info_unpk(const uint8_t *p);
int velmar_modem_stats_uim_info_unpk(const uint8_t *p);

// Prints the support-status record at p and the verdict line; true when the
// feature is enabled and no packet was refused for its version.
bool velmar_modem_stats_support_status_check(const uint8_t *p);

// `rpk 7 2 <mask>`: asks the modem and prints what the mask selects.
void velmar_test_modem_stats_get_debug_info_do(int mask);
