// Runs a category handler on a command line and returns what it printed, with
// log line numbers masked.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "front/velmar_help.h"
#include "support/capture_stdout.h"

inline int32_t run_handler(int32_t (*handler)(int, char **), std::vector<std::string> args,
                           std::string *out) {
  std::vector<char *> argv;
  for (auto &a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  int32_t result = 0;
  *out = mask_log_lines(
      capture_stdout([&] { result = handler(static_cast<int>(args.size()), argv.data()); }));
  return result;
}

// The help section of category n, as show_help prints it.
inline std::string help_text(uint32_t n) {
  return capture_stdout([n] { show_help(n); });
}
