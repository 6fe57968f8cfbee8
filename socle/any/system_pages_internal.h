#pragma once

#include "socle/any/converter.h"
#include "socle/any/exception.h"

namespace any {

/// The converter of all text values, made when it is first asked for.
inline converter const & system_pages() {
    static converter const pages;
    return pages;
}

inline void decode(narrow_string const & text, wide_string & result, bool ansi, char const * origin) {
    if (!system_pages().to_unicode(text, result, ansi))
        throw exception("cannot convert to Unicode", origin);
}

} // namespace any
