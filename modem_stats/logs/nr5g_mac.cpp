// NR5G MAC log-packet parsers: uplink transport blocks (0xB872), uplink power
// control (0xB884), DCI (0xB885), PDSCH status and statistics (0xB887,
// 0xB888), random access (0xB88A) and CSI reports (0xB8A7).
#include <algorithm>
#include <cstdio>

#include "modem_stats/logs/nr5g_layout.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

using modem_stats_nr5g_short::F;
using modem_stats_nr5g_short::I;
constexpr bool SIGNED = true;
constexpr bool UNSIGNED = false;

// ---- 0xB872 uplink transport blocks ----------------------------------------
// TTIs from payload byte 8: an 8-byte TTI header, then its TBs, each a fixed
// part and MCE bytes whose count the TB gives. TTI and TB fields are placed
// within their TTI / TB.
enum { B872_NUM_TTI, B872_SFN, B872_NUM_TB, B872_GRANT, B872_BUILD, B872_MCE_LEN, B872_N };
struct b872_row {
  uint32_t version;
  int tb_size;  // fixed bytes of a TB before its MCE bytes
  modem_stats_field f[B872_N];
};
// clang-format off
constexpr b872_row k_b872[] = {
    //                 header           TTI header                       TB
    {0x4,     20, {F("num_tti", 4, 4), F("sfn", 2, 10), F("num_tb", 4, 4),
                   F("grant", 4, 32), F("build", 8, 32), F("mce_len", 16, 6)}},
    {0x30008, 24, {F("num_tti", 4, 8), F("sfn", 2, 10), F("num_tb", 4, 4),
                   F("grant", 4, 32), F("build", 8, 32), F("mce_len", 20, 6)}},
};
// clang-format on
constexpr int B872_TTIS = 8;
constexpr int B872_TTI_HEADER = 8;

// ---- 0xB884 uplink power control, provisional (no public definition) --------
// 32-byte records from payload byte 8; the powers are those of the first
// carrier of the first record (placed within the record).
enum { B884_NUM_RECORDS, B884_NUM_CARRIERS, B884_PUSCH, B884_PUCCH, B884_SRS, B884_PRACH, B884_N };
// clang-format off
constexpr modem_stats_nr5g_layout<B884_N> k_b884[] = {
    {0x30005, {F("num_records", 7, 8), F("num_carriers", 4, 8),
               F("tx_power_pusch", 8, 16, SIGNED), F("tx_power_pucch", 10, 16, SIGNED),
               F("tx_power_srs", 12, 16, SIGNED), F("tx_power_prach", 14, 16, SIGNED)}},
};
// clang-format on
constexpr int B884_RECORDS = 8;
constexpr int B884_RECORD_SIZE = 32;

// ---- 0xB885 DCI information --------------------------------------------------
// 0x20005 lists DCIs of either direction, each telling its format (0, 1 uplink;
// 2, 3 downlink); 0x30009 counts the uplink DCIs, which come first and are
// followed by the downlink ones. DCI fields are placed within the DCI.
enum { B885_NUM_RECORDS, B885_NUM_DCI, B885_FORMAT, B885_MCS_UL, B885_RB, B885_MCS_DL, B885_N };
struct b885_row {
  uint32_t version;
  int dci_start;  // payload byte of the first DCI
  int ul_size;    // bytes of an uplink DCI
  int dl_size;    // bytes of a downlink DCI
  modem_stats_field f[B885_N];
};
// clang-format off
constexpr b885_row k_b885[] = {
    {0x20005, 24, 32, 12, {F("num_records", 15, 8), F("num_dci", 20, 8),
                           F("dci_format", 0, 2, UNSIGNED, 7), F("mcs_ul", 16, 5, UNSIGNED, 7),
                           F("rb_assi_num", 20, 16), F("mcs_dl", 4, 5, UNSIGNED, 6)}},
    {0x30009, 16, 40, 32, {F("num_records", 7, 8), F("num_ul_dci", 8, 8),
                           F("dci_format", 0, 0), F("mcs_ul", 21, 5),
                           F("rb_assi_num", 24, 19), F("mcs_dl", 16, 5)}},
};
// clang-format on
constexpr int64_t B885_FIRST_DL_FORMAT = 2;

