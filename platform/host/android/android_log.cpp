// Host liblog: logcat-style lines appended to <state dir>/logcat.txt (bounded:
// past 4 MiB it becomes logcat.txt.1 and a new one starts; written in
// batches), and to stderr at once when RPK_LOG_STDERR=1.
#include <android/log.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace {

char priority_letter(int prio) {
  static constexpr char kLetters[] = "??VDIWEFS";
  return (prio >= 0 && prio <= ANDROID_LOG_SILENT) ? kLetters[prio] : '?';
}

constexpr size_t kLogcatMax = 4 << 20;

// Lines are batched up to this size and written after each request to the
// simulated modem is sent (rpk_host::flush_log) and at exit.
constexpr size_t kLogcatBatch = 4096;

rpk_host::BoundedLog &logcat() {
  // Never destroyed: a detached thread may still log while the process
  // exits; from exit on, its lines are written at once.
  static auto *log = [] {
    auto *made =
        new rpk_host::BoundedLog(rpk_host::state_dir() + "/logcat.txt", kLogcatMax, kLogcatBatch);
    atexit([] { logcat().stop_batching(); });
    pthread_atfork([] { logcat().before_fork(); }, [] { logcat().after_fork_in_parent(); },
                   [] { logcat().after_fork_in_child(); });
    return made;
  }();
  return *log;
}

// Whether this process has logged yet: flushing must not create the log (and
// the state directory) in a process that never wrote a line.
std::atomic<bool> g_logged{false};

// The process id, asked of the kernel once (and again in a forked child).
std::atomic<int> g_pid{0};

// " <pid> <tid> " of a line as "%5d %5ld" prints them, made once per thread
// (and again in a forked child) instead of asked and printed per line.
struct Ids {
  int pid = 0;
  char text[48] = "";
  size_t len = 0;
};

const Ids &ids() {
  static const bool fork_aware = [] {
    pthread_atfork(nullptr, nullptr, [] { g_pid.store(0); });
    return true;
  }();
  (void)fork_aware;
  int pid = g_pid.load(std::memory_order_relaxed);
  if (pid == 0) {
    pid = static_cast<int>(getpid());
    g_pid.store(pid, std::memory_order_relaxed);
  }
  thread_local Ids mine;
  if (mine.pid != pid) {
    mine.pid = pid;
    const int n = snprintf(mine.text, sizeof mine.text, " %5d %5ld ", pid,
                           static_cast<long>(syscall(SYS_gettid)));
    mine.len = static_cast<size_t>(std::max(n, 0));
  }
  return mine;
}

// One logcat line: "<date time>.<ms> <pid> <tid> <priority> <tag>: <message>",
// the message formatted straight into the line.
int vlog_line(int prio, const char *tag, const char *fmt, va_list ap) {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  thread_local rpk_host::ClockStamp stamp("%m-%d %H:%M:%S", false);
  const std::string_view when = stamp.text(tv);

  // A message is cut at 4095 characters, as Android's own buffer does.
  constexpr size_t kMessageMax = 4096;  // with its terminating NUL
  char line[kMessageMax + 128];
  // The head, "<stamp>.<ms> <pid> <tid> <priority> <tag>: ", put together by
  // hand: a format pass here cost more than the rest of the line.
  size_t len = 0;
  auto put = [&](const char *s, size_t n) {
    n = std::min(n, sizeof line - kMessageMax - 1 - len);
    memcpy(line + len, s, n);
    len += n;
  };
  put(when.data(), when.size());
  const Ids &id = ids();
  put(id.text, id.len);
  const char letter[2] = {priority_letter(prio), ' '};
  put(letter, sizeof letter);
  if (tag != nullptr) put(tag, strlen(tag));
  put(": ", 2);
  size_t n;
  if (strcmp(fmt, "%s") == 0) {
    // A whole message handed over as one string: copied, not formatted.
    const char *text = va_arg(ap, const char *);
    if (text == nullptr) text = "(null)";
    n = strnlen(text, kMessageMax - 1);
    memcpy(line + len, text, n);
  } else {
    const int r = vsnprintf(line + len, kMessageMax, fmt, ap);
    if (r < 0) return r;
    n = std::min(static_cast<size_t>(r), kMessageMax - 1);
  }
  len += n;
  line[len++] = '\n';
  logcat().append(std::string_view(line, len));
  g_logged.store(true, std::memory_order_release);
  static const bool to_stderr = [] {
    const char *e = getenv("RPK_LOG_STDERR");
    return e != nullptr && strcmp(e, "1") == 0;
  }();
  if (to_stderr) {
    (void)!write(STDERR_FILENO, line, len);
  }
  return static_cast<int>(len);
}

int log_line(int prio, const char *tag, const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = vlog_line(prio, tag, fmt, ap);
  va_end(ap);
  return n;
}

}  // namespace

void rpk_host::flush_log() {
  if (g_logged.load(std::memory_order_acquire)) logcat().flush();
}

// The three writers of AOSP's <android/log.h> that a native tool calls; one
// logcat line per call.
extern "C" int __android_log_write(int prio, const char *tag, const char *text) {
  return log_line(prio, tag, "%s", text != nullptr ? text : "");
}

extern "C" int __android_log_vprint(int prio, const char *tag, const char *fmt, va_list ap) {
  return vlog_line(prio, tag, fmt, ap);
}

extern "C" int __android_log_print(int prio, const char *tag, const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = __android_log_vprint(prio, tag, fmt, ap);
  va_end(ap);
  return n;
}
