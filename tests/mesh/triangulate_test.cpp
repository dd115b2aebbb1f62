#include "triangulate.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

using Point = std::array<float, 3>;
using Tri = std::array<int, 3>;
using Tris = std::vector<Tri>;

// A contour of the given points; a point written {x, y} lies at z = 0.
Array<TriVertex> Contour(const std::vector<Point>& points) {
    Array<TriVertex> contour;
    for (const Point& p : points) contour.Append(TriVertex(p[0], p[1], p[2]));
    return contour;
}

std::vector<Point> Points(const Array<TriVertex>& vertices) {
    std::vector<Point> out;
    for (int i = 0; i < vertices.Count(); ++i)
        out.push_back({vertices[i].GetX(), vertices[i].GetY(), vertices[i].GetZ()});
    return out;
}

Tris Triples(const Array<TriTriangle>& triangles) {
    Tris out;
    for (int i = 0; i < triangles.Count(); ++i)
        out.push_back({triangles[i].Get1(), triangles[i].Get2(), triangles[i].Get3()});
    return out;
}

// Twice the signed area of the triangle of ring points t, in double precision.
template <class Ring>
double TwiceArea(const Ring& ring, const Tri& t) {
    const auto &a = ring[t[0]], &b = ring[t[1]], &c = ring[t[2]];
    return (double(b[0]) - a[0]) * (double(c[1]) - a[1]) -
           (double(b[1]) - a[1]) * (double(c[0]) - a[0]);
}

// Reads the first ring of a JSON file of rings ([[[x, y], ...], ...]) as floats; the closing
// point of a ring that repeats its first point is dropped.
std::vector<Point> ReadOuterRing(const std::string& path) {
    const std::string text = ReadFileBytes(path);
    std::vector<Point> ring;
    std::vector<double> point;
    for (size_t i = 0, depth = 0; i < text.size(); ++i) {
        const char ch = text[i];
        if (ch == '[') {
            ++depth;
            point.clear();
        } else if (ch == ']') {
            if (depth == 3 && point.size() >= 2)
                ring.push_back({static_cast<float>(point[0]), static_cast<float>(point[1]), 0});
            if (--depth == 1) break;
        } else if (depth == 3 && (ch == '-' || (ch >= '0' && ch <= '9'))) {
            char* end = nullptr;
            point.push_back(std::strtod(text.c_str() + i, &end));
            i = static_cast<size_t>(end - text.c_str()) - 1;
        }
    }
    if (ring.size() > 1 && ring.front() == ring.back()) ring.pop_back();
    return ring;
}

}  // namespace

TEST(TriangulateArray, GrowsByDoublingFromSixteenAndClearsToNothing) {
    Array<TriTriangle> a;
    EXPECT_EQ(a.Capacity(), 0);
    a.Append(TriTriangle(1, 2, 3));
    EXPECT_EQ(a.Capacity(), 16);
    for (int i = 1; i < 17; ++i) a.Append(TriTriangle(i, i, i));
    EXPECT_EQ(a.Count(), 17);
    EXPECT_EQ(a.Capacity(), 32);
    EXPECT_EQ(a[0].Get3(), 3);
    EXPECT_EQ(a[16].Get1(), 16);
    a.Clear();
    EXPECT_EQ(a.Count(), 0);
    EXPECT_EQ(a.Capacity(), 0);
}

TEST(Triangulate, AreaIsSignedInTheChosenPlaneAndZeroForOtherPlanes) {
    const auto c = Contour({{0, 0, 0}, {2, 0, 3}, {2, 1, 3}, {0, 1, 0}});
    EXPECT_FLOAT_EQ(Triangulate::Area(1, c), 2.0f);   // (x, y): 2 x 1, counter-clockwise
    EXPECT_FLOAT_EQ(Triangulate::Area(2, c), -3.0f);  // (y, z): (0,0) (0,3) (1,3) (1,0)
    EXPECT_FLOAT_EQ(Triangulate::Area(3, c), 0.0f);   // (x, z): all on one line
    EXPECT_EQ(Triangulate::Area(4, c), 0.0f);
    EXPECT_EQ(Triangulate::Area(0, c), 0.0f);
}

TEST(Triangulate, InsideTriangleCountsEdgesAndCorners) {
    EXPECT_TRUE(Triangulate::InsideTriangle(0, 0, 4, 0, 0, 4, 1, 1));
    EXPECT_TRUE(Triangulate::InsideTriangle(0, 0, 4, 0, 0, 4, 2, 2));  // on the long edge
    EXPECT_TRUE(Triangulate::InsideTriangle(0, 0, 4, 0, 0, 4, 4, 0));  // a corner
    EXPECT_FALSE(Triangulate::InsideTriangle(0, 0, 4, 0, 0, 4, 2.01f, 2));
    EXPECT_FALSE(Triangulate::InsideTriangle(0, 0, 4, 0, 0, 4, -0.01f, 1));
}

