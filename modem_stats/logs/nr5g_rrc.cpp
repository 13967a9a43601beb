// NR5G RRC log-packet parsers: serving cell (0xB823) and carrier configuration
// (0xB825).
#include <cstdio>

#include "modem_stats/logs/nr5g_layout.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

using modem_stats_nr5g_short::F;
using modem_stats_nr5g_short::I;

// 0xB823 serving cell information (payload byte, width in bits).
enum {
  B823_PCI,
  B823_ARFCN,
  B823_CGI,
  B823_MCC,
  B823_MNC_NUM,
  B823_MNC,
  B823_TAC,
  B823_BAND,
  B823_N
};
// clang-format off
constexpr modem_stats_nr5g_layout<B823_N> k_b823[] = {
    {0x4,     {F("pci", 4, 16), F("dl_arfcn", 6, 32),  F("cgi", 18, 64), F("mcc", 26, 16),
               F("mnc_num", 28, 8), F("mnc", 29, 16), F("tac", 32, 32), F("band", 36, 16)}},
    {0x30000, {F("pci", 4, 16), F("dl_arfcn", 14, 32), F("cgi", 26, 64), F("mcc", 34, 16),
               F("mnc_num", 36, 8), F("mnc", 37, 16), F("tac", 40, 32), F("band", 44, 16)}},
    {0x30002, {F("pci", 7, 16), F("dl_arfcn", 17, 32), F("cgi", 29, 64), F("mcc", 37, 16),
               F("mnc_num", 39, 8), F("mnc", 40, 16), F("tac", 43, 32), F("band", 47, 16)}},
    {0x30003, {F("pci", 7, 16), F("dl_arfcn", 17, 32), F("cgi", 29, 64), F("mcc", 37, 16),
               F("mnc_num", 39, 8), F("mnc", 40, 16), F("tac", 43, 32), F("band", 47, 16)}},
};
// clang-format on

// 0xB825 configuration: five carrier counts of one byte each. Versions before
// 0x30003 carry no NR-DC counts (width 0); those print and pack as 0.
enum { B825_GROUPS, B825_NRDC_GROUPS, B825_ACTIVE_CC, B825_NRDC_ACTIVE_CC, B825_ACTIVE_RB, B825_N };
constexpr modem_stats_field b825_count(const char *name, int byte) {
  return byte < 0 ? F(name, 0, 0) : F(name, byte, 8);
}
constexpr modem_stats_nr5g_layout<B825_N> b825_row(uint32_t version, int groups, int nrdc_groups,
                                                   int active_cc, int nrdc_active_cc,
                                                   int active_rb) {
  return {
      version,
      {b825_count("num_contiguous_cc_groups", groups),
       b825_count("num_nrdc_scg_contiguous_cc_groups", nrdc_groups),
       b825_count("num_active_cc", active_cc), b825_count("num_nrdc_scg_active_cc", nrdc_active_cc),
       b825_count("num_active_rb", active_rb)}};
}
constexpr int NONE = -1;
// clang-format off
constexpr modem_stats_nr5g_layout<B825_N> k_b825[] = {
    //       version  groups  nrdc_groups  active_cc  nrdc_active_cc  active_rb   (payload bytes)
    b825_row(0x8,     58,     NONE,        59,        NONE,           60),
    b825_row(0xA,     58,     NONE,        59,        NONE,           60),
    b825_row(0x20000, 58,     NONE,        59,        NONE,           60),
    b825_row(0x30003, 66,     67,          68,        69,             70),
    b825_row(0x30004, 67,     68,          69,        70,             71),
    b825_row(0x30006, 67,     68,          69,        70,             71),
};
// clang-format on

}  // namespace

bool modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info(uint32_t *stat_id,
                                                                modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b823, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B823_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %lu, pci %d\n",
                     I(version), I(v[B823_MCC]), I(v[B823_MNC_NUM]), I(v[B823_MNC]), I(v[B823_TAC]),
                     static_cast<unsigned long>(v[B823_CGI]), I(v[B823_PCI]));

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("pci", v[B823_PCI], 2),
       modem_stats_pk_int("dl_arfcn", v[B823_ARFCN], 4), modem_stats_pk_int("cgi", v[B823_CGI], 8),
       modem_stats_pk_int("mcc", v[B823_MCC], 2), modem_stats_pk_int("mnc_num", v[B823_MNC_NUM], 1),
       modem_stats_pk_int("mnc", v[B823_MNC], 2), modem_stats_pk_int("tac", v[B823_TAC], 4),
       modem_stats_pk_int("band", v[B823_BAND], 2)},
      130, stat_id, record);
}

bool modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info(uint32_t *stat_id,
                                                                 modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b825, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B825_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf(
      "version = %d, num_contiguous_cc_groups = %d, num_nrdc_scg_contiguous_cc_groups = %d, "
      "num_active_cc = %d, num_nrdc_scg_active_cc = %d, num_active_rb = %d\n",
      I(version), I(v[B825_GROUPS]), I(v[B825_NRDC_GROUPS]), I(v[B825_ACTIVE_CC]),
      I(v[B825_NRDC_ACTIVE_CC]), I(v[B825_ACTIVE_RB]));
  return modem_stats_nr5g_pack_row(version, row->f, v, 1, 97, stat_id, record);
}
