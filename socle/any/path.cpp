#include "socle/any/path.h"

#include "socle/platform/host.h"

#include <algorithm>

namespace any {

path::path(string const & text, bool skip_dots) { set(text, skip_dots); }

path::path(string const & text, char16_t const * separators, bool skip_dots) : separators_(separators) {
    set(text, skip_dots);
}

// The library's form of a host path is UTF-8 where a path is wide; where it is bytes, they stay as they are.
path path::from_host(std::filesystem::path const & host) {
    auto const bytes = host.u8string();
    return {platform::from_host({bytes.begin(), bytes.end()}), true};
}

std::filesystem::path path::to_host() const {
    path plain(*this);
    plain.reset_separator();
    narrow_string const bytes = platform::to_host(plain.full_string());
    return std::u8string(bytes.begin(), bytes.end());
}

path & path::operator=(string const & text) {
    set(text, true);
    return *this;
}

void path::reset_separator() { separators_ = default_separators; }

/// The next separator at or after `start`, or the text's end.
std::size_t path::find_separator(wide_string const & text, std::size_t start) const {
    if (separators_.size() != 2)
        return std::min(text.find_first_of(separators_, start), text.size());
    char16_t const first = separators_[0];
    char16_t const second = separators_[1];
    while (start != text.size() && text[start] != first && text[start] != second)
        ++start;
    return start;
}

void path::set(string const & text, bool skip_dots) {
    std::ptrdiff_t pieces = 1;
    for (char16_t const separator : separators_)
        pieces += std::ranges::count(text, separator);
    std::vector<string> elements;
    elements.reserve(static_cast<std::size_t>(pieces));
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = find_separator(text, start);
        if (!skip_dots || end - start != 1 || text[start] != u'.')
            elements.emplace_back().assign(text, start, end - start);
        start = end + 1;
    }
    while (!elements.empty() && elements.back().empty())
        elements.pop_back();
    elements_ = std::move(elements);
}

uint32 path::leaf_size() const { return static_cast<uint32>(leaf().size()); }

string path::leaf_name() const {
    string result;
    result.assign(leaf(), 0, leaf().rfind(u'.'));
    return result;
}

string path::leaf_ext() const { return leaf().ext(); }

void path::set_parent(path const & parent) {
    string const kept = leaf();
    elements_ = parent.elements_;
    add_leaf(kept);
}

std::size_t path::joined_size(std::size_t count) const {
    std::size_t size = separators_.empty() || count == 0 ? 0 : count - 1;
    for (std::size_t i = 0; i < count; ++i)
        size += elements_[i].size();
    return size;
}

/// Joins the first `count` elements. Made apart, as `result` may be one of them.
void path::join(std::size_t count, string & result) const {
    wide_string text;
    text.reserve(joined_size(count));
    for (std::size_t i = 0; i < count; ++i) {
        if (i != 0 && !separators_.empty())
            text += separators_.front();
        text += elements_[i];
    }
    result = std::move(text);
}

void path::get_full_string(string & result) const { join(size(), result); }

string path::full_string() const {
    string result;
    get_full_string(result);
    return result;
}

uint32 path::full_size() const { return static_cast<uint32>(joined_size(size())); }

void path::get_parent_string(string & result) const { join(parent_count(), result); }

string path::parent_string() const {
    string result;
    get_parent_string(result);
    return result;
}

uint32 path::parent_size() const { return static_cast<uint32>(joined_size(parent_count())); }

void path::to_parent() {
    if (!empty())
        elements_.pop_back();
}

void path::get_parent(path & result) const {
    result.elements_ = std::vector<string>(begin(), begin() + static_cast<std::ptrdiff_t>(parent_count()));
}

path path::parent() const {
    path result;
    get_parent(result);
    return result;
}

void path::add_leaf(string const & leaf) {
    if (empty() || !leaf.empty())
        elements_.push_back(leaf);
}

void path::add_path(path const & other) {
    if (&other == this) {
        add_path(path(other));
        return;
    }
    elements_.insert(end(), other.begin(), other.end());
}

path & path::operator+=(string const & leaf) {
    add_leaf(leaf);
    return *this;
}

path & path::operator+=(path const & other) {
    add_path(other);
    return *this;
}

path path::operator+(string const & leaf) const {
    path result = *this;
    result += leaf;
    return result;
}

path path::operator+(path const & other) const {
    path result = *this;
    result += other;
    return result;
}

bool path::operator<(path const & other) const {
    return std::ranges::lexicographical_compare(elements_, other.elements_);
}

} // namespace any
