#include "runtime/flatmap.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

// Enough keys to make the tables grow several times; neighbouring addresses differ only in a
// few middle bits.
TEST(FlatMap, KeepsTheFirstValueOfEachKeyAcrossGrowth) {
    std::vector<std::string> names;
    for (int i = 0; i < 5000; ++i) names.push_back("Node" + std::to_string(i));
    FlatMap<std::string_view, int> map;
    for (int i = 0; i < 5000; ++i) ASSERT_TRUE(map.Insert(names[i], i).second);
    EXPECT_EQ(*map.Insert(names[1234], -1).first, 1234);
    EXPECT_EQ(map.Size(), 5000u);
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(*map.Find(names[i]), i);
    EXPECT_EQ(map.Find("Node5000"), nullptr);

    std::vector<double> objects(3000);
    FlatSet<const double*> set(100);
    for (const double& d : objects) ASSERT_TRUE(set.Insert(&d));
    EXPECT_FALSE(set.Insert(&objects[1234]));
    for (const double& d : objects) ASSERT_TRUE(set.Contains(&d));
    EXPECT_FALSE(set.Contains(objects.data() + objects.size()));
}

}  // namespace
