#pragma once

#include <concepts>

namespace stream {

/// A class derived from `Filter`, of which a filter's constructor takes an lvalue as its underlying stream. The
/// constructor is a template for that: overload resolution prefers copying the base class to any conversion to the
/// root.
template <class Stream, class Filter>
concept derived_filter = std::convertible_to<Stream *, Filter *> && !std::same_as<Stream, Filter>;

} // namespace stream
