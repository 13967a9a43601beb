// Sends stdout (or another descriptor) to /dev/null for the life of the
// object: the commands and the statistics engine print as they work, and that
// printing stays part of what is measured without flooding the benchmark's own
// report.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

class quiet_stdout {
 public:
  explicit quiet_stdout(int fd = STDOUT_FILENO) : fd_(fd) {
    fflush(stdout);
    saved_ = dup(fd_);
    const int null_fd = open("/dev/null", O_WRONLY);
    dup2(null_fd, fd_);
    close(null_fd);
  }
  ~quiet_stdout() {
    fflush(stdout);
    dup2(saved_, fd_);
    close(saved_);
  }
  quiet_stdout(const quiet_stdout &) = delete;
  quiet_stdout &operator=(const quiet_stdout &) = delete;

 private:
  int fd_;
  int saved_;
};
