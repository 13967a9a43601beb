#include "common/velmar_log.h"

#include <android/log.h>

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

const char *base_name(const char *path) {
  const char *slash = strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

// Builds a line by appending into a fixed buffer, cutting what does not fit.
class line_text {
 public:
  line_text(char *buf, size_t size) : buf_(buf), size_(size) {}
  line_text &operator<<(std::string_view s) {
    const size_t n = std::min(s.size(), size_ - 1 - len_);
    memcpy(buf_ + len_, s.data(), n);
    len_ += n;
    return *this;
  }
  line_text &operator<<(int v) {
    char digits[16];
    const auto r = std::to_chars(digits, digits + sizeof digits, v);
    return *this << std::string_view(digits, r.ptr - digits);
  }
  const char *c_str() {
    buf_[len_] = '\0';
    return buf_;
  }

 private:
  char *buf_;
  size_t size_;
  size_t len_ = 0;
};

}  // namespace

// Both lines are composed here and handed over whole ("%s"): the tool logs
// around every request, and three format passes per event cost more than the
// request's own encoding.
void velmar_log_line(const char *file, int line, const char *function, const char *fmt, ...) {
  // Large enough for the longest message: a 4096-byte hex line (12288 chars).
  constexpr size_t kMessageMax = 16384;
  static thread_local char msg[kMessageMax];
  static thread_local char out[kMessageMax + 512];
  std::string_view text = fmt;
  if (strchr(fmt, '%') != nullptr) {
    va_list ap;
    va_start(ap, fmt);
    const int n = vsnprintf(msg, sizeof msg, fmt, ap);
    va_end(ap);
    text = std::string_view(msg, n < 0 ? 0 : std::min(static_cast<size_t>(n), kMessageMax - 1));
  } else {
    text = text.substr(0, kMessageMax - 1);
  }
  line_text logcat(out, sizeof out);
  logcat << "RIL[lib][" << base_name(file) << ":" << line << "] " << function << ": " << text;
  __android_log_print(ANDROID_LOG_DEBUG, VELMAR_LOG_TAG, "%s", logcat.c_str());
  line_text console(out, sizeof out);
  console << "RIL[" << function << ":" << line << "]: " << text;
  printf("%s", console.c_str());
}
