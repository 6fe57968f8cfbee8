#include "socle/stream/xml_output.h"

#include "socle/un/digits.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

namespace {

int const step = 4;

narrow_string text_of(int64 value) { return un::write(static_cast<uint64>(value), 10, 1); }

narrow_string text_of(bool value) { return value ? "true" : "false"; }

} // namespace

xml_output::xml_output(output & stream, narrow_string const & root, narrow_string const & schema, int mode)
    : text_output(stream, mode), root_(root), schema_(schema) {}

xml_output::~xml_output() = default;

void xml_output::begin() {
    write(narrow_string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    eol();
    write('<');
    write(root_);
    write(' ');
    write(narrow_string("xmlns:xsi=\""));
    write(narrow_string("http://www.w3.org/2000/10/XMLSchema-instance"));
    write(narrow_string("\" xsi:noNamespaceSchemaLocation=\""));
    write(schema_);
    write('"');
    write('>');
    eol();
    indent();
}

void xml_output::end() {
    full_end_tag(root_);
    eol();
    eol();
}

void xml_output::indent() { indentation_ += step; }

void xml_output::unindent() { indentation_ = std::max(indentation_ - step, 0); }

void xml_output::whitespace() { fill(static_cast<uint64>(indentation_), ' '); }

void xml_output::tag(narrow_string const & text) { write(text); }

void xml_output::begin_tag(narrow_string const & name) {
    whitespace();
    full_begin_tag(name);
    eol();
}

void xml_output::open_begin_tag(narrow_string const & name) {
    whitespace();
    write('<');
    write(name);
}

void xml_output::close_begin_tag() {
    write('>');
    eol();
}

void xml_output::end_tag(narrow_string const & name) {
    whitespace();
    full_end_tag(name);
    eol();
}

void xml_output::full_tag(narrow_string const & name) {
    open_begin_tag(name);
    write(narrow_string("/>"));
    eol();
}

void xml_output::empty_element(narrow_string const & name) { full_tag(name); }

void xml_output::string_element(narrow_string const & name, narrow_string const & value) {
    whitespace();
    full_begin_tag(name);
    write(value);
    full_end_tag(name);
    eol();
}

void xml_output::integer_element(narrow_string const & name, int64 const & value) {
    string_element(name, text_of(value));
}

void xml_output::bool_element(narrow_string const & name, bool value) { string_element(name, text_of(value)); }

void xml_output::string_attribute(narrow_string const & name, narrow_string const & value) {
    begin_attribute(name);
    write(value);
    end_attribute();
}

void xml_output::integer_attribute(narrow_string const & name, int64 const & value) {
    string_attribute(name, text_of(value));
}

void xml_output::bool_attribute(narrow_string const & name, bool value) { string_attribute(name, text_of(value)); }

bool xml_output::_ours() const { return typeid(*this) == typeid(xml_output); }

void xml_output::begin_attribute(narrow_string const & name) {
    write(' ');
    write(name);
    write('=');
    write('"');
}

void xml_output::end_attribute() { write('"'); }

void xml_output::full_begin_tag(narrow_string const & name) {
    write('<');
    write(name);
    write('>');
}

void xml_output::full_end_tag(narrow_string const & name) {
    write(narrow_string("</"));
    write(name);
    write('>');
}

} // namespace stream
