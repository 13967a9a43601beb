#include "front/velmar_test_dispatch.h"

#include <array>
#include <cstdlib>

#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"

namespace {

// Sorted by category (a test checks it and that the help is made of these rows).
constexpr std::array kCategories{
    velmar_category{VELMAR_CAT_NV, "nv", velmar_test_nv_do, velmar_help_nv},
    velmar_category{VELMAR_CAT_RF, "rf", velmar_test_rf_do, velmar_help_rf},
    velmar_category{VELMAR_CAT_NVEFS, "nvefs", velmar_test_nvefs_do, velmar_help_nvefs},
    velmar_category{VELMAR_CAT_CMN, "cmn", velmar_test_cmn_do, velmar_help_cmn},
    velmar_category{VELMAR_CAT_QMI_SEND, "qmi send_data", velmar_test_qmi_send_data_do,
                    velmar_help_qmi_send},
    velmar_category{VELMAR_CAT_MODEM_STATS, "modem stats", velmar_test_modem_stats_do,
                    velmar_help_modem_stats},
    velmar_category{VELMAR_CAT_AT, "at command", velmar_test_at_cmd_do, velmar_help_at},
    velmar_category{VELMAR_CAT_QMI_MODEM_STATS, "modem stats qmi", velmar_test_qmi_modem_stats_do,
                    velmar_help_qmi_modem_stats},
};

}  // namespace

std::span<const velmar_category> velmar_categories() { return kCategories; }

const velmar_category *velmar_category_find(int category) {
  for (const auto &row : kCategories) {
    if (row.category == category) return &row;
  }
  return nullptr;
}

int velmar_main(int argc, char **argv) {
  if (argc < 2) {
    show_help(0);
    return 0;
  }
  const velmar_category *row = velmar_category_find(atoi(argv[1]));
  if (row == nullptr || row->handler == nullptr) {
    show_help(0);
  } else {
    row->handler(argc, argv);
  }
  // The exit status never reports a failure; the printed lines do.
  return 0;
}
