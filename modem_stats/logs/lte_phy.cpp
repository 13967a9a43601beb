// LTE physical layer log-packet parsers: receive AGC, PUSCH CSF, transmit
// power, PUSCH/PUCCH power control, PDSCH statistics and serving-cell
// measurements.
//
// Unless a table says otherwise, field offsets count from the bit base after
// the one-byte version, so payload byte n starts at bit 8n - 8, and record k
// of a packet sits k record sizes further.
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_conv.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

using modem_stats_log_short::byte_bit;
constexpr int kRxChains = 4;

// ---- 0xB111 LL1 receive AGC -------------------------------------------------

// Provisional: versions 164 and 166 have no public definition; this is our own
// reading of the packet.
//   byte 0 version | 1 bits 0-4 num_records | 8 records of 40 bytes:
//     record +0 u32 bits 0-1 rx chain | +8 u16 bits 0-11 total RSSI (1/4 dB, offset 1024)
struct rx_agc_layout {
  uint32_t version;
  modem_stats_field num_records;
  int first_record_byte, record_bytes;
  modem_stats_field chain, rssi;  // offsets from the bit base of the first record
};
constexpr rx_agc_layout rx_agc_row(uint32_t version) {
  return {version, {"num_records", 0, 5},        8,
          40,      {"rx_chain", byte_bit(8), 2}, {"rssi", byte_bit(8) + 64, 12}};
}
constexpr rx_agc_layout kRxAgcLayouts[] = {rx_agc_row(164), rx_agc_row(166)};

// ---- 0xB14E PUSCH CSF ---------------------------------------------------------

//   bits from the base: 28 rank_idx (2) | 39 wideband_cqi_cw0 (4) | 43 wideband_cqi_cw1 (4)
struct csf_layout {
  uint32_t version;
  modem_stats_field rank_idx, cqi_cw0, cqi_cw1;
};
constexpr csf_layout kCsfLayouts[] = {
    {163,
     {"rank_idx", 28, 2, false, true},
     {"wideband_cqi_cw0", 39, 4, false, true},
     {"wideband_cqi_cw1", 43, 4, false, true}},
};

// ---- 0xB16D transmit power ------------------------------------------------------

// Records are of two sizes, so each is read from a base moved to its start:
//   byte 0 version | 3 num | 4 records
//   record +4 24-bit word: bit 0 PUSCH (1) or PUCCH (0), SFN bits 4-13, subframe 14-17
//          +7 bit 1: long ACK/NAK mask (14 bytes, else 2) | +8 the mask
//   after the mask: u16 bits 6-13 total Tx power (s8, dBm) | 24-byte body
//          PUSCH body u32 #0 bits 28-30 modulation | u32 #1 bits 7-13 RBs, 14-18 MCS
struct tx_power_layout {
  uint32_t version;
  modem_stats_field num;
  int first_record_byte;
  modem_stats_field is_pusch, long_mask;  // from the record's start
  int head_bytes, short_mask_bytes, long_mask_bytes, tail_bytes;
  modem_stats_field tx_power, modulation, rbs, mcs;  // from the end of the mask
};
constexpr tx_power_layout kTxPowerLayouts[] = {
    {49,
     {"num", byte_bit(3), 8},
     4,
     {"is_pusch", 32, 1},
     {"ack_nak_mask_long", 57, 1},
     8,
     2,
     14,
     2 + 24,
     {"tx_power", 6, 8, true},
     {"pusch_modulation_type", 16 + 28, 3},
     {"pusch_num_res_blocks", 16 + 32 + 7, 7},
     {"pusch_mcs", 16 + 32 + 14, 5}},
};

// ---- 0xB16E / 0xB16F PUSCH and PUCCH power control ------------------------------

