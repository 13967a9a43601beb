#include "velmar_extend_qmi/velmar_diag_send.h"

#include <cstdio>
#include <cstring>

#include "common/velmar_log.h"

namespace {

constexpr uint32_t kHexMaxBytes = 4096;
constexpr size_t kHexLineBound = 12288;  // 4096 bytes at three characters, less one

}  // namespace

void velmar_print_data_with_hex(const uint8_t *data, uint32_t length) {
  if (data == nullptr) {
    VELMAR_LOG_LN("print_data_with_hex, data is null");
    return;
  }
  if (length == 0 || length > kHexMaxBytes) {
    VELMAR_LOG_LN("print_data_with_hex, invalid data len(%d)", static_cast<int>(length));
    return;
  }
  static thread_local char line[kHexLineBound + 1];
  char item[6];
  snprintf(line, sizeof line, "%02X", data[0]);
  size_t used = 2;
  for (uint32_t i = 1; i < length; ++i) {
    int n = snprintf(item, sizeof item, " %02X", data[i]);
    if (used + static_cast<size_t>(n) > kHexLineBound) break;
    memcpy(line + used, item, static_cast<size_t>(n) + 1);
    used += static_cast<size_t>(n);
  }
  VELMAR_LOG_LN("data hex show, len(%d), data: %s", static_cast<int>(length), line);
}
