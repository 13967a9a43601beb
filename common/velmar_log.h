// The one logging convention: every event goes once to the Android log
//   (priority 3, tag "RPK_SHELL") as "RIL[lib][<file base name>:<line>] <function>: <message>"
// and once to stdout as "RIL[<function>:<line>]: <message>".
// The console text carries no newline: the caller ends the line, sometimes after
// printing more on it. Each shape is written by a single call, so lines from
// other threads never tear.
#pragma once

#include <cstdio>

inline constexpr const char *VELMAR_LOG_TAG = "RPK_SHELL";

void velmar_log_line(const char *file, int line, const char *function, const char *fmt, ...)
    __attribute__((format(printf, 4, 5)));

// Log under an explicit function name (some messages name their operation,
// not the C++ function that prints them).
#define VELMAR_LOGF(function, ...) velmar_log_line(__FILE__, __LINE__, (function), __VA_ARGS__)
#define VELMAR_LOG(...) VELMAR_LOGF(__func__, __VA_ARGS__)

// The same, ending the console line. The line and its end are written under
// the stream's lock, so lines of other threads never cut into it.
#define VELMAR_LOGF_LN(function, ...)   \
  do {                                  \
    flockfile(stdout);                  \
    VELMAR_LOGF(function, __VA_ARGS__); \
    putchar('\n');                      \
    funlockfile(stdout);                \
  } while (0)
#define VELMAR_LOG_LN(...) VELMAR_LOGF_LN(__func__, __VA_ARGS__)