//   byte 0 version | 3 num_records | 4 records of 12 bytes; within record k
//   (base offset 24 + 96k) the Tx power and path loss sit as each version says.
struct power_control_layout {
  uint32_t version;
  modem_stats_field num_records, tx_power, dl_path_loss;
};
constexpr int kPcFirstRecordByte = 4;
constexpr int kPcRecordBytes = 12;
constexpr modem_stats_field kPcNum{"num_records", byte_bit(3), 8};
constexpr int kPcRecord0 = byte_bit(4);
constexpr power_control_layout kPuschPcLayouts[] = {
    {4, kPcNum, {"pusch_tx_power", kPcRecord0 + 14, 8}, {"dl_path_loss", kPcRecord0 + 46, 8}},
    {5, kPcNum, {"pusch_tx_power", kPcRecord0 + 14, 8}, {"dl_path_loss", kPcRecord0 + 54, 8}},
    {25, kPcNum, {"pusch_tx_power", kPcRecord0 + 17, 8}, {"dl_path_loss", kPcRecord0 + 54, 8}},
};
constexpr power_control_layout kPucchPcLayouts[] = {
    {4, kPcNum, {"pucch_tx_power", kPcRecord0 + 14, 8}, {"dl_path_loss", kPcRecord0 + 43, 7}},
    {24,
     kPcNum,
     {"pucch_tx_power", kPcRecord0 + 14, 8, true},
     {"dl_path_loss", kPcRecord0 + 43, 8}},
};

// ---- 0xB173 PDSCH statistics ----------------------------------------------------

// One layout for every accepted version; 39 and 49 are assumed to equal 40 and 48.
//   byte 0 version | 1 num_records | 4 records of 40 bytes; in record r:
//     r+24 num_layers (8) | TB 0 at t = r+96: t+8 rnti type (4), t+48 mcs (8),
//     t+56 RBs (8), t+64 modulation order (8)
struct pdsch_layout {
  uint32_t version;
  modem_stats_field num_records;
  int first_record_byte, record_bytes;
  modem_stats_field num_layers, rnti_type, mcs, rb, mod_type;
};
constexpr pdsch_layout pdsch_row(uint32_t version) {
  constexpr int r = byte_bit(4);
  constexpr int t = r + 96;
  return {version,
          {"num_records", 0, 8},
          4,
          40,
          {"num_layers", r + 24, 8},
          {"pdsch_rnti_type", t + 8, 4},
          {"pdsch_mcs", t + 48, 8},
          {"pdsch_rb", t + 56, 8},
          {"pdsch_mod_type", t + 64, 8}};
}
constexpr pdsch_layout kPdschLayouts[] = {pdsch_row(39), pdsch_row(40), pdsch_row(48),
                                          pdsch_row(49)};

// ---- 0xB193 serving cell measurements -------------------------------------------

