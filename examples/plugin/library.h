#pragma once

#include <socle/basic/types.h>

/// Libraries that are loaded by name; the files of the host's name have it for each kind of host.
namespace host {

/// Loads the library at the path, to which the host's ending for libraries is added. Null, with the host's words in
/// `failure`, if that cannot be done.
void * load(narrow_string const & path, narrow_string & failure);
/// A function of the library; null if it has none of that name.
void * find(void * library, char const * name);
void unload(void * library);

} // namespace host
