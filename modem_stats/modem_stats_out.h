// Where the statistics engine prints. By default every line goes to stdout
// through printf's own buffer, so a console run interleaves it with the rest
// of the tool's output exactly as before. A tool that collects each packet's
// lines (rpk-decode) binds a sink instead: it then receives each formatted
// piece of text in memory, with no system call on the way.
#pragma once

#include <cstddef>

// Receives `len` bytes of engine text (not NUL-terminated); `ctx` is what was
// bound with it.
using modem_stats_out_fn = void (*)(void *ctx, const char *text, size_t len);

// Binds the engine's output to `fn`; a null `fn` restores stdout. The engine
// is single-threaded, and so is the binding.
void modem_stats_bind_out(modem_stats_out_fn fn, void *ctx);

// printf for the engine's lines: formats to stdout or to the bound sink.
// Returns what printf returns.
int modem_stats_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
