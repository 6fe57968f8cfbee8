#include "socle/platform/ansi_text.h"
#include "socle/platform/host_names.h"
#include "socle/platform/posix/files/held_folder.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/report.h"

#include <algorithm>
#include <cwctype>
#include <locale.h>
#include <memory>
#include <vector>

namespace platform {

/// The names that were found.
struct file_search {
    /// Room for a folder of usual size, taken at once instead of in many steps.
    void reserve() {
        text.reserve(1024);
        entries.reserve(48);
    }

    struct entry {
        std::size_t at;
        uint32 size;
        uint32 kind;
    };

    void add(std::string_view host_name, uint32 kind) {
        std::size_t const at = text.size();
        append_host_name(host_name, text);
        finish(at, kind);
    }
    void add(std::u16string_view name, uint32 kind) {
        std::size_t const at = text.size();
        text += name;
        finish(at, kind);
    }
    void sort(std::size_t first);

    std::u16string_view name(entry const & e) const { return std::u16string_view(text).substr(e.at, e.size); }
    std::u16string_view upper(entry const & e) const { return std::u16string_view(text).substr(e.at + e.size, e.size); }

    // Each name, and behind it what it is sorted by; all in one text, as folders have many.
    wide_string text;
    std::vector<entry> entries;
    std::size_t next = 0;

private:
    void finish(std::size_t at, uint32 kind);
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

system_code list_folder(listed_folder & folder, file_search & search) {
    search.reserve();
    std::size_t const first = search.entries.size();
    system_code const code = folder.list([&](std::string_view name, uint32 kind) { search.add(name, kind); });
    search.sort(first);
    return code;
}

system_code list_path(std::u16string_view path, file_search & search) {
    listed_folder folder;
    if (system_code const code = folder.open(path, true))
        return code;
    search.add(u".", FILE_ATTRIBUTE_DIRECTORY);
    search.add(u"..", FILE_ATTRIBUTE_DIRECTORY);
    return list_folder(folder, search);
}

/// The one thing that the path names, under the name that the path gives it.
system_code find_one(std::u16string_view path, std::u16string_view leaf, file_search & search) {
    return with_path(path, [&](resolved_path const & at) -> system_code {
        if (!at.stream.empty())
            return ERROR_INVALID_NAME;
        uint32 kind = 0;
        system_code const code = kind_at(at, kind);
        if (!code)
            search.add(leaf, kind);
        return code;
    });
}

system_code begin_search(std::u16string_view pattern, file_search & search) {
    if (pattern.empty())
        return ERROR_PATH_NOT_FOUND;
    std::size_t const separator = pattern.find_last_of(u"\\/");
    bool const plain = separator == std::u16string_view::npos;
    std::u16string_view const leaf = plain ? pattern : pattern.substr(separator + 1);
    if (leaf == u"*") {
        // The separator stays: alone, or behind a drive, it makes the root of it.
        return list_path(plain ? u"." : pattern.substr(0, separator + 1), search);
    }
    if (leaf.empty())
        return ERROR_FILE_NOT_FOUND;
    if (pattern == u".") {
        // Always there, even where the working directory may not be searched.
        search.add(pattern, FILE_ATTRIBUTE_DIRECTORY);
        return {};
    }
    return leaf.find_first_of(u"*?") == std::u16string_view::npos ? find_one(pattern, leaf, search)
                                                                  : ERROR_NOT_SUPPORTED;
}

/// A search that has begun well, with its first entry.
template <typename Data, typename Next>
file_search * begun(system_code code, std::unique_ptr<file_search> search, Data & data, Next next) {
    return report(code) && next(search.get(), data) ? search.release() : nullptr;
}

} // namespace

} // namespace posix

void file_search::finish(std::size_t at, uint32 kind) {
    entries.push_back({at, static_cast<uint32>(text.size() - at), kind});
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
    system_code const code = posix::begin_search(pattern, *search);
    return posix::begun(code, std::move(search), data, FindNextFileW);
}

file_search * FindFirstFileW(open_folder const & folder, WIN32_FIND_DATAW & data) {
    auto search = std::make_unique<file_search>();
    system_code code = ERROR_INVALID_HANDLE;
    if (folder.is_open())
        code = posix::list_folder(folder.get()->folder, *search);
    return posix::begun(code, std::move(search), data, FindNextFileW);
}

bool FindNextFileW(file_search * search, WIN32_FIND_DATAW & data) {
    if (search->next == search->entries.size())
        return posix::report(ERROR_NO_MORE_FILES);
    file_search::entry const & found = search->entries[search->next++];
    data.dwFileAttributes = found.kind;
    data.cFileName = search->name(found);
    return true;
}

file_search * FindFirstFileA(narrow_string const & pattern, WIN32_FIND_DATAA & data) {
    auto search = std::make_unique<file_search>();
    system_code const code = posix::begin_search(from_ansi(pattern), *search);
    return posix::begun(code, std::move(search), data, FindNextFileA);
}

bool FindNextFileA(file_search * search, WIN32_FIND_DATAA & data) {
    for (WIN32_FIND_DATAW wide; FindNextFileW(search, wide);) {
        data = {wide.dwFileAttributes, to_ansi(wide.cFileName)};
        if (from_ansi(data.cFileName) == wide.cFileName)
            return true;
    }
    return false;
}

void FindClose(file_search * search) { delete search; }

} // namespace platform
