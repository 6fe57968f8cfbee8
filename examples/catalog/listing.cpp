#include "listing.h"

#include "belongings.h"
#include "side_files.h"

#include <socle/nio/exception.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/nio/item.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>
#include <string_view>

namespace {

constexpr std::u16string_view rsrc = u".rsrc", info = u".info", twin = u"._";

/// What a name may be to the file that it would belong to.
struct claim {
    wide_string owner;
    bool entry::*fork;
};

std::vector<claim> claims_of(wide_string const & leaf) {
    std::vector<claim> result;
    if (leaf.starts_with(twin))
        result.push_back({leaf.substr(twin.size()), &entry::twin});
    if (leaf.ends_with(rsrc))
        result.push_back({leaf.substr(0, leaf.size() - rsrc.size()), &entry::rsrc});
    if (leaf.ends_with(info))
        result.push_back({leaf.substr(0, leaf.size() - info.size()), &entry::info});
    return result;
}

/// Whether the file at the path is such a fork of `owner`, which is told of it.
bool take(entry & owner, bool entry::*fork, wide_string const & path) {
    if (!owner.file() && (!owner.folder() || fork == &entry::rsrc))
        return false;
    try {
        bool const real =
            fork == &entry::rsrc || (fork == &entry::info ? is_info_header(path) : read_apple_double(path).has_value());
        owner.*fork = owner.*fork || real;
        return real;
    } catch (nio::exception const &) {
        owner.unclear = owner.*fork = true;
        return true;
    }
}

} // namespace

wide_string rsrc_leaf(wide_string const & leaf) { return leaf + wide_string(rsrc); }
wide_string info_leaf(wide_string const & leaf) { return leaf + wide_string(info); }

bool is_fork_name(wide_string const & leaf) {
    return leaf.starts_with(twin) || leaf.ends_with(rsrc) || leaf.ends_with(info);
}

std::vector<entry> list_folder(host::folder const & folder, wide_string const & path) {
    std::vector<entry> entries;
    bool const unlisted = host::has_unlisted(folder);
    host::listed_names const names(folder);
    folder.each([&](narrow_string const & name, host::status const & status) {
        auto & added = entries.emplace_back();
        added.leaf = platform::from_host(name);
        added.status = status;
        added.more = (added.file() || added.folder()) && (unlisted || names.has_more(name));
    });
    auto const before = [](entry const & a, entry const & b) { return a.leaf < b.leaf; };
    std::sort(entries.begin(), entries.end(), before);

    // A fork's name is longer than its owner's, which is settled then; a fork itself owns none.
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i].file() && is_fork_name(entries[i].leaf))
            candidates.push_back(i);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [&](auto a, auto b) { return entries[a].leaf.size() < entries[b].leaf.size(); });
    std::vector<bool> forks(entries.size(), false);
    for (auto const i : candidates) {
        for (auto const & [leaf, fork] : claims_of(entries[i].leaf)) {
            entry wanted;
            wanted.leaf = leaf;
            auto const owner = std::lower_bound(entries.begin(), entries.end(), wanted, before);
            bool const fits = owner != entries.end() && owner->leaf == leaf
                              && !forks[static_cast<std::size_t>(owner - entries.begin())];
            if (fits && take(*owner, fork, nio::concatenate(path, entries[i].leaf, u'\\'))) {
                forks[i] = true;
                break;
            }
        }
    }
    std::size_t index = 0;
    std::erase_if(entries, [&](entry const &) { return forks[index++]; });
    return entries;
}

bool is_there(wide_string const & path) {
    bool const found = nio::exists(path);
    if (!found && !platform::nothing_is_there())
        throw nio::filesystem_exception("cannot look at a fork", path);
    return found;
}
