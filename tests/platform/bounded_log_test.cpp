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

}  // namespace
