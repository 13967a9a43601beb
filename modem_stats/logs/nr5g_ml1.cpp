// NR5G ML1 log-packet parsers: serving beam (0xB975), measurement database
// (0xB97F), flow control (0xB981) and antenna switch diversity (0xB98F).
#include <cstdio>

#include "modem_stats/logs/nr5g_layout.h"
#include "modem_stats/modem_stats_conv.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

using modem_stats_nr5g_short::F;
using modem_stats_nr5g_short::I;
constexpr bool SIGNED = true;

// 0xB975 serving beam: raw RSRP and RSRQ in 1/128 dB.
enum { B975_RSRP, B975_RSRQ, B975_N };
constexpr modem_stats_nr5g_layout<B975_N> k_b975[] = {
    {0x20001, {F("rsrp_i", 12, 32, SIGNED), F("rsrq_i", 16, 32, SIGNED)}},
};

// 0xB97F measurement database: the layer count and the first layer's record
// (32 bytes from payload byte 16) with its serving cell.
enum { B97F_NUM_LAYERS, B97F_ARFCN, B97F_SERVING_IDX, B97F_PCI, B97F_RSRP0, B97F_RSRP1, B97F_N };
// clang-format off
constexpr modem_stats_nr5g_layout<B97F_N> k_b97f[] = {
    {0x20007, {F("num_layers", 4, 8), F("arfcn", 16, 32), F("serving_cell_idx", 21, 8),
               F("pci", 22, 16), F("rsrp_rx0", 28, 32, SIGNED), F("rsrp_rx1", 32, 32, SIGNED)}},
};
// clang-format on
constexpr int B97F_LAYERS = 16;
constexpr int B97F_LAYER_SIZE = 32;
// Record type by the layer's serving cell index: the primary cell has its own.
constexpr uint32_t B97F_STAT_PRIMARY = 139;
constexpr uint32_t B97F_STAT_OTHER = 140;

// 0xB981 flow control, provisional (no public definition): the two states,
// the action count and the first 4-byte action from payload byte 8.
enum {
  B981_STATE_LAST,
  B981_STATE_CURRENT,
  B981_NUM_ACTION,
  B981_TYPE,
  B981_LEVEL_LAST,
  B981_LEVEL_CURRENT,
  B981_N
};
// clang-format off
constexpr modem_stats_nr5g_layout<B981_N> k_b981[] = {
    {0x20000, {F("state_last", 4, 8), F("state_current", 5, 8), F("num_action", 6, 8),
               F("action_type", 8, 8), F("level_last", 9, 8), F("level_current", 10, 8)}},
};
// clang-format on

// 0xB98F antenna switch diversity: six 24-byte chain blocks from payload byte
// 32 (rx 0..3, then tx 0..1), each with its old and new antenna.
constexpr int B98F_N = 12;
constexpr const char *k_b98f_names[B98F_N] = {
    "ant_rx_0_old", "ant_rx_0_new", "ant_rx_1_old", "ant_rx_1_new", "ant_rx_2_old", "ant_rx_2_new",
    "ant_rx_3_old", "ant_rx_3_new", "ant_tx_0_old", "ant_tx_0_new", "ant_tx_1_old", "ant_tx_1_new"};
constexpr modem_stats_nr5g_layout<B98F_N> b98f_row(uint32_t version, int blocks, int block_size,
                                                   int old_at, int new_at) {
  modem_stats_nr5g_layout<B98F_N> row{version, {}};
  for (int i = 0; i < B98F_N; ++i) {
    row.f[i] = F(k_b98f_names[i], blocks + block_size * (i / 2) + (i % 2 ? new_at : old_at), 8);
  }
  return row;
}
constexpr modem_stats_nr5g_layout<B98F_N> k_b98f[] = {
    //       version  blocks  block size  old antenna  new antenna
    b98f_row(0x20002, 32, 24, 20, 23),
};

}  // namespace

bool modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam(uint32_t *stat_id,
                                                           modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b975, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B975_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;
  const float rsrp = modem_stats_nr5g_rsrp(static_cast<int32_t>(v[B975_RSRP]));
  const float rsrq = modem_stats_nr5g_rsrq(static_cast<int32_t>(v[B975_RSRQ]));

  modem_stats_printf("version = %d, rsrp_i = %d, rsrq_i = %d, rsrp = %.2f, rsrq = %.2f\n",
                     I(version), I(v[B975_RSRP]), I(v[B975_RSRQ]), rsrp, rsrq);
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_float("rsrp", rsrp),
       modem_stats_pk_float("rsrq", rsrq)},
      91, stat_id, record);
}

bool modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext(
    uint32_t *stat_id, modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b97f, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B97F_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf("version = %d, num_layers = %d\n", I(version), I(v[B97F_NUM_LAYERS]));
  const int64_t n = v[B97F_NUM_LAYERS];
  if (!modem_stats_log_records_fit(B97F_LAYERS, n, B97F_LAYER_SIZE)) {
    return modem_stats_not_valid(n, __func__);
  }

  const uint32_t stat = v[B97F_SERVING_IDX] == 0 ? B97F_STAT_PRIMARY : B97F_STAT_OTHER;
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 4), modem_stats_pk_int("num_layers", n, 1),
       modem_stats_pk_int("arfcn", v[B97F_ARFCN], 4), modem_stats_pk_int("pci", v[B97F_PCI], 2),
       modem_stats_pk_float("rsrp_rx0",
                            modem_stats_nr5g_rsrp_ex(static_cast<int32_t>(v[B97F_RSRP0]))),
       modem_stats_pk_float("rsrp_rx1",
                            modem_stats_nr5g_rsrp_ex(static_cast<int32_t>(v[B97F_RSRP1])))},
      stat, stat_id, record);
}

bool modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information(uint32_t *stat_id,
                                                             modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b981, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B981_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf(
      "version = %d, state_last = %d, state_current = %d, num_action = %d, action_type = %d, "
      "level_last = %d, level_current = %d\n",
      I(version), I(v[B981_STATE_LAST]), I(v[B981_STATE_CURRENT]), I(v[B981_NUM_ACTION]),
      I(v[B981_TYPE]), I(v[B981_LEVEL_LAST]), I(v[B981_LEVEL_CURRENT]));
  if (v[B981_NUM_ACTION] == 0) return modem_stats_not_valid(v[B981_NUM_ACTION], __func__);

  return modem_stats_nr5g_pack_row(version, row->f, v, 1, 145, stat_id, record);
}

bool modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity(
    uint32_t *stat_id, modem_stats_single **record) {
  uint32_t version = 0;
  const auto *row = modem_stats_nr5g_open(k_b98f, __func__, &version);
  if (row == nullptr) return false;
  int64_t v[B98F_N];
  if (!modem_stats_nr5g_read_all(row->f, 0, v)) return false;

  modem_stats_printf(
      "version = %d, ant_rx_0_old = %d, ant_rx_0_new = %d, ant_rx_1_old = %d, ant_rx_1_new = %d, "
      "ant_rx_2_old = %d, ant_rx_2_new = %d\n",
      I(version), I(v[0]), I(v[1]), I(v[2]), I(v[3]), I(v[4]), I(v[5]));
  return modem_stats_nr5g_pack_row(version, row->f, v, 1, 113, stat_id, record);
}
