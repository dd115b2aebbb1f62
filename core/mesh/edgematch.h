// Internal: the edge matching shared by AdjFaceList, AdjEdgeList and CheckFaceList. Edge
// records are ordered by (higher, lower, face) with three chained stable radix passes, then
// walked as runs of records on the same vertex pair.
#ifndef ORVANE_CORE_MESH_EDGEMATCH_H
#define ORVANE_CORE_MESH_EDGEMATCH_H

#include <new>

#include "adjacency.h"
#include "rsorter.h"
#include "runtime/prefetch.h"

// How a walk over the edge runs ended.
enum class EdgeWalk { kEveryRun, kStopped, kNoMemory };

// Sorts the records and calls onRun(lower, higher, faces, size) for each run of records on
// one vertex pair, in sorted order, where faces holds the run's first two faces (size 1 leaves
// faces[1] unset). A false return from onRun stops the walk. The walk reads each record's lower
// reference and face from `records` (records.Lower(r), records.Face(r)), which holds the same
// values as the key arrays in the caller's own layout, and calls records.Fetch(r) a few
// records ahead: the records come in vertex order, which is random in memory, and reading
// them where the caller keeps them anyway saves a random read of each key array.
template <class OnRun, class Records>
EdgeWalk WalkEdgeRuns(const AdjEdgeKeys& keys, const Records& records, OnRun onRun) {
    const unsigned int count = keys.Count();
    if (count == 0) return EdgeWalk::kEveryRun;
    RSorter sorter;
    try {
        sorter.Sort(keys.face.get(), count).Sort(keys.lower.get(), count);
        sorter.Sort(keys.higher.get(), count);
    } catch (const std::bad_alloc&) {
        return EdgeWalk::kNoMemory;
    }
    const unsigned int* ranks = sorter.GetRanks();
    const unsigned int* sortedHigher = sorter.GetSortedKeys();
    constexpr unsigned int kAhead = 32;

    unsigned int faces[2] = {0, 0};
    unsigned int lower = records.Lower(ranks[0]), higher = sortedHigher[0];
    unsigned int size = 0;
    for (unsigned int i = 0; i < count; ++i) {
        if (i + kAhead < count) records.Fetch(ranks[i + kAhead]);
        const unsigned int r = ranks[i];
        const unsigned int recordLower = records.Lower(r);
        // Both compared without a branch between them: run ends are unpredictable.
        if ((sortedHigher[i] != higher) | (recordLower != lower)) {
            if (!onRun(lower, higher, faces, size)) return EdgeWalk::kStopped;
            lower = recordLower;
            higher = sortedHigher[i];
            size = 0;
        }
        if (size < 2) faces[size] = records.Face(r);
        ++size;
    }
    return onRun(lower, higher, faces, size) ? EdgeWalk::kEveryRun : EdgeWalk::kStopped;
}

// Links the two faces of every two-face edge through link(face0, face1, lower, higher), which
// answers 1 on success. `result` becomes 0 when a link fails, which stops the walk; else 1.
// Intended: an edge of three or more faces ends the linking with success, and later edges
// stay open.
template <class Records, class Link>
EdgeWalk LinkEdgePairs(const AdjEdgeKeys& keys, const Records& records, int& result, Link link) {
    result = 1;
    return WalkEdgeRuns(
        keys, records,
        [&](unsigned int lower, unsigned int higher, const unsigned int* faces, unsigned int size) {
            if (size > 2) return false;
            if (size == 2) result = link(faces[0], faces[1], lower, higher);
            return result != 0;
        });
}

#endif
