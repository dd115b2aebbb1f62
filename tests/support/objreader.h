// A small Wavefront OBJ reader for tests and benchmarks: vertex positions and faces only.
// Polygons are fan-split into triangles; 1-based and negative (relative) indices are accepted;
// texture and normal references ("f 1/2/3") are skipped. Files ending in ".gz" are read
// through `gzip -dc`. Header-only so that benchmarks can use it as well as tests.
#ifndef ORVANE_TESTS_SUPPORT_OBJREADER_H
#define ORVANE_TESTS_SUPPORT_OBJREADER_H

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cmesh.h"
#include "cpoint.h"

// The positions and the triangles (0-based vertex indices) of an OBJ file.
struct ObjData {
    std::vector<std::array<float, 3>> vertices;
    std::vector<std::array<int, 3>> triangles;
};

namespace objreader_detail {

// Fan-splits the face on `line` (after the "f") into triangles; false on a bad reference.
// A reference ("7", "-2", "7/1/3") is resolved against the vertices read so far.
inline bool ReadFace(const char* line, ObjData& out) {
    std::istringstream tokens(line);
    std::vector<int> corners;
    const long count = static_cast<long>(out.vertices.size());
    for (std::string token; tokens >> token && token[0] != '#';) {
        char* end = nullptr;
        const long raw = std::strtol(token.c_str(), &end, 10);
        const long index = raw > 0 ? raw - 1 : count + raw;
        if (end == token.c_str() || raw == 0 || index < 0 || index >= count) return false;
        corners.push_back(static_cast<int>(index));
    }
    if (corners.size() < 3) return false;
    for (size_t k = 1; k + 1 < corners.size(); ++k)
        out.triangles.push_back({corners[0], corners[k], corners[k + 1]});
    return true;
}

inline bool ReadVertex(const char* line, ObjData& out) {
    std::array<float, 3> v{};
    if (std::sscanf(line, "%f %f %f", &v[0], &v[1], &v[2]) != 3) return false;
    out.vertices.push_back(v);
    return true;
}

inline bool ReadLines(FILE* file, ObjData& out) {
    char line[4096];
    while (std::fgets(line, sizeof line, file)) {
        const bool spaced = line[1] == ' ' || line[1] == '\t';
        if (spaced && line[0] == 'v' && !ReadVertex(line + 2, out)) return false;
        if (spaced && line[0] == 'f' && !ReadFace(line + 2, out)) return false;
    }
    return true;
}

}  // namespace objreader_detail

// Reads `path` into `out` (replacing its content). False when the file cannot be opened or a
// vertex or face line is malformed (a face reference to a vertex not yet read counts as
// malformed).
inline bool ReadObj(const std::string& path, ObjData& out) {
    using namespace objreader_detail;
    out = ObjData();
    if (path.size() > 3 && path.compare(path.size() - 3, 3, ".gz") == 0) {
        const std::string command = "gzip -dc '" + path + "' 2>/dev/null";
        std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
        return pipe && ReadLines(pipe.get(), out) && !out.vertices.empty();
    }
    std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "r"), std::fclose);
    return file && ReadLines(file.get(), out);
}

// The triangles as a flat array of three vertex indices each.
inline std::vector<int> FlatIndices(const ObjData& data) {
    std::vector<int> flat;
    flat.reserve(data.triangles.size() * 3);
    for (const auto& t : data.triangles) flat.insert(flat.end(), t.begin(), t.end());
    return flat;
}

// Replaces `mesh`'s content by the OBJ data (no texture vertices, default faces). False when
// the mesh refuses it (no vertices, or an invalid face).
inline bool BuildMesh(const ObjData& data, cmesh& mesh) {
    std::vector<cpoint3> points;
    points.reserve(data.vertices.size());
    for (const auto& v : data.vertices) points.emplace_back(v[0], v[1], v[2]);
    const std::vector<int> indices = FlatIndices(data);
    return mesh.SetMesh(points.data(), nullptr, nullptr, indices.data(),
                        static_cast<int>(points.size()), 0,
                        static_cast<int>(data.triangles.size())) == 1;
}

#endif
