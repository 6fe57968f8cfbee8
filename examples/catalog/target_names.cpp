#include "target_names.h"

#include <socle/io/item.h>
#include <socle/nio/fork_names.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr std::u16string_view rsrc = u".rsrc", info = u".info";

/// Without what no file system takes.
wide_string mended(wide_string leaf) {
    std::replace_if(
        leaf.begin(), leaf.end(), [](char16_t unit) { return !io::safe_char(unit); }, u'_');
    return leaf;
}

wide_string numbered(wide_string const & leaf, int number) {
    narrow_string const digits = std::to_string(number);
    auto const dot = leaf.rfind(u'.');
    auto const at = dot == wide_string::npos || dot == 0 ? leaf.size() : dot;
    return leaf.substr(0, at) + u'_' + wide_string(digits.begin(), digits.end()) + leaf.substr(at);
}

/// Every name that would be a fork of a file of this name, and every name of a file that this would be a fork of.
std::vector<wide_string> relatives(wide_string const & leaf) {
    std::vector<wide_string> result = {leaf + wide_string(rsrc), leaf + wide_string(info), nio::ufs_name(leaf)};
    for (auto const ending : {rsrc, info})
        if (leaf.ends_with(ending))
            result.push_back(leaf.substr(0, leaf.size() - ending.size()));
    if (leaf.starts_with(u"._"))
        result.push_back(leaf.substr(2));
    return result;
}

} // namespace

wide_string rsrc_name(fork_form form, wide_string const & path) {
    switch (form) {
    case fork_form::sidecar: return path + wide_string(rsrc);
    case fork_form::apple_double: return nio::ufs_name(path);
    default: return nio::ntfs_rsrc_name(path);
    }
}

wide_string info_name(fork_form form, wide_string const & path) {
    switch (form) {
    case fork_form::sidecar: return path + wide_string(info);
    case fork_form::apple_double: return nio::ufs_name(path);
    default: return nio::ntfs_info_name(path);
    }
}

target_names::target_names(fork_form form, std::set<wide_string> const & present,
                           std::set<wide_string> const & reserved)
    : form_(form), present_(present), used_(reserved) {}

bool target_names::fits(wide_string const & leaf) { return mended(leaf) == leaf; }

wide_string target_names::assign(wide_string const & leaf, bool resource, bool finder) {
    wide_string const first = mended(leaf);
    wide_string name = first;
    for (int number = 0;; name = numbered(first, ++number)) {
        std::vector<wide_string> needed = {name};
        if (resource && form_ != fork_form::stream)
            needed.push_back(rsrc_name(form_, name));
        if (finder && form_ != fork_form::stream)
            needed.push_back(info_name(form_, name));
        if (free(name, needed, name == leaf)) {
            used_.insert(needed.begin(), needed.end());
            return name;
        }
    }
}

/// A new name must also not make forks of what are none.
bool target_names::free(wide_string const & name, std::vector<wide_string> const & needed, bool kept) const {
    auto const used = [&](wide_string const & n) { return used_.count(n) != 0; };
    if (std::any_of(needed.begin(), needed.end(), used))
        return false;
    auto const known = [&](wide_string const & n) { return used(n) || present_.count(n) != 0; };
    auto const near = relatives(name);
    return kept || (!known(name) && std::none_of(near.begin(), near.end(), known));
}