// ---- 0xB887 PDSCH status -----------------------------------------------------
// Status entries of 20 bytes; entry fields are placed within the entry.
enum { B887_NUM_RECORDS, B887_NUM_STATUS, B887_MCS, B887_RNTI, B887_LAYERS, B887_MOD, B887_N };
struct b887_row {
  uint32_t version;
  int entry_start;  // payload byte of the first status entry
  modem_stats_field f[B887_N];
};
// clang-format off
constexpr b887_row k_b887[] = {
    {0x5,     24, {F("num_records", 15, 8), F("num_pdsch_status", 20, 8),
                   F("mcs", 8, 5, UNSIGNED, 26), F("pdsch_rnti_type", 12, 4, UNSIGNED, 18),
                   F("num_layers", 12, 2, UNSIGNED, 29), F("mod_type", 18, 4)}},
    {0x30003, 16, {F("num_records", 7, 8), F("num_pdsch_status", 12, 8),
                   F("mcs", 8, 5, UNSIGNED, 26), F("pdsch_rnti_type", 12, 4, UNSIGNED, 18),
                   F("num_layers", 12, 2, UNSIGNED, 29), F("mod_type", 18, 4)}},
};
// clang-format on
constexpr int B887_ENTRY_SIZE = 20;

// ---- 0xB888 PDSCH statistics -------------------------------------------------
// 72-byte records; 0x30001 carries exactly one record and no count.
enum { B888_NUM_RECORDS, B888_PDCP, B888_CRC, B888_TB_BYTES, B888_N };
struct b888_row {
  uint32_t version;
  int record_start;  // payload byte of the first record
  modem_stats_field f[B888_N];
};
// clang-format off
constexpr b888_row k_b888[] = {
    {0x20002, 28, {F("num_records", 15, 8), F("num_pdcp_decode", 8, 32),
                   F("num_crc_fail", 16, 32), F("tb_bytes", 48, 64)}},
    {0x30000, 20, {F("num_records", 7, 8),  F("num_pdcp_decode", 8, 32),
                   F("num_crc_fail", 16, 32), F("tb_bytes", 48, 64)}},
    {0x30001, 16, {F("num_records", 0, 0),  F("num_pdcp_decode", 12, 32),
                   F("num_crc_fail", 20, 32), F("tb_bytes", 52, 64)}},
};
// clang-format on
constexpr int B888_RECORD_SIZE = 72;

// ---- 0xB88A random access attempt ---------------------------------------------
// Message blocks follow from `blocks`, each present only when its bit of the
// bitmask is set: Msg1 (bit 0), then Msg2 (bit 1), which holds t_rnti and ta.
// 0x20003, 0x20006 and 0x20009 are taken to share the 0x20007 layout and
// 0x30000 the 0x30005 one (provisional: no public definition of those four).
enum { B88A_RESULT, B88A_BITMASK, B88A_T_RNTI, B88A_TA, B88A_N };
struct b88a_row {
  uint32_t version;
  int blocks;     // payload byte of the first message block
  int msg1_size;  // bytes of the Msg1 block
  modem_stats_field f[B88A_N];
};
// Msg2 fields are placed within the Msg2 block.
constexpr b88a_row b88a_v2(uint32_t version) {
  return {
      version,
      28,
      28,
      {F("rach_result", 21, 8), F("rach_msg_bitmask", 23, 8), F("t_rnti", 6, 16), F("ta", 8, 16)}};
}
constexpr b88a_row b88a_v3(uint32_t version) {
  return {
      version,
      24,
      36,
      {F("rach_result", 14, 8), F("rach_msg_bitmask", 16, 8), F("t_rnti", 6, 16), F("ta", 8, 16)}};
}
constexpr b88a_row k_b88a[] = {b88a_v2(0x20003), b88a_v2(0x20006), b88a_v2(0x20007),
                               b88a_v2(0x20009), b88a_v3(0x30000), b88a_v3(0x30005)};
