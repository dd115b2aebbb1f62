// RSorter: stable least-significant-digit radix sort of unsigned 32-bit keys into a rank
// array, reusable for chained passes (sort by a minor key, then by a major one).
#ifndef ORVANE_RSORTER_H
#define ORVANE_RSORTER_H

#include <vector>

#include "coreapi.h"

class CORE_API RSorter {
public:
    RSorter() = default;

    // Orders items 0..count-1 by keys[item], ascending and stable. When the previous Sort had
    // the same count (and ResetRanks was not called since), ties keep the order that sort left,
    // so passes chain: sorting by B after sorting by A orders by B, then A. Otherwise ties keep
    // item order. Returns *this; the order is GetRanks().
    RSorter& Sort(const unsigned int* keys, unsigned int count);

    // The items in sorted order: GetRanks()[i] is the item of rank i (count entries, null
    // before the first Sort).
    const unsigned int* GetRanks() const { return ranks_.empty() ? nullptr : ranks_.data(); }
    unsigned int GetCount() const { return static_cast<unsigned int>(ranks_.size()); }
    // The keys of the last Sort in sorted order: GetSortedKeys()[i] = keys[GetRanks()[i]].
    const unsigned int* GetSortedKeys() const {
        return orderedKeys_.empty() ? nullptr : orderedKeys_.data();
    }

    // Makes the next Sort start again from item order.
    void ResetRanks() {
        ranks_.clear();
        orderedKeys_.clear();
    }

private:
    std::vector<unsigned int> ranks_;
    // Buffers of the passes, kept for the next Sort.
    std::vector<unsigned int> scratch_, orderedKeys_, scratchKeys_;
};

#endif
