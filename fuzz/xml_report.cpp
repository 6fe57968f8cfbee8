/// What the example makes of a MacBinary header: its fields, and its place in an XML report.

#include "examples/macbinary/xml_report.h"

#include "examples/common/host_text.h"
#include "examples/common/mac_roman.h"
#include "fuzz/support/feed.h"
#include "socle/io/exception.h"
#include "socle/nio/encoding.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"

namespace {

using fuzz::check;

/// Whether it is UTF-8 without control characters, of which a terminal would obey also those from U+0080 on.
bool is_readable(narrow_string const & text) {
    wide_string const units = nio::decode(text, nio::encodings::utf8);
    return (text.empty() || !units.empty())
           && std::none_of(units.begin(), units.end(), [](char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); });
}

/// Whether tags are balanced, attributes are quoted, and references are among those that XML knows.
bool well_formed(std::string_view text) {
    std::vector<std::string_view> open;
    while (!text.empty()) {
        auto const c = text[0];
        if (c == '&') {
            bool known = false;
            for (std::string_view const reference : {"&amp;", "&lt;", "&gt;", "&quot;"})
                known = known || text.starts_with(reference);
            if (!known)
                return false;
        }
        if (c != '<') {
            text.remove_prefix(1);
            continue;
        }
        bool quoted = false;
        std::size_t end = 1;
        for (; end < text.size() && (quoted || text[end] != '>'); ++end) {
            quoted = quoted != (text[end] == '"');
            if (text[end] == '<')
                return false;
        }
        if (end == text.size())
            return false;
        auto const tag = text.substr(1, end - 1);
        text.remove_prefix(end + 1);
        if (tag[0] == '?' || tag.back() == '/')
            continue;
        if (tag[0] != '/')
            open.push_back(tag.substr(0, tag.find(' ')));
        else if (open.empty() || open.back() != tag.substr(1))
            return false;
        else
            open.pop_back();
    }
    return open.empty();
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const path = in.text();
    check(is_readable(readable_path(path)) && is_readable(readable(path)));
    byte_vector const bytes = vector_of(in.rest());

    xml_report report;
    for (uint32 at = 0; at < bytes.size(); at += header::size) {
        byte_vector const part(bytes.begin() + at,
                               bytes.begin()
                                   + std::min<std::ptrdiff_t>(at + header::size, std::ptrdiff_t(bytes.size())));
        stream::vector_input source(part), again(part);
        header found;
        try {
            found = header_of(source, path);
        } catch (io::exception const & e) {
            check(e.origin() == path);
            // Damage aside, whatever the fields are, they can be shown.
            try {
                found.read(again);
            } catch (io::exception const &) {
                continue;
            }
            report.add(path, found);
            continue;
        }
        check(found.plausible() && found.end() >= header::size);
        report.add(path, found);

        // Written, it reads as the same.
        byte_vector written;
        stream::vector_output out(written);
        found.write(out);
        stream::vector_input back(written);
        header const same = header_of(back, path);
        check(same.name == found.name && same.finder.flags == found.finder.flags && same.created == found.created);
        check(same.data_length == found.data_length && same.resource_length == found.resource_length);
        check(same.finder.type.value == found.finder.type.value && same.finder.location.v == found.finder.location.v);
    }
    narrow_string const document = report.document();
    check(well_formed(document));
    narrow_string line = document;
    std::erase(line, '\n');
    check(is_readable(line));
}
