// Shows what the headers of MacBinary files say: how a Macintosh file, its two forks and what the Finder knows of it
// travel in one file of bytes. Unpacks such files into files with side forks, and packs them again.

#include "common/mac_roman.h"
#include "header.h"
#include "packing.h"
#include "walking.h"
#include "xml_report.h"

#include <socle/command/line.h>
#include <socle/command/option.h>
#include <socle/un/exception.h>

#include <exception>
#include <functional>
#include <iostream>

namespace {

void show(narrow_string const & path, header const & h) {
    std::cout << path << '\n'
              << "  name          " << readable(h.name) << '\n'
              << "  type          " << readable(h.finder.type.to_string()) << '\n'
              << "  creator       " << readable(h.finder.creator.to_string()) << '\n'
              << "  Finder flags  " << hex_16(h.finder.flags) << '\n'
              << "  location      v " << h.finder.location.v << ", h " << h.finder.location.h << '\n'
              << "  created       " << local_date(h.created) << " (" << h.created << ")\n"
              << "  modified      " << local_date(h.modified) << " (" << h.modified << ")\n"
              << "  data fork     " << h.data_length << " bytes\n"
              << "  resource fork " << h.resource_length << " bytes\n"
              << "  header CRC    " << (h.version == 0 ? "none (first generation)" : hex_16(h.crc) + ", agrees")
              << '\n';
}

/// Does the work for the files one by one, and gives whether it was done for all of them.
bool each(std::vector<narrow_string> const & paths, std::function<void(narrow_string const &)> const & work) {
    bool good = true;
    for (auto const & path : paths) {
        try {
            work(path);
        } catch (un::exception const & e) {
            std::cerr << "macbinary: " << e.origin() << ' ' << e.message() << '\n';
            good = false;
        }
    }
    return good;
}

bool show_all(std::vector<narrow_string> const & paths) {
    return each(paths, [](narrow_string const & path) { show(path, header_of(path)); });
}

bool show_as_xml(std::vector<narrow_string> const & paths) {
    xml_report report;
    bool const good = each(paths, [&](narrow_string const & path) { report.add(path, header_of(path)); });
    std::cout << report.document();
    return good;
}

bool unpack_all(std::vector<narrow_string> const & paths, narrow_string const & folder) {
    return each(paths, [&](narrow_string const & path) { std::cout << unpack(path, folder) << '\n'; });
}

bool pack_all(std::vector<narrow_string> const & paths, narrow_string const & target) {
    if (paths.size() != 1)
        throw un::exception("--pack takes one file", "macbinary");
    return each(paths, [&](narrow_string const & path) { pack(path, target); });
}

bool walk_all(std::vector<narrow_string> const & paths) {
    bool good = true;
    for (auto const & path : paths) {
        if (show_tree(path))
            continue;
        std::cerr << "macbinary: " << path << " is no folder\n";
        good = false;
    }
    return good;
}

} // namespace

int main(int argc, char ** argv) {
    try {
        command::line line(argc, argv);
        command::option<bool> xml(line, "--xml", false, "write an XML document");
        command::option<narrow_string> unpacked(line, "--unpack", "",
                                                "unpack the files into this folder; a macbinary.part there is what a "
                                                "killed run left, and can be deleted");
        command::option<narrow_string> packed(line, "--pack", "", "pack one file, with its side forks, into this one");
        command::option<bool> walk(line, "--walk", false, "show what is in folders, with side forks");
        command::option<bool> help(line, "--help|-h", false, "show this list");
        line.digest();
        if (help() || line.empty()) {
            line.show_options("macbinary, which takes MacBinary files");
            return help() ? 0 : 1;
        }
        bool const good = unpacked.found() ? unpack_all(line, unpacked())
                          : packed.found() ? pack_all(line, packed())
                          : walk()         ? walk_all(line)
                          : xml()          ? show_as_xml(line)
                                           : show_all(line);
        return good && std::cout.flush() ? 0 : 1;
    } catch (un::exception const & e) {
        std::cerr << "macbinary: " << e.message() << '\n';
    } catch (std::exception const & e) {
        std::cerr << "macbinary: " << e.what() << '\n';
    }
    return 1;
}