constexpr int64_t B88A_HAS_MSG1 = 1 << 0;
constexpr int64_t B88A_HAS_MSG2 = 1 << 1;
constexpr int64_t B88A_NOT_CARRIED = 65535;  // t_rnti and ta without a Msg2
constexpr int64_t B88A_NO_RESULT = 255;

// ---- 0xB8A7 CSI report ---------------------------------------------------------
// The first report: its quantity (23 = CSI) in the report header and the CSI
// values in the body from payload byte 32. Every read also makes the
// top-of-word check.
enum { B8A7_NUM_RECORDS, B8A7_QUANTITY, B8A7_RI, B8A7_CQI, B8A7_BW_RI, B8A7_BW_CQI, B8A7_N };
constexpr modem_stats_field H(const char *name, int byte, int width, int bit = 0) {
  return F(name, byte, width, UNSIGNED, bit, true);
}
// clang-format off
constexpr modem_stats_nr5g_layout<B8A7_N> k_b8a7[] = {
    {0x20001, {H("num_records", 15, 8), H("report_quantity", 26, 8),
               H("metrics_ri", 32, 2, 3), H("metrics_cqi", 32, 4, 5),
               H("bitwidth_ri", 80, 2, 3), H("bitwidth_cqi", 81, 3, 2)}},
    {0x30005, {H("num_records", 7, 8),  H("report_quantity", 26, 8),
               H("metrics_ri", 32, 2, 3), H("metrics_cqi", 32, 4, 5),
               H("bitwidth_ri", 80, 2, 3), H("bitwidth_cqi", 81, 3, 2)}},
};
// clang-format on
constexpr int64_t B8A7_CSI_REPORT = 23;

// Percentage a / b as the record's float; 0 when b is 0.
float percent(uint64_t a, uint64_t b) {
  return b == 0 ? 0.0f
                : static_cast<float>(100.0 * static_cast<double>(a) / static_cast<double>(b));
}

}  // namespace

bool modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb(uint32_t *stat_id, modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b872, __func__, &version);
  if (row == nullptr) return false;
  const modem_stats_field *f = row->f;
  int64_t num_tti = 0;
  if (!modem_stats_nr5g_read(f[B872_NUM_TTI], 0, &num_tti)) return false;

  int64_t first_sfn = 0, last_sfn = 0;
  uint32_t grant = 0, build = 0;
  uint64_t granted_ttis = 0;
  bool valid = num_tti > 0;
  int at = B872_TTIS;
  for (int t = 0; valid && t < num_tti; ++t) {
    if (!modem_stats_nr5g_fits(f[B872_SFN], at) || !modem_stats_nr5g_fits(f[B872_NUM_TB], at)) {
      valid = false;
      break;
    }
    int64_t sfn = 0, num_tb = 0;
    if (!modem_stats_nr5g_read(f[B872_SFN], at, &sfn)) return false;
    if (!modem_stats_nr5g_read(f[B872_NUM_TB], at, &num_tb)) return false;
    if (t == 0) first_sfn = sfn;
    last_sfn = sfn;
    at += B872_TTI_HEADER;
    uint32_t tti_grant = 0;
    for (int b = 0; b < num_tb; ++b) {
      if (!modem_stats_nr5g_fits(f[B872_MCE_LEN], at) ||
          !modem_stats_nr5g_fits(f[B872_BUILD], at)) {
        valid = false;
        break;
      }
      int64_t tb[B872_N];
      if (!modem_stats_nr5g_read_all(std::span(f + B872_GRANT, 3), at, tb + B872_GRANT)) {
        return false;
      }
      tti_grant += static_cast<uint32_t>(tb[B872_GRANT]);
      build += static_cast<uint32_t>(tb[B872_BUILD]);
      at += row->tb_size + static_cast<int>(tb[B872_MCE_LEN]);
    }
    grant += tti_grant;
    if (tti_grant != 0) ++granted_ttis;
  }
  const float sfn_grant = percent(granted_ttis, num_tti > 0 ? static_cast<uint64_t>(num_tti) : 0);
  const float sfn_full = percent(build, grant);

  modem_stats_printf(
      "NR5G FSSR: [%d][%d], grant = %d, build = %d, sfn_grant = %.2f, sfn_full = %.2f\n",
      I(first_sfn), I(last_sfn), I(grant), I(build), sfn_grant, sfn_full);
  if (!valid) return modem_stats_not_valid(num_tti, __func__);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("first_sfn", first_sfn, 2),
       modem_stats_pk_int("last_sfn", last_sfn, 2), modem_stats_pk_int("grant", grant, 4),
       modem_stats_pk_int("build", build, 4), modem_stats_pk_float("sfn_grant", sfn_grant),
       modem_stats_pk_float("sfn_full", sfn_full)},
      115, stat_id, record);
}

