#include "socle/platform/posix/paths/volumes.h"

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/extended_attributes.h"

#include <algorithm>
#include <vector>

namespace platform::posix {

namespace {

/// `C:` first, and never empty.
std::vector<std::shared_ptr<volume const>> & table() {
    static std::vector<std::shared_ptr<volume const>> volumes(1, std::make_shared<volume>('C'));
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

system_code volume::check_place() const {
    host_error const error = place().check();
    return error == ENOENT ? ERROR_PATH_NOT_FOUND : code_of(error);
}

system_code attach(char letter, narrow_string const & folder, narrow_string const & file_system) {
    char const capital = letter_of(static_cast<unsigned char>(letter));
    if (capital == '\0')
        return ERROR_INVALID_PARAMETER;
    if (volume_of_letter(static_cast<unsigned char>(letter)) != nullptr)
        return ERROR_ALREADY_EXISTS;
    auto const added = std::make_shared<volume>(capital);
    if (folder.find('\0') != narrow_string::npos)
        return ERROR_PATH_NOT_FOUND;
    descriptor_guard opened;
    if (host_error const error = open_place(folder, O_DIRECTORY, opened, added->folder))
        return is_about_path(error) ? ERROR_PATH_NOT_FOUND : code_of(error);
    if (added->folder == "/")
        added->folder.clear();
    // The standard streams keep their numbers.
    added->top = descriptor_guard(host::duplicate(opened.get(), STDERR_FILENO + 1));
    if (added->top.get() < 0)
        return last_code();
    added->file_system = file_system;
    if (file_system == "NTFS") {
        if (system_code const code = make_named_streams(added->place(), added->streams))
            return code;
        narrow_string value;
        added->ntfs_disk = !get_attribute(host::at(added->top.get()), ntfs_bits_attribute, value);
    }
    table().push_back(added);
    return {};
}

system_code detach(char letter) {
    char const capital = letter_of(static_cast<unsigned char>(letter));
    bool const found = std::erase_if(table(), [&](auto const & v) { return v->letter == capital && v->letter != 'C'; });
    return found ? system_code() : ERROR_PATH_NOT_FOUND;
}

volume const * volume_of_letter(char16_t letter) {
    char const capital = letter_of(letter);
    for (auto const & v : table())
        if (v->letter == capital)
            return v.get();
    return nullptr;
}

volume const & volume_at(std::string_view host) {
    volume const * found = table().front().get();
    for (auto const & v : table())
        // Of two at the same folder the one attached last, so that the host's root can be attached as well.
        if (is_inside(host, v->folder) && v->folder.size() >= found->folder.size())
            found = v.get();
    return *found;
}

bool any_attached() { return table().size() > 1; }

bool any_below(std::string_view host) {
    return std::any_of(table().begin(), table().end(),
                       [&](auto const & v) { return v->folder != host && is_inside(v->folder, host); });
}

} // namespace platform::posix
