// The journal writes its lines itself, for speed: they must be the bytes the
// JSON library makes of the same entry with "seq" and "time" added.
#include "journal.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "platform/host/link/rpk_host.h"

namespace rpk_sim {
namespace {

using json = nlohmann::json;

std::string library_line(json entry, const json &written) {
  entry["seq"] = written["seq"];
  entry["time"] = written["time"];
  return entry.dump(-1, ' ', false, json::error_handler_t::replace);
}

TEST(Journal, LinesAreTheLibrarysCompactDump) {
  char dir[] = "/tmp/rpk-journal-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/journal.jsonl";
  std::vector<json> entries = {
      {{"service", "0xffe4"}, {"client", 3}, {"wire", "00010002"}, {"txn", 1}},
      // Keys before, between and after "seq" and "time"; a stale seq/time.
      {{"a", 1}, {"sea", 2}, {"seq", "old"}, {"sf", 3}, {"time", 0}, {"tz", nullptr}, {"z", true}},
      // Text that needs escaping, invalid UTF-8, multi-byte UTF-8, a key too.
      {{"text", "quote \" back \\ tab \t nl \n bell \x07"},
       {"bad", std::string("\xff\xfe ok", 5)},
       {"utf8", "d\xc3\xa9j\xc3\xa0"},
       {"k\"ey", "v"}},
      // Nesting, negative, large and floating numbers, empty containers.
      {{"corrupt", {{"flip", json::array({1, 2, 3})}, {"claim", -7}}},
       {"big", UINT64_MAX},
       {"ratio", 0.25},
       {"none", json::object()},
       {"list", json::array()}},
      json::object(),
  };
  // Every byte value at places inside and after the word-sized steps of the
  // plain-text check.
  for (int b = 0; b < 256; ++b) {
    for (size_t at : {0, 7, 8, 15, 16, 18}) {
      std::string s(19, 'a');
      s[at] = static_cast<char>(b);
      entries.push_back({{"s", s}});
    }
  }
  const time_t before = time(nullptr);
  {
    Journal journal(path);
    for (const auto &e : entries) journal.append(e);
  }
  const time_t after = time(nullptr);
  std::string text;
  ASSERT_TRUE(rpk_host::read_file(path, text));
  static const std::regex kStamp(
      "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z");
  size_t at = 0;
  uint64_t seq = 0;
  for (const auto &e : entries) {
    const size_t end = text.find('\n', at);
    ASSERT_NE(end, std::string::npos);
    const std::string line = text.substr(at, end - at);
    const json written = json::parse(line, nullptr, false);
    ASSERT_TRUE(written.is_object()) << line;
    EXPECT_EQ(written["seq"], ++seq);
    // UTC to the millisecond, within the time the appends took.
    const std::string stamp = written["time"].get<std::string>();
    EXPECT_TRUE(std::regex_match(stamp, kStamp)) << stamp;
    tm utc{};
    strptime(stamp.c_str(), "%Y-%m-%dT%H:%M:%S", &utc);
    const time_t second = timegm(&utc);
    EXPECT_TRUE(second >= before && second <= after) << stamp;
    EXPECT_EQ(line, library_line(e, written));
    at = end + 1;
  }
  EXPECT_EQ(at, text.size());
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace rpk_sim
