// Shows what the headers of MacBinary files say: how a Macintosh file, its two forks and what the Finder knows of it
// travel in one file of bytes.

#include "header.h"
#include "mac_roman.h"
#include "xml_report.h"

#include "command/line.h"
#include "command/option.h"
#include "un/exception.h"

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

/// Hands the headers of the files to `report` one by one, and gives whether all of them could be read.
bool each_header(std::vector<narrow_string> const & paths,
                 std::function<void(narrow_string const &, header const &)> const & report) {
    bool good = true;
    for (auto const & path : paths) {
        try {
            report(path, header_of(path));
        } catch (un::exception const & e) {
            std::cerr << "macbinary: " << e.origin() << ' ' << e.message() << '\n';
            good = false;
        }
    }
    return good;
}

bool show_as_xml(std::vector<narrow_string> const & paths) {
    xml_report report;
    bool const good = each_header(paths, [&](narrow_string const & path, header const & h) { report.add(path, h); });
    std::cout << report.document();
    return good;
}

} // namespace

int main(int argc, char ** argv) {
    try {
        command::line line(argc, argv);
        command::option<bool> xml(line, "--xml", false, "write an XML document");
        command::option<bool> help(line, "--help|-h", false, "show this list");
        line.digest();
        if (help() || line.empty()) {
            line.show_options("macbinary, which takes MacBinary files");
            return help() ? 0 : 1;
        }
        bool const good = xml() ? show_as_xml(line) : each_header(line, show);
        return good && std::cout.flush() ? 0 : 1;
    } catch (un::exception const & e) {
        std::cerr << "macbinary: " << e.message() << '\n';
    } catch (std::exception const & e) {
        std::cerr << "macbinary: " << e.what() << '\n';
    }
    return 1;
}
