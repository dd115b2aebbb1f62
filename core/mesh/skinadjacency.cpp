// The skin forms of the adjacency and cluster structures. A skin's faces are a mesh's faces
// (the skin deforms only the positions it draws), so each form is the mesh form.
#include "adjacency.h"
#include "clusters.h"
#include "cskin.h"

int AdjTriangleArrays::Init(cskin& skin) {
    return Init(static_cast<cmesh&>(skin));
}

int AdjEdgeList::Init(cskin& skin) {
    return Init(static_cast<cmesh&>(skin));
}

int FaceClusterList::Init(cskin& skin, AdjFaceList& adjacency, int selectedOnly, float angle,
                          int useAngle) {
    return Init(static_cast<cmesh&>(skin), adjacency, selectedOnly, angle, useAngle);
}

int EdgeClusterList::Init(cskin& skin, AdjEdgeList& adjacency, int selectedOnly) {
    return Init(static_cast<cmesh&>(skin), adjacency, selectedOnly);
}
