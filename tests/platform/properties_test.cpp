#include <cutils/properties.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

std::string get(const char *key, const char *def = "") {
  char value[PROPERTY_VALUE_MAX];
  property_get(key, value, def);
  return value;
}

TEST(Properties, SetGetAndDefaults) {
  EXPECT_EQ(property_set("test.rpk.level", "ALL_ENABLE"), 0);
  EXPECT_EQ(get("test.rpk.level", "ALL_DISABLE"), "ALL_ENABLE");
  EXPECT_EQ(get("test.rpk.unset", "3"), "3");
  // An empty value reads as unset.
  EXPECT_EQ(property_set("test.rpk.empty", ""), 0);
  EXPECT_EQ(get("test.rpk.empty", "dflt"), "dflt");
  // Long names are accepted as on current Android.
  EXPECT_EQ(property_set("persist.vendor.ssr.restart_level_bak", "ALL_DISABLE"), 0);
  EXPECT_EQ(get("persist.vendor.ssr.restart_level_bak"), "ALL_DISABLE");
}

TEST(Properties, RefusesWhatCannotBeStored) {
  const std::string longest(PROPERTY_VALUE_MAX - 1, 'v');
  EXPECT_EQ(property_set("test.rpk.long", longest.c_str()), 0);
  EXPECT_EQ(get("test.rpk.long"), longest);
  const struct {
    const char *key;
    std::string value;
  } bad[] = {
      {"test.rpk.long", longest + "v"},  // value too long: the old value stays
      {"", "x"},
      {"a=b", "x"},
      {"test.rpk.nl", "two\nlines"},
  };
  for (const auto &b : bad) EXPECT_LT(property_set(b.key, b.value.c_str()), 0) << b.key;
  EXPECT_EQ(get("test.rpk.long"), longest);
}

TEST(Properties, ConcurrentSettersLoseNothing) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 20; ++i) {
        std::string key = "test.rpk.t" + std::to_string(t) + "." + std::to_string(i);
        property_set(key.c_str(), "1");
      }
    });
  }
  for (auto &th : threads) th.join();
  for (int t = 0; t < 4; ++t) {
    for (int i = 0; i < 20; ++i) {
      std::string key = "test.rpk.t" + std::to_string(t) + "." + std::to_string(i);
      EXPECT_EQ(get(key.c_str()), "1") << key;
    }
  }
}

}  // namespace
