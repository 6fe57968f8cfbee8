#include "platform/ansi_text.h"
#include "platform/directories.h"
#include "platform/errors.h"
#include "platform/posix/error_codes.h"
#include "platform/posix/host_calls.h"
#include "platform/posix/host_names.h"
#include "platform/posix/report.h"
#include "platform/posix/resolve.h"

#include <algorithm>
#include <cerrno>
#include <cwctype>
#include <locale.h>
#include <memory>
#include <vector>

namespace platform {

struct file_search {
    std::vector<wide_string> names;
    std::size_t next = 0;
};

namespace posix {

namespace {

/// Upper case whatever locale the process has; of ASCII alone if the host lacks the one that knows more.
char16_t upper_case(char16_t unit) {
    static locale_t const all_letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (all_letters == locale_t{})
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    return static_cast<char16_t>(towupper_l(unit, all_letters));
}

/// A name with what it is sorted by.
struct entry {
    wide_string upper;
    wide_string name;

    bool operator<(entry const & other) const { return upper != other.upper ? upper < other.upper : name < other.name; }
};

uint32 list_folder(std::u16string_view path, std::vector<wide_string> & names) {
    resolved_path at;
    if (uint32 const code = resolve_target(path, at))
        return code;
    if (!at.stream.empty())
        return ERROR_DIRECTORY;
    std::unique_ptr<DIR, int (*)(DIR *)> const folder(host::opendir(at.host), host::closedir);
    if (!folder) {
        int const error = errno;
        // What is missing in front of the search's last name is a path.
        return error == ENOENT ? ERROR_PATH_NOT_FOUND : error == ENOTDIR ? ERROR_DIRECTORY : code_of(error);
    }
    std::vector<entry> found;
    named_streams const * const streams = at.on->streams.get();
    for (;;) {
        errno = 0;
        dirent const * const read = host::readdir(folder.get());
        if (read == nullptr)
            break;
        narrow_string const name = read->d_name;
        if (name == "." || name == ".." || (streams != nullptr && streams->hidden(at.host + '/' + name)))
            continue;
        entry made{{}, from_host_name(name)};
        made.upper = made.name;
        std::transform(made.upper.begin(), made.upper.end(), made.upper.begin(), upper_case);
        found.push_back(std::move(made));
    }
    if (errno != 0)
        return code_of(errno);
    std::sort(found.begin(), found.end());
    names = {u".", u".."};
    for (auto & e : found)
        names.push_back(std::move(e.name));
    return 0;
}

/// The one thing that the path names, under the name that the path gives it.
uint32 find_one(std::u16string_view path, std::u16string_view leaf, std::vector<wide_string> & names) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    if (!at.stream.empty())
        return ERROR_INVALID_NAME;
    struct stat status {};
    if (host::lstat(at.host_path(), &status) != 0)
        return code_at(at.host, errno);
    names.emplace_back(leaf);
    return 0;
}

uint32 begin_search(std::u16string_view pattern, std::vector<wide_string> & names) {
    std::size_t const separator = pattern.find_last_of(u"\\/");
    bool const plain = separator == std::u16string_view::npos;
    std::u16string_view const leaf = plain ? pattern : pattern.substr(separator + 1);
    if (leaf == u"*") {
        // The separator stays: alone, or behind a drive, it makes the root of it.
        return list_folder(plain ? u"." : pattern.substr(0, separator + 1), names);
    }
    if (leaf.empty())
        return ERROR_FILE_NOT_FOUND;
    if (pattern == u".") {
        // Always there, even where the working directory may not be searched.
        names.emplace_back(pattern);
        return 0;
    }
    return leaf.find_first_of(u"*?") == std::u16string_view::npos ? find_one(pattern, leaf, names)
                                                                  : ERROR_NOT_SUPPORTED;
}

} // namespace

} // namespace posix

file_search * FindFirstFileW(wide_string const & pattern, WIN32_FIND_DATAW & data) {
    auto search = std::make_unique<file_search>();
    if (!posix::report(posix::begin_search(pattern, search->names)))
        return nullptr;
    return FindNextFileW(search.get(), data) ? search.release() : nullptr;
}

bool FindNextFileW(file_search * search, WIN32_FIND_DATAW & data) {
    if (search->next == search->names.size())
        return posix::report(ERROR_NO_MORE_FILES);
    data.cFileName = search->names[search->next++];
    return true;
}

file_search * FindFirstFileA(narrow_string const & pattern, WIN32_FIND_DATAA & data) {
    auto search = std::make_unique<file_search>();
    if (!posix::report(posix::begin_search(from_ansi(pattern), search->names)))
        return nullptr;
    return FindNextFileA(search.get(), data) ? search.release() : nullptr;
}

bool FindNextFileA(file_search * search, WIN32_FIND_DATAA & data) {
    for (WIN32_FIND_DATAW wide; FindNextFileW(search, wide);) {
        data.cFileName = to_ansi(wide.cFileName);
        if (from_ansi(data.cFileName) == wide.cFileName)
            return true;
    }
    return false;
}

void FindClose(file_search * search) { delete search; }

} // namespace platform
