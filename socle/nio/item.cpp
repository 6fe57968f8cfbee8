#include "socle/nio/item.h"

#include "socle/nio/filesystem_exception.h"
#include "socle/nio/path.h"
#include "socle/platform/environment.h"
#include "socle/platform/files.h"
#include "socle/platform/paths.h"
#include "socle/platform/shell_links.h"

#include <cwctype>
#include <string>

namespace nio {

namespace {

wide_string decimal(uint32 number) {
    std::string const digits = std::to_string(number);
    return wide_string(digits.begin(), digits.end());
}

} // namespace

bool exists(wide_string const & path) { return platform::GetFileKindW(path) != platform::INVALID_FILE_ATTRIBUTES; }

bool is_directory(wide_string const & path) {
    uint32 const kind = platform::GetFileKindW(path);
    return kind != platform::INVALID_FILE_ATTRIBUTES && (kind & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool is_link(wide_string const & path) {
    wide_string extension = leaf_ext(path, u'\\');
    for (char16_t & unit : extension)
        unit = static_cast<char16_t>(std::towlower(unit));
    return extension == u".lnk";
}

wide_string make_absolute(wide_string const & path) {
    wide_string full;
    return platform::GetFullPathNameW(path, full) ? full : wide_string();
}

wide_string make_unique(wide_string const & path, uint32 tries) {
    platform::held_paths const hold;
    if (!exists(path))
        return path;
    wide_string const start = concatenate(stem(path, u'\\'), leaf_name(path, u'\\') + u'_', u'\\');
    wide_string const ext = leaf_ext(path, u'\\');
    for (uint32 n = 1; n <= tries && n != 0; ++n) {
        wide_string const candidate = start + decimal(n) + ext;
        if (!exists(candidate))
            return candidate;
    }
    throw filesystem_exception("cannot resolve a name conflict", path);
}

wide_string resolve_link(wide_string const & path) {
    wide_string target = path;
    if (is_link(path))
        platform::ResolveShellLink(path, target);
    return target;
}

wide_string temp_directory() {
    wide_string value;
    return platform::_wgetenv("TEMP", value) || platform::_wgetenv("TMP", value) ? value : u".";
}

} // namespace nio
