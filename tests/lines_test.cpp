#include "socle/stream/line_input.h"
#include "socle/stream/text_output.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/xml_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::fragment_source;
using support::recording_target;
using support::text;

TEST(line_input, takes_each_byte_through_a_callers_class) {
    struct counting : stream::line_input {
        using line_input::line_input;
        int _read() override { return ++reads, line_input::_read(); }
        int reads = 0;
    };
    byte_vector const data = bytes("ab\n");
    stream::vector_input memory(data);
    counting in(memory);
    EXPECT_EQ(in.read_line(), "ab");
    EXPECT_EQ(in.reads, 3);
}

TEST(line_input, reads_nothing_where_nothing_fits) {
    fragment_source source({"\nab"});
    stream::line_input in(source);
    char line[1] = {'*'};
    EXPECT_EQ(in.read_line(nullptr, 9), 0u);
    EXPECT_EQ(in.read_line(line, 0), 0u);
    EXPECT_EQ(line[0], '*');
    EXPECT_EQ(in.read_line(line, 1), 0u);
    EXPECT_EQ(line[0], '\0');
    EXPECT_TRUE(source.asked.empty());
}

TEST(text_output, turns_ends_byte_by_byte_and_leaves_texts_as_they_are) {
    struct {
        int mode;
        std::string written;
        std::size_t writes;
    } const table[] = {{0, "a\r\n", 1}, {3, "a\r\n", 3}, {-1, "a", 1}};
    for (auto const & c : table) {
        recording_target target;
        stream::text_output out(target, c.mode);
        out.write("a\r\n", 3);
        EXPECT_EQ(target.data, c.written) << c.mode;
        EXPECT_EQ(target.writes.size(), c.writes);
        out.write(narrow_string("\r\n"));
        out.write('.');
        out.reset();
        out.write(static_cast<unsigned char>('\n'));
        EXPECT_EQ(target.data, c.written + (c.mode == 0 ? "\r\n.\n" : "\r\n.")) << c.mode;
    }
}

TEST(xml_output, writes_a_document) {
    recording_target target;
    stream::xml_output xml(target, "doc", "doc.xsd", 1);
    xml.begin();
    xml.string_element("s", "<&>\n");
    xml.begin_tag("group");
    xml.indent();
    xml.integer_element("zero", 0);
    xml.integer_element("minus", -1);
    xml.bool_element("yes", true);
    xml.unindent();
    xml.end_tag("group");
    xml.open_begin_tag("e");
    xml.string_attribute("a", "v");
    xml.integer_attribute("n", 12);
    xml.bool_attribute("b", false);
    xml.close_begin_tag();
    xml.empty_element("x");
    xml.unindent();
    xml.unindent();
    EXPECT_EQ(xml.indentation(), 0);
    xml.whitespace();
    xml.tag("loose");
    xml.end();
    EXPECT_EQ(target.data, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<doc xmlns:xsi=\"http://www.w3.org/2000/10/XMLSchema-instance\" "
                           "xsi:noNamespaceSchemaLocation=\"doc.xsd\">\n"
                           "    <s><&>\n</s>\n"
                           "    <group>\n"
                           "        <zero>0</zero>\n"
                           "        <minus>18446744073709551615</minus>\n"
                           "        <yes>true</yes>\n"
                           "    </group>\n"
                           "    <e a=\"v\" n=\"12\" b=\"false\">\n"
                           "    <x/>\n"
                           "loose</doc>\n\n");
    recording_target pairs;
    stream::xml_output with_pairs(pairs, "r", "", 3);
    with_pairs.full_tag("\n");
    EXPECT_EQ(pairs.data, "<\n/>\r\n");
}

} // namespace
