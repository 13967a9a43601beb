#include "common/velmar_log.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

const char *base_name(const char *path) {
  const char *slash = strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

}  // namespace

void velmar_log_line(const char *file, int line, const char *function, const char *fmt, ...) {
  // Large enough for the longest message: a 4096-byte hex line (12288 chars).
  static thread_local char msg[16384];
  va_list ap;
  va_start(ap, fmt);
  vsnprintf(msg, sizeof msg, fmt, ap);
  va_end(ap);
  __android_log_print(ANDROID_LOG_DEBUG, VELMAR_LOG_TAG, "RIL[%s][%s:%d] %s: %s", "lib",
                      base_name(file), line, function, msg);
  printf("RIL[%s:%d]: %s", function, line, msg);
}
