#pragma once

#include "basic/types.h"

namespace un {

/// A pointer to the first of `size()` elements. It owns nothing.
template <class T>
class array {
public:
    array(T * data, uint32 count) noexcept : data_(data), size_(count) {}

    T * data() const noexcept { return data_; }
    uint32 size() const noexcept { return size_; }

private:
    T * data_;
    uint32 size_;
};

} // namespace un
