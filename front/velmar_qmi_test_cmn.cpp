#include "front/velmar_qmi_test_cmn.h"

#include <cutils/properties.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/velmar_bytes.h"
#include "common/velmar_console.h"
#include "common/velmar_log.h"
#include "common/velmar_status.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/velmar_diag_send.h"
#include "velmar_extend_qmi/velmar_extend_cmn.h"
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

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

namespace {

// Common command types of the card commands and the restart request.
constexpr int32_t kCmnCardStatusQuery = 39;
constexpr int32_t kCmnCardStatusGet = 55;
constexpr int32_t kCmnCardStatusSet = 57;
constexpr int32_t kCmnCardTypeQuery = 56;
constexpr int32_t kCmnSsr = 31;

// Arguments after the sub-operation: sub, mode, set_val at most.
constexpr int32_t kCardArgsMax = 3;

}  // namespace

int32_t velmar_cmn_card_status_cmd(int32_t t, int32_t n, int argc, char **argv) {
  if (n < 0 || n > kCardArgsMax || argc != n + 3) {
    printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", n + 3);
    return VELMAR_ERR_ARGC;
  }
  printf("param(cnt: %d):\n", n);
  uint8_t value[4 * kCardArgsMax] = {};
  for (int32_t i = 0; i < n; ++i) {
    const uint32_t flag = atoi(argv[3 + i]) != 0 ? 1 : 0;
    velmar_store_le(value + 4 * i, flag, 4);  // command values are LE u32 words
    printf(" %d", flag);
  }
  putchar('\n');
  return velmar_cmn_cmd_send(t, static_cast<uint32_t>(4 * n), value);
}

int32_t velmar_cmn_card_status_query(int argc, char **argv) {
  puts(__func__);
  return velmar_cmn_card_status_cmd(kCmnCardStatusQuery, 0, argc, argv);
}

int32_t velmar_cmn_card_status_get(int argc, char **argv) {
  puts(__func__);
  return velmar_cmn_card_status_cmd(kCmnCardStatusGet, 1, argc, argv);
}

int32_t velmar_cmn_card_status_set(int argc, char **argv) {
  puts(__func__);
  return velmar_cmn_card_status_cmd(kCmnCardStatusSet, 3, argc, argv);
}

int32_t velmar_cmn_card_type_query(int argc, char **argv) {
  puts(__func__);
  return velmar_cmn_card_status_cmd(kCmnCardTypeQuery, 0, argc, argv);
}

// ---- sub-operations 5 and 6: subsystem restart and full dump ---------------

namespace {

constexpr const char kRestartLevel[] = "persist.vendor.ssr.restart_level";
constexpr const char kRestartLevelBak[] = "persist.vendor.ssr.restart_level_bak";
constexpr const char kSsrWait[] = "persist.radio.ssr_wait_s";
constexpr const char kSsrWaitDefault[] = "3";
constexpr const char kLevelEnable[] = "ALL_ENABLE";
constexpr const char kLevelDisable[] = "ALL_DISABLE";

constexpr uint32_t kSsrRestart = 0x1000;
constexpr uint32_t kSsrFullDump = 0x2000;

constexpr const char kSsrUpdateCountFile[] = "/nv/item_files/modem/velmar/ssr_update_count";
constexpr uint32_t kSsrUpdateCountSub = 0;

void send_ssr_request(uint32_t what) {
  uint8_t value[4];
  velmar_store_le(value, what, sizeof value);
  velmar_cmn_record rsp;
  velmar_send_common_qmi_msg(kCmnSsr, sizeof value, value, &rsp);
}

}  // namespace

int velmar_cmn_test_ssr_wait_s() {
  char text[PROPERTY_VALUE_MAX] = {};
  property_get(kSsrWait, text, kSsrWaitDefault);
  const int wait_s = atoi(text);
  printf("ssr wait_s = %d\n", wait_s);
  if (wait_s != 0) {
    printf("modem ssr start to wait %ds to init\n", wait_s);
    // Flushed so that whoever watches the console sees the wait begin.
    fflush(stdout);
    sleep(static_cast<unsigned>(wait_s));
    printf("modem ssr end to wait %ds to init\n", wait_s);
  } else {
    puts("modem ssr will not wait");
  }
  return wait_s;
}

void velmar_cmn_test_modem_ssr() {
  char level[PROPERTY_VALUE_MAX] = {};
  property_get(kRestartLevel, level, kLevelDisable);
  printf("Will trigger SSR of modem, the current state: %s\n", level);
  // Only the exact spelling counts: the modem's init scripts compare it so.
  const bool was_enabled = strcmp(level, kLevelEnable) == 0;
  if (!was_enabled) {
    puts("need to open ssr");
    property_set(kRestartLevel, kLevelEnable);
    if (velmar_cmn_test_ssr_wait_s() < 0) {
      puts("wait_s < 0, ssr is stoped");
      return;
    }
  }
  send_ssr_request(kSsrRestart);
  if (was_enabled) return;
  // Give the modem time to come back before restarts are switched off again.
  if (velmar_cmn_test_ssr_wait_s() < 0) {
    puts("wait_s < 0, ssr is stoped");
    return;
  }
  puts("back to old ssr state");
  property_set(kRestartLevel, level);
}

void velmar_cmn_test_full_dump() {
  char level[PROPERTY_VALUE_MAX] = {};
  char saved[PROPERTY_VALUE_MAX] = {};
  property_get(kRestartLevel, level, kLevelEnable);
  property_get(kRestartLevelBak, saved, "");
  // Only the first dump saves the level: later ones would save ALL_DISABLE.
  if (saved[0] == '\0') {
    puts("need to save ssr state");
    property_set(kRestartLevelBak, level);
  }
  printf("Will trigger Full Dump, the current state: %s, the default state: %s\n", level, saved);
  if (strcmp(level, kLevelDisable) != 0) {
    // With restarts on, the modem would restart instead of dumping.
    puts("need to close ssr");
    property_set(kRestartLevel, kLevelDisable);
    velmar_cmn_test_save_ssr_update_flag();
  }
  send_ssr_request(kSsrFullDump);
}

uint32_t velmar_cmn_test_read_ssr_update_flag() {
  uint8_t buf[4] = {};
  uint32_t len = sizeof buf;
  const int32_t ret = velmar_efs_read(kSsrUpdateCountSub, kSsrUpdateCountFile,
                                      sizeof kSsrUpdateCountFile - 1, buf, &len);
  uint32_t count = 0;
  memcpy(&count, buf, sizeof count);  // kept in the machine's byte order
  VELMAR_LOG_LN("PROP_MODEM_SSR_UPDATE_COUNT read ret: %d, old update_cnt: %d, len: %d", ret, count,
                len);
  if (ret != VELMAR_OK) {
    VELMAR_LOG_LN("velmar_efs_read failed, maybe empty");
    return 0;
  }
  return count;
}

void velmar_cmn_test_save_ssr_update_flag() {
  const uint32_t count = velmar_cmn_test_read_ssr_update_flag() + 1;
  uint8_t buf[sizeof count];
  memcpy(buf, &count, sizeof count);
  const int32_t ret = velmar_efs_write(kSsrUpdateCountSub, kSsrUpdateCountFile,
                                       sizeof kSsrUpdateCountFile - 1, buf, sizeof buf);
  VELMAR_LOG_LN("PROP_MODEM_SSR_UPDATE_COUNT write ret: %d, new update_cnt: %d", ret, count);
}

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
