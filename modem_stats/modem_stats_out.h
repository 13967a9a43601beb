// Where the statistics engine prints: one stream, stdout unless a caller
// binds another. The console leaves it at stdout, so its lines interleave with
// the rest of the tool's output exactly as printf's; rpk-decode binds a stream
// that collects each packet's lines in memory, with no system call on the way.
#pragma once

#include <cstdio>

// Binds the engine's output to `out`; null restores stdout. The engine is
// single-threaded, and so is the binding.
void modem_stats_bind_out(FILE *out);

// printf for the engine's lines, to the bound stream. Returns what printf
// returns.
int modem_stats_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
