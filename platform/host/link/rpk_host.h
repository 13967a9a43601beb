// Host side of the platform: shared helpers of the host implementations and
// the simulated modem. Not part of the phone build.
#pragma once

#include <sys/time.h>

#include <cstddef>
#include <ctime>
#include <mutex>
#include <string>
#include <string_view>

namespace rpk_host {

// Longest state directory path accepted. Its sockets live inside it, and a
// Unix socket address holds at most 107 characters: this leaves 27 for "/",
// the socket's name and the daemon's staging suffix.
inline constexpr size_t kStateDirMax = 80;

// Exit status of a process the host platform ends (the simulated modem cannot
// be reached), told apart from the tool's own 0.
inline constexpr int kPlatformFailureStatus = 69;

// The host state directory: $RPK_SIM_DIR, else $XDG_STATE_HOME/rpk-sim, else
// ~/.local/state/rpk-sim. Created (with parents) on first use.
std::string state_dir();

// Why the state directory cannot be used (path too long, cannot be created,
// not a directory, not writable), or empty when it can.
std::string state_dir_problem();

// Ends the process as a platform failure: "rpk: <why>" on stderr, what stdout
// holds is flushed, exit status kPlatformFailureStatus. No destructor runs, so
// the platform's own threads are never pulled out from under them.
[[noreturn]] void platform_failure(const std::string &why);

// Replaces `path` with `data` so that a crash at any moment leaves either the
// old or the new content (temporary file <path>.tmp.<pid>, fsync, rename).
// Returns false on failure, with the old content untouched.
bool write_file_atomic(const std::string &path, std::string_view data);

// Removes the temporary files of atomic writes whose process is gone, in `dir`
// and below. Returns how many were removed.
size_t remove_stale_temporaries(const std::string &dir);

// Reads a whole file; false when it cannot be opened. A caller that knows
// the file is a regular one of usually at most `size_hint` bytes saves a
// system call asking for its size (a larger one is still read whole).
bool read_file(const std::string &path, std::string &out, size_t size_hint = 0);

// An append-only text file of bounded size. Once it has passed max_bytes
// (looked at after every max_bytes/128 bytes a writer appends) it becomes
// <path>.1 (replacing the previous one) and a new file is started: at most
// about twice max_bytes are kept, the most recent lines.
// Several processes may append to one path: each write holds whole lines,
// and the rotation is done once, under a lock on the file.
//
// With a batch size, lines are kept and written together when they would
// fill it or when flush() is called: one write for many lines, as a file
// append costs several microseconds here.
class BoundedLog {
 public:
  BoundedLog(std::string path, size_t max_bytes, size_t batch_bytes = 0);
  ~BoundedLog();
  BoundedLog(const BoundedLog &) = delete;
  BoundedLog &operator=(const BoundedLog &) = delete;

  // Appends one line (the caller ends it with "\n").
  void append(std::string_view line);
  // Writes the kept lines.
  void flush();
  // Writes the kept lines; from now on every line is written at once.
  void stop_batching();
  // Removes both files and starts again.
  void clear();
  const std::string &path() const { return path_; }

  // For pthread_atfork: the child forgets the parent's kept lines, which the
  // parent writes itself.
  void before_fork() { mu_.lock(); }
  void after_fork_in_parent() { mu_.unlock(); }
  void after_fork_in_child() {
    batch_.clear();
    mu_.unlock();
  }

 private:
  void open_nolock();
  void flush_nolock();
  void write_nolock(std::string_view bytes);
  void rotate_if_full_nolock();

  static constexpr size_t kCheckSlices = 128;

  const std::string path_;
  const size_t max_bytes_;
  std::mutex mu_;
  size_t batch_bytes_;    // guarded by mu_; 0: no batching
  std::string batch_;     // guarded by mu_
  int fd_ = -1;           // guarded by mu_
  size_t unchecked_ = 0;  // bytes written since the size was last asked; guarded by mu_
};

// A clock reading as text: its second through strftime `format` (UTC or
// local time), then ".<milliseconds>" and `suffix`. The second's part is made
// again only when the second changes: log lines come much faster.
class ClockStamp {
 public:
  ClockStamp(const char *format, bool utc, char suffix = '\0')
      : format_(format), utc_(utc), suffix_(suffix) {}
  std::string_view text(const timeval &tv);

 private:
  const char *format_;
  bool utc_;
  char suffix_;
  time_t second_ = -1;
  char text_[48] = "";
  size_t second_len_ = 0;
};

// Writes the host log's kept lines: called right after each request to the
// simulated modem is sent (the wait for its answer hides the write), and at
// exit.
void flush_log();

}  // namespace rpk_host
