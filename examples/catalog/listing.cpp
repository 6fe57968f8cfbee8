#include "listing.h"

#include "side_files.h"

#include <socle/io/directory.h>
#include <socle/nio/exception.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/nio/item.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>

namespace {

constexpr std::u16string_view rsrc = u".rsrc", info = u".info", twin = u"._";

wide_string without(std::u16string_view ending, wide_string const & leaf) {
    return leaf.substr(0, leaf.size() - ending.size());
}

/// Why `nio::exists` said no; else it could not look.
bool nothing_is_there() {
    uint32 const error = platform::last_error();
    return error == 2 || error == 3 || error == 206;
}

/// A walk shows a file once: the sidecars beside it, which it hides, are looked for by their names. None at all if any
/// of that fails: a file must not be taken for one without forks.
std::set<wide_string> names_in(wide_string const & folder, uint32 & error) {
    constexpr uint32 end_of_search = 18;
    std::vector<wide_string> pending = {u""};
    io::directory walked{any::path(any::string(folder), true)};
    for (auto entry = walked.begin(), last = walked.end(); entry != last; ++entry)
        pending.push_back(entry->path().leaf());
    error = platform::last_error();
    error = error == end_of_search ? 0 : error;

    std::set<wide_string> names(pending.begin() + 1, pending.end());
    auto const look_for = [&](wide_string const & name) {
        if (names.count(name) != 0)
            return;
        if (nio::exists(nio::concatenate(folder, name, u'\\'))) {
            names.insert(name);
            pending.push_back(name);
        } else if (!nothing_is_there()) {
            error = platform::last_error();
        }
    };
    while (!pending.empty()) {
        wide_string const name = pending.back();
        pending.pop_back();
        for (auto const ending : {rsrc, info})
            look_for(name + wide_string(ending));
        if (name.ends_with(rsrc))
            look_for(without(rsrc, name) + wide_string(info));
    }
    if (error != 0)
        names.clear();
    return names;
}

/// The member of `owner` that names such a fork, if a file of this name can be one of its forks.
wide_string * place_in(entry & owner, wide_string const & path, wide_string entry::*fork) {
    bool const fits = owner.kind == entry_kind::file || (owner.kind == entry_kind::folder && fork != &entry::rsrc);
    if (!fits)
        return nullptr;
    try {
        bool const real = fork == &entry::info   ? is_info_header(path)
                          : fork == &entry::twin ? read_apple_double(path).has_value()
                                                 : true;
        return real ? &(owner.*fork) : nullptr;
    } catch (nio::exception const &) {
        owner.unclear = true;
        return &(owner.*fork);
    }
}

} // namespace

entry_kind kind_of(wide_string const & path) {
    std::error_code ignored;
    switch (std::filesystem::symlink_status(platform::to_host(path), ignored).type()) {
    case std::filesystem::file_type::regular: return entry_kind::file;
    case std::filesystem::file_type::directory: return entry_kind::folder;
    case std::filesystem::file_type::symlink: return entry_kind::link;
    default: return entry_kind::other;
    }
}

bool is_there(wide_string const & path) {
    bool const found = nio::exists(path);
    if (!found && !nothing_is_there())
        throw nio::filesystem_exception("cannot look at", path);
    return found;
}

listing list_folder(wide_string const & folder) {
    listing result;
    auto const names = names_in(folder, result.error);
    // A fork's name is longer than its owner's, which is settled then; a fork itself owns none.
    std::vector<wide_string> order(names.begin(), names.end());
    std::stable_sort(order.begin(), order.end(), [](auto const & a, auto const & b) { return a.size() < b.size(); });
    std::map<wide_string, entry> entries;
    for (auto const & name : order) {
        auto const path = nio::concatenate(folder, name, u'\\');
        entry added;
        added.leaf = name;
        added.kind = kind_of(path);
        auto const fork_of = [&](wide_string const & leaf, wide_string entry::*fork) {
            auto const owner = entries.find(leaf);
            wide_string * const place = owner != entries.end() && added.kind == entry_kind::file
                                            ? place_in(owner->second, path, fork)
                                            : nullptr;
            if (place)
                *place = name;
            return place != nullptr;
        };
        bool const fork = (name.starts_with(twin) && fork_of(name.substr(twin.size()), &entry::twin))
                          || (name.ends_with(rsrc) && fork_of(without(rsrc, name), &entry::rsrc))
                          || (name.ends_with(info) && fork_of(without(info, name), &entry::info));
        if (!fork)
            entries.emplace(name, added);
    }
    for (auto const & [name, found] : entries)
        result.entries.push_back(found);
    return result;
}
