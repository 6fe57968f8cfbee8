#pragma once

#include "socle/any/string.h"

#include <filesystem>

namespace any {

/// A path as a list of elements, from the root to the leaf. It is text, and never accesses the file system. A separator
/// at the start makes an empty first element, two make two; a drive or ".." is an element like any other.
///
/// Arguments may be elements of this path.
class SOCLE_API path {
public:
    /// @{
    /// Goes through the elements, from the root to the leaf.
    using iterator = std::vector<string>::iterator;
    using const_iterator = std::vector<string>::const_iterator;
    using reverse_iterator = std::vector<string>::reverse_iterator;
    using const_reverse_iterator = std::vector<string>::const_reverse_iterator;
    /// @}

    /// The path without elements, with the default separators.
    static path const null;

    path() = default;
    /// Cuts `text` at every separator. Empty elements at the end are dropped, and with `skip_dots` each element that is
    /// exactly ".".
    path(string const & text, bool skip_dots);
    /// All units of the zero-terminated `separators` cut; the first joins.
    path(string const & text, char16_t const * separators, bool skip_dots);

    /// The path of the host, as by `platform::from_host`, with dots skipped.
    static path from_host(std::filesystem::path const & host);
    /// The path as the host has it, as by `platform::to_host`, whatever the separators are.
    std::filesystem::path to_host() const;

    /// Replaces the elements, with dots skipped; the separators stay.
    path & operator=(string const & text);
    /// Back to "\" and "/".
    void reset_separator();

    /// @{
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
    /// @}

    /// Removes all elements; the separators stay.
    void clear() noexcept { elements_.clear(); }
    /// Appends any element, an empty one too.
    void push_back(string const & element) { elements_.push_back(element); }

    /// The last element. There must be one, also for the next four.
    string & leaf() { return elements_.back(); }
    string const & leaf() const { return elements_.back(); }
    /// The number of units of the leaf.
    uint32 leaf_size() const;
    /// The leaf up to its last ".", without it; the whole leaf if it has none.
    string leaf_name() const;
    /// The leaf from its last "." on, with the dot; empty if it has none.
    string leaf_ext() const;
    /// Replaces the elements before the leaf by those of `parent`. An empty leaf is removed.
    void set_parent(path const & parent);

    /// Replaces the 16-bit text of `result` by `full_string()`.
    void get_full_string(string & result) const;
    /// All elements, joined by the first separator.
    string full_string() const;
    /// The number of units of `full_string()`.
    uint32 full_size() const;

    /// Replaces the 16-bit text of `result` by `parent_string()`.
    void get_parent_string(string & result) const;
    /// All elements but the leaf, joined by the first separator.
    string parent_string() const;
    /// The number of units of `parent_string()`.
    uint32 parent_size() const;

    /// Removes the leaf, if there is one.
    void to_parent();
    /// Replaces the elements of `result`, whose separators stay, by all elements of this path but the leaf.
    void get_parent(path & result) const;
    /// All elements but the leaf, as a path with the default separators.
    path parent() const;

    /// Appends `leaf`; an empty one only to a path without elements.
    void add_leaf(string const & leaf);
    /// Appends all elements of `other`, empty ones too.
    void add_path(path const & other);
    /// As `add_leaf`.
    path & operator+=(string const & leaf);
    /// As `add_path`.
    path & operator+=(path const & other);
    /// A copy of this path, with its separators, to which the argument is added by `+=`.
    path operator+(string const & leaf) const;
    path operator+(path const & other) const;
    /// As `+`.
    path operator/(string const & leaf) const { return *this + leaf; }
    path operator/(path const & other) const { return *this + other; }

    /// Compares element by element, as 16-bit text, with case. The separators do not count.
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
