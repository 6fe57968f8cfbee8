#include "work_folder.h"

#include <socle/nio/exception.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <filesystem>

namespace {

constexpr char work_name[] = ".catalog.part";

[[noreturn]] void in_the_way(narrow_string const & why, narrow_string const & typed) {
    throw nio::exception("is in the way, as " + why + ": " + typed);
}

/// Whether a name is one that a file in the making, or a fork of it, has.
bool is_part_name(std::string_view name) {
    if (name.starts_with("._"))
        name.remove_prefix(2);
    for (std::string_view const ending : {".rsrc", ".info"})
        if (name.ends_with(ending))
            name.remove_suffix(ending.size());
    return !name.empty() && name.find_first_not_of("0123456789") == name.npos;
}

} // namespace

work_folder::work_folder(target_folder const & top, fork_form form) : top_(top), form_(form) {
    auto const leaf = platform::from_host(work_name);
    auto const typed = top.typed(leaf);
    top.held()->make(work_name);
    if (top.look(work_name).kind != host::kind::folder)
        in_the_way("it is no folder", typed);
    auto held = top.held()->inner(work_name);
    if (!held.own())
        in_the_way("it is another user's", typed);
    lock_.emplace(held);
    if (!lock_->held() || !top.look(work_name).same_file(held.status()))
        throw nio::exception("another run is at work in " + top.typed());
    here_.emplace(std::move(held), typed);
    for (auto const & [name, status] : here_->held()->list())
        if (status.kind != host::kind::file || !is_part_name(name))
            in_the_way("this program has not made it", here_->typed(platform::from_host(name)));
    clear();
}

work_folder::~work_folder() {
    try {
        clear();
    } catch (...) {
        // The next run does it.
    }
    here_.reset(); // which may keep it from going
    top_.held()->remove(work_name);
}

bool work_folder::is_named(wide_string const & leaf) {
    static wide_string const name = platform::from_host(work_name);
    return leaf == name;
}

wide_string work_folder::next_part() {
    auto const digits = std::to_string(parts_++);
    return here_->path({digits.begin(), digits.end()});
}

void work_folder::move(wide_string const & part, target_folder const & folder, narrow_string const & name) const {
    here_->held()->move(platform::to_host(nio::leaf(part, u'\\')), *folder.held(), name);
}

void work_folder::clear() const {
    for (auto const & [name, status] : here_->held()->list())
        if (form_ == fork_form::stream)
            forked_copy(form_, here_->path(platform::from_host(name))).remove();
        else
            std::filesystem::remove(host::path_of(here_->held()->path(name)));
}
