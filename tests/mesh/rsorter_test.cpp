#include "rsorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <random>
#include <vector>

namespace {

using Keys = std::vector<unsigned int>;

Keys Ranks(const RSorter& s) {
    return Keys(s.GetRanks(), s.GetRanks() + s.GetCount());
}

// The stable order (std::stable_sort) of the items by the given keys, the first the most
// significant.
Keys StableOrder(std::initializer_list<const Keys*> keys) {
    Keys order((*keys.begin())->size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(), [&](unsigned int x, unsigned int y) {
        for (const Keys* k : keys)
            if ((*k)[x] != (*k)[y]) return (*k)[x] < (*k)[y];
        return false;
    });
    return order;
}

Keys RandomKeys(std::mt19937& rng, size_t n, unsigned int mask) {
    Keys keys(n);
    for (unsigned int& k : keys) k = static_cast<unsigned int>(rng()) & mask;
    return keys;
}

}  // namespace

TEST(RSorter, SortsKeysStablyOverAllThirtyTwoBits) {
    RSorter s;
    EXPECT_EQ(s.GetRanks(), nullptr);
    const Keys small = {5, 0xFFFFFFFFu, 5, 0, 0x80000000u, 2048, 2047};
    s.Sort(small.data(), static_cast<unsigned int>(small.size()));
    EXPECT_EQ(Ranks(s), (Keys{3, 0, 2, 6, 5, 4, 1}));
    std::mt19937 rng(7);
    for (unsigned int mask : {0xFu, 0x3FFFFFu, 0xFFFFFFFFu}) {
        const Keys keys = RandomKeys(rng, 5000, mask);
        RSorter fresh;
        fresh.Sort(keys.data(), static_cast<unsigned int>(keys.size()));
        EXPECT_EQ(Ranks(fresh), StableOrder({&keys})) << std::hex << mask;
    }
}

TEST(RSorter, ChainedPassesOrderByTheLastKeyThenTheEarlierOnes) {
    std::mt19937 rng(11);
    const size_t n = 20000;
    const auto a = RandomKeys(rng, n, 0xFFu), b = RandomKeys(rng, n, 0x7u);
    const auto c = RandomKeys(rng, n, 0x3u);
    RSorter s;
    s.Sort(a.data(), n).Sort(b.data(), n).Sort(c.data(), n);
    EXPECT_EQ(Ranks(s), StableOrder({&c, &b, &a}));
    // Keys already in order in the current ranks leave them alone.
    const Keys zeros(n, 0u), before = Ranks(s);
    s.Sort(zeros.data(), n);
    EXPECT_EQ(Ranks(s), before);
    // A new count, or ResetRanks, starts again from item order.
    const Keys three = {1, 1, 0}, same = {4, 4, 4};
    s.Sort(three.data(), 3);
    EXPECT_EQ(Ranks(s), (Keys{2, 0, 1}));
    s.ResetRanks();
    s.Sort(same.data(), 3);
    EXPECT_EQ(Ranks(s), (Keys{0, 1, 2}));
}

TEST(RSorter, LargeSortsSplitOverCoresGiveTheSameStableOrder) {
    // Large enough to be split over the cores where there are several; one pass, two and
    // three, fresh and chained (the lone chained pass reads through the earlier ranks).
    std::mt19937 rng(5);
    const size_t n = 600000;
    Keys ascending(n);
    for (size_t i = 0; i < n; ++i) ascending[i] = static_cast<unsigned int>(i / 3);
    for (unsigned int mask : {0x3FFu, 0x7FFFFu, 0xFFFFFFFFu}) {
        const auto first = RandomKeys(rng, n, 0xFFFFu), second = RandomKeys(rng, n, mask);
        RSorter fresh;
        fresh.Sort(second.data(), n);
        EXPECT_EQ(Ranks(fresh), StableOrder({&second})) << std::hex << mask;
        RSorter chained;
        chained.Sort(ascending.data(), n).Sort(first.data(), n).Sort(second.data(), n);
        const auto expected = StableOrder({&second, &first});
        ASSERT_EQ(Ranks(chained), expected) << std::hex << mask;
        for (size_t i = 0; i < n; i += 997)
            ASSERT_EQ(chained.GetSortedKeys()[i], second[expected[i]]) << i;
    }
}
