#pragma once

#include "socle/stream/text_output.h"

namespace stream {

/// Writes the lines of an XML document at the current indentation. It keeps no stack of elements, checks nothing and
/// escapes nothing: names, values and their order are the caller's business, and have to be fit to stand in UTF-8 XML.
class SOCLE_API xml_output : public text_output {
public:
    /// `root` is the name of the root element, `schema` the schema location, `mode` the line ends (`text_output`).
    xml_output(output & stream, narrow_string const & root, narrow_string const & schema, int mode);
    xml_output(xml_output const &) = default;
    xml_output & operator=(xml_output const &) = default;
    ~xml_output() override;

    /// Writes the header and the start tag of the root, and indents. Nothing calls it by itself.
    void begin() override;
    /// Writes the end tag of the root and an empty line. It does not flush, and nothing calls it by itself.
    void end() override;

    /// The number of blanks before a line.
    int indentation() const noexcept { return indentation_; }
    /// Indents by 4 blanks more.
    void indent();
    /// Indents by 4 blanks less, but not below 0.
    void unindent();
    /// Writes the blanks of the indentation.
    void whitespace();

    /// Writes `text` alone.
    void tag(narrow_string const & text);
    /// Writes a line with the start tag, `<name>`.
    void begin_tag(narrow_string const & name);
    /// Writes the start of a line, `<name`, open for attributes.
    void open_begin_tag(narrow_string const & name);
    /// Writes the end of that line, `>`.
    void close_begin_tag();
    /// Writes a line with the end tag, `</name>`.
    void end_tag(narrow_string const & name);
    /// Writes a line with an element without content, `<name/>`.
    void full_tag(narrow_string const & name);
    /// Writes a line with an element without content, `<name/>`.
    void empty_element(narrow_string const & name);

    /// @{
    /// Writes a line with an element and its value. Integers are decimal, a negative one as its 64-bit pattern without
    /// a sign; truth values are "true" and "false".
    void string_element(narrow_string const & name, narrow_string const & value);
    void integer_element(narrow_string const & name, int64 const & value);
    void bool_element(narrow_string const & name, bool value);
    /// @}

    /// @{
    /// Writes an attribute, ` name="value"`, after `open_begin_tag`. The values are written as in an element.
    void string_attribute(narrow_string const & name, narrow_string const & value);
    void integer_attribute(narrow_string const & name, int64 const & value);
    void bool_attribute(narrow_string const & name, bool value);
    /// @}

private:
    bool _ours() const override;

    void begin_attribute(narrow_string const & name);
    void end_attribute();
    void full_begin_tag(narrow_string const & name);
    void full_end_tag(narrow_string const & name);

    int indentation_ = 0;
    narrow_string root_;
    narrow_string schema_;
};

} // namespace stream