// A one-sub-packet packet; the sub-packet version picks the layout:
//   byte 0 version (1) | 4 sub-packet id (25) | 5 sub-version | 8 earfcn(4)
//        12 num_cells(2) | 14 rx_valid(2) | cells from byte C, `cell_stride` bytes each
//   cell +0 u16: pci bits 0-8, srv_cell_idx 9-11, is_srv_cell 12
//        then RSRP, RSRQ, RSSI and SNR per receive chain in packed words
// Cell fields count from the cell's first bit.
struct srv_meas_layout {
  uint32_t version;  // the sub-packet version
  int first_cell_byte, cell_stride;
  modem_stats_field pci, srv_cell_idx, is_srv_cell;
  modem_stats_field rsrp[kRxChains], rsrq[kRxChains], rssi[kRxChains], snr[kRxChains];
};
constexpr srv_meas_layout srv_meas_row(uint32_t sub_version, int cell_byte, int stride,
                                       int rsrp3_byte, int rsrq_byte, int rssi_byte, int snr_byte) {
  return {sub_version,
          cell_byte,
          stride,
          {"pci", 0, 9},
          {"srv_cell_idx", 9, 3},
          {"is_srv_cell", 12, 1},
          {{"rsrp0", 8 * 16 + 10, 12},
           {"rsrp1", 8 * 20 + 12, 12},
           {"rsrp2", 8 * 24 + 12, 12},
           {"rsrp3", 8 * rsrp3_byte, 12}},
          {{"rsrq0", 8 * rsrq_byte, 10},
           {"rsrq1", 8 * rsrq_byte + 20, 10},
           {"rsrq2", 8 * (rsrq_byte + 4) + 10, 10},
           {"rsrq3", 8 * (rsrq_byte + 4) + 20, 10}},
          {{"rssi0", 8 * rssi_byte, 11},
           {"rssi1", 8 * rssi_byte + 11, 11},
           {"rssi2", 8 * (rssi_byte + 4), 11},
           {"rssi3", 8 * (rssi_byte + 4) + 11, 11}},
          {{"snr0", 8 * snr_byte, 9},
           {"snr1", 8 * snr_byte + 9, 9},
           {"snr2", 8 * (snr_byte + 4), 9},
           {"snr3", 8 * (snr_byte + 4) + 9, 9}}};
}
// Version 36 has no path-loss word, so its words from cell byte 28 on sit 4
// bytes lower than in the later versions.
constexpr srv_meas_layout kSrvMeasLayouts[] = {
    srv_meas_row(36, 16, 128, 28, 36, 48, 80),
    srv_meas_row(40, 16, 132, 32, 40, 52, 84),
    srv_meas_row(48, 20, 140, 32, 40, 52, 92),
    srv_meas_row(50, 20, 140, 32, 40, 52, 92),
};
constexpr uint32_t kSrvMeasVersions[] = {1};
constexpr int kSrvMeasSubPacketId = 25;
constexpr modem_stats_field kSrvMeasSubPacketIdField{"sub_packet_id", byte_bit(4), 8};
constexpr modem_stats_field kSrvMeasSubVersion{"sub_version", byte_bit(5), 8};
constexpr modem_stats_field kSrvMeasEarfcn{"earfcn", byte_bit(8), 32};
constexpr modem_stats_field kSrvMeasNumCells{"num_cells", byte_bit(12), 16};
constexpr modem_stats_field kSrvMeasRxValid{"rx_valid", byte_bit(14), 16};
constexpr uint32_t kStatIdPcell = 25, kStatIdScell = 53, kStatIdOtherCell = 64;

}  // namespace

bool modem_stats_parse_b111_diag_log_lte_ll1_rx_agc(uint32_t *stat_id,
                                                    modem_stats_single **record) {
  constexpr const char *kName = "modem_stats_parse_b111_diag_log_lte_ll1_rx_agc";
  uint32_t version = 0;
  const rx_agc_layout *l = modem_stats_log_read_version(kRxAgcLayouts, kName, &version);
  if (l == nullptr) return false;
  int num_records = 0;
  if (!modem_stats_log_bits(l->num_records, 0, &num_records)) return false;
  const bool fits = modem_stats_log_records_fit(l->first_record_byte, num_records, l->record_bytes);

  int rssi[kRxChains] = {};  // raw RSSI of each chain's first record, 0 when none
  bool seen[kRxChains] = {};
  for (int k = 0; fits && k < num_records; ++k) {
    const int extra = 8 * l->record_bytes * k;
    int chain = 0;
    if (!modem_stats_log_bits(l->chain, extra, &chain)) return false;
    if (seen[chain]) continue;
    if (!modem_stats_log_bits(l->rssi, extra, &rssi[chain])) return false;
    seen[chain] = true;
  }

  modem_stats_printf(
      "version = %d, num_records = %d, rssi0_i = %d, rssi1_i = %d, rssi2_i = %d, rssi3_i = %d\n",
      static_cast<int>(version), num_records, rssi[0], rssi[1], rssi[2], rssi[3]);
  if (!fits) return modem_stats_not_valid(num_records, kName);

  float rssi_db[kRxChains];
  for (int i = 0; i < kRxChains; ++i) rssi_db[i] = modem_stats_lte_rssi(rssi[i]);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("num_records", num_records, 1),
       modem_stats_pk_float("rssi0", rssi_db[0]), modem_stats_pk_float("rssi1", rssi_db[1]),
       modem_stats_pk_float("rssi2", rssi_db[2]), modem_stats_pk_float("rssi3", rssi_db[3])},
      96, stat_id, record);
}

