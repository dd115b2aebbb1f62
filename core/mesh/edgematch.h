// Internal: the edge matching shared by AdjFaceList, AdjEdgeList and CheckFaceList. Edge
// records are ordered by (higher, lower, face) with three chained stable radix passes, then
// walked as runs of records on the same vertex pair.
#ifndef ORVANE_CORE_MESH_EDGEMATCH_H
#define ORVANE_CORE_MESH_EDGEMATCH_H

#include "adjacency.h"
#include "rsorter.h"

// Sorts the records and calls onRun(lower, higher, faces, size) for each run of records on
// one vertex pair, in sorted order, where faces holds the run's first two faces (size 1 leaves
// faces[1] unset). A false return from onRun ends the walk. Returns false when a run stopped
// it, true when every run was seen.
template <class OnRun>
bool WalkEdgeRuns(const AdjEdgeKeys& keys, OnRun onRun) {
    const unsigned int count = keys.Count();
    if (count == 0) return true;
    RSorter sorter;
    sorter.Sort(keys.face.data(), count).Sort(keys.lower.data(), count);
    const unsigned int* ranks = sorter.Sort(keys.higher.data(), count).GetRanks();
    const unsigned int* sortedHigher = sorter.GetSortedKeys();

    unsigned int faces[2] = {0, 0};
    unsigned int lower = keys.lower[ranks[0]], higher = sortedHigher[0];
    unsigned int size = 0;
    for (unsigned int i = 0; i < count; ++i) {
        const unsigned int r = ranks[i];
        if (sortedHigher[i] != higher || keys.lower[r] != lower) {
            if (!onRun(lower, higher, faces, size)) return false;
            lower = keys.lower[r];
            higher = sortedHigher[i];
            size = 0;
        }
        if (size < 2) faces[size] = keys.face[r];
        ++size;
    }
    return onRun(lower, higher, faces, size);
}

#endif
