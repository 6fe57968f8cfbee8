#include "socle/nio/directory.h"

#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/new_paths_internal.h"
#include "socle/nio/path.h"
#include "socle/nio/timer.h"
#include "socle/platform/directories.h"
#include "socle/platform/files.h"

#include <charconv>
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

/// Whether this is a link, or may be one as far as the system tells. It may lead to a directory even if that is not
/// seen.
bool may_be_link(wide_string const & path) {
    uint32 const bits = platform::GetFileAttributesW(path);
    return bits == platform::INVALID_FILE_ATTRIBUTES || (bits & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

} // namespace

void create_parents(wide_string const & path) {
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
    if (may_be_link(path()))
        return;
    for (iterator it = begin(), last; it != last; ++it)
        if (nio::is_directory(*it))
            directory(*it).unlink_with_children(must_succeed);
        else
            file(*it, 0).unlink(must_succeed);
}

void directory::unlink_with_children(bool must_succeed) {
    unlink_children(must_succeed);
    unlink(must_succeed);
}

directory::iterator directory::begin() const { return iterator(*this); }

directory::iterator directory::end() const { return iterator(); }

/// The system's search, and what it found last.
struct directory::iterator::search {
    search() = default;
    search(search const &) = delete;
    search & operator=(search const &) = delete;
    ~search() { close(); }

    void close() {
        if (handle)
            platform::FindClose(handle);
        handle = nullptr;
    }

    platform::file_search * handle = nullptr; // null when it has ended
    platform::WIN32_FIND_DATAW data;
};

directory::iterator::iterator() : directory_(u"."), search_(new search) {}

directory::iterator::iterator(nio::item const & from) : search_(new search) { _first(from.path()); }

directory::iterator::iterator(iterator const & other) : search_(new search) {
    _first(other.directory_);
    search_->data = other.search_->data;
    current_ = other.current_;
}

directory::iterator & directory::iterator::operator=(iterator const & other) {
    if (*this == other)
        return *this;
    iterator copy(other);
    std::swap(directory_, copy.directory_);
    std::swap(search_, copy.search_);
    std::swap(current_, copy.current_);
    return *this;
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

bool directory::iterator::operator==(iterator const & other) const { return search_->handle == other.search_->handle; }

void directory::iterator::_first(wide_string const & path) {
    directory_ = path;
    // An empty path is no directory, where `\*` would search the root.
    search_->handle = platform::FindFirstFileW(path.empty() ? path : path + u"\\*", search_->data);
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
    if (search_->handle && !platform::FindNextFileW(search_->handle, search_->data))
        _close();
}

bool directory::iterator::_trivial() const {
    wide_string const & name = search_->data.cFileName;
    return name == u"." || name == u".." || name.starts_with(u"._");
}

void directory::iterator::_close() { search_->close(); }

void directory::iterator::show() {
    current_ = directory_;
    if (search_->handle)
        append(current_, search_->data.cFileName, u'\\');
}

} // namespace nio
