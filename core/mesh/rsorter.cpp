// Radix sorting in as few digit passes as the largest key needs, with digits of equal width
// (at most 11 bits, so at most three passes). The passes move (key, item) pairs stored side by
// side, so that each bucket is one stream of writes and every pass after the first reads
// sequentially; the last pass writes the keys and the ranks apart. All digit histograms come
// from one read of the keys in item order; a digit whose value is the same for every key is
// skipped, and keys already in order in item order need no pass at all. The first pass of a
// chained sort reads the keys through the previous order, fetching ahead of those random reads.
#include "rsorter.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "platform/hugepages.h"
#include "runtime/prefetch.h"

// A key and the item it belongs to, as the passes move them.
struct RSorter::KeyedItem {
    unsigned int key;
    unsigned int item;
};

namespace {

using KeyedItem = RSorter::KeyedItem;

constexpr int kMaxDigitBits = 11;
// How many items ahead the random reads of a chained pass are requested.
constexpr unsigned int kFetchAhead = 64;

// The digit layout for keys up to `largest`: `passes` digits of `bits` bits each.
struct Digits {
    int passes = 0;
    int bits = 0;
    unsigned int Buckets() const { return 1u << bits; }
    unsigned int Of(unsigned int key, int d) const { return (key >> (d * bits)) & (Buckets() - 1); }
};

Digits DigitsFor(unsigned int largest) {
    int keyBits = 0;
    while (keyBits < 32 && (largest >> keyBits) != 0) ++keyBits;
    Digits digits;
    digits.passes = (keyBits + kMaxDigitBits - 1) / kMaxDigitBits;
    digits.bits = digits.passes == 0 ? 0 : (keyBits + digits.passes - 1) / digits.passes;
    return digits;
}

// Every digit's histogram, digit after digit, in one read of the keys.
template <int Passes>
void CountDigitsOf(const unsigned int* keys, unsigned int count, const Digits& digits,
                   unsigned int* histograms) {
    for (unsigned int i = 0; i < count; ++i)
        for (int d = 0; d < Passes; ++d) ++histograms[d * digits.Buckets() + digits.Of(keys[i], d)];
}

void CountDigits(const unsigned int* keys, unsigned int count, const Digits& digits,
                 unsigned int* histograms) {
    // A fixed digit count lets the compiler unroll the digits.
    switch (digits.passes) {
        case 1:
            CountDigitsOf<1>(keys, count, digits, histograms);
            break;
        case 2:
            CountDigitsOf<2>(keys, count, digits, histograms);
            break;
        case 3:
            CountDigitsOf<3>(keys, count, digits, histograms);
            break;
        default:
            break;
    }
}

bool Ascending(const unsigned int* keys, unsigned int count) {
    for (unsigned int i = 1; i < count; ++i)
        if (keys[i] < keys[i - 1]) return false;
    return true;
}

// What a pass reads, by position: the keys in item order, the keys through an earlier order,
// or the pairs an earlier pass wrote.
struct InItemOrder {
    const unsigned int* keys;
    KeyedItem At(unsigned int i) const { return {keys[i], i}; }
};

struct ThroughOrder {
    const unsigned int* keys;
    const unsigned int* order;
    unsigned int count;
    KeyedItem At(unsigned int i) const {
        if (i + kFetchAhead < count) Prefetch(&keys[order[i + kFetchAhead]]);
        return {keys[order[i]], order[i]};
    }
};

struct FromPairs {
    const KeyedItem* pairs;
    KeyedItem At(unsigned int i) const { return pairs[i]; }
};

// Where a pass writes: pairs side by side, or keys and items apart (the last pass).
struct ToPairs {
    KeyedItem* pairs;
    void Put(unsigned int at, KeyedItem p) const { pairs[at] = p; }
};

struct ToKeysAndItems {
    unsigned int* keys;
    unsigned int* items;
    void Put(unsigned int at, KeyedItem p) const {
        keys[at] = p.key;
        items[at] = p.item;
    }
};

// One stable scatter by digit d, given that digit's histogram.
template <class Source, class Target>
void ScatterByDigit(const Source& from, const Target& to, unsigned int count, const Digits& digits,
                    int d, const unsigned int* histogram) {
    std::vector<unsigned int> offset(digits.Buckets());
    unsigned int running = 0;
    for (unsigned int b = 0; b < digits.Buckets(); ++b) {
        offset[b] = running;
        running += histogram[b];
    }
    unsigned int* next = offset.data();
    for (unsigned int i = 0; i < count; ++i) {
        const KeyedItem item = from.At(i);
        to.Put(next[digits.Of(item.key, d)]++, item);
    }
}

// One pass by digit d from `from` into the pairs, or into the keys and items when it is the
// last.
template <class Source>
void ScatterTo(const Source& from, bool last, KeyedItem* pairs, unsigned int* keys,
               unsigned int* items, unsigned int count, const Digits& digits, int d,
               const unsigned int* histogram) {
    if (last)
        ScatterByDigit(from, ToKeysAndItems{keys, items}, count, digits, d, histogram);
    else
        ScatterByDigit(from, ToPairs{pairs}, count, digits, d, histogram);
}

}  // namespace

