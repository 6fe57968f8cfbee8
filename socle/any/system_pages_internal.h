#pragma once

#include "socle/any/converter.h"

namespace any {

/// The converter of all text values, made when it is first asked for.
inline converter const & system_pages() {
    static converter const pages;
    return pages;
}

} // namespace any
