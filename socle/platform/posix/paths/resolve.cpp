#include "socle/platform/posix/paths/resolve.h"

#include "socle/platform/host_names.h"
#include "socle/platform/paths.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <climits>

namespace platform {

struct held_paths::folders {
    std::shared_ptr<posix::found_folder const> last[2];
    std::size_t next = 0;
};

namespace posix {

namespace {

thread_local held_paths::folders * held = nullptr;

bool is_folder(host::at const & path) {
    struct stat status {};
    return host::stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

/// Goes on from the folder to the name that was resolved so far.
system_code go_on_from(host_text const & text, resolved_path & resolved) {
    if (host_error const error = find_folder(*text.on, text.folder, resolved.found))
        return leads_nowhere(error) ? ERROR_PATH_NOT_FOUND : code_of(error);
    bool const open = resolved.found->file.get() >= 0;
    resolved.folder = open ? resolved.found->file.get() : AT_FDCWD;
    resolved.real = resolved.found->real + '/' + resolved.name;
    resolved.on = &volume_at(resolved.real);
    resolved.name = open ? resolved.name : resolved.real;
    return {};
}

/// Where the host's path leads.
system_code place(host_text const & text, resolved_path & resolved) {
    resolved.on = text.on;
    resolved.is_folder = text.is_folder;
    resolved.safe = text.safe;
    bool const attached = any_attached();
    if (text.leaf.empty()) {
        resolved.real = text.folder;
        resolved.on = &volume_at(text.folder);
        if (text.on->top.get() < 0) {
            resolved.name = "/";
            return {};
        }
        resolved.folder = text.on->top.get();
        resolved.name = ".";
        return text.on->check_place();
    }
    if (!attached) {
        resolved.name = text.path();
        return {};
    }
    resolved.name = text.leaf;
    system_code const code = go_on_from(text, resolved);
    if (code == ERROR_PATH_NOT_FOUND && !text.safe)
        return ERROR_INVALID_NAME;
    // The place of the streams is hidden before it is there as well.
    return code && text.on->hides_path(text.path()) ? ERROR_ACCESS_DENIED : code;
}

/// Goes on to the file itself, if it is there, through a name that may be a link: the file's volume keeps the streams.
system_code go_on_to_file(resolved_path & resolved) {
    auto file = std::make_shared<found_folder>();
    if (host_error const error = open_place(resolved.at(), 0, file->file, file->real))
        return is_about_path(error) ? system_code() : code_of(error);
    resolved.folder = file->file.get();
    resolved.name.clear();
    resolved.real = file->real;
    resolved.on = &volume_at(resolved.real);
    resolved.found = std::move(file);
    return {};
}

} // namespace

host_error find_folder(volume const & on, narrow_string const & folder, std::shared_ptr<found_folder const> & found) {
    if (held != nullptr)
        for (auto const & each : held->last)
            if (each && each->spelled == folder) {
                found = each;
                return {};
            }
    host::at const path = on.at(folder);
    auto opened = std::make_shared<found_folder>();
    opened->spelled = folder;
    host_error error = open_place(path, O_DIRECTORY, opened->file, opened->real);
    if (error && !is_about_path(error)) {
        // A file is there even if the process has no descriptor left to ask where.
        error = host_error::last_if(host::realpath(path, opened->real) != 0);
        opened->file = descriptor_guard();
    }
    if (error)
        return error;
    if (opened->real == "/")
        opened->real.clear();
    if (!is_inside(opened->real, on.folder))
        error = on.place().check();
    if (error)
        return error;
    if (held != nullptr)
        held->last[held->next++ % std::size(held->last)] = opened;
    found = std::move(opened);
    return {};
}

bool is_safe_name(std::u16string_view name) {
    return std::ranges::none_of(name, [](char16_t unit) {
        return unit < 32 || unit == u'"' || unit == u'*' || unit == u'<' || unit == u'>' || unit == u'?' || unit == u'|'
               || unit == u':';
    });
}

system_code to_host_text(path_text const & path, host_text & text) {
    text.on = volume_of_letter(path.root.front());
    if (text.on == nullptr)
        return ERROR_PATH_NOT_FOUND;
    text.folder = text.on->folder;
    text.is_folder = path.folder;
    narrow_string host;
    if (path.names.empty())
        return {};
    for (std::size_t i = 0; i + 1 < path.names.size(); ++i) {
        if (!to_host_name(path.names[i], host))
            return ERROR_INVALID_NAME;
        text.folder.append("/").append(host);
    }
    std::u16string_view const last = path.names.back();
    std::size_t const colon = last.find(u':');
    text.has_stream = colon != std::u16string_view::npos;
    text.stream = text.has_stream ? last.substr(colon + 1) : std::u16string_view();
    std::u16string_view const leaf = last.substr(0, colon);
    // A volume's own folder may have streams as well.
    if (leaf.empty() ? path.names.size() > 1 : !to_host_name(leaf, host))
        return ERROR_INVALID_NAME;
    text.leaf = host;
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

system_code resolve(std::u16string_view path, resolved_path & resolved) {
    host_text text;
    if (system_code const code = to_host_text(path, text))
        return code;
    resolved = resolved_path();
    if (system_code const code = place(text, resolved))
        return code;
    if (system_code const code = text.has_stream ? to_stream(text.stream, resolved) : system_code())
        return code;
    return resolved.on->hides_path(resolved.real) ? ERROR_ACCESS_DENIED : system_code();
}

system_code to_stream(std::u16string_view stream, resolved_path & resolved) {
    if (system_code const code = any_attached() ? go_on_to_file(resolved) : system_code())
        return code;
    if (resolved.on->streams == nullptr || resolved.is_folder)
        return ERROR_INVALID_NAME;
    return parse_stream_name(stream, resolved.stream);
}

system_code code_at(resolved_path const & at, host_error error) {
    if (!leads_nowhere(error))
        return code_of(error);
    if (!at.safe) // nothing can be made under it
        return ERROR_INVALID_NAME;
    if (at.folder != AT_FDCWD)
        return ERROR_FILE_NOT_FOUND;
    return is_folder(at.at(at.beside("."))) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

} // namespace posix

held_paths::held_paths() {
    if (posix::held != nullptr || !posix::any_attached())
        return;
    own_ = std::make_unique<folders>();
    posix::held = own_.get();
}

held_paths::~held_paths() {
    if (own_)
        posix::held = nullptr;
}

bool IsParentThere(wide_string const & path) {
    posix::host_text text;
    if (path.empty() || std::u16string_view(u"\\/.").find(path.back()) != std::u16string_view::npos)
        return false;
    if (!posix::report(posix::to_host_text(path, text)))
        return false;
    std::shared_ptr<posix::found_folder const> found;
    if (posix::any_attached())
        return !posix::find_folder(*text.on, text.folder, found);
    return posix::is_folder(text.folder.empty() ? "/" : text.folder.c_str());
}

} // namespace platform
