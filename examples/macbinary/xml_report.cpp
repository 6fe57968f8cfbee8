#include "xml_report.h"

#include "host_text.h"
#include "mac_roman.h"

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
