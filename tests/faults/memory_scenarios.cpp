#include "tests/faults/frame.h"

#include "socle/any/converter.h"
#include "socle/any/name.h"
#include "socle/any/path.h"
#include "socle/command/line.h"
#include "socle/command/option.h"
#include "socle/nio/utf8.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/line_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "socle/stream/xml_output.h"
#include "socle/un/tokenizer.h"

// What needs memory and no files.

namespace faults {

namespace {

wide_string repeated(char16_t const * text) {
    wide_string all;
    for (int i = 0; i < 3000; ++i)
        all += text;
    return all;
}

bool convert_text(place const &, report &) {
    any::converter const converter(932, 65001);
    for (wide_string const & text : {wide_string(20, u'猫'), repeated(u"吾輩は cat")}) {
        narrow_string bytes;
        wide_string back;
        nio::_utf8_encode(text, bytes);
        nio::_utf8_decode(bytes, back, true);
        check(back == text, "UTF-8 does not come back");
        check(converter.to_unicode(converter.from_unicode(text, true), true) == text, "a page does not come back");
    }
    return true;
}

bool cut_names(place const &, report &) {
    any::path path(any::string(u"C:\\a folder of some length\\another one\\file.txt"), true);
    path.add_leaf(any::string(repeated(u"é")));
    any::path const parent = path.parent();
    check(parent.size() == 4 && path.full_string().ends_with(u"é"), "a path is cut elsewhere");
    any::name name;
    name.set_ucs2(path.full_string());
    for (auto at = name.fragment_begin(); at != name.fragment_end(); ++at)
        check(!at->empty(), "a fragment is empty");
    return name.get_utf8().size() > 6000;
}

bool read_command_line(place const &, report &) {
    char const * const words[] = {"program", "--text=a value that does not fit into the string itself", "file"};
    command::line line(3, words);
    command::option<narrow_string> text(line, "--text|-t", "", "words");
    line.digest();
    return line.size() == 1 && text().size() > 30;
}

bool pass_bytes(place const &, report &) {
    byte_vector bytes;
    stream::vector_output memory(bytes);
    stream::buffered_output out(memory, 512);
    stream::xml_output xml(out, "root", "", 1);
    xml.begin();
    for (int i = 0; i < 20; ++i)
        xml.string_element("name", "a value & more that has to be escaped");
    xml.end();
    out.flush();
    stream::vector_input in(bytes);
    stream::buffered_input buffered(in, 64);
    stream::line_input lines(buffered);
    byte_vector again;
    uint64 read = 0;
    for (narrow_string line = lines.read_line(); !line.empty(); line = lines.read_line()) {
        lines.unread(line.data(), static_cast<uint32>(line.size()));
        read += lines.read_line(again) + lines.skip(1);
        lines.unread('\n');
        lines.read();
    }
    return read > 0 && un::tokenizer(narrow_string(5000, ','), ",").size() > 0;
}

scenario const table[] = {
    {"text_is_converted", promise::whole, [](place const &) {}, convert_text},
    {"names_are_cut", promise::whole, [](place const &) {}, cut_names},
    {"a_command_line_is_read", promise::whole, [](place const &) {}, read_command_line},
    {"bytes_pass_through_streams", promise::whole, [](place const &) {}, pass_bytes},
};

} // namespace

std::span<scenario const> memory_scenarios() { return table; }

} // namespace faults
