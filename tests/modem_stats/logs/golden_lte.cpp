// Golden packets of the IMS, WCDMA, GSM and LTE log parsers. Each vector is
// written from the packet layout drawn beside it; P+n is payload byte n, pb n
// payload bit n. Refusals are counted from 0, so they print not_support_num(1).
#include <array>
#include <string>
#include <vector>

#include "modem_stats/logs/golden.h"
#include "modem_stats/logs/golden_build.h"

namespace {

// Packets and vectors are laid out as tables, one drawing per line where it fits.
// clang-format off

using G = std::vector<modem_stats_golden>;
using P = golden_payload;
using R = golden_record;
constexpr uint32_t kNone = kGoldenNoRecord;

// A packet holding nothing but an unaccepted version byte.
modem_stats_golden refusal(uint16_t code, int version, const char *name) {
  return golden_refusal(code, golden_fmt("v%d refused", version), P(1).le(0, version, 1), version,
                        name);
}

// Session packets: P+0 version | P+1 L1 | L1 bytes | direction | L2 | L2 bytes
// call type(4) | L3 | L3 bytes | L4 | L4 bytes | cause(2) | delay(4) | rat, with
// S = L1+L2+L3+L4 the cause sits at P+10+S. Here: "123", direction 1, "ab",
// call type 1, "sip:" (originating url), "xy" (terminating url), delay 1500, rat 3.
P session_with_strings(int version, int cause) {
  return P(40).le(0, version, 1).le(1, 3, 1).text(2, "123").le(5, 1, 1).le(6, 2, 1).text(7, "ab")
      .le(9, 1, 4).le(13, 4, 1).text(14, "sip:").le(18, 2, 1).text(19, "xy").le(21, cause, 2)
      .le(23, 1500, 4).le(27, 3, 1);
}
P session_empty(int version, int cause, uint32_t delay, int rat) {
  return P(20).le(0, version, 1).le(10, cause, 2).le(12, delay, 4).le(16, rat, 1);
}
// A session packet's summary and record: version, direction, `cause` (result
// or end_cause), call_setup_delay, rat and the two url lengths.
modem_stats_golden session(uint16_t c, const char *what, P p, const char *cause, uint32_t stat_id,
                           std::array<unsigned, 7> f) {
  return {c, what, p, golden_fmt("version = %u, direction = %u, %s = %u, call_setup_delay = %u, "
                                 "rat = %u, originating_url_len = %u, terminating_url_len = %u\n",
                                 f[0], f[1], cause, f[2], f[3], f[4], f[5], f[6]),
          stat_id, R().u8(f[0]).u8(f[1]).u16(f[2]).u32(f[3]).u8(f[4]).u8(f[5]).u8(f[6])};
}

// Serving cell measurements: P+0 1 | P+4 25 | P+5 sub-version | P+8 earfcn(4)
// P+12 num_cells(2) | P+14 rx_valid(2) | first cell at C (P+16, or P+20 from sub v48)
//   C+0 u16: pci bits 0-8, srv_cell_idx 9-11, is_srv_cell 12
//   RSRP rx0 C+16 b10, rx1 C+20 b12, rx2 C+24 b12, rx3 C+R3 b0 (12 bits each)
//   RSRQ rx0 C+Q b0, rx1 C+Q b20, rx2 C+Q+4 b10, rx3 C+Q+4 b20 (10 bits)
//   RSSI rx0 C+S b0, rx1 C+S b11, rx2/rx3 the same at C+S+4 (11 bits)
//   SNR rx0 C+N b0, rx1 C+N b9, rx2/rx3 the same at C+N+4 (9 bits)
struct meas_place {
  int sub_version, cell, r3, q, s, snr;
};
constexpr meas_place kV36{36, 16, 28, 36, 48, 80};
constexpr meas_place kV40{40, 16, 32, 40, 52, 84};
constexpr meas_place kV48{48, 20, 32, 40, 52, 92};
constexpr meas_place kV50{50, 20, 32, 40, 52, 92};

// Raw values of chain i: RSRP 1280 + 16i (-100 + i dB), RSRQ 320 + 8i
// (-10 + i/2 dB), RSSI 640 + 16i (-70 + i dB), SNR 300 + 10i (10 + i dB).
P srv_meas(const meas_place &m, int earfcn, int cells, int rx_valid, int pci, int idx, int serving,
           bool measured = true) {
  P p(700);
  p.le(0, 1, 1).le(1, 1, 1).le(4, 25, 1).le(5, m.sub_version, 1).le(8, earfcn, 4);
  p.le(12, cells, 2).le(14, rx_valid, 2).le(m.cell, pci | idx << 9 | serving << 12, 2);
  if (!measured) return p;
  auto at = [&](int byte, int bit) { return 8 * (m.cell + byte) + bit; };
  const int rsrp[4][2] = {{16, 10}, {20, 12}, {24, 12}, {m.r3, 0}};
  const int rsrq[4][2] = {{m.q, 0}, {m.q, 20}, {m.q + 4, 10}, {m.q + 4, 20}};
  const int rssi[4][2] = {{m.s, 0}, {m.s, 11}, {m.s + 4, 0}, {m.s + 4, 11}};
  const int snr[4][2] = {{m.snr, 0}, {m.snr, 9}, {m.snr + 4, 0}, {m.snr + 4, 9}};
  for (int i = 0; i < 4; ++i) {
    p.bits(at(rsrp[i][0], rsrp[i][1]), 1280 + 16 * i, 12);
    p.bits(at(rsrq[i][0], rsrq[i][1]), 320 + 8 * i, 10);
    p.bits(at(rssi[i][0], rssi[i][1]), 640 + 16 * i, 11);
    p.bits(at(snr[i][0], snr[i][1]), 300 + 10 * i, 9);
  }
  return p;
}

R srv_meas_record(int sub_version, int earfcn, int pci, int serving, int rx_valid,
                  bool measured = true) {
  R r;
  r.u8(sub_version).u8(1).u32(earfcn).u16(pci).u8(serving).u16(rx_valid);
  for (int i = 0; i < 4; ++i) {
    if (measured) {
      r.f32(-100.0f + i).f32(-10.0f + 0.5f * i).f32(-70.0f + i).f32(10.0f + i);
    } else {
      r.f32(-180.0f).f32(-30.0f).f32(-110.0f).f32(-20.0f);
    }
  }
  return r;
}

// ---- IMS ---------------------------------------------------------------------------

G ims_rtp() {
  const auto [c, n] = golden_parser(0x1568, "ims_rtp_sn_and_payload");
  return {
      // P+0 version 13 | P+13 codec_type | P+22 frame_type; neighbours hold junk
      {c, "v13",
       P(24).le(0, 13, 1).le(12, 0xaa, 1).le(13, 5, 1).le(14, 0xbb, 1).le(21, 0xcc, 1).le(22, 3, 1)
           .le(23, 0xdd, 1),
       "version = 13, codec_type = 5, frame_type = 3\n", 136, R().u8(13).u8(5).u8(3)},
      refusal(c, 12, n),
  };
}

// A SIP message packet: its summary and record carry direction, sdp_presence,
// sip_call_id_len, sip_msg_len, sip_msg_logged_bytes and msg_id, then the call id.
modem_stats_golden sip(uint16_t c, const char *what, P p, std::array<int, 6> f,
                       const std::vector<uint8_t> &id) {
  return {c, what, p, golden_fmt("version = 1, direction = %d, sdp_presence = %d, sip_call_id_len "
                                 "= %d, sip_msg_len = %d, sip_msg_logged_bytes = %d, msg_id = %d\n",
                                 f[0], f[1], f[2], f[3], f[4], f[5]),
          116, R().u8(1).u8(f[0]).u8(f[1]).u8(f[2]).u16(f[3]).u16(f[4]).u16(f[5]).bytes(id)};
}

G ims_sip() {
  const auto [c, n] = golden_parser(0x156e, "ims_sip_message");
  std::vector<uint8_t> long_id(254, 'x');
  long_id.push_back(0);
  return {
      // P+0 1 | P+1 direction | P+2 sdp | P+3 call id len | P+4 msg len(2)
      // P+6 logged(2) | P+8 msg_id(2) | P+10 response code(2) | P+16 call id text
      sip(c, "v1 uplink with a 4-byte call id", P(24).le(0, 1, 1).le(1, 1, 1).le(2, 1, 1)
          .le(3, 4, 1).le(4, 515, 2).le(6, 256, 2).le(8, 7, 2).le(10, 200, 2)
          .text(16, std::string("ab1\0", 4)),
          {1, 1, 4, 515, 256, 7}, {'a', 'b', '1', 0}),
      sip(c, "v1 without call id", P(24).le(0, 1, 1).le(4, 40, 2).le(6, 40, 2).le(8, 3, 2)
          .le(16, 0x55, 1), {0, 0, 0, 40, 40, 3}, {}),
      sip(c, "v1 with the longest call id", P(300).le(0, 1, 1).le(3, 255, 1)
          .text(16, std::string(long_id.begin(), long_id.end())), {0, 0, 255, 0, 0, 0}, long_id),
      refusal(c, 2, n),
  };
}

G ims_session_setup() {
  const auto [c, n] = golden_parser(0x1830, "ims_volte_session_setup");
  // Every string 255 bytes: L1 at P+1, direction P+257, L2 P+258, L3 P+518,
  // L4 P+774, result P+1030, delay P+1032, rat P+1036.
  const P longest = P(1040).le(0, 2, 1).le(1, 255, 1).le(257, 1, 1).le(258, 255, 1)
                        .le(518, 255, 1).le(774, 255, 1).le(1030, 603, 2).le(1036, 2, 1);
  return {
      session(c, "v2 with four strings", session_with_strings(2, 200), "result", 125,
              {2, 1, 200, 1500, 3, 4, 2}),
      session(c, "v4 with empty strings", session_empty(4, 486, 305419896, 1), "result", 125,
              {4, 0, 486, 305419896, 1, 0, 0}),
      session(c, "v2 with the longest strings", longest, "result", 125,
              {2, 1, 603, 0, 2, 255, 255}),
      refusal(c, 3, n),
  };
}

G ims_session_end() {
  const auto [c, n] = golden_parser(0x1831, "ims_volte_session_end");
  return {
      session(c, "v6 with four strings", session_with_strings(6, 16), "end_cause", 126,
              {6, 1, 16, 1500, 3, 4, 2}),
      session(c, "v2 with empty strings", session_empty(2, 65535, 0, 0), "end_cause", 126,
              {2, 0, 65535, 0, 0, 0, 0}),
      session(c, "v4 with empty strings", session_empty(4, 1, 20, 2), "end_cause", 126,
              {4, 0, 1, 20, 2, 0, 0}),
      refusal(c, 5, n),
  };
}

// ---- WCDMA, GSM ----------------------------------------------------------------------

G wcdma_pn_search() {
  const auto [c, n] = golden_parser(0x4179, "wcdma_pn_search_edition2");
  return {
      // P+0 8 | P+1..2 junk | P+3 rx_agc_old_0 s16 | P+5 rx_agc_old_1 s16 | P+7 junk
      // dB = (raw + 512) / 10 - 106
      {c, "v8 negative and positive levels",
       P(8).le(0, 8, 1).le(1, 0xffff, 2).le(3, 0xfe00, 2).le(5, 88, 2).le(7, 0xff, 1),
       "version = 8, rx_agc_old_0 = -512, rx_agc_old_1 = 88, rx_agc_0 = -106.00, "
       "rx_agc_1 = -46.00\n",
       110, R().u8(8).f32(-106.0f).f32(-46.0f)},
      refusal(c, 5, n),
  };
}

G gsm_rx_diversity() {
  const auto [c, n] = golden_parser(0x5096, "gsm_l1_rx_diversity_metrics");
  return {
      // P+0 6 | P+1 rx_prx_old s16 | P+3 rx_drx_old s16 (1/16 dB) | P+5 junk
      {c, "v6", P(8).le(0, 6, 1).le(1, 0xf9c0, 2).le(3, 0xfa18, 2).le(5, 0x7f, 1),
       "version = 6, rx_prx_old = -1600, rx_drx_old = -1512, rx_prx = -100.00, rx_drx = -94.50\n",
       111, R().u8(6).f32(-100.0f).f32(-94.5f)},
      refusal(c, 7, n),
  };
}

// ---- LTE MAC, RRC --------------------------------------------------------------------

G lte_rach() {
  const auto [c, n] = golden_parser(0xb062, "lte_mac_rach_attempt");
  // P+0 version | P+1 num_records | P+4 sub_packet_id | P+5 version_sub | P+11 rach_result
  auto attempt = [](int records, int sub_id, int sub_version, int result) {
    return P(12).le(0, 1, 1).le(1, records, 1).le(4, sub_id, 1).le(5, sub_version, 1)
        .le(11, result, 1);
  };
  auto line = [](int records, int sub_version, int result) {
    return golden_fmt("sub_id = 0, version = 1, num_records = %d, version_sub = %d, "
                      "rach_result = %d\n", records, sub_version, result);
  };
  return {
      golden_gated(c, "no attempt logged", attempt(0, 0, 0, 0), line(0, 0, -1), -1, n),
      {c, "successful attempt", attempt(1, 6, 49, 0), "rach is success, do nothing\n", kNone, {}},
      {c, "failed attempt", attempt(1, 6, 49, 5), line(1, 49, 5), 132, R().u8(1).u8(49).u8(5)},
      {c, "largest result of three records", attempt(3, 6, 49, 127), line(3, 49, 127), 132,
       R().u8(1).u8(49).u8(127)},
      golden_gated(c, "negative result", attempt(1, 6, 49, 0x80), line(1, 49, -128), -128, n),
      golden_gated(c, "other sub-packet", attempt(1, 7, 49, 5), "", 7, "sub_packet_id"),
      golden_refusal(c, "sub-version 48 refused", attempt(1, 6, 48, 5), 48, "lte_mac_rach_attempt"),
      golden_refusal(c, "version 2 refused", P(12).le(0, 2, 1).le(1, 1, 1), 2, n),
  };
}

G lte_ul_tb() {
  const auto [c, n] = golden_parser(0xb064, "lte_mac_ul_transport_block");
  // P+0 1 | P+4 sub_packet_id 8 | P+5 sub_version | P+8 num_samples | samples from P+9
  auto head = [](size_t size, int sub_id, int sub_version, int samples) {
    return P(size).le(0, 1, 1).le(1, 1, 1).le(4, sub_id, 1).le(5, sub_version, 1).le(8, samples, 1);
  };
  // Sub-version 1 sample at s (12 bytes + H): s+2 u16 subframe | SFN << 4,
  // s+4 grant(2), s+7 padding(2), s+11 H. Later sub-versions: everything +2.
  auto sample = [](P p, int s, int sfn, int sub_fn, int grant, int pad, int h) {
    return p.le(s + 2, sfn << 4 | sub_fn, 2).le(s + 4, grant, 2).le(s + 6, 1, 1)
        .le(s + 7, pad, 2).le(s + 9, 2, 1).le(s + 10, 3, 1).le(s + 11, h, 1);
  };
  const P v1 = sample(sample(head(40, 8, 1, 2), 9, 555, 5, 125, 12, 2), 23, 574, 0, 0, 0, 0)
                   .le(21, 0x233d, 2);  // the 2 MAC header bytes of sample 0
  const P v2 = sample(head(30, 8, 2, 1), 9 + 2, 1023, 9, 100, 100, 0).le(10, 1, 1);
  const P v3 = sample(head(30, 8, 3, 1), 9 + 2, 7, 2, 50, 25, 0);
  const P v5 = sample(sample(head(50, 8, 5, 2), 9 + 2, 10, 0, 40, 10, 3), 26 + 2, 11, 0, 60, 0, 0)
                   .le(23, 0xffffff, 3);  // sample 0's 3 header bytes
  const std::string zero =
      "LTE FSSR: [0][0], pad = 0, grant = 0, sfn_grant = 0.00, sfn_full = 0.00\n";
  // Summary and record of the FSSR sums.
  auto fssr = [c = c](const char *what, P p, int sub_version, int samples, int first, int last,
                      int pad, int grant, double sfn_grant, double sfn_full) {
    return modem_stats_golden{c, what, p, golden_fmt("LTE FSSR: [%d][%d], pad = %d, grant = %d, "
        "sfn_grant = %.2f, sfn_full = %.2f\n", first, last, pad, grant, sfn_grant, sfn_full), 114,
        R().u8(1).u8(sub_version).u8(samples).u16(first).u16(last).u32(pad).u32(grant)
            .f32(static_cast<float>(sfn_grant)).f32(static_cast<float>(sfn_full))};
  };
  return {
      fssr("sub v1, one granted and one empty TTI", v1, 1, 2, 555, 574, 12, 125, 50.0, 90.4),
      fssr("sub v2, all padding", v2, 2, 1, 1023, 1023, 100, 100, 100.0, 0.0),
      fssr("sub v3, half padding", v3, 3, 1, 7, 7, 25, 50, 100.0, 50.0),
      fssr("sub v5, header bytes between samples", v5, 5, 2, 10, 11, 10, 100, 100.0, 90.0),
      fssr("sub v8, nothing granted", head(30, 8, 8, 1), 8, 1, 0, 0, 0, 0, 0.0, 0.0),
      golden_gated(c, "no samples", head(30, 8, 1, 0), zero, 0, n),
      golden_gated(c, "more samples than fit", head(30, 8, 1, 255), zero, 255, n),
      golden_gated(c, "other sub-packet", head(30, 9, 1, 1), "", 9, n),
      golden_refusal(c, "sub-version 4 refused", head(30, 8, 4, 1), 4, n),
      golden_refusal(c, "version 2 refused", P(30).le(0, 2, 1), 2, n),
  };
}

G lte_serving_cell_info() {
  const auto [c, n] = golden_parser(0xb0c2, "lte_rrc_serving_cell_info");
  // P+0 3 | P+1 pci(2) | P+3 dl_earfcn(4) | P+7 ul_earfcn(4) | P+11/12 bandwidths
  // P+13 cgi(4) | P+17 tac(2) | P+19 band(4) | P+23 mcc(2) | P+25 mnc_num | P+26 mnc(2)
  const P v3 = P(30).le(0, 3, 1).le(1, 301, 2).le(3, 1825, 4).le(7, 19825, 4).le(11, 0x6464, 2)
                   .le(13, 27439044, 4).le(17, 12345, 2).le(19, 3, 4).le(23, 460, 2).le(25, 2, 1)
                   .le(26, 11, 2).le(28, 0xff, 1);
  return {
      {c, "v3", v3, "version = 3, mcc = 460, mnc_num 2, mnc 11, tac 12345, cgi 27439044, pci 301\n",
       129, R().u8(3).u16(301).u32(1825).u32(27439044).u16(12345).u32(3).u16(460).u8(2).u16(11)},
      refusal(c, 2, n),
  };
}

// ---- LTE physical layer -------------------------------------------------------------

G lte_rx_agc() {
  const auto [c, n] = golden_parser(0xb111, "lte_ll1_rx_agc");
  // P+0 version | P+1 bits 0-4 num_records | 40-byte records from P+8:
  //   +0 bits 0-1 rx chain | +8 u16 bits 0-11 RSSI; dB = (raw - 1024) / 4
  const P v164 = P(130).le(0, 164, 1)
                     .le(1, 0xe3, 1)            // 3 records, junk above
                     .le(8, 0xfd, 1)            // chain 1
                     .le(16, 0xf000 | 1064, 2)  // junk above bit 11
                     .le(48, 0xfc, 1)           // chain 0
                     .le(56, 624, 2)
                     .le(88, 1, 1)              // chain 1 again: ignored
                     .le(96, 2000, 2);
  return {
      {c, "v164, first record per chain", v164,
       "version = 164, num_records = 3, rssi0_i = 624, rssi1_i = 1064, rssi2_i = 0, rssi3_i = 0\n",
       96, R().u8(164).u8(3).f32(-100.0f).f32(10.0f).f32(-256.0f).f32(-256.0f)},
      {c, "v166, chain 3 only", P(50).le(0, 166, 1).le(1, 1, 1).le(8, 3, 1).le(16, 1024, 2),
       "version = 166, num_records = 1, rssi0_i = 0, rssi1_i = 0, rssi2_i = 0, rssi3_i = 1024\n",
       96, R().u8(166).u8(1).f32(-256.0f).f32(-256.0f).f32(-256.0f).f32(0.0f)},
      golden_gated(c, "no records", P(50).le(0, 164, 1).le(1, 0xe0, 1), "version = 164, "
                   "num_records = 0, rssi0_i = 0, rssi1_i = 0, rssi2_i = 0, rssi3_i = 0\n", 0, n),
      refusal(c, 21, n),
  };
}

G lte_pusch_csf() {
  const auto [c, n] = golden_parser(0xb14e, "lte_pusch_csf");
  // pb 36 rank_idx (2) | pb 47 wideband_cqi_cw0 (4) | pb 51 wideband_cqi_cw1 (4); junk beside each
  const P set = P(16).le(0, 163, 1).bits(35, 1, 1).bits(36, 1, 2).bits(38, 1, 1).bits(46, 1, 1)
                    .bits(47, 13, 4).bits(51, 9, 4).bits(55, 1, 1);
  return {
      {c, "v163 rank index 1, CQI 13 and 9", set,
       "version = 163, rank_idx = 1, wideband_cqi_cw0 = 13\n", 84, R().u8(163).u8(1).u8(13).u8(9)},
      refusal(c, 162, n),
  };
}

G lte_tx_power() {
  const auto [c, n] = golden_parser(0xb16d, "lte_tx_power");
  // P+0 49 | P+3 num | records from P+4. Record at s:
  //   s+4 24-bit word: bit 0 PUSCH, SFN << 4 | s+7 bit 1: 14-byte ACK/NAK mask (else 2)
  //   s+8+M u16: Tx power s8 in bits 6-13 | body at s+10+M:
  //   u32 #0 bits 28-30 modulation | u32 #1 bits 7-13 RBs, 14-18 MCS
  const P mixed = P(100).le(0, 49, 1).le(3, 2, 1)
                      // record 0 at P+4: PUCCH, short mask, 36 bytes
                      .le(8, 100 << 4, 3).le(12, 0xffff, 2)
                      .le(14, 0xfb << 6, 2)   // -5 dBm
                      .le(16, 0x70000000, 4)  // not a PUSCH body: ignored
                      // record 1 at P+40: PUSCH, long mask, 48 bytes
                      .le(44, 1 | 101 << 4, 3).le(47, 0x02, 1).le(48, 0xffffffff, 4)
                      .le(62, 23 << 6, 2).le(64, 2u << 28, 4).le(68, 50 << 7 | 17 << 14, 4);
  const P pusch_only = P(60).le(0, 49, 1).le(3, 1, 1).le(8, 1, 3)
                           .le(14, 0xd8 << 6, 2)  // -40 dBm
                           .le(16, 4u << 28, 4).le(20, 100 << 7 | 28 << 14, 4);
  const std::string zeros =
      "pucch_tx_power 0, pusch_num_res_blocks = 0, pusch_modulation_type = 0, "
      "pusch_tx_power = 0, pusch_mcs = 0\n";
  return {
      {c, "PUCCH then PUSCH with a long mask", mixed,
       "version = 49, num = 2, pucch_tx_power -5, pusch_num_res_blocks = 50, "
       "pusch_modulation_type = 2, pusch_tx_power = 23, pusch_mcs = 17\n",
       83, R().u8(49).u8(2).u8(0xfb).u8(50).u8(2).u8(23).u8(17)},
      {c, "PUSCH only", pusch_only,
       "version = 49, num = 1, pucch_tx_power 0, pusch_num_res_blocks = 100, "
       "pusch_modulation_type = 4, pusch_tx_power = -40, pusch_mcs = 28\n",
       83, R().u8(49).u8(1).u8(0).u8(100).u8(4).u8(0xd8).u8(28)},
      golden_gated(c, "no records", P(60).le(0, 49, 1), "version = 49, num = 0, " + zeros, 0, n),
      golden_gated(c, "more records than fit", P(60).le(0, 49, 1).le(3, 255, 1),
                   "version = 49, num = 255, " + zeros, 255, n),
      refusal(c, 48, n),
  };
}

// Power control: P+0 version | P+3 num_records | 12-byte records from P+4 (pb 32).
std::string power_line(const char *power, int version, int records, int tx, int loss) {
  return golden_fmt("version = %d, num_records = %d, %s %d, dl_path_loss %d\n", version, records,
                    power, tx, loss);
}

G lte_pusch_power_control() {
  const auto [c, n] = golden_parser(0xb16e, "lte_pusch_power_control");
  auto line = [](int version, int records, int tx, int loss) {
    return power_line("pusch_tx_power", version, records, tx, loss);
  };
  return {
      // v5: Tx power pb 46 (8), path loss pb 86 (8)
      {c, "v5", P(20).le(0, 5, 1).le(3, 1, 1).le(4, 0x0805863b, 4).le(8, 0x1d400902, 4)
                    .le(12, 0x000b3c00, 4),
       line(5, 1, 22, 117), 98, R().u8(5).u8(1).u8(22).u8(117)},
      // v4: Tx power pb 46, path loss pb 78; junk where v5 keeps its path loss
      {c, "v4", P(30).le(0, 4, 1).le(3, 2, 1).bits(46, 10, 8).bits(78, 120, 8).bits(86, 0x55, 8),
       line(4, 2, 10, 120), 98, R().u8(4).u8(2).u8(10).u8(120)},
      // v25: Tx power pb 49, path loss pb 86
      {c, "v25", P(20).le(0, 25, 1).le(3, 1, 1).bits(49, 33, 8).bits(86, 99, 8),
       line(25, 1, 33, 99), 98, R().u8(25).u8(1).u8(33).u8(99)},
      {c, "most records that fit", P(20).le(0, 5, 1).le(3, 166, 1).bits(46, 7, 8),
       line(5, 166, 7, 0), 98, R().u8(5).u8(166).u8(7).u8(0)},
      golden_gated(c, "more records than fit", P(20).le(0, 5, 1).le(3, 167, 1).bits(46, 7, 8),
                   line(5, 167, 0, 0), 167, n),
      golden_gated(c, "no records", P(20).le(0, 5, 1), line(5, 0, 0, 0), 0, n),
      refusal(c, 6, n),
  };
}

G lte_pucch_power_control() {
  const auto [c, n] = golden_parser(0xb16f, "lte_pucch_power_control");
  auto line = [](int version, int records, int tx, int loss) {
    return power_line("pucch_tx_power", version, records, tx, loss);
  };
  return {
      // v4: Tx power pb 46 (8, unsigned), path loss pb 75 (7); pb 82 is junk
      {c, "v4", P(20).le(0, 4, 1).le(3, 1, 1).le(4, 0x24805e3c, 4).le(8, 0x0003a800, 4)
                    .bits(82, 1, 1),
       line(4, 1, 1, 117), 128, R().u8(4).u8(1).u8(1).u8(117)},
      {c, "v4 power is unsigned", P(20).le(0, 4, 1).le(3, 1, 1).bits(46, 0xfd, 8),
       line(4, 1, 253, 0), 128, R().u8(4).u8(1).u8(0xfd).u8(0)},
      // v24: Tx power signed, path loss 8 bits
      {c, "v24", P(20).le(0, 24, 1).le(3, 1, 1).bits(46, 0xfd, 8).bits(75, 200, 8),
       line(24, 1, -3, 200), 128, R().u8(24).u8(1).u8(0xfd).u8(200)},
      golden_gated(c, "no records", P(20).le(0, 24, 1), line(24, 0, 0, 0), 0, n),
      refusal(c, 5, n),
  };
}

G lte_pdsch_stat() {
  const auto [c, n] = golden_parser(0xb173, "lte_pdsch_stat_indication");
  // P+0 version | P+1 num_records | 40-byte records from P+4. Record 0:
  //   P+7 num_layers | TB 0 from P+16: P+17 bits 0-3 RNTI type, P+20 TB size(2),
  //   P+22 mcs, P+23 RBs, P+24 modulation order
  auto pdsch = [](int version, int records, int mcs, int rb, int mod, int rnti, int layers) {
    return P(90).le(0, version, 1).le(1, records, 1).le(4, 0x04013103, 4).le(7, layers, 1)
        .le(16, 0xc1, 1)
        .le(17, 0xa0 | rnti, 1)  // junk in the high nibble
        .le(20, 1000, 2).le(22, mcs, 1).le(23, rb, 1).le(24, mod, 1)
        .le(62, 0xff, 1);        // record 1's MCS: ignored
  };
  auto line = [](int version, int records, int mcs, int rb, int mod, int rnti, int layers) {
    return golden_fmt("version = %d, num_records = %d, pdsch_mcs = %d, pdsch_rb = %d, "
                      "pdsch_mod_type = %d, pdsch_rnti_type = %d, num_layers = %d\n",
                      version, records, mcs, rb, mod, rnti, layers);
  };
  // A packet whose record 0 is read and packed as drawn.
  auto decoded = [&, c = c](const char *what, int version, int records, int mcs, int rb, int mod,
                            int rnti, int layers) {
    return modem_stats_golden{c, what, pdsch(version, records, mcs, rb, mod, rnti, layers),
        line(version, records, mcs, rb, mod, rnti, layers), 93,
        R().u8(version).u8(records).u8(mcs).u8(rb).u8(mod).u8(rnti).u8(layers)};
  };
  return {
      decoded("v48 two records", 48, 2, 27, 100, 6, 5, 2),
      decoded("v39", 39, 1, 0, 1, 2, 0, 1),
      decoded("v40", 40, 1, 5, 50, 4, 15, 4),
      decoded("v49 most records that fit", 49, 49, 9, 6, 8, 1, 1),
      golden_gated(c, "more records than fit", pdsch(48, 50, 9, 6, 8, 1, 1),
                   line(48, 50, 0, 0, 0, 0, 0), 50, n),
      golden_gated(c, "no records", pdsch(48, 0, 9, 6, 8, 1, 1), line(48, 0, 0, 0, 0, 0, 0), 0, n),
      refusal(c, 41, n),
  };
}

G lte_srv_meas() {
  const auto [c, n] = golden_parser(0xb193, "lte_srv_meas");
  auto line = [](int sub_version, int earfcn, int rx_valid, int pci, int serving, int idx,
                 int cells) {
    return golden_fmt("version = %d, earfcn = %d, rx_valid = %d, pci = %d, is_srv_cell = %d, "
                      "srv_cell_idx = %d, num_cells = %d\n", sub_version, earfcn, rx_valid, pci,
                      serving, idx, cells);
  };
  return {
      {c, "sub v36 PCell", srv_meas(kV36, 1825, 1, 3, 73, 0, 1), line(36, 1825, 3, 73, 1, 0, 1),
       25, srv_meas_record(36, 1825, 73, 1, 3)},
      {c, "sub v40 SCell", srv_meas(kV40, 39150, 2, 15, 501, 2, 1),
       line(40, 39150, 15, 501, 1, 2, 2), 53, srv_meas_record(40, 39150, 501, 1, 15)},
      {c, "sub v48 neighbour, most cells that fit", srv_meas(kV48, 66486, 14, 1, 511, 0, 0),
       line(48, 66486, 1, 511, 0, 0, 14), 64, srv_meas_record(48, 66486, 511, 0, 1)},
      {c, "sub v50 PCell, raw zeros", srv_meas(kV50, 100, 1, 3, 1, 0, 1, false),
       line(50, 100, 3, 1, 1, 0, 1), 25, srv_meas_record(50, 100, 1, 1, 3, false)},
      golden_gated(c, "no cells", srv_meas(kV36, 1825, 0, 3, 73, 0, 1),
                   line(36, 1825, 3, 0, 0, 0, 0), 0, n),
      golden_gated(c, "more cells than fit", srv_meas(kV36, 1825, 16, 3, 73, 0, 1),
                   line(36, 1825, 3, 0, 0, 0, 16), 16, n),
      golden_gated(c, "other sub-packet", P(30).le(0, 1, 1).le(4, 26, 1).le(5, 36, 1), "", 26, n),
      golden_refusal(c, "sub-version 37 refused", P(30).le(0, 1, 1).le(4, 25, 1).le(5, 37, 1),
                     37, n),
      golden_refusal(c, "version 2 refused", P(30).le(0, 2, 1), 2, n),
  };
}

// clang-format on

}  // namespace

std::span<const modem_stats_golden> modem_stats_golden_lte() {
  static const std::vector<modem_stats_golden> all = [] {
    std::vector<modem_stats_golden> v;
    for (auto make :
         {ims_rtp, ims_sip, ims_session_setup, ims_session_end, wcdma_pn_search, gsm_rx_diversity,
          lte_rach, lte_ul_tb, lte_serving_cell_info, lte_rx_agc, lte_pusch_csf, lte_tx_power,
          lte_pusch_power_control, lte_pucch_power_control, lte_pdsch_stat, lte_srv_meas}) {
      for (auto &g : make()) v.push_back(std::move(g));
    }
    return v;
  }();
  return all;
}
