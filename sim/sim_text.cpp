#include "sim_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace rpk_sim {

std::string hex_id(uint32_t id) {
  // "0x%04x", made by hand: every journal entry names its service and message.
  constexpr char kDigits[] = "0123456789abcdef";
  char buf[10];
  int n = 0;
  for (uint32_t rest = id; rest != 0; rest >>= 4) ++n;
  n = std::max(n, 4);
  for (int i = 0; i < n; ++i) buf[n - 1 - i] = kDigits[(id >> (4 * i)) & 0xF];
  return "0x" + std::string(buf, n);
}

std::string dump_json(const nlohmann::json &j) {
  return j.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool parse_hex(const std::string &text, std::vector<uint8_t> *out) {
  out->clear();
  size_t i = 0;
  while (i < text.size()) {
    if (isspace(static_cast<unsigned char>(text[i])) || text[i] == ',') {
      ++i;
      continue;
    }
    size_t end = i;
    while (end < text.size() && !isspace(static_cast<unsigned char>(text[end])) &&
           text[end] != ',') {
      ++end;
    }
    std::string token = text.substr(i, end - i);
    if (token.size() > 2 && token[0] == '0' && (token[1] == 'x' || token[1] == 'X')) {
      token = token.substr(2);
    }
    if (token.size() % 2 != 0) return false;
    for (size_t k = 0; k < token.size(); k += 2) {
      if (!isxdigit(static_cast<unsigned char>(token[k])) ||
          !isxdigit(static_cast<unsigned char>(token[k + 1]))) {
        return false;
      }
      out->push_back(static_cast<uint8_t>(std::stoul(token.substr(k, 2), nullptr, 16)));
    }
    i = end;
  }
  return true;
}

std::string spaced_hex(const std::string &bytes) {
  std::string s;
  char buf[4];
  for (size_t i = 0; i < bytes.size(); ++i) {
    snprintf(buf, sizeof buf, i == 0 ? "%02x" : " %02x", static_cast<uint8_t>(bytes[i]));
    s += buf;
  }
  return s;
}

bool parse_number(const std::string &text, uint64_t *out) {
  if (text.empty() || text[0] == '-' || text[0] == '+' ||
      isspace(static_cast<unsigned char>(text[0]))) {
    return false;
  }
  try {
    size_t used = 0;
    *out = std::stoull(text, &used, 0);
    return used == text.size();
  } catch (...) {
    return false;
  }
}

bool json_u32(const nlohmann::json &j, const char *key, uint32_t *out) {
  if (!j.contains(key) || !j[key].is_number_unsigned() || j[key].get<uint64_t>() > 0xFFFFFFFFu) {
    return false;
  }
  *out = j[key].get<uint32_t>();
  return true;
}

uint64_t get_le(const uint8_t *p, int n) {
  uint64_t v = 0;
  for (int i = 0; i < n; ++i) v |= static_cast<uint64_t>(p[i]) << (8 * i);
  return v;
}

void put_le(uint8_t *p, uint64_t v, int n) {
  for (int i = 0; i < n; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}

std::string le_bytes(uint64_t v, int n) {
  std::string s(static_cast<size_t>(n), '\0');
  put_le(reinterpret_cast<uint8_t *>(s.data()), v, n);
  return s;
}

}  // namespace rpk_sim
