#include "target_folder.h"

#include "common/host_text.h"

#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>

namespace {

/// In whatever spelling a host takes for the same.
bool is_like_fork(narrow_string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; });
    return name.starts_with("._") || name.ends_with(".rsrc") || name.ends_with(".info");
}

} // namespace

target_folder::target_folder(std::optional<host::folder> held, narrow_string const & typed)
    : held_(std::move(held)), typed_(typed) {
    if (!held_)
        return;
    names_ = held_->names();
    path_ = platform::from_host(held_->path());
    lists_forks_ = std::any_of(names_.begin(), names_.end(), is_like_fork);
}

bool target_folder::listed(narrow_string const & name) const {
    return std::binary_search(names_.begin(), names_.end(), name);
}

host::status target_folder::look(narrow_string const & name) const {
    return held_ ? held_->look(name) : host::status();
}

bool target_folder::claim(host::status const & file) { return claimed_.emplace(file.device, file.number).second; }

wide_string target_folder::path(wide_string const & leaf) const { return nio::concatenate(path_, leaf, u'\\'); }

narrow_string target_folder::typed(wide_string const & leaf) const {
    return readable_path(typed_ + (typed_.ends_with('/') ? "" : "/") + platform::to_host(leaf));
}
