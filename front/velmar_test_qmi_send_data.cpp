// Category 6: one Extend-QMI request with a chosen request id and typed bytes,
//   rpk 6 <qmi_id> <byte> [byte ...]
// Bytes are decimal or 0x-hexadecimal, low 8 bits kept, at most 500 sent.
#include <cstdio>
#include <cstdlib>

#include "common/velmar_console.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_client.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"

namespace {

constexpr int kArgId = 2;
constexpr int kArgData = 3;
constexpr int kArgcMin = 4;  // at least one byte

}  // namespace

int32_t velmar_test_qmi_send_data_do(int argc, char **argv) {
  constexpr int cat = VELMAR_CAT_QMI_SEND;
  if (argc < kArgcMin) {
    velmar_note_too_few_parameters();
    return show_help(cat);
  }
  if (!velmar_category_matches(argv, cat)) return show_help(cat);
  // Unsigned, so a negative id is out of range too.
  const auto qmi_id = static_cast<uint32_t>(atoi(argv[kArgId]));
  if (qmi_id >= static_cast<uint32_t>(VELMAR_QMI_ID_END)) {
    printf("\nnote: the second parameters(qmi_id) should be >= %d && < %d\n", VELMAR_QMI_ID_MIN,
           VELMAR_QMI_ID_END);
    return show_help(cat);
  }

  const int given = argc - kArgData;
  printf("kv_qmi req data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, given, VELMAR_QMI_SEND_MAX);
  uint8_t req[VELMAR_QMI_SEND_MAX] = {};
  int count = 0;
  for (; count < given && count < VELMAR_QMI_SEND_MAX; ++count) {
    req[count] = static_cast<uint8_t>(velmar_string_to_int(argv[kArgData + count]));
    printf("0x%02X ", req[count]);
  }

  // No room is offered for the answer, so the dump below always shows 0 bytes.
  uint8_t rsp[VELMAR_EXTEND_QMI_DATA_MAX] = {};
  uint32_t rsp_len = 0;
  const int32_t result = velmar_extend_qmi_send_sync(qmi_id, req, count, rsp, &rsp_len);
  printf("qmi_id = %d, result = %d\n", qmi_id, result);
  if (result != 0) {
    puts("velmar_extend_qmi_send_sync fail");
    show_help(cat);
    return result;
  }
  printf("kv_qmi rsp data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, rsp_len, VELMAR_QMI_SEND_MAX);
  velmar_print_hex_bytes(rsp, rsp_len);
  return 0;
}
