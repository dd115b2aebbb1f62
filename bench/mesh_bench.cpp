// Mesh algorithms on the full Stanford dragon (871,414 faces), each beside a baseline in the
// same run: the adjacency beside a std::unordered_map edge matcher, the face clusters beside
// a union-find over those links, CalcSmNormals (every face in group 1) beside a plain
// per-vertex normal sum, and AutoSmooth(45, 0) beside hash-map adjacency + union-find +
// greedy colouring. Faces per second are the items_per_second counters; after the run one
// "ratio <name>: <ours / baseline>" line is printed per pair (medians of the repetitions).
//
// The data folder is ../shared/data beside the project (or $ORVANE_SHARED_DATA).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <unordered_map>
#include <vector>

#include "../tests/support/objreader.h"
#include "adjacency.h"
#include "clusters.h"
#include "cmesh.h"
#include "ratioreporter.h"

namespace {

constexpr unsigned int kNoLink = 0xFFFFFFFFu;
constexpr float kAutoSmoothAngle = 45.0f;

std::string SharedData(const std::string& relative) {
    if (const char* folder = std::getenv("ORVANE_SHARED_DATA")) return folder + ("/" + relative);
    std::string here = __FILE__;
    here = here.substr(0, here.find_last_of('/'));  // bench/
    here = here.substr(0, here.find_last_of('/'));  // the project
    return here + "/../shared/data/" + relative;
}

// The dragon, read once: the OBJ data, its flat indices and a mesh built from it.
struct Dragon {
    ObjData data;
    std::vector<int> indices;
    cmesh mesh;
    bool ok = false;

    Dragon() {
        ok = ReadObj(SharedData("meshes/dragon.obj.gz"), data) && BuildMesh(data, mesh);
        indices = FlatIndices(data);
    }
    int NumFaces() const { return static_cast<int>(data.triangles.size()); }
};

Dragon& TheDragon() {
    static Dragon dragon;
    return dragon;
}

bool Ready(benchmark::State& state) {
    if (TheDragon().ok) return true;
    state.SkipWithError("cannot read meshes/dragon.obj.gz");
    return false;
}

void CountFaces(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * TheDragon().NumFaces());
}

// ---- Baselines ----

// Links the first two triangles of every edge, matched through a hash map of vertex pairs.
std::vector<unsigned int> HashMapLinks(const std::vector<int>& indices) {
    const size_t faces = indices.size() / 3;
    std::vector<unsigned int> links(3 * faces, kNoLink);
    struct Users {
        unsigned int first;  // face << 2 | edge
        unsigned int count;
    };
    std::unordered_map<unsigned long long, Users> edges;
    edges.reserve(3 * faces / 2);
    for (unsigned int f = 0; f < faces; ++f) {
        for (unsigned int k = 0; k < 3; ++k) {
            unsigned int a = static_cast<unsigned int>(indices[3 * f + k]);
            unsigned int b = static_cast<unsigned int>(indices[3 * f + (k + 1) % 3]);
            if (a > b) std::swap(a, b);
            const auto found = edges.try_emplace((static_cast<unsigned long long>(b) << 32) | a,
                                                 Users{(f << 2) | k, 0});
            Users& users = found.first->second;
            if (++users.count == 2) {
                const unsigned int g = users.first >> 2, j = users.first & 3;
                links[3 * f + k] = g | (j << 30);
                links[3 * g + j] = f | (k << 30);
            }
        }
    }
    return links;
}

// Union-find clusters over the links with the same angle rule; returns the cluster count
// and fills `cluster` with each face's root.
unsigned int UnionFindClusters(const std::vector<unsigned int>& links,
                               const std::vector<cpoint3>& normals, float angle,
                               std::vector<unsigned int>& cluster) {
    const unsigned int faces = static_cast<unsigned int>(links.size() / 3);
    std::vector<unsigned int> parent(faces);
    std::iota(parent.begin(), parent.end(), 0u);
    auto find = [&](unsigned int x) {
        while (parent[x] != x) x = parent[x] = parent[parent[x]];
        return x;
    };
    const float cosine = std::cos(angle * 0.017453292519943295f);
    for (unsigned int f = 0; f < faces; ++f) {
        for (unsigned int k = 0; k < 3; ++k) {
            const unsigned int link = links[3 * f + k];
            if (link == kNoLink) continue;
            const unsigned int g = link & 0x3FFFFFFFu;
            const cpoint3 &a = normals[f], &b = normals[g];
            if (a.x * b.x + a.y * b.y + a.z * b.z < cosine) continue;
            parent[find(f)] = find(g);
        }
    }
    cluster.resize(faces);
    unsigned int roots = 0;
    for (unsigned int f = 0; f < faces; ++f) {
        cluster[f] = find(f);
        roots += cluster[f] == f;
    }
    return roots;
}

// ---- Adjacency ----

void BM_Adjacency_Ours(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    for (auto _ : state) {
        AdjFaceList list;
        list.Init(d.indices.data(), d.NumFaces());
        benchmark::DoNotOptimize(list.Create());
        benchmark::DoNotOptimize(list.GetTriangles());
    }
    CountFaces(state);
}

void BM_Adjacency_HashMap(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    for (auto _ : state) benchmark::DoNotOptimize(HashMapLinks(d.indices).data());
    CountFaces(state);
}

