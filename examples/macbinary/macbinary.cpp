// Shows what the headers of MacBinary files say: how a Macintosh file, its two forks and what the Finder knows of it
// travel in one file of bytes. Unpacks such files into files with side forks, and packs them again.

#include "packing.h"
#include "walking.h"
#include "xml_report.h"

#include "common/command_line.h"
#include "common/document.h"
#include "common/host_text.h"
#include "common/mac_roman.h"

#include <socle/io/exception.h>
#include <socle/nio/exception.h>

#include <functional>
#include <iostream>

namespace {

/// Tells of the exception that is handled.
void complain(narrow_string const & name) {
    std::cerr << "macbinary: " << readable_path(name) << ' ' << current_failure() << '\n';
}

void show(narrow_string const & path, header const & h) {
    std::cout << readable_path(path) << '\n'
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
        narrow_string name = path;
        try {
            work(path);
            continue;
        } catch (io::exception const & e) {
            // What this program itself has found out names the file that it means.
            name = e.error() == 0 ? e.origin() : path;
            complain(name);
        } catch (...) {
            complain(name);
        }
        good = false;
    }
    return good;
}

bool show_all(std::vector<narrow_string> const & paths) {
    return each(paths, [](narrow_string const & path) {
        archive file(path);
        show(path, file.head());
        file.read_to_the_end();
    });
}

bool show_as_xml(std::vector<narrow_string> const & paths) {
    xml_report report;
    bool const good = each(paths, [&](narrow_string const & path) {
        archive file(path);
        report.add(path, file.head());
        file.read_to_the_end();
    });
    document out;
    out.write(report.document());
    out.finish();
    return good;
}

bool test_all(std::vector<narrow_string> const & paths) {
    return each(paths, [](narrow_string const & path) {
        archive file(path);
        file.read_to_the_end();
        std::cout << readable_path(path) << " is whole: " << file.head().data_length << " and "
                  << file.head().resource_length << " bytes\n";
    });
}

/// The names of what is made, for other programs to take, but fit to be read on a terminal.
bool unpack_all(std::vector<narrow_string> const & paths, narrow_string const & folder) {
    nio::file out;
    out.open_stdout();
    bool const readable = out.console();
    return each(paths, [&](narrow_string const & path) {
        archive file(path);
        auto const made = unpack(file, folder);
        std::cout << (readable ? readable_path(made) : made) << '\n';
    });
}

bool pack_all(std::vector<narrow_string> const & paths, narrow_string const & target) {
    return each(paths, [&](narrow_string const & path) { pack(path, target); });
}

bool walk_all(std::vector<narrow_string> const & paths) {
    return each(paths, [](narrow_string const & path) {
        if (!show_tree(path))
            throw io::exception("is no folder", path, 0);
    });
}

command_line::description const about = {
    "macbinary", "FILE...",
    "Shows what MacBinary files hold, tests them, unpacks them into files with side forks, and packs such files.\n"
    "The FILE \"-\" is the standard input.",
    "  macbinary *.bin\n"
    "  macbinary --test archive.bin && macbinary --unpack ~/Files archive.bin\n"
    "  macbinary --pack archive.bin 'Read Me'\n",
    "  0  all was done\n"
    "  1  something could not be done, or a file is damaged: standard error tells what\n"
    "  2  the command line is wrong, and nothing was done\n"};

int run(int argc, char ** argv) {
    command_line line(argc, argv, about);
    flag const test(line, "--test|-t", "read the files to their ends, and write nothing");
    text const unpacked(line, "--unpack|-u", "FOLDER",
                        "unpack the files into this folder; a macbinary.part there is what a\n"
                        "killed run left, and can be deleted");
    text const packed(line, "--pack|-p", "FILE", "pack one file, with its side forks, into this new one");
    flag const walk(line, "--walk|-w", "show what is in folders, with side forks");
    flag const xml(line, "--xml|-x", "write an XML document");
    flag const help(line, "--help|-h", "show this list");
    flag const version(line, "--version", "show the version");

    auto const paths = line.read();
    if (help() || version()) {
        help() ? line.show_help() : line.show_version();
        return std::cout.flush() ? 0 : 1;
    }
    if (test() + unpacked.found() + packed.found() + walk() + xml() > 1)
        throw usage_error("--test, --unpack, --pack, --walk and --xml do not go together");
    if (paths.empty())
        throw usage_error("the file is missing");
    if (packed.found() && paths.size() != 1)
        throw usage_error("--pack takes one file");
    bool const good = test()             ? test_all(paths)
                      : unpacked.found() ? unpack_all(paths, unpacked())
                      : packed.found()   ? pack_all(paths, packed())
                      : walk()           ? walk_all(paths)
                      : xml()            ? show_as_xml(paths)
                                         : show_all(paths);
    if (!std::cout.flush())
        throw nio::exception("cannot write to the standard output");
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char ** argv) { return run_program("macbinary", run, argc, argv); }
