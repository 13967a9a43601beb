// LTE MAC random-access attempt (0xB062): only failed attempts make a record.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

constexpr const char *kName = "modem_stats_parse_b062_diag_log_lte_mac_rach_attempt";
constexpr uint32_t kStatId = 132;
constexpr uint32_t kVersions[] = {1};
constexpr uint32_t kSubVersions[] = {49};
constexpr int kSubPacketId = 6;

// Offsets from the bit base after the version byte (payload bit 8), except
// rach_result, which is read from a base moved to payload byte 8.
//
//   byte  0        1            4              5             11
//       | version | num_records | sub_packet_id | version_sub | ... | rach_result |
constexpr modem_stats_field kNumRecords{"num_records", 0, 8};
constexpr modem_stats_field kSubPacketIdField{"sub_packet_id", 24, 8};
constexpr modem_stats_field kVersionSub{"version_sub", 32, 8};
constexpr int kResultBase = 64;
constexpr modem_stats_field kRachResult{"rach_result", 24, 8};

}  // namespace

bool modem_stats_parse_b062_diag_log_lte_mac_rach_attempt(uint32_t *stat_id,
                                                          modem_stats_single **record) {
  uint32_t version = 0;
  if (!modem_stats_log_open(kVersions, kName, &version)) return false;

  int num_records = 0;
  if (!modem_stats_log_bits(kNumRecords, 0, &num_records)) return false;

  int version_sub = 0;
  int rach_raw = 255;  // no attempt logged counts as a failure without a result
  if (num_records != 0) {
    int sub_packet_id = 0;
    if (!modem_stats_log_bits(kSubPacketIdField, 0, &sub_packet_id)) return false;
    if (sub_packet_id != kSubPacketId) return modem_stats_not_valid(sub_packet_id, "sub_packet_id");
    if (!modem_stats_log_bits(kVersionSub, 0, &version_sub)) return false;
    if (!modem_stats_version_gate(static_cast<uint32_t>(version_sub), kSubVersions,
                                  "lte_mac_rach_attempt")) {
      return false;
    }
    if (!modem_stats_base_to_bit(kResultBase)) return false;
    if (!modem_stats_log_bits(kRachResult, 0, &rach_raw)) return false;
    if (rach_raw == 0) {
      modem_stats_printf("rach is success, do nothing\n");
      return false;
    }
  }

  const int rach_result = static_cast<int8_t>(static_cast<uint8_t>(rach_raw));
  modem_stats_printf(
      "sub_id = %d, version = %d, num_records = %d, version_sub = %d, rach_result = %d\n", 0, 1,
      num_records, version_sub, rach_result);
  if (rach_result < 0) return modem_stats_not_valid(rach_result, kName);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", 1, 1), modem_stats_pk_int("version_sub", version_sub, 1),
       modem_stats_pk_int("rach_result", rach_raw, 1)},
      kStatId, stat_id, record);
}
