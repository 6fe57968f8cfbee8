#include "socle/io/mac/os_type.h"

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
    narrow_string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift);
    return text;
}

void os_type::from_string(narrow_string const & text) {
    value = 0;
    for (narrow_string::size_type i = 0; i < fixed_size(); ++i)
        value = value << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0u);
}

uint32 os_type::read(stream::input & input, bool strict) {
    narrow_string text;
    while (text.size() < fixed_size()) {
        int const byte = input.read();
        if (strict && byte == -1)
            throw exception("stream is too short", "io::mac::os_type", 0);
        text += static_cast<char>(byte);
    }
    from_string(text);
    return fixed_size();
}

uint32 os_type::write(stream::output & output) const {
    output.write(to_string().data(), fixed_size());
    return size();
}

uint32 os_type::size() const { return fixed_size(); }

} // namespace io::mac
