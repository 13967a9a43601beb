#include "modem_stats/modem_stats_out.h"

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace {

modem_stats_out_fn g_out = nullptr;
void *g_out_ctx = nullptr;

}  // namespace

void modem_stats_bind_out(modem_stats_out_fn fn, void *ctx) {
  g_out = fn;
  g_out_ctx = ctx;
}

int modem_stats_printf(const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  if (g_out == nullptr) {
    const int n = vprintf(fmt, ap);
    va_end(ap);
    return n;
  }
  // Every engine line fits here; a longer one takes the heap once.
  char line[512];
  va_list again;
  va_copy(again, ap);
  const int n = vsnprintf(line, sizeof line, fmt, ap);
  va_end(ap);
  if (n >= 0 && static_cast<size_t>(n) < sizeof line) {
    g_out(g_out_ctx, line, static_cast<size_t>(n));
  } else if (n > 0) {
    const auto big = std::make_unique<char[]>(static_cast<size_t>(n) + 1);
    vsnprintf(big.get(), static_cast<size_t>(n) + 1, fmt, again);
    g_out(g_out_ctx, big.get(), static_cast<size_t>(n));
  }
  va_end(again);
  return n;
}
