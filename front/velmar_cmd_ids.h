// Command categories, sub-operations and argument limits. The help text and the
// argument checks both print and test these same constants.
#pragma once

#include <cstdint>

#include "common/velmar_status.h"  // VELMAR_ERR_ARGC, with the other codes

// Categories (argv[1]).
inline constexpr int VELMAR_CAT_NV = 1;
inline constexpr int VELMAR_CAT_RF = 3;
inline constexpr int VELMAR_CAT_NVEFS = 4;
inline constexpr int VELMAR_CAT_CMN = 5;
inline constexpr int VELMAR_CAT_QMI_SEND = 6;
inline constexpr int VELMAR_CAT_MODEM_STATS = 7;
inline constexpr int VELMAR_CAT_AT = 8;
inline constexpr int VELMAR_CAT_QMI_MODEM_STATS = 9;

// Category 1: sub-operations are told apart by their first character.
inline constexpr int VELMAR_NV_TEST = 1;
inline constexpr int VELMAR_NV_BACKUP = 2;
inline constexpr int VELMAR_NV_RESTORE = 3;
inline constexpr int VELMAR_NV_DELETE = 4;

// Category 3.
inline constexpr int VELMAR_RF_GPIO_SET = 0;
inline constexpr int VELMAR_RF_GPIO_GET = 1;
inline constexpr int VELMAR_RF_GPIO_CLOSE = 2;
inline constexpr int VELMAR_RF_TX_SET = 3;
inline constexpr int VELMAR_RF_TX_GET = 4;
inline constexpr int VELMAR_RF_TX_CLOSE = 5;
inline constexpr int VELMAR_RF_OP_END = 6;  // first invalid sub-operation

// Category 4.
inline constexpr int VELMAR_NVEFS_NV_READ = 1;
inline constexpr int VELMAR_NVEFS_NV_WRITE = 2;
inline constexpr int VELMAR_NVEFS_NV_DELETE = 3;
inline constexpr int VELMAR_NVEFS_EFS_READ = 4;
inline constexpr int VELMAR_NVEFS_EFS_WRITE = 5;
inline constexpr int VELMAR_NVEFS_EFS_DELETE = 6;

// Category 5.
inline constexpr int VELMAR_CMN_DIAG_CMD = 0;
inline constexpr int VELMAR_CMN_CARD_STATUS_QUERY = 1;
inline constexpr int VELMAR_CMN_CARD_STATUS_GET = 2;
inline constexpr int VELMAR_CMN_CARD_STATUS_SET = 3;
inline constexpr int VELMAR_CMN_CARD_TYPE_QUERY = 4;
inline constexpr int VELMAR_CMN_MODEM_SSR = 5;
inline constexpr int VELMAR_CMN_FULL_DUMP = 6;
inline constexpr int VELMAR_CMN_NV_SYNC = 7;
inline constexpr int VELMAR_CMN_SAR_DSI = 8;
inline constexpr int VELMAR_CMN_OP_END = 9;  // first invalid sub-operation

// Category 6.
inline constexpr int VELMAR_QMI_ID_MIN = 0;
inline constexpr int VELMAR_QMI_ID_END = 6;  // first invalid request id
inline constexpr int VELMAR_QMI_SEND_MAX = 500;

// Category 7.
inline constexpr int VELMAR_STATS_TYPE_LOG = 0;
inline constexpr int VELMAR_STATS_TYPE_EVENT = 1;
inline constexpr int VELMAR_STATS_TYPE_DEBUG = 2;

// Category 8.
inline constexpr int VELMAR_AT_CMD_MAX_LEN = 100;

// Category 9: one row per signal metric option.
struct velmar_modem_stats_opt {
  int opt;            // argv[2]
  const char *label;  // as the help names it
};
inline constexpr velmar_modem_stats_opt VELMAR_MODEM_STATS_OPTS[] = {
    {0, "4G PCC rssi"},  {1, "4G SCC1 rssi"},     {2, "4G SCC2 rssi"}, {3, "4G SCC3 rssi"},
    {4, "4G SCC4 rssi"}, {5, "4G SCC5 rssi"},     {6, "4G SCC6 rssi"}, {7, "5G PCC rssi"},
    {8, "5G PCC snr"},   {9, "5G ANT diversity"}, {50, "WCDMA rssi"},  {51, "GSM rssi"},
};
