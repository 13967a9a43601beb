// Host liblog: logcat-style lines appended to <state dir>/logcat.txt (bounded:
// past 4 MiB it becomes logcat.txt.1 and a new one starts), and to stderr
// when RPK_LOG_STDERR=1.
#include <android/log.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace {

char priority_letter(int prio) {
  static constexpr char kLetters[] = "??VDIWEFS";
  return (prio >= 0 && prio <= ANDROID_LOG_SILENT) ? kLetters[prio] : '?';
}

constexpr size_t kLogcatMax = 4 << 20;

rpk_host::BoundedLog &logcat() {
  // Never destroyed: a detached thread may still log while the process exits.
  static auto *log = new rpk_host::BoundedLog(rpk_host::state_dir() + "/logcat.txt", kLogcatMax);
  return *log;
}

// The process and thread ids of a line, asked of the kernel once per thread
// (and again in a forked child) instead of twice per line.
std::atomic<int> g_pid{0};

struct Ids {
  int pid;
  long tid;
};

Ids ids() {
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
  thread_local Ids mine{0, 0};
  if (mine.pid != pid) mine = {pid, static_cast<long>(syscall(SYS_gettid))};
  return mine;
}

}  // namespace

// The three writers of AOSP's <android/log.h> that a native tool calls; one
// logcat line per call.
extern "C" int __android_log_write(int prio, const char *tag, const char *text) {
  timeval tv{};
  gettimeofday(&tv, nullptr);
  tm local{};
  localtime_r(&tv.tv_sec, &local);
  char stamp[32];
  strftime(stamp, sizeof stamp, "%m-%d %H:%M:%S", &local);

  char line[4096 + 128];
  const Ids id = ids();
  int n = snprintf(line, sizeof line, "%s.%03ld %5d %5ld %c %s: %s\n", stamp,
                   static_cast<long>(tv.tv_usec / 1000), id.pid, id.tid, priority_letter(prio),
                   tag != nullptr ? tag : "", text != nullptr ? text : "");
  if (n < 0) return n;
  size_t len = static_cast<size_t>(n) < sizeof line ? static_cast<size_t>(n) : sizeof line - 1;
  logcat().append(std::string_view(line, len));
  if (const char *e = getenv("RPK_LOG_STDERR"); e != nullptr && strcmp(e, "1") == 0) {
    (void)!write(STDERR_FILENO, line, len);
  }
  return static_cast<int>(len);
}

extern "C" int __android_log_vprint(int prio, const char *tag, const char *fmt, va_list ap) {
  char msg[4096];
  vsnprintf(msg, sizeof msg, fmt, ap);
  return __android_log_write(prio, tag, msg);
}

extern "C" int __android_log_print(int prio, const char *tag, const char *fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = __android_log_vprint(prio, tag, fmt, ap);
  va_end(ap);
  return n;
}
