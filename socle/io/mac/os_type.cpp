#include "socle/io/mac/os_type.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/io/exception.h"
#include "socle/stream/input.h"
#include "socle/stream/output.h"

namespace io::mac {

os_type::os_type(char const * text) { from_string(text); }

os_type::os_type(narrow_string const & text) { from_string(text); }

os_type::os_type(uint32 number) : value(number) {}

os_type::os_type(int number) : value(static_cast<uint32>(number)) {}

os_type::~os_type() = default;

narrow_string os_type::to_string() const {
    narrow_string text(sizeof value, '\0');
    basic::store(text.data(), value, true);
    return text;
}

void os_type::from_string(narrow_string const & text) {
    char bytes[sizeof value] = {};
    text.copy(bytes, sizeof bytes);
    value = basic::load<uint32>(bytes, true);
}

uint32 os_type::read(stream::input & input, bool strict) {
    char bytes[fixed_size()];
    for (char & next : bytes) {
        int const byte = input.read();
        if (strict && byte == -1)
            throw exception("stream is too short", "io::mac::os_type", 0);
        next = static_cast<char>(byte);
    }
    value = basic::load<uint32>(bytes, true);
    return fixed_size();
}

uint32 os_type::write(stream::output & output) const {
    output.write(to_string().data(), fixed_size());
    return size();
}

uint32 os_type::size() const { return fixed_size(); }

} // namespace io::mac
