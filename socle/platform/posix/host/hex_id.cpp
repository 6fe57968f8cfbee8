#include "socle/platform/posix/host/hex_id.h"

#include "socle/platform/posix/host/host_calls.h"

namespace platform::posix {

host_error make_hex_id(std::size_t bytes, narrow_string & id) {
    narrow_string random(bytes, '\0');
    if (host::getentropy(random.data(), random.size()) != 0)
        return host_error::last();
    id.clear();
    for (char const c : random) {
        auto const byte = static_cast<unsigned char>(c);
        id += "0123456789abcdef"[byte >> 4];
        id += "0123456789abcdef"[byte & 0xF];
    }
    return {};
}

} // namespace platform::posix
