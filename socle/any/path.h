#pragma once

#include "socle/any/string.h"

namespace any {

/// A path as a list of elements, from the root to the leaf: plain text that touches no file. A separator at the start
/// gives an empty first element, two give two; a drive or ".." is an element like any other.
///
/// Texts given may be elements of this path.
class SOCLE_API path {
public:
    /// Over the elements, from the root to the leaf.
    using iterator = std::vector<string>::iterator;
    using const_iterator = std::vector<string>::const_iterator;
    using reverse_iterator = std::vector<string>::reverse_iterator;
    using const_reverse_iterator = std::vector<string>::const_reverse_iterator;

    /// Without elements and with the default separators.
    static path const null;

    path() = default;
    /// Cuts `text` at every separator. Empty elements at the end are dropped, and with `skip_dots` each element that is
    /// exactly ".".
    path(string const & text, bool skip_dots);
    /// All units of the zero-terminated `separators` cut; the first joins.
    path(string const & text, char16_t const * separators, bool skip_dots);

    /// Replaces the elements, with dots skipped; the separators stay.
    path & operator=(string const & text);
    /// Back to "\" and "/".
    void reset_separator();

    /// The elements, in order, as in a vector.
    bool empty() const noexcept { return elements_.empty(); }
    std::size_t size() const noexcept { return elements_.size(); }
    iterator begin() noexcept { return elements_.begin(); }
    iterator end() noexcept { return elements_.end(); }
    const_iterator begin() const noexcept { return elements_.begin(); }
    const_iterator end() const noexcept { return elements_.end(); }
    reverse_iterator rbegin() noexcept { return elements_.rbegin(); }
    reverse_iterator rend() noexcept { return elements_.rend(); }
    const_reverse_iterator rbegin() const noexcept { return elements_.rbegin(); }
    const_reverse_iterator rend() const noexcept { return elements_.rend(); }

    /// The separators stay.
    void clear() noexcept { elements_.clear(); }
    /// Appends any element, an empty one too.
    void push_back(string const & element) { elements_.push_back(element); }

    /// The last element. This and the four below need one.
    string & leaf() { return elements_.back(); }
    string const & leaf() const { return elements_.back(); }
    uint32 leaf_size() const;
    /// The leaf up to its last ".", without it; the whole leaf if it has none.
    string leaf_name() const;
    /// The leaf from its last "." on, with the dot; empty if it has none.
    string leaf_ext() const;
    /// Puts the elements of `parent` before the leaf, instead of those there. An empty leaf does not stay behind them.
    void set_parent(path const & parent);

    /// All elements, joined by the first separator, and the size of that. Only the 16-bit text of `result` is replaced.
    void get_full_string(string & result) const;
    string full_string() const;
    uint32 full_size() const;

    /// The same of all elements but the leaf.
    void get_parent_string(string & result) const;
    string parent_string() const;
    uint32 parent_size() const;

    /// Removes the leaf, if there is one.
    void to_parent();
    /// Replaces the elements of `result`, whose separators stay, by all of these but the leaf.
    void get_parent(path & result) const;
    /// The same as a path with the default separators.
    path parent() const;

    /// Appends `leaf`; an empty one only to a path without elements.
    void add_leaf(string const & leaf);
    /// Appends all elements of `other`, empty ones too.
    void add_path(path const & other);
    path & operator+=(string const & leaf);
    path & operator+=(path const & other);
    /// A copy, with this path's separators, to which the same is added.
    path operator+(string const & leaf) const;
    path operator+(path const & other) const;

    /// Element by element as plain 16-bit text, case counting. The separators play no part.
    bool operator<(path const & other) const;

protected:
    /// Replaces the elements by those of `text`.
    void set(string const & text, bool skip_dots);

private:
    std::size_t find_separator(wide_string const & text, std::size_t start) const;
    std::size_t joined_size(std::size_t count) const;
    void join(std::size_t count, string & result) const;
    std::size_t parent_count() const { return elements_.empty() ? 0 : elements_.size() - 1; }

    static constexpr char16_t default_separators[] = u"\\/";

    wide_string separators_ = default_separators;
    std::vector<string> elements_;
};

} // namespace any
