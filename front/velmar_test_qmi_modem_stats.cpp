#include "front/velmar_test_qmi_modem_stats.h"

#include <modem_api.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "common/velmar_bytes.h"
#include "front/velmar_cmd_ids.h"
#include "front/velmar_handlers.h"
#include "front/velmar_help.h"

namespace {

// A good answer is copied whole from the result into the buffer.
static_assert(sizeof(modem_api_stats_result::data) >= VELMAR_TESSERA_DATA_MAX);

// Arguments of modem_api_set_tessera_feature_status that start the feature;
// their meaning is the library's.
constexpr int kFeatureArgs[] = {2, 1, 1, 1};

int32_t g_tessera_client_id = -1;
// Counts the queries of this process; the library is given it with each.
uint32_t g_tessera_query_number = 0;

// The data of the last good answer, and the read cursor over it. This cursor
// is this reader's own, apart from the statistics engine's.
uint8_t g_tessera_data_buf[VELMAR_TESSERA_DATA_MAX];
int32_t g_tessera_data_left = 0;
int32_t g_pK_DATA_CNT = 0;
uint32_t g_tessera_data_id = 0;

enum class field_type : uint8_t { u8, u16, u32, i32, f32 };

constexpr int width_of(field_type t) {
  switch (t) {
    case field_type::u8:
      return 1;
    case field_type::u16:
      return 2;
    case field_type::u32:
    case field_type::i32:
    case field_type::f32:
      return 4;
  }
  return 0;
}

// One field of a record: its name in refusal lines, its type, and its label
// in the metric line (nullptr: read, not printed).
struct field {
  const char *name;
  field_type type;
  const char *label;
};

struct field_value {
  int64_t i = 0;
  double f = 0;
};

constexpr int layout_size(std::span<const field> layout) {
  int n = 0;
  for (const auto &f : layout) n += width_of(f.type);
  return n;
}

using enum field_type;

constexpr field k4g[] = {
    {"version", u8, nullptr},      {"version_ssmr", u8, nullptr}, {"earfcn", i32, "earfcn"},
    {"pci", u16, "pci"},           {"is_srv_cell", u8, nullptr},  {"rx_valid", u16, "rx_valid"},
    {"rsrp_rx0", f32, "rsrp_rx0"}, {"rsrq_rx0", f32, "rsrq_rx0"}, {"rssi_rx0", f32, "rssi_rx0"},
    {"snr_rx0", f32, "snr_rx0"},   {"rsrp_rx1", f32, "rsrp_rx1"}, {"rsrq_rx1", f32, "rsrq_rx1"},
    {"rssi_rx1", f32, "rssi_rx1"}, {"snr_rx1", f32, "snr_rx1"},   {"rsrp_rx2", f32, "rsrp_rx2"},
    {"rsrq_rx2", f32, "rsrq_rx2"}, {"rssi_rx2", f32, "rssi_rx2"}, {"snr_rx2", f32, "snr_rx2"},
    {"rsrp_rx3", f32, "rsrp_rx3"}, {"rsrq_rx3", f32, "rsrq_rx3"}, {"rssi_rx3", f32, "rssi_rx3"},
    {"snr_rx3", f32, "snr_rx3"},
};
constexpr field k5gRssi[] = {
    {"version", u32, nullptr},  {"rssi0", f32, "rssi_rx0"}, {"rssi1", f32, "rssi_rx1"},
    {"rssi2", f32, "rssi_rx2"}, {"rssi3", f32, "rssi_rx3"},
};
constexpr field k5gSnr[] = {
    {"version", u32, nullptr}, {"snr0", f32, "snr_rx0"}, {"snr1", f32, "snr_rx1"},
    {"snr2", f32, "snr_rx2"},  {"snr3", f32, "snr_rx3"},
};
constexpr field k5gAnt[] = {
    {"version", u32, nullptr},
    {"ant_rx_0_old", u8, "ant_rx_0_old"},
    {"ant_rx_0_new", u8, "ant_rx_0_new"},
    {"ant_rx_1_old", u8, "ant_rx_1_old"},
    {"ant_rx_1_new", u8, "ant_rx_1_new"},
    {"ant_rx_2_old", u8, "ant_rx_2_old"},
    {"ant_rx_2_new", u8, "ant_rx_2_new"},
    {"ant_rx_3_old", u8, "ant_rx_3_old"},
    {"ant_rx_3_new", u8, "ant_rx_3_new"},
    {"ant_tx_0_old", u8, "ant_tx_0_old"},
    {"ant_tx_0_new", u8, "ant_tx_0_new"},
    {"ant_tx_1_old", u8, "ant_tx_1_old"},
    {"ant_tx_1_new", u8, "ant_tx_1_new"},
};
constexpr field kWcdma[] = {
    {"version", u8, nullptr},
    {"rx_agc_0", f32, "rx_agc_0"},
    {"rx_agc_1", f32, "rx_agc_1"},
};
constexpr field kGsm[] = {
    {"version", u8, nullptr},
    {"rx_prx", f32, "rx_prx"},
    {"rx_drx", f32, "rx_drx"},
};
static_assert(layout_size(k4g) == 75);
static_assert(layout_size(k5gRssi) == 20);
static_assert(layout_size(k5gSnr) == 20);
static_assert(layout_size(k5gAnt) == 16);
static_assert(layout_size(kWcdma) == 9);
static_assert(layout_size(kGsm) == 9);

constexpr size_t kMaxFields = std::size(k4g);

// Takes each field of `layout` from the cursor in turn. On a refusal prints
// its line and returns false; fields already read stay consumed.
bool read_fields(std::span<const field> layout, std::span<field_value> out) {
  for (size_t k = 0; k < layout.size(); ++k) {
    const field &f = layout[k];
    const int width = width_of(f.type);
    if (g_tessera_data_left < width) {
      printf("g_tessera_data_left(%d) is not enough for %s, id(0x%x)", g_tessera_data_left, f.name,
             g_tessera_data_id);
      putchar('\n');
      return false;
    }
    if (g_pK_DATA_CNT < 0) {
      // The line has always shown the bytes left here, not the position.
      printf("g_pK_DATA_CNT(%d) is can not < 0 for %s, id(0x%x)", g_tessera_data_left, f.name,
             g_tessera_data_id);
      putchar('\n');
      return false;
    }
    const uint64_t raw = velmar_load_le(g_tessera_data_buf + g_pK_DATA_CNT, width);
    switch (f.type) {
      case i32:
        out[k].i = static_cast<int32_t>(raw);
        break;
      case f32:
        out[k].f = std::bit_cast<float>(static_cast<uint32_t>(raw));
        break;
      default:
        out[k].i = static_cast<int64_t>(raw);
        break;
    }
    g_pK_DATA_CNT += width;
    g_tessera_data_left -= width;
  }
  return true;
}

// "ASDIV DATA: " and each printed field as "<label><sep><value>", ", " apart.
void print_metrics(std::span<const field> layout, std::span<const field_value> values,
                   const char *sep) {
  fputs("ASDIV DATA: ", stdout);
  bool first = true;
  for (size_t k = 0; k < layout.size(); ++k) {
    const field &f = layout[k];
    if (f.label == nullptr) continue;
    if (!first) fputs(", ", stdout);
    first = false;
    if (f.type == f32) {
      printf("%s%s%.2f", f.label, sep, values[k].f);
    } else {
      printf("%s%s%d", f.label, sep, static_cast<int>(values[k].i));
    }
  }
  putchar('\n');
}

int read_record(uint32_t sub, uint32_t id, std::span<const field> layout, const char *sep) {
  if (velmar_test_qmi_modem_stats_get(sub, id) != 0) return 1;
  field_value values[kMaxFields];
  if (!read_fields(layout, values)) return 1;
  print_metrics(layout, values, sep);
  return 0;
}

template <uint32_t Id>
int read_4g(uint32_t sub) {
  return velmar_test_qmi_modem_stats_4g_rssi(sub, Id);
}

struct opt_reader {
  int opt;
  int (*read)(uint32_t sub);
};
constexpr opt_reader kReaders[] = {
    {0, read_4g<VELMAR_TESSERA_ID_4G_PCC>},       {1, read_4g<VELMAR_TESSERA_ID_4G_SCC1>},
    {2, read_4g<VELMAR_TESSERA_ID_4G_SCC1 + 1>},  {3, read_4g<VELMAR_TESSERA_ID_4G_SCC1 + 2>},
    {4, read_4g<VELMAR_TESSERA_ID_4G_SCC1 + 3>},  {5, read_4g<VELMAR_TESSERA_ID_4G_SCC1 + 4>},
    {6, read_4g<VELMAR_TESSERA_ID_4G_SCC1 + 5>},  {7, velmar_test_qmi_modem_stats_5g_rssi},
    {8, velmar_test_qmi_modem_stats_5g_snr},      {9, velmar_test_qmi_modem_stats_5g_ant_diversity},
    {50, velmar_test_qmi_modem_stats_wcdma_rssi}, {51, velmar_test_qmi_modem_stats_gsm_rssi},
};

// Every option the help offers has its reader, in the help's order.
constexpr bool readers_match_help() {
  if (std::size(kReaders) != std::size(VELMAR_MODEM_STATS_OPTS)) return false;
  for (size_t i = 0; i < std::size(kReaders); ++i) {
    if (kReaders[i].opt != VELMAR_MODEM_STATS_OPTS[i].opt) return false;
  }
  return true;
}
static_assert(readers_match_help());

}  // namespace

