#include <android/log.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "platform/host/link/rpk_host.h"

namespace {

size_t count(const std::string &text, const std::string &what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// A line kept in the batch when the process forks is written once, by the
// parent: a child that exits normally must not write its copy too.
TEST(HostLog, AForkedChildDoesNotWriteTheParentsKeptLines) {
  const std::string marker = "kept across fork " + std::to_string(getpid());
  __android_log_print(ANDROID_LOG_INFO, "rpk_test", "%s", marker.c_str());
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    __android_log_print(ANDROID_LOG_INFO, "rpk_test", "child %s", marker.c_str());
    exit(0);  // runs the exit-time flush
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  rpk_host::flush_log();
  std::string text;
  ASSERT_TRUE(rpk_host::read_file(rpk_host::state_dir() + "/logcat.txt", text));
  EXPECT_EQ(count(text, "I rpk_test: " + marker), 1u);
  EXPECT_EQ(count(text, "I rpk_test: child " + marker), 1u);
}

}  // namespace