RSorter::RSorter() = default;
RSorter::~RSorter() = default;
RSorter::RSorter(RSorter&&) noexcept = default;
RSorter& RSorter::operator=(RSorter&&) noexcept = default;

void RSorter::Reserve(unsigned int count) {
    if (count <= capacity_) return;
    std::unique_ptr<unsigned int[]> ranks(NewLargeArray<unsigned int>(count));
    std::unique_ptr<unsigned int[]> orderedKeys(NewLargeArray<unsigned int>(count));
    std::unique_ptr<KeyedItem[]> pairs(NewLargeArray<KeyedItem>(count));
    std::unique_ptr<KeyedItem[]> otherPairs(NewLargeArray<KeyedItem>(count));
    // Only a new count grows the buffers, and a new count starts from item order, so nothing
    // needs copying.
    ranks_ = std::move(ranks);
    orderedKeys_ = std::move(orderedKeys);
    pairs_ = std::move(pairs);
    otherPairs_ = std::move(otherPairs);
    capacity_ = count;
}

const unsigned int* RSorter::GetRanks() const {
    if (count_ == 0) return nullptr;
    if (itemOrder_) {
        std::iota(ranks_.get(), ranks_.get() + count_, 0u);
        itemOrder_ = false;
    }
    return ranks_.get();
}

RSorter& RSorter::Sort(const unsigned int* keys, unsigned int count) {
    const bool chained = count_ == count && count != 0;
    const bool fromItemOrder = !chained || itemOrder_;
    Reserve(count);
    count_ = count;
    if (count == 0) return *this;
    if (fromItemOrder && Ascending(keys, count)) {
        // The ranks stay item order; GetRanks writes them out when asked.
        itemOrder_ = true;
        std::memcpy(orderedKeys_.get(), keys, count * sizeof(unsigned int));
        return *this;
    }

    unsigned int largest = 0;
    for (unsigned int i = 0; i < count; ++i) largest = std::max(largest, keys[i]);
    const Digits digits = DigitsFor(largest);
    std::vector<unsigned int> histograms(digits.passes * digits.Buckets(), 0u);
    CountDigits(keys, count, digits, histograms.data());
    std::vector<int> passes;
    for (int d = 0; d < digits.passes; ++d)
        if (histograms[d * digits.Buckets() + digits.Of(keys[0], d)] != count) passes.push_back(d);
    if (passes.empty()) {
        // Every key the same, and equal keys in item order were caught above: the earlier
        // order stands.
        std::fill(orderedKeys_.get(), orderedKeys_.get() + count, keys[0]);
        return *this;
    }

    // The first pass reads the caller's keys; a lone pass through the earlier ranks cannot
    // write the ranks it reads, so it goes through the pairs.
    const int first = passes.front();
    const unsigned int* firstHistogram = &histograms[first * digits.Buckets()];
    const bool lonePass = passes.size() == 1;
    if (fromItemOrder) {
        ScatterTo(InItemOrder{keys}, lonePass, pairs_.get(), orderedKeys_.get(), ranks_.get(),
                  count, digits, first, firstHistogram);
    } else {
        ScatterTo(ThroughOrder{keys, ranks_.get(), count}, false, pairs_.get(), orderedKeys_.get(),
                  ranks_.get(), count, digits, first, firstHistogram);
        if (lonePass) {
            for (unsigned int i = 0; i < count; ++i) {
                orderedKeys_[i] = pairs_[i].key;
                ranks_[i] = pairs_[i].item;
            }
        }
    }
    for (size_t p = 1; p < passes.size(); ++p) {
        const int d = passes[p];
        ScatterTo(FromPairs{pairs_.get()}, p + 1 == passes.size(), otherPairs_.get(),
                  orderedKeys_.get(), ranks_.get(), count, digits, d,
                  &histograms[d * digits.Buckets()]);
        pairs_.swap(otherPairs_);
    }
    itemOrder_ = false;
    return *this;
}
