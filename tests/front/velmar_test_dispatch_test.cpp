// The category table: one row per category, and the help made of its rows.
#include "front/velmar_test_dispatch.h"

#include <gtest/gtest.h>

#include <string>

#include "front/velmar_help.h"
#include "support/capture_stdout.h"

namespace {

// The help with `sections` between its banner and its closing line; a
// category no row has prints the frame alone.
std::string framed(const std::string &sections) {
  const std::string frame = capture_stdout([] { show_help(~0u); });
  const size_t after_banner = frame.find('\n', 1) + 1;
  return frame.substr(0, after_banner) + sections + frame.substr(after_banner);
}

TEST(CategoryTable, SortedUniqueAndEachRowHasItsHelpSection) {
  const auto rows = velmar_categories();
  ASSERT_FALSE(rows.empty());
  for (size_t i = 0; i < rows.size(); ++i) {
    const auto &row = rows[i];
    SCOPED_TRACE(row.name);
    if (i > 0) {
      EXPECT_LT(rows[i - 1].category, row.category);  // sorted, hence unique
    }
    EXPECT_EQ(velmar_category_find(row.category), &row);
    ASSERT_NE(row.help, nullptr);
    const std::string section = capture_stdout(row.help);
    EXPECT_EQ(section.rfind(std::to_string(row.category) + ": ", 0), 0u) << section;
    EXPECT_EQ(capture_stdout([&] { show_help(static_cast<uint32_t>(row.category)); }),
              framed(section));
  }
}

TEST(CategoryTable, ANumberWithoutARowPrintsTheFrameAlone) {
  for (uint32_t n : {2u, 10u, 11u, 16u, 0x80000000u}) {
    EXPECT_EQ(capture_stdout([n] { show_help(n); }), framed("")) << n;
  }
}

TEST(CategoryTable, FullHelpIsEveryRowInOrder) {
  std::string sections;
  for (const auto &row : velmar_categories()) sections += capture_stdout(row.help);
  EXPECT_EQ(capture_stdout([] { show_help(0); }), framed(sections));
}

}  // namespace
