// LTE MAC uplink transport blocks (0xB064): how fully the uplink grants of one
// packet were used.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

constexpr const char *kName = "modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block";
constexpr uint32_t kStatId = 114;
constexpr uint32_t kVersions[] = {1};
constexpr int kSubPacketId = 8;
constexpr int kFirstSampleByte = 9;

// Packet header, offsets from the bit base after the version byte:
//   byte 0 version | 1 sub-packet count | 4 sub_packet_id (8) | 5 sub_version
//        6 sub-packet size(2) | 8 num_samples | 9 samples ...
constexpr modem_stats_field kSubPacketIdField{"sub_packet_id", 24, 8, false, true};
constexpr modem_stats_field kSubVersion{"sub_version", 32, 8, false, true};
constexpr modem_stats_field kNumSamples{"num_samples", 56, 8, false, true};

// One sample per TTI, offsets from the sample's first bit. Sub-version 1:
//   byte 0 HARQ | 1 RNTI type | 2 u16: subframe bits 0-3, SFN bits 4-13 | 4 grant(2)
//        6 RLC PDUs | 7 padding(2) | 9 BSR event | 10 BSR trigger | 11 header length H
//        12 H bytes of MAC header
// Later sub-versions put a sub id and a cell id byte in front (everything +2).
struct sample_layout {
  uint32_t version;  // the sub-packet version
  int fixed_bytes;   // sample size without its MAC header bytes
  modem_stats_field sfn, grant, padding, header_len;
};
constexpr sample_layout sample_row(uint32_t sub_version, int lead_bytes) {
  const int b = 8 * lead_bytes;
  return {sub_version,
          12 + lead_bytes,
          {"sfn", b + 20, 10, false, true},
          {"grant", b + 32, 16, false, true},
          {"padding", b + 56, 16, false, true},
          {"header_len", b + 88, 8, false, true}};
}
constexpr sample_layout kSampleLayouts[] = {sample_row(1, 0), sample_row(2, 2), sample_row(3, 2),
                                            sample_row(5, 2), sample_row(8, 2)};

struct tb_totals {
  int walked = 0;  // samples read
  int first_sfn = 0, last_sfn = 0;
  int64_t grant = 0, pad = 0;
  int granted_samples = 0;  // samples with a non-zero grant
};

// Walks the samples; stops early (returning true with fewer walked) when the
// next sample would reach past the readable area.
bool walk_samples(const sample_layout &l, int num_samples, tb_totals *t) {
  int sample_byte = kFirstSampleByte;
  for (int k = 0; k < num_samples; ++k) {
    if (!modem_stats_log_word_fits(sample_byte, l.header_len)) return true;
    if (!modem_stats_base_to_bit(8 * sample_byte)) return false;
    int sfn = 0, grant = 0, padding = 0, header_len = 0;
    if (!modem_stats_log_bits(l.sfn, 0, &sfn) || !modem_stats_log_bits(l.grant, 0, &grant) ||
        !modem_stats_log_bits(l.padding, 0, &padding) ||
        !modem_stats_log_bits(l.header_len, 0, &header_len)) {
      return false;
    }
    if (k == 0) t->first_sfn = sfn;
    t->last_sfn = sfn;
    t->grant += grant;
    t->pad += padding;
    if (grant != 0) ++t->granted_samples;
    ++t->walked;
    sample_byte += l.fixed_bytes + header_len;
  }
  return true;
}

}  // namespace

bool modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block(uint32_t *stat_id,
                                                                modem_stats_single **record) {
  uint32_t version = 0;
  if (!modem_stats_log_open(kVersions, kName, &version)) return false;
  int sub_version = 0, num_samples = 0;
  const sample_layout *l = modem_stats_log_sub_packet(kSubPacketIdField, kSubPacketId, kSubVersion,
                                                      kSampleLayouts, kName, &sub_version);
  if (l == nullptr) return false;
  if (!modem_stats_log_bits(kNumSamples, 0, &num_samples)) return false;

  tb_totals t;
  if (!walk_samples(*l, num_samples, &t)) return false;
  const float sfn_grant =
      t.walked == 0 ? 0.0f : static_cast<float>(100.0 * t.granted_samples / t.walked);
  const float sfn_full = t.grant == 0
                             ? 0.0f
                             : static_cast<float>(100.0 * static_cast<double>(t.grant - t.pad) /
                                                  static_cast<double>(t.grant));

  modem_stats_printf(
      "LTE FSSR: [%d][%d], pad = %d, grant = %d, sfn_grant = %.2f, sfn_full = %.2f\n", t.first_sfn,
      t.last_sfn, static_cast<int>(t.pad), static_cast<int>(t.grant), sfn_grant, sfn_full);
  if (num_samples == 0 || t.walked < num_samples) return modem_stats_not_valid(num_samples, kName);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("sub_version", sub_version, 1),
       modem_stats_pk_int("num_samples", num_samples, 1),
       modem_stats_pk_int("first_sfn", t.first_sfn, 2),
       modem_stats_pk_int("last_sfn", t.last_sfn, 2), modem_stats_pk_int("pad", t.pad, 4),
       modem_stats_pk_int("grant", t.grant, 4), modem_stats_pk_float("sfn_grant", sfn_grant),
       modem_stats_pk_float("sfn_full", sfn_full)},
      kStatId, stat_id, record);
}
