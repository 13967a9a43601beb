// Small text helpers of the simulator's control interface.
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

}  // namespace rpk_sim
