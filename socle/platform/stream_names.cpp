#include "socle/platform/stream_names.h"

#include <cstddef>

namespace platform {

namespace {

constexpr std::size_t longest_stream_name = 255;
/// Below the 255 bytes of a host name, with room for the '~'. Some hosts allow less (encrypted folders: 143).
constexpr std::size_t longest_component = 120;
constexpr std::string_view hex_digits = "0123456789abcdef";

bool stays(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') || unit == u'_'; }

bool is_data_type(std::u16string_view type) {
    constexpr std::u16string_view data = u"$DATA";
    if (type.size() != data.size())
        return false;
    for (std::size_t i = 0; i < data.size(); ++i) {
        bool const small = type[i] >= u'a' && type[i] <= u'z';
        if ((small ? type[i] - u'a' + u'A' : type[i]) != data[i])
            return false;
    }
    return true;
}

} // namespace

system_code parse_stream_name(std::u16string_view text, wide_string & name) {
    std::size_t const colon = text.find(u':');
    std::u16string_view const stream = text.substr(0, colon);
    bool const typed = colon != std::u16string_view::npos;
    bool const known_type = !typed || is_data_type(text.substr(colon + 1));
    if (!known_type || (stream.empty() && !typed) || stream.size() > longest_stream_name
        || stream.find_first_of(std::u16string_view(u"\\/\0", 3)) != std::u16string_view::npos)
        return ERROR_INVALID_NAME;
    name = stream;
    return {};
}

narrow_string stored_stream_name(std::u16string_view name) {
    narrow_string path;
    std::size_t room = longest_component;
    for (char16_t unit : name) {
        std::size_t const needed = stays(unit) ? 1 : 5;
        if (needed > room) {
            path += "~/";
            room = longest_component;
        }
        room -= needed;
        if (stays(unit)) {
            path += static_cast<char>(unit);
            continue;
        }
        path += '+';
        for (int shift = 12; shift >= 0; shift -= 4)
            path += hex_digits[static_cast<std::size_t>(unit >> shift & 0xF)];
    }
    return path;
}

bool stream_name_of(std::string_view stored, wide_string & name) {
    name.clear();
    for (std::size_t at = 0; at < stored.size(); ++at) {
        if (stored[at] != '+') {
            name += static_cast<unsigned char>(stored[at]);
            if (!stays(name.back()))
                return false;
            continue;
        }
        if (stored.size() - at < 5)
            return false;
        unsigned unit = 0;
        for (int i = 0; i < 4; ++i) {
            std::size_t const digit = hex_digits.find(stored[++at]);
            if (digit == std::string_view::npos)
                return false;
            unit = unit << 4 | static_cast<unsigned>(digit);
        }
        name += static_cast<char16_t>(unit);
        if (stays(name.back()))
            return false;
    }
    return !name.empty() && name.size() <= longest_stream_name;
}

} // namespace platform
