// Two-, three- and four-component float vectors: cpoint2, cpoint3, cpoint4.
//
// Points are row vectors: a point p is transformed by a matrix M as p x M (see cmatrix4.h).
// Every arithmetic operator works component by component, the four-component form
// including w. Default construction gives the zero vector.
#ifndef ORVANE_CPOINT_H
#define ORVANE_CPOINT_H

#include <cmath>

// The component-wise operators, written once for the three vector sizes. `V` provides
// `kSize` and `operator[]`; every binary operator is composed from its assignment form.
template <class V>
struct cvectorops {
    friend V& operator+=(V& a, const V& b) {
        return Apply(a, b, [](float& x, float y) { x += y; });
    }
    friend V& operator-=(V& a, const V& b) {
        return Apply(a, b, [](float& x, float y) { x -= y; });
    }
    friend V& operator*=(V& a, const V& b) {
        return Apply(a, b, [](float& x, float y) { x *= y; });
    }
    friend V& operator/=(V& a, const V& b) {
        return Apply(a, b, [](float& x, float y) { x /= y; });
    }
    friend V& operator+=(V& a, float s) {
        return Apply(a, s, [](float& x, float y) { x += y; });
    }
    friend V& operator-=(V& a, float s) {
        return Apply(a, s, [](float& x, float y) { x -= y; });
    }
    friend V& operator*=(V& a, float s) {
        return Apply(a, s, [](float& x, float y) { x *= y; });
    }
    friend V& operator/=(V& a, float s) {
        return Apply(a, s, [](float& x, float y) { x /= y; });
    }

    friend V operator+(V a, const V& b) { return a += b; }
    friend V operator-(V a, const V& b) { return a -= b; }
    friend V operator*(V a, const V& b) { return a *= b; }
    friend V operator/(V a, const V& b) { return a /= b; }
    friend V operator+(V a, float s) { return a += s; }
    friend V operator-(V a, float s) { return a -= s; }
    friend V operator*(V a, float s) { return a *= s; }
    friend V operator/(V a, float s) { return a /= s; }
    friend V operator*(float s, V a) { return a *= s; }
    friend V operator-(V a) { return a *= -1.0f; }

    // Exact float equality of every component; use Compare() for a tolerance.
    friend bool operator==(const V& a, const V& b) {
        for (int i = 0; i < V::kSize; ++i)
            if (a[i] != b[i]) return false;
        return true;
    }
    friend bool operator!=(const V& a, const V& b) { return !(a == b); }

private:
    template <class Op>
    static V& Apply(V& a, const V& b, Op op) {
        for (int i = 0; i < V::kSize; ++i) op(a[i], b[i]);
        return a;
    }
    template <class Op>
    static V& Apply(V& a, float s, Op op) {
        for (int i = 0; i < V::kSize; ++i) op(a[i], s);
        return a;
    }
};

struct cpoint2 : cvectorops<cpoint2> {
    static constexpr int kSize = 2;
    float x = 0.0f, y = 0.0f;

    cpoint2() = default;
    cpoint2(float x_, float y_) : x(x_), y(y_) {}

    float& operator[](int i) { return i == 0 ? x : y; }
    float operator[](int i) const { return i == 0 ? x : y; }

    // Divides by the length; a vector of length exactly 0 is left unchanged.
    cpoint2& Normalize();
};

struct cpoint3 : cvectorops<cpoint3> {
    static constexpr int kSize = 3;
    float x = 0.0f, y = 0.0f, z = 0.0f;

    cpoint3() = default;
    cpoint3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    float& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
    float operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }

    // Divides by the length; a vector of length exactly 0 is left unchanged.
    cpoint3& Normalize();
};

struct cpoint4 : cvectorops<cpoint4> {
    static constexpr int kSize = 4;
    float x = 0.0f, y = 0.0f, z = 0.0f, w = 0.0f;

