#pragma once

#include "carrier.h"
#include "catalogue.h"
#include "selection.h"

/// Walks a folder of the host into a catalogue, into another folder, or both. What cannot be read or carried is among
/// the complaints of the report, and the rest goes on.
class tree {
public:
    /// `catalogue` and `carrier` are null for none. `attach` is called before the library looks at the first file that
    /// may have streams: without a volume a path costs it three calls less. It tells whether the root is the top of a
    /// volume with streams, whose store is no part of the tree.
    tree(narrow_string const & typed, wide_string const & root, std::function<bool()> attach,
         selection const & selection, catalogue * catalogue, carrier * carrier, report & report);

    void walk();

private:
    void look_ahead(host::folder const & folder, wide_string const & path);
    std::vector<entry> entries_of(wide_string const & path);
    void attach();
    std::vector<wide_string> names_for(wide_string const & path, std::vector<entry> const & entries) const;
    /// `target` is null if nothing in it is carried.
    void folder(wide_string const & path, target_pointer const & target);
    void inner_folder(file_record const & record, wide_string const & leaf, target_pointer const & around);
    void file(file_record const & record, wide_string const & leaf, target_pointer const & target);
    void other(wide_string const & path, bool link);
    bool counts(wide_string const & path, bool folder) const;
    void tell(file_record const & record);
    void tell_unclear(file_record const & record);

    narrow_string typed_;
    wide_string root_;
    std::function<bool()> attach_;
    bool streams_ = false;
    selection const & selection_;
    catalogue * catalogue_;
    carrier * carrier_;
    report & report_;
};
