#include "triangulate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

Array<TriVertex> Contour(const std::vector<std::pair<float, float>>& points) {
    Array<TriVertex> contour;
    for (const auto& p : points) contour.Append(TriVertex(p.first, p.second, 0.0f));
    return contour;
}

std::vector<std::vector<int>> Triples(const Array<TriTriangle>& triangles) {
    std::vector<std::vector<int>> out;
    for (int i = 0; i < triangles.Count(); ++i)
        out.push_back({triangles[i].Get1(), triangles[i].Get2(), triangles[i].Get3()});
    return out;
}

using Triples_t = std::vector<std::vector<int>>;

// Twice the signed area of triangle a, b, c in double precision.
double Cross(double ax, double ay, double bx, double by, double cx, double cy) {
    return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
}

double RingArea(const std::vector<std::pair<double, double>>& ring) {
    double sum = 0.0;
    for (size_t p = ring.size() - 1, c = 0; c < ring.size(); p = c++)
        sum += ring[p].first * ring[c].second - ring[c].first * ring[p].second;
    return 0.5 * sum;
}

// Whether segments p1-p2 and q1-q2 share a point (touching counts).
bool SegmentsMeet(std::pair<double, double> p1, std::pair<double, double> p2,
                  std::pair<double, double> q1, std::pair<double, double> q2) {
    auto orient = [](auto a, auto b, auto c) {
        const double d = Cross(a.first, a.second, b.first, b.second, c.first, c.second);
        return d > 0 ? 1 : (d < 0 ? -1 : 0);
    };
    auto within = [](auto a, auto b, auto c) {
        return std::min(a.first, b.first) <= c.first && c.first <= std::max(a.first, b.first) &&
               std::min(a.second, b.second) <= c.second && c.second <= std::max(a.second, b.second);
    };
    const int o1 = orient(p1, p2, q1), o2 = orient(p1, p2, q2);
    const int o3 = orient(q1, q2, p1), o4 = orient(q1, q2, p2);
    if (o1 != o2 && o3 != o4) return true;
    return (o1 == 0 && within(p1, p2, q1)) || (o2 == 0 && within(p1, p2, q2)) ||
           (o3 == 0 && within(q1, q2, p1)) || (o4 == 0 && within(q1, q2, p2));
}

// Why the closed ring is not simple ("" when it is): a point repeated, two sides that meet
// away from a shared corner, or a straight corner that folds back.
std::string WhyNotSimple(const std::vector<std::pair<double, double>>& ring) {
    const size_t n = ring.size();
    for (size_t i = 0; i < n; ++i)
        for (size_t j = i + 1; j < n; ++j)
            if (ring[i] == ring[j]) return "repeated point";
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = i + 1; j < n; ++j) {
            const bool adjacent = j == i + 1 || (i == 0 && j == n - 1);
            const auto a = ring[i], b = ring[(i + 1) % n], c = ring[j], d = ring[(j + 1) % n];
            if (!adjacent && SegmentsMeet(a, b, c, d)) return "sides meet";
            if (adjacent) {
                // Adjacent sides overlap when the middle corner is straight and turns back.
                const auto& prev = j == i + 1 ? a : c;
                const auto& mid = j == i + 1 ? b : a;
                const auto& next = j == i + 1 ? d : b;
                const double turn =
                    Cross(prev.first, prev.second, mid.first, mid.second, next.first, next.second);
                const double dot = (mid.first - prev.first) * (next.first - mid.first) +
                                   (mid.second - prev.second) * (next.second - mid.second);
                if (turn == 0.0 && dot < 0.0) return "side folds back";
            }
        }
    }
    return "";
}

