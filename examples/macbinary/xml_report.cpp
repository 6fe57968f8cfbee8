#include "xml_report.h"

#include "mac_roman.h"

#include "un/digits.h"

namespace {

/// `text`, which is fit to be read, as it may stand in an element or an attribute.
narrow_string escaped(narrow_string const & text) {
    narrow_string result;
    for (char const c : text) {
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += c;
        }
    }
    return result;
}

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
    bool const bad = value < least[length - 1] || value == 0x7F || (value >= 0xD800 && value < 0xE000)
                     || value == 0xFFFE || value == 0xFFFF || value > 0x10FFFF || (lead >= 0x80 && lead < 0xC0);
    return bad ? 0 : length;
}

/// A path of the host, which may hold any bytes: what is no text is written as \\x1B, and a backslash as two.
narrow_string readable_path(narrow_string const & path) {
    narrow_string result;
    for (std::size_t at = 0; at < path.size();) {
        auto const length = character_at(path, at);
        if (path[at] == '\\')
            result += "\\\\";
        else if (length > 0)
            result.append(path, at, length);
        else
            result += "\\x" + un::to_hex(path[at]);
        at += length > 0 ? length : 1;
    }
    return result;
}

} // namespace

xml_report::xml_report() : memory_(bytes_), xml_(memory_, "macbinary", "macbinary.xsd", 1) { xml_.begin(); }

void xml_report::add(narrow_string const & path, header const & h) {
    xml_.open_begin_tag("file");
    xml_.string_attribute("path", escaped(readable_path(path)));
    xml_.close_begin_tag();
    xml_.indent();
    xml_.string_element("name", escaped(readable(h.name)));
    xml_.string_element("type", escaped(readable(h.finder.type.to_string())));
    xml_.string_element("creator", escaped(readable(h.finder.creator.to_string())));
    xml_.string_element("finder_flags", hex_16(h.finder.flags));
    xml_.open_begin_tag("location");
    // Coordinates have a sign, which the integers of a document do not.
    xml_.string_attribute("v", std::to_string(h.finder.location.v));
    xml_.string_attribute("h", std::to_string(h.finder.location.h));
    xml_.tag("/>");
    xml_.eol();
    add_date("created", h.created);
    add_date("modified", h.modified);
    xml_.integer_element("data_fork", h.data_length);
    xml_.integer_element("resource_fork", h.resource_length);
    if (h.version != 0)
        xml_.string_element("header_crc", hex_16(h.crc));
    xml_.unindent();
    xml_.end_tag("file");
}

void xml_report::add_date(narrow_string const & name, uint32 seconds) {
    xml_.open_begin_tag(name);
    xml_.integer_attribute("seconds", seconds);
    xml_.tag(">" + local_date(seconds) + "</" + name + ">");
    xml_.eol();
}

narrow_string xml_report::document() {
    xml_.end();
    return {bytes_.begin(), bytes_.end()};
}
