#include "rsorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <tuple>
#include <vector>

namespace {

using Keys = std::vector<unsigned int>;

Keys Ranks(const RSorter& s) {
    return Keys(s.GetRanks(), s.GetRanks() + s.GetCount());
}

// The stable order (std::stable_sort) of the items by `major`, ties broken by `minor`.
Keys StableOrder(const Keys& major, const Keys& minor) {
    Keys order(major.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(), [&](unsigned int x, unsigned int y) {
        return std::tie(major[x], minor[x]) < std::tie(major[y], minor[y]);
    });
    return order;
}

Keys RandomKeys(std::mt19937& rng, size_t n, unsigned int mask) {
    Keys keys(n);
    for (unsigned int& k : keys) k = static_cast<unsigned int>(rng()) & mask;
    return keys;
}

}  // namespace

// Passes are stable and chain: the order is by the last key, then the earlier ones. 600000 keys
// reach beyond the caches, where a chained pass reads the keys through the earlier ranks
// fetching ahead.
TEST(RSorter, ChainedPassesOrderByTheLastKeyThenTheEarlierOnes) {
    std::mt19937 rng(5);
    for (const size_t n : {size_t{20000}, size_t{600000}}) {
        Keys ascending(n);
        for (size_t i = 0; i < n; ++i) ascending[i] = static_cast<unsigned int>(i / 3);
        for (unsigned int mask : {0x3FFu, 0xFFFFFFFFu}) {
            const auto first = RandomKeys(rng, n, 0xFFFFu), second = RandomKeys(rng, n, mask);
            RSorter chained;
            chained.Sort(ascending.data(), n).Sort(first.data(), n).Sort(second.data(), n);
            const auto expected = StableOrder(second, first);
            ASSERT_EQ(Ranks(chained), expected) << std::hex << mask;
            EXPECT_EQ(chained.GetSortedKeys()[n - 1], second[expected[n - 1]]);
        }
    }
}
