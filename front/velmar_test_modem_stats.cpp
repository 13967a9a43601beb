// Category 7: the statistics engine's self-test on the canned packet (types 0
// and 1) and the modem's statistics debug counters (type 2).
#include "front/velmar_test_modem_stats.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "common/velmar_console.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "velmar_extend_qmi/velmar_extend_cmn_stats.h"

namespace {

// The self-test packet: log version 9; 262153 as the first 32-bit word.
constexpr std::array<uint8_t, 108> kSelfTestPacket = [] {
  std::array<uint8_t, 108> p{};
  p[0] = 0x09;
  p[2] = 0x04;
  p[15] = 0x01;
  p[18] = 0xff;
  p[21] = 0x08;
  p[22] = 0x01;
  p[25] = 0x01;
  return p;
}();

}  // namespace

int velmar_test_modem_stats_log_or_event(int argc, char **argv) {
  if (argc <= 3) {
    velmar_note_too_few_parameters();
    return 0;
  }
  const int type = atoi(argv[2]);
  const auto id = static_cast<uint16_t>(velmar_string_to_int(argv[3]));
  printf("length = %d, type = %d, id = %d(0x%x)\n", static_cast<int>(kSelfTestPacket.size()), type,
         id, id);
  // The parsers may read anywhere in the readable area: the packet sits at the
  // start of a zeroed area of that size rather than in a 108-byte buffer.
  std::array<uint8_t, MODEM_STATS_READABLE_LEN> area{};
  std::copy(kSelfTestPacket.begin(), kSelfTestPacket.end(), area.begin());
  if (type == VELMAR_STATS_TYPE_LOG) {
    modem_stats_diag_process_log_ex(id, area.data());
  } else {
    modem_stats_diag_process_event_ex(id, area.data());
  }
  return 1;
}

int velmar_test_modem_stats_get_debug_info(int argc, char **argv) {
  if (argc < 4) {
    velmar_note_too_few_parameters();
    return 0;
  }
  velmar_test_modem_stats_get_debug_info_do(atoi(argv[3]));
  return 1;
}

int32_t velmar_test_modem_stats_do(int argc, char **argv) {
  if (argc < 3) {
    velmar_note_too_few_parameters();
    return show_help(VELMAR_CAT_MODEM_STATS);
  }
  if (!velmar_category_matches(argv, VELMAR_CAT_MODEM_STATS)) {
    return show_help(VELMAR_CAT_MODEM_STATS);
  }
  const int type = atoi(argv[2]);
  if (type < VELMAR_STATS_TYPE_DEBUG) {
    if (velmar_test_modem_stats_log_or_event(argc, argv) != 0) return 0;
    puts("velmar_test_modem_stats_log_or_event FAIL");
  } else if (type == VELMAR_STATS_TYPE_DEBUG) {
    if (velmar_test_modem_stats_get_debug_info(argc, argv) != 0) return 0;
    puts("velmar_test_modem_stats_get_debug_info FAIL");
  } else {
    printf("invalid type = %d\n", type);
  }
  return show_help(VELMAR_CAT_MODEM_STATS);
}