bool modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl(uint32_t *stat_id,
                                                                   modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b884, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B884_N];
  if (!modem_stats_nr5g_read(row->f[B884_NUM_RECORDS], 0, &v[B884_NUM_RECORDS])) return false;
  if (!modem_stats_nr5g_read_all(std::span(row->f + B884_NUM_CARRIERS, B884_N - B884_NUM_CARRIERS),
                                 B884_RECORDS, v + B884_NUM_CARRIERS)) {
    return false;
  }

  modem_stats_printf(
      "version = %d, num_records = %d, num_carriers = %d, tx_power_pusch = %d, "
      "tx_power_pucch = %d, tx_power_srs = %d, tx_power_prach = %d\n",
      I(version), I(v[B884_NUM_RECORDS]), I(v[B884_NUM_CARRIERS]), I(v[B884_PUSCH]),
      I(v[B884_PUCCH]), I(v[B884_SRS]), I(v[B884_PRACH]));
  const int64_t n = v[B884_NUM_RECORDS];
  if (!modem_stats_log_records_fit(B884_RECORDS, n, B884_RECORD_SIZE)) {
    return modem_stats_not_valid(n, __func__);
  }

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("num_records", n, 1),
       modem_stats_pk_int("num_carriers", v[B884_NUM_CARRIERS], 1),
       modem_stats_pk_int("tx_power_pusch", v[B884_PUSCH], 2),
       modem_stats_pk_int("tx_power_pucch", v[B884_PUCCH], 2),
       modem_stats_pk_int("tx_power_srs", v[B884_SRS], 2),
       modem_stats_pk_int("tx_power_prach", v[B884_PRACH], 2)},
      90, stat_id, record);
}

