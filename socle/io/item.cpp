#include "socle/io/item.h"

#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/io/folder_trees_internal.h"
#include "socle/io/system_error.h"
#include "socle/io/system_path_internal.h"
#include "socle/platform/files.h"
#include "socle/platform/paths.h"
#include "socle/platform/shell_links.h"
#include "socle/un/digits.h"
#include "socle/un/timer.h"

#include <cwctype>
#include <vector>

namespace io {

namespace {

constexpr char const * origin = "io::item";

bool is_drive(wide_string const & element) { return element.size() == 2 && element[1] == u':'; }

} // namespace

bool safe_char(char16_t unit) {
    constexpr std::u16string_view unsafe = u"\"*/:<>?\\|";
    return unit >= 32 && unsafe.find(unit) == std::u16string_view::npos && (wide_calls || unit <= 127);
}

item::item() = default;
item::item(any::path const & path) : path_(path) {}
item::item(item const &) = default;
item & item::operator=(item const &) = default;

item::~item() {
    if (!temporary_)
        return;
    try {
        item::unlink(false);
    } catch (...) {
    }
}

bool item::create(bool) { throw exception("cannot be created generically", origin, 0); }

void item::unlink(bool report) {
    // By the path alone: a copy would be temporary as well.
    if (directory())
        io::directory(path_).unlink(report);
    else
        file(path_).unlink(report);
}

void item::load_attributes(int type) { attributes_.load(path_, type); }

void item::apply_attributes(int type) const {
    platform::held_paths const hold;
    if (exists())
        attributes_.apply(path_, type);
}

bool item::exists() const { return system_kind(path_).exists(); }

bool item::directory() const { return system_kind(path_).directory(); }

bool item::link() const {
    if (path_.empty())
        return false;
    any::string extension = path_.leaf_ext();
    for (char16_t & unit : extension)
        unit = static_cast<char16_t>(std::towlower(unit));
    return extension == u".lnk";
}

bool item::normalize() {
    bool changed = false;
    for (auto element = path_.begin(); element != path_.end(); ++element) {
        if (element == path_.begin() && is_drive(*element))
            continue;
        for (char16_t & unit : *element) {
            if (!safe_char(unit)) {
                unit = u'_';
                changed = true;
            }
        }
    }
    return changed;
}

bool item::make_unique(int tries) {
    platform::held_paths const hold;
    if (!exists())
        return false;
    wide_string const leaf = path_.leaf();
    auto const stop = std::min(leaf.find(u'.'), leaf.size());
    for (int i = 1; i <= tries; ++i) {
        auto const number = un::write(static_cast<uint64>(i), 10, 1);
        path_.leaf() = leaf.substr(0, stop) + u'_' + wide_string(number.begin(), number.end()) + leaf.substr(stop);
        if (!exists())
            return true;
    }
    throw exception("cannot resolve name conflict for " + path_.full_string().str(true), origin, 0);
}

void item::make_absolute() {
    wide_string full;
    if (platform::GetFullPathNameW(system_name(path_), full))
        path_ = any::path(full, true);
}

bool item::resolve_link() {
    if (!link())
        return true;
    wide_string target;
    if (!platform::ResolveShellLink(system_name(path_), target))
        return false;
    path_ = any::path(target, true);
    return true;
}

void item::move(any::path const & target) {
    if (!_move(target))
        raise_system_error(path_, "cannot move/rename to", origin);
}

void item::rename(any::string const & leaf) {
    any::path target(path_);
    target.to_parent();
    target.add_leaf(leaf);
    if (!_move(target))
        raise_system_error(path_, "cannot rename to", origin);
}

void item::move(io::directory const & folder) {
    any::path target(folder.path());
    target.add_leaf(path_.empty() ? any::string() : path_.leaf());
    if (!_move(target))
        raise_system_error(path_, "cannot move to", origin);
}

bool item::_move(any::path const & target) {
    auto const from = system_name(path_);
    path_ = target;
    return platform::MoveFileW(from, system_name(path_));
}

uint64 item::size() {
    platform::held_paths const hold;
    system_kind const kind(path_);
    if (kind.directory())
        return 0;
    if (kind.device())
        return all_ones;
    file opened(path_);
    io::fork & fork = opened.data_fork();
    try {
        fork.open();
        uint64 const bytes = fork.size();
        fork.close(false);
        return bytes;
    } catch (exception const &) {
        fork.close(false);
        return all_ones;
    }
}

io::directory item::parent() const {
    any::path above(path_);
    above.to_parent();
    return io::directory(above);
}

any::path item::temp_name(io::directory const & folder) {
    any::path path(folder.path());
    auto const digits = un::write(un::timer::absolute(), 16, 1);
    path.add_leaf(any::string(wide_string(digits.begin(), digits.end())));
    return path;
}

void item::create_temp(io::directory const & folder) {
    for (int attempt = 0; attempt < 100 && !temporary_; ++attempt) {
        try {
            path_ = temp_name(folder);
            create(false);
            temporary_ = true;
        } catch (exception const &) {
        }
    }
}

void item::create_parents() {
    // From here upward what is missing, then from the top down.
    std::vector<any::path> missing(1, path_.parent());
    for (any::path above = missing.back().parent(); !above.empty() && !system_kind(above).exists();
         above = above.parent())
        missing.push_back(above);
    for (; !missing.empty(); missing.pop_back())
        io::directory(missing.back()).create(true);
}

bool item::create_with_parents(bool overwrite) {
    create_parents();
    return create(overwrite);
}

void item::scan(summary & sum) {
    platform::open_folder folder;
    if (folder.open(system_name(path_))) {
        ++sum.items;
        ++sum.directories;
        scan_children_of(folder, path_, sum);
        return;
    }
    // A link to a folder, or one that cannot be listed, counts alone.
    system_kind const kind(path_);
    if (!kind.exists()) {
        ++sum.missing;
        return;
    }
    ++sum.items;
    if (kind.directory()) {
        ++sum.directories;
        return;
    }
    ++sum.files;
    uint64 const bytes = size();
    sum.bytes += bytes == all_ones ? 0 : bytes;
}

item::summary item::scan(item & other) {
    summary sum;
    other.scan(sum);
    return sum;
}

item::summary item::scan(std::list<item *> items) {
    summary sum;
    for (item * const each : items)
        each->scan(sum);
    return sum;
}

} // namespace io