// ---- Face clusters ----

void BM_FaceClusters_Ours(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    AdjFaceList adjacency;
    adjacency.Init(d.mesh);
    adjacency.Create();
    for (auto _ : state) {
        FaceClusterList clusters;
        benchmark::DoNotOptimize(clusters.Init(d.mesh, adjacency, 0, kAutoSmoothAngle, 1));
    }
    CountFaces(state);
}

void BM_FaceClusters_UnionFind(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    const std::vector<unsigned int> links = HashMapLinks(d.indices);
    std::vector<unsigned int> cluster;
    for (auto _ : state) {
        std::vector<cpoint3> normals(d.NumFaces());
        for (int f = 0; f < d.NumFaces(); ++f) normals[f] = d.mesh.GetFaceNormal(f);
        benchmark::DoNotOptimize(UnionFindClusters(links, normals, kAutoSmoothAngle, cluster));
    }
    CountFaces(state);
}

// ---- Smoothing normals ----

void BM_CalcSmNormals_Ours(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    d.mesh.SetFaceSmGroups(-1, 1);
    for (auto _ : state) d.mesh.CalcSmNormals();
    CountFaces(state);
}

void BM_CalcSmNormals_PlainSum(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    const auto& v = d.data.vertices;
    std::vector<float> sums(3 * v.size());
    for (auto _ : state) {
        std::fill(sums.begin(), sums.end(), 0.0f);
        for (const auto& t : d.data.triangles) {
            const auto &p0 = v[t[0]], &p1 = v[t[1]], &p2 = v[t[2]];
            const float ax = p0[0] - p1[0], ay = p0[1] - p1[1], az = p0[2] - p1[2];
            const float bx = p2[0] - p1[0], by = p2[1] - p1[1], bz = p2[2] - p1[2];
            const float n[3] = {ay * bz - az * by, az * bx - ax * bz, ax * by - ay * bx};
            for (int c : t)
                for (int i = 0; i < 3; ++i) sums[3 * c + i] += n[i];
        }
        for (size_t i = 0; i < v.size(); ++i) {
            float* s = &sums[3 * i];
            const float length = std::sqrt(s[0] * s[0] + s[1] * s[1] + s[2] * s[2]);
            if (length > 0.0f)
                for (int k = 0; k < 3; ++k) s[k] /= length;
        }
        benchmark::DoNotOptimize(sums.data());
    }
    CountFaces(state);
}

// ---- AutoSmooth ----

void BM_AutoSmooth_Ours(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    for (auto _ : state) benchmark::DoNotOptimize(d.mesh.AutoSmooth(kAutoSmoothAngle, 0));
    CountFaces(state);
}

// Hash-map adjacency, union-find clusters and a greedy colouring: each cluster takes the
// lowest group bit that no cluster sharing one of its vertices has taken.
void BM_AutoSmooth_HashMapUnionFind(benchmark::State& state) {
    if (!Ready(state)) return;
    Dragon& d = TheDragon();
    const int faces = d.NumFaces();
    const size_t verts = d.data.vertices.size();
    std::vector<unsigned int> cluster;
    for (auto _ : state) {
        const std::vector<unsigned int> links = HashMapLinks(d.indices);
        std::vector<cpoint3> normals(faces);
        for (int f = 0; f < faces; ++f) normals[f] = d.mesh.GetFaceNormal(f);
        UnionFindClusters(links, normals, kAutoSmoothAngle, cluster);
        std::vector<unsigned int> usedAtVertex(verts, 0), group(faces, 0);
        for (int f = 0; f < faces; ++f) {
            if (group[cluster[f]] == 0) {
                unsigned int used = 0;
                for (int k = 0; k < 3; ++k) used |= usedAtVertex[d.indices[3 * f + k]];
                group[cluster[f]] = ~used & (used + 1);
            }
            for (int k = 0; k < 3; ++k) usedAtVertex[d.indices[3 * f + k]] |= group[cluster[f]];
        }
        benchmark::DoNotOptimize(group.data());
    }
    CountFaces(state);
}

#define MESH_BENCHMARK(name) \
    BENCHMARK(name)->Unit(benchmark::kMillisecond)->Repetitions(5)->MinTime(0.5)

MESH_BENCHMARK(BM_Adjacency_Ours);
MESH_BENCHMARK(BM_Adjacency_HashMap);
MESH_BENCHMARK(BM_FaceClusters_Ours);
MESH_BENCHMARK(BM_FaceClusters_UnionFind);
MESH_BENCHMARK(BM_CalcSmNormals_Ours);
MESH_BENCHMARK(BM_CalcSmNormals_PlainSum);
MESH_BENCHMARK(BM_AutoSmooth_Ours);
MESH_BENCHMARK(BM_AutoSmooth_HashMapUnionFind);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("adjacency", "BM_Adjacency_Ours", "BM_Adjacency_HashMap");
    reporter.PrintRatio("face_clusters", "BM_FaceClusters_Ours", "BM_FaceClusters_UnionFind");
    reporter.PrintRatio("calc_sm_normals", "BM_CalcSmNormals_Ours", "BM_CalcSmNormals_PlainSum");
    reporter.PrintRatio("auto_smooth", "BM_AutoSmooth_Ours", "BM_AutoSmooth_HashMapUnionFind");
    return 0;
}