bool modem_stats_parse_b885_diag_log_nr5g_mac_dci_info(uint32_t *stat_id,
                                                       modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b885, __func__, &version);
  if (row == nullptr) return false;
  const modem_stats_field *f = row->f;
  int64_t num_records = 0, num_dci = 0;
  if (!modem_stats_nr5g_read(f[B885_NUM_RECORDS], 0, &num_records)) return false;
  if (!modem_stats_nr5g_read(f[B885_NUM_DCI], 0, &num_dci)) return false;

  // Values come from the first uplink and the first downlink DCI, 0 when
  // the packet has none of that direction.
  int64_t mcs_ul = 0, rb = 0, mcs_dl = 0;
  bool have_ul = false, have_dl = false, valid = num_records > 0;
  auto read_ul = [&](int at) {
    have_ul = true;
    return modem_stats_nr5g_read(f[B885_MCS_UL], at, &mcs_ul) &&
           modem_stats_nr5g_read(f[B885_RB], at, &rb);
  };
  auto read_dl = [&](int at) {
    have_dl = true;
    return modem_stats_nr5g_read(f[B885_MCS_DL], at, &mcs_dl);
  };
  auto ul_fits = [&](int at) {
    return modem_stats_nr5g_fits(f[B885_MCS_UL], at) && modem_stats_nr5g_fits(f[B885_RB], at);
  };
  auto dcis_fit = [&](int size) {
    return num_dci == 0 || modem_stats_log_records_fit(row->dci_start, num_dci, size);
  };
  if (f[B885_FORMAT].width != 0) {
    // Mixed list: walk it, each DCI's format telling its size.
    valid = valid && dcis_fit(std::min(row->ul_size, row->dl_size));
    int at = row->dci_start;
    for (int i = 0; valid && i < num_dci && !(have_ul && have_dl); ++i) {
      int64_t format = 0;
      if (!modem_stats_nr5g_fits(f[B885_FORMAT], at)) {
        valid = false;
        break;
      }
      if (!modem_stats_nr5g_read(f[B885_FORMAT], at, &format)) return false;
      bool uplink = format < B885_FIRST_DL_FORMAT;
      if (!(uplink ? ul_fits(at) : modem_stats_nr5g_fits(f[B885_MCS_DL], at))) {
        valid = false;
        break;
      }
      if (uplink && !have_ul && !read_ul(at)) return false;
      if (!uplink && !have_dl && !read_dl(at)) return false;
      at += uplink ? row->ul_size : row->dl_size;
    }
  } else {
    // Uplink DCIs first, then downlink ones. The packet counts only the
    // uplink ones, so the first downlink DCI is read where it would start;
    // when the packet ends before it, that is the zero padding.
    valid = valid && dcis_fit(row->ul_size);
    int dl_at = row->dci_start + static_cast<int>(num_dci) * row->ul_size;
    if (valid && num_dci > 0) {
      if (!ul_fits(row->dci_start)) {
        valid = false;
      } else if (!read_ul(row->dci_start)) {
        return false;
      }
    }
    if (valid && modem_stats_nr5g_fits(f[B885_MCS_DL], dl_at) && !read_dl(dl_at)) return false;
  }

  modem_stats_printf("version = %d, num_records = %d, mcs_dl = %d, mcs_ul = %d, rb_assi_num = %d\n",
                     I(version), I(num_records), I(mcs_dl), I(mcs_ul), I(rb));
  if (num_records == 0) return modem_stats_not_valid(num_records, __func__);
  if (!valid) return modem_stats_not_valid(num_dci, __func__);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("num_records", num_records, 1),
       modem_stats_pk_int("mcs_dl", mcs_dl, 1), modem_stats_pk_int("mcs_ul", mcs_ul, 1),
       modem_stats_pk_int("rb_assi_num", rb, 4)},
      85, stat_id, record);
}

bool modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status(uint32_t *stat_id,
                                                           modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b887, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B887_N];
  if (!modem_stats_nr5g_read_all(std::span(row->f, B887_MCS), 0, v)) return false;
  if (!modem_stats_nr5g_read_all(std::span(row->f + B887_MCS, B887_N - B887_MCS), row->entry_start,
                                 v + B887_MCS)) {
    return false;
  }
  const int64_t layers = v[B887_LAYERS] + 1;  // the packet holds layers - 1

  modem_stats_printf(
      "version = %d, num_records = %d, num_pdsch_status = %d, mod_type = %d, mcs = %d, "
      "pdsch_rnti_type = %d, num_layers = %d\n",
      I(version), I(v[B887_NUM_RECORDS]), I(v[B887_NUM_STATUS]), I(v[B887_MOD]), I(v[B887_MCS]),
      I(v[B887_RNTI]), I(layers));
  if (v[B887_NUM_RECORDS] == 0) return modem_stats_not_valid(v[B887_NUM_RECORDS], __func__);
  const int64_t n = v[B887_NUM_STATUS];
  if (!modem_stats_log_records_fit(row->entry_start, n, B887_ENTRY_SIZE)) {
    return modem_stats_not_valid(n, __func__);
  }

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4),
       modem_stats_pk_int("num_records", v[B887_NUM_RECORDS], 1),
       modem_stats_pk_int("num_pdsch_status", n, 1), modem_stats_pk_int("mod_type", v[B887_MOD], 1),
       modem_stats_pk_int("mcs", v[B887_MCS], 1),
       modem_stats_pk_int("pdsch_rnti_type", v[B887_RNTI], 1),
       modem_stats_pk_int("num_layers", layers, 1)},
      87, stat_id, record);
}

