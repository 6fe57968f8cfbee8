#pragma once

#include "socle/basic/types.h"

namespace un {

/// A pointer to the first of `size()` elements. It owns nothing.
template <class T>
class array {
public:
    /// A view of `count` elements, which it does not own.
    array(T * data, uint32 count) noexcept : data_(data), size_(count) {}

    /// The first element.
    T * data() const noexcept { return data_; }
    /// The number of elements.
    uint32 size() const noexcept { return size_; }

private:
    T * data_;
    uint32 size_;
};

} // namespace un