bool modem_stats_parse_b14e_diag_log_lte_pusch_csf(uint32_t *stat_id, modem_stats_single **record) {
  uint32_t version = 0;
  const csf_layout *l = modem_stats_log_read_version(
      kCsfLayouts, "modem_stats_parse_b14e_diag_log_lte_pusch_csf", &version);
  if (l == nullptr) return false;
  int rank_idx = 0, cqi0 = 0, cqi1 = 0;
  if (!modem_stats_log_bits(l->rank_idx, 0, &rank_idx) ||
      !modem_stats_log_bits(l->cqi_cw0, 0, &cqi0) || !modem_stats_log_bits(l->cqi_cw1, 0, &cqi1)) {
    return false;
  }
  modem_stats_printf("version = %d, rank_idx = %d, wideband_cqi_cw0 = %d\n",
                     static_cast<int>(version), rank_idx, cqi0);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("rank_idx", rank_idx, 1),
       modem_stats_pk_int("wideband_cqi_cw0", cqi0, 1),
       modem_stats_pk_int("wideband_cqi_cw1", cqi1, 1)},
      84, stat_id, record);
}

bool modem_stats_parse_b16d_diag_log_lte_tx_power(uint32_t *stat_id, modem_stats_single **record) {
  constexpr const char *kName = "modem_stats_parse_b16d_diag_log_lte_tx_power";
  uint32_t version = 0;
  const tx_power_layout *l = modem_stats_log_read_version(kTxPowerLayouts, kName, &version);
  if (l == nullptr) return false;
  int num = 0;
  if (!modem_stats_log_bits(l->num, 0, &num)) return false;

  // PUCCH values from the first PUCCH record, PUSCH values from the first
  // PUSCH record, 0 when the packet has none.
  int pucch_tx_power = 0, pusch_tx_power = 0, pusch_rbs = 0, pusch_mod = 0, pusch_mcs = 0;
  bool have_pucch = false, have_pusch = false;
  bool fits = num > 0;
  const int min_record = l->head_bytes + l->short_mask_bytes + l->tail_bytes;
  int start = l->first_record_byte;
  for (int k = 0; fits && k < num; ++k) {
    if (start + min_record > MODEM_STATS_READABLE_LEN) {
      fits = false;
      break;
    }
    int is_pusch = 0, long_mask = 0;
    if (!modem_stats_base_to_bit(8 * start) || !modem_stats_log_bits(l->is_pusch, 0, &is_pusch) ||
        !modem_stats_log_bits(l->long_mask, 0, &long_mask)) {
      return false;
    }
    const int after_mask =
        start + l->head_bytes + (long_mask != 0 ? l->long_mask_bytes : l->short_mask_bytes);
    const int next = after_mask + l->tail_bytes;
    if (next > MODEM_STATS_READABLE_LEN) {
      fits = false;
      break;
    }
    const bool wanted = is_pusch != 0 ? !have_pusch : !have_pucch;
    if (wanted) {
      int tx_power = 0;
      if (!modem_stats_base_to_bit(8 * after_mask) ||
          !modem_stats_log_bits(l->tx_power, 0, &tx_power)) {
        return false;
      }
      if (is_pusch == 0) {
        pucch_tx_power = tx_power;
        have_pucch = true;
      } else {
        if (!modem_stats_log_bits(l->modulation, 0, &pusch_mod) ||
            !modem_stats_log_bits(l->rbs, 0, &pusch_rbs) ||
            !modem_stats_log_bits(l->mcs, 0, &pusch_mcs)) {
          return false;
        }
        pusch_tx_power = tx_power;
        have_pusch = true;
      }
    }
    start = next;
  }

  modem_stats_printf(
      "version = %d, num = %d, pucch_tx_power %d, pusch_num_res_blocks = %d, "
      "pusch_modulation_type = %d, pusch_tx_power = %d, pusch_mcs = %d\n",
      static_cast<int>(version), num, pucch_tx_power, pusch_rbs, pusch_mod, pusch_tx_power,
      pusch_mcs);
  if (!fits) return modem_stats_not_valid(num, kName);

  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("num", num, 1),
       modem_stats_pk_int("pucch_tx_power", static_cast<uint8_t>(pucch_tx_power), 1),
       modem_stats_pk_int("pusch_num_res_blocks", pusch_rbs, 1),
       modem_stats_pk_int("pusch_modulation_type", pusch_mod, 1),
       modem_stats_pk_int("pusch_tx_power", static_cast<uint8_t>(pusch_tx_power), 1),
       modem_stats_pk_int("pusch_mcs", pusch_mcs, 1)},
      83, stat_id, record);
}

