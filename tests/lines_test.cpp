#include "socle/basic/byte_blocks_internal.h"
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

TEST(line_input, finds_the_end_in_windows_of_every_size) {
    for (std::size_t size = 0; size <= 100; ++size)
        for (std::size_t end = 0; end <= size; ++end) {
            std::vector<char> window(size, '\x0B'); // of its own, so that no byte lies behind it
            if (end < size)
                window[end] = end % 2 == 0 ? '\r' : '\n';
            EXPECT_EQ(basic::find_either(window.data(), size, '\r', '\n'), end) << size;
        }
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

TEST(text_output, turns_line_ends) {
    struct {
        int mode;
        char const * data;
        char const * written;
    } const table[] = {
        {0, "a\r\nb\n\r", "a\r\nb\n\r"}, {1, "a\rb\nc\r\r\n\n", "a\nb\nc\n\n\n"},
        {2, "\r\n\n", "\r\r"},           {3, "\n", "\r\n"},
        {4, "a\r\nb\nc", "abc"},         {-1, "a\rb", "ab"},
    };
    for (auto const & c : table) {
        recording_target singles, block;
        stream::text_output by_bytes(singles, c.mode), by_block(block, c.mode);
        for (char const * byte = c.data; *byte; ++byte)
            by_bytes.write(*byte);
        by_block.write(c.data, static_cast<uint32>(std::strlen(c.data)));
        EXPECT_EQ(singles.data, c.written) << c.mode;
        EXPECT_EQ(block.data, c.written) << c.mode;
        EXPECT_EQ(block.writes.size() == 1, c.mode == 0 || std::strlen(c.written) == 1);
        by_bytes.write(narrow_string("\r\n"));
        by_bytes.write('.');
        by_bytes.reset();
        by_bytes.write(static_cast<unsigned char>('\n'));
        EXPECT_EQ(singles.data, c.written + std::string(c.mode == 0 ? "\r\n.\n" : "\r\n.")) << c.mode;
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
