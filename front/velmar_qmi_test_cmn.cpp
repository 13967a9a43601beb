#include "front/velmar_qmi_test_cmn.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/velmar_console.h"
#include "common/velmar_log.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/velmar_diag_send.h"
#include "velmar_extend_qmi/velmar_extend_cmn.h"

// ---- sub-operation 0: the raw diag command ---------------------------------

namespace {

constexpr int kDiagCmdFirstByteArg = 6;  // argv: rpk 5 0 mode type time_out bytes...
constexpr int32_t kDiagCmdReqSize = 4096;
constexpr int32_t kDiagCmdReplySize = 10240;

// The answer as one write: the diag library's threads log while it is shown.
void print_diag_reply(const uint8_t *reply, int32_t reply_len) {
  std::string text = "\nrsp data len(" + std::to_string(reply_len) + ")\nrsp data:";
  char item[8];
  for (int32_t i = 0; i < reply_len; ++i) {
    snprintf(item, sizeof item, " 0x%02X", reply[i]);
    text += item;
  }
  text += '\n';
  fputs(text.c_str(), stdout);
}

}  // namespace

int32_t velmar_cmn_diag_cmd_send(int argc, char **argv) {
  uint8_t req[kDiagCmdReqSize] = {};
  uint8_t reply[kDiagCmdReplySize] = {};
  int32_t reply_len = kDiagCmdReplySize;
  VELMAR_LOG_LN("function entry ------------->");
  if (argc <= kDiagCmdFirstByteArg) {
    // Result 0 on purpose: the note stands alone, without the help.
    puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    return 0;
  }
  const int32_t mode = atoi(argv[3]);
  const int32_t type = atoi(argv[4]);
  const int32_t time_out = atoi(argv[5]);
  puts("diag cmd:");
  // More than 4096 typed bytes are not stored, but the count goes on so that
  // the transport refuses the request.
  const int32_t n = argc - kDiagCmdFirstByteArg;
  for (int32_t i = 0; i < n && i < kDiagCmdReqSize; ++i) {
    req[i] = static_cast<uint8_t>(velmar_string_to_int(argv[kDiagCmdFirstByteArg + i]));
    printf("0x%02X ", req[i]);
  }
  putchar('\n');

  int rc;
  if (mode == 0 && type == 0) {
    puts("callback mode with result");
    rc = velmar_diag_cmd_send_with_result_by_callback_mode(req, n, reply, &reply_len, time_out);
  } else if (mode == 0) {
    puts("callback mode without result");
    rc = velmar_diag_cmd_send_without_result_start_thread(req, n, 0);
  } else if (type == 0) {
    puts("dci mode with result");
    rc = velmar_diag_cmd_send_with_result_by_dci_mode(req, n, reply, &reply_len, time_out);
  } else {
    puts("dci mode without result");
    rc = velmar_diag_cmd_send_without_result_start_thread(req, n, 1);
  }

  int32_t result = 0;
  if (rc != 0) {
    puts("velmar_diag_cmd_send fail");
    result = 1;
  } else if (type == 0) {
    print_diag_reply(reply, reply_len);
  } else {
    fputs("\ndone without rsp data\n", stdout);
  }
  VELMAR_LOG_LN("function exit <-------------");
  return result;
}

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
