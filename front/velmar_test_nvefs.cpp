#include "front/velmar_test_nvefs.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/velmar_console.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"
#include "velmar_extend_qmi/velmar_extend_nvefs.h"

namespace {

// Positions on the command line: rpk 4 <op> <sub> <target> [byte ...].
constexpr int kArgOp = 2;
constexpr int kArgSub = 3;
constexpr int kArgTarget = 4;
constexpr int kArgData = 5;
constexpr int kArgcExact = 5;  // read and delete
constexpr int kArgcMin = 6;    // writes: at least one data byte

// Bytes taken from the command line; the rest of a data area stays zero.
constexpr uint32_t kCmdDataMax = VELMAR_NV_READ_BUF_SIZE;

uint32_t sub_of(char **argv) { return atoi(argv[kArgSub]) != 0 ? 1 : 0; }

bool need_exact_argc(int argc) {
  if (argc == kArgcExact) return true;
  printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", kArgcExact);
  return false;
}

bool need_data_argc(int argc) {
  if (argc >= kArgcMin) return true;
  puts("\nnote: Too few inputs, Pls refer to the following cmd:");
  return false;
}

// Stores each data argument (atoi, low 8 bits) as one byte, at most
// kCmdDataMax of them; returns how many arguments there were.
uint32_t parse_data(int argc, char **argv, uint8_t *out) {
  const auto given = static_cast<uint32_t>(argc - kArgData);
  const uint32_t kept = std::min(given, kCmdDataMax);
  for (uint32_t i = 0; i < kept; ++i) out[i] = static_cast<uint8_t>(atoi(argv[kArgData + i]));
  return given;
}

void print_data(const uint8_t *data, uint32_t len) {
  printf("\ndata len(%d)\ndata: ", len);
  velmar_print_hex_bytes(data, len);
}

int32_t report_failure(int32_t result) {
  // NV requests travel as REQUEST_ID_EFS too.
  if (result != 0) puts("velmar_extend_qmi_send_sync fail, REQUEST_ID_EFS");
  return result;
}

using sub_operation = int32_t (*)(int argc, char **argv);

// Indexed by the sub-operation number.
constexpr std::array<sub_operation, 7> kSubOperations = {
    nullptr,
    velmar_nvefs_test_nv_read,
    velmar_nvefs_test_nv_write,
    velmar_nvefs_test_nv_delete,
    velmar_nvefs_test_efs_read,
    velmar_nvefs_test_efs_write,
    velmar_nvefs_test_efs_delete,
};
static_assert(VELMAR_NVEFS_NV_READ == 1 && VELMAR_NVEFS_EFS_DELETE == 6);

}  // namespace

int32_t velmar_nvefs_test_nv_read(int argc, char **argv) {
  if (!need_exact_argc(argc)) return VELMAR_ERR_ARGC;
  uint8_t buf[VELMAR_NV_READ_BUF_SIZE] = {};
  uint32_t len = sizeof buf;
  const int32_t result =
      velmar_nv_read(sub_of(argv), static_cast<uint32_t>(atoi(argv[kArgTarget])), buf, &len);
  if (result == 0) print_data(buf, len);
  return report_failure(result);
}

int32_t velmar_nvefs_test_nv_write(int argc, char **argv) {
  if (!need_data_argc(argc)) return VELMAR_ERR_ARGC;
  // A whole NV data area, so any accepted length can be copied from it.
  uint8_t data[VELMAR_NVEFS_DATA_MAX] = {};
  const uint32_t len = parse_data(argc, argv, data);
  return report_failure(
      velmar_nv_write(sub_of(argv), static_cast<uint32_t>(atoi(argv[kArgTarget])), data, len));
}

int32_t velmar_nvefs_test_nv_delete(int argc, char **argv) {
  if (!need_exact_argc(argc)) return VELMAR_ERR_ARGC;
  return report_failure(
      velmar_nv_delete(sub_of(argv), static_cast<uint32_t>(atoi(argv[kArgTarget]))));
}

int32_t velmar_nvefs_test_efs_read(int argc, char **argv) {
  if (!need_exact_argc(argc)) return VELMAR_ERR_ARGC;
  const char *path = argv[kArgTarget];
  uint8_t buf[VELMAR_NV_READ_BUF_SIZE] = {};
  uint32_t len = sizeof buf;
  const int32_t result =
      velmar_efs_read(sub_of(argv), path, static_cast<uint32_t>(strlen(path)), buf, &len);
  if (result == 0) print_data(buf, len);
  return report_failure(result);
}

int32_t velmar_nvefs_test_efs_write(int argc, char **argv) {
  if (!need_data_argc(argc)) return VELMAR_ERR_ARGC;
  const char *path = argv[kArgTarget];
  uint8_t data[kCmdDataMax] = {};
  parse_data(argc, argv, data);
  // The data is a string: a 0 byte cannot be written from the command line.
  const auto len =
      static_cast<uint32_t>(strnlen(reinterpret_cast<const char *>(data), sizeof data));
  return report_failure(
      velmar_efs_write(sub_of(argv), path, static_cast<int32_t>(strlen(path)), data, len));
}

int32_t velmar_nvefs_test_efs_delete(int argc, char **argv) {
  if (!need_exact_argc(argc)) return VELMAR_ERR_ARGC;
  const char *path = argv[kArgTarget];
  return report_failure(velmar_efs_delete(sub_of(argv), path, static_cast<uint32_t>(strlen(path))));
}

int32_t velmar_test_nvefs_do(int argc, char **argv) {
  constexpr int cat = VELMAR_CAT_NVEFS;
  if (auto refused = velmar_category_refusal(argc, argv, cat)) return *refused;
  const int op = atoi(argv[kArgOp]);
  if (op < VELMAR_NVEFS_NV_READ || op > VELMAR_NVEFS_EFS_DELETE) {
    puts("\nnote: the second parameters is invalid, Pls refer to the following cmd:");
    return show_help(cat);
  }
  const int32_t result = kSubOperations[static_cast<size_t>(op)](argc, argv);
  return velmar_report_result(result, cat);
}
