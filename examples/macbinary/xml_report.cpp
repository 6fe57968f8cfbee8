#include "xml_report.h"

#include "common/host_text.h"
#include "common/mac_roman.h"
#include "common/xml_text.h"

xml_report::xml_report() : memory_(bytes_), xml_(memory_, "macbinary", "macbinary.xsd", 1) { xml_.begin(); }

void xml_report::add(narrow_string const & path, header const & h) {
    xml_.open_begin_tag("file");
    xml_.string_attribute("path", xml_text(readable_path(path)));
    xml_.close_begin_tag();
    xml_.indent();
    xml_.string_element("name", xml_text(readable(h.name)));
    xml_.string_element("type", xml_text(readable(h.finder.type.to_string())));
    xml_.string_element("creator", xml_text(readable(h.finder.creator.to_string())));
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
