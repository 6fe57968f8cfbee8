/// The search for an entry of an AppleDouble file.

#include "fuzz/support/apple_double.h"
#include "fuzz/support/feed.h"
#include "socle/nio/apple_double_internal.h"
#include "socle/stream/vector_input.h"
#include "tests/support/memory_sources.h"

namespace {

void compare(std::string_view file, uint32 id) {
    byte_vector const bytes = fuzz::vector_of(file);
    stream::vector_input memory(bytes);
    support::unlent plain(file);
    uint32 wanted = 7, first = 7, second = 7, room = 0;
    bool const found = fuzz::find_entry(file, id, wanted, room);
    fuzz::check(nio::apple_double::find_entry(memory, id, first) == found && first == wanted);
    fuzz::check(nio::apple_double::find_entry(plain, id, second) == found && second == wanted);
}

} // namespace

void fuzz::run(std::string_view input) {
    compare(input, nio::apple_double::finder_info_id);
    if (input.size() > 29)
        compare(input, static_cast<uint32>(number_at(input, 26, 4, true)));

    // Our own head, with what follows it and with bytes of it changed.
    auto const head = nio::apple_double::head({});
    narrow_string sidecar(head.begin(), head.end());
    compare(sidecar + narrow_string(input), nio::apple_double::finder_info_id);
    for (feed in(input); !in.empty();) {
        std::size_t const at = in.below(nio::apple_double::finder_info_offset);
        sidecar[at] = static_cast<char>(in.byte());
    }
    compare(sidecar, nio::apple_double::finder_info_id);
}
