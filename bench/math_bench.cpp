// Matrix and rotation hot paths beside Eigen's equivalents in the same run: the affine
// product, the point transform, the inverse, Slerp and the quaternion of a rotation matrix.
// After the run, one "ratio <name>: <ours / Eigen>" line is printed per pair (medians of the
// repetitions).
#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "cmatrix4.h"
#include "cquat.h"
#include "ratioreporter.h"

namespace {

// Each iteration works through this many inputs, so both sides do comparable real work and
// the data stays in the first-level cache.
constexpr int kCount = 256;
constexpr float kDegreesToRadians = 0.017453292519943295f;

// The same random affine transforms for both sides: a rotation from Euler angles, a
// scale of 0.5 to 2 and a translation within +-10.
struct Inputs {
    std::vector<cmatrix4> ours;
    std::vector<Eigen::Affine3f> eigen;
};

Inputs MakeTransforms(unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> angle(-180.0f, 180.0f), scale(0.5f, 2.0f),
        offset(-10.0f, 10.0f);
    Inputs in;
    for (int i = 0; i < kCount; ++i) {
        const cpoint3 s(scale(rng), scale(rng), scale(rng));
        const cpoint3 t(offset(rng), offset(rng), offset(rng));
        cmatrix4 m =
            cmatrix4().FromScale(s) * MatrixFromEuler(cpoint3(angle(rng), angle(rng), angle(rng)));
        m.SetTrans(t);
        in.ours.push_back(m);
        // Our row-vector matrix holds the transpose of Eigen's column-vector matrix.
        Eigen::Affine3f e = Eigen::Affine3f::Identity();
        e.matrix() = Eigen::Map<const Eigen::Matrix4f>(static_cast<const float*>(m));
        in.eigen.push_back(e);
    }
    return in;
}

struct RotationInputs {
    std::vector<cquat> ours;
    std::vector<Eigen::Quaternionf> eigen;
};

RotationInputs MakeRotations(unsigned seed) {
    std::mt19937 rng(seed);
    std::normal_distribution<float> gauss;
    RotationInputs in;
    for (int i = 0; i < kCount; ++i) {
        const cquat q = Normalize(MakeQuat(gauss(rng), gauss(rng), gauss(rng), gauss(rng)));
        in.ours.push_back(q);
        in.eigen.emplace_back(q.w, q.x, q.y, q.z);
    }
    return in;
}

template <class T>
void Finish(benchmark::State& state, std::vector<T>& out) {
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_Product_Ours(benchmark::State& state) {
    const Inputs a = MakeTransforms(1), b = MakeTransforms(2);
    std::vector<cmatrix4> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = a.ours[i] * b.ours[i];
        Finish(state, out);
    }
}

void BM_Product_EigenAffine3f(benchmark::State& state) {
    const Inputs a = MakeTransforms(1), b = MakeTransforms(2);
    std::vector<Eigen::Affine3f> out(kCount);
    for (auto _ : state) {
        // Ours applies a first, so Eigen's column-vector form is b x a.
        for (int i = 0; i < kCount; ++i) out[i] = b.eigen[i] * a.eigen[i];
        Finish(state, out);
    }
}

void BM_Product_EigenMatrix4f(benchmark::State& state) {
    const Inputs a = MakeTransforms(1), b = MakeTransforms(2);
    std::vector<Eigen::Matrix4f> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i)
            out[i].noalias() = b.eigen[i].matrix() * a.eigen[i].matrix();
        Finish(state, out);
    }
}

void BM_PointTransform_Ours(benchmark::State& state) {
    const Inputs m = MakeTransforms(3);
    std::vector<cpoint3> points(kCount), out(kCount);
    for (int i = 0; i < kCount; ++i) points[i] = m.ours[(i * 7) % kCount].GetTrans();
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = points[i] * m.ours[i];
        Finish(state, out);
    }
}

void BM_PointTransform_Eigen(benchmark::State& state) {
    const Inputs m = MakeTransforms(3);
    std::vector<Eigen::Vector3f> points(kCount), out(kCount);
    for (int i = 0; i < kCount; ++i) points[i] = m.eigen[(i * 7) % kCount].translation();
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = m.eigen[i] * points[i];
        Finish(state, out);
    }
}

void BM_Inverse_Ours(benchmark::State& state) {
    const Inputs m = MakeTransforms(4);
    std::vector<cmatrix4> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = Inverse(m.ours[i]);
        Finish(state, out);
    }
}

void BM_Inverse_Eigen(benchmark::State& state) {
    const Inputs m = MakeTransforms(4);
    std::vector<Eigen::Affine3f> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = m.eigen[i].inverse(Eigen::Affine);
        Finish(state, out);
    }
}

void BM_Slerp_Ours(benchmark::State& state) {
    const RotationInputs a = MakeRotations(5), b = MakeRotations(6);
    std::vector<cquat> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i)
            out[i] = Slerp(a.ours[i], b.ours[i], static_cast<float>(i) / kCount);
        Finish(state, out);
    }
}

void BM_Slerp_Eigen(benchmark::State& state) {
    const RotationInputs a = MakeRotations(5), b = MakeRotations(6);
    std::vector<Eigen::Quaternionf> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i)
            out[i] = a.eigen[i].slerp(static_cast<float>(i) / kCount, b.eigen[i]);
        Finish(state, out);
    }
}

void BM_QuatFromMatrix_Ours(benchmark::State& state) {
    const RotationInputs q = MakeRotations(7);
    std::vector<cmatrix4> m(kCount);
    for (int i = 0; i < kCount; ++i) MatrixFromQuat(q.ours[i], m[i]);
    std::vector<cquat> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = QuatFromMatrix(m[i]);
        Finish(state, out);
    }
}

void BM_QuatFromMatrix_Eigen(benchmark::State& state) {
    const RotationInputs q = MakeRotations(7);
    std::vector<Eigen::Matrix3f> m(kCount);
    for (int i = 0; i < kCount; ++i) m[i] = q.eigen[i].toRotationMatrix();
    std::vector<Eigen::Quaternionf> out(kCount);
    for (auto _ : state) {
        for (int i = 0; i < kCount; ++i) out[i] = Eigen::Quaternionf(m[i]);
        Finish(state, out);
    }
}

BENCHMARK(BM_Product_Ours);
BENCHMARK(BM_Product_EigenAffine3f);
BENCHMARK(BM_Product_EigenMatrix4f);
BENCHMARK(BM_PointTransform_Ours);
BENCHMARK(BM_PointTransform_Eigen);
BENCHMARK(BM_Inverse_Ours);
BENCHMARK(BM_Inverse_Eigen);
BENCHMARK(BM_Slerp_Ours);
BENCHMARK(BM_Slerp_Eigen);
BENCHMARK(BM_QuatFromMatrix_Ours);
BENCHMARK(BM_QuatFromMatrix_Eigen);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("product", "BM_Product_Ours", "BM_Product_EigenAffine3f");
    reporter.PrintRatio("product_matrix4f", "BM_Product_Ours", "BM_Product_EigenMatrix4f");
    reporter.PrintRatio("point_transform", "BM_PointTransform_Ours", "BM_PointTransform_Eigen");
    reporter.PrintRatio("inverse", "BM_Inverse_Ours", "BM_Inverse_Eigen");
    reporter.PrintRatio("slerp", "BM_Slerp_Ours", "BM_Slerp_Eigen");
    reporter.PrintRatio("quat_from_matrix", "BM_QuatFromMatrix_Ours", "BM_QuatFromMatrix_Eigen");
    return 0;
}
