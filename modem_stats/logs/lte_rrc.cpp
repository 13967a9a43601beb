// LTE RRC serving cell information (0xB0C2).
#include <cstdio>

#include "modem_stats/logs/log_steps.h"
#include "modem_stats/modem_stats_out.h"
#include "modem_stats/modem_stats_parsers.h"

namespace {

constexpr const char *kName = "modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info";

// Offsets from the bit base after the version byte (payload byte n = bit 8n - 8).
//   byte 0 version | 1 pci(2) | 3 dl_earfcn(4) | 7 ul_earfcn(4) | 11 dl bw | 12 ul bw
//        13 cgi(4) | 17 tac(2) | 19 band(4) | 23 mcc(2) | 25 mnc_num | 26 mnc(2) | 28 access
struct cell_info_layout {
  uint32_t version;
  modem_stats_field pci, dl_earfcn, cgi, tac, band, mcc, mnc_num, mnc;
};
constexpr cell_info_layout kLayouts[] = {
    {3,
     {"pci", 0, 16},
     {"dl_earfcn", 16, 32},
     {"cgi", 96, 32},
     {"tac", 128, 16},
     {"band", 144, 32},
     {"mcc", 176, 16},
     {"mnc_num", 192, 8},
     {"mnc", 200, 16}},
};

}  // namespace

bool modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info(uint32_t *stat_id,
                                                               modem_stats_single **record) {
  uint32_t version = 0;
  const cell_info_layout *l = modem_stats_log_read_version(kLayouts, kName, &version);
  if (l == nullptr) return false;

  int64_t pci = 0, dl_earfcn = 0, cgi = 0, tac = 0, band = 0, mcc = 0, mnc_num = 0, mnc = 0;
  if (!modem_stats_unpk_bits(l->pci, 0, &pci) ||
      !modem_stats_unpk_bits(l->dl_earfcn, 0, &dl_earfcn) ||
      !modem_stats_unpk_bits(l->cgi, 0, &cgi) || !modem_stats_unpk_bits(l->tac, 0, &tac) ||
      !modem_stats_unpk_bits(l->band, 0, &band) || !modem_stats_unpk_bits(l->mcc, 0, &mcc) ||
      !modem_stats_unpk_bits(l->mnc_num, 0, &mnc_num) || !modem_stats_unpk_bits(l->mnc, 0, &mnc)) {
    return false;
  }

  modem_stats_printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %d, pci %d\n",
                     static_cast<int>(version), static_cast<int>(mcc), static_cast<int>(mnc_num),
                     static_cast<int>(mnc), static_cast<int>(tac), static_cast<int>(cgi),
                     static_cast<int>(pci));
  return modem_stats_log_pack(
      {modem_stats_pk_int("version", version, 1), modem_stats_pk_int("pci", pci, 2),
       modem_stats_pk_int("dl_earfcn", dl_earfcn, 4), modem_stats_pk_int("cgi", cgi, 4),
       modem_stats_pk_int("tac", tac, 2), modem_stats_pk_int("band", band, 4),
       modem_stats_pk_int("mcc", mcc, 2), modem_stats_pk_int("mnc_num", mnc_num, 1),
       modem_stats_pk_int("mnc", mnc, 2)},
      129, stat_id, record);
}