bool modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats(uint32_t *stat_id,
                                                          modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b888, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B888_N];
  if (!modem_stats_nr5g_read(row->f[B888_NUM_RECORDS], 0, &v[B888_NUM_RECORDS], 1)) return false;
  if (!modem_stats_nr5g_read_all(std::span(row->f + B888_PDCP, B888_N - B888_PDCP),
                                 row->record_start, v + B888_PDCP)) {
    return false;
  }

  modem_stats_printf(
      "version = %d, num_records = %d, num_pdcp_decode = %d, num_crc_fail = %d, tb_bytes = %lu\n",
      I(version), I(v[B888_NUM_RECORDS]), I(v[B888_PDCP]), I(v[B888_CRC]),
      static_cast<unsigned long>(v[B888_TB_BYTES]));
  const int64_t n = v[B888_NUM_RECORDS];
  if (!modem_stats_log_records_fit(row->record_start, n, B888_RECORD_SIZE)) {
    return modem_stats_not_valid(n, __func__);
  }

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("num_records", n, 1),
       modem_stats_pk_int("num_pdcp_decode", v[B888_PDCP], 4),
       modem_stats_pk_int("num_crc_fail", v[B888_CRC], 4),
       modem_stats_pk_int("tb_bytes", v[B888_TB_BYTES], 8)},
      88, stat_id, record);
}

bool modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt(uint32_t *stat_id,
                                                           modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b88a, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B88A_N] = {0, 0, B88A_NOT_CARRIED, B88A_NOT_CARRIED};
  if (!modem_stats_nr5g_read_all(std::span(row->f, B88A_T_RNTI), 0, v)) return false;
  if (v[B88A_BITMASK] & B88A_HAS_MSG2) {
    int msg2 = row->blocks + ((v[B88A_BITMASK] & B88A_HAS_MSG1) ? row->msg1_size : 0);
    if (!modem_stats_nr5g_read_all(std::span(row->f + B88A_T_RNTI, 2), msg2, v + B88A_T_RNTI)) {
      return false;
    }
  }

  modem_stats_printf(
      "sub_id = %d, version = %d, rach_msg_bitmask = %d, t_rnti = %d, ta = %d, rach_result = %d\n",
      0, I(version), I(v[B88A_BITMASK]), I(v[B88A_T_RNTI]), I(v[B88A_TA]), I(v[B88A_RESULT]));
  if (v[B88A_RESULT] >= B88A_NO_RESULT) return modem_stats_not_valid(v[B88A_RESULT], __func__);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("ta", v[B88A_TA], 2)}, 86,
      stat_id, record);
}

bool modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report(uint32_t *stat_id,
                                                         modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b8a7, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B8A7_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf(
      "version = %d, num_records = %d, metrics_ri = %d, metrics_cqi = %d, bitwidth_ri = %d, "
      "bitwidth_cqi = %d\n",
      I(version), I(v[B8A7_NUM_RECORDS]), I(v[B8A7_RI]), I(v[B8A7_CQI]), I(v[B8A7_BW_RI]),
      I(v[B8A7_BW_CQI]));
  if (v[B8A7_NUM_RECORDS] == 0) return modem_stats_not_valid(v[B8A7_NUM_RECORDS], __func__);
  if (v[B8A7_QUANTITY] != B8A7_CSI_REPORT) return modem_stats_not_valid(v[B8A7_QUANTITY], __func__);

  return modem_stats_log_pack({modem_stats_pk_int("version", version, 4),
                               modem_stats_pk_int("num_records", v[B8A7_NUM_RECORDS], 1),
                               modem_stats_pk_int("metrics_ri", v[B8A7_RI], 1),
                               modem_stats_pk_int("metrics_cqi", v[B8A7_CQI], 1),
                               modem_stats_pk_int("bitwidth_ri", v[B8A7_BW_RI], 1),
                               modem_stats_pk_int("bitwidth_cqi", v[B8A7_BW_CQI], 1)},
                              89, stat_id, record);
}
