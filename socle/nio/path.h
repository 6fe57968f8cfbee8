#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <cstddef>
#include <iterator>
#include <vector>

/// Paths as plain text. No function accesses the file system; the separator is any 16-bit unit.
namespace nio {

/// Adds `tail` whole, after a `sep` if `path` is not empty and does not end in one. An empty `tail` changes nothing.
SOCLE_API void append(wide_string & path, wide_string const & tail, char16_t sep);
/// `append` on a copy of `head`.
SOCLE_API wide_string concatenate(wide_string const & head, wide_string const & tail, char16_t sep);
/// Removes every trailing `sep`.
SOCLE_API void trim(wide_string & path, char16_t sep);

/// Everything before the last `sep`; empty if there is none.
SOCLE_API wide_string stem(wide_string const & path, char16_t sep);
/// Everything behind the last `sep`; the whole path if there is none.
SOCLE_API wide_string leaf(wide_string const & path, char16_t sep);
/// The leaf up to its last '.', without the dot; the whole leaf if it has none.
SOCLE_API wide_string leaf_name(wide_string const & path, char16_t sep);
/// The leaf from its last '.' on, with the dot; empty if it has none.
SOCLE_API wide_string leaf_ext(wide_string const & path, char16_t sep);

/// A path that any volume accepts: behind a drive, every unit below 0x20 or above 0x80 and each of `" * / : < > ? |`
/// becomes '_'. The separator is `\` alone, so `a/b` becomes `a_b`.
SOCLE_API wide_string normalize(wide_string const & path);

/// What lies between the separators of a path, empty pieces included: `\\host\share` has four, `a\` two, an empty path
/// none. Holds a copy of the path.
class SOCLE_API path_fragments {
public:
    class iterator;

    /// Cuts `path` at every `sep`.
    path_fragments(wide_string const & path, char16_t sep);

    /// The first fragment.
    iterator begin();
    /// The end, behind the last fragment.
    iterator end();

private:
    void find_positions();
    wide_string fragment(std::size_t index) const;

    wide_string path_;
    char16_t sep_;
    /// The start of each fragment, then the path's length + 1.
    std::vector<std::size_t> positions_;
};

/// Goes through the fragments of a `path_fragments`, which must outlive it, and returns each by value.
class path_fragments::iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = wide_string;
    using difference_type = std::ptrdiff_t;
    using pointer = wide_string const *;
    using reference = wide_string;

    /// The fragment `index` of `owner`.
    iterator(path_fragments const & owner, std::size_t index) : owner_(&owner), index_(index) {}

    /// The fragment.
    wide_string operator*() const { return owner_->fragment(index_); }
    /// Goes to the next fragment.
    iterator & operator++() {
        ++index_;
        return *this;
    }
    /// Goes to the next fragment and returns the one before.
    iterator operator++(int) {
        iterator before = *this;
        ++index_;
        return before;
    }
    /// Whether both stand at the same fragment.
    bool operator==(iterator const & other) const { return owner_ == other.owner_ && index_ == other.index_; }

private:
    path_fragments const * owner_;
    std::size_t index_;
};

} // namespace nio
