/// Paths between the host's bytes and the library's text, and their full form.

#include "fuzz/support/feed.h"
#include "socle/platform/host.h"
#include "socle/platform/host_names.h"
#include "socle/platform/paths.h"

void fuzz::run(std::string_view input) {
    using namespace platform;
    // Every path of the host comes back.
    narrow_string host(input);
    std::erase(host, '\0');
    wide_string const ours = from_host(host);
    // Two slashes in front would be a share.
    if (!host.starts_with("//"))
        check(to_host(ours) == host);
    wide_string full;
    check(GetFullPathNameW(ours, full) == !host.empty());

    // Any text: a full path is a fixed point, without dots and with one kind of separator.
    wide_string const text = feed::units(input);
    if (GetFullPathNameW(text, full)) {
        wide_string again;
        check(GetFullPathNameW(full, again) && again == full);
        check(full.find(u'/') == full.npos);
        // A share may have any name.
        check(full.starts_with(u"\\\\") || (full.find(u"\\..\\") == full.npos && full.find(u"\\.\\") == full.npos));
    } else {
        check(text.empty() || text.find(u'\0') != text.npos);
    }

    // A name that the host can have comes back, unless its bad bytes happen to be good text.
    narrow_string name;
    bool const possible = to_host_name(text, name);
    if (possible) {
        check(name.find('/') == name.npos && name.find('\0') == name.npos);
        narrow_string again;
        check(to_host_name(from_host_name(name), again) && again == name);
    }
    narrow_string const there = to_host(text);
    if (!there.empty() && there[0] != '/')
        check(from_host(there).size() <= text.size());
}
