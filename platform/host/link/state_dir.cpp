#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "platform/host/link/rpk_host.h"

namespace rpk_host {
namespace {

void make_dirs(const std::string &path) {
  for (size_t pos = 1; pos <= path.size(); ++pos) {
    if (pos == path.size() || path[pos] == '/') {
      std::string part = path.substr(0, pos);
      if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return;
    }
  }
}

constexpr std::string_view kTmpMark = ".tmp.";

// The pid of an atomic write's temporary file, or 0 when the name is not one.
pid_t temporary_owner(const std::string &name) {
  const size_t at = name.rfind(kTmpMark);
  if (at == std::string::npos || at + kTmpMark.size() == name.size()) return 0;
  pid_t pid = 0;
  for (size_t i = at + kTmpMark.size(); i < name.size(); ++i) {
    if (name[i] < '0' || name[i] > '9' || pid > 10000000) return 0;
    pid = pid * 10 + (name[i] - '0');
  }
  return pid;
}

}  // namespace

std::string state_dir() {
  std::string dir;
  if (const char *d = getenv("RPK_SIM_DIR"); d != nullptr && *d != '\0') {
    dir = d;
  } else if (const char *x = getenv("XDG_STATE_HOME"); x != nullptr && *x != '\0') {
    dir = std::string(x) + "/rpk-sim";
  } else {
    const char *home = getenv("HOME");
    dir = std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.local/state/rpk-sim";
  }
  while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
  make_dirs(dir);
  return dir;
}

std::string state_dir_problem() {
  const std::string dir = state_dir();
  if (dir.size() > kStateDirMax) {
    return "the state directory's path has " + std::to_string(dir.size()) +
           " characters, at most " + std::to_string(kStateDirMax) + " are allowed: " + dir;
  }
  struct stat st {};
  if (stat(dir.c_str(), &st) != 0) {
    return "cannot create the state directory " + dir + ": " + strerror(errno);
  }
  if (!S_ISDIR(st.st_mode)) return "the state directory " + dir + " is not a directory";
  if (access(dir.c_str(), W_OK | X_OK) != 0) {
    return "cannot write in the state directory " + dir + ": " + strerror(errno);
  }
  return {};
}

void platform_failure(const std::string &why) {
  flush_log();
  fflush(stdout);
  fprintf(stderr, "rpk: %s\n", why.c_str());
  fflush(stderr);
  _exit(kPlatformFailureStatus);
}

bool write_file_atomic(const std::string &path, std::string_view data) {
  std::string tmp = path + std::string(kTmpMark) + std::to_string(getpid());
  int fd = open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < data.size()) {
    ssize_t n = write(fd, data.data() + done, data.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      close(fd);
      unlink(tmp.c_str());
      return false;
    }
    done += static_cast<size_t>(n);
  }
  if (fsync(fd) != 0 || close(fd) != 0 || rename(tmp.c_str(), path.c_str()) != 0) {
    unlink(tmp.c_str());
    return false;
  }
  return true;
}

size_t remove_stale_temporaries(const std::string &dir) {
  namespace fs = std::filesystem;
  size_t removed = 0;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(dir, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    const pid_t owner = temporary_owner(it->path().filename().string());
    // A live writer's file is about to be renamed into place: leave it.
    if (owner <= 0 || kill(owner, 0) == 0 || errno != ESRCH) continue;
    std::error_code ignored;
    if (fs::remove(it->path(), ignored)) ++removed;
  }
  return removed;
}

bool read_file(const std::string &path, std::string &out, size_t size_hint) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  // A regular file is read in one call of its size (a short read is its
  // end); anything else, such as a pipe, until read says the end. With a
  // hint the file is taken to be regular without asking.
  bool regular = true;
  size_t first = size_hint + 1;
  if (size_hint == 0) {
    struct stat st {};
    regular = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    first = regular ? static_cast<size_t>(st.st_size) + 1 : 4096;
  }
  out.resize(first);
  size_t done = 0;
  for (;;) {
    if (done == out.size()) out.resize(out.size() * 2);
    const ssize_t n = read(fd, out.data() + done, out.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n > 0) done += static_cast<size_t>(n);
    if (n <= 0 || (regular && done < out.size())) break;
  }
  out.resize(done);
  close(fd);
  return true;  // as before: only a file that cannot be opened fails
}

