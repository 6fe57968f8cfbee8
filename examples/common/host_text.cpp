#include "host_text.h"

#include "host.h"

#include <socle/un/digits.h>

namespace {

/// How many bytes of UTF-8 stand at `at`: one character that XML allows, or 0.
std::size_t character_at(narrow_string const & text, std::size_t at) {
    auto const byte = [&](std::size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
    };
    unsigned const lead = byte(0);
    std::size_t const length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    uint32 value = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        value = value << 6 | (byte(i) & 0x3F);
    }
    static constexpr uint32 least[] = {0x20, 0x80, 0x800, 0x10000};
    bool const bad = value < least[length - 1] || (value >= 0x7F && value < 0xA0) || (value >= 0xD800 && value < 0xE000)
                     || value == 0xFFFE || value == 0xFFFF || value > 0x10FFFF || (lead >= 0x80 && lead < 0xC0)
                     || lead >= 0xF8;
    return bad ? 0 : length;
}

} // namespace

narrow_string readable_path(narrow_string const & path) {
    narrow_string result;
    for (std::size_t at = 0; at < path.size();) {
        auto const length = character_at(path, at);
        if (path[at] == '\\')
            result += host::backslash_separates() ? "/" : "\\\\";
        else if (length > 0)
            result.append(path, at, length);
        else
            result += "\\x" + un::to_hex(path[at]);
        at += length > 0 ? length : 1;
    }
    return result;
}
