#include "triangulate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>
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

Tris Triples(const Array<TriTriangle>& triangles) {
    Tris out;
    for (int i = 0; i < triangles.Count(); ++i)
        out.push_back({triangles[i].Get1(), triangles[i].Get2(), triangles[i].Get3()});
    return out;
}

// Twice the signed area of a polygon in (x, y), in double precision.
double TwiceArea(const std::vector<Point>& ring) {
    double sum = 0.0;
    for (size_t p = ring.size() - 1, c = 0; c < ring.size(); p = c++)
        sum += double(ring[p][0]) * ring[c][1] - double(ring[c][0]) * ring[p][1];
    return sum;
}

// The first ring of a JSON file of rings of 2D points ([[[x, y], ...], ...]); the closing
// point of a ring that repeats its first point is dropped.
std::vector<Point> ReadOuterRing(const std::string& path) {
    std::string text = ReadFileBytes(path);
    text.erase(std::remove_if(text.begin(), text.end(), ::isspace), text.end());
    text.resize(text.find("]]"));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '[' || c == ']' || c == ','; }, ' ');
    std::istringstream in(text);
    std::vector<Point> ring;
    for (float x = 0, y = 0; in >> x >> y;) ring.push_back({x, y, 0});
    if (ring.size() > 1 && ring.front() == ring.back()) ring.pop_back();
    return ring;
}

}  // namespace

TEST(TriangulateArray, GrowsByDoublingFromSixteenAndClearsToNothing) {
    Array<TriTriangle> a;
    std::vector<int> capacities = {a.Capacity()};
    for (int i = 0; i < 16; ++i) a.Append(TriTriangle(i, i, i)), capacities.push_back(a.Capacity());
    a.Append(a[0]);  // an element of the full array itself, read before its block is freed
    capacities.push_back(a.Capacity());
    EXPECT_EQ(Triples(a).back(), (Tri{0, 0, 0}));
    a.Clear();
    EXPECT_EQ((std::vector<int>{capacities[0], capacities[1], capacities[16], capacities[17],
                                a.Capacity()}),
              (std::vector<int>{0, 16, 16, 32, 0}));
}

// Ears are clipped in contour order, each triangle counter-clockwise in the chosen plane (the
// signed area picks the working order); a failure leaves the triangles found before it. The dent
// (2,2) lies on the diagonals 4-1 and 0-2 (a point on an edge counts as inside), so the first two
// candidate ears are refused; a repeated corner blocks every ear touching it once the first one
// is cut. Intended: an unknown plane has area 0, so it reverses the contour as given, and works
// in (x, z). The point form copies the same triangles' contour points.
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
        EXPECT_EQ(Triangulate::Process(row.plane, Contour(row.contour), points), row.ok) << row.why;
        ASSERT_EQ(points.Count(), 3 * static_cast<int>(row.triangles.size())) << row.why;
        for (int i = 0; i < points.Count(); ++i)
            EXPECT_EQ(Point({points[i].GetX(), points[i].GetY(), points[i].GetZ()}),
                      row.contour[static_cast<size_t>(row.triangles[i / 3][i % 3])])
                << row.why << i;
    }
    // The result is cleared first, even when it is the contour itself.
    Array<TriVertex> same = Contour({{0, 0}, {1, 0}, {1, 1}});
    EXPECT_FALSE(Triangulate::Process(1, same, same));
    EXPECT_EQ(same.Count(), 0);
}

// Every outer ring of the shared polygon fixtures: a successful triangulation has n - 2
// counter-clockwise triangles whose areas sum to the ring's area.
TEST(Triangulate, RealPolygonOuterRingsTriangulateIntoTheirArea) {
    int rings = 0, succeeded = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SharedDataPath("polygons"))) {
        if (entry.path().extension() != ".json") continue;
        const auto ring = ReadOuterRing(entry.path().string());
        Array<TriTriangle> out;
        rings += ring.size() >= 3;
        if (ring.size() < 3 || !Triangulate::Process(1, Contour(ring), out)) continue;
        ++succeeded;
        EXPECT_EQ(out.Count(), static_cast<int>(ring.size()) - 2) << entry.path();
        double sum = 0.0;
        for (const Tri& t : Triples(out)) {
            const double twice = TwiceArea({ring[t[0]], ring[t[1]], ring[t[2]]});
            EXPECT_GT(twice, 0.0) << entry.path();
            sum += twice;
        }
        EXPECT_NEAR(sum, std::fabs(TwiceArea(ring)), 1e-9 * std::fabs(TwiceArea(ring)))
            << entry.path();
    }
    EXPECT_GT(succeeded, rings / 2);
}