void velmar_test_qmi_modem_stats_callback_event_cb(int, void *, int) {}

void velmar_test_qmi_modem_stats_operational_status_cb(int) {}

void velmar_qmi_modem_stats_api_init() {
  if (g_tessera_client_id != -1) {
    modem_api_free_client(g_tessera_client_id);
    g_tessera_client_id = -1;
  }
  // Results are not looked at: a failed init leaves the id at -1, which
  // every query reports.
  modem_api_release();
  modem_api_init();
  modem_api_init_client(0, velmar_test_qmi_modem_stats_callback_event_cb,
                        velmar_test_qmi_modem_stats_operational_status_cb, &g_tessera_client_id);
}

void velmar_test_qmi_modem_stats_start() {
  const int result = modem_api_set_tessera_feature_status(
      g_tessera_client_id, kFeatureArgs[0], kFeatureArgs[1], kFeatureArgs[2], kFeatureArgs[3]);
  if (result != 0)
    printf("modem_api_set_tessera_feature_status, start fail, result = %d\n", result);
}

void velmar_qmi_modem_stats_api_deinit() {
  if (g_tessera_client_id != -1) modem_api_free_client(g_tessera_client_id);
  g_tessera_client_id = -1;
  modem_api_release();
}

int velmar_test_qmi_modem_stats_get(uint32_t sub, uint32_t id) {
  g_tessera_data_left = 0;
  if (g_tessera_client_id == -1) {
    puts("tessera qmi is not yet inited");
    return 1;
  }
  if (sub >= 2) {
    printf("modem_api_get_stats_parameter, sub(%d) is invalid\n", static_cast<int>(sub));
    return 1;
  }
  const auto isub = static_cast<int>(sub);
  const auto iid = static_cast<int>(id);
  const auto number = static_cast<int>(++g_tessera_query_number);
  const unsigned id_list[] = {id};
  modem_api_stats_result result{};
  const int ret = modem_api_get_stats_parameter(g_tessera_client_id, sub,
                                                static_cast<unsigned>(number), 1, id_list, &result);
  if (ret != 0) {
    printf("Fail to get data fail, number = %d, ret = %d, sub = %d, id = %d\n", number, ret, isub,
           iid);
    return 1;
  }
  const auto id_num = static_cast<int>(result.id_num);
  const auto data_len = static_cast<int>(result.data_len);
  // The answer's checks in order; the first that fails names itself in the
  // refusal line.
  char why[80] = "";
  if (id_num == 0) {
    snprintf(why, sizeof why, "empty");
  } else if (id_num != 1) {
    snprintf(why, sizeof why, "id num error");
  } else if (result.id != id) {
    snprintf(why, sizeof why, "ret_id(%d) is invalid", static_cast<int>(result.id));
  } else if (result.sub != sub) {
    snprintf(why, sizeof why, "ret_sub(%d) is invalid", static_cast<int>(result.sub));
  } else if (result.data_len == 0 || result.data_len > VELMAR_TESSERA_DATA_MAX) {
    snprintf(why, sizeof why, "data_len(%d) is invalid, should be in (0, %d]", data_len,
             VELMAR_TESSERA_DATA_MAX);
  }
  if (why[0] != '\0') {
    printf("Fail to get data, %s, number = %d, sub = %d, ret id_num = %d, id = %d\n", why, number,
           isub, id_num, iid);
    return 1;
  }
  printf("Success to get data, number = %d, sub = %d, ret id_num = %d, id = %d, data_len = %d\n",
         number, isub, id_num, iid, data_len);
  memcpy(g_tessera_data_buf, result.data, result.data_len);
  g_tessera_data_left = data_len;
  g_pK_DATA_CNT = 0;
  g_tessera_data_id = id;
  return 0;
}

