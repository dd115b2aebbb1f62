#include "rsorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

std::vector<unsigned int> Ranks(const RSorter& s) {
    return std::vector<unsigned int>(s.GetRanks(), s.GetRanks() + s.GetCount());
}

// The stable order of the items by `less`, from std::stable_sort.
template <class Less>
std::vector<unsigned int> StableOrder(size_t n, Less less) {
    std::vector<unsigned int> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(), less);
    return order;
}

std::vector<unsigned int> RandomKeys(std::mt19937& rng, size_t n, unsigned int mask) {
    std::vector<unsigned int> keys(n);
    for (unsigned int& k : keys) k = static_cast<unsigned int>(rng()) & mask;
    return keys;
}

}  // namespace

TEST(RSorter, SortsKeysStablyOverAllThirtyTwoBits) {
    RSorter s;
    EXPECT_EQ(s.GetRanks(), nullptr);
    const std::vector<unsigned int> small = {5, 0xFFFFFFFFu, 5, 0, 0x80000000u, 2048, 2047};
    s.Sort(small.data(), static_cast<unsigned int>(small.size()));
    EXPECT_EQ(Ranks(s), (std::vector<unsigned int>{3, 0, 2, 6, 5, 4, 1}));

    std::mt19937 rng(7);
    for (unsigned int mask : {0xFu, 0x3FFFFFu, 0xFFFFFFFFu}) {
        const std::vector<unsigned int> keys = RandomKeys(rng, 5000, mask);
        RSorter fresh;
        fresh.Sort(keys.data(), static_cast<unsigned int>(keys.size()));
        EXPECT_EQ(Ranks(fresh),
                  StableOrder(keys.size(),
                              [&](unsigned int a, unsigned int b) { return keys[a] < keys[b]; }))
            << std::hex << mask;
    }
}

TEST(RSorter, ChainedPassesOrderByTheLastKeyThenTheEarlierOnes) {
    std::mt19937 rng(11);
    const size_t n = 20000;
    const auto a = RandomKeys(rng, n, 0xFFu), b = RandomKeys(rng, n, 0x7u);
    const auto c = RandomKeys(rng, n, 0x3u);
    RSorter s;
    s.Sort(a.data(), n).Sort(b.data(), n).Sort(c.data(), n);
    EXPECT_EQ(Ranks(s), StableOrder(n, [&](unsigned int x, unsigned int y) {
                  if (c[x] != c[y]) return c[x] < c[y];
                  if (b[x] != b[y]) return b[x] < b[y];
                  return a[x] < a[y];
              }));

    // Keys already in order in the current ranks leave them alone.
    const std::vector<unsigned int> zeros(n, 0u);
    const std::vector<unsigned int> before = Ranks(s);
    s.Sort(zeros.data(), n);
    EXPECT_EQ(Ranks(s), before);

    // A new count, or ResetRanks, starts again from item order.
    const std::vector<unsigned int> three = {1, 1, 0};
    s.Sort(three.data(), 3);
    EXPECT_EQ(Ranks(s), (std::vector<unsigned int>{2, 0, 1}));
    const std::vector<unsigned int> same = {4, 4, 4};
    s.ResetRanks();
    s.Sort(same.data(), 3);
    EXPECT_EQ(Ranks(s), (std::vector<unsigned int>{0, 1, 2}));
}

TEST(RSorter, LargeSortsSplitOverCoresGiveTheSameStableOrder) {
    // Large enough to be split over the cores where there are several; one pass, two and
    // three, fresh and chained (the lone chained pass reads through the earlier ranks).
    std::mt19937 rng(5);
    const size_t n = 600000;
    const auto ascending = [&] {
        std::vector<unsigned int> keys(n);
        for (size_t i = 0; i < n; ++i) keys[i] = static_cast<unsigned int>(i / 3);
        return keys;
    }();
    for (unsigned int mask : {0x3FFu, 0x7FFFFu, 0xFFFFFFFFu}) {
        const auto first = RandomKeys(rng, n, 0xFFFFu), second = RandomKeys(rng, n, mask);
        RSorter fresh;
        fresh.Sort(second.data(), n);
        EXPECT_EQ(
            Ranks(fresh),
            StableOrder(n, [&](unsigned int x, unsigned int y) { return second[x] < second[y]; }))
            << std::hex << mask;

        RSorter chained;
        chained.Sort(ascending.data(), n).Sort(first.data(), n).Sort(second.data(), n);
        const auto expected = StableOrder(n, [&](unsigned int x, unsigned int y) {
            if (second[x] != second[y]) return second[x] < second[y];
            return first[x] < first[y];
        });
        ASSERT_EQ(Ranks(chained), expected) << std::hex << mask;
        for (size_t i = 0; i < n; i += 997)
            ASSERT_EQ(chained.GetSortedKeys()[i], second[expected[i]]) << i;
    }
}
