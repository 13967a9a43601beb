#include "front/velmar_help.h"

#include <cstdio>
#include <cstdlib>

#include "front/velmar_cmd_ids.h"
#include "front/velmar_test_dispatch.h"

void velmar_help_nv() {
  constexpr int c = VELMAR_CAT_NV;
  printf("%d: nv option cmd\n", c);
  printf("   rpk %d %d       /* nv test */\n", c, VELMAR_NV_TEST);
  printf("   rpk %d %d %d     /* nv backup(no privacy nvs) */\n", c, VELMAR_NV_BACKUP, 0);
  printf("   rpk %d %d %d     /* nv backup(have privacy nvs) */\n", c, VELMAR_NV_BACKUP, 1);
  printf("   rpk %d %d %d     /* nv restore(no goldencopy done after restore) */\n", c,
         VELMAR_NV_RESTORE, 0);
  printf("   rpk %d %d %d     /* nv restore(do goldencopy done after restore) */\n", c,
         VELMAR_NV_RESTORE, 1);
  printf("   rpk %d %d nvid  /* nv delete */\n", c, VELMAR_NV_DELETE);
}

void velmar_help_rf() {
  constexpr int c = VELMAR_CAT_RF;
  printf("%d: rf option cmd\n", c);
  printf("   rpk %d %d ...   /* gpio value setting(pls input enough gpio value by notice)*/\n", c,
         VELMAR_RF_GPIO_SET);
  printf("                  (need to reboot duing first setting) \n");
  printf("   rpk %d %d       /* get gpio test state */\n", c, VELMAR_RF_GPIO_GET);
  printf("   rpk %d %d       /* Close gpio test(need to reboot) */\n", c, VELMAR_RF_GPIO_CLOSE);
  printf(
      "   rpk %d %d v_ant v_sys v_band_list /* fix tx to upper(lower) antenna for given band "
      "list */\n",
      c, VELMAR_RF_TX_SET);
  printf("                  (need to reboot) \n");
  printf("                  v_ant: 0 - lower antenna, 1 - upper antenna \n");
  printf("                  v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte \n");
  printf(
      "                  v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: "
      "b1,b2,b4,b5,b8; \n");
  printf("                                            cdma: bc0, tds: b34,b39; lte: b1...b44 \n");
  printf(
      "                  v_band_list: bit44~bi63 - (only for lte: "
      "b28b,b40b,b41b,b41c,b39b,b252,\n");
  printf(
      "                                            "
      "b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  \n");
  printf("   rpk %d %d       /* get tx test state */\n", c, VELMAR_RF_TX_GET);
  printf("   rpk %d %d       /* Close tx test(need to reboot) */\n", c, VELMAR_RF_TX_CLOSE);
}

void velmar_help_nvefs() {
  constexpr int c = VELMAR_CAT_NVEFS;
  printf("%d: nvefs option cmd: \n", c);
  printf("   rpk %d %d sub nv_id             /* nv read */\n", c, VELMAR_NVEFS_NV_READ);
  printf("   rpk %d %d sub nv_id nv_data     /* nv write */\n", c, VELMAR_NVEFS_NV_WRITE);
  printf("   rpk %d %d sub nv_id             /* nv delete */\n", c, VELMAR_NVEFS_NV_DELETE);
  printf("   rpk %d %d sub efs_path          /* efs read */\n", c, VELMAR_NVEFS_EFS_READ);
  printf("   rpk %d %d sub efs_path efs_data /* efs write */\n", c, VELMAR_NVEFS_EFS_WRITE);
  printf("   rpk %d %d sub efs_path          /* efs delete */\n", c, VELMAR_NVEFS_EFS_DELETE);
}

