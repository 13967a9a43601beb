// The category handlers. Every handler takes the whole command line (argv[1]
// is still the category text, re-checked by the handler) and returns a 32-bit
// status that main ignores.
#pragma once

#include <cstdint>

int32_t velmar_test_nv_do(int argc, char **argv);               // category 1
int32_t velmar_test_rf_do(int argc, char **argv);               // category 3
int32_t velmar_test_nvefs_do(int argc, char **argv);            // category 4
int32_t velmar_test_cmn_do(int argc, char **argv);              // category 5
int32_t velmar_test_qmi_send_data_do(int argc, char **argv);    // category 6
int32_t velmar_test_modem_stats_do(int argc, char **argv);      // category 7
int32_t velmar_test_at_cmd_do(int argc, char **argv);           // category 8
int32_t velmar_test_qmi_modem_stats_do(int argc, char **argv);  // category 9
