#pragma once

#include "socle/basic/ascii_internal.h"
#include "socle/platform/errors.h"

/// How a conversion of text is counted and stored.
namespace platform::converted {

using basic::ascii::copy_ascii;
using basic::ascii::is_ascii;
using basic::ascii::step;

inline uint32 too_small() {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
}

/// Stores what there is room for by then.
template <class Unit>
class store {
public:
    explicit store(Unit * to) : first_(to), to_(to) {}

    void put(Unit unit) { *to_++ = unit; }
    template <class From>
    void put_ascii(From const * from) {
        copy_ascii(from, to_);
        to_ += step;
    }
    uint64 count() const { return uint64(to_ - first_); }

private:
    Unit * first_;
    Unit * to_;
};

/// Counts what would be stored.
template <class Unit>
class counter {
public:
    void put(Unit) { ++count_; }
    template <class From>
    void put_ascii(From const *) {
        count_ += step;
    }
    uint64 count() const { return count_; }

private:
    uint64 count_ = 0;
};

/// Converts [from, end), where ASCII means itself, a step at a time: whole steps of ASCII at once, the rest of a text
/// character by character with `next(from, end, out)`.
template <class From, class Out, class Next>
void convert_steps(From const * from, From const * end, Out & out, Next next) {
    while (from != end) {
        if (std::size_t(end - from) >= step && is_ascii(from)) {
            out.put_ascii(from);
            from += step;
            continue;
        }
        for (std::size_t i = 0; i < step && from != end; ++i)
            next(from, end, out);
    }
}

/// Runs `convert(out)` for its count and for its result. Without counting first if `most`, which no result of this
/// input can pass, fits.
template <class Unit, class Convert>
uint32 convert_to(Unit * to, uint32 capacity, uint64 most, Convert convert) {
    if (most > capacity) {
        counter<Unit> needed;
        convert(needed);
        if (needed.count() > (capacity == 0 ? UINT32_MAX : capacity))
            return too_small();
        if (capacity == 0)
            return static_cast<uint32>(needed.count());
    }
    store<Unit> out(to);
    convert(out);
    return static_cast<uint32>(out.count());
}

} // namespace platform::converted