int velmar_test_qmi_modem_stats_4g_rssi(uint32_t sub, uint32_t id) {
  return read_record(sub, id, k4g, ": ");
}

int velmar_test_qmi_modem_stats_5g_rssi(uint32_t sub) {
  return read_record(sub, VELMAR_TESSERA_ID_5G_RSSI, k5gRssi, ": ");
}

int velmar_test_qmi_modem_stats_5g_snr(uint32_t sub) {
  return read_record(sub, VELMAR_TESSERA_ID_5G_SNR, k5gSnr, ": ");
}

int velmar_test_qmi_modem_stats_5g_ant_diversity(uint32_t sub) {
  return read_record(sub, VELMAR_TESSERA_ID_5G_ANT, k5gAnt, " = ");
}

int velmar_test_qmi_modem_stats_wcdma_rssi(uint32_t sub) {
  return read_record(sub, VELMAR_TESSERA_ID_WCDMA, kWcdma, ": ");
}

int velmar_test_qmi_modem_stats_gsm_rssi(uint32_t sub) {
  return read_record(sub, VELMAR_TESSERA_ID_GSM, kGsm, ": ");
}

void velmar_test_qmi_modem_stats_hdl(int opt, int sub) {
  printf("opt = %d, sub = %d, g_tessera_client_id = %d\n", opt, sub, g_tessera_client_id);
  for (const auto &r : kReaders) {
    if (r.opt == opt) {
      // The reader has printed what happened; nothing more to report.
      r.read(static_cast<uint32_t>(sub));
      return;
    }
  }
  printf("velmar_test_qmi_modem_stats_hdl: Unknown opt(%d), sub(%d)\n", opt, sub);
}

int32_t velmar_test_qmi_modem_stats_do(int argc, char **argv) {
  if (argc < 4) {
    velmar_note_too_few_parameters();
    return show_help(VELMAR_CAT_QMI_MODEM_STATS);
  }
  if (!velmar_category_matches(argv, VELMAR_CAT_QMI_MODEM_STATS)) {
    return show_help(VELMAR_CAT_QMI_MODEM_STATS);
  }
  const int opt = atoi(argv[2]);
  const int sub = atoi(argv[3]);
  velmar_qmi_modem_stats_api_init();
  velmar_test_qmi_modem_stats_start();
  velmar_test_qmi_modem_stats_hdl(opt, sub);
  velmar_qmi_modem_stats_api_deinit();
  return 0;
}
