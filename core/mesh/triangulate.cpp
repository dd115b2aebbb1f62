// Ear clipping over the contour's plane coordinates.
#include "triangulate.h"

#include <vector>

namespace {

// The point's two coordinates in the plane: (x, y) for 1, (y, z) for 2, (x, z) otherwise.
void PlaneCoords(int plane, const TriVertex& p, float& a, float& b) {
    if (plane == 1) {
        a = p.GetX();
        b = p.GetY();
    } else if (plane == 2) {
        a = p.GetY();
        b = p.GetZ();
    } else {
        a = p.GetX();
        b = p.GetZ();
    }
}

constexpr float kEarEpsilon = 1e-10f;

}  // namespace

float Triangulate::Area(int plane, const Array<TriVertex>& contour) {
    const int n = contour.Count();
    float sum = 0.0f;
    // Intended: an unknown plane leaves the sum at 0, so the ear loop always reverses it.
    if (plane < 1 || plane > 3) return sum;
    for (int p = n - 1, c = 0; c < n; p = c++) {
        float pa, pb, ca, cb;
        PlaneCoords(plane, contour[p], pa, pb);
        PlaneCoords(plane, contour[c], ca, cb);
        sum += pa * cb - ca * pb;
    }
    return sum * 0.5f;
}

bool Triangulate::InsideTriangle(float Ax, float Ay, float Bx, float By, float Cx, float Cy,
                                 float Px, float Py) {
    const float cross_a = (Cx - Bx) * (Py - By) - (Cy - By) * (Px - Bx);
    const float cross_b = (Ax - Cx) * (Py - Cy) - (Ay - Cy) * (Px - Cx);
    const float cross_c = (Bx - Ax) * (Py - Ay) - (By - Ay) * (Px - Ax);
    return cross_a >= 0.0f && cross_b >= 0.0f && cross_c >= 0.0f;
}

bool Triangulate::Cut(int plane, const Array<TriVertex>& contour, int u, int v, int w, int n,
                      const int* V) {
    float Ax, Ay, Bx, By, Cx, Cy;
    PlaneCoords(plane, contour[V[u]], Ax, Ay);
    PlaneCoords(plane, contour[V[v]], Bx, By);
    PlaneCoords(plane, contour[V[w]], Cx, Cy);
    // Reflex, straight and very thin corners are never ears.
    if ((Bx - Ax) * (Cy - Ay) - (By - Ay) * (Cx - Ax) < kEarEpsilon) return false;
    for (int p = 0; p < n; ++p) {
        if (p == u || p == v || p == w) continue;
        float Px, Py;
        PlaneCoords(plane, contour[V[p]], Px, Py);
        // A point on the ear's boundary blocks it as well.
        if (InsideTriangle(Ax, Ay, Bx, By, Cx, Cy, Px, Py)) return false;
    }
    return true;
}

bool Triangulate::Process(int plane, const Array<TriVertex>& contour, Array<TriTriangle>& result) {
    result.Clear();
    const int n = contour.Count();
    if (n < 3) return false;

    // The working order is counter-clockwise in the plane whatever the input's orientation.
    std::vector<int> V(n);
    const bool counterClockwise = Area(plane, contour) > 0.0f;
    for (int i = 0; i < n; ++i) V[i] = counterClockwise ? i : n - 1 - i;

    int nv = n;
    int count = 2 * nv;
    for (int v = nv - 1; nv > 2;) {
        // No ear in a full round of tries: the contour is not simple or is degenerate.
        if (0 >= count--) return false;
        int u = v;
        if (u >= nv) u = 0;
        v = u + 1;
        if (v >= nv) v = 0;
        int w = v + 1;
        if (w >= nv) w = 0;
        if (Cut(plane, contour, u, v, w, nv, V.data())) {
            result.Append(TriTriangle(V[u], V[v], V[w]));
            V.erase(V.begin() + v);
            --nv;
            count = 2 * nv;
        }
    }
    return true;
}

bool Triangulate::Process(int plane, const Array<TriVertex>& contour, Array<TriVertex>& result) {
    // Cleared before the contour is read, as the index form does, even when it is the contour.
    result.Clear();
    Array<TriTriangle> triangles;
    const bool done = Process(plane, contour, triangles);
    for (int t = 0; t < triangles.Count(); ++t) {
        result.Append(contour[triangles[t].Get1()]);
        result.Append(contour[triangles[t].Get2()]);
        result.Append(contour[triangles[t].Get3()]);
    }
    return done;
}
