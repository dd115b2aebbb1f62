// Connected clusters of faces (across shared edges, optionally limited by the angle between
// neighbouring faces) and of edges (across shared vertices): FaceClusterList, EdgeClusterList.
#ifndef ORVANE_CLUSTERS_H
#define ORVANE_CLUSTERS_H

#include <vector>

#include "adjacency.h"
#include "coreapi.h"
#include "cpoint.h"

// The cluster number of an element that joins no cluster.
constexpr unsigned int CLUSTER_NONE = 0xFFFFFFFFu;

// Splits a mesh's faces into clusters connected through the links of an AdjFaceList.
// Clustering keeps process-wide temporaries: it is not re-entrant.
class CORE_API FaceClusterList {
public:
    FaceClusterList() = default;
    FaceClusterList(const FaceClusterList&) = delete;
    FaceClusterList& operator=(const FaceClusterList&) = delete;

    // Numbers the clusters from 0 in the order of their lowest face. Faces with invalid
    // vertex indices, and unselected faces when `selectedOnly` is set, join none. With
    // `useAngle` set a link is followed only when the neighbours' unit normals are at most
    // `angle` degrees apart (measured between neighbours, so a cluster may bend gradually).
    // 0 for a mesh without faces, when memory runs out or when `adjacency` does not hold one
    // triangle per face of `mesh`; else 1.
    int Init(cmesh& mesh, AdjFaceList& adjacency, int selectedOnly, float angle, int useAngle);
    // A skin's faces, exactly as the mesh form takes them.
    int Init(cskin& skin, AdjFaceList& adjacency, int selectedOnly, float angle, int useAngle);

    int NumClusters() const { return numClusters_; }
    int NumFaces() const { return static_cast<int>(clusters_.size()); }
    // Face f's cluster, or CLUSTER_NONE.
    unsigned int GetCluster(int f) const { return clusters_[f]; }
    // Face f's unit normal (zero for an invalid face).
    const cpoint3& GetNormal(int f) const { return normals_[f]; }

    // The settings of the last Init.
    int GetSelectedOnly() const { return selectedOnly_; }
    float GetAngle() const { return angle_; }
    int GetUseAngle() const { return useAngle_; }

private:
    unsigned int Recurse(unsigned int face, unsigned int id);
    bool Follows(unsigned int face, unsigned int link) const;

    std::vector<unsigned int> clusters_;
    std::vector<unsigned char> visited_;
    std::vector<cpoint3> normals_;
    int numClusters_ = 0;
    const AdjFaceList* adjacency_ = nullptr;
    int selectedOnly_ = 0;
    float angle_ = 0.0f;
    int useAngle_ = 0;
};

// Splits a mesh's edges (three per face) into clusters of edges connected through shared
// start vertices, as listed by an AdjEdgeList.
class CORE_API EdgeClusterList {
public:
    EdgeClusterList() = default;
    EdgeClusterList(const EdgeClusterList&) = delete;
    EdgeClusterList& operator=(const EdgeClusterList&) = delete;

    // Numbers the clusters from 0 in edge order. Edges with invalid vertex indices, and
    // unselected edges (flag 0x0001) when `selectedOnly` is set, join none. 0 for a mesh
    // without faces, when memory runs out or when `adjacency` does not hold three records per
    // face of `mesh`; else 1.
    int Init(cmesh& mesh, AdjEdgeList& adjacency, int selectedOnly);
    // A skin's edges, exactly as the mesh form takes them.
    int Init(cskin& skin, AdjEdgeList& adjacency, int selectedOnly);

    int NumClusters() const { return numClusters_; }
    int NumEdges() const { return static_cast<int>(clusters_.size()); }
    // Edge e's cluster, or CLUSTER_NONE.
    unsigned int GetCluster(int e) const { return clusters_[e]; }
    int GetSelectedOnly() const { return selectedOnly_; }

private:
    unsigned int Recurse(unsigned int edge, unsigned int id);

    std::vector<unsigned int> clusters_;
    std::vector<unsigned char> visited_;
    int numClusters_ = 0;
    const AdjEdgeList* adjacency_ = nullptr;
    int selectedOnly_ = 0;
};

#endif
