// Diag command transport and the one-line hex printer.
#pragma once

#include <cstdint>

// Logs `data` as one line of upper-case hex ("%02X", then " %02X" each), at
// most 4096 bytes. A null pointer or a length outside 1..4096 is reported in
// the log instead.
void velmar_print_data_with_hex(const uint8_t *data, uint32_t length);
