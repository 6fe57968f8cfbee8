#pragma once

#include "socle/basic/types.h"

#include <string_view>

/// One component of a path, between the library's 16-bit text and the host's bytes.
///
/// To the host a name is UTF-8. What is none stays reachable: each byte b that cannot be decoded is the unit 0xDC00 +
/// b. A `\` or `:` of the host is the unit 0xF05C or 0xF03A, and the host's own encoding of those two units counts as
/// bytes that cannot be decoded. So every host name comes back as it was.
namespace platform {

/// False for a name that has no host form: a NUL, a separator, a colon, a lone surrogate but 0xDC80 to 0xDCFF.
bool to_host_name(std::u16string_view name, narrow_string & host);
wide_string from_host_name(std::string_view host);
/// The same, behind what `text` holds.
void append_host_name(std::string_view host, wide_string & text);

/// The host's text that is not a name: what cannot be decoded as above, and everything else as it is.
wide_string from_host_text(std::string_view host);

} // namespace platform
