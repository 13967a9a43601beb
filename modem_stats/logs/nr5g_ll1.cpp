// NR5G LL1 log-packet parsers: receive AGC (0xB8C9), transmit power (0xB8D2)
// and the serving-cell SNR packets (0xB8D8, 0xB8DD).
#include <cstdio>

#include "modem_stats/logs/nr5g_layout.h"
#include "modem_stats/modem_stats_conv.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

using modem_stats_nr5g_short::F;
using modem_stats_nr5g_short::I;
constexpr bool SIGNED = true;

// 0xB8C9 AGC: the log's sub-code (4 = AGC), the AGC sub-version, the byte
// from which the chain count derives, and the raw RSSI of each 32-byte chain
// block (RSSI position provisional: no public definition).
enum { B8C9_CODE, B8C9_AGC_SUB, B8C9_CHAIN_BYTES, B8C9_RSSI, B8C9_N };
// clang-format off
constexpr modem_stats_nr5g_layout<B8C9_N> k_b8c9[] = {
    {0x20000, {F("code", 16, 8), F("version_agc_sub", 20, 4), F("chain_bytes", 17, 8),
               F("rssi", 32, 16, SIGNED)}},
    {0x30001, {F("code", 16, 8), F("version_agc_sub", 20, 4), F("chain_bytes", 17, 8),
               F("rssi", 32, 16, SIGNED)}},
};
// clang-format on
constexpr int B8C9_AGC_CODE = 4;
constexpr int B8C9_CHAINS = 4;
constexpr int B8C9_BLOCK_HEADER = 16;
constexpr int B8C9_CHAIN_SIZE = 32;

// 0xB8D2 transmit power, provisional (no public definition): a header and
// 8-byte entries from payload byte 8; entry positions are within the entry.
enum {
  B8D2_VERSION_POWER,
  B8D2_LOOP_NUM,
  B8D2_CHANNEL,
  B8D2_TX,
  B8D2_PATH_LOSS,
  B8D2_MTPL,
  B8D2_N
};
// clang-format off
constexpr modem_stats_nr5g_layout<B8D2_N> k_b8d2[] = {
    {0x20000, {F("version_power", 4, 8), F("loop_num", 5, 8), F("channel_type", 1, 8),
               F("pusch_tx", 2, 16, SIGNED), F("pusch_path_loss", 4, 16),
               F("pusch_mtpl", 6, 16, SIGNED)}},
};
// clang-format on
constexpr int B8D2_ENTRIES = 8;
constexpr int B8D2_ENTRY_SIZE = 8;
constexpr int64_t B8D2_PUSCH = 0;

// 0xB8D8 (provisional: no public definition) and 0xB8DD: four raw SNR words,
// one per receive chain.
enum { SNR_0, SNR_1, SNR_2, SNR_3, SNR_N };
constexpr modem_stats_nr5g_layout<SNR_N> k_b8d8[] = {
    {0x30002, {F("snr0", 12, 32), F("snr1", 16, 32), F("snr2", 20, 32), F("snr3", 24, 32)}},
};
constexpr modem_stats_nr5g_layout<SNR_N> k_b8dd[] = {
    {0x7, {F("snr0", 76, 32), F("snr1", 80, 32), F("snr2", 84, 32), F("snr3", 88, 32)}},
};

// Both SNR packets are read the same way: the four raw words, and the chains
// in decibels from them.
template <size_t R>
bool read_snr(const modem_stats_nr5g_layout<SNR_N> (&rows)[R], const char *parser,
              uint32_t *version, int64_t (&raw)[SNR_N], float (&snr)[SNR_N]) {
  const auto *row = modem_stats_nr5g_open(rows, parser, version);
  if (row == nullptr || !modem_stats_nr5g_read_all(row->f, 0, raw)) return false;
  for (int i = 0; i < SNR_N; ++i) snr[i] = modem_stats_nr5g_snr(static_cast<uint32_t>(raw[i]));
  return true;
}

// Both SNR packets make the same record: the version and the four chains in
// decibels.
bool pack_snr(uint32_t stat, uint32_t version, const float (&snr)[SNR_N], uint32_t *stat_id,
              modem_stats_single **record) {
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_float("snr0", snr[0]),
       modem_stats_pk_float("snr1", snr[1]), modem_stats_pk_float("snr2", snr[2]),
       modem_stats_pk_float("snr3", snr[3])},
      stat, stat_id, record);
}

}  // namespace

