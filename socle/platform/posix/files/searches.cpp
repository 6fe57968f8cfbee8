#include "socle/platform/ansi_text.h"
#include "socle/platform/directories.h"
#include "socle/platform/errors.h"
#include "socle/platform/host_names.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/resolve.h"

#include <algorithm>
#include <cerrno>
#include <cwctype>
#include <locale.h>
#include <memory>
#include <vector>

namespace platform {

/// The names that were found.
struct file_search {
    struct entry {
        std::size_t at;
        std::size_t size;
    };

    void add(std::string_view host_name) {
        std::size_t const at = text.size();
        append_host_name(host_name, text);
        finish(at);
    }
    void add(std::u16string_view name) {
        std::size_t const at = text.size();
        text += name;
        finish(at);
    }
    void sort(std::size_t first);

    std::u16string_view name(entry const & e) const { return std::u16string_view(text).substr(e.at, e.size); }
    std::u16string_view upper(entry const & e) const { return std::u16string_view(text).substr(e.at + e.size, e.size); }

    // Each name, and behind it what it is sorted by; all in one text, as folders have many.
    wide_string text;
    std::vector<entry> entries;
    std::size_t next = 0;

private:
    void finish(std::size_t at);
};

namespace posix {

namespace {

/// Upper case whatever locale the process has; of ASCII alone if the host lacks the one that knows more.
char16_t upper_case(char16_t unit) {
    if (unit < 0x80)
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    static locale_t const all_letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return all_letters == locale_t{} ? unit : static_cast<char16_t>(towupper_l(unit, all_letters));
}

uint32 list_folder(std::u16string_view path, file_search & search) {
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
    search.add(u".");
    search.add(u"..");
    named_streams const * const streams = at.on->streams.get();
    for (;;) {
        errno = 0;
        dirent const * const read = host::readdir(folder.get());
        if (read == nullptr)
            break;
        std::string_view const name = read->d_name;
        bool const hidden = streams != nullptr && streams->hidden((at.host + '/').append(name));
        if (name != "." && name != ".." && !hidden)
            search.add(name);
    }
    if (errno != 0)
        return code_of(errno);
    search.sort(2);
    return 0;
}

/// The one thing that the path names, under the name that the path gives it.
uint32 find_one(std::u16string_view path, std::u16string_view leaf, file_search & search) {
    resolved_path at;
    if (uint32 const code = resolve(path, at))
        return code;
    if (!at.stream.empty())
        return ERROR_INVALID_NAME;
    struct stat status {};
    if (host::lstat(at.host_path(), &status) != 0)
        return code_at(at.host, errno);
    search.add(leaf);
    return 0;
}

uint32 begin_search(std::u16string_view pattern, file_search & search) {
    std::size_t const separator = pattern.find_last_of(u"\\/");
    bool const plain = separator == std::u16string_view::npos;
    std::u16string_view const leaf = plain ? pattern : pattern.substr(separator + 1);
    if (leaf == u"*") {
        // The separator stays: alone, or behind a drive, it makes the root of it.
        return list_folder(plain ? u"." : pattern.substr(0, separator + 1), search);
    }
    if (leaf.empty())
        return ERROR_FILE_NOT_FOUND;
    if (pattern == u".") {
        // Always there, even where the working directory may not be searched.
        search.add(pattern);
        return 0;
    }
    return leaf.find_first_of(u"*?") == std::u16string_view::npos ? find_one(pattern, leaf, search)
                                                                  : ERROR_NOT_SUPPORTED;
}

} // namespace

} // namespace posix

void file_search::finish(std::size_t at) {
    entries.push_back({at, text.size() - at});
    for (std::size_t i = at, end = text.size(); i < end; ++i)
        text += posix::upper_case(text[i]);
}

/// The entries from `first` on: by unit in upper case, ties by unit.
void file_search::sort(std::size_t first) {
    std::sort(entries.begin() + static_cast<std::ptrdiff_t>(first), entries.end(),
              [this](entry const & left, entry const & right) {
                  int const order = upper(left).compare(upper(right));
                  return order != 0 ? order < 0 : name(left) < name(right);
              });
}

file_search * FindFirstFileW(wide_string const & pattern, WIN32_FIND_DATAW & data) {
    auto search = std::make_unique<file_search>();
    if (!posix::report(posix::begin_search(pattern, *search)))
        return nullptr;
    return FindNextFileW(search.get(), data) ? search.release() : nullptr;
}

bool FindNextFileW(file_search * search, WIN32_FIND_DATAW & data) {
    if (search->next == search->entries.size())
        return posix::report(ERROR_NO_MORE_FILES);
    data.cFileName = search->name(search->entries[search->next++]);
    return true;
}

file_search * FindFirstFileA(narrow_string const & pattern, WIN32_FIND_DATAA & data) {
    auto search = std::make_unique<file_search>();
    if (!posix::report(posix::begin_search(from_ansi(pattern), *search)))
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
