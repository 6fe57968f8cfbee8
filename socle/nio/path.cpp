#include "socle/nio/path.h"

#include <string_view>

namespace nio {

namespace {

bool unsafe(char16_t unit) {
    return unit < 0x20 || unit > 0x80 || std::u16string_view(u"\"*/:<>?\\|").find(unit) != std::u16string_view::npos;
}

bool is_drive(wide_string const & fragment) { return fragment.size() == 2 && fragment[1] == u':'; }

} // namespace

void append(wide_string & path, wide_string const & tail, char16_t sep) {
    if (tail.empty())
        return;
    // A copy, because `tail` may be `path` itself.
    wide_string const added = tail;
    if (!path.empty() && path.back() != sep)
        path += sep;
    path += added;
}

wide_string concatenate(wide_string const & head, wide_string const & tail, char16_t sep) {
    wide_string path = head;
    append(path, tail, sep);
    return path;
}

void trim(wide_string & path, char16_t sep) { path.erase(path.find_last_not_of(sep) + 1); }

wide_string stem(wide_string const & path, char16_t sep) {
    std::size_t const at = path.rfind(sep);
    return at == wide_string::npos ? wide_string() : path.substr(0, at);
}

wide_string leaf(wide_string const & path, char16_t sep) { return path.substr(path.rfind(sep) + 1); }

wide_string leaf_name(wide_string const & path, char16_t sep) {
    wide_string const name = leaf(path, sep);
    return name.substr(0, name.rfind(u'.'));
}

wide_string leaf_ext(wide_string const & path, char16_t sep) {
    wide_string const name = leaf(path, sep);
    std::size_t const dot = name.rfind(u'.');
    return dot == wide_string::npos ? wide_string() : name.substr(dot);
}

wide_string normalize(wide_string const & path) {
    wide_string result;
    bool first = true;
    for (wide_string fragment : path_fragments(path, u'\\')) {
        if (!first)
            result += u'\\';
        if (!first || !is_drive(fragment))
            for (char16_t & unit : fragment)
                unit = unsafe(unit) ? u'_' : unit;
        result += fragment;
        first = false;
    }
    return result;
}

path_fragments::path_fragments(wide_string const & path, char16_t sep) : path_(path), sep_(sep) {}

path_fragments::iterator path_fragments::begin() {
    find_positions();
    return iterator(*this, 0);
}

path_fragments::iterator path_fragments::end() {
    find_positions();
    return iterator(*this, positions_.size() - 1);
}

void path_fragments::find_positions() {
    if (!positions_.empty())
        return;
    if (!path_.empty()) {
        positions_.push_back(0);
        for (std::size_t at = path_.find(sep_); at != wide_string::npos; at = path_.find(sep_, at + 1))
            positions_.push_back(at + 1);
    }
    positions_.push_back(path_.size() + 1);
}

wide_string path_fragments::fragment(std::size_t index) const {
    std::size_t const start = positions_[index];
    return path_.substr(start, positions_[index + 1] - start - 1);
}

} // namespace nio
