// Internal: the box rule and the face normal shared by the mesh sources.
#ifndef ORVANE_CORE_MESH_MESHBOX_H
#define ORVANE_CORE_MESH_MESHBOX_H

#include <algorithm>

#include "cmesh.h"

// Intended: a box whose six coordinates are all equal counts as empty, so a box that really is
// the single point (c, c, c) is empty too.
inline bool IsEmptyBox(const cpoint3& min, const cpoint3& max) {
    const float c = min.x;
    return min.y == c && min.z == c && max.x == c && max.y == c && max.z == c;
}

// Adds `p` to the box: an empty box becomes the point, otherwise it grows per axis.
inline void GrowBox(cpoint3& min, cpoint3& max, const cpoint3& p) {
    if (IsEmptyBox(min, max)) {
        min = max = p;
        return;
    }
    for (int a = 0; a < 3; ++a) {
        min[a] = std::min(min[a], p[a]);
        max[a] = std::max(max[a], p[a]);
    }
}

// (P0 - P1) x (P2 - P1), not normalised: its length is twice the face's area.
inline cpoint3 FaceCross(const cvertex* verts, const cface& f) {
    const cpoint3& p1 = verts[f.v[1]].p;
    return CrossProd(verts[f.v[0]].p - p1, verts[f.v[2]].p - p1);
}

#endif
