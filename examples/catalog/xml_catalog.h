#pragma once

#include "file_record.h"

#include <socle/stream/xml_output.h>

/// The catalogue as an XML document, written as it grows.
class xml_catalog {
public:
    /// With `checksums` every fork is read for its CRC-32.
    xml_catalog(stream::output & target, bool checksums);

    /// `root` is the host's path of the folder that is walked.
    void begin(narrow_string const & root);
    void end();

    /// `as` is the name that the entry is carried under; empty, or the same as its own, if there is nothing to say.
    void begin_folder(file_record const & folder, wide_string const & as);
    void end_folder();
    void file(file_record const & file, wide_string const & as);
    /// A link, or what is neither file nor folder.
    void other(wide_string const & leaf, bool link);

private:
    void open(narrow_string const & tag, wide_string const & leaf, wide_string const & as);
    void finder(file_record const & record);
    void date(narrow_string const & name, nio::time const & time);
    void attributes(uint32 bits);
    void fork(narrow_string const & name, extent const & bytes);
    void doubts(file_record const & record);

    stream::xml_output xml_;
    bool checksums_;
};
