#include "socle/platform/posix/paths/resolve.h"

#include "socle/platform/host_names.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <climits>

namespace platform::posix {

namespace {

/// Whether an error says something of the path, and not of what the process has left.
bool is_about_path(host_error error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == EACCES || error == ENAMETOOLONG;
}

/// Opens the folder and asks it where it lies: the volume may be another than the text tells, if there are links in it.
system_code open_folder(narrow_string const & folder, resolved_path const * neighbour, resolved_path & resolved) {
    narrow_string real;
    narrow_string const leaf = resolved.name;
    if (neighbour != nullptr && neighbour->folder != AT_FDCWD && neighbour->spelled == folder) {
        resolved.folder = neighbour->folder;
        real = neighbour->real.substr(0, neighbour->real.rfind('/'));
    } else {
        narrow_string const path = folder.empty() ? "/" : folder;
        resolved.own_folder = open_descriptor(path, O_PATH | O_DIRECTORY);
        resolved.folder = resolved.own_folder.get();
        host_error error = resolved.folder < 0 ? host_error::last() : path_of(resolved.folder, real);
        if (error && !is_about_path(error)) {
            // A file is there even if the process has no descriptor left to ask where.
            error = host_error::last_if(host::realpath(path, real) != 0);
            resolved.folder = AT_FDCWD;
            resolved.own_folder = descriptor_guard();
        }
        if (error)
            return error == ENOENT || error == ELOOP ? ERROR_PATH_NOT_FOUND : code_of(error);
    }
    resolved.spelled = folder;
    resolved.real = (real == "/" ? narrow_string() : real).append("/").append(leaf);
    resolved.on = &volume_at(resolved.real);
    resolved.name = resolved.folder == AT_FDCWD ? resolved.real : leaf;
    return {};
}

/// Where the host's path leads.
system_code place(host_text const & text, resolved_path const * neighbour, resolved_path & resolved) {
    resolved.on = text.on;
    resolved.is_folder = text.is_folder;
    resolved.safe = text.safe;
    bool const attached = any_attached();
    if (text.leaf.empty()) {
        resolved.name = text.folder.empty() ? "/" : text.folder;
        resolved.real = attached ? text.folder : narrow_string();
        resolved.on = &volume_at(text.folder);
        return {};
    }
    if (!attached) {
        resolved.name = text.folder + '/' + text.leaf;
        return {};
    }
    resolved.name = text.leaf;
    system_code const code = open_folder(text.folder, neighbour, resolved);
    // The place of the streams is hidden before it is there as well.
    return code && text.on->hides_path(text.folder + '/' + text.leaf) ? ERROR_ACCESS_DENIED : code;
}

/// The file behind a name that is a link: its volume keeps the streams.
system_code follow_link(resolved_path & resolved) {
    char target;
    narrow_string real;
    if (host::readlink(resolved.at(), &target, 1) < 0 || real_path(resolved.at(), real))
        return {};
    std::size_t const leaf = real.rfind('/') + 1;
    resolved.name = real.substr(leaf);
    return open_folder(real.substr(0, leaf - 1), nullptr, resolved);
}

} // namespace

bool is_safe_name(std::u16string_view name) {
    for (char16_t unit : name)
        if (unit < 32 || std::u16string_view(u"\"*<>?|:").find(unit) != std::u16string_view::npos)
            return false;
    return true;
}

system_code to_host_text(path_text const & path, host_text & text) {
    text.on = volume_of_letter(path.root.front());
    if (text.on == nullptr)
        return ERROR_PATH_NOT_FOUND;
    text.folder = text.on->folder;
    text.is_folder = path.folder;
    narrow_string host;
    auto const convert = [&](std::u16string_view name) {
        return name.find_first_of(u"\\:") == std::u16string_view::npos && to_host_name(name, host);
    };
    if (path.names.empty())
        return {};
    for (std::size_t i = 0; i + 1 < path.names.size(); ++i) {
        if (!convert(path.names[i]))
            return ERROR_INVALID_NAME;
        text.folder.append("/").append(host);
    }
    std::u16string_view const last = path.names.back();
    std::size_t const colon = last.find(u':');
    text.has_stream = colon != std::u16string_view::npos;
    text.stream = text.has_stream ? last.substr(colon + 1) : std::u16string_view();
    std::u16string_view const leaf = last.substr(0, colon);
    // A volume's own folder may have streams as well.
    if (leaf.empty() ? path.names.size() > 1 || !text.has_stream : !convert(leaf))
        return ERROR_INVALID_NAME;
    text.leaf = leaf.empty() ? narrow_string() : host;
    text.safe = is_safe_name(leaf);
    return {};
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

system_code to_host_text(std::u16string_view path, host_text & text) {
    path_text names;
    if (system_code const code = read_path(path, host_working_directory, names))
        return code;
    return names.is_share() ? ERROR_BAD_NETPATH : to_host_text(names, text);
}

system_code resolve(std::u16string_view path, resolved_path & resolved, resolved_path const * neighbour) {
    host_text text;
    if (system_code const code = to_host_text(path, text))
        return code;
    resolved = resolved_path();
    if (system_code const code = place(text, neighbour, resolved))
        return code;
    if (text.has_stream) {
        if (system_code const code = any_attached() ? follow_link(resolved) : system_code())
            return code;
        if (resolved.on->streams == nullptr || resolved.is_folder)
            return ERROR_INVALID_NAME;
        if (system_code const code = parse_stream_name(text.stream, resolved.stream))
            return code;
    }
    return resolved.on->hides_path(resolved.real) ? ERROR_ACCESS_DENIED : system_code();
}

system_code code_at(resolved_path const & at, host_error error) {
    if (error != ENOENT && error != ELOOP)
        return code_of(error);
    if (at.folder != AT_FDCWD || at.name == "/")
        return ERROR_FILE_NOT_FOUND;
    narrow_string const parent = at.beside(".");
    struct stat status {};
    bool const there = host::stat(at.at(parent), &status) == 0 && S_ISDIR(status.st_mode);
    return there ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

} // namespace platform::posix
