#include "tools/data_importer/source_readers/lookup_map.h"

#include <gtest/gtest.h>

#include <memory>

namespace data_importer {

namespace {

// Emptying destroys the entries (what they hold is released, not kept by
// blocks given back) and the map is filled again as new.
TEST(LookupMapTest, ClearReleasesEntriesAndMapRefills) {
  auto shared = std::make_shared<int>(7);
  LookupMap<int, std::shared_ptr<int>> map;
  for (int i = 0; i < 1000; ++i)
    map[i] = shared;
  EXPECT_EQ(1001, shared.use_count());
  ASSERT_NE(map.end(), map.find(999));

  map.clear();
  EXPECT_EQ(1, shared.use_count());
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.end(), map.find(999));

  EXPECT_TRUE(map.emplace(5, shared).second);
  EXPECT_FALSE(map.emplace(5, nullptr).second);
  ASSERT_NE(map.end(), map.find(5));
  EXPECT_EQ(shared, map.find(5)->second);
  EXPECT_EQ(1u, map.size());
}

}  // namespace

}  // namespace data_importer
