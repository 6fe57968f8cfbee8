#include "socle/platform/posix/paths/volumes.h"

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"

#include <algorithm>
#include <vector>

namespace platform::posix {

namespace {

/// `C:` first, and never empty.
std::vector<volume> & table() {
    static std::vector<volume> volumes = [] {
        std::vector<volume> start;
        start.push_back({'C', {}, {}, descriptor_guard(), nullptr, false});
        return start;
    }();
    return volumes;
}

/// In capitals; 0 for what is no letter.
char letter_of(char16_t unit) {
    if (unit >= u'a' && unit <= u'z')
        return static_cast<char>(unit - u'a' + u'A');
    return unit >= u'A' && unit <= u'Z' ? static_cast<char>(unit) : '\0';
}

} // namespace

bool is_inside(std::string_view host, std::string_view folder) {
    return host.starts_with(folder) && (host.size() == folder.size() || host[folder.size()] == '/');
}

host::at volume::at(narrow_string const & path) const {
    if (top.get() < 0)
        return path.empty() ? host::at("/") : host::at(path);
    return {top.get(), path.size() > folder.size() ? path.c_str() + folder.size() + 1 : "."};
}

system_code attach(char letter, narrow_string const & folder, narrow_string const & file_system) {
    char const capital = letter_of(static_cast<unsigned char>(letter));
    if (capital == '\0')
        return ERROR_INVALID_PARAMETER;
    if (volume_of_letter(static_cast<unsigned char>(letter)) != nullptr)
        return ERROR_ALREADY_EXISTS;
    narrow_string top;
    descriptor_guard const opened =
        folder.find('\0') == narrow_string::npos ? open_descriptor(folder, O_PATH | O_DIRECTORY) : descriptor_guard();
    if (opened.get() < 0 || path_of(opened.get(), top))
        return ERROR_PATH_NOT_FOUND;
    // The standard streams keep their numbers.
    descriptor_guard held(host::duplicate(opened.get(), STDERR_FILENO + 1));
    if (held.get() < 0)
        return last_code();
    volume added{capital, top == "/" ? narrow_string() : top, file_system, std::move(held), nullptr, false};
    if (file_system == "NTFS") {
        if (system_code const code = make_named_streams(added.place(), added.streams))
            return code;
        narrow_string value;
        added.ntfs_disk = !get_attribute(host::at(added.top.get()), ntfs_bits_attribute, true, value);
    }
    table().push_back(std::move(added));
    return {};
}

system_code detach(char letter) {
    char const capital = letter_of(static_cast<unsigned char>(letter));
    bool const found = std::erase_if(table(), [&](volume const & v) { return v.letter == capital && v.letter != 'C'; });
    return found ? system_code() : ERROR_PATH_NOT_FOUND;
}

volume const * volume_of_letter(char16_t letter) {
    char const capital = letter_of(letter);
    for (volume const & v : table())
        if (v.letter == capital)
            return &v;
    return nullptr;
}

volume const & volume_at(std::string_view host) {
    volume const * found = &table().front();
    for (volume const & v : table())
        // Of two at the same folder the one attached last, so that the host's root can be attached as well.
        if (is_inside(host, v.folder) && v.folder.size() >= found->folder.size())
            found = &v;
    return *found;
}

bool any_attached() { return table().size() > 1; }

bool any_below(std::string_view host) {
    return std::any_of(table().begin(), table().end(),
                       [&](volume const & v) { return v.folder.size() > host.size() && is_inside(v.folder, host); });
}

} // namespace platform::posix
