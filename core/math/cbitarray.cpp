// cbitarray and cfloatarray: the shared array logic, instantiated for int and float.
#include "cbitarray.h"

#include <cstddef>
#include <cstring>

#include "corearray.h"
#include "runtime/check.h"

namespace {

// The name an allocation check reports, after the kind of array.
const char* BlockName(const cvaluearray<int>*) {
    return "newbits";
}
const char* BlockName(const cvaluearray<float>*) {
    return "newvalues";
}

}  // namespace

template <class T>
void cvaluearray<T>::SetSize(int n, int clear) {
    if (n <= 0) {
        Free();
        return;
    }
    T* block = static_cast<T*>(array_new(static_cast<unsigned long>(n) * sizeof(T)));
    CORE_CHECK(block != nullptr, BlockName(this));
    if (block == nullptr) {  // the report returned: stay a valid, empty array
        Free();
        return;
    }
    if (clear)
        std::memset(block, 0, static_cast<std::size_t>(n) * sizeof(T));
    else if (data_ != nullptr)
        // Intended: elements beyond the old size stay uninitialised; callers write them.
        std::memcpy(block, data_, static_cast<std::size_t>(n < size_ ? n : size_) * sizeof(T));
    Free();
    data_ = block;
    size_ = n;
}

template <class T>
void cvaluearray<T>::SetAll(T value) {
    for (int i = 0; i < size_; ++i) data_[i] = value;
}

template <class T>
int cvaluearray<T>::CountNonZero() const {
    int count = 0;
    for (int i = 0; i < size_; ++i)
        if (data_[i] != T(0)) ++count;
    return count;
}

template <class T>
T cvaluearray<T>::ReportOutOfRange() const {
    CORE_CHECK(false, "i>=0 && i<size");
    // The report may return; the element outside the block is not read, 0 stands in for it.
    return T(0);
}

template <class T>
void cvaluearray<T>::Assign(const cvaluearray& other) {
    if (size_ != other.size_) SetSize(other.size_, 0);
    if (size_ == other.size_ && size_ > 0)
        std::memcpy(data_, other.data_, static_cast<std::size_t>(size_) * sizeof(T));
}

template <class T>
void cvaluearray<T>::Free() {
    array_delete(data_);
    data_ = nullptr;
    size_ = 0;
}

template class cvaluearray<int>;
template class cvaluearray<float>;