// Ears are clipped in contour order, each triangle counter-clockwise in the chosen plane; a
// failure leaves the triangles found before it. The dent (2,2) lies on the diagonals 4-1 and
// 0-2, so the first two candidate ears are refused; a repeated corner blocks every ear touching
// it once the first one is cut. An unknown plane reverses the contour as given and works in
// (x, z). The point form copies the same triangles' contour points.
TEST(Triangulate, ClipsEarsInContourOrderPerPlane) {
    const struct {
        const char* why;
        int plane;
        std::vector<Point> contour;
        bool ok;
        Tris triangles;
    } rows[] = {
        // clang-format off
        {"square", 1, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, true, {{3, 0, 1}, {1, 2, 3}}},
        {"clockwise", 1, {{0, 0}, {0, 1}, {1, 1}, {1, 0}}, true, {{0, 3, 2}, {2, 1, 0}}},
        {"dent", 1, {{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}, true,
            {{1, 2, 3}, {3, 4, 0}, {0, 1, 3}}},
        {"too short", 1, {{0, 0}, {1, 0}}, false, {}},
        {"collinear", 1, {{0, 0}, {1, 1}, {2, 2}}, false, {}},
        {"repeated corner", 1, {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}, false, {{1, 2, 3}}},
        {"(y, z)", 2, {{9, 0, 0}, {9, 1, 0}, {9, 1, 1}}, true, {{2, 0, 1}}},
        {"line in (x, y)", 1, {{9, 0, 0}, {9, 1, 0}, {9, 1, 1}}, false, {}},
        {"(x, z)", 3, {{0, 5, 0}, {1, 5, 0}, {1, 5, 1}}, true, {{2, 0, 1}}},
        {"reversed (x, z)", 4, {{0, 5, 0}, {1, 5, 0}, {1, 5, 1}}, false, {}},
        {"clockwise (x, z)", 4, {{1, 5, 1}, {1, 5, 0}, {0, 5, 0}}, true, {{0, 2, 1}}},
        // clang-format on
    };
    for (const auto& row : rows) {
        Array<TriTriangle> out;
        out.Append(TriTriangle(7, 7, 7));
        EXPECT_EQ(Triangulate::Process(row.plane, Contour(row.contour), out), row.ok) << row.why;
        EXPECT_EQ(Triples(out), row.triangles) << row.why;
        Array<TriVertex> points;
        std::vector<Point> corners;
        for (const Tri& t : row.triangles)
            for (int i : t) corners.push_back(row.contour[static_cast<size_t>(i)]);
        EXPECT_EQ(Triangulate::Process(row.plane, Contour(row.contour), points), row.ok) << row.why;
        EXPECT_EQ(Points(points), corners) << row.why;
    }
}

TEST(Triangulate, LShapedHexagonGivesFourTrianglesCoveringItsArea) {
    const std::vector<Point> l = {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    Array<TriTriangle> out;
    ASSERT_TRUE(Triangulate::Process(1, Contour(l), out));
    ASSERT_EQ(out.Count(), 4);
    double sum = 0.0;
    for (const Tri& t : Triples(out)) {
        EXPECT_GT(TwiceArea(l, t), 0.0);
        sum += 0.5 * TwiceArea(l, t);
    }
    EXPECT_DOUBLE_EQ(sum, 3.0);
}

// Every outer ring of the shared polygon fixtures: a successful triangulation has n - 2
// counter-clockwise triangles whose areas sum to the ring's area. Failures are printed.
TEST(Triangulate, RealPolygonOuterRingsTriangulateIntoTheirArea) {
    const std::filesystem::path folder = SharedDataPath("polygons");
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    int rings = 0, succeeded = 0;
    std::string failures;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".json") continue;
        const std::string name = entry.path().filename().string();
        const auto ring = ReadOuterRing(entry.path().string());
        if (ring.size() < 3) continue;
        ++rings;
        Array<TriTriangle> out;
        if (!Triangulate::Process(1, Contour(ring), out)) {
            failures += " " + name;
            continue;
        }
        ++succeeded;
        EXPECT_EQ(out.Count(), static_cast<int>(ring.size()) - 2) << name;
        double sum = 0.0, area = 0.0;
        for (const Tri& t : Triples(out)) {
            EXPECT_GT(TwiceArea(ring, t), 0.0) << name;
            sum += 0.5 * TwiceArea(ring, t);
        }
        for (size_t p = ring.size() - 1, c = 0; c < ring.size(); p = c++)
            area += 0.5 * (double(ring[p][0]) * ring[c][1] - double(ring[c][0]) * ring[p][1]);
        EXPECT_NEAR(sum, std::fabs(area), 1e-9 * std::fabs(area)) << name;
    }
    std::printf("[ polygons ] %d outer rings, %d triangulated; failed:%s\n", rings, succeeded,
                failures.c_str());
    EXPECT_GT(succeeded, rings / 2);
}
