// Skin deformation of a 400 x 400 grid (160,801 vertices, four influences each) by four posed
// bones, beside a baseline in the same run: the same linear blend written with Eigen's affine
// matrices over flat arrays. Vertices per second are the items_per_second counters; after the
// run one "ratio deform: <ours / baseline>" line is printed (medians of the repetitions).
#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <vector>

#include "cskin.h"
#include "ratioreporter.h"

namespace {

constexpr int kGrid = 400;

// The grid skin, its bones and, for the baseline, the same weights as flat arrays.
struct Skinned {
    cskin skin;
    std::vector<cnode*> bones;
    std::vector<Eigen::Vector3f> rest;
    std::vector<int> boneOf;      // four per vertex
    std::vector<float> weightOf;  // four per vertex

    Skinned() {
        std::vector<cpoint3> points;
        for (int y = 0; y <= kGrid; ++y)
            for (int x = 0; x <= kGrid; ++x)
                points.emplace_back(static_cast<float>(x), static_cast<float>(y), 0.0f);
        std::vector<int> indices;
        for (int y = 0; y < kGrid; ++y)
            for (int x = 0; x < kGrid; ++x) {
                const int a = y * (kGrid + 1) + x, b = a + 1, c = a + kGrid + 1, d = c + 1;
                indices.insert(indices.end(), {a, b, d, a, d, c});
            }
        skin.SetMesh(points.data(), nullptr, nullptr, indices.data(),
                     static_cast<int>(points.size()), 0, static_cast<int>(indices.size() / 3));
        for (int i = 0; i < 4; ++i) {
            bones.push_back(new cnode("Bone", ccolor()));
            bones.back()->SetPosition(0, cpoint3(100.0f * static_cast<float>(i), 200.0f, 0.0f));
            skin.AddBone(bones.back());
        }
        skin.AssignNearestBones(4);
        for (int i = 0; i < 4; ++i) {
            bones[i]->SetRotation(0, cquat(0.0f, 0.0f, 10.0f * static_cast<float>(i)));
            bones[i]->SetPosition(0, cpoint3(100.0f * static_cast<float>(i), 210.0f, 5.0f));
        }
        for (const cpoint3& p : points) rest.emplace_back(p.x, p.y, p.z);
        boneOf.assign(4 * points.size(), 0);
        weightOf.assign(4 * points.size(), 0.0f);
        for (size_t v = 0; v < points.size(); ++v)
            skin.GetInfluences(static_cast<int>(v), &boneOf[4 * v], &weightOf[4 * v]);
    }
    ~Skinned() {
        for (cnode* bone : bones) bone->Delete();
    }
};

Skinned& TheSkin() {
    static Skinned skinned;
    return skinned;
}

void CountVerts(benchmark::State& state) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * TheSkin().skin.NumVerts());
}

void BM_Deform_Ours(benchmark::State& state) {
    cskin& skin = TheSkin().skin;
    for (auto _ : state) {
        skin.Deform();
        benchmark::DoNotOptimize(skin.GetDeformedVerts());
    }
    CountVerts(state);
}

// The bone matrices as the skin builds them (skin at the origin, bind as captured), then the
// blend of the four influences per vertex.
void BM_Deform_Eigen(benchmark::State& state) {
    Skinned& s = TheSkin();
    std::vector<Eigen::Vector3f> out(s.rest.size());
    for (auto _ : state) {
        Eigen::Affine3f pose[4];
        for (int b = 0; b < 4; ++b) {
            const cmatrix4 m = s.skin.GetBoneBindTM(b) * s.bones[b]->GetNodeTM(0);
            Eigen::Matrix4f rows;
            for (int r = 0; r < 4; ++r)
                for (int c = 0; c < 4; ++c) rows(r, c) = m.m[r][c];
            pose[b].matrix() = rows.transpose();
        }
        for (size_t v = 0; v < s.rest.size(); ++v) {
            Eigen::Vector3f sum = Eigen::Vector3f::Zero();
            float total = 0.0f;
            for (int k = 0; k < 4; ++k) {
                const float w = s.weightOf[4 * v + k];
                if (w <= 0.0f) continue;
                sum += w * (pose[s.boneOf[4 * v + k]] * s.rest[v]);
                total += w;
            }
            out[v] = total > 0.0f ? Eigen::Vector3f(sum / total) : s.rest[v];
        }
        benchmark::DoNotOptimize(out.data());
    }
    CountVerts(state);
}

#define SKIN_BENCHMARK(name) \
    BENCHMARK(name)->Unit(benchmark::kMillisecond)->Repetitions(5)->MinTime(0.5)

SKIN_BENCHMARK(BM_Deform_Ours);
SKIN_BENCHMARK(BM_Deform_Eigen);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("deform", "BM_Deform_Ours", "BM_Deform_Eigen");
    return 0;
}
