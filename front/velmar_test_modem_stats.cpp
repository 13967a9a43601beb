// Category 7: the statistics engine's self-test on the canned packet (types 0
// and 1) and the modem's statistics debug counters (type 2).
#include <cstdio>
#include <cstdlib>

#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "modem_stats/modem_stats_dispatch.h"
#include "velmar_extend_qmi/velmar_extend_cmn_stats.h"

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
