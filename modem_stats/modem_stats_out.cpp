#include "modem_stats/modem_stats_out.h"

#include <cstdarg>

namespace {

FILE *g_out = nullptr;  // null: stdout, whatever stdout is when printing

}  // namespace

void modem_stats_bind_out(FILE *out) { g_out = out; }

int modem_stats_printf(const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = vfprintf(g_out != nullptr ? g_out : stdout, fmt, ap);
  va_end(ap);
  return n;
}
