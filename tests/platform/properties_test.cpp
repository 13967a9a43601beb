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

TEST(Properties, SetThenGet) {
  const std::string longest(PROPERTY_VALUE_MAX - 1, 'v');
  ASSERT_EQ(property_set("test.rpk.kept", "old"), 0);
  struct Case {
    const char *key;
    std::string value;
    int rc;            // of property_set: 0, or below 0
    const char *read;  // then read with the default "dflt"
  };
  const Case cases[] = {
      {"test.rpk.level", "ALL_ENABLE", 0, "ALL_ENABLE"},
      {"test.rpk.empty", "", 0, "dflt"},  // an empty value reads as unset
      // Long names are accepted as on current Android.
      {"persist.vendor.ssr.restart_level_bak", "ALL_DISABLE", 0, "ALL_DISABLE"},
      {"test.rpk.long", longest, 0, longest.c_str()},
      {"test.rpk.kept", longest + "v", -1, "old"},  // too long: the old value stays
      {"", "x", -1, "dflt"},
      {"a=b", "x", -1, "dflt"},
      {"test.rpk.nl", "two\nlines", -1, "dflt"},
  };
  for (const Case &c : cases) {
    const int rc = property_set(c.key, c.value.c_str());
    EXPECT_EQ(rc < 0 ? -1 : rc, c.rc) << c.key;
    EXPECT_EQ(get(c.key, "dflt"), c.read) << c.key;
  }
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
