// Radix sorting in as few digit passes as the largest key needs (at most 11 bits a digit, so
// at most three passes), moving (key, item) pairs so that every pass reads sequentially. All
// digit histograms are counted in one read of the keys; a digit whose value is the same for
// every key is skipped, and keys already in order in the current rank order need no pass.
#include "rsorter.h"

#include <numeric>

namespace {

constexpr int kMaxDigitBits = 11;

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

bool AlreadyOrdered(const unsigned int* keys, const unsigned int* order, unsigned int count) {
    for (unsigned int i = 1; i < count; ++i)
        if (keys[order[i]] < keys[order[i - 1]]) return false;
    return true;
}

// One stable scatter of the (key, item) pairs `from` into `to` by digit d, given that digit's
// histogram.
void ScatterByDigit(const unsigned int* fromKeys, const unsigned int* fromItems,
                    unsigned int* toKeys, unsigned int* toItems, unsigned int count,
                    const Digits& digits, int d, const unsigned int* histogram) {
    std::vector<unsigned int> offset(digits.Buckets());
    unsigned int running = 0;
    for (unsigned int b = 0; b < digits.Buckets(); ++b) {
        offset[b] = running;
        running += histogram[b];
    }
    for (unsigned int i = 0; i < count; ++i) {
        const unsigned int key = fromKeys[i];
        const unsigned int at = offset[digits.Of(key, d)]++;
        toKeys[at] = key;
        toItems[at] = fromItems[i];
    }
}

}  // namespace

RSorter& RSorter::Sort(const unsigned int* keys, unsigned int count) {
    if (ranks_.size() != count) {
        ranks_.resize(count);
        std::iota(ranks_.begin(), ranks_.end(), 0u);
    }
    orderedKeys_.resize(count);
    for (unsigned int i = 0; i < count; ++i) orderedKeys_[i] = keys[ranks_[i]];
    if (count < 2 || AlreadyOrdered(keys, ranks_.data(), count)) return *this;

    unsigned int largest = 0;
    for (unsigned int i = 0; i < count; ++i) largest = keys[i] > largest ? keys[i] : largest;
    const Digits digits = DigitsFor(largest);
    std::vector<unsigned int> histograms(digits.passes * digits.Buckets(), 0u);
    for (unsigned int i = 0; i < count; ++i)
        for (int d = 0; d < digits.passes; ++d)
            ++histograms[d * digits.Buckets() + digits.Of(keys[i], d)];

    scratchKeys_.resize(count);
    scratch_.resize(count);
    for (int d = 0; d < digits.passes; ++d) {
        const unsigned int* histogram = &histograms[d * digits.Buckets()];
        if (histogram[digits.Of(keys[0], d)] == count) continue;
        ScatterByDigit(orderedKeys_.data(), ranks_.data(), scratchKeys_.data(), scratch_.data(),
                       count, digits, d, histogram);
        orderedKeys_.swap(scratchKeys_);
        ranks_.swap(scratch_);
    }
    return *this;
}