std::string_view ClockStamp::text(const timeval &tv) {
  if (tv.tv_sec != second_) {
    tm parts{};
    if (utc_) {
      gmtime_r(&tv.tv_sec, &parts);
    } else {
      localtime_r(&tv.tv_sec, &parts);
    }
    second_len_ = strftime(text_, sizeof text_ - 6, format_, &parts);
    second_ = tv.tv_sec;
  }
  const long ms = static_cast<long>(tv.tv_usec / 1000);
  char *p = text_ + second_len_;
  *p++ = '.';
  *p++ = static_cast<char>('0' + ms / 100);
  *p++ = static_cast<char>('0' + ms / 10 % 10);
  *p++ = static_cast<char>('0' + ms % 10);
  if (suffix_ != '\0') *p++ = suffix_;
  return {text_, static_cast<size_t>(p - text_)};
}

BoundedLog::BoundedLog(std::string path, size_t max_bytes, size_t batch_bytes)
    : path_(std::move(path)), max_bytes_(max_bytes), batch_bytes_(batch_bytes) {
  std::lock_guard lock(mu_);
  open_nolock();
}

BoundedLog::~BoundedLog() {
  if (fd_ >= 0) close(fd_);
}

void BoundedLog::open_nolock() {
  unchecked_ = 0;
  if (fd_ >= 0) close(fd_);
  fd_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
}

void BoundedLog::append(std::string_view line) {
  std::lock_guard lock(mu_);
  if (fd_ < 0) return;
  if (batch_bytes_ == 0) {
    write_nolock(line);
    return;
  }
  if (batch_.size() + line.size() > batch_bytes_) flush_nolock();
  if (line.size() > batch_bytes_) {
    write_nolock(line);
  } else {
    batch_.append(line);
  }
}

void BoundedLog::flush() {
  std::lock_guard lock(mu_);
  flush_nolock();
}

void BoundedLog::stop_batching() {
  std::lock_guard lock(mu_);
  flush_nolock();
  batch_bytes_ = 0;
}

void BoundedLog::flush_nolock() {
  if (fd_ >= 0 && !batch_.empty()) write_nolock(batch_);
  batch_.clear();
}

void BoundedLog::write_nolock(std::string_view bytes) {
  // One write of whole lines keeps them whole beside other writers (O_APPEND).
  (void)!write(fd_, bytes.data(), bytes.size());
  // The size is asked after each slice of our own writes rather than after
  // every write: other writers ask for theirs, so the file passes the bound by
  // at most a slice (or one batch) per writer.
  unchecked_ += bytes.size();
  if (unchecked_ >= max_bytes_ / kCheckSlices) rotate_if_full_nolock();
}

void BoundedLog::rotate_if_full_nolock() {
  unchecked_ = 0;
  struct stat mine {};
  if (fstat(fd_, &mine) != 0 || static_cast<size_t>(mine.st_size) <= max_bytes_) return;
  // Every writer of the full file gets here; the lock on it lets exactly one
  // rename it, and the others only follow to the new file.
  flock(fd_, LOCK_EX);
  struct stat named {};
  if (stat(path_.c_str(), &named) == 0 && named.st_dev == mine.st_dev &&
      named.st_ino == mine.st_ino) {
    // Not a rename over the old part: ext4 would first write all of the
    // renamed file's data out (milliseconds, with every writer waiting).
    const std::string older = path_ + ".1";
    unlink(older.c_str());
    rename(path_.c_str(), older.c_str());
  }
  flock(fd_, LOCK_UN);
  open_nolock();
}

void BoundedLog::clear() {
  std::lock_guard lock(mu_);
  batch_.clear();
  unlink(path_.c_str());
  unlink((path_ + ".1").c_str());
  open_nolock();
}

}  // namespace rpk_host
