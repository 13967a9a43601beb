// libFuzzer target: arbitrary bytes under every log code and event id through
// the dispatchers. The first two bytes choose the code (a table row, or any
// 16-bit value); the rest is the payload, zero-padded to the readable area.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "modem_stats/modem_stats_cursor.h"
#include "modem_stats/modem_stats_dispatch.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  // The parsers report on stdout; keep the fuzzer's own output readable.
  if (freopen("/dev/null", "w", stdout) == nullptr) return 1;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 2) return 0;
  static uint8_t payload[MODEM_STATS_READABLE_LEN];
  memset(payload, 0, sizeof payload);
  const size_t n = size - 2 < sizeof payload ? size - 2 : sizeof payload;
  memcpy(payload, data + 2, n);

  const auto logs = modem_stats_log_table();
  const auto events = modem_stats_event_table();
  const uint8_t pick = data[0];
  uint32_t stat_id = 0;
  modem_stats_single *record = nullptr;
  if (pick < 0x80) {
    modem_stats_diag_process_log_rec(logs[data[1] % logs.size()].code, payload, &stat_id, &record);
  } else if (pick < 0xF0) {
    modem_stats_diag_process_event_rec(events[data[1] % events.size()].id, payload, &stat_id,
                                       &record);
  } else {
    const uint16_t id = static_cast<uint16_t>(data[1] << 8 | (pick & 0x0F) << 4);
    modem_stats_diag_process_log_rec(id, payload, &stat_id, &record);
  }
  if (record != nullptr) {
    // A record always holds 1..700 bytes.
    if (record->data_len < 1 || record->data_len > MODEM_STATS_PK_MAX) __builtin_trap();
    modem_stats_free_single(record);
  }
  return 0;
}
