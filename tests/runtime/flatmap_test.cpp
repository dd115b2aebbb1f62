#include "runtime/flatmap.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

// Enough keys to make the table grow several times from its smallest size.
TEST(FlatMap, KeepsTheFirstValueOfEachKeyAcrossGrowth) {
    std::vector<std::string> names;
    for (int i = 0; i < 5000; ++i) names.push_back("Node" + std::to_string(i));
    FlatMap<std::string_view, int> map;
    for (int i = 0; i < 5000; ++i) EXPECT_TRUE(map.Insert(names[i], i).second);
    for (int i = 0; i < 5000; i += 7) {
        const auto again = map.Insert(names[i], -1);
        EXPECT_FALSE(again.second);
        EXPECT_EQ(*again.first, i);
    }
    EXPECT_EQ(map.Size(), 5000u);
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(*map.Find(names[i]), i);
    EXPECT_EQ(map.Find("Node5000"), nullptr);
    EXPECT_EQ(map.Find(""), nullptr);
}

// Addresses of neighbouring objects differ only in a few middle bits.
TEST(FlatMap, SetsOfNeighbouringAddresses) {
    std::vector<double> objects(3000);
    FlatSet<const double*> set(100);
    for (const double& d : objects) EXPECT_TRUE(set.Insert(&d));
    EXPECT_FALSE(set.Insert(&objects[1234]));
    EXPECT_EQ(set.Size(), objects.size());
    for (const double& d : objects) ASSERT_TRUE(set.Contains(&d));
    EXPECT_FALSE(set.Contains(objects.data() + objects.size()));
}

}  // namespace
