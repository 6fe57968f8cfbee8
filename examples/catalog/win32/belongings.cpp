#include "catalog/belongings.h"

namespace host {

/// Only the library knows of the bits and streams of a file.
bool has_more(narrow_string const &) { return true; }

listed_names::listed_names(host::folder const &) {}
listed_names::~listed_names() = default;
bool listed_names::has_more(narrow_string const &) const { return true; }

bool has_unlisted(host::folder const &) { return true; }

/// A file has the rights that its folder gives.
belongings belongings_of(narrow_string const &) { return {}; }

refusals give_belongings(narrow_string const &, status const &, narrow_string const &, belongings const & wanted) {
    refusals result;
    result.owner = wanted.owner;
    result.acls = wanted.acls;
    result.attributes = wanted.attributes;
    return result;
}

bool may_give_owners() { return false; }

/// The one bit of a mode that there is goes with the attributes.
bool give_mode(narrow_string const &, uint32) { return true; }

} // namespace host
