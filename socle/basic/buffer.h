#pragma once

#include "socle/basic/types.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace basic {

/// A sized array that knows whether it may be resized: one that it allocated itself, or storage of the caller. Elements
/// that it allocates are not initialised.
template <class T>
class buffer {
public:
    /// An array of its own.
    explicit buffer(uint32 size) : data_(allocate(size)), size_(size), owner_(true) {}
    /// A static buffer over `size` elements at `storage`, which must outlive it.
    buffer(T * storage, uint32 size) : data_(size > 0 ? storage : nullptr), size_(size), owner_(false) {}
    /// A copy always has an array of its own.
    buffer(buffer const & other) : data_(other.copied(other.size_)), size_(other.size_), owner_(true) {}
    buffer & operator=(buffer const & other) {
        buffer copy(other);
        std::swap(data_, copy.data_);
        std::swap(size_, copy.size_);
        std::swap(owner_, copy.owner_);
        return *this;
    }
    ~buffer() { release(); }

    /// The first element, or null if the size is 0.
    T * data() noexcept { return data_; }
    T const * data() const noexcept { return data_; }
    /// The number of elements.
    uint32 size() const noexcept { return size_; }
    /// Whether the array belongs to this object, which then may resize it.
    bool owner() const noexcept { return owner_; }

    /// The element; `index` has to be below `size()`.
    T & operator[](uint32 index) { return data_[index]; }
    T const & operator[](uint32 index) const { return data_[index]; }

    /// Changes the size and keeps as many elements as fit. A static buffer throws `std::logic_error`, "cannot resize a
    /// static buffer".
    void resize(uint32 new_size) {
        if (!owner_)
            throw std::logic_error("cannot resize a static buffer");
        if (new_size == size_)
            return;
        T * const moved = copied(new_size);
        release();
        data_ = moved;
        size_ = new_size;
    }

private:
    static T * allocate(uint32 size) { return size > 0 ? new T[size] : nullptr; }
    /// A new array with as many of the elements as fit.
    T * copied(uint32 size) const {
        if (size == 0)
            return nullptr;
        T * const copy = new T[size];
        std::copy_n(data_, std::min(size_, size), copy);
        return copy;
    }
    void release() {
        if (owner_)
            delete[] data_;
    }

    T * data_;
    uint32 size_;
    bool owner_;
};

} // namespace basic
