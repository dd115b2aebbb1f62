// cbitarray and cfloatarray: flat arrays of one value per element (selections, marks,
// weights), sized at run time and stored in array_new blocks.
#ifndef ORVANE_CBITARRAY_H
#define ORVANE_CBITARRAY_H

#include <utility>

#include "coreapi.h"

// The shared logic of cbitarray (T = int) and cfloatarray (T = float). An element is "set"
// when it is not 0. Indices outside [0, size) are ignored by the writers and reported by
// operator[].
template <class T>
class CORE_API cvaluearray {
public:
    // An empty array.
    cvaluearray() = default;
    // n elements, all 0; n of 0 or less gives an empty array.
    explicit cvaluearray(int n) {
        if (n >= 1) SetSize(n, 1);
    }
    cvaluearray(const cvaluearray& other) { Assign(other); }
    cvaluearray(cvaluearray&& other) noexcept : data_(other.data_), size_(other.size_) {
        other.data_ = nullptr;
        other.size_ = 0;
    }
    cvaluearray& operator=(const cvaluearray& other) {
        if (this != &other) Assign(other);
        return *this;
    }
    cvaluearray& operator=(cvaluearray&& other) noexcept {
        cvaluearray moved(std::move(other));
        std::swap(data_, moved.data_);
        std::swap(size_, moved.size_);
        return *this;
    }
    ~cvaluearray() { Free(); }

    // Resizes to n elements in a new block. n of 0 or less frees the storage. A non-zero
    // `clear` zeroes all n elements; otherwise the first min(n, old size) keep their values
    // and any further ones are left uninitialised for the caller to write.
    void SetSize(int n, int clear);
    int GetSize() const { return size_; }

    // Stores 1, `value` or 0 at i; an index outside [0, size) changes nothing.
    void Set(int i) { Set(i, T(1)); }
    void Set(int i, T value) {
        if (InRange(i)) data_[i] = value;
    }
    void Reset(int i) { Set(i, T(0)); }

    // Stores 1, `value` or 0 in every element.
    void SetAll() { SetAll(T(1)); }
    void SetAll(T value);
    void ResetAll() { SetAll(T(0)); }

    // Element i. An index outside [0, size) is reported as "i>=0 && i<size" and reads as 0.
    T operator[](int i) const { return InRange(i) ? data_[i] : ReportOutOfRange(); }

    // The elements, GetSize() of them (null when empty).
    T* GetData() { return data_; }
    const T* GetData() const { return data_; }

protected:
    // The number of elements that are not 0, and of those equal to 0.
    int CountNonZero() const;
    int CountZero() const { return size_ - CountNonZero(); }

private:
    bool InRange(int i) const { return i >= 0 && i < size_; }
    T ReportOutOfRange() const;
    void Assign(const cvaluearray& other);
    void Free();

    T* data_ = nullptr;
    int size_ = 0;
};

extern template class cvaluearray<int>;
extern template class cvaluearray<float>;

// Resizes `destination` to the size of `source` and copies every element.
template <class T>
void Copy(cvaluearray<T>& destination, const cvaluearray<T>& source) {
    destination = source;
}

// One signed 32-bit flag per element (every element is a full word; "set" means non-zero).
class cbitarray : public cvaluearray<int> {
public:
    using cvaluearray<int>::cvaluearray;

    // The number of elements that are not 0.
    int NumBitsSet() const { return CountNonZero(); }
    // The number of elements equal to 0.
    int NumZeroBits() const { return CountZero(); }
};

// One float per element (weights, soft selections).
class cfloatarray : public cvaluearray<float> {
public:
    using cvaluearray<float>::cvaluearray;

    // The number of elements that are not 0.0.
    int NumValsSet() const { return CountNonZero(); }
    // The number of elements equal to 0.0 (either sign).
    int NumZeroVals() const { return CountZero(); }
};

#endif
