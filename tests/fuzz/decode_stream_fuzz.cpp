// libFuzzer target: arbitrary bytes as a capture through both of rpk-decode's
// readers (HDLC and text), whole and fed in pieces. The pieces must not change
// what the reader reports, and no item may be larger than a diag packet.
// The first byte chooses the piece size; the rest is the capture.
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "modem_stats/decode/decode_stream.h"

namespace {

// A digest of everything a reader reported, in order.
struct digest {
  std::string text;
  decode_sink sink{[this](const decode_item &item, size_t where) {
                     if (item.payload.size() > decode_max_packet) __builtin_trap();
                     text += item.event ? 'E' : 'L';
                     text += std::to_string(item.id) + "@" + std::to_string(where) + ":";
                     text.append(item.payload.begin(), item.payload.end());
                     text += '\n';
                   },
                   [this](decode_damage d, size_t where) {
                     text +=
                         std::string(decode_damage_name(d)) + "@" + std::to_string(where) + "\n";
                   },
                   [this](uint8_t cmd) { text += "other " + std::to_string(cmd) + "\n"; }};
};

template <typename Reader>
std::string read(std::span<const uint8_t> bytes, size_t piece) {
  digest d;
  Reader reader(d.sink);
  while (!bytes.empty()) {
    const size_t n = piece < bytes.size() ? piece : bytes.size();
    reader.feed(bytes.first(n));
    bytes = bytes.subspan(n);
  }
  reader.finish();
  return d.text;
}

template <typename Reader>
void check(std::span<const uint8_t> bytes, size_t piece) {
  if (read<Reader>(bytes, bytes.size() + 1) != read<Reader>(bytes, piece)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 1) return 0;
  const size_t piece = data[0] % 64 + 1;
  const std::span<const uint8_t> capture(data + 1, size - 1);
  check<decode_hdlc_reader>(capture, piece);
  check<decode_text_reader>(capture, piece);
  return 0;
}
