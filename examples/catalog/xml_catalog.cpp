#include "xml_catalog.h"

#include "checksum.h"

#include "common/host_text.h"
#include "common/mac_roman.h"
#include "common/xml_text.h"

#include <socle/nio/path.h>
#include <socle/platform/host.h>
#include <socle/un/digits.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

narrow_string hex(uint64 value, int width) { return "0x" + un::write(value, 16, width); }

/// GMT, as `1989-05-19T09:02:00Z`.
narrow_string date_text(nio::time const & time) {
    using namespace std::chrono;
    sys_seconds const when = sys_days(January / 1 / 1601) + seconds(time.file_time() / 10'000'000);
    auto const day = floor<days>(when);
    year_month_day const date(day);
    hh_mm_ss const clock(when - day);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()), unsigned(date.month()),
                  unsigned(date.day()), int(clock.hours().count()), int(clock.minutes().count()),
                  int(clock.seconds().count()));
    return text;
}

narrow_string name_text(wide_string const & leaf) { return xml_text(readable_path(platform::to_host(leaf))); }

/// Where a fork lies, by the name of the file or stream.
narrow_string place_text(wide_string const & path) {
    wide_string const leaf = nio::leaf(path, u'\\');
    auto const colon = std::min(leaf.find(u':'), leaf.size());
    wide_string const stream = leaf.substr(colon);
    return name_text(leaf.substr(0, colon)) + narrow_string(stream.begin(), stream.end());
}

} // namespace

xml_catalog::xml_catalog(stream::output & target, bool checksums)
    : xml_(target, "catalog", "catalog.xsd", 1), checksums_(checksums) {}

void xml_catalog::begin(narrow_string const & root) {
    xml_.begin();
    xml_.open_begin_tag("folder");
    xml_.string_attribute("path", xml_text(readable_path(root)));
    xml_.close_begin_tag();
    xml_.indent();
}

void xml_catalog::end() {
    end_folder();
    xml_.end();
}

void xml_catalog::begin_folder(file_record const & folder, wide_string const & as) {
    open("folder", nio::leaf(folder.path, u'\\'), as);
    if (folder.has_finder())
        xml_.string_element("finder_info", un::hex(byte_vector(folder.finder.begin(), folder.finder.end())));
    date("created", folder.created);
    date("modified", folder.modified);
    attributes(folder.bits);
    if (folder.has_finder())
        fork("information", folder.information);
    doubts(folder);
}

void xml_catalog::end_folder() {
    xml_.unindent();
    xml_.end_tag("folder");
}

void xml_catalog::file(file_record const & file, wide_string const & as) {
    open("file", nio::leaf(file.path, u'\\'), as);
    if (file.has_finder())
        finder(file);
    date("created", file.created);
    date("modified", file.modified);
    attributes(file.bits);
    fork("data", file.data);
    fork("resource", file.resource);
    if (file.has_finder())
        fork("information", file.information);
    doubts(file);
    xml_.unindent();
    xml_.end_tag("file");
}

void xml_catalog::other(wide_string const & leaf, bool link) {
    xml_.open_begin_tag(link ? "link" : "other");
    xml_.string_attribute("name", name_text(leaf));
    xml_.tag("/>");
    xml_.eol();
}

void xml_catalog::open(narrow_string const & tag, wide_string const & leaf, wide_string const & as) {
    xml_.open_begin_tag(tag);
    xml_.string_attribute("name", name_text(leaf));
    if (!as.empty() && as != leaf)
        xml_.string_attribute("as", name_text(as));
    xml_.close_begin_tag();
    xml_.indent();
}

void xml_catalog::finder(file_record const & record) {
    auto const info = record.file_info();
    xml_.string_element("type", xml_text(readable(info.type.to_string())));
    xml_.string_element("creator", xml_text(readable(info.creator.to_string())));
    xml_.string_element("finder_flags", hex(info.flags, 4));
    xml_.string_element("finder_info", un::hex(byte_vector(record.finder.begin(), record.finder.end())));
}

void xml_catalog::date(narrow_string const & name, nio::time const & time) {
    xml_.string_element(name, date_text(time));
}

void xml_catalog::attributes(uint32 bits) {
    xml_.open_begin_tag("attributes");
    xml_.bool_attribute("read_only", (bits & 1) != 0);
    xml_.bool_attribute("hidden", (bits & 2) != 0);
    xml_.bool_attribute("system", (bits & 4) != 0);
    xml_.tag("/>");
    xml_.eol();
}

void xml_catalog::fork(narrow_string const & name, extent const & bytes) {
    xml_.open_begin_tag(name);
    xml_.integer_attribute("size", static_cast<int64>(bytes.size));
    if (checksums_ && bytes.size > 0)
        xml_.string_attribute("crc32", hex(checksum(bytes), 8));
    if (name != "data" && !bytes.path.empty())
        xml_.string_attribute("in", place_text(bytes.path));
    xml_.tag("/>");
    xml_.eol();
}

void xml_catalog::doubts(file_record const & record) {
    for (auto const & doubt : record.doubts)
        xml_.string_element("note", xml_text(doubt));
}
