#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "platform/host/link/rpk_host.h"

namespace {

namespace fs = std::filesystem;

// Two writers of one path (as two processes would be) fill it many times
// over: what is kept stays near twice the bound and holds the newest lines.
TEST(BoundedLog, KeepsTheRecentPartOfAFileSeveralWritersFill) {
  char tmpl[] = "/tmp/rpk-bounded-log-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string path = std::string(tmpl) + "/log.txt";
  constexpr size_t kMax = 1000;
  rpk_host::BoundedLog a(path, kMax), b(path, kMax);
  std::string last;
  for (int i = 0; i < 500; ++i) {
    last = "line " + std::to_string(i) + " of " + (i % 2 ? "a" : "b") + "\n";
    (i % 2 ? a : b).append(last);
  }
  const size_t line_max = last.size();
  EXPECT_LE(fs::file_size(path), kMax + 2 * line_max);
  EXPECT_LE(fs::file_size(path + ".1"), kMax + 2 * line_max);
  std::string current, older;
  ASSERT_TRUE(rpk_host::read_file(path, current));
  ASSERT_TRUE(rpk_host::read_file(path + ".1", older));
  EXPECT_EQ(current.substr(current.size() - last.size()), last);
  // Nothing newer than the kept older part was dropped.
  EXPECT_GE(older.size() + current.size(), kMax);

  a.clear();
  EXPECT_FALSE(fs::exists(path + ".1"));
  a.append("again\n");
  ASSERT_TRUE(rpk_host::read_file(path, current));
  EXPECT_EQ(current, "again\n");
  fs::remove_all(tmpl);
}

// Batched lines reach the file whole and in order: when the batch would
// overflow, on flush, and at once after stop_batching (the exit path).
TEST(BoundedLog, BatchedLinesArriveWholeOnFlush) {
  char tmpl[] = "/tmp/rpk-bounded-log-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string path = std::string(tmpl) + "/log.txt";
  rpk_host::BoundedLog log(path, 1 << 20, 16);
  auto text = [&] {
    std::string t;
    rpk_host::read_file(path, t);
    return t;
  };
  struct Step {
    const char *line;  // appended, or nullptr: flush
    const char *file;  // what the file then holds
  };
  const Step steps[] = {
      {"one\n", ""},
      {"two\n", ""},
      {"three-three\n", "one\ntwo\n"},  // would pass 16 bytes: the kept lines go first
      {nullptr, "one\ntwo\nthree-three\n"},
      {"a line longer than the batch\n", "one\ntwo\nthree-three\na line longer than the batch\n"},
  };
  for (const Step &s : steps) {
    s.line != nullptr ? log.append(s.line) : log.flush();
    EXPECT_EQ(text(), s.file) << (s.line != nullptr ? s.line : "flush");
  }
  log.append("kept\n");
  log.stop_batching();
  log.append("direct\n");
  EXPECT_TRUE(text().ends_with("kept\ndirect\n"));
  fs::remove_all(tmpl);
}

}  // namespace
