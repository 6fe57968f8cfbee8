/// Shell links: whatever the bytes, the reader stays within them, and what it takes for a link is one.

#include "fuzz/support/feed.h"
#include "socle/platform/shell_link_reader.h"

namespace {

wide_string latin(std::string_view text) {
    wide_string wide;
    for (char const c : text)
        wide += static_cast<unsigned char>(c);
    return wide;
}

} // namespace

void fuzz::run(std::string_view input) {
    using platform::read_shell_link;
    wide_string const before = u"what stood there";
    wide_string target = before;
    bool const found = read_shell_link(input, latin, target);
    check(found ? target != before && !target.empty() : target == before);
    if (!found)
        return;

    // What is behind the block that ends it does not count, and no link is whole without that block.
    wide_string again;
    check(read_shell_link(narrow_string(input) + narrow_string(7, '\x7F'), latin, again) && again == target);
    bool whole = true;
    for (std::size_t size = input.size(); size-- > 0;) {
        again = target;
        bool const now = read_shell_link(input.substr(0, size), latin, again);
        check((whole || !now) && again == target);
        whole = now;
    }
    check(!whole);
}
