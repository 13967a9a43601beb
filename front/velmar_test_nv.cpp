#include "front/velmar_test_nv.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/velmar_console.h"
#include "common/velmar_status.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

// Positions on the command line: rpk 1 <op> [value].
constexpr int kArgOp = 2;
constexpr int kArgValue = 3;
constexpr int kArgcWithValue = 4;
constexpr size_t kNvIdTextMax = 5;  // digits of an NV item number
constexpr size_t kFlagTextMax = 1;  // a flag is one character

// A backup or restore takes the modem a while; restores the longest.
constexpr uint32_t kQcnBackupTimeoutMs = 10000;
constexpr uint32_t kQcnRestoreTimeoutMs = 60000;
constexpr const char *kQcnBackupPath = "data/vendor/tombstones/rfs/modem/qcn.bin";

constexpr uint32_t kSelfTestItem = 6858;  // NV_OEM_ITEM_6_I
constexpr uint32_t kSelfTestLen = 124;
constexpr uint8_t kSelfTestMark = 'd';
static_assert(kSelfTestLen <= VELMAR_NV_DATA_BUF_SIZE);

struct listed_item {
  const char *name;
  bool result_label;  // the first two lines say "result:" before the code
  uint32_t nv_id;
};
constexpr std::array<listed_item, 11> kListedItems = {{
    {"NV_WLAN_MAC_ADDRESS_I", true, 4678},
    {"NV_BD_ADDR_I", true, 477},
    {"NV_DEVICE_SERIAL_NO_I", false, 2824},
    {"NV_OEM_ITEM_1_I", false, 6853},
    {"NV_OEM_ITEM_2_I", false, 6854},
    {"NV_OEM_ITEM_3_I", false, 6855},
    {"NV_OEM_ITEM_4_I", false, 6856},
    {"NV_OEM_ITEM_5_I", false, 6857},
    {"NV_OEM_ITEM_6_I", false, kSelfTestItem},
    {"NV_OEM_ITEM_7_I", false, 6859},
    {"NV_OEM_ITEM_8_I", false, 6860},
}};

void note_too_few() { puts("There are no enough parameters!"); }

// The send's own failure when there is one, else the modem's result.
int32_t outcome(int32_t sent, const velmar_nv_store_rsp &rsp) {
  return sent != 0 ? sent : static_cast<int32_t>(rsp.result);
}

int32_t nv_store_send(const velmar_nv_store_req &req, velmar_nv_store_rsp *rsp) {
  *rsp = {};
  uint32_t room = sizeof *rsp;
  return outcome(velmar_extend_qmi_send_sync(VELMAR_REQUEST_ID_NV, &req, sizeof req, rsp, &room),
                 *rsp);
}

int32_t qcn_send(const velmar_nv_store_req &req, uint32_t timeout_ms) {
  velmar_nv_store_rsp rsp{};
  uint32_t room = sizeof rsp;
  return outcome(velmar_extend_qmi_send_sync_long_process(&req, &rsp, &room, timeout_ms), rsp);
}

void print_outcome(const char *what, int32_t code) {
  printf("%s result code:%x, description:%s \n", what, static_cast<unsigned>(code),
         code != 0 ? "Fail" : "Success");
}

// A backup's or restore's flag: argv[3] when it is the only argument after the
// operation and one character long (any digit passes), else 0.
int qcn_flag(int argc, char **argv, const char *too_long_note) {
  if (argc != kArgcWithValue) return 0;
  if (strlen(argv[kArgValue]) > kFlagTextMax) {
    puts(too_long_note);
    return 0;
  }
  return atoi(argv[kArgValue]);
}

int32_t qcn_backup(int argc, char **argv) {
  velmar_nv_store_req req{};
  req.op = VELMAR_NV_STORE_OP_QCN_BACKUP;
  req.arg = static_cast<uint32_t>(qcn_flag(argc, argv, "invalid privacy flag use default!"));
  const int32_t code = qcn_send(req, kQcnBackupTimeoutMs);
  print_outcome("Backup qcn", code);
  // The modem writes the file; the tool only says where.
  if (code == 0) printf("QCN backup file path:%s \n", kQcnBackupPath);
  return code;
}

