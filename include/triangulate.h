// Ear-clipping triangulation of one simple polygon: Triangulate, with its point, triangle and
// growable array types (TriVertex, TriTriangle, Array<T>).
#ifndef ORVANE_TRIANGULATE_H
#define ORVANE_TRIANGULATE_H

#include "coreapi.h"

// A contour point.
class TriVertex {
public:
    TriVertex() = default;
    TriVertex(float x, float y, float z) : x_(x), y_(y), z_(z) {}
    void Set(float x, float y, float z) {
        x_ = x;
        y_ = y;
        z_ = z;
    }
    float GetX() const { return x_; }
    float GetY() const { return y_; }
    float GetZ() const { return z_; }

private:
    float x_ = 0.0f, y_ = 0.0f, z_ = 0.0f;
};

// Three indices into a contour.
class TriTriangle {
public:
    TriTriangle() = default;
    TriTriangle(int a, int b, int c) : v_{a, b, c} {}
    void Set(int a, int b, int c) {
        v_[0] = a;
        v_[1] = b;
        v_[2] = c;
    }
    int Get1() const { return v_[0]; }
    int Get2() const { return v_[1]; }
    int Get3() const { return v_[2]; }

private:
    int v_[3] = {0, 0, 0};
};

// A growable array of trivially copyable elements. Appending to a full array doubles its
// capacity (16 when it was 0) and moves the elements into the new block.
template <class T>
class Array {
public:
    Array() = default;
    Array(const Array& other) { *this = other; }
    Array& operator=(const Array& other) {
        if (this == &other) return *this;
        Clear();
        for (int i = 0; i < other.count_; ++i) Append(other.data_[i]);
        return *this;
    }
    ~Array() { Clear(); }

    // Adds `item` at the end.
    void Append(const T& item) {
        // Copied first: item may be an element of this array, whose block Grow frees.
        const T copy = item;
        if (count_ == capacity_) Grow();
        data_[count_++] = copy;
    }
    // Frees the block; count and capacity become 0.
    void Clear() {
        delete[] data_;
        data_ = nullptr;
        count_ = capacity_ = 0;
    }
    int Count() const { return count_; }
    int Capacity() const { return capacity_; }
    // Element i, 0 <= i < Count().
    T& operator[](int i) { return data_[i]; }
    const T& operator[](int i) const { return data_[i]; }

private:
    void Grow() {
        const int capacity = capacity_ == 0 ? 16 : capacity_ * 2;
        T* block = new T[capacity];
        for (int i = 0; i < count_; ++i) block[i] = data_[i];
        delete[] data_;
        data_ = block;
        capacity_ = capacity;
    }

    T* data_ = nullptr;
    int count_ = 0;
    int capacity_ = 0;
};

// Ear clipping of a simple polygon given as an ordered contour. The plane selector reads the
// points in (x, y) for 1, (y, z) for 2 and (x, z) for 3; the ear test reads any other value as
// (x, z), while Area gives 0 for it. Output triangles are counter-clockwise in the plane.
class CORE_API Triangulate {
public:
    // Signed area of the contour in the plane (positive when counter-clockwise); 0 for a plane
    // other than 1, 2 or 3.
    static float Area(int plane, const Array<TriVertex>& contour);

    // Whether P lies inside triangle A, B, C (counter-clockwise), edges and corners included.
    static bool InsideTriangle(float Ax, float Ay, float Bx, float By, float Cx, float Cy, float Px,
                               float Py);

    // Clears `result`, then appends three contour points per triangle. False for fewer than
    // three points or when no ear is found within 2 x (points left) tries (a self-intersecting
    // or degenerate contour); the triangles found until then stay in `result`.
    static bool Process(int plane, const Array<TriVertex>& contour, Array<TriVertex>& result);
    // The same, appending one triple of contour indices per triangle.
    static bool Process(int plane, const Array<TriVertex>& contour, Array<TriTriangle>& result);

private:
    static bool Cut(int plane, const Array<TriVertex>& contour, int u, int v, int w, int n,
                    const int* V);
};

#endif
