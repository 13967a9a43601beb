// Little-endian integers in byte buffers: the modem's records, the statistics
// engine's packets and captured diag frames all carry them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// The unsigned value of the n (0..8) bytes at p, least significant first.
inline uint64_t velmar_load_le(const uint8_t *p, size_t n) {
  uint64_t v = 0;
  if constexpr (std::endian::native == std::endian::little) {
    memcpy(&v, p, n);
  } else {
    for (size_t i = 0; i < n; ++i) v |= static_cast<uint64_t>(p[i]) << (8 * i);
  }
  return v;
}

// Writes the low n (0..8) bytes of v at p, least significant first.
inline void velmar_store_le(uint8_t *p, uint64_t v, size_t n) {
  for (size_t i = 0; i < n; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}
