#include "support/capture_stdout.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <stdexcept>

std::string capture_stdout(const std::function<void()> &body) {
  fflush(stdout);
  FILE *tmp = tmpfile();
  if (tmp == nullptr) throw std::runtime_error("tmpfile failed");
  const int saved = dup(STDOUT_FILENO);
  dup2(fileno(tmp), STDOUT_FILENO);
  body();
  fflush(stdout);
  dup2(saved, STDOUT_FILENO);
  close(saved);
  std::string out;
  rewind(tmp);
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, tmp)) > 0) out.append(buf, n);
  fclose(tmp);
  return out;
}

std::string mask_log_lines(const std::string &text) {
  static const std::regex line_no(R"(RIL\[([A-Za-z0-9_]+):[0-9]+\]: )");
  return std::regex_replace(text, line_no, "RIL[$1:N]: ");
}
