/// The search for an entry of an AppleDouble file.

#include "fuzz/support/feed.h"
#include "fuzz/support/sources.h"
#include "nio/apple_double_internal.h"
#include "stream/vector_input.h"

namespace {

uint32 number(std::string_view bytes, std::size_t at, std::size_t size) {
    uint32 value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

/// As the layout tells it.
bool plain_find(std::string_view file, uint32 id, uint32 & offset) {
    if (file.size() < 26 || number(file, 0, 4) != 0x00051607 || number(file, 4, 4) != 0x00020000)
        return false;
    std::size_t const count = number(file, 24, 2);
    for (std::size_t i = 0; i < count && file.size() >= 26 + 12 * (i + 1); ++i) {
        if (number(file, 26 + 12 * i, 4) == id) {
            offset = number(file, 30 + 12 * i, 4);
            return true;
        }
    }
    return false;
}

void compare(std::string_view file, uint32 id) {
    byte_vector const bytes = fuzz::vector_of(file);
    stream::vector_input memory(bytes);
    fuzz::unlent plain(file);
    uint32 wanted = 7, first = 7, second = 7;
    bool const found = plain_find(file, id, wanted);
    fuzz::check(nio::apple_double::find_entry(memory, id, first) == found && first == wanted);
    fuzz::check(nio::apple_double::find_entry(plain, id, second) == found && second == wanted);
}

} // namespace

void fuzz::run(std::string_view input) {
    compare(input, nio::apple_double::finder_info_id);
    if (input.size() > 29)
        compare(input, number(input, 26, 4));

    // Our own head, with what follows it and with bytes of it changed.
    auto const head = nio::apple_double::head();
    narrow_string sidecar(head.begin(), head.end());
    compare(sidecar + narrow_string(input), nio::apple_double::finder_info_id);
    for (feed in(input); !in.empty();) {
        std::size_t const at = in.below(nio::apple_double::finder_info_offset);
        sidecar[at] = static_cast<char>(in.byte());
    }
    compare(sidecar, nio::apple_double::finder_info_id);
}
