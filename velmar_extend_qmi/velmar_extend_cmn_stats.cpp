#include "velmar_extend_qmi/velmar_extend_cmn_stats.h"

#include <cinttypes>
#include <cstdio>
#include <span>

#include "common/velmar_bytes.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_records.h"
#include "velmar_extend_qmi/client/velmar_extend_qmi_v01.h"
#include "velmar_extend_qmi/velmar_extend_cmn.h"

namespace {

// One counter of a section: its name as printed and its width in bytes.
struct stats_field {
  const char *name;
  int size;
};

constexpr stats_field kMain[] = {
    {"g_modem_stats_feature_enable_status", 1},
    {"g_pk_version_not_support_num", 8},
    {"g_modem_stats_cmd_ok_count", 8},
    {"g_modem_stats_cmd_fail_count", 8},
};
constexpr stats_field kDiag[] = {
    {"init_state", 1},
    {"listener_event_num", 4},
    {"listener_event_state", 1},
    {"listener_event_call_num", 4},
    {"listener_event_parse_num", 4},
    {"listener_log_num", 4},
    {"listener_log_state", 1},
    {"listener_log_call_num", 8},
    {"listener_log_parse_num", 8},
    {"poll_update_call_num", 4},
    {"poll_update_parse_num", 4},
};
constexpr stats_field kCm[] = {
    {"init_state", 1},
    {"listener_state", 1},
    {"listener_call_event_call_num", 4},
    {"listener_call_event_parse_num", 4},
    {"listener_subs_event_call_num", 4},
    {"listener_subs_event_parse_num", 4},
    {"listener_ss_event_call_num", 4},
    {"listener_ss_event_parse_num", 4},
    {"listener_stats_event_call_num", 4},
    {"listener_stats_event_parse_num", 4},
    {"poll_update_rf_call_num", 4},
    {"poll_update_rf_parse_num", 4},
    {"poll_update_lte_call_num", 4},
    {"poll_update_lte_parse_num", 4},
    {"poll_update_nr5g_call_num", 4},
    {"poll_update_nr5g_parse_num", 4},
};
constexpr stats_field kUim[] = {
    {"init_state", 1},
    {"listener_state", 1},
    {"listener_event_call_num", 4},
    {"listener_event_parse_num", 4},
};
constexpr stats_field kSupport[] = {
    {"version", 1},
    {"modem_stats_feature_enable_status", 1},
    {"version_not_support_num", 8},
    {"modem_stats_cmd_ok_count", 8},
    {"modem_stats_cmd_fail_count", 8},
};

constexpr int size_of(std::span<const stats_field> fields) {
  int n = 0;
  for (const auto &f : fields) n += f.size;
  return n;
}
static_assert(size_of(kMain) == 25);
static_assert(size_of(kDiag) == 43);
static_assert(size_of(kCm) == 58);
static_assert(size_of(kUim) == 10);
static_assert(size_of(kSupport) == 26);

void print_field(const char *name, int size, uint64_t value) {
  printf("UNPK[size:%d], %s = %" PRIu64 "\n", size, name, value);
}

int unpk_fields(const uint8_t *p, std::span<const stats_field> fields) {
  if (p == nullptr) {
    puts("ptr is null");
    return 0;
  }
  int at = 0;
  for (const auto &f : fields) {
    print_field(f.name, f.size, velmar_load_le(p + at, static_cast<size_t>(f.size)));
    at += f.size;
  }
  return at;
}

struct stats_section {
  int mask;
  const char *label;
  int (*unpk)(const uint8_t *);
};
constexpr stats_section kSections[] = {
    {VELMAR_STATS_MASK_MAIN, "main", velmar_modem_stats_info_unpk},
    {VELMAR_STATS_MASK_DIAG, "diag", velmar_modem_stats_diag_info_unpk},
    {VELMAR_STATS_MASK_CM, "cm", velmar_modem_stats_cm_info_unpk},
    {VELMAR_STATS_MASK_UIM, "uim", velmar_modem_stats_uim_info_unpk},
};

}  // namespace

int velmar_modem_stats_info_unpk(const uint8_t *p) { return unpk_fields(p, kMain); }
int velmar_modem_stats_diag_info_unpk(const uint8_t *p) { return unpk_fields(p, kDiag); }
int velmar_modem_stats_cm_info_unpk(const uint8_t *p) { return unpk_fields(p, kCm); }
int velmar_modem_stats_uim_info_unpk(const uint8_t *p) { return unpk_fields(p, kUim); }

bool velmar_modem_stats_support_status_check(const uint8_t *p) {
  if (unpk_fields(p, kSupport) == 0) return false;
  const uint64_t enabled = velmar_load_le(p + 1, 1);
  const uint64_t not_supported = velmar_load_le(p + 2, 8);
  const bool ok = not_supported == 0 && enabled != 0;
  puts("===========================================");
  puts(ok ? "================ SUCCES ==================="
          : "================= FAIL ====================");
  return ok;
}

void velmar_test_modem_stats_get_debug_info_do(int mask) {
  printf("Get the debug info of modem_stats, mask = 0x%x\n", mask);
  uint8_t req[VELMAR_EXTEND_QMI_DATA_MAX] = {};
  req[0] = VELMAR_COMMON_KIND_STATS_DEBUG;  // u32 20, little-endian; the mask is not sent
  uint8_t rsp[VELMAR_CMN_RSP_ROOM] = {};
  uint32_t rsp_len = sizeof rsp;
  const int32_t result = velmar_common_qmi_req(req, sizeof req, rsp, &rsp_len);
  const auto rsp_result =
      static_cast<int32_t>(velmar_load_le(rsp + VELMAR_STATS_DEBUG_RESULT_AT, sizeof(int32_t)));
  if (result != 0) {
    printf("velmar_common_qmi_req fail, REQUEST_ID_COMMON, result = %d, rsp.result = %d\n", result,
           rsp_result);
    return;
  }
  if (rsp_result != 0) {
    // Both numbers are the modem's result: the line has always read so.
    printf("qmi response fail, result = %d, rsp.result = %d\n", rsp_result, rsp_result);
    return;
  }
  const uint8_t *body = rsp + VELMAR_STATS_DEBUG_BODY_AT;
  if (mask == 0) {
    velmar_modem_stats_support_status_check(body);
    return;
  }
  print_field("version", 1, body[0]);
  int cnt = 1;
  // Only the printed sections move the read position: a cleared bit does not
  // skip its section in the answer, so mask 2 reads the diag fields right
  // after the version.
  for (const auto &s : kSections) {
    if ((mask & s.mask) == 0) continue;
    printf("-------- stats %s info start --------\n", s.label);
    cnt += s.unpk(body + cnt);
    printf("-------- stats %s info end, cnt(%d) --------\n", s.label, cnt % 256);
  }
}
