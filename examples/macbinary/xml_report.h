#pragma once

#include "header.h"

#include <socle/stream/vector_output.h>
#include <socle/stream/xml_output.h>

/// The headers of some files as an XML document.
class xml_report {
public:
    xml_report();

    void add(narrow_string const & path, header const & h);

    /// Ends the document, and gives the whole of it in UTF-8.
    narrow_string document();

private:
    void add_date(narrow_string const & name, uint32 seconds);

    byte_vector bytes_;
    stream::vector_output memory_;
    stream::xml_output xml_;
};
