// Internal: the bulk steps the mesh editing operations share. Each keeps the face indices,
// texture indices and edge flags consistent; Refresh then restores the derived data.
#ifndef ORVANE_CORE_MESH_MESHEDITOR_H
#define ORVANE_CORE_MESH_MESHEDITOR_H

#include <cstdint>
#include <vector>

#include "cmesh.h"

struct MeshEditor {
    // Membership per element: entry i of `set` non-zero (entries past its end are not members).
    static std::vector<char> Members(const cbitarray& set, int count);
    // A set of `count` entries with the given members.
    static cbitarray ToSet(const std::vector<char>& members);

    // Counters recounted, selection centres, bounding box and smoothing normals rebuilt.
    static void Refresh(cmesh& m);

    // Appends vertices / texture vertices; returns the index of the first one appended.
    static int AppendVerts(cmesh& m, const std::vector<cvertex>& extra);
    static int AppendTVerts(cmesh& m, const std::vector<cpoint3>& extra);
    // Appends faces with their edge flags (3 per face); returns the first new face index.
    static int AppendFaces(cmesh& m, const std::vector<cface>& extra,
                           const std::vector<unsigned short>& extraEdges);

    // Remove the member faces (with their edge flags); return the number removed.
    static int RemoveFaces(cmesh& m, const std::vector<char>& remove);
    // Remove the member vertices; faces using one of them are removed too. The remaining
    // face indices are re-based. Returns the number of vertices removed.
    static int RemoveVerts(cmesh& m, const std::vector<char>& remove);
    // Remove the member texture vertices; a face that used one loses its texture indices.
    static int RemoveTVerts(cmesh& m, const std::vector<char>& remove);
    // Vertices no face references.
    static std::vector<char> UnusedVerts(const cmesh& m);

    // Replaces every face index i by mapTo[i]; faces that collapse are removed, and so are the
    // vertices mapped elsewhere. Returns the number of vertices merged away.
    static int MergeVerts(cmesh& m, const std::vector<int>& mapTo);

    // Gives face f its own copy of vertex v (a corner of f); returns the copy's index.
    static int CopyVertForFace(cmesh& m, int f, int v);

    // Moves face f onto the vertices `v` without touching its flags.
    static void SetCorners(cmesh& m, int f, const std::int32_t (&v)[3]);

    // Reverses face f: (a, b, c) becomes (c, b, a); edges 0 and 1 exchange their flags.
    static void FlipFace(cmesh& m, int f);

    // The vertices of the selected elements at `level` (1 to 3), or every vertex at level 0.
    static std::vector<char> SelectedVerts(const cmesh& m, int level);
    // Moves the member vertices by the object-space matrix `tm` and refreshes.
    static void TransformVerts(cmesh& m, const std::vector<char>& members, const cmatrix4& tm);
};

#endif