void velmar_help_cmn() {
  constexpr int c = VELMAR_CAT_CMN;
  printf("%d: cmn option cmd: \n", c);
  printf("   rpk %d %d mode type time_out cmd_cnt     /* diag cmd */\n", c, VELMAR_CMN_DIAG_CMD);
  printf("                                    mode: 0 - callback, 1 - dci; \n");
  printf("                                    type: 0 - with result, 1 - without result; \n");
  printf(
      "                                    time_out: set time - with result, set 0 - without "
      "result. unit:ms */\n");
  printf("                                    cmd_cnt: diag cmd bytes */\n");
  printf("   rpk %d %d                       /* card status query: 0 - absent, 1 - present\n", c,
         VELMAR_CMN_CARD_STATUS_QUERY);
  printf(
      "   rpk %d %d sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - "
      "present */\n",
      c, VELMAR_CMN_CARD_STATUS_GET);
  printf(
      "   rpk %d %d sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 "
      "- sim; set_val: 0 - low, 1 - high */\n",
      c, VELMAR_CMN_CARD_STATUS_SET);
  printf(
      "   rpk %d %d                       /* card type query: 0 - err, 1 - single sim, 2 - mult "
      "sim */\n",
      c, VELMAR_CMN_CARD_TYPE_QUERY);
  printf("   rpk %d %d                       /* trigger SSR of modem */\n", c,
         VELMAR_CMN_MODEM_SSR);
  printf("   rpk %d %d                       /* trigger Full Dump */\n", c, VELMAR_CMN_FULL_DUMP);
  printf("   rpk %d %d                       /* trigger NV SYNC */\n", c, VELMAR_CMN_NV_SYNC);
  printf("   rpk %d %d                       /* get sar dsi */\n", c, VELMAR_CMN_SAR_DSI);
}

void velmar_help_qmi_send() {
  constexpr int c = VELMAR_CAT_QMI_SEND;
  printf("%d: velmar qmi send_data\n", c);
  printf("   rpk %d qmi_id qmi_data         /* qmi_id: Any binary data you will send */\n", c);
  printf("                                    qmi_data: Any binary data you will send \n");
}

void velmar_help_modem_stats() {
  constexpr int c = VELMAR_CAT_MODEM_STATS;
  printf("%d: velmar modem stats test\n", c);
  printf("   rpk %d type(%d/%d) id            /* type: %d - log; %d - event; */\n", c,
         VELMAR_STATS_TYPE_LOG, VELMAR_STATS_TYPE_EVENT, VELMAR_STATS_TYPE_LOG,
         VELMAR_STATS_TYPE_EVENT);
  printf("                                    id: id of log or event \n");
  printf("   rpk %d %d mask                  /* get the debug info of modem stats */\n", c,
         VELMAR_STATS_TYPE_DEBUG);
  printf(
      "                                    mask: 0x01 - main; 0x02 - diag; 0x04 - cm; 0x08 - "
      "uim \n");
}

void velmar_help_at() {
  constexpr int c = VELMAR_CAT_AT;
  printf("%d: velmar at command test\n", c);
  printf("   rpk %d atcmd_cxt               /* atcmd_cxt: at command context */\n", c);
  printf("                                    the len of atcmd can not > %d\n",
         VELMAR_AT_CMD_MAX_LEN);
}

void velmar_help_qmi_modem_stats() {
  constexpr int c = VELMAR_CAT_QMI_MODEM_STATS;
  printf("%d: velmar modem stats qmi test\n", c);
  for (const auto &row : VELMAR_MODEM_STATS_OPTS) {
    char cmd[32];
    snprintf(cmd, sizeof cmd, "rpk %d %d sub", c, row.opt);
    printf("   %-30s/* %s, sub: 0 - sub0; 1 - sub1 */\n", cmd, row.label);
  }
}

int show_help(uint32_t n) {
  puts(
      "\n=========== blew: radio_probe_kit(rpk) cmd help "
      "=======================================================");
  for (const auto &row : velmar_categories()) {
    if (n == 0 || n == static_cast<uint32_t>(row.category)) row.help();
  }
  return puts(
      "=========== above: radio_probe_kit(rpk) cmd help "
      "=======================================================\n");
}

void velmar_note_too_few_parameters() {
  puts("\nnote: Too few parameters, Pls refer to the following cmd:");
}

bool velmar_category_matches(char **argv, int category) {
  if (atoi(argv[1]) == category) return true;
  printf("\nnote: the first parameters should be %d, Pls refer to the following cmd:\n", category);
  return false;
}

std::optional<int32_t> velmar_category_refusal(int argc, char **argv, int category) {
  const auto help = static_cast<uint32_t>(category);
  if (argc >= 2 && !velmar_category_matches(argv, category)) return show_help(help);
  if (argc < 3) {
    velmar_note_too_few_parameters();
    return show_help(help);
  }
  return std::nullopt;
}

int32_t velmar_report_result(int32_t result, int category) {
  if (result != 0) {
    printf("\nnote: Error happen! error_code(%d)\n", result);
    show_help(static_cast<uint32_t>(category));
  }
  return result;
}
