/// Paths as plain text, of both families.

#include "fuzz/support/feed.h"
#include "socle/any/path.h"
#include "socle/nio/path.h"

namespace {

using fuzz::check;
using fuzz::pieces_of;

std::vector<wide_string> elements_of(any::path const & path) { return {path.begin(), path.end()}; }

/// Whether the parts are what stands before the last dot, and the rest.
bool is_cut(wide_string const & leaf, wide_string const & name, wide_string const & ext) {
    std::size_t const dot = std::min(leaf.rfind(u'.'), leaf.size());
    return name == leaf.substr(0, dot) && ext == leaf.substr(dot);
}

void any_path(wide_string const & text, wide_string const & separators, bool skip_dots) {
    any::path const path(text, separators.c_str(), skip_dots);
    auto wanted = pieces_of(text, separators.c_str());
    if (skip_dots)
        std::erase(wanted, u".");
    while (!wanted.empty() && wanted.back().empty())
        wanted.pop_back();
    check(elements_of(path) == wanted);

    any::string const full = path.full_string();
    check(path.full_size() == full.size() && path.parent_size() == path.parent_string().size());
    if (wide_string(separators.c_str()).empty())
        return;
    check(elements_of(any::path(full, separators.c_str(), skip_dots)) == wanted);
    if (path.empty())
        return;
    check(path.leaf_size() == path.leaf().size() && path.leaf() == wanted.back());
    check(is_cut(path.leaf(), path.leaf_name(), path.leaf_ext()));

    // Taken apart and joined again.
    any::path again = path;
    again.to_parent();
    check(again.full_string() == path.parent_string() && elements_of(path.parent()) == elements_of(again));
    again.add_leaf(path.leaf());
    check(elements_of(again) == wanted && !(again < path) && !(path < again));
    any::path moved(any::string(u"elsewhere\\leaf"), true);
    moved.set_parent(path);
    check(moved.size() == path.size() + 1 && moved.leaf() == u"leaf" && moved.parent().size() == path.size());
    check(elements_of(moved.parent()) == wanted);
    check((path + path).size() == 2 * path.size());
}

void nio_path(wide_string const & text, wide_string const & tail, char16_t sep) {
    // The pieces are those between separators, and give the path again.
    std::vector<wide_string> found;
    nio::path_fragments fragments(text, sep);
    for (auto const & fragment : fragments)
        found.push_back(fragment);
    check(found == (text.empty() ? std::vector<wide_string>() : pieces_of(text, wide_string(1, sep))));
    wide_string const leaf = nio::leaf(text, sep);
    check(leaf == (found.empty() ? wide_string() : found.back()));
    check(is_cut(leaf, nio::leaf_name(text, sep), nio::leaf_ext(text, sep)));
    bool const has = text.find(sep) != text.npos;
    check(has ? nio::stem(text, sep) + sep + leaf == text : nio::stem(text, sep).empty() && leaf == text);

    wide_string trimmed = text;
    nio::trim(trimmed, sep);
    check((trimmed.empty() || trimmed.back() != sep) && text.starts_with(trimmed));
    check(text.find_first_not_of(sep, trimmed.size()) == text.npos);

    wide_string const joined = nio::concatenate(text, tail, sep);
    bool const adds = !tail.empty() && !text.empty() && text.back() != sep;
    check(joined == (adds ? text + sep + tail : text + tail));
    wide_string same = text;
    nio::append(same, same, sep);
    check(same == nio::concatenate(text, text, sep));

    wide_string const safe = nio::normalize(text);
    check(safe.size() == text.size() && nio::normalize(safe) == safe);
    for (std::size_t i = 0; i < safe.size(); ++i)
        check((safe[i] == text[i] || safe[i] == u'_') && (safe[i] == u'\\') == (text[i] == u'\\'));
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    unsigned const how = in.byte();
    wide_string const separators = (how & 2) != 0 ? in.wide_text() : u"\\/";
    wide_string const tail = in.wide_text();
    // Mostly narrow, since all that counts is there.
    auto const bytes = in.rest();
    wide_string text = feed::units(bytes);
    if ((how & 4) != 0)
        text.assign(bytes.begin(), bytes.end());
    any_path(text, separators, (how & 1) != 0);
    nio_path(text, tail, separators.empty() ? u'\\' : separators[0]);
}
