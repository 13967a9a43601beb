// Argument parsing and console dumps shared by every command.
#pragma once

#include <cstdint>

// The NV value buffer: filled by NV reads, printed by dump_data.
inline constexpr uint32_t VELMAR_NV_DATA_BUF_SIZE = 400;
extern uint8_t g_nv_data_buf[VELMAR_NV_DATA_BUF_SIZE];

// Decimal (atoi rules: no error, stops at the first non-digit) or, after a
// "0x"/"0X" prefix, hexadecimal. A null text prints "\ninput is null", gives 0.
int32_t velmar_string_to_int(const char *text);

// The hexadecimal digits after the prefix. Each term digit * 16^k is formed in
// double, clamped to int32 and added with 32-bit wrap-around; characters that
// are not hex digits count as 0; only the first 50 characters are read.
int32_t velmar_hex_string_to_int(const char *digits);

// Prints each of the len bytes as " %02X" and ends the line: the data line of
// the commands that show an answer's bytes.
void velmar_print_hex_bytes(const uint8_t *data, uint32_t len);

// Classic hex dump of the first `length` bytes of g_nv_data_buf (at most its
// size), 16 a line, with the tool's shifted text column.
void dump_data(uint32_t length);
