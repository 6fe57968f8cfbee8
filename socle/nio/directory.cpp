#include "socle/nio/directory.h"

#include "socle/nio/attributes.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/new_paths_internal.h"
#include "socle/nio/path.h"
#include "socle/nio/timer.h"
#include "socle/platform/directories.h"
#include "socle/platform/folder_walk.h"
#include "socle/platform/paths.h"

#include <charconv>
#include <memory>
#include <utility>
#include <vector>

namespace nio {

namespace {

/// Makes a directory whose parents are there. True if its name had to be normalized, which then is the path.
bool make_directory(wide_string & path) {
    if (path.empty() || exists(path) || platform::CreateDirectoryW(path))
        return false;
    wide_string const safe = normalize(path);
    if (safe == path)
        return false;
    if (!platform::CreateDirectoryW(safe))
        throw filesystem_exception("cannot create", path);
    path = safe;
    return true;
}

/// Whether a search passes this name over.
bool is_hidden(wide_string const & name) { return name == u"." || name == u".." || name.starts_with(u"._"); }

/// Removes what a directory contains: each file behind its sidecar, each directory behind what it contains.
class emptying : public platform::tree_visitor {
public:
    emptying(wide_string const & path, bool must_succeed) : path_(path), must_succeed_(must_succeed) {}

    bool enter(platform::open_folder & folder, platform::WIN32_FIND_DATAW const & entry) override {
        if (is_hidden(entry.cFileName))
            return false;
        if ((entry.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0)
            remove_file(folder, entry.cFileName);
        else if ((entry.dwFileAttributes & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            check(platform::RemoveDirectoryW(folder, entry.cFileName), entry.cFileName);
        else
            return names_.push_back(entry.cFileName), true;
        return false;
    }

    void leave(platform::open_folder & folder, wide_string const & name) override {
        names_.pop_back();
        check(platform::RemoveDirectoryW(folder, name), name);
    }

private:
    /// A sidecar is a file like any other, and may have one itself.
    void remove_file(platform::open_folder & folder, wide_string const & name) {
        wide_string const sidecar = u"._" + name;
        if (platform::GetFileKindW(folder, sidecar) != platform::INVALID_FILE_ATTRIBUTES)
            remove_file(folder, sidecar);
        check(platform::DeleteFileW(folder, name), name);
    }

    void check(bool removed, wide_string const & name) {
        if (removed || !must_succeed_)
            return;
        for (wide_string const & above : names_)
            append(path_, above, u'\\');
        append(path_, name, u'\\');
        throw filesystem_exception("cannot delete", path_);
    }

    wide_string path_;
    std::vector<wide_string> names_; // of the directories below it that were entered
    bool must_succeed_;
};

} // namespace

void create_parents(wide_string const & path) {
    if (platform::IsParentThere(path))
        return;
    // From here upward what is missing; then from the top down, so that each has its parents tried before it.
    std::vector<wide_string> missing;
    for (wide_string parent = stem(path, u'\\'); !parent.empty() && !exists(parent); parent = stem(parent, u'\\'))
        missing.push_back(parent);
    for (; !missing.empty(); missing.pop_back())
        make_directory(missing.back());
}

wide_string temp_path(wide_string const & directory) {
    char digits[16];
    auto const end = std::to_chars(digits, digits + sizeof digits, timer::absolute(), 16).ptr;
    return concatenate(directory, wide_string(digits, end), u'\\');
}

directory::directory(wide_string const & path) : item(path) {}

directory::directory(nio::item const & from) : nio::item(from.path()) {}

bool directory::create() {
    platform::held_paths const hold;
    if (path().empty() || exists())
        return false;
    create_parents(path());
    return make_directory(path());
}

void directory::create_temp(wide_string const & parent) {
    path() = temp_path(parent);
    create();
}

void directory::unlink(bool must_succeed) {
    if (!platform::RemoveDirectoryW(path()) && must_succeed)
        throw filesystem_exception("cannot delete", path());
}

void directory::unlink_children(bool must_succeed) {
    platform::open_folder folder;
    if (!folder.open(path()))
        return;
    emptying visitor(path(), must_succeed);
    walk_tree(folder, visitor);
}

void directory::unlink_with_children(bool must_succeed) {
    unlink_children(must_succeed);
    unlink(must_succeed);
}

directory::iterator directory::begin() const { return iterator(*this); }

directory::iterator directory::end() const { return iterator(); }

/// The system's search, and what it found last.
struct directory::iterator::search {
    platform::search_handle handle; // null when it has ended
    platform::WIN32_FIND_DATAW data;
    platform::open_folder folder; // from the first question about an entry on
};

directory::iterator::iterator() : directory_(u"."), search_(std::make_unique<search>()) {}

directory::iterator::iterator(nio::item const & from) : search_(std::make_unique<search>()) { _first(from.path()); }

directory::iterator::iterator(iterator const & other) : search_(std::make_unique<search>()) {
    _first(other.directory_);
    search_->data = other.search_->data;
    current_ = other.current_;
}

directory::iterator::iterator(iterator && other) : iterator() { *this = std::move(other); }

directory::iterator & directory::iterator::operator=(iterator && other) noexcept {
    std::swap(directory_, other.directory_);
    std::swap(search_, other.search_);
    std::swap(current_, other.current_);
    return *this;
}

directory::iterator & directory::iterator::operator=(iterator const & other) {
    if (*this == other)
        return *this;
    return *this = iterator(other);
}

directory::iterator::~iterator() = default;

directory::iterator & directory::iterator::operator++() {
    _next();
    return *this;
}

directory::iterator directory::iterator::operator++(int) {
    _next();
    return *this;
}

bool directory::iterator::is_directory() const {
    return (search_->data.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool directory::iterator::is_link() const {
    return (search_->data.dwFileAttributes & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void directory::iterator::load(attributes & into) const {
    platform::open_folder & folder = search_->folder;
    if (!folder.is_open())
        folder.open_target(directory_ + u'\\');
    if (folder.is_open())
        return into.load_entry(folder, search_->data.cFileName, current_);
    item entry(current_);
    into.load(entry);
}

bool directory::iterator::operator==(iterator const & other) const { return search_->handle == other.search_->handle; }

void directory::iterator::_first(wide_string const & path) {
    directory_ = path;
    wide_string pattern = path;
    if (!path.empty()) // it is no directory, where `\*` would search the root
        pattern += u"\\*";
    search_->handle.reset(platform::FindFirstFileW(pattern, search_->data));
    while (search_->handle && _trivial())
        _succ();
    show();
}

void directory::iterator::_next() {
    do
        _succ();
    while (search_->handle && _trivial());
    show();
}

void directory::iterator::_succ() {
    if (search_->handle && !platform::FindNextFileW(search_->handle.get(), search_->data))
        _close();
}

bool directory::iterator::_trivial() const { return is_hidden(search_->data.cFileName); }

void directory::iterator::_close() {
    search_->handle.reset();
    search_->folder.close();
}

void directory::iterator::show() {
    current_ = directory_;
    if (search_->handle)
        append(current_, search_->data.cFileName, u'\\');
}

} // namespace nio
