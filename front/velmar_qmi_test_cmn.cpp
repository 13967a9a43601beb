#include "front/velmar_qmi_test_cmn.h"

#include <cstdio>
#include <cstdlib>

#include "common/velmar_log.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/velmar_extend_cmn.h"

// ---- sub-operation 0: the raw diag command ---------------------------------

int32_t velmar_cmn_diag_cmd_send(int /*argc*/, char ** /*argv*/) { return 1; }

// ---- sub-operations 1 to 4: card status and type ---------------------------

int32_t velmar_cmn_card_status_query(int /*argc*/, char ** /*argv*/) { return 0; }
int32_t velmar_cmn_card_status_get(int /*argc*/, char ** /*argv*/) { return 0; }
int32_t velmar_cmn_card_status_set(int /*argc*/, char ** /*argv*/) { return 0; }
int32_t velmar_cmn_card_type_query(int /*argc*/, char ** /*argv*/) { return 0; }

// ---- sub-operations 5 and 6: subsystem restart and full dump ---------------

void velmar_cmn_test_modem_ssr() {}
void velmar_cmn_test_full_dump() {}

// ---- the category-5 dispatcher ----------------------------------------------

int32_t velmar_test_cmn_do(int argc, char **argv) {
  if (argc <= 2) {
    velmar_note_too_few_parameters();
    return show_help(VELMAR_CAT_CMN);
  }
  if (!velmar_category_matches(argv, VELMAR_CAT_CMN)) return show_help(VELMAR_CAT_CMN);
  const auto op = static_cast<uint32_t>(atoi(argv[2]));
  if (op >= static_cast<uint32_t>(VELMAR_CMN_OP_END)) {
    puts("\nnote: the second parameters is invalid, Pls refer to the following cmd:");
    return show_help(VELMAR_CAT_CMN);
  }
  int32_t rc = 0;
  switch (op) {
    case VELMAR_CMN_DIAG_CMD:
      rc = velmar_cmn_diag_cmd_send(argc, argv);
      break;
    case VELMAR_CMN_CARD_STATUS_QUERY:
      rc = velmar_cmn_card_status_query(argc, argv);
      break;
    case VELMAR_CMN_CARD_STATUS_GET:
      rc = velmar_cmn_card_status_get(argc, argv);
      break;
    case VELMAR_CMN_CARD_STATUS_SET:
      rc = velmar_cmn_card_status_set(argc, argv);
      break;
    case VELMAR_CMN_CARD_TYPE_QUERY:
      rc = velmar_cmn_card_type_query(argc, argv);
      break;
    // The remaining sub-operations report their own outcome.
    case VELMAR_CMN_MODEM_SSR:
      velmar_cmn_test_modem_ssr();
      return 0;
    case VELMAR_CMN_FULL_DUMP:
      velmar_cmn_test_full_dump();
      return 0;
    case VELMAR_CMN_NV_SYNC:
      velmar_cmn_test_nv_sync();
      return 0;
    default:
      velmar_cmn_test_get_sar_dsi();
      return 0;
  }
  if (rc != 0) {
    printf("\nnote: Error happen! error_code(%d)\n", rc);
    show_help(VELMAR_CAT_CMN);
  }
  return rc;
}
