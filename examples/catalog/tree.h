#pragma once

#include "carrier.h"
#include "xml_catalog.h"

/// What has become of a tree.
struct tree_summary {
    uint64 files = 0, folders = 0, others = 0;
    uint64 carried = 0, there_already = 0;
    /// Lines that told of something that is not, or not wholly, where it should be.
    uint64 complaints = 0;
};

/// Walks a folder of the host into a catalogue and, with a carrier, into another folder. What cannot be read or carried
/// gets a line among the errors, and the rest goes on.
class tree {
public:
    /// Without a carrier, null, nothing is carried.
    tree(narrow_string const & root, xml_catalog & catalog, carrier * carrier);

    tree_summary walk();

private:
    void folder(wide_string const & path, wide_string const & target);
    void inner_folder(file_record const & record, wide_string const & target);
    void file(file_record const & record, wide_string const & target);
    void other(wide_string const & path, bool link);
    void complain(wide_string const & path, narrow_string const & words);
    void complain(wide_string const & path, std::vector<narrow_string> const & words);
    /// Does some of the work; false, with a line, if that throws.
    template <class Work>
    bool try_to(wide_string const & path, Work work);

    wide_string root_;
    xml_catalog & catalog_;
    carrier * carrier_;
    progress progress_;
    tree_summary summary_;
};
