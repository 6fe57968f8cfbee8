#pragma once

#include "socle/basic/types.h"
#include "socle/platform/system_code.h"

#include <string_view>

namespace platform {

/// The name in what stands behind the first colon of a leaf: `note`, `note:$DATA`. Empty for `:$DATA`, which is the
/// file itself. 123 for what cannot be a stream's name: another type, more than 255 units, a separator, a NUL.
system_code parse_stream_name(std::u16string_view text, wide_string & name);

/// The relative host path under which our own store keeps stream `name`: lower-case letters, digits, '_' and `+hhhh`
/// for every other unit. What is too long for one host name goes on in a folder whose name ends in '~'.
narrow_string stored_stream_name(std::u16string_view name);

/// The way back, from the path with its separators and '~' taken out. False for what the function above never gives.
bool stream_name_of(std::string_view stored, wide_string & name);

} // namespace platform