namespace {

// PUSCH and PUCCH power control share everything but names and positions.
template <size_t N>
bool parse_power_control(const power_control_layout (&table)[N], const char *name,
                         const char *power_name, uint32_t stat_id_value, uint32_t *stat_id,
                         modem_stats_single **record) {
  uint32_t version = 0;
  const power_control_layout *l = modem_stats_log_read_version(table, name, &version);
  if (l == nullptr) return false;
  int num_records = 0, tx_power = 0, path_loss = 0;
  if (!modem_stats_log_bits(l->num_records, 0, &num_records)) return false;
  const bool fits = modem_stats_log_records_fit(kPcFirstRecordByte, num_records, kPcRecordBytes);
  if (fits && (!modem_stats_log_bits(l->tx_power, 0, &tx_power) ||
               !modem_stats_log_bits(l->dl_path_loss, 0, &path_loss))) {
    return false;
  }
  modem_stats_printf("version = %d, num_records = %d, %s %d, dl_path_loss %d\n",
                     static_cast<int>(version), num_records, power_name, tx_power, path_loss);
  if (!fits) return modem_stats_not_valid(num_records, name);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("num_records", num_records, 1),
       modem_stats_pk_int(power_name, static_cast<uint8_t>(tx_power), 1),
       modem_stats_pk_int("dl_path_loss", path_loss, 1)},
      stat_id_value, stat_id, record);
}

}  // namespace

bool modem_stats_parse_b16e_diag_log_lte_pusch_power_control(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  return parse_power_control(kPuschPcLayouts,
                             "modem_stats_parse_b16e_diag_log_lte_pusch_power_control",
                             "pusch_tx_power", 98, stat_id, record);
}

bool modem_stats_parse_b16f_diag_log_lte_pucch_power_control(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  return parse_power_control(kPucchPcLayouts,
                             "modem_stats_parse_b16f_diag_log_lte_pucch_power_control",
                             "pucch_tx_power", 128, stat_id, record);
}

bool modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication(uint32_t *stat_id,
                                                               modem_stats_single **record) {
  constexpr const char *kName = "modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication";
  uint32_t version = 0;
  const pdsch_layout *l = modem_stats_log_read_version(kPdschLayouts, kName, &version);
  if (l == nullptr) return false;
  int num_records = 0, mcs = 0, rb = 0, mod_type = 0, rnti_type = 0, num_layers = 0;
  if (!modem_stats_log_bits(l->num_records, 0, &num_records)) return false;
  const bool fits = modem_stats_log_records_fit(l->first_record_byte, num_records, l->record_bytes);
  if (fits && (!modem_stats_log_bits(l->mcs, 0, &mcs) || !modem_stats_log_bits(l->rb, 0, &rb) ||
               !modem_stats_log_bits(l->mod_type, 0, &mod_type) ||
               !modem_stats_log_bits(l->rnti_type, 0, &rnti_type) ||
               !modem_stats_log_bits(l->num_layers, 0, &num_layers))) {
    return false;
  }
  modem_stats_printf(
      "version = %d, num_records = %d, pdsch_mcs = %d, pdsch_rb = %d, pdsch_mod_type = %d, "
      "pdsch_rnti_type = %d, num_layers = %d\n",
      static_cast<int>(version), num_records, mcs, rb, mod_type, rnti_type, num_layers);
  if (!fits) return modem_stats_not_valid(num_records, kName);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("num_records", num_records, 1),
       modem_stats_pk_int("pdsch_mcs", mcs, 1), modem_stats_pk_int("pdsch_rb", rb, 1),
       modem_stats_pk_int("pdsch_mod_type", mod_type, 1),
       modem_stats_pk_int("pdsch_rnti_type", rnti_type, 1),
       modem_stats_pk_int("num_layers", num_layers, 1)},
      93, stat_id, record);
}

