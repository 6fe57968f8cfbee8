#pragma once

#include "socle/basic/types.h"

namespace platform::posix {

/// The value of an extended attribute. False if there is none, or with `errno` why it cannot be had.
bool get_attribute(narrow_string const & path, char const * name, bool follow_link, narrow_string & value);

/// Whether the file has any that it lists, as far as the host tells; links are followed.
bool has_attributes(narrow_string const & path);

/// Sets one; links are followed. 0 or an `errno`. A missing write bit of the owner is lifted for the moment that takes.
int set_attribute(narrow_string const & path, char const * name, narrow_string const & value);

} // namespace platform::posix
