#include "socle/platform/path_text.h"

#include <algorithm>

namespace platform {

namespace {

bool is_separator(char16_t unit) { return unit == u'\\' || unit == u'/'; }

bool has_drive(std::u16string_view path) {
    return path.size() >= 2 && path[1] == u':'
           && ((path[0] >= u'A' && path[0] <= u'Z') || (path[0] >= u'a' && path[0] <= u'z'));
}

/// What stands in front of the next separator; it and the separator are taken from `path`.
std::u16string_view take_name(std::u16string_view & path) {
    auto const end = static_cast<std::size_t>(std::ranges::find_if(path, is_separator) - path.begin());
    std::u16string_view const name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return name;
}

void add_names(std::u16string_view path, path_text & text) {
    bool const folder = !path.empty() && is_separator(path.back());
    text.names.reserve(text.names.size() + 1 + static_cast<std::size_t>(std::ranges::count_if(path, is_separator)));
    while (!path.empty()) {
        std::u16string_view const name = take_name(path);
        if (name == u"..") {
            if (!text.names.empty())
                text.names.pop_back();
        } else if (!name.empty() && name != u".") {
            text.names.emplace_back(name);
        }
    }
    if (!text.names.empty())
        text.folder = folder;
}

} // namespace

wide_string path_text::text() const {
    wide_string text = root;
    for (wide_string const & name : names)
        (text += u'\\') += name;
    return folder || (names.empty() && !is_share()) ? text + u'\\' : text;
}

system_code read_path(std::u16string_view path, working_directory * start, path_text & text) {
    if (path.empty())
        return ERROR_PATH_NOT_FOUND;
    if (path.find(u'\0') != std::u16string_view::npos)
        return ERROR_INVALID_NAME;
    text = {u"C:", {}, false};
    if (path.size() >= 2 && is_separator(path[0]) && is_separator(path[1])) {
        path.remove_prefix(2);
        text.root = u"\\\\";
        text.folder = !path.empty() && is_separator(path.back());
        text.root += take_name(path);
        if (!path.empty())
            (text.root += u'\\') += take_name(path);
        text.folder = text.folder || !path.empty();
    } else if (has_drive(path)) {
        text.root = path.substr(0, 2);
        path.remove_prefix(2);
    } else if (!is_separator(path.front()) && !start(text)) {
        return ERROR_PATH_NOT_FOUND;
    }
    add_names(path, text);
    return {};
}

} // namespace platform
