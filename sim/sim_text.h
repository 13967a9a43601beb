// Small helpers of the simulator: text and JSON of its control interface, and
// the little-endian fields of its records.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace rpk_sim {

// "0xffe4"
std::string hex_id(uint32_t id);

// Compact JSON that never throws on odd bytes in strings.
std::string dump_json(const nlohmann::json &j);

// Bytes from hex text: tokens separated by blanks or commas, each an even
// number of hex digits with an optional 0x ("08 3a", "083a", "0x08,0x3a").
bool parse_hex(const std::string &text, std::vector<uint8_t> *out);

// Bytes as "08 3a 51" (lower case, single blanks).
std::string spaced_hex(const std::string &bytes);

// A whole unsigned number, decimal or 0x hexadecimal.
bool parse_number(const std::string &text, uint64_t *out);

// j[key] when it is an unsigned number that fits 32 bits; false otherwise.
bool json_u32(const nlohmann::json &j, const char *key, uint32_t *out);

// Little-endian fields of the modem's records and files (n bytes, n <= 8).
uint64_t get_le(const uint8_t *p, int n);
void put_le(uint8_t *p, uint64_t v, int n);
std::string le_bytes(uint64_t v, int n);

}  // namespace rpk_sim
