#include "socle/platform/posix/paths/resolve.h"

#include "socle/platform/errors.h"
#include "socle/platform/host_names.h"
#include "socle/platform/path_text.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <cerrno>
#include <climits>

namespace platform::posix {

namespace {

/// A folder without the links in it, as far as it exists; "" for the host's root.
narrow_string real_folder(narrow_string const & folder) {
    char resolved[PATH_MAX];
    for (std::size_t end = folder.size(); end != 0 && end != narrow_string::npos; end = folder.rfind('/', end - 1)) {
        if (host::realpath(folder.substr(0, end), resolved) != nullptr) {
            narrow_string const real = resolved;
            return (real == "/" ? narrow_string() : real) + folder.substr(end);
        }
    }
    return folder;
}

/// Units that the native volumes let no name hold.
bool is_safe_name(std::u16string_view name) {
    for (char16_t unit : name)
        if (unit < 32 || std::u16string_view(u"\"*<>?|:").find(unit) != std::u16string_view::npos)
            return false;
    return true;
}

bool append_name(narrow_string & host, std::u16string_view name) {
    narrow_string text;
    if (name.find_first_of(u"\\:") != std::u16string_view::npos || !to_host_name(name, text))
        return false;
    host.append("/").append(text);
    return true;
}

/// No path leads to where streams are kept.
uint32 check_not_hidden(resolved_path const & resolved) {
    bool const hidden = resolved.on->streams != nullptr && resolved.on->streams->hidden(resolved.host);
    return hidden ? ERROR_ACCESS_DENIED : 0;
}

/// The real file behind a last name that is a link: its volume keeps the streams.
void follow_last_link(resolved_path & resolved) {
    char real[PATH_MAX];
    if (host::realpath(resolved.host, real) != nullptr) {
        resolved.host = real;
        resolved.on = &volume_at(resolved.host);
    }
}

} // namespace

uint32 resolve_names(path_text const & path, resolved_path & resolved) {
    resolved.on = volume_of_letter(path.root.front());
    if (resolved.on == nullptr)
        return ERROR_PATH_NOT_FOUND;
    resolved.folder = path.folder;
    narrow_string folder = resolved.on->folder;
    for (std::size_t i = 0; i + 1 < path.names.size(); ++i)
        if (!append_name(folder, path.names[i]))
            return ERROR_INVALID_NAME;
    bool const attached = any_attached();
    if (attached)
        folder = real_folder(folder);
    std::u16string_view leaf;
    std::u16string_view stream;
    bool has_stream = false;
    if (!path.names.empty()) {
        leaf = path.names.back();
        std::size_t const colon = leaf.find(u':');
        has_stream = colon != std::u16string_view::npos;
        stream = has_stream ? leaf.substr(colon + 1) : stream;
        leaf = leaf.substr(0, colon);
        if (leaf.empty() ? path.names.size() > 1 || !has_stream : !append_name(folder, leaf))
            return ERROR_INVALID_NAME;
        resolved.safe = is_safe_name(leaf);
    }
    resolved.host = folder.empty() ? "/" : folder;
    if (attached)
        resolved.on = &volume_at(resolved.host == "/" ? std::string_view() : resolved.host);
    if (has_stream) {
        follow_last_link(resolved);
        if (resolved.on->streams == nullptr || resolved.folder)
            return ERROR_INVALID_NAME;
        if (system_code const code = parse_stream_name(stream, resolved.stream))
            return code.value();
    }
    return check_not_hidden(resolved);
}

bool host_working_directory(path_text & text) {
    char folder[PATH_MAX];
    if (host::getcwd(folder, sizeof folder) == nullptr)
        return false;
    std::string_view left = folder;
    while (!left.empty()) {
        std::size_t const end = std::min(left.find('/'), left.size());
        if (end > 0)
            text.names.push_back(from_host_name(left.substr(0, end)));
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    return true;
}

uint32 resolve(std::u16string_view path, resolved_path & resolved) {
    resolved = {};
    path_text text;
    if (system_code const code = read_path(path, host_working_directory, text))
        return code.value();
    return text.is_share() ? ERROR_BAD_NETPATH : resolve_names(text, resolved);
}

uint32 resolve_target(std::u16string_view path, resolved_path & resolved) {
    if (uint32 const code = resolve(path, resolved))
        return code;
    if (any_attached())
        follow_last_link(resolved);
    return check_not_hidden(resolved);
}

uint32 code_at(narrow_string const & host, int error) {
    if (error != ENOENT && error != ELOOP)
        return code_of(error);
    std::size_t const end = host.find_last_of('/', host.find_last_not_of('/'));
    struct stat parent {};
    bool const there = end == 0 || end == narrow_string::npos
                       || (host::stat(host.substr(0, end), &parent) == 0 && S_ISDIR(parent.st_mode));
    return there ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

} // namespace platform::posix
