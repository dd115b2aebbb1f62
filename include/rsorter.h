// RSorter: stable least-significant-digit radix sort of unsigned 32-bit keys into a rank
// array, reusable for chained passes (sort by a minor key, then by a major one).
#ifndef ORVANE_RSORTER_H
#define ORVANE_RSORTER_H

#include <memory>

#include "coreapi.h"

class CORE_API RSorter {
public:
    RSorter();
    ~RSorter();
    RSorter(RSorter&&) noexcept;
    RSorter& operator=(RSorter&&) noexcept;

    // Orders items 0..count-1 by keys[item], ascending and stable. When the previous Sort had
    // the same count (and ResetRanks was not called since), ties keep the order that sort left,
    // so passes chain: sorting by B after sorting by A orders by B, then A. Otherwise ties keep
    // item order. Returns *this; the order is GetRanks(). Throws std::bad_alloc when the
    // buffers cannot grow to `count`, leaving the sorter as it was.
    RSorter& Sort(const unsigned int* keys, unsigned int count);

    // The items in sorted order: GetRanks()[i] is the item of rank i (count entries, null
    // before the first Sort).
    const unsigned int* GetRanks() const;
    unsigned int GetCount() const { return count_; }
    // The keys of the last Sort in sorted order: GetSortedKeys()[i] = keys[GetRanks()[i]].
    const unsigned int* GetSortedKeys() const { return count_ ? orderedKeys_.get() : nullptr; }

    // Makes the next Sort start again from item order (the buffers are kept).
    void ResetRanks() { count_ = 0; }

    // The (key, item) pairs the passes move; defined with the passes.
    struct KeyedItem;

private:
    // Makes room for `count` items in every buffer; throws std::bad_alloc.
    void Reserve(unsigned int count);

    // The order and the keys in that order, then the pairs the passes write between.
    std::unique_ptr<unsigned int[]> ranks_, orderedKeys_;
    std::unique_ptr<KeyedItem[]> pairs_, otherPairs_;
    unsigned int count_ = 0, capacity_ = 0;
    // The ranks are item order but not yet written out.
    mutable bool itemOrder_ = false;
};

#endif
