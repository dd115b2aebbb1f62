// Independent references for the adjacency and cluster tests: an ordered-map edge matcher
// and a union-find face clustering.
#ifndef ORVANE_TESTS_MESH_EDGEORACLE_H
#define ORVANE_TESTS_MESH_EDGEORACLE_H

#include <Eigen/Dense>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

#include "support/objreader.h"

// The links the adjacency must produce: edges are visited by (higher, lower) vertex (a
// std::sort of all face corners); an edge of exactly two triangles links them, one of three or
// more stops the linking.
inline std::vector<std::array<unsigned int, 3>> OracleLinks(
    const std::vector<std::array<int, 3>>& triangles) {
    std::vector<std::array<unsigned int, 4>> corners;  // higher, lower, face, edge
    for (unsigned int f = 0; f < triangles.size(); ++f)
        for (unsigned int k = 0; k < 3; ++k) {
            const unsigned int a = triangles[f][k], b = triangles[f][(k + 1) % 3];
            corners.push_back({std::max(a, b), std::min(a, b), f, k});
        }
    std::sort(corners.begin(), corners.end());
    std::vector<std::array<unsigned int, 3>> links(triangles.size(),
                                                   {0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu});
    bool over = false;
    for (size_t i = 0, end = 0; i < corners.size(); i = end) {
        for (end = i + 1; end < corners.size() && corners[end][0] == corners[i][0] &&
                          corners[end][1] == corners[i][1];)
            ++end;
        over = over || end - i > 2;
        if (over || end - i != 2) continue;
        const auto &a = corners[i], &b = corners[i + 1];
        links[a[2]][a[3]] = b[2] | (b[3] << 30);
        links[b[2]][b[3]] = a[2] | (a[3] << 30);
    }
    return links;
}

// Unit face normals (P0 - P1) x (P2 - P1) in double precision.
inline std::vector<Eigen::Vector3d> OracleNormals(const ObjData& data) {
    std::vector<Eigen::Vector3d> normals;
    const auto point = [&](int v) {
        return Eigen::Map<const Eigen::Vector3f>(data.vertices[v].data()).cast<double>().eval();
    };
    for (const auto& t : data.triangles)
        normals.push_back(
            (point(t[0]) - point(t[1])).cross(point(t[2]) - point(t[1])).normalized());
    return normals;
}

// Connected components of the faces over the given links, joining two linked faces when (with
// `useAngle`) their normals are at most `angle` degrees apart. Components are numbered by their
// lowest face.
inline std::vector<unsigned int> OracleClusters(
    const std::vector<std::array<unsigned int, 3>>& links,
    const std::vector<Eigen::Vector3d>& normals, bool useAngle, double angle) {
    const size_t n = links.size();
    std::vector<size_t> parent(n);
    std::iota(parent.begin(), parent.end(), size_t{0});
    auto find = [&](size_t x) {
        while (parent[x] != x) x = parent[x] = parent[parent[x]];
        return x;
    };
    for (size_t f = 0; f < n; ++f)
        for (unsigned int link : links[f]) {
            const size_t g = link & 0x3FFFFFFFu;
            if (link == 0xFFFFFFFFu ||
                (useAngle && std::acos(normals[f].dot(normals[g])) * 180.0 / M_PI > angle))
                continue;
            parent[find(f)] = find(g);
        }
    std::vector<unsigned int> cluster(n), numberOfRoot(n, 0xFFFFFFFFu);
    unsigned int next = 0;
    for (size_t f = 0; f < n; ++f) {
        unsigned int& id = numberOfRoot[find(f)];
        if (id == 0xFFFFFFFFu) id = next++;
        cluster[f] = id;
    }
    return cluster;
}

#endif
