// Golden packets of the NR5G log parsers. Payloads are drawn field by field
// (P+n = payload byte n, the version word at P+0); everything not drawn is 0.
// Versions that share a layout share a vector, run once under each.
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "modem_stats/logs/golden.h"
#include "modem_stats/logs/golden_build.h"
#include "modem_stats/modem_stats_cursor.h"

namespace {

// A payload of the full readable area with the version word at P+0.
golden_payload pkt(uint32_t version) {
  return golden_payload(MODEM_STATS_READABLE_LEN).le(0, version, 4);
}
golden_payload fill(golden_payload p, size_t from, size_t to, uint8_t v) {
  for (size_t i = from; i < to; ++i) p.le(i, v, 1);
  return p;
}
golden_record rec(uint32_t version) { return golden_record().u32(version); }
std::string v(uint32_t version) { return "version = " + std::to_string(version) + ", "; }
std::string hex(uint32_t version) { return golden_fmt("v0x%x", version); }

const char *const B872 = "modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb";
const char *const B884 = "modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl";
const char *const B885 = "modem_stats_parse_b885_diag_log_nr5g_mac_dci_info";
const char *const B887 = "modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status";
const char *const B888 = "modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats";
const char *const B88A = "modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt";
const char *const B8A7 = "modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report";
const char *const B8C9 = "modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc";
const char *const B8D2 = "modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power";
const char *const B97F = "modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext";
const char *const B981 = "modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information";

// The same serving cell at each version's positions:
//   pci 501 | dl_arfcn 627264 | cgi 0x123456789a | mcc 310 | mnc_num 3 | mnc 260
//   tac 0xabcdef | band 77
// The vectors are laid out as tables, one drawing per line where it fits.
// clang-format off
golden_payload b823_cell(uint32_t version, std::array<int, 8> at) {
  const auto [pci, arfcn, cgi, mcc, mnc_num, mnc, tac, band] = at;
  return pkt(version).le(pci, 501, 2).le(arfcn, 627264, 4).le(cgi, 0x123456789a, 8)
      .le(mcc, 310, 2).le(mnc_num, 3, 1).le(mnc, 260, 2).le(tac, 0xabcdef, 4).le(band, 77, 2);
}
golden_record b823_record(uint32_t version) {
  return rec(version).u(501, 2).u(627264, 4).u(0x123456789a, 8).u(310, 2).u(3, 1).u(260, 2)
      .u(0xabcdef, 4).u(77, 2);
}

std::vector<modem_stats_golden> make() {
  std::vector<modem_stats_golden> g;

  // ---- 0xB823 serving cell ----
  //            pci   arfcn  cgi   mcc   mnc_num  mnc   tac   band
  //   0x4       P+4   P+6    P+18  P+26  P+28     P+29  P+32  P+36
  //   0x30000   P+4   P+14   P+26  P+34  P+36     P+37  P+40  P+44
  //   0x30002/3 P+7   P+17   P+29  P+37  P+39     P+40  P+43  P+47
  const std::string b823 =
      "mcc = 310, mnc_num 3, mnc 260, tac 11259375, cgi 78187493530, pci 501\n";
  const std::pair<uint32_t, std::array<int, 8>> b823_places[] = {
      {0x4, {4, 6, 18, 26, 28, 29, 32, 36}}, {0x30000, {4, 14, 26, 34, 36, 37, 40, 44}},
      {0x30002, {7, 17, 29, 37, 39, 40, 43, 47}}, {0x30003, {7, 17, 29, 37, 39, 40, 43, 47}}};
  for (const auto &[ver, at] : b823_places) {
    g.push_back({0xB823, hex(ver), b823_cell(ver, at), v(ver) + b823, 130, b823_record(ver)});
  }

  // ---- 0xB825 configuration ----
  //   0x8/0xA/0x20000: P+58 groups | P+59 active_cc | P+60 active_rb (no NR-DC counts)
  //   0x30003 P+66..70, 0x30004/6 P+67..71: groups, NR-DC groups, active cc,
  //   NR-DC active cc, active rb
  auto b825 = [&](uint32_t ver, const std::string &what, golden_payload p, std::array<int, 5> n) {
    g.push_back({0xB825, what, p, v(ver) + golden_fmt("num_contiguous_cc_groups = %d, "
        "num_nrdc_scg_contiguous_cc_groups = %d, num_active_cc = %d, num_nrdc_scg_active_cc = %d, "
        "num_active_rb = %d\n", n[0], n[1], n[2], n[3], n[4]),
        97, rec(ver).u(n[0], 1).u(n[1], 1).u(n[2], 1).u(n[3], 1).u(n[4], 1)});
  };
  for (uint32_t ver : {0x8u, 0xAu, 0x20000u}) {
    b825(ver, hex(ver) + " ignores the later bytes",
         fill(pkt(ver), 61, 72, 9).le(58, 1, 1).le(59, 2, 1).le(60, 4, 1), {1, 0, 2, 0, 4});
  }
  b825(0x30003, "v0x30003", pkt(0x30003).le(66, 1, 1).le(67, 2, 1).le(68, 3, 1).le(69, 4, 1)
       .le(70, 5, 1), {1, 2, 3, 4, 5});
  for (uint32_t ver : {0x30004u, 0x30006u}) {
    b825(ver, hex(ver), pkt(ver).le(66, 7, 1).le(67, 2, 1).le(68, 1, 1).le(69, 3, 1).le(70, 1, 1)
         .le(71, 5, 1), {2, 1, 3, 1, 5});
  }

  // ---- 0xB872 uplink transport blocks ----
  // 0x30008: P+4 num_tti u8; TTIs from P+8: +2 SFN (10 bits) | +4 TB count (4 bits) | TBs:
  //   +4 grant u32 | +8 build u32 | +20 MCE length (6 bits) | 24 + MCE bytes long
  //   TTI 0 @8  SFN 100 (upper bits set), 1 TB @16: grant 1000, build 900, 3 MCE bytes
  //   TTI 1 @43 SFN 101, no TB
  //   TTI 2 @51 SFN 102, TB @59: grant 500, build 500; TB @83: grant 300, build 100
  g.push_back({0xB872, "v0x30008 three TTIs, one without grant",
      pkt(0x30008).le(4, 3, 1)
          .le(10, 0xfc64, 2).le(12, 0x21, 1).le(20, 1000, 4).le(24, 900, 4).le(36, 0xc3, 1)
          .le(45, 101, 2).le(47, 0, 1)
          .le(53, 102, 2).le(55, 2, 1).le(63, 500, 4).le(67, 500, 4).le(87, 300, 4)
          .le(91, 100, 4).le(107, 0xee, 1),
      "NR5G FSSR: [100][102], grant = 1800, build = 1500, sfn_grant = 66.67, sfn_full = 83.33\n",
      115, rec(0x30008).u(100, 2).u(102, 2).u(1800, 4).u(1500, 4).f32(200.0f / 3).f32(250.0f / 3)});
  // 0x4: P+4 bits 0-3 num_tti; TBs are 20 + MCE bytes, MCE length at TB+16.
  //   TTI 0 @8 SFN 1023, 2 TBs: @16 grant 10, build 10, 2 MCE bytes; @38 grant 30, build 20
  g.push_back({0xB872, "v0x4 TB size and MCE bytes",
      pkt(0x4).le(4, 0xf1, 1).le(10, 0x3ff, 2).le(12, 2, 1).le(20, 10, 4).le(24, 10, 4)
          .le(32, 2, 1).le(42, 30, 4).le(46, 20, 4),
      "NR5G FSSR: [1023][1023], grant = 40, build = 30, sfn_grant = 100.00, sfn_full = 75.00\n",
      115, rec(0x4).u(1023, 2).u(1023, 2).u(40, 4).u(30, 4).f32(100.0f).f32(75.0f)});
  g.push_back(golden_gated(0xB872, "no TTI", pkt(0x30008),
      "NR5G FSSR: [0][0], grant = 0, build = 0, sfn_grant = 0.00, sfn_full = 0.00\n", 0, B872));
  // Every byte 0xff: 255 TTIs of 15 TBs of 87 bytes; the walk leaves the
  // readable area in TTI 1 (after 15 + 8 TBs, sums wrap in 32 bits).
  g.push_back(golden_gated(0xB872, "runs out of the readable area",
      fill(pkt(0x30008), 4, 2000, 0xff),
      "NR5G FSSR: [1023][1023], grant = -23, build = -23, sfn_grant = 0.78, sfn_full = 100.00\n",
      255, B872));

  // ---- 0xB884 uplink power control ----
  // P+7 num_records | 32-byte records from P+8: +4 num_carriers |
  //   +8 pusch | +10 pucch | +12 srs | +14 prach (s16 dBm)
  const std::string b884_zero = "num_carriers = 0, tx_power_pusch = 0, tx_power_pucch = 0, "
                                "tx_power_srs = 0, tx_power_prach = 0\n";
  g.push_back({0xB884, "v0x30005 signed powers",
      pkt(0x30005).le(7, 2, 1).le(12, 1, 1).le(16, 23, 2).le(18, 0xfffb, 2).le(20, 10, 2)
          .le(22, 0xffd8, 2),
      "version = 196613, num_records = 2, num_carriers = 1, tx_power_pusch = 23, "
      "tx_power_pucch = -5, tx_power_srs = 10, tx_power_prach = -40\n",
      90, rec(0x30005).u(2, 1).u(1, 1).u(23, 2).u(0xfffb, 2).u(10, 2).u(0xffd8, 2)});
  // 62 records end at P+1992; 63 would not fit.
  g.push_back(golden_gated(0xB884, "63 records cannot fit", pkt(0x30005).le(7, 63, 1),
                           "version = 196613, num_records = 63, " + b884_zero, 63, B884));
  g.push_back({0xB884, "62 records fit", pkt(0x30005).le(7, 62, 1),
      "version = 196613, num_records = 62, " + b884_zero, 90,
      rec(0x30005).u(62, 1).u(0, 1).u(0, 8)});

  // ---- 0xB885 DCI ----
  // 0x20005: P+15 num_records | P+20 DCI count | DCIs from P+24: u16 header (format bits 7-8)
  //   + 2 bytes, then uplink body (28 bytes: mcs_ul bits 7-11 @12, rb u16 @16) or downlink
  //   body (8 bytes: mcs_dl bits 6-10 @0).
  //   DCI @24 format 2 (DL) mcs_dl 27 | DCI @36 format 1 (UL) mcs_ul 17, rb 273 |
  //   DCI @68 format 3 mcs_dl 5 (not the first downlink DCI)
  g.push_back({0xB885, "v0x20005 mixed DCIs",
      pkt(0x20005).le(15, 1, 1).le(20, 3, 1)
          .le(24, 2 << 7, 2).le(28, 27 << 6, 2)
          .le(36, 1 << 7, 2).le(52, 17 << 7, 3).le(56, 273, 2)
          .le(68, 3 << 7, 2).le(72, 5 << 6, 2),
      "version = 131077, num_records = 1, mcs_dl = 27, mcs_ul = 17, rb_assi_num = 273\n",
      85, rec(0x20005).u(1, 1).u(27, 1).u(17, 1).u(273, 4)});
  // 0x30009: P+7 num_records | P+8 uplink DCI count | uplink DCIs (40 bytes) from P+16,
  //   then downlink ones (32 bytes); bodies at DCI+4: mcs_ul bits 0-4 @17,
  //   rb bits 0-18 @20; mcs_dl bits 0-4 @12.
  //   UL DCI @16: mcs 9, rb 300000 (bits above 18 set) | DL DCI @56: mcs 30 (bit 5 set)
  g.push_back({0xB885, "v0x30009 uplink then downlink",
      pkt(0x30009).le(7, 1, 1).le(8, 1, 1).le(37, 9, 1).le(40, 0xfc93e0, 3).le(72, 0x3e, 1),
      "version = 196617, num_records = 1, mcs_dl = 30, mcs_ul = 9, rb_assi_num = 300000\n",
      85, rec(0x30009).u(1, 1).u(30, 1).u(9, 1).u(300000, 4)});
  g.push_back(golden_gated(0xB885, "no record", pkt(0x30009),
      "version = 196617, num_records = 0, mcs_dl = 0, mcs_ul = 0, rb_assi_num = 0\n", 0, B885));
  // 50 uplink DCIs of 40 bytes from P+16 end past the readable area.
  g.push_back(golden_gated(0xB885, "uplink DCIs cannot fit", pkt(0x30009).le(7, 1, 1).le(8, 50, 1),
      "version = 196617, num_records = 1, mcs_dl = 0, mcs_ul = 0, rb_assi_num = 0\n", 50, B885));

  // ---- 0xB887 PDSCH status ----
  // 0x30003: P+7 num_records | P+12 num_pdsch_status | entry from P+16; 0x5: P+15, P+20, P+24.
  //   entry: u32 @8 bits 26-30 mcs | u32 @12 bits 18-21 rnti type, bits 29-30 layers - 1 |
  //   @18 bits 0-3 mod
  g.push_back({0xB887, "v0x30003",
      pkt(0x30003).le(7, 1, 1).le(12, 2, 1).le(24, 27u << 26, 4)
          .le(28, (3u << 18) | (1u << 29), 4).le(34, 0xf9, 1),
      "version = 196611, num_records = 1, num_pdsch_status = 2, mod_type = 9, mcs = 27, "
      "pdsch_rnti_type = 3, num_layers = 2\n",
      87, rec(0x30003).u(1, 1).u(2, 1).u(9, 1).u(27, 1).u(3, 1).u(2, 1)});
  g.push_back({0xB887, "v0x5",
      pkt(0x5).le(15, 2, 1).le(20, 1, 1).le(32, 4u << 26, 4).le(36, 3u << 29, 4).le(42, 12, 1),
      "version = 5, num_records = 2, num_pdsch_status = 1, mod_type = 12, mcs = 4, "
      "pdsch_rnti_type = 0, num_layers = 4\n",
      87, rec(0x5).u(2, 1).u(1, 1).u(12, 1).u(4, 1).u(0, 1).u(4, 1)});
  const std::string b887_zero = ", mod_type = 0, mcs = 0, pdsch_rnti_type = 0, num_layers = 1\n";
  g.push_back(golden_gated(0xB887, "no status entry", pkt(0x5).le(15, 1, 1),
      "version = 5, num_records = 1, num_pdsch_status = 0" + b887_zero, 0, B887));
  g.push_back(golden_gated(0xB887, "entries cannot fit", pkt(0x5).le(15, 1, 1).le(20, 255, 1),
      "version = 5, num_records = 1, num_pdsch_status = 255" + b887_zero, 255, B887));

  // ---- 0xB888 PDSCH statistics ----
  // 0x20002: P+15 num_records | 72-byte records from P+28: +8 pdcp u32 | +16 crc u32 |
  //   +48 tb_bytes u64
  // 0x30000: P+7, records from P+20 | 0x30001: no count, one record at P+16: +12, +20, +52
  auto b888 = [](uint32_t ver, int records, int pdcp, int crc, unsigned long long bytes) {
    return v(ver) + golden_fmt("num_records = %d, num_pdcp_decode = %d, num_crc_fail = %d, "
                               "tb_bytes = %llu\n", records, pdcp, crc, bytes);
  };
  g.push_back({0xB888, "v0x20002 64-bit byte count",
      pkt(0x20002).le(15, 1, 1).le(36, 1200, 4).le(44, 3, 4).le(76, 0x100000005, 8),
      b888(0x20002, 1, 1200, 3, 0x100000005), 88,
      rec(0x20002).u(1, 1).u(1200, 4).u(3, 4).u(0x100000005, 8)});
  g.push_back({0xB888, "v0x30001 one record, no count",
      pkt(0x30001).le(28, 7, 4).le(36, 0, 4).le(68, 123456, 8), b888(0x30001, 1, 7, 0, 123456), 88,
      rec(0x30001).u(1, 1).u(7, 4).u(0, 4).u(123456, 8)});
  g.push_back(golden_gated(0xB888, "v0x30000 no record", pkt(0x30000).le(28, 7, 4)
      .le(68, 123456, 8), b888(0x30000, 0, 7, 0, 123456), 0, B888));
  // 27 records from P+28 end at P+1972; 28 would not fit.
  g.push_back(golden_gated(0xB888, "28 records cannot fit", pkt(0x20002).le(15, 28, 1),
      b888(0x20002, 28, 0, 0, 0), 28, B888));

  // ---- 0xB88A random access ----
  // 0x20003/6/7/9: P+21 rach_result | P+23 bitmask | blocks from P+28: Msg1 28 bytes,
  //   Msg2 12 bytes (+6 t_rnti, +8 ta). 0x30000/5: P+14, P+16, P+24, Msg1 36 bytes.
  auto b88a = [](uint32_t ver, int mask, int t_rnti, int ta, int result) {
    return "sub_id = 0, " + v(ver) + golden_fmt("rach_msg_bitmask = %d, t_rnti = %d, ta = %d, "
                                                "rach_result = %d\n", mask, t_rnti, ta, result);
  };
  for (uint32_t ver : {0x20006u, 0x20007u, 0x20009u}) {
    g.push_back({0xB88A, hex(ver) + " Msg1 and Msg2",
        pkt(ver).le(21, 0, 1).le(23, 3, 1).le(62, 0x4601, 2).le(64, 12, 2),
        b88a(ver, 3, 17921, 12, 0), 86, rec(ver).u(12, 2)});
  }
  g.push_back({0xB88A, "v0x30005 Msg2 without Msg1", pkt(0x30005).le(14, 1, 1).le(16, 2, 1)
      .le(30, 100, 2).le(32, 31, 2).le(66, 999, 2).le(68, 999, 2), b88a(0x30005, 2, 100, 31, 1),
      86, rec(0x30005).u(31, 2)});
  g.push_back({0xB88A, "v0x20003 without Msg2", pkt(0x20003).le(23, 1, 1).le(62, 5, 2).le(64, 5, 2),
      b88a(0x20003, 1, 65535, 65535, 0), 86, rec(0x20003).u(65535, 2)});
  g.push_back(golden_gated(0xB88A, "v0x30000 no result", pkt(0x30000).le(14, 255, 1),
      b88a(0x30000, 0, 65535, 65535, 255), 255, B88A));

  // ---- 0xB8A7 CSI report ----
  // P+7 (0x30005) / P+15 (0x20001) num_records | P+26 report quantity (23 = CSI) |
  //   pb 259 metrics_ri (2) | pb 261 metrics_cqi (4, crosses into P+33) | pb 643 bitwidth_ri (2) |
  //   pb 650 bitwidth_cqi (3)
  g.push_back({0xB8A7, "v0x30005 CSI report",
      pkt(0x30005).le(7, 1, 1).le(26, 23, 1).bits(259, 1, 2).bits(261, 13, 4)
          .bits(643, 2, 2).bits(650, 4, 3),
      "version = 196613, num_records = 1, metrics_ri = 1, metrics_cqi = 13, bitwidth_ri = 2, "
      "bitwidth_cqi = 4\n",
      89, rec(0x30005).u(1, 1).u(1, 1).u(13, 1).u(2, 1).u(4, 1)});
  g.push_back(golden_gated(0xB8A7, "v0x20001 not a CSI report",
      pkt(0x20001).le(15, 2, 1).le(26, 22, 1).bits(259, 3, 2),
      "version = 131073, num_records = 2, metrics_ri = 3, metrics_cqi = 0, bitwidth_ri = 0, "
      "bitwidth_cqi = 0\n", 22, B8A7));

  // ---- 0xB8C9 AGC ----
  // P+16 code (4 = AGC) | P+17 block size: chains = (size - 16) / 32, at most 4 |
  //   P+20 bits 0-3 version_agc_sub | chain e: s16 raw RSSI at P+32+32e, (raw - 4096) / 8 dB
  g.push_back({0xB8C9, "v0x30001 two chains",
      pkt(0x30001).le(16, 4, 1).le(17, 80, 1).le(20, 0xa3, 1).le(32, 3616, 2).le(64, 3600, 2)
          .le(96, 1000, 2),
      "version = 196609, version_agc_sub = 3, code = 4, only support code - 4\n", 94,
      rec(0x30001).f32(-60.0f).f32(-62.0f).f32(0.0f).f32(0.0f)});
  g.push_back({0xB8C9, "v0x20000 chains capped at four, negative raw",
      pkt(0x20000).le(16, 4, 1).le(17, 255, 1).le(32, 4096, 2).le(64, 4100, 2)
          .le(96, 0xfff8, 2).le(128, 4016, 2).le(160, 1234, 2),
      "version = 131072, version_agc_sub = 0, code = 4, only support code - 4\n", 94,
      rec(0x20000).f32(0.0f).f32(0.5f).f32(-513.0f).f32(-10.0f)});
  g.push_back(golden_gated(0xB8C9, "not the AGC code", pkt(0x20000).le(16, 5, 1).le(17, 48, 1),
      "version = 131072, version_agc_sub = 0, code = 5, only support code - 4\n", 5, B8C9));

  // ---- 0xB8D2 transmit power ----
  // P+4 version_power | P+5 loop_num | 8-byte entries from P+8: +1 channel (0 PUSCH) |
  //   +2 pusch_tx s16 | +4 path loss u16 | +6 mtpl s16; the first PUSCH entry counts
  g.push_back({0xB8D2, "first PUSCH entry",
      pkt(0x20000).le(4, 2, 1).le(5, 3, 1)
          .le(9, 1, 1).le(10, 5, 2).le(12, 6, 2).le(14, 7, 2)
          .le(17, 0, 1).le(18, 0xfffd, 2).le(20, 110, 2).le(22, 23, 2)
          .le(25, 0, 1).le(26, 9, 2).le(28, 9, 2).le(30, 9, 2),
      "version = 131072, version_power = 2, loop_num = 3, pusch_tx = -3, pusch_path_loss = 110, "
      "pusch_mtpl = 23\n",
      99, rec(0x20000).u(2, 1).u(3, 1).u(0xfffd, 2).u(110, 2).u(23, 2)});
  const std::string b8d2_zero = "pusch_tx = 0, pusch_path_loss = 0, pusch_mtpl = 0\n";
  g.push_back({0xB8D2, "no PUSCH entry",
      pkt(0x20000).le(4, 2, 1).le(5, 1, 1).le(9, 2, 1).le(10, 5, 2),
      "version = 131072, version_power = 2, loop_num = 1, " + b8d2_zero,
      99, rec(0x20000).u(2, 1).u(1, 1).u(0, 6)});
  g.push_back(golden_gated(0xB8D2, "no entry", pkt(0x20000).le(4, 2, 1),
      "version = 131072, version_power = 2, loop_num = 0, " + b8d2_zero, 0, B8D2));
  // 249 entries end at P+2000; 250 would not fit.
  g.push_back(golden_gated(0xB8D2, "250 entries cannot fit",
      fill(pkt(0x20000), 8, 2000, 1).le(5, 250, 1),
      "version = 131072, version_power = 0, loop_num = 250, " + b8d2_zero, 250, B8D2));

  // ---- 0xB8D8 / 0xB8DD serving SNR ----
  // Raw u32 per chain (x / 1024 as a power ratio): 1024 = 0 dB, 10240 = 10 dB, 0 = no value
  // (65535), 2^31 = 63.22 dB. 0xB8D8: P+12..P+24, printed raw; 0xB8DD: P+76..P+88, printed in dB.
  g.push_back({0xB8D8, "v0x30002",
      pkt(0x30002).le(12, 1024, 4).le(16, 10240, 4).le(20, 0, 4).le(24, 0x80000000, 4),
      "version = 196610, snr0 = 1024, snr1 = 10240, snr2 = 0, snr3 = -2147483648\n", 137,
      rec(0x30002).f32(0.0f).f32(10.0f).f32(65535.0f).f32(63.22f)});
  g.push_back({0xB8DD, "v0x7",
      pkt(0x7).le(12, 1, 4).le(76, 1024, 4).le(80, 10240, 4).le(84, 0, 4).le(88, 512, 4),
      "version = 7, snr0 = 0.00, snr1 = 10.00, snr2 = 65535.00, snr3 = -3.01\n", 112,
      rec(0x7).f32(0.0f).f32(10.0f).f32(65535.0f).f32(-3.01f)});

  // ---- 0xB975 serving beam ----
  // P+12 rsrp_i s32 | P+16 rsrq_i s32, both 1/128 dB
  g.push_back({0xB975, "v0x20001",
      pkt(0x20001).le(12, static_cast<uint32_t>(-12817), 4).le(16, static_cast<uint32_t>(-1409), 4),
      "version = 131073, rsrp_i = -12817, rsrq_i = -1409, rsrp = -100.13, rsrq = -11.01\n",
      91, rec(0x20001).f32(-100.13f).f32(-11.01f)});

  // ---- 0xB97F measurement database ----
  // P+4 num_layers | first layer from P+16: +0 arfcn u32 | +5 serving cell index | +6 pci u16 |
  //   +12 / +16 serving RSRP rx0 / rx1 s32 (1/128 dB, unrounded; 0 = no value)
  g.push_back({0xB97F, "serving cell 0",
      pkt(0x20007).le(4, 1, 1).le(16, 431070, 4).le(20, 2, 1).le(21, 0, 1).le(22, 988, 2)
          .le(28, static_cast<uint32_t>(-14388), 4),
      "version = 131079, num_layers = 1\n", 139,
      rec(0x20007).u(1, 1).u(431070, 4).u(988, 2).f32(-112.40625f).f32(65535.0f)});
  g.push_back({0xB97F, "no serving cell",
      pkt(0x20007).le(4, 2, 1).le(16, 156510, 4).le(21, 255, 1).le(22, 0xffff, 2),
      "version = 131079, num_layers = 2\n", 140,
      rec(0x20007).u(2, 1).u(156510, 4).u(0xffff, 2).f32(65535.0f).f32(65535.0f)});
  g.push_back(golden_gated(0xB97F, "no layer", pkt(0x20007), "version = 131079, num_layers = 0\n",
      0, B97F));

  // ---- 0xB981 flow control ----
  // P+4 state_last | P+5 state_current | P+6 num_action |
  //   action from P+8: type, level_last, level_current
  g.push_back({0xB981, "v0x20000",
      pkt(0x20000).le(4, 1, 1).le(5, 2, 1).le(6, 1, 1).le(8, 3, 1).le(9, 4, 1).le(10, 5, 1),
      "version = 131072, state_last = 1, state_current = 2, num_action = 1, action_type = 3, "
      "level_last = 4, level_current = 5\n",
      145, rec(0x20000).u(1, 1).u(2, 1).u(1, 1).u(3, 1).u(4, 1).u(5, 1)});
  g.push_back(golden_gated(0xB981, "no action", pkt(0x20000).le(4, 1, 1).le(5, 2, 1),
      "version = 131072, state_last = 1, state_current = 2, num_action = 0, action_type = 0, "
      "level_last = 0, level_current = 0\n", 0, B981));

  // ---- 0xB98F antenna switch diversity ----
  // Six 24-byte chain blocks from P+32 (rx 0..3, tx 0..1): old antenna at +20, new at +23
  golden_payload b98f = pkt(0x20002);
  golden_record b98f_rec = rec(0x20002);
  for (int i = 0; i < 6; ++i) {
    b98f.le(32 + 24 * i + 20, 2 * i + 1, 1).le(32 + 24 * i + 23, 2 * i + 2, 1);
    b98f_rec.u(2 * i + 1, 1).u(2 * i + 2, 1);
  }
  g.push_back({0xB98F, "v0x20002", b98f,
      "version = 131074, ant_rx_0_old = 1, ant_rx_0_new = 2, ant_rx_1_old = 3, "
      "ant_rx_1_new = 4, ant_rx_2_old = 5, ant_rx_2_new = 6\n",
      113, b98f_rec});
  return g;
}
// clang-format on

}  // namespace

std::span<const modem_stats_golden> modem_stats_golden_nr() {
  static const std::vector<modem_stats_golden> goldens = make();
  return goldens;
}