    cpoint4() = default;
    cpoint4(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    cpoint4(const cpoint3& p, float w_) : x(p.x), y(p.y), z(p.z), w(w_) {}

    float& operator[](int i) { return i == 0 ? x : (i == 1 ? y : (i == 2 ? z : w)); }
    float operator[](int i) const { return i == 0 ? x : (i == 1 ? y : (i == 2 ? z : w)); }

    // The first three components.
    cpoint3 XYZ() const { return cpoint3(x, y, z); }

    // Divides by the four-component length (w included); length exactly 0 leaves it unchanged.
    cpoint4& Normalize();
};

inline cpoint2 MakePt2(float x, float y) {
    return cpoint2(x, y);
}
inline cpoint3 MakePt3(float x, float y, float z) {
    return cpoint3(x, y, z);
}
inline cpoint4 MakePt4(float x, float y, float z, float w) {
    return cpoint4(x, y, z, w);
}

// Dot product over every component (w included for cpoint4).
template <class V>
inline float DotProd(const cvectorops<V>& a_, const cvectorops<V>& b_) {
    const V& a = static_cast<const V&>(a_);
    const V& b = static_cast<const V&>(b_);
    float sum = a[0] * b[0];
    for (int i = 1; i < V::kSize; ++i) sum += a[i] * b[i];
    return sum;
}

// Euclidean length over every component, and its square.
template <class V>
inline float LengthSq(const cvectorops<V>& v) {
    return DotProd(v, v);
}
template <class V>
inline float Length(const cvectorops<V>& v) {
    return std::sqrt(LengthSq(v));
}

// Distance between two points.
template <class V>
inline float Distance(const cvectorops<V>& a, const cvectorops<V>& b) {
    return Length(static_cast<const V&>(a) - static_cast<const V&>(b));
}

// Divides v by its length in place unless that length is exactly 0.
template <class V>
inline V& NormalizeInPlace(cvectorops<V>& v_) {
    V& v = static_cast<V&>(v_);
    const float len = Length(v);
    if (len != 0.0f) v /= len;
    return v;
}

// A normalised copy; the zero vector is returned unchanged.
template <class V>
inline V Normalize(const cvectorops<V>& v) {
    V copy = static_cast<const V&>(v);
    return NormalizeInPlace(copy);
}

inline cpoint2& cpoint2::Normalize() {
    return NormalizeInPlace(*this);
}
inline cpoint3& cpoint3::Normalize() {
    return NormalizeInPlace(*this);
}
inline cpoint4& cpoint4::Normalize() {
    return NormalizeInPlace(*this);
}

// a x b (right-handed).
inline cpoint3 CrossProd(const cpoint3& a, const cpoint3& b) {
    return cpoint3(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

// The cross product of the first three components; w receives that product's length.
inline cpoint4 CrossProd(const cpoint4& a, const cpoint4& b) {
    const cpoint3 c = CrossProd(a.XYZ(), b.XYZ());
    return cpoint4(c, Length(c));
}

// True when every component of a and b differs by at most |epsilon| (inclusive).
template <class V>
inline bool Compare(const cvectorops<V>& a_, const cvectorops<V>& b_, float epsilon) {
    const V& a = static_cast<const V&>(a_);
    const V& b = static_cast<const V&>(b_);
    const float eps = std::fabs(epsilon);
    // Written as "not within" so that a NaN component never compares equal.
    for (int i = 0; i < V::kSize; ++i)
        if (!(std::fabs(a[i] - b[i]) <= eps)) return false;
    return true;
}

// Linear interpolation a + (b - a) t; t is not clamped.
template <class V>
inline V Inter(const cvectorops<V>& a_, const cvectorops<V>& b_, float t) {
    const V& a = static_cast<const V&>(a_);
    const V& b = static_cast<const V&>(b_);
    return a + (b - a) * t;
}

// floor(c / step + 0.5) x step, evaluated in double: in float, c + 0.5 can round up to the
// next integer (0.49999997f + 0.5f is 1.0f) and snap a value below one half upwards.
inline float SnapToStep(float c, double step) {
    return static_cast<float>(std::floor(c / step + 0.5) * step);
}

// Rounds every component (w included) half up to an integer: floor(c + 0.5).
template <class V>
inline V SnapVector(const cvectorops<V>& v) {
    V r = static_cast<const V&>(v);
    for (int i = 0; i < V::kSize; ++i) r[i] = SnapToStep(r[i], 1.0);
    return r;
}

// Rounds every component (w included) to a multiple of step, halves up:
// floor(c / step + 0.5) x step.
template <class V>
inline V SnapVectorToGrid(const cvectorops<V>& v, float step) {
    V r = static_cast<const V&>(v);
    for (int i = 0; i < V::kSize; ++i) r[i] = SnapToStep(r[i], step);
    return r;
}

// The constant d of the plane n.p + d = 0 through point p with normal n: -(n . p).
inline float PlaneD(const cpoint3& normal, const cpoint3& point) {
    return -DotProd(normal, point);
}

#endif
