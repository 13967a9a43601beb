#include "front/velmar_test_rf.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "common/velmar_console.h"
#include "common/velmar_status.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

namespace {

// Positions on the command line: rpk 3 <op> [value ...].
constexpr int kArgOp = 2;
constexpr int kArgValues = 3;
constexpr int kArgcGetClose = 3;
constexpr int kArgcTxSet = 6;

constexpr uint32_t kEfsSub = 0;
// The path lengths handed to the EFS layer count the terminator.
constexpr char kGpioTestFile[] = "/nv/item_files/modem/velmar/rf_ant_port_config";
constexpr char kTxTestFile[] = "/nv/item_files/modem/antenna/ant_tx_config";
static_assert(sizeof kGpioTestFile == 47 && sizeof kTxTestFile == 43);

template <typename Record>
int32_t send_rf_record(const Record &req) {
  static_assert(sizeof req == VELMAR_EXTEND_QMI_DATA_MAX);
  uint8_t rsp[VELMAR_CMN_RSP_ROOM];  // the answer's content is not read
  uint32_t room = sizeof rsp;
  const int32_t result =
      velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_COMMON, &req, sizeof req, rsp, &room);
  if (result != 0) puts("velmar_extend_qmi_send_sync fail, REQUEST_ID_COMMON");
  return result;
}

bool get_close_argc(int argc, int op) {
  if (argc == kArgcGetClose) return true;
  printf("\nnote: Cmd error, should be: rpk %d %d , Pls refer to the following cmd:\n",
         VELMAR_CAT_RF, op);
  return false;
}

int32_t report_efs_failure(int32_t result) {
  if (result != 0) puts("velmar_extend_qmi_send_sync fail, REQUEST_ID_EFS");
  return result;
}

template <size_t N>
int32_t test_get(int argc, const char *name, int op, const char (&path)[N]) {
  puts(name);
  if (!get_close_argc(argc, op)) return VELMAR_ERR_ARGC;
  uint8_t buf[VELMAR_NV_READ_BUF_SIZE] = {};
  uint32_t len = sizeof buf;
  const int32_t result = velmar_efs_read(kEfsSub, path, N, buf, &len);
  if (result == 0) {
    printf("\ndata len(%d)\ndata: ", len);
    velmar_print_hex_bytes(buf, len);
  }
  return report_efs_failure(result);
}

template <size_t N>
int32_t test_close(int argc, const char *name, int op, const char (&path)[N]) {
  puts(name);
  if (!get_close_argc(argc, op)) return VELMAR_ERR_ARGC;
  return report_efs_failure(velmar_efs_delete(kEfsSub, path, N));
}

}  // namespace

int32_t velmar_gpio_test_set(int argc, char **argv) {
  puts("velmar_gpio_test_set");
  if (argc < kArgValues) {
    puts("\nnote: Too few inputs, Pls refer to the following cmd:");
    return VELMAR_ERR_ARGC;
  }
  velmar_rf_gpio_test_req req{};
  req.kind = VELMAR_COMMON_KIND_GPIO;
  // The count says how many were given, even past the values the record holds.
  req.count = static_cast<uint32_t>(argc - kArgValues);
  const size_t kept = std::min<size_t>(req.count, VELMAR_RF_GPIO_VALUES_MAX);
  for (size_t i = 0; i < kept; ++i) {
    const int value = atoi(argv[kArgValues + i]);
    req.values[i] = static_cast<uint32_t>(value);
    printf("velmar_gpio_test_set, gpio_v[%zu]: %d\n", i, value);
  }
  return send_rf_record(req);
}

int32_t velmar_gpio_test_get(int argc) {
  return test_get(argc, "velmar_gpio_test_get", VELMAR_RF_GPIO_GET, kGpioTestFile);
}

int32_t velmar_gpio_test_closed(int argc) {
  return test_close(argc, "velmar_gpio_test_closed", VELMAR_RF_GPIO_CLOSE, kGpioTestFile);
}

int32_t velmar_rf_tx_test_set(int argc, char **argv) {
  printf("velmar_rf_tx_test_set, argc(%d)\n", argc);
  if (argc != kArgcTxSet) {
    printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", kArgcTxSet - 1);
    return VELMAR_ERR_ARGC;
  }
  velmar_rf_tx_test_req req{};
  req.kind = VELMAR_COMMON_KIND_TX_ANT;
  const int v_ant = atoi(argv[kArgValues]);
  const int v_sys = atoi(argv[kArgValues + 1]);
  const unsigned long v_band_list = strtoul(argv[kArgValues + 2], nullptr, 0);
  req.v_ant = static_cast<uint32_t>(v_ant);
  req.v_sys = static_cast<uint32_t>(v_sys);
  req.band_mask = v_band_list;
  printf(" v_ant(%d)\n", v_ant);
  printf(" v_sys(%d)\n", v_sys);
  printf(" v_band_list(%lu)\n", v_band_list);
  return send_rf_record(req);
}

int32_t velmar_rf_tx_test_get(int argc) {
  return test_get(argc, "velmar_rf_tx_test_get", VELMAR_RF_TX_GET, kTxTestFile);
}

int32_t velmar_rf_tx_test_closed(int argc) {
  return test_close(argc, "velmar_rf_tx_test_closed", VELMAR_RF_TX_CLOSE, kTxTestFile);
}

int32_t velmar_test_rf_do(int argc, char **argv) {
  constexpr int cat = VELMAR_CAT_RF;
  if (auto refused = velmar_category_refusal(argc, argv, cat)) return *refused;
  // Unsigned, so a negative sub-operation is out of range too.
  const auto op = static_cast<uint32_t>(atoi(argv[kArgOp]));
  if (op >= static_cast<uint32_t>(VELMAR_RF_OP_END)) {
    puts("\nnote: the second parameters is invalid, Pls refer to the following cmd:");
    return show_help(cat);
  }
  int32_t result = 0;
  switch (op) {
    case VELMAR_RF_GPIO_SET:
      result = velmar_gpio_test_set(argc, argv);
      break;
    case VELMAR_RF_GPIO_GET:
      result = velmar_gpio_test_get(argc);
      break;
    case VELMAR_RF_GPIO_CLOSE:
      result = velmar_gpio_test_closed(argc);
      break;
    case VELMAR_RF_TX_SET:
      result = velmar_rf_tx_test_set(argc, argv);
      break;
    case VELMAR_RF_TX_GET:
      result = velmar_rf_tx_test_get(argc);
      break;
    default:
      result = velmar_rf_tx_test_closed(argc);
      break;
  }
  return velmar_report_result(result, cat);
}
