#include "target_folder.h"

#include "belongings.h"

#include "common/host_text.h"

#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>

target_folder::target_folder(std::optional<host::folder> held, narrow_string const & typed)
    : held_(std::move(held)), typed_(typed) {
    if (!held_)
        return;
    names_ = held_->list();
    unlisted_ = host::has_unlisted(*held_);
}

host::status const * target_folder::listed(narrow_string const & name) const {
    auto const place = std::lower_bound(names_.begin(), names_.end(), name,
                                        [](host::found const & each, auto const & n) { return each.name < n; });
    return place != names_.end() && place->name == name ? &place->status : nullptr;
}

host::status target_folder::look(narrow_string const & name) const {
    return held_ ? held_->look(name) : host::status();
}

bool target_folder::has_more(narrow_string const & name) const {
    return held_ && (unlisted_ || host::has_more(held_->path(name)));
}

bool target_folder::claim(host::status const & file) { return claimed_.emplace(file.device, file.number).second; }

wide_string target_folder::path(wide_string const & leaf) const {
    return nio::concatenate(platform::from_host(held_->path()), leaf, u'\\');
}

narrow_string target_folder::typed(wide_string const & leaf) const {
    return readable_path(typed_ + (typed_.ends_with('/') ? "" : "/") + platform::to_host(leaf));
}
