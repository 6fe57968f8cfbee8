#include "walking.h"

#include "common/host.h"
#include "common/host_text.h"
#include "common/mac_roman.h"

#include <socle/io/directory.h>
#include <socle/io/exception.h>
#include <socle/io/file.h>
#include <socle/platform/host.h>

#include <iostream>

namespace {

void show_file(io::item & entry) {
    io::file file(entry.path());
    std::cout << "  data " << file.data_fork().size() << ", resource " << file.rsrc_fork().size();
    try {
        entry.load_attributes(io::attributes::read_sidecar);
        if (auto const & finder = entry.attributes().mac_file; finder.present())
            std::cout << ", " << readable(finder.value().info.type.to_string()) << ' '
                      << readable(finder.value().info.creator.to_string());
    } catch (io::exception const &) {
        // It went while it was looked at, or nobody may read it.
    }
    std::cout << '\n';
}

void show_folder(io::directory & folder, narrow_string const & indent) {
    for (auto entry = folder.begin(), last = folder.end(); entry != last; ++entry) {
        std::cout << indent << readable_path(platform::to_host(entry->path().leaf()));
        if (!entry->directory()) {
            show_file(*entry);
            continue;
        }
        std::cout << "/\n";
        // A link may lead anywhere, back to here too.
        if (host::kind_of(platform::to_host(entry->path().full_string())) != host::kind::link) {
            io::directory inner(entry->path());
            show_folder(inner, indent + "    ");
        }
    }
}

} // namespace

bool show_tree(narrow_string const & path) {
    io::item const item(any::path(any::string(platform::from_host(path)), true));
    if (!item.directory())
        return false;
    io::directory folder(item);
    std::cout << readable_path(path) << '\n';
    show_folder(folder, "    ");
    return true;
}
