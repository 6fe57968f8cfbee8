#pragma once

#include "socle/basic/types.h"

#include <string_view>

namespace platform::posix {

/// The relative host path under which our own store keeps stream `name`: lower-case letters, digits, '_' and `+hhhh`
/// for every other unit. What is too long for one host name goes on in a folder whose name ends in '~'.
narrow_string stored_stream_name(std::u16string_view name);

/// The way back, from the path with its separators and '~' taken out. False for what the function above never gives.
bool stream_name_of(std::string_view stored, wide_string & name);

} // namespace platform::posix
