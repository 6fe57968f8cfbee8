#pragma once

#include "socle/any/path.h"
#include "socle/io/item.h"
#include "socle/platform/folders.h"

#include <algorithm>
#include <string_view>

namespace io {

/// Whether a walk of a folder passes over `name`: "." and "..", and a sidecar beside what it belongs to. `exists` tells
/// whether the folder has a name; the empty one stands for the folder itself.
template <typename Exists>
bool is_hidden(std::u16string_view name, Exists exists) {
    constexpr std::u16string_view rsrc = u".rsrc", info = u".info";
    static_assert(rsrc.size() == info.size());
    auto stem = wide_string(name.substr(0, name.size() - std::min(name.size(), info.size())));
    if (name.ends_with(rsrc))
        return exists(stem);
    if (name.ends_with(info))
        return exists(stem) || exists(stem.append(rsrc));
    return name == u"." || name == u"..";
}

/// Deletes what is in a folder, as far as that can be deleted, and nothing if it is a link. With `report` it throws for
/// the first folder below it that cannot be deleted.
void unlink_children_of(any::path const & folder, bool report);

/// Adds all that is below an open folder, whose path this is.
void scan_children_of(platform::open_folder & folder, any::path const & path, item::summary & sum);

} // namespace io