// Reads the first ring of a JSON file of rings ([[[x, y], ...], ...]); the closing point of a
// ring that repeats its first point is dropped.
std::vector<std::pair<double, double>> ReadOuterRing(const std::string& path) {
    const std::string text = ReadFileBytes(path);
    std::vector<std::pair<double, double>> ring;
    int depth = 0;
    size_t i = 0;
    std::vector<double> point;
    for (; i < text.size(); ++i) {
        const char ch = text[i];
        if (ch == '[') {
            ++depth;
            point.clear();
        } else if (ch == ']') {
            if (depth == 3 && point.size() >= 2) ring.emplace_back(point[0], point[1]);
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
    TriVertex v;
    EXPECT_EQ(v.GetX(), 0.0f);
    v.Set(1, 2, 3);
    EXPECT_EQ(v.GetZ(), 3.0f);
}

TEST(Triangulate, AreaIsSignedInTheChosenPlaneAndZeroForOtherPlanes) {
    Array<TriVertex> c;
    c.Append(TriVertex(0, 0, 0));
    c.Append(TriVertex(2, 0, 3));
    c.Append(TriVertex(2, 1, 3));
    c.Append(TriVertex(0, 1, 0));
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

TEST(Triangulate, ClipsSquaresOfBothOrientationsCounterClockwise) {
    Array<TriTriangle> out;
    EXPECT_TRUE(Triangulate::Process(1, Contour({{0, 0}, {1, 0}, {1, 1}, {0, 1}}), out));
    EXPECT_EQ(Triples(out), (Triples_t{{3, 0, 1}, {1, 2, 3}}));
    EXPECT_TRUE(Triangulate::Process(1, Contour({{0, 0}, {0, 1}, {1, 1}, {1, 0}}), out));
    EXPECT_EQ(Triples(out), (Triples_t{{0, 3, 2}, {2, 1, 0}}));

    // The point form copies the contour points of the same triangles.
    Array<TriVertex> points;
    EXPECT_TRUE(Triangulate::Process(1, Contour({{0, 0}, {1, 0}, {1, 1}, {0, 1}}), points));
    ASSERT_EQ(points.Count(), 6);
    const float expected[6][2] = {{0, 1}, {0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(points[i].GetX(), expected[i][0]) << i;
        EXPECT_EQ(points[i].GetY(), expected[i][1]) << i;
    }
}

TEST(Triangulate, RefusesShortAndCollinearContoursWithAnEmptyResult) {
    Array<TriTriangle> out;
    out.Append(TriTriangle(7, 7, 7));
    EXPECT_FALSE(Triangulate::Process(1, Contour({{0, 0}, {1, 0}}), out));
    EXPECT_EQ(out.Count(), 0);
    out.Append(TriTriangle(7, 7, 7));
    EXPECT_FALSE(Triangulate::Process(1, Contour({{0, 0}, {1, 1}, {2, 2}}), out));
    EXPECT_EQ(out.Count(), 0);
}

TEST(Triangulate, PointOnACandidateEarsEdgeBlocksThatEar) {
    // (2,2) lies on the diagonals 4-1 and 0-2, so the first two candidate ears are refused.
    Array<TriTriangle> out;
    EXPECT_TRUE(Triangulate::Process(1, Contour({{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}}), out));
    EXPECT_EQ(Triples(out), (Triples_t{{1, 2, 3}, {3, 4, 0}, {0, 1, 3}}));
}

TEST(Triangulate, LShapedHexagonGivesFourTrianglesCoveringItsArea) {
    const std::vector<std::pair<float, float>> l = {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    Array<TriTriangle> out;
    ASSERT_TRUE(Triangulate::Process(1, Contour(l), out));
    ASSERT_EQ(out.Count(), 4);
    double sum = 0.0;
    for (const auto& t : Triples(out)) {
        const double a = Cross(l[t[0]].first, l[t[0]].second, l[t[1]].first, l[t[1]].second,
                               l[t[2]].first, l[t[2]].second);
        EXPECT_GT(a, 0.0);
        sum += 0.5 * a;
    }
    EXPECT_DOUBLE_EQ(sum, 3.0);
}

TEST(Triangulate, PlanesSelectTheCoordinatesAndAnUnknownPlaneAlwaysReverses) {
    // Counter-clockwise in (y, z).
    Array<TriVertex> yz;
    yz.Append(TriVertex(9, 0, 0));
    yz.Append(TriVertex(9, 1, 0));
    yz.Append(TriVertex(9, 1, 1));
    Array<TriTriangle> out;
    EXPECT_TRUE(Triangulate::Process(2, yz, out));
    EXPECT_EQ(Triples(out), (Triples_t{{2, 0, 1}}));
    EXPECT_FALSE(Triangulate::Process(1, yz, out));  // a line in (x, y)

    // Counter-clockwise in (x, z): plane 3 keeps it; plane 4 reverses it into a clockwise
    // working order in which no corner is an ear.
    Array<TriVertex> xz;
    xz.Append(TriVertex(0, 5, 0));
    xz.Append(TriVertex(1, 5, 0));
    xz.Append(TriVertex(1, 5, 1));
    EXPECT_TRUE(Triangulate::Process(3, xz, out));
    EXPECT_EQ(Triples(out), (Triples_t{{2, 0, 1}}));
    EXPECT_FALSE(Triangulate::Process(4, xz, out));
    EXPECT_EQ(out.Count(), 0);
    // Clockwise in (x, z): plane 4 turns it counter-clockwise and succeeds.
    Array<TriVertex> xzClockwise;
    for (int i = 2; i >= 0; --i) xzClockwise.Append(xz[i]);
    EXPECT_TRUE(Triangulate::Process(4, xzClockwise, out));
    EXPECT_EQ(Triples(out), (Triples_t{{0, 2, 1}}));
}

TEST(Triangulate, KeepsTheTrianglesFoundBeforeRunningOutOfEars) {
    // The repeated corner (0,0) blocks every ear touching it once the first one is cut.
    Array<TriTriangle> out;
    EXPECT_FALSE(Triangulate::Process(1, Contour({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}), out));
    EXPECT_EQ(Triples(out), (Triples_t{{1, 2, 3}}));
    Array<TriVertex> points;
    EXPECT_FALSE(
        Triangulate::Process(1, Contour({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}), points));
    ASSERT_EQ(points.Count(), 3);
    EXPECT_EQ(points[0].GetX(), 4.0f);
    EXPECT_EQ(points[2].GetY(), 4.0f);
}

// Every outer ring of the shared polygon fixtures: a successful triangulation has n - 2
// counter-clockwise triangles whose areas sum to the ring's area. Failures are counted by
// cause and printed.
TEST(Triangulate, RealPolygonOuterRingsTriangulateIntoTheirArea) {
    const std::filesystem::path folder = SharedDataPath("polygons");
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    int rings = 0, succeeded = 0, failedNotSimple = 0, failedSimple = 0;
    std::string simpleFailures, notSimpleFailures;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".json") continue;
        const std::string name = entry.path().filename().string();
        const auto ring = ReadOuterRing(entry.path().string());
        if (ring.size() < 3) continue;
        ++rings;
        Array<TriVertex> contour;
        std::vector<std::pair<double, double>> asFloat;
        for (const auto& p : ring) {
            contour.Append(TriVertex(static_cast<float>(p.first), static_cast<float>(p.second), 0));
            asFloat.emplace_back(contour[contour.Count() - 1].GetX(),
                                 contour[contour.Count() - 1].GetY());
        }
        Array<TriTriangle> out;
        if (!Triangulate::Process(1, contour, out)) {
            const std::string why = WhyNotSimple(asFloat);
            if (why.empty()) {
                ++failedSimple;
                simpleFailures += " " + name;
            } else {
                ++failedNotSimple;
                notSimpleFailures += " " + name + " (" + why + ")";
            }
            continue;
        }
        ++succeeded;
        EXPECT_EQ(out.Count(), static_cast<int>(ring.size()) - 2) << name;
        double sum = 0.0;
        for (const auto& t : Triples(out)) {
            const auto &a = asFloat[t[0]], &b = asFloat[t[1]], &c = asFloat[t[2]];
            const double twice = Cross(a.first, a.second, b.first, b.second, c.first, c.second);
            EXPECT_GT(twice, 0.0) << name;
            sum += 0.5 * twice;
        }
        const double area = std::fabs(RingArea(asFloat));
        EXPECT_NEAR(sum, area, 1e-9 * area) << name;
    }
    std::printf("[ polygons ] %d outer rings: %d triangulated, %d failed\n", rings, succeeded,
                failedNotSimple + failedSimple);
    std::printf("[ polygons ] not simple (%d):%s\n", failedNotSimple, notSimpleFailures.c_str());
    std::printf("[ polygons ] simple (%d):%s\n", failedSimple, simpleFailures.c_str());
    EXPECT_GT(succeeded, rings / 2);
}
