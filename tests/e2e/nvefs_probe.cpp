// rpk-nvefs-probe: drives the EFS transfer functions with sizes the command
// line cannot reach (it carries at most 365 bytes), for end-to-end cases.
//
//   rpk-nvefs-probe write SUB PATH LEN [-q]   write LEN pattern bytes as PATH
//   rpk-nvefs-probe read SUB PATH ROOM [-q]   read PATH into a ROOM-byte buffer
//
// Pattern byte i is 1 + (i + seed) % 251 (never 0), the seed taken from
// RPK_PROBE_SEED (default 0), so concurrent writers can write different files.
// -q keeps the per-chunk trace off stdout; the result line is always printed.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "velmar_extend_qmi/velmar_extend_nvefs.h"

namespace {

size_t seed() {
  const char *s = getenv("RPK_PROBE_SEED");
  return s == nullptr ? 0 : strtoul(s, nullptr, 0);
}

uint8_t pattern(size_t i) {
  static const size_t base = seed();
  return static_cast<uint8_t>(1 + (i + base) % 251);
}

// Runs body with stdout on /dev/null when quiet.
template <typename F>
int32_t maybe_quiet(bool quiet, F body) {
  if (!quiet) return body();
  fflush(stdout);
  const int saved = dup(STDOUT_FILENO);
  const int null_fd = open("/dev/null", O_WRONLY);
  dup2(null_fd, STDOUT_FILENO);
  const int32_t result = body();
  fflush(stdout);
  dup2(saved, STDOUT_FILENO);
  close(null_fd);
  close(saved);
  return result;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 5) {
    fputs("usage: rpk-nvefs-probe write|read SUB PATH LEN|ROOM [-q]\n", stderr);
    return 2;
  }
  const std::string op = argv[1];
  const auto sub = static_cast<uint32_t>(strtoul(argv[2], nullptr, 0));
  const char *path = argv[3];
  const auto len = static_cast<uint32_t>(strtoul(argv[4], nullptr, 0));
  const bool quiet = argc > 5 && strcmp(argv[5], "-q") == 0;
  const auto path_len = static_cast<uint32_t>(strlen(path));

  std::vector<uint8_t> buf(len);
  if (op == "write") {
    for (size_t i = 0; i < buf.size(); ++i) buf[i] = pattern(i);
    const int32_t result = maybe_quiet(quiet, [&] {
      return velmar_efs_write(sub, path, static_cast<int32_t>(path_len), buf.data(), len);
    });
    printf("velmar_efs_write: %d\n", result);
    return 0;
  }
  if (op == "read") {
    uint32_t got = len;
    const int32_t result =
        maybe_quiet(quiet, [&] { return velmar_efs_read(sub, path, path_len, buf.data(), &got); });
    bool is_pattern = got <= len;
    for (uint32_t i = 0; is_pattern && i < got; ++i) is_pattern = buf[i] == pattern(i);
    printf("velmar_efs_read: %d, len %u, pattern %s\n", result, got, is_pattern ? "yes" : "no");
    return 0;
  }
  fputs("rpk-nvefs-probe: unknown operation\n", stderr);
  return 2;
}