bool modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc(uint32_t *stat_id,
                                                                modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b8c9, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B8C9_RSSI];
  if (!modem_stats_nr5g_read_all(std::span(row->f, B8C9_RSSI), 0, v)) return false;

  // The size byte counts a 16-byte block header and the 32-byte chain blocks;
  // chains the packet does not carry stay 0.0.
  int64_t chains = (v[B8C9_CHAIN_BYTES] - B8C9_BLOCK_HEADER) / B8C9_CHAIN_SIZE;
  if (chains > B8C9_CHAINS) chains = B8C9_CHAINS;
  float rssi[B8C9_CHAINS] = {};
  for (int e = 0; e < chains; ++e) {
    int64_t raw = 0;
    if (!modem_stats_nr5g_read(row->f[B8C9_RSSI], e * B8C9_CHAIN_SIZE, &raw)) return false;
    rssi[e] = modem_stats_nr5g_rssi(static_cast<int32_t>(raw));
  }

  modem_stats_printf("version = %d, version_agc_sub = %d, code = %d, only support code - 4\n",
                     I(version), I(v[B8C9_AGC_SUB]), I(v[B8C9_CODE]));
  if (v[B8C9_CODE] != B8C9_AGC_CODE) return modem_stats_not_valid(v[B8C9_CODE], __func__);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_float("rssi0", rssi[0]),
       modem_stats_pk_float("rssi1", rssi[1]), modem_stats_pk_float("rssi2", rssi[2]),
       modem_stats_pk_float("rssi3", rssi[3])},
      94, stat_id, record);
}

bool modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power(uint32_t *stat_id,
                                                                 modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b8d2, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B8D2_N] = {};
  if (!modem_stats_nr5g_read_all(std::span(row->f, B8D2_CHANNEL), 0, v)) return false;

  // The summary shows the first PUSCH entry; without one its values are 0.
  const int64_t loop_num = v[B8D2_LOOP_NUM];
  bool valid = modem_stats_log_records_fit(B8D2_ENTRIES, loop_num, B8D2_ENTRY_SIZE);
  for (int i = 0; valid && i < loop_num; ++i) {
    int at = B8D2_ENTRIES + i * B8D2_ENTRY_SIZE;
    if (!modem_stats_nr5g_fits(row->f[B8D2_MTPL], at)) {
      valid = false;
      break;
    }
    if (!modem_stats_nr5g_read(row->f[B8D2_CHANNEL], at, &v[B8D2_CHANNEL])) return false;
    if (v[B8D2_CHANNEL] != B8D2_PUSCH) continue;
    if (!modem_stats_nr5g_read_all(std::span(row->f + B8D2_TX, B8D2_N - B8D2_TX), at,
                                   v + B8D2_TX)) {
      return false;
    }
    break;
  }

  modem_stats_printf(
      "version = %d, version_power = %d, loop_num = %d, pusch_tx = %d, pusch_path_loss = %d, "
      "pusch_mtpl = %d\n",
      I(version), I(v[B8D2_VERSION_POWER]), I(loop_num), I(v[B8D2_TX]), I(v[B8D2_PATH_LOSS]),
      I(v[B8D2_MTPL]));
  if (!valid) return modem_stats_not_valid(loop_num, __func__);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4),
       modem_stats_pk_int("version_power", v[B8D2_VERSION_POWER], 1),
       modem_stats_pk_int("loop_num", loop_num, 1), modem_stats_pk_int("pusch_tx", v[B8D2_TX], 2),
       modem_stats_pk_int("pusch_path_loss", v[B8D2_PATH_LOSS], 2),
       modem_stats_pk_int("pusch_mtpl", v[B8D2_MTPL], 2)},
      99, stat_id, record);
}

bool modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr(uint32_t *stat_id,
                                                              modem_stats_single **record) {
  uint32_t version = 0;
  int64_t raw[SNR_N];
  float snr[SNR_N];
  if (!read_snr(k_b8d8, __func__, &version, raw, snr)) return false;

  modem_stats_printf("version = %d, snr0 = %d, snr1 = %d, snr2 = %d, snr3 = %d\n", I(version),
                     I(raw[0]), I(raw[1]), I(raw[2]), I(raw[3]));
  return pack_snr(137, version, snr, stat_id, record);
}

bool modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  uint32_t version = 0;
  int64_t raw[SNR_N];
  float snr[SNR_N];
  if (!read_snr(k_b8dd, __func__, &version, raw, snr)) return false;

  modem_stats_printf("version = %d, snr0 = %.2f, snr1 = %.2f, snr2 = %.2f, snr3 = %.2f\n",
                     I(version), snr[0], snr[1], snr[2], snr[3]);
  return pack_snr(112, version, snr, stat_id, record);
}
