#include "socle/platform/host.h"

#include "socle/platform/host_names.h"
#include "socle/platform/posix/host/report.h"
#include "socle/platform/posix/paths/volumes.h"

#include <algorithm>

namespace platform {

namespace {

/// Turns the separators, and the names between them with `convert`, of a path into another form.
template <typename Text, typename Convert>
void convert_names(std::basic_string_view<typename Text::value_type> path, Text const & from_separators,
                   Convert convert) {
    while (!path.empty()) {
        std::size_t const end = std::min(path.find_first_of(from_separators), path.size());
        convert(path.substr(0, end), end < path.size());
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

uint32 reported(system_code code) {
    posix::report(code);
    return code.value();
}

} // namespace

uint32 attach_volume(char letter, narrow_string const & folder, narrow_string const & file_system) {
    return reported(posix::attach(letter, folder, file_system));
}

uint32 detach_volume(char letter) { return reported(posix::detach(letter)); }

uint32 sweep_volume(char letter) {
    posix::volume const * const on = posix::volume_of_letter(static_cast<unsigned char>(letter));
    if (on == nullptr)
        return reported(ERROR_PATH_NOT_FOUND);
    return reported(on->streams ? on->streams->sweep() : system_code());
}

wide_string from_host(narrow_string const & path) {
    wide_string text = path.starts_with('/') ? u"C:" : u"";
    convert_names<narrow_string>(path, "/", [&](std::string_view name, bool more) {
        text += from_host_name(name);
        text += more ? u"\\" : u"";
    });
    return text;
}

narrow_string to_host(wide_string const & path) {
    wide_string left = path;
    narrow_string host;
    if (left.size() >= 2 && left[1] == u':') {
        posix::volume const * const on = posix::volume_of_letter(left[0]);
        if (on == nullptr) {
            SetLastError(ERROR_PATH_NOT_FOUND);
            return {};
        }
        host = on->folder;
        left.erase(0, 2);
        if (!left.starts_with(u'\\') && !left.starts_with(u'/'))
            left.insert(0, 1, u'\\');
    } else if (left.starts_with(u"\\\\") || left.starts_with(u"//")) {
        SetLastError(ERROR_BAD_NETPATH);
        return {};
    }
    bool mapped = true;
    convert_names<wide_string>(left, u"\\/", [&](std::u16string_view name, bool more) {
        narrow_string text;
        mapped = mapped && name.find(u':') == std::u16string_view::npos && to_host_name(name, text);
        host += text;
        host += more ? "/" : "";
    });
    if (!mapped) {
        SetLastError(ERROR_INVALID_NAME);
        return {};
    }
    return host;
}

uint32 last_error() { return GetLastError(); }

} // namespace platform