int32_t qcn_restore(int argc, char **argv) {
  const int flag = qcn_flag(argc, argv, "invalid goldencopy flag use default!");
  // Printed on every restore, valid flag or not, as the tool always has.
  printf("invalid goldencopy flag %d!\n", flag);
  velmar_nv_store_req req{};
  req.op = VELMAR_NV_STORE_OP_QCN_RESTORE;
  req.arg = static_cast<uint32_t>(flag);
  const int32_t code = qcn_send(req, kQcnRestoreTimeoutMs);
  print_outcome("Restore qcn", code);
  return code;
}

int32_t nv_delete(int argc, char **argv) {
  if (argc < kArgcWithValue) {
    note_too_few();
    return show_help(VELMAR_CAT_NV);
  }
  if (strlen(argv[kArgValue]) > kNvIdTextMax) {
    puts("invalid nv id!");
    return show_help(VELMAR_CAT_NV);
  }
  velmar_nv_store_req req{};
  req.op = VELMAR_NV_STORE_OP_DELETE;
  req.arg = static_cast<uint32_t>(atoi(argv[kArgValue]));
  velmar_nv_store_rsp rsp;
  const int32_t code = nv_store_send(req, &rsp);
  print_outcome("Delet nv ", code);
  return code;
}

}  // namespace

void output_nv() {
  constexpr auto kBufSize = static_cast<int32_t>(VELMAR_NV_DATA_BUF_SIZE);
  for (const auto &item : kListedItems) {
    velmar_nv_store_req req{};
    req.op = VELMAR_NV_STORE_OP_READ;
    req.arg = item.nv_id;
    velmar_nv_store_rsp rsp;
    int32_t code = nv_store_send(req, &rsp);
    int32_t len = 0;
    if (code == 0) {
      // The length comes from the modem: a negative one copies nothing.
      len = std::clamp(rsp.data_len, 0, kBufSize);
      memcpy(g_nv_data_buf, rsp.data, static_cast<size_t>(len));
      if (rsp.data_len > kBufSize) code = VELMAR_ERR_NV_TOO_LONG;
    }
    printf("%s:%s%x, len:%d \n", item.name, item.result_label ? "result:" : "",
           static_cast<unsigned>(code), len);
    if (code == 0) dump_data(static_cast<uint32_t>(len));
  }
}

void nv_test() {
  puts("Hello QMI_NV_API!");
  output_nv();
  puts("Make some changes ... ");
  // Whatever the listing left in the buffer (the last item over the remains of
  // longer ones) is written, marked, as item 6858.
  g_nv_data_buf[0] = kSelfTestMark;
  velmar_nv_store_req req{};
  req.op = VELMAR_NV_STORE_OP_WRITE;
  req.arg = kSelfTestItem;
  req.data_len = kSelfTestLen;
  memcpy(req.data, g_nv_data_buf, kSelfTestLen);
  velmar_nv_store_rsp rsp;
  nv_store_send(req, &rsp);  // the second listing shows what came of it
  output_nv();
}

int32_t velmar_test_nv_do(int argc, char **argv) {
  if (argv[1][0] != '0' + VELMAR_CAT_NV) {
    puts("cmd not support ");
    return show_help(0);
  }
  if (argc <= kArgOp) {
    note_too_few();
    return show_help(VELMAR_CAT_NV);
  }
  switch (argv[kArgOp][0]) {
    case '0' + VELMAR_NV_TEST:
      // The self-test is followed by the not-supported line below: kept, as
      // engineers' scripts expect the tool's long-standing output.
      nv_test();
      break;
    case '0' + VELMAR_NV_BACKUP:
      return qcn_backup(argc, argv);
    case '0' + VELMAR_NV_RESTORE:
      return qcn_restore(argc, argv);
    case '0' + VELMAR_NV_DELETE:
      return nv_delete(argc, argv);
    default:
      break;
  }
  printf("cmd:%s not supported \n", argv[kArgOp]);
  return show_help(VELMAR_CAT_NV);
}