bool modem_stats_parse_b193_diag_log_lte_srv_meas(uint32_t *stat_id, modem_stats_single **record) {
  constexpr const char *kName = "modem_stats_parse_b193_diag_log_lte_srv_meas";
  uint32_t version = 0;
  if (!modem_stats_log_open(kSrvMeasVersions, kName, &version)) return false;
  int sub_version = 0;
  const srv_meas_layout *l =
      modem_stats_log_sub_packet(kSrvMeasSubPacketIdField, kSrvMeasSubPacketId, kSrvMeasSubVersion,
                                 kSrvMeasLayouts, kName, &sub_version);
  if (l == nullptr) return false;

  int64_t earfcn = 0;
  int num_cells = 0, rx_valid = 0;
  if (!modem_stats_unpk_bits(kSrvMeasEarfcn, 0, &earfcn) ||
      !modem_stats_log_bits(kSrvMeasNumCells, 0, &num_cells) ||
      !modem_stats_log_bits(kSrvMeasRxValid, 0, &rx_valid)) {
    return false;
  }
  const bool fits = modem_stats_log_records_fit(l->first_cell_byte, num_cells, l->cell_stride);

  // The first cell only.
  const int cell = byte_bit(l->first_cell_byte);
  int pci = 0, srv_cell_idx = 0, is_srv_cell = 0;
  int rsrp[kRxChains] = {}, rsrq[kRxChains] = {}, rssi[kRxChains] = {}, snr[kRxChains] = {};
  if (fits) {
    if (!modem_stats_log_bits(l->pci, cell, &pci) ||
        !modem_stats_log_bits(l->srv_cell_idx, cell, &srv_cell_idx) ||
        !modem_stats_log_bits(l->is_srv_cell, cell, &is_srv_cell)) {
      return false;
    }
    for (int i = 0; i < kRxChains; ++i) {
      if (!modem_stats_log_bits(l->rsrp[i], cell, &rsrp[i]) ||
          !modem_stats_log_bits(l->rsrq[i], cell, &rsrq[i]) ||
          !modem_stats_log_bits(l->rssi[i], cell, &rssi[i]) ||
          !modem_stats_log_bits(l->snr[i], cell, &snr[i])) {
        return false;
      }
    }
  }

  modem_stats_printf(
      "version = %d, earfcn = %d, rx_valid = %d, pci = %d, is_srv_cell = %d, srv_cell_idx = %d, "
      "num_cells = %d\n",
      sub_version, static_cast<int>(earfcn), rx_valid, pci, is_srv_cell, srv_cell_idx, num_cells);
  if (!fits) return modem_stats_not_valid(num_cells, kName);

  const uint32_t kind = is_srv_cell == 0    ? kStatIdOtherCell
                        : srv_cell_idx == 0 ? kStatIdPcell
                                            : kStatIdScell;
  modem_stats_pk_begin();
  if (!modem_stats_pk("version", sub_version, 1) || !modem_stats_pk("version_ssmr", version, 1) ||
      !modem_stats_pk("earfcn", earfcn, 4) || !modem_stats_pk("pci", pci, 2) ||
      !modem_stats_pk("is_srv_cell", is_srv_cell, 1) || !modem_stats_pk("rx_valid", rx_valid, 2)) {
    return false;
  }
  for (int i = 0; i < kRxChains; ++i) {
    if (!modem_stats_pk_f32(l->rsrp[i].name, modem_stats_i2f_rsrp(rsrp[i])) ||
        !modem_stats_pk_f32(l->rsrq[i].name, modem_stats_i2f_rsrq(rsrq[i])) ||
        !modem_stats_pk_f32(l->rssi[i].name, modem_stats_i2f_rssi(rssi[i])) ||
        !modem_stats_pk_f32(l->snr[i].name, modem_stats_i2f_snr(snr[i]))) {
      return false;
    }
  }
  return modem_stats_pk_finish(kind, stat_id, record);
}
