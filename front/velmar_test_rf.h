// Category 3: the RF factory tests,
//   rpk 3 0 [value ...]                   GPIO test set
//   rpk 3 1 | rpk 3 2                     GPIO test get | close
//   rpk 3 3 v_ant v_sys v_band_list       TX antenna test set
//   rpk 3 4 | rpk 3 5                     TX antenna test get | close
// A set sends its record as Extend-QMI request id 4; the modem keeps it in an
// EFS file (sub 0), which get reads back and close deletes. The modem applies
// a setting after a reboot. Each returns 0, the client's or the EFS layer's
// error, or VELMAR_ERR_ARGC. The dispatcher velmar_test_rf_do is in
// front/velmar_handlers.h.
#pragma once

#include <cstdint>

// Sends count argc - 3 and the first 50 values (atoi) of argv[3] on.
int32_t velmar_gpio_test_set(int argc, char **argv);
int32_t velmar_gpio_test_get(int argc);
int32_t velmar_gpio_test_closed(int argc);
// v_ant and v_sys by atoi, the band mask by strtoul base 0; no range checks.
int32_t velmar_rf_tx_test_set(int argc, char **argv);
int32_t velmar_rf_tx_test_get(int argc);
int32_t velmar_rf_tx_test_closed(int argc);
