#include "socle/stream/xml_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using support::recording_target;

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
