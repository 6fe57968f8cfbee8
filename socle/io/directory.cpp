#include "socle/io/directory.h"

#include "socle/io/exception.h"
#include "socle/io/folder_trees_internal.h"
#include "socle/io/system_error.h"
#include "socle/io/system_path_internal.h"
#include "socle/platform/directories.h"
#include "socle/platform/environment.h"
#include "socle/platform/folders.h"
#include "socle/platform/paths.h"

#include <memory>
#include <utility>

namespace io {

namespace {

constexpr char const * origin = "io::directory";
constexpr int tries = 999;

} // namespace

directory directory::temp() {
    narrow_string text;
    if (!platform::getenv("TEMP", text) && !platform::getenv("TMP", text))
        text = ".";
    return directory(any::path(any::string(text, true), true));
}

directory::directory() = default;
directory::directory(any::path const & path) : item(path) {}
directory::directory(directory const &) = default;
directory::directory(item const & other) : item(other) {}
directory & directory::operator=(directory const &) = default;
directory::~directory() = default;

uint64 directory::size() const { return 0; }

bool directory::create(bool) {
    if (path().empty() || exists() || platform::CreateDirectoryW(system_name(path())))
        return false;
    any::path const kept = path();
    bool const changed = normalize();
    if (changed)
        make_unique(tries);
    if (!platform::CreateDirectoryW(system_name(path()))) {
        path() = kept;
        raise_system_error(path(), "cannot create", origin);
    }
    return changed;
}

bool directory::create_parents(bool) {
    if (path().size() < 2 || exists())
        return false;
    return directory(path().parent()).create(false);
}

bool directory::create_with_parents(bool overwrite) {
    bool const parents_changed = create_parents(overwrite);
    return create(false) || parents_changed;
}

void directory::unlink(bool report) {
    if (!platform::RemoveDirectoryW(system_name(path())) && report)
        throw exception("cannot delete " + path().full_string().str(true), origin, 0);
}

void directory::unlink_children(bool report) { unlink_children_of(path(), report); }

void directory::unlink_with_children(bool report) {
    unlink_children(report);
    unlink(report);
}

directory::iterator directory::begin() const { return iterator(*this); }

directory::iterator directory::end() const { return iterator(); }

/// The system's search, wide or narrow, and the name that it found last.
struct directory::iterator::search {
    bool find_first(any::path const & pattern) {
        if (wide_calls)
            handle.reset(platform::FindFirstFileW(pattern.full_string(), wide));
        else
            handle.reset(platform::FindFirstFileA(pattern.full_string().str(true), narrow));
        return take_name(handle != nullptr);
    }
    bool find_next() {
        return take_name(wide_calls ? platform::FindNextFileW(handle.get(), wide)
                                    : platform::FindNextFileA(handle.get(), narrow));
    }
    bool take_name(bool found) {
        if (found && wide_calls)
            name = wide.cFileName;
        else if (found)
            name.set(narrow.cFileName, true);
        return found;
    }
    uint32 found_bits() const { return wide_calls ? wide.dwFileAttributes : narrow.dwFileAttributes; }

    platform::search_handle handle; // null when it has ended
    platform::WIN32_FIND_DATAW wide;
    platform::WIN32_FIND_DATAA narrow;
    any::string name; // what was found last
    item current;
    platform::open_folder folder; // from the first question about an entry on
};

directory::iterator::iterator() : dir_(&directory::current), search_(std::make_unique<search>()) {}

directory::iterator::iterator(directory const & folder) : dir_(&folder), search_(std::make_unique<search>()) {
    first(folder);
}

directory::iterator::iterator(iterator const & other) : dir_(other.dir_), search_(std::make_unique<search>()) {
    first(*dir_);
    search_->wide = other.search_->wide;
    search_->narrow = other.search_->narrow;
    search_->name = other.search_->name;
    search_->current = other.search_->current;
}

directory::iterator::iterator(iterator && other) : iterator() { *this = std::move(other); }

directory::iterator & directory::iterator::operator=(iterator && other) noexcept {
    std::swap(dir_, other.dir_);
    std::swap(search_, other.search_);
    return *this;
}

directory::iterator & directory::iterator::operator=(iterator const & other) {
    if (*this == other)
        return *this;
    return *this = iterator(other);
}

directory::iterator::~iterator() { close(); }

item & directory::iterator::operator*() const { return search_->current; }

item * directory::iterator::operator->() const { return &search_->current; }

directory::iterator & directory::iterator::operator++() {
    next();
    return *this;
}

directory::iterator directory::iterator::operator++(int) {
    next();
    return *this;
}

bool directory::iterator::is_directory() const {
    return (search_->found_bits() & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool directory::iterator::is_link() const {
    return (search_->found_bits() & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void directory::iterator::load_attributes(int type) const {
    item & entry = search_->current;
    if (platform::open_folder const * const in = folder())
        entry.attributes().load_entry(*in, entry.path(), type);
    else
        entry.load_attributes(type);
}

bool directory::iterator::operator==(iterator const & other) const { return search_->handle == other.search_->handle; }

void directory::iterator::first(directory const & folder) {
    any::path pattern(folder.path());
    pattern.add_leaf(u"*");
    search_->find_first(pattern);
    skip_hidden();
}

void directory::iterator::next() {
    succ();
    skip_hidden();
}

void directory::iterator::succ() {
    if (search_->handle && !search_->find_next())
        close();
}

/// From the entry just found to the next one that shows, which becomes the current one.
void directory::iterator::skip_hidden() {
    while (search_->handle && trivial())
        succ();
    search_->current.path() = dir_->path();
    if (search_->handle)
        search_->current.path().add_leaf(search_->name);
}

bool directory::iterator::trivial() const {
    return is_hidden(search_->name, [&](wide_string const & name) {
        if (platform::open_folder const * const in = name.empty() ? nullptr : folder())
            return platform::GetFileKindW(*in, system_name(any::string(name))) != platform::INVALID_FILE_ATTRIBUTES;
        any::path path(dir_->path());
        path.add_leaf(any::string(name));
        return system_kind(path).exists();
    });
}

/// The folder, held from now on; null where it cannot be.
platform::open_folder const * directory::iterator::folder() const {
    platform::open_folder & held = search_->folder;
    if (!held.is_open()) {
        wide_string path = system_name(dir_->path());
        path += path.empty() ? u'.' : u'\\';
        held.open_target(path);
    }
    return held.is_open() ? &held : nullptr;
}

void directory::iterator::close() {
    search_->handle.reset();
    search_->folder.close();
}

} // namespace io
